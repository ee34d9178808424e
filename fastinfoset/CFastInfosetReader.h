// Reader of Fast Infoset documents (ITU-T X.891) into the XML tree. Internal to the library.
#ifndef KX_CFASTINFOSETREADER_H
#define KX_CFASTINFOSETREADER_H

namespace KxXmlLib16 {

class CFastInfosetContext;
class CXmlDocument;

class CFastInfosetReader {
public:
    CFastInfosetReader() = delete;

    // True when the bytes start with the Fast Infoset identification and version 1
    // (E0 00 00 01), optionally preceded by exactly one of the nine XML declarations that name
    // the "finf" encoding.
    static bool HasHeader(const unsigned char* data, unsigned long length);

    // Returns false, without touching the document, when the bytes are not Fast Infoset
    // (HasHeader is false); otherwise builds the tree through the document's builder
    // operations, as the XML reader does for the same document, and returns true.
    // A malformed document throws CKxException
    // "Invalid Fast Infoset document: <what> at offset <n>", n being the offset of the octet
    // (or of the string) found wrong, e.g. "unexpected end of data", "invalid UTF-8",
    // "element name index 7 beyond the table (5 entries)", "invalid item octet 0xE3",
    // "second document element", "data after the end of the document". A document that
    // references an external vocabulary other than the context's (its URI, or the writer's
    // default URI when the context names none) throws CKxException
    // "Fast Infoset document needs the external vocabulary [<uri>]". Exceptions of the
    // document's element filter pass through unchanged.
    static bool Parse(const unsigned char* data, unsigned long length, CXmlDocument& doc,
                      const CFastInfosetContext& settings);
};

}  // namespace KxXmlLib16

#endif
