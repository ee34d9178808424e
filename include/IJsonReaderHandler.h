// IJsonReaderHandler: the callbacks through which CJsonTextReader reports what it reads.
#ifndef KX_IJSONREADERHANDLER_H
#define KX_IJSONREADERHANDLER_H

#include <string>

#include "KxConfig.h"

namespace KxXmlLib16 {

// Receives a JSON text as a stream of events, in document order. An implementation may throw
// any CKxException to stop the reading.
class KX_EXPORT IJsonReaderHandler {
public:
    virtual ~IJsonReaderHandler() {}

    // First and last event of every reading, also for an empty text.
    virtual void ReadStartDocument() = 0;
    virtual void ReadEndDocument() = 0;
    // The name of an object member; its value follows.
    virtual void ReadName(const std::string& name) = 0;
    // A string value, escapes decoded.
    virtual void ReadString(const std::string& value) = 0;
    // A number value, as written in the text (for example "-12.5e+3").
    virtual void ReadNumber(const std::string& text) = 0;
    virtual void ReadStartObject() = 0;
    virtual void ReadEndObject() = 0;
    virtual void ReadStartArray() = 0;
    virtual void ReadEndArray() = 0;
    virtual void ReadBool(bool value) = 0;
    virtual void ReadNull() = 0;
};

}  // namespace KxXmlLib16

#endif
