// CNamespaceAliasMap: the prefix (alias) chosen for each namespace URI of a written document.
#ifndef KX_CNAMESPACEALIASMAP_H
#define KX_CNAMESPACEALIASMAP_H

#include <map>
#include <string>

#include "KxConfig.h"

namespace KxXmlLib16 {

// Entries are kept in byte-wise order of their namespace URI; that order, not the order of
// insertion, is the one GetNamespaceAt walks. One alias per namespace; several namespaces may
// share an alias. Null pointers are taken as empty strings. Not synchronised: even lookups
// may insert (GetAliasFromNamespace).
class KX_EXPORT CNamespaceAliasMap {
public:
    CNamespaceAliasMap();
    CNamespaceAliasMap(const CNamespaceAliasMap& other);
    CNamespaceAliasMap& operator=(const CNamespaceAliasMap& other);
    virtual ~CNamespaceAliasMap();

    // Sets the alias of the namespace, inserting the namespace or replacing its alias.
    void Add(const char* alias, const char* namespaceUri);

    // The namespace of the first entry (in URI order) whose alias is `alias`.
    // Throws CKxException "Namespace alias [%s] not found" when no entry has it.
    std::string GetNamespaceFromAlias(const char* alias) const;

    // The alias of the namespace. An unknown namespace is inserted with an empty alias (the
    // map grows although the call is const) and the empty string is returned.
    std::string GetAliasFromNamespace(const char* namespaceUri) const;

    bool DoesNamespaceExist(const char* namespaceUri) const;
    bool DoesAliasExist(const char* alias) const;

    int GetNamespaceCount() const;

    // The namespace of the entry at `index` in URI order (0 .. count - 1).
    // Throws CKxInvalidParamException "Index %d is out of range, use 0 - %d" otherwise.
    std::string GetNamespaceAt(int index) const;

    // Erases the namespace's entry; an absent namespace is ignored.
    void RemoveNamespace(const char* namespaceUri);

private:
    // Namespace URI -> alias. Mutable because GetAliasFromNamespace records unknown namespaces.
    mutable std::map<std::string, std::string> m_aliases;
};

}  // namespace KxXmlLib16

#endif
