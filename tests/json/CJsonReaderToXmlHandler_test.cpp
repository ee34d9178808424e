#include <string>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

// The XML text the handler writes for `json` (unformatted, without the declaration line).
std::string ToXmlText(const std::string& json, JsonRoundTrip mode, const char* root = "") {
    CTextStream stream(XmlEncoding_UTF8);
    CXmlTextWriter writer(stream);
    writer.SetFormat(false);
    CJsonTextReader reader(json);
    CJsonReaderToXmlHandler handler(writer, mode, *reader.GetErrorPathProvider());
    reader.SetJsonReaderHandler(&handler);
    reader.SetRootElementName(root);
    reader.Read();
    writer.Close();
    const std::string text = stream.GetText();
    const size_t endOfDeclaration = text.find('\n');
    EXPECT_EQ(0u, text.find("<?xml")) << text;
    return endOfDeclaration == std::string::npos ? text : text.substr(endOfDeclaration + 1);
}

}  // namespace

TEST(CJsonReaderToXmlHandler, MapsMembersToElementsAndAttributes) {
    struct Case {
        const char* json;
        JsonRoundTrip mode;
        const char* root;
        const char* xml;
    };
    const Case cases[] = {
        {"{\"r\":{\"a\":\"x\",\"b\":{\"c\":1},\"d\":false}}", RoundTrip_Full, "",
         "<r><a>x</a><b><c>1</c></b><d>false</d></r>"},
        {"{\"r\":{\"a\":null,\"b\":{}}}", RoundTrip_Full, "", "<r><a/><b/></r>"},
        {"{\"r\":null}", RoundTrip_Full, "", "<r/>"},
        // An object ending in an attribute still closes its element.
        {"{\"r\":{\"@a\":\"1\"}}", RoundTrip_Full, "", "<r a=\"1\"/>"},
        {"{\"r\":{\"e\":{\"@a\":\"1\",\"@b\":\"2\"},\"f\":3}}", RoundTrip_Simple, "",
         "<r><e a=\"1\" b=\"2\"/><f>3</f></r>"},
        // "#text" closes its element; the object's end then closes nothing more.
        {"{\"r\":{\"@a\":\"1\",\"@b\":null,\"#text\":\"t\"},\"s\":2}", RoundTrip_Full, "",
         "<r a=\"1\">t</r><s>2</s>"},
        {"{\"r\":{\"e\":{\"#text\":\"t\"},\"f\":1}}", RoundTrip_Full, "",
         "<r><e>t</e><f>1</f></r>"},
        // Arrays of objects repeat the element; members after the array follow it.
        {"{\"r\":{\"Item\":[{\"x\":1},{\"x\":2},{}],\"Code\":7}}", RoundTrip_Full, "",
         "<r><Item><x>1</x></Item><Item><x>2</x></Item><Item/><Code>7</Code></r>"},
        // Of an array of simple values only the first lands in the array's element; the next
        // one is text of the enclosing element, and closes it.
        {"{\"r\":{\"v\":[1,2],\"w\":3}}", RoundTrip_Full, "", "<r><v>1</v>2</r><w>3</w>"},
        {"{\"r\":{\"v\":1,\"v\":2}}", RoundTrip_Full, "", "<r><v>1</v><v>2</v></r>"},
        // Qualified names and namespace declarations pass into the XML as they stand.
        {"{\"p:r\":{\"@xmlns:p\":\"urn:p\",\"@xmlns\":\"urn:d\",\"p:a\":true,\"b\":0}}",
         RoundTrip_Full, "",
         "<p:r xmlns:p=\"urn:p\" xmlns=\"urn:d\"><p:a>true</p:a><b>0</b></p:r>"},
        // Without round-trip marks "@" and "#text" are ordinary names.
        {"{\"r\":{\"@a\":\"1\",\"#text\":\"t\"}}", RoundTrip_None, "",
         "<r><@a>1</@a><#text>t</#text></r>"},
        {"{\"a\":1,\"b\":{\"c\":2}}", RoundTrip_Full, "Root",
         "<Root><a>1</a><b><c>2</c></b></Root>"},
        {"[{\"a\":1}]", RoundTrip_Full, "Root", "<Root><a>1</a></Root>"},
        {"\"text\"", RoundTrip_Full, "Root", "<Root>text</Root>"},
        {"", RoundTrip_Full, "Root", "<Root/>"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.json);
        EXPECT_EQ(row.xml, ToXmlText(row.json, row.mode, row.root));
    }
}

TEST(CJsonReaderToXmlHandler, RefusesWhatHasNoXmlForm) {
    struct Case {
        const char* json;
        const char* message;
    };
    // Validation errors carry the reader's path.
    const Case validation[] = {
        {"[{\"a\":1}]", "JSON Array has no Name.\nPath: $"},
        {"{\"r\":{\"b\":[{\"c\":1},[2]]}}", "JSON Array has no Name.\nPath: $.r"},
        {"{\"r\":{\"\":1}}", "JSON item has an empty Name.\nPath: $..r"},
        {"{\"\":1}", "JSON item has an empty Name.\nPath: $."},
    };
    for (const Case& row : validation) {
        SCOPED_TRACE(row.json);
        KxTest::ExpectKxError<CKxValidationException>(
            [&] { ToXmlText(row.json, RoundTrip_Full); }, row.message);
    }
    // An attribute after a child element cannot be written any more.
    KxTest::ExpectKxError<CKxInvalidStateException>(
        [&] { ToXmlText("{\"r\":{\"a\":1,\"@b\":\"2\"}}", RoundTrip_Full); },
        "Failed to convert value '2' to Attribute string value in XML.");
}

TEST(CJsonReaderToXmlHandler, ConvertJsonToXmlUsesTheContextsJsonOptions) {
    struct Case {
        JsonRoundTrip mode;
        bool comments;
        const char* root;
        const char* json;
        const char* xmlTail;  // what the document ends with
    };
    const Case cases[] = {
        {RoundTrip_Full, true, "", "/* c */ {\"r\":{\"@a\":\"1\"}}", "<r a=\"1\"/>\n"},
        {RoundTrip_None, true, "", "{\"r\":{\"@a\":\"1\"}}", "<@a>1</@a>\n</r>\n"},
        {RoundTrip_Full, true, "Top", "{\"a\":1}", "<Top>\n\t<a>1</a>\n</Top>\n"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.json);
        CSerializationContext ctx;
        ctx.GetJsonContext()->SetSupportRoundtrip(row.mode);
        ctx.GetJsonContext()->GetAllowComments(row.comments);
        ctx.GetJsonContext()->SetRootElementName(row.root);
        const CBinaryData bytes = CJsonTextReader::ConvertJsonToXml(row.json, ctx);
        const std::string xml(reinterpret_cast<const char*>(bytes.GetData()), bytes.GetLength());
        EXPECT_EQ(0u, xml.find("<?xml version=\"1.0\" encoding=\"UTF-8\"?>")) << xml;
        ASSERT_GE(xml.size(), std::string(row.xmlTail).size());
        EXPECT_EQ(row.xmlTail, xml.substr(xml.size() - std::string(row.xmlTail).size())) << xml;
    }
    CSerializationContext strict;
    strict.GetJsonContext()->GetAllowComments(false);
    KxTest::ExpectKxError<CKxValidationException>(
        [&] { CJsonTextReader::ConvertJsonToXml("{\"a\":/**/1}", strict); },
        "Expected Value '{', '[', '\"', '0-9', '-', 'true', 'false' or 'null', found '/' at line "
        "1, position 6.\nPath: $.a");
}
