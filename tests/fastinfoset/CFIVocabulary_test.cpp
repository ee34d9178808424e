#include <string>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

const char* const kXmlNs = "http://www.w3.org/XML/1998/namespace";

std::vector<std::string> Strings(const CFIVocabulary::CFIStringTable& table) {
    return std::vector<std::string>(table.begin(), table.end());
}

std::vector<CQNameParts> Records(const CFIVocabulary::CFIQNameTable& table) {
    return std::vector<CQNameParts>(table.begin(), table.end());
}

// One string table seen through its add, find and list operations.
struct StringTableCase {
    const char* name;
    void (CFIVocabulary::*add)(const std::string&);
    bool (CFIVocabulary::*find)(const std::string&, unsigned long&) const;
    const CFIVocabulary::CFIStringTable& (CFIVocabulary::*list)() const;
    std::vector<std::string> builtIns;
};

const std::vector<StringTableCase>& StringTables() {
    static const std::vector<StringTableCase> tables = {
        {"prefix", &CFIVocabulary::AddPrefixName, &CFIVocabulary::FindPrefixNameIndex,
         &CFIVocabulary::GetPrefixNamesTable, {"xml"}},
        {"namespace", &CFIVocabulary::AddNamespaceName, &CFIVocabulary::FindNamespaceNameIndex,
         &CFIVocabulary::GetNamespaceNamesTable, {kXmlNs}},
        {"local name", &CFIVocabulary::AddLocalName, &CFIVocabulary::FindLocalNameIndex,
         &CFIVocabulary::GetLocalNamesTable, {}},
        {"attribute value", &CFIVocabulary::AddAttributeValue,
         &CFIVocabulary::FindAttributeValueIndex, &CFIVocabulary::GetAttributeValuesTable, {}},
        {"character chunk", &CFIVocabulary::AddElementValue,
         &CFIVocabulary::FindElementValueIndex, &CFIVocabulary::GetCharacterChunksTable, {}},
    };
    return tables;
}

}  // namespace

TEST(CFIVocabulary, FreshVocabularyHoldsOnlyTheXmlPrefixAndNamespace) {
    const CFIVocabulary vocabulary;
    for (const StringTableCase& table : StringTables()) {
        SCOPED_TRACE(table.name);
        EXPECT_EQ(table.builtIns, Strings((vocabulary.*table.list)()));
        for (size_t i = 0; i < table.builtIns.size(); ++i) {
            unsigned long index = 0;
            EXPECT_TRUE((vocabulary.*table.find)(table.builtIns[i], index));
            EXPECT_EQ(i + 1, index);
        }
    }
    EXPECT_STREQ(kXmlNs, CFIVocabulary::XmlNamespace);
    EXPECT_TRUE(vocabulary.GetElementNamesTable().empty());
    EXPECT_TRUE(vocabulary.GetAttributeNamesTable().empty());
    EXPECT_TRUE(vocabulary.GetElementNamesMap().empty());
    EXPECT_TRUE(vocabulary.GetAttributeNamesMap().empty());
}

TEST(CFIVocabulary, RepeatedTextsKeepTheFirstIndexWhileNewOnesTakeTheirListPosition) {
    for (const StringTableCase& table : StringTables()) {
        SCOPED_TRACE(table.name);
        CFIVocabulary vocabulary;
        (vocabulary.*table.add)("v");
        (vocabulary.*table.add)("v");
        (vocabulary.*table.add)("w");
        const unsigned long first = table.builtIns.size() + 1;
        unsigned long index = 0;
        EXPECT_TRUE((vocabulary.*table.find)("v", index));
        EXPECT_EQ(first, index);
        // "w" is numbered by its list position, as a reader that appends every literal does.
        EXPECT_TRUE((vocabulary.*table.find)("w", index));
        EXPECT_EQ(first + 2, index);
        const CFIVocabulary::CFIStringTable& list = (vocabulary.*table.list)();
        EXPECT_EQ(first + 2, list.size());
        ASSERT_NE(nullptr, list.At(first + 2));
        EXPECT_EQ("w", *list.At(first + 2));
        EXPECT_EQ(nullptr, list.At(0));
        EXPECT_EQ(nullptr, list.At(first + 3));
        index = 77;
        EXPECT_FALSE((vocabulary.*table.find)("x", index));
        EXPECT_EQ(77u, index);
    }
}

