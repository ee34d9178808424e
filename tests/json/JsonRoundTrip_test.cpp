// Round trips of the sample bindings through JSON: an object written with ToJson and read back
// with FromJson must equal the original, and must write the same XML.
#include <functional>
#include <iterator>
#include <string>

#include "FlatBindings.h"
#include "ExampleEquality.h"
#include "KxTestSupport.h"
#include "KxXmlLib16.h"
#include "OrderBindings.h"
#include "TestSchemaBindings.h"

using namespace KxXmlLib16;
using namespace KxExampleTest;

namespace {

const char kXsi[] = "http://www.w3.org/2001/XMLSchema-instance";

std::string TestDoc(const std::string& root, const std::string& body,
                    const std::string& attributes = "") {
    return "<" + root + " xmlns=\"urn:kx:test\" xmlns:xsi=\"" + kXsi + "\"" + attributes + ">" +
           body + "</" + root + ">";
}

const std::string kCar = "<Car><Make>VW</Make><Seats>5</Seats></Car>";
const std::string kBike = "<Bike><Make>BMX</Make><Gears>1</Gears></Bike>";

// Two orders of the benchmark schema: every member, both payment branches, repeated tags,
// optional members present and absent, and text that needs escaping in XML.
const char kOrders[] =
    "<Orders xmlns=\"urn:bench:orders\" generated=\"2024-12-31T23:59:59Z\" count=\"2\">"
    "<Order id=\"ORD-1\" seq=\"1\" status=\"pending\"><OrderDate>2024-06-22T14:51:25Z</OrderDate>"
    "<Customer id=\"C-1\" vip=\"true\"><Name>Noah Nguyen</Name><Email>n@example.com</Email>"
    "<Phone>+354 555 0101</Phone>"
    "<BillingAddress><Street>207 High Street</Street><City>Reykjavik</City>"
    "<PostalCode>40285</PostalCode><Country>IS</Country></BillingAddress>"
    "<ShippingAddress><Street>147 Rue de l'Eglise</Street><City>Paris</City>"
    "<PostalCode>75001</PostalCode><Country>FR</Country></ShippingAddress></Customer>"
    "<Line no=\"1\"><Sku>SKU-1</Sku><Description>Kettle &amp; cups &lt;set&gt;</Description>"
    "<Quantity>12</Quantity><UnitPrice>554.49</UnitPrice><Weight>22.006</Weight>"
    "<Taxable>true</Taxable></Line>"
    "<Line no=\"2\"><Sku>SKU-2</Sku><Description>Bolt</Description><Quantity>5</Quantity>"
    "<UnitPrice>0.10</UnitPrice><Weight>0.5</Weight><Taxable>false</Taxable></Line>"
    "<Invoice terms=\"30\"><Reference>INV-1</Reference><DueDate>2024-07-22</DueDate></Invoice>"
    "<Tag>promo</Tag><Tag>express</Tag><Total>6653.88</Total><Note>leave at door</Note></Order>"
    "<Order id=\"ORD-2\" seq=\"2\" status=\"delivered\"><OrderDate>2024-01-02T03:04:05Z</OrderDate>"
    "<Customer id=\"C-2\"><Name>Ann</Name><Email>a@example.com</Email>"
    "<BillingAddress><Street>1 Main St</Street><City>Oslo</City><PostalCode>0150</PostalCode>"
    "<Country>NO</Country></BillingAddress></Customer>"
    "<Line no=\"1\"><Sku>SKU-3</Sku><Description>Lamp</Description><Quantity>1</Quantity>"
    "<UnitPrice>20.00</UnitPrice><Weight>1.25</Weight><Taxable>true</Taxable></Line>"
    "<Card brand=\"AMEX\"><Holder>Ann</Holder><Number>3700-0000</Number>"
    "<Expiry>2027-09-30</Expiry></Card><Total>20.00</Total></Order></Orders>";

struct Case {
    const char* what;
    Factory make;
    std::string xml;  // the original object, read from this document
    Equality equal;
};

// The context of a full round trip with the prefixes a user gives: xsi:type values and foreign
// namespaces need a prefix in scope, which the JSON writer only declares on the root.
CSerializationContext FullContext() {
    CSerializationContext ctx;
    ctx.GetNamespaceAliases().Add("t", "urn:kx:test");
    ctx.GetNamespaceAliases().Add("xsi", kXsi);
    ctx.GetNamespaceAliases().Add("one", "urn:kx:one");
    ctx.GetNamespaceAliases().Add("ex", "urn:kx:extra");
    ctx.GetNamespaceAliases().Add("oth", "urn:kx:other");
    ctx.GetNamespaceAliases().Add("o", "urn:bench:orders");
    return ctx;
}

void RunRoundTrips(const Case* begin, const Case* end) {
    for (const Case* row = begin; row != end; ++row) {
        for (bool standard : {false, true}) {
            for (bool formatted : {true, false}) {
                SCOPED_TRACE(std::string(row->what) + (standard ? ", standard" : ", lenient") +
                             (formatted ? ", formatted" : ", flat"));
                CSerializationContext ctx = FullContext();
                ctx.GetJsonContext()->SetStandardEscaping(standard);
                CSmartPtr<CXmlObjectBase> original = row->make();
                CSmartPtr<CXmlObjectBase> back = row->make();
                std::string json;
                try {
                    original->FromXml(row->xml.c_str());
                    json = original->ToJson(formatted, EOLType_LF, ctx);
                    back->FromJson(json.c_str(), ctx);
                } catch (const CKxException& e) {
                    ADD_FAILURE() << e.GetFullMessage() << "\nJSON:\n" << json;
                    continue;
                }
                EXPECT_TRUE(row->equal(*original, *back)) << json;
                EXPECT_EQ(original->ToXml(false, false, EOLType_LF, ctx),
                          back->ToXml(false, false, EOLType_LF, ctx))
                    << json;
            }
        }
    }
}

}  // namespace

