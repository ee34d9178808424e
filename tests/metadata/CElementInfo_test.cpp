#include <string>

#include <gtest/gtest.h>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"
#include "FlatBindings.h"

using namespace KxXmlLib16;
using namespace KxXmlLib16Data;
using KxExamples::CLine;

namespace {

// An unrestricted string member record of kind R, with no format and no default.
template <typename R>
R Text(const char* name, const char* ns, int memberId,
       CWhitespaceUtils::WhitespaceRule rule = CWhitespaceUtils::WhitespaceRule_None) {
    return R(name, ns, memberId, false, ItemType_string, nullptr, rule, CPrimitiveRestrictions(),
             nullptr);
}

}  // namespace

TEST(CElementInfo, IsThisElementComparesNameAndNamespace) {
    CXmlDocument doc;
    doc.LoadXml("<r xmlns:n=\"urn:n\"><n:Note/><Note/><n:note/></r>");
    CXmlElement* qualified = doc.GetDocumentElement()->GetFirstElement();
    CXmlElement* local = qualified->GetNextSiblingElement();
    CXmlElement* lower = local->GetNextSiblingElement();
    CSerializationContext strict, loose;
    loose.SetIgnoreNamespaces(true);
    auto info = Text<CElementInfoSeqPrimOpt>("Note", "urn:n", 3,
                                             CWhitespaceUtils::WhitespaceRule_Preserve);
    struct Case { const char* name; const CXmlElement* element; const CSerializationContext* ctx;
                  bool expected; } cases[] = {
        {"same name and namespace", qualified, &strict, true},
        {"other namespace", local, &strict, false},
        {"other namespace ignored", local, &loose, true},
        {"name is case-sensitive", lower, &loose, false}, {"no element", nullptr, &loose, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(info.IsThisElement(*c.ctx, c.element), c.expected);
    }
}

TEST(CElementInfo, AnyDefaultNamespaceFollowsConstraint) {
    struct Case { const char* constraint; const char* defaultNs; const char* expected; } cases[] = {
        {"##any", "urn:d", "urn:d"}, {"##other", "", "DefaultNamespace"}, {"##other", "urn:d", ""},
        {"##local", "urn:d", ""}, {"##targetNamespace", "urn:d", "urn:t"},
        {"##other ##local", "", "DefaultNamespace"}, {"##targetNamespace urn:x", "", "urn:t"},
        {"urn:x", "urn:d", ""}, {"##", "urn:d", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.constraint);
        EXPECT_EQ(CElementInfo::GetAnyDefaultNamespace(c.constraint, c.defaultNs, "urn:t"),
                  c.expected);
    }
}

TEST(CElementInfo, MisuseMessages) {
    CElementInfoSeqPrimCol collection("Tag", "", 4);
    KxVariant value;
    value.SetI4(5);
    KxTest::ExpectKxError<CKxException>([&] { collection.CheckRestriction(value); },
                                        std::string("Cannot CheckRestriction for type: ") +
                                            value.GetType());
    CLine line;
    KxTest::ExpectKxError<CKxException>(
        [&] { collection.Validate(CSerializationContext(), &line, true, true); },
        "Not implemented, should never be called");
    auto unknown = Text<CElementInfoSeqPrimOpt>("X", "", 99);
    KxTest::ExpectKxError<CKxValidationException>(
        [&] { unknown.InvokePropertyGet(&line, value); },
        "Failed to get the property value for [X].");
}

TEST(CElementInfo, AllGroupValidation) {
    auto mandatory = Text<CElementInfoAllPrimMnd>("City", "", 1);
    auto optional = Text<CElementInfoAllPrimOpt>("Country", "", 2);
    CLine line;
    CSerializationContext ctx;
    EXPECT_TRUE(mandatory.Validate(ctx, &line, true, true));
    EXPECT_FALSE(mandatory.Validate(ctx, &line, false, false));
    EXPECT_TRUE(optional.Validate(ctx, &line, false, true));
    KxTest::ExpectKxError<CKxValidationException>(
        [&] { mandatory.Validate(ctx, &line, false, true); },
        "Failed to find the mandatory element [City].");
}

TEST(CElementInfo, ChoiceBranchLeavesCursorOnMismatch) {
    CXmlDocument doc;
    doc.LoadXml("<r><Card>c</Card><Invoice>i</Invoice></r>");
    CXmlElement* parent = doc.GetDocumentElement();
    CXmlElement* cursor = parent->GetFirstElement();
    auto invoice = Text<CElementInfoChoicePrimOpt>("Invoice", "", CLine::Id_Note);
    CLine line;
    CSerializationContext ctx;
    EXPECT_FALSE(invoice.ElementFromXml(ctx, &line, parent, &cursor, "", XmlElementType_Element));
    EXPECT_EQ(cursor, parent->GetFirstElement());
    cursor = cursor->GetNextSiblingElement();
    EXPECT_TRUE(invoice.ElementFromXml(ctx, &line, parent, &cursor, "", XmlElementType_Element));
    EXPECT_EQ(cursor, nullptr);
    EXPECT_EQ(line.m_note, "i");
}

TEST(CElementInfo, MandatoryMemberSkipsUnknownElementsOnlyWhenTolerant) {
    CXmlDocument doc;
    doc.LoadXml("<r><Junk/><Sku>s</Sku></r>");
    CXmlElement* parent = doc.GetDocumentElement();
    auto sku = Text<CElementInfoSeqPrimMnd>("Sku", "", CLine::Id_Sku);
    CLine line;
    CSerializationContext strict, tolerant;
    tolerant.SetIgnoreUnknownElements(true);
    CXmlElement* cursor = parent->GetFirstElement();
    KxTest::ExpectKxError<CKxValidationException>(
        [&] { sku.ElementFromXml(strict, &line, parent, &cursor, "", XmlElementType_Element); },
        "Failed to find the required child element [Sku].\nPath: /r");
    // A content-only class declines instead of failing.
    EXPECT_FALSE(sku.ElementFromXml(strict, &line, parent, &cursor, "", XmlElementType_Group));
    EXPECT_TRUE(sku.ElementFromXml(tolerant, &line, parent, &cursor, "", XmlElementType_Element));
    EXPECT_EQ(line.m_sku, "s");
    EXPECT_EQ(cursor, nullptr);
}

TEST(CElementInfo, DefaultValueIsWrittenAsDefaultAndReadForEmptyElement) {
    CLine line;
    line.FromXml("<Line xmlns=\"urn:bench:orders\" id=\"a\"><Sku>s</Sku><Quantity/></Line>");
    EXPECT_EQ(line.m_quantity, 1);  // the member's default
    const std::string written = line.ToXml(false, false);
    CSerializationContext ctx;
    ctx.SetWriteDefaultElementValues(true);
    EXPECT_EQ(written.find("<AA:Quantity>1</AA:Quantity>"), std::string::npos) << written;
    EXPECT_NE(line.ToXml(false, false, EOLType_LF, ctx).find("<AA:Quantity>1</AA:Quantity>"),
              std::string::npos);
}

TEST(CElementInfo, NilOnNonNillableMemberOnlyAcceptsFalse) {
    const char* xsi = " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"";
    CLine accepted;
    accepted.FromXml((std::string("<Line xmlns=\"urn:bench:orders\"") + xsi +
                      " id=\"a\"><Sku xsi:nil=\"false\">s</Sku><Quantity>2</Quantity></Line>")
                         .c_str());
    EXPECT_EQ(accepted.m_sku, "s");
    CLine rejected;
    try {
        rejected.FromXml((std::string("<Line xmlns=\"urn:bench:orders\"") + xsi +
                          " id=\"a\"><Sku xsi:nil=\"1\">s</Sku><Quantity>2</Quantity></Line>")
                             .c_str());
        ADD_FAILURE() << "nothing thrown";
    } catch (const CKxException& e) {
        EXPECT_EQ(e.GetMessage(),
                  "Invalid use of 'nil' attribute in non-nillable element.\nPath: /Line/Sku");
    }
}
