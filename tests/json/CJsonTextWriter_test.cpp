#include <functional>
#include <string>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;
using KxTest::ExpectKxError;

namespace {

typedef std::function<void(CJsonTextWriter&)> Calls;

const char kXsi[] = "http://www.w3.org/2001/XMLSchema-instance";

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

Settings Flat(bool standard = false, EOLType eol = EOLType_LF) {
    Settings settings;
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

void Start(CJsonTextWriter& w, const char* name, const char* ns = "") {
    w.WriteStartElement(name, ns);
}
void End(CJsonTextWriter& w) { w.WriteEndElement(); }
void Attr(CJsonTextWriter& w, const char* name, const char* value, ItemType type = ItemType_string,
          const char* ns = "") {
    w.WriteAttributeString(name, ns, value, type);
}
// Start, text, end, as the engine writes a simple-typed member.
void Leaf(CJsonTextWriter& w, const char* name, const std::string& text,
          ItemType type = ItemType_string, const char* ns = "") {
    w.WriteStartElement(name, ns);
    w.WriteString(text, type, false);
    w.WriteEndElement();
}
// An item of a framed collection with one attribute.
void Item(CJsonTextWriter& w, const char* name, const char* attr, const char* value,
          const char* ns = "") {
    Start(w, name, ns);
    Attr(w, attr, value);
    End(w);
}
void State(CJsonTextWriter& w, CXmlWriter::ContextState state) { w.SetContextState(state); }
const CXmlWriter::ContextState kFirst = CXmlWriter::ContextState_CollectionStart;
const CXmlWriter::ContextState kLast = CXmlWriter::ContextState_CollectionEnd;

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
void OrderWithTextBesideAttribute(CJsonTextWriter& w) {
    Start(w, "Order");
    Attr(w, "id", "7", ItemType_i4);
    Start(w, "Sku");
    Attr(w, "unit", "kg");
    w.WriteString("5", ItemType_i4, false);
    End(w);
    Leaf(w, "Note", "n");
    End(w);
}

TEST(CJsonTextWriter, WritesAttributesTextAndChildrenPerRoundTripMode) {
    RunShapes({
        {"full", OrderWithTextBesideAttribute, Mode(RoundTrip_Full),
         "{\n  \"Order\": {\n    \"@id\": 7,\n    \"Sku\": {\n      \"@unit\": \"kg\",\n"
         "      \"#text\": 5\n    },\n    \"Note\": \"n\"\n  }\n}"},
        {"simple", OrderWithTextBesideAttribute, Mode(RoundTrip_Simple),
         "{\n  \"Order\": {\n    \"@id\": 7,\n    \"Sku\": {\n      \"@unit\": \"kg\",\n"
         "      \"#text\": 5\n    },\n    \"Note\": \"n\"\n  }\n}"},
        {"none: plain names, text under the empty key", OrderWithTextBesideAttribute,
         Mode(RoundTrip_None),
         "{\n  \"Order\": {\n    \"id\": 7,\n    \"Sku\": {\n      \"unit\": \"kg\",\n"
         "      \"\": 5\n    },\n    \"Note\": \"n\"\n  }\n}"},
        {"unformatted", OrderWithTextBesideAttribute, Flat(),
         "{\"Order\": {\"@id\": 7,\"Sku\": {\"@unit\": \"kg\",\"#text\": 5},\"Note\": \"n\"}}"},
        {"tab indentation and CRLF",
         [](CJsonTextWriter& w) {
             Start(w, "A");
             Leaf(w, "B", "b");
             End(w);
         },
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
         [](CJsonTextWriter& w) {
             Start(w, "Order");
             Attr(w, "id", "1");
             State(w, kFirst);
             Start(w, "Line");
             Attr(w, "no", "1");
             Leaf(w, "Sku", "A");
             End(w);
             Item(w, "Line", "no", "2");
             State(w, kLast);
             Leaf(w, "Code", "7", ItemType_i4);
             End(w);
         },
         Settings(),
         "{\n  \"Order\": {\n    \"@id\": \"1\",\n    \"Line\": [\n      {\n"
         "        \"@no\": \"1\",\n        \"Sku\": \"A\"\n      },\n      {\n"
         "        \"@no\": \"2\"\n      }\n    ],\n    \"Code\": 7\n  }\n}"},
        {"text after the collection also closes the array",
         [](CJsonTextWriter& w) {
             Start(w, "Order");
             State(w, kFirst);
             Item(w, "Line", "no", "1");
             State(w, kLast);
             w.WriteString("t", ItemType_string, false);
             End(w);
         },
         Flat(), "{\"Order\": {\"Line\": [{\"@no\": \"1\"}],\"#text\": \"t\"}}"},
        {"two collections in a row: the second start replaces the first end",
         [](CJsonTextWriter& w) {
             Start(w, "Order");
             State(w, kFirst);
             Item(w, "Line", "no", "1");
             State(w, kLast);
             State(w, kFirst);
             Item(w, "Item", "k", "x");
             Item(w, "Item", "k", "y");
             State(w, kLast);
             End(w);
         },
         Flat(),
         "{\"Order\": {\"Line\": [{\"@no\": \"1\"}],\"Item\": [{\"@k\": \"x\"},{\"@k\": \"y\"}]}}"},
        {"items named otherwise (substitutes) start arrays of their own",
         [](CJsonTextWriter& w) {
             Start(w, "Garage");
             State(w, kFirst);
             Item(w, "Bike", "n", "1");
             Item(w, "Car", "n", "2");
             Item(w, "Car", "n", "3");
             Item(w, "Bike", "n", "4");
             State(w, kLast);
             End(w);
         },
         Flat(),
         "{\"Garage\": {\"Bike\": [{\"@n\": \"1\"}],\"Car\": [{\"@n\": \"2\"},{\"@n\": \"3\"}],"
         "\"Bike\": [{\"@n\": \"4\"}]}}"},
        {"a collection inside an item of a collection",
         [](CJsonTextWriter& w) {
             Start(w, "Root");
             State(w, kFirst);
             Start(w, "Line");
             Attr(w, "no", "1");
             State(w, kFirst);
             Item(w, "Sub", "s", "a");
             State(w, kLast);
             End(w);
             State(w, kLast);
             End(w);
         },
         Settings(),
         "{\n  \"Root\": {\n    \"Line\": [\n      {\n        \"@no\": \"1\",\n"
         "        \"Sub\": [\n          {\n            \"@s\": \"a\"\n          }\n"
         "        ]\n      }\n    ]\n  }\n}"},
        {"empty items open no array and become repeated nulls",
         [](CJsonTextWriter& w) {
             Start(w, "Order");
             State(w, kFirst);
             Start(w, "Line");
             End(w);
             Start(w, "Line");
             End(w);
             State(w, kLast);
             End(w);
         },
         Settings(), "{\n  \"Order\": {\n    \"Line\": null,\n    \"Line\": null\n  }\n}"},
        {"text-only items open no array and become repeated keys",
         [](CJsonTextWriter& w) {
             Start(w, "Order");
             State(w, kFirst);
             Leaf(w, "Line", "a");
             Leaf(w, "Line", "b");
             State(w, kLast);
             End(w);
         },
         Flat(), "{\"Order\": {\"Line\": \"a\",\"Line\": \"b\"}}"},
        {"text-only and empty items after an item with content are objects in the array",
         [](CJsonTextWriter& w) {
             Start(w, "Order");
             State(w, kFirst);
             Start(w, "Line");
             Attr(w, "no", "1");
             End(w);
             Leaf(w, "Line", "b");
             Start(w, "Line");
             End(w);
             State(w, kLast);
             End(w);
         },
         Settings(),
         "{\n  \"Order\": {\n    \"Line\": [\n      {\n        \"@no\": \"1\"\n      },\n"
         "      {\n        \"#text\": \"b\"\n      },\n      {}\n    ]\n  }\n}"},
        {"repeated simple elements without framing are repeated keys",
         [](CJsonTextWriter& w) {
             Start(w, "Line");
             Leaf(w, "Tag", "a");
             Leaf(w, "Tag", "b");
             End(w);
         },
         Settings(), "{\n  \"Line\": {\n    \"Tag\": \"a\",\n    \"Tag\": \"b\"\n  }\n}"},
        {"an element with nothing in it is null",
         [](CJsonTextWriter& w) {
             Start(w, "Order");
             Start(w, "Empty");
             End(w);
             Leaf(w, "Sku", "x");
             End(w);
         },
         Flat(), "{\"Order\": {\"Empty\": null,\"Sku\": \"x\"}}"},
        {"text before children becomes the object's text member",
         [](CJsonTextWriter& w) {
             Start(w, "Mixed");
             w.WriteString("t", ItemType_string, false);
             Leaf(w, "Child", "c");
             End(w);
         },
         Settings(), "{\n  \"Mixed\": {\n    \"#text\": \"t\",\n    \"Child\": \"c\"\n  }\n}"},
        {"text pieces join into one value",
         [](CJsonTextWriter& w) {
             Start(w, "A");
             w.WriteString("x\"", ItemType_string, false);
             w.WriteString("y", ItemType_string, false);
             End(w);
         },
         Flat(true), "{\"A\": \"x\\\"y\"}"},
        {"an empty root is null", [](CJsonTextWriter& w) { Start(w, "Order"); End(w); },
         Settings(), "{\n  \"Order\": null\n}"},
        {"an empty string is a value", [](CJsonTextWriter& w) { Leaf(w, "Note", ""); },
         Flat(), "{\"Note\": \"\"}"},
    });
}

TEST(CJsonTextWriter, WritesNamespacesInFullRoundTripOnly) {
    const Calls unboundRoot = [](CJsonTextWriter& w) {
        Start(w, "Root", "urn:a");
        Leaf(w, "Child", "v", ItemType_string, "urn:a");
        End(w);
    };
    const Calls declared = [](CJsonTextWriter& w) {
        w.SetDefaultNamespace("urn:d");
        w.AddNamespace("z", "urn:a");
        w.AddNamespace("b", "urn:c");
        w.AddNamespace("xml", CXmlWriter::XML_NAMESPACE);
        Start(w, "Root", "urn:d");
        Attr(w, "lang", "en", ItemType_string, CXmlWriter::XML_NAMESPACE.c_str());
        Leaf(w, "Child", "v", ItemType_string, "urn:c");
        Leaf(w, "Other", "w", ItemType_string, "urn:a");
        Leaf(w, "Same", "s", ItemType_string, "urn:d");
        End(w);
    };
    const Calls noNamespaceUnderDefault = [](CJsonTextWriter& w) {
        w.SetDefaultNamespace("urn:d");
        Start(w, "Root", "urn:d");
        Leaf(w, "Local", "v");
        Start(w, "Empty");
        End(w);
        Start(w, "Wrap");
        Leaf(w, "Inner", "x");
        End(w);
        State(w, kFirst);
        Item(w, "Item", "k", "1");
        Item(w, "Item", "k", "2");
        State(w, kLast);
        End(w);
    };
    // The default namespace, undeclared by an element in no namespace, reappears below it.
    const Calls defaultBelowUndeclared = [](CJsonTextWriter& w) {
        w.SetDefaultNamespace("urn:d");
        Start(w, "Root", "urn:d");
        Start(w, "Local");
        Leaf(w, "Value", "5", ItemType_i4, "urn:d");
        State(w, kFirst);
        Item(w, "Item", "k", "1", "urn:d");
        Item(w, "Item", "k", "2", "urn:d");
        State(w, kLast);
        End(w);
        End(w);
    };
    const Calls typed = [](CJsonTextWriter& w) {
        w.AddNamespace("xsi", kXsi);
        w.AddNamespace("t", "urn:t");
        Start(w, "Root");
        w.WriteAttributeType("Derived", "urn:t", ItemType_string);
        w.WriteAttributeType("Local", "", ItemType_string);
        w.WriteAttributeNil();
        End(w);
    };
    RunShapes({
        {"unbound root namespace gets a fresh prefix", unboundRoot, Settings(),
         "{\n  \"AA:Root\": {\n    \"@xmlns:AA\": \"urn:a\",\n    \"AA:Child\": \"v\"\n  }\n}"},
        {"simple mode ignores namespaces", unboundRoot, Mode(RoundTrip_Simple),
         "{\n  \"Root\": {\n    \"Child\": \"v\"\n  }\n}"},
        {"root declares the default namespace and the map in URI order", declared, Flat(),
         "{\"Root\": {\"@xmlns\": \"urn:d\",\"@xmlns:z\": \"urn:a\",\"@xmlns:b\": \"urn:c\","
         "\"@xml:lang\": \"en\",\"b:Child\": \"v\",\"z:Other\": \"w\",\"Same\": \"s\"}}"},
        {"simple mode: local names", declared,
         [] {
             Settings s = Flat();
             s.mode = RoundTrip_Simple;
             return s;
         }(),
         "{\"Root\": {\"@lang\": \"en\",\"Child\": \"v\",\"Other\": \"w\",\"Same\": \"s\"}}"},
        {"none mode: plain attribute names", declared,
         [] {
             Settings s = Flat();
             s.mode = RoundTrip_None;
             return s;
         }(),
         "{\"Root\": {\"lang\": \"en\",\"Child\": \"v\",\"Other\": \"w\",\"Same\": \"s\"}}"},
        {"an element in no namespace under a default one undeclares it", noNamespaceUnderDefault,
         Settings(),
         "{\n  \"Root\": {\n    \"@xmlns\": \"urn:d\",\n    \"Local\": {\n"
         "      \"@xmlns\": \"\",\n      \"#text\": \"v\"\n    },\n    \"Empty\": {\n"
         "      \"@xmlns\": \"\"\n    },\n    \"Wrap\": {\n      \"@xmlns\": \"\",\n"
         "      \"Inner\": \"x\"\n    },\n    \"Item\": [\n      {\n"
         "        \"@xmlns\": \"\",\n        \"@k\": \"1\"\n      },\n      {\n"
         "        \"@xmlns\": \"\",\n        \"@k\": \"2\"\n      }\n    ]\n  }\n}"},
        {"simple mode writes no undeclaration", noNamespaceUnderDefault,
         [] {
             Settings s = Flat();
             s.mode = RoundTrip_Simple;
             return s;
         }(),
         "{\"Root\": {\"Local\": \"v\",\"Empty\": null,\"Wrap\": {\"Inner\": \"x\"},"
         "\"Item\": [{\"@k\": \"1\"},{\"@k\": \"2\"}]}}"},
        {"an undeclared default namespace gets a fresh prefix on each element",
         defaultBelowUndeclared, Flat(),
         "{\"Root\": {\"@xmlns\": \"urn:d\",\"Local\": {\"@xmlns\": \"\",\"AA:Value\": "
         "{\"@xmlns:AA\": \"urn:d\",\"#text\": 5},\"AA:Item\": [{\"@xmlns:AA\": \"urn:d\","
         "\"@k\": \"1\"},{\"@xmlns:AA\": \"urn:d\",\"@k\": \"2\"}]}}}"},
        {"instance types in full mode; the nil mark has no JSON form", typed, Flat(),
         "{\"Root\": {\"@xmlns:xsi\": \"http://www.w3.org/2001/XMLSchema-instance\","
         "\"@xmlns:t\": \"urn:t\",\"@xsi:type\": \"t:Derived\",\"@xsi:type\": \"Local\"}}"},
        {"no instance types in simple mode", typed,
         [] {
             Settings s = Flat();
             s.mode = RoundTrip_Simple;
             return s;
         }(),
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
         Flat(false, EOLType_CRLF), "{\"V\": \"a\r\nb\"}"},
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

TEST(CJsonTextWriter, WritesCommentsAndIgnoresWhatJsonCannotHold) {
    RunShapes({
        {"comment before the root, line end even unformatted",
         [](CJsonTextWriter& w) {
             w.WriteComment("note \x01 here");
             Leaf(w, "A", "1", ItemType_i4);
         },
         Flat(), "{/* note \\u0001 here */\n\"A\": 1}"},
        {"processing instructions and inline schemas write nothing",
         [](CJsonTextWriter& w) {
             w.WritePI("<?pi x?>");
             Start(w, "A");
             w.WriteInlineSchema("<xs:schema/>");
             w.WriteAttributeNil();
             End(w);
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
        {"Unknown Namespace: Child.",
         [](CJsonTextWriter& w) {
             Start(w, "Root", "urn:a");
             Start(w, "Child", "urn:b");
         }},
        {"Unknown Namespace: a.",
         [](CJsonTextWriter& w) {
             Start(w, "Root");
             Attr(w, "a", "1", ItemType_string, "urn:x");
         }},
        {"Unknown Namespace: Derived.",
         [](CJsonTextWriter& w) {
             w.AddNamespace("xsi", kXsi);
             Start(w, "Root");
             w.WriteAttributeType("Derived", "urn:t", ItemType_string);
         }},
        {"Unknown Namespace: type.",
         [](CJsonTextWriter& w) {
             Start(w, "Root");
             w.WriteAttributeType("Local", "", ItemType_string);
         }},
        {"There is no open Element to end.", [](CJsonTextWriter& w) { End(w); }},
        {"There is no open Element for the text.",
         [](CJsonTextWriter& w) { w.WriteString("x", ItemType_string, false); }},
        {"There is no open Element for the attribute.",
         [](CJsonTextWriter& w) { Attr(w, "a", "1"); }},
        {"An Element has not been closed.",
         [](CJsonTextWriter& w) {
             Start(w, "Root");
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
