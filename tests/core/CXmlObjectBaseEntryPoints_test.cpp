// The public To.../From... entry points of CXmlObjectBase, driven through a hand-written
// binding (an order with an attribute, text children and nested line objects) whose
// ToXml_Int/FromXml_Int talk to CXmlWriter and CXmlElement directly.
#include <clocale>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

int g_linesAlive = 0;

void WriteTextElement(CXmlWriter* writer, const char* name, const char* ns, const std::string& text,
                      ItemType type, bool isDefault = false) {
    writer->WriteStartElement(name, ns);
    writer->WriteString(text, type, isDefault);
    writer->WriteEndElement();
}

class Line : public CXmlObjectBase {
public:
    Line(const char* no, const char* sku, const char* ns) : m_no(no), m_sku(sku), m_ns(ns) {
        SetElementName("Line");
        ++g_linesAlive;
    }
    Line(const Line& other)
        : CXmlObjectBase(other), m_no(other.m_no), m_sku(other.m_sku), m_ns(other.m_ns) {
        ++g_linesAlive;
    }
    ~Line() override { --g_linesAlive; }
    CXmlObjectBase* Clone() const override { return new Line(*this); }
    std::string GetNamespace() const override { return m_ns; }
    std::string GetTargetNamespace() const override { return m_ns; }

    void AttributesToXml_Int(CXmlWriter* writer, const CSerializationContext&) const override {
        writer->WriteAttributeString("no", "", m_no, ItemType_i4);
    }
    void ToXml_Int(CXmlWriter* writer, bool, const char* ns, const CSerializationContext& ctx,
                   bool) const override {
        writer->WriteStartElement(GetElementName(), ns);
        AttributesToXml_Int(writer, ctx);
        WriteTextElement(writer, "Sku", ns, m_sku, ItemType_string);
        writer->WriteEndElement();
    }
    CXmlElement* FromXml_Int(CXmlElement* element, CXmlElement* firstChild,
                             const CSerializationContext& ctx, bool) override {
        m_no = element->GetAttribute("no", "");
        for (CXmlElement* child = firstChild; child; child = child->GetNextSiblingElement()) {
            if (!DoesElementNameMatch(ctx, child, "Sku", m_ns.c_str())) {
                throw CKxValidationException("Unexpected element", child->GetXPath());
            }
            m_sku = child->GetText();
        }
        return nullptr;
    }
    std::string Summary() const { return m_no + ":" + m_sku; }

private:
    std::string m_no, m_sku, m_ns;
};

// <Order id="..."><Customer/><Line/>*<Note/>?<Total/></Order>. Total "0" is the schema default
// (written only when the context asks for default values).
class Order : public CXmlObjectBase {
public:
    explicit Order(const char* ns = "") : m_ns(ns) { SetElementName("Order"); }
    // A shallow copy is enough: nothing here clones an order.
    CXmlObjectBase* Clone() const override { return new Order(*this); }
    std::string GetNamespace() const override { return m_ns; }
    std::string GetTargetNamespace() const override { return m_ns; }

