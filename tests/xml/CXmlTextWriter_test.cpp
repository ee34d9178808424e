#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using KxXmlLib16::CFileTextStream;
using KxXmlLib16::CKxException;
using KxXmlLib16::CTextStream;
using KxXmlLib16::CXmlTextWriter;
using KxXmlLib16::CXmlWriter;
using KxXmlLib16::EOLType;
using KxXmlLib16::EOLType_CRLF;
using KxXmlLib16::EOLType_LF;
using KxXmlLib16::ItemType_string;
using KxXmlLib16::XmlEncoding;
using KxTest::ExpectKxError;

namespace {

typedef std::function<void(CXmlTextWriter&)> Calls;

const char kXsi[] = "http://www.w3.org/2001/XMLSchema-instance";

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

Settings Unformatted() {
    Settings settings;
    settings.format = false;
    return settings;
}

// Start, text, end, as the engine writes a simple-typed member.
void Leaf(CXmlTextWriter& w, const char* name, const std::string& text) {
    w.WriteStartElement(name, "");
    w.WriteString(text, ItemType_string, false);
    w.WriteEndElement();
}

// An element with neither attributes nor content.
void Empty(CXmlTextWriter& w, const char* name, const char* ns = "") {
    w.WriteStartElement(name, ns);
    w.WriteEndElement();
}

// Wraps `body` in a start and end tag of element R.
Calls InR(const Calls& body) {
    return [body](CXmlTextWriter& w) {
        w.WriteStartElement("R", "");
        body(w);
        w.WriteEndElement();
    };
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

}  // namespace

TEST(CXmlTextWriter, FormattingFollowsIndentAndLineEndSettings) {
    const Calls document = [](CXmlTextWriter& w) {
        w.WriteStartElement("Root", "");
        w.WriteAttributeString("a", "", "1", ItemType_string);
        Leaf(w, "Child", "text");
        w.WriteStartElement("List", "");
        Leaf(w, "Item", "x");
        Empty(w, "Empty");
        w.WriteEndElement();
        w.WriteEndElement();
    };
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
        EXPECT_EQ(row.expected, Render(document, settings));
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
             w.WriteStartElement("Root", "");
             Empty(w, "C");
             w.WriteInlineSchema("<xs:schema/>");
             w.WriteEndElement();
         },
         "<?xml version=\"1.0\"?>\n<!DOCTYPE Root>\n<?app go?>\n\n<!--a&lt;b&amp;c-->\n"
         "<Root>\n\t<C/>\n \n<xs:schema/>\n</Root>\n",
         "<?xml version=\"1.0\"?>\n<!DOCTYPE Root>\n<?app go?>\n\n<!--a&lt;b&amp;c-->\n"
         "<Root><C/> \n<xs:schema/>\n</Root>"},
        {"empty text keeps the empty-element tag",
         InR([](CXmlTextWriter& w) { w.WriteString("", ItemType_string, false); }),
         "<R/>\n", "<R/>"},
        {"text then child element",
         InR([](CXmlTextWriter& w) {
             w.WriteString("text", ItemType_string, false);
             Empty(w, "C");
         }),
         "<R>text\t<C/>\n</R>\n", "<R>text<C/></R>"},
        {"siblings do not inherit each other's state",
         InR([](CXmlTextWriter& w) {
             w.WriteStartElement("A", "");
             Leaf(w, "B", "b");
             w.WriteEndElement();
             Leaf(w, "C", "c");
             Empty(w, "D");
         }),
         "<R>\n\t<A>\n\t\t<B>b</B>\n\t</A>\n\t<C>c</C>\n\t<D/>\n</R>\n",
         "<R><A><B>b</B></A><C>c</C><D/></R>"},
        {"comment does not close the start tag",
         InR([](CXmlTextWriter& w) { w.WriteComment("c"); }),
         "<R<!--c-->\n/>\n", "<R<!--c-->\n/>"},
        {"raw element is appended as it is",
         InR([](CXmlTextWriter& w) {
             Empty(w, "C");
             w.WriteRawElement("<raw a='&'/>");
         }),
         "<R>\n\t<C/>\n<raw a='&'/>\n</R>\n", "<R><C/><raw a='&'/></R>"},
        {"raw element does not close the start tag",
         InR([](CXmlTextWriter& w) { w.WriteRawElement(" x=\"1\""); }),
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
         InR([](CXmlTextWriter& w) { w.WriteString("v", ItemType_string, true); }),
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
         [](CXmlTextWriter& w) {
             Leaf(w, "R", "<![CDATA[a<b & c]]>");
         },
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
        Settings settings = Unformatted();
        settings.eol = EOLType_CRLF;
        settings.encoding = row.encoding;
        EXPECT_EQ(row.expected,
                  Render([](CXmlTextWriter& w) { w.WriteStartDocument(); }, settings));
    }
}

