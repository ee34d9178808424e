// Sample bindings of examples/test-schema.xsd (namespace urn:kx:test), in the shape the code
// generator emits: static records, one property accessor per class, a class factory and the
// collections of class members. They exercise every class, abstract-class and untyped record
// kind: nested classes, a substitution group, derived types chosen by xsi:type, a content-only
// group class with attributes, nillable children, an unqualified local element and wildcards.
#ifndef KX_EXAMPLES_TESTSCHEMABINDINGS_H
#define KX_EXAMPLES_TESTSCHEMABINDINGS_H

#include <string>

#include "KxXmlLib16.h"

namespace KxTestSchema {

using namespace KxXmlLib16;

// The schema's target namespace.
extern const char* const kTestNs;

// Class ids handed to the factory by the class-member records.
enum ClassId {
    Class_Part = 1,
    Class_NilPart,
    Class_Shape,  // abstract
    Class_Circle,
    Class_Square,
    Class_Vehicle,  // abstract head of the substitution group
    Class_Car,
    Class_Bike,
    Class_Dimensions,
    Class_Branch,
};

// The four metadata getters, Clone and the accessor that every generated class supplies.
#define KX_TS_GENERATED_CLASS(Class)                                                   \
    Class* Clone() const override;                                                     \
    KxXmlLib16Data::CParentElementInfo* GetClassInfo() const override;                 \
    KxXmlLib16Data::CElementInfo** GetClassElementInfo() const override;               \
    KxXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const override;           \
    void InvokeProperty(int memberId, bool get, KxVariant& value) override;

// The schema's class factory: the create-by-class and create-from-element functions the
// class-member records call.
class CTestSchemaFactory : public CClassfactoryBase {
public:
    // A new object of the declared class `classId` named `elementName` (null keeps the class's
    // own name); null for an abstract or unknown class id.
    static CSmartPtr<CXmlObjectBase> CreateByClass(int classId, const char* elementName);
    // The class for an element of an abstract member: a substitution-group member by its
    // element name (Car, Bike), a derived type by its xsi:type (which must derive from the
    // element's declared type). Null when none fits (an unknown element, an abstract element
    // without xsi:type, a type from another namespace or of another family).
    static CSmartPtr<CXmlObjectBase> CreateFromElement(CXmlElement* element);
    // CreateFromElement restricted to one family (null for an object of another): the
    // functions the records and collections of Shape and Vehicle members use, so that a member
    // never takes an element that stands for a member of another type.
    static CSmartPtr<CXmlObjectBase> CreateShapeFromElement(CXmlElement* element);
    static CSmartPtr<CXmlObjectBase> CreateVehicleFromElement(CXmlElement* element);
};

// <Part code="..."> Value (int), Note? (string) </Part>
class CPart : public CXmlGeneratedClass {
public:
    enum MemberId { Id_Value = 1, Id_Note, Id_Code };
    explicit CPart(const char* elementName = "Part");
    KX_TS_GENERATED_CLASS(CPart)
    bool operator==(const CPart& other) const;

    long m_value = 0;
    bool m_hasValue = false;
    std::string m_note;
    bool m_hasNote = false;
    std::string m_code;
    bool m_hasCode = false;
};

// A nillable class: <NilPart xsi:nil="true"/> or <NilPart> Value </NilPart>.
class CNilPart : public CXmlGeneratedClass, public INillable {
public:
    enum MemberId { Id_Value = 1 };
    explicit CNilPart(const char* elementName = "NilPart");
    KX_TS_GENERATED_CLASS(CNilPart)
    bool IsNil() const override { return m_nil; }
    void SetNil(bool nil) override { m_nil = nil; }
    bool operator==(const CNilPart& other) const;

    long m_value = 0;
    bool m_hasValue = false;
    bool m_nil = false;
};

// Abstract type Shape: Label? (string). Its derived types Circle and Square are written with
// xsi:type when they stand under another element name.
class CShape : public CXmlGeneratedClass {
public:
    enum MemberId { Id_Label = 1, Id_Size };
    CShape* Clone() const override = 0;
    virtual bool Equals(const CShape& other) const;
    bool operator==(const CShape& other) const { return Equals(other); }

    std::string m_label;
    bool m_hasLabel = false;
    long m_size = 0;  // Circle's Radius, Square's Side
    bool m_hasSize = false;

protected:
    void InvokeShapeProperty(int memberId, bool get, KxVariant& value);
};
// Circle: Label?, Radius (int).
class CCircle : public CShape {
public:
    explicit CCircle(const char* elementName = "Circle");
    KX_TS_GENERATED_CLASS(CCircle)
};
// Square: Label?, Side (int).
class CSquare : public CShape {
public:
    explicit CSquare(const char* elementName = "Square");
    KX_TS_GENERATED_CLASS(CSquare)
};

// Abstract head element Vehicle (Make); substitution-group members Car (Make, Seats) and Bike
// (Make, Gears), each written under its own element name.
class CVehicle : public CXmlGeneratedClass {
public:
    enum MemberId { Id_Make = 1, Id_Count };
    CVehicle* Clone() const override = 0;
    virtual bool Equals(const CVehicle& other) const;
    bool operator==(const CVehicle& other) const { return Equals(other); }

