// Writing XML from an object tree, next to appending the same bytes to a std::string, in one run:
//   kx_bench_xml_write
// The tree has the shape of the benchmark schema's documents (orders with a customer, billing and
// optional shipping addresses, lines, a card or an invoice, tags, a total and an optional note;
// non-ASCII names and text that needs escaping), about 10 MB of output, built in memory by
// hand-written bindings whose ToXml_Int talk to the writer directly. The pairs are
//   XmlWrite/ToXml              CXmlObjectBase::ToXml, formatted, with the XML declaration
//   XmlWrite/ToXmlStreamUtf8    CXmlObjectBase::ToXmlStream, UTF-8 bytes, under a UTF-8 locale
//   XmlWrite/StringAppend       a direct walk of the same tree appending the same bytes to a
//                               std::string (checked equal to ToXml's output before timing)
// Compare the bytes_per_second of the lines of one run.
#include <benchmark/benchmark.h>

#include <clocale>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

const char kNs[] = "urn:bench:orders";
const size_t kTargetBytes = 10 * 1000 * 1000;

// ---- The bindings ------------------------------------------------------------------------

// Shared by every binding: plain elements and attributes, nothing else.
class Node : public CXmlObjectBase {
public:
    explicit Node(const char* name) { SetElementName(name); }
    CXmlObjectBase* Clone() const override { return nullptr; }  // never cloned here
    std::string GetNamespace() const override { return kNs; }
    std::string GetTargetNamespace() const override { return kNs; }
    CXmlElement* FromXml_Int(CXmlElement*, CXmlElement*, const CSerializationContext&,
                             bool) override {
        return nullptr;  // writing only
    }

protected:
    static void Text(CXmlWriter* w, const char* name, const char* ns, const std::string& text,
                     ItemType type) {
        w->WriteStartElement(name, ns);
        w->WriteString(text, type, false);
        w->WriteEndElement();
    }
};

struct Address : Node {
    explicit Address(const char* name) : Node(name) {}
    std::string street, city, postalCode, country;
    void ToXml_Int(CXmlWriter* w, bool, const char* ns, const CSerializationContext&,
                   bool) const override {
        w->WriteStartElement(GetElementName(), ns);
        Text(w, "Street", ns, street, ItemType_string);
        Text(w, "City", ns, city, ItemType_string);
        Text(w, "PostalCode", ns, postalCode, ItemType_string);
        Text(w, "Country", ns, country, ItemType_string);
        w->WriteEndElement();
    }
};

struct Customer : Node {
    Customer() : Node("Customer") {}
    std::string id, vip, name, email, phone;
    CSmartPtr<Address> billing, shipping;
    void ToXml_Int(CXmlWriter* w, bool, const char* ns, const CSerializationContext& ctx,
                   bool) const override {
        w->WriteStartElement(GetElementName(), ns);
        w->WriteAttributeString("id", "", id, ItemType_string);
        if (!vip.empty()) w->WriteAttributeString("vip", "", vip, ItemType_boolean);
        Text(w, "Name", ns, name, ItemType_string);
        Text(w, "Email", ns, email, ItemType_string);
        if (!phone.empty()) Text(w, "Phone", ns, phone, ItemType_string);
        billing->ToXml_Int(w, false, ns, ctx, false);
        if (shipping) shipping->ToXml_Int(w, false, ns, ctx, false);
        w->WriteEndElement();
    }
};

struct Line : Node {
    Line() : Node("Line") {}
    std::string no, sku, description, quantity, unitPrice, weight, taxable;
    void ToXml_Int(CXmlWriter* w, bool, const char* ns, const CSerializationContext&,
                   bool) const override {
        w->WriteStartElement(GetElementName(), ns);
        w->WriteAttributeString("no", "", no, ItemType_i4);
        Text(w, "Sku", ns, sku, ItemType_string);
        Text(w, "Description", ns, description, ItemType_string);
        Text(w, "Quantity", ns, quantity, ItemType_i4);
        Text(w, "UnitPrice", ns, unitPrice, ItemType_decimal);
        Text(w, "Weight", ns, weight, ItemType_r8);
        Text(w, "Taxable", ns, taxable, ItemType_boolean);
        w->WriteEndElement();
    }
};