TEST(CXmlTextWriter, NamespacesAreDeclaredWhereTheyAreFirstNeeded) {
    struct Case {
        const char* name;
        Calls calls;
        const char* expected;
    };
    const Case cases[] = {
        {"generated prefixes are scoped to their element",
         [](CXmlTextWriter& w) {
             w.WriteStartElement("Root", "urn:a");
             w.WriteStartElement("Child", "urn:b");
             Empty(w, "G", "urn:b");
             w.WriteEndElement();
             Empty(w, "Sib", "urn:b");
             Empty(w, "A2", "urn:a");
             w.WriteEndElement();
         },
         "<AA:Root xmlns:AA=\"urn:a\"><AB:Child xmlns:AB=\"urn:b\"><AB:G/></AB:Child>"
         "<AB:Sib xmlns:AB=\"urn:b\"/><AA:A2/></AA:Root>"},
        {"writer bindings are declared on the root in namespace order",
         [](CXmlTextWriter& w) {
             w.AddNamespace("p", "urn:p");
             w.AddNamespace("a", "urn:z");
             w.AddNamespace("xml", CXmlWriter::XML_NAMESPACE);
             w.SetDefaultNamespace("urn:d");
             w.WriteStartElement("Root", "urn:d");
             Empty(w, "C", "urn:p");
             Empty(w, "D", "urn:d");
             Empty(w, "E");
             w.WriteEndElement();
         },
         "<Root xmlns=\"urn:d\" xmlns:p=\"urn:p\" xmlns:a=\"urn:z\"><p:C/><D/><E xmlns=\"\"/>"
         "</Root>"},
        {"root prefix avoids prefixes bound on the writer",
         [](CXmlTextWriter& w) {
             w.AddNamespace("AA", "urn:p");
             Empty(w, "R", "urn:a");
         },
         "<AB:R xmlns:AB=\"urn:a\" xmlns:AA=\"urn:p\"/>"},
        {"bindings made inside an element are used but not declared",
         InR([](CXmlTextWriter& w) {
             w.AddNamespace("q", "urn:q");
             w.WriteStartElement("C", "urn:q");
             w.SetDefaultNamespace("urn:x");
             Empty(w, "D", "urn:x");
             w.WriteEndElement();
         }),
         "<R><q:C><D/></q:C></R>"},
        {"end tag follows the bindings in force at the end",
         [](CXmlTextWriter& w) {
             w.WriteStartElement("R", "urn:a");
             w.WriteString("t", ItemType_string, false);
             w.AddNamespace("n", "urn:a");
             w.WriteEndElement();
         },
         "<AA:R xmlns:AA=\"urn:a\">t</n:R>"},
        {"xml attributes use the xml prefix",
         InR([](CXmlTextWriter& w) {
             w.WriteAttributeString("lang", CXmlWriter::XML_NAMESPACE, "en", ItemType_string);
         }),
         "<R xml:lang=\"en\"/>"},
        {"attribute in the default namespace still gets a prefix",
         [](CXmlTextWriter& w) {
             w.SetDefaultNamespace("urn:d");
             w.WriteStartElement("R", "urn:d");
             w.WriteAttributeString("x", "urn:d", "1", ItemType_string);
             w.WriteAttributeString("y", "urn:d", "2", ItemType_string);
             w.WriteStartElement("C", "urn:d");
             w.WriteAttributeString("z", "urn:d", "3", ItemType_string);
             w.WriteEndElement();
             w.WriteEndElement();
         },
         "<R xmlns=\"urn:d\" xmlns:AA=\"urn:d\" AA:x=\"1\" AA:y=\"2\"><C AA:z=\"3\"/></R>"},
        {"type and instance namespaces declared on the fly",
         [](CXmlTextWriter& w) {
             w.WriteStartElement("E", "");
             w.WriteAttributeType("T", "urn:t", ItemType_string);
             w.WriteEndElement();
         },
         "<E xmlns:AA=\"urn:t\"  xmlns:AB=\"http://www.w3.org/2001/XMLSchema-instance\" "
         "AB:type=\"AA:T\"/>"},
        {"type with bound namespaces",
         [](CXmlTextWriter& w) {
             w.AddNamespace("xsi", kXsi);
             w.AddNamespace("t", "urn:t");
             w.SetDefaultNamespace("urn:d");
             w.WriteStartElement("R", "urn:d");
             w.WriteAttributeType("T", "urn:t", ItemType_string);
             w.WriteStartElement("C", "urn:d");
             w.WriteAttributeType("U", "urn:d", ItemType_string);
             w.WriteEndElement();
             w.WriteStartElement("D", "urn:d");
             w.WriteAttributeType("V", "", ItemType_string);
             w.WriteEndElement();
             w.WriteEndElement();
         },
         "<R xmlns=\"urn:d\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
         "xmlns:t=\"urn:t\" xsi:type=\"t:T\"><C xsi:type=\"U\"/><D xsi:type=\"V\"/></R>"},
        {"nil with and without a bound instance namespace",
         InR([](CXmlTextWriter& w) {
             w.WriteStartElement("A", "");
             w.WriteAttributeNil();
             w.WriteEndElement();
             w.AddNamespace("xsi", kXsi);
             w.WriteStartElement("B", "");
             w.WriteAttributeNil();
             w.WriteEndElement();
         }),
         "<R><A xmlns:AA=\"http://www.w3.org/2001/XMLSchema-instance\" AA:nil=\"true\"/>"
         "<B xsi:nil=\"true\"/></R>"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.expected, Render(row.calls, Unformatted()));
    }
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

TEST(CXmlTextWriter, NoNamespaceElementUndeclaresTheDefaultNamespace) {
    struct Case {
        const char* name;
        Calls calls;
        const char* expected;
        // What a reader makes of the output: each element's namespace and name.
        const char* readBack;
    };
    const Case cases[] = {
        {"child in no namespace under a default namespace",
         [](CXmlTextWriter& w) {
             w.SetDefaultNamespace("urn:d");
             w.WriteStartElement("R", "urn:d");
             Empty(w, "E");
             w.WriteEndElement();
         },
         "<R xmlns=\"urn:d\"><E xmlns=\"\"/></R>", "{urn:d}R {}E"},
        {"descendants in no namespace need no further declaration",
         [](CXmlTextWriter& w) {
             w.SetDefaultNamespace("urn:d");
             w.WriteStartElement("R", "urn:d");
             w.WriteStartElement("E", "");
             Leaf(w, "F", "t");
             w.WriteStartElement("G", "");
             Empty(w, "H");
             w.WriteEndElement();
             w.WriteEndElement();
             w.WriteEndElement();
         },
         "<R xmlns=\"urn:d\"><E xmlns=\"\"><F>t</F><G><H/></G></E></R>",
         "{urn:d}R {}E {}F {}G {}H"},
        {"the old default namespace inside gets a generated prefix",
         [](CXmlTextWriter& w) {
             w.SetDefaultNamespace("urn:d");
             w.WriteStartElement("R", "urn:d");
             w.WriteStartElement("E", "");
             w.WriteStartElement("D", "urn:d");
             Empty(w, "X");
             w.WriteEndElement();
             Empty(w, "D2", "urn:d");
             w.WriteEndElement();
             Empty(w, "S", "urn:d");
             w.WriteEndElement();
         },
         "<R xmlns=\"urn:d\"><E xmlns=\"\"><AA:D xmlns:AA=\"urn:d\"><X/></AA:D>"
         "<AA:D2 xmlns:AA=\"urn:d\"/></E><S/></R>",
         "{urn:d}R {}E {urn:d}D {}X {urn:d}D2 {urn:d}S"},
        {"the old default namespace inside uses a prefix bound on the writer",
         [](CXmlTextWriter& w) {
             w.AddNamespace("d", "urn:d");
             w.SetDefaultNamespace("urn:d");
             w.WriteStartElement("R", "urn:d");
             w.WriteStartElement("E", "");
             w.WriteStartElement("D", "urn:d");
             w.WriteString("1", ItemType_string, false);
             w.WriteEndElement();
             w.WriteEndElement();
             w.WriteEndElement();
         },
         "<R xmlns=\"urn:d\" xmlns:d=\"urn:d\"><E xmlns=\"\"><d:D>1</d:D></E></R>",
         "{urn:d}R {}E {urn:d}D"},
        {"each no-namespace sibling declares it again",
         [](CXmlTextWriter& w) {
             w.SetDefaultNamespace("urn:d");
             w.WriteStartElement("R", "urn:d");
             Leaf(w, "A", "1");
             Leaf(w, "A", "2");
             Empty(w, "B", "urn:d");
             w.WriteEndElement();
         },
         "<R xmlns=\"urn:d\"><A xmlns=\"\">1</A><A xmlns=\"\">2</A><B/></R>",
         "{urn:d}R {}A {}A {urn:d}B"},
        {"inside an element of a prefixed namespace",
         [](CXmlTextWriter& w) {
             w.SetDefaultNamespace("urn:d");
             w.WriteStartElement("R", "urn:d");
             w.WriteStartElement("O", "urn:o");
             Empty(w, "E");
             w.WriteEndElement();
             w.WriteEndElement();
         },
         "<R xmlns=\"urn:d\"><AA:O xmlns:AA=\"urn:o\"><E xmlns=\"\"/></AA:O></R>",
         "{urn:d}R {urn:o}O {}E"},
        {"attributes, nil and type follow the declaration",
         [](CXmlTextWriter& w) {
             w.AddNamespace("xsi", kXsi);
             w.SetDefaultNamespace("urn:d");
             w.WriteStartElement("R", "urn:d");
             w.WriteStartElement("E", "");
             w.WriteAttributeString("a", "", "1", ItemType_string);
             w.WriteAttributeNil();
             w.WriteEndElement();
             w.WriteStartElement("F", "");
             w.WriteAttributeType("T", "urn:d", ItemType_string);
             w.WriteEndElement();
             w.WriteEndElement();
         },
         "<R xmlns=\"urn:d\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">"
         "<E xmlns=\"\" a=\"1\" xsi:nil=\"true\"/>"
         "<F xmlns=\"\" xmlns:AA=\"urn:d\"  xsi:type=\"AA:T\"/></R>",
         "{urn:d}R {}E {}F"},
        {"root in no namespace leaves the writer's default undeclared",
         [](CXmlTextWriter& w) {
             w.AddNamespace("p", "urn:p");
             w.SetDefaultNamespace("urn:d");
             w.WriteStartElement("R", "");
             Empty(w, "E");
             Empty(w, "D", "urn:d");
             Empty(w, "P", "urn:p");
             w.WriteEndElement();
         },
         "<R xmlns:p=\"urn:p\"><E/><AA:D xmlns:AA=\"urn:d\"/><p:P/></R>",
         "{}R {}E {urn:d}D {urn:p}P"},
        {"without a default namespace nothing is declared",
         [](CXmlTextWriter& w) {
             w.AddNamespace("p", "urn:p");
             w.WriteStartElement("R", "urn:p");
             w.WriteStartElement("E", "");
             Empty(w, "F");
             w.WriteEndElement();
             w.WriteEndElement();
         },
         "<p:R xmlns:p=\"urn:p\"><E><F/></E></p:R>", "{urn:p}R {}E {}F"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const std::string xml = Render(row.calls, Unformatted());
        EXPECT_EQ(row.expected, xml);
        EXPECT_EQ(row.readBack, ElementNamesAfterReading(xml));
    }
}

TEST(CXmlTextWriter, FormattedNoNamespaceElementsReadBackOutsideTheDefault) {
    const std::string xml = Render([](CXmlTextWriter& w) {
        w.WriteStartDocument();
        w.SetDefaultNamespace("urn:d");
        w.WriteStartElement("R", "urn:d");
        w.WriteStartElement("E", "");
        Leaf(w, "F", "x");
        Leaf(w, "G", "y");
        w.WriteEndElement();
        w.WriteEndElement();
    });
    EXPECT_EQ(
        "<?xml version=\"1.0\"?>\n<R xmlns=\"urn:d\">\n\t<E xmlns=\"\">\n\t\t<F>x</F>\n"
        "\t\t<G>y</G>\n\t</E>\n</R>\n",
        xml);
    EXPECT_EQ("{urn:d}R {}E {}F {}G", ElementNamesAfterReading(xml));
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
        Settings settings = Unformatted();
        settings.eol = row.eol;
        const std::string out = RenderAttributeAndText(row.in, settings);
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
        Settings settings = Unformatted();
        settings.eol = EOLType_CRLF;
        const std::string out = RenderAttributeAndText(in, settings);
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
    struct Case {
        const char* name;
        Calls setup;
        Calls misuse;
        const char* message;
    };
    const auto openWithText = [](CXmlTextWriter& w) {
        w.WriteStartElement("R", "");
        w.WriteString("t", ItemType_string, false);
    };
    const auto openWithChild = [](CXmlTextWriter& w) {
        w.WriteStartElement("R", "");
        Empty(w, "C");
    };
    const auto nothing = [](CXmlTextWriter&) {};
    const auto attribute = [](CXmlTextWriter& w) {
        w.WriteAttributeString("a", "", "1", ItemType_string);
    };
    const auto header = [](CXmlTextWriter& w) { w.WriteHeaderDirective("<!DOCTYPE R>"); };
    const Case cases[] = {
        {"attribute after text", openWithText, attribute, attributes},
        {"attribute after child", openWithChild, attribute, attributes},
        {"attribute outside any element", nothing, attribute, attributes},
        {"type after text", openWithText,
         [](CXmlTextWriter& w) { w.WriteAttributeType("T", "urn:t", ItemType_string); },
         attributes},
        {"nil after child", openWithChild, [](CXmlTextWriter& w) { w.WriteAttributeNil(); },
         attributes},
        {"header inside the root", [](CXmlTextWriter& w) { w.WriteStartElement("R", ""); },
         header, headers},
        {"header after the root", [](CXmlTextWriter& w) { Empty(w, "R"); }, header, headers},
        {"end without an element", nothing, [](CXmlTextWriter& w) { w.WriteEndElement(); },
         "There is no open Element to end."},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        CTextStream stream;
        CXmlTextWriter writer(stream);
        writer.SetFormat(false);
        row.setup(writer);
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
        {4092, {}, {4099}},
        {4093, {4096}, {4096}},
        {5000, {5003}, {5003}},
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
        Calls setup;
        Calls operation;
        size_t flushes;
    };
    const auto root = [](CXmlTextWriter& w) { w.WriteStartElement("R", ""); };
    const auto nothing = [](CXmlTextWriter&) {};
    const Case cases[] = {
        {"start document", nothing, [](CXmlTextWriter& w) { w.WriteStartDocument(); }, 1},
        {"header", nothing, [](CXmlTextWriter& w) { w.WriteHeaderDirective("<!X>"); }, 1},
        {"PI", nothing, [](CXmlTextWriter& w) { w.WritePI("<?p?>"); }, 1},
        {"comment", nothing, [](CXmlTextWriter& w) { w.WriteComment("c"); }, 1},
        {"inline schema", root, [](CXmlTextWriter& w) { w.WriteInlineSchema("<s/>"); }, 1},
        {"start element", nothing, [](CXmlTextWriter& w) { w.WriteStartElement("R", ""); }, 1},
        {"attribute", root,
         [](CXmlTextWriter& w) { w.WriteAttributeString("a", "", "1", ItemType_string); }, 1},
        {"type", root,
         [](CXmlTextWriter& w) { w.WriteAttributeType("T", "", ItemType_string); }, 1},
        {"nil", root, [](CXmlTextWriter& w) { w.WriteAttributeNil(); }, 1},
        {"text", root, [](CXmlTextWriter& w) { w.WriteString("t", ItemType_string, false); }, 1},
        {"end element", root, [](CXmlTextWriter& w) { w.WriteEndElement(); }, 1},
        {"raw element", root, [](CXmlTextWriter& w) { w.WriteRawElement("<raw/>"); }, 0},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        CountingStream stream;
        CXmlTextWriter writer(stream);
        writer.SetFormat(false);
        row.setup(writer);
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
