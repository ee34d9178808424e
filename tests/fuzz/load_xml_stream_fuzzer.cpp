// libFuzzer target: arbitrary bytes into CXmlDocument::LoadXmlStream, which takes plain XML
// text, gzip or zlib data and Fast Infoset. Library exceptions are expected outcomes; crashes,
// sanitizer reports, leaks and hangs are findings.
#include <cstddef>
#include <cstdint>

#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

// Touches what the engine reads of a tree: names, paths, attributes, text. The walk is bounded
// so that wide documents do not turn path building into a timeout.
void Walk(const CXmlElement* element, int& budget) {
    for (; element != nullptr && budget > 0; element = element->GetNextSiblingElement()) {
        --budget;
        (void)element->GetXPath();
        (void)element->GetText().size();
        for (const CXmlAttribute* attribute : element->GetAttributes()) {
            (void)attribute->GetXPath();
            (void)attribute->IsNamespaceAttribute();
            (void)attribute->IsNilAttribute();
        }
        Walk(element->GetFirstElement(), budget);
    }
}

void LoadAndWalk(CXmlDocument& document, const uint8_t* data, size_t size) {
    try {
        document.LoadXmlStream(data, static_cast<unsigned long>(size));
        int budget = 64;
        Walk(document.GetDocumentElement(), budget);
    } catch (const CKxException&) {
        // Malformed input is reported this way: not a finding.
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    CXmlDocument plain;
    LoadAndWalk(plain, data, size);

    // The other reader configuration: CDATA markers kept, no namespace processing.
    CSerializationContext context;
    context.SetStripCDATA(false);
    context.SetSchemaType(SchemaType_NoNamespace);
    CXmlDocument other(context);
    LoadAndWalk(other, data, size);
    return 0;
}