// Card (brand, holder, number, expiry) or Invoice (terms, reference, due date).
struct Payment : Node {
    explicit Payment(bool card) : Node(card ? "Card" : "Invoice"), isCard(card) {}
    bool isCard;
    std::string attribute, first, second, third;
    void ToXml_Int(CXmlWriter* w, bool, const char* ns, const CSerializationContext&,
                   bool) const override {
        w->WriteStartElement(GetElementName(), ns);
        if (isCard) {
            w->WriteAttributeString("brand", "", attribute, ItemType_string);
            Text(w, "Holder", ns, first, ItemType_string);
            Text(w, "Number", ns, second, ItemType_string);
            Text(w, "Expiry", ns, third, ItemType_date);
        } else {
            w->WriteAttributeString("terms", "", attribute, ItemType_i4);
            Text(w, "Reference", ns, first, ItemType_string);
            Text(w, "DueDate", ns, second, ItemType_date);
        }
        w->WriteEndElement();
    }
};

struct Order : Node {
    Order() : Node("Order") {}
    std::string id, seq, status, orderDate, total, note;
    CSmartPtr<Customer> customer;
    std::vector<CSmartPtr<Line>> lines;
    CSmartPtr<Payment> payment;
    std::vector<std::string> tags;
    void ToXml_Int(CXmlWriter* w, bool, const char* ns, const CSerializationContext& ctx,
                   bool) const override {
        w->WriteStartElement(GetElementName(), ns);
        w->WriteAttributeString("id", "", id, ItemType_string);
        w->WriteAttributeString("seq", "", seq, ItemType_i4);
        w->WriteAttributeString("status", "", status, ItemType_string);
        Text(w, "OrderDate", ns, orderDate, ItemType_datetime);
        customer->ToXml_Int(w, false, ns, ctx, false);
        for (const CSmartPtr<Line>& line : lines) line->ToXml_Int(w, false, ns, ctx, false);
        payment->ToXml_Int(w, false, ns, ctx, false);
        for (const std::string& tag : tags) Text(w, "Tag", ns, tag, ItemType_string);
        Text(w, "Total", ns, total, ItemType_decimal);
        if (!note.empty()) Text(w, "Note", ns, note, ItemType_string);
        w->WriteEndElement();
    }
};

struct Orders : Node {
    Orders() : Node("Orders") {}
    std::string generated, count;
    std::vector<CSmartPtr<Order>> orders;
    void ToXml_Int(CXmlWriter* w, bool isRoot, const char* ns, const CSerializationContext&,
                   bool) const override {
        if (isRoot) w->SetDefaultNamespace(ns);  // as the engine does with DefaultNamespaceURI
        w->WriteStartElement(GetElementName(), ns);
        w->WriteAttributeString("generated", "", generated, ItemType_datetime);
        w->WriteAttributeString("count", "", count, ItemType_i4);
        const CSerializationContext& ctx = CSerializationContext::m_defaultContext;
        for (const CSmartPtr<Order>& order : orders) order->ToXml_Int(w, false, ns, ctx, false);
        w->WriteEndElement();
    }
};

// ---- The tree ----------------------------------------------------------------------------

// A small deterministic generator (64-bit LCG), so every run writes the same tree.
class Random {
public:
    double Next() {
        m_state = m_state * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<double>(m_state >> 11) / 9007199254740992.0;
    }
    int Below(int n) { return static_cast<int>(Next() * n); }
    template <size_t N>
    const char* Pick(const char* const (&list)[N]) {
        return list[Below(static_cast<int>(N))];
    }

private:
    uint64_t m_state = 20240601;
};

const char* const kFirst[] = {"Anna",   "José",  "Zoë",      "Łukasz", "Søren", "Mia",
                              "Noah",   "Chloé", "Björn",    "Ines",   "Mateo", "Ayşe",
                              "Dmitri", "Ève",   "François", "Jürgen", "Kenji", "Priya",
                              "Rafał",  "Sofía", "Tomáš",    "Wei"};
