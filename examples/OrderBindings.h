// Sample bindings of the benchmark order schema (urn:bench:orders), in the shape the code
// generator emits: static records, one property accessor, no serialisation code. Members are
// public fields; an optional simple member has a "has" flag, an optional child object is a null
// smart pointer when unset, and mandatory children and collections exist from construction on.
#ifndef KX_EXAMPLES_ORDERBINDINGS_H
#define KX_EXAMPLES_ORDERBINDINGS_H

#include <string>

#include "KxXmlLib16.h"

namespace KxOrders {

using namespace KxXmlLib16;

// The namespace of every element of the schema.
extern const char* const kOrdersNamespace;

// StatusType: the lifecycle of an order. The underlying type is fixed so that any number read
// from a variant can be held (and refused when written).
enum StatusType : int {
    StatusType_pending = 0,
    StatusType_confirmed = 1,
    StatusType_shipped = 2,
    StatusType_delivered = 3,
    StatusType_cancelled = 4
};
// The literal of a status. Throws CKxInvalidValueException
// "The value [%d] is not a valid StatusType" for a number outside the enumeration.
const char* StatusTypeToString(int value);
// The status of a literal (exact, case-sensitive). Throws CKxInvalidValueException
// "The value [%s] is not a valid StatusType" for any other text.
int StringToStatusType(const char* text);

// Creates the classes of the schema by class id.
class COrdersFactory : public CClassfactoryBase {
public:
    enum ClassId {
        ClassId_COrders = 1,
        ClassId_COrder,
        ClassId_CCustomer,
        ClassId_CAddress,
        ClassId_CLine,
        ClassId_CPayment,
        ClassId_CCard,
        ClassId_CInvoice
    };
    // A new object of the class, named `elementName` (kept as the class's own name when null
    // or empty); null for an unknown class id.
    static CSmartPtr<CXmlObjectBase> CreateByClass(int classId, const char* elementName);
};

// The generated part every class below shares.
#define KX_ORDERS_GENERATED_CLASS(Class)                                                    \
    KxXmlLib16Data::CParentElementInfo* GetClassInfo() const override;                      \
    KxXmlLib16Data::CElementInfo** GetClassElementInfo() const override;                    \
    KxXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const override;                \
    void InvokeProperty(int memberId, bool get, KxVariant& value) override;                 \
    Class* Clone() const override;                                                          \
    /* Field-by-field and deep: children and collections are compared by content. */       \
    bool operator==(const Class& other) const;                                              \
    bool operator!=(const Class& other) const { return !(*this == other); }

// AddressType: Street, City, PostalCode, Country.
class CAddress : public CXmlGeneratedClass {
public:
    enum MemberId { Id_Street = 1, Id_City, Id_PostalCode, Id_Country };

    CAddress();
    KX_ORDERS_GENERATED_CLASS(CAddress)

    std::string m_street, m_city, m_postalCode, m_country;
    bool m_hasStreet = false, m_hasCity = false, m_hasPostalCode = false, m_hasCountry = false;
};

// CustomerType: Name, Email, Phone?, BillingAddress, ShippingAddress?; @id, @vip?.
class CCustomer : public CXmlGeneratedClass {
public:
    enum MemberId {
        Id_Name = 1, Id_Email, Id_Phone, Id_BillingAddress, Id_ShippingAddress, Id_Id, Id_Vip
    };

    CCustomer();
    CCustomer(const CCustomer& other);
    CCustomer& operator=(const CCustomer&) = delete;
    KX_ORDERS_GENERATED_CLASS(CCustomer)

    std::string m_name, m_email, m_phone;
    bool m_hasName = false, m_hasEmail = false, m_hasPhone = false;
    CSmartPtr<CAddress> m_billingAddress;   // created with the customer
    CSmartPtr<CAddress> m_shippingAddress;  // null when absent
    std::string m_id;
    bool m_hasId = false;
    bool m_vip = false;
    bool m_hasVip = false;
};

// LineType: Sku, Description, Quantity, UnitPrice, Weight, Taxable; @no.
class CLine : public CXmlGeneratedClass {
public:
    enum MemberId {
        Id_Sku = 1, Id_Description, Id_Quantity, Id_UnitPrice, Id_Weight, Id_Taxable, Id_No
    };

    CLine();
    KX_ORDERS_GENERATED_CLASS(CLine)

    std::string m_sku, m_description;
    bool m_hasSku = false, m_hasDescription = false;
    long m_quantity = 0;
    bool m_hasQuantity = false;
    CDecimal m_unitPrice;
    bool m_hasUnitPrice = false;
    double m_weight = 0;
    bool m_hasWeight = false;
    bool m_taxable = false;
    bool m_hasTaxable = false;
    long m_no = 0;
    bool m_hasNo = false;
};

// CardType: Holder, Number, Expiry (xs:date); @brand.
class CCard : public CXmlGeneratedClass {
public:
    enum MemberId { Id_Holder = 1, Id_Number, Id_Expiry, Id_Brand };

