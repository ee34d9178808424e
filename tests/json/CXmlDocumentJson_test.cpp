// Reading JSON into the XML tree and into bindable objects.
#include <cstdio>
#include <functional>
#include <string>

#include "ExampleDocuments.h"
#include "FlatBindings.h"
#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

const char kOrderJson[] =
    "{\"Order\": {\"@id\": \"7\", \"Line\": [{\"Sku\": \"a<b&c\"}, {\"Sku\": \"d\"}],"
    " \"Note\": null, \"Total\": {\"@cur\": \"EUR\", \"#text\": 12.5}}}";

// "name[attributes](text){children}" of a tree, for comparing whole documents. The XML text
// between is indented (the XML writer's default), so whitespace-only text is left out.
std::string Describe(const CXmlElement* element) {
    std::string out;
    for (; element != nullptr; element = element->GetNextSiblingElement()) {
        out += element->GetLocalName();
        for (const CXmlAttribute* attribute : element->GetAttributes()) {
            out += "[" + attribute->GetLocalName() + "=" + attribute->GetValue() + "]";
        }
        const std::string& text = element->GetText();
        if (text.find_first_not_of(" \t\r\n") != std::string::npos) out += "(" + text + ")";
        if (element->GetFirstElement() != nullptr) {
            out += "{" + Describe(element->GetFirstElement()) + "}";
        }
        out += ";";
    }
    return out;
}

CBinaryData Bytes(const std::string& text) {
    return CBinaryData(reinterpret_cast<const unsigned char*>(text.data()),
                       static_cast<unsigned long>(text.size()), false);
}

CBinaryData Compressed(const std::string& text, CompressionType type) {
    CBinaryData data = Bytes(text);
    CKxZip::CompressData(data, type);
    return data;
}

std::string WriteTempFile(const char* name, const CBinaryData& data) {
    const std::string path = std::string(KX_TEST_TMP_DIR) + "/" + name;
    std::FILE* file = std::fopen(path.c_str(), "wb");
    EXPECT_NE(nullptr, file);
    if (file != nullptr) {
        std::fwrite(data.GetData(), 1, data.GetLength(), file);
        std::fclose(file);
    }
    return path;
}

}  // namespace

TEST(CXmlDocument, LoadJsonBuildsTheTreeFromEveryInputForm) {
    const std::string json = kOrderJson;
    const std::string padded = json + std::string(300, ' ');  // long enough to compress
    const std::wstring wide(json.begin(), json.end());
    struct Case {
        const char* name;
        std::function<void(CXmlDocument&)> load;
    };
    const auto stream = [](const CBinaryData& b) {
        return [b](CXmlDocument& d) { d.LoadJsonStream(b.GetData(), b.GetLength()); };
    };
    const Case cases[] = {
        {"narrow", [&](CXmlDocument& d) { d.LoadJson(json.c_str()); }},
        {"wide", [&](CXmlDocument& d) { d.LoadJson(wide.c_str()); }},
        {"stream", stream(Bytes(json))},
        {"stream with byte-order mark", stream(Bytes("\xEF\xBB\xBF" + json))},
        {"gzip stream", stream(Compressed(padded, CompressionType_GZip))},
        {"zlib stream", stream(Compressed(padded, CompressionType_ZLib))},
        {"file", [&](CXmlDocument& d) {
             d.LoadJsonFile(WriteTempFile("order.json", Bytes("\xEF\xBB\xBF" + json)).c_str());
         }},
        {"gzip file", [&](CXmlDocument& d) {
             const CBinaryData b = Compressed(padded, CompressionType_GZip);
             d.LoadJsonFile(WriteTempFile("order.json.gz", b).c_str());
         }},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        CXmlDocument document;
        row.load(document);
        EXPECT_EQ("Order[id=7]{Line{Sku(a<b&c);};Line{Sku(d);};Note;Total[cur=EUR](12.5);};",
                  Describe(document.GetDocumentElement()));
    }
}

TEST(CXmlDocument, LoadJsonReportsSyntaxErrorsAndCanLoadAgain) {
    CXmlDocument document;
    KxTest::ExpectKxError<CKxValidationException>(
        [&] { document.LoadJson("{\"Order\": {\"Line\": [1,]}}"); },
        "Expected Value '{', '[', '\"', '0-9', '-', 'true', 'false' or 'null', found ']' at line "
        "1, position 23.\nPath: $.Order");
    // A failed load leaves nothing behind, and the document can be loaded again.
    document.LoadJson("{\"a\": 1}");
    EXPECT_EQ("a(1);", Describe(document.GetDocumentElement()));
}

