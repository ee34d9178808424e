// Round trips of the sample bindings through Fast Infoset: an object written with
// ToFastInfosetStream and read back with FromXmlStream must equal the original field by field
// and write the same XML, whatever the compression, the value encodings and the vocabulary.
#include <cstdio>
#include <string>
#include <vector>

#include "FlatBindings.h"
#include "ExampleDocuments.h"
#include "KxTestSupport.h"
#include "KxXmlLib16.h"
#include "OrderBindings.h"
#include "TestSchemaBindings.h"

using namespace KxXmlLib16;
using namespace KxExampleTest;

namespace {

using AddVocabulary = void (*)(CFIVocabulary&, const char*);

// A text of `length` bytes (UTF-8, repeating non-ASCII characters), to cross the length forms.
std::string LongText(size_t length) {
    const std::string unit = "Grüße aus 東京, ";
    std::string text;
    while (text.size() + unit.size() <= length) text += unit;
    return text + std::string(length - text.size(), 'x');
}

// Three orders: both payment branches, optional members present and absent, repeated tags and
// attribute values, number and date forms at their limits, long and non-ASCII text, and
// characters that XML text would escape.
const std::string kOrders =
    "<Orders xmlns=\"urn:bench:orders\" generated=\"2024-03-01T08:00:00Z\" count=\"3\">"
    "<Order id=\"A-1\" seq=\"1\" status=\"pending\"><OrderDate>2024-03-01T10:15:30-01:00"
    "</OrderDate><Customer id=\"C-1\" vip=\"true\"><Name>Anna Müller</Name>"
    "<Email>anna@example.com</Email><Phone>+49 30 1234</Phone><BillingAddress>"
    "<Street>Hauptstraße 5</Street><City>Köln</City><PostalCode>50667</PostalCode>"
    "<Country>DE</Country></BillingAddress><ShippingAddress><Street>Ring 1</Street>"
    "<City>東京</City><PostalCode>100-0001</PostalCode><Country>JP</Country>"
    "</ShippingAddress></Customer>"
    "<Line no=\"1\"><Sku>SKU-1</Sku><Description>Tea &amp; biscuits &lt;large&gt; 🍵"
    "</Description><Quantity>2147483647</Quantity><UnitPrice>123456789012345678901.25"
    "</UnitPrice><Weight>1.25E300</Weight><Taxable>true</Taxable></Line>"
    "<Line no=\"2\"><Sku>SKU-1</Sku><Description>" + LongText(65) + "</Description>"
    "<Quantity>-2147483648</Quantity><UnitPrice>-0.5</UnitPrice><Weight>-INF</Weight>"
    "<Taxable>false</Taxable></Line>"
    "<Line no=\"3\"><Sku>SKU-3</Sku><Description>" + LongText(400) + "</Description>"
    "<Quantity>0</Quantity><UnitPrice>0</UnitPrice><Weight>1.5E-1</Weight>"
    "<Taxable>true</Taxable></Line>"
    "<Card brand=\"VISA\"><Holder>Anna Müller</Holder><Number>4111111111111111</Number>"
    "<Expiry>2027-09-30</Expiry></Card><Tag>gift</Tag><Tag>gift</Tag><Tag>express</Tag>"
    "<Tag>gift</Tag><Total>33.00</Total><Note>  Ring twice\n&amp; say \"hi\"  </Note></Order>"
    "<Order id=\"A-2\" seq=\"2\" status=\"pending\"><OrderDate>2024-03-02T09:00:00</OrderDate>"
    "<Customer id=\"C-2\" vip=\"false\"><Name>Bob</Name><Email>bob@example.com</Email>"
    "<BillingAddress><Street>1 Main St</Street><City>Köln</City><PostalCode>12345"
    "</PostalCode><Country>DE</Country></BillingAddress></Customer>"
    "<Line no=\"1\"><Sku>SKU-1</Sku><Description/><Quantity>4</Quantity>"
    "<UnitPrice>8</UnitPrice><Weight>INF</Weight><Taxable>1</Taxable></Line>"
    "<Invoice terms=\"30\"><Reference>INV-7</Reference><DueDate>2024-04-01Z</DueDate>"
    "</Invoice><Total>199.99</Total></Order>"
    "<Order id=\"A-3\" seq=\"-3\" status=\"cancelled\"><OrderDate>0001-01-01T00:00:00"
    "</OrderDate><Customer id=\"C-3\"><Name>山田 太郎</Name><Email>taro@example.jp</Email>"
    "<BillingAddress><Street>1-1 Chiyoda</Street><City>東京</City><PostalCode>100-0001"
    "</PostalCode><Country>JP</Country></BillingAddress></Customer>"
    "<Line no=\"1\"><Sku>SKU-4</Sku><Description>Book \"Kokoro\"</Description>"
    "<Quantity>1</Quantity><UnitPrice>15</UnitPrice><Weight>0</Weight>"
    "<Taxable>false</Taxable></Line><Invoice terms=\"0\"><Reference>INV-8</Reference>"
    "<DueDate>2024-03-31-05:00</DueDate></Invoice><Tag>日本</Tag><Total>15</Total></Order>"
    "</Orders>";

// Fast Infoset documents at least this long shrink under gzip; the gzip variants skip the
// smaller ones.
const unsigned long kMinCompressible = 256;

// What one schema's round trips share: the namespace written as the default one, the function
// generated code would call to fill the vocabulary, and the vocabulary's URI.
struct Schema {
    const char* ns;
    AddVocabulary addVocabulary;
    const char* vocabularyUri;
};

// One way of writing and reading.
struct Variant {
    const char* name;
    CompressionType compression;
    bool suggested;      // SetSuggestedValues: binary encodings and restricted alphabets
    bool vocabulary;     // the schema's generated vocabulary on both sides
    const char* prefix;  // of the schema's namespace ("" default namespace, null invented)
};

const Variant kVariants[] = {
    {"plain", CompressionType_None, false, false, ""},
    {"gzip", CompressionType_GZip, false, false, ""},
    {"plain, suggested", CompressionType_None, true, false, ""},
    {"gzip, suggested", CompressionType_GZip, true, false, ""},
    {"plain, vocabulary", CompressionType_None, false, true, ""},
    {"gzip, suggested, vocabulary", CompressionType_GZip, true, true, ""},
    {"plain, suggested, vocabulary", CompressionType_None, true, true, ""},
    {"alias", CompressionType_None, false, false, "k"},
    {"alias, suggested, vocabulary", CompressionType_None, true, true, "k"},
    {"invented prefixes", CompressionType_None, false, false, nullptr},
    // The vocabulary's names then miss the writer's prefix: only their parts are shared.
    {"invented prefixes, suggested, vocabulary", CompressionType_None, true, true, nullptr},
};

// The writing and reading context of a variant (`withVocabulary` overrides the variant's).
CSerializationContext ContextOf(const Schema& schema, const Variant& variant,
                                bool withVocabulary) {
    CSerializationContext ctx;
    if (variant.prefix != nullptr) {
        if (*variant.prefix == '\0') {
            ctx.SetDefaultNamespaceURI(schema.ns);
        } else {
            ctx.GetNamespaceAliases().Add(variant.prefix, schema.ns);
        }
        ctx.GetNamespaceAliases().Add("xsi", kXsi);
    }
    CFastInfosetContext& fi = *ctx.GetFIContext();
    if (variant.suggested) fi.SetSuggestedValues();
    if (withVocabulary) {
        schema.addVocabulary(fi.GetVocabulary(), variant.prefix ? variant.prefix : "");
        fi.SetUseGeneratedVocabulary(true);
        fi.SetExternalVocabularyURI(schema.vocabularyUri);
    }
    return ctx;
}

std::string Hex(const CBinaryData& data, unsigned long count) {
    std::string out;
    char buffer[4];
    for (unsigned long i = 0; i < count && i < data.GetLength(); ++i) {
        std::snprintf(buffer, sizeof buffer, "%02x", data.GetData()[i]);
        out += buffer;
    }
    return out;
}

void RunRoundTrips(const Schema& schema, const std::vector<RoundTripCase>& cases) {
    KxTest::ScopedLocale utf8(LC_ALL, "C.UTF-8");
    ASSERT_TRUE(utf8.Ok()) << "no C.UTF-8 locale";
    for (const RoundTripCase& row : cases) {
        for (const Variant& variant : kVariants) {
            SCOPED_TRACE(std::string(row.what) + ", " + variant.name);
            const CSerializationContext ctx = ContextOf(schema, variant, variant.vocabulary);
            CSmartPtr<CXmlObjectBase> original = row.make();
            CSmartPtr<CXmlObjectBase> back = row.make();
            CBinaryData bytes;
            try {
                original->FromXml(row.xml.c_str());
                // gzip refuses data that does not shrink, which small documents do not.
                if (variant.compression != CompressionType_None &&
                    original->ToFastInfosetStream(FInfoDecl_None, ctx).GetLength() <
                        kMinCompressible)
                    continue;
                bytes = original->ToFastInfosetStream(FInfoDecl_None, ctx, variant.compression);
                back->FromXmlStream(bytes, ctx);
            } catch (const CKxException& e) {
                ADD_FAILURE() << e.GetFullMessage() << "\nbytes: " << Hex(bytes, 4096);
                continue;
            }
            EXPECT_EQ(Hex(bytes, 4),
                      variant.compression == CompressionType_GZip ? "1f8b0800" : "e0000001");
            EXPECT_TRUE(row.equal(*original, *back)) << Hex(bytes, 4096);
            EXPECT_EQ(original->ToXml(false, false, EOLType_LF, ctx),
                      back->ToXml(false, false, EOLType_LF, ctx));
            if (!variant.vocabulary || variant.compression != CompressionType_None) continue;

            // The vocabulary saves the first occurrence of each name it holds.
            const CSerializationContext without = ContextOf(schema, variant, false);
            const CBinaryData plain = original->ToFastInfosetStream(FInfoDecl_None, without);
            if (variant.prefix != nullptr) {
                EXPECT_LT(bytes.GetLength(), plain.GetLength());
            }
            // A reader that lacks the vocabulary cannot make sense of the indexes.
            CSmartPtr<CXmlObjectBase> blind = row.make();
            try {
                blind->FromXmlStream(bytes, without);
                ADD_FAILURE() << "read without the vocabulary";
            } catch (const CKxException& e) {
                EXPECT_NE(e.GetFullMessage().find("vocabulary"), std::string::npos)
                    << e.GetFullMessage();
            }
            // The right reference with an empty vocabulary behind it: the first index into
            // the missing tables is out of range.
            CSerializationContext empty = ContextOf(schema, variant, false);
            empty.GetFIContext()->SetExternalVocabularyURI(schema.vocabularyUri);
            try {
                blind->FromXmlStream(bytes, empty);
                ADD_FAILURE() << "read with an empty vocabulary";
            } catch (const CKxException& e) {
                EXPECT_EQ(e.GetFullMessage().find("Invalid Fast Infoset document: "), 0u)
                    << e.GetFullMessage();
            }
        }
    }
}

const Schema kOrdersSchema = {"urn:bench:orders", &KxOrders::AddOrderVocabulary,
                              "urn:bench:orders:vocabulary"};
const Schema kTestSchema = {"urn:kx:test", &KxTestSchema::AddTestSchemaVocabulary,
                            "urn:kx:test:vocabulary"};
const Schema kFlatSchema = {"urn:bench:orders", &KxExamples::AddFlatVocabulary,
                            "urn:bench:orders:flat"};

}  // namespace

