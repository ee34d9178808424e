#include "CJsonContext.h"

namespace KxXmlLib16 {

CJsonContext::CJsonContext() : m_supportRoundtrip(RoundTrip_Full), m_allowComments(true), m_standardEscaping(false) {}
CJsonContext::CJsonContext(const CJsonContext& other) = default;
CJsonContext& CJsonContext::operator=(const CJsonContext& other) = default;
CJsonContext::~CJsonContext() = default;

JsonRoundTrip CJsonContext::GetSupportRoundtrip() const { return m_supportRoundtrip; }
void CJsonContext::SetSupportRoundtrip(JsonRoundTrip value) { m_supportRoundtrip = value; }

std::string CJsonContext::GetRootElementName() const { return m_rootElementName; }
void CJsonContext::SetRootElementName(const char* name) { m_rootElementName = name ? name : ""; }

bool CJsonContext::GetAllowComments() const { return m_allowComments; }
void CJsonContext::GetAllowComments(bool allow) { m_allowComments = allow; }

bool CJsonContext::GetStandardEscaping() const { return m_standardEscaping; }
void CJsonContext::SetStandardEscaping(bool standard) { m_standardEscaping = standard; }

}  // namespace KxXmlLib16
