#include <cctype>
#include <functional>
#include <string>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"
#include "WriterScript.h"

using namespace KxXmlLib16;

namespace {

void AddHexOctet(std::string& hex, unsigned char byte) {
    static const char digits[] = "0123456789ABCDEF";
    if (!hex.empty()) hex += ' ';
    hex += digits[byte >> 4];
    hex += digits[byte & 0x0F];
}

std::string ToHex(const CBinaryData& data) {
    std::string hex;
    for (unsigned long i = 0; i < data.GetLength(); ++i) AddHexOctet(hex, data.GetData()[i]);
    return hex;
}

// Expected octets written as hex pairs, with 'quoted text' standing for its ASCII octets.
std::string Octets(const std::string& pattern) {
    std::string hex;
    for (std::string::size_type i = 0; i < pattern.size();) {
        if (pattern[i] == '\'') {
            const std::string::size_type end = pattern.find('\'', i + 1);
            for (std::string::size_type j = i + 1; j < end; ++j) {
                AddHexOctet(hex, static_cast<unsigned char>(pattern[j]));
            }
            i = end + 1;
        } else if (std::isxdigit(static_cast<unsigned char>(pattern[i]))) {
            const int byte = std::stoi(pattern.substr(i, 2), nullptr, 16);
            AddHexOctet(hex, static_cast<unsigned char>(byte));
            i += 2;
        } else {
            ++i;
        }
    }
    return hex;
}

typedef std::function<void(CFastInfosetWriter&)> Calls;

// The octets of a whole document: header, `calls`, end of document.
std::string Document(const Calls& calls, CFastInfosetContext& context,
                     FInfoDecl declaration = FInfoDecl_None) {
    CBinaryStream stream;
    CFastInfosetWriter writer(stream, context);
    writer.WriteStartDocument(declaration);
    calls(writer);
    writer.WriteEndDocument();
    return ToHex(stream.GetBinaryStream());
}

std::string Document(const Calls& calls) {
    CFastInfosetContext context;
    return Document(calls, context);
}

const char kHeader[] = "E0 00 00 01 00 ";

// The calls of a writer script (see WriterScript.h).
Calls S(const char* script) {
    return [script](CFastInfosetWriter& w) { KxTest::RunScript(w, script); };
}

struct DocumentCase {
    const char* what;
    Calls calls;
    const char* octets;  // after the header
};

void ExpectDocuments(const std::vector<DocumentCase>& cases) {
    for (const DocumentCase& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(Octets(std::string(kHeader) + c.octets), Document(c.calls));
    }
}

}  // namespace

