#include <string>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

const char* const kUnknownFirst =
    "The parser can only ignore additional elements, or ignore the fact that some required ones "
    "are missing, you can not ignore both\nSet IgnoreMissingMandatoryElements to false before "
    "setting IgnoreUnknownElements to true";
const char* const kMissingFirst =
    "The parser can only ignore additional elements, or ignore the fact that some required ones "
    "are missing, you can not ignore both\nSet IgnoreUnknownElements to false before setting "
    "IgnoreMissingMandatoryElements to true";
const char* const kIndentMessage =
    "IndentChars can only contain Whitespace characters, i.e. \\t or spaces";

struct BoolOption {
    const char* name;
    bool (CSerializationContext::*get)() const;
    void (CSerializationContext::*set)(bool);
    bool byDefault;
};

const BoolOption kBoolOptions[] = {
    {"WriteTypeAttribute", &CSerializationContext::GetWriteTypeAttribute,
     &CSerializationContext::SetWriteTypeAttribute, true},
    {"IgnoreInvalidCollectionCounts", &CSerializationContext::GetIgnoreInvalidCollectionCounts,
     &CSerializationContext::SetIgnoreInvalidCollectionCounts, false},
    {"IgnoreMissingChoice", &CSerializationContext::GetIgnoreMissingChoice,
     &CSerializationContext::SetIgnoreMissingChoice, false},
    {"IgnoreMissingMandatoryElements", &CSerializationContext::GetIgnoreMissingMandatoryElements,
     &CSerializationContext::SetIgnoreMissingMandatoryElements, false},
    {"IgnoreUnknownElements", &CSerializationContext::GetIgnoreUnknownElements,
     &CSerializationContext::SetIgnoreUnknownElements, false},
    {"IgnoreUnknownAttributes", &CSerializationContext::GetIgnoreUnknownAttributes,
     &CSerializationContext::SetIgnoreUnknownAttributes, false},
    {"IgnoreNamespaces", &CSerializationContext::GetIgnoreNamespaces,
     &CSerializationContext::SetIgnoreNamespaces, false},
    {"NoOptionalAttributeDefaultOutput",
     &CSerializationContext::GetNoOptionalAttributeDefaultOutput,
     &CSerializationContext::SetNoOptionalAttributeDefaultOutput, false},
    {"WriteDefaultElementValues", &CSerializationContext::GetWriteDefaultElementValues,
     &CSerializationContext::SetWriteDefaultElementValues, false},
    {"StripCDATA", &CSerializationContext::GetStripCDATA, &CSerializationContext::SetStripCDATA,
     true},
};

void ExpectDefaults(const CSerializationContext& ctx) {
    for (const BoolOption& option : kBoolOptions) {
        SCOPED_TRACE(option.name);
        EXPECT_EQ(option.byDefault, (ctx.*option.get)());
    }
    EXPECT_EQ("\t", ctx.GetIndentChars());
    EXPECT_EQ("", ctx.GetDefaultNamespaceURI());
    EXPECT_EQ("", ctx.GetInLineSchema());
    EXPECT_EQ(SchemaType_Default, ctx.GetSchemaType());
    EXPECT_EQ(0, ctx.GetNamespaceAliases().GetNamespaceCount());
    EXPECT_TRUE(ctx.GetProcessingInstructions().empty());
}

// Holds the reference GetAdditionalRootAttributes hands out.
CSmartPtr<CAttributeCol> RootAttributes(const CSerializationContext& ctx) {
    CAttributeCol* col = ctx.GetAdditionalRootAttributes();
    CSmartPtr<CAttributeCol> held(col);
    col->Release();
    return held;
}

}  // namespace

TEST(CSerializationContext, NewAndDefaultContextsHoldTheDefaults) {
    {
        SCOPED_TRACE("new context");
        ExpectDefaults(CSerializationContext());
    }
    {
        SCOPED_TRACE("m_defaultContext");
        ExpectDefaults(CSerializationContext::m_defaultContext);
    }
}

