#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using KxXmlLib16::CBinaryData;
using KxXmlLib16::CFileBinaryStream;
using KxXmlLib16::CKxException;
using KxXmlLib16::XmlEncoding;
using KxTest::ExpectKxError;

namespace {

std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace

TEST(CFileBinaryStream, WritesTheMarkOnlyForUtf16) {
    struct Case { XmlEncoding encoding; const char* mark; };
    const Case cases[] = {
        {KxXmlLib16::XmlEncoding_UTF8, ""},
        {KxXmlLib16::XmlEncoding_UTF16, "\xFF\xFE"},
        {KxXmlLib16::XmlEncoding_UTF16Undeclared, "\xFF\xFE"},
        {KxXmlLib16::XmlEncoding_Unset, ""},
    };
    std::string bytes;
    for (int i = 0; i < 100000; ++i) {
        bytes.push_back(static_cast<char>(i * 31));
    }
    const std::string path = std::string(KX_TEST_TMP_DIR) + "/binary_stream.bin";
    for (const Case& row : cases) {
        SCOPED_TRACE(row.encoding);
        CFileBinaryStream stream(path.c_str(), row.encoding, CBinaryData("<"));
        stream.Append(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
        stream.ToFile();
        EXPECT_EQ(row.mark + ("<" + bytes), ReadFile(path));
    }
    std::remove(path.c_str());
}

TEST(CFileBinaryStream, FailuresThrowWithThePath) {
    struct Case { const char* path; XmlEncoding encoding; unsigned long length; };
    const Case cases[] = {
        {"/nonexistent-kx-directory/out.bin", KxXmlLib16::XmlEncoding_UTF8, 10},
        {"/dev/full", KxXmlLib16::XmlEncoding_UTF8, 10},       // fails when closed
        {"/dev/full", KxXmlLib16::XmlEncoding_UTF16, 100000},  // fails while written
        {"/dev/null", KxXmlLib16::XmlEncoding_UTF8, 0},        // nothing to write
        {"/dev/null", KxXmlLib16::XmlEncoding_UTF16, 0},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(::testing::Message() << row.path << " " << row.length);
        CFileBinaryStream stream(row.path, row.encoding);
        const std::string bytes(row.length, 'x');
        stream.Append(reinterpret_cast<const unsigned char*>(bytes.data()), row.length);
        ExpectKxError<CKxException>(
            [&] { stream.ToFile(); },
            std::string("Failed to write data to the file [") + row.path + "].");
    }
}
