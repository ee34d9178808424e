#include <string>

#include <gtest/gtest.h>

#include "ExampleDocuments.h"
#include "KxTestSupport.h"
#include "KxXmlLib16.h"
#include "OrderBindings.h"

using namespace KxXmlLib16;
using namespace KxOrders;

namespace {

const std::string kDocument = KxExampleTest::OrdersXml();

std::string Compact(const CXmlObjectBase& object) { return object.ToXml(false, false); }

// Strings are held in the local code page: the documents here need a UTF-8 one.
struct Utf8Locale {
    KxTest::ScopedLocale locale{LC_ALL, "C.UTF-8"};
};

// `kDocument` with the first occurrence of `from` replaced by `to`.
std::string Edited(const std::string& from, const std::string& to) {
    std::string text = kDocument;
    const size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    if (at != std::string::npos) text.replace(at, from.size(), to);
    return text;
}

// The failure of reading `xml`, as the entry point reports it: the innermost message with its
// path, the path, and the inner cause's message ("" when there is none or nothing failed).
struct ReadResult {
    std::string message, path, cause;
};
ReadResult ReadError(CXmlObjectBase& object, const std::string& xml) {
    try {
        object.FromXml(xml.c_str());
    } catch (const CKxException& e) {
        const CKxException* inner = e.GetInnerException();
        return {e.GetMessage(), e.GetPath(), inner ? inner->GetMessage() : std::string()};
    }
    return {};
}

template <typename T>
bool IsA(CXmlObjectBase* object) {
    return dynamic_cast<T*>(object) != nullptr;
}

CSmartPtr<COrder> MakeOrder() {
    CSmartPtr<COrder> order(new COrder());
    order->m_id = "B<1>";
    order->m_hasId = true;
    order->m_seq = 7;
    order->m_hasSeq = true;
    order->m_status = StatusType_shipped;
    order->m_hasStatus = true;
    order->m_orderDate = CDateTime(CDateTime::dt_dateTime, 2024, 5, 6, 7, 8, 9);
    order->m_hasOrderDate = true;
    CCustomer& customer = *order->m_customer;
    customer.m_id = "C";
    customer.m_hasId = true;
    customer.m_name = "Eve & Co";
    customer.m_hasName = true;
    customer.m_email = "e@x";
    customer.m_hasEmail = true;
    CAddress& billing = *customer.m_billingAddress;
    billing.m_street = "S";
    billing.m_city = "T";
    billing.m_postalCode = "1";
    billing.m_country = "NL";
    billing.m_hasStreet = billing.m_hasCity = billing.m_hasPostalCode = billing.m_hasCountry =
        true;
    CSmartPtr<CLine> line(new CLine());
    line->m_no = 1;
    line->m_sku = "K";
    line->m_description = "D";
    line->m_quantity = 3;
    line->m_unitPrice = CDecimal("2.5");
    line->m_weight = 0.125;
    line->m_taxable = true;
    line->m_hasNo = line->m_hasSku = line->m_hasDescription = line->m_hasQuantity =
        line->m_hasUnitPrice = line->m_hasWeight = line->m_hasTaxable = true;
    order->m_lines->Add(line);
    order->m_payment->m_invoice = new CInvoice();
    order->m_payment->m_invoice->m_reference = "R";
    order->m_payment->m_invoice->m_hasReference = true;
    order->m_payment->m_invoice->m_dueDate = CDateTime(CDateTime::dt_date, 2024, 6, 1, 0, 0, 0);
    order->m_payment->m_invoice->m_hasDueDate = true;
    order->m_payment->m_invoice->m_terms = 14;
    order->m_payment->m_invoice->m_hasTerms = true;
    order->m_tags->Add("t");
    order->m_total = CDecimal("7.5");
    order->m_hasTotal = true;
    return order;
}

}  // namespace

