// What the engine adds to a document's root element only: processing instructions, namespace
// declarations, extra attributes and an inline schema; and the xsi:type it writes for an object
// whose element name is not its class's.
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "ExampleDocuments.h"
#include "FlatBindings.h"
#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;
using KxExamples::CLine;
using KxExampleTest::MakeFlatLine;
namespace Data = KxXmlLib16Data;

namespace {

const char kXsi[] = "http://www.w3.org/2001/XMLSchema-instance";
const char kXmlNs[] = "http://www.w3.org/XML/1998/namespace";

typedef std::function<void(CSerializationContext&)> Options;

void AddRootAttribute(const CSerializationContext& ctx, const char* name, const char* value,
                      const char* ns) {
    CAttributeCol* attributes = ctx.GetAdditionalRootAttributes();
    attributes->Add(name, value, ns);
    attributes->Release();
}

// Every root-only option at once, for the checks that objects below the root ignore them.
void AllRootOptions(CSerializationContext& ctx) {
    ctx.GetProcessingInstructions().push_back("<?pi one?>");
    ctx.GetNamespaceAliases().Add("o", "urn:bench:orders");
    ctx.GetNamespaceAliases().Add("z", "urn:zz");
    ctx.SetDefaultNamespaceURI("urn:d");
    AddRootAttribute(ctx, "extra", "1", "");
    ctx.SetInLineSchema("<xs:schema/>");
}

// Writes `object` as a non-root element through a writer of its own, as a parent's record
// would, and returns the text.
std::string WriteBelowRoot(const CXmlObjectBase& object, const CSerializationContext& ctx) {
    CTextStream stream(XmlEncoding_UTF8);
    CXmlTextWriter writer(stream);
    writer.Open();
    writer.SetFormat(false);
    const std::string ns = object.GetNamespace();
    object.ToXml_Int(&writer, false, ns.c_str(), ctx, false);
    writer.Close();
    return stream.GetText();
}

// Class records for the type-attribute checks: the class "Base", with and without the flag.
Data::CParentElementInfo g_typedInNamespace(Data::XmlElementGroupType_Sequence,
                                            Data::XmlElementType_Element, "Base", "urn:t", true,
                                            true, -1, ItemType_Invalid, nullptr, false);
Data::CParentElementInfo g_typedNoNamespace(Data::XmlElementGroupType_Sequence,
                                            Data::XmlElementType_Element, "Base", "", true, true,
                                            -1, ItemType_Invalid, nullptr, false);
Data::CParentElementInfo g_untyped(Data::XmlElementGroupType_Sequence,
                                   Data::XmlElementType_Element, "Base", "urn:t", true, false, -1,
                                   ItemType_Invalid, nullptr, false);

// A generated class without members whose class record is chosen per test, written under an
// element name of the test's choice (as a derived type's object would be).
class CTyped : public CXmlGeneratedClass {
public:
    CTyped(Data::CParentElementInfo* info, const char* elementName) : m_info(info) {
        SetElementName(elementName);
    }
    CXmlObjectBase* Clone() const override { return new CTyped(*this); }
    Data::CParentElementInfo* GetClassInfo() const override { return m_info; }
    Data::CElementInfo** GetClassElementInfo() const override {
        static Data::CElementInfo* infos[] = {nullptr};
        return infos;
    }
    Data::CAttributeInfo** GetClassAttributeInfo() const override {
        static Data::CAttributeInfo* infos[] = {nullptr};
        return infos;
    }
    void InvokeProperty(int, bool, KxVariant&) override {}

private:
    Data::CParentElementInfo* m_info;
};

// <Holder xmlns="urn:h"> with one mandatory CLine child, to see the child written below a root.
class CHolder : public CXmlGeneratedClass {
public:
    CHolder() : m_line(new CLine(MakeFlatLine())) { SetElementName("Holder"); }
    CXmlObjectBase* Clone() const override { return new CHolder(); }
    Data::CParentElementInfo* GetClassInfo() const override {
        static Data::CParentElementInfo info(Data::XmlElementGroupType_Sequence,
                                             Data::XmlElementType_Element, "Holder", "urn:h",
                                             true, false, -1, ItemType_Invalid, nullptr, false);
        return &info;
    }
    Data::CElementInfo** GetClassElementInfo() const override {
        static Data::CElementInfoSeqClsMnd line("Line", "urn:bench:orders", 1,
                                                Data::XmlElementType_Element, nullptr, 0, false);
        static Data::CElementInfo* infos[] = {&line, nullptr};
        return infos;
    }
    Data::CAttributeInfo** GetClassAttributeInfo() const override {
        static Data::CAttributeInfo* infos[] = {nullptr};
        return infos;
    }
    void InvokeProperty(int, bool get, KxVariant& value) override {
        if (get) value.SetXmlObject(m_line);
    }

