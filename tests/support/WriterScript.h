// A compact notation for sequences of writer calls, so a table row can state what a writer is
// asked to do on one line. Tokens are separated by spaces; names are `local` or `{ns}local`:
//   <name   start element         <name/   start and end an element     /   end element
//   @name=v attribute             name=t   start, text, end             =t  text
//   xmlns=ns   default namespace  xmlns:p=ns   bind prefix p            !c  comment
//   xsi:type=name   instance type xsi:nil  nil mark    [ and ]  collection start and end
// A '#' before the '=' of an attribute, element or text gives the value type i4 instead of
// string. Texts and values cannot hold spaces; write such calls out in the test.
#ifndef KX_TEST_WRITER_SCRIPT_H
#define KX_TEST_WRITER_SCRIPT_H

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "KxXmlLib16.h"

// The XML Schema instance namespace, for scripts that bind it: "xmlns:xsi=" KX_TEST_XSI.
#define KX_TEST_XSI "http://www.w3.org/2001/XMLSchema-instance"

namespace KxTest {

struct ScriptName {
    std::string ns;
    std::string local;
};

inline ScriptName ParseScriptName(const std::string& text) {
    if (text.empty() || text[0] != '{') return {std::string(), text};
    const size_t close = text.find('}');
    return {text.substr(1, close - 1), text.substr(close + 1)};
}

inline void RunScript(KxXmlLib16::CXmlWriter& w, const std::string& script) {
    using namespace KxXmlLib16;
    std::istringstream in(script);
    std::string token;
    while (in >> token) {
        const size_t eq = token.find('=');
        const bool typed = eq != std::string::npos && eq > 0 && token[eq - 1] == '#';
        const ItemType type = typed ? ItemType_i4 : ItemType_string;
        const std::string key = eq == std::string::npos ? token : token.substr(0, eq - typed);
        const std::string value = eq == std::string::npos ? std::string() : token.substr(eq + 1);
        if (token == "/") {
            w.WriteEndElement();
        } else if (token == "[" || token == "]") {
            w.SetContextState(token == "[" ? CXmlWriter::ContextState_CollectionStart
                                           : CXmlWriter::ContextState_CollectionEnd);
        } else if (token == "xsi:nil") {
            w.WriteAttributeNil();
        } else if (key == "xsi:type") {
            const ScriptName name = ParseScriptName(value);
            w.WriteAttributeType(name.local, name.ns, ItemType_string);
        } else if (key == "xmlns") {
            w.SetDefaultNamespace(value);
        } else if (key.compare(0, 6, "xmlns:") == 0) {
            w.AddNamespace(key.substr(6), value);
        } else if (token[0] == '!') {
            w.WriteComment(token.substr(1));
        } else if (token[0] == '<') {
            const bool empty = token.back() == '/';
            const ScriptName name =
                ParseScriptName(token.substr(1, token.size() - 1 - (empty ? 1 : 0)));
            w.WriteStartElement(name.local, name.ns);
            if (empty) w.WriteEndElement();
        } else if (token[0] == '@') {
            const ScriptName name = ParseScriptName(key.substr(1));
            w.WriteAttributeString(name.local, name.ns, value, type);
        } else if (key.empty()) {
            w.WriteString(value, type, false);
        } else if (eq != std::string::npos) {
            const ScriptName name = ParseScriptName(key);
            w.WriteStartElement(name.local, name.ns);
            w.WriteString(value, type, false);
            w.WriteEndElement();
        } else {
            ADD_FAILURE() << "unknown script token: " << token;
        }
    }
}

}  // namespace KxTest

#endif
