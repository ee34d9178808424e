// CXmlCollection: the ordered container of bindable objects, base of generated collections of
// class members.
#ifndef KX_CXMLCOLLECTION_H
#define KX_CXMLCOLLECTION_H

#include "CSmartPtr.h"
#include "CXmlCollectionBase.h"
#include "KxConfig.h"

namespace KxXmlLib16 {

// A doubly linked list of nodes, each holding one reference on its item. Every insertion
// notifies listeners (add, add complete, change); every removal notifies remove(-1), remove
// complete(-1), change.
class KX_EXPORT CXmlCollection : public CXmlCollectionBase {
public:
    struct CNode {
        CXmlObjectBase* m_item;
        CNode* m_next;
        CNode* m_previous;
    };

    CXmlCollection();
    CXmlCollection(const char* elementName, const char* namespaceUri, int minOccurs,
                   int maxOccurs);
    CXmlCollection(const CXmlCollection& other) = delete;
    CXmlCollection& operator=(const CXmlCollection& other) = delete;
    // Releases every item without notifying listeners.
    ~CXmlCollection() override;

    int GetCount() const override;
    // Removes the items one by one from the head (Remove(0)), each with its notifications.
    void Clear() override;
    // Throw CKxInvalidParamException "Item is NULL" for a null item.
    void AppendItem(CXmlObjectBase* item);
    void PrependItem(CXmlObjectBase* item);
    // Inserts before the item now at `index`; `index` == count appends. Throws
    // CKxInvalidParamException "Index out of range" outside 0 .. count.
    void AddItemAt(int index, CXmlObjectBase* item);
    // Insert next to `existing`; throw CKxInvalidParamException "Item not found in the
    // collection" when it is not held.
    void AddAfterItem(const CXmlObjectBase* existing, CXmlObjectBase* item);
    void AddBeforeItem(const CXmlObjectBase* existing, CXmlObjectBase* item);
    // Throws as GetNodeAtIndex.
    void Remove(int index) override;

    // Throws CKxInvalidParamException "Index %d is out of range, use 0 - %d" (index, count)
    // outside 0 .. count - 1.
    CNode* GetNodeAtIndex(int index) const;
    // The first node holding `item`, or null.
    CNode* GetNodeForItem(const CXmlObjectBase* item) const;
    // Unlinks the node (which must belong to this collection) and releases its item.
    void RemoveNode(CNode* node);
    CNode* GetHead() const;
    CNode* GetTail() const;

    // Validates nothing: writes each item in order with ToXml_Int(writer, false, ns, ctx,
    // isNested).
    void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* ns,
                   const CSerializationContext& ctx, bool isNested) const override;
    // Reads items from `firstChild` on while the element under the cursor is an item, calling
    // OnPreRead first. An element is an item when CreateItem gives an object for it and either
    // it matches the collection's element name and namespace, or the created object carries
    // the element's own local name, different from the collection's, as element name (an
    // abstract item under a derived type's element). Each item reads itself from its element and is appended. Returns the first
    // element not consumed, or null.
    CXmlElement* FromXml_Int(CXmlElement* element, CXmlElement* firstChild,
                             const CSerializationContext& ctx, bool isNested) override;

    // The item factory of a generated collection: a new item for `element`, or null when the
    // element is not an item. The base creates nothing.
    virtual CSmartPtr<CXmlObjectBase> CreateItem(CXmlElement* element);

private:
    void InsertBefore(CNode* next, CXmlObjectBase* item);

    CNode* m_head;
    CNode* m_tail;
    int m_count;
};

}  // namespace KxXmlLib16

#endif
