// CAttributeInfo: the static record that describes one XML attribute member of a generated
// class, and its three kinds (simple-typed, enumerated, anyAttribute wildcard).
#ifndef KX_CATTRIBUTEINFO_H
#define KX_CATTRIBUTEINFO_H

#include <string>

#include "CPrimitiveRestrictions.h"
#include "CWhitespaceUtils.h"
#include "KxConfig.h"
#include "KxTypes.h"

namespace KxXmlLib16 {
class CSerializationContext;
class CXmlAttribute;
class CXmlGeneratedClass;
class CXmlObjectBase;
class CXmlWriter;
class KxVariant;
}  // namespace KxXmlLib16

namespace KxXmlLib16Data {

using KxXmlLib16::CSerializationContext;
using KxXmlLib16::CXmlAttribute;
using KxXmlLib16::CXmlGeneratedClass;
using KxXmlLib16::CXmlObjectBase;
using KxXmlLib16::CXmlWriter;
using KxXmlLib16::KxVariant;

// Base of the attribute records. Generated code creates one per attribute member (a static,
// null-terminated array per class); a record owns its strings and never changes afterwards, so
// it is shared between threads without locks. Null string pointers are stored as empty.
class KX_EXPORT CAttributeInfo {
public:
    CAttributeInfo(const char* name, const char* namespaceUri, int memberId, bool optional,
                   const char* defaultValue);
    CAttributeInfo(const CAttributeInfo&) = delete;
    CAttributeInfo& operator=(const CAttributeInfo&) = delete;
    virtual ~CAttributeInfo();

    // Writes the member of `object` as an attribute into the writer's open start tag.
    virtual void AttributeToXml(const CSerializationContext& ctx, const CXmlGeneratedClass* object,
                                CXmlWriter* writer) const = 0;
    // Stores `attribute` in the member when the record accepts it; returns whether it did.
    virtual bool AttributeFromXml(const CSerializationContext& ctx, CXmlGeneratedClass* object,
                                  CXmlAttribute* attribute) = 0;
    // Called after reading with whether the record accepted an attribute; throws
    // CKxValidationException when a required attribute is missing.
    virtual void Validate(const CSerializationContext& ctx, bool found) const = 0;

    const std::string& GetAttributeName() const;
    const std::string& GetNamespace() const;
    int GetMemberId() const;
    bool IsOptional() const;
    const std::string& GetDefaultValue() const;

    // Whether `attribute` has the record's local name and (unless the context's
    // IgnoreNamespaces is set) its namespace URI. False for a null attribute. Never throws.
    bool IsThisAttribute(const CSerializationContext& ctx, CXmlAttribute* attribute) const;
    // Reads the member through InvokeProperty. Throws CKxValidationException "Failed to get the
    // property value for [%s]." (attribute name) wrapping a CKxException of the getter.
    void InvokePropertyGet(CXmlGeneratedClass* object, KxVariant& value) const;
    // Stores the member through InvokeProperty. Throws CKxValidationException "Failed to set the
    // property value [%s]." (the attribute's value; its XPath as path) wrapping a CKxException
    // of the setter.
    void InvokePropertySet(CXmlGeneratedClass* object, KxVariant& value,
                           const CXmlAttribute& attribute) const;
    // InvokePropertyGet on a const object (reading does not change it).
    void ReadProperty(const CXmlGeneratedClass* object, KxVariant& value) const;

    // Forwarders to CXmlObjectHelper's namespace tests.
    static bool TestNamespace(const std::string& ns, const std::string& constraint,
                              const std::string& targetNamespace);
    static bool IsNamespaceValid(const std::string& ns, const std::string& constraint,
                                 const std::string& targetNamespace);
    // The object's target namespace.
    static std::string GetTargetNamespace(const CXmlObjectBase* object);
    // Calls child->ToXml_Int(writer, isRoot, ns, ctx, false).
    static void ToXml_Int(const CXmlObjectBase* child, CXmlWriter* writer, bool isRoot,
                          const char* ns, const CSerializationContext& ctx);

private:
    std::string m_name;
    std::string m_namespace;
    int m_memberId;
    bool m_optional;
    std::string m_defaultValue;
};

// An attribute of an XSD simple type.
class KX_EXPORT CAttributeInfoPrimitive : public CAttributeInfo {
public:
    CAttributeInfoPrimitive(const char* name, const char* namespaceUri, int memberId,
                            bool optional, KxXmlLib16::ItemType type, const char* format,
                            KxXmlLib16::CWhitespaceUtils::WhitespaceRule whitespace,
                            const KxXmlLib16::CPrimitiveRestrictions& restrictions,
                            const char* defaultValue);
    ~CAttributeInfoPrimitive() override;

