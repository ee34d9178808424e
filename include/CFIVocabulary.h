// CFIVocabulary: the Fast Infoset vocabulary tables that a writer and a reader grow in step
// while a document streams (prefixes, namespace names, local names, attribute values,
// character chunks, element names and attribute names).
#ifndef KX_CFIVOCABULARY_H
#define KX_CFIVOCABULARY_H

#include <string>
#include <unordered_map>
#include <vector>

#include "CQNameParts.h"
#include "KxConfig.h"

namespace KxXmlLib16 {

// Each table has a look-up side (text to index, used when writing) and a list side (index to
// text, used when reading). Indexes are 1-based: a new entry gets the list size plus one. The
// prefix table starts with "xml" and the namespace-name table with the XML namespace, both at
// index 1. A table stops growing at MaxTableSize entries without any error, so values past
// that point are simply never indexed. Copying copies every table.
class KX_EXPORT CFIVocabulary {
public:
    // Largest number of entries in a table, which is also the largest encodable index.
    static const unsigned long MaxTableSize = 1048576UL;
    // Namespace name bound to the prefix "xml".
    static const char* const XmlNamespace;

    // Look-up side: text (or qualified-name key) to 1-based index.
    typedef std::unordered_map<std::string, unsigned long> CFIIndexMap;

    // List side of a string table: entry i (1-based) is the i-th element of the list.
    class KX_EXPORT CFIStringTable {
    public:
        typedef std::vector<std::string>::const_iterator const_iterator;
        CFIStringTable();
        CFIStringTable(const CFIStringTable& other);
        CFIStringTable& operator=(const CFIStringTable& other);
        virtual ~CFIStringTable();

        const_iterator begin() const;
        const_iterator end() const;
        unsigned long size() const;
        bool empty() const;
        // The entry with this 1-based index, or null when the index is 0 or past the end.
        const std::string* At(unsigned long index) const;

    private:
        friend class CFIVocabulary;
        std::vector<std::string> m_items;
    };

    // List side of a qualified-name table.
    class KX_EXPORT CFIQNameTable {
    public:
        typedef std::vector<CQNameParts>::const_iterator const_iterator;
        CFIQNameTable();
        CFIQNameTable(const CFIQNameTable& other);
        CFIQNameTable& operator=(const CFIQNameTable& other);
        virtual ~CFIQNameTable();

        const_iterator begin() const;
        const_iterator end() const;
        unsigned long size() const;
        bool empty() const;
        // The record with this 1-based index, or null when the index is 0 or past the end.
        const CQNameParts* At(unsigned long index) const;

    private:
        friend class CFIVocabulary;
        std::vector<CQNameParts> m_items;
    };

    // Built-in entries only.
    CFIVocabulary();
    CFIVocabulary(const CFIVocabulary& other);
    CFIVocabulary& operator=(const CFIVocabulary& other);
    virtual ~CFIVocabulary();

    // Each appends the text to the table's list side and, unless the look-up side already holds
    // it (it then keeps its first index), enters it there with the new list index. Add a text
    // only after a failed look-up so both sides stay in step. Nothing happens once the table is
    // full. Never throws.
    void AddPrefixName(const std::string& prefix);
    void AddNamespaceName(const std::string& namespaceName);
    void AddLocalName(const std::string& localName);
    void AddAttributeValue(const std::string& value);
    void AddElementValue(const std::string& value);

    // Enter a qualified name in the element or attribute name table unless the same three parts
    // are already there. A non-empty prefix, a non-empty namespace name and the local name are
    // first looked up in their tables and added when missing; an empty prefix or namespace is
    // recorded as index 0. Never throws.
    void AddElement(const std::string& prefix, const std::string& namespaceName,
                    const std::string& localName);
    void AddAttribute(const std::string& prefix, const std::string& namespaceName,
                      const std::string& localName);

    // Append a record to the list side of the element or attribute name table only, whether
    // or not the same record is already there: a reader numbers every literal qualified name it
    // meets. Nothing happens once the table is full.
    void AppendElementName(const CQNameParts& parts);
    void AppendAttributeName(const CQNameParts& parts);

    // True and the index when the text is in the table's look-up side, else false (index is
    // left unchanged).
    bool FindPrefixNameIndex(const std::string& prefix, unsigned long& index) const;
    bool FindNamespaceNameIndex(const std::string& namespaceName, unsigned long& index) const;
    bool FindLocalNameIndex(const std::string& localName, unsigned long& index) const;
    bool FindAttributeValueIndex(const std::string& value, unsigned long& index) const;
    bool FindElementValueIndex(const std::string& value, unsigned long& index) const;
    // The same for a qualified name (all three parts must match).
    bool FindElementNameIndex(const std::string& prefix, const std::string& namespaceName,
                              const std::string& localName, unsigned long& index) const;
    bool FindAttributeNameIndex(const std::string& prefix, const std::string& namespaceName,
                                const std::string& localName, unsigned long& index) const;

    // The look-up rule shared by every table: true and the index when key is in map.
    static bool FindIndex(const CFIIndexMap& map, const std::string& key, unsigned long& index);
    // Key of a qualified name in the name maps: local name, 0x01, namespace name, 0x01, prefix.
    static std::string QNameKey(const std::string& prefix, const std::string& namespaceName,
                                const std::string& localName);

    // List sides.
    const CFIStringTable& GetPrefixNamesTable() const;
    const CFIStringTable& GetNamespaceNamesTable() const;
    const CFIStringTable& GetLocalNamesTable() const;
    const CFIStringTable& GetAttributeValuesTable() const;
    const CFIStringTable& GetCharacterChunksTable() const;
    const CFIQNameTable& GetElementNamesTable() const;
    const CFIQNameTable& GetAttributeNamesTable() const;

    // Look-up sides.
    const CFIIndexMap& GetPrefixNamesMap() const;
    const CFIIndexMap& GetNamespaceNamesMap() const;
    const CFIIndexMap& GetLocalNamesMap() const;
    const CFIIndexMap& GetAttributeValuesMap() const;
    const CFIIndexMap& GetCharacterChunksMap() const;
    const CFIIndexMap& GetElementNamesMap() const;
    const CFIIndexMap& GetAttributeNamesMap() const;

protected:
    // Shared body of AddElement and AddAttribute.
    void AddQName(const std::string& prefix, const std::string& namespaceName,
                  const std::string& localName, CFIIndexMap& qnameMap, CFIQNameTable& qnameList);

private:
    static void AddString(const std::string& text, CFIIndexMap& map, CFIStringTable& list);
    static unsigned long IndexAfterAdding(const std::string& text, CFIIndexMap& map,
                                          CFIStringTable& list);

    CFIIndexMap m_prefixMap;
    CFIStringTable m_prefixList;
    CFIIndexMap m_namespaceMap;
    CFIStringTable m_namespaceList;
    CFIIndexMap m_localNameMap;
    CFIStringTable m_localNameList;
    CFIIndexMap m_attributeValueMap;
    CFIStringTable m_attributeValueList;
    CFIIndexMap m_chunkMap;
    CFIStringTable m_chunkList;
    CFIIndexMap m_elementNameMap;
    CFIQNameTable m_elementNameList;
    CFIIndexMap m_attributeNameMap;
    CFIQNameTable m_attributeNameList;
};

}  // namespace KxXmlLib16

#endif
