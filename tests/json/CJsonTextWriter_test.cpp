#include <functional>
#include <string>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"
#include "WriterScript.h"

using namespace KxXmlLib16;
using KxTest::ExpectKxError;

namespace {

typedef std::function<void(CJsonTextWriter&)> Calls;

struct Settings {
    JsonRoundTrip mode = RoundTrip_Full;
    bool format = true;
    EOLType eol = EOLType_LF;
    const char* indent = "  ";
    bool standard = false;
};

Settings Mode(JsonRoundTrip mode) {
    Settings settings;
    settings.mode = mode;
    return settings;
}

Settings Flat(bool standard = false, JsonRoundTrip mode = RoundTrip_Full,
              EOLType eol = EOLType_LF) {
    Settings settings = Mode(mode);
    settings.format = false;
    settings.standard = standard;
    settings.eol = eol;
    return settings;
}

// Runs `calls` between WriteStartDocument and WriteEndDocument on a fresh writer over a stream
// in memory and returns the text.
std::string Render(const Calls& calls, const Settings& settings = Settings()) {
    CTextStream stream(XmlEncoding_UTF8);
    CJsonTextWriter writer(stream);
    writer.Open();
    writer.SetSupportRoundtrip(settings.mode);
    writer.SetFormat(settings.format);
    writer.SetEOLType(settings.eol);
    writer.SetIndentChars(settings.indent);
    writer.SetStandardEscaping(settings.standard);
    writer.WriteStartDocument();
    calls(writer);
    writer.WriteEndDocument();
    writer.Close();
    return stream.GetText();
}

// The calls of a writer script (see WriterScript.h).
Calls S(const char* script) {
    return [script](CJsonTextWriter& w) { KxTest::RunScript(w, script); };
}

void Leaf(CJsonTextWriter& w, const char* name, const std::string& text, ItemType type) {
    w.WriteStartElement(name, "");
    w.WriteString(text, type, false);
    w.WriteEndElement();
}

struct ShapeCase {
    const char* what;
    Calls calls;
    Settings settings;
    const char* json;
};

void RunShapes(const std::vector<ShapeCase>& cases) {
    for (const ShapeCase& row : cases) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(row.json, Render(row.calls, row.settings));
    }
}

// <Order id="7"><Sku unit="kg">5</Sku><Note>n</Note></Order>
const char kOrderWithTextBesideAttribute[] = "<Order @id#=7 <Sku @unit=kg #=5 / Note=n /";

TEST(CJsonTextWriter, WritesAttributesTextAndChildrenPerRoundTripMode) {
    RunShapes({
        {"full", S(kOrderWithTextBesideAttribute), Mode(RoundTrip_Full),
         "{\n  \"Order\": {\n    \"@id\": 7,\n    \"Sku\": {\n      \"@unit\": \"kg\",\n"
         "      \"#text\": 5\n    },\n    \"Note\": \"n\"\n  }\n}"},
        {"simple", S(kOrderWithTextBesideAttribute), Mode(RoundTrip_Simple),
         "{\n  \"Order\": {\n    \"@id\": 7,\n    \"Sku\": {\n      \"@unit\": \"kg\",\n"
         "      \"#text\": 5\n    },\n    \"Note\": \"n\"\n  }\n}"},
        {"none: plain names, text under the empty key", S(kOrderWithTextBesideAttribute),
         Mode(RoundTrip_None),
         "{\n  \"Order\": {\n    \"id\": 7,\n    \"Sku\": {\n      \"unit\": \"kg\",\n"
         "      \"\": 5\n    },\n    \"Note\": \"n\"\n  }\n}"},
        {"unformatted", S(kOrderWithTextBesideAttribute), Flat(),
         "{\"Order\": {\"@id\": 7,\"Sku\": {\"@unit\": \"kg\",\"#text\": 5},\"Note\": \"n\"}}"},
        {"tab indentation and CRLF", S("<A B=b /"),
         [] {
             Settings s;
             s.indent = "\t";
             s.eol = EOLType_CRLF;
             return s;
         }(),
         "{\r\n\t\"A\": {\r\n\t\t\"B\": \"b\"\r\n\t}\r\n}"},
    });
}