const char* const kLast[] = {"Müller",       "García",    "O'Brien",   "Nowak",     "Smith",
                             "Dubois",       "Rossi",     "Johansson", "Fernández", "Nguyen",
                             "Schröder",     "Lefèvre",   "Yılmaz",    "Novák",     "Håkansson",
                             "Brown & Sons", "Østergaard"};
const char* const kStreets[] = {"Hauptstraße", "Rue de l'Église", "Main Street",
                                "Calle Mayor", "Via Roma",        "ul. Marszałkowska",
                                "Nørregade",   "High Street",     "Avenue des Champs-Élysées",
                                "Rua Augusta", "Station Road"};
const char* const kCities[][2] = {{"Zürich", "CH"},    {"Paris", "FR"},     {"München", "DE"},
                                  {"Kraków", "PL"},    {"København", "DK"}, {"Málaga", "ES"},
                                  {"London", "GB"},    {"New York", "US"},  {"東京", "JP"},
                                  {"Reykjavík", "IS"}, {"Praha", "CZ"},     {"Springfield", "US"}};
const char* const kAdjectives[] = {"Large",   "Small",    "Blue",       "Stainless",
                                   "Organic", "Wireless", "Heavy-duty", "Compact",
                                   "Deluxe",  "Eco",      "Vintage",    "Smart"};
const char* const kNouns[] = {"widget", "gadget", "bracket",  "kettle",   "lamp",
                              "cable",  "chair",  "notebook", "backpack", "sensor",
                              "bolt",   "mug",    "charger"};
const char* const kExtras[] = {"",
                               "",
                               "",
                               " & accessories",
                               " <limited edition>",
                               " (size \"M\")",
                               " – 2-pack",
                               " für Küche",
                               " 5\" x 7\"",
                               " R&D sample",
                               " tom's pick"};
const char* const kTags[] = {"gift",     "express",   "fragile", "b2b",      "repeat-customer",
                             "promo",    "backorder", "eco",     "priority", "international",
                             "wholesale"};
const char* const kStatus[] = {"pending", "confirmed", "shipped", "delivered", "cancelled"};
const char* const kBrands[] = {"VISA", "MasterCard", "AMEX", "Diners"};
const char* const kTerms[] = {"14", "30", "30", "60", "90"};
const char* const kNotes[] = {"Leave at the door & ring twice", "Deliver between 9 < t < 17",
                              "Call before delivery",           "Bitte beim Nachbarn abgeben",
                              "Fragile: handle with care!",     "Invoice to \"Accounts Payable\"",
                              "Ne pas plier – merci",           "Gate code 4711 <#>"};

std::string Num(long long value, int width = 0) {
    std::string text = std::to_string(value);
    if (static_cast<int>(text.size()) < width) text.insert(0, width - text.size(), '0');
    return text;
}

CSmartPtr<Address> MakeAddress(Random& rnd, const char* name) {
    CSmartPtr<Address> address(new Address(name));
    const int city = rnd.Below(static_cast<int>(std::size(kCities)));
    address->street = Num(1 + rnd.Below(250)) + " " + rnd.Pick(kStreets);
    address->city = kCities[city][0];
    address->postalCode = Num(10000 + rnd.Below(89999));
    address->country = kCities[city][1];
    return address;
}

