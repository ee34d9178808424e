// CJsonContext: the JSON options of a serialization context.
#ifndef KX_CJSONCONTEXT_H
#define KX_CJSONCONTEXT_H

#include <string>

#include "KxConfig.h"
#include "KxTypes.h"

namespace KxXmlLib16 {

// Held by CSerializationContext (GetJsonContext) and read by the JSON writer and reader.
// A plain value: copying copies every option.
class KX_EXPORT CJsonContext {
public:
    // Full round trip, no root element name, comments accepted, lenient escaping.
    CJsonContext();
    CJsonContext(const CJsonContext& other);
    CJsonContext& operator=(const CJsonContext& other);
    virtual ~CJsonContext();

    // How much XML information the JSON keeps (RoundTrip_Full by default).
    JsonRoundTrip GetSupportRoundtrip() const;
    void SetSupportRoundtrip(JsonRoundTrip value);

    // Name given to the root element when JSON is read back (empty by default).
    std::string GetRootElementName() const;
    // A null pointer sets the empty string.
    void SetRootElementName(const char* name);

    // Whether the JSON reader accepts /* */ comments (true by default).
    bool GetAllowComments() const;
    // The setter of AllowComments; it carries the getter's name on purpose (public interface).
    void GetAllowComments(bool allow);

    // Standard JSON (off by default). On: the writer escapes quotation marks, backslashes and
    // control characters as JSON requires and quotes numbers JSON cannot hold (INF, NaN...);
    // the reader decodes every JSON escape, "\uXXXX" surrogate pairs included, into UTF-8.
    // Off: the library's own lenient escaping and lossy "\u" reading.
    bool GetStandardEscaping() const;
    void SetStandardEscaping(bool standard);

private:
    JsonRoundTrip m_supportRoundtrip;
    std::string m_rootElementName;
    bool m_allowComments;
    bool m_standardEscaping;
};

}  // namespace KxXmlLib16

#endif
