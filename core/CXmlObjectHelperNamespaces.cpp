// The namespace tests of CXmlObjectHelper: wildcard namespace constraints and element names.
#include "CKxException.h"
#include "CSerializationContext.h"
#include "CXmlElement.h"
#include "CXmlObjectHelper.h"
#include "FormatString.h"

namespace KxXmlLib16 {

namespace {

bool TokenAccepts(const std::string& token, const std::string& namespaceUri,
                  const std::string& constraint, const std::string& targetNamespace) {
    if (token == "##any") return true;
    if (token == "##other") return namespaceUri != targetNamespace;
    if (token == "##local") return namespaceUri.empty();
    if (token == "##targetNamespace") return namespaceUri == targetNamespace;
    // A URI token is compared with the whole constraint, not with the token: for a list this
    // accepts only the empty namespace (and the list text itself), as existing bindings expect.
    return namespaceUri.empty() || namespaceUri == constraint;
}

}  // namespace

bool CXmlObjectHelper::IsNamespaceValid(const std::string& namespaceUri,
                                        const std::string& constraint,
                                        const std::string& targetNamespace) {
    std::string remainder = constraint;
    for (;;) {
        const std::string before = remainder;
        std::string token;
        const std::string::size_type blank = remainder.find(' ');
        if (blank != std::string::npos) {
            // The remainder becomes the blank alone, so later passes test the empty token.
            token = remainder.substr(0, blank);
            remainder = " ";
        } else {
            token = remainder;
            remainder.clear();
        }
        if (TokenAccepts(token, namespaceUri, constraint, targetNamespace)) return true;
        // A remainder of one blank reproduces itself: once its pass fails, every later one would.
        if (remainder.empty() || remainder == before) return false;
    }
}

bool CXmlObjectHelper::TestNamespace(const std::string& namespaceUri,
                                     const std::string& constraint,
                                     const std::string& targetNamespace) {
    if (!IsNamespaceValid(namespaceUri, constraint, targetNamespace)) {
        throw CKxInvalidNamespaceException(
            FormatString("Invalid namespace [%s]. The namespace must be one of [%s] where the "
                         "target namespace is [%s].",
                         namespaceUri.c_str(), constraint.c_str(), targetNamespace.c_str()),
            "");
    }
    return true;
}

bool CXmlObjectHelper::DoesElementNameMatch(const CSerializationContext& ctx,
                                            const CXmlElement* element, const std::string& name,
                                            const std::string& namespaceUri) {
    if (!element || element->GetLocalName() != name) return false;
    if (ctx.GetSchemaType() == SchemaType_NoNamespace || ctx.GetIgnoreNamespaces()) return true;
    return element->GetNamespaceURI() == namespaceUri;
}

}  // namespace KxXmlLib16
