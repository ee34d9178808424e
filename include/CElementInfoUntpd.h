// The element records of untyped (xs:any wildcard) members: a foreign subtree held as a
// CElement (one occurrence) or a CElementCol (repeated).
#ifndef KX_CELEMENTINFOUNTPD_H
#define KX_CELEMENTINFOUNTPD_H

#include <string>

#include "CElementInfo.h"
#include "KxConfig.h"

namespace KxXmlLib16Data {

// Every untyped record carries, behind the base fields, the wildcard's namespace constraint
// ("##any", "##other", "##local", "##targetNamespace", or a space-separated URI list) and the
// target namespace it is read against. Null pointers are stored as empty strings.
//
// The member holds a CElement (Mnd, Opt) or a CElementCol (Col) through the class's property
// accessor. Writing puts the element under its own name and namespace. Reading: the element
// under the cursor is the wildcard's when its namespace passes the constraint
// (CElementCol::IsElementNamespaceAdmitted), or always when the context ignores namespaces; it is
// read whole into a new CElement that is then set on the member. The optional forms (Opt)
// also take an element in the namespace GetAnyDefaultNamespace(constraint, parent's namespace,
// target namespace) gives, so that an "##other" wildcard whose target namespace is empty still
// takes unqualified elements under a qualified parent. The sequence and choice collections read
// the run of consecutive admitted elements (by the record's constraint), then apply the
// collection's count rules as CElementInfoSeqCol / CElementInfoChoiceCol do; the all-group
// collection reads through the collection itself (CElementCol::CreateItem, by the
// collection's constraint).
#define KX_UNTPD_CTOR(Class)                                                                  \
    Class(const char* name, const char* namespaceUri, int memberId,                           \
          const char* namespaceConstraint, const char* targetNamespace)
#define KX_UNTPD_FIELDS                                                                       \
    const std::string& GetNamespaceConstraint() const { return m_constraint; }                \
    const std::string& GetTargetNamespaceOfAny() const { return m_targetNamespace; }          \
                                                                                              \
private:                                                                                      \
    std::string m_constraint;                                                                 \
    std::string m_targetNamespace;                                                            \
                                                                                              \
public:
#define KX_UNTPD_IO                                                                           \
    bool ElementToXml(const CSerializationContext& ctx, const CXmlGeneratedClass* object,     \
                      CXmlWriter* writer) const override;                                     \
    bool ElementFromXml(const CSerializationContext& ctx, CXmlGeneratedClass* object,         \
                        CXmlElement* parent, CXmlElement** cursor,                            \
                        const char* parentNamespace, XmlElementType elementType) override;
#define KX_UNTPD_FROM_XML                                                                     \
    bool ElementFromXml(const CSerializationContext& ctx, CXmlGeneratedClass* object,         \
                        CXmlElement* parent, CXmlElement** cursor,                            \
                        const char* parentNamespace, XmlElementType elementType) override;
#define KX_UNTPD_VALIDATE                                                                     \
    bool Validate(const CSerializationContext& ctx, const CXmlGeneratedClass* object,         \
                  bool found, bool required) const override;

// Mandatory wildcard element of a sequence: unset on writing throws CKxInvalidParamException
// "The Property [%s] is mandatory, it may not be NULL" (the record's element name); no element
// left on reading throws CKxValidationException "Failed to find the required element from
// namespace [%s]." (the constraint text, the parent's XPath as path); an element from a
// namespace the constraint excludes throws CKxInvalidNamespaceException "Invalid namespace
// [%s]. The namespace must be one of [%s] where the target namespace is [%s].". The context's
// IgnoreMissingMandatoryElements leaves the member unset instead, IgnoreUnknownElements skips
// excluded elements; in a class without an element of its own a miss answers false.
class KX_EXPORT CElementInfoSeqUntpdMnd : public CElementInfo {
public:
    KX_UNTPD_CTOR(CElementInfoSeqUntpdMnd);
    KX_UNTPD_IO
    KX_UNTPD_FIELDS
};
// Optional wildcard element of a sequence: read when admitted; never stops the sequence.
class KX_EXPORT CElementInfoSeqUntpdOpt : public CElementInfo {
public:
    KX_UNTPD_CTOR(CElementInfoSeqUntpdOpt);
    KX_UNTPD_IO
    KX_UNTPD_FIELDS
};
class KX_EXPORT CElementInfoSeqUntpdCol : public CElementInfoSeqCol {
public:
    KX_UNTPD_CTOR(CElementInfoSeqUntpdCol);
    KX_UNTPD_FROM_XML
    KX_UNTPD_FIELDS
};
// Wildcard branch of a choice: declines, cursor unchanged, when the element is not admitted.
class KX_EXPORT CElementInfoChoiceUntpdOpt : public CElementInfo {
public:
    KX_UNTPD_CTOR(CElementInfoChoiceUntpdOpt);
    KX_UNTPD_IO
    bool IsOptionalChoiceBranch(const CXmlGeneratedClass* object) const override;
    KX_UNTPD_FIELDS
};
class KX_EXPORT CElementInfoChoiceUntpdCol : public CElementInfoChoiceCol {
public:
    KX_UNTPD_CTOR(CElementInfoChoiceUntpdCol);
    KX_UNTPD_FROM_XML
    KX_UNTPD_FIELDS
};
// Wildcard members of an all group: the mandatory one's Validate throws CKxValidationException
// "Failed to find the mandatory element [%s]." (element name, no path) when required and not
// found; the optional one's always answers true.
class KX_EXPORT CElementInfoAllUntpdMnd : public CElementInfo {
public:
    KX_UNTPD_CTOR(CElementInfoAllUntpdMnd);
    KX_UNTPD_IO
    KX_UNTPD_VALIDATE
    KX_UNTPD_FIELDS
};
class KX_EXPORT CElementInfoAllUntpdOpt : public CElementInfo {
public:
    KX_UNTPD_CTOR(CElementInfoAllUntpdOpt);
    KX_UNTPD_IO
    KX_UNTPD_VALIDATE
    KX_UNTPD_FIELDS
};
// Repeated wildcard of an all group: reads as CElementInfoAllCol does.
class KX_EXPORT CElementInfoAllUntpdCol : public CElementInfoAllCol {
public:
    KX_UNTPD_CTOR(CElementInfoAllUntpdCol);
    KX_UNTPD_FIELDS
};

#undef KX_UNTPD_CTOR
#undef KX_UNTPD_FIELDS
#undef KX_UNTPD_IO
#undef KX_UNTPD_FROM_XML
#undef KX_UNTPD_VALIDATE

}  // namespace KxXmlLib16Data

#endif
