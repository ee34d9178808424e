#include "CNamespaceAliasMap.h"

#include <iterator>

#include "CKxException.h"
#include "FormatString.h"

namespace KxXmlLib16 {

namespace {

std::string Str(const char* text) { return text ? std::string(text) : std::string(); }

}  // namespace

CNamespaceAliasMap::CNamespaceAliasMap() = default;
CNamespaceAliasMap::CNamespaceAliasMap(const CNamespaceAliasMap& other) = default;
CNamespaceAliasMap& CNamespaceAliasMap::operator=(const CNamespaceAliasMap& other) = default;
CNamespaceAliasMap::~CNamespaceAliasMap() = default;

void CNamespaceAliasMap::Add(const char* alias, const char* namespaceUri) {
    m_aliases[Str(namespaceUri)] = Str(alias);
}

std::string CNamespaceAliasMap::GetNamespaceFromAlias(const char* alias) const {
    const std::string wanted = Str(alias);
    for (const auto& entry : m_aliases) {
        if (entry.second == wanted) return entry.first;
    }
    throw CKxException(FormatString("Namespace alias [%s] not found", wanted.c_str()));
}

std::string CNamespaceAliasMap::GetAliasFromNamespace(const char* namespaceUri) const {
    // operator[] inserts an empty alias for an unknown namespace: callers rely on the map
    // remembering every namespace it has been asked about.
    return m_aliases[Str(namespaceUri)];
}

bool CNamespaceAliasMap::DoesNamespaceExist(const char* namespaceUri) const {
    return m_aliases.find(Str(namespaceUri)) != m_aliases.end();
}

bool CNamespaceAliasMap::DoesAliasExist(const char* alias) const {
    const std::string wanted = Str(alias);
    for (const auto& entry : m_aliases) {
        if (entry.second == wanted) return true;
    }
    return false;
}

int CNamespaceAliasMap::GetNamespaceCount() const { return static_cast<int>(m_aliases.size()); }

std::string CNamespaceAliasMap::GetNamespaceAt(int index) const {
    const int count = GetNamespaceCount();
    if (index < 0 || index >= count) {
        throw CKxInvalidParamException(
            FormatString("Index %d is out of range, use 0 - %d", index, count));
    }
    return std::next(m_aliases.begin(), index)->first;
}

void CNamespaceAliasMap::RemoveNamespace(const char* namespaceUri) {
    m_aliases.erase(Str(namespaceUri));
}

}  // namespace KxXmlLib16