TEST(JsonRoundTrip, OrderDocumentsReadBackEqual) {
    using namespace KxOrders;
    const Case cases[] = {
        {"two orders", Make<COrders>(), kOrders, ByOperator<COrders>()},
        {"one line, no optional members", Make<CLine>(),
         "<Line xmlns=\"urn:bench:orders\" no=\"7\"><Sku>S</Sku><Description/>"
         "<Quantity>0</Quantity><UnitPrice>-1.5</UnitPrice><Weight>1E3</Weight>"
         "<Taxable>false</Taxable></Line>",
         ByOperator<CLine>()},
        {"customer without shipping address", Make<CCustomer>(),
         "<Customer xmlns=\"urn:bench:orders\" id=\"X\"><Name>N</Name><Email>e</Email>"
         "<BillingAddress><Street>s</Street><City>c</City><PostalCode>p</PostalCode>"
         "<Country>IS</Country></BillingAddress></Customer>",
         ByOperator<CCustomer>()},
    };
    RunRoundTrips(std::begin(cases), std::end(cases));

    // Without any alias: the root declares a prefix of its own, which its children share.
    COrders original;
    original.FromXml(kOrders);
    const std::string json = original.ToJson();
    EXPECT_EQ(0u, json.find("{\n\t\"AA:Orders\": {\n\t\t\"@xmlns:AA\": \"urn:bench:orders\","))
        << json;
    COrders back;
    back.FromJson(json.c_str());
    EXPECT_TRUE(original == back) << json;
}