TEST(CSerializationContext, EachBooleanOptionIsStoredInItsOwnField) {
    for (const BoolOption& option : kBoolOptions) {
        SCOPED_TRACE(option.name);
        CSerializationContext ctx;
        (ctx.*option.set)(!option.byDefault);
        EXPECT_EQ(!option.byDefault, (ctx.*option.get)());
        for (const BoolOption& other : kBoolOptions) {
            if (&other != &option) {
                EXPECT_EQ(other.byDefault, (ctx.*other.get)()) << other.name;
            }
        }
        (ctx.*option.set)(option.byDefault);
        EXPECT_EQ(option.byDefault, (ctx.*option.get)());
    }
}

TEST(CSerializationContext, UnknownAndMissingElementsCannotBothBeIgnored) {
    CSerializationContext ctx;
    ctx.SetIgnoreMissingMandatoryElements(true);
    KxTest::ExpectKxError<CKxInvalidStateException>([&] { ctx.SetIgnoreUnknownElements(true); },
                                                    kUnknownFirst);
    EXPECT_FALSE(ctx.GetIgnoreUnknownElements());
    ctx.SetIgnoreUnknownElements(false);  // clearing is always allowed

    ctx.SetIgnoreMissingMandatoryElements(false);
    ctx.SetIgnoreUnknownElements(true);
    KxTest::ExpectKxError<CKxInvalidStateException>(
        [&] { ctx.SetIgnoreMissingMandatoryElements(true); }, kMissingFirst);
    EXPECT_FALSE(ctx.GetIgnoreMissingMandatoryElements());
    EXPECT_TRUE(ctx.GetIgnoreUnknownElements());
    ctx.SetIgnoreMissingMandatoryElements(false);
}

TEST(CSerializationContext, IndentCharsAcceptOnlySpacesAndTabs) {
    struct Case {
        const char* in;
        bool accepted;
        const char* stored;
    };
    const Case cases[] = {
        {"    ", true, "    "}, {"\t \t", true, "\t \t"}, {"", true, ""},
        {nullptr, true, ""},    {"ab", false, "  "},     {" \n", false, "  "},
        {"\r", false, "  "},    {" x ", false, "  "},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.in ? row.in : "(null)");
        CSerializationContext ctx;
        ctx.SetIndentChars("  ");
        if (row.accepted) {
            ctx.SetIndentChars(row.in);
        } else {
            KxTest::ExpectKxError<CKxInvalidParamException>([&] { ctx.SetIndentChars(row.in); },
                                                            kIndentMessage);
        }
        EXPECT_EQ(row.stored, ctx.GetIndentChars());
    }
}

TEST(CSerializationContext, SchemaWithoutNamespacesIgnoresNamespaces) {
    CSerializationContext ctx;
    ctx.SetSchemaType(SchemaType_NoNamespace);
    EXPECT_EQ(SchemaType_NoNamespace, ctx.GetSchemaType());
    EXPECT_TRUE(ctx.GetIgnoreNamespaces());
    ctx.SetSchemaType(SchemaType_Default);
    EXPECT_FALSE(ctx.GetIgnoreNamespaces());
}

TEST(CSerializationContext, NullStringsAreStoredAsEmpty) {
    CSerializationContext ctx;
    ctx.SetDefaultNamespaceURI("urn:d");
    ctx.SetInLineSchema("<xs:schema/>");
    ctx.SetDefaultNamespaceURI(nullptr);
    ctx.SetInLineSchema(nullptr);
    EXPECT_EQ("", ctx.GetDefaultNamespaceURI());
    EXPECT_EQ("", ctx.GetInLineSchema());
}

TEST(CSerializationContext, RootAttributesAreCreatedOnceEvenThroughAConstContext) {
    const CSerializationContext ctx;
    CAttributeCol* first = ctx.GetAdditionalRootAttributes();
    ASSERT_NE(nullptr, first);
    EXPECT_EQ(2, first->GetRefCount());  // the context's and ours
    EXPECT_EQ(0, first->GetCount());
    EXPECT_EQ("", first->GetNamespace());
    EXPECT_EQ("##any", first->GetNamespaceRule());

    CAttributeCol* second = ctx.GetAdditionalRootAttributes();
    EXPECT_EQ(first, second);
    EXPECT_EQ(3, first->GetRefCount());
    second->Release();
    first->Release();
}