TEST(CJsonTextWriter, FramesClassCollectionsAsArraysAndRepeatsSimpleElements) {
    RunShapes({
        {"a framed collection becomes one array, closed before the next member",
         S("<Order @id=1 [ <Line @no=1 Sku=A / <Line @no=2 / ] Code#=7 /"), Settings(),
         "{\n  \"Order\": {\n    \"@id\": \"1\",\n    \"Line\": [\n      {\n"
         "        \"@no\": \"1\",\n        \"Sku\": \"A\"\n      },\n      {\n"
         "        \"@no\": \"2\"\n      }\n    ],\n    \"Code\": 7\n  }\n}"},
        {"text after the collection also closes the array", S("<Order [ <Line @no=1 / ] =t /"),
         Flat(), "{\"Order\": {\"Line\": [{\"@no\": \"1\"}],\"#text\": \"t\"}}"},
        {"two collections in a row: the second start replaces the first end",
         S("<Order [ <Line @no=1 / ] [ <Item @k=x / <Item @k=y / ] /"), Flat(),
         "{\"Order\": {\"Line\": [{\"@no\": \"1\"}],\"Item\": [{\"@k\": \"x\"},{\"@k\": \"y\"}]}}"},
        {"items named otherwise (substitutes) start arrays of their own",
         S("<Garage [ <Bike @n=1 / <Car @n=2 / <Car @n=3 / <Bike @n=4 / ] /"), Flat(),
         "{\"Garage\": {\"Bike\": [{\"@n\": \"1\"}],\"Car\": [{\"@n\": \"2\"},{\"@n\": \"3\"}],"
         "\"Bike\": [{\"@n\": \"4\"}]}}"},
        {"a collection inside an item of a collection",
         S("<Root [ <Line @no=1 [ <Sub @s=a / ] / ] /"), Settings(),
         "{\n  \"Root\": {\n    \"Line\": [\n      {\n        \"@no\": \"1\",\n"
         "        \"Sub\": [\n          {\n            \"@s\": \"a\"\n          }\n"
         "        ]\n      }\n    ]\n  }\n}"},
        {"empty items open no array and become repeated nulls",
         S("<Order [ <Line/ <Line/ ] /"), Settings(),
         "{\n  \"Order\": {\n    \"Line\": null,\n    \"Line\": null\n  }\n}"},
        {"text-only items open no array and become repeated keys",
         S("<Order [ Line=a Line=b ] /"), Flat(), "{\"Order\": {\"Line\": \"a\",\"Line\": \"b\"}}"},
        {"text-only and empty items after an item with content are objects in the array",
         S("<Order [ <Line @no=1 / Line=b <Line/ ] /"), Settings(),
         "{\n  \"Order\": {\n    \"Line\": [\n      {\n        \"@no\": \"1\"\n      },\n"
         "      {\n        \"#text\": \"b\"\n      },\n      {}\n    ]\n  }\n}"},
        {"repeated simple elements without framing are repeated keys", S("<Line Tag=a Tag=b /"),
         Settings(), "{\n  \"Line\": {\n    \"Tag\": \"a\",\n    \"Tag\": \"b\"\n  }\n}"},
        {"an element with nothing in it is null", S("<Order <Empty/ Sku=x /"), Flat(),
         "{\"Order\": {\"Empty\": null,\"Sku\": \"x\"}}"},
        {"text before children becomes the object's text member", S("<Mixed =t Child=c /"),
         Settings(), "{\n  \"Mixed\": {\n    \"#text\": \"t\",\n    \"Child\": \"c\"\n  }\n}"},
        {"text pieces join into one value", S("<A =x\" =y /"), Flat(true),
         "{\"A\": \"x\\\"y\"}"},
        {"an empty root is null", S("<Order/"), Settings(), "{\n  \"Order\": null\n}"},
        {"an empty string is a value", S("Note="), Flat(), "{\"Note\": \"\"}"},
    });
}

