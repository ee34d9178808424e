#include <string>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

// A canonical text of what an element holds, independent of prefixes and formatting:
// {ns}name @{ns}attr=value ... "text" ( children ).
std::string Describe(const CElement& element) {
    std::string out = "{" + element.GetNamespace() + "}" + element.GetName();
    if (!element.GetTypeName().empty())
        out += " type={" + element.GetTypeNamespace() + "}" + element.GetTypeName();
    for (const CSmartPtr<CAttribute>& attribute : *element.GetAttributes())
        out += " @{" + attribute->GetNamespace() + "}" + attribute->GetName() + "=" +
               attribute->GetValue();
    if (!element.GetText().empty()) out += " \"" + element.GetText() + "\"";
    CSmartPtr<CElementCol> children = element.GetChildren();
    if (children->GetCount() > 0) {
        out += " (";
        for (int i = 0; i < children->GetCount(); ++i) {
            out += i ? ", " : "";
            out += Describe(*children->GetItem(i));
        }
        out += ")";
    }
    return out;
}

CSmartPtr<CElement> Read(const std::string& xml) {
    CSmartPtr<CElement> element(new CElement("", ""));
    element->FromXml(xml.c_str());
    return element;
}

}  // namespace

TEST(CElement, ReadingKeepsTheWholeSubtreeAndWritingGivesItBack) {
    struct Case {
        const char* name;
        const char* xml;
        const char* held;
        bool mixed = false;  // indentation would be added to the text: compact output only
    } cases[] = {
        {"plain", "<a>text</a>", "{}a \"text\""},
        {"default namespace inherited by children",
         "<r xmlns=\"urn:r\"><c>1</c><c>2</c></r>", "{urn:r}r ({urn:r}c \"1\", {urn:r}c \"2\")"},
        {"attributes in several namespaces",
         "<p:r xmlns:p=\"urn:p\" xmlns:q=\"urn:q\" a=\"1\" q:b=\"2\" p:c=\"3\"/>",
         "{urn:p}r @{}a=1 @{urn:q}b=2 @{urn:p}c=3"},
        {"nested foreign children with an unqualified one",
         "<r xmlns=\"urn:r\"><x:k xmlns:x=\"urn:x\" x:id=\"7\"><deep>d</deep></x:k>"
         "<u xmlns=\"\">u</u></r>",
         "{urn:r}r ({urn:x}k @{urn:x}id=7 ({urn:r}deep \"d\"), {}u \"u\")"},
        {"escaped text and attribute values", "<e v=\"a&amp;&quot;b\">1 &lt; 2</e>",
         "{}e @{}v=a&\"b \"1 < 2\""},
        {"xsi attributes other than type are kept",
         "<e xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xsi:nil=\"true\"/>",
         "{}e @{http://www.w3.org/2001/XMLSchema-instance}nil=true"},
        {"xsi:type is resolved",
         "<e xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xmlns:t=\"urn:t\" "
         "xsi:type=\"t:Derived\">v</e>",
         "{}e type={urn:t}Derived \"v\""},
        {"indentation between children is dropped", "<r>\n  <c/>\n  <c/>\n</r>",
         "{}r ({}c, {}c)"},
        {"mixed content keeps the joined text", "<r>one<b/>two</r>", "{}r \"onetwo\" ({}b)", true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        CSmartPtr<CElement> element = Read(c.xml);
        EXPECT_EQ(Describe(*element), c.held);
        for (bool formatted : {false, true}) {
            if (formatted && c.mixed) continue;
            const std::string written = element->ToXml(true, formatted);
            CSmartPtr<CElement> again = Read(written);
            EXPECT_EQ(Describe(*again), c.held) << written;
        }
    }
}

TEST(CElement, WritesNamesNamespacesAttributesAndText) {
    CElement root("Root", "urn:r");
    root.GetAttributes()->Add("plain", "1", "");
    root.GetAttributes()->Add("q", "2", "urn:q");
    CSmartPtr<CElement> child = root.GetChildren()->Add("Child", "urn:r");
    child->SetText("a<b");
    root.GetChildren()->Add("Other", "");
    EXPECT_EQ(root.ToXml(false, false),
              "<AA:Root xmlns:AA=\"urn:r\" plain=\"1\" xmlns:AB=\"urn:q\" AB:q=\"2\">"
              "<AA:Child>a&lt;b</AA:Child><Other/></AA:Root>");
}

TEST(CElement, ElementWithoutNameCannotBeWritten) {
    CElement nameless(nullptr, nullptr);
    KxTest::ExpectKxError<CKxInvalidStateException>([&] { nameless.ToXml(false, false); },
                                                    "The untyped element has no name");
}

TEST(CElement, ReadingReplacesWhatWasHeld) {
    CSmartPtr<CElement> element = Read("<a x=\"1\"><b/>t</a>");
    element->SetType("T", "urn:t");
    element->FromXml("<z xmlns=\"urn:z\"/>");
    EXPECT_EQ(Describe(*element), "{urn:z}z");
    EXPECT_EQ(element->GetElementName(), "z");
}

TEST(CElement, CloneIsDeepAndIndependent) {
    CSmartPtr<CElement> original =
        Read("<r xmlns=\"urn:r\" a=\"1\"><c>1</c><d><e/></d></r>");
    const std::string before = Describe(*original);
    CSmartPtr<CElement> copy(original->Clone());
    EXPECT_EQ(copy->GetRefCount(), 1);
    EXPECT_EQ(Describe(*copy), before);
    EXPECT_NE(copy->GetChildren().Ptr(), original->GetChildren().Ptr());
    EXPECT_NE(copy->GetAttributes().Ptr(), original->GetAttributes().Ptr());

    copy->SetText("changed");
    copy->GetAttributes()->Add("b", "2", "");
    copy->GetChildren()->GetItem(1)->GetChildren()->GetItem(0)->SetText("deep");
    copy->GetChildren()->Remove(0);
    EXPECT_EQ(Describe(*original), before);
    EXPECT_EQ(Describe(*copy),
              "{urn:r}r @{}a=1 @{}b=2 \"changed\" ({urn:r}d ({urn:r}e \"deep\"))");
}

TEST(CElementCol, CreateItemFollowsTheNamespaceConstraint) {
    struct Case {
        const char* constraint;
        const char* target;
        const char* ns;
        bool item;
    } cases[] = {
        // The constraints themselves are the namespace helper's; these rows show that the
        // collection passes its constraint and target namespace on.
        {"##any", "urn:t", "", true}, {"##other", "urn:t", "urn:x", true},
        {"##other", "urn:t", "urn:t", false}, {"##local", "urn:t", "urn:x", false},
        {"##targetNamespace", "urn:t", "urn:t", true}, {"urn:a urn:b", "urn:t", "urn:b", true},
        {"urn:a urn:b", "urn:t", "", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.constraint) + " / " + c.ns);
        CXmlDocument document;
        CXmlElement* element = document.AddDocElement(c.ns, "Item");
        CElementCol col(c.constraint, c.target);
        CSmartPtr<CXmlObjectBase> item = col.CreateItem(element);
        EXPECT_EQ(item != nullptr, c.item);
        if (item) {
            CElement* created = dynamic_cast<CElement*>(item.Ptr());
            ASSERT_NE(created, nullptr);
            EXPECT_EQ(created->GetName(), "Item");
            EXPECT_EQ(created->GetNamespace(), c.ns);
            EXPECT_EQ(col.Add("Added", c.ns)->GetNamespace(), c.ns);
        } else {
            KxTest::ExpectKxError<CKxInvalidNamespaceException>(
                [&] { col.Add("Added", c.ns); },
                std::string("Invalid namespace [") + c.ns +
                    "]. The namespace must be one of [" + c.constraint +
                    "] where the target namespace is [urn:t].");
            EXPECT_EQ(col.GetCount(), 0);
        }
    }
    EXPECT_EQ(CElementCol().CreateItem(nullptr), nullptr);
}

