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
    // operations and returns true. Decoding is not implemented yet: Fast Infoset input throws
    // CKxException "Fast Infoset input is not supported yet".
    static bool Parse(const unsigned char* data, unsigned long length, CXmlDocument& doc,
                      const CFastInfosetContext& settings);
};

}  // namespace KxXmlLib16

#endif