CSmartPtr<Order> MakeOrder(Random& rnd, int n) {
    CSmartPtr<Order> order(new Order);
    order->id = "ORD-" + Num(n, 8);
    order->seq = Num(n);
    order->status = rnd.Pick(kStatus);
    const int month = 1 + rnd.Below(12), day = 1 + rnd.Below(28);
    order->orderDate = "2024-" + Num(month, 2) + "-" + Num(day, 2) + "T" + Num(rnd.Below(24), 2) +
                       ":" + Num(rnd.Below(60), 2) + ":" + Num(rnd.Below(60), 2) + "Z";
    const std::string holder = std::string(rnd.Pick(kFirst)) + " " + rnd.Pick(kLast);
    CSmartPtr<Customer> customer(new Customer);
    const int cid = 100000 + rnd.Below(900000);
    customer->id = "C-" + Num(cid);
    customer->vip = rnd.Next() < 0.1 ? "true" : (rnd.Next() < 0.3 ? "false" : "");
    customer->name = holder;
    customer->email = "customer" + Num(cid) + "@example.com";
    if (rnd.Next() < 0.7) {
        customer->phone = "+" + Num(1 + rnd.Below(98)) + " " + Num(100 + rnd.Below(900)) + " " +
                          Num(1000000 + rnd.Below(9000000));
    }
    customer->billing = MakeAddress(rnd, "BillingAddress");
    if (rnd.Next() < 0.4) customer->shipping = MakeAddress(rnd, "ShippingAddress");
    order->customer = customer;
    long long cents = 0;
    for (int i = 1, count = 1 + rnd.Below(8); i <= count; ++i) {
        CSmartPtr<Line> line(new Line);
        const int quantity = 1 + rnd.Below(20), price = 50 + rnd.Below(99950);
        cents += static_cast<long long>(quantity) * price;
        line->no = Num(i);
        line->sku = "SKU-" + Num(rnd.Below(1000000), 6);
        line->description =
            std::string(rnd.Pick(kAdjectives)) + " " + rnd.Pick(kNouns) + rnd.Pick(kExtras);
        line->quantity = Num(quantity);
        line->unitPrice = Num(price / 100) + "." + Num(price % 100, 2);
        const int grams = 50 + rnd.Below(25000);
        line->weight = Num(grams / 1000) + "." + Num(grams % 1000, 3);
        line->taxable = rnd.Next() < 0.8 ? "true" : "false";
        order->lines.push_back(line);
    }
    const bool card = rnd.Next() < 0.6;
    CSmartPtr<Payment> payment(new Payment(card));
    if (card) {
        payment->attribute = rnd.Pick(kBrands);
        payment->first = holder;
        payment->second = "XXXX-XXXX-XXXX-" + Num(rnd.Below(10000), 4);
        payment->third = Num(2025 + rnd.Below(6)) + "-" + Num(1 + rnd.Below(12), 2) + "-28";
    } else {
        payment->attribute = rnd.Pick(kTerms);
        payment->first = "INV-2024-" + Num(n, 8);
        payment->second = "2024-" + Num(month, 2) + "-" + Num(day, 2);
    }
    order->payment = payment;
    for (int t = rnd.Below(5); t > 0; --t) order->tags.push_back(rnd.Pick(kTags));
    order->total = Num(cents / 100) + "." + Num(cents % 100, 2);
    if (rnd.Next() < 0.3) order->note = rnd.Pick(kNotes);
    return order;
}

// About 1.7 kB of formatted output per order.
const Orders& Tree() {
    static CSmartPtr<Orders> tree;
    if (!tree) {
        tree = new Orders;
        Random rnd;
        const int count = static_cast<int>(kTargetBytes / 1700);
        for (int n = 1; n <= count; ++n) tree->orders.push_back(MakeOrder(rnd, n));
        tree->generated = "2024-12-31T23:59:59Z";
        tree->count = Num(count);
    }
    return *tree;
}

// ---- The same bytes, appended directly ---------------------------------------------------

// Escaping of the XML text writer: & < > always, " in attributes, line feeds kept.
void Escaped(std::string& out, const std::string& text, bool attribute) {
    for (char c : text) {
        switch (c) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                attribute ? out += "&quot;" : out += c;
                break;
            default:
                out += c;
        }
    }
}