TEST(OrderBindings, ReadingFillsEveryMember) {
    Utf8Locale utf8;
    ASSERT_TRUE(utf8.locale.Ok()) << "the C.UTF-8 locale is needed";
    COrders orders;
    orders.FromXml(kDocument.c_str());
    ASSERT_EQ(orders.m_orders->GetCount(), 3);
    const COrder& a = *orders.m_orders->Item(0);
    const COrder& b = *orders.m_orders->Item(1);
    const COrder& c = *orders.m_orders->Item(2);
    auto flag = [](bool set, bool value) { return !set ? "absent" : value ? "true" : "false"; };
    struct Case {
        const char* what;
        std::string got, expected;
    } cases[] = {
        {"generated", orders.m_generated.Format("s"), "2024-03-01T08:00:00Z"},
        {"count", std::to_string(orders.m_count), "3"},
        {"status", StatusTypeToString(a.m_status) + std::string("/") +
                       StatusTypeToString(b.m_status) + "/" + StatusTypeToString(c.m_status),
         "confirmed/pending/cancelled"},
        {"seq", std::to_string(c.m_seq), "3"},
        {"order date", c.m_orderDate.Format("s"), "2024-03-03T23:59:59.25+01:00"},
        {"vip", std::string(flag(a.m_customer->m_hasVip, a.m_customer->m_vip)) + "/" +
                    flag(b.m_customer->m_hasVip, b.m_customer->m_vip) + "/" +
                    flag(c.m_customer->m_hasVip, c.m_customer->m_vip),
         "true/false/absent"},
        {"name", a.m_customer->m_name, "Anna Müller"},
        {"phone", a.m_customer->m_phone + "/" + flag(b.m_customer->m_hasPhone, true),
         "+49 30 1234/absent"},
        {"billing", b.m_customer->m_billingAddress->GetElementName() + " " +
                        b.m_customer->m_billingAddress->m_city,
         "BillingAddress Springfield"},
        {"shipping", a.m_customer->m_shippingAddress->GetElementName() + " " +
                         a.m_customer->m_shippingAddress->m_city + " " +
                         (b.m_customer->m_shippingAddress.Ptr() ? "present" : "absent"),
         "ShippingAddress Köln absent"},
        {"city", c.m_customer->m_billingAddress->m_city, "東京"},
        {"lines", std::to_string(a.m_lines->GetCount()) + std::to_string(b.m_lines->GetCount()),
         "21"},
        {"description", a.m_lines->Item(0)->m_description, "Tea & biscuits <large>"},
        {"unit price", a.m_lines->Item(0)->m_unitPrice.ToString(2), "12.50"},
        {"negative price", b.m_lines->Item(0)->m_unitPrice.ToString(), "-0.5"},
        {"weight", std::to_string(a.m_lines->Item(1)->m_weight), "0.150000"},
        {"taxable", flag(true, a.m_lines->Item(0)->m_taxable) + std::string("/") +
                        flag(true, a.m_lines->Item(1)->m_taxable),
         "true/false"},
        {"line no", std::to_string(a.m_lines->Item(1)->m_no), "2"},
        {"card", a.m_payment->m_card->m_brand + " " + a.m_payment->m_card->m_expiry.Format("s") +
                     " " + (a.m_payment->m_invoice.Ptr() ? "invoice" : "no invoice"),
         "VISA 2027-09-30 no invoice"},
        {"invoice", std::to_string(b.m_payment->m_invoice->m_terms) + " " +
                        b.m_payment->m_invoice->m_dueDate.Format("s") + " " +
                        (b.m_payment->m_card.Ptr() ? "card" : "no card"),
         "30 2024-04-01 no card"},
        {"tags", std::to_string(a.m_tags->GetCount()) + a.m_tags->Item(1) +
                     std::to_string(b.m_tags->GetCount()) + c.m_tags->Item(0),
         "2express0日本"},
        {"total", a.m_total.ToString(2) + " " + b.m_total.ToString(), "33.00 199.99"},
        {"note", a.m_note + "/" + flag(b.m_hasNote, true), "Ring twice & say \"hi\"/absent"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(row.got, row.expected);
    }
}

TEST(OrderBindings, ReadWriteReadGivesSameTextAndObjects) {
    Utf8Locale utf8;
    ASSERT_TRUE(utf8.locale.Ok()) << "the C.UTF-8 locale is needed";
    COrders first;
    first.FromXml(kDocument.c_str());
    const std::string written = first.ToXml();
    COrders second;
    second.FromXml(written.c_str());
    EXPECT_EQ(second.ToXml(), written);
    EXPECT_TRUE(first == second);
    for (const char* kept : {"Anna Müller", "東京", "<AA:Tag>日本</AA:Tag>",
                             "Tea &amp; biscuits &lt;large&gt;", "<AA:Weight>0.15</AA:Weight>",
                             "<AA:OrderDate>2024-03-02T09:00:00</AA:OrderDate>"}) {
        SCOPED_TRACE(kept);
        EXPECT_NE(written.find(kept), std::string::npos);
    }
    // Compact output reads back to the same objects too.
    COrders third;
    third.FromXml(Compact(first).c_str());
    EXPECT_TRUE(third == first);
}

TEST(OrderBindings, CloneIsDeepAndEqualityComparesEveryLevel) {
    Utf8Locale utf8;
    ASSERT_TRUE(utf8.locale.Ok()) << "the C.UTF-8 locale is needed";
    COrders original;
    original.FromXml(kDocument.c_str());
    struct Case {
        const char* what;
        void (*change)(COrders&);
    } cases[] = {
        {"attribute of root", [](COrders& o) { o.m_count = 4; }},
        {"optional attribute unset", [](COrders& o) { o.m_hasGenerated = false; }},
        {"order attribute", [](COrders& o) { o.m_orders->Item(0)->m_status = StatusType_shipped; }},
        {"decimal", [](COrders& o) { o.m_orders->Item(1)->m_total = CDecimal("199.98"); }},
        {"note", [](COrders& o) { o.m_orders->Item(0)->m_note += "!"; }},
        {"tag added", [](COrders& o) { o.m_orders->Item(1)->m_tags->Add("x"); }},
        {"customer", [](COrders& o) { o.m_orders->Item(2)->m_customer->m_hasVip = true; }},
        {"billing address",
         [](COrders& o) { o.m_orders->Item(0)->m_customer->m_billingAddress->m_country = "AT"; }},
        {"shipping dropped",
         [](COrders& o) { o.m_orders->Item(0)->m_customer->m_shippingAddress = nullptr; }},
        {"line value", [](COrders& o) { o.m_orders->Item(0)->m_lines->Item(1)->m_weight = 2; }},
        {"line removed", [](COrders& o) { o.m_orders->Item(0)->m_lines->Remove(1); }},
        {"card field",
         [](COrders& o) { o.m_orders->Item(0)->m_payment->m_card->m_number = "0"; }},
        {"payment branch",
         [](COrders& o) {
             COrder& order = *o.m_orders->Item(0);
             order.m_payment->m_invoice = MakeOrder()->m_payment->m_invoice;
             order.m_payment->m_card = nullptr;
         }},
        {"order removed", [](COrders& o) { o.m_orders->Remove(2); }},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.what);
        CSmartPtr<COrders> copy(original.Clone());
        ASSERT_TRUE(*copy == original);
        row.change(*copy);
        EXPECT_FALSE(*copy == original);
        // The original keeps its text: nothing is shared with the copy.
        EXPECT_NE(copy->ToXml(), original.ToXml());
        COrders fresh;
        fresh.FromXml(kDocument.c_str());
        EXPECT_TRUE(fresh == original);
    }
}

