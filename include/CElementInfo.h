// CElementInfo: the static records that describe the child-element members of a generated
// class (one per member, in schema order), with the primitive, enumerated and collection kinds
// for sequence, choice and all groups.
#ifndef KX_CELEMENTINFO_H
#define KX_CELEMENTINFO_H

#include <atomic>
#include <string>

#include "CParentElementInfo.h"
#include "CPrimitiveRestrictions.h"
#include "CSmartPtr.h"
#include "CWhitespaceUtils.h"
#include "KxConfig.h"
#include "KxTypes.h"

namespace KxXmlLib16 {
class CSerializationContext;
class CXmlAttribute;
class CXmlElement;
class CXmlCollectionBase;
class CXmlGeneratedClass;
class CXmlObjectBase;
class CXmlWriter;
class KxVariant;
}  // namespace KxXmlLib16

namespace KxXmlLib16Data {

using KxXmlLib16::CSerializationContext;
using KxXmlLib16::CXmlElement;
using KxXmlLib16::CXmlGeneratedClass;
using KxXmlLib16::CXmlObjectBase;
using KxXmlLib16::CXmlWriter;
using KxXmlLib16::KxVariant;

// Base of the element records. Immutable after construction; shared by all threads.
class KX_EXPORT CElementInfo {
public:
    using EnumToString = const char* (*)(int);
    using StringToEnum = int (*)(const char*);

    CElementInfo(const CElementInfo&) = delete;
    CElementInfo& operator=(const CElementInfo&) = delete;
    virtual ~CElementInfo();

    // Writes the member; answers whether anything was written.
    virtual bool ElementToXml(const CSerializationContext& ctx, const CXmlGeneratedClass* object,
                              CXmlWriter* writer) const = 0;
    // Tries to read the member from the element under *cursor, advancing the cursor past what
    // it consumed; answers whether the member matched.
    virtual bool ElementFromXml(const CSerializationContext& ctx, CXmlGeneratedClass* object,
                                CXmlElement* parent, CXmlElement** cursor,
                                const char* parentNamespace, XmlElementType elementType) = 0;
    // Presence check of an all-group member. The base throws CKxException "Not implemented,
    // should never be called".
    virtual bool Validate(const CSerializationContext& ctx, const CXmlGeneratedClass* object,
                          bool found, bool required) const;
    // Writes attributes of a content-only child onto the parent's element; the base does nothing.
    virtual void PseudoChildAttributeToXml(const CSerializationContext& ctx,
                                           const CXmlGeneratedClass* object,
                                           CXmlWriter* writer) const;
    // Whether an all-group member written by this record may be absent from a choice.
    virtual bool IsOptionalChoiceBranch(const CXmlGeneratedClass* object) const;
    // Whether `attribute` of the object's own element belongs to a content-only child of this
    // member (whose attributes live on the parent's element). The base answers false.
    virtual bool ClaimsParentAttribute(const CSerializationContext& ctx,
                                       const CXmlGeneratedClass* object,
                                       KxXmlLib16::CXmlAttribute* attribute) const;

    // Local name equal, and (unless IgnoreNamespaces) namespace URI equal. False for null.
    bool IsThisElement(const CSerializationContext& ctx, const CXmlElement* element) const;
    // The namespace an untyped member's output goes to, by the wildcard's constraint.
    static std::string GetAnyDefaultNamespace(const char* namespaceConstraint,
                                              const char* defaultNamespace,
                                              const char* targetNamespace);
    // Facet check of a primitive record; other records throw CKxException
    // "Cannot CheckRestriction for type: <type name>".
    void CheckRestriction(const KxVariant& value) const;
    // InvokeProperty get; a CKxException becomes CKxValidationException "Failed to get the
    // property value for [%s]." (element name, empty path) with the original as inner.
    void InvokePropertyGet(CXmlGeneratedClass* object, KxVariant& value) const;
    // InvokeProperty set; a CKxException becomes CKxValidationException "Failed to set the
    // property value." with `element`'s XPath and the original as inner.
    void InvokePropertySet(CXmlGeneratedClass* object, KxVariant& value,
                           const CXmlElement& element) const;
    // InvokePropertyGet on a const object.
    void ReadProperty(const CXmlGeneratedClass* object, KxVariant& value) const;

