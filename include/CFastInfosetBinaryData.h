// CFastInfosetBinaryData: the octets of a value under one of the built-in Fast Infoset encoding
// algorithms (ITU-T X.891 clause 10), converted from and to the value's lexical form.
#ifndef KX_CFASTINFOSETBINARYDATA_H
#define KX_CFASTINFOSETBINARYDATA_H

#include <string>

#include "CBinaryData.h"
#include "KxConfig.h"

namespace KxXmlLib16 {

// A byte buffer (it adds no state to CBinaryData) that the Fast Infoset writer fills from text
// and the reader turns back into text. Multi-byte numbers are big-endian.
class KX_EXPORT CFastInfosetBinaryData : public CBinaryData {
public:
    // The built-in algorithm numbers (X.891 table 10-1).
    enum EncodingAlgorithm : unsigned long {
        EA_Hexadecimal = 1,
        EA_Base64 = 2,
        EA_Short = 3,
        EA_Int = 4,
        EA_Long = 5,
        EA_Boolean = 6,
        EA_Float = 7,
        EA_Double = 8,
        EA_Uuid = 9,
        EA_Cdata = 10
    };

    // The constructors of CBinaryData: empty; sharing another buffer's bytes; from `length`
    // bytes (copied, or adopted when `adopt` is true); from the bytes of a text.
    CFastInfosetBinaryData();
    CFastInfosetBinaryData(const CBinaryData& other);
    CFastInfosetBinaryData(const unsigned char* data, unsigned long length, bool adopt);
    explicit CFastInfosetBinaryData(const char* text);
    ~CFastInfosetBinaryData() override;

    // Clears the buffer, then fills it with the encoding of one value (a null text counts as
    // ""): 1 hex text, 2 base64 text, 3/4/5 a 16/32/64-bit signed integer, 6 a boolean (one
    // octet, 0x30 false or 0x38 true), 7/8 an IEEE single/double, 9 hex text like 1 (hyphens
    // are not removed), 10 local-code-page text stored as UTF-8.
    // Throws CKxException "Unknown byte encoding." for any other algorithm; the parse errors of
    // CBinaryData::SetAsHexString and of CConversions pass through unchanged, and an int value
    // outside 32 bits fails with CKxInvalidValueException "The value [%s] is to large to fit in
    // a i4". The buffer is empty after a failure.
    void SetAsEncodedString(unsigned long algorithm, const char* text);

    // The text of the octets held under algorithms 1 to 9. Numeric, boolean and uuid data may
    // hold several values, returned joined by one space. Throws CKxException
    // "Invalid value for SHORT byte encoding." (likewise INT, LONG, FLOAT, DOUBLE, UUID) when the
    // length is not a multiple of the value size, and "Unknown byte encoding." for any other
    // algorithm (10 included).
    std::string GetAsString(unsigned long algorithm) const;
};

}  // namespace KxXmlLib16

#endif
