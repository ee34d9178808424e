// The JSON entry points of CXmlObjectBase (ToJson, ToJsonStream, ToJsonFile and the reading
// forms they feed), driven through the flat sample bindings.
#include <clocale>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "ExampleDocuments.h"
#include "FlatBindings.h"
#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;
using KxExamples::CLine;
using KxExampleTest::MakeFlatLine;
using KxTest::ExpectKxError;

namespace {

const char kNs[] = "urn:bench:orders";

CSerializationContext ContextFor(JsonRoundTrip mode, bool standard = false) {
    CSerializationContext ctx;
    ctx.GetJsonContext()->SetSupportRoundtrip(mode);
    ctx.GetJsonContext()->SetStandardEscaping(standard);
    return ctx;
}

std::string TmpPath(const char* name) { return std::string(KX_TEST_TMP_DIR) + "/" + name; }

std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::string Inflate(const unsigned char* data, unsigned long length) {
    unsigned char* bytes = new unsigned char[length];
    std::copy(data, data + length, bytes);
    CKxZip::Decompress(&bytes, &length);
    std::string text(reinterpret_cast<const char*>(bytes), length);
    delete[] bytes;
    return text;
}

std::string Hex(const std::string& bytes) {
    static const char digits[] = "0123456789abcdef";
    std::string out;
    for (unsigned char c : bytes) {
        out += digits[c >> 4];
        out += digits[c & 15];
    }
    return out;
}

// Runs a shell command and returns what it prints; `ok` tells whether it exited with 0.
std::string RunCommand(const std::string& command, bool& ok) {
    std::string out;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        ok = false;
        return out;
    }
    char chunk[256];
    size_t n;
    while ((n = fread(chunk, 1, sizeof chunk, pipe)) > 0) out.append(chunk, n);
    ok = pclose(pipe) == 0;
    return out;
}

bool HavePython() {
    bool ok = false;
    RunCommand("python3 -c 'import json' 2>/dev/null", ok);
    return ok;
}

// The library's narrow text is in the local code page: UTF-8 text needs a UTF-8 locale.
class CXmlObjectBaseJson : public ::testing::Test {
protected:
    void SetUp() override {
        if (!m_utf8.Ok()) GTEST_SKIP() << "no C.UTF-8 locale";
    }
    KxTest::ScopedLocale m_utf8{LC_CTYPE, "C.UTF-8"};
};

TEST_F(CXmlObjectBaseJson, ToJsonWritesTheDocumentInEachMode) {
    struct Case {
        const char* what;
        JsonRoundTrip mode;
        bool withAlias;
        bool formatted;
        EOLType eol;
        const char* indent;
        const char* json;
    };
    const Case cases[] = {
        {"full, fresh prefix", RoundTrip_Full, false, true, EOLType_LF, "\t",
         "{\n\t\"AA:Line\": {\n\t\t\"@xmlns:AA\": \"urn:bench:orders\",\n\t\t\"@id\": \"L1\",\n"
         "\t\t\"AA:Sku\": \"AB-1\",\n\t\t\"AA:Quantity\": 3,\n\t\t\"AA:Tag\": \"x\",\n"
         "\t\t\"AA:Tag\": \"y\"\n\t}\n}"},
        {"full, alias from the context", RoundTrip_Full, true, false, EOLType_LF, "\t",
         "{\"o:Line\": {\"@xmlns:o\": \"urn:bench:orders\",\"@id\": \"L1\",\"o:Sku\": \"AB-1\","
         "\"o:Quantity\": 3,\"o:Tag\": \"x\",\"o:Tag\": \"y\"}}"},
        {"simple, context indent and CRLF", RoundTrip_Simple, true, true, EOLType_CRLF, " ",
         "{\r\n \"Line\": {\r\n  \"@id\": \"L1\",\r\n  \"Sku\": \"AB-1\",\r\n"
         "  \"Quantity\": 3,\r\n  \"Tag\": \"x\",\r\n  \"Tag\": \"y\"\r\n }\r\n}"},
        {"none", RoundTrip_None, false, false, EOLType_LF, "\t",
         "{\"Line\": {\"id\": \"L1\",\"Sku\": \"AB-1\",\"Quantity\": 3,\"Tag\": \"x\","
         "\"Tag\": \"y\"}}"},
    };
    const CLine line = MakeFlatLine(nullptr, {"x", "y"});
    for (const Case& row : cases) {
        SCOPED_TRACE(row.what);
        CSerializationContext ctx = ContextFor(row.mode);
        ctx.SetIndentChars(row.indent);
        if (row.withAlias) ctx.GetNamespaceAliases().Add("o", kNs);
        EXPECT_EQ(row.json, line.ToJson(row.formatted, row.eol, ctx));
    }
}