TEST(CFastInfosetWriter, StructureAndTerminators) {
    ExpectDocuments({
        {"empty root", S("<r/"), "3C 00 'r' FF"},
        {"one child", S("<a <b/ /"), "3C 00 'a' 3C 00 'b' FF F0"},
        {"three levels", S("<a <b <c/ / /"), "3C 00 'a' 3C 00 'b' 3C 00 'c' FF FF"},
        {"text after two ends", S("<a <b <c/ / =x /"),
         "3C 00 'a' 3C 00 'b' 3C 00 'c' FF 90 'x' FF"},
        {"text after one child end closes the child first", S("<a <b/ =x /"),
         "3C 00 'a' 3C 00 'b' F0 90 'x' FF"},
        {"sibling after an end", S("<a <b/ <c/ /"), "3C 00 'a' 3C 00 'b' F0 3C 00 'c' FF F0"},
        {"repeated element name and chunk by index", S("<a b=hi b=hi /"),
         "3C 00 'a' 3C 00 'b' 91 'hi' F0 01 A0 FF F0"},
        {"empty text writes nothing", S("<a = /"), "3C 00 'a' FF"},
        {"comments, instructions and schemas write nothing",
         [](CFastInfosetWriter& w) {
             w.WriteComment("c");
             w.WritePI("<?pi data?>");
             w.WriteStartElement("a", "");
             w.WriteInlineSchema("<xs:schema/>");
             w.WriteEndElement();
         },
         "3C 00 'a' FF"},
        {"one attribute", S("<a @x=1 /"), "7C 00 'a' 78 00 'x' 40 '1' F0 FF"},
        {"attribute names and values by index", S("<a @x=v @y=v <b @x=w / <b @x=v / /"),
         "7C 00 'a' 78 00 'x' 40 'v' 78 00 'y' 80 F0 7C 00 'b' 00 40 'w' F0 F0 41 00 80 F0 FF F0"},
        {"empty attribute value", S("<a @x= /"), "7C 00 'a' 78 00 'x' FF F0 FF"},
        {"attribute value below the add limit is indexed", S("<a @x=abcde @y=abcde /"),
         "7C 00 'a' 78 00 'x' 44 'abcde' 78 00 'y' 80 F0 FF"},
        {"attribute value at the add limit is literal twice", S("<a @x=abcdef @y=abcdef /"),
         "7C 00 'a' 78 00 'x' 05 'abcdef' 78 00 'y' 05 'abcdef' F0 FF"},
        {"chunk lengths and the add limit", S("<a =xyz =abcdef =abcdef =xyz /"),
         "3C 00 'a' 92 00 'xyz' 82 03 'abcdef' 82 03 'abcdef' A0 FF"},
        {"long attribute value takes a length octet", S("<a @x=123456789 /"),
         "7C 00 'a' 78 00 'x' 08 00 '123456789' F0 FF"},
    });
}

TEST(CFastInfosetWriter, NamespacesAreDeclaredWhereUsed) {
    ExpectDocuments({
        {"writer default namespace on the root", S("xmlns=urn:x <{urn:x}a <{urn:x}b/ /"),
         "38 CD 04 'urn:x' F0 3D 81 00 'a' 3D 81 00 'b' FF F0"},
        {"writer prefix on the root, used by a name and an attribute",
         S("xmlns:p=urn:x <{urn:x}a @{urn:x}at=v <{urn:x}b/ /"),
         "78 CF 00 'p' 04 'urn:x' F0 3F 81 81 00 'a' 7B 81 81 01 'at' 40 'v' F0 "
         "3F 81 81 00 'b' FF F0"},
        {"no block for the built-in xml binding alone",
         S("<a @{http://www.w3.org/XML/1998/namespace}lang=en /"),
         "7C 00 'a' 7B 80 80 03 'lang' 41 'en' F0 FF"},
        {"unbound element namespace gets a fresh prefix", S("<{urn:x}a/"),
         "38 CF 01 'AA' 04 'urn:x' F0 3F 81 81 00 'a' FF"},
        {"no-namespace child undeclares the default", S("xmlns=urn:x <{urn:x}a <b/ /"),
         "38 CD 04 'urn:x' F0 3D 81 00 'a' 38 CC F0 3C 00 'b' FF F0"},
        {"no-namespace root does not declare the writer default", S("xmlns=urn:x <a/"),
         "3C 00 'a' FF"},
        {"nil declares the instance namespace", S("<a xsi:nil /"),
         "78 CF 01 'AA' 28 'http://www.w3.org/2001/XMLSchema-instance' F0 3C 00 'a' "
         "7B 81 81 02 'nil' 43 'true' F0 FF"},
        {"type declares its type namespace and the instance namespace",
         S("<a xsi:type={urn:t}T /"),
         "78 CF 01 'AA' 04 'urn:t' CF 01 'AB' 28 'http://www.w3.org/2001/XMLSchema-instance' "
         "F0 3C 00 'a' 7B 82 82 03 'type' 43 'AA:T' F0 FF"},
        {"type in the default namespace has no prefix",
         S("xmlns=urn:x xmlns:xsi=" KX_TEST_XSI " <{urn:x}a xsi:type={urn:x}T /"),
         "78 CD 04 'urn:x' CF 02 'xsi' 28 'http://www.w3.org/2001/XMLSchema-instance' F0 "
         "3D 81 00 'a' 7B 81 82 03 'type' 40 'T' F0 FF"},
        {"a binding made on one element is reused by its child", S("<{urn:x}a <{urn:x}b/ /"),
         "38 CF 01 'AA' 04 'urn:x' F0 3F 81 81 00 'a' 3F 81 81 00 'b' FF F0"},
    });
}

