// The records and accessors of the order bindings.
#include "OrderBindings.h"

#include <cstring>

namespace KxOrders {

using namespace KxXmlLib16Data;

const char* const kOrdersNamespace = "urn:bench:orders";

namespace {

const char* const kNs = kOrdersNamespace;
const CWhitespaceUtils::WhitespaceRule kPreserve = CWhitespaceUtils::WhitespaceRule_Preserve;
const CWhitespaceUtils::WhitespaceRule kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

const char* const kStatusLiterals[] = {"pending", "confirmed", "shipped", "delivered",
                                       "cancelled"};
const int kStatusCount = sizeof kStatusLiterals / sizeof kStatusLiterals[0];

bool IsSet(const KxVariant& value) { return value.IsValid() && !value.IsNil(); }

void SetString(const KxVariant& value, std::string& field, bool& isSet) {
    isSet = IsSet(value);
    field = isSet ? value.GetString() : std::string();
}
void GetString(KxVariant& value, const std::string& field, bool isSet) {
    value.Clear();
    if (isSet) value.SetString(field);
}

// A simple member other than a string: `read` takes the value out of the variant, `write`
// puts it in. An unset member keeps its last value, which no one looks at.
template <typename T, typename Read>
void SetValue(const KxVariant& value, T& field, bool& isSet, Read read) {
    isSet = IsSet(value);
    if (isSet) field = read(value);
}
template <typename T, typename Write>
void GetValue(KxVariant& value, const T& field, bool isSet, Write write) {
    value.Clear();
    if (isSet) write(value, field);
}

// A child object: null when the variant holds none. The variant's getter hands over a
// reference, which the smart pointer's own replaces.
template <typename T>
void SetChild(const KxVariant& value, CSmartPtr<T>& field, const char* member) {
    if (!IsSet(value)) {
        field = nullptr;
        return;
    }
    CXmlObjectBase* raw = value.GetXmlObject();
    T* typed = dynamic_cast<T*>(raw);
    if (raw && !typed) {
        raw->Release();
        throw CKxInvalidValueException(
            FormatString("The object given for the member [%s] is of another class", member));
    }
    field = typed;
    if (raw) raw->Release();
}
template <typename T>
void GetChild(KxVariant& value, const CSmartPtr<T>& field) {
    value.Clear();
    if (field.Ptr()) value.SetXmlObject(field.Ptr());
}

// Collections are created with their owner and filled in place, never replaced.
void GetCollection(KxVariant& value, CXmlCollectionBase* collection, bool get,
                   const char* member) {
    if (!get)
        throw CKxInvalidParamException(
            FormatString("The collection [%s] cannot be replaced", member));
    value.Clear();
    value.SetXmlCollection(collection);
}

[[noreturn]] void ThrowUnknownMember(int memberId) {
    throw CKxInvalidParamException(FormatString("Unknown member id %d", memberId));
}

template <typename T>
CSmartPtr<T> CloneChild(const CSmartPtr<T>& child) {
    return child.Ptr() ? CSmartPtr<T>(child->Clone()) : CSmartPtr<T>();
}

template <typename T>
bool SameOptional(bool aSet, const T& a, bool bSet, const T& b) {
    return aSet == bSet && (!aSet || a == b);
}
template <typename T>
bool SameChild(const CSmartPtr<T>& a, const CSmartPtr<T>& b) {
    if (!a.Ptr() || !b.Ptr()) return !a.Ptr() && !b.Ptr();
    return *a == *b;
}
bool SameStrings(const CstringCol& a, const CstringCol& b) {
    if (a.GetCount() != b.GetCount()) return false;
    for (int i = 0; i < a.GetCount(); ++i)
        if (a.Item(i) != b.Item(i)) return false;
    return true;
}

const CreateByClassFunc kCreate = &COrdersFactory::CreateByClass;

}  // namespace

// ---- enumeration and factory -------------------------------------------------------------------

const char* StatusTypeToString(int value) {
    if (value < 0 || value >= kStatusCount)
        throw CKxInvalidValueException(
            FormatString("The value [%d] is not a valid StatusType", value));
    return kStatusLiterals[value];
}

int StringToStatusType(const char* text) {
    for (int i = 0; i < kStatusCount; ++i)
        if (text && std::strcmp(text, kStatusLiterals[i]) == 0) return i;
    throw CKxInvalidValueException(
        FormatString("The value [%s] is not a valid StatusType", text ? text : ""));
}

CSmartPtr<CXmlObjectBase> COrdersFactory::CreateByClass(int classId, const char* elementName) {
    CSmartPtr<CXmlObjectBase> created;
    switch (classId) {
    case ClassId_COrders: created = new COrders(); break;
    case ClassId_COrder: created = new COrder(); break;
    case ClassId_CCustomer: created = new CCustomer(); break;
    case ClassId_CAddress: created = new CAddress(); break;
    case ClassId_CLine: created = new CLine(); break;
    case ClassId_CPayment: created = new CPayment(); break;
    case ClassId_CCard: created = new CCard(); break;
    case ClassId_CInvoice: created = new CInvoice(); break;
    default: return nullptr;
    }
    if (elementName && *elementName) created->SetElementName(elementName);
    return created;
}

// ---- CAddress ----------------------------------------------------------------------------------

CAddress::CAddress() { SetElementName("Address"); }
CAddress* CAddress::Clone() const { return new CAddress(*this); }

CParentElementInfo* CAddress::GetClassInfo() const {
    static CParentElementInfo info(XmlElementGroupType_Sequence, XmlElementType_Element,
                                   "Address", kNs, true, false, -1, ItemType_Invalid,
                                   nullptr, false);
    return &info;
}

CElementInfo** CAddress::GetClassElementInfo() const {
    static CPrimitiveRestrictions none;
    static CElementInfoSeqPrimMnd street("Street", kNs, Id_Street, false, ItemType_string,
                                         nullptr, kPreserve, none, nullptr);
    static CElementInfoSeqPrimMnd city("City", kNs, Id_City, false, ItemType_string, nullptr,
                                       kPreserve, none, nullptr);
    static CElementInfoSeqPrimMnd postalCode("PostalCode", kNs, Id_PostalCode, false,
                                             ItemType_string, nullptr, kPreserve, none, nullptr);
    static CElementInfoSeqPrimMnd country("Country", kNs, Id_Country, false, ItemType_string,
                                          nullptr, kPreserve, none, nullptr);
    static CElementInfo* infos[] = {&street, &city, &postalCode, &country, nullptr};
    return infos;
}

CAttributeInfo** CAddress::GetClassAttributeInfo() const {
    static CAttributeInfo* infos[] = {nullptr};
    return infos;
}

void CAddress::InvokeProperty(int memberId, bool get, KxVariant& value) {
    switch (memberId) {
    case Id_Street:
        get ? GetString(value, m_street, m_hasStreet) : SetString(value, m_street, m_hasStreet);
        break;
    case Id_City:
        get ? GetString(value, m_city, m_hasCity)
            : SetString(value, m_city, m_hasCity);
        break;
    case Id_PostalCode:
        get ? GetString(value, m_postalCode, m_hasPostalCode)
            : SetString(value, m_postalCode, m_hasPostalCode);
        break;
    case Id_Country:
        get ? GetString(value, m_country, m_hasCountry)
            : SetString(value, m_country, m_hasCountry);
        break;
    default: ThrowUnknownMember(memberId);
    }
}

bool CAddress::operator==(const CAddress& o) const {
    return SameOptional(m_hasStreet, m_street, o.m_hasStreet, o.m_street) &&
           SameOptional(m_hasCity, m_city, o.m_hasCity, o.m_city) &&
           SameOptional(m_hasPostalCode, m_postalCode, o.m_hasPostalCode, o.m_postalCode) &&
           SameOptional(m_hasCountry, m_country, o.m_hasCountry, o.m_country);
}

// ---- CCustomer ---------------------------------------------------------------------------------

CCustomer::CCustomer() : m_billingAddress(new CAddress()) {
    SetElementName("Customer");
    m_billingAddress->SetElementName("BillingAddress");
}
CCustomer::CCustomer(const CCustomer& o)
    : CXmlGeneratedClass(o), m_name(o.m_name), m_email(o.m_email), m_phone(o.m_phone),
      m_hasName(o.m_hasName), m_hasEmail(o.m_hasEmail), m_hasPhone(o.m_hasPhone),
      m_billingAddress(CloneChild(o.m_billingAddress)),
      m_shippingAddress(CloneChild(o.m_shippingAddress)), m_id(o.m_id), m_hasId(o.m_hasId),
      m_vip(o.m_vip), m_hasVip(o.m_hasVip) {}
CCustomer* CCustomer::Clone() const { return new CCustomer(*this); }

CParentElementInfo* CCustomer::GetClassInfo() const {
    static CParentElementInfo info(XmlElementGroupType_Sequence, XmlElementType_Element,
                                   "Customer", kNs, true, false, -1, ItemType_Invalid,
                                   nullptr, false);
    return &info;
}

CElementInfo** CCustomer::GetClassElementInfo() const {
    static CPrimitiveRestrictions none;
    static CElementInfoSeqPrimMnd name("Name", kNs, Id_Name, false, ItemType_string, nullptr,
                                       kPreserve, none, nullptr);
    static CElementInfoSeqPrimMnd email("Email", kNs, Id_Email, false, ItemType_string, nullptr,
                                        kPreserve, none, nullptr);
    static CElementInfoSeqPrimOpt phone("Phone", kNs, Id_Phone, false, ItemType_string, nullptr,
                                        kPreserve, none, nullptr);
    static CElementInfoSeqClsMnd billing("BillingAddress", kNs, Id_BillingAddress,
                                         XmlElementType_Element, kCreate,
                                         COrdersFactory::ClassId_CAddress, false);
    static CElementInfoSeqClsOpt shipping("ShippingAddress", kNs, Id_ShippingAddress,
                                          XmlElementType_Element, kCreate,
                                          COrdersFactory::ClassId_CAddress);
    static CElementInfo* infos[] = {&name, &email, &phone, &billing, &shipping, nullptr};
    return infos;
}

CAttributeInfo** CCustomer::GetClassAttributeInfo() const {
    static CPrimitiveRestrictions none;
    static CAttributeInfoPrimitive id("id", "", Id_Id, false, ItemType_string, nullptr, kPreserve,
                                      none, nullptr);
    static CAttributeInfoPrimitive vip("vip", "", Id_Vip, true, ItemType_boolean, nullptr,
                                       kCollapse, none, nullptr);
    static CAttributeInfo* infos[] = {&id, &vip, nullptr};
    return infos;
}

void CCustomer::InvokeProperty(int memberId, bool get, KxVariant& value) {
    switch (memberId) {
    case Id_Name:
        get ? GetString(value, m_name, m_hasName)
            : SetString(value, m_name, m_hasName);
        break;
    case Id_Email:
        get ? GetString(value, m_email, m_hasEmail) : SetString(value, m_email, m_hasEmail);
        break;
    case Id_Phone:
        get ? GetString(value, m_phone, m_hasPhone) : SetString(value, m_phone, m_hasPhone);
        break;
    case Id_BillingAddress:
        get ? GetChild(value, m_billingAddress)
            : SetChild(value, m_billingAddress, "BillingAddress");
        break;
    case Id_ShippingAddress:
        get ? GetChild(value, m_shippingAddress)
            : SetChild(value, m_shippingAddress, "ShippingAddress");
        break;
    case Id_Id: get ? GetString(value, m_id, m_hasId) : SetString(value, m_id, m_hasId); break;
    case Id_Vip:
        if (get)
            GetValue(value, m_vip, m_hasVip, [](KxVariant& v, bool b) { v.SetBoolean(b); });
        else
            SetValue(value, m_vip, m_hasVip, [](const KxVariant& v) { return v.GetBoolean(); });
        break;
    default: ThrowUnknownMember(memberId);
    }
}

bool CCustomer::operator==(const CCustomer& o) const {
    return SameOptional(m_hasName, m_name, o.m_hasName, o.m_name) &&
           SameOptional(m_hasEmail, m_email, o.m_hasEmail, o.m_email) &&
           SameOptional(m_hasPhone, m_phone, o.m_hasPhone, o.m_phone) &&
           SameChild(m_billingAddress, o.m_billingAddress) &&
           SameChild(m_shippingAddress, o.m_shippingAddress) &&
           SameOptional(m_hasId, m_id, o.m_hasId, o.m_id) &&
           SameOptional(m_hasVip, m_vip, o.m_hasVip, o.m_vip);
}

// ---- CLine -------------------------------------------------------------------------------------

CLine::CLine() { SetElementName("Line"); }
CLine* CLine::Clone() const { return new CLine(*this); }

CParentElementInfo* CLine::GetClassInfo() const {
    static CParentElementInfo info(XmlElementGroupType_Sequence, XmlElementType_Element,
                                   "Line", kNs, true, false, -1, ItemType_Invalid,
                                   nullptr, false);
    return &info;
}

CElementInfo** CLine::GetClassElementInfo() const {
    static CPrimitiveRestrictions none;
    static CElementInfoSeqPrimMnd sku("Sku", kNs, Id_Sku, false, ItemType_string, nullptr,
                                      kPreserve, none, nullptr);
    static CElementInfoSeqPrimMnd description("Description", kNs, Id_Description, false,
                                              ItemType_string, nullptr, kPreserve, none, nullptr);
    static CElementInfoSeqPrimMnd quantity("Quantity", kNs, Id_Quantity, false, ItemType_i4,
                                           nullptr, kCollapse, none, nullptr);
    static CElementInfoSeqPrimMnd unitPrice("UnitPrice", kNs, Id_UnitPrice, false,
                                            ItemType_decimal, nullptr, kCollapse, none, nullptr);
    static CElementInfoSeqPrimMnd weight("Weight", kNs, Id_Weight, false, ItemType_r8, nullptr,
                                         kCollapse, none, nullptr);
    static CElementInfoSeqPrimMnd taxable("Taxable", kNs, Id_Taxable, false, ItemType_boolean,
                                          nullptr, kCollapse, none, nullptr);
    static CElementInfo* infos[] = {&sku, &description, &quantity, &unitPrice,
                                    &weight, &taxable, nullptr};
    return infos;
}

CAttributeInfo** CLine::GetClassAttributeInfo() const {
    static CPrimitiveRestrictions none;
    static CAttributeInfoPrimitive no("no", "", Id_No, false, ItemType_i4, nullptr, kCollapse,
                                      none, nullptr);
    static CAttributeInfo* infos[] = {&no, nullptr};
    return infos;
}

void CLine::InvokeProperty(int memberId, bool get, KxVariant& value) {
    auto readI4 = [](const KxVariant& v) { return v.GetI4(); };
    auto writeI4 = [](KxVariant& v, long n) { v.SetI4(n); };
    switch (memberId) {
    case Id_Sku: get ? GetString(value, m_sku, m_hasSku) : SetString(value, m_sku, m_hasSku); break;
    case Id_Description:
        get ? GetString(value, m_description, m_hasDescription)
            : SetString(value, m_description, m_hasDescription);
        break;
    case Id_Quantity:
        get ? GetValue(value, m_quantity, m_hasQuantity, writeI4)
            : SetValue(value, m_quantity, m_hasQuantity, readI4);
        break;
    case Id_UnitPrice:
        if (get)
            GetValue(value, m_unitPrice, m_hasUnitPrice,
                     [](KxVariant& v, const CDecimal& d) { v.SetDecimal(d); });
        else
            SetValue(value, m_unitPrice, m_hasUnitPrice,
                     [](const KxVariant& v) { return v.GetDecimal(); });
        break;
    case Id_Weight:
        if (get)
            GetValue(value, m_weight, m_hasWeight, [](KxVariant& v, double d) { v.SetR8(d); });
        else
            SetValue(value, m_weight, m_hasWeight, [](const KxVariant& v) { return v.GetR8(); });
        break;
    case Id_Taxable:
        if (get)
            GetValue(value, m_taxable, m_hasTaxable,
                     [](KxVariant& v, bool b) { v.SetBoolean(b); });
        else
            SetValue(value, m_taxable, m_hasTaxable,
                     [](const KxVariant& v) { return v.GetBoolean(); });
        break;
    case Id_No:
        get ? GetValue(value, m_no, m_hasNo, writeI4) : SetValue(value, m_no, m_hasNo, readI4);
        break;
    default: ThrowUnknownMember(memberId);
    }
}

bool CLine::operator==(const CLine& o) const {
    return SameOptional(m_hasSku, m_sku, o.m_hasSku, o.m_sku) &&
           SameOptional(m_hasDescription, m_description, o.m_hasDescription, o.m_description) &&
           SameOptional(m_hasQuantity, m_quantity, o.m_hasQuantity, o.m_quantity) &&
           SameOptional(m_hasUnitPrice, m_unitPrice, o.m_hasUnitPrice, o.m_unitPrice) &&
           SameOptional(m_hasWeight, m_weight, o.m_hasWeight, o.m_weight) &&
           SameOptional(m_hasTaxable, m_taxable, o.m_hasTaxable, o.m_taxable) &&
           SameOptional(m_hasNo, m_no, o.m_hasNo, o.m_no);
}

// ---- CCard -------------------------------------------------------------------------------------

CCard::CCard() { SetElementName("Card"); }
CCard* CCard::Clone() const { return new CCard(*this); }

CParentElementInfo* CCard::GetClassInfo() const {
    static CParentElementInfo info(XmlElementGroupType_Sequence, XmlElementType_Element,
                                   "Card", kNs, true, false, -1, ItemType_Invalid,
                                   nullptr, false);
    return &info;
}

CElementInfo** CCard::GetClassElementInfo() const {
    static CPrimitiveRestrictions none;
    static CElementInfoSeqPrimMnd holder("Holder", kNs, Id_Holder, false, ItemType_string,
                                         nullptr, kPreserve, none, nullptr);
    static CElementInfoSeqPrimMnd number("Number", kNs, Id_Number, false, ItemType_string,
                                         nullptr, kPreserve, none, nullptr);
    static CElementInfoSeqPrimMnd expiry("Expiry", kNs, Id_Expiry, false, ItemType_date, nullptr,
                                         kCollapse, none, nullptr);
    static CElementInfo* infos[] = {&holder, &number, &expiry, nullptr};
    return infos;
}

CAttributeInfo** CCard::GetClassAttributeInfo() const {
    static CPrimitiveRestrictions none;
    static CAttributeInfoPrimitive brand("brand", "", Id_Brand, false, ItemType_string, nullptr,
                                         kPreserve, none, nullptr);
    static CAttributeInfo* infos[] = {&brand, nullptr};
    return infos;
}

void CCard::InvokeProperty(int memberId, bool get, KxVariant& value) {
    switch (memberId) {
    case Id_Holder:
        get ? GetString(value, m_holder, m_hasHolder) : SetString(value, m_holder, m_hasHolder);
        break;
    case Id_Number:
        get ? GetString(value, m_number, m_hasNumber) : SetString(value, m_number, m_hasNumber);
        break;
    case Id_Expiry:
        if (get)
            GetValue(value, m_expiry, m_hasExpiry,
                     [](KxVariant& v, const CDateTime& d) { v.SetDate(d); });
        else
            SetValue(value, m_expiry, m_hasExpiry,
                     [](const KxVariant& v) { return v.GetDate(); });
        break;
    case Id_Brand:
        get ? GetString(value, m_brand, m_hasBrand) : SetString(value, m_brand, m_hasBrand);
        break;
    default: ThrowUnknownMember(memberId);
    }
}

bool CCard::operator==(const CCard& o) const {
    return SameOptional(m_hasHolder, m_holder, o.m_hasHolder, o.m_holder) &&
           SameOptional(m_hasNumber, m_number, o.m_hasNumber, o.m_number) &&
           SameOptional(m_hasExpiry, m_expiry, o.m_hasExpiry, o.m_expiry) &&
           SameOptional(m_hasBrand, m_brand, o.m_hasBrand, o.m_brand);
}

// ---- CInvoice ----------------------------------------------------------------------------------

CInvoice::CInvoice() { SetElementName("Invoice"); }
CInvoice* CInvoice::Clone() const { return new CInvoice(*this); }

CParentElementInfo* CInvoice::GetClassInfo() const {
    static CParentElementInfo info(XmlElementGroupType_Sequence, XmlElementType_Element,
                                   "Invoice", kNs, true, false, -1, ItemType_Invalid,
                                   nullptr, false);
    return &info;
}

CElementInfo** CInvoice::GetClassElementInfo() const {
    static CPrimitiveRestrictions none;
    static CElementInfoSeqPrimMnd reference("Reference", kNs, Id_Reference, false,
                                            ItemType_string, nullptr, kPreserve, none, nullptr);
    static CElementInfoSeqPrimMnd dueDate("DueDate", kNs, Id_DueDate, false, ItemType_date,
                                          nullptr, kCollapse, none, nullptr);
    static CElementInfo* infos[] = {&reference, &dueDate, nullptr};
    return infos;
}

CAttributeInfo** CInvoice::GetClassAttributeInfo() const {
    static CPrimitiveRestrictions none;
    static CAttributeInfoPrimitive terms("terms", "", Id_Terms, false, ItemType_i4, nullptr,
                                         kCollapse, none, nullptr);
    static CAttributeInfo* infos[] = {&terms, nullptr};
    return infos;
}

void CInvoice::InvokeProperty(int memberId, bool get, KxVariant& value) {
    switch (memberId) {
    case Id_Reference:
        get ? GetString(value, m_reference, m_hasReference)
            : SetString(value, m_reference, m_hasReference);
        break;
    case Id_DueDate:
        if (get)
            GetValue(value, m_dueDate, m_hasDueDate,
                     [](KxVariant& v, const CDateTime& d) { v.SetDate(d); });
        else
            SetValue(value, m_dueDate, m_hasDueDate,
                     [](const KxVariant& v) { return v.GetDate(); });
        break;
    case Id_Terms:
        if (get)
            GetValue(value, m_terms, m_hasTerms, [](KxVariant& v, long n) { v.SetI4(n); });
        else
            SetValue(value, m_terms, m_hasTerms, [](const KxVariant& v) { return v.GetI4(); });
        break;
    default: ThrowUnknownMember(memberId);
    }
}

bool CInvoice::operator==(const CInvoice& o) const {
    return SameOptional(m_hasReference, m_reference, o.m_hasReference, o.m_reference) &&
           SameOptional(m_hasDueDate, m_dueDate, o.m_hasDueDate, o.m_dueDate) &&
           SameOptional(m_hasTerms, m_terms, o.m_hasTerms, o.m_terms);
}

// ---- CPayment ----------------------------------------------------------------------------------

CPayment::CPayment() { SetElementName("Payment"); }
CPayment::CPayment(const CPayment& o)
    : CXmlGeneratedClass(o), m_card(CloneChild(o.m_card)), m_invoice(CloneChild(o.m_invoice)) {}
CPayment* CPayment::Clone() const { return new CPayment(*this); }

CParentElementInfo* CPayment::GetClassInfo() const {
    static CParentElementInfo info(XmlElementGroupType_Choice, XmlElementType_Group,
                                   "Payment", kNs, true, false, -1, ItemType_Invalid,
                                   nullptr, false);
    return &info;
}

CElementInfo** CPayment::GetClassElementInfo() const {
    static CElementInfoChoiceClsOpt card("Card", kNs, Id_Card, XmlElementType_Element, kCreate,
                                         COrdersFactory::ClassId_CCard);
    static CElementInfoChoiceClsOpt invoice("Invoice", kNs, Id_Invoice, XmlElementType_Element,
                                            kCreate, COrdersFactory::ClassId_CInvoice);
    static CElementInfo* infos[] = {&card, &invoice, nullptr};
    return infos;
}

CAttributeInfo** CPayment::GetClassAttributeInfo() const {
    static CAttributeInfo* infos[] = {nullptr};
    return infos;
}

void CPayment::InvokeProperty(int memberId, bool get, KxVariant& value) {
    switch (memberId) {
    case Id_Card: get ? GetChild(value, m_card) : SetChild(value, m_card, "Card"); break;
    case Id_Invoice:
        get ? GetChild(value, m_invoice) : SetChild(value, m_invoice, "Invoice");
        break;
    default: ThrowUnknownMember(memberId);
    }
}

bool CPayment::operator==(const CPayment& o) const {
    return SameChild(m_card, o.m_card) && SameChild(m_invoice, o.m_invoice);
}

// ---- collections -------------------------------------------------------------------------------

CLineCol::CLineCol() : CXmlCollection("Line", kNs, 1, -1) {}

CLineCol* CLineCol::Clone() const {
    CLineCol* copy = new CLineCol();
    for (CNode* node = GetHead(); node; node = node->m_next)
        copy->AppendItem(node->m_item->Clone());
    return copy;
}

CSmartPtr<CXmlObjectBase> CLineCol::CreateItem(CXmlElement*) { return new CLine(); }
CLine* CLineCol::Item(int index) const {
    return static_cast<CLine*>(GetNodeAtIndex(index)->m_item);
}
void CLineCol::Add(CLine* line) { AppendItem(line); }

bool CLineCol::operator==(const CLineCol& o) const {
    if (GetCount() != o.GetCount()) return false;
    for (CNode *a = GetHead(), *b = o.GetHead(); a; a = a->m_next, b = b->m_next)
        if (!(*static_cast<CLine*>(a->m_item) == *static_cast<CLine*>(b->m_item))) return false;
    return true;
}

COrderCol::COrderCol() : CXmlCollection("Order", kNs, 1, -1) {}

COrderCol* COrderCol::Clone() const {
    COrderCol* copy = new COrderCol();
    for (CNode* node = GetHead(); node; node = node->m_next)
        copy->AppendItem(node->m_item->Clone());
    return copy;
}

CSmartPtr<CXmlObjectBase> COrderCol::CreateItem(CXmlElement*) { return new COrder(); }
COrder* COrderCol::Item(int index) const {
    return static_cast<COrder*>(GetNodeAtIndex(index)->m_item);
}
void COrderCol::Add(COrder* order) { AppendItem(order); }

bool COrderCol::operator==(const COrderCol& o) const {
    if (GetCount() != o.GetCount()) return false;
    for (CNode *a = GetHead(), *b = o.GetHead(); a; a = a->m_next, b = b->m_next)
        if (!(*static_cast<COrder*>(a->m_item) == *static_cast<COrder*>(b->m_item))) return false;
    return true;
}

// ---- COrder ------------------------------------------------------------------------------------

COrder::COrder()
    : m_customer(new CCustomer()), m_lines(new CLineCol()), m_payment(new CPayment()),
      m_tags(new CstringCol("Tag", kNs, 0, -1)) {
    SetElementName("Order");
}
COrder::COrder(const COrder& o)
    : CXmlGeneratedClass(o), m_orderDate(o.m_orderDate), m_hasOrderDate(o.m_hasOrderDate),
      m_customer(CloneChild(o.m_customer)), m_lines(CloneChild(o.m_lines)),
      m_payment(CloneChild(o.m_payment)), m_tags(CloneChild(o.m_tags)), m_total(o.m_total),
      m_hasTotal(o.m_hasTotal), m_note(o.m_note), m_hasNote(o.m_hasNote), m_id(o.m_id),
      m_hasId(o.m_hasId), m_seq(o.m_seq), m_hasSeq(o.m_hasSeq), m_status(o.m_status),
      m_hasStatus(o.m_hasStatus) {}
COrder* COrder::Clone() const { return new COrder(*this); }

CParentElementInfo* COrder::GetClassInfo() const {
    static CParentElementInfo info(XmlElementGroupType_Sequence, XmlElementType_Element,
                                   "Order", kNs, true, false, -1, ItemType_Invalid,
                                   nullptr, false);
    return &info;
}

CElementInfo** COrder::GetClassElementInfo() const {
    static CPrimitiveRestrictions none;
    static CElementInfoSeqPrimMnd orderDate("OrderDate", kNs, Id_OrderDate, false,
                                            ItemType_datetime, nullptr, kCollapse, none, nullptr);
    static CElementInfoSeqClsMnd customer("Customer", kNs, Id_Customer, XmlElementType_Element,
                                          kCreate, COrdersFactory::ClassId_CCustomer, false);
    static CElementInfoSeqClsCol line("Line", kNs, Id_Line, XmlElementType_Element);
    static CElementInfoSeqClsMnd payment("Payment", kNs, Id_Payment, XmlElementType_Group,
                                         kCreate, COrdersFactory::ClassId_CPayment, false);
    static CElementInfoSeqPrimCol tag("Tag", kNs, Id_Tag);
    static CElementInfoSeqPrimMnd total("Total", kNs, Id_Total, false, ItemType_decimal, nullptr,
                                        kCollapse, none, nullptr);
    static CElementInfoSeqPrimOpt note("Note", kNs, Id_Note, false, ItemType_string, nullptr,
                                       kPreserve, none, nullptr);
    static CElementInfo* infos[] = {&orderDate, &customer, &line, &payment,
                                    &tag,       &total,    &note, nullptr};
    return infos;
}

CAttributeInfo** COrder::GetClassAttributeInfo() const {
    static CPrimitiveRestrictions none;
    static CAttributeInfoPrimitive id("id", "", Id_Id, false, ItemType_string, nullptr, kPreserve,
                                      none, nullptr);
    static CAttributeInfoPrimitive seq("seq", "", Id_Seq, false, ItemType_i4, nullptr, kCollapse,
                                       none, nullptr);
    static CAttributeInfoEnum status("status", "", Id_Status, false, &StatusTypeToString,
                                     &StringToStatusType, nullptr);
    static CAttributeInfo* infos[] = {&id, &seq, &status, nullptr};
    return infos;
}

void COrder::InvokeProperty(int memberId, bool get, KxVariant& value) {
    switch (memberId) {
    case Id_OrderDate:
        if (get)
            GetValue(value, m_orderDate, m_hasOrderDate,
                     [](KxVariant& v, const CDateTime& d) { v.SetDateTime(d); });
        else
            SetValue(value, m_orderDate, m_hasOrderDate,
                     [](const KxVariant& v) { return v.GetDateTime(); });
        break;
    case Id_Customer:
        get ? GetChild(value, m_customer)
            : SetChild(value, m_customer, "Customer");
        break;
    case Id_Line: GetCollection(value, m_lines.Ptr(), get, "Line"); break;
    case Id_Payment:
        get ? GetChild(value, m_payment)
            : SetChild(value, m_payment, "Payment");
        break;
    case Id_Tag: GetCollection(value, m_tags.Ptr(), get, "Tag"); break;
    case Id_Total:
        if (get)
            GetValue(value, m_total, m_hasTotal,
                     [](KxVariant& v, const CDecimal& d) { v.SetDecimal(d); });
        else
            SetValue(value, m_total, m_hasTotal, [](const KxVariant& v) { return v.GetDecimal(); });
        break;
    case Id_Note:
        get ? GetString(value, m_note, m_hasNote)
            : SetString(value, m_note, m_hasNote);
        break;
    case Id_Id: get ? GetString(value, m_id, m_hasId) : SetString(value, m_id, m_hasId); break;
    case Id_Seq:
        if (get)
            GetValue(value, m_seq, m_hasSeq, [](KxVariant& v, long n) { v.SetI4(n); });
        else
            SetValue(value, m_seq, m_hasSeq, [](const KxVariant& v) { return v.GetI4(); });
        break;
    case Id_Status:
        if (get)
            GetValue(value, m_status, m_hasStatus,
                     [](KxVariant& v, StatusType s) { v.SetI4(s); });
        else
            SetValue(value, m_status, m_hasStatus,
                     [](const KxVariant& v) { return static_cast<StatusType>(v.GetI4()); });
        break;
    default: ThrowUnknownMember(memberId);
    }
}

bool COrder::operator==(const COrder& o) const {
    return SameOptional(m_hasOrderDate, m_orderDate, o.m_hasOrderDate, o.m_orderDate) &&
           SameChild(m_customer, o.m_customer) && SameChild(m_lines, o.m_lines) &&
           SameChild(m_payment, o.m_payment) && SameStrings(*m_tags, *o.m_tags) &&
           SameOptional(m_hasTotal, m_total, o.m_hasTotal, o.m_total) &&
           SameOptional(m_hasNote, m_note, o.m_hasNote, o.m_note) &&
           SameOptional(m_hasId, m_id, o.m_hasId, o.m_id) &&
           SameOptional(m_hasSeq, m_seq, o.m_hasSeq, o.m_seq) &&
           SameOptional(m_hasStatus, m_status, o.m_hasStatus, o.m_status);
}

// ---- COrders -----------------------------------------------------------------------------------

COrders::COrders() : m_orders(new COrderCol()) { SetElementName("Orders"); }
COrders::COrders(const COrders& o)
    : CXmlGeneratedClass(o), m_orders(CloneChild(o.m_orders)), m_generated(o.m_generated),
      m_hasGenerated(o.m_hasGenerated), m_count(o.m_count), m_hasCount(o.m_hasCount) {}
COrders* COrders::Clone() const { return new COrders(*this); }

CParentElementInfo* COrders::GetClassInfo() const {
    static CParentElementInfo info(XmlElementGroupType_Sequence, XmlElementType_Element,
                                   "Orders", kNs, true, false, -1, ItemType_Invalid,
                                   nullptr, false);
    return &info;
}

CElementInfo** COrders::GetClassElementInfo() const {
    static CElementInfoSeqClsCol order("Order", kNs, Id_Order, XmlElementType_Element);
    static CElementInfo* infos[] = {&order, nullptr};
    return infos;
}

CAttributeInfo** COrders::GetClassAttributeInfo() const {
    static CPrimitiveRestrictions none;
    static CAttributeInfoPrimitive generated("generated", "", Id_Generated, true,
                                             ItemType_datetime, nullptr, kCollapse, none,
                                             nullptr);
    static CAttributeInfoPrimitive count("count", "", Id_Count, true, ItemType_i4, nullptr,
                                         kCollapse, none, nullptr);
    static CAttributeInfo* infos[] = {&generated, &count, nullptr};
    return infos;
}

void COrders::InvokeProperty(int memberId, bool get, KxVariant& value) {
    switch (memberId) {
    case Id_Order: GetCollection(value, m_orders.Ptr(), get, "Order"); break;
    case Id_Generated:
        if (get)
            GetValue(value, m_generated, m_hasGenerated,
                     [](KxVariant& v, const CDateTime& d) { v.SetDateTime(d); });
        else
            SetValue(value, m_generated, m_hasGenerated,
                     [](const KxVariant& v) { return v.GetDateTime(); });
        break;
    case Id_Count:
        if (get)
            GetValue(value, m_count, m_hasCount, [](KxVariant& v, long n) { v.SetI4(n); });
        else
            SetValue(value, m_count, m_hasCount, [](const KxVariant& v) { return v.GetI4(); });
        break;
    default: ThrowUnknownMember(memberId);
    }
}

bool COrders::operator==(const COrders& o) const {
    return SameChild(m_orders, o.m_orders) &&
           SameOptional(m_hasGenerated, m_generated, o.m_hasGenerated, o.m_generated) &&
           SameOptional(m_hasCount, m_count, o.m_hasCount, o.m_count);
}

// ---- Fast Infoset vocabulary -------------------------------------------------------------------

void AddOrderVocabulary(CFIVocabulary& vocabulary, const char* prefix) {
    static const char* const elements[] = {
        "Orders", "Order", "OrderDate", "Customer", "Name", "Email", "Phone", "BillingAddress",
        "ShippingAddress", "Street", "City", "PostalCode", "Country", "Line", "Sku",
        "Description", "Quantity", "UnitPrice", "Weight", "Taxable", "Card", "Holder", "Number",
        "Expiry", "Invoice", "Reference", "DueDate", "Tag", "Total", "Note"};
    static const char* const attributes[] = {"generated", "count", "id", "seq", "status",
                                             "vip", "no", "brand", "terms"};
    const std::string elementPrefix = prefix != nullptr ? prefix : "";
    for (const char* name : elements) vocabulary.AddElement(elementPrefix, kNs, name);
    for (const char* name : attributes) vocabulary.AddAttribute("", "", name);
}

}  // namespace KxOrders
