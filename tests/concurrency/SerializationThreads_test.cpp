// Documents written and read on several threads at once, each thread with its own objects and
// contexts, must come out byte for byte as on one thread; and what every thread uses at once
// (the default context, the class records and factory of the bindings) must stand it.
#include <clocale>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"
#include "OrderBindings.h"
#include "ThreadTestSupport.h"

using namespace KxXmlLib16;
using namespace KxOrders;
using KxThreadTest::kThreads;
using KxThreadTest::RunTogether;

namespace {

const char kVocabularyUri[] = "urn:kx:threads:orders";

// An orders document of `count` orders, alternating payment branches and optional members,
// with text that needs escaping and text beyond ASCII.
std::string OrdersDocument(int count) {
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                      "<Orders xmlns=\"urn:bench:orders\" count=\"" +
                      std::to_string(count) + "\">\n";
    for (int i = 1; i <= count; ++i) {
        const std::string n = std::to_string(i);
        xml += "<Order id=\"A-" + n + "\" seq=\"" + n + "\" status=\"" +
               (i % 2 ? "confirmed" : "shipped") + "\">\n"
               "<OrderDate>2024-03-0" + std::to_string(i % 9 + 1) + "T10:15:30Z</OrderDate>\n"
               "<Customer id=\"C-" + n + "\"" + (i % 3 ? " vip=\"true\"" : "") + ">\n"
               "<Name>Anna Müller " + n + "</Name><Email>anna" + n + "@example.com</Email>\n"
               "<BillingAddress><Street>Hauptstraße " + n + "</Street><City>東京</City>"
               "<PostalCode>1011" + n + "</PostalCode><Country>DE</Country></BillingAddress>\n"
               "</Customer>\n";
        for (int line = 1; line <= 1 + i % 3; ++line) {
            const std::string l = std::to_string(line);
            xml += "<Line no=\"" + l + "\"><Sku>SKU-" + n + "-" + l + "</Sku>"
                   "<Description>Tea &amp; biscuits &lt;" + l + "&gt;</Description>"
                   "<Quantity>" + l + "</Quantity><UnitPrice>12." + n + "0</UnitPrice>"
                   "<Weight>0.75</Weight><Taxable>" + (line % 2 ? "true" : "false") +
                   "</Taxable></Line>\n";
        }
        if (i % 2) {
            xml += "<Card brand=\"VISA\"><Holder>Anna</Holder><Number>4111111111111111</Number>"
                   "<Expiry>2027-09-30</Expiry></Card>\n";
        } else {
            xml += "<Invoice terms=\"30\"><Reference>INV-" + n + "</Reference>"
                   "<DueDate>2024-04-01</DueDate></Invoice>\n";
        }
        xml += "<Tag>gift</Tag><Tag>日本</Tag><Total>" + n + "3.00</Total>\n";
        if (i % 2 == 0) xml += "<Note>Ring twice &amp; say hi</Note>\n";
        xml += "</Order>\n";
    }
    return xml + "</Orders>\n";
}

// One way of writing a document and reading it back.
struct Format {
    const char* name;
    void (*prepare)(CSerializationContext& ctx);
    CBinaryData (*write)(const COrders& orders, const CSerializationContext& ctx);
    void (*read)(COrders& orders, const CBinaryData& bytes, const CSerializationContext& ctx);
};

void Plain(CSerializationContext&) {}

void ReadXml(COrders& orders, const CBinaryData& bytes, const CSerializationContext& ctx) {
    orders.FromXmlStream(bytes, ctx);
}

void ReadJson(COrders& orders, const CBinaryData& bytes, const CSerializationContext& ctx) {
    orders.FromJsonStream(bytes, ctx);
}

const Format kFormats[] = {
    {"XML text", Plain,
     [](const COrders& o, const CSerializationContext& ctx) {
         return o.ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, ctx);
     },
     ReadXml},
    {"XML text, UTF-16, gzip", Plain,
     [](const COrders& o, const CSerializationContext& ctx) {
         return o.ToXmlStream(true, false, XmlEncoding_UTF16, EOLType_CRLF, ctx,
                              CompressionType_GZip);
     },
     ReadXml},
    {"XML text, namespace alias, zlib",
     [](CSerializationContext& ctx) { ctx.GetNamespaceAliases().Add("o", kOrdersNamespace); },
     [](const COrders& o, const CSerializationContext& ctx) {
         return o.ToXmlStream(false, true, XmlEncoding_UTF8, EOLType_LF, ctx,
                              CompressionType_ZLib);
     },
     ReadXml},
    {"JSON", Plain,
     [](const COrders& o, const CSerializationContext& ctx) {
         return o.ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, ctx);
     },
     ReadJson},
    {"JSON, gzip", Plain,
     [](const COrders& o, const CSerializationContext& ctx) {
         return o.ToJsonStream(false, XmlEncoding_UTF8, EOLType_LF, ctx, CompressionType_GZip);
     },
     ReadJson},
    {"Fast Infoset", Plain,
     [](const COrders& o, const CSerializationContext& ctx) {
         return o.ToFastInfosetStream(FInfoDecl_None, ctx);
     },
     ReadXml},
    {"Fast Infoset, suggested values, vocabulary, gzip",
     [](CSerializationContext& ctx) {
         ctx.SetDefaultNamespaceURI(kOrdersNamespace);
         CFastInfosetContext& fi = *ctx.GetFIContext();
         fi.SetSuggestedValues();
         AddOrderVocabulary(fi.GetVocabulary(), "");
         fi.SetUseGeneratedVocabulary(true);
         fi.SetExternalVocabularyURI(kVocabularyUri);
     },
     [](const COrders& o, const CSerializationContext& ctx) {
         return o.ToFastInfosetStream(FInfoDecl_None, ctx, CompressionType_GZip);
     },
     ReadXml},
};
const int kFormatCount = static_cast<int>(sizeof(kFormats) / sizeof(kFormats[0]));

