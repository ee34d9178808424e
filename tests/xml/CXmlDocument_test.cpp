#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

const unsigned char* Bytes(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

unsigned long Length(const std::string& text) { return static_cast<unsigned long>(text.size()); }

std::string TmpPath(const char* name) { return std::string(KX_TEST_TMP_DIR) + "/" + name; }

void WriteFile(const std::string& path, const std::string& bytes) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    ASSERT_NE(nullptr, file) << path;
    ASSERT_EQ(bytes.size(), std::fwrite(bytes.data(), 1, bytes.size(), file));
    std::fclose(file);
}

std::string Compressed(const std::string& text, CompressionType type) {
    CBinaryData data(Bytes(text), Length(text), false);
    CKxZip::CompressData(data, type);
    return std::string(reinterpret_cast<const char*>(data.GetData()), data.GetLength());
}

std::vector<const CXmlElement*> Children(const CXmlElement* parent) {
    std::vector<const CXmlElement*> children;
    for (const CXmlElement* c = parent->GetFirstElement(); c; c = c->GetNextSiblingElement()) {
        children.push_back(c);
    }
    return children;
}

// An order document large enough for compression to pay off.
std::string OrderDocument(int lines) {
    std::string xml = "<Order id=\"7\">";
    for (int i = 1; i <= lines; ++i) {
        xml += "<Line no=\"" + std::to_string(i) + "\"><Item>widget</Item></Line>";
    }
    return xml + "</Order>";
}

}  // namespace

TEST(CXmlDocument, TextLosesEveryCarriageReturnAndFlattensMixedContent) {
    struct Case {
        const char* xml;
        const char* text;
    };
    const Case cases[] = {
        {"<a>x&#13;&#10;y</a>", "x\ny"}, {"<a>x&#13;y</a>", "xy"}, {"<a>&#13;</a>", ""},
        {"<a>x\r\ny</a>", "x\ny"},
        {"<a>x\ry</a>", "x\ny"},  // a literal CR is a line end to the parser
        {"<a>&#13;&#13;x&#13;&#10;&#13;</a>", "x\n"},
        // Text of mixed content joins the parent's text; the children keep their own.
        {"<p>x<c/>y</p>", "xy"}, {"<p> a <c>in</c> b <c/>c</p>", " a  b c"},
        {"<p><c>in</c></p>", ""},
        {"<p>a&amp;b&lt;c&#x41;<![CDATA[<d>]]>e</p>", "a&b<cA<d>e"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.xml);
        CXmlDocument doc;
        doc.LoadXml(row.xml);
        EXPECT_EQ(row.text, doc.GetDocumentElement()->GetText());
    }
}

TEST(CXmlDocument, AppendTextExcludingCRStopsAtLengthOrNul) {
    struct Case {
        const char* text;
        size_t length;
        const char* expected;
    };
    const Case cases[] = {
        {"a\r\nb", 4, "a\nb"}, {"\rx\r", 3, "x"},      {"\r\r\r", 3, ""}, {"abcdef", 3, "abc"},
        {"ab\0cd", 5, "ab"},   {"a\rb\0\rc", 6, "ab"}, {"", 0, ""},       {"abc", 0, ""},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(testing::Message() << '"' << row.expected << "\", " << row.length);
        CXmlDocument doc;
        CXmlElement* root = doc.AddDocElement("", "a");
        root->AppendText("<");
        doc.AppendTextExcludingCR(root, row.text, row.length);
        EXPECT_EQ(std::string("<") + row.expected, root->GetText());
    }
    CXmlDocument doc;
    CXmlElement* root = doc.AddDocElement("", "a");
    doc.AppendTextExcludingCR(root, "x\r\ny\r");
    doc.AppendTextExcludingCR(root, nullptr);
    doc.AppendTextExcludingCR(nullptr, "ignored");
    EXPECT_EQ("x\ny", root->GetText());
}

TEST(CXmlDocument, LongTextArrivingInManyPiecesIsKeptWhole) {
    std::string expected;
    std::string xml = "<a>";
    for (int i = 0; i < 20000; ++i) {
        xml += "line " + std::to_string(i) + " &amp; more\r\n";
        expected += "line " + std::to_string(i) + " & more\n";
    }
    xml += "</a>";
    CXmlDocument doc;
    doc.LoadXml(xml.c_str());
    EXPECT_EQ(expected, doc.GetDocumentElement()->GetText());
}

