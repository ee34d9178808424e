#include "CXmlCollection.h"

#include "CKxException.h"
#include "CXmlElement.h"
#include "CXmlObjectHelper.h"
#include "FormatString.h"

namespace KxXmlLib16 {

CXmlCollection::CXmlCollection() : m_head(nullptr), m_tail(nullptr), m_count(0) {}

CXmlCollection::CXmlCollection(const char* elementName, const char* namespaceUri,
                               int minOccurs, int maxOccurs)
    : CXmlCollectionBase(elementName, namespaceUri, minOccurs, maxOccurs), m_head(nullptr),
      m_tail(nullptr), m_count(0) {}

CXmlCollection::~CXmlCollection() {
    CNode* node = m_head;
    while (node) {
        CNode* next = node->m_next;
        node->m_item->Release();
        delete node;
        node = next;
    }
}

int CXmlCollection::GetCount() const { return m_count; }

void CXmlCollection::Clear() {
    while (GetCount() > 0) Remove(0);
}

void CXmlCollection::InsertBefore(CNode* next, CXmlObjectBase* item) {
    if (!item) throw CKxInvalidParamException("Item is NULL");
    FireOnCollectionAdd(item);
    CNode* node = new CNode{item, next, next ? next->m_previous : m_tail};
    item->AddRef();
    if (node->m_previous) node->m_previous->m_next = node; else m_head = node;
    if (next) next->m_previous = node; else m_tail = node;
    ++m_count;
    FireOnCollectionAddComplete(item);
    FireOnCollectionChange();
}

void CXmlCollection::AppendItem(CXmlObjectBase* item) { InsertBefore(nullptr, item); }

void CXmlCollection::PrependItem(CXmlObjectBase* item) { InsertBefore(m_head, item); }

void CXmlCollection::AddItemAt(int index, CXmlObjectBase* item) {
    if (index < 0 || index > m_count) throw CKxInvalidParamException("Index out of range");
    if (index == m_count) {
        AppendItem(item);
        return;
    }
    InsertBefore(GetNodeAtIndex(index), item);
}

void CXmlCollection::AddAfterItem(const CXmlObjectBase* existing, CXmlObjectBase* item) {
    CNode* node = GetNodeForItem(existing);
    if (!node) throw CKxInvalidParamException("Item not found in the collection");
    InsertBefore(node->m_next, item);
}

void CXmlCollection::AddBeforeItem(const CXmlObjectBase* existing, CXmlObjectBase* item) {
    CNode* node = GetNodeForItem(existing);
    if (!node) throw CKxInvalidParamException("Item not found in the collection");
    InsertBefore(node, item);
}

void CXmlCollection::Remove(int index) { RemoveNode(GetNodeAtIndex(index)); }

CXmlCollection::CNode* CXmlCollection::GetNodeAtIndex(int index) const {
    if (index < 0 || index >= m_count) {
        throw CKxInvalidParamException(
            FormatString("Index %d is out of range, use 0 - %d", index, m_count));
    }
    CNode* node = m_head;
    for (int i = 0; i < index; ++i) node = node->m_next;
    return node;
}

CXmlCollection::CNode* CXmlCollection::GetNodeForItem(const CXmlObjectBase* item) const {
    for (CNode* node = m_head; node; node = node->m_next) {
        if (node->m_item == item) return node;
    }
    return nullptr;
}

void CXmlCollection::RemoveNode(CNode* node) {
    if (!node) throw CKxInvalidParamException("Node is NULL");
    FireOnCollectionRemove(-1);
    if (node->m_previous) node->m_previous->m_next = node->m_next; else m_head = node->m_next;
    if (node->m_next) node->m_next->m_previous = node->m_previous; else m_tail = node->m_previous;
    --m_count;
    CXmlObjectBase* item = node->m_item;
    delete node;
    item->Release();
    FireOnCollectionRemoveComplete(-1);
    FireOnCollectionChange();
}

CXmlCollection::CNode* CXmlCollection::GetHead() const { return m_head; }
CXmlCollection::CNode* CXmlCollection::GetTail() const { return m_tail; }

void CXmlCollection::ToXml_Int(CXmlWriter* writer, bool, const char* ns,
                               const CSerializationContext& ctx, bool isNested) const {
    for (CNode* node = m_head; node; node = node->m_next) {
        node->m_item->ToXml_Int(writer, false, ns, ctx, isNested);
    }
}

CXmlElement* CXmlCollection::FromXml_Int(CXmlElement*, CXmlElement* firstChild,
                                         const CSerializationContext& ctx, bool) {
    OnPreRead();
    CXmlElement* cursor = firstChild;
    while (cursor) {
        const bool named =
            CXmlObjectHelper::DoesElementNameMatch(ctx, cursor, GetElementName(), m_namespace);
        CSmartPtr<CXmlObjectBase> item = CreateItem(cursor);
        if (!item) return cursor;
        // An element under another name is an item only when the factory picked a class for
        // that very name (an abstract item written under a derived type's element); a factory
        // that ignores the element names its items after the collection, and the collection's
        // own name in another namespace is never an item.
        if (!named && (cursor->GetLocalName() == GetElementName() ||
                       item->GetElementName() != cursor->GetLocalName())) {
            return cursor;
        }
        item->FromXml_Int(cursor, cursor->GetFirstElement(), ctx, false);
        AppendItem(item);
        cursor = cursor->GetNextSiblingElement();
    }
    return nullptr;
}

CSmartPtr<CXmlObjectBase> CXmlCollection::CreateItem(CXmlElement*) { return nullptr; }

}  // namespace KxXmlLib16
