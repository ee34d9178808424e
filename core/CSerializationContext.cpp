#include "CSerializationContext.h"

#include <new>

#include "CAttributeCol.h"
#include "CFastInfosetContext.h"
#include "CJsonContext.h"
#include "CKxException.h"

namespace KxXmlLib16 {

namespace {

// Storage of the default context. Its constructor is constexpr, so the storage is initialised
// at compile time and the public reference below is bound before any code runs; the context is
// built into it by GetDefaultContext. The empty destructor never destroys the context, so that
// static destructors elsewhere may still use it.
union DefaultContextStorage {
    constexpr DefaultContextStorage() : none() {}
    ~DefaultContextStorage() {}
    char none;
    CSerializationContext context;
};

DefaultContextStorage g_defaultContextStorage;

std::string Str(const char* text) { return text ? std::string(text) : std::string(); }

template <typename T>
std::unique_ptr<T> CopyOf(const std::unique_ptr<T>& source) {
    return source ? std::make_unique<T>(*source) : std::unique_ptr<T>();
}

}  // namespace

CSerializationContext& CSerializationContext::m_defaultContext = g_defaultContextStorage.context;

CSerializationContext& CSerializationContext::GetDefaultContext() {
    static CSerializationContext* const instance = [] {
        CSerializationContext* context =
            new (&g_defaultContextStorage.context) CSerializationContext();
        // Every call without a context of its own uses this one, on any thread. Its const
        // getters create their members on first use; creating them here, once, leaves those
        // getters nothing to change, so threads can share the context.
        context->GetFIContext();
        context->GetJsonContext();
        context->GetAdditionalRootAttributes()->Release();
        return context;
    }();
    return *instance;
}

CSerializationContextInit::CSerializationContextInit() { CSerializationContext::GetDefaultContext(); }

CSerializationContext::CSerializationContext()
    : m_writeTypeAttribute(true),
      m_ignoreInvalidCollectionCounts(false),
      m_ignoreMissingChoice(false),
      m_ignoreMissingMandatoryElements(false),
      m_ignoreUnknownElements(false),
      m_ignoreUnknownAttributes(false),
      m_ignoreNamespaces(false),
      m_schemaType(SchemaType_Default),
      m_noOptionalAttributeDefaultOutput(false),
      m_writeDefaultElementValues(false),
      m_stripCDATA(true),
      m_indentChars("\t") {}

CSerializationContext::CSerializationContext(const CSerializationContext& other)
    : m_defaultNamespaceURI(other.m_defaultNamespaceURI),
      m_writeTypeAttribute(other.m_writeTypeAttribute),
      m_namespaceAliases(other.m_namespaceAliases),
      m_additionalRootAttributes(other.m_additionalRootAttributes),
      m_processingInstructions(other.m_processingInstructions),
      m_inLineSchema(other.m_inLineSchema),
      m_ignoreInvalidCollectionCounts(other.m_ignoreInvalidCollectionCounts),
      m_ignoreMissingChoice(other.m_ignoreMissingChoice),
      m_ignoreMissingMandatoryElements(other.m_ignoreMissingMandatoryElements),
      m_ignoreUnknownElements(other.m_ignoreUnknownElements),
      m_ignoreUnknownAttributes(other.m_ignoreUnknownAttributes),
      m_ignoreNamespaces(other.m_ignoreNamespaces),
      m_schemaType(other.m_schemaType),
      m_noOptionalAttributeDefaultOutput(other.m_noOptionalAttributeDefaultOutput),
      m_writeDefaultElementValues(other.m_writeDefaultElementValues),
      m_stripCDATA(other.m_stripCDATA),
      m_indentChars(other.m_indentChars),
      m_fiContext(CopyOf(other.m_fiContext)),
      m_jsonContext(CopyOf(other.m_jsonContext)) {}

CSerializationContext& CSerializationContext::operator=(const CSerializationContext& other) {
    if (this == &other) return *this;
    // Copy the sub-contexts first: should that fail, this context is left as it was.
    std::unique_ptr<CFastInfosetContext> fiContext = CopyOf(other.m_fiContext);
    std::unique_ptr<CJsonContext> jsonContext = CopyOf(other.m_jsonContext);
    m_defaultNamespaceURI = other.m_defaultNamespaceURI;
    m_writeTypeAttribute = other.m_writeTypeAttribute;
    m_namespaceAliases = other.m_namespaceAliases;
    m_additionalRootAttributes = other.m_additionalRootAttributes;
    m_processingInstructions = other.m_processingInstructions;
    m_inLineSchema = other.m_inLineSchema;
    m_ignoreInvalidCollectionCounts = other.m_ignoreInvalidCollectionCounts;
    m_ignoreMissingChoice = other.m_ignoreMissingChoice;
    m_ignoreMissingMandatoryElements = other.m_ignoreMissingMandatoryElements;
    m_ignoreUnknownElements = other.m_ignoreUnknownElements;
    m_ignoreUnknownAttributes = other.m_ignoreUnknownAttributes;
    m_ignoreNamespaces = other.m_ignoreNamespaces;
    m_schemaType = other.m_schemaType;
    m_noOptionalAttributeDefaultOutput = other.m_noOptionalAttributeDefaultOutput;
    m_writeDefaultElementValues = other.m_writeDefaultElementValues;
    m_stripCDATA = other.m_stripCDATA;
    m_indentChars = other.m_indentChars;
    m_fiContext = std::move(fiContext);
    m_jsonContext = std::move(jsonContext);
    return *this;
}

CSerializationContext::~CSerializationContext() = default;

std::string CSerializationContext::GetDefaultNamespaceURI() const { return m_defaultNamespaceURI; }
void CSerializationContext::SetDefaultNamespaceURI(const char* uri) {
    m_defaultNamespaceURI = Str(uri);
}

bool CSerializationContext::GetWriteTypeAttribute() const { return m_writeTypeAttribute; }
void CSerializationContext::SetWriteTypeAttribute(bool value) { m_writeTypeAttribute = value; }

const CNamespaceAliasMap& CSerializationContext::GetNamespaceAliases() const {
    return m_namespaceAliases;
}
CNamespaceAliasMap& CSerializationContext::GetNamespaceAliases() { return m_namespaceAliases; }

CAttributeCol* CSerializationContext::GetAdditionalRootAttributes() const {
    if (m_additionalRootAttributes == nullptr) {
        m_additionalRootAttributes = new CAttributeCol("", "##any");
    }
    m_additionalRootAttributes->AddRef();
    return m_additionalRootAttributes.Ptr();
}

const std::vector<std::string>& CSerializationContext::GetProcessingInstructions() const {
    return m_processingInstructions;
}
std::vector<std::string>& CSerializationContext::GetProcessingInstructions() {
    return m_processingInstructions;
}

std::string CSerializationContext::GetInLineSchema() const { return m_inLineSchema; }
void CSerializationContext::SetInLineSchema(const char* schema) { m_inLineSchema = Str(schema); }

bool CSerializationContext::GetIgnoreInvalidCollectionCounts() const {
    return m_ignoreInvalidCollectionCounts;
}
void CSerializationContext::SetIgnoreInvalidCollectionCounts(bool value) {
    m_ignoreInvalidCollectionCounts = value;
}

bool CSerializationContext::GetIgnoreMissingChoice() const { return m_ignoreMissingChoice; }
void CSerializationContext::SetIgnoreMissingChoice(bool value) { m_ignoreMissingChoice = value; }

bool CSerializationContext::GetIgnoreMissingMandatoryElements() const {
    return m_ignoreMissingMandatoryElements;
}
void CSerializationContext::SetIgnoreMissingMandatoryElements(bool value) {
    if (value && m_ignoreUnknownElements) {
        throw CKxInvalidStateException(
            "The parser can only ignore additional elements, or ignore the fact that some "
            "required ones are missing, you can not ignore both\nSet IgnoreUnknownElements to "
            "false before setting IgnoreMissingMandatoryElements to true");
    }
    m_ignoreMissingMandatoryElements = value;
}

bool CSerializationContext::GetIgnoreUnknownElements() const { return m_ignoreUnknownElements; }
void CSerializationContext::SetIgnoreUnknownElements(bool value) {
    if (value && m_ignoreMissingMandatoryElements) {
        throw CKxInvalidStateException(
            "The parser can only ignore additional elements, or ignore the fact that some "
            "required ones are missing, you can not ignore both\nSet "
            "IgnoreMissingMandatoryElements to false before setting IgnoreUnknownElements to "
            "true");
    }
    m_ignoreUnknownElements = value;
}

bool CSerializationContext::GetIgnoreUnknownAttributes() const { return m_ignoreUnknownAttributes; }
void CSerializationContext::SetIgnoreUnknownAttributes(bool value) {
    m_ignoreUnknownAttributes = value;
}

bool CSerializationContext::GetIgnoreNamespaces() const {
    return m_ignoreNamespaces || m_schemaType == SchemaType_NoNamespace;
}
void CSerializationContext::SetIgnoreNamespaces(bool value) { m_ignoreNamespaces = value; }

SchemaType CSerializationContext::GetSchemaType() const { return m_schemaType; }
void CSerializationContext::SetSchemaType(SchemaType value) { m_schemaType = value; }

bool CSerializationContext::GetNoOptionalAttributeDefaultOutput() const {
    return m_noOptionalAttributeDefaultOutput;
}
void CSerializationContext::SetNoOptionalAttributeDefaultOutput(bool value) {
    m_noOptionalAttributeDefaultOutput = value;
}

bool CSerializationContext::GetWriteDefaultElementValues() const {
    return m_writeDefaultElementValues;
}
void CSerializationContext::SetWriteDefaultElementValues(bool value) {
    m_writeDefaultElementValues = value;
}

bool CSerializationContext::GetStripCDATA() const { return m_stripCDATA; }
void CSerializationContext::SetStripCDATA(bool value) { m_stripCDATA = value; }

std::string CSerializationContext::GetIndentChars() const { return m_indentChars; }
void CSerializationContext::SetIndentChars(const char* chars) {
    const std::string text = Str(chars);
    if (text.find_first_not_of(" \t") != std::string::npos) {
        throw CKxInvalidParamException(
            "IndentChars can only contain Whitespace characters, i.e. \\t or spaces");
    }
    m_indentChars = text;
}

CFastInfosetContext* CSerializationContext::GetFIContext() const {
    if (!m_fiContext) m_fiContext = std::make_unique<CFastInfosetContext>();
    return m_fiContext.get();
}

CJsonContext* CSerializationContext::GetJsonContext() const {
    if (!m_jsonContext) m_jsonContext = std::make_unique<CJsonContext>();
    return m_jsonContext.get();
}

}  // namespace KxXmlLib16