TEST_F(CXmlObjectBaseJson, WrittenJsonReadsBackIntoEqualObjects) {
    struct Case {
        const char* what;
        CLine line;
        bool standardOnly;
    };
    const Case cases[] = {
        {"all members, two tags", MakeFlatLine("a note", {"x", "y"}), false},
        {"no note, no tags", MakeFlatLine(nullptr, {}), false},
        {"one tag, text with tab and UTF-8",
         MakeFlatLine("tab\tand \xC3\xA9\xE2\x82\xAC", {"only"}), false},
        {"markup characters", MakeFlatLine("a < b & c > d", {"<&>"}), false},
        // The reader drops raw line breaks inside strings, so only escaped ones survive.
        {"quotes, backslashes and line breaks (standard escaping only)",
         MakeFlatLine("two\nlines \"q\" \\", {"a\"b"}), true},
    };
    for (const Case& row : cases) {
        for (JsonRoundTrip mode : {RoundTrip_Full, RoundTrip_Simple}) {
            for (bool standard : {false, true}) {
                if (row.standardOnly && !standard) continue;
                for (bool formatted : {true, false}) {
                    SCOPED_TRACE(std::string(row.what) + " mode " + std::to_string(mode) +
                                 (standard ? " standard" : " lenient") +
                                 (formatted ? " formatted" : " flat"));
                    const CSerializationContext ctx = ContextFor(mode, standard);
                    const std::string json = row.line.ToJson(formatted, EOLType_LF, ctx);
                    CLine back;
                    back.FromJson(json.c_str(), ctx);
                    EXPECT_TRUE(KxExampleTest::SameFlatLine(row.line, back)) << json;
                }
            }
        }
    }
}

TEST_F(CXmlObjectBaseJson, ToJsonStreamEncodesAndCompresses) {
    const CLine line = MakeFlatLine("note", {"t"});
    const std::string text = line.ToJson(true, EOLType_LF);

    const CBinaryData utf8 = line.ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF);
    EXPECT_EQ(text, std::string(reinterpret_cast<const char*>(utf8.GetData()), utf8.GetLength()));

    const CBinaryData utf16 = line.ToJsonStream(true, XmlEncoding_UTF16, EOLType_LF);
    ASSERT_EQ(2 * text.size(), utf16.GetLength());
    EXPECT_EQ('{', utf16.GetData()[0]);
    EXPECT_EQ(0, utf16.GetData()[1]);

    for (CompressionType compression : {CompressionType_GZip, CompressionType_ZLib}) {
        SCOPED_TRACE(static_cast<int>(compression));
        const CBinaryData packed =
            line.ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF,
                              CSerializationContext::m_defaultContext, compression);
        EXPECT_TRUE(CKxZip::IsCompressed(packed.GetData(), packed.GetLength()));
        EXPECT_EQ(text, Inflate(packed.GetData(), packed.GetLength()));
        CLine back;
        back.FromJsonStream(packed);
        EXPECT_TRUE(KxExampleTest::SameFlatLine(line, back));
    }
}

