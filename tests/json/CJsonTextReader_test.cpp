#include <string>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

// Records the events as one line of tokens: "SD { N(a) #(1) S(x) T F null [ ] } ED".
class Recorder : public IJsonReaderHandler {
public:
    std::string trace;

    void ReadStartDocument() override { Add("SD"); }
    void ReadEndDocument() override { Add("ED"); }
    void ReadName(const std::string& name) override { Add("N(" + name + ")"); }
    void ReadString(const std::string& value) override { Add("S(" + value + ")"); }
    void ReadNumber(const std::string& text) override { Add("#(" + text + ")"); }
    void ReadStartObject() override { Add("{"); }
    void ReadEndObject() override { Add("}"); }
    void ReadStartArray() override { Add("["); }
    void ReadEndArray() override { Add("]"); }
    void ReadBool(bool value) override { Add(value ? "T" : "F"); }
    void ReadNull() override { Add("null"); }

private:
    void Add(const std::string& token) { trace += trace.empty() ? token : " " + token; }
};

struct Options {
    bool comments = false;
    bool standard = false;
    const char* root = "";
};

std::string Trace(const std::string& json, const Options& options = Options()) {
    Recorder recorder;
    CJsonTextReader reader(json);
    reader.SetJsonReaderHandler(&recorder);
    reader.SetAllowComments(options.comments);
    reader.SetStandardEscaping(options.standard);
    reader.SetRootElementName(options.root);
    reader.Read();
    return recorder.trace;
}

// Expects a validation error with exactly this message and path.
void ExpectSyntaxError(const std::string& json, const Options& options, const std::string& message,
                       const std::string& path) {
    try {
        Trace(json, options);
        ADD_FAILURE() << "nothing was thrown; expected: " << message;
    } catch (const CKxException& e) {
        EXPECT_EQ(typeid(CKxValidationException), typeid(e));
        EXPECT_EQ(message + "\nPath: " + path, e.GetMessage());
        EXPECT_EQ(path, e.GetPath());
    }
}

const Options kComments{true, false, ""};
const Options kStandard{false, true, ""};

}  // namespace

TEST(CJsonTextReader, ReportsEventsInDocumentOrder) {
    struct Case {
        const char* json;
        Options options;
        const char* trace;
    };
    const Case cases[] = {
        {"", {}, "SD ED"}, {" \t\r\n ", {}, "SD ED"}, {"{}", {}, "SD { } ED"},
        {"[]", {}, "SD [ ] ED"},
        {"{\"a\":\"x\",\"b\":[1,-2.5e+3,0.0E-1,true,false,null],\"c\":{},\"d\":[]}", {},
         "SD { N(a) S(x) N(b) [ #(1) #(-2.5e+3) #(0.0E-1) T F null ] N(c) { } N(d) [ ] } ED"},
        {" { \"a\" : [ { } , [ 1 ] ] } ", {}, "SD { N(a) [ { } [ #(1) ] ] } ED"},
        // Only the first value is read.
        {"{\"a\":1} {\"b\":", {}, "SD { N(a) #(1) } ED"},
        {"12 junk", {}, "SD #(12) ED"},
        {"\"top\"", {}, "SD S(top) ED"},
        // Line feeds are never delivered: inside a string or a number they vanish.
        {"[\"a\nb\",1\n2]", {}, "SD [ S(ab) #(12) ] ED"},
        {"\"\\\"\\\\\\/\\b\\f\\n\\r\\t\"", {}, "SD S(\"\\/\b\f\n\r\t) ED"},
        // "\u" gives the high hexadecimal digit of the first of the four bytes, unchecked.
        {"\"\\u0041\\uABCD\\uzzzz!\"", {}, "SD S(347!) ED"},
        {"\"raw\ttab\"", {}, "SD S(raw\ttab) ED"},
        {"/*c*/ {\"a\": // x\n 1 /* y */} // end", kComments, "SD { N(a) #(1) } ED"},
        {"[1, /**/ /*/ x */ 2]", kComments, "SD [ #(1) #(2) ] ED"},
        {"// only a comment", kComments, "SD ED"},
        {"{\"a\":1}", {false, false, "Root"}, "SD { N(Root) { N(a) #(1) } } ED"},
        {"[1]", {false, false, "Root"}, "SD { N(Root) [ #(1) ] } ED"},
        {"", {false, false, "Root"}, "SD { N(Root) } ED"},
        // Standard escaping decodes \u escapes, surrogate pairs included, to UTF-8.
        {"\"\\u0041\\u00e9\\u00E9\\u6771\"", kStandard,
         "SD S(A\xC3\xA9\xC3\xA9\xE6\x9D\xB1) ED"},
        {"\"\\ud83d\\ude00|\\uDBFF\\uDFFF\"", kStandard,
         "SD S(\xF0\x9F\x98\x80|\xF4\x8F\xBF\xBF) ED"},
        {"\"\\u007f\\u0080\\u07ff\\u0800\\uffff\"", kStandard,
         "SD S(\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF) ED"},
        {"\"\\\"\\\\\\/\\n\"", kStandard, "SD S(\"\\/\n) ED"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.json);
        EXPECT_EQ(row.trace, Trace(row.json, row.options));
    }
}

