// libFuzzer target: arbitrary bytes through the Fast Infoset reader of
// CXmlDocument::LoadXmlStream. Bytes that do not start with the Fast Infoset identification (or
// an XML declaration) get it prepended, so that mutations keep reaching the reader. Library
// exceptions are expected outcomes; crashes, sanitizer reports, leaks and hangs are findings.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

const uint8_t kIdentification[] = {0xE0, 0x00, 0x00, 0x01};

// Touches the names, attributes and text of a bounded part of the tree, without recursion.
void Walk(const CXmlElement* element) {
    for (int budget = 256; element != nullptr && budget > 0; --budget) {
        (void)element->GetLocalName().size();
        (void)element->GetText().size();
        for (const CXmlAttribute* attribute : element->GetAttributes()) {
            (void)attribute->GetValue().size();
        }
        element = element->GetFirstElement() != nullptr ? element->GetFirstElement()
                                                        : element->GetNextSiblingElement();
    }
}

void LoadAndWalk(const CSerializationContext& context, const uint8_t* data, size_t size) {
    try {
        CXmlDocument document(context);
        document.LoadXmlStream(data, static_cast<unsigned long>(size));
        Walk(document.GetDocumentElement());
    } catch (const CKxException&) {
        // Malformed input is reported this way: not a finding.
    }
}

// The reader's configurations: namespaces, no namespaces with CDATA markers kept, and the
// writer's default external vocabulary with a few entries.
const std::vector<CSerializationContext>& Contexts() {
    static const std::vector<CSerializationContext> contexts = [] {
        std::vector<CSerializationContext> all(3);
        all[1].SetSchemaType(SchemaType_NoNamespace);
        all[1].SetStripCDATA(false);
        CFastInfosetContext& settings = *all[2].GetFIContext();
        settings.SetUseGeneratedVocabulary(true);
        settings.GetVocabulary().AddElement("p", "urn:p", "a");
        settings.GetVocabulary().AddAttribute("", "", "x");
        settings.GetVocabulary().AddAttributeValue("v");
        settings.GetVocabulary().AddElementValue("hi");
        return all;
    }();
    return contexts;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<uint8_t> input;
    const bool recognised = (size >= sizeof kIdentification &&
                             std::memcmp(data, kIdentification, sizeof kIdentification) == 0) ||
                            (size >= 5 && std::memcmp(data, "<?xml", 5) == 0);
    if (!recognised) input.assign(kIdentification, kIdentification + sizeof kIdentification);
    input.insert(input.end(), data, data + size);
    for (const CSerializationContext& context : Contexts()) {
        LoadAndWalk(context, input.data(), input.size());
    }
    return 0;
}
