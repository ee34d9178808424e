// CBinaryData values that share one holder, used from several threads at once: copies, appends
// (copy on write), writes through operator[], ReleaseData and releases must keep every value's
// bytes and the holder's reference count exact.
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "KxXmlLib16.h"
#include "ThreadTestSupport.h"

using namespace KxXmlLib16;
using KxThreadTest::kThreads;
using KxThreadTest::RunTogether;

namespace {

std::string Pattern(size_t length) {
    std::string bytes(length, '\0');
    for (size_t i = 0; i < length; ++i) bytes[i] = static_cast<char>('a' + i % 26);
    return bytes;
}

CBinaryData ValueOf(const std::string& bytes) {
    return CBinaryData(reinterpret_cast<const unsigned char*>(bytes.data()),
                       static_cast<unsigned long>(bytes.size()), false);
}

std::string BytesOf(const CBinaryData& value) {
    if (value.GetLength() == 0) return std::string();
    return std::string(reinterpret_cast<const char*>(value.GetData()), value.GetLength());
}

// True when `value` holds its bytes alone: a one-byte append then fits the room a copied
// holder keeps and leaves the bytes where they are, while a holder that still counts another
// sharer makes a private copy first. The byte is appended (and stays).
bool HoldsItsBytesAlone(CBinaryData& value) {
    const unsigned char* before = value.GetData();
    value.Append('!');
    return value.GetData() == before;
}

}  // namespace

TEST(CBinaryData, CopiesOfOneValueAppendedAndReleasedOnEightThreadsLeaveItIntact) {
    const std::string original = Pattern(300);
    CBinaryData shared = ValueOf(original);
    const int rounds = 5000;

    RunTogether(kThreads, [&](int thread) -> std::string {
        const char mark = static_cast<char>('A' + thread);
        for (int i = 0; i < rounds; ++i) {
            CBinaryData copy(shared);
            copy.Append(mark);
            CBinaryData second = copy;
            second.Append("xy");
            if (BytesOf(copy) != original + mark) return "the copy lost its appended byte";
            if (BytesOf(second) != original + mark + "xy") return "the second copy is wrong";
            copy = shared;
            if (BytesOf(copy) != original) return "a reassigned copy differs from the value";
            if (i % 7 == 0) copy.Clear();
        }
        return "";
    });

    EXPECT_EQ(original, BytesOf(shared));
    // Every copy made by the threads has been released again, so the count is back to one.
    EXPECT_TRUE(HoldsItsBytesAlone(shared));
}

TEST(CBinaryData, SharersWritingAtOnceEachEndWithTheirOwnBytes) {
    // Each thread holds one of kThreads values sharing a holder and changes it at the same
    // moment as the others; every operation must see the shared bytes as they were before.
    struct Case {
        const char* name;
        // Changes `value` and returns a fault, or "" when its result is right.
        std::string (*apply)(CBinaryData& value, const std::string& original);
    };
    static const Case cases[] = {
        {"append",
         [](CBinaryData& value, const std::string& original) -> std::string {
             value.Append("tail");
             if (BytesOf(value) != original + "tail") return "appended bytes are wrong";
             return HoldsItsBytesAlone(value) ? "" : "the appended value is still shared";
         }},
        {"write through operator[]",
         [](CBinaryData& value, const std::string& original) -> std::string {
             value[0] = '#';
             value[static_cast<unsigned long>(original.size()) - 1] = '#';
             std::string expected = original;
             expected.front() = expected.back() = '#';
             return BytesOf(value) == expected ? "" : "written bytes are wrong";
         }},
        {"release data",
         [](CBinaryData& value, const std::string& original) -> std::string {
             const unsigned long length = value.GetLength();
             std::unique_ptr<unsigned char[]> bytes(value.ReleaseData());
             if (bytes == nullptr || length != original.size() ||
                 std::memcmp(bytes.get(), original.data(), length) != 0)
                 return "released bytes are wrong";
             return value.GetLength() == 0 ? "" : "the value is not empty after ReleaseData";
         }},
        {"copy and clear",
         [](CBinaryData& value, const std::string& original) -> std::string {
             CBinaryData copy = value;
             value.Clear();
             copy.Append('+');
             return BytesOf(copy) == original + "+" ? "" : "the copy's bytes are wrong";
         }},
        {"compare and drop",
         [](CBinaryData& value, const std::string& original) -> std::string {
             const bool same = value == ValueOf(original);
             value = CBinaryData();
             return same ? "" : "the shared bytes compare unequal";
         }},
    };
    const int caseCount = static_cast<int>(sizeof(cases) / sizeof(cases[0]));
    const std::string original = Pattern(64);
    const int rounds = 150;

    for (int round = 0; round < rounds; ++round) {
        std::vector<CBinaryData> values;
        {
            const CBinaryData first = ValueOf(original);
            values.assign(kThreads, first);
        }
        // The threads now hold the only references: the last writer to let go of the shared
        // holder may use it in place.
        RunTogether(kThreads, [&](int thread) -> std::string {
            const Case& row = cases[(thread + round) % caseCount];
            const std::string fault = row.apply(values[thread], original);
            return fault.empty() ? fault : std::string(row.name) + ": " + fault;
        });
        if (HasFailure()) {
            ADD_FAILURE() << "round " << round;
            break;
        }
    }
}