TEST(CJsonTextReader, SyntaxErrorsNameLinePositionAndPath) {
    const std::string expectedValue =
        "Expected Value '{', '[', '\"', '0-9', '-', 'true', 'false' or 'null', found ";
    struct Case {
        const char* json;
        Options options;
        std::string message;
        std::string path;
    };
    const Case cases[] = {
        {"[1,]", {}, expectedValue + "']' at line 1, position 4.", "$"},
        {"{\"a\":1,}", {},
         "Expected quotation mark character '\"' before Name, found '}' at line 1, position 8.",
         "$.a"},
        {"/*c*/{}", {}, expectedValue + "'/' at line 1, position 1.", "$"},
        {"[1/*x*/]", kComments,
         "Expected Array separator character ',', found '/' at line 1, position 3.", "$"},
        {"TRUE", {}, expectedValue + "'T' at line 1, position 1.", "$"},
        {"nul", {}, "Unexpected End of File. Expected value 'NULL' at line 1, position 3.", "$"},
        {"nulL", {}, "Expected 'NULL' at line 1, position 4.", "$"},
        {"[fals", {}, "Unexpected End of File. Expected value 'false' at line 1, position 5.",
         "$"},
        {"{\n  \"a\": tru\n}", {}, "Expected 'true' at line 2, position 11.", "$.a"},
        {"{\"a\" 1}", {},
         "Expected Object Name/Value separator character ':', found '1' at line 1, position 6.",
         "$.a"},
        {"{\"a\"", {},
         "Unexpected End of File. Expected Object Name/Value separator character ':' at line 1, "
         "position 4.",
         "$.a"},
        {"{\"a\":", {}, "Unexpected End of File. Expected Object Value at line 1, position 5.",
         "$.a"},
        {"{\"a\":1", {},
         "Unexpected End of File. Expected Object terminator character '}' at line 1, position 6.",
         "$.a"},
        {"{\"a\":1,", {},
         "Unexpected End of File. Expected Object terminator character '}' at line 1, position 7.",
         "$.a"},
        {"{\"a\":1 /* x", kComments,
         "Unexpected End of File. Expected Object terminator character '}' at line 1, "
         "position 11.",
         "$.a"},
        {"{\"a\":1 2}", {},
         "Expected Object separator character ',', found '2' at line 1, position 8.", "$.a"},
        {"{", {},
         "Unexpected End of File. Expected Object terminator character '}}' at line 1, "
         "position 1.",
         "$"},
        {"[", {},
         "Unexpected End of File. Expected Array terminator character ']' at line 1, position 1.",
         "$"},
        {"[1,", {},
         "Unexpected End of File. Expected Array terminator character ']' at line 1, position 3.",
         "$"},
        {"[1 2]", {}, "Expected Array separator character ',', found '2' at line 1, position 4.",
         "$"},
        {"[01]", {}, "Expected Array separator character ',', found '1' at line 1, position 3.",
         "$"},
        {"\"abc", {}, "Unexpected End of File. Expected string value at line 1, position 4.", "$"},
        {"\"abc\\", {}, "Unexpected End of File. Expected string value at line 1, position 5.",
         "$"},
        {"\"a\\x\"", {}, "Invalid Escape Character 'x' at line 1, position 4.", "$"},
        {"\"\\u00", {},
         "Unexpected End of File. Expected 4 hexadecimal digits'\\uxxxx' at line 1, position 5.",
         "$"},
        {"-", {}, "Unexpected End of File. Expected a number at line 1, position 1.", "$"},
        {"-a", {}, "Expected a digit '0' to '9', found 'a' at line 1, position 2.", "$"},
        {"1.", {}, "Unexpected End of File. Expected a digit '0' to '9' at line 1, position 2.",
         "$"},
        {"1.x", {}, "Expected a digit '0' to '9', found 'x' at line 1, position 3.", "$"},
        {"1e", {}, "Unexpected End of File. Expected '+', '-' or a number at line 1, position 2.",
         "$"},
        {"1e+", {}, "Unexpected End of File. Expected a number at line 1, position 3.", "$"},
        {"[1e+x]", {},
         "Unexpected End of File. Expected a digit '0' to '9' at line 1, position 5.", "$"},
        {"{\"a\nb\": x}", {}, expectedValue + "'x' at line 2, position 5.", "$.ab"},
        // Objects inside an array are named after it with their index as a character code,
        // and the path runs from the innermost item outwards.
        {"{\"a\":{\"b\":[{\"c\":1},{\"d\":x}]}}", {}, expectedValue + "'x' at line 1, position 25.",
         std::string("$.d.b[\x01].a")},
        {"{\"a\":[[{\"b\":1,\"c\":[}]]]}", {}, expectedValue + "'}' at line 1, position 20.",
         std::string("$.a[\0][\0]", 9)},
        {"{\"a\":{\"b\":{}},\"c\":{\"d\":1,\"e\":-}}", {},
         "Expected a digit '0' to '9', found '}' at line 1, position 31.", "$.e.c"},
        {"{\"a\":1", {false, false, "R"},
         "Unexpected End of File. Expected Object terminator character '}' at line 1, position 6.",
         "$.a.R"},
        {"\"\\u00g1\"", kStandard,
         "Expected 4 hexadecimal digits '\\u00g1' at line 1, position 7.", "$"},
        {"\"\\udc00\"", kStandard, "Invalid Unicode surrogate pair at line 1, position 7.", "$"},
        {"\"\\ud83dx\"", kStandard, "Invalid Unicode surrogate pair at line 1, position 9.", "$"},
        {"\"\\ud83d\\u0041\"", kStandard,
         "Invalid Unicode surrogate pair at line 1, position 13.", "$"},
        {"\"\\ud83d\\ud83d\"", kStandard,
         "Invalid Unicode surrogate pair at line 1, position 13.", "$"},
        {"\"\\ud83d", kStandard,
         "Unexpected End of File. Expected 4 hexadecimal digits'\\uxxxx' at line 1, position 7.",
         "$"},
        {"\"\\ud83d\\u12", kStandard,
         "Unexpected End of File. Expected 4 hexadecimal digits'\\uxxxx' at line 1, position 11.",
         "$"},
        {"\"\\q\"", kStandard, "Invalid Escape Character 'q' at line 1, position 3.", "$"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.json);
        ExpectSyntaxError(row.json, row.options, row.message, row.path);
    }
}

