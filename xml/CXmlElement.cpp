// The nodes of the XML tree: elements with text, attributes and children, and attributes.
#include "CXmlElement.h"

#include <algorithm>
#include <memory>

#include "CXmlDocument.h"
#include "xml/CXmlNodePool.h"

namespace KxXmlLib16 {

namespace {

// Pool memory follows an 8-byte header: the nodes must not need more alignment than that.
static_assert(alignof(CXmlElement) <= alignof(CXmlNodePool::Header), "node alignment");
static_assert(alignof(CXmlAttribute) <= alignof(CXmlNodePool::Header), "node alignment");

const char kSchemaInstanceNs[] = "http://www.w3.org/2001/XMLSchema-instance";
const char kXmlnsNs[] = "http://www.w3.org/2000/xmlns/";

const std::string& EmptyString() {
    static const std::string empty;
    return empty;
}

std::string_view ViewOf(const char* text) {
    return text == nullptr ? std::string_view() : std::string_view(text);
}

bool IsInstanceOrXmlnsNamespace(const std::string& ns) {
    return ns == kSchemaInstanceNs || ns == kXmlnsNs;
}

// The non-empty prefix the document binds to the namespace, or null.
const std::string* PrefixOf(const CXmlDocument* document, const std::string& ns) {
    if (document == nullptr || ns.empty()) return nullptr;
    const std::string& prefix = document->LookupAliasFromNamespace(ns.c_str());
    return prefix.empty() ? nullptr : &prefix;
}

// The owned empty name: the shared empty text with the owned bit, so that it needs no
// allocation and is never freed.
std::uintptr_t OwnedEmpty() {
    return reinterpret_cast<std::uintptr_t>(CXmlNodePool::EmptyName()) | 1u;
}

}  // namespace

// CXmlNodeName

CXmlNodeName::CXmlNodeName() noexcept : m_bits(OwnedEmpty()) {}

CXmlNodeName::CXmlNodeName(const std::string* shared) noexcept
    : m_bits(reinterpret_cast<std::uintptr_t>(shared)) {}

CXmlNodeName::~CXmlNodeName() {
    if (IsOwned() && m_bits != OwnedEmpty()) delete &Get();
}

const std::string& CXmlNodeName::Get() const {
    return *reinterpret_cast<const std::string*>(m_bits & ~std::uintptr_t{1});
}

bool CXmlNodeName::IsOwned() const { return (m_bits & 1u) != 0; }

void CXmlNodeName::AssignOwned(std::string_view text) {
    if (m_bits != OwnedEmpty()) {
        const_cast<std::string&>(Get()).assign(text);
    } else if (!text.empty()) {
        m_bits = reinterpret_cast<std::uintptr_t>(new std::string(text)) | 1u;
    }
}

void CXmlNodeName::Share(const std::string* shared) {
    m_bits = reinterpret_cast<std::uintptr_t>(shared);
}

// CXmlAttribute

CXmlAttribute::CXmlAttribute(CXmlElement* owner, std::string_view localName, std::string_view value,
                             std::string_view namespaceUri)
    : CInstanceMonitor("CXmlAttribute"),
      m_owner(owner),
      m_value(value) {
    m_localName.AssignOwned(localName);
    m_namespaceUri.AssignOwned(namespaceUri);
}

CXmlAttribute::CXmlAttribute(CXmlElement* owner, const std::string* localName,
                             std::string_view value, const std::string* namespaceUri)
    : CInstanceMonitor("CXmlAttribute"),
      m_owner(owner),
      m_localName(localName),
      m_namespaceUri(namespaceUri),
      m_value(value) {}

CXmlAttribute::~CXmlAttribute() = default;

void* CXmlAttribute::operator new(size_t size) { return CXmlNodePool::AllocateFromHeap(size); }

void CXmlAttribute::operator delete(void* attribute, size_t size) {
    CXmlNodePool::Free(attribute, size);
}

void* CXmlAttribute::operator new(size_t size, CXmlNodePool* pool) {
    return pool == nullptr ? CXmlNodePool::AllocateFromHeap(size) : pool->Allocate(size);
}

void CXmlAttribute::operator delete(void* attribute, CXmlNodePool*) {
    CXmlNodePool::Free(attribute, 0);
}

CXmlElement* CXmlAttribute::GetOwnerElement() const { return m_owner; }

const std::string& CXmlAttribute::GetLocalName() const { return m_localName.Get(); }

const std::string& CXmlAttribute::GetValue() const { return m_value; }

const std::string& CXmlAttribute::GetNamespaceURI() const { return m_namespaceUri.Get(); }

std::string CXmlAttribute::GetXPath() const {
    std::string path;
    if (m_owner != nullptr) {
        path = m_owner->GetXPath();
        path += '/';
        // The prefix goes before the "@": messages are compared by text, so the order stays.
        if (const std::string* prefix = PrefixOf(m_owner->GetDocument(), GetNamespaceURI())) {
            path += *prefix;
            path += ':';
        }
    }
    path += '@';
    path += GetLocalName();
    return path;
}

bool CXmlAttribute::IsNamespaceAttribute() const {
    const std::string& name = GetLocalName();
    return IsInstanceOrXmlnsNamespace(GetNamespaceURI()) &&
           (name == "xmlns" || name == "type" || name == "schemaLocation" ||
            name == "noNamespaceSchemaLocation");
}

bool CXmlAttribute::IsNilAttribute() const {
    return IsInstanceOrXmlnsNamespace(GetNamespaceURI()) && GetLocalName() == "nil";
}

// CXmlElement

CXmlElement::CXmlElement(CXmlDocument* document, CXmlElement* parent)
    : CInstanceMonitor("CXmlElement"),
      m_document(document),
      m_parent(parent),
      m_nextSibling(nullptr),
      m_firstChild(nullptr),
      m_lastChild(nullptr) {}

CXmlElement::CXmlElement(CXmlDocument* document, CXmlElement* parent,
                         const std::string* localName, const std::string* namespaceUri)
    : CInstanceMonitor("CXmlElement"),
      m_document(document),
      m_parent(parent),
      m_nextSibling(nullptr),
      m_firstChild(nullptr),
      m_lastChild(nullptr),
      m_localName(localName),
      m_namespaceUri(namespaceUri) {}

CXmlElement::~CXmlElement() {
    DeleteTree(m_firstChild, true, nullptr);
    if (m_attributes) {
        for (CXmlAttribute* attribute : *m_attributes) delete attribute;
    }
}

void* CXmlElement::operator new(size_t size) { return CXmlNodePool::AllocateFromHeap(size); }

void CXmlElement::operator delete(void* element, size_t size) { CXmlNodePool::Free(element, size); }

void* CXmlElement::operator new(size_t size, CXmlNodePool* pool) {
    return pool == nullptr ? CXmlNodePool::AllocateFromHeap(size) : pool->Allocate(size);
}

void CXmlElement::operator delete(void* element, CXmlNodePool*) { CXmlNodePool::Free(element, 0); }

void CXmlElement::DeleteTree(CXmlElement* first, bool siblings, CXmlNodePool* recycleInto) {
    // Post-order walk through the links themselves: down to a leaf, free it, on to its next
    // sibling, back up to the parent once its children are gone. No recursion and no work list,
    // and the elements are visited in the order their memory was handed out.
    int depth = 0;
    CXmlElement* element = first;
    while (element != nullptr) {
        if (element->m_firstChild != nullptr) {
            element = element->m_firstChild;
            ++depth;
            continue;
        }
        CXmlElement* next = element->m_nextSibling;
        CXmlElement* const parent = element->m_parent;
        if (depth == 0) {
            if (!siblings) next = nullptr;
        } else if (next == nullptr) {
            // The last child: its parent is now childless and comes next.
            parent->m_firstChild = nullptr;
            parent->m_lastChild = nullptr;
            next = parent;
            --depth;
        }
        element->m_lastChild = nullptr;
        if (recycleInto != nullptr && CXmlNodePool::PoolOf(element) == recycleInto) {
            for (CXmlAttribute* attribute : element->GetAttributes()) {
                if (CXmlNodePool::PoolOf(attribute) == recycleInto) {
                    attribute->~CXmlAttribute();
                    recycleInto->Recycle(attribute, sizeof(CXmlAttribute));
                } else {
                    delete attribute;
                }
            }
            element->m_attributes.reset();
            element->~CXmlElement();
            recycleInto->Recycle(element, sizeof(CXmlElement));
        } else {
            delete element;
        }
        element = next;
    }
}

CXmlDocument* CXmlElement::GetDocument() const { return m_document; }

CXmlElement* CXmlElement::GetParentElement() const { return m_parent; }

const std::string& CXmlElement::GetLocalName() const { return m_localName.Get(); }

const std::string& CXmlElement::GetNamespaceURI() const { return m_namespaceUri.Get(); }

const std::string& CXmlElement::GetText() const { return m_text; }

const std::vector<CXmlAttribute*>& CXmlElement::GetAttributes() const {
    static const std::vector<CXmlAttribute*> none;
    return m_attributes ? *m_attributes : none;
}

CXmlElement* CXmlElement::GetFirstElement() const { return m_firstChild; }

CXmlElement* CXmlElement::GetNextSiblingElement() const { return m_nextSibling; }

const std::string& CXmlElement::GetAttribute(const std::string& localName,
                                             const std::string& ns) const {
    for (const CXmlAttribute* attribute : GetAttributes()) {
        if (attribute->GetLocalName() == localName && attribute->GetNamespaceURI() == ns) {
            return attribute->GetValue();
        }
    }
    return EmptyString();
}

CXmlAttribute* CXmlElement::AddAttribute(std::string_view localName, std::string_view value,
                                         std::string_view ns) {
    CXmlNodePool* pool = m_document == nullptr ? nullptr : m_document->m_pool;
    std::unique_ptr<CXmlAttribute> attribute(
        pool == nullptr ? new CXmlAttribute(this, localName, value, ns)
                        : new (pool) CXmlAttribute(this, pool->Intern(localName), value,
                                                   pool->InternNamespace(ns)));
    if (!m_attributes) m_attributes.reset(new std::vector<CXmlAttribute*>());
    m_attributes->push_back(attribute.get());
    return attribute.release();
}

void CXmlElement::ReserveAttributes(size_t count) {
    if (!m_attributes) m_attributes.reset(new std::vector<CXmlAttribute*>());
    m_attributes->reserve(count);
}

void CXmlElement::AppendText(const char* text, int length) {
    if (text == nullptr || length <= 0) return;
    AppendText(std::string_view(text, static_cast<size_t>(length)));
}

void CXmlElement::AppendText(std::string_view text) {
    const size_t total = m_text.size() + text.size();
    if (!m_text.empty() && total > m_text.capacity()) {
        m_text.reserve(std::max(m_text.capacity() * 2, total));
    }
    m_text.append(text.data(), text.size());
}

void CXmlElement::AppendText(const char* text) { AppendText(ViewOf(text)); }

CXmlElement* CXmlElement::CreateNewChildElement() {
    CXmlNodePool* pool = m_document == nullptr ? nullptr : m_document->m_pool;
    const std::string* empty = CXmlNodePool::EmptyName();
    return AppendChild(pool, empty, empty);
}

CXmlElement* CXmlElement::AppendChild(CXmlNodePool* pool, const std::string* localName,
                                      const std::string* namespaceUri) {
    CXmlElement* child;
    if (pool == nullptr) {
        std::unique_ptr<CXmlElement> owned(new CXmlElement(m_document, this));
        owned->m_localName.AssignOwned(*localName);
        owned->m_namespaceUri.AssignOwned(*namespaceUri);
        child = owned.release();
    } else {
        child = new (pool) CXmlElement(m_document, this, localName, namespaceUri);
    }
    if (m_lastChild == nullptr) {
        m_firstChild = child;
    } else {
        m_lastChild->m_nextSibling = child;
    }
    m_lastChild = child;
    return child;
}

CXmlElement* CXmlElement::RemoveLastChildElement() {
    CXmlElement* last = m_lastChild;
    if (last == nullptr) return nullptr;
    if (m_firstChild == last) {
        m_firstChild = nullptr;
        m_lastChild = nullptr;
    } else {
        CXmlElement* previous = m_firstChild;
        while (previous->m_nextSibling != last) previous = previous->m_nextSibling;
        previous->m_nextSibling = nullptr;
        m_lastChild = previous;
    }
    return last;
}

void CXmlElement::SetElementName(const char* name) { SetName(m_localName, ViewOf(name), false); }

void CXmlElement::SetElementName(std::string_view name) { SetName(m_localName, name, false); }

void CXmlElement::SetNamespace(const char* ns) { SetName(m_namespaceUri, ViewOf(ns), true); }

void CXmlElement::SetNamespace(std::string_view ns) { SetName(m_namespaceUri, ns, true); }

void CXmlElement::SetName(CXmlNodeName& name, std::string_view text, bool isNamespace) {
    if (name.IsOwned()) {
        name.AssignOwned(text);
        return;
    }
    // Only pool elements share names: the pool in front of the element is there.
    CXmlNodePool* pool = CXmlNodePool::PoolOf(this);
    name.Share(isNamespace ? pool->InternNamespace(text) : pool->Intern(text));
}

std::string CXmlElement::GetQName() const {
    if (const std::string* prefix = PrefixOf(m_document, GetNamespaceURI())) {
        return *prefix + ":" + GetLocalName();
    }
    return GetLocalName();
}

std::string CXmlElement::GetNameWithPredicate() const {
    std::string qname = GetQName();
    if (m_parent == nullptr) return qname;
    int count = 0;
    int position = 0;
    for (const CXmlElement* sibling = m_parent->m_firstChild; sibling != nullptr;
         sibling = sibling->m_nextSibling) {
        // Only siblings with the same local name can have the same QName.
        if (sibling->GetLocalName() != GetLocalName() || sibling->GetQName() != qname) continue;
        ++count;
        if (sibling == this) position = count;
    }
    if (count > 1) qname += "[" + std::to_string(position) + "]";
    return qname;
}

std::string CXmlElement::GetXPath() const {
    // Built from the root down without recursion, so deep trees cannot exhaust the stack.
    std::vector<const CXmlElement*> chain;
    for (const CXmlElement* e = this; e != nullptr; e = e->m_parent) chain.push_back(e);
    std::string path;
    for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
        path += '/';
        path += (*it)->GetNameWithPredicate();
    }
    return path;
}

}  // namespace KxXmlLib16