TEST_F(CXmlObjectBaseJson, ToJsonFileWritesWhatToJsonStreamBuilds) {
    // Enough repetition for gzip to shrink the text (compression that does not shrink fails).
    const CLine line = MakeFlatLine("note", std::vector<std::string>(20, "tag"));
    const std::string text = line.ToJson(false, EOLType_CRLF);
    struct Case {
        const char* name;
        XmlEncoding encoding;
        CompressionType compression;
        bool async;
    };
    const Case cases[] = {
        {"line_utf8.json", XmlEncoding_UTF8, CompressionType_None, false},
        {"line_async.json", XmlEncoding_UTF8, CompressionType_None, true},
        {"line_utf16.json", XmlEncoding_UTF16, CompressionType_None, false},
        {"line_gzip.json.gz", XmlEncoding_UTF8, CompressionType_GZip, false},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const std::string path = TmpPath(row.name);
        std::remove(path.c_str());
        AsyncToXmlFile(row.async);
        line.ToJsonFile(path.c_str(), false, row.encoding, EOLType_CRLF,
                        CSerializationContext::m_defaultContext, row.compression);
        AsyncToXmlFile(false);
        const std::string bytes = ReadFile(path);
        if (row.compression != CompressionType_None) {
            EXPECT_EQ(text, Inflate(reinterpret_cast<const unsigned char*>(bytes.data()),
                                    bytes.size()));
        } else if (row.encoding == XmlEncoding_UTF16) {
            ASSERT_EQ(2 + 2 * text.size(), bytes.size());
            EXPECT_EQ(std::string("\xFF\xFE{\0", 4), bytes.substr(0, 4));
            continue;  // JSON files are read as UTF-8 only
        } else {
            EXPECT_EQ(text, bytes);
        }
        CLine back;
        back.FromJsonFile(path.c_str());
        EXPECT_TRUE(KxExampleTest::SameFlatLine(line, back));
    }
}

// Text that lenient escaping cannot carry: quotation marks, backslashes, control characters.
const char kAwkwardNote[] = "say \"hi\" \\ back\tslash\nnew line \xC3\xA9 \xF0\x9F\x98\x80";

TEST_F(CXmlObjectBaseJson, StandardEscapingIsReadByAnIndependentJsonParser) {
    if (!HavePython()) GTEST_SKIP() << "python3 is not available";
    const CLine line = MakeFlatLine(kAwkwardNote, {"t\"1"});
    CSerializationContext ctx = ContextFor(RoundTrip_Full, true);
    ctx.GetNamespaceAliases().Add("o", kNs);
    const std::string path = TmpPath("line_standard.json");
    line.ToJsonFile(path.c_str(), true, XmlEncoding_UTF8, EOLType_LF, ctx);

    bool ok = false;
    const std::string out = RunCommand(
        "python3 -c 'import json,sys; d=json.load(open(sys.argv[1]))[\"o:Line\"]; "
        "print(\" \".join(str(v).encode(\"utf-8\").hex() for v in "
        "(d[\"@id\"], d[\"o:Note\"], d[\"o:Tag\"], d[\"o:Quantity\"])))' " + path,
        ok);
    ASSERT_TRUE(ok) << out;
    EXPECT_EQ(Hex("L1") + " " + Hex(kAwkwardNote) + " " + Hex("t\"1") + " " + Hex("3") + "\n",
              out);
}

TEST_F(CXmlObjectBaseJson, JsonEscapedByAnIndependentWriterReadsBack) {
    if (!HavePython()) GTEST_SKIP() << "python3 is not available";
    const std::string path = TmpPath("line_from_python.json");
    bool ok = false;
    // ensure_ascii makes python escape every non-ASCII character, the emoji as a surrogate pair.
    const std::string out = RunCommand(
        "python3 -c 'import json,sys; note=bytes.fromhex(sys.argv[2]).decode(\"utf-8\"); "
        "open(sys.argv[1],\"w\").write(json.dumps({\"o:Line\": {\"@xmlns:o\": "
        "\"urn:bench:orders\", \"@id\": \"L\\u00e9\", \"o:Sku\": \"AB-1\", \"o:Quantity\": 3, "
        "\"o:Note\": note}}, ensure_ascii=True))' " + path + " " + Hex(kAwkwardNote),
        ok);
    ASSERT_TRUE(ok) << out;
    const std::string json = ReadFile(path);
    ASSERT_NE(std::string::npos, json.find("\\ud83d\\ude00")) << json;

    const CSerializationContext ctx = ContextFor(RoundTrip_Full, true);
    CLine back;
    back.FromJson(json.c_str(), ctx);
    EXPECT_EQ("L\xC3\xA9", back.m_id);
    EXPECT_EQ(kAwkwardNote, back.m_note);
    EXPECT_EQ(3, back.m_quantity);
}

}  // namespace