TEST(CJsonTextWriter, WritesNamespacesInFullRoundTripOnly) {
    const char* const unboundRoot = "<{urn:a}Root {urn:a}Child=v /";
    const char* const declared =
        "xmlns=urn:d xmlns:z=urn:a xmlns:b=urn:c xmlns:xml=http://www.w3.org/XML/1998/namespace "
        "<{urn:d}Root @{http://www.w3.org/XML/1998/namespace}lang=en {urn:c}Child=v "
        "{urn:a}Other=w {urn:d}Same=s /";
    const char* const noNamespaceUnderDefault =
        "xmlns=urn:d <{urn:d}Root Local=v <Empty/ <Wrap Inner=x / [ <Item @k=1 / <Item @k=2 / ] /";
    // The default namespace, undeclared by an element in no namespace, reappears below it.
    const char* const defaultBelowUndeclared =
        "xmlns=urn:d <{urn:d}Root <Local {urn:d}Value#=5 [ <{urn:d}Item @k=1 / "
        "<{urn:d}Item @k=2 / ] / /";
    const char* const typed =
        "xmlns:xsi=" KX_TEST_XSI " xmlns:t=urn:t <Root xsi:type={urn:t}Derived xsi:type=Local "
        "xsi:nil /";
    RunShapes({
        {"unbound root namespace gets a fresh prefix", S(unboundRoot), Settings(),
         "{\n  \"AA:Root\": {\n    \"@xmlns:AA\": \"urn:a\",\n    \"AA:Child\": \"v\"\n  }\n}"},
        {"simple mode ignores namespaces", S(unboundRoot), Mode(RoundTrip_Simple),
         "{\n  \"Root\": {\n    \"Child\": \"v\"\n  }\n}"},
        {"root declares the default namespace and the map in URI order", S(declared), Flat(),
         "{\"Root\": {\"@xmlns\": \"urn:d\",\"@xmlns:z\": \"urn:a\",\"@xmlns:b\": \"urn:c\","
         "\"@xml:lang\": \"en\",\"b:Child\": \"v\",\"z:Other\": \"w\",\"Same\": \"s\"}}"},
        {"simple mode: local names", S(declared), Flat(false, RoundTrip_Simple),
         "{\"Root\": {\"@lang\": \"en\",\"Child\": \"v\",\"Other\": \"w\",\"Same\": \"s\"}}"},
        {"none mode: plain attribute names", S(declared), Flat(false, RoundTrip_None),
         "{\"Root\": {\"lang\": \"en\",\"Child\": \"v\",\"Other\": \"w\",\"Same\": \"s\"}}"},
        {"an element in no namespace under a default one undeclares it",
         S(noNamespaceUnderDefault), Settings(),
         "{\n  \"Root\": {\n    \"@xmlns\": \"urn:d\",\n    \"Local\": {\n"
         "      \"@xmlns\": \"\",\n      \"#text\": \"v\"\n    },\n    \"Empty\": {\n"
         "      \"@xmlns\": \"\"\n    },\n    \"Wrap\": {\n      \"@xmlns\": \"\",\n"
         "      \"Inner\": \"x\"\n    },\n    \"Item\": [\n      {\n"
         "        \"@xmlns\": \"\",\n        \"@k\": \"1\"\n      },\n      {\n"
         "        \"@xmlns\": \"\",\n        \"@k\": \"2\"\n      }\n    ]\n  }\n}"},
        {"simple mode writes no undeclaration", S(noNamespaceUnderDefault),
         Flat(false, RoundTrip_Simple),
         "{\"Root\": {\"Local\": \"v\",\"Empty\": null,\"Wrap\": {\"Inner\": \"x\"},"
         "\"Item\": [{\"@k\": \"1\"},{\"@k\": \"2\"}]}}"},
        {"an undeclared default namespace gets a fresh prefix on each element",
         S(defaultBelowUndeclared), Flat(),
         "{\"Root\": {\"@xmlns\": \"urn:d\",\"Local\": {\"@xmlns\": \"\",\"AA:Value\": "
         "{\"@xmlns:AA\": \"urn:d\",\"#text\": 5},\"AA:Item\": [{\"@xmlns:AA\": \"urn:d\","
         "\"@k\": \"1\"},{\"@xmlns:AA\": \"urn:d\",\"@k\": \"2\"}]}}}"},
        {"instance types in full mode; the nil mark has no JSON form", S(typed), Flat(),
         "{\"Root\": {\"@xmlns:xsi\": \"http://www.w3.org/2001/XMLSchema-instance\","
         "\"@xmlns:t\": \"urn:t\",\"@xsi:type\": \"t:Derived\",\"@xsi:type\": \"Local\"}}"},
        {"no instance types in simple mode", S(typed), Flat(false, RoundTrip_Simple),
         "{\"Root\": null}"},
    });
}

