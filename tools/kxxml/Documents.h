// Reading and writing documents of the order schema for kxxml: formats, the library's entry
// points, and the one-line form of the library's errors.
#ifndef KX_TOOLS_KXXML_DOCUMENTS_H
#define KX_TOOLS_KXXML_DOCUMENTS_H

#include <string>

#include "KxXmlLib16.h"
#include "OrderBindings.h"

namespace kxxml {

using namespace KxXmlLib16;
using KxOrders::COrders;

enum class Format { Xml, Json, FastInfoset };

// "XML", "JSON", "Fast Infoset".
const char* FormatName(Format format);

// The message chain of `e` on one line: the path and the inner messages, which the library puts
// on lines of their own, are joined with " | ".
std::string OneLine(const CKxException& e);

bool EndsWith(const std::string& text, const std::string& suffix);
bool StartsWith(const std::string& text, const std::string& prefix);

// `name` without a trailing ".gz", and whether there was one.
std::string StripGz(const std::string& name, bool* hadGz);

// Options of every write: the schema's namespace as the default namespace, so that elements
// carry no prefix, as in the documents the schema describes. With `standardJson` JSON is
// written with standard (RFC 8259) escaping.
const CSerializationContext& WriteContext(bool standardJson = false);
// Options of every read: all defaults, or standard JSON escaping with `standardJson`.
const CSerializationContext& ReadContext(bool standardJson = false);

// The number of Order elements bound under the root.
int OrderCount(const COrders& orders);

// Reads `path` into `orders`: a name ending in .json or .json.gz as JSON, everything else
// through the XML file entry point, which recognises compression and Fast Infoset itself.
// Throws the library's exceptions (a corrupt Fast Infoset file fails with the reader's
// message). `standardJson` reads JSON escapes as standard JSON does.
void ReadDocument(COrders& orders, const std::string& path, bool standardJson = false);

// The document in `format` as the stream entry points produce it (UTF-8, LF line ends, XML
// with its declaration, the schema's namespace as the default namespace; JSON escaped the
// standard way with `standardJson`). Throws the library's exceptions.
CBinaryData ToBytes(const COrders& orders, Format format, CompressionType compression,
                    bool indent, bool standardJson = false);

// Writes the document to `path` through the file entry points; zlib output, which those refuse,
// goes through the stream entry points. Throws the library's exceptions, among them
// CKxException "Failed to write data to the file [path]." when the file cannot be written.
void WriteDocument(const COrders& orders, const std::string& path, Format format,
                   CompressionType compression, bool indent, bool standardJson = false);

}  // namespace kxxml

#endif