    std::string m_make;
    bool m_hasMake = false;
    long m_count = 0;  // Car's Seats, Bike's Gears
    bool m_hasCount = false;

protected:
    void InvokeVehicleProperty(int memberId, bool get, KxVariant& value);
};
class CCar : public CVehicle {
public:
    CCar();
    KX_TS_GENERATED_CLASS(CCar)
};
class CBike : public CVehicle {
public:
    CBike();
    KX_TS_GENERATED_CLASS(CBike)
};

// A content-only group class (no element of its own): Width, Height (int), attribute unit?,
// all written into the enclosing element.
class CDimensions : public CXmlGeneratedClass {
public:
    enum MemberId { Id_Width = 1, Id_Height, Id_Unit };
    CDimensions();
    KX_TS_GENERATED_CLASS(CDimensions)
    bool operator==(const CDimensions& other) const;

    long m_width = 0, m_height = 0;
    bool m_hasWidth = false, m_hasHeight = false;
    std::string m_unit;
    bool m_hasUnit = false;
};

// Collections of class members.
class CPartCol : public CXmlCollection {
public:
    CPartCol(const char* elementName, int minOccurs, int maxOccurs);
    CPartCol* Clone() const override;
    // A new CPart named after the collection (the element is not looked at).
    CSmartPtr<CXmlObjectBase> CreateItem(CXmlElement* element) override;
    void Add(CPart* item) { AppendItem(item); }
    CPart* GetItem(int index) const;
    bool operator==(const CPartCol& other) const;
};
class CShapeCol : public CXmlCollection {
public:
    CShapeCol(const char* elementName, int minOccurs, int maxOccurs);
    CShapeCol* Clone() const override;
    // The factory's shape for the element; null when it is not a shape.
    CSmartPtr<CXmlObjectBase> CreateItem(CXmlElement* element) override;
    void Add(CShape* item) { AppendItem(item); }
    CShape* GetItem(int index) const;
    bool operator==(const CShapeCol& other) const;
};
class CVehicleCol : public CXmlCollection {
public:
    CVehicleCol(const char* elementName, int minOccurs, int maxOccurs);
    CVehicleCol* Clone() const override;
    // The factory's vehicle for the element; null when it is not a vehicle.
    CSmartPtr<CXmlObjectBase> CreateItem(CXmlElement* element) override;
    void Add(CVehicle* item) { AppendItem(item); }
    CVehicle* GetItem(int index) const;
    bool operator==(const CVehicleCol& other) const;
};

// <SeqHolder> Part, OptPart?, ListPart*, Vehicle (substitution), Shape? (xsi:type),
// ShapeItem* (xsi:type) </SeqHolder>
class CSeqHolder : public CXmlGeneratedClass {
public:
    enum MemberId { Id_Part = 1, Id_OptPart, Id_ListPart, Id_Vehicle, Id_Shape, Id_ShapeItem };
    CSeqHolder();
    CSeqHolder(const CSeqHolder& other);
    KX_TS_GENERATED_CLASS(CSeqHolder)
    bool operator==(const CSeqHolder& other) const;

    CSmartPtr<CPart> m_part;  // mandatory: created with the object
    CSmartPtr<CPart> m_optPart;
    CSmartPtr<CPartCol> m_listPart;
    CSmartPtr<CVehicle> m_vehicle;  // mandatory, abstract: null until set
    CSmartPtr<CShape> m_shape;
    CSmartPtr<CShapeCol> m_shapeItem;
};

// <ChoiceHolder> (Part | ListPart+ | Shape | Vehicle+) </ChoiceHolder>
class CChoiceHolder : public CXmlGeneratedClass {
public:
    enum MemberId { Id_Part = 1, Id_ListPart, Id_Shape, Id_Vehicle };
    CChoiceHolder();
    CChoiceHolder(const CChoiceHolder& other);
    KX_TS_GENERATED_CLASS(CChoiceHolder)
    bool operator==(const CChoiceHolder& other) const;

    CSmartPtr<CPart> m_part;
    CSmartPtr<CPartCol> m_listPart;
    CSmartPtr<CShape> m_shape;
    CSmartPtr<CVehicleCol> m_vehicle;
};

// <AllHolder> all of: Part, OptPart?, ListPart*, Vehicle, Shape?, ShapeItem* </AllHolder>
class CAllHolder : public CXmlGeneratedClass {
public:
    enum MemberId { Id_Part = 1, Id_OptPart, Id_ListPart, Id_Vehicle, Id_Shape, Id_ShapeItem };
    CAllHolder();
    CAllHolder(const CAllHolder& other);
    KX_TS_GENERATED_CLASS(CAllHolder)
    bool operator==(const CAllHolder& other) const;

