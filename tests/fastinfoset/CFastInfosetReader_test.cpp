#include <cctype>
#include <functional>
#include <string>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"
#include "WriterScript.h"

using namespace KxXmlLib16;

namespace {

typedef std::vector<unsigned char> Bytes;

const char kHeader[] = "E0 00 00 01 ";

// Hex pairs, with 'quoted text' standing for its ASCII octets.
Bytes Octets(const std::string& pattern) {
    Bytes bytes;
    for (std::string::size_type i = 0; i < pattern.size();) {
        if (pattern[i] == '\'') {
            const std::string::size_type end = pattern.find('\'', i + 1);
            bytes.insert(bytes.end(), pattern.begin() + i + 1, pattern.begin() + end);
            i = end + 1;
        } else if (std::isxdigit(static_cast<unsigned char>(pattern[i]))) {
            bytes.push_back(
                static_cast<unsigned char>(std::stoi(pattern.substr(i, 2), nullptr, 16)));
            i += 2;
        } else {
            ++i;
        }
    }
    return bytes;
}

// The tree in one line: {ns}name, attributes, [text], children, and the prefix map.
void DumpElement(const CXmlElement* element, std::string& out) {
    out += "<{" + element->GetNamespaceURI() + "}" + element->GetLocalName();
    for (const CXmlAttribute* attribute : element->GetAttributes()) {
        out += " {" + attribute->GetNamespaceURI() + "}" + attribute->GetLocalName() + "=\"" +
               attribute->GetValue() + "\"";
    }
    out += ">";
    if (!element->GetText().empty()) out += "[" + element->GetText() + "]";
    for (const CXmlElement* child = element->GetFirstElement(); child != nullptr;
         child = child->GetNextSiblingElement()) {
        DumpElement(child, out);
    }
    out += "</>";
}

std::string Dump(const CXmlDocument& document, bool withPrefixes = true) {
    std::string out;
    if (document.GetDocumentElement() != nullptr) DumpElement(document.GetDocumentElement(), out);
    if (withPrefixes) {
        for (const auto& binding : document.GetPrefixMap()) {
            out += " " + binding.first + "=" + binding.second;
        }
    }
    return out;
}

std::string LoadFastInfoset(const Bytes& bytes, const CSerializationContext& context,
                            bool withPrefixes = true) {
    CXmlDocument document(context);
    document.LoadXmlStream(bytes.data(), static_cast<unsigned long>(bytes.size()));
    return Dump(document, withPrefixes);
}

std::string LoadText(const std::string& xml, const CSerializationContext& context,
                     bool withPrefixes = true) {
    CXmlDocument document(context);
    document.LoadXml(xml.c_str());
    return Dump(document, withPrefixes);
}

// The reader's two configurations: namespaces and stripped CDATA markers (the default), and
// no namespace processing with the markers kept.
std::vector<CSerializationContext> Contexts() {
    std::vector<CSerializationContext> contexts(2);
    contexts[1].SetSchemaType(SchemaType_NoNamespace);
    contexts[1].SetStripCDATA(false);
    return contexts;
}

struct Document {
    const char* what;
    const char* octets;  // after the identification and version
    const char* xml;     // the same document as XML text
};

// Documents as a conforming encoder writes them, most of them the independent encoder's own
// output, including constructs our writer never emits.
const Document kDocuments[] = {
    {"smallest", "00 3C 00 'a' FF", "<a/>"},
    {"attribute list then document end", "00 7C 00 'a' 78 00 'x' 40 '1' FF F0", "<a x='1'/>"},
    {"two ends then text", "00 3C 00 'a' 3C 00 'b' 3C 00 'c' FF 90 'x' FF", "<a><b><c/></b>x</a>"},
    {"attribute list then child", "00 3C 00 'a' 7C 00 'b' 78 00 'x' 40 '1' F0 3C 00 'c' FF FF",
     "<a><b x='1'><c/></b></a>"},
    {"empty attribute value", "00 7C 00 'a' 78 00 'x' FF F0 FF", "<a x=''/>"},
    {"names and values by index",
     "00 7C 00 'a' 78 00 'x' 40 'v' 78 00 'y' 80 F0 7C 00 'b' 00 40 'w' FF 41 00 80 FF FF",
     "<a x='v' y='v'><b x='w'/><b x='v'/></a>"},
    {"chunk by index", "00 3C 00 'a' 3C 00 'b' 91 'hi' F0 01 A0 FF F0",
     "<a><b>hi</b><b>hi</b></a>"},
    {"whitespace and carriage returns",
     "00 3C 00 'a' 92 00 0A 20 20 3C 00 'b' F0 92 01 'x' 0D 0A 'y' FF", "<a>\n  <b/>x\r\ny</a>"},
    {"default namespace", "00 38 CD 04 'urn:x' F0 3D 81 00 'a' 3D 81 00 'b' FF F0",
     "<a xmlns='urn:x'><b/></a>"},
    {"default namespace undeclared", "00 38 CD 04 'urn:x' F0 3D 81 00 'a' 38 CC F0 3C 00 'b' FF F0",
     "<a xmlns='urn:x'><b xmlns=''/></a>"},
    {"prefixed names and attributes",
     "00 78 CF 00 'p' 04 'urn:x' F0 3F 81 81 00 'a' 7B 81 81 01 'at' 40 'v' F0 "
     "3F 81 81 00 'b' FF F0",
     "<p:a xmlns:p='urn:x' p:at='v'><p:b/></p:a>"},
    {"namespace attributes on inner elements",
     "00 38 CF 00 'p' 04 'urn:x' F0 3F 81 81 00 'a' 38 CF 81 81 F0 3F 81 81 00 'b' F0 "
     "38 CF 00 'q' 81 F0 3F 82 81 81 F0 38 CF 81 04 'urn:y' F0 3F 81 82 00 'c' FF F0",
     "<p:a xmlns:p='urn:x'><p:b xmlns:p='urn:x'/><q:b xmlns:q='urn:x'/>"
     "<p:c xmlns:p='urn:y'/></p:a>"},
    {"xml prefix built in", "00 7C 00 'a' 7B 80 80 03 'lang' 41 'en' F0 FF", "<a xml:lang='en'/>"},
    {"comments and processing instructions",
     "00 E2 40 'c' E1 01 'pi' 43 'data' 3C 00 'a' E2 80 E1 80 81 F0 E2 80 F0",
     "<!--c--><?pi data?><a><!--c--><?pi data?></a><!--c-->"},
    {"document type declaration", "00 C5 04 'a.dtd' E1 00 't' FF F0 3C 00 'a' FF", "<a/>"},
    {"header components", "07 04 'UTF-8' 01 02 '1.0' 3C 00 'a' FF", "<a/>"},
    {"UTF-16 value and chunk", "00 7C 00 'a' 78 00 'x' 53 00 'h' 00 E9 F0 96 01 00 'h' 00 E9 FF",
     "<a x='h\xC3\xA9'>h\xC3\xA9</a>"},
    {"UTF-16 surrogate pair", "00 3C 00 'a' 86 01 D8 3D DE 00 FF", "<a>\xF0\x9F\x98\x80</a>"},
    {"four-octet UTF-8", "00 3C 00 'a' 92 01 F0 9F 98 80 FF", "<a>\xF0\x9F\x98\x80</a>"},
    {"restricted alphabets, added then indexed",
     "00 7C 00 'a' 78 00 'd' 60 12 12 B3 0D 78 00 'e' 80 F0 98 01 12 3F A0 "
     "98 06 06 20 20 A0 1A 02 C0 3B 04 DF FF",
     "<a d='12:30Z' e='12:30Z'>1231232020-01-02T03:04Z</a>"},
    {"numeric alphabet letters", "00 3C 00 'a' 88 02 01 A1 C5 DE 3B FF", "<a>-1.5e 3+</a>"},
    {"encoding algorithms",
     "00 3C 00 'r' 3C 00 'h' 8C 02 00 01 AB CD F0 3C 00 'b' 8C 06 01 01 02 03 04 F0 "
     "3C 00 's' 8C 0A 01 00 01 FF FE F0 7C 00 'i' 78 00 'v' 30 37 00 00 00 01 FF FF FF FE FF "
     "3C 00 'o' 8C 14 1A F0 3C 00 'f' 8C 1A 05 3F C0 00 00 BE 80 00 00 FF F0",
     "<r><h>01ABCD</h><b>AQIDBA==</b><s>1 -2</s><i v='1 -2'/><o>true false true</o>"
     "<f>1.5 -0.25</f></r>"},
    {"CDATA algorithm", "00 3C 00 'a' 8C 26 00 'x<y' FF", "<a><![CDATA[x<y]]></a>"},
    {"initial vocabulary names",
     "20 03 82 00 00 'p' 00 04 'urn:x' 00 00 'a' 00 03 01 01 00 38 CF 81 81 F0 00 FF",
     "<p:a xmlns:p='urn:x'/>"},
    {"initial vocabulary values", "20 00 18 00 02 'abc' 00 00 'x' 7C 00 'a' 78 00 'v' 80 F0 A0 FF",
     "<a v='abc'>x</a>"},
};

Bytes Encoded(const Document& document) {
    return Octets(std::string(kHeader) + document.octets);
}

// The same calls on the XML text writer and on the Fast Infoset writer.
typedef std::function<void(CXmlWriter&)> Calls;

std::string WrittenAsText(const Calls& calls) {
    CTextStream stream(XmlEncoding_UTF8);
    CXmlTextWriter writer(stream);
    writer.Open();
    writer.SetFormat(false);
    calls(writer);
    writer.Close();
    return stream.GetText();
}

Bytes WrittenAsFastInfoset(const Calls& calls, CFastInfosetContext& settings,
                           FInfoDecl declaration = FInfoDecl_None) {
    CBinaryStream stream;
    CFastInfosetWriter writer(stream, settings);
    writer.WriteStartDocument(declaration);
    calls(writer);
    writer.WriteEndDocument();
    const CBinaryData& data = stream.GetBinaryStream();
    return Bytes(data.GetData(), data.GetData() + data.GetLength());
}

}  // namespace