    void AttributesToXml_Int(CXmlWriter* writer, const CSerializationContext&) const override {
        writer->WriteAttributeString("id", "", id, ItemType_string);
    }
    void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* ns,
                   const CSerializationContext& ctx, bool isNested) const override {
        seenRoot = isRoot;
        seenNs = ns;
        seenNested = isNested;
        if (isRoot) {
            for (const std::string& pi : ctx.GetProcessingInstructions()) writer->WritePI(pi);
        }
        writer->WriteStartElement(GetElementName(), ns);
        AttributesToXml_Int(writer, ctx);
        WriteTextElement(writer, "Customer", ns, customer, ItemType_string);
        int written = 0;
        for (const CSmartPtr<Line>& line : lines) {
            if (written++ == failAfterLines) throw CKxException("injected failure");
            line->ToXml_Int(writer, false, ns, ctx, false);
        }
        if (!note.empty()) WriteTextElement(writer, "Note", ns, note, ItemType_string);
        WriteTextElement(writer, "Total", ns, total, ItemType_decimal, total == "0");
        writer->WriteEndElement();
    }
    void OnPreRead() override {
        ++preReads;
        id = customer = note = "";
        total = "0";
        lines.clear();
    }
    CXmlElement* FromXml_Int(CXmlElement* element, CXmlElement* firstChild,
                             const CSerializationContext& ctx, bool isNested) override {
        OnPreRead();
        seenNested = isNested;
        if (element->GetNamespaceURI() != m_ns) {
            throw CKxValidationException("Wrong namespace", element->GetXPath());
        }
        SetElementName(element->GetLocalName().c_str());
        id = element->GetAttribute("id", "");
        const char* ns = m_ns.c_str();
        for (CXmlElement* child = firstChild; child; child = child->GetNextSiblingElement()) {
            if (DoesElementNameMatch(ctx, child, "Customer", ns)) {
                customer = child->GetText();
            } else if (DoesElementNameMatch(ctx, child, "Line", ns)) {
                CSmartPtr<Line> line(new Line("", "", ns));
                line->FromXml_Int(child, child->GetFirstElement(), ctx, false);
                lines.push_back(line);
            } else if (DoesElementNameMatch(ctx, child, "Note", ns)) {
                note = child->GetText();
            } else if (DoesElementNameMatch(ctx, child, "Total", ns)) {
                total = child->GetText();
            } else {
                throw CKxValidationException("Unexpected element", child->GetXPath());
            }
        }
        return nullptr;
    }

    void AddLine(const char* no, const char* sku) {
        lines.emplace_back(new Line(no, sku, m_ns.c_str()));
    }
    // Every field in one line; long line lists are folded into a hash to keep failures short.
    std::string Summary() const {
        std::string text;
        for (const CSmartPtr<Line>& line : lines) text += line->Summary() + ",";
        if (lines.size() > 20) {
            text = std::to_string(lines.size()) + " lines #" +
                   std::to_string(std::hash<std::string>()(text));
        }
        return GetElementName() + " id=" + id + " customer=" + customer + " lines=" + text +
               " note=" + note + " total=" + total;
    }

    std::string id, customer, note, total = "0";
    std::vector<CSmartPtr<Line>> lines;
    int failAfterLines = -1;
    int preReads = 0;
    mutable bool seenRoot = false, seenNested = true;
    mutable std::string seenNs = "?";

private:
    std::string m_ns;
};

// A document with non-ASCII and escaped text, big enough to compress.
CSmartPtr<Order> SampleOrder(const char* ns = "urn:test:orders", int lineCount = 12) {
    CSmartPtr<Order> order(new Order(ns));
    order->id = "ORD-7";
    order->customer = "Zoë Müller & Søren <東京>";
    for (int i = 1; i <= lineCount; ++i) {
        order->AddLine(std::to_string(i).c_str(), ("SKU-00" + std::to_string(i)).c_str());
    }
    order->note = "Ring \"twice\"";
    order->total = "123.45";
    return order;
}

// Narrow text is in the local code page: UTF-8 under C.UTF-8, which every test here uses.
class CXmlObjectBaseEntryPoints : public testing::Test {
protected:
    void SetUp() override {
        if (!m_utf8.Ok()) GTEST_SKIP() << "no C.UTF-8 locale";
    }
    KxTest::ScopedLocale m_utf8{LC_CTYPE, "C.UTF-8"};
};

std::string TmpPath(const std::string& name) {
    return std::string(KX_TEST_TMP_DIR) + "/" + name;
}

bool FileExists(const std::string& path) {
    return std::ifstream(path).good();
}

std::string ReadFileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::string Bytes(const CBinaryData& data) {
    return std::string(reinterpret_cast<const char*>(data.GetData()), data.GetLength());
}