TEST(JsonRoundTrip, TestSchemaHoldersReadBackEqual) {
    using namespace KxTestSchema;
    const std::string part = "<Part code=\"p\"><Value>1</Value><Note>n</Note></Part>";
    const Case cases[] = {
        {"sequence, every kind", Make<CSeqHolder>(),
         TestDoc("SeqHolder",
                 part + "<OptPart><Value>2</Value></OptPart><ListPart><Value>3</Value></ListPart>"
                        "<ListPart><Value>4</Value></ListPart>" +
                     kCar +
                     "<Shape xsi:type=\"Circle\"><Label>c</Label><Radius>7</Radius></Shape>"
                     "<ShapeItem xsi:type=\"Square\"><Side>2</Side></ShapeItem>"
                     "<ShapeItem xsi:type=\"Circle\"><Radius>3</Radius></ShapeItem>"),
         ByOperator<CSeqHolder>()},
        {"sequence, optional members absent", Make<CSeqHolder>(),
         TestDoc("SeqHolder", "<Part><Value>1</Value></Part>" + kBike), ByOperator<CSeqHolder>()},
        {"choice, class", Make<CChoiceHolder>(), TestDoc("ChoiceHolder", part),
         ByOperator<CChoiceHolder>()},
        {"choice, class collection", Make<CChoiceHolder>(),
         TestDoc("ChoiceHolder",
                 "<ListPart><Value>1</Value></ListPart><ListPart><Value>2</Value></ListPart>"),
         ByOperator<CChoiceHolder>()},
        {"choice, abstract class", Make<CChoiceHolder>(),
         TestDoc("ChoiceHolder", "<Shape xsi:type=\"Square\"><Side>4</Side></Shape>"),
         ByOperator<CChoiceHolder>()},
        {"choice, substitution group collection", Make<CChoiceHolder>(),
         TestDoc("ChoiceHolder", kBike + kCar), ByOperator<CChoiceHolder>()},
        {"all, every kind", Make<CAllHolder>(),
         TestDoc("AllHolder",
                 "<ShapeItem xsi:type=\"Square\"><Side>2</Side></ShapeItem>" + kBike +
                     "<ListPart><Value>3</Value></ListPart><Shape xsi:type=\"Circle\">"
                     "<Radius>7</Radius></Shape><OptPart><Value>2</Value></OptPart>" + part),
         ByOperator<CAllHolder>()},
        {"tree", Make<CTree>(),
         TestDoc("Tree", "<Branch><Part code=\"c\"><Value>9</Value></Part></Branch>"), SameTree},
        {"box with the group class", Make<CBox>(),
         TestDoc("Box",
                 "<Name>crate</Name><Width>3</Width><Height>4</Height>"
                 "<Comment xmlns=\"\">fragile</Comment>"
                 "<LocalPart xmlns=\"\"><Value xmlns=\"urn:kx:test\">5</Value></LocalPart>",
                 " id=\"b1\" unit=\"cm\""),
         SameBox},
        {"box, mandatory members only", Make<CBox>(),
         TestDoc("Box", "<Name>n</Name><Width>1</Width><Height>2</Height>"), SameBox},
        {"nil holder, values", Make<CNilHolder>(),
         TestDoc("NilHolder", "<Maybe><Value>1</Value></Maybe><Plain><Value>2</Value></Plain>"),
         SameNilHolder},
        {"any in a sequence", Make<CAnySeq>(),
         TestDoc("AnySeq",
                 "<Head>h</Head><o:X xmlns:o=\"urn:kx:other\" a=\"1\"><o:Y>y</o:Y></o:X>"
                 "<loc xmlns=\"\">l</loc><e:E xmlns:e=\"urn:kx:extra\">1</e:E>"
                 "<e:E xmlns:e=\"urn:kx:extra\">2</e:E>"),
         ByXmlOnly},
        {"any in a choice", Make<CAnyChoice>(),
         TestDoc("AnyChoice", "<n:One xmlns:n=\"urn:kx:one\"><n:V>1</n:V></n:One>"),
         ByXmlOnly},
        {"any collection in a choice", Make<CAnyChoice>(),
         TestDoc("AnyChoice",
                 "<e:E xmlns:e=\"urn:kx:extra\">1</e:E><e:F xmlns:e=\"urn:kx:extra\">2</e:F>"),
         ByXmlOnly},
        {"any in an all group", Make<CAnyAll>(),
         TestDoc("AnyAll",
                 "<e:E xmlns:e=\"urn:kx:extra\">1</e:E><loc xmlns=\"\">l</loc>"
                 "<n:One xmlns:n=\"urn:kx:one\">x</n:One>"),
         ByXmlOnly},
    };
    RunRoundTrips(std::begin(cases), std::end(cases));
}

TEST(JsonRoundTrip, FlatClassesReadBackEqual) {
    using namespace KxExamples;
    const Case cases[] = {
        {"line, every member", Make<CLine>(),
         "<Line xmlns=\"urn:bench:orders\" id=\"L1\"><Sku>A&amp;B</Sku><Quantity>3</Quantity>"
         "<Note>n</Note><Tag>x</Tag><Tag>y</Tag><Tag>z</Tag></Line>",
         SameFlatLine},
        {"payment, card", Make<CPayment>(),
         "<Payment xmlns=\"urn:bench:orders\"><Card>4111</Card></Payment>", SameFlatPayment},
        {"payment, invoice", Make<CPayment>(),
         "<Payment xmlns=\"urn:bench:orders\"><Invoice>I-1</Invoice></Payment>", SameFlatPayment},
        {"address in another order", Make<CAddress>(),
         "<Address xmlns=\"urn:bench:orders\"><City>c</City><Country>IS</Country>"
         "<Street>s</Street></Address>",
         SameFlatAddress},
    };
    RunRoundTrips(std::begin(cases), std::end(cases));
}

