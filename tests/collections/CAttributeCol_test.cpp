#include <string>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

std::vector<std::string> Names(const CAttributeCol& col) {
    std::vector<std::string> out;
    for (const CSmartPtr<CAttribute>& attribute : col) out.push_back(attribute->GetName());
    return out;
}

}  // namespace

TEST(CAttributeCol, AttributesAddedByNameTakeTheCollectionNamespace) {
    struct Case {
        const char* ns;
        const char* constraint;
        const char* expected;
        bool addAccepted;  // whether that namespace then passes the constraint
    };
    const Case cases[] = {
        {"", "urn:w", "urn:w", true},
        {"", "urn:w urn:v", "urn:w", false},  // a list accepts only the empty namespace
        {"", "##other", "", true}, {"", "##any", "", true}, {"", "#x", "", true},
        {"", "a#", "", true}, {"", "ab", "ab", true}, {"", "a", "", true}, {"", "", "", true},
        {"urn:given", "urn:w", "urn:given", false}, {"urn:given", "##any", "urn:given", true},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(std::string(row.ns) + " | " + row.constraint);
        CSmartPtr<CAttributeCol> col(new CAttributeCol(row.ns, row.constraint, "urn:t"));
        EXPECT_EQ(row.expected, col->GetNamespace());
        EXPECT_EQ(row.constraint, col->GetNamespaceRule());
        if (row.addAccepted) {
            CSmartPtr<CAttribute> added = col->Add("n", "v");
            EXPECT_EQ(row.expected, added->GetNamespace());
            EXPECT_EQ("v", added->GetValue());
            EXPECT_EQ("", col->Add("m")->GetValue());
        } else {
            EXPECT_THROW(col->Add("n"), CKxInvalidNamespaceException);
        }
    }
}

TEST(CAttributeCol, AddByNameTestsTheNamespaceButAddingAnObjectDoesNot) {
    CSmartPtr<CAttributeCol> col(new CAttributeCol("", "##other", "urn:t"));
    KxTest::ExpectKxError<CKxInvalidNamespaceException>(
        [&] { col->Add("code", "1", "urn:t"); },
        "Invalid namespace [urn:t]. The namespace must be one of [##other] where the target "
        "namespace is [urn:t].");
    EXPECT_EQ(0, col->GetCount());

    col->Add(new CAttribute("code", "1", "urn:t"));
    CSmartPtr<CAttribute> other = col->Add("id", "7", "urn:o");
    EXPECT_EQ(2, col->GetCount());
    EXPECT_EQ("urn:t", col->Item(0)->GetNamespace());
    EXPECT_EQ(other.Ptr(), col->Item(1).Ptr());
    EXPECT_EQ(2, other->GetRefCount());  // the collection's and ours
}

TEST(CAttributeCol, RemoveReleasesTheItemAndRejectsIndexesOutsideTheItems) {
    CSmartPtr<CAttributeCol> col(new CAttributeCol("", "##any", ""));
    col->Add("a");
    CSmartPtr<CAttribute> b = col->Add("b");
    col->Add("c");
    for (int index : {-1, 3}) {
        SCOPED_TRACE(index);
        const std::string message =
            "Index " + std::to_string(index) + " is out of range, use 0 - 3";
        KxTest::ExpectKxError<CKxInvalidParamException>([&] { col->Item(index); }, message);
        KxTest::ExpectKxError<CKxInvalidParamException>([&] { col->Remove(index); }, message);
    }
    col->Remove(1);
    EXPECT_EQ(1, b->GetRefCount());
    EXPECT_EQ((std::vector<std::string>{"a", "c"}), Names(*col));
    col->Clear();
    EXPECT_EQ(0, col->GetCount());
}