TEST(OrderBindings, ObjectsBuiltInCodeWriteExpectedText) {
    const std::string customer =
        "<AA:Customer id=\"C\"><AA:Name>Eve &amp; Co</AA:Name><AA:Email>e@x</AA:Email>"
        "<AA:BillingAddress><AA:Street>S</AA:Street><AA:City>T</AA:City>"
        "<AA:PostalCode>1</AA:PostalCode><AA:Country>NL</AA:Country></AA:BillingAddress>";
    const std::string line =
        "<AA:Line no=\"1\"><AA:Sku>K</AA:Sku><AA:Description>D</AA:Description>"
        "<AA:Quantity>3</AA:Quantity><AA:UnitPrice>2.5</AA:UnitPrice>"
        "<AA:Weight>0.125</AA:Weight><AA:Taxable>true</AA:Taxable></AA:Line>";
    const std::string invoice =
        "<AA:Invoice terms=\"14\"><AA:Reference>R</AA:Reference>"
        "<AA:DueDate>2024-06-01</AA:DueDate></AA:Invoice>";
    const std::string card =
        "<AA:Card brand=\"MC\"><AA:Holder>H</AA:Holder><AA:Number>5</AA:Number>"
        "<AA:Expiry>2030-01-31</AA:Expiry></AA:Card>";
    const std::string open = "<AA:Orders xmlns:AA=\"urn:bench:orders\"";
    const std::string order =
        "<AA:Order id=\"B&lt;1&gt;\" seq=\"7\" status=\"shipped\">"
        "<AA:OrderDate>2024-05-06T07:08:09</AA:OrderDate>";
    struct Case {
        const char* what;
        void (*change)(COrders&);
        std::string expected;
    } cases[] = {
        {"minimal", [](COrders&) {},
         open + ">" + order + customer + "</AA:Customer>" + line + invoice +
             "<AA:Tag>t</AA:Tag><AA:Total>7.5</AA:Total></AA:Order></AA:Orders>"},
        {"optional members set",
         [](COrders& o) {
             o.m_count = 1;
             o.m_hasCount = true;
             COrder& first = *o.m_orders->Item(0);
             first.m_note = "n";
             first.m_hasNote = true;
             first.m_tags->Clear();
             first.m_customer->m_vip = false;
             first.m_customer->m_hasVip = true;
             first.m_customer->m_phone = "0";
             first.m_customer->m_hasPhone = true;
             first.m_customer->m_shippingAddress = first.m_customer->m_billingAddress->Clone();
             first.m_customer->m_shippingAddress->SetElementName("ShippingAddress");
         },
         open + " count=\"1\">" + order +
             "<AA:Customer id=\"C\" vip=\"false\"><AA:Name>Eve &amp; Co</AA:Name>"
             "<AA:Email>e@x</AA:Email><AA:Phone>0</AA:Phone><AA:BillingAddress>"
             "<AA:Street>S</AA:Street><AA:City>T</AA:City><AA:PostalCode>1</AA:PostalCode>"
             "<AA:Country>NL</AA:Country></AA:BillingAddress><AA:ShippingAddress>"
             "<AA:Street>S</AA:Street><AA:City>T</AA:City><AA:PostalCode>1</AA:PostalCode>"
             "<AA:Country>NL</AA:Country></AA:ShippingAddress></AA:Customer>" +
             line + invoice +
             "<AA:Total>7.5</AA:Total><AA:Note>n</AA:Note></AA:Order></AA:Orders>"},
        {"card instead of invoice",
         [](COrders& o) {
             CPayment& payment = *o.m_orders->Item(0)->m_payment;
             payment.m_invoice = nullptr;
             payment.m_card = new CCard();
             payment.m_card->m_brand = "MC";
             payment.m_card->m_holder = "H";
             payment.m_card->m_number = "5";
             payment.m_card->m_expiry = CDateTime(CDateTime::dt_date, 2030, 1, 31, 0, 0, 0);
             payment.m_card->m_hasBrand = payment.m_card->m_hasHolder =
                 payment.m_card->m_hasNumber = payment.m_card->m_hasExpiry = true;
         },
         open + ">" + order + customer + "</AA:Customer>" + line + card +
             "<AA:Tag>t</AA:Tag><AA:Total>7.5</AA:Total></AA:Order></AA:Orders>"},
        {"two orders",
         [](COrders& o) {
             o.m_orders->Add(MakeOrder());
             o.m_orders->Item(1)->m_status = StatusType_delivered;
         },
         open + ">" + order + customer + "</AA:Customer>" + line + invoice +
             "<AA:Tag>t</AA:Tag><AA:Total>7.5</AA:Total></AA:Order>" +
             "<AA:Order id=\"B&lt;1&gt;\" seq=\"7\" status=\"delivered\">"
             "<AA:OrderDate>2024-05-06T07:08:09</AA:OrderDate>" +
             customer + "</AA:Customer>" + line + invoice +
             "<AA:Tag>t</AA:Tag><AA:Total>7.5</AA:Total></AA:Order></AA:Orders>"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.what);
        COrders orders;
        orders.m_orders->Add(MakeOrder());
        row.change(orders);
        const std::string written = Compact(orders);
        EXPECT_EQ(written, row.expected);
        COrders back;
        back.FromXml(written.c_str());
        EXPECT_TRUE(back == orders);
    }
}