TEST(CElementCol, ReadsTheRunOfAdmittedElements) {
    CXmlDocument document;
    document.LoadXml("<r xmlns=\"urn:t\" xmlns:x=\"urn:x\"><x:a/><x:b>2</x:b><own/><x:c/></r>");
    CXmlElement* root = document.GetDocumentElement();
    CSmartPtr<CElementCol> col(new CElementCol("##other", "urn:t"));
    CXmlElement* next = col->FromXml_Int(root, root->GetFirstElement(), CSerializationContext(),
                                         false);
    ASSERT_NE(next, nullptr);
    EXPECT_EQ(next->GetLocalName(), "own");
    ASSERT_EQ(col->GetCount(), 2);
    EXPECT_EQ(Describe(*col->GetItem(1)), "{urn:x}b \"2\"");

    CSmartPtr<CElementCol> copy(col->Clone());
    EXPECT_EQ(copy->GetNamespaceConstraint(), "##other");
    EXPECT_EQ(copy->GetTargetNamespaceOfAny(), "urn:t");
    ASSERT_EQ(copy->GetCount(), 2);
    EXPECT_NE(copy->GetItem(0).Ptr(), col->GetItem(0).Ptr());
    KxTest::ExpectKxError<CKxInvalidParamException>([&] { col->GetItem(2); },
                                                    "Index 2 is out of range, use 0 - 2");
}