    // Writes nothing for an optional member that is unset, or equal to a non-empty default when
    // the context's NoOptionalAttributeDefaultOutput is set. Checks the facets first (throws
    // what CXmlObjectHelper::CheckRestriction throws).
    void AttributeToXml(const CSerializationContext& ctx, const CXmlGeneratedClass* object,
                        CXmlWriter* writer) const override;
    // Accepts only an exact name and namespace match, whatever IgnoreNamespaces says. Converts
    // with the record's item type and whitespace rule (conversion errors propagate); no facet
    // check on reading.
    bool AttributeFromXml(const CSerializationContext& ctx, CXmlGeneratedClass* object,
                          CXmlAttribute* attribute) override;
    // Throws CKxValidationException "Failed to find the required Attribute [%s]." when the
    // attribute is required and was not found.
    void Validate(const CSerializationContext& ctx, bool found) const override;

    KxXmlLib16::ItemType GetItemType() const;
    const std::string& GetFormat() const;
    KxXmlLib16::CWhitespaceUtils::WhitespaceRule GetWhitespaceRule() const;
    const KxXmlLib16::CPrimitiveRestrictions& GetRestrictions() const;

private:
    KxXmlLib16::CPrimitiveRestrictions m_restrictions;
    KxXmlLib16::ItemType m_type;
    std::string m_format;
    KxXmlLib16::CWhitespaceUtils::WhitespaceRule m_whitespace;
};

// An attribute of an enumerated simple type, converted by generated functions.
class KX_EXPORT CAttributeInfoEnum : public CAttributeInfo {
public:
    using EnumToString = const char* (*)(int);
    using StringToEnum = int (*)(const char*);

    CAttributeInfoEnum(const char* name, const char* namespaceUri, int memberId, bool optional,
                       EnumToString enumToString, StringToEnum stringToEnum,
                       const char* defaultValue);
    ~CAttributeInfoEnum() override;

    // As the simple-typed kind, with the text of enumToString and no facet check.
    void AttributeToXml(const CSerializationContext& ctx, const CXmlGeneratedClass* object,
                        CXmlWriter* writer) const override;
    // Accepts what IsThisAttribute accepts; stores stringToEnum(value) as a 4-byte integer.
    bool AttributeFromXml(const CSerializationContext& ctx, CXmlGeneratedClass* object,
                          CXmlAttribute* attribute) override;
    // As the simple-typed kind.
    void Validate(const CSerializationContext& ctx, bool found) const override;

private:
    EnumToString m_enumToString;
    StringToEnum m_stringToEnum;
};

// An anyAttribute wildcard; the member is a KxXmlLib16::CAttributeCol.
class KX_EXPORT CAttributeInfoAny : public CAttributeInfo {
public:
    CAttributeInfoAny(const char* name, const char* namespaceUri, int memberId, bool optional,
                      const char* namespaceConstraint, const char* targetNamespace,
                      const char* defaultValue);
    ~CAttributeInfoAny() override;

    // Lets the collection write its attributes (with the object's target namespace).
    void AttributeToXml(const CSerializationContext& ctx, const CXmlGeneratedClass* object,
                        CXmlWriter* writer) const override;
    // Accepts an attribute whose namespace satisfies the constraint and adds it to the
    // collection. Throws CKxException "Serialization Data Error : The collection should be a
    // CAttributeCol, it was not!" when the member is not a CAttributeCol.
    bool AttributeFromXml(const CSerializationContext& ctx, CXmlGeneratedClass* object,
                          CXmlAttribute* attribute) override;
    // A wildcard is never required: does nothing.
    void Validate(const CSerializationContext& ctx, bool found) const override;

    const std::string& GetNamespaceConstraint() const;
    const std::string& GetRuleTargetNamespace() const;

private:
    std::string m_constraint;
    std::string m_targetNamespace;
};

}  // namespace KxXmlLib16Data

#endif
