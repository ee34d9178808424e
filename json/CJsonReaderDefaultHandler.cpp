#include "CJsonReaderDefaultHandler.h"

namespace KxXmlLib16 {

CJsonReaderDefaultHandler::CJsonReaderDefaultHandler() : m_inner(nullptr) {}

CJsonReaderDefaultHandler::~CJsonReaderDefaultHandler() = default;

void CJsonReaderDefaultHandler::SetInnerHandler(IJsonReaderHandler* inner) { m_inner = inner; }

IJsonReaderHandler* CJsonReaderDefaultHandler::GetInnerHandler() const { return m_inner; }

void CJsonReaderDefaultHandler::ReadStartDocument() {
    m_stack.clear();
    if (m_inner) m_inner->ReadStartDocument();
}

void CJsonReaderDefaultHandler::ReadEndDocument() {
    if (m_inner) m_inner->ReadEndDocument();
}

void CJsonReaderDefaultHandler::ReadName(const std::string& name) {
    // A name still on top belongs to the previous member, whose value was simple.
    if (!m_stack.empty() && m_stack.back().kind == StackItem::Kind_Name) m_stack.pop_back();
    m_stack.push_back(StackItem{name, -1, StackItem::Kind_Name});
    if (m_inner) m_inner->ReadName(name);
}

void CJsonReaderDefaultHandler::ReadString(const std::string& value) {
    if (m_inner) m_inner->ReadString(value);
}

void CJsonReaderDefaultHandler::ReadNumber(const std::string& text) {
    if (m_inner) m_inner->ReadNumber(text);
}

void CJsonReaderDefaultHandler::ReadStartObject() {
    StartContainer(StackItem::Kind_Object);
    if (m_inner) m_inner->ReadStartObject();
}

void CJsonReaderDefaultHandler::ReadEndObject() {
    EndContainer(StackItem::Kind_Object);
    if (m_inner) m_inner->ReadEndObject();
}

void CJsonReaderDefaultHandler::ReadStartArray() {
    StartContainer(StackItem::Kind_Array);
    if (m_inner) m_inner->ReadStartArray();
}

void CJsonReaderDefaultHandler::ReadEndArray() {
    EndContainer(StackItem::Kind_Array);
    if (m_inner) m_inner->ReadEndArray();
}

void CJsonReaderDefaultHandler::ReadBool(bool value) {
    if (m_inner) m_inner->ReadBool(value);
}

void CJsonReaderDefaultHandler::ReadNull() {
    if (m_inner) m_inner->ReadNull();
}

std::string CJsonReaderDefaultHandler::GetPath() {
    std::string path = "$";
    for (auto it = m_stack.rbegin(); it != m_stack.rend(); ++it) {
        if (it->kind == StackItem::Kind_Array) continue;
        path += '.';
        path += it->name;
    }
    return path;
}

void CJsonReaderDefaultHandler::StartContainer(StackItem::Kind kind) {
    // The outermost container has no name and is not tracked.
    if (m_stack.empty()) return;
    StackItem item{std::string(), -1, kind};
    StackItem& top = m_stack.back();
    switch (top.kind) {
    case StackItem::Kind_Name:
        item.name = top.name;
        m_stack.pop_back();
        break;
    case StackItem::Kind_Array:
        ++top.index;
        // The index goes in as one character of that code, not as decimal digits: error paths
        // have always looked like this and callers compare them.
        item.name = top.name + "[" + std::string(1, static_cast<char>(top.index)) + "]";
        break;
    case StackItem::Kind_Object:
        break;
    }
    m_stack.push_back(std::move(item));
}

void CJsonReaderDefaultHandler::EndContainer(StackItem::Kind kind) {
    while (!m_stack.empty()) {
        const bool found = m_stack.back().kind == kind;
        m_stack.pop_back();
        if (found) break;
    }
}

}  // namespace KxXmlLib16
