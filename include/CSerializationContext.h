// CSerializationContext: every option of one write or read.
#ifndef KX_CSERIALIZATIONCONTEXT_H
#define KX_CSERIALIZATIONCONTEXT_H

#include <memory>
#include <string>
#include <vector>

#include "CNamespaceAliasMap.h"
#include "CSmartPtr.h"
#include "KxConfig.h"
#include "KxTypes.h"

namespace KxXmlLib16 {

class CAttributeCol;
class CFastInfosetContext;
class CJsonContext;

// A plain value object passed by const reference to every entry point. Serialisation does not
// change it, except that the Fast Infoset and JSON sub-contexts and the additional root
// attribute collection are created on first access, even through a const context. Not
// synchronised: a context may be used by one thread at a time until those three have been
// created; after that, threads may read and write with it at once as long as none changes it.
class KX_EXPORT CSerializationContext {
public:
    // The process-wide default context, with all defaults. It can be used at any time,
    // including by static initialisers of other files and by static destructors. Its
    // sub-contexts and root attribute collection exist from the start, so any number of
    // threads may use it at once (as long as none changes it).
    static CSerializationContext& m_defaultContext;

    // All defaults: type attributes allowed, CDATA stripped, tabs for indentation, every
    // tolerance off, schema type 0, no sub-context yet.
    CSerializationContext();
    // Copies every option; the sub-contexts are copied deeply, the additional root attribute
    // collection is shared (its count raised). Source and copy are independent otherwise.
    CSerializationContext(const CSerializationContext& other);
    CSerializationContext& operator=(const CSerializationContext& other);
    virtual ~CSerializationContext();

    // Default namespace of written documents. A null pointer sets the empty string.
    std::string GetDefaultNamespaceURI() const;
    void SetDefaultNamespaceURI(const char* uri);

    // Writing: allow xsi:type attributes (true by default).
    bool GetWriteTypeAttribute() const;
    void SetWriteTypeAttribute(bool value);

    // Prefix/namespace pairs for written documents; the non-const form is filled by the caller.
    const CNamespaceAliasMap& GetNamespaceAliases() const;
    CNamespaceAliasMap& GetNamespaceAliases();

    // Extra attributes for the root element, with the reference count raised by one: the caller
    // releases it. Created empty (namespace "", rule "##any") on the first call.
    CAttributeCol* GetAdditionalRootAttributes() const;

    // Processing instructions for written documents; the non-const form is filled by the caller.
    const std::vector<std::string>& GetProcessingInstructions() const;
    std::vector<std::string>& GetProcessingInstructions();

    // Schema text written inline. A null pointer sets the empty string.
    std::string GetInLineSchema() const;
    void SetInLineSchema(const char* schema);

    // Reading: accept collections with fewer or more items than their bounds.
    bool GetIgnoreInvalidCollectionCounts() const;
    void SetIgnoreInvalidCollectionCounts(bool value);

    // Reading: accept a mandatory choice of which no branch is present.
    bool GetIgnoreMissingChoice() const;
    void SetIgnoreMissingChoice(bool value);

    // Reading: accept missing mandatory elements. Setting it to true while
    // IgnoreUnknownElements is true throws CKxInvalidStateException (nothing changes).
    bool GetIgnoreMissingMandatoryElements() const;
    void SetIgnoreMissingMandatoryElements(bool value);

    // Reading: skip elements that match no member. Setting it to true while
    // IgnoreMissingMandatoryElements is true throws CKxInvalidStateException (nothing changes).
    bool GetIgnoreUnknownElements() const;
    void SetIgnoreUnknownElements(bool value);

    // Reading: skip attributes that match no member.
    bool GetIgnoreUnknownAttributes() const;
    void SetIgnoreUnknownAttributes(bool value);

    // Reading: match names without namespaces. True also when the schema type is
    // SchemaType_NoNamespace, whatever was set.
    bool GetIgnoreNamespaces() const;
    void SetIgnoreNamespaces(bool value);

    // Kind of schema the bindings were generated from (SchemaType_Default by default).
    SchemaType GetSchemaType() const;
    void SetSchemaType(SchemaType value);

    // Writing: leave out optional attributes that hold their default value.
    bool GetNoOptionalAttributeDefaultOutput() const;
    void SetNoOptionalAttributeDefaultOutput(bool value);

    // Writing: write element values even when they equal the default.
    bool GetWriteDefaultElementValues() const;
    void SetWriteDefaultElementValues(bool value);

    // Reading: deliver CDATA content as plain text (true by default).
    bool GetStripCDATA() const;
    void SetStripCDATA(bool value);

    // Indentation unit of formatted output ("\t" by default). A null pointer sets the empty
    // string. Throws CKxInvalidParamException when a character is neither a space nor a tab
    // (the old value stays).
    std::string GetIndentChars() const;
    void SetIndentChars(const char* chars);

    // The sub-contexts, created on the first call and owned by this context.
    CFastInfosetContext* GetFIContext() const;
    CJsonContext* GetJsonContext() const;

private:
    friend class CSerializationContextInit;
    // Builds the default context on first call (into storage whose address is fixed at load).
    static CSerializationContext& GetDefaultContext();

    std::string m_defaultNamespaceURI;
    bool m_writeTypeAttribute;
    CNamespaceAliasMap m_namespaceAliases;
    mutable CSmartPtr<CAttributeCol> m_additionalRootAttributes;
    std::vector<std::string> m_processingInstructions;
    std::string m_inLineSchema;
    bool m_ignoreInvalidCollectionCounts;
    bool m_ignoreMissingChoice;
    bool m_ignoreMissingMandatoryElements;
    bool m_ignoreUnknownElements;
    bool m_ignoreUnknownAttributes;
    bool m_ignoreNamespaces;
    SchemaType m_schemaType;
    bool m_noOptionalAttributeDefaultOutput;
    bool m_writeDefaultElementValues;
    bool m_stripCDATA;
    std::string m_indentChars;
    mutable std::unique_ptr<CFastInfosetContext> m_fiContext;
    mutable std::unique_ptr<CJsonContext> m_jsonContext;
};

// One instance per file that includes this header, initialised before that file's own static
// objects: it makes sure the default context exists before any of them can use it.
class KX_EXPORT CSerializationContextInit {
public:
    CSerializationContextInit();
};

static const CSerializationContextInit s_kxSerializationContextInit;

}  // namespace KxXmlLib16

#endif