TEST(CXmlDocument, AppendTextGrowsGeometrically) {
    CXmlElement element(nullptr, nullptr);
    int reallocations = 0;
    const char* data = element.GetText().data();
    for (int i = 0; i < 100000; ++i) {
        element.AppendText("xy", 1);
        if (element.GetText().data() != data) {
            ++reallocations;
            data = element.GetText().data();
        }
    }
    EXPECT_EQ(std::string(100000, 'x'), element.GetText());
    EXPECT_LE(reallocations, 20);
    element.AppendText("ignored", -3);
    element.AppendText(nullptr, 4);
    element.AppendText(static_cast<const char*>(nullptr));
    EXPECT_EQ(100000u, element.GetText().size());
}

TEST(CXmlDocument, GetAttributeMatchesNameAndNamespaceExactly) {
    CXmlDocument doc;
    doc.LoadXml("<a xmlns:p='urn:p' xmlns:q='urn:q' id='1' p:id='2' q:code='3' p:id2=''/>");
    const CXmlElement* root = doc.GetDocumentElement();
    struct Case {
        const char* name;
        const char* ns;
        const char* value;
    };
    const Case cases[] = {
        {"id", "", "1"},       {"id", "urn:p", "2"}, {"code", "urn:q", "3"}, {"code", "", ""},
        {"code", "urn:p", ""}, {"absent", "", ""},   {"ID", "", ""},         {"id2", "urn:p", ""},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(testing::Message() << row.name << " in '" << row.ns << "'");
        EXPECT_EQ(row.value, root->GetAttribute(row.name, row.ns));
    }
    ASSERT_EQ(4u, root->GetAttributes().size());
    EXPECT_EQ("id", root->GetAttributes()[0]->GetLocalName());
    EXPECT_EQ(root, root->GetAttributes()[0]->GetOwnerElement());
}

