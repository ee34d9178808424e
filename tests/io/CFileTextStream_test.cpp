#include <cstdio>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using KxXmlLib16::CFileTextStream;
using KxXmlLib16::CKxException;
using KxXmlLib16::XmlEncoding;
using KxTest::ExpectKxError;

namespace {

std::string TempPath(const char* name) { return std::string(KX_TEST_TMP_DIR) + "/" + name; }

std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace

TEST(CFileTextStream, WritesChunksAfterTheMarkOfTheEncoding) {
    struct Case { XmlEncoding encoding; const char* file; };
    const Case cases[] = {
        {KxXmlLib16::XmlEncoding_UTF8, "text_utf8.xml"},
        {KxXmlLib16::XmlEncoding_UTF16, "text_utf16.xml"},
        {KxXmlLib16::XmlEncoding_UTF16Undeclared, "text_utf16u.xml"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.file);
        const bool utf16 = row.encoding != KxXmlLib16::XmlEncoding_UTF8;
        std::mt19937 random(11);
        const std::string path = TempPath(row.file);
        CFileTextStream stream(path.c_str(), row.encoding);
        stream.Append("dropped by Open");
        stream.Open();
        std::string expected = utf16 ? "\xFF\xFE" : "";
        // Flushed as a writer does: whenever 4096 characters are buffered.
        for (int i = 0; i < 2000; ++i) {
            const std::string piece(random() % 30, static_cast<char>('a' + i % 26));
            stream.Append(piece);
            for (char c : piece) {
                expected += utf16 ? std::string{c, '\0'} : std::string(1, c);
            }
            if (stream.GetLength() >= 4096) {
                stream.Flush();
                EXPECT_EQ(0u, stream.GetLength());
            }
        }
        stream.Close();
        EXPECT_EQ(expected, ReadFile(path));
        std::remove(path.c_str());
    }
}

TEST(CFileTextStream, UnopenablePathThrowsWithThePath) {
    CFileTextStream stream("/nonexistent-kx-directory/out.xml", KxXmlLib16::XmlEncoding_UTF8);
    ExpectKxError<CKxException>(
        [&] { stream.Open(); },
        "Failed to write data to the file [/nonexistent-kx-directory/out.xml].");
}

TEST(CFileTextStream, FailedFlushKeepsTheText) {
    struct Case { const char* path; XmlEncoding encoding; bool open; const char* message; };
    const Case cases[] = {
        {"/dev/full", KxXmlLib16::XmlEncoding_UTF8, true, "Failed to write data to the file"},
        {"/dev/null", KxXmlLib16::XmlEncoding_UTF8, false, "Failed to write data to the file"},
        {"/dev/null", KxXmlLib16::XmlEncoding_Unset, true,
         "Unknown Encoding, select UTF-8 (contact our support team)"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.path);
        CFileTextStream stream(row.path, row.encoding);
        if (row.open) {
            stream.Open();
            stream.Flush();  // nothing buffered: nothing to write or encode
        }
        stream.Append("precious text");
        ExpectKxError<CKxException>([&] { stream.Flush(); }, row.message);
        EXPECT_STREQ("precious text", stream.GetText());
    }
}

TEST(CFileTextStream, CloseReportsBytesThatNeverReachedTheFile) {
    // The mark waits in the stdio buffer until the file is closed.
    CFileTextStream stream("/dev/full", KxXmlLib16::XmlEncoding_UTF16);
    stream.Open();
    ExpectKxError<CKxException>([&] { stream.Close(); },
                                "Failed to write data to the file [/dev/full].");
    stream.Close();  // already closed: nothing left to do
}

TEST(CFileTextStream, DestructorClosesWithoutFlushing) {
    const std::string path = TempPath("text_destroyed.xml");
    {
        CFileTextStream stream(path.c_str(), KxXmlLib16::XmlEncoding_UTF8);
        stream.Open();
        stream.Append("written");
        stream.Flush();
        stream.Append(" lost");
    }
    EXPECT_EQ("written", ReadFile(path));
    std::remove(path.c_str());
}