TEST(CJsonTextWriter, QuotesValuesByItemType) {
    struct Case {
        ItemType type;
        bool quoted;
    };
    const Case cases[] = {
        {ItemType_hexBinary, true}, {ItemType_base64Binary, true}, {ItemType_i1, false},
        {ItemType_i2, false},       {ItemType_i4, false},          {ItemType_i8, false},
        {ItemType_ui1, false},      {ItemType_ui2, false},         {ItemType_ui4, false},
        {ItemType_ui8, false},      {ItemType_r4, false},          {ItemType_r8, false},
        {ItemType_duration, true},  {ItemType_date, true},         {ItemType_time, true},
        {ItemType_char, true},      {ItemType_string, true},       {ItemType_boolean, false},
        {ItemType_decimal, false},  {ItemType_integer, false},     {ItemType_XmlObject, true},
        {ItemType_XmlCollection, true}, {ItemType_Invalid, true},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(static_cast<int>(row.type));
        const std::string json = Render([&](CJsonTextWriter& w) { Leaf(w, "V", "12", row.type); },
                                        Flat());
        EXPECT_EQ(row.quoted ? "{\"V\": \"12\"}" : "{\"V\": 12}", json);
    }
}

struct EscapeCase {
    const char* what;
    std::string value;
    ItemType type;
    Settings settings;
    const char* json;
};

void RunEscapes(const std::vector<EscapeCase>& cases) {
    for (const EscapeCase& row : cases) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(row.json,
                  Render([&](CJsonTextWriter& w) { Leaf(w, "V", row.value, row.type); },
                         row.settings));
    }
}

TEST(CJsonTextWriter, EscapesLenientlyByDefault) {
    RunEscapes({
        {"quotation mark and backslash stay", "a\"b\\c", ItemType_string, Flat(),
         "{\"V\": \"a\"b\\c\"}"},
        {"line feed is the LF line end", "a\nb", ItemType_string, Flat(), "{\"V\": \"a\nb\"}"},
        {"line feed is the CRLF line end", "a\nb", ItemType_string,
         Flat(false, RoundTrip_Full, EOLType_CRLF), "{\"V\": \"a\r\nb\"}"},
        {"carriage return vanishes", "a\r\nb\rc", ItemType_string, Flat(),
         "{\"V\": \"a\nbc\"}"},
        {"tab, backspace and form feed stay", "\t\b\f", ItemType_string, Flat(),
         "{\"V\": \"\t\b\f\"}"},
        {"other control bytes as upper-case \\u", "\x01\x1f\x0b", ItemType_string, Flat(),
         "{\"V\": \"\\u0001\\u001F\\u000B\"}"},
        {"bytes of UTF-8 pass through", "\xC3\xA9\xE2\x82\xAC", ItemType_string, Flat(),
         "{\"V\": \"\xC3\xA9\xE2\x82\xAC\"}"},
        {"the text ends at a NUL", std::string("ab\0cd", 5), ItemType_string, Flat(),
         "{\"V\": \"ab\"}"},
        {"numbers are written as they come", "INF", ItemType_r8, Flat(), "{\"V\": INF}"},
    });
}

TEST(CJsonTextWriter, EscapesAsJsonWithStandardEscaping) {
    RunEscapes({
        {"quotation mark and backslash", "a\"b\\c", ItemType_string, Flat(true),
         "{\"V\": \"a\\\"b\\\\c\"}"},
        {"control characters as \\u", "\n\r\t\x01\x1f", ItemType_string, Flat(true),
         "{\"V\": \"\\u000A\\u000D\\u0009\\u0001\\u001F\"}"},
        {"UTF-8 and slash pass through", "\xC3\xA9/", ItemType_string, Flat(true),
         "{\"V\": \"\xC3\xA9/\"}"},
        {"a JSON number stays unquoted", "-1.5E+3", ItemType_r8, Flat(true),
         "{\"V\": -1.5E+3}"},
        {"INF is not a JSON number", "INF", ItemType_r8, Flat(true), "{\"V\": \"INF\"}"},
        {"NaN is not a JSON number", "NaN", ItemType_r4, Flat(true), "{\"V\": \"NaN\"}"},
        {"a plus sign is not JSON", "+5", ItemType_i4, Flat(true), "{\"V\": \"+5\"}"},
        {"leading zeros are not JSON", "007", ItemType_integer, Flat(true),
         "{\"V\": \"007\"}"},
        {"a bare point is not JSON", "5.", ItemType_decimal, Flat(true), "{\"V\": \"5.\"}"},
        {"an empty number is not JSON", "", ItemType_i4, Flat(true), "{\"V\": \"\"}"},
        {"true stays a literal", "true", ItemType_boolean, Flat(true), "{\"V\": true}"},
        {"1 as a boolean is quoted", "1", ItemType_boolean, Flat(true), "{\"V\": \"1\"}"},
    });
}

