#include "CFIVocabulary.h"

namespace KxXmlLib16 {

const unsigned long CFIVocabulary::MaxTableSize;
const char* const CFIVocabulary::XmlNamespace = "http://www.w3.org/XML/1998/namespace";

// ---- list sides ----

CFIVocabulary::CFIStringTable::CFIStringTable() = default;
CFIVocabulary::CFIStringTable::CFIStringTable(const CFIStringTable& other) = default;
CFIVocabulary::CFIStringTable& CFIVocabulary::CFIStringTable::operator=(
    const CFIStringTable& other) = default;
CFIVocabulary::CFIStringTable::~CFIStringTable() = default;

CFIVocabulary::CFIStringTable::const_iterator CFIVocabulary::CFIStringTable::begin() const {
    return m_items.begin();
}

CFIVocabulary::CFIStringTable::const_iterator CFIVocabulary::CFIStringTable::end() const {
    return m_items.end();
}

unsigned long CFIVocabulary::CFIStringTable::size() const { return m_items.size(); }

bool CFIVocabulary::CFIStringTable::empty() const { return m_items.empty(); }

const std::string* CFIVocabulary::CFIStringTable::At(unsigned long index) const {
    if (index == 0 || index > m_items.size()) return nullptr;
    return &m_items[index - 1];
}

CFIVocabulary::CFIQNameTable::CFIQNameTable() = default;
CFIVocabulary::CFIQNameTable::CFIQNameTable(const CFIQNameTable& other) = default;
CFIVocabulary::CFIQNameTable& CFIVocabulary::CFIQNameTable::operator=(
    const CFIQNameTable& other) = default;
CFIVocabulary::CFIQNameTable::~CFIQNameTable() = default;

CFIVocabulary::CFIQNameTable::const_iterator CFIVocabulary::CFIQNameTable::begin() const {
    return m_items.begin();
}

CFIVocabulary::CFIQNameTable::const_iterator CFIVocabulary::CFIQNameTable::end() const {
    return m_items.end();
}

unsigned long CFIVocabulary::CFIQNameTable::size() const { return m_items.size(); }

bool CFIVocabulary::CFIQNameTable::empty() const { return m_items.empty(); }

const CQNameParts* CFIVocabulary::CFIQNameTable::At(unsigned long index) const {
    if (index == 0 || index > m_items.size()) return nullptr;
    return &m_items[index - 1];
}

// ---- vocabulary ----

CFIVocabulary::CFIVocabulary() {
    AddPrefixName("xml");
    AddNamespaceName(XmlNamespace);
}

CFIVocabulary::CFIVocabulary(const CFIVocabulary& other) = default;
CFIVocabulary& CFIVocabulary::operator=(const CFIVocabulary& other) = default;
CFIVocabulary::~CFIVocabulary() = default;

void CFIVocabulary::AddString(const std::string& text, CFIIndexMap& map, CFIStringTable& list) {
    if (list.m_items.size() >= MaxTableSize) return;
    // The index is the list position, so a reader that appends every literal it meets and a
    // writer that looks up first number entries alike.
    map.emplace(text, list.m_items.size() + 1);
    list.m_items.push_back(text);
}

unsigned long CFIVocabulary::IndexAfterAdding(const std::string& text, CFIIndexMap& map,
                                              CFIStringTable& list) {
    unsigned long index = 0;
    if (FindIndex(map, text, index)) return index;
    AddString(text, map, list);
    // A full table leaves the text unindexed: the part is then recorded as absent.
    FindIndex(map, text, index);
    return index;
}

void CFIVocabulary::AddPrefixName(const std::string& prefix) {
    AddString(prefix, m_prefixMap, m_prefixList);
}

void CFIVocabulary::AddNamespaceName(const std::string& namespaceName) {
    AddString(namespaceName, m_namespaceMap, m_namespaceList);
}

void CFIVocabulary::AddLocalName(const std::string& localName) {
    AddString(localName, m_localNameMap, m_localNameList);
}

void CFIVocabulary::AddAttributeValue(const std::string& value) {
    AddString(value, m_attributeValueMap, m_attributeValueList);
}

void CFIVocabulary::AddElementValue(const std::string& value) {
    AddString(value, m_chunkMap, m_chunkList);
}

void CFIVocabulary::AddQName(const std::string& prefix, const std::string& namespaceName,
                             const std::string& localName, CFIIndexMap& qnameMap,
                             CFIQNameTable& qnameList) {
    std::string key = QNameKey(prefix, namespaceName, localName);
    if (qnameMap.count(key) != 0 || qnameList.m_items.size() >= MaxTableSize) return;
    const unsigned long prefixIndex =
        prefix.empty() ? 0 : IndexAfterAdding(prefix, m_prefixMap, m_prefixList);
    const unsigned long namespaceIndex =
        namespaceName.empty() ? 0 : IndexAfterAdding(namespaceName, m_namespaceMap,
                                                     m_namespaceList);
    const unsigned long localIndex = IndexAfterAdding(localName, m_localNameMap, m_localNameList);
    qnameMap.emplace(std::move(key), qnameList.m_items.size() + 1);
    qnameList.m_items.emplace_back(prefixIndex, namespaceIndex, localIndex);
}

void CFIVocabulary::AddElement(const std::string& prefix, const std::string& namespaceName,
                               const std::string& localName) {
    AddQName(prefix, namespaceName, localName, m_elementNameMap, m_elementNameList);
}

void CFIVocabulary::AddAttribute(const std::string& prefix, const std::string& namespaceName,
                                 const std::string& localName) {
    AddQName(prefix, namespaceName, localName, m_attributeNameMap, m_attributeNameList);
}

void CFIVocabulary::AppendElementName(const CQNameParts& parts) {
    if (m_elementNameList.m_items.size() < MaxTableSize) m_elementNameList.m_items.push_back(parts);
}

void CFIVocabulary::AppendAttributeName(const CQNameParts& parts) {
    if (m_attributeNameList.m_items.size() < MaxTableSize) {
        m_attributeNameList.m_items.push_back(parts);
    }
}

bool CFIVocabulary::FindIndex(const CFIIndexMap& map, const std::string& key,
                              unsigned long& index) {
    const CFIIndexMap::const_iterator found = map.find(key);
    if (found == map.end()) return false;
    index = found->second;
    return true;
}

std::string CFIVocabulary::QNameKey(const std::string& prefix, const std::string& namespaceName,
                                    const std::string& localName) {
    std::string key;
    key.reserve(localName.size() + namespaceName.size() + prefix.size() + 2);
    key.append(localName).append(1, '\x01').append(namespaceName).append(1, '\x01').append(prefix);
    return key;
}

bool CFIVocabulary::FindPrefixNameIndex(const std::string& prefix, unsigned long& index) const {
    return FindIndex(m_prefixMap, prefix, index);
}

bool CFIVocabulary::FindNamespaceNameIndex(const std::string& namespaceName,
                                           unsigned long& index) const {
    return FindIndex(m_namespaceMap, namespaceName, index);
}

bool CFIVocabulary::FindLocalNameIndex(const std::string& localName, unsigned long& index) const {
    return FindIndex(m_localNameMap, localName, index);
}

bool CFIVocabulary::FindAttributeValueIndex(const std::string& value,
                                            unsigned long& index) const {
    return FindIndex(m_attributeValueMap, value, index);
}

bool CFIVocabulary::FindElementValueIndex(const std::string& value, unsigned long& index) const {
    return FindIndex(m_chunkMap, value, index);
}

bool CFIVocabulary::FindElementNameIndex(const std::string& prefix,
                                         const std::string& namespaceName,
                                         const std::string& localName,
                                         unsigned long& index) const {
    return FindIndex(m_elementNameMap, QNameKey(prefix, namespaceName, localName), index);
}

bool CFIVocabulary::FindAttributeNameIndex(const std::string& prefix,
                                           const std::string& namespaceName,
                                           const std::string& localName,
                                           unsigned long& index) const {
    return FindIndex(m_attributeNameMap, QNameKey(prefix, namespaceName, localName), index);
}

const CFIVocabulary::CFIStringTable& CFIVocabulary::GetPrefixNamesTable() const {
    return m_prefixList;
}

const CFIVocabulary::CFIStringTable& CFIVocabulary::GetNamespaceNamesTable() const {
    return m_namespaceList;
}

const CFIVocabulary::CFIStringTable& CFIVocabulary::GetLocalNamesTable() const {
    return m_localNameList;
}

const CFIVocabulary::CFIStringTable& CFIVocabulary::GetAttributeValuesTable() const {
    return m_attributeValueList;
}

const CFIVocabulary::CFIStringTable& CFIVocabulary::GetCharacterChunksTable() const {
    return m_chunkList;
}

const CFIVocabulary::CFIQNameTable& CFIVocabulary::GetElementNamesTable() const {
    return m_elementNameList;
}

const CFIVocabulary::CFIQNameTable& CFIVocabulary::GetAttributeNamesTable() const {
    return m_attributeNameList;
}

const CFIVocabulary::CFIIndexMap& CFIVocabulary::GetPrefixNamesMap() const { return m_prefixMap; }

const CFIVocabulary::CFIIndexMap& CFIVocabulary::GetNamespaceNamesMap() const {
    return m_namespaceMap;
}

const CFIVocabulary::CFIIndexMap& CFIVocabulary::GetLocalNamesMap() const {
    return m_localNameMap;
}

const CFIVocabulary::CFIIndexMap& CFIVocabulary::GetAttributeValuesMap() const {
    return m_attributeValueMap;
}

const CFIVocabulary::CFIIndexMap& CFIVocabulary::GetCharacterChunksMap() const {
    return m_chunkMap;
}

const CFIVocabulary::CFIIndexMap& CFIVocabulary::GetElementNamesMap() const {
    return m_elementNameMap;
}

const CFIVocabulary::CFIIndexMap& CFIVocabulary::GetAttributeNamesMap() const {
    return m_attributeNameMap;
}

}  // namespace KxXmlLib16
