// INillable: implemented by generated classes whose element is nillable (xsi:nil).
#ifndef KX_INILLABLE_H
#define KX_INILLABLE_H

#include "KxConfig.h"

namespace KxXmlLib16 {

// A nillable generated class derives from CXmlGeneratedClass and INillable; the engine finds it
// with dynamic_cast, writes xsi:nil="true" for a nil object and reads no content for one.
class KX_EXPORT INillable {
public:
    virtual ~INillable();

    virtual bool IsNil() const = 0;
    virtual void SetNil(bool nil) = 0;
};

}  // namespace KxXmlLib16

#endif