    CSmartPtr<CLine> m_line;
};

// <Item> in urn:u with an unqualified (no-namespace) optional member <Code>.
class CUnqualified : public CXmlGeneratedClass {
public:
    CUnqualified() { SetElementName("Item"); }
    CXmlObjectBase* Clone() const override { return new CUnqualified(*this); }
    Data::CParentElementInfo* GetClassInfo() const override {
        static Data::CParentElementInfo info(Data::XmlElementGroupType_Sequence,
                                             Data::XmlElementType_Element, "Item", "urn:u", true,
                                             false, -1, ItemType_Invalid, nullptr, false);
        return &info;
    }
    Data::CElementInfo** GetClassElementInfo() const override {
        static Data::CElementInfoSeqPrimOpt code("Code", "", 1, false, ItemType_string, nullptr,
                                                 CWhitespaceUtils::WhitespaceRule_Preserve,
                                                 CPrimitiveRestrictions(), nullptr);
        static Data::CElementInfo* infos[] = {&code, nullptr};
        return infos;
    }
    Data::CAttributeInfo** GetClassAttributeInfo() const override {
        static Data::CAttributeInfo* infos[] = {nullptr};
        return infos;
    }
    void InvokeProperty(int, bool get, KxVariant& value) override {
        if (get) {
            value.Clear();
            if (m_hasCode) value.SetString(m_code);
        } else {
            m_hasCode = value.IsValid() && !value.IsNil();
            m_code = m_hasCode ? value.GetString() : std::string();
        }
    }

    std::string m_code;
    bool m_hasCode = false;
};

const std::string kLineBody = "<AA:Sku>AB-1</AA:Sku><AA:Quantity>3</AA:Quantity></AA:Line>";

}  // namespace

TEST(CXmlGeneratedClass, RootCarriesTheContextsDocumentOptions) {
    struct Case {
        const char* name;
        Options options;
        std::string expected;
    };
    const std::string line = "<AA:Line xmlns:AA=\"urn:bench:orders\" id=\"L1\">" + kLineBody;
    const Case cases[] = {
        {"no options", [](CSerializationContext&) {}, line},
        {"processing instructions before the root, in order",
         [](CSerializationContext& ctx) {
             ctx.GetProcessingInstructions().push_back("<?pi one?>");
             ctx.GetProcessingInstructions().push_back("<?two?>");
         },
         "<?pi one?>\n\n<?two?>\n\n" + line},
        {"alias of the element's namespace names its prefix",
         [](CSerializationContext& ctx) { ctx.GetNamespaceAliases().Add("o", "urn:bench:orders"); },
         "<o:Line xmlns:o=\"urn:bench:orders\" id=\"L1\"><o:Sku>AB-1</o:Sku>"
         "<o:Quantity>3</o:Quantity></o:Line>"},
        {"other aliases are declared on the root in namespace order",
         [](CSerializationContext& ctx) {
             ctx.GetNamespaceAliases().Add("z", "urn:zz");
             ctx.GetNamespaceAliases().Add("a", "urn:aa");
         },
         "<AA:Line xmlns:AA=\"urn:bench:orders\" xmlns:a=\"urn:aa\" xmlns:z=\"urn:zz\" id=\"L1\">" +
             kLineBody},
        {"default namespace equal to the element's",
         [](CSerializationContext& ctx) { ctx.SetDefaultNamespaceURI("urn:bench:orders"); },
         "<Line xmlns=\"urn:bench:orders\" id=\"L1\"><Sku>AB-1</Sku><Quantity>3</Quantity>"
         "</Line>"},
        {"default namespace other than the element's",
         [](CSerializationContext& ctx) { ctx.SetDefaultNamespaceURI("urn:other"); },
         "<AA:Line xmlns:AA=\"urn:bench:orders\" xmlns=\"urn:other\" id=\"L1\">" +
             kLineBody},
        {"default namespace and an alias of the same namespace",
         [](CSerializationContext& ctx) {
             ctx.SetDefaultNamespaceURI("urn:bench:orders");
             ctx.GetNamespaceAliases().Add("o", "urn:bench:orders");
         },
         "<Line xmlns=\"urn:bench:orders\" xmlns:o=\"urn:bench:orders\" id=\"L1\"><Sku>AB-1</Sku>"
         "<Quantity>3</Quantity></Line>"},
        {"additional attributes come before the object's own",
         [](CSerializationContext& ctx) {
             AddRootAttribute(ctx, "extra", "a<b", "");
             AddRootAttribute(ctx, "lang", "en", kXmlNs);
             AddRootAttribute(ctx, "x", "1", "urn:x");
         },
         "<AA:Line xmlns:AA=\"urn:bench:orders\" extra=\"a&lt;b\" xml:lang=\"en\" "
         "xmlns:AB=\"urn:x\" AB:x=\"1\" id=\"L1\"><AA:Sku>AB-1</AA:Sku>"
         "<AA:Quantity>3</AA:Quantity></AA:Line>"},
        {"additional attribute in an aliased namespace",
         [](CSerializationContext& ctx) {
             ctx.GetNamespaceAliases().Add("x", "urn:x");
             AddRootAttribute(ctx, "x", "1", "urn:x");
         },
         "<AA:Line xmlns:AA=\"urn:bench:orders\" xmlns:x=\"urn:x\" x:x=\"1\" id=\"L1\">" +
             kLineBody},
        {"inline schema after the attributes, inside the start tag",
         [](CSerializationContext& ctx) { ctx.SetInLineSchema("<xs:schema/>"); },
         "<AA:Line xmlns:AA=\"urn:bench:orders\" id=\"L1\" \n<xs:schema/>\n>" + kLineBody},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        CSerializationContext ctx;
        row.options(ctx);
        EXPECT_EQ(row.expected, MakeFlatLine().ToXml(false, false, EOLType_LF, ctx));
    }
}

