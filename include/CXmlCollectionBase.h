// CXmlCollectionBase: root of the collections of bindable objects and of typed primitive
// values. Collections are themselves bindable objects, held by reference count.
#ifndef KX_CXMLCOLLECTIONBASE_H
#define KX_CXMLCOLLECTIONBASE_H

#include "CXmlObjectBase.h"
#include "KxConfig.h"

namespace KxXmlLib16 {

class KX_EXPORT CXmlCollectionBase : public CXmlObjectBase {
public:
    CXmlCollectionBase();
    CXmlCollectionBase(const CXmlCollectionBase& other);
    ~CXmlCollectionBase() override;

    // The number of items held.
    virtual int GetCount() const = 0;
};

}  // namespace KxXmlLib16

#endif
