// Compressed output of ToXmlStream and ToJsonStream: whatever the text and the code page, the
// bytes are those of compressing the uncompressed output afterwards, errors included.
#include <clocale>
#include <string>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

// A root element with one text child per given text.
class Texts : public CXmlObjectBase {
public:
    explicit Texts(std::vector<std::string> texts) : m_texts(std::move(texts)) {
        SetElementName("Texts");
    }
    CXmlObjectBase* Clone() const override { return new Texts(m_texts); }
    std::string GetNamespace() const override { return "urn:texts"; }
    std::string GetTargetNamespace() const override { return "urn:texts"; }
    void ToXml_Int(CXmlWriter* writer, bool, const char* ns, const CSerializationContext&,
                   bool) const override {
        writer->WriteStartElement(GetElementName(), ns);
        for (const std::string& text : m_texts) {
            writer->WriteStartElement("T", ns);
            writer->WriteString(text, ItemType_string, false);
            writer->WriteEndElement();
        }
        writer->WriteEndElement();
    }
    CXmlElement* FromXml_Int(CXmlElement*, CXmlElement*, const CSerializationContext&,
                             bool) override {
        return nullptr;
    }

private:
    std::vector<std::string> m_texts;
};

// The bytes of `write(compression)`, or the message it threw.
template <typename Write>
std::string Outcome(Write write, CompressionType compression) {
    try {
        const CBinaryData bytes = write(compression);
        return std::string(reinterpret_cast<const char*>(bytes.GetData()), bytes.GetLength());
    } catch (const CKxException& e) {
        return "threw: " + e.GetFullMessage();
    }
}

template <typename Write>
std::string CompressedAfterwards(Write write, CompressionType compression) {
    try {
        CBinaryData bytes = write(CompressionType_None);
        CKxZip::CompressData(bytes, compression);
        return std::string(reinterpret_cast<const char*>(bytes.GetData()), bytes.GetLength());
    } catch (const CKxException& e) {
        return "threw: " + e.GetFullMessage();
    }
}

std::vector<std::string> Repeat(const std::string& text, size_t count) {
    return std::vector<std::string>(count, text);
}

// Many plain texts, then `late` near the end: the writer has flushed (and the stream deflated)
// many pieces before it.
std::vector<std::string> PlainThen(const std::string& late) {
    std::vector<std::string> texts = Repeat("plain text number one", 3000);
    texts.push_back(late);
    texts.push_back("after");
    return texts;
}

}  // namespace

TEST(CompressedOutput, EqualsCompressingTheTextAfterwards) {
    struct Case {
        const char* name;
        const char* codePage;
        std::vector<std::string> texts;
    };
    const std::string eAcute = "caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80";
    const Case cases[] = {
        {"tiny output that does not shrink", "C", {}},
        {"nothing but ASCII", "C", Repeat("ASCII text & <markup>", 5000)},
        {"long texts written without a copy", "C", Repeat(std::string(3000, 'x'), 40)},
        {"UTF-8 under a UTF-8 code page", "C.UTF-8", Repeat(eAcute, 5000)},
        {"UTF-8 late under a UTF-8 code page", "C.UTF-8", PlainThen(eAcute)},
        {"non-ASCII late under an ASCII code page", "C", PlainThen(eAcute)},
        {"invalid UTF-8 late under a UTF-8 code page", "C.UTF-8", PlainThen("bad \xC3( byte")},
        {"a sequence cut at the end of a text", "C.UTF-8", PlainThen("cut \xE2\x82")},
        {"a NUL late in a text", "C", PlainThen(std::string("nul\0inside", 10))},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        KxTest::ScopedLocale codePage(LC_CTYPE, row.codePage);
        if (!codePage.Ok()) {
            ADD_FAILURE() << "code page " << row.codePage << " is not available";
            continue;
        }
        const Texts object(row.texts);
        CSerializationContext ctx;
        const auto xml = [&](CompressionType compression) {
            return object.ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, ctx, compression);
        };
        const auto json = [&](CompressionType compression) {
            return object.ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, ctx, compression);
        };
        for (CompressionType compression : {CompressionType_GZip, CompressionType_ZLib}) {
            EXPECT_EQ(Outcome(xml, compression), CompressedAfterwards(xml, compression));
            EXPECT_EQ(Outcome(json, compression), CompressedAfterwards(json, compression));
        }
    }
}

TEST(CompressedOutput, ShortOutputFailsWithTheCompressionMessage) {
    const Texts object({});
    const std::string outcome = Outcome(
        [&](CompressionType compression) {
            return object.ToXmlStream(false, false, XmlEncoding_UTF8, EOLType_LF,
                                      CSerializationContext(), compression);
        },
        CompressionType_GZip);
    EXPECT_EQ(outcome.rfind("threw: Failed to compress data. [Error Code: ", 0), 0u) << outcome;
}