std::string BytesOf(const CBinaryData& value) {
    if (value.GetLength() == 0) return std::string();
    return std::string(reinterpret_cast<const char*>(value.GetData()), value.GetLength());
}

// The library holds strings in the local code page; the documents need a UTF-8 one. Set on the
// test's own thread before any other starts.
#define KX_REQUIRE_UTF8_LOCALE(name)                           \
    KxTest::ScopedLocale name(LC_ALL, "C.UTF-8");              \
    ASSERT_TRUE(name.Ok()) << "no C.UTF-8 locale"

// Each format's bytes for `xml`, written on this thread with a context of its own.
std::vector<std::string> SingleThreadedBytes(const std::string& xml) {
    std::vector<std::string> expected;
    for (const Format& format : kFormats) {
        SCOPED_TRACE(format.name);
        CSerializationContext ctx;
        format.prepare(ctx);
        COrders original;
        original.FromXml(xml.c_str(), ctx);
        const CBinaryData bytes = format.write(original, ctx);
        COrders back;
        format.read(back, bytes, ctx);
        EXPECT_TRUE(back == original);
        expected.push_back(BytesOf(bytes));
    }
    return expected;
}

// On kThreads threads, each with its own orders read from `xml`: write every format in turn
// with contextOf(thread, format), compare with `expected`, read back and compare objects.
void WriteAndReadOnAllThreads(
    const std::string& xml, const std::vector<std::string>& expected,
    const std::function<const CSerializationContext&(int thread, int format)>& contextOf) {
    const int rounds = 40;
    RunTogether(kThreads, [&](int thread) -> std::string {
        COrders mine;
        mine.FromXml(xml.c_str(), contextOf(thread, 0));
        for (int i = 0; i < rounds; ++i) {
            const int f = (thread + i) % kFormatCount;
            const Format& format = kFormats[f];
            const CSerializationContext& ctx = contextOf(thread, f);
            const CBinaryData bytes = format.write(mine, ctx);
            if (BytesOf(bytes) != expected[f]) return std::string(format.name) + ": other bytes";
            COrders back;
            format.read(back, bytes, ctx);
            if (!(back == mine)) return std::string(format.name) + ": another object read back";
        }
        return "";
    });
}

}  // namespace

TEST(ConcurrentSerialization, IndependentDocumentsOnEightThreadsGiveTheSingleThreadedBytes) {
    KX_REQUIRE_UTF8_LOCALE(utf8);
    const std::string xml = OrdersDocument(6);
    const std::vector<std::string> expected = SingleThreadedBytes(xml);
    ASSERT_FALSE(HasFailure());

    // Every thread's contexts are made and prepared on that thread.
    std::vector<std::vector<CSerializationContext>> contexts(kThreads);
    WriteAndReadOnAllThreads(xml, expected, [&](int thread, int format) -> const auto& {
        std::vector<CSerializationContext>& own = contexts[thread];
        if (own.empty()) {
            own.resize(kFormatCount);
            for (int f = 0; f < kFormatCount; ++f) kFormats[f].prepare(own[f]);
        }
        return own[format];
    });
}

