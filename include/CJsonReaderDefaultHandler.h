// CJsonReaderDefaultHandler: the JSON reader's own handler. It forwards every event to an inner
// handler and tracks the members, objects and arrays being read, to build error paths.
#ifndef KX_CJSONREADERDEFAULTHANDLER_H
#define KX_CJSONREADERDEFAULTHANDLER_H

#include <string>
#include <vector>

#include "IErrorPathProvider.h"
#include "IJsonReaderHandler.h"
#include "KxConfig.h"

namespace KxXmlLib16 {

class KX_EXPORT CJsonReaderDefaultHandler : public IJsonReaderHandler, public IErrorPathProvider {
public:
    // One open item of the path.
    struct StackItem {
        enum Kind { Kind_Array = 0, Kind_Name = 1, Kind_Object = 2 };
        // Member name, or the name computed for an object or array.
        std::string name;
        // For an array: index of the last object or array started in it; -1 before the first.
        int index;
        Kind kind;
    };

    CJsonReaderDefaultHandler();
    ~CJsonReaderDefaultHandler() override;

    // Events are forwarded to `inner` (not owned); null swallows them.
    void SetInnerHandler(IJsonReaderHandler* inner);
    IJsonReaderHandler* GetInnerHandler() const;

    // Each event updates the path stack, then is forwarded.
    void ReadStartDocument() override;
    void ReadEndDocument() override;
    void ReadName(const std::string& name) override;
    void ReadString(const std::string& value) override;
    void ReadNumber(const std::string& text) override;
    void ReadStartObject() override;
    void ReadEndObject() override;
    void ReadStartArray() override;
    void ReadEndArray() override;
    void ReadBool(bool value) override;
    void ReadNull() override;

    // "$" then "." and the name of every item that is not an array, innermost first. An object
    // inside an array is named after the array, "[", one character whose code is its index,
    // and "]".
    std::string GetPath() override;

private:
    void StartContainer(StackItem::Kind kind);
    void EndContainer(StackItem::Kind kind);

    IJsonReaderHandler* m_inner;
    std::vector<StackItem> m_stack;
};

}  // namespace KxXmlLib16

#endif
