#include <random>
#include <string>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using KxXmlLib16::CStringBuffer;

TEST(CStringBuffer, RandomAppendsMatchAStringAtEveryBlockSize) {
    const unsigned int allocationSizes[] = {1, 2, 3, 7, 64, 4096};
    for (unsigned int size : allocationSizes) {
        SCOPED_TRACE(size);
        std::mt19937 random(size);
        CStringBuffer buffer(size);
        std::string expected;
        for (int i = 0; i < 600; ++i) {
            const int kind = static_cast<int>(random() % 4);
            std::string piece(kind == 2 ? 1 : random() % 50, static_cast<char>('a' + i % 26));
            if (kind == 0) {
                buffer.Append(piece.c_str());
            } else if (kind == 1) {
                buffer.Append(piece);
            } else if (kind == 2) {
                buffer.Append(piece[0]);
            } else {
                // Joining the blocks mid-way must not disturb later appends.
                ASSERT_EQ(expected, buffer.GetText());
                piece.clear();
            }
            expected += piece;
            ASSERT_EQ(expected.size(), buffer.GetLength());
        }
        EXPECT_EQ(expected, buffer.GetText());
    }
}

TEST(CStringBuffer, FullBlockIsReturnedInPlaceAndJoinedOnceItOverflows) {
    CStringBuffer buffer;
    const std::string block(4095, 'x');
    buffer.Append(block);
    const char* first = buffer.GetText();
    EXPECT_EQ(block, first);
    EXPECT_EQ(first, buffer.GetText());  // a single block is handed out as it is

    buffer.Append('y');  // starts a second block
    const char* joined = buffer.GetText();
    EXPECT_EQ(block + "y", joined);
    EXPECT_EQ(joined, buffer.GetText());  // joined once, not again

    buffer.Append("z");  // the joined block is full: a new one starts
    EXPECT_EQ(block + "yz", buffer.GetText());
}

TEST(CStringBuffer, TextIsNeverNullAndStopsAtTheFirstNul) {
    CStringBuffer buffer;
    EXPECT_STREQ("", buffer.GetText());
    buffer.Append(std::string("ab\0cd", 5));
    buffer.Append(static_cast<const char*>(nullptr));
    buffer.Append("e");
    EXPECT_STREQ("abe", buffer.GetText());
    EXPECT_EQ(3u, buffer.GetLength());
    buffer.Clear();
    EXPECT_STREQ("", buffer.GetText());
    buffer.SetText("new");
    EXPECT_STREQ("new", buffer.GetText());
}

TEST(CStringBuffer, EmptyKeepsASingleBlockAndLeavesNoOldText) {
    CStringBuffer buffer(16);
    buffer.Append("0123456789");
    const char* storage = buffer.GetText();
    buffer.Empty();
    EXPECT_STREQ("", buffer.GetText());
    buffer.Append("ab");
    EXPECT_EQ(storage, buffer.GetText());
    EXPECT_STREQ("ab", buffer.GetText());

    // Several blocks are freed; a joined block, emptied, is refilled past its own size.
    buffer.Append(std::string(40, 'q'));
    buffer.Empty();
    EXPECT_EQ(0u, buffer.GetLength());
    buffer.Append(std::string(40, 'r'));
    buffer.GetText();
    buffer.Empty();
    buffer.Append(std::string(50, 's'));
    EXPECT_EQ(std::string(50, 's'), buffer.GetText());
}

// Text built in place (as a writer does: pieces written into prepared room, then committed or
// dropped) reads back like the same pieces appended to a string, however the blocks fall.
TEST(CStringBuffer, InPlaceAppendsMatchAStringAtEveryBlockSize) {
    const unsigned int allocationSizes[] = {1, 2, 3, 7, 64, 4096};
    for (unsigned int size : allocationSizes) {
        SCOPED_TRACE(size);
        std::mt19937 random(size);
        CStringBuffer buffer(size);
        std::string expected;
        for (int i = 0; i < 600; ++i) {
            const int kind = static_cast<int>(random() % 4);
            if (kind == 0) {
                const std::string piece(random() % 20, static_cast<char>('a' + i % 26));
                buffer.Append(piece);
                expected += piece;
            } else if (kind == 3) {
                ASSERT_EQ(expected, buffer.GetText());
            } else {
                // Two or three pieces, each asking for more room than the last gave.
                std::string written;
                size_t room = 0;
                char* at = nullptr;
                const int pieces = 2 + static_cast<int>(random() % 2);
                for (int p = 0; p < pieces; ++p) {
                    const std::string piece(random() % 40, static_cast<char>('A' + p));
                    if (written.size() + piece.size() > room || at == nullptr) {
                        at = buffer.PrepareAppend(written.size(), written.size() + piece.size(),
                                                  room);
                        ASSERT_GE(room, written.size() + piece.size());
                        ASSERT_EQ(written, std::string(at, written.size()));
                    }
                    piece.copy(at + written.size(), piece.size());
                    written += piece;
                }
                if (kind == 1) {
                    buffer.CommitAppend(written.size());
                    expected += written;
                }
            }
            ASSERT_EQ(expected.size(), buffer.GetLength());
        }
        std::string appended = "head:";
        buffer.AppendTo(appended);
        EXPECT_EQ("head:" + expected, appended);
        std::string copied(expected.size(), '\0');
        buffer.CopyTo(&copied[0]);
        EXPECT_EQ(expected, copied);
        EXPECT_EQ(expected, buffer.GetText());
    }
}
