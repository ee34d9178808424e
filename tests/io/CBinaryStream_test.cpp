#include <random>
#include <string>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using KxXmlLib16::CBinaryData;
using KxXmlLib16::CBinaryStream;

namespace {
std::string ToString(const CBinaryData& value) {
    return value.GetLength() == 0
               ? std::string()
               : std::string(reinterpret_cast<const char*>(value.GetData()), value.GetLength());
}
}  // namespace

TEST(CBinaryStream, AppendsCollectInOrderWithoutTouchingSharedBuffers) {
    const CBinaryData initial("start");
    CBinaryStream stream("CBinaryStream", initial);
    const CBinaryData snapshot = stream.GetBinaryStream();
    std::mt19937 random(3);
    std::string expected = "start";
    for (int i = 0; i < 20000; ++i) {
        const unsigned char pair[] = {static_cast<unsigned char>(random()), 0};
        if (i % 7 == 0) {
            stream.Append(pair, 2);
            stream.Append(CBinaryData());
            expected.append(reinterpret_cast<const char*>(pair), 2);
        } else if (i % 7 == 1) {
            stream.Append(CBinaryData(pair, 1, false));
            expected.push_back(static_cast<char>(pair[0]));
        } else {
            stream.Append(pair[0]);
            expected.push_back(static_cast<char>(pair[0]));
        }
    }
    EXPECT_EQ(expected, ToString(stream.GetBinaryStream()));
    EXPECT_EQ("start", ToString(initial));
    EXPECT_EQ("start", ToString(snapshot));
    EXPECT_EQ(0u, CBinaryStream().GetBinaryStream().GetLength());
}