    const std::string& GetElementName() const { return m_name; }
    const std::string& GetNamespace() const { return m_namespace; }
    int GetMemberId() const { return m_memberId; }
    const KxXmlLib16::CPrimitiveRestrictions& GetRestrictions() const { return m_restrictions; }
    KxXmlLib16::ItemType GetItemType() const { return m_itemType; }
    const std::string& GetFormat() const { return m_format; }
    KxXmlLib16::CWhitespaceUtils::WhitespaceRule GetWhitespaceRule() const { return m_whitespace; }
    const std::string& GetDefaultValue() const { return m_defaultValue; }
    bool IsNillable() const { return m_nillable; }
    bool IsPrimitive() const { return m_primitive; }
    EnumToString GetEnumToString() const { return m_enumToString; }
    StringToEnum GetStringToEnum() const { return m_stringToEnum; }
    // True for the records of repeated members (the ...Col kinds), whose value is a collection.
    bool IsCollection() const;

protected:
    // Collections and untyped members.
    CElementInfo(const char* name, const char* namespaceUri, int memberId);
    // Primitive members.
    CElementInfo(const char* name, const char* namespaceUri, int memberId, bool nillable,
                 KxXmlLib16::ItemType type, const char* format,
                 KxXmlLib16::CWhitespaceUtils::WhitespaceRule whitespace,
                 const KxXmlLib16::CPrimitiveRestrictions& restrictions,
                 const char* defaultValue);
    // Enumerated members.
    CElementInfo(const char* name, const char* namespaceUri, int memberId, bool nillable,
                 EnumToString enumToString, StringToEnum stringToEnum, const char* defaultValue);

    // Shared write bodies; each answers whether something was written.
    bool ElementToXmlPrim(const CSerializationContext& ctx, const CXmlGeneratedClass* object,
                          CXmlWriter* writer) const;
    bool ElementToXmlEnum(const CSerializationContext& ctx, const CXmlGeneratedClass* object,
                          CXmlWriter* writer, EnumToString enumToString) const;
    bool ElementToXmlCol(const CSerializationContext& ctx, const CXmlGeneratedClass* object,
                         CXmlWriter* writer) const;
    // Shared read bodies, the cursor being on this member's element; they advance the cursor.
    void ElementFromXmlPrim(const CSerializationContext& ctx, CXmlGeneratedClass* object,
                            CXmlElement** cursor) const;
    void ElementFromXmlEnum(const CSerializationContext& ctx, CXmlGeneratedClass* object,
                            CXmlElement** cursor) const;
    // The mandatory-sequence search: reads with the Prim or Enum body, or throws
    // "Failed to find the required child element [%s]." (see the Mnd records).
    bool ElementFromXmlMandatory(const CSerializationContext& ctx, CXmlGeneratedClass* object,
                                 CXmlElement* parent, CXmlElement** cursor,
                                 XmlElementType elementType, bool isEnum) const;
    // The collection a variant refers to, or null. The reference the variant's getter adds is
    // handed to the smart pointer, so nothing leaks.
    static KxXmlLib16::CSmartPtr<KxXmlLib16::CXmlCollectionBase> TakeCollection(
        const KxVariant& value);
    // The member's collection; throws CKxInvalidStateException "The Property [%s] is
    // mandatory, it may not be NULL" when the class holds none.
    KxXmlLib16::CSmartPtr<KxXmlLib16::CXmlCollectionBase> GetCollection(
        CXmlGeneratedClass* object) const;
    // Forward to the child's FromXml_Int / AttributesToXml_Int.
    static CXmlElement* FromXml_Int(CXmlObjectBase* child, CXmlElement* parent,
                                    CXmlElement* current, const CSerializationContext& ctx,
                                    bool isNested);
    void AttributesToXml_Int(const CXmlObjectBase* child, CXmlWriter* writer,
                             const CSerializationContext& ctx) const;

private:
    // Reads the element's attributes (nil or unexpected); answers whether it is nil.
    bool ReadNilMark(const CSerializationContext& ctx, const CXmlElement& element) const;