TEST(CXmlDocument, XPathsNumberOnlyRepeatedNames) {
    CXmlDocument doc;
    doc.LoadXml(
        "<Order xmlns:p='urn:p'><Line/><Note/><Line><Item/><Item/></Line>"
        "<p:Line/><Extra xmlns='urn:d'><Line/><Line xmlns=''/></Extra></Order>");
    const CXmlElement* root = doc.GetDocumentElement();
    const std::vector<const CXmlElement*> top = Children(root);
    ASSERT_EQ(5u, top.size());
    const std::vector<const CXmlElement*> items = Children(top[2]);
    const std::vector<const CXmlElement*> extra = Children(top[4]);
    struct Case {
        const CXmlElement* element;
        const char* qname;
        const char* path;
    };
    const Case cases[] = {
        {root, "Order", "/Order"}, {top[0], "Line", "/Order/Line[1]"},
        {top[1], "Note", "/Order/Note"}, {top[2], "Line", "/Order/Line[2]"},
        {items[1], "Item", "/Order/Line[2]/Item[2]"}, {top[3], "p:Line", "/Order/p:Line"},
        // The default namespace is bound to the empty prefix: no prefix is written.
        {extra[0], "Line", "/Order/Extra/Line[1]"},
        {extra[1], "Line", "/Order/Extra/Line[2]"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(row.qname, row.element->GetQName());
        EXPECT_EQ(row.path, row.element->GetXPath());
    }
}

TEST(CXmlDocument, AttributeXPathPutsThePrefixBeforeTheAt) {
    CXmlDocument doc;
    doc.LoadXml("<Order xmlns:p='urn:p' p:code='1' id='2'><Line xmlns:q='urn:q' q:n='3'/></Order>");
    const CXmlElement* root = doc.GetDocumentElement();
    EXPECT_EQ("/Order/p:@code", root->GetAttributes()[0]->GetXPath());
    EXPECT_EQ("/Order/@id", root->GetAttributes()[1]->GetXPath());
    EXPECT_EQ("/Order/Line/q:@n", root->GetFirstElement()->GetAttributes()[0]->GetXPath());
    const CXmlAttribute orphan(nullptr, "code", "1", "urn:p");
    EXPECT_EQ("@code", orphan.GetXPath());
}

TEST(CXmlDocument, ClassifiesSchemaInstanceAttributes) {
    const char* xsi = "http://www.w3.org/2001/XMLSchema-instance";
    const char* xmlns = "http://www.w3.org/2000/xmlns/";
    struct Case {
        const char* ns;
        const char* name;
        bool isNamespace;
        bool isNil;
    };
    const Case cases[] = {
        {xsi, "type", true, false}, {xsi, "schemaLocation", true, false},
        {xsi, "noNamespaceSchemaLocation", true, false}, {xsi, "xmlns", true, false},
        {xmlns, "type", true, false}, {xsi, "nil", false, true}, {xmlns, "nil", false, true},
        {xsi, "other", false, false}, {"", "type", false, false}, {"", "nil", false, false},
        {"urn:other", "nil", false, false},
        {"http://www.w3.org/2001/XMLSchema", "type", false, false},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(testing::Message() << row.ns << " " << row.name);
        const CXmlAttribute attribute(nullptr, row.name, "v", row.ns);
        EXPECT_EQ(row.isNamespace, attribute.IsNamespaceAttribute());
        EXPECT_EQ(row.isNil, attribute.IsNilAttribute());
    }
}

TEST(CXmlDocument, ElementFilterDropsFinishedElements) {
    std::vector<std::string> seen;
    CXmlDocument doc([&](CXmlElement* element) {
        // The element is complete when the filter sees it: its children are there.
        seen.push_back(element->GetLocalName() + ":" + std::to_string(Children(element).size()) +
                       ":" + element->GetText());
        return element->GetLocalName() == "Line";
    });
    doc.LoadXml("<Order><Line><Item>a</Item></Line><Note>n</Note><Line/><Total>3</Total></Order>");
    const std::vector<std::string> expected = {"Item:0:a", "Line:1:",   "Note:0:n",
                                               "Line:0:",  "Total:0:3", "Order:2:"};
    EXPECT_EQ(expected, seen);
    const std::vector<const CXmlElement*> left = Children(doc.GetDocumentElement());
    ASSERT_EQ(2u, left.size());
    EXPECT_EQ("Note", left[0]->GetLocalName());
    EXPECT_EQ("Total", left[1]->GetLocalName());
    EXPECT_EQ(nullptr, left[1]->GetNextSiblingElement());
    EXPECT_EQ("/Order/Total", left[1]->GetXPath());
}

TEST(CXmlDocument, ElementFilterKeepsMemoryFlat) {
    // Dropped elements give their memory back: a long run of them reuses a few places.
    std::set<const void*> places;
    CXmlDocument doc([&](CXmlElement* element) {
        places.insert(element);
        for (const CXmlAttribute* attribute : element->GetAttributes()) places.insert(attribute);
        return element->GetLocalName() != "Orders";
    });
    std::string xml = "<Orders>";
    for (int i = 0; i < 2000; ++i) {
        xml += "<Line no='" + std::to_string(i) + "'><Item>x</Item></Line>";
    }
    xml += "</Orders>";
    doc.LoadXml(xml.c_str());
    EXPECT_EQ(nullptr, doc.GetDocumentElement()->GetFirstElement());
    EXPECT_LE(places.size(), 8u);
}

TEST(CXmlDocument, DetachedElementsOutliveTheirDocument) {
    std::unique_ptr<CXmlElement> kept;
    std::unique_ptr<CXmlElement> keptAcrossReload;
    {
        CXmlDocument doc;
        doc.LoadXml("<a xmlns='urn:a'><b x='1'><c>text</c></b></a>");
        kept.reset(doc.GetDocumentElement()->RemoveLastChildElement());
        doc.LoadXml("<d><e y='2'/></d>");
        keptAcrossReload.reset(doc.GetDocumentElement()->RemoveLastChildElement());
        doc.LoadXml("<f/>");
    }
    ASSERT_NE(nullptr, kept);
    EXPECT_EQ("b", kept->GetLocalName());
    EXPECT_EQ("urn:a", kept->GetNamespaceURI());
    EXPECT_EQ("1", kept->GetAttribute("x", ""));
    ASSERT_NE(nullptr, kept->GetFirstElement());
    EXPECT_EQ("text", kept->GetFirstElement()->GetText());
    EXPECT_EQ("2", keptAcrossReload->GetAttribute("y", ""));
}

TEST(CXmlDocument, ElementFilterMayDropTheRootAndItsFailuresPassThrough) {
    CXmlDocument dropAll([](CXmlElement*) { return true; });
    dropAll.LoadXml("<a><b/></a>");
    EXPECT_EQ(nullptr, dropAll.GetDocumentElement());

    CXmlDocument throwing([](CXmlElement* element) -> bool {
        if (element->GetLocalName() == "bad") throw CKxInvalidParamException("filter refused");
        return false;
    });
    KxTest::ExpectKxError<CKxInvalidParamException>(
        [&] { throwing.LoadXml("<a><ok/><bad/><never/></a>"); }, "filter refused");
    // The parse stopped at the failure.
    const std::vector<const CXmlElement*> built = Children(throwing.GetDocumentElement());
    ASSERT_EQ(2u, built.size());
    EXPECT_EQ("bad", built[1]->GetLocalName());
}

TEST(CXmlDocument, EmptyInputIsRefused) {
    struct Case {
        const char* name;
        std::function<void(CXmlDocument&)> load;
        const char* message;
    };
    const unsigned char byte = '<';
    const Case cases[] = {
        {"LoadXml empty", [](CXmlDocument& d) { d.LoadXml(""); }, "XML String is empty!"},
        {"LoadXml null", [](CXmlDocument& d) { d.LoadXml(static_cast<const char*>(nullptr)); },
         "XML String is empty!"},
        {"LoadXml wide empty", [](CXmlDocument& d) { d.LoadXml(L""); }, "XML String is empty!"},
        {"LoadXmlStream no bytes", [&](CXmlDocument& d) { d.LoadXmlStream(&byte, 0); },
         "XML Stream is empty!"},
        {"LoadXmlStream null", [](CXmlDocument& d) { d.LoadXmlStream(nullptr, 5); },
         "XML Stream is empty!"},
        {"LoadJson empty", [](CXmlDocument& d) { d.LoadJson(""); }, "JSON String is empty!"},
        {"LoadJson null", [](CXmlDocument& d) { d.LoadJson(static_cast<const char*>(nullptr)); },
         "JSON String is empty!"},
        {"LoadJson wide empty", [](CXmlDocument& d) { d.LoadJson(L""); }, "JSON String is empty!"},
        {"LoadJsonStream no bytes", [&](CXmlDocument& d) { d.LoadJsonStream(&byte, 0); },
         "JSON Stream is empty!"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        CXmlDocument doc;
        KxTest::ExpectKxError<CKxException>([&] { row.load(doc); }, row.message);
        EXPECT_EQ(nullptr, doc.GetDocumentElement());
    }
}

TEST(CXmlDocument, MalformedXmlFailsWithTheParserMessage) {
    struct Case {
        std::string xml;
        const char* message;
    };
    const Case cases[] = {
        {"<a>", "no element found at line 1"}, {"<a>\n<b>\n", "no element found at line 3"},
        {"<a><b>te", "no element found at line 1"}, {"<a", "unclosed token at line 1"},
        {"<a><b></a>", "mismatched tag at line 1"},
        {"<a>\n\n&bogus;</a>", "undefined entity at line 3"},
        {"<a>&#0;</a>", "reference to invalid character number at line 1"},
        {"<a>\xff</a>", "not well-formed (invalid token) at line 1"},
        {"<a>\xc3</a>", "not well-formed (invalid token) at line 1"},
        {"<a>\xed\xa0\x80</a>", "not well-formed (invalid token) at line 1"},
        {"<a/><b/>", "junk after document element at line 1"},
        {"text", "syntax error at line 1"},
        {"<a x='1' x='2'/>", "duplicate attribute at line 1"},
        {"<?xml version='1.0'?>", "no element found at line 1"},
        {"<p:a/>", "unbound prefix at line 1"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.xml);
        CXmlDocument text;
        KxTest::ExpectKxError<CKxException>([&] { text.LoadXml(row.xml.c_str()); }, row.message);
        CXmlDocument stream;
        KxTest::ExpectKxError<CKxException>(
            [&] { stream.LoadXmlStream(Bytes(row.xml), Length(row.xml)); }, row.message);
    }
}

TEST(CXmlDocument, LoadReportsFileFailures) {
    const std::string directory = KX_TEST_TMP_DIR;
    const std::string empty = TmpPath("CXmlDocument_empty.xml");
    WriteFile(empty, "");
    const std::string missing = TmpPath("CXmlDocument_missing.xml");
    std::remove(missing.c_str());
    const std::string percent = TmpPath("no%n%s%d.xml");
    struct Case {
        std::string path;
        std::string message;
    };
    const Case cases[] = {
        {missing, "Failed to open the file [" + missing + "]."},
        {percent, "Failed to open the file [" + percent + "]."},
        {directory, "Failed to get the size of the file [" + directory + "] Error [0]"},
        {empty, "Failed to read the contents of the file [" + empty + "] Error [0]"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.path);
        CXmlDocument doc;
        KxTest::ExpectKxError<CKxException>([&] { doc.Load(row.path.c_str()); }, row.message);
        KxTest::ExpectKxError<CKxException>([&] { doc.LoadJsonFile(row.path.c_str()); },
                                            row.message);
    }
}

TEST(CXmlDocument, LoadRefusesAnUnreadableFile) {
    if (geteuid() == 0) GTEST_SKIP() << "root reads files without read permission";
    const std::string path = TmpPath("CXmlDocument_unreadable.xml");
    WriteFile(path, "<a/>");
    ASSERT_EQ(0, chmod(path.c_str(), 0));
    CXmlDocument doc;
    KxTest::ExpectKxError<CKxException>([&] { doc.Load(path.c_str()); },
                                        "Failed to open the file [" + path + "].");
    chmod(path.c_str(), 0600);
}

TEST(CXmlDocument, FilesAndStreamsMayBeCompressed) {
    const std::string xml = OrderDocument(50);
    struct Case {
        const char* name;
        std::string bytes;
    };
    const Case cases[] = {
        {"plain", xml}, {"gzip", Compressed(xml, CompressionType_GZip)},
        {"zlib", Compressed(xml, CompressionType_ZLib)},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const std::string path = TmpPath("CXmlDocument_compressed.xml");
        WriteFile(path, row.bytes);
        CXmlDocument fromFile;
        fromFile.Load(path.c_str());
        CXmlDocument fromStream;
        fromStream.LoadXmlStream(Bytes(row.bytes), Length(row.bytes));
        for (const CXmlDocument* doc : {&fromFile, &fromStream}) {
            const CXmlElement* root = doc->GetDocumentElement();
            ASSERT_NE(nullptr, root);
            EXPECT_EQ("7", root->GetAttribute("id", ""));
            const std::vector<const CXmlElement*> lines = Children(root);
            ASSERT_EQ(50u, lines.size());
            EXPECT_EQ("/Order/Line[50]/Item", lines[49]->GetFirstElement()->GetXPath());
        }
    }
    // A compressed string is not decompressed: strings are always XML text.
    const std::string packed = Compressed(xml, CompressionType_ZLib);
    CXmlDocument doc;
    EXPECT_THROW(doc.LoadXml(packed.c_str()), CKxException);
}

TEST(CXmlDocument, FastInfosetInputIsRecognised) {
    const std::string header("\xE0\x00\x00\x01\x00\x3C\x00\x61\xFF", 9);
    struct Case {
        const char* name;
        std::string bytes;
        const char* message;
    };
    // A null message: the document loads, its root being <a/>.
    const Case cases[] = {
        {"bare", header, nullptr},
        {"declared", "<?xml version='1.0' encoding='finf'?>" + header, nullptr},
        {"declared standalone", "<?xml encoding='finf' standalone='yes'?>" + header, nullptr},
        {"zlib-compressed", Compressed(header + std::string(200, '\0'), CompressionType_ZLib),
         "Invalid Fast Infoset document: data after the end of the document at offset 9"},
        // Not one of the exact declarations: this is XML text, and bad XML at that.
        {"double quotes", "<?xml encoding=\"finf\"?>" + header,
         "XML declaration not well-formed at line 1"},
        {"version 2", std::string("\xE0\x00\x00\x02", 4), "syntax error at line 1"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        CXmlDocument doc;
        if (row.message == nullptr) {
            doc.LoadXmlStream(Bytes(row.bytes), Length(row.bytes));
            ASSERT_NE(nullptr, doc.GetDocumentElement());
            EXPECT_EQ("a", doc.GetDocumentElement()->GetLocalName());
            continue;
        }
        KxTest::ExpectKxError<CKxException>(
            [&] { doc.LoadXmlStream(Bytes(row.bytes), Length(row.bytes)); }, row.message);
    }
}

TEST(CXmlDocument, LoadingAgainStartsFromScratch) {
    CXmlDocument doc;
    doc.LoadXml("<p:a xmlns:p='urn:p'><b/></p:a>");
    EXPECT_EQ("urn:p", doc.LookupNamespaceFromAlias("p"));
    doc.LoadXml("<c/>");
    EXPECT_EQ("c", doc.GetDocumentElement()->GetLocalName());
    EXPECT_EQ(nullptr, doc.GetDocumentElement()->GetFirstElement());
    EXPECT_TRUE(doc.GetPrefixMap().empty());
    EXPECT_THROW(doc.LoadXml("<broken>"), CKxException);
    doc.LoadXml("<d/>");
    EXPECT_EQ("d", doc.GetDocumentElement()->GetLocalName());
    doc.Cleanup();
    EXPECT_EQ(nullptr, doc.GetDocumentElement());
    EXPECT_EQ(nullptr, doc.GetCurrentElement());
}

TEST(CXmlDocument, PrefixLookupsGoBothWays) {
    CXmlDocument doc;
    doc.AddNamespaceBinding("b", "urn:shared");
    doc.AddNamespaceBinding("a", "urn:shared");
    doc.AddNamespaceBinding("c", "urn:c");
    doc.AddNamespaceBinding("c", "urn:c2");
    struct Case {
        const char* prefix;
        const char* ns;
    };
    for (const Case& row : {Case{"a", "urn:shared"}, Case{"b", "urn:shared"}, Case{"c", "urn:c2"},
                            Case{"d", ""}, Case{"", ""}}) {
        SCOPED_TRACE(row.prefix);
        EXPECT_EQ(row.ns, doc.LookupNamespaceFromAlias(row.prefix));
    }
    EXPECT_EQ("a", doc.LookupAliasFromNamespace("urn:shared"));
    EXPECT_EQ("c", doc.LookupAliasFromNamespace("urn:c2"));
    EXPECT_EQ("", doc.LookupAliasFromNamespace("urn:c"));
    EXPECT_EQ("", doc.LookupNamespaceFromAlias(nullptr));
}

TEST(CXmlDocument, BuilderKeepsTheStackAndTheChildChain) {
    CXmlDocument doc;
    KxTest::ExpectKxError<CKxInvalidStateException>(
        [&] { doc.AddChildElement("", "orphan"); },
        "There is no open element to add a child element to.");
    CXmlElement* root = doc.AddDocElement("urn:r", "root");
    KxTest::ExpectKxError<CKxInvalidStateException>([&] { doc.AddDocElement("", "second"); },
                                                    "The document already has a document element.");
    CXmlElement* first = doc.AddChildElement(nullptr, "first");
    EXPECT_EQ(first, doc.GetCurrentElement());
    doc.AddElementAttribute(first, "k", "v", nullptr);
    doc.EndElement();
    doc.AddChildElement(std::string("urn:x"), std::string("second"));
    doc.EndElement();
    doc.AddChildElement("", "third");
    doc.EndElement();
    EXPECT_EQ(root, doc.GetCurrentElement());
    doc.EndElement();
    doc.EndElement();  // nothing open: ignored
    EXPECT_EQ(nullptr, doc.GetCurrentElement());

    EXPECT_EQ(root, doc.GetDocumentElement());
    EXPECT_EQ("urn:r", root->GetNamespaceURI());
    EXPECT_EQ("v", first->GetAttribute("k", ""));
    EXPECT_EQ(root, first->GetParentElement());
    EXPECT_EQ(&doc, first->GetDocument());

    std::unique_ptr<CXmlElement> third(root->RemoveLastChildElement());
    ASSERT_NE(nullptr, third);
    EXPECT_EQ("third", third->GetLocalName());
    std::unique_ptr<CXmlElement> second(root->RemoveLastChildElement());
    EXPECT_EQ("urn:x", second->GetNamespaceURI());
    EXPECT_EQ(nullptr, first->GetNextSiblingElement());
    CXmlElement* fourth = root->CreateNewChildElement();
    EXPECT_EQ(fourth, first->GetNextSiblingElement());
    std::unique_ptr<CXmlElement>(root->RemoveLastChildElement());
    std::unique_ptr<CXmlElement>(root->RemoveLastChildElement());
    EXPECT_EQ(nullptr, root->GetFirstElement());
    EXPECT_EQ(nullptr, root->RemoveLastChildElement());
}

TEST(CXmlDocument, DeepTreesAreBuiltAndFreedWithoutRecursion) {
    // As deep as a document may be: building and freeing must not recurse per level.
    const int depth = static_cast<int>(CXmlDocument::kMaxDepth);
    std::string xml;
    for (int i = 0; i < depth; ++i) xml += "<e>";
    for (int i = 0; i < depth; ++i) xml += "</e>";
    CXmlDocument doc;
    doc.LoadXmlStream(Bytes(xml), Length(xml));
    const CXmlElement* deepest = doc.GetDocumentElement();
    int levels = 1;
    while (deepest->GetFirstElement() != nullptr) {
        deepest = deepest->GetFirstElement();
        ++levels;
    }
    EXPECT_EQ(depth, levels);
    EXPECT_EQ(static_cast<size_t>(depth) * 2, deepest->GetXPath().size());
}

namespace {

// "{ns}local" of each child, space-separated.
std::string ChildNames(const CXmlElement* parent) {
    std::string names;
    for (const CXmlElement* child : Children(parent)) {
        if (!names.empty()) names += ' ';
        names += "{" + child->GetNamespaceURI() + "}" + child->GetLocalName();
    }
    return names;
}

}  // namespace

TEST(CXmlDocument, RenamingAnElementLeavesItsNamesakesAlone) {
    CXmlDocument doc;
    doc.LoadXml("<r xmlns:p='urn:p'><Line/><Line/><p:Line/><Note/></r>");
    CXmlElement* root = doc.GetDocumentElement();
    std::vector<CXmlElement*> children;
    for (CXmlElement* c = root->GetFirstElement(); c; c = c->GetNextSiblingElement()) {
        children.push_back(c);
    }
    ASSERT_EQ(4u, children.size());
    // Applied in order, each on top of the previous ones.
    struct Case {
        size_t child;
        const char* name;  // null: keep the name
        const char* ns;    // null: keep the namespace
        const char* names;
    };
    const Case cases[] = {
        {1, "Note", nullptr, "{}Line {}Note {urn:p}Line {}Note"},
        {2, nullptr, "", "{}Line {}Note {}Line {}Note"},
        {0, nullptr, "urn:p", "{urn:p}Line {}Note {}Line {}Note"},
        {3, "Line", "urn:p", "{urn:p}Line {}Note {}Line {urn:p}Line"},
        {0, "", "", "{} {}Note {}Line {urn:p}Line"},
        {1, "Brand new name", "urn:brand-new",
         "{} {urn:brand-new}Brand new name {}Line {urn:p}Line"},
        {0, "Line", nullptr, "{}Line {urn:brand-new}Brand new name {}Line {urn:p}Line"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.names);
        if (row.name != nullptr) children[row.child]->SetElementName(row.name);
        if (row.ns != nullptr) children[row.child]->SetNamespace(row.ns);
        EXPECT_EQ(row.names, ChildNames(root));
    }
    EXPECT_EQ("r", root->GetLocalName());
    EXPECT_EQ("/r/Line[1]", children[0]->GetXPath());
    EXPECT_EQ("/r/Line[2]", children[2]->GetXPath());
    EXPECT_EQ("/r/p:Line", children[3]->GetXPath());
}

TEST(CXmlDocument, NamesOfDetachedNodesSurviveTheDocument) {
    std::unique_ptr<CXmlElement> kept;
    {
        CXmlDocument doc;
        doc.LoadXml(
            "<a xmlns='urn:a' xmlns:q='urn:q'><b q:x='1' y='2'><c q:z='3'/></b><b/></a>");
        kept.reset(doc.GetDocumentElement()->RemoveLastChildElement());
        kept.reset(doc.GetDocumentElement()->RemoveLastChildElement());
    }
    ASSERT_NE(nullptr, kept);
    CXmlElement* child = kept->GetFirstElement();
    ASSERT_NE(nullptr, child);
    EXPECT_EQ("{urn:a}c", ChildNames(kept.get()));
    EXPECT_EQ("b", kept->GetLocalName());
    EXPECT_EQ("1", kept->GetAttribute("x", "urn:q"));
    EXPECT_EQ("2", kept->GetAttribute("y", ""));
    EXPECT_EQ("3", child->GetAttribute("z", "urn:q"));
    ASSERT_EQ(2u, kept->GetAttributes().size());
    EXPECT_EQ("x", kept->GetAttributes()[0]->GetLocalName());
    EXPECT_EQ("urn:q", kept->GetAttributes()[0]->GetNamespaceURI());
    // Renaming still works once the document is gone, to new names and to names in use.
    child->SetElementName("renamed");
    kept->SetElementName("c");
    EXPECT_EQ("{urn:a}renamed", ChildNames(kept.get()));
    EXPECT_EQ("c", kept->GetLocalName());
    EXPECT_EQ("urn:a", kept->GetNamespaceURI());
}

TEST(CXmlDocument, ManyDistinctNamesKeepTheirOwnText) {
    const int kCount = 3000;
    std::string xml = "<root>";
    for (int i = 0; i < kCount; ++i) {
        const std::string n = std::to_string(i);
        xml += "<e" + n + " xmlns='urn:" + n + "' xmlns:p='urn:p" + n + "' a" + n + "='" + n +
               "' p:b='" + n + "'/>";
    }
    xml += "</root>";
    CXmlDocument doc;
    doc.LoadXml(xml.c_str());
    const std::vector<const CXmlElement*> children = Children(doc.GetDocumentElement());
    ASSERT_EQ(static_cast<size_t>(kCount), children.size());
    int wrong = 0;
    for (int i = 0; i < kCount; ++i) {
        const std::string n = std::to_string(i);
        const CXmlElement* e = children[static_cast<size_t>(i)];
        if (e->GetLocalName() != "e" + n || e->GetNamespaceURI() != "urn:" + n ||
            e->GetAttribute("a" + n, "") != n || e->GetAttribute("b", "urn:p" + n) != n ||
            e->GetAttribute("b", "urn:p") != "") {
            ADD_FAILURE() << "element " << i << ": {" << e->GetNamespaceURI() << "}"
                          << e->GetLocalName();
            if (++wrong == 5) break;
        }
    }
}

TEST(CXmlDocument, TextReadBeforeAFailureIsKept) {
    struct Case {
        const char* xml;
        const char* message;
        const char* rootText;
        const char* childText;
    };
    const Case cases[] = {
        {"<a>he&amp;llo<b>wor</a>", "mismatched tag at line 1", "he&llo", "wor"},
        {"<a>x\r\ny<b>1<![CDATA[2]]>3", "no element found at line 2", "x\ny", "123"},
        {"<a>one<b/>two&bogus;</a>", "undefined entity at line 1", "onetwo", ""},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.xml);
        CXmlDocument doc;
        KxTest::ExpectKxError<CKxException>([&] { doc.LoadXml(row.xml); }, row.message);
        const CXmlElement* root = doc.GetDocumentElement();
        ASSERT_NE(nullptr, root);
        EXPECT_EQ(row.rootText, root->GetText());
        ASSERT_NE(nullptr, root->GetFirstElement());
        EXPECT_EQ(row.childText, root->GetFirstElement()->GetText());
    }
}

TEST(CXmlElement, NodesOutsideADocumentOwnTheirNames) {
    CXmlDocument doc;
    doc.LoadXml("<d/>");
    CXmlElement onStack(nullptr, nullptr);
    std::unique_ptr<CXmlElement> onHeap(new CXmlElement(nullptr, nullptr));
    std::unique_ptr<CXmlElement> withDocument(new CXmlElement(&doc, nullptr));
    struct Case {
        const char* what;
        CXmlElement* element;
    };
    const Case cases[] = {
        {"on the stack", &onStack},
        {"on the heap", onHeap.get()},
        {"on the heap, with a document", withDocument.get()},
        {"child of a heap element", onHeap->CreateNewChildElement()},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.what);
        CXmlElement* e = row.element;
        EXPECT_EQ("", e->GetLocalName());
        EXPECT_EQ("", e->GetNamespaceURI());
        e->SetElementName("A name longer than any short-string buffer");
        e->SetNamespace("urn:x");
        EXPECT_EQ("A name longer than any short-string buffer", e->GetLocalName());
        EXPECT_EQ("urn:x", e->GetNamespaceURI());
        e->SetNamespace(static_cast<const char*>(nullptr));
        e->SetElementName("n");
        EXPECT_EQ("", e->GetNamespaceURI());
        EXPECT_EQ("n", e->GetLocalName());
        const CXmlAttribute* attribute = e->AddAttribute("at", "v", "urn:y");
        EXPECT_EQ("at", attribute->GetLocalName());
        EXPECT_EQ("urn:y", attribute->GetNamespaceURI());
        EXPECT_EQ("v", e->GetAttribute("at", "urn:y"));
    }
    // Loading again releases the document's pool; what was made with the document stays.
    doc.LoadXml("<other/>");
    EXPECT_EQ("n", withDocument->GetLocalName());
    EXPECT_EQ("v", withDocument->GetAttribute("at", "urn:y"));
    std::unique_ptr<CXmlAttribute> loose(new CXmlAttribute(nullptr, "loose", "1", "urn:z"));
    EXPECT_EQ("loose", loose->GetLocalName());
    EXPECT_EQ("urn:z", loose->GetNamespaceURI());
    EXPECT_EQ("@loose", loose->GetXPath());
}
