// Enumerations shared by values, writers, readers and metadata.
#ifndef KX_TYPES_H
#define KX_TYPES_H

#include "KxConfig.h"

namespace KxXmlLib16 {

// The primitive item type passed with every value to writers, metadata, variant and collections.
enum ItemType : int {
    ItemType_Invalid = 0,
    ItemType_hexBinary = 1,
    ItemType_base64Binary = 2,
    ItemType_i1 = 3,
    ItemType_i2 = 4,
    ItemType_i4 = 5,
    ItemType_i8 = 6,
    ItemType_ui1 = 7,
    ItemType_ui2 = 8,
    ItemType_ui4 = 9,
    ItemType_ui8 = 10,
    ItemType_r4 = 11,
    ItemType_r8 = 12,
    ItemType_duration = 13,
    ItemType_yearMonth = 14,
    ItemType_monthDay = 15,
    ItemType_year = 16,
    ItemType_month = 17,
    ItemType_day = 18,
    ItemType_date = 19,
    ItemType_datetime = 20,
    ItemType_time = 21,
    ItemType_char = 22,
    ItemType_string = 23,
    ItemType_boolean = 24,
    ItemType_decimal = 25,
    ItemType_integer = 26,
    ItemType_XmlObject = 27,
    ItemType_XmlCollection = 28
};

// Character encoding of text output.
enum XmlEncoding : int {
    XmlEncoding_Unset = 0,
    XmlEncoding_UTF8 = 1,
    XmlEncoding_UTF16 = 2,           // UTF-16, named in the XML declaration
    XmlEncoding_UTF16Undeclared = 3  // UTF-16, no encoding in the declaration
};

enum EOLType : int { EOLType_CRLF = 0, EOLType_LF = 1 };

enum CompressionType : int { CompressionType_None = 0, CompressionType_GZip = 1, CompressionType_ZLib = 2 };

// The XML declaration at the start of a Fast Infoset document: none, or one of nine texts.
enum FInfoDecl : int {
    FInfoDecl_None = 0,
    FInfoDecl_1 = 1,  // <?xml encoding='finf'?>
    FInfoDecl_2 = 2,  // <?xml encoding='finf' standalone='yes'?>
    FInfoDecl_3 = 3,  // <?xml encoding='finf' standalone='no'?>
    FInfoDecl_4 = 4,  // <?xml version='1.0' encoding='finf'?>
    FInfoDecl_5 = 5,  // <?xml version='1.0' encoding='finf' standalone='yes'?>
    FInfoDecl_6 = 6,  // <?xml version='1.0' encoding='finf' standalone='no'?>
    FInfoDecl_7 = 7,  // <?xml version='1.1' encoding='finf'?>
    FInfoDecl_8 = 8,  // <?xml version='1.1' encoding='finf' standalone='yes'?>
    FInfoDecl_9 = 9   // <?xml version='1.1' encoding='finf' standalone='no'?>
};

// Kind of schema the bindings were generated from; only the schema without namespaces changes
// behaviour (names are then matched without namespaces).
enum SchemaType : int { SchemaType_Default = 0, SchemaType_NoNamespace = 2 };

// How much XML information JSON output keeps: plain names only, attributes and text marked, or
// everything including qualified names and namespace declarations.
enum JsonRoundTrip : int { RoundTrip_None = 0, RoundTrip_Simple = 1, RoundTrip_Full = 2 };

}  // namespace KxXmlLib16

#endif