// What the escaping makes of byte `c` inside a quoted value, written out rule by rule.
std::string EscapedByte(unsigned char c, bool standard, EOLType eol) {
    const char hex[] = "0123456789ABCDEF";
    const std::string unicode = std::string("\\u00") + hex[c >> 4] + hex[c & 0x0F];
    if (standard) {
        if (c == '"' || c == '\\') return std::string(1, '\\') + static_cast<char>(c);
        return c < 0x20 ? unicode : std::string(1, static_cast<char>(c));
    }
    if (c == '\n') return eol == EOLType_CRLF ? "\r\n" : "\n";
    if (c == '\r') return "";
    if (c == '\t' || c == '\b' || c == '\f' || c >= 0x20) {
        return std::string(1, static_cast<char>(c));
    }
    return unicode;
}

struct EscapingCase {
    const char* what;
    bool standard;
    EOLType eol;
};

const EscapingCase kEscapings[] = {
    {"lenient, LF", false, EOLType_LF},
    {"lenient, CRLF", false, EOLType_CRLF},
    {"standard", true, EOLType_LF},
};

TEST(CJsonTextWriter, EscapesEveryByteBelowDelete) {
    for (const EscapingCase& row : kEscapings) {
        SCOPED_TRACE(row.what);
        for (int c = 1; c < 0x7F; ++c) {
            SCOPED_TRACE(c);
            const std::string value = std::string("a") + static_cast<char>(c) + "b";
            const std::string expected =
                "{\"V\": \"a" + EscapedByte(static_cast<unsigned char>(c), row.standard, row.eol) +
                "b\"}";
            EXPECT_EQ(expected,
                      Render([&](CJsonTextWriter& w) { Leaf(w, "V", value, ItemType_string); },
                             Flat(row.standard, RoundTrip_Full, row.eol)));
        }
    }
}

// The writer fills the stream's blocks in place: a value that starts anywhere near the end of
// a block, and is longer than a block, must come out whole whichever byte meets the boundary.
TEST(CJsonTextWriter, WritesEscapedTextAcrossStreamBlocksWhole) {
    std::string value;
    for (int i = 0; i < 1500; ++i) value += "ab\x01\"\\\r\n\x1f";
    for (const EscapingCase& row : kEscapings) {
        SCOPED_TRACE(row.what);
        std::string escaped;
        for (char c : value) {
            escaped += EscapedByte(static_cast<unsigned char>(c), row.standard, row.eol);
        }
        for (size_t fill = 4050; fill < 4110; ++fill) {
            SCOPED_TRACE(fill);
            const std::string filler(fill, 'x');
            const std::string json = Render(
                [&](CJsonTextWriter& w) {
                    w.WriteStartElement("R", "");
                    w.WriteAttributeString("f", "", filler, ItemType_string);
                    w.WriteAttributeString("v", "", value, ItemType_string);
                    w.WriteString(value, ItemType_string, false);
                    w.WriteEndElement();
                },
                Flat(row.standard, RoundTrip_Full, row.eol));
            ASSERT_EQ("{\"R\": {\"@f\": \"" + filler + "\",\"@v\": \"" + escaped +
                          "\",\"#text\": \"" + escaped + "\"}}",
                      json);
        }
    }
}

TEST(CJsonTextWriter, EndsCallerTextAtItsFirstNul) {
    const std::string nulA("a\0z", 3);
    RunShapes({
        {"texts held back join at the first one's NUL",
         [&](CJsonTextWriter& w) {
             w.WriteStartElement("V", "");
             w.WriteString(nulA, ItemType_string, false);
             w.WriteString(std::string("b\0y", 3), ItemType_string, false);
             w.WriteString("c", ItemType_string, false);
             w.WriteEndElement();
         },
         Flat(), "{\"V\": \"abc\"}"},
        {"an unquoted number",
         [&](CJsonTextWriter& w) { Leaf(w, "V", std::string("12\0" "3", 4), ItemType_i4); },
         Flat(), "{\"V\": 12}"},
        {"an element name",
         [&](CJsonTextWriter& w) {
             w.WriteStartElement(std::string("Na\0me", 5), "");
             w.WriteEndElement();
         },
         Flat(), "{\"Na\": null}"},
        {"an attribute name and value",
         [&](CJsonTextWriter& w) {
             w.WriteStartElement("R", "");
             w.WriteAttributeString(std::string("at\0tr", 5), "", nulA, ItemType_string);
             w.WriteEndElement();
         },
         Flat(), "{\"R\": {\"@at\": \"a\"}}"},
        {"a text member beside an attribute, standard escaping",
         [&](CJsonTextWriter& w) {
             w.WriteStartElement("R", "");
             w.WriteAttributeString("a", "", "1", ItemType_i4);
             w.WriteString(nulA, ItemType_string, false);
             w.WriteEndElement();
         },
         Flat(true), "{\"R\": {\"@a\": 1,\"#text\": \"a\"}}"},
    });
}

