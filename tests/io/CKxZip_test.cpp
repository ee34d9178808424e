#include <cstring>
#include <string>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

using Bytes = std::vector<unsigned char>;

// Text that deflate shrinks well, long enough to need several 64 KB inflate windows.
std::string Repetitive(size_t size) {
    std::string text;
    while (text.size() < size) text += "<Line no=\"" + std::to_string(text.size() % 97) + "\"/>\n";
    text.resize(size);
    return text;
}

CBinaryData ToBinary(const std::string& text) {
    return CBinaryData(reinterpret_cast<const unsigned char*>(text.data()),
                       static_cast<unsigned long>(text.size()), false);
}

Bytes ToBytes(const CBinaryData& data) {
    return Bytes(data.GetData(), data.GetData() + data.GetLength());
}

// Runs Decompress on an array-new copy of `input`; returns what the buffer holds afterwards and
// whether the pointer was replaced.
Bytes Inflate(const Bytes& input, bool* replaced = nullptr) {
    unsigned char* data = new unsigned char[input.empty() ? 1 : input.size()];
    if (!input.empty()) std::memcpy(data, input.data(), input.size());
    unsigned char* const original = data;
    unsigned long length = static_cast<unsigned long>(input.size());
    CKxZip::Decompress(&data, &length);
    if (replaced != nullptr) *replaced = data != original;
    Bytes out(data, data + length);
    delete[] data;
    return out;
}

// The gzip stream of no bytes.
const Bytes kGzipOfEmpty = {0x1f, 0x8b, 0x08, 0x00, 0x00, 0x00, 0x00, 0x00, 0x02, 0x03,
                            0x03, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00};

Bytes Compressed(const std::string& text, CompressionType type) {
    CBinaryData data = ToBinary(text);
    CKxZip::CompressData(data, type);
    return ToBytes(data);
}

}  // namespace

TEST(CKxZip, RoundTripsBothWrappers) {
    struct Case {
        CompressionType type;
        unsigned char firstByte;
        unsigned char secondByte;
        size_t size;
    };
    const Case cases[] = {
        {CompressionType_GZip, 0x1F, 0x8B, 200},
        {CompressionType_GZip, 0x1F, 0x8B, 1000000},
        {CompressionType_ZLib, 0x78, 0x01, 200},
        {CompressionType_ZLib, 0x78, 0x01, 1000000},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(testing::Message() << "type " << row.type << ", size " << row.size);
        const std::string text = Repetitive(row.size);
        const Bytes packed = Compressed(text, row.type);
        ASSERT_GE(packed.size(), 2u);
        EXPECT_LT(packed.size(), text.size());
        EXPECT_EQ(row.firstByte, packed[0]);
        EXPECT_EQ(row.secondByte, packed[1]);
        EXPECT_TRUE(CKxZip::IsCompressed(packed.data(), static_cast<unsigned long>(packed.size())));
        bool replaced = false;
        const Bytes unpacked = Inflate(packed, &replaced);
        EXPECT_TRUE(replaced);
        EXPECT_EQ(text, std::string(unpacked.begin(), unpacked.end()));
    }
}

TEST(CKxZip, OutputNoLargerThanInputIsEnforced) {
    struct Case { const char* text; CompressionType type; const char* message; };
    const Case cases[] = {
        {"abc", CompressionType_GZip, "Failed to compress data. [Error Code: -5]"},
        // The zlib header fits, the rest does not: zlib reports Z_OK.
        {"abc", CompressionType_ZLib, "Failed to compress data. [Error Code: 0]"},
        {"a", CompressionType_ZLib, "Failed to compress data. [Error Code: -5]"},
        // Room for the header but not for the finished stream: zlib reports Z_OK.
        {"<a>some text that is too short</a>", CompressionType_GZip,
         "Failed to compress data. [Error Code: 0]"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.text);
        CBinaryData data(row.text);
        KxTest::ExpectKxError<CKxException>([&] { CKxZip::CompressData(data, row.type); },
                                            row.message);
        // The value keeps its bytes after the failure.
        EXPECT_EQ(CBinaryData(row.text), data);
    }
}

TEST(CKxZip, IncompressibleDataFails) {
    // A pseudo-random sequence does not shrink under deflate.
    std::string noise(4096, '\0');
    unsigned state = 12345;
    for (char& c : noise) {
        state = state * 1103515245u + 12345u;
        c = static_cast<char>(state >> 24);
    }
    CBinaryData data = ToBinary(noise);
    try {
        CKxZip::CompressData(data, CompressionType_GZip);
        ADD_FAILURE() << "incompressible data was accepted";
    } catch (const CKxException& e) {
        EXPECT_EQ(0u, e.GetMessage().rfind("Failed to compress data. [Error Code: ", 0))
            << e.GetMessage();
    }
    EXPECT_EQ(ToBinary(noise), data);
}

