#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"
#include "WriterScript.h"

using KxXmlLib16::CFileTextStream;
using KxXmlLib16::CKxException;
using KxXmlLib16::CTextStream;
using KxXmlLib16::CXmlTextWriter;
using KxXmlLib16::EOLType;
using KxXmlLib16::EOLType_CRLF;
using KxXmlLib16::EOLType_LF;
using KxXmlLib16::ItemType_string;
using KxXmlLib16::XmlEncoding;
using KxTest::ExpectKxError;

namespace {

typedef std::function<void(CXmlTextWriter&)> Calls;

// The calls of a writer script (see WriterScript.h).
Calls S(const char* script) {
    return [script](CXmlTextWriter& w) { KxTest::RunScript(w, script); };
}

struct Settings {
    bool format = true;
    EOLType eol = EOLType_LF;
    const char* indent = "\t";
    XmlEncoding encoding = KxXmlLib16::XmlEncoding_Unset;
};

// Runs `calls` on a freshly opened writer over a stream in memory and returns the text.
std::string Render(const Calls& calls, const Settings& settings = Settings()) {
    CTextStream stream(settings.encoding);
    CXmlTextWriter writer(stream);
    writer.Open();
    writer.SetFormat(settings.format);
    writer.SetEOLType(settings.eol);
    writer.SetIndentChars(settings.indent);
    calls(writer);
    writer.Close();
    return stream.GetText();
}

Settings Unformatted(EOLType eol = EOLType_LF) {
    Settings settings;
    settings.format = false;
    settings.eol = eol;
    return settings;
}

// Start, text, end, as the engine writes a simple-typed member.
void Leaf(CXmlTextWriter& w, const char* name, const std::string& text) {
    w.WriteStartElement(name, "");
    w.WriteString(text, ItemType_string, false);
    w.WriteEndElement();
}

// Element E carrying `text` both as attribute a and as its content.
std::string RenderAttributeAndText(const std::string& text, const Settings& settings) {
    return Render(
        [&](CXmlTextWriter& w) {
            w.WriteStartElement("E", "");
            w.WriteAttributeString("a", "", text, ItemType_string);
            w.WriteString(text, ItemType_string, false);
            w.WriteEndElement();
        },
        settings);
}

// A stream that records every Flush (the length it saw and the text it passed on) and empties
// its buffer the way a file stream does.
class CountingStream : public CTextStream {
public:
    CountingStream() : CTextStream(KxXmlLib16::XmlEncoding_UTF8) {}
    void Flush() override {
        lengths.push_back(GetLength());
        flushed += GetText();
        m_buffer.Empty();
    }
    void Close() override { ++closes; }
    std::string AllText() const { return flushed + GetText(); }

    std::vector<unsigned int> lengths;
    std::string flushed;
    int closes = 0;
};

std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// An order-like document of `lines` repeated items with attributes and escaped text.
void WriteOrder(CXmlTextWriter& w, int lines) {
    w.WriteStartDocument();
    w.SetDefaultNamespace("urn:order");
    w.WriteStartElement("Order", "urn:order");
    w.WriteAttributeString("id", "", "A-17", ItemType_string);
    for (int i = 0; i < lines; ++i) {
        w.WriteStartElement("Line", "urn:order");
        w.WriteAttributeString("no", "", std::to_string(i), ItemType_string);
        Leaf(w, "Item", "Nuts & bolts <M" + std::to_string(i % 13) + ">");
        Leaf(w, "Quantity", std::to_string(i * 7));
        w.WriteStartElement("Note", "urn:other");
        w.WriteString("line\r\nbreak", ItemType_string, false);
        w.WriteEndElement();
        w.WriteEndElement();
    }
    w.WriteEndElement();
}

// Opens a writer on `stream`, writes the order document and closes it.
void WriteOrderDocument(CTextStream& stream, int lines) {
    CXmlTextWriter writer(stream);
    writer.Open();
    WriteOrder(writer, lines);
    writer.Close();
}

// "{namespace}name" of every element of `xml`, in document order, separated by spaces.
std::string ElementNamesAfterReading(const std::string& xml) {
    KxXmlLib16::CXmlDocument document;
    document.LoadXml(xml.c_str());
    std::string names;
    std::function<void(const KxXmlLib16::CXmlElement*)> visit =
        [&](const KxXmlLib16::CXmlElement* element) {
            if (!names.empty()) names += ' ';
            names += '{' + element->GetNamespaceURI() + '}' + element->GetLocalName();
            for (const KxXmlLib16::CXmlElement* child = element->GetFirstElement();
                 child != nullptr; child = child->GetNextSiblingElement()) {
                visit(child);
            }
        };
    visit(document.GetDocumentElement());
    return names;
}

}  // namespace

