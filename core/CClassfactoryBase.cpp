// Reading xsi:type for the generated class factories.
#include "CClassfactoryBase.h"

#include "CXmlDocument.h"
#include "CXmlElement.h"

namespace KxXmlLib16 {

namespace {

const char* const kXsiNamespace = "http://www.w3.org/2001/XMLSchema-instance";

std::string ReadTypeAttribute(CXmlElement* element) {
    return element->GetAttribute("type", kXsiNamespace);
}

}  // namespace

CClassfactoryBase::~CClassfactoryBase() = default;

std::string CClassfactoryBase::GetElementType(CXmlElement* element) {
    const std::string value = ReadTypeAttribute(element);
    const std::string::size_type colon = value.find(':');
    return colon == std::string::npos ? value : value.substr(colon + 1);
}

std::string CClassfactoryBase::GetElementTypeNamespaceUri(CXmlElement* element) {
    const std::string value = ReadTypeAttribute(element);
    const std::string::size_type colon = value.find(':');
    if (colon != std::string::npos && element->GetDocument() != nullptr) {
        const std::string prefix = value.substr(0, colon);
        const std::string& ns = element->GetDocument()->LookupNamespaceFromAlias(prefix.c_str());
        if (!ns.empty()) return ns;
    }
    // An unprefixed type name is taken to be in the element's own namespace, not in the default
    // namespace in scope.
    return element->GetNamespaceURI();
}

}  // namespace KxXmlLib16