TEST(CFIVocabulary, QualifiedNamesAreEnteredWithTheirPartsIndexes) {
    struct Step {
        const char* prefix;
        const char* ns;
        const char* local;
        unsigned long expectedIndex;
        CQNameParts expectedParts;
    };
    const Step steps[] = {
        {"", "", "a", 1, CQNameParts(0, 0, 1)},
        {"p", "urn:p", "b", 2, CQNameParts(2, 2, 2)},
        {"q", "urn:p", "b", 3, CQNameParts(3, 2, 2)},  // differs only in prefix
        {"", "urn:p", "b", 4, CQNameParts(0, 2, 2)},
        {"xml", kXmlNs, "lang", 5, CQNameParts(1, 1, 3)},
        {"p", "urn:p", "b", 2, CQNameParts(2, 2, 2)},  // already there: nothing added
        {"", "", "b", 6, CQNameParts(0, 0, 2)},
    };
    using AddFn = void (CFIVocabulary::*)(const std::string&, const std::string&,
                                          const std::string&);
    using FindFn = bool (CFIVocabulary::*)(const std::string&, const std::string&,
                                           const std::string&, unsigned long&) const;
    struct Table {
        const char* name;
        AddFn add;
        FindFn find;
        const CFIVocabulary::CFIQNameTable& (CFIVocabulary::*list)() const;
        const CFIVocabulary::CFIQNameTable& (CFIVocabulary::*other)() const;
    };
    const Table tables[] = {
        {"element", &CFIVocabulary::AddElement, &CFIVocabulary::FindElementNameIndex,
         &CFIVocabulary::GetElementNamesTable, &CFIVocabulary::GetAttributeNamesTable},
        {"attribute", &CFIVocabulary::AddAttribute, &CFIVocabulary::FindAttributeNameIndex,
         &CFIVocabulary::GetAttributeNamesTable, &CFIVocabulary::GetElementNamesTable},
    };
    for (const Table& table : tables) {
        SCOPED_TRACE(table.name);
        CFIVocabulary vocabulary;
        for (const Step& step : steps) {
            SCOPED_TRACE(std::string(step.prefix) + ":" + step.local + " in " + step.ns);
            (vocabulary.*table.add)(step.prefix, step.ns, step.local);
            unsigned long index = 0;
            ASSERT_TRUE((vocabulary.*table.find)(step.prefix, step.ns, step.local, index));
            EXPECT_EQ(step.expectedIndex, index);
            const CQNameParts* parts = (vocabulary.*table.list)().At(index);
            ASSERT_NE(nullptr, parts);
            EXPECT_EQ(step.expectedParts, *parts);
        }
        EXPECT_EQ(6u, (vocabulary.*table.list)().size());
        EXPECT_TRUE((vocabulary.*table.other)().empty());
        EXPECT_EQ((std::vector<std::string>{"xml", "p", "q"}),
                  Strings(vocabulary.GetPrefixNamesTable()));
        EXPECT_EQ((std::vector<std::string>{kXmlNs, "urn:p"}),
                  Strings(vocabulary.GetNamespaceNamesTable()));
        EXPECT_EQ((std::vector<std::string>{"a", "b", "lang"}),
                  Strings(vocabulary.GetLocalNamesTable()));
    }
}

TEST(CFIVocabulary, QualifiedNameKeysSeparateThePartsWithByteOne) {
    EXPECT_EQ(std::string("loc\x01urn:n\x01p"), CFIVocabulary::QNameKey("p", "urn:n", "loc"));
    EXPECT_EQ(std::string("loc\x01\x01"), CFIVocabulary::QNameKey("", "", "loc"));

    // Names whose plain concatenation would coincide stay apart.
    CFIVocabulary vocabulary;
    vocabulary.AddElement("", "ab", "c");
    vocabulary.AddElement("", "a", "bc");
    vocabulary.AddElement("b", "a", "c");
    EXPECT_EQ(3u, vocabulary.GetElementNamesTable().size());
    unsigned long index = 0;
    EXPECT_TRUE(CFIVocabulary::FindIndex(vocabulary.GetElementNamesMap(),
                                         CFIVocabulary::QNameKey("", "a", "bc"), index));
    EXPECT_EQ(2u, index);
    EXPECT_FALSE(vocabulary.FindElementNameIndex("", "", "c", index));
}

