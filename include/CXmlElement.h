// CXmlElement and CXmlAttribute: the nodes of the light XML tree that every reader builds and
// the engine walks. Names are stored resolved: local name plus namespace URI.
#ifndef KX_CXMLELEMENT_H
#define KX_CXMLELEMENT_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "CInstanceMonitor.h"
#include "KxConfig.h"

namespace KxXmlLib16 {

class CXmlDocument;
class CXmlElement;
class CXmlNodePool;

// The local name or namespace URI of a node. A node in a document's pool points to the pool's
// one shared copy of the text; a node on the heap owns its text. Internal to the tree.
class CXmlNodeName {
public:
    // An owned empty name (a heap node's, until it is set).
    CXmlNodeName() noexcept;
    // A shared copy from a pool, not owned.
    explicit CXmlNodeName(const std::string* shared) noexcept;
    CXmlNodeName(const CXmlNodeName&) = delete;
    CXmlNodeName& operator=(const CXmlNodeName&) = delete;
    ~CXmlNodeName();

    const std::string& Get() const;
    bool IsOwned() const;
    // Replaces an owned text (allocated on first non-empty use).
    void AssignOwned(std::string_view text);
    // Points to another shared copy (only for names that are not owned).
    void Share(const std::string* shared);

private:
    // The text's address; the low bit is set when the text is owned.
    std::uintptr_t m_bits;
};

// One attribute: owner element, local name, value and namespace URI (empty when unqualified).
class KX_EXPORT CXmlAttribute : public CInstanceMonitor {
public:
    CXmlAttribute(CXmlElement* owner, std::string_view localName, std::string_view value,
                  std::string_view namespaceUri);
    CXmlAttribute(const CXmlAttribute&) = delete;
    CXmlAttribute& operator=(const CXmlAttribute&) = delete;
    virtual ~CXmlAttribute();

    // Attributes of a document's elements live in its block pool, others on the heap; `delete`
    // frees either kind.
    static void* operator new(size_t size);
    static void operator delete(void* attribute, size_t size);

    CXmlElement* GetOwnerElement() const;
    const std::string& GetLocalName() const;
    const std::string& GetValue() const;
    const std::string& GetNamespaceURI() const;

    // The owner's XPath, "/", the namespace prefix and ":" when the document has a prefix for
    // the attribute's namespace, then "@" and the local name: "/Order/p:@code". Without an
    // owner, only the part from the prefix on.
    std::string GetXPath() const;

    // True for the xmlns, type, schemaLocation and noNamespaceSchemaLocation attributes of the
    // XML Schema instance namespace or the xmlns namespace: the engine skips them.
    bool IsNamespaceAttribute() const;
    // True for "nil" in either of those two namespaces.
    bool IsNilAttribute() const;

private:
    friend class CXmlElement;

    // Placement into a document's pool (the delete runs only if the constructor throws).
    static void* operator new(size_t size, CXmlNodePool* pool);
    static void operator delete(void* attribute, CXmlNodePool* pool);
    // An attribute in a pool, with names shared through that pool.
    CXmlAttribute(CXmlElement* owner, const std::string* localName, std::string_view value,
                  const std::string* namespaceUri);

    CXmlElement* m_owner;
    CXmlNodeName m_localName;
    CXmlNodeName m_namespaceUri;
    std::string m_value;
};

// An element: its text (all character data directly inside it, mixed content flattened), its
// attributes in input order and its children. It owns its attributes and its children;
// deleting an element deletes its whole subtree.
//
// An element detached with RemoveLastChildElement may outlive its document: it can still be
// read, renamed and deleted, but the calls that consult the document (GetDocument, GetQName,
// GetNameWithPredicate, GetXPath, CreateNewChildElement, AddAttribute, and the XPath of its
// attributes) must not be made once the document is destroyed.
class KX_EXPORT CXmlElement : public CInstanceMonitor {
public:
    // A detached element of `document` (which may be null) under `parent` (null for a root).
    // It is not linked into the parent: CreateNewChildElement does that.
    CXmlElement(CXmlDocument* document, CXmlElement* parent);
    CXmlElement(const CXmlElement&) = delete;
    CXmlElement& operator=(const CXmlElement&) = delete;
    virtual ~CXmlElement();