TEST(CSerializationContext, CopiesShareTheRootAttributes) {
    CSerializationContext source;
    CSmartPtr<CAttributeCol> attributes = RootAttributes(source);
    attributes->Add("lang", "en", "urn:x");

    CSerializationContext copy(source);
    CSerializationContext assigned;
    assigned = source;
    EXPECT_EQ(attributes.Ptr(), RootAttributes(copy).Ptr());
    EXPECT_EQ(attributes.Ptr(), RootAttributes(assigned).Ptr());
    EXPECT_EQ(4, attributes->GetRefCount());  // three contexts and this test
}

TEST(CSerializationContext, CopiesOwnSeparateSubContexts) {
    CSerializationContext source;
    source.GetJsonContext()->SetSupportRoundtrip(RoundTrip_Simple);
    source.GetFIContext()->SetAttributeMaxAddLength(10);

    CSerializationContext copy(source);
    CSerializationContext assigned;
    assigned.GetJsonContext();  // replaced by the assignment, must not leak
    assigned = source;
    for (CSerializationContext* ctx : {&copy, &assigned}) {
        EXPECT_NE(source.GetJsonContext(), ctx->GetJsonContext());
        EXPECT_NE(source.GetFIContext(), ctx->GetFIContext());
        EXPECT_EQ(RoundTrip_Simple, ctx->GetJsonContext()->GetSupportRoundtrip());
        EXPECT_EQ(10u, ctx->GetFIContext()->GetAttributeMaxAddLength());
        ctx->GetJsonContext()->SetSupportRoundtrip(RoundTrip_None);
    }
    EXPECT_EQ(RoundTrip_Simple, source.GetJsonContext()->GetSupportRoundtrip());

    assigned = assigned;  // self-assignment keeps the sub-context alive
    EXPECT_EQ(RoundTrip_None, assigned.GetJsonContext()->GetSupportRoundtrip());
}

TEST(CSerializationContext, SubContextsAreCreatedOnceWithTheirDefaults) {
    const CSerializationContext ctx;
    CJsonContext* json = ctx.GetJsonContext();
    CFastInfosetContext* fi = ctx.GetFIContext();
    EXPECT_EQ(json, ctx.GetJsonContext());
    EXPECT_EQ(fi, ctx.GetFIContext());

    EXPECT_EQ(RoundTrip_Full, json->GetSupportRoundtrip());
    EXPECT_EQ("", json->GetRootElementName());
    EXPECT_TRUE(json->GetAllowComments());
    json->GetAllowComments(false);  // the setter bears the getter's name
    EXPECT_FALSE(json->GetAllowComments());
    // The Fast Infoset context's defaults are checked with that class.
    EXPECT_EQ(6u, fi->GetAttributeMaxAddLength());
}

TEST(CSerializationContext, CopiesDeepCopyAliasesAndInstructions) {
    CSerializationContext source;
    source.GetNamespaceAliases().Add("a", "urn:a");
    source.GetProcessingInstructions().push_back("xml-stylesheet href='s.xsl'");
    source.SetIndentChars("  ");
    source.SetSchemaType(SchemaType_NoNamespace);

    CSerializationContext copy(source);
    copy.GetNamespaceAliases().Add("b", "urn:b");
    copy.GetProcessingInstructions().clear();

    EXPECT_EQ(1, source.GetNamespaceAliases().GetNamespaceCount());
    EXPECT_EQ(std::vector<std::string>{"xml-stylesheet href='s.xsl'"},
              source.GetProcessingInstructions());
    EXPECT_EQ(2, copy.GetNamespaceAliases().GetNamespaceCount());
    EXPECT_EQ("  ", copy.GetIndentChars());
    EXPECT_EQ(SchemaType_NoNamespace, copy.GetSchemaType());
}
