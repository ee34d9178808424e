#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;
using namespace KxXmlLib16Data;

namespace {

const int kFailingMember = 99;

// A generated class reduced to its property accessor: member values live in a map, an absent
// entry reads as an invalid (unset) variant, and one member id rejects every access.
class Bag : public KxTest::Inert<CXmlGeneratedClass> {
public:
    CXmlObjectBase* Clone() const override { return new Bag(*this); }
    CParentElementInfo* GetClassInfo() const override { return nullptr; }
    CElementInfo** GetClassElementInfo() const override { return nullptr; }
    CAttributeInfo** GetClassAttributeInfo() const override { return nullptr; }
    void InvokeProperty(int memberId, bool get, KxVariant& value) override {
        if (memberId == kFailingMember) throw CKxInvalidValueException("rejected");
        if (get) {
            auto it = m_values.find(memberId);
            value = it == m_values.end() ? KxVariant() : it->second;
        } else {
            m_values[memberId] = value;
        }
    }
    std::string GetTargetNamespace() const override { return "urn:target"; }
    std::map<int, KxVariant> m_values;
};

// Records every attribute written, as "ns|name=value".
class AttributeSink : public CXmlWriter {
public:
    AttributeSink() : CXmlWriter("AttributeSink") {}
    void WriteComment(const std::string&) override {}
    void WritePI(const std::string&) override {}
    void WriteInlineSchema(const std::string&) override {}
    void WriteStartElement(const std::string&, const std::string&) override {}
    void WriteString(const std::string&, ItemType, bool) override {}
    void WriteEndElement() override {}
    void WriteAttributeString(const std::string& name, const std::string& ns,
                              const std::string& value, ItemType type) override {
        written.push_back(ns + "|" + name + "=" + value);
        types.push_back(type);
    }
    void WriteAttributeType(const std::string&, const std::string&, ItemType) override {}
    void WriteAttributeNil() override {}
    std::vector<std::string> written;
    std::vector<ItemType> types;
};

const char* ColourName(int value) {
    static const char* const names[] = {"red", "green", "blue"};
    return value >= 0 && value < 3 ? names[value] : "";
}
int ColourValue(const char* text) {
    const std::string s(text);
    return s == "red" ? 0 : s == "green" ? 1 : s == "blue" ? 2 : -1;
}

// The attribute of the document's root element with this local name and namespace.
CXmlAttribute* FindAttribute(CXmlDocument& doc, const std::string& name, const std::string& ns) {
    for (CXmlAttribute* a : doc.GetDocumentElement()->GetAttributes()) {
        if (a->GetLocalName() == name && a->GetNamespaceURI() == ns) return a;
    }
    return nullptr;
}

// A collapsed, unrestricted i4 attribute, as generated for an int member.
CAttributeInfoPrimitive I4Attribute(const char* name, const char* ns, int memberId,
                                    bool optional, const char* defaultValue) {
    return CAttributeInfoPrimitive(name, ns, memberId, optional, ItemType_i4, nullptr,
                                   CWhitespaceUtils::WhitespaceRule_Collapse,
                                   CPrimitiveRestrictions(), defaultValue);
}

// Checks that `sink` got nothing (expected == nullptr) or exactly `expected` of type `type`.
void ExpectWrittenAtMostOnce(const AttributeSink& sink, const char* expected, ItemType type) {
    if (expected == nullptr) {
        EXPECT_TRUE(sink.written.empty());
        return;
    }
    ASSERT_EQ(1u, sink.written.size());
    EXPECT_EQ(expected, sink.written[0]);
    EXPECT_EQ(type, sink.types[0]);
}

CSerializationContext Context(bool ignoreNamespaces, bool noDefaults) {
    CSerializationContext ctx;
    ctx.SetIgnoreNamespaces(ignoreNamespaces);
    ctx.SetNoOptionalAttributeDefaultOutput(noDefaults);
    return ctx;
}

}  // namespace

