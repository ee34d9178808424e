// A 64 MB order document written with AsyncToXmlFile(true) and read back through an element
// filter that drops each completed order: the peak resident memory each adds must stay far
// below the document's size (the bound is 16 MB, a quarter of it; both need about 2 MB).
// The write built in memory is measured too: it must add at least the document, which shows
// that the measurement sees what it is meant to catch. Files of plain XML text are parsed in
// pieces as they are read, which must give what parsing their bytes at once gives.
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <string>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"
#include "OrderBindings.h"
#include "PeakMemory.h"

using namespace KxXmlLib16;
using namespace KxOrders;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define KX_RESIDENT_SIZE_IS_MEANINGFUL 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define KX_RESIDENT_SIZE_IS_MEANINGFUL 0
#endif
#endif
#ifndef KX_RESIDENT_SIZE_IS_MEANINGFUL
#define KX_RESIDENT_SIZE_IS_MEANINGFUL 1
#endif

namespace {

const long kMb = 1024 * 1024;

std::string OrderXml(int seq) {
    const std::string n = std::to_string(seq);
    return "<Order id=\"A-" + n + "\" seq=\"" + n + "\" status=\"shipped\">"
           "<OrderDate>2024-03-01T10:15:30Z</OrderDate>"
           "<Customer id=\"C-" + n + "\"><Name>Customer " + n + "</Name>"
           "<Email>c" + n + "@example.com</Email><BillingAddress><Street>" + n +
           " Main Street</Street><City>Springfield</City><PostalCode>12345</PostalCode>"
           "<Country>US</Country></BillingAddress></Customer>"
           "<Line no=\"1\"><Sku>SKU-" + n + "</Sku><Description>Chair</Description>"
           "<Quantity>4</Quantity><UnitPrice>19.99</UnitPrice><Weight>7.5</Weight>"
           "<Taxable>true</Taxable></Line>"
           "<Line no=\"2\"><Sku>SKU-" + n + "b</Sku><Description>Table</Description>"
           "<Quantity>1</Quantity><UnitPrice>120</UnitPrice><Weight>30</Weight>"
           "<Taxable>false</Taxable></Line>"
           "<Invoice terms=\"30\"><Reference>INV-" + n + "</Reference>"
           "<DueDate>2024-04-01</DueDate></Invoice><Total>199.96</Total></Order>";
}

struct AsyncScope {
    explicit AsyncScope(bool on) { AsyncToXmlFile(on); }
    ~AsyncScope() { AsyncToXmlFile(false); }
};

}  // namespace

TEST(LargeDocumentMemory, StreamedWriteAndFilteredReadStayFarBelowTheDocumentSize) {
    if (!KX_RESIDENT_SIZE_IS_MEANINGFUL) GTEST_SKIP() << "sanitizers keep freed memory resident";
    const KxTest::ScopedLocale locale(LC_ALL, "C.UTF-8");
    if (!KxTest::ResetPeakResident()) GTEST_SKIP() << "the peak resident size cannot be reset";

    // 50 distinct orders, appended again and again: the objects stay small.
    const long documentBytes = 64 * kMb;
    std::string xml = "<Orders xmlns=\"urn:bench:orders\">";
    for (int seq = 1; seq <= 50; ++seq) xml += OrderXml(seq);
    xml += "</Orders>";
    CSmartPtr<COrders> base(new COrders());
    base->FromXml(xml.c_str());
    const long baseBytes = static_cast<long>(base->ToXml().size());
    CSmartPtr<COrders> orders(new COrders());
    // A tenth more than the estimate, which counts the root element and header every round.
    while (static_cast<long>(orders->m_orders->GetCount() / 50) * baseBytes <
           documentBytes / 10 * 11) {
        for (int i = 0; i < 50; ++i) orders->m_orders->Add(base->m_orders->Item(i));
    }
    const long orderCount = orders->m_orders->GetCount();
    const std::string path = std::string(KX_TEST_TMP_DIR) + "/large_document_memory.xml";

    long dropped = 0;
    struct Case {
        const char* name;
        std::function<void()> run;
        long atMost;   // -1: no upper bound
        long atLeast;  // 0: no lower bound
    };
    const Case cases[] = {
        {"streamed write",
         [&] {
             const AsyncScope async(true);
             orders->ToXmlFile(path.c_str());
         },
         16 * kMb, 0},
        {"write built in memory", [&] { orders->ToXmlFile(path.c_str()); }, -1, documentBytes},
        {"read dropping each order",
         [&] {
             CXmlDocument document([&dropped](CXmlElement* element) {
                 if (element->GetLocalName() != "Order") return false;
                 ++dropped;
                 return true;
             });
             document.Load(path.c_str());
         },
         16 * kMb, 0},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const long added = KxTest::PeakResidentAddedBy(row.run);
        ASSERT_GE(KxTest::FileSize(path), documentBytes);
        if (row.atMost >= 0) {
            EXPECT_LE(added, row.atMost);
        }
        EXPECT_GE(added, row.atLeast);
    }
    EXPECT_EQ(orderCount, dropped);
    std::remove(path.c_str());
}