TEST(CFastInfosetWriter, HeaderDeclarationAndVocabulary) {
    struct Case {
        const char* what;
        FInfoDecl declaration;
        bool generatedVocabulary;
        const char* uri;
        const char* octets;
    };
    const Case cases[] = {
        {"plain", FInfoDecl_None, false, "", "E0 00 00 01 00 3C 00 'a' FF"},
        {"first declaration", FInfoDecl_1, false, "",
         "'<?xml encoding=' 27 'finf' 27 '?>' E0 00 00 01 00 3C 00 'a' FF"},
        {"ninth declaration", FInfoDecl_9, false, "",
         "'<?xml version=' 27 '1.1' 27 ' encoding=' 27 'finf' 27 ' standalone=' 27 'no' 27 "
         "'?>' E0 00 00 01 00 3C 00 'a' FF"},
        {"external vocabulary named by the context", FInfoDecl_None, true, "urn:voc",
         "E0 00 00 01 20 10 00 06 'urn:voc' 00 FF"},
        {"external vocabulary with the default name", FInfoDecl_None, true, "",
         "E0 00 00 01 20 10 00 24 'urn:kxxmllib16:fastinfoset:vocabulary' 00 FF"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        CFastInfosetContext context;
        // The vocabulary only counts when the context says to use it: element "a" is index 1.
        context.GetVocabulary().AddElement("", "", "a");
        context.SetUseGeneratedVocabulary(c.generatedVocabulary);
        context.SetExternalVocabularyURI(c.uri);
        EXPECT_EQ(Octets(c.octets), Document(S("<a/"), context, c.declaration));
    }
    EXPECT_EQ(std::string("urn:kxxmllib16:fastinfoset:vocabulary"),
              CFastInfosetWriter::DefaultExternalVocabularyURI);
}

TEST(CFastInfosetWriter, EncodedValuesFollowTheEncodingTable) {
    struct Case {
        const char* what;
        ItemType type;
        const char* value;
        const char* attributeOctets;
        const char* chunkOctets;
    };
    const Case cases[] = {
        {"decimal, numeric alphabet", ItemType_decimal, "123", "60 01 12 3F", "98 01 12 3F"},
        {"decimal, even length", ItemType_decimal, "-1.5", "60 01 A1 C5", "98 01 A1 C5"},
        {"time, date alphabet", ItemType_time, "1:2Z", "60 11 1B 2D", "98 05 1B 2D"},
        {"int algorithm", ItemType_i4, "-2", "70 33 FF FF FF FE", "9C 0E 01 FF FF FF FE"},
        {"boolean algorithm", ItemType_boolean, "true", "70 50 38", "9C 14 38"},
        {"string stays UTF-8", ItemType_string, "ab", "41 'ab'", "91 'ab'"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        CFastInfosetContext context;
        context.SetSuggestedValues();
        const std::string attribute = Document(
            [&c](CFastInfosetWriter& w) {
                w.WriteStartElement("a", "");
                w.WriteAttributeString("x", "", c.value, c.type);
                w.WriteEndElement();
            },
            context);
        EXPECT_EQ(Octets(std::string(kHeader) + "7C 00 'a' 78 00 'x' " + c.attributeOctets +
                         " F0 FF"),
                  attribute);
        const std::string chunk = Document(
            [&c](CFastInfosetWriter& w) {
                w.WriteStartElement("a", "");
                w.WriteString(c.value, c.type, false);
                w.WriteString(c.value, c.type, false);
                w.WriteEndElement();
            },
            context);
        // The second, equal value comes from the chunk table.
        EXPECT_EQ(Octets(std::string(kHeader) + "3C 00 'a' " + c.chunkOctets + " A0 FF"),
                  chunk);
    }
}

TEST(CFastInfosetWriter, FailuresCarryTheirMessages) {
    typedef std::function<void(CFastInfosetContext&)> Setup;
    struct Case {
        const char* what;
        Setup setup;
        Calls calls;
        const char* message;
    };
    const auto attribute = [](const char* value, ItemType type) {
        return Calls([value, type](CFastInfosetWriter& w) {
            w.WriteStartElement("a", "");
            w.WriteAttributeString("x", "", value, type);
            w.WriteEndElement();
        });
    };
    const auto chunk = [](const char* value, ItemType type) {
        return Calls([value, type](CFastInfosetWriter& w) {
            w.WriteStartElement("a", "");
            w.WriteString(value, type, false);
        });
    };
    const Setup plain = [](CFastInfosetContext&) {};
    const Setup suggested = [](CFastInfosetContext& c) { c.SetSuggestedValues(); };
    const Setup alphabet3 = [](CFastInfosetContext& c) {
        c.SetEncoding(ItemType_string, CFastInfosetContext::ECS_RestrictedAlphabet, 3);
    };
    const Setup algorithm11 = [](CFastInfosetContext& c) {
        c.SetEncoding(ItemType_string, CFastInfosetContext::ECS_EncodingAlgorithm, 11);
    };
    const Setup algorithm0 = [](CFastInfosetContext& c) {
        c.SetEncoding(ItemType_string, CFastInfosetContext::ECS_EncodingAlgorithm, 0);
    };
    const Setup unknownKind = [](CFastInfosetContext& c) {
        c.SetEncoding(ItemType_string, static_cast<CFastInfosetContext::EncodedCharacterString>(5),
                      0);
    };
    const Case cases[] = {
        {"attribute after a child", plain, S("<a <b/ @x=1"),
         "Attributes must be added before elements"},
        {"nil after text", plain, S("<a =t xsi:nil"), "Attributes must be added before elements"},
        {"type outside any element", plain, S("xsi:type=T"),
         "Attributes must be added before elements"},
        {"alphabet 3 in an attribute", alphabet3, attribute("1", ItemType_string),
         "Failed to write FastInfoset. Invalid Restricted Alphabet value [3]"},
        {"alphabet 3 in a chunk", alphabet3, chunk("1", ItemType_string),
         "Failed to write FastInfoset. Invalid Restricted Alphabet value [3]"},
        {"algorithm 11", algorithm11, chunk("1", ItemType_string),
         "Failed to write FastInfoset. Invalid Encoding Algorithm value [11]"},
        {"algorithm 0", algorithm0, attribute("1", ItemType_string),
         "Failed to write FastInfoset. Invalid Encoding Algorithm value [0]"},
        {"unknown kind in a chunk", unknownKind, chunk("1", ItemType_string),
         "Failed to write FastInfoset. Unknown encoding in EncodedCharacterStringBit5."},
        {"unknown kind in an attribute", unknownKind, attribute("1", ItemType_string),
         "Failed to write FastInfoset. Unknown encoding in EncodedCharacterStringBit7."},
        {"space in a numeric value", suggested, chunk("1 2", ItemType_decimal),
         "Failed to write FastInfoset. Invalid character not found for Restricted Alphabet."},
        {"lowercase t in a date-time", suggested,
         attribute("2020-01-01t00:00:00", ItemType_datetime),
         "Failed to write FastInfoset. Invalid character not found for Restricted Alphabet."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        CFastInfosetContext context;
        c.setup(context);
        CBinaryStream stream;
        CFastInfosetWriter writer(stream, context);
        writer.WriteStartDocument(FInfoDecl_None);
        KxTest::ExpectKxError<CKxException>([&] { c.calls(writer); }, c.message);
    }
}

TEST(CFastInfosetWriter, RestrictedAlphabetPackingByWidth) {
    std::string wide;
    for (int i = 0; i < 200; ++i) {
        wide += static_cast<char>(i + 1);
    }
    struct Case {
        const char* what;
        std::string alphabet;
        std::string text;
        const char* octets;  // empty: fails with `message`
        const char* message;
    };
    const Case cases[] = {
        {"four bits, odd count padded", "0123456789-+.e", "123", "12 3F", ""},
        {"four bits, even count", "0123456789-+.e", "e+", "DB", ""},
        {"fifteen characters still fit four bits", "0123456789abcde", "e", "EF", ""},
        {"eight bits", wide, std::string("\x01\x05\xC8"), "00 04 C7", ""},
        {"one character", "a", "a", "",
         "Failed to write FastInfoset. Invalid Restricted Alphabet. Alphabet must contain "
         "between 2 and 2^20 characters."},
        {"three-bit width", "01", "0", "",
         "Failed to write FastInfoset. Unsupported Feature in AppendRestrictedAlphabetString."},
        {"five-bit width", "0123456789abcdef", "0", "",
         "Failed to write FastInfoset. Unsupported Feature in AppendRestrictedAlphabetString."},
        {"character outside", "0123456789-+.e", "1E5", "",
         "Failed to write FastInfoset. Invalid character not found for Restricted Alphabet."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        CBinaryData out;
        if (*c.octets != '\0') {
            CFastInfosetWriter::AppendRestrictedAlphabetString(out, c.alphabet, c.text);
            EXPECT_EQ(Octets(c.octets), ToHex(out));
        } else {
            KxTest::ExpectKxError<CKxException>(
                [&] {
                    CFastInfosetWriter::AppendRestrictedAlphabetString(out, c.alphabet, c.text);
                },
                c.message);
        }
    }
}

TEST(CFastInfosetWriter, IndexesPastTheOneOctetRangeTakeLongerForms) {
    struct Case {
        const char* what;
        Calls calls;
        const char* ending;  // the last octets of the document
    };
    const Case cases[] = {
        {"element name 33",
         [](CFastInfosetWriter& w) {
             w.WriteStartElement("r", "");
             for (int i = 1; i <= 40; ++i) {
                 w.WriteStartElement("e" + std::to_string(i), "");
                 w.WriteEndElement();
             }
             w.WriteStartElement("e32", "");
             w.WriteEndElement();
             w.WriteEndElement();
         },
         "F0 20 00 FF F0"},
        {"attribute value 65",
         [](CFastInfosetWriter& w) {
             w.WriteStartElement("r", "");
             for (int i = 1; i <= 70; ++i) {
                 w.WriteAttributeString("a" + std::to_string(i), "", "v" + std::to_string(i),
                                        ItemType_string);
             }
             w.WriteAttributeString("z", "", "v65", ItemType_string);
             w.WriteEndElement();
         },
         "78 00 'z' C0 00 F0 FF"},
        {"attribute name 65",
         [](CFastInfosetWriter& w) {
             w.WriteStartElement("r", "");
             for (int i = 1; i <= 65; ++i) {
                 w.WriteAttributeString("a" + std::to_string(i), "", "", ItemType_string);
             }
             w.WriteStartElement("s", "");
             w.WriteAttributeString("a65", "", "", ItemType_string);
             w.WriteEndElement();
             w.WriteEndElement();
         },
         "7C 00 's' 40 00 FF F0 FF F0"},
        {"chunk 17",
         [](CFastInfosetWriter& w) {
             w.WriteStartElement("r", "");
             for (int i = 1; i <= 17; ++i) {
                 w.WriteString("c" + std::to_string(i), ItemType_string, false);
             }
             w.WriteString("c17", ItemType_string, false);
             w.WriteEndElement();
         },
         "B0 00 FF"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const std::string document = Document(c.calls);
        const std::string ending = Octets(c.ending);
        ASSERT_GE(document.size(), ending.size());
        EXPECT_EQ(ending, document.substr(document.size() - ending.size()));
    }
}
