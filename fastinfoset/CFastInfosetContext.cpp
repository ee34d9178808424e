#include "CFastInfosetContext.h"

#include "CKxException.h"
#include "FormatString.h"

namespace KxXmlLib16 {

CFastInfosetContext::CFastInfosetContext()
    : m_defaultStringEncoding(0),
      m_attributeMaxAddLength(6),
      m_elementMaxAddLength(6),
      m_useGeneratedVocabulary(false) {
    for (EncodingEntry& entry : m_encodings) entry = EncodingEntry(ECS_Utf8, 0);
}

CFastInfosetContext::CFastInfosetContext(const CFastInfosetContext& other) = default;
CFastInfosetContext& CFastInfosetContext::operator=(const CFastInfosetContext& other) = default;
CFastInfosetContext::~CFastInfosetContext() = default;

unsigned char CFastInfosetContext::GetDefaultStringEncoding() const {
    return m_defaultStringEncoding;
}

int CFastInfosetContext::CheckedItemType(ItemType type) {
    const int position = static_cast<int>(type);
    if (position < 0 || position >= EncodingTableSize) {
        throw CKxInvalidParamException(
            FormatString("Invalid item type [%d] for the Fast Infoset encoding table.", position));
    }
    return position;
}

const CFastInfosetContext::EncodingEntry& CFastInfosetContext::GetEncoding(ItemType type) const {
    return m_encodings[CheckedItemType(type)];
}

void CFastInfosetContext::SetEncoding(ItemType type, EncodedCharacterString kind,
                                      unsigned long index) {
    m_encodings[CheckedItemType(type)] = EncodingEntry(kind, index);
}

void CFastInfosetContext::SetSuggestedValues() {
    struct Suggestion {
        ItemType type;
        EncodedCharacterString kind;
        unsigned long index;
    };
    static const Suggestion suggestions[] = {
        {ItemType_hexBinary, ECS_EncodingAlgorithm, 1},
        {ItemType_base64Binary, ECS_EncodingAlgorithm, 2},
        {ItemType_i1, ECS_EncodingAlgorithm, 3},
        {ItemType_i2, ECS_EncodingAlgorithm, 3},
        {ItemType_i4, ECS_EncodingAlgorithm, 4},
        {ItemType_i8, ECS_EncodingAlgorithm, 5},
        // Unsigned types move up to the next algorithm that holds every value; 64-bit unsigned
        // values have nothing wider and share long.
        {ItemType_ui1, ECS_EncodingAlgorithm, 3},
        {ItemType_ui2, ECS_EncodingAlgorithm, 4},
        {ItemType_ui4, ECS_EncodingAlgorithm, 5},
        {ItemType_ui8, ECS_EncodingAlgorithm, 5},
        {ItemType_r4, ECS_EncodingAlgorithm, 7},
        {ItemType_r8, ECS_EncodingAlgorithm, 8},
        {ItemType_duration, ECS_Utf8, 0},
        {ItemType_yearMonth, ECS_RestrictedAlphabet, 2},
        {ItemType_monthDay, ECS_RestrictedAlphabet, 2},
        {ItemType_year, ECS_RestrictedAlphabet, 2},
        {ItemType_month, ECS_RestrictedAlphabet, 2},
        {ItemType_day, ECS_RestrictedAlphabet, 2},
        {ItemType_date, ECS_RestrictedAlphabet, 2},
        {ItemType_datetime, ECS_RestrictedAlphabet, 2},
        {ItemType_time, ECS_RestrictedAlphabet, 2},
        {ItemType_boolean, ECS_EncodingAlgorithm, 6},
        {ItemType_decimal, ECS_RestrictedAlphabet, 1},
        {ItemType_integer, ECS_RestrictedAlphabet, 1},
    };
    for (const Suggestion& suggestion : suggestions) {
        m_encodings[suggestion.type] = EncodingEntry(suggestion.kind, suggestion.index);
    }
}

unsigned long CFastInfosetContext::GetAttributeMaxAddLength() const {
    return m_attributeMaxAddLength;
}

void CFastInfosetContext::SetAttributeMaxAddLength(unsigned long length) {
    m_attributeMaxAddLength = length;
}

unsigned long CFastInfosetContext::GetElementMaxAddLength() const { return m_elementMaxAddLength; }

void CFastInfosetContext::SetElementMaxAddLength(unsigned long length) {
    m_elementMaxAddLength = length;
}

bool CFastInfosetContext::GetUseGeneratedVocabulary() const { return m_useGeneratedVocabulary; }

void CFastInfosetContext::SetUseGeneratedVocabulary(bool use) { m_useGeneratedVocabulary = use; }

std::string CFastInfosetContext::GetExternalVocabularyURI() const {
    return m_externalVocabularyURI;
}

void CFastInfosetContext::SetExternalVocabularyURI(const std::string& uri) {
    m_externalVocabularyURI = uri;
}

CFIVocabulary& CFastInfosetContext::GetVocabulary() { return m_vocabulary; }

const CFIVocabulary& CFastInfosetContext::GetVocabulary() const { return m_vocabulary; }

}  // namespace KxXmlLib16
