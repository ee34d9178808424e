// Our side of the Fast Infoset interoperability tests.
//
//   kx_fi_interop write <in.xml> <out.xml> <out.fi> <variant>
//       reads the document into the example bindings (the class chosen by the root element)
//       and writes it back as XML text without indentation and as Fast Infoset; variants:
//       default, suggested (binary encodings and restricted alphabets), alias (the schema's
//       namespace under a prefix instead of the default namespace)
//   kx_fi_interop tree <file>
//       loads XML text or Fast Infoset into the tree and prints it canonically
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "FlatBindings.h"
#include "KxXmlLib16.h"
#include "OrderBindings.h"
#include "TestSchemaBindings.h"

using namespace KxXmlLib16;

namespace {

using Factory = std::function<CSmartPtr<CXmlObjectBase>()>;

template <typename T>
Factory Make() {
    return [] { return CSmartPtr<CXmlObjectBase>(new T()); };
}

// Root element (namespace and local name) to the class that binds it.
const std::map<std::string, Factory>& Roots() {
    static const std::map<std::string, Factory> roots = {
        {"urn:bench:orders Orders", Make<KxOrders::COrders>()},
        {"urn:bench:orders Order", Make<KxOrders::COrder>()},
        {"urn:kx:test SeqHolder", Make<KxTestSchema::CSeqHolder>()},
        {"urn:kx:test ChoiceHolder", Make<KxTestSchema::CChoiceHolder>()},
        {"urn:kx:test AllHolder", Make<KxTestSchema::CAllHolder>()},
        {"urn:kx:test Box", Make<KxTestSchema::CBox>()},
        {"urn:kx:test NilHolder", Make<KxTestSchema::CNilHolder>()},
        {"urn:kx:test AnySeq", Make<KxTestSchema::CAnySeq>()},
    };
    return roots;
}

void WriteFile(const std::string& path, const void* data, size_t length) {
    std::ofstream out(path, std::ios::binary);
    out.write(static_cast<const char*>(data), static_cast<std::streamsize>(length));
    if (!out) throw CKxException("cannot write " + path);
}

int Write(const std::string& in, const std::string& xmlOut, const std::string& fiOut,
          const std::string& variant) {
    CXmlDocument probe;
    probe.Load(in.c_str());
    const CXmlElement* root = probe.GetDocumentElement();
    const auto found = Roots().find(root->GetNamespaceURI() + " " + root->GetLocalName());
    if (found == Roots().end()) {
        std::cerr << "no binding for the root element of " << in << "\n";
        return 2;
    }
    CSerializationContext ctx;
    if (variant == "suggested") ctx.GetFIContext()->SetSuggestedValues();
    if (variant == "alias") {
        ctx.GetNamespaceAliases().Add("t", root->GetNamespaceURI().c_str());
    } else {
        ctx.SetDefaultNamespaceURI(root->GetNamespaceURI().c_str());
    }
    CSmartPtr<CXmlObjectBase> object = found->second();
    object->FromXmlFile(in.c_str(), ctx);
    const std::string xml = object->ToXml(true, false, EOLType_LF, ctx);
    WriteFile(xmlOut, xml.data(), xml.size());
    const CBinaryData fi = object->ToFastInfosetStream(FInfoDecl_None, ctx);
    WriteFile(fiOut, fi.GetData(), fi.GetLength());
    return 0;
}

// Bytes outside printable ASCII as \xHH, as the Java side prints them.
std::string Escape(const std::string& text) {
    std::string out;
    for (unsigned char c : text) {
        if (c < 0x20 || c == '\\' || c >= 0x7F) {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\x%02X", c);
            out += hex;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out;
}

void Print(const CXmlElement* element, int depth, std::string& out) {
    const std::string indent(static_cast<size_t>(depth), ' ');
    out += indent + "element {" + element->GetNamespaceURI() + "}" + element->GetLocalName() +
           "\n";
    std::vector<std::string> attributes;
    for (const CXmlAttribute* attribute : element->GetAttributes()) {
        attributes.push_back(indent + "  @{" + attribute->GetNamespaceURI() + "}" +
                             attribute->GetLocalName() + "=" + Escape(attribute->GetValue()));
    }
    std::sort(attributes.begin(), attributes.end());
    for (const std::string& attribute : attributes) out += attribute + "\n";
    if (!element->GetText().empty()) out += indent + " text " + Escape(element->GetText()) + "\n";
    for (const CXmlElement* child = element->GetFirstElement(); child != nullptr;
         child = child->GetNextSiblingElement()) {
        Print(child, depth + 1, out);
    }
    out += indent + "end\n";
}

int Tree(const std::string& path) {
    CXmlDocument doc;
    doc.Load(path.c_str());
    std::string out;
    Print(doc.GetDocumentElement(), 0, out);
    for (const auto& binding : doc.GetPrefixMap()) {
        out += "prefix " + binding.first + "=" + binding.second + "\n";
    }
    std::cout << out;
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc == 6 && std::strcmp(argv[1], "write") == 0) {
            return Write(argv[2], argv[3], argv[4], argv[5]);
        }
        if (argc == 3 && std::strcmp(argv[1], "tree") == 0) return Tree(argv[2]);
        std::cerr << "usage: kx_fi_interop write IN.xml OUT.xml OUT.fi VARIANT | tree FILE\n";
        return 2;
    } catch (const CKxException& e) {
        std::cerr << "kx_fi_interop: " << e.GetFullMessage() << "\n";
        return 1;
    }
}
