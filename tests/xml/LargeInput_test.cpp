// Documents of extreme shape: very deep, very wide, very long values and names. Each must load
// into the tree and bind into untyped elements, or fail with a library exception, and the
// memory it adds must stay within a fixed multiple of its size.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <functional>
#include <string>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

std::string Nested(int depth) {
    std::string text;
    for (int i = 0; i < depth; ++i) text += "<e>";
    text += "x";
    for (int i = 0; i < depth; ++i) text += "</e>";
    return text;
}

std::string ManyAttributes(int count) {
    std::string text = "<e";
    for (int i = 0; i < count; ++i) text += " a" + std::to_string(i) + "=\"v\"";
    return text + "/>";
}

long PeakRssKb() {
    struct rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

struct Case {
    const char* name;
    std::function<std::string()> document;
    // What the loaded tree must show.
    std::function<void(const CXmlElement&)> check;
};

}  // namespace

TEST(LargeInput, ExtremeShapesLoadAndBindWithinBoundedMemory) {
    const size_t kLongValue = 16u << 20;
    const size_t kLongName = 1u << 20;
    const Case cases[] = {
        {"5,000 nested elements, the deepest allowed", [] { return Nested(5000); },
         [](const CXmlElement& root) {
             int depth = 1;
             const CXmlElement* e = &root;
             while (e->GetFirstElement() != nullptr) {
                 e = e->GetFirstElement();
                 ++depth;
             }
             EXPECT_EQ(5000, depth);
             EXPECT_EQ("x", e->GetText());
         }},
        {"100,000 attributes", [] { return ManyAttributes(100000); },
         [](const CXmlElement& root) {
             EXPECT_EQ(100000u, root.GetAttributes().size());
             EXPECT_EQ("v", root.GetAttribute("a99999", ""));
         }},
        {"a 16 MB attribute value",
         [&] { return "<e a=\"" + std::string(kLongValue, 'v') + "\"/>"; },
         [&](const CXmlElement& root) {
             EXPECT_EQ(kLongValue, root.GetAttribute("a", "").size());
         }},
        {"a 1 MB element name",
         [&] { return "<" + std::string(kLongName, 'n') + "/>"; },
         [&](const CXmlElement& root) { EXPECT_EQ(kLongName, root.GetLocalName().size()); }},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const std::string xml = row.document();
        const long before = PeakRssKb();
        {
            CXmlDocument doc;
            doc.LoadXml(xml.c_str());
            ASSERT_NE(nullptr, doc.GetDocumentElement());
            row.check(*doc.GetDocumentElement());
        }
        {
            CSmartPtr<CElement> element(new CElement("", ""));
            element->FromXml(xml.c_str());
            const std::string back = element->ToXml(false, false);
            EXPECT_GE(back.size(), xml.size() / 2);
        }
        // The tree and the bound copy together stay within 40 times the document (plus a
        // fixed 64 MB for the allocator's arenas and test machinery).
        const long addedKb = PeakRssKb() - before;
        EXPECT_LT(addedKb, static_cast<long>(xml.size() / 1024 * 40 + 64 * 1024));
    }
}

// Deeper documents are refused while the tree is built, whatever the input format, before the
// recursive binding could exhaust the stack.
TEST(LargeInput, NestingBeyondTheLimitIsRefusedInEveryFormat) {
    const char* const message = "The document nests elements deeper than 5000 levels.";
    for (int depth : {5001, 10000, 1000000}) {
        SCOPED_TRACE(depth);
        const std::string xml = Nested(depth);
        CXmlDocument doc;
        KxTest::ExpectKxError<CKxException>([&] { doc.LoadXml(xml.c_str()); }, message);
        CSmartPtr<CElement> element(new CElement("", ""));
        KxTest::ExpectKxError<CKxException>([&] { element->FromXml(xml.c_str()); }, message);

        CFastInfosetContext settings;
        CBinaryStream stream;
        CFastInfosetWriter writer(stream, settings);
        writer.WriteStartDocument(FInfoDecl_None);
        for (int i = 0; i < depth; ++i) writer.WriteStartElement("e", "");
        for (int i = 0; i < depth; ++i) writer.WriteEndElement();
        writer.WriteEndDocument();
        const CBinaryData& fi = stream.GetBinaryStream();
        KxTest::ExpectKxError<CKxException>(
            [&] { doc.LoadXmlStream(fi.GetData(), fi.GetLength()); }, message);
    }
}
