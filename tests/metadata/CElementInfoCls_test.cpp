// Class, abstract-class and untyped members, driven through the test schema bindings
// (examples/test-schema.xsd).
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"
#include "TestSchemaBindings.h"

using namespace KxXmlLib16;
using namespace KxTestSchema;

namespace {

const std::string kXsi = "http://www.w3.org/2001/XMLSchema-instance";
const std::string kDecl = "xmlns=\"urn:kx:test\" xmlns:xsi=\"" + kXsi + "\"";

// An input document: the root element in the test namespace, with xsi bound.
std::string Doc(const std::string& root, const std::string& body,
                const std::string& attributes = "") {
    return "<" + root + " " + kDecl + attributes + ">" + body + "</" + root + ">";
}
// The compact text the writer gives for such a root (test namespace under the prefix AA).
std::string Out(const std::string& root, const std::string& body,
                const std::string& attributes = "") {
    return "<AA:" + root + " xmlns:AA=\"urn:kx:test\"" + attributes + ">" + body + "</AA:" +
           root + ">";
}
// The xsi:type attribute as written on a child element (xsi gets the next free prefix).
std::string TypeAttr(const std::string& type) {
    return " xmlns:AB=\"" + kXsi + "\" AB:type=\"AA:" + type + "\"";
}
std::string Part(const char* name, int value) {
    return std::string("<AA:") + name + "><AA:Value>" + std::to_string(value) +
           "</AA:Value></AA:" + name + ">";
}

std::string Compact(const CXmlObjectBase& object,
                    const CSerializationContext& ctx = CSerializationContext()) {
    return object.ToXml(false, false, EOLType_LF, ctx);
}
// The compact text, or "error: " and the full message of the failure.
std::string Written(const CXmlObjectBase& object,
                    const CSerializationContext& ctx = CSerializationContext()) {
    try {
        return Compact(object, ctx);
    } catch (const CKxException& e) {
        return "error: " + e.GetFullMessage();
    }
}

// Reads `xml` and returns the caught exception's full message ("" when reading succeeded).
std::string ReadFailure(CXmlObjectBase& object, const std::string& xml,
                        const CSerializationContext& ctx = CSerializationContext()) {
    try {
        object.FromXml(xml.c_str(), ctx);
    } catch (const CKxException& e) {
        return e.GetFullMessage();
    }
    return "";
}

using Factory = std::function<CSmartPtr<CXmlObjectBase>()>;
template <typename T>
Factory Make() {
    return [] { return CSmartPtr<CXmlObjectBase>(new T()); };
}

// Reads `in` and writes it, then reads and writes the result again: both writes give `out`.
void ExpectRoundTrip(const Factory& make, const std::string& in, const std::string& out) {
    CSmartPtr<CXmlObjectBase> first = make();
    const std::string failure = ReadFailure(*first, in);
    EXPECT_EQ(failure, "");
    if (!failure.empty()) return;
    EXPECT_EQ(Written(*first), out);
    CSmartPtr<CXmlObjectBase> second = make();
    EXPECT_EQ(ReadFailure(*second, out), "");
    EXPECT_EQ(Written(*second), out);
}

CSmartPtr<CPart> NewPart(const char* name, long value) {
    CSmartPtr<CPart> part(new CPart(name));
    part->m_value = value;
    part->m_hasValue = true;
    return part;
}
template <typename Shape>
CSmartPtr<CShape> NewShape(const char* name, long size) {
    CSmartPtr<CShape> shape(new Shape(name));
    shape->m_size = size;
    shape->m_hasSize = true;
    return shape;
}
template <typename Vehicle>
CSmartPtr<CVehicle> NewVehicle(const char* make, long count) {
    CSmartPtr<CVehicle> vehicle(new Vehicle());
    vehicle->m_make = make;
    vehicle->m_hasMake = true;
    vehicle->m_count = count;
    vehicle->m_hasCount = true;
    return vehicle;
}

const char* const kCar = "<Car><Make>VW</Make><Seats>5</Seats></Car>";
const char* const kCarOut = "<AA:Car><AA:Make>VW</AA:Make><AA:Seats>5</AA:Seats></AA:Car>";
const char* const kBike = "<Bike><Make>BMX</Make><Gears>1</Gears></Bike>";
const char* const kBikeOut = "<AA:Bike><AA:Make>BMX</AA:Make><AA:Gears>1</AA:Gears></AA:Bike>";

}  // namespace

