#include <string>
#include <utility>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

// An item that writes <name>text</name> and reads its element's text.
class TextItem : public KxTest::Inert<CXmlObjectBase> {
public:
    explicit TextItem(const char* text, const char* name = "i") : m_text(text) {
        SetElementName(name);
    }
    CXmlObjectBase* Clone() const override { return new TextItem(m_text.c_str()); }
    void ToXml_Int(CXmlWriter* writer, bool, const char* ns, const CSerializationContext&,
                   bool) const override {
        writer->WriteStartElement(GetElementName(), ns);
        writer->WriteString(m_text, ItemType_string, false);
        writer->WriteEndElement();
    }
    CXmlElement* FromXml_Int(CXmlElement* element, CXmlElement*, const CSerializationContext&,
                             bool) override {
        m_text = element->GetText();
        return nullptr;
    }
    std::string m_text;
};

// Items named "i" in urn:c; CreateItem also accepts "j" (a derived item under its own name),
// and gives "k" an item named otherwise (which is therefore not accepted).
class Col : public CXmlCollection {
public:
    Col(int minOccurs = 0, int maxOccurs = -1) : CXmlCollection("i", "urn:c", minOccurs, maxOccurs) {}
    CXmlObjectBase* Clone() const override { return nullptr; }
    CSmartPtr<CXmlObjectBase> CreateItem(CXmlElement* element) override {
        if (element->GetLocalName() == "j") return new TextItem("", "j");
        if (element->GetLocalName() == "k") return new TextItem("", "other");
        return new TextItem("", "i");
    }
    std::string Texts() const {
        std::string out;
        for (CNode* node = GetHead(); node; node = node->m_next) {
            out += static_cast<TextItem*>(node->m_item)->m_text;
        }
        return out;
    }
};

struct Recorder : IEventSink {
    void OnEvent(CXmlObjectBase*, MsgType type, void* data) override {
        std::string entry;
        switch (type) {
            case MsgType_CollectionAdd: entry = "add"; break;
            case MsgType_CollectionAddComplete: entry = "added"; break;
            case MsgType_CollectionRemove: entry = "remove" + std::to_string(*static_cast<int*>(data)); break;
            case MsgType_CollectionRemoveComplete: entry = "removed" + std::to_string(*static_cast<int*>(data)); break;
            case MsgType_CollectionChange: entry = "change"; break;
        }
        log.push_back(entry);
    }
    std::vector<std::string> log;
};

CSmartPtr<Col> Filled(const char* texts) {
    CSmartPtr<Col> col(new Col());
    for (const char* p = texts; *p; ++p) col->AppendItem(new TextItem(std::string(1, *p).c_str()));
    return col;
}

}  // namespace