struct Appender {
    std::string out;
    void Indent(int depth) { out.append(depth, '\t'); }
    void Text(int depth, const char* name, const std::string& text) {
        Indent(depth);
        out += '<';
        out += name;
        out += '>';
        Escaped(out, text, false);
        out += "</";
        out += name;
        out += ">\n";
    }
    void Attribute(const char* name, const std::string& value) {
        out += ' ';
        out += name;
        out += "=\"";
        Escaped(out, value, true);
        out += '"';
    }
    void Address(const ::Address& a, int depth) {
        Indent(depth);
        out += "<" + a.GetElementName() + ">\n";
        Text(depth + 1, "Street", a.street);
        Text(depth + 1, "City", a.city);
        Text(depth + 1, "PostalCode", a.postalCode);
        Text(depth + 1, "Country", a.country);
        Indent(depth);
        out += "</" + a.GetElementName() + ">\n";
    }
    void Write(const Orders& tree) {
        out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Orders xmlns=\"";
        out += kNs;
        out += '"';
        Attribute("generated", tree.generated);
        Attribute("count", tree.count);
        out += ">\n";
        for (const CSmartPtr<::Order>& o : tree.orders) {
            out += "\t<Order";
            Attribute("id", o->id);
            Attribute("seq", o->seq);
            Attribute("status", o->status);
            out += ">\n";
            Text(2, "OrderDate", o->orderDate);
            const ::Customer& c = *o->customer;
            out += "\t\t<Customer";
            Attribute("id", c.id);
            if (!c.vip.empty()) Attribute("vip", c.vip);
            out += ">\n";
            Text(3, "Name", c.name);
            Text(3, "Email", c.email);
            if (!c.phone.empty()) Text(3, "Phone", c.phone);
            Address(*c.billing, 3);
            if (c.shipping) Address(*c.shipping, 3);
            out += "\t\t</Customer>\n";
            for (const CSmartPtr<::Line>& l : o->lines) {
                out += "\t\t<Line";
                Attribute("no", l->no);
                out += ">\n";
                Text(3, "Sku", l->sku);
                Text(3, "Description", l->description);
                Text(3, "Quantity", l->quantity);
                Text(3, "UnitPrice", l->unitPrice);
                Text(3, "Weight", l->weight);
                Text(3, "Taxable", l->taxable);
                out += "\t\t</Line>\n";
            }
            const ::Payment& p = *o->payment;
            out += "\t\t<" + p.GetElementName();
            Attribute(p.isCard ? "brand" : "terms", p.attribute);
            out += ">\n";
            Text(3, p.isCard ? "Holder" : "Reference", p.first);
            Text(3, p.isCard ? "Number" : "DueDate", p.second);
            if (p.isCard) Text(3, "Expiry", p.third);
            out += "\t\t</" + p.GetElementName() + ">\n";
            for (const std::string& tag : o->tags) Text(2, "Tag", tag);
            Text(2, "Total", o->total);
            if (!o->note.empty()) Text(2, "Note", o->note);
            out += "\t</Order>\n";
        }
        out += "</Orders>\n";
    }
};

void ToXml(benchmark::State& state) {
    const Orders& tree = Tree();
    size_t bytes = 0;
    for (auto _ : state) {
        std::string xml = tree.ToXml();
        bytes = xml.size();
        benchmark::DoNotOptimize(xml.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
    state.counters["MB"] = static_cast<double>(bytes) / 1e6;
}

void ToXmlStreamUtf8(benchmark::State& state) {
    const std::string saved = std::setlocale(LC_CTYPE, nullptr);
    if (std::setlocale(LC_CTYPE, "C.UTF-8") == nullptr) {
        state.SkipWithError("no C.UTF-8 locale");
        return;
    }
    const Orders& tree = Tree();
    size_t bytes = 0;
    for (auto _ : state) {
        CBinaryData data = tree.ToXmlStream();
        bytes = data.GetLength();
        benchmark::DoNotOptimize(data.GetData());
    }
    std::setlocale(LC_CTYPE, saved.c_str());
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
}

void StringAppend(benchmark::State& state) {
    const Orders& tree = Tree();
    Appender check;
    check.Write(tree);
    if (check.out != tree.ToXml()) {
        state.SkipWithError("the direct walk does not produce ToXml's bytes");
        return;
    }
    size_t bytes = 0;
    for (auto _ : state) {
        Appender appender;
        appender.Write(tree);
        bytes = appender.out.size();
        benchmark::DoNotOptimize(appender.out.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
}

}  // namespace

BENCHMARK(ToXml)->Name("XmlWrite/ToXml")->Unit(benchmark::kMillisecond);
BENCHMARK(ToXmlStreamUtf8)->Name("XmlWrite/ToXmlStreamUtf8")->Unit(benchmark::kMillisecond);
BENCHMARK(StringAppend)->Name("XmlWrite/StringAppend")->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