TEST(CAttributeCol, CloneCopiesSettingsAndAttributesDeeply) {
    CSmartPtr<CAttributeCol> col(new CAttributeCol("", "urn:w", "urn:t"));
    col->Add("a", "1");
    col->Add(new CAttribute("b", "2", "urn:excluded"));

    CSmartPtr<CAttributeCol> copy(col->Clone());
    EXPECT_EQ(1, copy->GetRefCount());
    EXPECT_EQ("urn:w", copy->GetNamespace());
    EXPECT_EQ("urn:w", copy->GetNamespaceRule());
    EXPECT_EQ("urn:t", copy->GetRuleTargetNamespace());
    ASSERT_EQ(2, copy->GetCount());
    EXPECT_NE(col->Item(0).Ptr(), copy->Item(0).Ptr());
    EXPECT_EQ("urn:excluded", copy->Item(1)->GetNamespace());
    EXPECT_EQ("2", copy->Item(1)->GetValue());
    col->Clear();
    EXPECT_EQ(2, copy->GetCount());
}

TEST(CAttributeCol, WritesItsAttributesAsStringsAndReadsThemFromAnElement) {
    CSmartPtr<CAttributeCol> col(new CAttributeCol("", "##other", "urn:t"));
    CXmlDocument document;
    document.LoadXml("<r xmlns:o='urn:o' xmlns:t='urn:t' a='1' o:b='2'><c/></r>");
    CXmlElement* root = document.GetDocumentElement();
    const CSerializationContext& ctx = CSerializationContext::m_defaultContext;
    EXPECT_EQ(root->GetFirstElement(), col->FromXml_Int(root, root->GetFirstElement(), ctx, false));
    EXPECT_EQ((std::vector<std::string>{"a", "b"}), Names(*col));
    EXPECT_EQ("urn:o", col->Item(1)->GetNamespace());

    CTextStream stream(XmlEncoding_UTF8);
    CXmlTextWriter writer(stream);
    writer.Open();
    writer.WriteStartElement("x", "");
    col->ToXml_Int(&writer, false, "", ctx, false);
    writer.WriteEndElement();
    writer.Close();
    EXPECT_EQ("<x a=\"1\" xmlns:AA=\"urn:o\" AA:b=\"2\"/>\n", std::string(stream.GetText()));

    // An attribute in the target namespace is refused by "##other"; those before it stay.
    CXmlDocument refused;
    refused.LoadXml("<r xmlns:t='urn:t' z='0' t:c='3'/>");
    CSmartPtr<CAttributeCol> other(new CAttributeCol("", "##other", "urn:t"));
    KxTest::ExpectKxError<CKxInvalidNamespaceException>(
        [&] { other->FromXml_Int(refused.GetDocumentElement(), nullptr, ctx, false); },
        "Invalid Attribute [c]. The attributes namespace is Inappropriate.\nPath: /r");
    EXPECT_EQ(1, other->GetCount());
    KxTest::ExpectKxError<CKxException>(
        [&] { col->Item(0)->FromXml_Int(root, nullptr, ctx, false); },
        "This should be done by the collection");
    EXPECT_EQ("urn:t", other->GetTargetNamespace());
}

TEST(CAttributeCol, AddsAndRemovalsNotifyListenersAsACollection) {
    struct Sink : IEventSink {
        void OnEvent(CXmlObjectBase*, MsgType type, void*) override { log.push_back(type); }
        std::vector<int> log;
    };
    CSmartPtr<CAttributeCol> col(new CAttributeCol("", "##any", ""));
    Sink sink;
    col->AddEventListener(&sink);
    col->Add("a");
    col->Add(new CAttribute("b", "", "urn:x"));
    col->Remove(0);
    const std::vector<int> expected = {
        IEventSink::MsgType_CollectionAdd, IEventSink::MsgType_CollectionAddComplete,
        IEventSink::MsgType_CollectionChange, IEventSink::MsgType_CollectionAdd,
        IEventSink::MsgType_CollectionAddComplete, IEventSink::MsgType_CollectionChange,
        IEventSink::MsgType_CollectionRemove, IEventSink::MsgType_CollectionRemoveComplete,
        IEventSink::MsgType_CollectionChange};
    EXPECT_EQ(expected, sink.log);
    EXPECT_EQ((std::vector<std::string>{"b"}), Names(*col));
    EXPECT_EQ(col->GetNodeAtIndex(0)->m_item, col->Item(0).Ptr());
}