// Turns the process-wide streaming switch on for one scope, whatever happens in it.
struct AsyncScope {
    explicit AsyncScope(bool on) { AsyncToXmlFile(on); }
    ~AsyncScope() { AsyncToXmlFile(false); }
};

}  // namespace

TEST_F(CXmlObjectBaseEntryPoints, ToXmlAppliesHeaderFormatLineEndAndContextOptions) {
    CSerializationContext spaced;
    spaced.SetIndentChars("  ");
    spaced.SetWriteDefaultElementValues(true);
    CSerializationContext withPi;
    withPi.GetProcessingInstructions().push_back("<?style x?>");
    struct Case {
        const char* name;
        bool header, formatted;
        EOLType eol;
        const CSerializationContext& ctx;
        const char* expected;
    };
    const Case cases[] = {
        {"defaults", true, true, EOLType_LF, CSerializationContext::m_defaultContext,
         "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Order id=\"A&amp;1\">\n"
         "\t<Customer>Zo\xC3\xAB</Customer>\n\t<Line no=\"1\">\n\t\t<Sku>S1</Sku>\n\t</Line>\n"
         "\t<Total/>\n</Order>\n"},
        {"flat, no header", false, false, EOLType_LF, CSerializationContext::m_defaultContext,
         "<Order id=\"A&amp;1\"><Customer>Zo\xC3\xAB</Customer><Line no=\"1\"><Sku>S1</Sku>"
         "</Line><Total/></Order>"},
        {"CRLF, spaces, defaults written", true, true, EOLType_CRLF, spaced,
         "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<Order id=\"A&amp;1\">\r\n"
         "  <Customer>Zo\xC3\xAB</Customer>\r\n  <Line no=\"1\">\r\n    <Sku>S1</Sku>\r\n"
         "  </Line>\r\n  <Total>0</Total>\r\n</Order>\r\n"},
        {"processing instruction", false, false, EOLType_LF, withPi,
         "<?style x?>\n\n<Order id=\"A&amp;1\"><Customer>Zo\xC3\xAB</Customer><Line no=\"1\">"
         "<Sku>S1</Sku></Line><Total/></Order>"},
    };
    Order order;
    order.id = "A&1";
    order.customer = "Zo\xC3\xAB";
    order.AddLine("1", "S1");
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.expected, order.ToXml(row.header, row.formatted, row.eol, row.ctx));
        // The stream form produces the same text as UTF-8 bytes.
        EXPECT_EQ(row.expected, Bytes(order.ToXmlStream(row.header, row.formatted, XmlEncoding_UTF8,
                                                        row.eol, row.ctx)));
    }
}

TEST_F(CXmlObjectBaseEntryPoints, TheRootIsWrittenInTheObjectNamespaceAndReadBack) {
    CSmartPtr<Order> order = SampleOrder("urn:test:orders", 2);
    const std::string xml = order->ToXml(false, false);
    EXPECT_TRUE(order->seenRoot);
    EXPECT_FALSE(order->seenNested);
    EXPECT_EQ("urn:test:orders", order->seenNs);
    EXPECT_EQ(0u, xml.find("<AA:Order xmlns:AA=\"urn:test:orders\" id=\"ORD-7\">")) << xml;

    Order copy("urn:test:orders");
    copy.SetElementName("Other");
    copy.FromXml(xml.c_str());
    EXPECT_EQ(order->Summary(), copy.Summary());
    EXPECT_EQ("Order", copy.GetElementName());
    EXPECT_EQ(1, copy.preReads);  // the entry point leaves the pre-read hook to FromXml_Int
    EXPECT_FALSE(copy.seenNested);

    Order wrongNamespace("urn:other");
    KxTest::ExpectKxError<CKxValidationException>([&] { wrongNamespace.FromXml(xml.c_str()); },
                                                  "Wrong namespace\nPath: /AA:Order");
}