TEST(FastInfosetRoundTrip, OrderClassesReadBackEqual) {
    using namespace KxOrders;
    const std::string address =
        "<Street>Rue de l'Église 3</Street><City>Paris</City><PostalCode>75001</PostalCode>"
        "<Country>FR</Country>";
    const std::vector<RoundTripCase> cases = {
        {"three orders", Make<COrders>(), kOrders, ByOperator<COrders>()},
        {"order", Make<COrder>(),
         OrdersDoc("Order",
                   "<OrderDate>2024-01-02T03:04:05Z</OrderDate><Customer id=\"X\"><Name>N</Name>"
                   "<Email>e</Email><BillingAddress>" + address + "</BillingAddress></Customer>"
                   "<Line no=\"1\"><Sku>S</Sku><Description>d</Description><Quantity>1"
                   "</Quantity><UnitPrice>1</UnitPrice><Weight>1</Weight><Taxable>true"
                   "</Taxable></Line><Card brand=\"MC\"><Holder>H</Holder><Number>5</Number>"
                   "<Expiry>2030-01-31</Expiry></Card><Total>1</Total>",
                   " id=\"O\" seq=\"9\" status=\"shipped\""),
         ByOperator<COrder>()},
        {"customer", Make<CCustomer>(),
         OrdersDoc("Customer",
                   "<Name>Zoë</Name><Email>z@x</Email><Phone>0</Phone><BillingAddress>" +
                       address + "</BillingAddress><ShippingAddress>" + address +
                       "</ShippingAddress>",
                   " id=\"Z\" vip=\"false\""),
         ByOperator<CCustomer>()},
        {"address", Make<CAddress>(), OrdersDoc("Address", address), ByOperator<CAddress>()},
        {"line", Make<CLine>(),
         OrdersDoc("Line",
                   "<Sku>S</Sku><Description/><Quantity>0</Quantity><UnitPrice>-1.5</UnitPrice>"
                   "<Weight>1E3</Weight><Taxable>false</Taxable>",
                   " no=\"7\""),
         ByOperator<CLine>()},
        {"card", Make<CCard>(),
         OrdersDoc("Card", "<Holder>Ann</Holder><Number>3700</Number><Expiry>2027-09-30"
                           "</Expiry>", " brand=\"AMEX\""),
         ByOperator<CCard>()},
        {"invoice", Make<CInvoice>(),
         OrdersDoc("Invoice", "<Reference>R</Reference><DueDate>2024-07-22</DueDate>",
                   " terms=\"-30\""),
         ByOperator<CInvoice>()},
    };
    RunRoundTrips(kOrdersSchema, cases);
}

