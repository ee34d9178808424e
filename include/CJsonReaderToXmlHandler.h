// CJsonReaderToXmlHandler: turns the JSON reader's events into calls on an XML text writer,
// reversing the JSON writer's mapping.
#ifndef KX_CJSONREADERTOXMLHANDLER_H
#define KX_CJSONREADERTOXMLHANDLER_H

#include <string>
#include <vector>

#include "IErrorPathProvider.h"
#include "IJsonReaderHandler.h"
#include "KxConfig.h"
#include "KxTypes.h"

namespace KxXmlLib16 {

class CXmlTextWriter;

// Member names become elements; outside RoundTrip_None, names beginning with "@" become
// attributes of the open element and "#text" carries its text (and closes it, so it belongs
// last in its object). An array repeats the element named after it for each object in it; of
// an array of simple values only the first lands in that element. null gives an empty element
// (or drops an attribute). Names and values go into the XML text as they stand, so "p:Name"
// and "@xmlns:p" become namespace syntax there.
class KX_EXPORT CJsonReaderToXmlHandler : public IJsonReaderHandler {
public:
    // Writes to `writer`; `pathProvider` locates errors. Neither is owned.
    CJsonReaderToXmlHandler(CXmlTextWriter& writer, JsonRoundTrip mode,
                            IErrorPathProvider& pathProvider);
    ~CJsonReaderToXmlHandler() override;

    // Writes the XML declaration.
    void ReadStartDocument() override;
    void ReadEndDocument() override;
    // Throws CKxValidationException "JSON item has an empty Name." for "", and
    // CKxInvalidStateException "Failed to convert name '<name>' to Element name in XML." when
    // the writer refuses the element.
    void ReadName(const std::string& name) override;
    // Throw CKxInvalidStateException "Failed to convert value '<value>' to Attribute string
    // value in XML." or "... to Element string value in XML." when the writer refuses the text.
    void ReadString(const std::string& value) override;
    void ReadNumber(const std::string& text) override;
    void ReadBool(bool value) override;
    void ReadNull() override;
    void ReadStartObject() override;
    void ReadEndObject() override;
    // Throws CKxValidationException "JSON Array has no Name." for an array that is not the
    // value of a member.
    void ReadStartArray() override;
    void ReadEndArray() override;

private:
    void StartElement(const std::string& name);
    void StartAttribute(const std::string& name);
    void WriteString(const std::string& value);
    void EndItem();

    CXmlTextWriter& m_writer;
    JsonRoundTrip m_mode;
    IErrorPathProvider& m_pathProvider;
    std::vector<std::string> m_elementStack;
    std::vector<std::string> m_arrayStack;
    std::string m_currentName;
    bool m_inAttribute;
    bool m_textPending;
};

}  // namespace KxXmlLib16

#endif
