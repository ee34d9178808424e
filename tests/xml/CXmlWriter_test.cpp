#include <memory>
#include <string>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using KxXmlLib16::CKxException;
using KxXmlLib16::CXmlWriter;
using KxXmlLib16::ItemType;
using KxTest::ExpectKxError;

namespace {

typedef CXmlWriter::CXmlWriterContext Context;
typedef CXmlWriter::NamespaceMap NamespaceMap;

// The smallest writer: elements only open and close contexts, so the base bookkeeping can be
// observed on its own.
class ProbeWriter : public CXmlWriter {
public:
    ProbeWriter() : CXmlWriter("ProbeWriter") {}
    void WriteComment(const std::string&) override {}
    void WritePI(const std::string&) override {}
    void WriteInlineSchema(const std::string&) override {}
    void WriteStartElement(const std::string& name, const std::string& ns) override {
        PushContext(name, ns);
    }
    void WriteString(const std::string&, ItemType, bool) override {}
    void WriteEndElement() override { PopContext(); }
    void WriteAttributeString(const std::string&, const std::string&, const std::string&,
                              ItemType) override {}
    void WriteAttributeType(const std::string&, const std::string&, ItemType) override {}
    void WriteAttributeNil() override {}

    Context* Current() const { return GetCurrentContext(); }
};

}  // namespace

TEST(CXmlWriter, ContextStateValuesAreFixed) {
    static_assert(CXmlWriter::ContextState_None == 0, "");
    static_assert(CXmlWriter::ContextState_CollectionStart == 1, "");
    static_assert(CXmlWriter::ContextState_InCollection == 2, "");
    static_assert(CXmlWriter::ContextState_CollectionEnd == 3, "");
    EXPECT_EQ("http://www.w3.org/XML/1998/namespace", CXmlWriter::XML_NAMESPACE);
}

TEST(CXmlWriter, NsIntToStringCountsInBase26Letters) {
    struct Case {
        int n;
        const char* prefix;
    };
    const Case cases[] = {{0, "AA"},  {1, "AB"},   {25, "AZ"},  {26, "BA"},
                          {27, "BB"}, {675, "ZZ"}, {676, "[A"}, {701, "[Z"}};
    for (const Case& row : cases) {
        SCOPED_TRACE(row.n);
        EXPECT_EQ(row.prefix, CXmlWriter::NsIntToString(row.n));
    }
}

TEST(CXmlWriter, GetUniquePrefixSkipsPrefixesInUse) {
    struct Case {
        const char* name;
        NamespaceMap map;
        const char* prefix;
    };
    const Case cases[] = {
        {"empty map", {}, "AA"},
        {"xml only", {{CXmlWriter::XML_NAMESPACE, "xml"}}, "AA"},
        {"AA taken", {{"urn:a", "AA"}}, "AB"},
        {"gap is reused", {{"urn:a", "AA"}, {"urn:c", "AC"}}, "AB"},
        {"keys are not prefixes", {{"AA", "p"}, {"AB", "q"}}, "AA"},
        {"first row full",
         [] {
             NamespaceMap map;
             for (int n = 0; n < 27; ++n) {
                 map["urn:" + std::to_string(n)] = CXmlWriter::NsIntToString(n);
             }
             return map;
         }(),
         "BB"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.prefix, CXmlWriter::GetUniquePrefix(row.map));
    }
}