TEST(CJsonTextReader, DepthLimitAllowsNinetyNineEnclosingContainers) {
    struct Case {
        int depth;       // nested arrays
        bool withValue;  // a value in the innermost one
        bool fails;
    };
    const Case cases[] = {
        {99, true, false}, {100, false, false}, {100, true, true}, {101, false, true},
        {100000, false, true},  // fails early, without exhausting the stack
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(testing::Message() << row.depth << (row.withValue ? " with value" : ""));
        const std::string json = std::string(row.depth, '[') + (row.withValue ? "1" : "") +
                                 std::string(row.depth, ']');
        if (!row.fails) {
            EXPECT_NO_THROW(Trace(json));
            continue;
        }
        ExpectSyntaxError(json, Options(), "JSON exceeded depth limit at line 1, position 101.",
                          "$");
    }
}

TEST(CJsonTextReader, DepthLimitCanBeLowered) {
    Recorder recorder;
    const std::string json = "{\"a\":{\"b\":1}}";
    CJsonTextReader reader(json);
    reader.SetJsonReaderHandler(&recorder);
    reader.SetDepthLimit(2);
    KxTest::ExpectKxError<CKxValidationException>(
        [&] { reader.Read(); },
        "JSON exceeded depth limit at line 1, position 11.\nPath: $.b.a");
    reader.SetDepthLimit(3);
    recorder.trace.clear();
    reader.Read();  // a second Read starts again from the beginning
    EXPECT_EQ("SD { N(a) { N(b) #(1) } } ED", recorder.trace);
}

TEST(CJsonTextReader, StandardEscapingKeepsAnEscapedNul) {
    // NUL is a character like any other in a std::string.
    EXPECT_EQ(std::string("SD S(a\0b) ED", 12), Trace("\"a\\u0000b\"", kStandard));
}

TEST(CJsonTextReader, WithoutHandlerEventsAreSwallowed) {
    const std::string json = "{\"a\":[1,{\"b\":null}]}";
    CJsonTextReader reader(json);
    EXPECT_NO_THROW(reader.Read());
    EXPECT_EQ("$", reader.GetErrorPathProvider()->GetPath());
}