TEST(CElementInfoCls, EveryRecordKindReadsAndWritesBack) {
    const std::string seqBody =
        "<Part code=\"p\"><Value>1</Value></Part><OptPart><Value>2</Value><Note>n</Note></OptPart>"
        "<ListPart><Value>3</Value></ListPart><ListPart><Value>4</Value></ListPart>" +
        std::string(kCar) +
        "<Shape xmlns:t=\"urn:kx:test\" xsi:type=\"t:Circle\"><Radius>7</Radius></Shape>"
        "<ShapeItem xsi:type=\"Square\"><Label>sq</Label><Side>2</Side></ShapeItem>"
        "<ShapeItem xsi:type=\"Circle\"><Radius>3</Radius></ShapeItem>";
    const std::string seqOut =
        "<AA:Part code=\"p\"><AA:Value>1</AA:Value></AA:Part><AA:OptPart><AA:Value>2</AA:Value>"
        "<AA:Note>n</AA:Note></AA:OptPart>" +
        Part("ListPart", 3) + Part("ListPart", 4) + kCarOut + "<AA:Shape" + TypeAttr("Circle") +
        "><AA:Radius>7</AA:Radius></AA:Shape><AA:ShapeItem" + TypeAttr("Square") +
        "><AA:Label>sq</AA:Label><AA:Side>2</AA:Side></AA:ShapeItem><AA:ShapeItem" +
        TypeAttr("Circle") + "><AA:Radius>3</AA:Radius></AA:ShapeItem>";
    struct Case { const char* name; Factory make; std::string in; std::string out; } cases[] = {
        {"sequence, every kind", Make<CSeqHolder>(), Doc("SeqHolder", seqBody),
         Out("SeqHolder", seqOut)},
        {"sequence, optional members absent", Make<CSeqHolder>(),
         Doc("SeqHolder", std::string("<Part><Value>1</Value></Part>") + kBike),
         Out("SeqHolder", Part("Part", 1) + kBikeOut)},
        // The optional abstract Shape does not take the repeated member's element, although
        // the factory could create a class for it.
        {"sequence, repeated abstract member only", Make<CSeqHolder>(),
         Doc("SeqHolder", std::string("<Part><Value>1</Value></Part>") + kCar +
                              "<ShapeItem xsi:type=\"Square\"><Side>2</Side></ShapeItem>"),
         Out("SeqHolder", Part("Part", 1) + kCarOut + "<AA:ShapeItem" + TypeAttr("Square") +
                              "><AA:Side>2</AA:Side></AA:ShapeItem>")},
        {"choice, class branch", Make<CChoiceHolder>(),
         Doc("ChoiceHolder", "<Part><Value>1</Value></Part>"),
         Out("ChoiceHolder", Part("Part", 1))},
        {"choice, class collection branch", Make<CChoiceHolder>(),
         Doc("ChoiceHolder", "<ListPart><Value>1</Value></ListPart><ListPart><Value>2</Value>"
                             "</ListPart>"),
         Out("ChoiceHolder", Part("ListPart", 1) + Part("ListPart", 2))},
        {"choice, abstract branch", Make<CChoiceHolder>(),
         Doc("ChoiceHolder", "<Shape xsi:type=\"Square\"><Side>4</Side></Shape>"),
         Out("ChoiceHolder",
             "<AA:Shape" + TypeAttr("Square") + "><AA:Side>4</AA:Side></AA:Shape>")},
        {"choice, abstract collection branch", Make<CChoiceHolder>(),
         Doc("ChoiceHolder", std::string(kBike) + kCar),
         Out("ChoiceHolder", std::string(kBikeOut) + kCarOut)},
        {"all, every kind in another order", Make<CAllHolder>(),
         Doc("AllHolder",
             "<ShapeItem xsi:type=\"Square\"><Side>2</Side></ShapeItem>" + std::string(kBike) +
                 "<ListPart><Value>3</Value></ListPart><Shape xsi:type=\"Circle\"><Radius>7"
                 "</Radius></Shape><OptPart><Value>2</Value></OptPart><Part><Value>1</Value>"
                 "</Part>"),
         Out("AllHolder", Part("Part", 1) + Part("OptPart", 2) + Part("ListPart", 3) + kBikeOut +
                              "<AA:Shape" + TypeAttr("Circle") +
                              "><AA:Radius>7</AA:Radius></AA:Shape><AA:ShapeItem" +
                              TypeAttr("Square") + "><AA:Side>2</AA:Side></AA:ShapeItem>")},
        {"all, mandatory members only", Make<CAllHolder>(),
         Doc("AllHolder", std::string(kCar) + "<Part><Value>1</Value></Part>"),
         Out("AllHolder", Part("Part", 1) + kCarOut)},
        {"three levels", Make<CTree>(),
         Doc("Tree", "<Branch><Part code=\"c\"><Value>9</Value></Part></Branch>"),
         Out("Tree", "<AA:Branch><AA:Part code=\"c\"><AA:Value>9</AA:Value></AA:Part>"
                     "</AA:Branch>")},
        {"nillable members holding values", Make<CNilHolder>(),
         Doc("NilHolder", "<Maybe><Value>1</Value></Maybe><Plain><Value>2</Value></Plain>"),
         Out("NilHolder", Part("Maybe", 1) + Part("Plain", 2))},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ExpectRoundTrip(c.make, c.in, c.out);
    }
}

