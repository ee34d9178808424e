// CXmlGeneratedClass: base of the classes the code generator emits. A generated class holds no
// serialisation code: it returns its static records and one property accessor, and the engine
// here walks the records to write and read it.
#ifndef KX_CXMLGENERATEDCLASS_H
#define KX_CXMLGENERATEDCLASS_H

#include <vector>

#include "CXmlObjectBase.h"
#include "KxConfig.h"
#include "KxVariant.h"

namespace KxXmlLib16Data {
class CAttributeInfo;
class CElementInfo;
class CParentElementInfo;
}  // namespace KxXmlLib16Data

namespace KxXmlLib16 {

class CXmlAttribute;
class CXmlElement;

class KX_EXPORT CXmlGeneratedClass : public CXmlObjectBase {
public:
    CXmlGeneratedClass();
    CXmlGeneratedClass(const CXmlGeneratedClass& other);
    ~CXmlGeneratedClass() override;

    // The class's own record (static, never null).
    virtual KxXmlLib16Data::CParentElementInfo* GetClassInfo() const = 0;
    // Null-terminated array of the element records, in schema order.
    virtual KxXmlLib16Data::CElementInfo** GetClassElementInfo() const = 0;
    // Null-terminated array of the attribute records.
    virtual KxXmlLib16Data::CAttributeInfo** GetClassAttributeInfo() const = 0;
    // Reads (get true) or stores (get false) the member `memberId` through `value`: invalid
    // when unset, nil when nil. Throws CKxException on a value it cannot store.
    virtual void InvokeProperty(int memberId, bool get, KxVariant& value) = 0;

    // The element's namespace and the class's target namespace (both the class record's).
    std::string GetNamespace() const override;
    std::string GetTargetNamespace() const override;

    // Writes the object (start tag, attributes, nil, content, text, end tag). Throws
    // CKxValidationException "Failed to convert the element [%s] to XML" wrapping any
    // CKxException raised inside.
    void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* ns,
                   const CSerializationContext& ctx, bool isNested) const override;
    // Fills the object from `element`; returns the first child element not consumed. Failures
    // carry the XPath of the innermost failing element ("Failed to process the element.").
    CXmlElement* FromXml_Int(CXmlElement* element, CXmlElement* firstChild,
                             const CSerializationContext& ctx, bool isNested) override;
    // Writes the attributes contributed by content-only children, then the attribute records.
    // Throws CKxValidationException "Failed to convert attributes to XML" wrapping a failure.
    void AttributesToXml_Int(CXmlWriter* writer, const CSerializationContext& ctx) const override;

    // Number of element records before the terminating null.
    int GetClassElementInfoCount() const;
    // Whether some element record accepts `element`.
    bool IsElementInList(const CSerializationContext& ctx, CXmlElement* element) const;
    // Whether some branch of a choice may be absent.
    bool DoesElementContainOptionalElements() const;
    // InvokeProperty(memberId, true, value) on a const object.
    void ReadProperty(int memberId, KxVariant& value) const;
    // Deletes the records and arrays and nulls the three pointers (generated code, at unload).
    static void CleanMetaData(KxXmlLib16Data::CParentElementInfo*& parentInfo,
                              KxXmlLib16Data::CElementInfo**& elementInfos,
                              KxXmlLib16Data::CAttributeInfo**& attributeInfos);

protected:
    void ProcessAttributesToXml(CXmlWriter* writer, const CSerializationContext& ctx) const;
    void ProcessAttributesFromXml(const CSerializationContext& ctx, CXmlElement* element,
                                  bool strict);
    void ProcessElementSeqToXml(CXmlWriter* writer, const CSerializationContext& ctx) const;
    void ProcessElementAllToXml(CXmlWriter* writer, const CSerializationContext& ctx) const;
    void ProcessElementChoiceToXml(CXmlWriter* writer, const CSerializationContext& ctx,
                                   bool isNested) const;
    CXmlElement* ProcessElementSeqFromXml(const CSerializationContext& ctx, CXmlElement* parent,
                                          CXmlElement* firstChild, bool isNested);
    CXmlElement* ProcessElementChoiceFromXml(const CSerializationContext& ctx,
                                             CXmlElement* parent, CXmlElement* firstChild,
                                             bool isNested);
    CXmlElement* ProcessElementAllFromXml(const CSerializationContext& ctx, CXmlElement* parent,
                                          CXmlElement* firstChild, bool isNested);

private:
    // Whether a content-only child member's class owns this attribute of our element.
    bool IsContentOnlyChildAttribute(const CSerializationContext& ctx,
                                     CXmlAttribute* attribute) const;
    CXmlElement* HandleLeftovers(const CSerializationContext& ctx, CXmlElement* parent,
                                 CXmlElement* cursor, bool isNested) const;
};

}  // namespace KxXmlLib16

#endif
