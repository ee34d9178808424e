#include "CFastInfosetBinaryData.h"

#include <cstdint>
#include <cstring>
#include <limits>

#include "CConversions.h"
#include "CEncoder.h"
#include "CKxException.h"
#include "FormatString.h"

namespace KxXmlLib16 {

namespace {

// Numbers in an XML document come with the whitespace of their element; XSD collapses it.
constexpr CWhitespaceUtils::WhitespaceRule kNumberRule = CWhitespaceUtils::WhitespaceRule_Collapse;

[[noreturn]] void ThrowUnknownAlgorithm() { throw CKxException("Unknown byte encoding."); }

// Appends the low `size` bytes of `bits`, most significant first.
void AppendBigEndian(CBinaryData& out, std::uint64_t bits, unsigned size) {
    unsigned char octets[8];
    for (unsigned i = 0; i < size; ++i) {
        octets[i] = static_cast<unsigned char>(bits >> (8 * (size - 1 - i)));
    }
    out.Append(octets, size);
}

std::uint64_t ReadBigEndian(const unsigned char* octets, unsigned size) {
    std::uint64_t bits = 0;
    for (unsigned i = 0; i < size; ++i) bits = (bits << 8) | octets[i];
    return bits;
}

// Joins the text of each `size`-octet value with one space; the length must be a multiple of
// `size`, else the algorithm's own message (naming it by `label`) is thrown.
template <typename Format>
std::string JoinValues(const CBinaryData& data, unsigned size, const char* label,
                       Format format) {
    const unsigned long length = data.GetLength();
    if (length % size != 0) {
        throw CKxException(FormatString("Invalid value for %s byte encoding.", label));
    }
    const unsigned char* octets = data.GetData();
    std::string text;
    for (unsigned long offset = 0; offset < length; offset += size) {
        if (offset != 0) text += ' ';
        text += format(octets + offset);
    }
    return text;
}

// The first octet's high four bits count the unused bits at the end of the last octet; the
// values are the first octet's low four bits, then every bit of the following octets.
std::string BooleansToString(const CBinaryData& data) {
    const unsigned long length = data.GetLength();
    if (length == 0) return std::string();
    const unsigned char* octets = data.GetData();
    const int unused = octets[0] >> 4;
    std::string text;
    for (unsigned long i = 0; i < length; ++i) {
        const int highest = i == 0 ? 3 : 7;
        const int lowest = i + 1 == length ? unused : 0;
        for (int bit = highest; bit >= lowest; --bit) {
            if (!text.empty()) text += ' ';
            text += CConversions::booleanToString(((octets[i] >> bit) & 1) != 0);
        }
    }
    return text;
}

}  // namespace

CFastInfosetBinaryData::CFastInfosetBinaryData() = default;

CFastInfosetBinaryData::CFastInfosetBinaryData(const CBinaryData& other) : CBinaryData(other) {}

CFastInfosetBinaryData::CFastInfosetBinaryData(const unsigned char* data, unsigned long length,
                                               bool adopt)
    : CBinaryData(data, length, adopt) {}

CFastInfosetBinaryData::CFastInfosetBinaryData(const char* text) : CBinaryData(text) {}

CFastInfosetBinaryData::~CFastInfosetBinaryData() = default;

void CFastInfosetBinaryData::SetAsEncodedString(unsigned long algorithm, const char* text) {
    Clear();
    const std::string value = text != nullptr ? text : "";
    switch (algorithm) {
    case EA_Hexadecimal:
    case EA_Uuid:
        SetAsHexString(value.c_str());
        break;
    case EA_Base64:
        SetAsBase64(value.c_str());
        break;
    case EA_Short: {
        const short number = CConversions::i2FromString(value, kNumberRule);
        AppendBigEndian(*this, static_cast<std::uint16_t>(number), 2);
        break;
    }
    case EA_Int: {
        // The library's i4 parser takes the whole 64-bit range; four octets do not.
        const long number = CConversions::i4FromString(value, kNumberRule);
        if (number < std::numeric_limits<std::int32_t>::min() ||
            number > std::numeric_limits<std::int32_t>::max()) {
            throw CKxInvalidValueException(
                FormatString("The value [%s] is to large to fit in a i4", value.c_str()));
        }
        AppendBigEndian(*this, static_cast<std::uint32_t>(number), 4);
        break;
    }
    case EA_Long: {
        const long long number = CConversions::i8FromString(value, kNumberRule);
        AppendBigEndian(*this, static_cast<std::uint64_t>(number), 8);
        break;
    }
    case EA_Boolean:
        // Three unused bits, then the value in the fourth bit from the right.
        Append(static_cast<unsigned char>(
            CConversions::booleanFromString(value, kNumberRule) ? 0x38 : 0x30));
        break;
    case EA_Float: {
        const float number = CConversions::r4FromString(value, kNumberRule);
        std::uint32_t bits;
        std::memcpy(&bits, &number, sizeof bits);
        AppendBigEndian(*this, bits, 4);
        break;
    }
    case EA_Double: {
        const double number = CConversions::r8FromString(value, kNumberRule);
        std::uint64_t bits;
        std::memcpy(&bits, &number, sizeof bits);
        AppendBigEndian(*this, bits, 8);
        break;
    }
    case EA_Cdata:
        Append(CEncoder::LocalCodePageToUtf8Binary(value.c_str()));
        break;
    default:
        ThrowUnknownAlgorithm();
    }
}

std::string CFastInfosetBinaryData::GetAsString(unsigned long algorithm) const {
    switch (algorithm) {
    case EA_Hexadecimal:
        return GetAsHexString();
    case EA_Base64:
        return GetAsBase64();
    case EA_Short:
        return JoinValues(*this, 2, "SHORT", [](const unsigned char* p) {
            return CConversions::i2ToString(
                static_cast<short>(static_cast<std::int16_t>(ReadBigEndian(p, 2))));
        });
    case EA_Int:
        return JoinValues(*this, 4, "INT", [](const unsigned char* p) {
            return CConversions::i4ToString(
                static_cast<long>(static_cast<std::int32_t>(ReadBigEndian(p, 4))));
        });
    case EA_Long:
        return JoinValues(*this, 8, "LONG", [](const unsigned char* p) {
            return CConversions::i8ToString(static_cast<long long>(ReadBigEndian(p, 8)));
        });
    case EA_Boolean:
        return BooleansToString(*this);
    case EA_Float:
        return JoinValues(*this, 4, "FLOAT", [](const unsigned char* p) {
            const std::uint32_t bits = static_cast<std::uint32_t>(ReadBigEndian(p, 4));
            float number;
            std::memcpy(&number, &bits, sizeof number);
            return CConversions::r4ToString(number);
        });
    case EA_Double:
        return JoinValues(*this, 8, "DOUBLE", [](const unsigned char* p) {
            const std::uint64_t bits = ReadBigEndian(p, 8);
            double number;
            std::memcpy(&number, &bits, sizeof number);
            return CConversions::r8ToString(number);
        });
    case EA_Uuid:
        return JoinValues(*this, 16, "UUID", [](const unsigned char* p) {
            return CBinaryData::GetAsHexString(p, 16);
        });
    default:
        ThrowUnknownAlgorithm();
    }
}

}  // namespace KxXmlLib16