TEST(CElementInfoCls, BuiltObjectsWriteWithTypeAttributeAsTheContextSays) {
    CSeqHolder holder;
    holder.m_part = NewPart("Part", 1);
    holder.m_optPart = NewPart("OptPart", 2);
    holder.m_listPart->Add(NewPart("ListPart", 3));
    holder.m_vehicle = NewVehicle<CCar>("VW", 5);
    holder.m_shape = NewShape<CSquare>("Shape", 4);
    holder.m_shapeItem->Add(NewShape<CCircle>("ShapeItem", 6));
    const std::string fixed =
        Part("Part", 1) + Part("OptPart", 2) + Part("ListPart", 3) + kCarOut;
    struct Case { bool writeType; std::string out; } cases[] = {
        {true, Out("SeqHolder", fixed + "<AA:Shape" + TypeAttr("Square") +
                                    "><AA:Side>4</AA:Side></AA:Shape><AA:ShapeItem" +
                                    TypeAttr("Circle") +
                                    "><AA:Radius>6</AA:Radius></AA:ShapeItem>")},
        {false, Out("SeqHolder", fixed + "<AA:Shape><AA:Side>4</AA:Side></AA:Shape>"
                                         "<AA:ShapeItem><AA:Radius>6</AA:Radius></AA:ShapeItem>")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.writeType);
        CSerializationContext ctx;
        ctx.SetWriteTypeAttribute(c.writeType);
        EXPECT_EQ(Written(holder, ctx), c.out);
    }
    // A derived object under its own type name needs no xsi:type.
    CChoiceHolder choice;
    choice.m_shape = NewShape<CCircle>("Circle", 1);
    EXPECT_EQ(Written(choice),
              Out("ChoiceHolder", "<AA:Circle><AA:Radius>1</AA:Radius></AA:Circle>"));
}

TEST(CElementInfoCls, UnsetMandatoryChildFailsToWrite) {
    for (const bool all : {false, true}) {
        for (const std::string member : {"Part", "Vehicle"}) {
            SCOPED_TRACE(std::string(all ? "all " : "sequence ") + member);
            CSeqHolder seq;
            CAllHolder allHolder;
            CXmlObjectBase& object = all ? static_cast<CXmlObjectBase&>(allHolder) : seq;
            (all ? allHolder.m_part : seq.m_part) =
                member == "Part" ? nullptr : NewPart("Part", 1);
            if (member == "Part")
                (all ? allHolder.m_vehicle : seq.m_vehicle) = NewVehicle<CCar>("VW", 5);
            const std::string outer = std::string("Failed to convert the element [") +
                                      (all ? "AllHolder" : "SeqHolder") + "] to XML";
            KxTest::ExpectKxError<CKxValidationException>([&] { Compact(object); }, outer);
            EXPECT_EQ(Written(object), "error: " + outer + "\nThe Property [" + member +
                                           "] is mandatory, it may not be NULL");
        }
    }
}

