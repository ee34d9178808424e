// The records and accessors of the sample order bindings.
#include "FlatBindings.h"

namespace KxExamples {

using namespace KxXmlLib16Data;

namespace {

const char* const kNs = "urn:bench:orders";

// Stores a string member from the variant (unset when the variant is not valid).
void SetString(const KxVariant& value, std::string& field, bool& isSet) {
    isSet = value.IsValid() && !value.IsNil();
    field = isSet ? value.GetString() : std::string();
}
void GetString(KxVariant& value, const std::string& field, bool isSet) {
    value.Clear();
    if (isSet) value.SetString(field);
}

}  // namespace

// ---- CLine -----------------------------------------------------------------------------------

CLine::CLine() : m_tags(new CstringCol("Tag", kNs, 0, -1)) { SetElementName("Line"); }
CLine::CLine(const CLine& other)
    : CXmlGeneratedClass(other), m_sku(other.m_sku), m_hasSku(other.m_hasSku),
      m_quantity(other.m_quantity), m_hasQuantity(other.m_hasQuantity),
      m_quantityNil(other.m_quantityNil), m_note(other.m_note), m_hasNote(other.m_hasNote),
      m_tags(other.m_tags->Clone()), m_id(other.m_id), m_hasId(other.m_hasId) {}
CXmlObjectBase* CLine::Clone() const { return new CLine(*this); }

CParentElementInfo* CLine::GetClassInfo() const {
    static CParentElementInfo info(XmlElementGroupType_Sequence, XmlElementType_Element, "Line",
                                   kNs, true, false, -1, ItemType_Invalid, nullptr, false);
    return &info;
}

CElementInfo** CLine::GetClassElementInfo() const {
    static CElementInfoSeqPrimMnd sku("Sku", kNs, Id_Sku, false, ItemType_string, nullptr,
                                      CWhitespaceUtils::WhitespaceRule_Preserve,
                                      CPrimitiveRestrictions(nullptr, 1, 8, nullptr, nullptr,
                                                             nullptr, nullptr, -1, -1, -1),
                                      nullptr);
    static CElementInfoSeqPrimMnd quantity("Quantity", kNs, Id_Quantity, true, ItemType_i4,
                                           nullptr, CWhitespaceUtils::WhitespaceRule_Collapse,
                                           CPrimitiveRestrictions(), "1");
    static CElementInfoSeqPrimOpt note("Note", kNs, Id_Note, false, ItemType_string, nullptr,
                                       CWhitespaceUtils::WhitespaceRule_Preserve,
                                       CPrimitiveRestrictions(), nullptr);
    static CElementInfoSeqPrimCol tag("Tag", kNs, Id_Tag);
    static CElementInfo* infos[] = {&sku, &quantity, &note, &tag, nullptr};
    return infos;
}

CAttributeInfo** CLine::GetClassAttributeInfo() const {
    static CAttributeInfoPrimitive id("id", "", Id_Id, false, ItemType_string, nullptr,
                                      CWhitespaceUtils::WhitespaceRule_Collapse,
                                      CPrimitiveRestrictions(), nullptr);
    static CAttributeInfo* infos[] = {&id, nullptr};
    return infos;
}

void CLine::InvokeProperty(int memberId, bool get, KxVariant& value) {
    switch (memberId) {
    case Id_Sku: get ? GetString(value, m_sku, m_hasSku) : SetString(value, m_sku, m_hasSku); break;
    case Id_Note:
        get ? GetString(value, m_note, m_hasNote) : SetString(value, m_note, m_hasNote);
        break;
    case Id_Id: get ? GetString(value, m_id, m_hasId) : SetString(value, m_id, m_hasId); break;
    case Id_Quantity:
        if (get) {
            value.Clear();
            if (m_quantityNil) value.SetNil();
            else if (m_hasQuantity) value.SetI4(m_quantity);
        } else {
            m_quantityNil = value.IsNil();
            m_hasQuantity = value.IsValid() && !value.IsNil();
            m_quantity = m_hasQuantity ? value.GetI4() : 0;
        }
        break;
    case Id_Tag:
        if (!get) throw CKxInvalidParamException("The collection Tag cannot be replaced");
        value.SetXmlCollection(m_tags);
        break;
    default: throw CKxInvalidParamException("Unknown member id");
    }
}

// ---- CPayment --------------------------------------------------------------------------------

CPayment::CPayment() { SetElementName("Payment"); }
CXmlObjectBase* CPayment::Clone() const { return new CPayment(*this); }

CParentElementInfo* CPayment::GetClassInfo() const {
    static CParentElementInfo info(XmlElementGroupType_Choice, XmlElementType_Element, "Payment",
                                   kNs, true, false, -1, ItemType_Invalid, nullptr, false);
    return &info;
}

CElementInfo** CPayment::GetClassElementInfo() const {
    static CPrimitiveRestrictions none;
    static CElementInfoChoicePrimOpt card("Card", kNs, Id_Card, false, ItemType_string, nullptr,
                                          CWhitespaceUtils::WhitespaceRule_Preserve, none,
                                          nullptr);
    static CElementInfoChoicePrimOpt invoice("Invoice", kNs, Id_Invoice, false, ItemType_string,
                                             nullptr, CWhitespaceUtils::WhitespaceRule_Preserve,
                                             none, nullptr);
    static CElementInfo* infos[] = {&card, &invoice, nullptr};
    return infos;
}

CAttributeInfo** CPayment::GetClassAttributeInfo() const {
    static CAttributeInfo* infos[] = {nullptr};
    return infos;
}

void CPayment::InvokeProperty(int memberId, bool get, KxVariant& value) {
    switch (memberId) {
    case Id_Card:
        get ? GetString(value, m_card, m_hasCard) : SetString(value, m_card, m_hasCard);
        break;
    case Id_Invoice:
        get ? GetString(value, m_invoice, m_hasInvoice)
            : SetString(value, m_invoice, m_hasInvoice);
        break;
    default: throw CKxInvalidParamException("Unknown member id");
    }
}

// ---- CAddress --------------------------------------------------------------------------------

CAddress::CAddress() { SetElementName("Address"); }
CXmlObjectBase* CAddress::Clone() const { return new CAddress(*this); }

CParentElementInfo* CAddress::GetClassInfo() const {
    static CParentElementInfo info(XmlElementGroupType_All, XmlElementType_Element, "Address",
                                   kNs, false, false, -1, ItemType_Invalid, nullptr, false);
    return &info;
}

CElementInfo** CAddress::GetClassElementInfo() const {
    static CPrimitiveRestrictions none;
    static CElementInfoAllPrimMnd street("Street", kNs, Id_Street, false, ItemType_string,
                                         nullptr, CWhitespaceUtils::WhitespaceRule_Preserve, none,
                                         nullptr);
    static CElementInfoAllPrimMnd city("City", kNs, Id_City, false, ItemType_string, nullptr,
                                       CWhitespaceUtils::WhitespaceRule_Preserve, none, nullptr);
    static CElementInfoAllPrimOpt country("Country", kNs, Id_Country, false, ItemType_string,
                                          nullptr, CWhitespaceUtils::WhitespaceRule_Preserve,
                                          none, nullptr);
    static CElementInfo* infos[] = {&street, &city, &country, nullptr};
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
    case Id_City: get ? GetString(value, m_city, m_hasCity) : SetString(value, m_city, m_hasCity); break;
    case Id_Country:
        get ? GetString(value, m_country, m_hasCountry)
            : SetString(value, m_country, m_hasCountry);
        break;
    default: throw CKxInvalidParamException("Unknown member id");
    }
}

// ---- Fast Infoset vocabulary ----------------------------------------------------------------

void AddFlatVocabulary(CFIVocabulary& vocabulary, const char* prefix) {
    static const char* const elements[] = {"Line",    "Sku",  "Quantity", "Note",   "Tag",
                                           "Payment", "Card", "Invoice",  "Address", "Street",
                                           "City",    "Country"};
    const std::string elementPrefix = prefix != nullptr ? prefix : "";
    for (const char* name : elements) vocabulary.AddElement(elementPrefix, kNs, name);
    vocabulary.AddAttribute("", "", "id");
    vocabulary.AddAttribute("xsi", "http://www.w3.org/2001/XMLSchema-instance", "nil");
}

}  // namespace KxExamples
