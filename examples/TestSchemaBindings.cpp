// The records, accessors, collections and factory of the test schema bindings.
#include "TestSchemaBindings.h"

#include <typeinfo>

namespace KxTestSchema {

using namespace KxXmlLib16Data;

const char* const kTestNs = "urn:kx:test";

namespace {

const char* const kExtraNs = "urn:kx:extra";
const char* const kOneNs = "urn:kx:one";
const CWhitespaceUtils::WhitespaceRule kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;
const CWhitespaceUtils::WhitespaceRule kPreserve = CWhitespaceUtils::WhitespaceRule_Preserve;

void GetString(KxVariant& value, const std::string& field, bool isSet) {
    value.Clear();
    if (isSet) value.SetString(field);
}
void SetString(const KxVariant& value, std::string& field, bool& isSet) {
    isSet = value.IsValid() && !value.IsNil();
    field = isSet ? value.GetString() : std::string();
}
void GetLong(KxVariant& value, long field, bool isSet) {
    value.Clear();
    if (isSet) value.SetI4(field);
}
void SetLong(const KxVariant& value, long& field, bool& isSet) {
    isSet = value.IsValid() && !value.IsNil();
    field = isSet ? value.GetI4() : 0;
}

template <typename T>
void GetObject(KxVariant& value, const CSmartPtr<T>& field) {
    value.Clear();
    if (field) value.SetXmlObject(field.Ptr());
}
// Stores the variant's object (null when unset or nil); an object of another class is refused.
template <typename T>
void SetObject(const KxVariant& value, CSmartPtr<T>& field) {
    CXmlObjectBase* raw = value.IsValid() && !value.IsNil() ? value.GetXmlObject() : nullptr;
    CSmartPtr<CXmlObjectBase> held(raw);
    if (raw) raw->Release();
    T* typed = dynamic_cast<T*>(raw);
    if (raw && !typed)
        throw CKxInvalidParamException(
            FormatString("The element [%s] is of the wrong class for this member",
                         raw->GetElementName().c_str()));
    field = typed;
}
// Collections are created with their owner and never replaced.
void GetCollection(KxVariant& value, bool get, CXmlCollectionBase* collection) {
    if (!get) throw CKxInvalidParamException("A collection member cannot be replaced");
    value.SetXmlCollection(collection);
}

template <typename T>
CSmartPtr<T> CloneOf(const CSmartPtr<T>& object) {
    return object ? CSmartPtr<T>(object->Clone()) : CSmartPtr<T>();
}
template <typename T>
bool SameObject(const CSmartPtr<T>& a, const CSmartPtr<T>& b) {
    if (!a || !b) return !a && !b;
    return *a == *b;
}
template <typename Col, typename Item>
bool SameItems(const Col& a, const Col& b) {
    if (a.GetCount() != b.GetCount()) return false;
    for (int i = 0; i < a.GetCount(); ++i)
        if (!(*static_cast<Item*>(a.GetItem(i)) == *static_cast<Item*>(b.GetItem(i)))) return false;
    return true;
}

CAttributeInfo** NoAttributes() {
    static CAttributeInfo* infos[] = {nullptr};
    return infos;
}

// The record of a sequence class with an element of its own and strict attributes.
CParentElementInfo SequenceInfo(const char* name) {
    return CParentElementInfo(XmlElementGroupType_Sequence, XmlElementType_Element, name,
                                  kTestNs, true, false, -1, ItemType_Invalid, nullptr, false);
}

// The declared class of an element that may stand for an abstract member.
int DeclaredClassOf(const std::string& name) {
    if (name == "Car") return Class_Car;
    if (name == "Bike") return Class_Bike;
    if (name == "Vehicle") return Class_Vehicle;
    if (name == "Shape" || name == "ShapeItem") return Class_Shape;
    return 0;
}
int TypeClassOf(const std::string& typeName) {
    if (typeName == "Circle") return Class_Circle;
    if (typeName == "Square") return Class_Square;
    if (typeName == "CarType") return Class_Car;
    if (typeName == "BikeType") return Class_Bike;
    return 0;
}
bool DerivesFrom(int derived, int base) {
    if (derived == base) return true;
    if (base == Class_Shape) return derived == Class_Circle || derived == Class_Square;
    if (base == Class_Vehicle) return derived == Class_Car || derived == Class_Bike;
    return false;
}

}  // namespace

// ---- factory -----------------------------------------------------------------------------------

CSmartPtr<CXmlObjectBase> CTestSchemaFactory::CreateByClass(int classId, const char* elementName) {
    CXmlObjectBase* created = nullptr;
    switch (classId) {
    case Class_Part: created = new CPart(); break;
    case Class_NilPart: created = new CNilPart(); break;
    case Class_Circle: created = new CCircle(); break;
    case Class_Square: created = new CSquare(); break;
    case Class_Car: created = new CCar(); break;
    case Class_Bike: created = new CBike(); break;
    case Class_Dimensions: created = new CDimensions(); break;
    case Class_Branch: created = new CBranch(); break;
    default: return nullptr;
    }
    if (elementName) created->SetElementName(elementName);
    return CSmartPtr<CXmlObjectBase>(created);
}

// The object keeps its class's own element name: a substitution-group member is thus named
// after its element, and reading renames any object after the element it came from.
CSmartPtr<CXmlObjectBase> CTestSchemaFactory::CreateFromElement(CXmlElement* element) {
    if (!element || element->GetNamespaceURI() != kTestNs) return nullptr;
    const int declared = DeclaredClassOf(element->GetLocalName());
    if (declared == 0) return nullptr;
    int chosen = declared;
    const std::string type = GetElementType(element);
    if (!type.empty()) {
        if (GetElementTypeNamespaceUri(element) != kTestNs) return nullptr;
        chosen = TypeClassOf(type);
        if (chosen == 0 || !DerivesFrom(chosen, declared)) return nullptr;
    }
    return CreateByClass(chosen, nullptr);
}

CSmartPtr<CXmlObjectBase> CTestSchemaFactory::CreateShapeFromElement(CXmlElement* element) {
    CSmartPtr<CXmlObjectBase> created = CreateFromElement(element);
    return dynamic_cast<CShape*>(created.Ptr()) ? created : nullptr;
}

CSmartPtr<CXmlObjectBase> CTestSchemaFactory::CreateVehicleFromElement(CXmlElement* element) {
    CSmartPtr<CXmlObjectBase> created = CreateFromElement(element);
    return dynamic_cast<CVehicle*>(created.Ptr()) ? created : nullptr;
}

// ---- CPart -------------------------------------------------------------------------------------

CPart::CPart(const char* elementName) { SetElementName(elementName); }
CPart* CPart::Clone() const { return new CPart(*this); }
bool CPart::operator==(const CPart& o) const {
    return GetElementName() == o.GetElementName() && m_hasValue == o.m_hasValue &&
           m_value == o.m_value && m_hasNote == o.m_hasNote && m_note == o.m_note &&
           m_hasCode == o.m_hasCode && m_code == o.m_code;
}
CParentElementInfo* CPart::GetClassInfo() const {
    static CParentElementInfo info = SequenceInfo("Part");
    return &info;
}
CElementInfo** CPart::GetClassElementInfo() const {
    static CElementInfoSeqPrimMnd value("Value", kTestNs, Id_Value, false, ItemType_i4, nullptr,
                                        kCollapse, CPrimitiveRestrictions(), nullptr);
    static CElementInfoSeqPrimOpt note("Note", kTestNs, Id_Note, false, ItemType_string, nullptr,
                                       kPreserve, CPrimitiveRestrictions(), nullptr);
    static CElementInfo* infos[] = {&value, &note, nullptr};
    return infos;
}
CAttributeInfo** CPart::GetClassAttributeInfo() const {
    static CAttributeInfoPrimitive code("code", "", Id_Code, true, ItemType_string, nullptr,
                                        kCollapse, CPrimitiveRestrictions(), nullptr);
    static CAttributeInfo* infos[] = {&code, nullptr};
    return infos;
}
void CPart::InvokeProperty(int memberId, bool get, KxVariant& value) {
    switch (memberId) {
    case Id_Value:
        get ? GetLong(value, m_value, m_hasValue) : SetLong(value, m_value, m_hasValue);
        break;
    case Id_Note:
        get ? GetString(value, m_note, m_hasNote) : SetString(value, m_note, m_hasNote);
        break;
    case Id_Code:
        get ? GetString(value, m_code, m_hasCode) : SetString(value, m_code, m_hasCode);
        break;
    default: throw CKxInvalidParamException("Unknown member id");
    }
}

// ---- CNilPart ----------------------------------------------------------------------------------

CNilPart::CNilPart(const char* elementName) { SetElementName(elementName); }
CNilPart* CNilPart::Clone() const { return new CNilPart(*this); }
bool CNilPart::operator==(const CNilPart& o) const {
    return m_nil == o.m_nil && m_hasValue == o.m_hasValue && m_value == o.m_value;
}
CParentElementInfo* CNilPart::GetClassInfo() const {
    static CParentElementInfo info = SequenceInfo("NilPart");
    return &info;
}
CElementInfo** CNilPart::GetClassElementInfo() const {
    static CElementInfoSeqPrimMnd value("Value", kTestNs, Id_Value, false, ItemType_i4, nullptr,
                                        kCollapse, CPrimitiveRestrictions(), nullptr);
    static CElementInfo* infos[] = {&value, nullptr};
    return infos;
}
CAttributeInfo** CNilPart::GetClassAttributeInfo() const { return NoAttributes(); }
void CNilPart::InvokeProperty(int memberId, bool get, KxVariant& value) {
    if (memberId != Id_Value) throw CKxInvalidParamException("Unknown member id");
    get ? GetLong(value, m_value, m_hasValue) : SetLong(value, m_value, m_hasValue);
}

// ---- shapes ------------------------------------------------------------------------------------

bool CShape::Equals(const CShape& o) const {
    return typeid(*this) == typeid(o) && GetElementName() == o.GetElementName() &&
           m_hasLabel == o.m_hasLabel && m_label == o.m_label && m_hasSize == o.m_hasSize &&
           m_size == o.m_size;
}
void CShape::InvokeShapeProperty(int memberId, bool get, KxVariant& value) {
    switch (memberId) {
    case Id_Label:
        get ? GetString(value, m_label, m_hasLabel) : SetString(value, m_label, m_hasLabel);
        break;
    case Id_Size:
        get ? GetLong(value, m_size, m_hasSize) : SetLong(value, m_size, m_hasSize);
        break;
    default: throw CKxInvalidParamException("Unknown member id");
    }
}

// A derived shape's records: the inherited Label, then its own int member.
#define KX_TS_SHAPE(Class, TypeName, SizeName)                                                 \
    Class::Class(const char* elementName) { SetElementName(elementName); }                    \
    Class* Class::Clone() const { return new Class(*this); }                                  \
    CParentElementInfo* Class::GetClassInfo() const {                                         \
        static CParentElementInfo info(XmlElementGroupType_Sequence, XmlElementType_Element,  \
                                       TypeName, kTestNs, true, true, -1, ItemType_Invalid,   \
                                       nullptr, false);                                       \
        return &info;                                                                         \
    }                                                                                         \
    CElementInfo** Class::GetClassElementInfo() const {                                       \
        static CElementInfoSeqPrimOpt label("Label", kTestNs, Id_Label, false,                \
                                            ItemType_string, nullptr, kPreserve,              \
                                            CPrimitiveRestrictions(), nullptr);               \
        static CElementInfoSeqPrimMnd size(SizeName, kTestNs, Id_Size, false, ItemType_i4,    \
                                           nullptr, kCollapse, CPrimitiveRestrictions(),      \
                                           nullptr);                                          \
        static CElementInfo* infos[] = {&label, &size, nullptr};                              \
        return infos;                                                                         \
    }                                                                                         \
    CAttributeInfo** Class::GetClassAttributeInfo() const { return NoAttributes(); }          \
    void Class::InvokeProperty(int memberId, bool get, KxVariant& value) {                    \
        InvokeShapeProperty(memberId, get, value);                                            \
    }
KX_TS_SHAPE(CCircle, "Circle", "Radius")
KX_TS_SHAPE(CSquare, "Square", "Side")
#undef KX_TS_SHAPE

// ---- vehicles ----------------------------------------------------------------------------------

bool CVehicle::Equals(const CVehicle& o) const {
    return typeid(*this) == typeid(o) && GetElementName() == o.GetElementName() &&
           m_hasMake == o.m_hasMake && m_make == o.m_make && m_hasCount == o.m_hasCount &&
           m_count == o.m_count;
}
void CVehicle::InvokeVehicleProperty(int memberId, bool get, KxVariant& value) {
    switch (memberId) {
    case Id_Make:
        get ? GetString(value, m_make, m_hasMake) : SetString(value, m_make, m_hasMake);
        break;
    case Id_Count:
        get ? GetLong(value, m_count, m_hasCount) : SetLong(value, m_count, m_hasCount);
        break;
    default: throw CKxInvalidParamException("Unknown member id");
    }
}

// A substitution-group member: an element of its own name, Make then its own int member.
#define KX_TS_VEHICLE(Class, ElementName, CountName)                                           \
    Class::Class() { SetElementName(ElementName); }                                           \
    Class* Class::Clone() const { return new Class(*this); }                                  \
    CParentElementInfo* Class::GetClassInfo() const {                                         \
        static CParentElementInfo info = SequenceInfo(ElementName);                           \
        return &info;                                                                         \
    }                                                                                         \
    CElementInfo** Class::GetClassElementInfo() const {                                       \
        static CElementInfoSeqPrimMnd make("Make", kTestNs, Id_Make, false, ItemType_string,  \
                                           nullptr, kPreserve, CPrimitiveRestrictions(),      \
                                           nullptr);                                          \
        static CElementInfoSeqPrimMnd count(CountName, kTestNs, Id_Count, false, ItemType_i4, \
                                            nullptr, kCollapse, CPrimitiveRestrictions(),     \
                                            nullptr);                                         \
        static CElementInfo* infos[] = {&make, &count, nullptr};                              \
        return infos;                                                                         \
    }                                                                                         \
    CAttributeInfo** Class::GetClassAttributeInfo() const { return NoAttributes(); }          \
    void Class::InvokeProperty(int memberId, bool get, KxVariant& value) {                    \
        InvokeVehicleProperty(memberId, get, value);                                          \
    }
KX_TS_VEHICLE(CCar, "Car", "Seats")
KX_TS_VEHICLE(CBike, "Bike", "Gears")
#undef KX_TS_VEHICLE

// ---- CDimensions -------------------------------------------------------------------------------

CDimensions::CDimensions() { SetElementName("Dimensions"); }
CDimensions* CDimensions::Clone() const { return new CDimensions(*this); }
bool CDimensions::operator==(const CDimensions& o) const {
    return m_hasWidth == o.m_hasWidth && m_width == o.m_width && m_hasHeight == o.m_hasHeight &&
           m_height == o.m_height && m_hasUnit == o.m_hasUnit && m_unit == o.m_unit;
}
CParentElementInfo* CDimensions::GetClassInfo() const {
    static CParentElementInfo info(XmlElementGroupType_Sequence, XmlElementType_Group,
                                   "Dimensions", kTestNs, true, false, -1, ItemType_Invalid,
                                   nullptr, false);
    return &info;
}
CElementInfo** CDimensions::GetClassElementInfo() const {
    static CElementInfoSeqPrimMnd width("Width", kTestNs, Id_Width, false, ItemType_i4, nullptr,
                                        kCollapse, CPrimitiveRestrictions(), nullptr);
    static CElementInfoSeqPrimMnd height("Height", kTestNs, Id_Height, false, ItemType_i4,
                                         nullptr, kCollapse, CPrimitiveRestrictions(), nullptr);
    static CElementInfo* infos[] = {&width, &height, nullptr};
    return infos;
}
CAttributeInfo** CDimensions::GetClassAttributeInfo() const {
    static CAttributeInfoPrimitive unit("unit", "", Id_Unit, true, ItemType_string, nullptr,
                                        kCollapse, CPrimitiveRestrictions(), nullptr);
    static CAttributeInfo* infos[] = {&unit, nullptr};
    return infos;
}
void CDimensions::InvokeProperty(int memberId, bool get, KxVariant& value) {
    switch (memberId) {
    case Id_Width:
        get ? GetLong(value, m_width, m_hasWidth) : SetLong(value, m_width, m_hasWidth);
        break;
    case Id_Height:
        get ? GetLong(value, m_height, m_hasHeight) : SetLong(value, m_height, m_hasHeight);
        break;
    case Id_Unit:
        get ? GetString(value, m_unit, m_hasUnit) : SetString(value, m_unit, m_hasUnit);
        break;
    default: throw CKxInvalidParamException("Unknown member id");
    }
}

// ---- collections -------------------------------------------------------------------------------

#define KX_TS_COLLECTION(Class, Item)                                                          \
    Class::Class(const char* elementName, int minOccurs, int maxOccurs)                       \
        : CXmlCollection(elementName, kTestNs, minOccurs, maxOccurs) {}                       \
    Class* Class::Clone() const {                                                             \
        Class* copy = new Class(GetElementName().c_str(), GetMinOccurs(), GetMaxOccurs());    \
        for (CNode* node = GetHead(); node; node = node->m_next)                              \
            copy->AppendItem(node->m_item->Clone());                                          \
        return copy;                                                                          \
    }                                                                                         \
    Item* Class::GetItem(int index) const {                                                   \
        return static_cast<Item*>(GetNodeAtIndex(index)->m_item);                             \
    }                                                                                         \
    bool Class::operator==(const Class& other) const {                                        \
        return SameItems<Class, Item>(*this, other);                                          \
    }
KX_TS_COLLECTION(CPartCol, CPart)
KX_TS_COLLECTION(CShapeCol, CShape)
KX_TS_COLLECTION(CVehicleCol, CVehicle)
#undef KX_TS_COLLECTION

CSmartPtr<CXmlObjectBase> CPartCol::CreateItem(CXmlElement*) {
    return CSmartPtr<CXmlObjectBase>(new CPart(GetElementName().c_str()));
}
CSmartPtr<CXmlObjectBase> CShapeCol::CreateItem(CXmlElement* element) {
    return CTestSchemaFactory::CreateShapeFromElement(element);
}
CSmartPtr<CXmlObjectBase> CVehicleCol::CreateItem(CXmlElement* element) {
    return CTestSchemaFactory::CreateVehicleFromElement(element);
}

// ---- CSeqHolder --------------------------------------------------------------------------------

CSeqHolder::CSeqHolder()
    : m_part(new CPart("Part")), m_listPart(new CPartCol("ListPart", 0, -1)),
      m_shapeItem(new CShapeCol("ShapeItem", 0, -1)) {
    SetElementName("SeqHolder");
}
CSeqHolder::CSeqHolder(const CSeqHolder& o)
    : CXmlGeneratedClass(o), m_part(CloneOf(o.m_part)), m_optPart(CloneOf(o.m_optPart)),
      m_listPart(o.m_listPart->Clone()), m_vehicle(CloneOf(o.m_vehicle)),
      m_shape(CloneOf(o.m_shape)), m_shapeItem(o.m_shapeItem->Clone()) {}
CSeqHolder* CSeqHolder::Clone() const { return new CSeqHolder(*this); }
bool CSeqHolder::operator==(const CSeqHolder& o) const {
    return SameObject(m_part, o.m_part) && SameObject(m_optPart, o.m_optPart) &&
           *m_listPart == *o.m_listPart && SameObject(m_vehicle, o.m_vehicle) &&
           SameObject(m_shape, o.m_shape) && *m_shapeItem == *o.m_shapeItem;
}
CParentElementInfo* CSeqHolder::GetClassInfo() const {
    static CParentElementInfo info = SequenceInfo("SeqHolder");
    return &info;
}
CElementInfo** CSeqHolder::GetClassElementInfo() const {
    static CElementInfoSeqClsMnd part("Part", kTestNs, Id_Part, XmlElementType_Element,
                                      &CTestSchemaFactory::CreateByClass, Class_Part, false);
    static CElementInfoSeqClsOpt optPart("OptPart", kTestNs, Id_OptPart, XmlElementType_Element,
                                         &CTestSchemaFactory::CreateByClass, Class_Part);
    static CElementInfoSeqClsCol listPart("ListPart", kTestNs, Id_ListPart,
                                          XmlElementType_Element);
    static CElementInfoSeqAbsClsMnd vehicle("Vehicle", kTestNs, Id_Vehicle,
                                            XmlElementType_Element,
                                            &CTestSchemaFactory::CreateVehicleFromElement,
                                            Class_Vehicle);
    static CElementInfoSeqAbsClsOpt shape("Shape", kTestNs, Id_Shape, XmlElementType_Element,
                                          &CTestSchemaFactory::CreateShapeFromElement);
    static CElementInfoSeqAbsClsCol shapeItem("ShapeItem", kTestNs, Id_ShapeItem,
                                              XmlElementType_Element);
    static CElementInfo* infos[] = {&part, &optPart, &listPart, &vehicle, &shape, &shapeItem,
                                    nullptr};
    return infos;
}
CAttributeInfo** CSeqHolder::GetClassAttributeInfo() const { return NoAttributes(); }
void CSeqHolder::InvokeProperty(int memberId, bool get, KxVariant& value) {
    switch (memberId) {
    case Id_Part: get ? GetObject(value, m_part) : SetObject(value, m_part); break;
    case Id_OptPart: get ? GetObject(value, m_optPart) : SetObject(value, m_optPart); break;
    case Id_ListPart: GetCollection(value, get, m_listPart); break;
    case Id_Vehicle: get ? GetObject(value, m_vehicle) : SetObject(value, m_vehicle); break;
    case Id_Shape: get ? GetObject(value, m_shape) : SetObject(value, m_shape); break;
    case Id_ShapeItem: GetCollection(value, get, m_shapeItem); break;
    default: throw CKxInvalidParamException("Unknown member id");
    }
}

// ---- CChoiceHolder -----------------------------------------------------------------------------

CChoiceHolder::CChoiceHolder()
    : m_listPart(new CPartCol("ListPart", 1, -1)), m_vehicle(new CVehicleCol("Vehicle", 1, -1)) {
    SetElementName("ChoiceHolder");
}
CChoiceHolder::CChoiceHolder(const CChoiceHolder& o)
    : CXmlGeneratedClass(o), m_part(CloneOf(o.m_part)), m_listPart(o.m_listPart->Clone()),
      m_shape(CloneOf(o.m_shape)), m_vehicle(o.m_vehicle->Clone()) {}
CChoiceHolder* CChoiceHolder::Clone() const { return new CChoiceHolder(*this); }
bool CChoiceHolder::operator==(const CChoiceHolder& o) const {
    return SameObject(m_part, o.m_part) && *m_listPart == *o.m_listPart &&
           SameObject(m_shape, o.m_shape) && *m_vehicle == *o.m_vehicle;
}
CParentElementInfo* CChoiceHolder::GetClassInfo() const {
    static CParentElementInfo info(XmlElementGroupType_Choice, XmlElementType_Element,
                                   "ChoiceHolder", kTestNs, true, false, -1, ItemType_Invalid,
                                   nullptr, false);
    return &info;
}
CElementInfo** CChoiceHolder::GetClassElementInfo() const {
    static CElementInfoChoiceClsOpt part("Part", kTestNs, Id_Part, XmlElementType_Element,
                                         &CTestSchemaFactory::CreateByClass, Class_Part);
    static CElementInfoChoiceClsCol listPart("ListPart", kTestNs, Id_ListPart,
                                             XmlElementType_Element);
    static CElementInfoChoiceAbsClsOpt shape("Shape", kTestNs, Id_Shape, XmlElementType_Element,
                                             &CTestSchemaFactory::CreateShapeFromElement);
    static CElementInfoChoiceAbsClsCol vehicle("Vehicle", kTestNs, Id_Vehicle,
                                               XmlElementType_Element);
    static CElementInfo* infos[] = {&part, &listPart, &shape, &vehicle, nullptr};
    return infos;
}
CAttributeInfo** CChoiceHolder::GetClassAttributeInfo() const { return NoAttributes(); }
void CChoiceHolder::InvokeProperty(int memberId, bool get, KxVariant& value) {
    switch (memberId) {
    case Id_Part: get ? GetObject(value, m_part) : SetObject(value, m_part); break;
    case Id_ListPart: GetCollection(value, get, m_listPart); break;
    case Id_Shape: get ? GetObject(value, m_shape) : SetObject(value, m_shape); break;
    case Id_Vehicle: GetCollection(value, get, m_vehicle); break;
    default: throw CKxInvalidParamException("Unknown member id");
    }
}

// ---- CAllHolder --------------------------------------------------------------------------------

CAllHolder::CAllHolder()
    : m_part(new CPart("Part")), m_listPart(new CPartCol("ListPart", 0, -1)),
      m_shapeItem(new CShapeCol("ShapeItem", 0, -1)) {
    SetElementName("AllHolder");
}
CAllHolder::CAllHolder(const CAllHolder& o)
    : CXmlGeneratedClass(o), m_part(CloneOf(o.m_part)), m_optPart(CloneOf(o.m_optPart)),
      m_listPart(o.m_listPart->Clone()), m_vehicle(CloneOf(o.m_vehicle)),
      m_shape(CloneOf(o.m_shape)), m_shapeItem(o.m_shapeItem->Clone()) {}
CAllHolder* CAllHolder::Clone() const { return new CAllHolder(*this); }
bool CAllHolder::operator==(const CAllHolder& o) const {
    return SameObject(m_part, o.m_part) && SameObject(m_optPart, o.m_optPart) &&
           *m_listPart == *o.m_listPart && SameObject(m_vehicle, o.m_vehicle) &&
           SameObject(m_shape, o.m_shape) && *m_shapeItem == *o.m_shapeItem;
}
CParentElementInfo* CAllHolder::GetClassInfo() const {
    static CParentElementInfo info(XmlElementGroupType_All, XmlElementType_Element, "AllHolder",
                                   kTestNs, true, false, -1, ItemType_Invalid, nullptr, false);
    return &info;
}
CElementInfo** CAllHolder::GetClassElementInfo() const {
    static CElementInfoAllClsMnd part("Part", kTestNs, Id_Part, XmlElementType_Element,
                                      &CTestSchemaFactory::CreateByClass, Class_Part, false);
    static CElementInfoAllClsOpt optPart("OptPart", kTestNs, Id_OptPart, XmlElementType_Element,
                                         &CTestSchemaFactory::CreateByClass, Class_Part);
    static CElementInfoAllClsCol listPart("ListPart", kTestNs, Id_ListPart,
                                          XmlElementType_Element);
    static CElementInfoAllAbsClsMnd vehicle("Vehicle", kTestNs, Id_Vehicle,
                                            XmlElementType_Element,
                                            &CTestSchemaFactory::CreateVehicleFromElement,
                                            Class_Vehicle);
    static CElementInfoAllAbsClsOpt shape("Shape", kTestNs, Id_Shape, XmlElementType_Element,
                                          &CTestSchemaFactory::CreateShapeFromElement);
    static CElementInfoAllAbsClsCol shapeItem("ShapeItem", kTestNs, Id_ShapeItem,
                                              XmlElementType_Element);
    static CElementInfo* infos[] = {&part, &optPart, &listPart, &vehicle, &shape, &shapeItem,
                                    nullptr};
    return infos;
}
CAttributeInfo** CAllHolder::GetClassAttributeInfo() const { return NoAttributes(); }
void CAllHolder::InvokeProperty(int memberId, bool get, KxVariant& value) {
    switch (memberId) {
    case Id_Part: get ? GetObject(value, m_part) : SetObject(value, m_part); break;
    case Id_OptPart: get ? GetObject(value, m_optPart) : SetObject(value, m_optPart); break;
    case Id_ListPart: GetCollection(value, get, m_listPart); break;
    case Id_Vehicle: get ? GetObject(value, m_vehicle) : SetObject(value, m_vehicle); break;
    case Id_Shape: get ? GetObject(value, m_shape) : SetObject(value, m_shape); break;
    case Id_ShapeItem: GetCollection(value, get, m_shapeItem); break;
    default: throw CKxInvalidParamException("Unknown member id");
    }
}

// ---- CBranch, CTree ----------------------------------------------------------------------------

CBranch::CBranch() : m_part(new CPart("Part")) { SetElementName("Branch"); }
CBranch::CBranch(const CBranch& o) : CXmlGeneratedClass(o), m_part(CloneOf(o.m_part)) {}
CBranch* CBranch::Clone() const { return new CBranch(*this); }
CParentElementInfo* CBranch::GetClassInfo() const {
    static CParentElementInfo info = SequenceInfo("Branch");
    return &info;
}
CElementInfo** CBranch::GetClassElementInfo() const {
    static CElementInfoSeqClsMnd part("Part", kTestNs, Id_Part, XmlElementType_Element,
                                      &CTestSchemaFactory::CreateByClass, Class_Part, false);
    static CElementInfo* infos[] = {&part, nullptr};
    return infos;
}
CAttributeInfo** CBranch::GetClassAttributeInfo() const { return NoAttributes(); }
void CBranch::InvokeProperty(int memberId, bool get, KxVariant& value) {
    if (memberId != Id_Part) throw CKxInvalidParamException("Unknown member id");
    get ? GetObject(value, m_part) : SetObject(value, m_part);
}

CTree::CTree() : m_branch(new CBranch()) { SetElementName("Tree"); }
CTree::CTree(const CTree& o) : CXmlGeneratedClass(o), m_branch(CloneOf(o.m_branch)) {}
CTree* CTree::Clone() const { return new CTree(*this); }
CParentElementInfo* CTree::GetClassInfo() const {
    static CParentElementInfo info = SequenceInfo("Tree");
    return &info;
}
CElementInfo** CTree::GetClassElementInfo() const {
    static CElementInfoSeqClsMnd branch("Branch", kTestNs, Id_Branch, XmlElementType_Element,
                                        &CTestSchemaFactory::CreateByClass, Class_Branch, false);
    static CElementInfo* infos[] = {&branch, nullptr};
    return infos;
}
CAttributeInfo** CTree::GetClassAttributeInfo() const { return NoAttributes(); }
void CTree::InvokeProperty(int memberId, bool get, KxVariant& value) {
    if (memberId != Id_Branch) throw CKxInvalidParamException("Unknown member id");
    get ? GetObject(value, m_branch) : SetObject(value, m_branch);
}

// ---- CBox --------------------------------------------------------------------------------------

CBox::CBox() : m_dimensions(new CDimensions()) { SetElementName("Box"); }
CBox::CBox(const CBox& o)
    : CXmlGeneratedClass(o), m_name(o.m_name), m_hasName(o.m_hasName),
      m_dimensions(CloneOf(o.m_dimensions)), m_comment(o.m_comment),
      m_hasComment(o.m_hasComment), m_localPart(CloneOf(o.m_localPart)), m_id(o.m_id),
      m_hasId(o.m_hasId) {}
CBox* CBox::Clone() const { return new CBox(*this); }
CParentElementInfo* CBox::GetClassInfo() const {
    static CParentElementInfo info = SequenceInfo("Box");
    return &info;
}
CElementInfo** CBox::GetClassElementInfo() const {
    static CElementInfoSeqPrimMnd name("Name", kTestNs, Id_Name, false, ItemType_string, nullptr,
                                       kPreserve, CPrimitiveRestrictions(), nullptr);
    static CElementInfoSeqClsMnd dimensions("Dimensions", kTestNs, Id_Dimensions,
                                            XmlElementType_Group,
                                            &CTestSchemaFactory::CreateByClass, Class_Dimensions,
                                            false);
    // form="unqualified": no namespace under the qualified Box.
    static CElementInfoSeqPrimOpt comment("Comment", "", Id_Comment, false, ItemType_string,
                                          nullptr, kPreserve, CPrimitiveRestrictions(), nullptr);
    static CElementInfoSeqClsOpt localPart("LocalPart", "", Id_LocalPart,
                                           XmlElementType_Element,
                                           &CTestSchemaFactory::CreateByClass, Class_Part);
    static CElementInfo* infos[] = {&name, &dimensions, &comment, &localPart, nullptr};
    return infos;
}
CAttributeInfo** CBox::GetClassAttributeInfo() const {
    static CAttributeInfoPrimitive id("id", "", Id_Id, true, ItemType_string, nullptr, kCollapse,
                                      CPrimitiveRestrictions(), nullptr);
    static CAttributeInfo* infos[] = {&id, nullptr};
    return infos;
}
void CBox::InvokeProperty(int memberId, bool get, KxVariant& value) {
    switch (memberId) {
    case Id_Name:
        get ? GetString(value, m_name, m_hasName) : SetString(value, m_name, m_hasName);
        break;
    case Id_Dimensions:
        get ? GetObject(value, m_dimensions) : SetObject(value, m_dimensions);
        break;
    case Id_Comment:
        get ? GetString(value, m_comment, m_hasComment) : SetString(value, m_comment, m_hasComment);
        break;
    case Id_LocalPart: get ? GetObject(value, m_localPart) : SetObject(value, m_localPart); break;
    case Id_Id: get ? GetString(value, m_id, m_hasId) : SetString(value, m_id, m_hasId); break;
    default: throw CKxInvalidParamException("Unknown member id");
    }
}

// ---- CNilHolder --------------------------------------------------------------------------------

CNilHolder::CNilHolder() : m_maybe(new CNilPart("Maybe")), m_plain(new CPart("Plain")) {
    SetElementName("NilHolder");
}
CNilHolder::CNilHolder(const CNilHolder& o)
    : CXmlGeneratedClass(o), m_maybe(CloneOf(o.m_maybe)), m_plain(CloneOf(o.m_plain)),
      m_plainNil(o.m_plainNil) {}
CNilHolder* CNilHolder::Clone() const { return new CNilHolder(*this); }
CParentElementInfo* CNilHolder::GetClassInfo() const {
    static CParentElementInfo info = SequenceInfo("NilHolder");
    return &info;
}
CElementInfo** CNilHolder::GetClassElementInfo() const {
    static CElementInfoSeqClsMnd maybe("Maybe", kTestNs, Id_Maybe, XmlElementType_Element,
                                       &CTestSchemaFactory::CreateByClass, Class_NilPart, true);
    static CElementInfoSeqClsMnd plain("Plain", kTestNs, Id_Plain, XmlElementType_Element,
                                       &CTestSchemaFactory::CreateByClass, Class_Part, true);
    static CElementInfo* infos[] = {&maybe, &plain, nullptr};
    return infos;
}
CAttributeInfo** CNilHolder::GetClassAttributeInfo() const { return NoAttributes(); }
void CNilHolder::InvokeProperty(int memberId, bool get, KxVariant& value) {
    switch (memberId) {
    case Id_Maybe: get ? GetObject(value, m_maybe) : SetObject(value, m_maybe); break;
    case Id_Plain:
        if (get) {
            GetObject(value, m_plain);
            if (m_plainNil) value.SetNil();
        } else {
            m_plainNil = value.IsNil();
            SetObject(value, m_plain);
        }
        break;
    default: throw CKxInvalidParamException("Unknown member id");
    }
}

// ---- wildcards ---------------------------------------------------------------------------------

CAnySeq::CAnySeq() : m_extra(new CElementCol(kExtraNs, kTestNs)) { SetElementName("AnySeq"); }
CAnySeq::CAnySeq(const CAnySeq& o)
    : CXmlGeneratedClass(o), m_head(o.m_head), m_hasHead(o.m_hasHead),
      m_other(CloneOf(o.m_other)), m_local(CloneOf(o.m_local)), m_extra(o.m_extra->Clone()) {}
CAnySeq* CAnySeq::Clone() const { return new CAnySeq(*this); }
CParentElementInfo* CAnySeq::GetClassInfo() const {
    static CParentElementInfo info = SequenceInfo("AnySeq");
    return &info;
}
CElementInfo** CAnySeq::GetClassElementInfo() const {
    static CElementInfoSeqPrimMnd head("Head", kTestNs, Id_Head, false, ItemType_string, nullptr,
                                       kPreserve, CPrimitiveRestrictions(), nullptr);
    static CElementInfoSeqUntpdMnd other("Other", kTestNs, Id_Other, "##other", kTestNs);
    static CElementInfoSeqUntpdOpt local("Local", kTestNs, Id_Local, "##local", kTestNs);
    static CElementInfoSeqUntpdCol extra("Extra", kTestNs, Id_Extra, kExtraNs, kTestNs);
    static CElementInfo* infos[] = {&head, &other, &local, &extra, nullptr};
    return infos;
}
CAttributeInfo** CAnySeq::GetClassAttributeInfo() const { return NoAttributes(); }
void CAnySeq::InvokeProperty(int memberId, bool get, KxVariant& value) {
    switch (memberId) {
    case Id_Head:
        get ? GetString(value, m_head, m_hasHead) : SetString(value, m_head, m_hasHead);
        break;
    case Id_Other: get ? GetObject(value, m_other) : SetObject(value, m_other); break;
    case Id_Local: get ? GetObject(value, m_local) : SetObject(value, m_local); break;
    case Id_Extra: GetCollection(value, get, m_extra); break;
    default: throw CKxInvalidParamException("Unknown member id");
    }
}

CAnyChoice::CAnyChoice() : m_extra(new CElementCol(kExtraNs, kTestNs, 1, -1)) {
    SetElementName("AnyChoice");
}
CAnyChoice::CAnyChoice(const CAnyChoice& o)
    : CXmlGeneratedClass(o), m_one(CloneOf(o.m_one)), m_extra(o.m_extra->Clone()) {}
CAnyChoice* CAnyChoice::Clone() const { return new CAnyChoice(*this); }
CParentElementInfo* CAnyChoice::GetClassInfo() const {
    static CParentElementInfo info(XmlElementGroupType_Choice, XmlElementType_Element,
                                   "AnyChoice", kTestNs, true, false, -1, ItemType_Invalid,
                                   nullptr, false);
    return &info;
}
CElementInfo** CAnyChoice::GetClassElementInfo() const {
    static CElementInfoChoiceUntpdOpt one("One", kTestNs, Id_One, kOneNs, kTestNs);
    static CElementInfoChoiceUntpdCol extra("Extra", kTestNs, Id_Extra, kExtraNs, kTestNs);
    static CElementInfo* infos[] = {&one, &extra, nullptr};
    return infos;
}
CAttributeInfo** CAnyChoice::GetClassAttributeInfo() const { return NoAttributes(); }
void CAnyChoice::InvokeProperty(int memberId, bool get, KxVariant& value) {
    switch (memberId) {
    case Id_One: get ? GetObject(value, m_one) : SetObject(value, m_one); break;
    case Id_Extra: GetCollection(value, get, m_extra); break;
    default: throw CKxInvalidParamException("Unknown member id");
    }
}

CAnyAll::CAnyAll() : m_extra(new CElementCol(kExtraNs, kTestNs)) { SetElementName("AnyAll"); }
CAnyAll::CAnyAll(const CAnyAll& o)
    : CXmlGeneratedClass(o), m_one(CloneOf(o.m_one)), m_local(CloneOf(o.m_local)),
      m_extra(o.m_extra->Clone()) {}
CAnyAll* CAnyAll::Clone() const { return new CAnyAll(*this); }
CParentElementInfo* CAnyAll::GetClassInfo() const {
    static CParentElementInfo info(XmlElementGroupType_All, XmlElementType_Element, "AnyAll",
                                   kTestNs, true, false, -1, ItemType_Invalid, nullptr, false);
    return &info;
}
CElementInfo** CAnyAll::GetClassElementInfo() const {
    static CElementInfoAllUntpdMnd one("One", kTestNs, Id_One, kOneNs, kTestNs);
    static CElementInfoAllUntpdOpt local("Local", kTestNs, Id_Local, "##local", kTestNs);
    static CElementInfoAllUntpdCol extra("Extra", kTestNs, Id_Extra, kExtraNs, kTestNs);
    static CElementInfo* infos[] = {&one, &local, &extra, nullptr};
    return infos;
}
CAttributeInfo** CAnyAll::GetClassAttributeInfo() const { return NoAttributes(); }
void CAnyAll::InvokeProperty(int memberId, bool get, KxVariant& value) {
    switch (memberId) {
    case Id_One: get ? GetObject(value, m_one) : SetObject(value, m_one); break;
    case Id_Local: get ? GetObject(value, m_local) : SetObject(value, m_local); break;
    case Id_Extra: GetCollection(value, get, m_extra); break;
    default: throw CKxInvalidParamException("Unknown member id");
    }
}

// ---- Fast Infoset vocabulary ----------------------------------------------------------------

void AddTestSchemaVocabulary(CFIVocabulary& vocabulary, const char* prefix) {
    static const char* const elements[] = {
        "SeqHolder", "ChoiceHolder", "AllHolder", "Tree",   "Branch",  "Box",    "NilHolder",
        "AnySeq",    "AnyChoice",    "AnyAll",    "Part",   "OptPart", "ListPart", "NilPart",
        "Maybe",     "Plain",        "Vehicle",   "Car",    "Bike",    "Make",   "Seats",
        "Gears",     "Shape",        "ShapeItem", "Circle", "Square",  "Label",  "Radius",
        "Side",      "Value",        "Note",      "Width",  "Height",  "Name",   "Head"};
    const std::string elementPrefix = prefix != nullptr ? prefix : "";
    for (const char* name : elements) vocabulary.AddElement(elementPrefix, kTestNs, name);
    vocabulary.AddElement("", "", "Comment");
    vocabulary.AddElement("", "", "LocalPart");
    for (const char* name : {"code", "unit", "id"}) vocabulary.AddAttribute("", "", name);
    const char* const xsi = "http://www.w3.org/2001/XMLSchema-instance";
    vocabulary.AddAttribute("xsi", xsi, "type");
    vocabulary.AddAttribute("xsi", xsi, "nil");
}

}  // namespace KxTestSchema