TEST(CXmlWriter, BindingsBeforeTheRootBelongToTheWriterAndAreCopiedIntoTheRoot) {
    ProbeWriter writer;
    EXPECT_EQ((NamespaceMap{{CXmlWriter::XML_NAMESPACE, "xml"}}), writer.GetNamespaceMap());
    writer.AddNamespace("p", "urn:p");
    writer.AddNamespace("q", "urn:p");  // replaces the prefix of urn:p
    writer.SetDefaultNamespace("urn:d");
    const NamespaceMap expected{{CXmlWriter::XML_NAMESPACE, "xml"}, {"urn:p", "q"}};
    EXPECT_EQ(expected, writer.GetNamespaceMap());
    EXPECT_EQ("urn:d", writer.GetDefaultNamespace());

    writer.WriteStartElement("Root", "urn:r");
    const Context* root = writer.Current();
    ASSERT_NE(nullptr, root);
    EXPECT_EQ("Root", root->GetName());
    EXPECT_EQ("urn:r", root->GetNamespace());
    EXPECT_EQ(0, root->GetDepth());
    EXPECT_EQ(nullptr, root->GetParent());
    EXPECT_FALSE(root->InheritsScope());
    EXPECT_TRUE(root->OwnsMap());
    EXPECT_EQ("urn:d", root->GetDefaultNamespace());
    EXPECT_EQ(expected, root->GetNamespaceMap());
    EXPECT_EQ("q", root->GetNamespaceMapValue("urn:p"));
    EXPECT_EQ("", root->GetNamespaceMapValue("urn:unknown"));
    EXPECT_EQ(nullptr, root->FindNamespacePrefix("urn:unknown"));

    // Inside the root, bindings change the root's copy, not the writer's map.
    writer.AddNamespace("r", "urn:r");
    writer.SetDefaultNamespace("urn:e");
    EXPECT_EQ("r", root->GetNamespaceMapValue("urn:r"));
    EXPECT_EQ("urn:e", root->GetDefaultNamespace());
    EXPECT_EQ(expected, writer.GetNamespaceMap());
    EXPECT_EQ("urn:d", writer.GetDefaultNamespace());
    writer.WriteEndElement();
    EXPECT_EQ(nullptr, writer.Current());
}

TEST(CXmlWriter, BindingsInsideAnElementLastUntilItsEnd) {
    ProbeWriter writer;
    writer.WriteStartElement("R", "");
    writer.WriteStartElement("C", "");
    const Context* child = writer.Current();
    EXPECT_TRUE(child->InheritsScope());
    EXPECT_FALSE(child->OwnsMap());
    EXPECT_EQ(1, child->GetDepth());

    writer.AddNamespace("c", "urn:c");
    EXPECT_FALSE(child->InheritsScope());
    EXPECT_TRUE(child->OwnsMap());

    writer.WriteStartElement("G", "");
    const Context* grandchild = writer.Current();
    EXPECT_EQ(2, grandchild->GetDepth());
    EXPECT_TRUE(grandchild->InheritsScope());
    EXPECT_EQ("c", grandchild->GetNamespaceMapValue("urn:c"));
    writer.WriteEndElement();
    writer.WriteEndElement();

    const Context* root = writer.Current();
    ASSERT_NE(nullptr, root);
    EXPECT_EQ("R", root->GetName());
    EXPECT_EQ(nullptr, root->FindNamespacePrefix("urn:c"));
    EXPECT_EQ(0, writer.GetNamespaceMap().count("urn:c"));
    writer.WriteEndElement();
}

TEST(CXmlWriter, ContextTakesItsOwnScopeOnFirstChange) {
    const NamespaceMap rootMap{{"urn:a", "a"}};
    Context* root = new Context("R", "", "urn:d", rootMap);

    // Binding a namespace copies the map and the default namespace in force.
    Context bound("C", "", root);
    bound.SetNamespaceMapValue("urn:x", "x");
    EXPECT_EQ("urn:d", bound.GetDefaultNamespace());
    EXPECT_EQ((NamespaceMap{{"urn:a", "a"}, {"urn:x", "x"}}), bound.GetNamespaceMap());
    EXPECT_EQ(rootMap, root->GetNamespaceMap());

    // Changing the default namespace copies the map; the parent keeps its default.
    Context* other = new Context("D", "", bound.DetachParent());
    std::unique_ptr<Context> owner(other);
    other->SetDefaultNamespace("urn:e");
    EXPECT_EQ("urn:e", other->GetDefaultNamespace());
    EXPECT_EQ(rootMap, other->GetNamespaceMap());
    EXPECT_EQ("urn:d", root->GetDefaultNamespace());
    other->SetNamespaceMapValue("urn:y", "y");
    EXPECT_EQ(nullptr, root->FindNamespacePrefix("urn:y"));
    EXPECT_EQ("urn:e", other->GetDefaultNamespace());
}

