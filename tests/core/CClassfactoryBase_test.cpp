#include <gtest/gtest.h>

#include <string>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

TEST(CClassfactoryBase, TypeAttributeGivesLocalNameAndNamespace) {
    struct Case {
        const char* label;
        const char* xml;
        const char* type;
        const char* typeNs;
    };
    const char* const xsi = "xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'";
    const Case cases[] = {
        {"prefix bound", "<e:r xmlns:e='urn:e' xmlns:p='urn:p' %s xsi:type='p:Derived'/>",
         "Derived", "urn:p"},
        {"unprefixed takes the element's namespace, not the default",
         "<e:r xmlns='urn:default' xmlns:e='urn:e' %s xsi:type='Derived'/>", "Derived", "urn:e"},
        {"unbound prefix", "<e:r xmlns:e='urn:e' %s xsi:type='q:Derived'/>", "Derived", "urn:e"},
        {"only the first colon splits", "<r xmlns:p='urn:p' %s xsi:type='p:a:b'/>", "a:b",
         "urn:p"},
        {"no type attribute", "<e:r xmlns:e='urn:e' %s/>", "", "urn:e"},
        {"type outside the instance namespace", "<r xmlns:p='urn:p' p:type='p:Derived'/>", "",
         ""},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.label);
        CXmlDocument doc;
        doc.LoadXml(FormatString(row.xml, xsi).c_str());
        CXmlElement* element = doc.GetDocumentElement();
        EXPECT_EQ(row.type, CClassfactoryBase::GetElementType(element));
        EXPECT_EQ(row.typeNs, CClassfactoryBase::GetElementTypeNamespaceUri(element));
    }
}
