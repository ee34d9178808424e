#include <clocale>
#include <string>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using KxXmlLib16::CBinaryData;
using KxXmlLib16::CKxException;
using KxXmlLib16::CTextStream;
using KxXmlLib16::XmlEncoding;
using KxTest::ExpectKxError;

namespace {

std::string ToString(const CBinaryData& value) {
    return value.GetLength() == 0
               ? std::string()
               : std::string(reinterpret_cast<const char*>(value.GetData()), value.GetLength());
}

}  // namespace

TEST(CTextStream, EncodesTheTextForEachEncoding) {
    struct Case { XmlEncoding encoding; std::string bytes; };
    const Case cases[] = {
        {KxXmlLib16::XmlEncoding_UTF8, "<a/>"},
        {KxXmlLib16::XmlEncoding_UTF16, std::string("<\0a\0/\0>\0", 8)},
        {KxXmlLib16::XmlEncoding_UTF16Undeclared, std::string("<\0a\0/\0>\0", 8)},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.encoding);
        CTextStream stream(row.encoding);
        EXPECT_EQ(0u, stream.GetEncodedStream().GetLength());
        stream.Append('<');
        stream.Append("a");
        stream.Append(std::string("/>"));
        EXPECT_EQ(row.bytes, ToString(stream.GetEncodedStream()));
    }
    CTextStream unset;
    EXPECT_EQ(KxXmlLib16::XmlEncoding_Unset, unset.GetEncoding());
    ExpectKxError<CKxException>([&] { unset.GetEncodedStream(); },
                                "Unknown Encoding, select UTF-8 (contact our support team)");
}

TEST(CTextStream, Utf16UsesSurrogatePairsBeyondTheBasicPlane) {
    KxTest::ScopedLocale locale(LC_CTYPE, "C.UTF-8");
    if (!locale.Ok()) {
        GTEST_SKIP() << "no UTF-8 locale on this machine";
    }
    const char text[] = "\xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E";  // U+00E9 U+20AC U+1D11E
    CTextStream utf16(KxXmlLib16::XmlEncoding_UTF16);
    utf16.Append(text);
    EXPECT_EQ(std::string("\xE9\x00\xAC\x20\x34\xD8\x1E\xDD", 8),
              ToString(utf16.GetEncodedStream()));
    CTextStream utf8(KxXmlLib16::XmlEncoding_UTF8);
    utf8.Append(text);
    EXPECT_EQ(text, ToString(utf8.GetEncodedStream()));
}

TEST(CTextStream, OpenEmptiesWhileFlushAndCloseKeepTheText) {
    CTextStream stream(KxXmlLib16::XmlEncoding_UTF8);
    stream.Append(std::string(5000, 'a'));
    stream.Flush();
    stream.Close();
    EXPECT_EQ(std::string(5000, 'a'), stream.GetText());
    stream.Open();
    EXPECT_EQ(0u, stream.GetLength());
    stream.Append("b");
    EXPECT_STREQ("b", stream.GetText());
}

TEST(CTextStream, Utf8BytesOfTextSpreadOverSeveralBlocks) {
    KxTest::ScopedLocale locale(LC_CTYPE, "C.UTF-8");
    if (!locale.Ok()) {
        GTEST_SKIP() << "no UTF-8 locale on this machine";
    }
    const std::string ascii(5000, 'a');
    // U+20AC split over the end of the first 4095-character block.
    const std::string euro = std::string(4094, 'b') + "\xE2\x82\xAC" + "c";
    struct Case {
        const char* name;
        std::string appended;
        std::string bytes;
    };
    const Case cases[] = {
        {"ASCII", ascii, ascii},
        {"UTF-8 across a block boundary", euro, euro},
        {"a NUL ends the text", ascii + std::string("\0z", 2), ascii},
        {"an invalid byte is replaced", ascii + "\xFF" + "d", ascii + "?d"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        CTextStream stream(KxXmlLib16::XmlEncoding_UTF8);
        stream.Append(row.appended.data(), row.appended.size());
        EXPECT_EQ(row.bytes, ToString(stream.GetEncodedStream()));
        // Encoding leaves the text as it was.
        EXPECT_EQ(row.appended.size(), stream.GetLength());
    }
}
