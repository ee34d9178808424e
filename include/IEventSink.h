// IEventSink: the listener interface through which collections report changes to their items.
#ifndef KX_IEVENTSINK_H
#define KX_IEVENTSINK_H

#include "KxConfig.h"

namespace KxXmlLib16 {

class CXmlObjectBase;

// Implemented by whoever wants to hear about a collection's changes; registered with the
// collection, not owned by it. Called synchronously on the thread that changes the collection.
class KX_EXPORT IEventSink {
public:
    // What happened. `data` of OnEvent is, by message: the item (an object pointer, or a pointer
    // to the value for typed collections) for the two add messages; a pointer to the int index
    // for the two remove messages; null for a change.
    enum MsgType {
        MsgType_CollectionChange,
        MsgType_CollectionAdd,
        MsgType_CollectionAddComplete,
        MsgType_CollectionRemove,
        MsgType_CollectionRemoveComplete
    };

    virtual ~IEventSink();

    // `source` is the collection. The data pointer is valid only for the duration of the call.
    virtual void OnEvent(CXmlObjectBase* source, MsgType type, void* data) = 0;
};

}  // namespace KxXmlLib16

#endif