// Enumerated values are written as strings through the converter, under their namespace.
TEST(CAttributeInfo, OptionalUnsetAndDefaultValuesAreLeftOutOnlyWhenAllowed) {
    CAttributeInfoPrimitive optional = I4Attribute("size", "", 1, true, "7");
    CAttributeInfoPrimitive required = I4Attribute("size", "", 1, false, "7");
    CAttributeInfoEnum colour("colour", "urn:c", 1, true, ColourName, ColourValue, "red");
    struct Case {
        const char* label;
        CAttributeInfo* info;
        bool set;
        long value;
        bool noDefaults;
        const char* expected;  // nullptr: nothing written
    };
    const Case cases[] = {
        {"optional unset", &optional, false, 0, false, nullptr},
        {"optional equal to default, defaults kept", &optional, true, 7, false, "|size=7"},
        {"optional equal to default, defaults left out", &optional, true, 7, true, nullptr},
        {"optional other value, defaults left out", &optional, true, 8, true, "|size=8"},
        {"required equal to default, defaults left out", &required, true, 7, true, "|size=7"},
        {"enumerated other value", &colour, true, 1, true, "urn:c|colour=green"},
        {"enumerated default, defaults kept", &colour, true, 0, false, "urn:c|colour=red"},
        {"enumerated default, defaults left out", &colour, true, 0, true, nullptr},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.label);
        Bag bag;
        if (row.set) bag.m_values[1].SetI4(row.value);
        AttributeSink sink;
        row.info->AttributeToXml(Context(false, row.noDefaults), &bag, &sink);
        ExpectWrittenAtMostOnce(sink, row.expected,
                                row.info == &colour ? ItemType_string : ItemType_i4);
    }
}

TEST(CAttributeInfo, RequiredUnsetAttributeIsNotSkippedButHasNoText) {
    // A required attribute is never skipped: an unset member reaches the formatter, which has
    // no text for a variant without a value.
    CAttributeInfoPrimitive info = I4Attribute("size", "urn:a", 1, false, nullptr);
    Bag bag;
    AttributeSink sink;
    KxTest::ExpectKxError<CKxException>(
        [&] { info.AttributeToXml(CSerializationContext(), &bag, &sink); },
        "Invalid Type 0 to convert to string");
    EXPECT_TRUE(sink.written.empty());
}

TEST(CAttributeInfo, FacetsAreCheckedOnWritingButNotOnReading) {
    CAttributeInfoPrimitive info("size", "", 1, false, ItemType_i4, nullptr,
                                 CWhitespaceUtils::WhitespaceRule_Collapse,
                                 CPrimitiveRestrictions(nullptr, -1, -1, nullptr, "10", nullptr,
                                                        nullptr, -1, -1, -1),
                                 nullptr);
    CXmlDocument doc;
    doc.LoadXml("<r size='11'/>");
    Bag bag;
    EXPECT_TRUE(info.AttributeFromXml(CSerializationContext(), &bag,
                                      FindAttribute(doc, "size", "")));
    EXPECT_EQ(11, bag.m_values[1].GetI4());
    AttributeSink sink;
    EXPECT_THROW(info.AttributeToXml(CSerializationContext(), &bag, &sink), CKxException);
    EXPECT_TRUE(sink.written.empty());
}

TEST(CAttributeInfo, OnlyTheEnumeratedKindHonoursIgnoreNamespacesWhenReading) {
    CAttributeInfoPrimitive primitive("a", "", 1, true, ItemType_string, nullptr,
                                      CWhitespaceUtils::WhitespaceRule_Preserve,
                                      CPrimitiveRestrictions(), nullptr);
    CAttributeInfoEnum enumerated("a", "", 2, true, ColourName, ColourValue, nullptr);
    struct Case { const char* ns; bool ignoreNamespaces; bool primitiveAccepts; bool enumAccepts; };
    const Case cases[] = {
        {"", false, true, true}, {"", true, true, true}, {"urn:f", false, false, false},
        {"urn:f", true, false, true},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(std::string(row.ns) + (row.ignoreNamespaces ? " ignored" : " kept"));
        CXmlDocument doc;
        doc.LoadXml("<r xmlns:f='urn:f' a='blue' f:a='blue' b='blue'/>");
        const CSerializationContext ctx = Context(row.ignoreNamespaces, false);
        Bag bag;
        EXPECT_EQ(row.primitiveAccepts,
                  primitive.AttributeFromXml(ctx, &bag, FindAttribute(doc, "a", row.ns)));
        EXPECT_EQ(row.enumAccepts,
                  enumerated.AttributeFromXml(ctx, &bag, FindAttribute(doc, "a", row.ns)));
        EXPECT_FALSE(primitive.AttributeFromXml(ctx, &bag, FindAttribute(doc, "b", "")));
        EXPECT_FALSE(enumerated.AttributeFromXml(ctx, &bag, FindAttribute(doc, "b", "")));
        EXPECT_FALSE(enumerated.AttributeFromXml(ctx, &bag, nullptr));
        if (row.enumAccepts) {
            EXPECT_EQ(2, bag.m_values[2].GetI4());
        }
        if (row.primitiveAccepts) {
            EXPECT_EQ("blue", bag.m_values[1].ToString());
        }
    }
}