namespace {

// About `bytes` of elements with text beyond ASCII, so that pieces of a file split characters.
std::string ManyElements(size_t bytes) {
    std::string xml = "<?xml version=\"1.0\"?>\n<r xmlns=\"urn:t\">\n";
    for (int i = 0; xml.size() < bytes; ++i) {
        xml += "<e n=\"" + std::to_string(i) + "\">Zoë Müller &amp; 東京</e>\n";
    }
    return xml + "</r>\n";
}

std::string Bytes(const CBinaryData& data) {
    return std::string(reinterpret_cast<const char*>(data.GetData()), data.GetLength());
}

// The message of what `load` throws, "" when it throws nothing.
std::string LoadError(const std::function<void(CXmlDocument&)>& load) {
    try {
        CXmlDocument document;
        load(document);
    } catch (const CKxException& e) {
        return e.GetMessage();
    }
    return "";
}

}  // namespace

TEST(CXmlDocument, FilesOfManyPiecesReadAsTheirBytesDo) {
    const KxTest::ScopedLocale locale(LC_ALL, "C.UTF-8");
    const std::string text = ManyElements(3 * kMb);
    CSmartPtr<CElement> expected(new CElement("", ""));
    expected->FromXml(text.c_str());
    std::string broken = text;
    broken.replace(broken.find("<e ", 2 * kMb), 3, "<e<");
    struct Case {
        const char* name;
        std::string bytes;
        bool fails;
    };
    const Case cases[] = {
        {"UTF-8", text, false},
        {"UTF-16 after its mark",
         "\xFF\xFE" + Bytes(expected->ToXmlStream(true, false, XmlEncoding_UTF16)), false},
        {"not well-formed after two pieces", broken, true},
    };
    const std::string path = std::string(KX_TEST_TMP_DIR) + "/many_pieces.xml";
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        std::FILE* file = std::fopen(path.c_str(), "wb");
        ASSERT_NE(nullptr, file);
        std::fwrite(row.bytes.data(), 1, row.bytes.size(), file);
        std::fclose(file);
        const unsigned char* data = reinterpret_cast<const unsigned char*>(row.bytes.data());
        const std::string streamError =
            LoadError([&](CXmlDocument& d) { d.LoadXmlStream(data, row.bytes.size()); });
        EXPECT_EQ(row.fails, !streamError.empty()) << streamError;
        EXPECT_EQ(streamError, LoadError([&](CXmlDocument& d) { d.Load(path.c_str()); }));
        if (!streamError.empty()) continue;
        CSmartPtr<CElement> read(new CElement("", ""));
        read->FromXmlFile(path.c_str());
        EXPECT_EQ(expected->ToXml(), read->ToXml());
    }
    std::remove(path.c_str());
}
