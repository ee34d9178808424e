// libFuzzer target: arbitrary bytes into CXmlObjectBase::FromJsonStream, read into an untyped
// element (which takes any tree), under two sets of JSON options. Library exceptions are
// expected outcomes; crashes, sanitizer reports, leaks, stack exhaustion and hangs are findings.
#include <cstddef>
#include <cstdint>

#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

void ReadInto(const uint8_t* data, size_t size, const CSerializationContext& context) {
    try {
        CSmartPtr<CElement> element(new CElement("", ""));
        element->FromJsonStream(data, static_cast<unsigned long>(size), context);
        (void)element->GetChildren()->GetCount();
    } catch (const CKxException&) {
        // Malformed input is reported this way: not a finding.
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Defaults: full round trip, comments allowed, the compatible escaping.
    CSerializationContext defaults;
    ReadInto(data, size, defaults);

    // The other reading configuration: no "@"/"#text" marks and namespaces ignored, comments
    // refused, standard escapes decoded, the document wrapped in a root element.
    CSerializationContext other;
    CJsonContext& json = *other.GetJsonContext();
    json.SetSupportRoundtrip(RoundTrip_Simple);
    json.GetAllowComments(false);
    json.SetStandardEscaping(true);
    json.SetRootElementName("Root");
    ReadInto(data, size, other);
    return 0;
}