TEST(CFIVocabulary, AppendingNameRecordsDoesNotLookThemUp) {
    CFIVocabulary vocabulary;
    vocabulary.AppendElementName(CQNameParts(0, 0, 1));
    vocabulary.AppendElementName(CQNameParts(0, 0, 1));
    vocabulary.AppendAttributeName(CQNameParts(1, 1, 2));
    EXPECT_EQ((std::vector<CQNameParts>{CQNameParts(0, 0, 1), CQNameParts(0, 0, 1)}),
              Records(vocabulary.GetElementNamesTable()));
    EXPECT_EQ((std::vector<CQNameParts>{CQNameParts(1, 1, 2)}),
              Records(vocabulary.GetAttributeNamesTable()));
    EXPECT_TRUE(vocabulary.GetElementNamesMap().empty());
    // A name entered later is numbered after the appended records.
    vocabulary.AddElement("", "", "x");
    unsigned long index = 0;
    EXPECT_TRUE(vocabulary.FindElementNameIndex("", "", "x", index));
    EXPECT_EQ(3u, index);
}

TEST(CFIVocabulary, FullTablesStopGrowingWithoutError) {
    const unsigned long max = CFIVocabulary::MaxTableSize;
    ASSERT_EQ(1048576u, max);
    CFIVocabulary vocabulary;
    for (unsigned long i = 1; i <= max; ++i) vocabulary.AddLocalName(std::to_string(i));
    unsigned long index = 0;
    EXPECT_TRUE(vocabulary.FindLocalNameIndex(std::to_string(max), index));
    EXPECT_EQ(max, index);

    vocabulary.AddLocalName("one more");
    EXPECT_FALSE(vocabulary.FindLocalNameIndex("one more", index));
    EXPECT_EQ(max, vocabulary.GetLocalNamesTable().size());
    EXPECT_EQ(max, vocabulary.GetLocalNamesMap().size());

    // A name whose local part no longer fits is still numbered (a reader appends every literal
    // name) but records its local part as absent; a known local part keeps its index.
    vocabulary.AddElement("", "", "one more");
    vocabulary.AddElement("", "", "7");
    EXPECT_EQ((std::vector<CQNameParts>{CQNameParts(0, 0, 0), CQNameParts(0, 0, 7)}),
              Records(vocabulary.GetElementNamesTable()));
}

TEST(CFIVocabulary, FullNameTablesStopGrowingWithoutError) {
    const unsigned long max = CFIVocabulary::MaxTableSize;
    CFIVocabulary vocabulary;
    for (unsigned long i = 0; i < max; ++i) vocabulary.AppendAttributeName(CQNameParts(0, 0, 1));
    vocabulary.AppendAttributeName(CQNameParts(0, 0, 2));
    vocabulary.AddAttribute("", "", "late");
    EXPECT_EQ(max, vocabulary.GetAttributeNamesTable().size());
    unsigned long index = 0;
    EXPECT_FALSE(vocabulary.FindAttributeNameIndex("", "", "late", index));
    EXPECT_EQ(CQNameParts(0, 0, 1), *vocabulary.GetAttributeNamesTable().At(max));
}

TEST(CQNameParts, EqualOnlyWhenAllThreeIndexesAre) {
    const CQNameParts parts(1, 2, 3);
    const CQNameParts others[] = {CQNameParts(9, 2, 3), CQNameParts(1, 9, 3),
                                  CQNameParts(1, 2, 9)};
    for (const CQNameParts& other : others) {
        SCOPED_TRACE(::testing::PrintToString(other));
        EXPECT_NE(parts, other);
    }
    EXPECT_EQ(CQNameParts(1, 2, 3), parts);
    EXPECT_EQ("(1, 2, 3)", ::testing::PrintToString(parts));
}
