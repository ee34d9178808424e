#include "CXmlCollectionBase.h"

#include <algorithm>

#include "CKxException.h"
#include "CSerializationContext.h"
#include "FormatString.h"

namespace KxXmlLib16 {

CXmlCollectionBase::CXmlCollectionBase() : m_minOccurs(0), m_maxOccurs(-1) {}

CXmlCollectionBase::CXmlCollectionBase(const char* elementName, const char* namespaceUri,
                                       int minOccurs, int maxOccurs)
    : m_namespace(namespaceUri ? namespaceUri : ""), m_minOccurs(minOccurs),
      m_maxOccurs(maxOccurs) {
    SetElementName(elementName ? elementName : "");
}

CXmlCollectionBase::CXmlCollectionBase(const CXmlCollectionBase& other)
    : CXmlObjectBase(other), m_namespace(other.m_namespace), m_minOccurs(other.m_minOccurs),
      m_maxOccurs(other.m_maxOccurs) {}

CXmlCollectionBase::~CXmlCollectionBase() = default;

std::string CXmlCollectionBase::GetTargetNamespace() const { return m_namespace; }
std::string CXmlCollectionBase::GetNamespace() const { return m_namespace; }

void CXmlCollectionBase::Clear() {}
void CXmlCollectionBase::Remove(int) {}

void CXmlCollectionBase::ValidateCount(const CSerializationContext& ctx) const {
    if (ctx.GetIgnoreInvalidCollectionCounts()) return;
    const int count = GetCount();
    if (m_maxOccurs != -1 && count > m_maxOccurs) {
        throw CKxValidationException(
            FormatString("The Maximum number of [%s] elements allowed in this collection is %d",
                         GetElementName().c_str(), m_maxOccurs),
            "");
    }
    if (count < m_minOccurs) {
        throw CKxValidationException(
            FormatString("The Minimum number of [%s] elements allowed in this collection is %d",
                         GetElementName().c_str(), m_minOccurs),
            "");
    }
}

bool CXmlCollectionBase::IsValidCount(const CSerializationContext& ctx) const {
    if (ctx.GetIgnoreInvalidCollectionCounts()) return true;
    const int count = GetCount();
    if (m_maxOccurs != -1 && count > m_maxOccurs) return false;
    return count >= m_minOccurs;
}

void CXmlCollectionBase::AddEventListener(IEventSink* sink) { m_listeners.push_back(sink); }

void CXmlCollectionBase::RemoveEventListener(IEventSink* sink) {
    m_listeners.erase(std::remove(m_listeners.begin(), m_listeners.end(), sink),
                      m_listeners.end());
}

int CXmlCollectionBase::GetMinOccurs() const { return m_minOccurs; }
int CXmlCollectionBase::GetMaxOccurs() const { return m_maxOccurs; }

// Listeners are copied first so that one may unregister itself while being notified.
void CXmlCollectionBase::FireOnCollectionAdd(void* item) {
    const std::vector<IEventSink*> sinks = m_listeners;
    for (IEventSink* sink : sinks) FireOnCollectionAddEvent(sink, this, item);
}

void CXmlCollectionBase::FireOnCollectionAddComplete(void* item) {
    const std::vector<IEventSink*> sinks = m_listeners;
    for (IEventSink* sink : sinks) FireOnCollectionAddCompleteEvent(sink, this, item);
}

void CXmlCollectionBase::FireOnCollectionRemove(int index) {
    const std::vector<IEventSink*> sinks = m_listeners;
    for (IEventSink* sink : sinks) FireOnCollectionRemoveEvent(sink, this, index);
}

void CXmlCollectionBase::FireOnCollectionRemoveComplete(int index) {
    const std::vector<IEventSink*> sinks = m_listeners;
    for (IEventSink* sink : sinks) FireOnCollectionRemoveCompleteEvent(sink, this, index);
}

void CXmlCollectionBase::FireOnCollectionChange() {
    const std::vector<IEventSink*> sinks = m_listeners;
    for (IEventSink* sink : sinks) FireOnCollectionChangeEvent(sink, this);
}

}  // namespace KxXmlLib16
