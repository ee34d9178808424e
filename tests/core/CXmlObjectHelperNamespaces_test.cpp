#include <string>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

TEST(CXmlObjectHelperNamespaces, ConstraintsAcceptTheirNamespaces) {
    struct Case {
        const char* ns;
        const char* constraint;
        const char* target;
        bool valid;
    };
    const Case cases[] = {
        // a single URI: itself and the empty namespace
        {"urn:x", "urn:x", "", true}, {"", "urn:x", "urn:t", true}, {"urn:y", "urn:x", "", false},
        {"URN:X", "urn:x", "", false}, {"urn:y", "", "", false}, {"", "", "", true},
        // ##any
        {"urn:y", "##any", "urn:t", true},
        {"", "##any", "", true},
        // ##other: anything but the target namespace, equal empty strings included
        {"urn:y", "##other", "urn:t", true}, {"", "##other", "urn:t", true},
        {"urn:t", "##other", "urn:t", false}, {"", "##other", "", false},
        {"urn:y", "##other", "", true},
        // ##local
        {"", "##local", "urn:t", true},
        {"urn:t", "##local", "urn:t", false},
        // ##targetNamespace
        {"urn:t", "##targetNamespace", "urn:t", true}, {"", "##targetNamespace", "", true},
        {"", "##targetNamespace", "urn:t", false}, {"urn:y", "##targetNamespace", "urn:t", false},
        // keywords are case-sensitive; anything else is taken as a URI
        {"urn:y", "##ANY", "", false},
        {"##ANY", "##ANY", "", true},
        // lists: the first token in full, later passes only accept the empty namespace
        {"urn:y", "##any urn:z", "", true},
        {"urn:y", "##other urn:z", "urn:t", true},
        {"", "##local ##targetNamespace", "urn:t", true},
        {"urn:t", "##local ##targetNamespace", "urn:t", false},
        {"urn:t", "##other ##local", "urn:t", false}, {"urn:c", "urn:b ##any", "", false},
        {"urn:a", "urn:a urn:b", "", false}, {"urn:a urn:b", "urn:a urn:b", "", true},
        {"", "urn:a urn:b", "", true}, {"urn:q", "##local ##other urn:q", "", false},
        {"urn:q", " urn:q", "", false},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(std::string(row.ns) + " | " + row.constraint + " | " + row.target);
        EXPECT_EQ(row.valid,
                  CXmlObjectHelper::IsNamespaceValid(row.ns, row.constraint, row.target));
    }
}

TEST(CXmlObjectHelperNamespaces, TestNamespaceThrowsForAnExcludedNamespace) {
    EXPECT_TRUE(CXmlObjectHelper::TestNamespace("urn:y", "##other", "urn:t"));
    KxTest::ExpectKxError<CKxInvalidNamespaceException>(
        [] { CXmlObjectHelper::TestNamespace("urn:t", "##other", "urn:t"); },
        "Invalid namespace [urn:t]. The namespace must be one of [##other] where the target "
        "namespace is [urn:t].");
    try {
        CXmlObjectHelper::TestNamespace("urn:y", "##local", "");
        ADD_FAILURE() << "nothing thrown";
    } catch (const CKxInvalidNamespaceException& e) {
        EXPECT_EQ("", e.GetPath());
    }
}

TEST(CXmlObjectHelperNamespaces, ElementNamesMatchByLocalNameAndNamespace) {
    CXmlDocument doc;
    doc.LoadXml("<p:a xmlns:p='urn:x'/>");
    const CXmlElement* element = doc.GetDocumentElement();
    ASSERT_NE(nullptr, element);

    struct Case {
        const char* label;
        bool ignoreNamespaces;
        SchemaType schemaType;
        const char* name;
        const char* ns;
        bool match;
    };
    const Case cases[] = {
        {"exact", false, SchemaType_Default, "a", "urn:x", true},
        {"other namespace", false, SchemaType_Default, "a", "urn:y", false},
        {"no namespace", false, SchemaType_Default, "a", "", false},
        {"other name", false, SchemaType_Default, "b", "urn:x", false},
        {"case differs", false, SchemaType_Default, "A", "urn:x", false},
        {"prefixed name", false, SchemaType_Default, "p:a", "urn:x", false},
        {"ignored namespace", true, SchemaType_Default, "a", "urn:y", true},
        {"ignored namespace, other name", true, SchemaType_Default, "b", "urn:x", false},
        {"schema without namespaces", false, SchemaType_NoNamespace, "a", "urn:y", true},
        {"schema without namespaces, other name", false, SchemaType_NoNamespace, "b", "", false},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.label);
        CSerializationContext ctx;
        ctx.SetIgnoreNamespaces(row.ignoreNamespaces);
        ctx.SetSchemaType(row.schemaType);
        EXPECT_EQ(row.match,
                  CXmlObjectHelper::DoesElementNameMatch(ctx, element, row.name, row.ns));
    }
    EXPECT_FALSE(CXmlObjectHelper::DoesElementNameMatch(CSerializationContext::m_defaultContext,
                                                        nullptr, "a", "urn:x"));
}