TEST(CXmlGeneratedClass, RootOptionsFollowTheHeaderInFormattedOutput) {
    CSerializationContext ctx;
    ctx.GetProcessingInstructions().push_back("<?pi?>");
    ctx.GetNamespaceAliases().Add("o", "urn:bench:orders");
    AddRootAttribute(ctx, "extra", "1", "");
    EXPECT_EQ(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<?pi?>\n\n"
        "<o:Line xmlns:o=\"urn:bench:orders\" extra=\"1\" id=\"L1\">\n"
        "\t<o:Sku>AB-1</o:Sku>\n\t<o:Quantity>3</o:Quantity>\n</o:Line>\n",
        MakeFlatLine().ToXml(true, true, EOLType_LF, ctx));
}

TEST(CXmlGeneratedClass, TypeAttributeNamesTheClassOfAnObjectWithAnotherElementName) {
    struct Case {
        const char* name;
        Data::CParentElementInfo* info;
        const char* elementName;
        Options options;
        const char* expected;
    };
    const Options none = [](CSerializationContext&) {};
    const Case cases[] = {
        {"other element name", &g_typedInNamespace, "Derived", none,
         "<AA:Derived xmlns:AA=\"urn:t\" xmlns:AB=\"http://www.w3.org/2001/XMLSchema-instance\" "
         "AB:type=\"AA:Base\"/>"},
        {"the class's own element name", &g_typedInNamespace, "Base", none,
         "<AA:Base xmlns:AA=\"urn:t\"/>"},
        {"type attributes switched off in the context", &g_typedInNamespace, "Derived",
         [](CSerializationContext& ctx) { ctx.SetWriteTypeAttribute(false); },
         "<AA:Derived xmlns:AA=\"urn:t\"/>"},
        {"class without the type flag", &g_untyped, "Derived", none,
         "<AA:Derived xmlns:AA=\"urn:t\"/>"},
        {"class in no namespace", &g_typedNoNamespace, "Derived", none,
         "<Derived xmlns:AA=\"http://www.w3.org/2001/XMLSchema-instance\" AA:type=\"Base\"/>"},
        {"aliases for the class and instance namespaces", &g_typedInNamespace, "Derived",
         [](CSerializationContext& ctx) {
             ctx.GetNamespaceAliases().Add("t", "urn:t");
             ctx.GetNamespaceAliases().Add("xsi", kXsi);
         },
         "<t:Derived xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xmlns:t=\"urn:t\" "
         "xsi:type=\"t:Base\"/>"},
        {"class namespace as the default namespace", &g_typedInNamespace, "Derived",
         [](CSerializationContext& ctx) {
             ctx.SetDefaultNamespaceURI("urn:t");
             ctx.GetNamespaceAliases().Add("xsi", kXsi);
         },
         "<Derived xmlns=\"urn:t\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
         "xsi:type=\"Base\"/>"},
        // A declared default namespace would capture both the element and the unprefixed type.
        {"class in no namespace under a default namespace", &g_typedNoNamespace, "Derived",
         [](CSerializationContext& ctx) {
             ctx.SetDefaultNamespaceURI("urn:d");
             ctx.GetNamespaceAliases().Add("xsi", kXsi);
         },
         "<Derived xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xsi:type=\"Base\"/>"},
        {"after the additional root attributes", &g_typedInNamespace, "Derived",
         [](CSerializationContext& ctx) {
             ctx.GetNamespaceAliases().Add("xsi", kXsi);
             AddRootAttribute(ctx, "extra", "1", "");
         },
         "<AA:Derived xmlns:AA=\"urn:t\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
         "extra=\"1\" xsi:type=\"AA:Base\"/>"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        CSerializationContext ctx;
        row.options(ctx);
        EXPECT_EQ(row.expected,
                  CTyped(row.info, row.elementName).ToXml(false, false, EOLType_LF, ctx));
    }
}

TEST(CXmlGeneratedClass, ObjectBelowTheRootIgnoresTheRootOptions) {
    CSerializationContext ctx;
    AllRootOptions(ctx);
    EXPECT_EQ("<AA:Line xmlns:AA=\"urn:bench:orders\" id=\"L1\">" + kLineBody,
              WriteBelowRoot(MakeFlatLine(), ctx));
    // The type attribute is not a root option: it goes on whichever element needs it.
    EXPECT_EQ("<AA:Derived xmlns:AA=\"urn:t\" "
              "xmlns:AB=\"http://www.w3.org/2001/XMLSchema-instance\" AB:type=\"AA:Base\"/>",
              WriteBelowRoot(CTyped(&g_typedInNamespace, "Derived"), ctx));
}

TEST(CXmlGeneratedClass, ChildObjectGetsNoneOfTheRootOptions) {
    CSerializationContext ctx;
    AllRootOptions(ctx);
    EXPECT_EQ(
        "<?pi one?>\n\n"
        "<AA:Holder xmlns:AA=\"urn:h\" xmlns=\"urn:d\" xmlns:o=\"urn:bench:orders\" "
        "xmlns:z=\"urn:zz\" extra=\"1\" \n<xs:schema/>\n>"
        "<o:Line id=\"L1\"><o:Sku>AB-1</o:Sku><o:Quantity>3</o:Quantity></o:Line></AA:Holder>",
        CHolder().ToXml(false, false, EOLType_LF, ctx));
}

TEST(CXmlGeneratedClass, UnqualifiedMemberReadsBackUnderTheDefaultNamespace) {
    struct Case {
        const char* defaultNamespace;
        const char* expected;
    };
    const Case cases[] = {
        {"", "<AA:Item xmlns:AA=\"urn:u\"><Code>c1</Code></AA:Item>"},
        {"urn:u", "<Item xmlns=\"urn:u\"><Code xmlns=\"\">c1</Code></Item>"},
        {"urn:other", "<AA:Item xmlns:AA=\"urn:u\" xmlns=\"urn:other\"><Code xmlns=\"\">c1</Code>"
                      "</AA:Item>"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.defaultNamespace);
        CSerializationContext ctx;
        ctx.SetDefaultNamespaceURI(row.defaultNamespace);
        CUnqualified item;
        item.m_code = "c1";
        item.m_hasCode = true;
        const std::string xml = item.ToXml(false, false, EOLType_LF, ctx);
        EXPECT_EQ(row.expected, xml);
        CUnqualified copy;
        copy.FromXml(xml.c_str());
        EXPECT_TRUE(copy.m_hasCode);
        EXPECT_EQ("c1", copy.m_code);
    }
}