// The plain shapes: mode 1 keeps "@" attributes and "#text" but no namespaces, mode 0 neither.
TEST(JsonRoundTrip, PlainModesWriteTheirShapesAndModeOneReadsBack) {
    using namespace KxTestSchema;
    struct ModeCase {
        const char* what;
        JsonRoundTrip mode;
        const char* json;
    };
    const ModeCase cases[] = {
        {"simple", RoundTrip_Simple,
         "{\"Part\": {\"@code\": \"p\",\"Value\": 1,\"Note\": \"n\"}}"},
        {"none", RoundTrip_None, "{\"Part\": {\"code\": \"p\",\"Value\": 1,\"Note\": \"n\"}}"},
    };
    CPart part;
    part.FromXml("<Part xmlns=\"urn:kx:test\" code=\"p\"><Value>1</Value><Note>n</Note></Part>");
    for (const ModeCase& row : cases) {
        SCOPED_TRACE(row.what);
        CSerializationContext ctx;
        ctx.GetJsonContext()->SetSupportRoundtrip(row.mode);
        EXPECT_EQ(row.json, part.ToJson(false, EOLType_LF, ctx));
    }
    // Without namespaces in the JSON the names match only because reading in mode 1 switches
    // namespace checks off; a full round trip context would refuse the unqualified names.
    CSerializationContext simple;
    simple.GetJsonContext()->SetSupportRoundtrip(RoundTrip_Simple);
    CPart back;
    back.FromJson(cases[0].json, simple);
    EXPECT_TRUE(part == back);
    // A whole document too: its namespaced elements and attributes all come back.
    KxOrders::COrders orders;
    orders.FromXml(kOrders);
    KxOrders::COrders ordersBack;
    ordersBack.FromJson(orders.ToJson(true, EOLType_LF, simple).c_str(), simple);
    EXPECT_TRUE(orders == ordersBack);

    CPart strict;
    KxTest::ExpectKxError<CKxException>(
        [&] { strict.FromJson(cases[0].json); },
        "Failed to find the required child element [Value].\nPath: /Part");
}

// Nil markers have no JSON form: a nil member is written as null, which reads back as an empty
// element, so a member whose type needs content fails to read.
TEST(JsonRoundTrip, NilMembersAreWrittenAsNullAndDoNotReadBack) {
    using namespace KxTestSchema;
    struct NilCase {
        const char* what;
        std::string xml;
        const char* member;  // the JSON member that carries the nil element
        const char* message;
    };
    const NilCase cases[] = {
        {"nillable class",
         TestDoc("NilHolder", "<Maybe xsi:nil=\"true\"/><Plain><Value>2</Value></Plain>"),
         "\"t:Maybe\": null",
         "Failed to find the required child element [Value].\nPath: /t:NilHolder/t:Maybe"},
        {"class in a nillable element",
         TestDoc("NilHolder", "<Maybe><Value>1</Value></Maybe><Plain xsi:nil=\"true\"/>"),
         "\"t:Plain\": null",
         "Failed to find the required child element [Value].\nPath: /t:NilHolder/t:Plain"},
    };
    for (const NilCase& row : cases) {
        SCOPED_TRACE(row.what);
        const CSerializationContext ctx = FullContext();
        CNilHolder original;
        original.FromXml(row.xml.c_str());
        const std::string json = original.ToJson(false, EOLType_LF, ctx);
        EXPECT_NE(std::string::npos, json.find(row.member)) << json;
        CNilHolder back;
        try {
            back.FromJson(json.c_str(), ctx);
            ADD_FAILURE() << "read back without failure: " << json;
        } catch (const CKxException& e) {
            EXPECT_EQ(row.message, e.GetFullMessage());
        }
    }
}
