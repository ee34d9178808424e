// CAttributeCol: the attributes matched by an anyAttribute wildcard, in document order.
#ifndef KX_CATTRIBUTECOL_H
#define KX_CATTRIBUTECOL_H

#include <cstddef>
#include <iterator>
#include <string>

#include "CAttribute.h"
#include "CSmartPtr.h"
#include "CXmlCollection.h"
#include "KxConfig.h"

namespace KxXmlLib16 {

// Knows the wildcard's namespace constraint ("##any", "##other", "##local",
// "##targetNamespace", or URIs) and the target namespace it is read against, and refuses
// attributes added by name from namespaces the constraint excludes. Holds a reference on each
// attribute (a CXmlCollection: adds and removals notify the listeners). Null pointers are taken
// as empty strings.
class KX_EXPORT CAttributeCol : public CXmlCollection {
public:
    // Walks the attributes from head to tail; dereferencing gives a counted pointer (null for
    // an item that is not a CAttribute).
    class KX_EXPORT const_iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = CSmartPtr<CAttribute>;
        using difference_type = std::ptrdiff_t;
        using pointer = void;
        using reference = CSmartPtr<CAttribute>;

        explicit const_iterator(const CNode* node = nullptr);
        CSmartPtr<CAttribute> operator*() const;
        const_iterator& operator++();
        const_iterator operator++(int);
        bool operator==(const const_iterator& other) const;
        bool operator!=(const const_iterator& other) const;

    private:
        const CNode* m_node;
    };

    // `namespaceUri` is the namespace of attributes added by name only. When it is empty and
    // the constraint's first token is a plain URI (not starting with '#'), that URI is used
    // instead.
    CAttributeCol(const char* namespaceUri, const char* constraint,
                  const char* targetNamespace = "");
    CAttributeCol(const CAttributeCol& other) = delete;  // use Clone
    CAttributeCol& operator=(const CAttributeCol& other) = delete;
    ~CAttributeCol() override;

    // A new collection with the same namespace, constraint and target namespace, holding a
    // clone of every attribute (added without a namespace test). Reference count 0.
    CAttributeCol* Clone() const override;

    // Tests the namespace against the constraint, then appends a new attribute.
    // Throws CKxInvalidNamespaceException "Invalid namespace [%s]. The namespace must be one of
    // [%s] where the target namespace is [%s]." for an excluded namespace.
    CSmartPtr<CAttribute> Add(const char* name, const char* value, const char* namespaceUri);
    // As above, with the collection's namespace (and an empty value).
    CSmartPtr<CAttribute> Add(const char* name, const char* value);
    CSmartPtr<CAttribute> Add(const char* name);
    // Appends the attribute as it is (AppendItem), without a namespace test.
    // Throws CKxInvalidParamException "Attribute is NULL" for a null pointer.
    void Add(CAttribute* attribute);

    // The attribute at `index` (null when the stored object is not a CAttribute). Throws
    // CKxInvalidParamException "Index %d is out of range, use 0 - %d" (the index and the count)
    // outside 0 .. count - 1. Remove(index), Clear() and GetCount() are the collection's.
    CSmartPtr<CAttribute> Item(int index) const;

    const_iterator begin() const;
    const_iterator end() const;

    // Namespace given to attributes added by name only.
    std::string GetNamespace() const override;
    // The target namespace the constraint is tested against.
    std::string GetTargetNamespace() const override;

    // Writes every attribute, in order, into the writer's open start tag.
    void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* ns,
                   const CSerializationContext& ctx, bool isNested) const override;
    // Adds every attribute of `element`, in order, with Add(name, value, namespace). Throws
    // CKxInvalidNamespaceException "Invalid Attribute [%s]. The attributes namespace is
    // Inappropriate." (local name; the element's XPath as path) for an attribute whose namespace
    // the constraint excludes, keeping those added before it. Returns `firstChild` unchanged:
    // attributes consume no elements.
    CXmlElement* FromXml_Int(CXmlElement* element, CXmlElement* firstChild,
                             const CSerializationContext& ctx, bool isNested) override;
    // The wildcard's namespace constraint and the target namespace it is tested against.
    const std::string& GetNamespaceRule() const;
    const std::string& GetRuleTargetNamespace() const;

private:
    std::string m_constraint;
    std::string m_targetNamespace;
};

}  // namespace KxXmlLib16

#endif
