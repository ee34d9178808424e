#include <string>

#include <gtest/gtest.h>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"
#include "ExampleDocuments.h"
#include "FlatBindings.h"

using namespace KxXmlLib16;
using KxExamples::CAddress;
using KxExamples::CLine;
using KxExampleTest::MakeFlatLine;
using KxExamples::CPayment;

namespace {

std::string Compact(const CXmlObjectBase& object) { return object.ToXml(false, false); }

}  // namespace

const char* const kNs = " xmlns:AA=\"urn:bench:orders\"";

// Reads `xml` into `object` and returns the caught exception's message, path and full message
// ("" when reading succeeded).
struct ReadResult {
    std::string message, path, full;
};
ReadResult ReadError(CXmlObjectBase& object, const std::string& xml,
                     const CSerializationContext& ctx = CSerializationContext()) {
    try {
        object.FromXml(xml.c_str(), ctx);
    } catch (const CKxException& e) {
        return {e.GetMessage(), e.GetPath(), e.GetFullMessage()};
    }
    return {};
}

TEST(CXmlGeneratedClass, WritesMembersInSchemaOrderAndReadsThemBack) {
    CLine line = MakeFlatLine(nullptr, {"red", "big"});
    EXPECT_EQ(Compact(line),
              std::string("<AA:Line") + kNs +
                  " id=\"L1\"><AA:Sku>AB-1</AA:Sku><AA:Quantity>3</AA:Quantity>"
                  "<AA:Tag>red</AA:Tag><AA:Tag>big</AA:Tag></AA:Line>");
    line.m_note = "a < b";
    line.m_hasNote = true;
    const std::string xml = Compact(line);
    EXPECT_NE(xml.find("<AA:Note>a &lt; b</AA:Note>"), std::string::npos);
    CLine copy;
    copy.FromXml(xml.c_str());
    EXPECT_TRUE(KxExampleTest::SameFlatLine(line, copy));
    EXPECT_EQ(Compact(copy), xml);
    line.m_quantityNil = true;
    EXPECT_NE(Compact(line).find("nil=\"true\""), std::string::npos);
}

TEST(CXmlGeneratedClass, WritingWrapsMemberFailureWithElementName) {
    CLine line = MakeFlatLine(nullptr, {"red", "big"});
    line.m_hasSku = false;
    KxTest::ExpectKxError<CKxValidationException>([&] { Compact(line); },
                                                  "Failed to convert the element [Line] to XML");
    try {
        Compact(line);
    } catch (const CKxException& e) {
        ASSERT_NE(e.GetInnerException(), nullptr);
        EXPECT_EQ(e.GetInnerException()->GetMessage(),
                  "The Property [Sku] is mandatory, it may not be NULL");
    }
    line.m_hasSku = true;
    line.m_sku = "much-too-long";  // the maxLength facet is 8
    KxTest::ExpectKxError<CKxValidationException>([&] { Compact(line); },
                                                  "Failed to convert the element [Line] to XML");
}

