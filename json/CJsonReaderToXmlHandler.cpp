#include "CJsonReaderToXmlHandler.h"

#include "CKxException.h"
#include "CXmlTextWriter.h"
#include "FormatString.h"

namespace KxXmlLib16 {

CJsonReaderToXmlHandler::CJsonReaderToXmlHandler(CXmlTextWriter& writer, JsonRoundTrip mode,
                                                 IErrorPathProvider& pathProvider)
    : m_writer(writer),
      m_mode(mode),
      m_pathProvider(pathProvider),
      m_inAttribute(false),
      m_textPending(false) {}

CJsonReaderToXmlHandler::~CJsonReaderToXmlHandler() = default;

void CJsonReaderToXmlHandler::ReadStartDocument() {
    m_elementStack.clear();
    m_arrayStack.clear();
    m_writer.WriteStartDocument();
}

void CJsonReaderToXmlHandler::ReadEndDocument() {}

void CJsonReaderToXmlHandler::ReadName(const std::string& name) {
    if (name.empty()) {
        throw CKxValidationException("JSON item has an empty Name.", m_pathProvider.GetPath());
    }
    if (m_mode != RoundTrip_None && name == "#text") {
        // The text is written when its value arrives, into the element already open.
        m_textPending = true;
        m_inAttribute = false;
    } else if (m_mode != RoundTrip_None && name[0] == '@') {
        StartAttribute(name.substr(1));
    } else {
        StartElement(name);
    }
}

void CJsonReaderToXmlHandler::ReadString(const std::string& value) { WriteString(value); }

void CJsonReaderToXmlHandler::ReadNumber(const std::string& text) { WriteString(text); }

void CJsonReaderToXmlHandler::ReadBool(bool value) { WriteString(value ? "true" : "false"); }

void CJsonReaderToXmlHandler::ReadNull() { EndItem(); }

void CJsonReaderToXmlHandler::ReadStartObject() {
    // The value of the member just named goes into the element its name opened; the members of
    // the outermost object are the document's top elements.
    if (!m_currentName.empty()) return;
    if (!m_arrayStack.empty()) StartElement(m_arrayStack.back());
}

void CJsonReaderToXmlHandler::ReadEndObject() {
    // An object whose last member was an attribute must still close its element.
    m_inAttribute = false;
    if (!m_textPending) EndItem();
    m_textPending = false;
}

void CJsonReaderToXmlHandler::ReadStartArray() {
    if (m_currentName.empty()) {
        throw CKxValidationException("JSON Array has no Name.", m_pathProvider.GetPath());
    }
    m_arrayStack.push_back(m_currentName);
}

void CJsonReaderToXmlHandler::ReadEndArray() {
    if (!m_arrayStack.empty()) m_arrayStack.pop_back();
}

void CJsonReaderToXmlHandler::StartElement(const std::string& name) {
    m_inAttribute = false;
    m_currentName = name;
    m_elementStack.push_back(name);
    try {
        m_writer.WriteStartElement(name, std::string());
    } catch (const CKxException& e) {
        throw CKxInvalidStateException(
            FormatString("Failed to convert name '%s' to Element name in XML.", name.c_str()), e);
    }
}

void CJsonReaderToXmlHandler::StartAttribute(const std::string& name) {
    m_inAttribute = true;
    m_currentName = name;
}

void CJsonReaderToXmlHandler::WriteString(const std::string& value) {
    if (m_inAttribute) {
        try {
            m_writer.WriteAttributeString(m_currentName, std::string(), value, ItemType_string);
        } catch (const CKxException& e) {
            throw CKxInvalidStateException(
                FormatString("Failed to convert value '%s' to Attribute string value in XML.",
                             value.c_str()),
                e);
        }
    } else {
        try {
            m_writer.WriteString(value, ItemType_string, false);
        } catch (const CKxException& e) {
            throw CKxInvalidStateException(
                FormatString("Failed to convert value '%s' to Element string value in XML.",
                             value.c_str()),
                e);
        }
    }
    EndItem();
}

void CJsonReaderToXmlHandler::EndItem() {
    m_currentName.clear();
    if (m_inAttribute) return;
    if (m_elementStack.empty()) return;
    m_elementStack.pop_back();
    m_writer.WriteEndElement();
}

}  // namespace KxXmlLib16