TEST_F(CXmlObjectBaseEntryPoints, NarrowAndWideStringsAreRead) {
    struct Case {
        const char* name;
        std::function<void(Order&)> read;
        const char* expected;
    };
    const Case cases[] = {
        {"narrow",
         [](Order& o) {
             o.FromXml(
                 "<Order id='1'><Customer>Zo\xC3\xAB</Customer>"
                 "<Line no='4'><Sku>X</Sku></Line></Order>");
         },
         "Order id=1 customer=Zo\xC3\xAB lines=4:X, note= total=0"},
        {"wide",
         [](Order& o) {
             o.FromXml(
                 L"<Order id='2'><Customer>Zo\u00EB \u6771</Customer>"
                 L"<Total>9</Total></Order>");
         },
         "Order id=2 customer=Zo\xC3\xAB \xE6\x9D\xB1 lines= note= total=9"},
        {"wide with declaration",
         [](Order& o) { o.FromXml(L"<?xml version=\"1.0\" encoding=\"UTF-16\"?><Order id='3'/>"); },
         "Order id=3 customer= lines= note= total=0"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        Order order;
        row.read(order);
        EXPECT_EQ(row.expected, order.Summary());
    }
}

TEST_F(CXmlObjectBaseEntryPoints, StreamsRoundTripInEveryEncodingAndCompression) {
    struct Case {
        XmlEncoding encoding;
        CompressionType compression;
        std::string prefix;  // first bytes of the stream
    };
    const Case cases[] = {
        {XmlEncoding_UTF8, CompressionType_None, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"},
        {XmlEncoding_UTF16, CompressionType_None, std::string("<\0?\0x\0m\0l\0", 10)},
        {XmlEncoding_UTF16Undeclared, CompressionType_None, std::string("<\0?\0x\0m\0l\0", 10)},
        {XmlEncoding_UTF8, CompressionType_GZip, "\x1F\x8B"},
        {XmlEncoding_UTF16, CompressionType_GZip, "\x1F\x8B"},
        {XmlEncoding_UTF8, CompressionType_ZLib, "\x78"},
        {XmlEncoding_UTF16, CompressionType_ZLib, "\x78"},
    };
    CSmartPtr<Order> order = SampleOrder();
    for (const Case& row : cases) {
        SCOPED_TRACE(testing::Message()
                     << "encoding " << row.encoding << ", compression " << row.compression);
        const CBinaryData bytes =
            order->ToXmlStream(true, true, row.encoding, EOLType_LF,
                               CSerializationContext::m_defaultContext, row.compression);
        EXPECT_EQ(row.prefix, Bytes(bytes).substr(0, row.prefix.size()));
        Order fromData("urn:test:orders");
        fromData.FromXmlStream(bytes);
        EXPECT_EQ(order->Summary(), fromData.Summary());
        Order fromPointer("urn:test:orders");
        fromPointer.FromXmlStream(bytes.GetData(), bytes.GetLength());
        EXPECT_EQ(order->Summary(), fromPointer.Summary());
    }
    // The declaration names UTF-16 only for the declared form.
    const std::string declared = Bytes(order->ToXmlStream(true, false, XmlEncoding_UTF16));
    const std::string undeclared =
        Bytes(order->ToXmlStream(true, false, XmlEncoding_UTF16Undeclared));
    EXPECT_NE(std::string::npos, declared.find(std::string("U\0T\0F\0-\0001\0006\0", 12)));
    EXPECT_EQ(std::string::npos, undeclared.find(std::string("U\0T\0F\0", 6)));
}

TEST_F(CXmlObjectBaseEntryPoints, FilesRoundTripThroughAutomaticFormatDetection) {
    struct Case {
        const char* name;
        XmlEncoding encoding;
        CompressionType compression;
        bool async;
        int lineCount;  // several hundred lines make the streaming path write in chunks
    };
    const Case cases[] = {
        {"utf8", XmlEncoding_UTF8, CompressionType_None, false, 12},
        {"utf16", XmlEncoding_UTF16, CompressionType_None, false, 12},
        {"utf16 undeclared", XmlEncoding_UTF16Undeclared, CompressionType_None, false, 12},
        {"utf8 gzip", XmlEncoding_UTF8, CompressionType_GZip, false, 12},
        {"utf16 gzip", XmlEncoding_UTF16, CompressionType_GZip, false, 12},
        {"utf8 streamed", XmlEncoding_UTF8, CompressionType_None, true, 400},
        {"utf16 streamed", XmlEncoding_UTF16, CompressionType_None, true, 400},
        {"gzip is never streamed", XmlEncoding_UTF8, CompressionType_GZip, true, 400},
    };
    const std::string path = TmpPath("entry_points_file.xml");
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        CSmartPtr<Order> order = SampleOrder("urn:test:orders", row.lineCount);
        std::remove(path.c_str());
        {
            AsyncScope async(row.async);
            order->ToXmlFile(path.c_str(), true, true, row.encoding, EOLType_LF,
                             CSerializationContext::m_defaultContext, row.compression);
        }
        const std::string file = ReadFileBytes(path);
        const std::string stream = Bytes(order->ToXmlStream(true, true, row.encoding, EOLType_LF,
                                                            CSerializationContext::m_defaultContext,
                                                            CompressionType_None));
        if (row.compression == CompressionType_GZip) {
            EXPECT_EQ("\x1F\x8B", file.substr(0, 2));  // no byte-order mark before gzip data
        } else if (row.encoding == XmlEncoding_UTF8) {
            EXPECT_EQ(stream, file);
        } else {
            EXPECT_EQ("\xFF\xFE" + stream, file);
        }
        Order copy("urn:test:orders");
        copy.FromXmlFile(path.c_str());
        EXPECT_EQ(order->Summary(), copy.Summary());
    }
    EXPECT_FALSE(GetAsyncToXmlFile());
}

TEST_F(CXmlObjectBaseEntryPoints, FileFormsRefuseZlibBeforeCreatingAnything) {
    const std::string path = TmpPath("entry_points_zlib.out");
    CSmartPtr<Order> order = SampleOrder();
    const CSerializationContext& ctx = CSerializationContext::m_defaultContext;
    struct Case {
        const char* name;
        std::function<void()> write;
    };
    const auto toXmlFile = [&] {
        order->ToXmlFile(path.c_str(), true, true, XmlEncoding_UTF8, EOLType_LF, ctx,
                         CompressionType_ZLib);
    };
    const Case cases[] = {
        {"xml", toXmlFile},
        {"xml streamed",
         [&] {
             AsyncScope async(true);
             toXmlFile();
         }},
        {"json",
         [&] {
             order->ToJsonFile(path.c_str(), true, XmlEncoding_UTF8, EOLType_LF, ctx,
                               CompressionType_ZLib);
         }},
        {"fast infoset",
         [&] { order->ToFastInfosetFile(path.c_str(), FInfoDecl_4, ctx, CompressionType_ZLib); }},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        std::remove(path.c_str());
        KxTest::ExpectKxError<CKxException>(
            row.write, "ZLIB Compression only available for To Stream methods.");
        EXPECT_FALSE(FileExists(path));
    }
}

TEST_F(CXmlObjectBaseEntryPoints, AFailedDocumentWritesNothingUnlessStreamed) {
    const std::string path = TmpPath("entry_points_failed.xml");
    CSmartPtr<Order> order = SampleOrder("", 20);
    order->failAfterLines = 3;

    // Built in memory: an existing file keeps its contents, a missing one is not created.
    std::ofstream(path, std::ios::binary) << "old contents";
    KxTest::ExpectKxError<CKxException>([&] { order->ToXmlFile(path.c_str()); },
                                        "injected failure");
    EXPECT_EQ("old contents", ReadFileBytes(path));
    std::remove(path.c_str());
    KxTest::ExpectKxError<CKxException>([&] { order->ToXmlFile(path.c_str()); },
                                        "injected failure");
    EXPECT_FALSE(FileExists(path));
    KxTest::ExpectKxError<CKxException>([&] { order->ToXmlStream(); }, "injected failure");

    // Streamed: the file was opened before the failure and is left truncated.
    {
        AsyncScope async(true);
        KxTest::ExpectKxError<CKxException>([&] { order->ToXmlFile(path.c_str()); },
                                            "injected failure");
    }
    EXPECT_TRUE(FileExists(path));
    EXPECT_EQ(std::string::npos, ReadFileBytes(path).find("</Order>"));
    std::remove(path.c_str());
}

TEST_F(CXmlObjectBaseEntryPoints, LoadAndParseFailuresReachTheCallerUnchanged) {
    const std::string missing = TmpPath("no_such_file.xml");
    const CBinaryData empty;
    const unsigned char garbage[] = {0x1F, 0x8B, 0x08, 0x00, 'x', 'y'};
    struct Case {
        const char* name;
        std::function<void(Order&)> read;
        std::string message;
    };
    const Case cases[] = {
        {"mismatched tag", [](Order& o) { o.FromXml("<Order><Line></Order>"); },
         "mismatched tag at line 1"},
        {"second line", [](Order& o) { o.FromXml("<Order>\n<Customer>&bad;</Customer></Order>"); },
         "undefined entity at line 2"},
        {"empty text", [](Order& o) { o.FromXml(""); }, "XML String is empty!"},
        {"null text", [](Order& o) { o.FromXml(static_cast<const char*>(nullptr)); },
         "XML String is empty!"},
        {"empty wide text", [](Order& o) { o.FromXml(L""); }, "XML String is empty!"},
        {"empty stream", [&](Order& o) { o.FromXmlStream(empty); }, "XML Stream is empty!"},
        {"cut gzip stream", [&](Order& o) { o.FromXmlStream(garbage, sizeof garbage); },
         "not well-formed (invalid token) at line 1"},
        {"missing file", [&](Order& o) { o.FromXmlFile(missing.c_str()); },
         "Failed to open the file [" + missing + "]."},
        {"empty JSON text", [](Order& o) { o.FromJson(""); }, "JSON String is empty!"},
        {"empty JSON stream", [](Order& o) { o.FromJsonStream(CBinaryData()); },
         "JSON Stream is empty!"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        Order order;
        KxTest::ExpectKxError<CKxException>([&] { row.read(order); }, row.message);
    }
    // A fault found by FromXml_Int keeps its class and path.
    Order order;
    KxTest::ExpectKxError<CKxValidationException>(
        [&] { order.FromXml("<Order><Line no='1'><Sku/><Qty/></Line></Order>"); },
        "Unexpected element\nPath: /Order/Line/Qty");
    EXPECT_EQ(0, g_linesAlive);
    KxTest::ExpectKxError<CKxException>(
        [&] { order.ToXmlStream(true, true, XmlEncoding_Unset); },
        "Unknown Encoding, select UTF-8 (contact our support team)");
}

TEST_F(CXmlObjectBaseEntryPoints, EntryPointsLeaveTheCountAloneAndChildrenDieWithTheParent) {
    {
        CSmartPtr<Order> order(new Order);
        order->FromXml("<Order><Line no='1'><Sku>A</Sku></Line><Line no='2'/></Order>");
        EXPECT_EQ(2, g_linesAlive);
        order->ToXml();
        order->FromXml("<Order><Line no='3'/></Order>");  // the pre-read hook drops old lines
        EXPECT_EQ(1, g_linesAlive);
        EXPECT_EQ(1, order->GetRefCount());
        EXPECT_EQ(order.Ptr(), order->GetBase());
        CXmlObjectBase* raw = order.Ptr();
        raw->AddRef();
        order = nullptr;
        EXPECT_EQ(1, g_linesAlive);
        EXPECT_EQ(0, raw->Release());  // the last reference destroys the order and its lines
    }
    EXPECT_EQ(0, g_linesAlive);
}

TEST_F(CXmlObjectBaseEntryPoints, FromXmlElementReadsASubtreeTheCallerHolds) {
    CXmlDocument document;
    document.LoadXml("<Batch><Order id='5'><Customer>Ann</Customer></Order></Batch>");
    const CXmlElement* orderElement = document.GetDocumentElement()->GetFirstElement();
    Order order;
    order.FromXmlElement(orderElement);
    EXPECT_EQ("Order id=5 customer=Ann lines= note= total=0", order.Summary());
    EXPECT_EQ("Ann", orderElement->GetFirstElement()->GetText());  // the tree is unchanged

    KxTest::ExpectKxError<CKxInvalidParamException>(
        [&] { order.FromXmlElement(static_cast<const CXmlElement*>(nullptr)); },
        "The element to read from is NULL");
    KxTest::ExpectKxError<CKxInvalidParamException>(
        [&] { order.FromXmlElement(static_cast<const CElement*>(nullptr)); },
        "The element to read from is NULL");
}

TEST_F(CXmlObjectBaseEntryPoints, FastInfosetFormsWriteTheBinaryDocument) {
    CSmartPtr<Order> order = SampleOrder();
    const std::string path = TmpPath("entry_points.finf");
    struct Case {
        const char* name;
        std::function<std::string()> write;
        std::string prefix;  // the first bytes of the output
    };
    const Case cases[] = {
        {"stream, no declaration", [&] { return Bytes(order->ToFastInfosetStream()); },
         std::string("\xE0\x00\x00\x01\x00", 5)},
        {"stream with a declaration",
         [&] { return Bytes(order->ToFastInfosetStream(FInfoDecl_4)); },
         std::string("<?xml version='1.0' encoding='finf'?>\xE0\x00\x00\x01", 41)},
        {"gzip file",
         [&] {
             order->ToFastInfosetFile(path.c_str(), FInfoDecl_None,
                                      CSerializationContext::m_defaultContext,
                                      CompressionType_GZip);
             return ReadFileBytes(path);
         },
         std::string("\x1F\x8B")},
        {"plain file",
         [&] {
             order->ToFastInfosetFile(path.c_str());
             return ReadFileBytes(path);
         },
         std::string("\xE0\x00\x00\x01\x00", 5)},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const std::string bytes = row.write();
        EXPECT_EQ(row.prefix, bytes.substr(0, row.prefix.size()));
    }
}

TEST_F(CXmlObjectBaseEntryPoints, StaticForwardersReachTheVirtualHooks) {
    CSmartPtr<Order> order = SampleOrder("", 1);
    const CXmlObjectBase* base = order.Ptr();
    CTextStream stream(XmlEncoding_UTF8);
    CXmlTextWriter writer(stream);
    writer.Open();
    writer.SetFormat(false);
    CXmlObjectBase::ToXml_Int(base, &writer, false, "", CSerializationContext::m_defaultContext,
                              true);
    writer.Close();
    EXPECT_FALSE(order->seenRoot);
    EXPECT_TRUE(order->seenNested);
    const std::string written = stream.GetText();
    EXPECT_EQ(0u, written.find("<Order id=\"ORD-7\"><Customer>")) << written;

    CXmlDocument document;
    document.LoadXml(written.c_str());
    Order copy;
    CXmlElement* root = document.GetDocumentElement();
    EXPECT_EQ(nullptr, CXmlObjectBase::FromXml_Int(&copy, root, root->GetFirstElement(),
                                                   CSerializationContext::m_defaultContext));
    EXPECT_FALSE(copy.seenNested);
    EXPECT_EQ(order->Summary(), copy.Summary());

    CTextStream attributes(XmlEncoding_UTF8);
    CXmlTextWriter attributeWriter(attributes);
    attributeWriter.Open();
    attributeWriter.WriteStartElement("x", "");
    CXmlObjectBase::AttributesToXml_Int(base, &attributeWriter,
                                        CSerializationContext::m_defaultContext);
    attributeWriter.WriteEndElement();
    EXPECT_EQ("<x id=\"ORD-7\"/>\n", std::string(attributes.GetText()));
}