TEST(CXmlDocument, LoadJsonUsesTheRootElementNameOfTheContext) {
    CSerializationContext ctx;
    ctx.GetJsonContext()->SetRootElementName("Batch");
    CXmlDocument document(ctx);
    document.LoadJson("[{\"n\": 1}]");
    EXPECT_EQ("Batch{n(1);};", Describe(document.GetDocumentElement()));
}

TEST(CXmlObjectBase, FromJsonReadsEveryInputFormIntoTheObject) {
    const std::string json =
        "{\"Line\": {\"@xmlns\": \"urn:bench:orders\", \"@id\": \"L1\", \"Sku\": \"AB-1\","
        " \"Quantity\": 3, \"Tag\": \"x\", \"Tag\": \"y\"}}";
    const std::wstring wide(json.begin(), json.end());
    const CBinaryData bytes = Bytes(json);
    const std::string path = WriteTempFile("line.json", bytes);
    const KxExamples::CLine expected = KxExampleTest::MakeFlatLine(nullptr, {"x", "y"});
    struct Case {
        const char* name;
        std::function<void(KxExamples::CLine&)> read;
    };
    const Case cases[] = {
        {"narrow", [&](KxExamples::CLine& l) { l.FromJson(json.c_str()); }},
        {"wide", [&](KxExamples::CLine& l) { l.FromJson(wide.c_str()); }},
        {"bytes",
         [&](KxExamples::CLine& l) { l.FromJsonStream(bytes.GetData(), bytes.GetLength()); }},
        {"binary data", [&](KxExamples::CLine& l) { l.FromJsonStream(bytes); }},
        {"file", [&](KxExamples::CLine& l) { l.FromJsonFile(path.c_str()); }},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        KxExamples::CLine line;
        row.read(line);
        EXPECT_TRUE(KxExampleTest::SameFlatLine(expected, line));
    }
}

TEST(CXmlObjectBase, FromJsonChecksNamespacesOnlyForTheFullRoundTrip) {
    // JSON without namespace declarations, as mode 1 writes it.
    const char* json = "{\"Line\": {\"@id\": \"L2\", \"Sku\": \"B\", \"Quantity\": 4}}";
    struct Case {
        JsonRoundTrip mode;
        bool reads;
    };
    const Case cases[] = {
        {RoundTrip_Simple, true},
        {RoundTrip_Full, false},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.mode);
        CSerializationContext ctx;
        ctx.GetJsonContext()->SetSupportRoundtrip(row.mode);
        KxExamples::CLine line;
        if (row.reads) {
            line.FromJson(json, ctx);
            EXPECT_EQ("B", line.m_sku);
            EXPECT_EQ(4, line.m_quantity);
        } else {
            KxTest::ExpectKxError<CKxException>(
                [&] { line.FromJson(json, ctx); },
                "Failed to find the required child element [Sku].\nPath: /Line");
        }
        // The caller's context is not changed.
        EXPECT_FALSE(ctx.GetIgnoreNamespaces());
    }
}

TEST(CXmlObjectBase, FromJsonReadsElementsThatHaveOnlyAttributesAsXmlDoes) {
    // The JSON of a nil element is an object whose last member is an attribute; the element
    // must still end there, or the members after it would land inside it.
    const char* json =
        "{\"Line\": {\"@xmlns\": \"urn:bench:orders\", \"@xmlns:xsi\": "
        "\"http://www.w3.org/2001/XMLSchema-instance\", \"@id\": \"L1\", \"Sku\": \"A\", "
        "\"Quantity\": {\"@xsi:nil\": \"true\"}, \"Note\": \"after\"}}";
    const char* xml =
        "<Line xmlns=\"urn:bench:orders\" "
        "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" id=\"L1\"><Sku>A</Sku>"
        "<Quantity xsi:nil=\"true\"/><Note>after</Note></Line>";
    KxExamples::CLine fromJson;
    fromJson.FromJson(json);
    KxExamples::CLine fromXml;
    fromXml.FromXml(xml);
    EXPECT_EQ("after", fromJson.m_note);
    EXPECT_TRUE(KxExampleTest::SameFlatLine(fromXml, fromJson));
}