    // The elements of a document live in its block pool, others on the heap; `delete` frees
    // either kind.
    static void* operator new(size_t size);
    static void operator delete(void* element, size_t size);

    CXmlDocument* GetDocument() const;
    CXmlElement* GetParentElement() const;
    const std::string& GetLocalName() const;
    const std::string& GetNamespaceURI() const;
    const std::string& GetText() const;
    const std::vector<CXmlAttribute*>& GetAttributes() const;
    // The first child element, or null.
    CXmlElement* GetFirstElement() const;
    // The following element of the same parent, or null.
    CXmlElement* GetNextSiblingElement() const;

    // The value of the first attribute whose local name and namespace URI both match exactly;
    // a reference to a static empty string when there is none.
    const std::string& GetAttribute(const std::string& localName, const std::string& ns) const;
    // Appends a new attribute and returns it (owned by this element).
    CXmlAttribute* AddAttribute(std::string_view localName, std::string_view value,
                                std::string_view ns);
    // Makes room for `count` attributes in all, so that adding them allocates the list once.
    void ReserveAttributes(size_t count);

    // Appends `length` bytes of text (a negative length appends nothing); the text grows
    // geometrically, so many small pieces append in amortised constant time.
    void AppendText(const char* text, int length);
    void AppendText(std::string_view text);
    // Appends a NUL-terminated text; null appends nothing.
    void AppendText(const char* text);

    // A new element with this one as parent, linked after the last child; owned by this one.
    CXmlElement* CreateNewChildElement();
    // Unlinks the last child and hands it to the caller (not deleted); null without children.
    CXmlElement* RemoveLastChildElement();

    // Setters of the names; a null pointer sets the empty string.
    void SetElementName(const char* name);
    void SetElementName(std::string_view name);
    void SetNamespace(const char* ns);
    void SetNamespace(std::string_view ns);

    // "prefix:local" when the element has a namespace and the document a non-empty prefix for
    // it, otherwise the local name.
    std::string GetQName() const;
    // The QName, followed by "[n]" (1-based) when the parent has more than one child with the
    // same QName.
    std::string GetNameWithPredicate() const;
    // "/" and the name with predicate of each element from the root down: "/Order/Line[2]/Item".
    std::string GetXPath() const;

private:
    friend class CXmlDocument;

    // Placement into a document's pool (the delete runs only if the constructor throws).
    static void* operator new(size_t size, CXmlNodePool* pool);
    static void operator delete(void* element, CXmlNodePool* pool);
    // An element in a pool, with names shared through that pool.
    CXmlElement(CXmlDocument* document, CXmlElement* parent, const std::string* localName,
                const std::string* namespaceUri);

    // A new child in `pool`, named, linked after the last child.
    CXmlElement* AppendChild(CXmlNodePool* pool, const std::string* localName,
                             const std::string* namespaceUri);
    // Sets a name: an owned text, or the shared copy from the element's pool.
    void SetName(CXmlNodeName& name, std::string_view text, bool isNamespace);

    // Deletes an element and all its descendants without recursion, so that deep trees cannot
    // exhaust the stack; follows the sibling chain too when `siblings` is set. The memory of
    // elements from `recycleInto` goes back to that pool for reuse.
    static void DeleteTree(CXmlElement* first, bool siblings, CXmlNodePool* recycleInto);

    CXmlDocument* m_document;
    CXmlElement* m_parent;
    CXmlElement* m_nextSibling;
    CXmlElement* m_firstChild;
    CXmlElement* m_lastChild;
    // Owned; deleted by the destructor (handed out as plain pointers by GetAttributes). The
    // list itself exists only once there are attributes, which keeps elements small.
    std::unique_ptr<std::vector<CXmlAttribute*>> m_attributes;
    std::string m_text;
    CXmlNodeName m_localName;
    CXmlNodeName m_namespaceUri;
};

}  // namespace KxXmlLib16

#endif