    std::string m_name;
    std::string m_namespace;
    int m_memberId;
    KxXmlLib16::CPrimitiveRestrictions m_restrictions;
    KxXmlLib16::ItemType m_itemType;
    std::string m_format;
    KxXmlLib16::CWhitespaceUtils::WhitespaceRule m_whitespace;
    std::string m_defaultValue;
    bool m_nillable;
    EnumToString m_enumToString;
    StringToEnum m_stringToEnum;
    bool m_primitive;
    // IsCollection's answer, found on first use (records are shared by every thread): -1 not
    // known yet, 0 no, 1 yes.
    mutable std::atomic<signed char> m_isCollection{-1};
};

// ---- collection bases: (name, namespace, member id) -------------------------------------------

class KX_EXPORT CElementInfoSeqCol : public CElementInfo {
public:
    CElementInfoSeqCol(const char* name, const char* namespaceUri, int memberId);
    // Checks the count (unless IgnoreInvalidCollectionCounts), then writes the items.
    bool ElementToXml(const CSerializationContext& ctx, const CXmlGeneratedClass* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(const CSerializationContext& ctx, CXmlGeneratedClass* object,
                        CXmlElement* parent, CXmlElement** cursor, const char* parentNamespace,
                        XmlElementType elementType) override;
};

class KX_EXPORT CElementInfoChoiceCol : public CElementInfo {
public:
    CElementInfoChoiceCol(const char* name, const char* namespaceUri, int memberId);
    bool ElementToXml(const CSerializationContext& ctx, const CXmlGeneratedClass* object,
                      CXmlWriter* writer) const override;
    // Declines (cursor unchanged) when no item was read.
    bool ElementFromXml(const CSerializationContext& ctx, CXmlGeneratedClass* object,
                        CXmlElement* parent, CXmlElement** cursor, const char* parentNamespace,
                        XmlElementType elementType) override;
    bool IsOptionalChoiceBranch(const CXmlGeneratedClass* object) const override;
};

class KX_EXPORT CElementInfoAllCol : public CElementInfo {
public:
    CElementInfoAllCol(const char* name, const char* namespaceUri, int memberId);
    bool ElementToXml(const CSerializationContext& ctx, const CXmlGeneratedClass* object,
                      CXmlWriter* writer) const override;
    // Reads the items and always answers false.
    bool ElementFromXml(const CSerializationContext& ctx, CXmlGeneratedClass* object,
                        CXmlElement* parent, CXmlElement** cursor, const char* parentNamespace,
                        XmlElementType elementType) override;
};

// ---- primitive and enumerated members ------------------------------------------------------

#define KX_PRIM_CTOR(Class)                                                                   \
    Class(const char* name, const char* namespaceUri, int memberId, bool nillable,            \
          KxXmlLib16::ItemType type, const char* format,                                      \
          KxXmlLib16::CWhitespaceUtils::WhitespaceRule whitespace,                            \
          const KxXmlLib16::CPrimitiveRestrictions& restrictions, const char* defaultValue)
#define KX_ENUM_CTOR(Class)                                                                   \
    Class(const char* name, const char* namespaceUri, int memberId, bool nillable,            \
          EnumToString enumToString, StringToEnum stringToEnum, const char* defaultValue)
#define KX_ELEMENT_IO                                                                         \
    bool ElementToXml(const CSerializationContext& ctx, const CXmlGeneratedClass* object,     \
                      CXmlWriter* writer) const override;                                     \
    bool ElementFromXml(const CSerializationContext& ctx, CXmlGeneratedClass* object,         \
                        CXmlElement* parent, CXmlElement** cursor,                            \
                        const char* parentNamespace, XmlElementType elementType) override;
#define KX_ELEMENT_VALIDATE                                                                   \
    bool Validate(const CSerializationContext& ctx, const CXmlGeneratedClass* object,         \
                  bool found, bool required) const override;

// Mandatory member of a sequence: unset on writing throws CKxInvalidParamException "The
// Property [%s] is mandatory, it may not be NULL"; absent on reading throws
// CKxValidationException "Failed to find the required child element [%s]." (parent's XPath).
class KX_EXPORT CElementInfoSeqPrimMnd : public CElementInfo {
public:
    KX_PRIM_CTOR(CElementInfoSeqPrimMnd);
    KX_ELEMENT_IO
};
class KX_EXPORT CElementInfoSeqEnumMnd : public CElementInfo {
public:
    KX_ENUM_CTOR(CElementInfoSeqEnumMnd);
    KX_ELEMENT_IO
};
// Optional member of a sequence: an absent element never stops the sequence.
class KX_EXPORT CElementInfoSeqPrimOpt : public CElementInfo {
public:
    KX_PRIM_CTOR(CElementInfoSeqPrimOpt);
    KX_ELEMENT_IO
};
class KX_EXPORT CElementInfoSeqEnumOpt : public CElementInfo {
public:
    KX_ENUM_CTOR(CElementInfoSeqEnumOpt);
    KX_ELEMENT_IO
};
// Branch of a choice: declines with the cursor unchanged when the element is not its own.
class KX_EXPORT CElementInfoChoicePrimOpt : public CElementInfo {
public:
    KX_PRIM_CTOR(CElementInfoChoicePrimOpt);
    KX_ELEMENT_IO
    bool IsOptionalChoiceBranch(const CXmlGeneratedClass* object) const override;
};
class KX_EXPORT CElementInfoChoiceEnumOpt : public CElementInfo {
public:
    KX_ENUM_CTOR(CElementInfoChoiceEnumOpt);
    KX_ELEMENT_IO
    bool IsOptionalChoiceBranch(const CXmlGeneratedClass* object) const override;
};
// Mandatory member of an all group: Validate throws CKxValidationException "Failed to find the
// mandatory element [%s]." when required and not found.
class KX_EXPORT CElementInfoAllPrimMnd : public CElementInfo {
public:
    KX_PRIM_CTOR(CElementInfoAllPrimMnd);
    KX_ELEMENT_IO
    KX_ELEMENT_VALIDATE
};
class KX_EXPORT CElementInfoAllEnumMnd : public CElementInfo {
public:
    KX_ENUM_CTOR(CElementInfoAllEnumMnd);
    KX_ELEMENT_IO
    KX_ELEMENT_VALIDATE
};
// Optional member of an all group: Validate always answers true.
class KX_EXPORT CElementInfoAllPrimOpt : public CElementInfo {
public:
    KX_PRIM_CTOR(CElementInfoAllPrimOpt);
    KX_ELEMENT_IO
    KX_ELEMENT_VALIDATE
};
class KX_EXPORT CElementInfoAllEnumOpt : public CElementInfo {
public:
    KX_ENUM_CTOR(CElementInfoAllEnumOpt);
    KX_ELEMENT_IO
    KX_ELEMENT_VALIDATE
};

// Repeated simple members: the typed collection the member holds does the conversions.
class KX_EXPORT CElementInfoSeqPrimCol : public CElementInfoSeqCol {
public:
    using CElementInfoSeqCol::CElementInfoSeqCol;
};
class KX_EXPORT CElementInfoSeqEnumCol : public CElementInfoSeqCol {
public:
    using CElementInfoSeqCol::CElementInfoSeqCol;
};
class KX_EXPORT CElementInfoChoicePrimCol : public CElementInfoChoiceCol {
public:
    using CElementInfoChoiceCol::CElementInfoChoiceCol;
};
class KX_EXPORT CElementInfoChoiceEnumCol : public CElementInfoChoiceCol {
public:
    using CElementInfoChoiceCol::CElementInfoChoiceCol;
};
class KX_EXPORT CElementInfoAllPrimCol : public CElementInfoAllCol {
public:
    using CElementInfoAllCol::CElementInfoAllCol;
};
// A repeated enumerated member of an all group has no record: this class stays abstract.
class KX_EXPORT CElementInfoAllEnumCol : public CElementInfo {
public:
    CElementInfoAllEnumCol(const char* name, const char* namespaceUri, int memberId);
};

#undef KX_PRIM_CTOR
#undef KX_ENUM_CTOR
#undef KX_ELEMENT_IO
#undef KX_ELEMENT_VALIDATE

}  // namespace KxXmlLib16Data

#endif
