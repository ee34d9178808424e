// Recognition of Fast Infoset input; decoding follows in a later change.
#include "fastinfoset/CFastInfosetReader.h"

#include <cstring>

#include "CKxException.h"

namespace KxXmlLib16 {

namespace {

// The only XML declarations a Fast Infoset document may start with, octet for octet.
const char* const kDeclarations[] = {
    "<?xml encoding='finf'?>",
    "<?xml version='1.0' encoding='finf'?>",
    "<?xml version='1.1' encoding='finf'?>",
    "<?xml encoding='finf' standalone='no'?>",
    "<?xml encoding='finf' standalone='yes'?>",
    "<?xml version='1.0' encoding='finf' standalone='no'?>",
    "<?xml version='1.1' encoding='finf' standalone='no'?>",
    "<?xml version='1.0' encoding='finf' standalone='yes'?>",
    "<?xml version='1.1' encoding='finf' standalone='yes'?>",
};

// Identification (E0 00) followed by version 1 (00 01).
const unsigned char kIdentification[] = {0xE0, 0x00, 0x00, 0x01};

bool StartsWith(const unsigned char* data, unsigned long length, const void* prefix,
                unsigned long prefixLength) {
    return length >= prefixLength && std::memcmp(data, prefix, prefixLength) == 0;
}

}  // namespace

bool CFastInfosetReader::HasHeader(const unsigned char* data, unsigned long length) {
    if (data == nullptr) return false;
    unsigned long offset = 0;
    for (const char* declaration : kDeclarations) {
        const unsigned long declarationLength = std::strlen(declaration);
        if (StartsWith(data, length, declaration, declarationLength)) {
            offset = declarationLength;
            break;
        }
    }
    return StartsWith(data + offset, length - offset, kIdentification, sizeof kIdentification);
}

bool CFastInfosetReader::Parse(const unsigned char* data, unsigned long length, CXmlDocument&,
                               const CFastInfosetContext&) {
    if (!HasHeader(data, length)) return false;
    throw CKxException("Fast Infoset input is not supported yet");
}

}  // namespace KxXmlLib16