    CSmartPtr<CPart> m_part;
    CSmartPtr<CPart> m_optPart;
    CSmartPtr<CPartCol> m_listPart;
    CSmartPtr<CVehicle> m_vehicle;
    CSmartPtr<CShape> m_shape;
    CSmartPtr<CShapeCol> m_shapeItem;
};

// Three levels: <Tree> Branch </Tree>, <Branch> Part </Branch>, Part's Value.
class CBranch : public CXmlGeneratedClass {
public:
    enum MemberId { Id_Part = 1 };
    CBranch();
    CBranch(const CBranch& other);
    KX_TS_GENERATED_CLASS(CBranch)

    CSmartPtr<CPart> m_part;
};
class CTree : public CXmlGeneratedClass {
public:
    enum MemberId { Id_Branch = 1 };
    CTree();
    CTree(const CTree& other);
    KX_TS_GENERATED_CLASS(CTree)

    CSmartPtr<CBranch> m_branch;
};

// <Box id="..." unit="..."> Name, (Width, Height) of the group class, Comment? and LocalPart?
// both unqualified </Box>
class CBox : public CXmlGeneratedClass {
public:
    enum MemberId { Id_Name = 1, Id_Dimensions, Id_Comment, Id_LocalPart, Id_Id };
    CBox();
    CBox(const CBox& other);
    KX_TS_GENERATED_CLASS(CBox)

    std::string m_name;
    bool m_hasName = false;
    CSmartPtr<CDimensions> m_dimensions;
    std::string m_comment;
    bool m_hasComment = false;
    CSmartPtr<CPart> m_localPart;
    std::string m_id;
    bool m_hasId = false;
};

// <NilHolder> Maybe (a nillable class), Plain (a Part in a nillable element) </NilHolder>
class CNilHolder : public CXmlGeneratedClass {
public:
    enum MemberId { Id_Maybe = 1, Id_Plain };
    CNilHolder();
    CNilHolder(const CNilHolder& other);
    KX_TS_GENERATED_CLASS(CNilHolder)

    CSmartPtr<CNilPart> m_maybe;
    CSmartPtr<CPart> m_plain;
    bool m_plainNil = false;
};

// Wildcards. <AnySeq> Head, any ##other, any ##local?, any urn:kx:extra* </AnySeq>
class CAnySeq : public CXmlGeneratedClass {
public:
    enum MemberId { Id_Head = 1, Id_Other, Id_Local, Id_Extra };
    CAnySeq();
    CAnySeq(const CAnySeq& other);
    KX_TS_GENERATED_CLASS(CAnySeq)

    std::string m_head;
    bool m_hasHead = false;
    CSmartPtr<CElement> m_other;
    CSmartPtr<CElement> m_local;
    CSmartPtr<CElementCol> m_extra;
};
// <AnyChoice> (any urn:kx:one | any urn:kx:extra+) </AnyChoice>
class CAnyChoice : public CXmlGeneratedClass {
public:
    enum MemberId { Id_One = 1, Id_Extra };
    CAnyChoice();
    CAnyChoice(const CAnyChoice& other);
    KX_TS_GENERATED_CLASS(CAnyChoice)

    CSmartPtr<CElement> m_one;
    CSmartPtr<CElementCol> m_extra;
};
// <AnyAll> all of: any urn:kx:one, any ##local?, any urn:kx:extra* </AnyAll>
class CAnyAll : public CXmlGeneratedClass {
public:
    enum MemberId { Id_One = 1, Id_Local, Id_Extra };
    CAnyAll();
    CAnyAll(const CAnyAll& other);
    KX_TS_GENERATED_CLASS(CAnyAll)

    CSmartPtr<CElement> m_one;
    CSmartPtr<CElement> m_local;
    CSmartPtr<CElementCol> m_extra;
};

#undef KX_TS_GENERATED_CLASS

// Enters the schema's names in a Fast Infoset vocabulary, as generated code does once at
// start-up (see CFastInfosetContext::GetVocabulary and SetUseGeneratedVocabulary): the element
// names of urn:kx:test under `prefix` (the writer's prefix of that namespace, "" when it is the
// default namespace), the unqualified elements Comment and LocalPart, the unqualified
// attributes, and xsi:type and xsi:nil under "xsi". The wildcards' foreign names are not part
// of the schema and stay out. Never throws.
void AddTestSchemaVocabulary(CFIVocabulary& vocabulary, const char* prefix = "");

}  // namespace KxTestSchema

#endif