TEST(CElementInfoCls, ReadingFailuresCarryMessageAndPath) {
    const std::string part = "<Part><Value>1</Value></Part>";
    struct Case { const char* name; Factory make; std::string xml; std::string full; } cases[] = {
        {"mandatory class absent", Make<CSeqHolder>(), Doc("SeqHolder", kCar),
         "Failed to find the required child element [Part].\nPath: /SeqHolder"},
        {"mandatory abstract class absent", Make<CSeqHolder>(), Doc("SeqHolder", part),
         "Failed to find the required child element [Vehicle].\nPath: /SeqHolder"},
        {"abstract head element", Make<CSeqHolder>(),
         Doc("SeqHolder", part + "<Vehicle><Make>x</Make></Vehicle>"),
         "Failed to find a suitable substitution element for [Vehicle].\n"
         "Path: /SeqHolder/Vehicle"},
        {"abstract type without xsi:type", Make<CSeqHolder>(),
         Doc("SeqHolder", part + kCar + "<Shape><Radius>1</Radius></Shape>"),
         "Failed to find a suitable substitution element for [Shape].\nPath: /SeqHolder/Shape"},
        {"xsi:type from another namespace", Make<CSeqHolder>(),
         Doc("SeqHolder", part + kCar + "<Shape xmlns:t=\"urn:other\" xsi:type=\"t:Circle\"/>"),
         "Failed to find a suitable substitution element for [Shape].\nPath: /SeqHolder/Shape"},
        {"leftover after the last member", Make<CSeqHolder>(),
         Doc("SeqHolder", part + kCar + "<Truck/>"),
         "Failed read all the elements held within the element [SeqHolder]. The unexpected "
         "element [Truck] remains un processed\nPath: /SeqHolder"},
        {"nil on a non-nillable class", Make<CSeqHolder>(),
         Doc("SeqHolder", "<Part xsi:nil=\"true\"/>" + std::string(kCar)),
         "Invalid use of 'nil' attribute in non-nillable element.\nPath: /SeqHolder/Part"},
        {"all group, mandatory class absent", Make<CAllHolder>(), Doc("AllHolder", kCar),
         "Failed to process the element.\nPath: /AllHolder\n"
         "Failed to find the mandatory element [Part]."},
        {"all group, mandatory abstract class absent", Make<CAllHolder>(),
         Doc("AllHolder", part),
         "Failed to process the element.\nPath: /AllHolder\n"
         "Failed to find the mandatory element [Vehicle]."},
        {"choice collection below its minimum is not a branch", Make<CChoiceHolder>(),
         Doc("ChoiceHolder", "<Truck/>"),
         "Failed read all the elements held within the element [ChoiceHolder]. The unexpected "
         "element [Truck] remains un processed\nPath: /ChoiceHolder"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        CSmartPtr<CXmlObjectBase> object = c.make();
        EXPECT_EQ(ReadFailure(*object, c.xml), c.full);
    }
}

TEST(CElementInfoCls, FaultsThreeLevelsDownNameTheInnermostElement) {
    struct Case { const char* name; std::string xml; std::string message;
                  std::string full; } cases[] = {
        {"bad value", Doc("Tree", "<Branch><Part><Value>x</Value></Part></Branch>"),
         "Failed to process the element.\nPath: /Tree/Branch/Part",
         "Failed to process the element.\nPath: /Tree/Branch/Part\n"
         "The value [x] can not be converted to a i4"},
        {"missing value", Doc("Tree", "<Branch><Part/></Branch>"),
         "Failed to find the required child element [Value].\nPath: /Tree/Branch/Part",
         "Failed to find the required child element [Value].\nPath: /Tree/Branch/Part"},
        {"missing part", Doc("Tree", "<Branch/>"),
         "Failed to find the required child element [Part].\nPath: /Tree/Branch",
         "Failed to find the required child element [Part].\nPath: /Tree/Branch"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        CTree tree;
        // Outer levels pass the innermost failure on as a plain exception.
        KxTest::ExpectKxError<CKxException>([&] { tree.FromXml(c.xml.c_str()); }, c.message);
        CTree again;
        EXPECT_EQ(ReadFailure(again, c.xml), c.full);
    }

    CTree tree;
    tree.m_branch->m_part->m_hasValue = false;
    EXPECT_EQ(Written(tree),
              "error: Failed to convert the element [Tree] to XML\n"
              "Failed to convert the element [Branch] to XML\n"
              "Failed to convert the element [Part] to XML\n"
              "The Property [Value] is mandatory, it may not be NULL");
}

TEST(CElementInfoCls, OptionalChildThatFailsToReadIsNotKept) {
    const std::string head = "<Part><Value>1</Value></Part>";
    struct Case { const char* name; std::string body; } cases[] = {
        {"class", head + "<OptPart><Value>x</Value></OptPart>" + kCar},
        {"abstract class", head + kCar + "<Shape xsi:type=\"Circle\"><Radius>x</Radius></Shape>"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        CSeqHolder holder;
        EXPECT_NE(ReadFailure(holder, Doc("SeqHolder", c.body)), "");
        EXPECT_EQ(holder.m_optPart, nullptr);
        EXPECT_EQ(holder.m_shape, nullptr);
    }
}

TEST(CElementInfoCls, ToleranceOptionsApplyToClassMembers) {
    CSerializationContext skipUnknown;
    skipUnknown.SetIgnoreUnknownElements(true);
    CSerializationContext skipMissing;
    skipMissing.SetIgnoreMissingMandatoryElements(true);
    struct Case {
        const char* name;
        const CSerializationContext* ctx;
        std::string body;
        long part;      // the Part's value after reading, -1 when it was not read
        bool vehicle;   // whether a vehicle was read
    } cases[] = {
        {"unknown elements skipped", &skipUnknown,
         "<Junk/><Part><Value>1</Value></Part><Junk><Car/></Junk>" + std::string(kCar) +
             "<Junk/>",
         1, true},
        {"missing class member left unset", &skipMissing, kCar, -1, true},
        {"missing abstract member left unset", &skipMissing, "<Part><Value>1</Value></Part>", 1,
         false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        CSeqHolder holder;
        ASSERT_EQ(ReadFailure(holder, Doc("SeqHolder", c.body), *c.ctx), "");
        EXPECT_EQ(holder.m_part->m_hasValue, c.part != -1);
        if (c.part != -1) {
            EXPECT_EQ(holder.m_part->m_value, c.part);
        }
        EXPECT_EQ(holder.m_vehicle != nullptr, c.vehicle);
    }
    // What was skipped while reading is missing when writing.
    CSeqHolder partial;
    partial.FromXml(Doc("SeqHolder", "<Part><Value>1</Value></Part>").c_str(), skipMissing);
    EXPECT_EQ(Written(partial), "error: Failed to convert the element [SeqHolder] to XML\n"
                                "The Property [Vehicle] is mandatory, it may not be NULL");
}

TEST(CElementInfoCls, GroupClassAttributesGoOnTheParentElement) {
    for (const std::string attributes : {" id=\"7\"", " unit=\"cm\" id=\"7\""}) {
        SCOPED_TRACE(attributes);
        ExpectRoundTrip(Make<CBox>(),
                        Doc("Box", "<Name>b</Name><Width>2</Width><Height>3</Height>",
                            attributes),
                        Out("Box", "<AA:Name>b</AA:Name><AA:Width>2</AA:Width><AA:Height>3"
                                   "</AA:Height>", attributes));
    }
    CBox missing;
    EXPECT_EQ(ReadFailure(missing, Doc("Box", "<Name>b</Name><Width>2</Width>")),
              "Failed to find the required child element [Height].\nPath: /Box");
}

TEST(CElementInfoCls, UnqualifiedLocalElementsRoundTrip) {
    const std::string in = Doc("Box",
                               "<Name>b</Name><Width>1</Width><Height>2</Height>"
                               "<Comment xmlns=\"\">c</Comment>"
                               "<LocalPart xmlns=\"\"><Value xmlns=\"urn:kx:test\">5</Value>"
                               "</LocalPart>");
    CBox box;
    ASSERT_EQ(ReadFailure(box, in), "");
    EXPECT_EQ(box.m_comment, "c");
    ASSERT_NE(box.m_localPart, nullptr);
    EXPECT_EQ(box.m_localPart->m_value, 5);
    const std::string prefixed = Out(
        "Box", "<AA:Name>b</AA:Name><AA:Width>1</AA:Width><AA:Height>2</AA:Height>"
               "<Comment>c</Comment><LocalPart><AA:Value>5</AA:Value></LocalPart>");
    EXPECT_EQ(Written(box), prefixed);

    // Under a default namespace the unqualified elements must undeclare it.
    CSerializationContext ctx;
    ctx.SetDefaultNamespaceURI("urn:kx:test");
    const std::string defaulted = Written(box, ctx);
    EXPECT_EQ(defaulted,
              "<Box xmlns=\"urn:kx:test\"><Name>b</Name><Width>1</Width><Height>2</Height>"
              "<Comment xmlns=\"\">c</Comment><LocalPart xmlns=\"\"><AA:Value "
              "xmlns:AA=\"urn:kx:test\">5</AA:Value></LocalPart></Box>");
    for (const std::string& text : {prefixed, defaulted}) {
        SCOPED_TRACE(text);
        CBox again;
        ASSERT_EQ(ReadFailure(again, text), "");
        EXPECT_EQ(Written(again), prefixed);
    }

    // A qualified Comment is not the unqualified member.
    CBox qualified;
    EXPECT_EQ(ReadFailure(qualified,
                          Doc("Box", "<Name>b</Name><Width>1</Width><Height>2</Height>"
                                     "<Comment>c</Comment>")),
              "Failed read all the elements held within the element [Box]. The unexpected "
              "element [Comment] remains un processed\nPath: /Box");
}

TEST(CElementInfoCls, NillableMembersReadAndWriteNil) {
    CNilHolder holder;
    ASSERT_EQ(ReadFailure(holder, Doc("NilHolder", "<Maybe xsi:nil=\"TRUE\"/><Plain "
                                                   "xsi:nil=\"1\"/>")),
              "");
    // The nillable class is nil itself; the plain class's member becomes nil.
    EXPECT_TRUE(holder.m_maybe->IsNil());
    EXPECT_TRUE(holder.m_plainNil);
    const std::string nil = " xmlns:AB=\"" + kXsi + "\" AB:nil=\"true\"";
    const std::string allNil = Out("NilHolder", "<AA:Maybe" + nil + "/><AA:Plain" + nil + "/>");
    // A nil object has no content to write.
    EXPECT_EQ(Written(holder), allNil);

    CNilHolder plainNil;
    plainNil.m_maybe->m_value = 1;
    plainNil.m_maybe->m_hasValue = true;
    plainNil.m_plainNil = true;
    EXPECT_EQ(Written(plainNil), Out("NilHolder", Part("Maybe", 1) + "<AA:Plain" + nil + "/>"));

    CNilHolder bothNil;
    bothNil.m_maybe->SetNil(true);
    bothNil.m_plainNil = true;
    EXPECT_EQ(Written(bothNil), allNil);
}

TEST(CElementInfoUntpd, WildcardMembersReadAndWriteBack) {
    const std::string other = "<o:X xmlns:o=\"urn:o\" a=\"1\"><o:Y>t</o:Y></o:X>";
    const std::string otherOut = "<AB:X xmlns:AB=\"urn:o\" a=\"1\"><AB:Y>t</AB:Y></AB:X>";
    const std::string extra = "<e:E xmlns:e=\"urn:kx:extra\">";
    const std::string extraOut = "<AB:E xmlns:AB=\"urn:kx:extra\"";
    struct Case { const char* name; Factory make; std::string in; std::string out; } cases[] = {
        {"sequence, every kind", Make<CAnySeq>(),
         Doc("AnySeq", "<Head>h</Head>" + other + "<L xmlns=\"\">l</L>" + extra + "1</e:E>" +
                           extra + "2</e:E>"),
         Out("AnySeq", "<AA:Head>h</AA:Head>" + otherOut + "<L>l</L>" + extraOut + ">1</AB:E>" +
                           extraOut + ">2</AB:E>")},
        {"sequence, mandatory only", Make<CAnySeq>(), Doc("AnySeq", "<Head>h</Head>" + other),
         Out("AnySeq", "<AA:Head>h</AA:Head>" + otherOut)},
        {"choice, single branch", Make<CAnyChoice>(),
         Doc("AnyChoice", "<n:One xmlns:n=\"urn:kx:one\"/>"),
         Out("AnyChoice", "<AB:One xmlns:AB=\"urn:kx:one\"/>")},
        {"choice, repeated branch", Make<CAnyChoice>(),
         Doc("AnyChoice", extra + "1</e:E>" + extra + "2</e:E>"),
         Out("AnyChoice", extraOut + ">1</AB:E>" + extraOut + ">2</AB:E>")},
        {"all, any order", Make<CAnyAll>(),
         Doc("AnyAll", extra + "1</e:E><L xmlns=\"\"/><n:One xmlns:n=\"urn:kx:one\"/>"),
         Out("AnyAll", "<AB:One xmlns:AB=\"urn:kx:one\"/><L/>" + extraOut + ">1</AB:E>")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ExpectRoundTrip(c.make, c.in, c.out);
    }
}
