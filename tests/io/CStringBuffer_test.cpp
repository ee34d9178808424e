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