TEST(CXmlGeneratedClass, ReadingFailuresCarryMessageAndPath) {
    const std::string open = std::string("<Line xmlns=\"urn:bench:orders\" id=\"L1\">");
    struct Case {
        const char* name;
        std::string xml;
        const char* message;
        const char* path;
    } cases[] = {
        {"leftover element", open + "<Sku>a</Sku><Quantity>1</Quantity><Extra/></Line>",
         "Failed read all the elements held within the element [Line]. The unexpected element "
         "[Extra] remains un processed",
         "/Line"},
        {"missing mandatory", open + "<Quantity>1</Quantity></Line>",
         "Failed to find the required child element [Sku].", "/Line"},
        {"unknown attribute",
         "<Line xmlns=\"urn:bench:orders\" id=\"L1\" bad=\"1\"><Sku>a</Sku><Quantity>1</Quantity>"
         "</Line>",
         "Unexpected Attribute found.", "/Line/@bad"},
        {"nil on strict non-nillable class",
         "<Line xmlns=\"urn:bench:orders\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
         "id=\"L1\" xsi:nil=\"true\"><Sku>a</Sku><Quantity>1</Quantity></Line>",
         "Invalid use of 'nil' attribute in non-nillable element.", "/Line"},
        {"bad nil value on member",
         open + "<Sku>a</Sku><Quantity xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
                "xsi:nil=\"yes\"/></Line>",
         "Unexpected Value [yes] for 'nil' Attribute found.", "/Line/Quantity/xsi:@nil"},
        {"setter failure on conversion", open + "<Sku>a</Sku><Quantity>x</Quantity></Line>",
         "Failed to process the element.", "/Line"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        CLine line;
        ReadResult r = ReadError(line, c.xml);
        EXPECT_EQ(r.message, std::string(c.message) + "\nPath: " + c.path);
        EXPECT_EQ(r.path, c.path);
    }
}

TEST(CXmlGeneratedClass, InnerPathIsPassedOnAsPlainException) {
    CLine line;
    KxTest::ExpectKxError<CKxException>(
        [&] {
            line.FromXml("<Line xmlns=\"urn:bench:orders\" id=\"L1\" bad=\"1\"><Sku>a</Sku>"
                         "<Quantity>1</Quantity></Line>");
        },
        "Unexpected Attribute found.\nPath: /Line/@bad");
}

TEST(CXmlGeneratedClass, ToleranceOptionsRelaxReading) {
    const std::string open = std::string("<Line xmlns=\"urn:bench:orders\" id=\"L1\">");
    CSerializationContext ctx;
    ctx.SetIgnoreUnknownElements(true);
    ctx.SetIgnoreUnknownAttributes(true);
    CLine line;
    EXPECT_EQ(ReadError(line,
                        "<Line xmlns=\"urn:bench:orders\" id=\"L1\" bad=\"1\"><Junk/><Sku>a</Sku>"
                        "<Quantity>1</Quantity><Extra/></Line>",
                        ctx)
                  .message,
              "");
    EXPECT_EQ(line.m_sku, "a");

    CSerializationContext lenient;
    lenient.SetIgnoreMissingMandatoryElements(true);
    CLine partial;
    EXPECT_EQ(ReadError(partial, open + "<Quantity>2</Quantity></Line>", lenient).message, "");
    EXPECT_FALSE(partial.m_hasSku);
    EXPECT_EQ(partial.m_quantity, 2);
}

TEST(CXmlGeneratedClass, NilMemberIsReadCaseInsensitively) {
    CLine line;
    line.FromXml("<Line xmlns=\"urn:bench:orders\" xmlns:xsi=\"http://www.w3.org/2001/"
                 "XMLSchema-instance\" id=\"L1\"><Sku>a</Sku><Quantity xsi:nil=\"TRUE\"/>"
                 "<Note>n</Note></Line>");
    EXPECT_FALSE(line.m_hasQuantity);
    EXPECT_EQ(line.m_note, "n");
}

TEST(CXmlGeneratedClass, RequiredAttributeMissingFails) {
    CLine line;
    ReadResult r = ReadError(line, "<Line xmlns=\"urn:bench:orders\"><Sku>a</Sku>"
                                   "<Quantity>1</Quantity></Line>");
    EXPECT_EQ(r.path, "/Line");
    EXPECT_NE(r.full.find("Failed to find the required Attribute [id]."), std::string::npos);
}

// A choice whose two branches are repeated members with at least one item each, so that no
// branch may be empty (written here in the generated shape).
class CCodes : public CXmlGeneratedClass {
public:
    CCodes()
        : m_code(new CstringCol("Code", "", 1, -1)), m_label(new CstringCol("Label", "", 1, -1)) {
        SetElementName("Codes");
    }
    CXmlObjectBase* Clone() const override { return new CCodes(); }
    KxXmlLib16Data::CParentElementInfo* GetClassInfo() const override {
        static KxXmlLib16Data::CParentElementInfo info(
            KxXmlLib16Data::XmlElementGroupType_Choice, KxXmlLib16Data::XmlElementType_Element,
            "Codes", "", true, false, -1, ItemType_Invalid, nullptr, false);
        return &info;
    }
    KxXmlLib16Data::CElementInfo** GetClassElementInfo() const override {
        static KxXmlLib16Data::CElementInfoChoicePrimCol code("Code", "", 1);
        static KxXmlLib16Data::CElementInfoChoicePrimCol label("Label", "", 2);
        static KxXmlLib16Data::CElementInfo* infos[] = {&code, &label, nullptr};
        return infos;
    }
    KxXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const override {
        static KxXmlLib16Data::CAttributeInfo* infos[] = {nullptr};
        return infos;
    }
    void InvokeProperty(int memberId, bool, KxVariant& value) override {
        value.SetXmlCollection(memberId == 1 ? m_code : m_label);
    }
    CSmartPtr<CstringCol> m_code, m_label;
};

TEST(CXmlGeneratedClass, ChoiceWritesAndReadsOneBranch) {
    CPayment payment;
    EXPECT_EQ(Compact(payment), std::string("<AA:Payment") + kNs + "/>");  // branches optional
    payment.m_invoice = "INV-9";
    payment.m_hasInvoice = true;
    const std::string xml = Compact(payment);
    EXPECT_EQ(xml,
              std::string("<AA:Payment") + kNs + "><AA:Invoice>INV-9</AA:Invoice></AA:Payment>");
    CPayment copy;
    copy.FromXml(xml.c_str());
    EXPECT_FALSE(copy.m_hasCard);
    EXPECT_EQ(copy.m_invoice, "INV-9");

    CPayment twice;
    EXPECT_EQ(ReadError(twice, "<Payment xmlns=\"urn:bench:orders\"><Card>1</Card><Card>2</Card>"
                               "</Payment>")
                  .full,
              "Failed read all the elements held within the element [Payment]. The unexpected "
              "element [Card] remains un processed\nPath: /Payment");
}

TEST(CXmlGeneratedClass, ChoiceWithoutEmptyBranchRequiresOne) {
    CCodes codes;
    KxTest::ExpectKxError<CKxValidationException>([&] { Compact(codes); },
                                                  "Failed to convert the element [Codes] to XML");
    CSerializationContext ctx;
    ctx.SetIgnoreMissingChoice(true);
    EXPECT_EQ(codes.ToXml(false, false, EOLType_LF, ctx), "<Codes/>");
    codes.m_label->Add("x");
    EXPECT_EQ(Compact(codes), "<Codes><Label>x</Label></Codes>");

    CCodes read;
    EXPECT_EQ(ReadError(read, "<Codes><Other/></Codes>").message,
              "No child elements within the element [Codes] were populated. The element "
              "represents a choice, so one and only one element should be populated. The "
              "element contained no sutable child elements\nPath: /Codes");
    CCodes lenient;
    EXPECT_EQ(ReadError(lenient, "<Codes/>", ctx).message, "");
    CCodes good;
    good.FromXml("<Codes><Code>a</Code><Code>b</Code></Codes>");
    EXPECT_EQ(good.m_code->GetCount(), 2);
    EXPECT_EQ(good.m_label->GetCount(), 0);
}

TEST(CXmlGeneratedClass, AllGroupAcceptsAnyOrderAndChecksMandatoryMembers) {
    struct Case {
        const char* body;
        const char* message;  // "" for success
    } cases[] = {
        {"<City>c</City><Country>x</Country><Street>s</Street>", ""},
        {"<Street>s</Street><City>c</City>", ""},
        {"<Country>x</Country><Street>s</Street>", "Failed to find the mandatory element [City]."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.body);
        CAddress address;
        ReadResult r = ReadError(
            address, std::string("<Address xmlns=\"urn:bench:orders\">") + c.body + "</Address>");
        if (*c.message == 0) {
            EXPECT_EQ(r.message, "");
            EXPECT_EQ(address.m_street, "s");
        } else {
            EXPECT_NE(r.full.find(c.message), std::string::npos) << r.full;
        }
    }
}

TEST(CXmlGeneratedClass, MetadataHelpers) {
    CLine line;
    EXPECT_EQ(line.GetClassElementInfoCount(), 4);
    EXPECT_EQ(line.GetNamespace(), "urn:bench:orders");
    CPayment payment;
    EXPECT_FALSE(CLine().DoesElementContainOptionalElements());
    EXPECT_TRUE(payment.DoesElementContainOptionalElements());
}
