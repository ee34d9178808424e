// Small flat sample bindings (urn:bench:orders, trimmed types), in the shape the code
// generator emits: static records, one property accessor, no serialisation code.
#ifndef KX_EXAMPLES_FLATBINDINGS_H
#define KX_EXAMPLES_FLATBINDINGS_H

#include <string>

#include "KxXmlLib16.h"

namespace KxExamples {

using namespace KxXmlLib16;

// <Line id="..."> Sku, Quantity, Note?, Tag* </Line> (an order line, trimmed).
class CLine : public CXmlGeneratedClass {
public:
    enum MemberId { Id_Sku = 1, Id_Quantity = 2, Id_Note = 3, Id_Tag = 4, Id_Id = 5 };

    CLine();
    CLine(const CLine& other);
    CXmlObjectBase* Clone() const override;
    KxXmlLib16Data::CParentElementInfo* GetClassInfo() const override;
    KxXmlLib16Data::CElementInfo** GetClassElementInfo() const override;
    KxXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const override;
    void InvokeProperty(int memberId, bool get, KxVariant& value) override;

    std::string m_sku;
    bool m_hasSku = false;
    long m_quantity = 0;
    bool m_hasQuantity = false;
    bool m_quantityNil = false;
    std::string m_note;
    bool m_hasNote = false;
    CSmartPtr<CstringCol> m_tags;
    std::string m_id;
    bool m_hasId = false;
};

// <Payment> (Card | Invoice) </Payment>: a choice of two simple branches.
class CPayment : public CXmlGeneratedClass {
public:
    enum MemberId { Id_Card = 1, Id_Invoice = 2 };

    CPayment();
    CXmlObjectBase* Clone() const override;
    KxXmlLib16Data::CParentElementInfo* GetClassInfo() const override;
    KxXmlLib16Data::CElementInfo** GetClassElementInfo() const override;
    KxXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const override;
    void InvokeProperty(int memberId, bool get, KxVariant& value) override;

    std::string m_card;
    bool m_hasCard = false;
    std::string m_invoice;
    bool m_hasInvoice = false;
};

// <Address> Street, City, Country? </Address> as an all group (any order).
class CAddress : public CXmlGeneratedClass {
public:
    enum MemberId { Id_Street = 1, Id_City = 2, Id_Country = 3 };

    CAddress();
    CXmlObjectBase* Clone() const override;
    KxXmlLib16Data::CParentElementInfo* GetClassInfo() const override;
    KxXmlLib16Data::CElementInfo** GetClassElementInfo() const override;
    KxXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const override;
    void InvokeProperty(int memberId, bool get, KxVariant& value) override;

    std::string m_street, m_city, m_country;
    bool m_hasStreet = false, m_hasCity = false, m_hasCountry = false;
};

// Enters the names of these classes in a Fast Infoset vocabulary, as generated code does at
// start-up (see KxOrders::AddOrderVocabulary): the element names in urn:bench:orders under
// `prefix` ("" when it is the writer's default namespace), the attribute id without a prefix,
// and xsi:nil under "xsi" for the nillable Quantity. Never throws.
void AddFlatVocabulary(CFIVocabulary& vocabulary, const char* prefix = "");

}  // namespace KxExamples

#endif