TEST(CJsonTextWriter, WritesCommentsAndIgnoresWhatJsonCannotHold) {
    RunShapes({
        {"comment before the root, line end even unformatted",
         [](CJsonTextWriter& w) {
             w.WriteComment("note \x01 here");
             KxTest::RunScript(w, "A#=1");
         },
         Flat(), "{/* note \\u0001 here */\n\"A\": 1}"},
        {"processing instructions and inline schemas write nothing",
         [](CJsonTextWriter& w) {
             w.WritePI("<?pi x?>");
             w.WriteStartElement("A", "");
             w.WriteInlineSchema("<xs:schema/>");
             KxTest::RunScript(w, "xsi:nil /");
         },
         Flat(), "{\"A\": null}"},
    });
}

TEST(CJsonTextWriter, ReportsMisuseWithExactMessages) {
    struct Case {
        const char* message;
        Calls calls;
    };
    const Case cases[] = {
        {"Unknown Namespace: Child.", S("<{urn:a}Root <{urn:b}Child")},
        {"Unknown Namespace: a.", S("<Root @{urn:x}a=1")},
        {"Unknown Namespace: Derived.",
         S("xmlns:xsi=" KX_TEST_XSI " <Root xsi:type={urn:t}Derived")},
        {"Unknown Namespace: type.", S("<Root xsi:type=Local")},
        {"There is no open Element to end.", S("/")},
        {"There is no open Element for the text.", S("=x")},
        {"There is no open Element for the attribute.", S("@a=1")},
        {"An Element has not been closed.",
         [](CJsonTextWriter& w) {
             w.WriteStartElement("Root", "");
             w.Close();
         }},
        {"Invalid EOL type.", [](CJsonTextWriter& w) { w.SetEOLType(static_cast<EOLType>(2)); }},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.message);
        CTextStream stream(XmlEncoding_UTF8);
        CJsonTextWriter writer(stream);
        writer.Open();
        writer.WriteStartDocument();
        ExpectKxError<CKxException>([&] { row.calls(writer); }, row.message);
    }
}

// Keeps what each Flush hands on, and counts the flushes.
class CountingStream : public CTextStream {
public:
    CountingStream() : CTextStream("CountingStream", XmlEncoding_UTF8) {}
    void Flush() override {
        ++flushes;
        text.append(m_buffer.GetText(), m_buffer.GetLength());
        m_buffer.Empty();
    }
    int flushes = 0;
    std::string text;
};

TEST(CJsonTextWriter, FlushesWhenAnElementStartLeaves4096CharactersBuffered) {
    CountingStream stream;
    CJsonTextWriter writer(stream);
    writer.Open();
    writer.SetFormat(false);
    writer.WriteStartDocument();
    writer.WriteStartElement("Root", "");
    const std::string big(4070, 'x');
    writer.WriteAttributeString("a", "", big, ItemType_string);  // attributes do not flush
    EXPECT_EQ(0, stream.flushes);
    EXPECT_LT(stream.GetLength(), 4096u);
    writer.WriteString("tail", ItemType_string, false);  // 4096 reached, but text does not flush
    EXPECT_GE(stream.GetLength(), 4096u);
    EXPECT_EQ(0, stream.flushes);
    writer.WriteStartElement("B", "");
    EXPECT_EQ(1, stream.flushes);
    writer.WriteEndElement();
    writer.WriteComment("c");  // far below the threshold again
    EXPECT_EQ(1, stream.flushes);
    writer.WriteEndElement();
    writer.WriteEndDocument();
    writer.Close();
    stream.Flush();
    EXPECT_EQ("{\"Root\": {\"@a\": \"" + big + "\",\"#text\": \"tail\",\"B\": null/* c */\n}}",
              stream.text);
}

}  // namespace
