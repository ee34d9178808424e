#include <string>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

std::vector<std::string> Namespaces(const CNamespaceAliasMap& map) {
    std::vector<std::string> out;
    for (int i = 0; i < map.GetNamespaceCount(); ++i) out.push_back(map.GetNamespaceAt(i));
    return out;
}

}  // namespace

TEST(CNamespaceAliasMap, EntriesAreOrderedByteWiseByNamespace) {
    CNamespaceAliasMap map;
    map.Add("b", "urn:b");
    map.Add("z", "Urn:z");
    map.Add("a", "urn:a");
    map.Add("e", "urn:\xC3\xA9");  // bytes above 0x7F sort after ASCII
    map.Add("c", "http://c");
    const std::vector<std::string> expected = {"Urn:z", "http://c", "urn:a", "urn:b",
                                               "urn:\xC3\xA9"};
    EXPECT_EQ(expected, Namespaces(map));
}

TEST(CNamespaceAliasMap, AddReplacesTheAliasOfAKnownNamespace) {
    CNamespaceAliasMap map;
    map.Add("old", "urn:x");
    map.Add("new", "urn:x");
    EXPECT_EQ(1, map.GetNamespaceCount());
    EXPECT_EQ("new", map.GetAliasFromNamespace("urn:x"));
    EXPECT_EQ("urn:x", map.GetNamespaceFromAlias("new"));
    EXPECT_FALSE(map.DoesAliasExist("old"));
    KxTest::ExpectKxError<CKxException>([&] { map.GetNamespaceFromAlias("old"); },
                                        "Namespace alias [old] not found");
}

TEST(CNamespaceAliasMap, SharedAliasResolvesToTheFirstNamespaceInOrder) {
    CNamespaceAliasMap map;
    map.Add("p", "urn:z");
    map.Add("p", "urn:m");
    map.Add("q", "urn:a");
    EXPECT_EQ("urn:m", map.GetNamespaceFromAlias("p"));
    EXPECT_EQ("urn:a", map.GetNamespaceFromAlias("q"));
}

TEST(CNamespaceAliasMap, LookingUpAnUnknownNamespaceRecordsIt) {
    CNamespaceAliasMap map;
    map.Add("a", "urn:a");
    const CNamespaceAliasMap& readOnly = map;
    EXPECT_EQ("", readOnly.GetAliasFromNamespace("urn:new"));
    EXPECT_EQ(2, readOnly.GetNamespaceCount());
    EXPECT_TRUE(readOnly.DoesNamespaceExist("urn:new"));
    // The recorded empty alias is found like any other.
    EXPECT_EQ("urn:new", readOnly.GetNamespaceFromAlias(""));
}

TEST(CNamespaceAliasMap, ExistenceTestsCompareExactly) {
    CNamespaceAliasMap map;
    map.Add("ns1", "urn:one");
    map.Add("", "urn:default");
    struct Case {
        const char* text;
        bool isNamespace;
        bool isAlias;
    };
    const Case cases[] = {
        {"urn:one", true, false}, {"URN:ONE", false, false}, {"ns1", false, true},
        {"NS1", false, false},    {"", false, true},         {"urn:on", false, false},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(row.isNamespace, map.DoesNamespaceExist(row.text));
        EXPECT_EQ(row.isAlias, map.DoesAliasExist(row.text));
    }
}

TEST(CNamespaceAliasMap, RemoveErasesOnlyAnExistingNamespace) {
    CNamespaceAliasMap map;
    map.Add("a", "urn:a");
    map.Add("b", "urn:b");
    map.RemoveNamespace("urn:absent");
    EXPECT_EQ(2, map.GetNamespaceCount());
    map.RemoveNamespace("urn:a");
    EXPECT_EQ(std::vector<std::string>{"urn:b"}, Namespaces(map));
    KxTest::ExpectKxError<CKxException>([&] { map.GetNamespaceFromAlias("a"); },
                                        "Namespace alias [a] not found");
}

TEST(CNamespaceAliasMap, IndexOutsideTheEntriesIsRejected) {
    CNamespaceAliasMap map;
    map.Add("a", "urn:a");
    KxTest::ExpectKxError<CKxInvalidParamException>([&] { map.GetNamespaceAt(1); },
                                                    "Index 1 is out of range, use 0 - 1");
    KxTest::ExpectKxError<CKxInvalidParamException>([&] { map.GetNamespaceAt(-1); },
                                                    "Index -1 is out of range, use 0 - 1");
}