TEST(CXmlCollection, InsertionsPlaceItemsInOrder) {
    struct Case { const char* name; void (*act)(Col&, CXmlObjectBase*); const char* expected; };
    const Case cases[] = {
        {"append", [](Col& c, CXmlObjectBase* x) { c.AppendItem(x); }, "abcx"},
        {"prepend", [](Col& c, CXmlObjectBase* x) { c.PrependItem(x); }, "xabc"},
        {"at 0", [](Col& c, CXmlObjectBase* x) { c.AddItemAt(0, x); }, "xabc"},
        {"at 2", [](Col& c, CXmlObjectBase* x) { c.AddItemAt(2, x); }, "abxc"},
        {"at count", [](Col& c, CXmlObjectBase* x) { c.AddItemAt(3, x); }, "abcx"},
        {"after first", [](Col& c, CXmlObjectBase* x) { c.AddAfterItem(c.GetHead()->m_item, x); }, "axbc"},
        {"after last", [](Col& c, CXmlObjectBase* x) { c.AddAfterItem(c.GetTail()->m_item, x); }, "abcx"},
        {"before first", [](Col& c, CXmlObjectBase* x) { c.AddBeforeItem(c.GetHead()->m_item, x); }, "xabc"},
        {"before last", [](Col& c, CXmlObjectBase* x) { c.AddBeforeItem(c.GetTail()->m_item, x); }, "abxc"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        CSmartPtr<Col> col = Filled("abc");
        CSmartPtr<TextItem> x(new TextItem("x"));
        row.act(*col, x);
        EXPECT_EQ(row.expected, col->Texts());
        EXPECT_EQ(4, col->GetCount());
        EXPECT_EQ(2, x->GetRefCount());
        // The backward links agree with the forward ones.
        std::string backward;
        for (CXmlCollection::CNode* n = col->GetTail(); n; n = n->m_previous) {
            backward.insert(0, static_cast<TextItem*>(n->m_item)->m_text);
        }
        EXPECT_EQ(row.expected, backward);
    }
}

TEST(CXmlCollection, RemovalsReleaseTheItemAndRelink) {
    struct Case { int index; const char* expected; };
    const Case cases[] = {{0, "bc"}, {1, "ac"}, {2, "ab"}};
    for (const Case& row : cases) {
        SCOPED_TRACE(row.index);
        CSmartPtr<Col> col = Filled("abc");
        CSmartPtr<CXmlObjectBase> held = col->GetNodeAtIndex(row.index)->m_item;
        col->Remove(row.index);
        EXPECT_EQ(1, held->GetRefCount());
        EXPECT_EQ(row.expected, col->Texts());
        EXPECT_EQ(2, col->GetCount());
        EXPECT_EQ(row.expected[1], static_cast<TextItem*>(col->GetTail()->m_item)->m_text[0]);
    }
}

TEST(CXmlCollection, BadIndexesThrowTheirMessages) {
    struct Case { const char* name; void (*act)(Col&, CXmlObjectBase*); const char* message; };
    const Case cases[] = {
        {"remove -1", [](Col& c, CXmlObjectBase*) { c.Remove(-1); }, "Index -1 is out of range, use 0 - 2"},
        {"remove count", [](Col& c, CXmlObjectBase*) { c.Remove(2); }, "Index 2 is out of range, use 0 - 2"},
        {"node count", [](Col& c, CXmlObjectBase*) { c.GetNodeAtIndex(2); }, "Index 2 is out of range, use 0 - 2"},
        {"add -1", [](Col& c, CXmlObjectBase* x) { c.AddItemAt(-1, x); }, "Index out of range"},
        {"add count+1", [](Col& c, CXmlObjectBase* x) { c.AddItemAt(3, x); }, "Index out of range"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        CSmartPtr<Col> col = Filled("ab");
        CSmartPtr<TextItem> x(new TextItem("x"));
        KxTest::ExpectKxError<CKxInvalidParamException>([&] { row.act(*col, x); }, row.message);
        EXPECT_EQ(1, x->GetRefCount());  // a refused item is not kept
        EXPECT_EQ("ab", col->Texts());
    }
}

TEST(CXmlCollection, ListenersHearAddsAndRemovesWithMinusOne) {
    CSmartPtr<Col> col = Filled("ab");
    Recorder first, second;
    col->AddEventListener(&first);
    col->AddEventListener(&second);
    col->AddEventListener(&first);
    col->AddItemAt(1, new TextItem("x"));
    EXPECT_EQ((std::vector<std::string>{"add", "add", "added", "added", "change", "change"}),
              first.log);
    EXPECT_EQ((std::vector<std::string>{"add", "added", "change"}), second.log);

    col->RemoveEventListener(&first);
    second.log.clear();
    col->Remove(1);
    EXPECT_EQ((std::vector<std::string>{"remove-1", "removed-1", "change"}), second.log);
    second.log.clear();
    col->Clear();
    EXPECT_EQ(0, col->GetCount());
    EXPECT_EQ(6u, second.log.size());
    EXPECT_EQ(6u, first.log.size());  // nothing after it was removed
}

TEST(CXmlCollection, CountChecksTestTheMaximumFirst) {
    struct Case {
        int minOccurs, maxOccurs, count;
        bool ignore;
        const char* message;  // null: valid
    };
    const Case cases[] = {
        {1, -1, 0, false, "The Minimum number of [i] elements allowed in this collection is 1"},
        {1, -1, 5, false, nullptr},
        {0, 2, 3, false, "The Maximum number of [i] elements allowed in this collection is 2"},
        {0, 2, 2, false, nullptr},
        {4, 2, 3, false, "The Maximum number of [i] elements allowed in this collection is 2"},
        {4, 2, 3, true, nullptr},
        {1, 1, 0, true, nullptr},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.count);
        CSmartPtr<Col> col(new Col(row.minOccurs, row.maxOccurs));
        for (int i = 0; i < row.count; ++i) col->AppendItem(new TextItem("v"));
        CSerializationContext ctx;
        ctx.SetIgnoreInvalidCollectionCounts(row.ignore);
        EXPECT_EQ(row.message == nullptr, col->IsValidCount(ctx));
        if (row.message) {
            KxTest::ExpectKxError<CKxValidationException>([&] { col->ValidateCount(ctx); },
                                                          row.message);
        } else {
            col->ValidateCount(ctx);
        }
    }
}

TEST(CXmlCollection, ReadsItemsWhileTheyMatchAndWritesThemInOrder) {
    struct Case {
        const char* xml;
        const char* texts;
        const char* stopsAt;  // local name of the returned element, "" for null
    };
    const Case cases[] = {
        {"<r xmlns='urn:c'><i>a</i><i>b</i><z/></r>", "ab", "z"},
        {"<r xmlns='urn:c'><i>a</i><j>b</j><i>c</i></r>", "abc", ""},
        {"<r xmlns='urn:c'><i>a</i><k>b</k></r>", "a", "k"},
        {"<r><i>a</i></r>", "", "i"},  // wrong namespace
        {"<r xmlns='urn:c'/>", "", ""},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.xml);
        CXmlDocument document;
        document.LoadXml(row.xml);
        CXmlElement* root = document.GetDocumentElement();
        CSmartPtr<Col> col(new Col());
        CXmlElement* rest = col->FromXml_Int(root, root->GetFirstElement(),
                                             CSerializationContext::m_defaultContext, false);
        EXPECT_EQ(row.texts, col->Texts());
        EXPECT_EQ(row.stopsAt, std::string(rest ? rest->GetLocalName() : ""));
    }

    CSmartPtr<Col> col = Filled("ab");
    CTextStream stream(XmlEncoding_UTF8);
    CXmlTextWriter writer(stream);
    writer.Open();
    writer.WriteStartElement("r", "");
    col->ToXml_Int(&writer, false, "", CSerializationContext::m_defaultContext, false);
    writer.WriteEndElement();
    writer.Close();
    EXPECT_EQ("<r>\n\t<i>a</i>\n\t<i>b</i>\n</r>\n", std::string(stream.GetText()));
}