TEST(ConcurrentSerialization, PreparedContextsServeEightThreadsAtOnce) {
    // A context whose lazily made members all exist is only read by writing and reading, so
    // one context per format serves every thread.
    KX_REQUIRE_UTF8_LOCALE(utf8);
    const std::string xml = OrdersDocument(6);
    const std::vector<std::string> expected = SingleThreadedBytes(xml);
    ASSERT_FALSE(HasFailure());

    std::vector<CSerializationContext> shared(kFormatCount);
    for (int f = 0; f < kFormatCount; ++f) {
        kFormats[f].prepare(shared[f]);
        shared[f].GetFIContext();
        shared[f].GetJsonContext();
        shared[f].GetAdditionalRootAttributes()->Release();
    }
    WriteAndReadOnAllThreads(xml, expected, [&](int, int format) -> const auto& {
        return shared[format];
    });
}

TEST(ConcurrentSerialization, DefaultContextServesEightThreadsAtOnce) {
    // Nothing in this test touches the default context before the threads do, so they are the
    // first to ask for its JSON and Fast Infoset options.
    KX_REQUIRE_UTF8_LOCALE(utf8);
    const std::string xml = OrdersDocument(3);
    std::string expectedXml, expectedJson, expectedFastInfoset;
    {
        const CSerializationContext defaults;
        COrders original;
        original.FromXml(xml.c_str(), defaults);
        expectedXml = original.ToXml(true, true, EOLType_LF, defaults);
        expectedJson = original.ToJson(true, EOLType_LF, defaults);
        expectedFastInfoset = BytesOf(original.ToFastInfosetStream(FInfoDecl_None, defaults));
    }

    const int rounds = 15;
    RunTogether(kThreads, [&](int thread) -> std::string {
        for (int i = 0; i < rounds; ++i) {
            COrders original;
            original.FromXml(xml.c_str());
            // Each thread starts with another format, so that the first uses of the lazily
            // kept options meet.
            switch ((thread + i) % 3) {
            case 0: {
                const std::string text = original.ToXml();
                if (text != expectedXml) return "XML text differs";
                COrders back;
                back.FromXml(text.c_str());
                if (!(back == original)) return "XML text read back differs";
                break;
            }
            case 1: {
                const std::string text = original.ToJson();
                if (text != expectedJson) return "JSON differs";
                COrders back;
                back.FromJson(text.c_str());
                if (!(back == original)) return "JSON read back differs";
                break;
            }
            default: {
                const CBinaryData bytes = original.ToFastInfosetStream();
                if (BytesOf(bytes) != expectedFastInfoset) return "Fast Infoset differs";
                COrders back;
                back.FromXmlStream(bytes);
                if (!(back == original)) return "Fast Infoset read back differs";
                break;
            }
            }
        }
        return "";
    });
}

TEST(ConcurrentSerialization, FirstUseOfTheBindingsOnEightThreadsAtOnce) {
    // The class records and the factory are made on first use; here every thread gets there
    // at the same moment, each with its own context.
    KX_REQUIRE_UTF8_LOCALE(utf8);
    const std::string xml = OrdersDocument(2);
    std::vector<std::string> written(kThreads);

    RunTogether(kThreads, [&](int thread) -> std::string {
        const CSerializationContext ctx;
        for (int id = COrdersFactory::ClassId_COrders; id <= COrdersFactory::ClassId_CInvoice;
             ++id) {
            const CSmartPtr<CXmlObjectBase> made = COrdersFactory::CreateByClass(id, "Made");
            if (made == nullptr || made->GetElementName() != "Made")
                return "the factory failed for class " + std::to_string(id);
        }
        COrders orders;
        orders.FromXml(xml.c_str(), ctx);
        written[thread] = orders.ToXml(false, false, EOLType_LF, ctx);
        return "";
    });

    const CSerializationContext ctx;
    COrders reference;
    reference.FromXml(xml.c_str(), ctx);
    const std::string expected = reference.ToXml(false, false, EOLType_LF, ctx);
    for (int t = 0; t < kThreads; ++t) EXPECT_EQ(expected, written[t]) << "thread " << t;
}