TEST(OrderBindings, WritingReportsMissingAndInvalidMembers) {
    const std::string chain =
        "Failed to convert the element [Orders] to XML\nFailed to convert the element [Order] "
        "to XML\n";
    struct Case {
        const char* what;
        void (*change)(COrder&);
        std::string expected;
    } cases[] = {
        {"mandatory child unset",
         [](COrder& o) { o.m_customer->m_billingAddress = nullptr; },
         chain + "Failed to convert the element [Customer] to XML\n"
                 "The Property [BillingAddress] is mandatory, it may not be NULL"},
        {"mandatory value unset in a child",
         [](COrder& o) { o.m_customer->m_billingAddress->m_hasCity = false; },
         chain + "Failed to convert the element [Customer] to XML\n"
                 "Failed to convert the element [BillingAddress] to XML\n"
                 "The Property [City] is mandatory, it may not be NULL"},
        {"no line", [](COrder& o) { o.m_lines->Remove(0); },
         chain + "The Minimum number of [Line] elements allowed in this collection is 1"},
        {"status out of range", [](COrder& o) { o.m_status = static_cast<StatusType>(9); },
         chain + "Failed to convert attributes to XML\nThe value [9] is not a valid StatusType"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.what);
        COrders orders;
        orders.m_orders->Add(MakeOrder());
        row.change(*orders.m_orders->Item(0));
        try {
            Compact(orders);
            ADD_FAILURE() << "nothing was thrown";
        } catch (const CKxValidationException& e) {
            EXPECT_EQ(e.GetFullMessage(), row.expected);
        }
    }
}

