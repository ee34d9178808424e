// Documents of the sample bindings for round-trip tests: each case names the class to read
// into, the document the original object is read from, and how to compare the object read back.
#ifndef KX_TESTS_EXAMPLEDOCUMENTS_H
#define KX_TESTS_EXAMPLEDOCUMENTS_H

#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "ExampleEquality.h"

namespace KxExampleTest {

const char kXsi[] = "http://www.w3.org/2001/XMLSchema-instance";

struct RoundTripCase {
    const char* what;
    Factory make;
    std::string xml;
    Equality equal;
    bool nil = false;  // the document holds a nil mark, which JSON has no form for
};

inline std::string OrdersDoc(const std::string& root, const std::string& body,
                             const std::string& attributes = "") {
    return "<" + root + " xmlns=\"urn:bench:orders\"" + attributes + ">" + body + "</" + root +
           ">";
}

inline std::string TestDoc(const std::string& root, const std::string& body,
                           const std::string& attributes = "") {
    return "<" + root + " xmlns=\"urn:kx:test\" xmlns:xsi=\"" + kXsi + "\"" + attributes + ">" +
           body + "</" + root + ">";
}

// tests/data/orders.xml: three orders with card and invoice payments, optional members present
// and absent, tags, characters that need escaping and text beyond ASCII.
inline std::string OrdersXml() {
    std::ifstream in(std::string(KX_TEST_DATA_DIR) + "/orders.xml", std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// A flat line with id "L1", sku "AB-1" and quantity 3, plus the note (when given) and tags.
inline KxExamples::CLine MakeFlatLine(const char* note = nullptr,
                                      const std::vector<std::string>& tags = {}) {
    KxExamples::CLine line;
    line.m_id = "L1";
    line.m_hasId = true;
    line.m_sku = "AB-1";
    line.m_hasSku = true;
    line.m_quantity = 3;
    line.m_hasQuantity = true;
    if (note != nullptr) {
        line.m_note = note;
        line.m_hasNote = true;
    }
    for (const std::string& tag : tags) line.m_tags->Add(tag);
    return line;
}

// `count` items made by `item(i)`, concatenated.
inline std::string Repeated(int count, const std::function<std::string(int)>& item) {
    std::string text;
    for (int i = 0; i < count; ++i) text += item(i);
    return text;
}

// Every class of the test schema: sequence, choice, all and group members, abstract and
// substituted classes, wildcards, nil marks, and text beyond ASCII.
inline std::vector<RoundTripCase> TestSchemaCases() {
    using namespace KxTestSchema;
    const std::string car = "<Car><Make>VW</Make><Seats>5</Seats></Car>";
    const std::string bike = "<Bike><Make>BMX 🚲</Make><Gears>1</Gears></Bike>";
    const std::string part = "<Part code=\"p\"><Value>1</Value><Note>Naïve</Note></Part>";
    return {
        {"part", Make<CPart>(), TestDoc("Part", "<Value>-7</Value><Note>ñ</Note>", " code=\"c\""),
         ByOperator<CPart>()},
        {"nil part", Make<CNilPart>(), TestDoc("NilPart", "", " xsi:nil=\"true\""),
         ByOperator<CNilPart>(), true},
        {"circle", Make<CCircle>(), TestDoc("Circle", "<Label>ø</Label><Radius>3</Radius>"),
         ByOperator<CCircle>()},
        {"square", Make<CSquare>(), TestDoc("Square", "<Side>2</Side>"), ByOperator<CSquare>()},
        {"car", Make<CCar>(), TestDoc("Car", "<Make>VW</Make><Seats>5</Seats>"),
         ByOperator<CCar>()},
        {"bike", Make<CBike>(), TestDoc("Bike", "<Make>BMX</Make><Gears>21</Gears>"),
         ByOperator<CBike>()},
        {"sequence, every kind", Make<CSeqHolder>(),
         TestDoc("SeqHolder",
                 part + "<OptPart><Value>2</Value></OptPart><ListPart><Value>3</Value>"
                         "</ListPart><ListPart><Value>3</Value></ListPart>" +
                     car +
                     "<Shape xsi:type=\"Circle\"><Label>c</Label><Radius>7</Radius></Shape>"
                     "<ShapeItem xsi:type=\"Square\"><Side>2</Side></ShapeItem>"
                     "<ShapeItem xsi:type=\"Circle\"><Radius>3</Radius></ShapeItem>"),
         ByOperator<CSeqHolder>()},
        {"sequence, optional members absent", Make<CSeqHolder>(),
         TestDoc("SeqHolder", "<Part><Value>1</Value></Part>" + bike), ByOperator<CSeqHolder>()},
        {"choice, class", Make<CChoiceHolder>(), TestDoc("ChoiceHolder", part),
         ByOperator<CChoiceHolder>()},
        {"choice, class collection", Make<CChoiceHolder>(),
         TestDoc("ChoiceHolder",
                 "<ListPart><Value>1</Value></ListPart><ListPart><Value>2</Value></ListPart>"),
         ByOperator<CChoiceHolder>()},
        // Enough distinct short values to take the value and chunk tables past the index
        // forms of one and two octets.
        {"choice, 300 parts", Make<CChoiceHolder>(),
         TestDoc("ChoiceHolder", Repeated(300, [](int i) {
                     return "<ListPart code=\"c" + std::to_string(i % 150) + "\"><Value>" +
                            std::to_string(i) + "</Value><Note>n" + std::to_string(i % 97) +
                            "</Note></ListPart>";
                 })),
         ByOperator<CChoiceHolder>()},
        {"choice, abstract class", Make<CChoiceHolder>(),
         TestDoc("ChoiceHolder", "<Shape xsi:type=\"Square\"><Side>4</Side></Shape>"),
         ByOperator<CChoiceHolder>()},
        {"choice, substitution group collection", Make<CChoiceHolder>(),
         TestDoc("ChoiceHolder", bike + car + bike), ByOperator<CChoiceHolder>()},
        {"all, every kind in another order", Make<CAllHolder>(),
         TestDoc("AllHolder",
                 "<ShapeItem xsi:type=\"Square\"><Side>2</Side></ShapeItem>" + bike +
                     "<ListPart><Value>3</Value></ListPart><Shape xsi:type=\"Circle\">"
                     "<Radius>7</Radius></Shape><OptPart><Value>2</Value></OptPart>" + part),
         ByOperator<CAllHolder>()},
        {"tree", Make<CTree>(),
         TestDoc("Tree", "<Branch><Part code=\"c\"><Value>9</Value></Part></Branch>"), SameTree},
        {"branch", Make<CBranch>(), TestDoc("Branch", "<Part><Value>8</Value></Part>"),
         SameBranch},
        {"box: group class, unqualified elements", Make<CBox>(),
         TestDoc("Box",
                 "<Name>crate</Name><Width>3</Width><Height>4</Height>"
                 "<Comment xmlns=\"\">fragile ✓</Comment>"
                 "<LocalPart xmlns=\"\"><Value xmlns=\"urn:kx:test\">5</Value></LocalPart>",
                 " id=\"b1\" unit=\"cm\""),
         SameBox},
        {"box, mandatory members only", Make<CBox>(),
         TestDoc("Box", "<Name>n</Name><Width>1</Width><Height>2</Height>"), SameBox},
        {"nil holder, values", Make<CNilHolder>(),
         TestDoc("NilHolder", "<Maybe><Value>1</Value></Maybe><Plain><Value>2</Value></Plain>"),
         SameNilHolder},
        {"nil holder, both nil", Make<CNilHolder>(),
         TestDoc("NilHolder", "<Maybe xsi:nil=\"true\"/><Plain xsi:nil=\"true\"/>"),
         SameNilHolder, true},
        {"any in a sequence", Make<CAnySeq>(),
         TestDoc("AnySeq",
                 "<Head>h</Head><o:X xmlns:o=\"urn:kx:other\" a=\"1\" o:b=\"2\"><o:Y>y</o:Y>"
                 "<o:Y>y</o:Y></o:X><loc xmlns=\"\">l</loc><e:E xmlns:e=\"urn:kx:extra\">1</e:E>"
                 "<e:E xmlns:e=\"urn:kx:extra\">Ⅱ</e:E>"),
         ByXmlOnly},
        {"any in a choice", Make<CAnyChoice>(),
         TestDoc("AnyChoice", "<n:One xmlns:n=\"urn:kx:one\"><n:V>1</n:V></n:One>"), ByXmlOnly},
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
}

// The flat classes: repeated simple members, a choice of simple members, an all group.
inline std::vector<RoundTripCase> FlatCases() {
    using namespace KxExamples;
    return {
        {"line, every member", Make<CLine>(),
         OrdersDoc("Line",
                   "<Sku>A&amp;B</Sku><Quantity>3</Quantity><Note>n</Note><Tag>x</Tag>"
                   "<Tag>x</Tag><Tag>ÿ</Tag>",
                   " id=\"L1\""),
         SameFlatLine},
        {"line, 200 tags", Make<CLine>(),
         OrdersDoc("Line",
                   "<Sku>S</Sku><Quantity>1</Quantity>" +
                       Repeated(200, [](int i) {
                           return "<Tag>" + std::string(i % 3 == 0 ? "τ" : "t") +
                                  std::to_string(i % 70) + "</Tag>";
                       }),
                   " id=\"L2\""),
         SameFlatLine},
        {"payment, card", Make<CPayment>(), OrdersDoc("Payment", "<Card>4111</Card>"),
         SameFlatPayment},
        {"payment, invoice", Make<CPayment>(), OrdersDoc("Payment", "<Invoice>I-1</Invoice>"),
         SameFlatPayment},
        {"address in another order", Make<CAddress>(),
         OrdersDoc("Address", "<City>c</City><Country>IS</Country><Street>s</Street>"),
         SameFlatAddress},
    };
}

}  // namespace KxExampleTest

#endif