    CCard();
    KX_ORDERS_GENERATED_CLASS(CCard)

    std::string m_holder, m_number;
    bool m_hasHolder = false, m_hasNumber = false;
    CDateTime m_expiry{CDateTime::dt_date};
    bool m_hasExpiry = false;
    std::string m_brand;
    bool m_hasBrand = false;
};

// InvoiceType: Reference, DueDate (xs:date); @terms.
class CInvoice : public CXmlGeneratedClass {
public:
    enum MemberId { Id_Reference = 1, Id_DueDate, Id_Terms };

    CInvoice();
    KX_ORDERS_GENERATED_CLASS(CInvoice)

    std::string m_reference;
    bool m_hasReference = false;
    CDateTime m_dueDate{CDateTime::dt_date};
    bool m_hasDueDate = false;
    long m_terms = 0;
    bool m_hasTerms = false;
};

// The payment choice of an order (Card | Invoice). It has no element of its own: its branch is
// written straight into the order's element.
class CPayment : public CXmlGeneratedClass {
public:
    enum MemberId { Id_Card = 1, Id_Invoice };

    CPayment();
    CPayment(const CPayment& other);
    CPayment& operator=(const CPayment&) = delete;
    KX_ORDERS_GENERATED_CLASS(CPayment)

    CSmartPtr<CCard> m_card;        // null unless the card branch is chosen
    CSmartPtr<CInvoice> m_invoice;  // null unless the invoice branch is chosen
};

// The Line elements of an order (1..unbounded).
class CLineCol : public CXmlCollection {
public:
    CLineCol();
    CLineCol* Clone() const override;
    // A new CLine named "Line" for any element offered.
    CSmartPtr<CXmlObjectBase> CreateItem(CXmlElement* element) override;

    // The line at `index`; throws as CXmlCollection::GetNodeAtIndex.
    CLine* Item(int index) const;
    // Appends the line (the collection takes a reference); throws for a null line.
    void Add(CLine* line);
    bool operator==(const CLineCol& other) const;
};

// OrderType: OrderDate, Customer, Line+, (Card | Invoice), Tag*, Total, Note?; @id, @seq,
// @status.
class COrder : public CXmlGeneratedClass {
public:
    enum MemberId {
        Id_OrderDate = 1, Id_Customer, Id_Line, Id_Payment, Id_Tag, Id_Total, Id_Note,
        Id_Id, Id_Seq, Id_Status
    };

    COrder();
    COrder(const COrder& other);
    COrder& operator=(const COrder&) = delete;
    KX_ORDERS_GENERATED_CLASS(COrder)

    CDateTime m_orderDate;
    bool m_hasOrderDate = false;
    CSmartPtr<CCustomer> m_customer;  // created with the order
    CSmartPtr<CLineCol> m_lines;
    CSmartPtr<CPayment> m_payment;    // created with the order
    CSmartPtr<CstringCol> m_tags;
    CDecimal m_total;
    bool m_hasTotal = false;
    std::string m_note;
    bool m_hasNote = false;
    std::string m_id;
    bool m_hasId = false;
    long m_seq = 0;
    bool m_hasSeq = false;
    StatusType m_status = StatusType_pending;
    bool m_hasStatus = false;
};

// The Order elements of the document (1..unbounded).
class COrderCol : public CXmlCollection {
public:
    COrderCol();
    COrderCol* Clone() const override;
    // A new COrder named "Order" for any element offered.
    CSmartPtr<CXmlObjectBase> CreateItem(CXmlElement* element) override;

    // The order at `index`; throws as CXmlCollection::GetNodeAtIndex.
    COrder* Item(int index) const;
    // Appends the order (the collection takes a reference); throws for a null order.
    void Add(COrder* order);
    bool operator==(const COrderCol& other) const;
};

// The document element Orders: Order+; @generated?, @count?.
class COrders : public CXmlGeneratedClass {
public:
    enum MemberId { Id_Order = 1, Id_Generated, Id_Count };

    COrders();
    COrders(const COrders& other);
    COrders& operator=(const COrders&) = delete;
    KX_ORDERS_GENERATED_CLASS(COrders)

    CSmartPtr<COrderCol> m_orders;
    CDateTime m_generated;
    bool m_hasGenerated = false;
    long m_count = 0;
    bool m_hasCount = false;
};

#undef KX_ORDERS_GENERATED_CLASS

// Enters the schema's names in a Fast Infoset vocabulary, as generated code does once at
// start-up into CFastInfosetContext::GetVocabulary() (used with SetUseGeneratedVocabulary):
// every element name in the schema's namespace under `prefix` (the prefix the writing context
// gives that namespace; "" when it is the default namespace), and the unqualified attribute
// names. Never throws.
void AddOrderVocabulary(CFIVocabulary& vocabulary, const char* prefix = "");

}  // namespace KxOrders

#endif