TEST(CFastInfosetReader, BuildsTheTreeOfTheEquivalentXmlText) {
    const std::vector<CSerializationContext> contexts = Contexts();
    for (const Document& document : kDocuments) {
        SCOPED_TRACE(document.what);
        for (const CSerializationContext& context : contexts) {
            SCOPED_TRACE(context.GetSchemaType());
            EXPECT_EQ(LoadText(document.xml, context), LoadFastInfoset(Encoded(document), context));
        }
    }
}

TEST(CFastInfosetReader, ReadsWhatTheWriterWrites) {
    const std::string longText(300, 'x');
    struct Case {
        const char* what;
        Calls calls;
    };
    const Case cases[] = {
        {"nesting, mixed content and repeated values",
         [](CXmlWriter& w) {
             KxTest::RunScript(w, "<r <item @k=v =t <e/ =after / <item @k=v =t <e/ =after / "
                                  "<item @k=v =t <e/ =after / /");
         }},
        {"namespaces, prefixed attributes, nil and type",
         [](CXmlWriter& w) {
             KxTest::RunScript(w, "<{urn:a}r @{urn:b}at=1 <{urn:b}c xsi:nil / "
                                  "<d xsi:type={urn:a}T =x / /");
         }},
        {"typed values, long and non-ASCII text",
         [&longText](CXmlWriter& w) {
             w.WriteStartElement("r", "");
             w.WriteAttributeString("n", "", "-12", ItemType_i4);
             w.WriteAttributeString("when", "", "2020-01-02", ItemType_date);
             const std::pair<ItemType, const char*> values[] = {
                 {ItemType_i2, "-2"}, {ItemType_i8, "1234567890123"}, {ItemType_boolean, "true"},
                 {ItemType_hexBinary, "01ABFF"}, {ItemType_base64Binary, "AQID"},
                 {ItemType_r8, "1.5"}, {ItemType_decimal, "-1.25"},
                 {ItemType_datetime, "2020-01-02T03:04:05Z"},
                 {ItemType_string, "h\xC3\xA9 \xF0\x9F\x98\x80"}};
             for (const auto& value : values) {
                 w.WriteStartElement("v", "");
                 w.WriteString(value.second, value.first, false);
                 w.WriteEndElement();
             }
             w.WriteStartElement("long", "");
             w.WriteAttributeString("a", "", longText, ItemType_string);
             w.WriteString(longText, ItemType_string, false);
             w.WriteEndElement();
             w.WriteEndElement();
         }},
        {"thousands of names and values, indexes of every width",
         [](CXmlWriter& w) {
             w.WriteStartElement("r", "");
             for (int round = 0; round < 2; ++round) {
                 for (int i = 0; i < 2200; ++i) {
                     const std::string n = std::to_string(i);
                     w.WriteStartElement("e" + n, "");
                     w.WriteAttributeString("a" + n, "", n, ItemType_string);
                     w.WriteString(n, ItemType_string, false);
                     w.WriteEndElement();
                 }
             }
             w.WriteEndElement();
         }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        for (bool suggested : {false, true}) {
            for (bool vocabulary : {false, true}) {
                SCOPED_TRACE(std::string(suggested ? "suggested encodings " : "") +
                             (vocabulary ? "external vocabulary" : ""));
                CSerializationContext context;
                CFastInfosetContext& settings = *context.GetFIContext();
                settings.SetAttributeMaxAddLength(400);
                settings.SetElementMaxAddLength(400);
                if (suggested) settings.SetSuggestedValues();
                if (vocabulary) {
                    settings.SetUseGeneratedVocabulary(true);
                    settings.GetVocabulary().AddElement("", "", "item");
                    settings.GetVocabulary().AddAttribute("", "", "k");
                    settings.GetVocabulary().AddElementValue("t");
                }
                const Bytes bytes = WrittenAsFastInfoset(c.calls, settings, FInfoDecl_4);
                // Prefix names are the writers' own choice: compare the names they stand for.
                EXPECT_EQ(LoadText(WrittenAsText(c.calls), context, false),
                          LoadFastInfoset(bytes, context, false));
            }
        }
    }
}

TEST(CFastInfosetReader, ExternalVocabularyMustBeTheContextOne) {
    // Element 1, local name 1 and attribute value 1 come from the vocabulary.
    const Bytes bytes =
        Octets(std::string(kHeader) + "20 10 00 06 'urn:voc' 40 78 00 'x' 80 F0 A0 FF");
    CSerializationContext context;
    CFastInfosetContext& settings = *context.GetFIContext();
    settings.GetVocabulary().AddElement("", "urn:n", "a");
    settings.GetVocabulary().AddAttributeValue("v");
    settings.GetVocabulary().AddElementValue("hi");
    KxTest::ExpectKxError<CKxException>(
        [&] { LoadFastInfoset(bytes, context); },
        "Fast Infoset document needs the external vocabulary [urn:voc]");
    settings.SetExternalVocabularyURI("urn:voc");
    EXPECT_EQ("<{urn:n}a {}x=\"v\">[hi]</><{urn:n}a {urn:n}x=\"v\">[hi]</>",
              LoadFastInfoset(bytes, context, false) +
                  LoadFastInfoset(Octets(std::string(kHeader) +
                                         "20 10 00 06 'urn:voc' 40 79 81 00 'x' 80 F0 A0 FF"),
                                  context, false));
}

TEST(CFastInfosetReader, RefusesMalformedDocumentsWithOneClearMessage) {
    struct Case {
        const char* what;
        const char* octets;   // after the identification and version
        const char* message;  // after "Invalid Fast Infoset document: "
    };
    const Case cases[] = {
        {"padding bit of the header", "80 3C 00 'a' FF",
         "non-zero padding bit in the header at offset 4"},
        {"no element", "00 E2 FF F0", "document without an element at offset 7"},
        {"double terminator at document level", "00 FF",
         "terminator without an open list at offset 5"},
        {"second root", "00 3C 00 'a' F0 3C 00 'b' FF", "second document element at offset 9"},
        {"trailing bytes", "00 3C 00 'a' FF 00", "data after the end of the document at offset 9"},
        {"element index past the table", "00 3C 00 'a' 01 FF",
         "element name index 2 beyond the table (1 entries) at offset 8"},
        {"element index past 2^20", "00 3C 00 'a' 30 07 F7 E0 FF",
         "index 1048577 beyond 2^20 at offset 11"},
        {"padding of a four-octet element index", "00 3C 00 'a' 30 10 00 00 FF",
         "non-zero padding in an element name index at offset 9"},
        {"attribute name index past the table", "00 7C 00 'a' 00 80 FF F0",
         "attribute name index 1 beyond the table (0 entries) at offset 8"},
        {"prefix index past the table", "00 3F 81 81 00 'a' FF",
         "prefix index 2 beyond the table (1 entries) at offset 6"},
        {"chunk index past the table", "00 3C 00 'a' A0 FF",
         "character chunk index 1 beyond the table (0 entries) at offset 8"},
        {"value index past the table", "00 7C 00 'a' 78 00 'x' 81 F0 FF",
         "attribute value index 2 beyond the table (0 entries) at offset 11"},
        {"reserved element octet", "00 31 FF", "invalid element octet 0x31 at offset 5"},
        {"prefix without namespace in a name", "00 3E 00 'p' 00 'a' FF",
         "invalid element octet 0x3E at offset 5"},
        {"reserved attribute octet", "00 7C 00 'a' 7A FF",
         "invalid attribute octet 0x7A at offset 8"},
        {"reserved item at document level", "00 80", "invalid item octet 0x80 at offset 5"},
        {"reserved item in an element", "00 3C 00 'a' E3 FF",
         "invalid item octet 0xE3 at offset 8"},
        {"reserved chunk index form", "00 3C 00 'a' B9 FF",
         "invalid character chunk octet 0xB9 at offset 8"},
        {"unexpanded entity reference", "00 3C 00 'a' C8 00 'e' FF",
         "unexpanded entity reference at offset 8"},
        {"terminator after namespace attributes", "00 38 CD 00 'u' FF",
         "invalid namespace attribute octet 0xFF at offset 9"},
        {"invalid UTF-8", "00 3C 01 C3 28 FF", "invalid UTF-8 at offset 7"},
        {"overlong UTF-8", "00 3C 00 'a' 91 C0 AF FF", "invalid UTF-8 at offset 9"},
        {"control character", "00 3C 00 'a' 80 01 FF", "character not allowed in XML at offset 9"},
        {"odd UTF-16 length", "00 3C 00 'a' 84 'x' FF", "odd UTF-16 length at offset 9"},
        {"unpaired surrogate", "00 3C 00 'a' 85 D8 00 FF", "invalid UTF-16 at offset 9"},
        {"unknown restricted alphabet", "00 3C 00 'a' 88 08 12 FF",
         "unknown restricted alphabet 3 at offset 10"},
        {"padding code inside alphabet data", "00 3C 00 'a' 88 01 F1 23 FF",
         "invalid restricted alphabet code at offset 10"},
        {"reserved encoding algorithm", "00 3C 00 'a' 8C 28 00 FF",
         "reserved encoding algorithm 11 at offset 10"},
        {"application encoding algorithm", "00 3C 00 'a' 8D 7C 00 FF",
         "unknown encoding algorithm 96 at offset 10"},
        {"algorithm data of the wrong size", "00 3C 00 'a' 8C 0E 00 01 02 03 FF",
         "encoding algorithm 4 data rejected (Invalid value for INT byte encoding.) at offset 11"},
        {"length past the data", "00 3C 3F 'a' FF", "unexpected end of data at offset 7"},
        {"four-octet length past the data", "00 3C 00 'a' 83 FF FF FF FF 'x'",
         "unexpected end of data at offset 13"},
        {"reserved length form", "00 7C 00 'a' 78 00 'x' 09 FF",
         "invalid length octet 0x09 at offset 11"},
        {"alphabets defined by the document", "20 08 00 00 00 '0' 3C 00 'a' FF",
         "restricted alphabets defined by the document are not supported at offset 6"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const Bytes bytes = Octets(std::string(kHeader) + c.octets);
        for (const CSerializationContext& context : Contexts()) {
            KxTest::ExpectKxError<CKxException>(
                [&] { LoadFastInfoset(bytes, context); },
                std::string("Invalid Fast Infoset document: ") + c.message);
        }
    }
}

TEST(CFastInfosetReader, EveryTruncationFailsAsUnexpectedEnd) {
    const CSerializationContext context;
    for (const Document& document : kDocuments) {
        SCOPED_TRACE(document.what);
        const Bytes whole = Encoded(document);
        for (size_t length = sizeof kHeader / 3; length < whole.size(); ++length) {
            SCOPED_TRACE(length);
            const Bytes cut(whole.begin(), whole.begin() + static_cast<long>(length));
            try {
                LoadFastInfoset(cut, context);
                ADD_FAILURE() << "accepted";
            } catch (const CKxException& error) {
                EXPECT_EQ(0u,
                          error.GetMessage().find(
                              "Invalid Fast Infoset document: unexpected end of data at offset "))
                    << error.GetMessage();
            }
        }
    }
}

TEST(CFastInfosetReader, DeepNestingNeedsNoRecursion) {
    const int depth = static_cast<int>(CXmlDocument::kMaxDepth);  // even: two ends per FF
    Bytes bytes = Octets(std::string(kHeader) + "00 3C 00 'a'");
    bytes.insert(bytes.end(), depth - 1, 0x00);  // element index 1 inside itself
    bytes.insert(bytes.end(), depth / 2, 0xFF);  // two ends each, the last one the document's
    bytes.push_back(0xF0);
    CXmlDocument document;
    document.LoadXmlStream(bytes.data(), static_cast<unsigned long>(bytes.size()));
    int levels = 0;
    for (const CXmlElement* e = document.GetDocumentElement(); e != nullptr;
         e = e->GetFirstElement()) {
        ++levels;
    }
    EXPECT_EQ(depth, levels);
}

TEST(CFastInfosetReader, IndexedTextCannotExpandWithoutBound) {
    // A 64 KiB chunk added to the table, then referenced 1500 times by one octet each.
    Bytes bytes = Octets(std::string(kHeader) + "00 3C 00 'a' 93 00 00 FE FD");
    bytes.insert(bytes.end(), 65536, 'x');
    bytes.insert(bytes.end(), 1500, 0xA0);
    bytes.push_back(0xFF);
    KxTest::ExpectKxError<CKxException>(
        [&] { LoadFastInfoset(bytes, CSerializationContext()); },
        "Invalid Fast Infoset document: indexed text expands beyond the size limit at offset "
        "66638");
}