TEST(CKxZip, NoCompressionAndEmptyInputLeaveDataAlone) {
    const std::string text = Repetitive(1000);
    for (int type : {0, 3, -1}) {
        SCOPED_TRACE(type);
        CBinaryData data = ToBinary(text);
        CKxZip::CompressData(data, static_cast<CompressionType>(type));
        EXPECT_EQ(ToBinary(text), data);

        unsigned char* raw = new unsigned char[4]{1, 2, 3, 4};
        unsigned char* const original = raw;
        unsigned long length = 4;
        CKxZip::Compress(&raw, &length, static_cast<CompressionType>(type));
        EXPECT_EQ(original, raw);
        EXPECT_EQ(4u, length);
        delete[] raw;
    }
    for (CompressionType type : {CompressionType_GZip, CompressionType_ZLib}) {
        CBinaryData empty;
        CKxZip::CompressData(empty, type);
        EXPECT_EQ(0u, empty.GetLength());
    }
}

TEST(CKxZip, DecompressPassesThroughWhatIsNotACompleteStream) {
    Bytes badCrc = Compressed(Repetitive(500), CompressionType_GZip);
    badCrc[badCrc.size() - 6] ^= 0x55;
    Bytes badAdler = Compressed(Repetitive(500), CompressionType_ZLib);
    badAdler.back() ^= 0x01;
    struct Case { const char* name; Bytes input; };
    const Case cases[] = {
        {"plain XML", {'<', 'a', '/', '>'}},
        {"one byte", {0x1f}},
        {"gzip magic only", {0x1f, 0x8b}},
        {"gzip header, no data", Bytes(kGzipOfEmpty.begin(), kGzipOfEmpty.begin() + 10)},
        {"zlib header with a preset dictionary", {0x78, 0xBB, 0x00, 0x00, 0x00, 0x01, 0x03, 0x00}},
        {"zlib header, garbage body", {0x78, 0x9c, 0xff, 0xff, 0xff, 0xff}},
        {"gzip with a wrong CRC", badCrc},
        {"zlib with a wrong Adler-32", badAdler},
        {"Fast Infoset header", {0xE0, 0x00, 0x00, 0x01, 0x00}},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        bool replaced = true;
        EXPECT_EQ(row.input, Inflate(row.input, &replaced));
        EXPECT_FALSE(replaced);
    }
}

TEST(CKxZip, DecompressOfStreamsCutAnywhereLeavesTheInput) {
    for (CompressionType type : {CompressionType_GZip, CompressionType_ZLib}) {
        const Bytes whole = Compressed(Repetitive(150000), type);
        for (size_t cut = 0; cut < whole.size(); cut += (cut < 64 ? 1 : 97)) {
            SCOPED_TRACE(testing::Message() << "type " << type << ", cut at " << cut);
            const Bytes prefix(whole.begin(), whole.begin() + cut);
            bool replaced = true;
            EXPECT_EQ(prefix, Inflate(prefix, &replaced));
            EXPECT_FALSE(replaced);
        }
    }
}

TEST(CKxZip, DecompressesEmptyStreamsAndIgnoresTrailingBytes) {
    const Bytes zlibOfEmpty = {0x78, 0x9c, 0x03, 0x00, 0x00, 0x00, 0x00, 0x01};
    for (const Bytes& input : {kGzipOfEmpty, zlibOfEmpty}) {
        bool replaced = false;
        EXPECT_TRUE(Inflate(input, &replaced).empty());
        EXPECT_TRUE(replaced);
    }
    Bytes withTrailer = Compressed(Repetitive(300), CompressionType_ZLib);
    withTrailer.push_back('x');
    const Bytes unpacked = Inflate(withTrailer);
    EXPECT_EQ(Repetitive(300), std::string(unpacked.begin(), unpacked.end()));
}

TEST(CKxZip, RecognisesCompressedHeaders) {
    struct Case { Bytes input; bool compressed; };
    const Case cases[] = {
        {{0x1f, 0x8b}, true},        {{0x78, 0x01}, true},  {{0x78, 0x9c}, true},
        {{0x78, 0xda}, true},        {{0x08, 0x1d}, true},  {{0x78, 0x00}, false},
        {{0x88, 0x98}, false},       {{0x1f}, false},       {{}, false},
        {{'<', '?', 'x'}, false},    {{0xff, 0xfe}, false}, {{0xef, 0xbb, 0xbf}, false},
        {{0xE0, 0x00, 0x00}, false},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(CBinaryData::GetAsHexString(row.input.data(),
                                                 static_cast<unsigned long>(row.input.size())));
        EXPECT_EQ(
            row.compressed,
            CKxZip::IsCompressed(row.input.data(), static_cast<unsigned long>(row.input.size())));
    }
    EXPECT_FALSE(CKxZip::IsCompressed(nullptr, 10));
}
