#include "Documents.h"

#include <cstdio>

namespace kxxml {

namespace {

bool IsJsonName(const std::string& path) {
    bool gz = false;
    return EndsWith(StripGz(path, &gz), ".json");
}

void WriteBytes(const std::string& path, const CBinaryData& data) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    bool ok = file != nullptr;
    if (ok && data.GetLength() > 0)
        ok = std::fwrite(data.GetData(), 1, data.GetLength(), file) == data.GetLength();
    if (file != nullptr && std::fclose(file) != 0) ok = false;
    if (!ok)
        throw CKxException(FormatString("Failed to write data to the file [%s].", path.c_str()));
}

}  // namespace

const CSerializationContext& WriteContext(bool standardJson) {
    static const auto make = [](bool standard) {
        CSerializationContext c;
        c.SetDefaultNamespaceURI(KxOrders::kOrdersNamespace);
        c.GetJsonContext()->SetStandardEscaping(standard);
        return c;
    };
    static const CSerializationContext lenient = make(false);
    static const CSerializationContext standard = make(true);
    return standardJson ? standard : lenient;
}

const CSerializationContext& ReadContext(bool standardJson) {
    static const CSerializationContext standard = [] {
        CSerializationContext c;
        c.GetJsonContext()->SetStandardEscaping(true);
        return c;
    }();
    return standardJson ? standard : CSerializationContext::m_defaultContext;
}

const char* FormatName(Format format) {
    switch (format) {
        case Format::Xml: return "XML";
        case Format::Json: return "JSON";
        case Format::FastInfoset: return "Fast Infoset";
    }
    return "?";
}

std::string OneLine(const CKxException& e) {
    const std::string full = e.GetFullMessage();
    std::string line;
    size_t start = 0;
    while (start <= full.size()) {
        size_t end = full.find('\n', start);
        if (end == std::string::npos) end = full.size();
        std::string part = full.substr(start, end - start);
        while (!part.empty() && (part.back() == '\r' || part.back() == ' ')) part.pop_back();
        if (!part.empty()) line += (line.empty() ? "" : " | ") + part;
        start = end + 1;
    }
    return line;
}

bool EndsWith(const std::string& text, const std::string& suffix) {
    return text.size() >= suffix.size() &&
           text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

bool StartsWith(const std::string& text, const std::string& prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

std::string StripGz(const std::string& name, bool* hadGz) {
    *hadGz = EndsWith(name, ".gz");
    return *hadGz ? name.substr(0, name.size() - 3) : name;
}

int OrderCount(const COrders& orders) { return orders.m_orders->GetCount(); }

void ReadDocument(COrders& orders, const std::string& path, bool standardJson) {
    if (IsJsonName(path))
        orders.FromJsonFile(path.c_str(), ReadContext(standardJson));
    else
        orders.FromXmlFile(path.c_str());
}

CBinaryData ToBytes(const COrders& orders, Format format, CompressionType compression,
                    bool indent, bool standardJson) {
    const CSerializationContext& ctx = WriteContext(standardJson);
    switch (format) {
        case Format::Json:
            return orders.ToJsonStream(indent, XmlEncoding_UTF8, EOLType_LF, ctx, compression);
        case Format::FastInfoset:
            return orders.ToFastInfosetStream(FInfoDecl_None, ctx, compression);
        case Format::Xml: break;
    }
    return orders.ToXmlStream(true, indent, XmlEncoding_UTF8, EOLType_LF, ctx, compression);
}

void WriteDocument(const COrders& orders, const std::string& path, Format format,
                   CompressionType compression, bool indent, bool standardJson) {
    if (compression == CompressionType_ZLib) {
        WriteBytes(path, ToBytes(orders, format, compression, indent, standardJson));
        return;
    }
    const CSerializationContext& ctx = WriteContext(standardJson);
    switch (format) {
        case Format::Xml:
            orders.ToXmlFile(path.c_str(), true, indent, XmlEncoding_UTF8, EOLType_LF, ctx,
                             compression);
            break;
        case Format::Json:
            orders.ToJsonFile(path.c_str(), indent, XmlEncoding_UTF8, EOLType_LF, ctx,
                              compression);
            break;
        case Format::FastInfoset:
            orders.ToFastInfosetFile(path.c_str(), FInfoDecl_None, ctx, compression);
            break;
    }
}

}  // namespace kxxml
