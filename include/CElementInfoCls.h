// The element records of class and abstract-class members: a child object of a generated
// class, held by the parent and written and read by the child's own engine.
#ifndef KX_CELEMENTINFOCLS_H
#define KX_CELEMENTINFOCLS_H

#include "CClassfactoryBase.h"
#include "CElementInfo.h"
#include "KxConfig.h"

namespace KxXmlLib16Data {

using CreateByClassFunc = KxXmlLib16::CClassfactoryBase::CreateByClassFunc;
using CreateFromElementFunc = KxXmlLib16::CClassfactoryBase::CreateFromElementFunc;

// What a class-member record knows about its child: whether the child class has an element of
// its own (XmlElementType_Element) or writes its content into the parent's element
// (XmlElementType_Group), and how to create one while reading. Exactly one of the two factory
// functions is set (the create-by-class one for declared classes, the create-from-element one
// for abstract classes and substitution-group heads). The class id is the declared class's
// (the base class's for an abstract member); nillable is the mandatory forms' flag.
struct KX_EXPORT CChildClassInfo {
    XmlElementType m_childType;
    CreateByClassFunc m_createByClass;
    CreateFromElementFunc m_createFromElement;
    int m_classId;
    bool m_nillable;
};

// Shared operations of the class-member records, so that every content model and occurrence
// reads and writes a child the same way. Not a record class itself.
class KX_EXPORT CElementInfoClsOps {
public:
    // Writes the child (ElementToXmlCls); answers whether there was one.
    static bool WriteChild(const CElementInfo& info, const CSerializationContext& ctx,
                           const CXmlGeneratedClass* object, CXmlWriter* writer);
    // Writes the attributes of a content-only child (or of every item of a collection of
    // them) onto the parent's element.
    static void WritePseudoChildAttributes(const CElementInfo& info,
                                           const CChildClassInfo& child,
                                           const CSerializationContext& ctx,
                                           const CXmlGeneratedClass* object, CXmlWriter* writer);
    // Whether the element under the cursor belongs to this member: its name for a declared
    // class; its name or a class the factory picks for it for an abstract one.
    static bool Matches(const CElementInfo& info, const CChildClassInfo& child,
                        const CSerializationContext& ctx, CXmlElement* element);
    // Reads an optional member into a new child. A child with an element of its own is read
    // from the element under the cursor (which must match) and the cursor moves to its next
    // sibling; a content-only child reads from the cursor inside the parent and the cursor
    // moves to what it did not consume. Answers whether anything was read. Throws
    // CKxValidationException "Failed to find a suitable substitution element for [%s]." when
    // no class fits an element of the member's name.
    static bool ReadNew(const CElementInfo& info, const CChildClassInfo& child,
                        const CSerializationContext& ctx, CXmlGeneratedClass* object,
                        CXmlElement* parent, CXmlElement** cursor);
    // Reads a mandatory member into the child the property holds (a declared class; one is
    // created when the property holds none) or into a new one (an abstract class), with the
    // missing-element rules of mandatory sequence members ("Failed to find the required child
    // element [%s]." at the parent's XPath).
    static bool ReadMandatory(const CElementInfo& info, const CChildClassInfo& child,
                              const CSerializationContext& ctx, CXmlGeneratedClass* object,
                              CXmlElement* parent, CXmlElement** cursor,
                              XmlElementType elementType);
    // Whether an attribute of the parent's element is one of a content-only child's own
    // attributes (by the attribute records of the child's class).
    static bool ChildClaimsAttribute(const CElementInfo& info, const CChildClassInfo& child,
                                     const CSerializationContext& ctx,
                                     const CXmlGeneratedClass* object,
                                     KxXmlLib16::CXmlAttribute* attribute);
};

#define KX_CLS_OPT_CTOR(Class)                                                                \
    Class(const char* name, const char* namespaceUri, int memberId, XmlElementType childType, \
          CreateByClassFunc create, int classId)
#define KX_CLS_MND_CTOR(Class)                                                                \
    Class(const char* name, const char* namespaceUri, int memberId, XmlElementType childType, \
          CreateByClassFunc create, int classId, bool nillable)
#define KX_ABS_OPT_CTOR(Class)                                                                \
    Class(const char* name, const char* namespaceUri, int memberId, XmlElementType childType, \
          CreateFromElementFunc create)
#define KX_ABS_MND_CTOR(Class)                                                                \
    Class(const char* name, const char* namespaceUri, int memberId, XmlElementType childType, \
          CreateFromElementFunc create, int baseClassId)
#define KX_COL_CTOR(Class)                                                                    \
    Class(const char* name, const char* namespaceUri, int memberId, XmlElementType childType)
#define KX_CLS_RECORD_BODY                                                                    \
    bool ElementToXml(const CSerializationContext& ctx, const CXmlGeneratedClass* object,     \
                      CXmlWriter* writer) const override;                                     \
    bool ElementFromXml(const CSerializationContext& ctx, CXmlGeneratedClass* object,         \
                        CXmlElement* parent, CXmlElement** cursor,                            \
                        const char* parentNamespace, XmlElementType elementType) override;    \
    void PseudoChildAttributeToXml(const CSerializationContext& ctx,                          \
                                   const CXmlGeneratedClass* object, CXmlWriter* writer)      \
        const override;                                                                       \
    bool ClaimsParentAttribute(const CSerializationContext& ctx,                              \
                               const CXmlGeneratedClass* object,                              \
                               KxXmlLib16::CXmlAttribute* attribute) const override;          \
    const CChildClassInfo& GetChildClassInfo() const { return m_child; }                      \
                                                                                              \
private:                                                                                      \
    CChildClassInfo m_child;                                                                  \
                                                                                              \
public:
#define KX_CLS_VALIDATE                                                                       \
    bool Validate(const CSerializationContext& ctx, const CXmlGeneratedClass* object,         \
                  bool found, bool required) const override;
#define KX_CLS_CHOICE                                                                         \
    bool IsOptionalChoiceBranch(const CXmlGeneratedClass* object) const override;
#define KX_COL_RECORD_BODY                                                                    \
    void PseudoChildAttributeToXml(const CSerializationContext& ctx,                          \
                                   const CXmlGeneratedClass* object, CXmlWriter* writer)      \
        const override;                                                                       \
    bool ClaimsParentAttribute(const CSerializationContext& ctx,                              \
                               const CXmlGeneratedClass* object,                              \
                               KxXmlLib16::CXmlAttribute* attribute) const override;          \
    XmlElementType GetChildType() const { return m_child.m_childType; }                       \
                                                                                              \
private:                                                                                      \
    CChildClassInfo m_child;                                                                  \
                                                                                              \
public:

// ---- sequence ----------------------------------------------------------------------------------

// Mandatory child of a sequence: unset on writing throws CKxInvalidParamException "The Property
// [%s] is mandatory, it may not be NULL"; absent on reading throws CKxValidationException
// "Failed to find the required child element [%s]." at the parent's XPath.
class KX_EXPORT CElementInfoSeqClsMnd : public CElementInfo {
public:
    KX_CLS_MND_CTOR(CElementInfoSeqClsMnd);
    KX_CLS_RECORD_BODY
};
// Optional child of a sequence: created through the factory when its element is there.
class KX_EXPORT CElementInfoSeqClsOpt : public CElementInfo {
public:
    KX_CLS_OPT_CTOR(CElementInfoSeqClsOpt);
    KX_CLS_RECORD_BODY
};
// Abstract mandatory child: the factory picks the class from the element's name or xsi:type;
// when none fits, CKxValidationException "Failed to find a suitable substitution element for
// [%s]." (the member's element name).
class KX_EXPORT CElementInfoSeqAbsClsMnd : public CElementInfo {
public:
    KX_ABS_MND_CTOR(CElementInfoSeqAbsClsMnd);
    KX_CLS_RECORD_BODY
};
class KX_EXPORT CElementInfoSeqAbsClsOpt : public CElementInfo {
public:
    KX_ABS_OPT_CTOR(CElementInfoSeqAbsClsOpt);
    KX_CLS_RECORD_BODY
};
// Repeated children: the member is a CXmlCollection whose CreateItem makes the items.
class KX_EXPORT CElementInfoSeqClsCol : public CElementInfoSeqCol {
public:
    KX_COL_CTOR(CElementInfoSeqClsCol);
    KX_COL_RECORD_BODY
};
class KX_EXPORT CElementInfoSeqAbsClsCol : public CElementInfoSeqCol {
public:
    KX_COL_CTOR(CElementInfoSeqAbsClsCol);
    KX_COL_RECORD_BODY
};

// ---- choice ------------------------------------------------------------------------------------

// Branch of a choice: declines with the cursor unchanged when the element is not its own.
class KX_EXPORT CElementInfoChoiceClsOpt : public CElementInfo {
public:
    KX_CLS_OPT_CTOR(CElementInfoChoiceClsOpt);
    KX_CLS_RECORD_BODY
    KX_CLS_CHOICE
};
class KX_EXPORT CElementInfoChoiceAbsClsOpt : public CElementInfo {
public:
    KX_ABS_OPT_CTOR(CElementInfoChoiceAbsClsOpt);
    KX_CLS_RECORD_BODY
    KX_CLS_CHOICE
};
class KX_EXPORT CElementInfoChoiceClsCol : public CElementInfoChoiceCol {
public:
    KX_COL_CTOR(CElementInfoChoiceClsCol);
    KX_COL_RECORD_BODY
};
class KX_EXPORT CElementInfoChoiceAbsClsCol : public CElementInfoChoiceCol {
public:
    KX_COL_CTOR(CElementInfoChoiceAbsClsCol);
    KX_COL_RECORD_BODY
};

// ---- all ---------------------------------------------------------------------------------------

// Mandatory child of an all group: Validate throws CKxValidationException "Failed to find the
// mandatory element [%s]." when required and not found.
class KX_EXPORT CElementInfoAllClsMnd : public CElementInfo {
public:
    KX_CLS_MND_CTOR(CElementInfoAllClsMnd);
    KX_CLS_RECORD_BODY
    KX_CLS_VALIDATE
};
class KX_EXPORT CElementInfoAllClsOpt : public CElementInfo {
public:
    KX_CLS_OPT_CTOR(CElementInfoAllClsOpt);
    KX_CLS_RECORD_BODY
    KX_CLS_VALIDATE
};
class KX_EXPORT CElementInfoAllAbsClsMnd : public CElementInfo {
public:
    KX_ABS_MND_CTOR(CElementInfoAllAbsClsMnd);
    KX_CLS_RECORD_BODY
    KX_CLS_VALIDATE
};
class KX_EXPORT CElementInfoAllAbsClsOpt : public CElementInfo {
public:
    KX_ABS_OPT_CTOR(CElementInfoAllAbsClsOpt);
    KX_CLS_RECORD_BODY
    KX_CLS_VALIDATE
};
class KX_EXPORT CElementInfoAllClsCol : public CElementInfoAllCol {
public:
    KX_COL_CTOR(CElementInfoAllClsCol);
    KX_COL_RECORD_BODY
};
class KX_EXPORT CElementInfoAllAbsClsCol : public CElementInfoAllCol {
public:
    KX_COL_CTOR(CElementInfoAllAbsClsCol);
    KX_COL_RECORD_BODY
};

#undef KX_CLS_OPT_CTOR
#undef KX_CLS_MND_CTOR
#undef KX_ABS_OPT_CTOR
#undef KX_ABS_MND_CTOR
#undef KX_COL_CTOR
#undef KX_CLS_RECORD_BODY
#undef KX_CLS_VALIDATE
#undef KX_CLS_CHOICE
#undef KX_COL_RECORD_BODY

}  // namespace KxXmlLib16Data

#endif