TEST(OrderBindings, StatusConvertersAcceptExactlyTheLiterals) {
    const char* const literals[] = {"pending", "confirmed", "shipped", "delivered", "cancelled"};
    for (int value = 0; value < 5; ++value) {
        SCOPED_TRACE(literals[value]);
        EXPECT_STREQ(StatusTypeToString(value), literals[value]);
        EXPECT_EQ(StringToStatusType(literals[value]), value);
    }
    struct Case {
        const char* text;
        const char* message;
    } bad[] = {
        {"", "The value [] is not a valid StatusType"},
        {"Shipped", "The value [Shipped] is not a valid StatusType"},
        {"shipped ", "The value [shipped ] is not a valid StatusType"},
        {"pend", "The value [pend] is not a valid StatusType"},
    };
    for (const Case& row : bad) {
        SCOPED_TRACE(row.text);
        KxTest::ExpectKxError<CKxInvalidValueException>([&] { StringToStatusType(row.text); },
                                                       row.message);
    }
    KxTest::ExpectKxError<CKxInvalidValueException>([] { StatusTypeToString(-1); },
                                                   "The value [-1] is not a valid StatusType");
    KxTest::ExpectKxError<CKxInvalidValueException>([] { StatusTypeToString(5); },
                                                   "The value [5] is not a valid StatusType");
}

TEST(OrderBindings, FactoryCreatesEachClassUnderTheGivenName) {
    struct Case {
        int classId;
        const char* name;
        const char* expectedName;
        bool (*isRightClass)(CXmlObjectBase*);
    } cases[] = {
        {COrdersFactory::ClassId_COrders, nullptr, "Orders", &IsA<COrders>},
        {COrdersFactory::ClassId_COrder, "Order", "Order", &IsA<COrder>},
        {COrdersFactory::ClassId_CCustomer, "", "Customer", &IsA<CCustomer>},
        {COrdersFactory::ClassId_CAddress, "ShippingAddress", "ShippingAddress", &IsA<CAddress>},
        {COrdersFactory::ClassId_CLine, "Line", "Line", &IsA<CLine>},
        {COrdersFactory::ClassId_CPayment, "Payment", "Payment", &IsA<CPayment>},
        {COrdersFactory::ClassId_CCard, "Card", "Card", &IsA<CCard>},
        {COrdersFactory::ClassId_CInvoice, "Bill", "Bill", &IsA<CInvoice>},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.expectedName);
        CSmartPtr<CXmlObjectBase> created = COrdersFactory::CreateByClass(row.classId, row.name);
        ASSERT_NE(created.Ptr(), nullptr);
        EXPECT_TRUE(row.isRightClass(created.Ptr()));
        EXPECT_EQ(created->GetElementName(), row.expectedName);
        EXPECT_EQ(created->GetRefCount(), 1);
    }
    EXPECT_EQ(COrdersFactory::CreateByClass(0, "X").Ptr(), nullptr);
    EXPECT_EQ(COrdersFactory::CreateByClass(COrdersFactory::ClassId_CInvoice + 1, "X").Ptr(),
              nullptr);
}

