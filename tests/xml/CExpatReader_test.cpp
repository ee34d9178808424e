// The expat reader, driven through CXmlDocument (the reader itself is internal).
#include <chrono>
#include <clocale>
#include <cstdio>
#include <string>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

const unsigned char* Bytes(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

unsigned long Length(const std::string& text) { return static_cast<unsigned long>(text.size()); }

class ScopedAsciiOnly {
public:
    ScopedAsciiOnly() { ASCIIOnly(true); }
    ~ScopedAsciiOnly() { ASCIIOnly(false); }
};

// Depth-first search by local name.
const CXmlElement* Find(const CXmlElement* element, const std::string& localName) {
    if (element == nullptr || element->GetLocalName() == localName) return element;
    for (const CXmlElement* c = element->GetFirstElement(); c; c = c->GetNextSiblingElement()) {
        if (const CXmlElement* found = Find(c, localName)) return found;
    }
    return nullptr;
}

std::string Names(const CXmlElement* element) {
    std::string names;
    for (const CXmlAttribute* a : element->GetAttributes()) {
        names += "{" + a->GetNamespaceURI() + "}" + a->GetLocalName() + "=" + a->GetValue() + ";";
    }
    return names;
}

void WriteFile(const std::string& path, const std::string& bytes) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    ASSERT_NE(nullptr, file) << path;
    std::fwrite(bytes.data(), 1, bytes.size(), file);
    std::fclose(file);
}

}  // namespace

