// CXmlCollectionBase: root of the collections of bindable objects and of typed primitive
// values. Collections are themselves bindable objects, held by reference count.
#ifndef KX_CXMLCOLLECTIONBASE_H
#define KX_CXMLCOLLECTIONBASE_H

#include <string>
#include <vector>

#include "CXmlObjectBase.h"
#include "IEventSink.h"
#include "KxConfig.h"

namespace KxXmlLib16 {

// Carries what every collection shares: the element name (the object's element name) and
// namespace of its items, minOccurs / maxOccurs (-1 unbounded) and the event listeners.
class KX_EXPORT CXmlCollectionBase : public CXmlObjectBase {
public:
    // No element name, empty namespace, 0 .. unbounded.
    CXmlCollectionBase();
    // Null pointers are taken as empty strings.
    CXmlCollectionBase(const char* elementName, const char* namespaceUri, int minOccurs,
                       int maxOccurs);
    // Copies name, namespace and bounds; listeners are not copied.
    CXmlCollectionBase(const CXmlCollectionBase& other);
    ~CXmlCollectionBase() override;

    // Both return the namespace of the items' elements.
    std::string GetTargetNamespace() const override;
    std::string GetNamespace() const override;

    // The number of items held.
    virtual int GetCount() const = 0;
    // Removes every item. The base does nothing.
    virtual void Clear();
    // Removes the item at `index`. The base does nothing.
    virtual void Remove(int index);
    // Unless the context ignores collection counts, throws CKxValidationException "The Maximum
    // number of [%s] elements allowed in this collection is %d" above a bounded maximum, then
    // "The Minimum number of [%s] elements allowed in this collection is %d" below the minimum.
    virtual void ValidateCount(const CSerializationContext& ctx) const;
    // The same tests as ValidateCount, answered instead of thrown.
    virtual bool IsValidCount(const CSerializationContext& ctx) const;

    // Appends a listener (not owned; the same one may be added twice and is notified twice).
    void AddEventListener(IEventSink* sink);
    // Removes every occurrence of the listener.
    void RemoveEventListener(IEventSink* sink);

    int GetMinOccurs() const;
    int GetMaxOccurs() const;

protected:
    // Each notifies every listener, in registration order, with this collection and the
    // argument.
    void FireOnCollectionAdd(void* item);
    void FireOnCollectionAddComplete(void* item);
    void FireOnCollectionRemove(int index);
    void FireOnCollectionRemoveComplete(int index);
    void FireOnCollectionChange();

    // The item namespace (the element name is the object's element name).
    std::string m_namespace;

private:
    std::vector<IEventSink*> m_listeners;
    int m_minOccurs;
    int m_maxOccurs;
};

}  // namespace KxXmlLib16

#endif
