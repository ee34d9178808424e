// CClassfactoryBase: base of the per-schema class factories that generated code supplies.
#ifndef KX_CCLASSFACTORYBASE_H
#define KX_CCLASSFACTORYBASE_H

#include <string>

#include "CSmartPtr.h"
#include "CXmlObjectBase.h"
#include "KxConfig.h"

namespace KxXmlLib16 {

class CXmlElement;

// A generated factory derives from this class and adds static creation functions of the two
// shapes below, which the element records of class members store. A null result means that no
// class fits.
class KX_EXPORT CClassfactoryBase {
public:
    // Creates the declared class `classId` for the element named `elementName`.
    using CreateByClassFunc = CSmartPtr<CXmlObjectBase> (*)(int classId, const char* elementName);
    // Picks the class from the element (its name, or its xsi:type) and creates it.
    using CreateFromElementFunc = CSmartPtr<CXmlObjectBase> (*)(CXmlElement* element);

    virtual ~CClassfactoryBase();

    // The local part of the element's xsi:type attribute (the text after the first colon, or
    // the whole value when it has none); empty when the attribute is absent. Never throws.
    static std::string GetElementType(CXmlElement* element);
    // The namespace of the element's xsi:type: the namespace bound to its prefix in the
    // element's document, or, when the value has no prefix or the prefix is not bound, the
    // element's own namespace URI. Never throws.
    static std::string GetElementTypeNamespaceUri(CXmlElement* element);
};

}  // namespace KxXmlLib16

#endif
