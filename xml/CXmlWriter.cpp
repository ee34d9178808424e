#include "CXmlWriter.h"

#include <cstdint>
#include <cstring>

#include "CKxException.h"

namespace KxXmlLib16 {

namespace {

// Equality of two texts, inline for the usual namespace URI lengths, where a call to memcmp
// costs more than the comparison.
bool SameText(const std::string& a, const std::string& b) {
    const size_t length = a.size();
    if (length != b.size()) {
        return false;
    }
    if (length < 8 || length > 16) {
        return std::memcmp(a.data(), b.data(), length) == 0;
    }
    std::uint64_t a1;
    std::uint64_t a2;
    std::uint64_t b1;
    std::uint64_t b2;
    std::memcpy(&a1, a.data(), 8);
    std::memcpy(&a2, a.data() + length - 8, 8);
    std::memcpy(&b1, b.data(), 8);
    std::memcpy(&b2, b.data() + length - 8, 8);
    return a1 == b1 && a2 == b2;
}

}  // namespace

const std::string CXmlWriter::XML_NAMESPACE = "http://www.w3.org/XML/1998/namespace";

// ---------------------------------------------------------------------------------------------
// CXmlWriterContext

CXmlWriter::CXmlWriterContext::CXmlWriterContext(const std::string& name, const std::string& ns,
                                                 const std::string& defaultNamespace,
                                                 const NamespaceMap& namespaceMap)
    : CInstanceMonitor("CXmlWriterContext"),
      m_childCount(0),
      m_startTagOpen(false),
      m_depth(0),
      m_namespace(ns),
      m_name(name),
      m_contextState(ContextState_None),
      m_defaultNamespace(defaultNamespace),
      m_namespaceMap(nullptr),
      m_ownMap(new NamespaceMap(namespaceMap)),
      m_scope(this),
      m_inheritsScope(false),
      m_ownsMap(true) {
    m_namespaceMap = m_ownMap.get();
}

CXmlWriter::CXmlWriterContext::CXmlWriterContext(const std::string& name, const std::string& ns,
                                                 CXmlWriterContext* parent)
    : CInstanceMonitor("CXmlWriterContext"),
      m_childCount(0),
      m_startTagOpen(false),
      m_depth(parent->m_depth + 1),
      m_namespace(ns),
      m_name(name),
      m_parent(parent),
      m_contextState(ContextState_None),
      m_namespaceMap(parent->m_namespaceMap),
      m_scope(parent->m_scope),
      m_inheritsScope(true),
      m_ownsMap(false) {}

CXmlWriter::CXmlWriterContext::~CXmlWriterContext() {
    // Free the chain one link at a time: a recursive destruction of a deep document's chain
    // could exhaust the stack. Each move detaches the next link before deleting the current.
    std::unique_ptr<CXmlWriterContext> link = std::move(m_parent);
    while (link) {
        link = std::move(link->m_parent);
    }
}

void CXmlWriter::CXmlWriterContext::ScopeChanged() {
    ++m_scopeVersion;
    m_lookupValid = false;
}

void CXmlWriter::CXmlWriterContext::TakeOwnScope(bool copyDefaultNamespace) {
    ScopeChanged();
    m_ownMap.reset(new NamespaceMap(*m_namespaceMap));
    m_namespaceMap = m_ownMap.get();
    if (copyDefaultNamespace) {
        m_defaultNamespace = m_scope->m_defaultNamespace;
    }
    m_scope = this;
    m_ownsMap = true;
    m_inheritsScope = false;
}

void CXmlWriter::CXmlWriterContext::ResetAsChild(const std::string& name, const std::string& ns,
                                                 CXmlWriterContext* parent) {
    // The parent is adopted first, so it is not lost if copying the names fails.
    m_parent.reset(parent);
    m_childCount = 0;
    m_startTagOpen = false;
    m_depth = parent->m_depth + 1;
    m_namespace = ns;
    m_name = name;
    m_contextState = ContextState_None;
    m_defaultNamespace.clear();
    ScopeChanged();
    m_hasNamePrefix = false;
    m_ownMap.reset();
    m_namespaceMap = parent->m_namespaceMap;
    m_scope = parent->m_scope;
    m_inheritsScope = true;
    m_ownsMap = false;
}

const std::string& CXmlWriter::CXmlWriterContext::GetDefaultNamespace() const {
    return m_scope->m_defaultNamespace;
}

const CXmlWriter::NamespaceMap& CXmlWriter::CXmlWriterContext::GetNamespaceMap() const {
    return *m_namespaceMap;
}

std::string CXmlWriter::CXmlWriterContext::GetNamespaceMapValue(const std::string& ns) const {
    const std::string* prefix = FindNamespacePrefix(ns);
    return prefix != nullptr ? *prefix : std::string();
}

const std::string* CXmlWriter::CXmlWriterContext::FindNamespacePrefix(
    const std::string& ns) const {
    // The map in force belongs to m_scope, which keeps the memo of its last answer.
    const CXmlWriterContext& owner = *m_scope;
    if (owner.m_lookupValid && owner.m_lookupVersion == owner.m_scopeVersion &&
        SameText(owner.m_lookupNamespace, ns)) {
        return owner.m_lookupPrefix;
    }
    const NamespaceMap::const_iterator found = m_namespaceMap->find(ns);
    const std::string* prefix = found != m_namespaceMap->end() ? &found->second : nullptr;
    owner.m_lookupValid = false;  // stays false if copying the key fails
    owner.m_lookupNamespace = ns;
    owner.m_lookupPrefix = prefix;
    owner.m_lookupVersion = owner.m_scopeVersion;
    owner.m_lookupValid = true;
    return prefix;
}

void CXmlWriter::CXmlWriterContext::SetDefaultNamespace(const std::string& ns) {
    if (m_inheritsScope) {
        TakeOwnScope(false);
    }
    ScopeChanged();
    m_defaultNamespace = ns;
}

void CXmlWriter::CXmlWriterContext::SetNamespaceMapValue(const std::string& ns,
                                                         const std::string& prefix) {
    if (m_inheritsScope) {
        TakeOwnScope(true);
    }
    ScopeChanged();
    (*m_namespaceMap)[ns] = prefix;
}

void CXmlWriter::CXmlWriterContext::RememberNamePrefix(const std::string* prefix) {
    m_namePrefix = prefix;
    m_namePrefixScope = m_scope;
    m_namePrefixVersion = m_scope->m_scopeVersion;
    m_hasNamePrefix = true;
}

bool CXmlWriter::CXmlWriterContext::RecallNamePrefix(const std::string*& prefix) const {
    if (!m_hasNamePrefix || m_namePrefixScope != m_scope ||
        m_namePrefixVersion != m_scope->m_scopeVersion) {
        return false;
    }
    prefix = m_namePrefix;
    return true;
}

const std::string& CXmlWriter::CXmlWriterContext::GetName() const { return m_name; }

const std::string& CXmlWriter::CXmlWriterContext::GetNamespace() const { return m_namespace; }

int CXmlWriter::CXmlWriterContext::GetDepth() const { return m_depth; }

void CXmlWriter::CXmlWriterContext::SetDepth(int depth) { m_depth = depth; }

int CXmlWriter::CXmlWriterContext::GetChildCount() const { return m_childCount; }

void CXmlWriter::CXmlWriterContext::IncrementChildCount() { ++m_childCount; }

bool CXmlWriter::CXmlWriterContext::IsStartTagOpen() const { return m_startTagOpen; }

void CXmlWriter::CXmlWriterContext::SetStartTagOpen(bool open) { m_startTagOpen = open; }

CXmlWriter::ContextState CXmlWriter::CXmlWriterContext::GetContextState() const {
    return m_contextState;
}

void CXmlWriter::CXmlWriterContext::SetContextState(ContextState state) {
    m_contextState = state;
}

CXmlWriter::CXmlWriterContext* CXmlWriter::CXmlWriterContext::GetParent() const {
    return m_parent.get();
}

CXmlWriter::CXmlWriterContext* CXmlWriter::CXmlWriterContext::DetachParent() {
    return m_parent.release();
}

bool CXmlWriter::CXmlWriterContext::InheritsScope() const { return m_inheritsScope; }

bool CXmlWriter::CXmlWriterContext::OwnsMap() const { return m_ownsMap; }

// ---------------------------------------------------------------------------------------------
// CXmlWriter

CXmlWriter::CXmlWriter(const char* className) : CInstanceMonitor(className) {
    m_namespaceMap[XML_NAMESPACE] = "xml";
}

CXmlWriter::~CXmlWriter() = default;

void CXmlWriter::Open() {}

void CXmlWriter::Close() {
    if (m_currentContext) {
        throw CKxException("An Element has not been closed.");
    }
}

void CXmlWriter::SetDefaultNamespace(const std::string& ns) {
    if (m_currentContext) {
        m_currentContext->SetDefaultNamespace(ns);
    } else {
        m_defaultNamespace = ns;
    }
}

void CXmlWriter::AddNamespace(const std::string& prefix, const std::string& ns) {
    if (m_currentContext) {
        m_currentContext->SetNamespaceMapValue(ns, prefix);
    } else {
        m_namespaceMap[ns] = prefix;
    }
}

void CXmlWriter::SetContextState(ContextState state) {
    if (m_currentContext) {
        m_currentContext->SetContextState(state);
    }
}

std::string CXmlWriter::GetUniquePrefix(const NamespaceMap& map) {
    for (int n = 0;; ++n) {
        const std::string candidate = NsIntToString(n);
        bool taken = false;
        for (const NamespaceMap::value_type& entry : map) {
            if (entry.second == candidate) {
                taken = true;
                break;
            }
        }
        if (!taken) {
            return candidate;
        }
    }
}

std::string CXmlWriter::NsIntToString(int n) {
    const char text[2] = {static_cast<char>('A' + n / 26), static_cast<char>('A' + n % 26)};
    return std::string(text, 2);
}

const std::string& CXmlWriter::GetDefaultNamespace() const { return m_defaultNamespace; }

const CXmlWriter::NamespaceMap& CXmlWriter::GetNamespaceMap() const { return m_namespaceMap; }

CXmlWriter::CXmlWriterContext* CXmlWriter::GetCurrentContext() const {
    return m_currentContext.get();
}

CXmlWriter::CXmlWriterContext* CXmlWriter::PushContext(const std::string& name,
                                                       const std::string& ns) {
    if (!m_currentContext) {
        m_currentContext.reset(
            new CXmlWriterContext(name, ns, m_defaultNamespace, m_namespaceMap));
    } else if (m_spareContexts.empty()) {
        // The child takes over the ownership of the current context as its parent.
        CXmlWriterContext* child = new CXmlWriterContext(name, ns, m_currentContext.get());
        m_currentContext.release();
        m_currentContext.reset(child);
    } else {
        std::unique_ptr<CXmlWriterContext> child = std::move(m_spareContexts.back());
        m_spareContexts.pop_back();
        child->ResetAsChild(name, ns, m_currentContext.release());
        m_currentContext = std::move(child);
    }
    return m_currentContext.get();
}

void CXmlWriter::PopContext() {
    if (m_currentContext) {
        // Growing the spare list is the only step that can fail; do it before anything moves.
        if (m_spareContexts.size() == m_spareContexts.capacity()) {
            m_spareContexts.reserve(2 * m_spareContexts.size() + 16);
        }
        std::unique_ptr<CXmlWriterContext> parent(m_currentContext->DetachParent());
        m_spareContexts.push_back(std::move(m_currentContext));
        m_currentContext = std::move(parent);
    }
}

const char* CXmlWriter::EndOfLineFor(EOLType type) {
    switch (type) {
    case EOLType_CRLF: return "\r\n";
    case EOLType_LF: return "\n";
    default: throw CKxException("Invalid EOL type.");
    }
}

}  // namespace KxXmlLib16