TEST(FastInfosetRoundTrip, TestSchemaClassesReadBackEqual) {
    RunRoundTrips(kTestSchema, TestSchemaCases());
}

TEST(FastInfosetRoundTrip, FlatClassesReadBackEqual) {
    RunRoundTrips(kFlatSchema, FlatCases());
}

// Every XML declaration the writer offers is skipped by the reader, in a stream and in a file.
TEST(FastInfosetRoundTrip, DeclarationsAndFilesReadBack) {
    KxTest::ScopedLocale utf8(LC_ALL, "C.UTF-8");
    ASSERT_TRUE(utf8.Ok()) << "no C.UTF-8 locale";
    KxOrders::COrders original;
    original.FromXml(kOrders.c_str());
    for (int decl = FInfoDecl_None; decl <= FInfoDecl_9; ++decl) {
        SCOPED_TRACE(decl);
        const CBinaryData bytes = original.ToFastInfosetStream(static_cast<FInfoDecl>(decl));
        EXPECT_EQ(Hex(bytes, 5), decl == FInfoDecl_None ? "e000000100" : "3c3f786d6c");
        KxOrders::COrders back;
        try {
            back.FromXmlStream(bytes);
            EXPECT_TRUE(back == original);
        } catch (const CKxException& e) {
            ADD_FAILURE() << e.GetFullMessage();
        }
    }
    struct FileCase {
        const char* name;
        FInfoDecl declaration;
        CompressionType compression;
    } files[] = {
        {"orders.fi", FInfoDecl_None, CompressionType_None},
        {"orders-decl.fi", FInfoDecl_5, CompressionType_None},
        {"orders.fi.gz", FInfoDecl_4, CompressionType_GZip},
    };
    for (const FileCase& row : files) {
        SCOPED_TRACE(row.name);
        const std::string path = std::string(KX_TEST_TMP_DIR) + "/" + row.name;
        std::remove(path.c_str());
        KxOrders::COrders back;
        try {
            original.ToFastInfosetFile(path.c_str(), row.declaration,
                                       CSerializationContext::m_defaultContext, row.compression);
            back.FromXmlFile(path.c_str());
            EXPECT_TRUE(back == original);
        } catch (const CKxException& e) {
            ADD_FAILURE() << e.GetFullMessage();
        }
        std::remove(path.c_str());
    }
}
