#include <gtest/gtest.h>

#include <string>

#include "KxXmlLib16.h"

using namespace KxXmlLib16;

TEST(FormatString, FormatsLikePrintf) {
    EXPECT_EQ("Index Out of range [12]", FormatString("Index Out of range [%d]", 12));
    EXPECT_EQ("Invalid char in hex string [G]", FormatString("Invalid char in hex string [%c]", 'G'));
    EXPECT_EQ("a b 3.50 -7", FormatString("%s %s %.2f %lld", "a", "b", 3.5, -7LL));
    EXPECT_EQ("", FormatString("%s", ""));
}

TEST(FormatString, ReturnsTheWholeTextHoweverLong) {
    const std::string big(100000, 'x');
    const std::string text = FormatString("[%s]", big.c_str());
    ASSERT_EQ(big.size() + 2, text.size());
    EXPECT_EQ('[', text.front());
    EXPECT_EQ(']', text.back());
    EXPECT_EQ(big, text.substr(1, big.size()));
}