TEST(CXmlTextWriter, FormattingFollowsIndentAndLineEndSettings) {
    struct Case {
        bool format;
        EOLType eol;
        const char* indent;
        const char* expected;
    };
    const Case cases[] = {
        {true, EOLType_LF, "\t",
         "<Root a=\"1\">\n\t<Child>text</Child>\n\t<List>\n\t\t<Item>x</Item>\n\t\t<Empty/>\n"
         "\t</List>\n</Root>\n"},
        {true, EOLType_CRLF, "\t",
         "<Root a=\"1\">\r\n\t<Child>text</Child>\r\n\t<List>\r\n\t\t<Item>x</Item>\r\n"
         "\t\t<Empty/>\r\n\t</List>\r\n</Root>\r\n"},
        {true, EOLType_LF, "  ",
         "<Root a=\"1\">\n  <Child>text</Child>\n  <List>\n    <Item>x</Item>\n    <Empty/>\n"
         "  </List>\n</Root>\n"},
        {true, EOLType_LF, "",
         "<Root a=\"1\">\n<Child>text</Child>\n<List>\n<Item>x</Item>\n<Empty/>\n</List>\n"
         "</Root>\n"},
        {false, EOLType_LF, "\t",
         "<Root a=\"1\"><Child>text</Child><List><Item>x</Item><Empty/></List></Root>"},
        {false, EOLType_CRLF, "\t",
         "<Root a=\"1\"><Child>text</Child><List><Item>x</Item><Empty/></List></Root>"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(::testing::Message() << "format " << row.format << ", eol " << row.eol
                                          << ", indent '" << row.indent << "'");
        Settings settings;
        settings.format = row.format;
        settings.eol = row.eol;
        settings.indent = row.indent;
        EXPECT_EQ(row.expected,
                  Render(S("<Root @a=1 Child=text <List Item=x <Empty/ / /"), settings));
    }
}

TEST(CXmlTextWriter, ContentAndMarkupCallsProduceExactText) {
    struct Case {
        const char* name;
        Calls calls;
        const char* formatted;
        const char* unformatted;
    };
    const Case cases[] = {
        {"document prolog",
         [](CXmlTextWriter& w) {
             w.WriteStartDocument();
             w.WriteHeaderDirective("<!DOCTYPE Root>");
             w.WritePI("<?app go?>");
             w.WriteComment("a<b&c");
             KxTest::RunScript(w, "<Root <C/");
             w.WriteInlineSchema("<xs:schema/>");
             w.WriteEndElement();
         },
         "<?xml version=\"1.0\"?>\n<!DOCTYPE Root>\n<?app go?>\n\n<!--a&lt;b&amp;c-->\n"
         "<Root>\n\t<C/>\n \n<xs:schema/>\n</Root>\n",
         "<?xml version=\"1.0\"?>\n<!DOCTYPE Root>\n<?app go?>\n\n<!--a&lt;b&amp;c-->\n"
         "<Root><C/> \n<xs:schema/>\n</Root>"},
        {"empty text keeps the empty-element tag", S("<R = /"), "<R/>\n", "<R/>"},
        {"text then child element", S("<R =text <C/ /"), "<R>text\t<C/>\n</R>\n",
         "<R>text<C/></R>"},
        {"siblings do not inherit each other's state", S("<R <A B=b / C=c <D/ /"),
         "<R>\n\t<A>\n\t\t<B>b</B>\n\t</A>\n\t<C>c</C>\n\t<D/>\n</R>\n",
         "<R><A><B>b</B></A><C>c</C><D/></R>"},
        {"comment does not close the start tag", S("<R !c /"), "<R<!--c-->\n/>\n",
         "<R<!--c-->\n/>"},
        {"raw element is appended as it is",
         [](CXmlTextWriter& w) {
             KxTest::RunScript(w, "<R <C/");
             w.WriteRawElement("<raw a='&'/>");
             w.WriteEndElement();
         },
         "<R>\n\t<C/>\n<raw a='&'/>\n</R>\n", "<R><C/><raw a='&'/></R>"},
        {"raw element does not close the start tag",
         [](CXmlTextWriter& w) {
             w.WriteStartElement("R", "");
             w.WriteRawElement(" x=\"1\"");
             w.WriteEndElement();
         },
         "<R x=\"1\"\n/>\n", "<R x=\"1\"/>"},
        {"free text ends at an embedded NUL",
         [](CXmlTextWriter& w) {
             w.WriteComment(std::string("c\0d", 3));
             w.WriteStartElement("R", "");
             w.WriteAttributeString("a", "", std::string("v\0w", 3), ItemType_string);
             w.WriteString(std::string("x\0<y", 4), ItemType_string, false);
             w.WriteEndElement();
         },
         "<!--c-->\n<R a=\"v\">x</R>\n", "<!--c-->\n<R a=\"v\">x</R>"},
        {"default value skipped",
         [](CXmlTextWriter& w) {
             w.WriteStartElement("R", "");
             w.WriteString("v", ItemType_string, true);
             w.WriteEndElement();
         },
         "<R/>\n", "<R/>"},
        {"default value written when asked for",
         [](CXmlTextWriter& w) {
             w.SetWriteDefaultElementValues(true);
             w.WriteStartElement("R", "");
             w.WriteString("v", ItemType_string, true);
             w.WriteEndElement();
         },
         "<R>v</R>\n", "<R>v</R>"},
        {"CDATA section is not escaped",
         [](CXmlTextWriter& w) { Leaf(w, "R", "<![CDATA[a<b & c]]>"); },
         "<R><![CDATA[a<b & c]]></R>\n", "<R><![CDATA[a<b & c]]></R>"},
        {"CDATA marker later in the text is escaped",
         [](CXmlTextWriter& w) { Leaf(w, "R", " <![CDATA[x]]>"); },
         "<R> &lt;![CDATA[x]]&gt;</R>\n", "<R> &lt;![CDATA[x]]&gt;</R>"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.formatted, Render(row.calls));
        EXPECT_EQ(row.unformatted, Render(row.calls, Unformatted()));
    }
}

TEST(CXmlTextWriter, StartDocumentNamesTheEncodingOfTheStream) {
    struct Case {
        XmlEncoding encoding;
        const char* expected;
    };
    const Case cases[] = {
        {KxXmlLib16::XmlEncoding_Unset, "<?xml version=\"1.0\"?>\r\n"},
        {KxXmlLib16::XmlEncoding_UTF8, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"},
        {KxXmlLib16::XmlEncoding_UTF16, "<?xml version=\"1.0\" encoding=\"UTF-16\"?>\r\n"},
        {KxXmlLib16::XmlEncoding_UTF16Undeclared, "<?xml version=\"1.0\"?>\r\n"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.encoding);
        Settings settings = Unformatted(EOLType_CRLF);
        settings.encoding = row.encoding;
        EXPECT_EQ(row.expected,
                  Render([](CXmlTextWriter& w) { w.WriteStartDocument(); }, settings));
    }
}

TEST(CXmlTextWriter, NamespacesAreDeclaredWhereTheyAreFirstNeeded) {
    struct Case {
        const char* name;
        const char* script;
        const char* expected;
        // What a reader makes of the output, when checked: each element's namespace and name.
        const char* readBack = nullptr;
        bool formatted = false;
    };
    const Case cases[] = {
        {"generated prefixes are scoped to their element",
         "<{urn:a}Root <{urn:b}Child <{urn:b}G/ / <{urn:b}Sib/ <{urn:a}A2/ /",
         "<AA:Root xmlns:AA=\"urn:a\"><AB:Child xmlns:AB=\"urn:b\"><AB:G/></AB:Child>"
         "<AB:Sib xmlns:AB=\"urn:b\"/><AA:A2/></AA:Root>"},
        {"writer bindings are declared on the root in namespace order",
         "xmlns:p=urn:p xmlns:a=urn:z xmlns:xml=http://www.w3.org/XML/1998/namespace "
         "xmlns=urn:d <{urn:d}Root <{urn:p}C/ <{urn:d}D/ <E/ /",
         "<Root xmlns=\"urn:d\" xmlns:p=\"urn:p\" xmlns:a=\"urn:z\"><p:C/><D/><E xmlns=\"\"/>"
         "</Root>"},
        {"root prefix avoids prefixes bound on the writer", "xmlns:AA=urn:p <{urn:a}R/",
         "<AB:R xmlns:AB=\"urn:a\" xmlns:AA=\"urn:p\"/>"},
        {"bindings made inside an element are used but not declared",
         "<R xmlns:q=urn:q <{urn:q}C xmlns=urn:x <{urn:x}D/ / /", "<R><q:C><D/></q:C></R>"},
        {"end tag follows the bindings in force at the end", "<{urn:a}R =t xmlns:n=urn:a /",
         "<AA:R xmlns:AA=\"urn:a\">t</n:R>"},
        {"xml attributes use the xml prefix",
         "<R @{http://www.w3.org/XML/1998/namespace}lang=en /", "<R xml:lang=\"en\"/>"},
        {"attribute in the default namespace still gets a prefix",
         "xmlns=urn:d <{urn:d}R @{urn:d}x=1 @{urn:d}y=2 <{urn:d}C @{urn:d}z=3 / /",
         "<R xmlns=\"urn:d\" xmlns:AA=\"urn:d\" AA:x=\"1\" AA:y=\"2\"><C AA:z=\"3\"/></R>"},
        {"type and instance namespaces declared on the fly", "<E xsi:type={urn:t}T /",
         "<E xmlns:AA=\"urn:t\"  xmlns:AB=\"http://www.w3.org/2001/XMLSchema-instance\" "
         "AB:type=\"AA:T\"/>"},
        {"type with bound namespaces",
         "xmlns:xsi=" KX_TEST_XSI " xmlns:t=urn:t xmlns=urn:d <{urn:d}R xsi:type={urn:t}T "
         "<{urn:d}C xsi:type={urn:d}U / <{urn:d}D xsi:type=V / /",
         "<R xmlns=\"urn:d\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
         "xmlns:t=\"urn:t\" xsi:type=\"t:T\"><C xsi:type=\"U\"/><D xsi:type=\"V\"/></R>"},
        {"nil with and without a bound instance namespace",
         "<R <A xsi:nil / xmlns:xsi=" KX_TEST_XSI " <B xsi:nil / /",
         "<R><A xmlns:AA=\"http://www.w3.org/2001/XMLSchema-instance\" AA:nil=\"true\"/>"
         "<B xsi:nil=\"true\"/></R>"},
        // An element in no namespace under a default namespace undeclares it.
        {"child in no namespace under a default namespace", "xmlns=urn:d <{urn:d}R <E/ /",
         "<R xmlns=\"urn:d\"><E xmlns=\"\"/></R>", "{urn:d}R {}E"},
        {"descendants in no namespace need no further declaration",
         "xmlns=urn:d <{urn:d}R <E F=t <G <H/ / / /",
         "<R xmlns=\"urn:d\"><E xmlns=\"\"><F>t</F><G><H/></G></E></R>",
         "{urn:d}R {}E {}F {}G {}H"},
        {"the old default namespace inside gets a generated prefix",
         "xmlns=urn:d <{urn:d}R <E <{urn:d}D <X/ / <{urn:d}D2/ / <{urn:d}S/ /",
         "<R xmlns=\"urn:d\"><E xmlns=\"\"><AA:D xmlns:AA=\"urn:d\"><X/></AA:D>"
         "<AA:D2 xmlns:AA=\"urn:d\"/></E><S/></R>",
         "{urn:d}R {}E {urn:d}D {}X {urn:d}D2 {urn:d}S"},
        {"the old default namespace inside uses a prefix bound on the writer",
         "xmlns:d=urn:d xmlns=urn:d <{urn:d}R <E {urn:d}D=1 / /",
         "<R xmlns=\"urn:d\" xmlns:d=\"urn:d\"><E xmlns=\"\"><d:D>1</d:D></E></R>",
         "{urn:d}R {}E {urn:d}D"},
        {"each no-namespace sibling declares it again",
         "xmlns=urn:d <{urn:d}R A=1 A=2 <{urn:d}B/ /",
         "<R xmlns=\"urn:d\"><A xmlns=\"\">1</A><A xmlns=\"\">2</A><B/></R>",
         "{urn:d}R {}A {}A {urn:d}B"},
        {"inside an element of a prefixed namespace", "xmlns=urn:d <{urn:d}R <{urn:o}O <E/ / /",
         "<R xmlns=\"urn:d\"><AA:O xmlns:AA=\"urn:o\"><E xmlns=\"\"/></AA:O></R>",
         "{urn:d}R {urn:o}O {}E"},
        {"attributes, nil and type follow the declaration",
         "xmlns:xsi=" KX_TEST_XSI " xmlns=urn:d <{urn:d}R <E @a=1 xsi:nil / "
         "<F xsi:type={urn:d}T / /",
         "<R xmlns=\"urn:d\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">"
         "<E xmlns=\"\" a=\"1\" xsi:nil=\"true\"/>"
         "<F xmlns=\"\" xmlns:AA=\"urn:d\"  xsi:type=\"AA:T\"/></R>",
         "{urn:d}R {}E {}F"},
        {"root in no namespace leaves the writer's default undeclared",
         "xmlns:p=urn:p xmlns=urn:d <R <E/ <{urn:d}D/ <{urn:p}P/ /",
         "<R xmlns:p=\"urn:p\"><E/><AA:D xmlns:AA=\"urn:d\"/><p:P/></R>",
         "{}R {}E {urn:d}D {urn:p}P"},
        {"without a default namespace nothing is declared", "xmlns:p=urn:p <{urn:p}R <E <F/ / /",
         "<p:R xmlns:p=\"urn:p\"><E><F/></E></p:R>", "{urn:p}R {}E {}F"},
        {"formatted", "xmlns=urn:d <{urn:d}R <E F=x G=y / /",
         "<R xmlns=\"urn:d\">\n\t<E xmlns=\"\">\n\t\t<F>x</F>\n\t\t<G>y</G>\n\t</E>\n</R>\n",
         "{urn:d}R {}E {}F {}G", true},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const std::string xml = Render(S(row.script), row.formatted ? Settings() : Unformatted());
        EXPECT_EQ(row.expected, xml);
        if (row.readBack != nullptr) {
            EXPECT_EQ(row.readBack, ElementNamesAfterReading(xml));
        }
    }
}

TEST(CXmlTextWriter, TagsFollowBindingsChangedSinceTheStartTag) {
    struct Case {
        const char* name;
        const char* script;
        const char* expected;
    };
    const Case cases[] = {
        {"default namespace set inside the element", "<{urn:a}R =t xmlns=urn:a /",
         "<AA:R xmlns:AA=\"urn:a\">t</R>"},
        {"rebinding inside the element reaches its later children",
         "<{urn:a}R =t xmlns:n=urn:a <{urn:a}C =u / /",
         "<AA:R xmlns:AA=\"urn:a\">t<n:C>u</n:C></n:R>"},
        {"a child's rebinding stays in the child", "<{urn:a}R <{urn:a}C =t xmlns:n=urn:a / /",
         "<AA:R xmlns:AA=\"urn:a\"><AA:C>t</n:C></AA:R>"},
        {"a child's default namespace stays in the child",
         "<{urn:a}R <{urn:a}C =t xmlns=urn:a / /",
         "<AA:R xmlns:AA=\"urn:a\"><AA:C>t</C></AA:R>"},
        {"a sibling after a rebinding child uses the parent's bindings",
         "<{urn:a}R <{urn:a}C =t xmlns:n=urn:a / <{urn:a}D =u / /",
         "<AA:R xmlns:AA=\"urn:a\"><AA:C>t</n:C><AA:D>u</AA:D></AA:R>"},
        {"namespaces alternating between siblings",
         "<{urn:a}R <{urn:b}B =1 / <{urn:a}A =2 / <{urn:b}B =3 / /",
         "<AA:R xmlns:AA=\"urn:a\"><AB:B xmlns:AB=\"urn:b\">1</AB:B><AA:A>2</AA:A>"
         "<AB:B xmlns:AB=\"urn:b\">3</AB:B></AA:R>"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.expected, Render(S(row.script), Unformatted()));
    }
}

TEST(CXmlTextWriter, EscapesSpecialCharactersInTextAndAttributes) {
    struct Case {
        const char* in;
        EOLType eol;
        const char* text;
        const char* attribute;
    };
    const Case cases[] = {
        {"plain", EOLType_LF, "plain", "plain"},
        {"a&b", EOLType_LF, "a&amp;b", "a&amp;b"},
        {"<tag>", EOLType_LF, "&lt;tag&gt;", "&lt;tag&gt;"},
        {"&&<<>>", EOLType_LF, "&amp;&amp;&lt;&lt;&gt;&gt;", "&amp;&amp;&lt;&lt;&gt;&gt;"},
        {"say \"hi\"", EOLType_LF, "say \"hi\"", "say &quot;hi&quot;"},
        {"it's\ta tab", EOLType_LF, "it's\ta tab", "it's\ta tab"},
        {"l1\nl2", EOLType_LF, "l1\nl2", "l1&#xA;l2"},
        {"l1\nl2", EOLType_CRLF, "l1\r\nl2", "l1&#xA;l2"},
        {"l1\r\nl2\r\n", EOLType_LF, "l1\nl2\n", "l1&#xA;l2&#xA;"},
        {"l1\r\nl2\r\n", EOLType_CRLF, "l1\r\nl2\r\n", "l1&#xA;l2&#xA;"},
        {"\rcr\r", EOLType_CRLF, "cr", "cr"},
        {"]]>", EOLType_LF, "]]&gt;", "]]&gt;"},
        {"<![CDATA[x]]>", EOLType_LF, "<![CDATA[x]]>", "&lt;![CDATA[x]]&gt;"},
        {"caf\xC3\xA9 \xE2\x82\xAC", EOLType_LF, "caf\xC3\xA9 \xE2\x82\xAC",
         "caf\xC3\xA9 \xE2\x82\xAC"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.in);
        const std::string out = RenderAttributeAndText(row.in, Unformatted(row.eol));
        EXPECT_EQ(std::string("<E a=\"") + row.attribute + "\">" + row.text + "</E>", out);
    }
}

TEST(CXmlTextWriter, EscapingLongTextMatchesCharacterByCharacterRules) {
    // Texts much longer than a stream block, with special characters at random places
    // (first, last, adjacent), against the rules applied one character at a time.
    const auto escape = [](const std::string& text, bool attribute) {
        std::string out;
        for (char c : text) {
            switch (c) {
                case '&': out += "&amp;"; break;
                case '<': out += "&lt;"; break;
                case '>': out += "&gt;"; break;
                case '"': out += attribute ? "&quot;" : "\""; break;
                case '\n': out += attribute ? "&#xA;" : "\r\n"; break;
                case '\r': break;
                default: out += c;
            }
        }
        return out;
    };
    const std::string alphabet = "abcdefgh&<>\"'\n\r\t";
    std::mt19937 random(5);
    for (int round = 0; round < 20; ++round) {
        std::string in(random() % 20000, 'x');
        for (char& c : in) {
            c = alphabet[random() % alphabet.size()];
        }
        SCOPED_TRACE(::testing::Message() << "round " << round << ", length " << in.size());
        const std::string out = RenderAttributeAndText(in, Unformatted(EOLType_CRLF));
        EXPECT_EQ("<E a=\"" + escape(in, true) + "\">" + escape(in, false) + "</E>", out);
    }
}

TEST(CXmlTextWriter, SettingsHaveDefaultsAndRejectUnknownLineEnds) {
    CTextStream stream;
    CXmlTextWriter writer(stream);
    EXPECT_TRUE(writer.GetFormat());
    EXPECT_EQ(EOLType_LF, writer.GetEOLType());
    EXPECT_EQ("\t", writer.GetIndentChars());
    EXPECT_FALSE(writer.GetWriteDefaultElementValues());

    writer.SetEOLType(EOLType_CRLF);
    ExpectKxError<CKxException>([&] { writer.SetEOLType(static_cast<EOLType>(2)); },
                                "Invalid EOL type.");
    EXPECT_EQ(EOLType_CRLF, writer.GetEOLType());
    writer.SetIndentChars(nullptr);
    EXPECT_EQ("", writer.GetIndentChars());

    // The line ending kept after the refused change is still CRLF.
    writer.WriteComment("c");
    EXPECT_STREQ("<!--c-->\r\n", stream.GetText());
}

TEST(CXmlTextWriter, MisuseIsReportedWithExactMessages) {
    const char* const attributes = "Attributes must be added before elements";
    const char* const headers = "Headed directives must appear before an Element has been added.";
    const Calls header = [](CXmlTextWriter& w) { w.WriteHeaderDirective("<!DOCTYPE R>"); };
    struct Case {
        const char* name;
        const char* setup;
        Calls misuse;
        const char* message;
    };
    const Case cases[] = {
        {"attribute after text", "<R =t", S("@a=1"), attributes},
        {"attribute after child", "<R <C/", S("@a=1"), attributes},
        {"attribute outside any element", "", S("@a=1"), attributes},
        {"type after text", "<R =t", S("xsi:type={urn:t}T"), attributes},
        {"nil after child", "<R <C/", S("xsi:nil"), attributes},
        {"header inside the root", "<R", header, headers},
        {"header after the root", "<R/", header, headers},
        {"end without an element", "", S("/"), "There is no open Element to end."},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        CTextStream stream;
        CXmlTextWriter writer(stream);
        writer.SetFormat(false);
        KxTest::RunScript(writer, row.setup);
        const std::string before = stream.GetText();
        ExpectKxError<CKxException>([&] { row.misuse(writer); }, row.message);
        EXPECT_EQ(before, stream.GetText());  // nothing half-written
    }
}

TEST(CXmlTextWriter, OpenAndCloseDriveTheStream) {
    CountingStream stream;
    stream.Append("left over");
    CXmlTextWriter writer(stream);
    writer.Open();
    EXPECT_STREQ("", stream.GetText());
    writer.WriteStartElement("R", "");
    // The stream is closed even though the writer then reports the open element.
    ExpectKxError<CKxException>([&] { writer.Close(); }, "An Element has not been closed.");
    EXPECT_EQ(1, stream.closes);
    writer.WriteEndElement();
    writer.Close();
    EXPECT_EQ(2, stream.closes);
    EXPECT_EQ("<R/>\n", stream.AllText());
}

TEST(CXmlTextWriter, FlushesWhenAnOperationLeaves4096Characters) {
    struct Case {
        size_t textLength;
        std::vector<unsigned int> afterText;
        std::vector<unsigned int> afterEnd;
    };
    // "<R" then ">" and the text; the end tag adds "</R>".
    const Case cases[] = {
        {4092, {}, {4099}}, {4093, {4096}, {4096}}, {5000, {5003}, {5003}},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.textLength);
        CountingStream stream;
        CXmlTextWriter writer(stream);
        writer.SetFormat(false);
        writer.WriteStartElement("R", "");
        writer.WriteString(std::string(row.textLength, 'a'), ItemType_string, false);
        EXPECT_EQ(row.afterText, stream.lengths);
        writer.WriteEndElement();
        EXPECT_EQ(row.afterEnd, stream.lengths);
        EXPECT_EQ("<R>" + std::string(row.textLength, 'a') + "</R>", stream.AllText());
    }
}

TEST(CXmlTextWriter, EveryWritingOperationChecksTheFlushThreshold) {
    struct Case {
        const char* name;
        const char* setup;
        Calls operation;
        size_t flushes;
    };
    const Case cases[] = {
        {"start document", "", [](CXmlTextWriter& w) { w.WriteStartDocument(); }, 1},
        {"header", "", [](CXmlTextWriter& w) { w.WriteHeaderDirective("<!X>"); }, 1},
        {"PI", "", [](CXmlTextWriter& w) { w.WritePI("<?p?>"); }, 1},
        {"comment", "", S("!c"), 1},
        {"inline schema", "<R", [](CXmlTextWriter& w) { w.WriteInlineSchema("<s/>"); }, 1},
        {"start element", "", S("<R"), 1}, {"attribute", "<R", S("@a=1"), 1},
        {"type", "<R", S("xsi:type=T"), 1}, {"nil", "<R", S("xsi:nil"), 1},
        {"text", "<R", S("=t"), 1}, {"end element", "<R", S("/"), 1},
        {"raw element", "<R", [](CXmlTextWriter& w) { w.WriteRawElement("<raw/>"); }, 0},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        CountingStream stream;
        CXmlTextWriter writer(stream);
        writer.SetFormat(false);
        KxTest::RunScript(writer, row.setup);
        // Fill up to one character short of the threshold without a flush check.
        writer.WriteRawElement(std::string(4095 - stream.GetLength(), 'x'));
        ASSERT_TRUE(stream.lengths.empty());
        row.operation(writer);
        EXPECT_EQ(row.flushes, stream.lengths.size());
        for (unsigned int length : stream.lengths) {
            EXPECT_LE(4096u, length);
        }
    }
}

TEST(CXmlTextWriter, FileOutputEqualsTheTextOfAnUnflushedRun) {
    const int lines = 3000;
    CTextStream memory(KxXmlLib16::XmlEncoding_UTF8);
    WriteOrderDocument(memory, lines);
    const std::string expected = memory.GetText();
    ASSERT_GT(expected.size(), 100000u);

    const std::string path = std::string(KX_TEST_TMP_DIR) + "/xml_text_writer_order.xml";
    CFileTextStream file(path.c_str(), KxXmlLib16::XmlEncoding_UTF8);
    CXmlTextWriter writer(file);
    writer.Open();
    WriteOrder(writer, lines);
    // Most of the document has reached the file before Close; only the tail is buffered.
    EXPECT_LT(file.GetLength(), 4096u);
    EXPECT_EQ(expected.size() - file.GetLength(), ReadFile(path).size());
    writer.Close();
    EXPECT_EQ(expected, ReadFile(path));
    std::remove(path.c_str());

    // The same run on a counting stream flushes only at the threshold and loses nothing.
    CountingStream counting;
    WriteOrderDocument(counting, lines);
    EXPECT_EQ(expected, counting.AllText());
    EXPECT_LE(expected.size() / 4200, counting.lengths.size());
    for (unsigned int length : counting.lengths) {
        EXPECT_LE(4096u, length);
        EXPECT_GT(4096u + 200u, length);  // no operation of this document adds 200 characters
    }
}