TEST(CExpatReader, ResolvesNamesToLocalNameAndNamespace) {
    struct Case {
        const char* xml;
        const char* element;
        const char* ns;
        const char* attributes;
    };
    const Case cases[] = {
        {"<a xmlns='urn:x'><b/></a>", "a", "urn:x", ""},
        {"<a xmlns='urn:x'><b/></a>", "b", "urn:x", ""},
        {"<p:item xmlns:p='urn:p'/>", "item", "urn:p", ""},
        {"<a xmlns='urn:x' xmlns:p='urn:p' id='1' p:id='2'/>", "a", "urn:x", "{}id=1;{urn:p}id=2;"},
        {"<a xmlns='urn:x'><b xmlns=''/></a>", "b", "", ""},
        {"<a xmlns:p='urn:1'><p:b xmlns:p='urn:2'/><p:c/></a>", "b", "urn:2", ""},
        {"<a xmlns:p='urn:1'><p:b xmlns:p='urn:2'/><p:c/></a>", "c", "urn:1", ""},
        {"<a xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:nil='true'/>", "a", "",
         "{http://www.w3.org/2001/XMLSchema-instance}nil=true;"},
        {"<a xml:lang='en'/>", "a", "", "{http://www.w3.org/XML/1998/namespace}lang=en;"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(testing::Message() << row.xml << " / " << row.element);
        CXmlDocument doc;
        doc.LoadXml(row.xml);
        const CXmlElement* element = Find(doc.GetDocumentElement(), row.element);
        ASSERT_NE(nullptr, element);
        EXPECT_EQ(row.ns, element->GetNamespaceURI());
        EXPECT_EQ(row.attributes, Names(element));
    }
}

TEST(CExpatReader, NamespaceDeclarationsFillTheDocumentWidePrefixMap) {
    CXmlDocument doc;
    doc.LoadXml(
        "<a xmlns='urn:x' xmlns:p='urn:1'><b xmlns:p='urn:2' xmlns:q='urn:q'/>"
        "<c xmlns=''/></a>");
    // Later bindings of a prefix replace earlier ones, and nothing is unbound at end tags.
    const CXmlDocument::PrefixMap expected = {{"", ""}, {"p", "urn:2"}, {"q", "urn:q"}};
    EXPECT_EQ(expected, doc.GetPrefixMap());

    CXmlDocument simple;
    simple.LoadXml("<a xmlns='urn:x'><b/></a>");
    const CXmlDocument::PrefixMap defaultOnly = {{"", "urn:x"}};
    EXPECT_EQ(defaultOnly, simple.GetPrefixMap());
}

TEST(CExpatReader, StripCDATASelectsBareContentOrMarkers) {
    struct Case {
        const char* xml;
        bool strip;
        const char* text;
    };
    const Case cases[] = {
        {"<a><![CDATA[x<y&z]]></a>", true, "x<y&z"},
        {"<a><![CDATA[x<y&z]]></a>", false, "<![CDATA[x<y&z]]>"},
        {"<a>1<![CDATA[2]]>3</a>", false, "1<![CDATA[2]]>3"},
        {"<a><![CDATA[]]></a>", false, "<![CDATA[]]>"},
        {"<a><![CDATA[]]></a>", true, ""},
        {"<a><![CDATA[l1\r\nl2]]></a>", false, "<![CDATA[l1\nl2]]>"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(testing::Message() << row.xml << (row.strip ? " stripped" : " kept"));
        CSerializationContext context;
        context.SetStripCDATA(row.strip);
        CXmlDocument doc(context);
        doc.LoadXml(row.xml);
        EXPECT_EQ(row.text, doc.GetDocumentElement()->GetText());
    }
}

TEST(CExpatReader, SchemaTypeWithoutNamespacesKeepsNamesWhole) {
    CSerializationContext context;
    context.SetSchemaType(SchemaType_NoNamespace);
    CXmlDocument doc(context);
    doc.LoadXml("<p:item xmlns:p='urn:p' p:code='1' plain='2'><q:child/></p:item>");
    const CXmlElement* root = doc.GetDocumentElement();
    EXPECT_EQ("p:item", root->GetLocalName());
    EXPECT_EQ("", root->GetNamespaceURI());
    EXPECT_EQ("{}xmlns:p=urn:p;{}p:code=1;{}plain=2;", Names(root));
    // Without namespace processing an undeclared prefix is just part of a name.
    EXPECT_EQ("q:child", root->GetFirstElement()->GetLocalName());
    EXPECT_TRUE(doc.GetPrefixMap().empty());
}

TEST(CExpatReader, NeverReadsExternalEntities) {
    const std::string secret = std::string(KX_TEST_TMP_DIR) + "/CExpatReader_secret.txt";
    WriteFile(secret, "TOP-SECRET");
    const std::string dtd = std::string(KX_TEST_TMP_DIR) + "/CExpatReader_secret.dtd";
    WriteFile(dtd, "<!ENTITY leak 'TOP-SECRET'>");
    const std::string cases[] = {
        "<!DOCTYPE a [<!ENTITY e SYSTEM '" + secret + "'>]><a>&e;</a>",
        "<!DOCTYPE a [<!ENTITY e SYSTEM 'file://" + secret + "'>]><a>&e;</a>",
        "<!DOCTYPE a [<!ENTITY e PUBLIC '-//x//y' '" + secret + "'>]><a>[&e;]</a>",
        "<!DOCTYPE a [<!ENTITY % p SYSTEM '" + dtd + "'> %p;]><a>&leak;</a>",
        "<!DOCTYPE a SYSTEM '" + dtd + "'><a>&leak;</a>",
    };
    for (const std::string& xml : cases) {
        SCOPED_TRACE(xml);
        CXmlDocument doc;
        doc.LoadXml(xml.c_str());
        const std::string text = doc.GetDocumentElement()->GetText();
        EXPECT_EQ(std::string::npos, text.find("SECRET")) << text;
    }
}

TEST(CExpatReader, EntityExpansionBombsFailQuickly) {
    std::string laughs = "<?xml version='1.0'?>\n<!DOCTYPE lolz [\n<!ENTITY lol0 'lol'>\n";
    for (int level = 1; level <= 9; ++level) {
        laughs += "<!ENTITY lol" + std::to_string(level) + " '";
        for (int i = 0; i < 10; ++i) laughs += "&lol" + std::to_string(level - 1) + ";";
        laughs += "'>\n";
    }
    laughs += "]>\n<lolz>&lol9;</lolz>";
    // One large entity referenced many times: quadratic rather than exponential growth.
    std::string quadratic = "<!DOCTYPE q [<!ENTITY a '" + std::string(20000, 'x') + "'>]><q>";
    for (int i = 0; i < 20000; ++i) quadratic += "&a;";
    quadratic += "</q>";

    const char* prefix = "limit on input amplification factor (from DTD and entities) breached";
    for (const std::string& xml : {laughs, quadratic}) {
        SCOPED_TRACE(xml.substr(0, 40));
        const auto start = std::chrono::steady_clock::now();
        CXmlDocument doc;
        try {
            doc.LoadXml(xml.c_str());
            ADD_FAILURE() << "the expansion was not stopped";
        } catch (const CKxException& e) {
            EXPECT_EQ(0u, e.GetMessage().rfind(prefix, 0)) << e.GetMessage();
            EXPECT_NE(std::string::npos, e.GetMessage().find(" at line ")) << e.GetMessage();
        }
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(
                                 std::chrono::steady_clock::now() - start)
                                 .count();
        EXPECT_LT(seconds, 20);
    }
}

TEST(CExpatReader, Utf8CodePageKeepsTheBytes) {
    KxTest::ScopedLocale locale(LC_ALL, "C.UTF-8");
    if (!locale.Ok()) GTEST_SKIP() << "no C.UTF-8 locale";
    CXmlDocument doc;
    doc.LoadXml(u8"<Größe Maß='€ 5'>Zoë, 東京 😀</Größe>");
    const CXmlElement* root = doc.GetDocumentElement();
    EXPECT_EQ(u8"Größe", root->GetLocalName());
    EXPECT_EQ(u8"{}Maß=€ 5;", Names(root));
    EXPECT_EQ(u8"Zoë, 東京 😀", root->GetText());
}

TEST(CExpatReader, OtherCodePagesConvertLikeTheEncoder) {
    KxTest::ScopedLocale locale(LC_ALL, "C");
    ASSERT_TRUE(locale.Ok());
    const std::string text = u8"Zoë, 東京 😀 & plain";
    const std::string escaped = u8"Zoë, 東京 😀 &amp; plain";
    const std::string name = u8"Größe";
    CXmlDocument doc;
    doc.LoadXml(("<" + name + u8" Maß='€'>" + escaped + "</" + name + ">").c_str());
    const CXmlElement* root = doc.GetDocumentElement();
    EXPECT_EQ(CEncoder::Utf8ToLocalCodePage(name.c_str()), root->GetLocalName());
    EXPECT_EQ(CEncoder::Utf8ToLocalCodePage(text.c_str()), root->GetText());
    EXPECT_EQ("{}" + CEncoder::Utf8ToLocalCodePage(u8"Maß") + "=" +
                  CEncoder::Utf8ToLocalCodePage(u8"€") + ";",
              Names(root));
    EXPECT_EQ("Gr??e", root->GetLocalName());

    ScopedAsciiOnly asciiOnly;
    CXmlDocument raw;
    raw.LoadXml(("<a>" + escaped + "</a>").c_str());
    EXPECT_EQ(text, raw.GetDocumentElement()->GetText());
}

TEST(CExpatReader, ReadsUtf16Input) {
    KxTest::ScopedLocale locale(LC_ALL, "C.UTF-8");
    if (!locale.Ok()) GTEST_SKIP() << "no C.UTF-8 locale";
    struct Case {
        const char* name;
        std::string bytes;
        std::string text;
    };
    // "<a>é😀</a>" with the smiley as a surrogate pair.
    const std::string little("\xFF\xFE<\0a\0>\0\xE9\0\x3D\xD8\x00\xDE<\0/\0a\0>\0", 22);
    const std::string big("\xFE\xFF\0<\0a\0>\0\xE9\xD8\x3D\xDE\x00\0<\0/\0a\0>", 22);
    const Case cases[] = {
        {"little endian", little, u8"é😀"},
        {"big endian", big, u8"é😀"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        CXmlDocument doc;
        doc.LoadXmlStream(Bytes(row.bytes), Length(row.bytes));
        EXPECT_EQ(row.text, doc.GetDocumentElement()->GetText());
    }
    // Wide strings keep only the low 16 bits of each character.
    CXmlDocument wide;
    wide.LoadXml(L"<?xml version='1.0' encoding='UTF-16'?><a x='1'>\u00e9\U0001F600</a>");
    EXPECT_EQ(u8"é\uF600", wide.GetDocumentElement()->GetText());
    EXPECT_EQ("1", wide.GetDocumentElement()->GetAttribute("x", ""));
    KxTest::ExpectKxError<CKxException>([&] { wide.LoadXml(L"<a>\n<b></a>"); },
                                        "mismatched tag at line 2");
    // A lone surrogate is not accepted.
    const std::string lone("\xFF\xFE<\0a\0>\0\x00\xD8<\0/\0a\0>\0", 18);
    CXmlDocument bad;
    EXPECT_THROW(bad.LoadXmlStream(Bytes(lone), Length(lone)), CKxException);
}

TEST(CExpatReader, CarriageReturnsLeaveTextOfAnyCodePage) {
    const std::string xml = u8"<a>é&#13;\r\nü\r<b/>x\ry&#13;</a>";
    const char* locales[] = {"C.UTF-8", "C"};
    for (const char* name : locales) {
        SCOPED_TRACE(name);
        KxTest::ScopedLocale locale(LC_ALL, name);
        if (!locale.Ok()) continue;
        CXmlDocument doc;
        doc.LoadXml(xml.c_str());
        EXPECT_EQ(CEncoder::Utf8ToLocalCodePage(u8"é\nü\nx\ny"),
                  doc.GetDocumentElement()->GetText());
    }
}