TEST(CXmlWriter, RememberedNamePrefixLastsWhileTheBindingsDo) {
    struct Case {
        const char* name;
        void (*change)(Context& parent, Context& child);
        const char* lookup;  // what the child then finds for urn:a
        bool recalled;
    };
    const Case cases[] = {
        {"nothing changes", [](Context&, Context&) {}, "a", true},
        {"the parent rebinds the namespace",
         [](Context& parent, Context&) { parent.SetNamespaceMapValue("urn:a", "p"); }, "p",
         false},
        {"the parent binds another namespace",
         [](Context& parent, Context&) { parent.SetNamespaceMapValue("urn:b", "b"); }, "a",
         false},
        {"the parent changes its default namespace",
         [](Context& parent, Context&) { parent.SetDefaultNamespace("urn:a"); }, "a", false},
        {"the child binds another namespace",
         [](Context&, Context& child) { child.SetNamespaceMapValue("urn:b", "b"); }, "a", false},
        {"the child rebinds the namespace",
         [](Context&, Context& child) { child.SetNamespaceMapValue("urn:a", "c"); }, "c", false},
        {"the child changes its default namespace",
         [](Context&, Context& child) { child.SetDefaultNamespace("urn:d"); }, "a", false},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        Context* parent = new Context("R", "urn:a", "", NamespaceMap{{"urn:a", "a"}});
        Context child("C", "urn:a", parent);
        child.RememberNamePrefix(child.FindNamespacePrefix("urn:a"));
        row.change(*parent, child);
        const std::string* recalled = nullptr;
        EXPECT_EQ(row.recalled, child.RecallNamePrefix(recalled));
        if (row.recalled) {
            ASSERT_NE(nullptr, recalled);
            EXPECT_EQ("a", *recalled);
        }
        const std::string* found = child.FindNamespacePrefix("urn:a");
        ASSERT_NE(nullptr, found);
        EXPECT_EQ(row.lookup, *found);
    }
}

TEST(CXmlWriter, ReusedContextRemembersNoPrefix) {
    ProbeWriter writer;
    writer.WriteStartElement("R", "urn:a");
    const std::string* recalled = nullptr;
    EXPECT_FALSE(writer.Current()->RecallNamePrefix(recalled));
    writer.AddNamespace("a", "urn:a");
    writer.WriteStartElement("C", "urn:a");
    writer.Current()->RememberNamePrefix(writer.Current()->FindNamespacePrefix("urn:a"));
    EXPECT_TRUE(writer.Current()->RecallNamePrefix(recalled));
    writer.WriteEndElement();
    // The next sibling is written with the ended element's context object.
    writer.WriteStartElement("D", "");
    EXPECT_FALSE(writer.Current()->RecallNamePrefix(recalled));
    writer.WriteEndElement();
    writer.WriteEndElement();
}

TEST(CXmlWriter, SetContextStateMarksTheCurrentElementOnly) {
    ProbeWriter writer;
    writer.SetContextState(CXmlWriter::ContextState_CollectionStart);  // no element: ignored
    writer.WriteStartElement("R", "");
    writer.WriteStartElement("C", "");
    writer.SetContextState(CXmlWriter::ContextState_CollectionStart);
    EXPECT_EQ(CXmlWriter::ContextState_CollectionStart, writer.Current()->GetContextState());
    EXPECT_EQ(CXmlWriter::ContextState_None, writer.Current()->GetParent()->GetContextState());
    writer.WriteEndElement();
    writer.SetContextState(CXmlWriter::ContextState_CollectionEnd);
    EXPECT_EQ(CXmlWriter::ContextState_CollectionEnd, writer.Current()->GetContextState());
    // A later sibling starts with no state, whatever its predecessor was left with.
    writer.WriteStartElement("D", "");
    EXPECT_EQ(CXmlWriter::ContextState_None, writer.Current()->GetContextState());
    writer.WriteEndElement();
    writer.WriteEndElement();
}

TEST(CXmlWriter, CloseRefusesAnOpenElement) {
    ProbeWriter writer;
    writer.Open();
    writer.WriteStartElement("R", "");
    writer.WriteStartElement("C", "");
    writer.WriteEndElement();
    ExpectKxError<CKxException>([&] { writer.Close(); }, "An Element has not been closed.");
    writer.WriteEndElement();
    EXPECT_NO_THROW(writer.Close());
}

TEST(CXmlWriter, DestructorFreesADeepChainOfOpenElements) {
    // Freed link by link: a recursive destruction of this chain would overflow the stack.
    const int depth = 300000;
    ProbeWriter* writer = new ProbeWriter;
    for (int i = 0; i < depth; ++i) {
        writer->WriteStartElement("e", "");
    }
    EXPECT_EQ(depth - 1, writer->Current()->GetDepth());
    delete writer;
}