TEST(CAttributeInfo, MissingRequiredAttributesFailValidation) {
    CAttributeInfoPrimitive primitive = I4Attribute("id", "", 1, false, nullptr);
    CAttributeInfoEnum enumerated("colour", "", 2, false, ColourName, ColourValue, nullptr);
    CAttributeInfoAny any("any", "", 3, false, "##any", "", nullptr);
    const CSerializationContext ctx;
    KxTest::ExpectKxError<CKxValidationException>([&] { primitive.Validate(ctx, false); },
                                                  "Failed to find the required Attribute [id].");
    KxTest::ExpectKxError<CKxValidationException>(
        [&] { enumerated.Validate(ctx, false); },
        "Failed to find the required Attribute [colour].");
    EXPECT_NO_THROW(primitive.Validate(ctx, true));
    EXPECT_NO_THROW(any.Validate(ctx, false));
    CAttributeInfoPrimitive optional = I4Attribute("id", "", 1, true, nullptr);
    EXPECT_NO_THROW(optional.Validate(ctx, false));
}

TEST(CAttributeInfo, AccessorFailuresAreReportedWithTheirOwnWording) {
    CAttributeInfoPrimitive info = I4Attribute("size", "", kFailingMember, false, nullptr);
    CXmlDocument doc;
    doc.LoadXml("<r size=' 12 '/>");
    Bag bag;
    AttributeSink sink;
    KxTest::ExpectKxError<CKxValidationException>(
        [&] { info.AttributeToXml(CSerializationContext(), &bag, &sink); },
        "Failed to get the property value for [size].");
    CXmlAttribute* attribute = FindAttribute(doc, "size", "");
    KxTest::ExpectKxError<CKxValidationException>(
        [&] { info.AttributeFromXml(CSerializationContext(), &bag, attribute); },
        "Failed to set the property value [ 12 ].\nPath: /r/@size");
    try {
        info.AttributeFromXml(CSerializationContext(), &bag, attribute);
    } catch (const CKxException& e) {
        EXPECT_EQ(attribute->GetXPath(), e.GetPath());
        ASSERT_NE(nullptr, e.GetInnerException());
        EXPECT_EQ("rejected", e.GetInnerException()->GetMessage());
    }
}

TEST(CAttributeInfoAny, AcceptsOnlyNamespacesOfTheConstraintIntoTheCollection) {
    CAttributeInfoAny info("", "", 3, true, "##other", "urn:target", nullptr);
    CXmlDocument doc;
    doc.LoadXml("<r xmlns:t='urn:target' xmlns:o='urn:other' o:x='1' t:y='2' z='3'/>");
    Bag bag;
    CSmartPtr<CAttributeCol> collection(new CAttributeCol("", "##any", "urn:target"));
    bag.m_values[3].SetXmlCollection(collection);
    const CSerializationContext ctx;
    EXPECT_TRUE(info.AttributeFromXml(ctx, &bag, FindAttribute(doc, "x", "urn:other")));
    EXPECT_FALSE(info.AttributeFromXml(ctx, &bag, FindAttribute(doc, "y", "urn:target")));
    ASSERT_EQ(1, collection->GetCount());
    EXPECT_EQ("x", collection->Item(0)->GetName());
    EXPECT_EQ("1", collection->Item(0)->GetValue());
    EXPECT_EQ("urn:other", collection->Item(0)->GetNamespace());

    AttributeSink sink;
    info.AttributeToXml(ctx, &bag, &sink);
    ASSERT_EQ(1u, sink.written.size());
    EXPECT_EQ("urn:other|x=1", sink.written[0]);
    // Reading and writing hand back every reference they take: the test and the member only.
    EXPECT_EQ(2, collection->GetRefCount());
}

TEST(CAttributeInfoAny, RefusesAMemberThatIsNotAnAttributeCollection) {
    CAttributeInfoAny info("", "", 3, true, "##any", "", nullptr);
    CXmlDocument doc;
    doc.LoadXml("<r x='1'/>");
    Bag bag;
    bag.m_values[3].SetString("not a collection");
    KxTest::ExpectKxError<CKxException>(
        [&] { info.AttributeFromXml(CSerializationContext(), &bag, FindAttribute(doc, "x", "")); },
        "Serialization Data Error : The collection should be a CAttributeCol, it was not!");
}
