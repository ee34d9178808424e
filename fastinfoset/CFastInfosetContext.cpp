#include "CFastInfosetContext.h"

namespace KxXmlLib16 {

CFastInfosetContext::CFastInfosetContext()
    : m_defaultStringEncoding(0),
      m_attributeMaxAddLength(6),
      m_elementMaxAddLength(6),
      m_useGeneratedVocabulary(false) {}

CFastInfosetContext::CFastInfosetContext(const CFastInfosetContext& other) = default;
CFastInfosetContext& CFastInfosetContext::operator=(const CFastInfosetContext& other) = default;
CFastInfosetContext::~CFastInfosetContext() = default;

unsigned char CFastInfosetContext::GetDefaultStringEncoding() const {
    return m_defaultStringEncoding;
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

}  // namespace KxXmlLib16