TEST(OrderBindings, StructuralFaultsGiveMessageAndPath) {
    const std::string bob =
        "<Customer id=\"C-2\" vip=\"false\">\n      <Name>Bob</Name>\n"
        "      <Email>bob@example.com</Email>\n      <BillingAddress>\n"
        "        <Street>1 Main St</Street>\n        <City>Springfield</City>\n"
        "        <PostalCode>12345</PostalCode>\n        <Country>US</Country>\n"
        "      </BillingAddress>\n    </Customer>";
    const std::string bookLine =
        "<Line no=\"1\">\n      <Sku>SKU-4</Sku>\n"
        "      <Description>Book \"Kokoro\"</Description>\n"
        "      <Quantity>1</Quantity>\n      <UnitPrice>15</UnitPrice>\n"
        "      <Weight>0.3</Weight>\n      <Taxable>false</Taxable>\n    </Line>";
    const char* const processing = "Failed to process the element.";
    struct Case {
        const char* name;
        std::string xml;
        const char* message;
        const char* path;
        const char* cause;
    } cases[] = {
        {"missing customer", Edited(bob, ""),
         "Failed to find the required child element [Customer].", "/Orders/Order[2]", ""},
        {"missing element of a mandatory child", Edited("<Street>1 Main St</Street>", ""),
         "Failed to find the required child element [Street].",
         "/Orders/Order[2]/Customer/BillingAddress", ""},
        {"unknown element at the end of a line",
         Edited("<Taxable>false</Taxable>", "<Taxable>false</Taxable><Color>red</Color>"),
         "Failed read all the elements held within the element [Line]. The unexpected element "
         "[Color] remains un processed",
         "/Orders/Order[1]/Line[2]", ""},
        {"unknown element inside a line",
         Edited("<Quantity>4</Quantity>", "<Color>red</Color><Quantity>4</Quantity>"),
         "Failed to find the required child element [Quantity].", "/Orders/Order[2]/Line", ""},
        {"bad status literal", Edited("status=\"pending\"", "status=\"lost\""), processing,
         "/Orders/Order[2]", "The value [lost] is not a valid StatusType"},
        {"status in the wrong case", Edited("status=\"pending\"", "status=\"Pending\""),
         processing, "/Orders/Order[2]", "The value [Pending] is not a valid StatusType"},
        {"order without line", Edited(bookLine, ""), processing, "/Orders/Order[3]",
         "The Minimum number of [Line] elements allowed in this collection is 1"},
        {"document without order", "<Orders xmlns=\"urn:bench:orders\" count=\"0\"/>",
         processing, "/Orders",
         "The Minimum number of [Order] elements allowed in this collection is 1"},
        {"bad decimal", Edited("<Total>199.99</Total>", "<Total>199,99</Total>"), processing,
         "/Orders/Order[2]", "The value [199,99] is not a valid decimal"},
        {"bad date", Edited("<Expiry>2027-09-30</Expiry>", "<Expiry>2027-13-30</Expiry>"),
         processing, "/Orders/Order[1]/Card", "The value [2027-13-30] is not a valid xs:date"},
        {"bad boolean attribute", Edited("vip=\"false\"", "vip=\"no\""), processing,
         "/Orders/Order[2]/Customer",
         "A Boolean Value read from an XML document was invalid [no]. Valid values are 'true', "
         "'false', '1', or '0'"},
        {"missing required attribute", Edited(" seq=\"2\"", ""), processing, "/Orders/Order[2]",
         "Failed to find the required Attribute [seq]."},
        {"unknown attribute", Edited("<Line no=\"2\">", "<Line no=\"2\" colour=\"red\">"),
         "Unexpected Attribute found.", "/Orders/Order[1]/Line[2]/@colour", ""},
        {"both payment branches",
         Edited("</Card>", "</Card><Invoice terms=\"1\"><Reference>R</Reference>"
                           "<DueDate>2024-01-01</DueDate></Invoice>"),
         "Failed to find the required child element [Total].", "/Orders/Order[1]", ""},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        COrders orders;
        const ReadResult r = ReadError(orders, row.xml);
        EXPECT_EQ(r.message, std::string(row.message) + "\nPath: " + row.path);
        EXPECT_EQ(r.path, row.path);
        EXPECT_EQ(r.cause, row.cause);
    }
}

// Card and Invoice are optional branches of the choice, so the engine (by design) lets the
// choice be empty both ways rather than reporting it.
TEST(OrderBindings, AnOrderWithoutPaymentIsAcceptedBecauseTheBranchesAreOptional) {
    COrders orders;
    const ReadResult r = ReadError(orders, Edited("<Invoice terms=\"30\">\n      <Reference>INV-7"
                                                  "</Reference>\n      <DueDate>2024-04-01"
                                                  "</DueDate>\n    </Invoice>",
                                                  ""));
    EXPECT_EQ(r.message, "");
    ASSERT_EQ(orders.m_orders->GetCount(), 3);
    EXPECT_FALSE(orders.m_orders->Item(1)->m_payment->m_card);
    EXPECT_FALSE(orders.m_orders->Item(1)->m_payment->m_invoice);

    COrders built;
    built.m_orders->Add(MakeOrder());
    built.m_orders->Item(0)->m_payment->m_invoice = nullptr;
    const std::string xml = Compact(built);
    EXPECT_EQ(xml.find("Invoice"), std::string::npos);
    EXPECT_NE(xml.find("Total>"), std::string::npos);
}
