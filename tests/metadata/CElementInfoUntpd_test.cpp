#include <string>

#include "FlatBindings.h"
#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;
using namespace KxXmlLib16Data;

namespace {

const char* const kNs = "urn:h";

// A small generated-style class whose records each test picks: member 1 is a single untyped
// element, member 2 a collection of them, member 3 a string ("Name"), member 4 a string
// ("Tail").
class CHolder : public CXmlGeneratedClass {
public:
    enum { Id_Any = 1, Id_AnyCol = 2, Id_Name = 3, Id_Tail = 4 };

    CHolder(CParentElementInfo* info, CElementInfo** records)
        : m_info(info), m_records(records), m_anyCol(new CElementCol("##other", kNs, 0, 2)) {
        SetElementName("Holder");
    }
    CXmlObjectBase* Clone() const override { return new CHolder(*this); }
    CParentElementInfo* GetClassInfo() const override { return m_info; }
    CElementInfo** GetClassElementInfo() const override { return m_records; }
    CAttributeInfo** GetClassAttributeInfo() const override {
        static CAttributeInfo* none[] = {nullptr};
        return none;
    }
    void InvokeProperty(int memberId, bool get, KxVariant& value) override {
        switch (memberId) {
        case Id_Any:
            if (get) {
                value.Clear();
                if (m_any) value.SetXmlObject(m_any);
            } else {
                CXmlObjectBase* raw = value.IsValid() ? value.GetXmlObject() : nullptr;
                m_any = CSmartPtr<CElement>(dynamic_cast<CElement*>(raw));
                if (raw) raw->Release();
            }
            break;
        case Id_AnyCol: value.SetXmlCollection(m_anyCol); break;
        case Id_Name: Text(get, value, m_name); break;
        case Id_Tail: Text(get, value, m_tail); break;
        default: throw CKxInvalidParamException("Unknown member id");
        }
    }

    CParentElementInfo* m_info;
    CElementInfo** m_records;
    CSmartPtr<CElement> m_any;
    CSmartPtr<CElementCol> m_anyCol;
    std::string m_name, m_tail;

private:
    static void Text(bool get, KxVariant& value, std::string& field) {
        if (get) {
            value.Clear();
            if (!field.empty()) value.SetString(field);
        } else {
            field = value.GetString();
        }
    }
};

CParentElementInfo* Parent(XmlElementGroupType group) {
    static CParentElementInfo seq(XmlElementGroupType_Sequence, XmlElementType_Element, "Holder",
                                  kNs, true, false, -1, ItemType_Invalid, nullptr, false);
    static CParentElementInfo choice(XmlElementGroupType_Choice, XmlElementType_Element,
                                     "Holder", kNs, true, false, -1, ItemType_Invalid, nullptr,
                                     false);
    static CParentElementInfo all(XmlElementGroupType_All, XmlElementType_Element, "Holder", kNs,
                                  true, false, -1, ItemType_Invalid, nullptr, false);
    return group == XmlElementGroupType_Sequence ? &seq
           : group == XmlElementGroupType_Choice ? &choice
                                                 : &all;
}

// An unrestricted, whitespace-preserving string member record of kind R.
template <typename R>
R Text(const char* name, int memberId) {
    return R(name, kNs, memberId, false, ItemType_string, nullptr,
             CWhitespaceUtils::WhitespaceRule_Preserve, CPrimitiveRestrictions(), nullptr);
}

auto g_name = Text<CElementInfoSeqPrimMnd>("Name", CHolder::Id_Name);
auto g_tail = Text<CElementInfoSeqPrimOpt>("Tail", CHolder::Id_Tail);

struct Outcome { std::string message, path, inner; };
Outcome ReadInto(CXmlObjectBase& object, const std::string& xml,
                 const CSerializationContext& ctx = CSerializationContext()) {
    try {
        object.FromXml(xml.c_str(), ctx);
    } catch (const CKxException& e) {
        const CKxException* inner = e.GetInnerException();
        return {e.GetMessage(), e.GetPath(), inner ? inner->GetMessage() : ""};
    }
    return {};
}

// The holder's document: `content` after a Name element, or alone.
std::string Holder(const std::string& content, bool withName = true) {
    return std::string("<Holder xmlns=\"urn:h\" xmlns:x=\"urn:x\">") +
           (withName ? "<Name>n</Name>" : "") + content + "</Holder>";
}

}  // namespace

TEST(CElementInfoUntpd, MandatorySequenceWildcardAcceptsOrRefusesByNamespace) {
    struct Case {
        const char* constraint;
        const char* element;  // namespace of the offered element
        bool accepted;
    } cases[] = {
        // The constraints themselves are the namespace helper's; these rows show that the
        // record passes the constraint and its target namespace on.
        {"##any", "", true}, {"##other", "urn:x", true}, {"##other", "urn:h", false},
        {"##targetNamespace", "urn:h", true}, {"urn:y", "urn:x", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.constraint) + " / " + c.element);
        CElementInfoSeqUntpdMnd any("any", kNs, CHolder::Id_Any, c.constraint, kNs);
        CElementInfo* records[] = {&g_name, &any, nullptr};
        CHolder holder(Parent(XmlElementGroupType_Sequence), records);
        const std::string xml =
            Holder(std::string("<Foo xmlns=\"") + c.element + "\" a=\"1\">t<Bar/></Foo>");
        const Outcome outcome = ReadInto(holder, xml);
        if (c.accepted) {
            EXPECT_EQ(outcome.message, "");
            ASSERT_TRUE(holder.m_any);
            EXPECT_EQ(holder.m_any->GetName(), "Foo");
            EXPECT_EQ(holder.m_any->GetNamespace(), c.element);
            EXPECT_EQ(holder.m_any->GetText(), "t");
            EXPECT_EQ(holder.m_any->GetChildren()->GetItem(0)->GetName(), "Bar");
            EXPECT_EQ(holder.m_any->GetAttributes()->Item(0)->GetValue(), "1");
        } else {
            EXPECT_EQ(outcome.message, "Failed to process the element.\nPath: /Holder");
            EXPECT_EQ(outcome.inner, std::string("Invalid namespace [") + c.element +
                                         "]. The namespace must be one of [" + c.constraint +
                                         "] where the target namespace is [urn:h].");
            EXPECT_FALSE(holder.m_any);
        }
    }
}

TEST(CElementInfoUntpd, MissingMandatoryWildcardNamesTheConstraintAndParentPath) {
    CElementInfoSeqUntpdMnd any("any", kNs, CHolder::Id_Any, "##other", kNs);
    CElementInfo* records[] = {&g_name, &any, nullptr};
    CHolder holder(Parent(XmlElementGroupType_Sequence), records);
    const Outcome outcome = ReadInto(holder, Holder(""));
    EXPECT_EQ(outcome.message,
              "Failed to find the required element from namespace [##other].\nPath: /Holder");
    EXPECT_EQ(outcome.path, "/Holder");

    // Tolerated when asked: the member stays unset, and writing it back is refused.
    CSerializationContext lenient;
    lenient.SetIgnoreMissingMandatoryElements(true);
    CHolder tolerant(Parent(XmlElementGroupType_Sequence), records);
    EXPECT_EQ(ReadInto(tolerant, Holder(""), lenient).message, "");
    EXPECT_EQ(tolerant.m_name, "n");
    EXPECT_FALSE(tolerant.m_any);
    try {
        tolerant.ToXml(false, false);
        ADD_FAILURE() << "writing an unset mandatory wildcard succeeded";
    } catch (const CKxException& e) {
        ASSERT_NE(e.GetInnerException(), nullptr);
        EXPECT_EQ(e.GetInnerException()->GetMessage(),
                  "The Property [any] is mandatory, it may not be NULL");
        EXPECT_EQ(typeid(*e.GetInnerException()), typeid(CKxInvalidParamException));
    }
}

TEST(CElementInfoUntpd, UnknownElementsAreSkippedUntilAnAdmittedOne) {
    CElementInfoSeqUntpdMnd any("any", kNs, CHolder::Id_Any, "##other", kNs);
    CElementInfo* records[] = {&g_name, &any, nullptr};
    CHolder holder(Parent(XmlElementGroupType_Sequence), records);
    CSerializationContext skipping;
    skipping.SetIgnoreUnknownElements(true);
    EXPECT_EQ(ReadInto(holder, Holder("<Own/><x:Foreign/>"), skipping).message, "");
    ASSERT_TRUE(holder.m_any);
    EXPECT_EQ(holder.m_any->GetName(), "Foreign");
}

TEST(CElementInfoUntpd, OptionalWildcardAlsoTakesItsDefaultNamespace) {
    // "##other" with no target namespace: the mandatory form refuses an unqualified element,
    // the optional forms take it because the parent's namespace makes it foreign.
    CElementInfoSeqUntpdMnd mandatory("any", kNs, CHolder::Id_Any, "##other", "");
    CElementInfoSeqUntpdOpt optional("any", kNs, CHolder::Id_Any, "##other", "");
    CElementInfoAllUntpdOpt inAll("any", kNs, CHolder::Id_Any, "##other", "");
    struct Case { const char* name; CElementInfo* record; XmlElementGroupType group;
                  bool accepted; } cases[] = {
        {"sequence mandatory", &mandatory, XmlElementGroupType_Sequence, false},
        {"sequence optional", &optional, XmlElementGroupType_Sequence, true},
        {"all optional", &inAll, XmlElementGroupType_All, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto name = Text<CElementInfoAllPrimMnd>("Name", CHolder::Id_Name);
        CElementInfo* records[] = {
            c.group == XmlElementGroupType_All ? static_cast<CElementInfo*>(&name) : &g_name,
            c.record, nullptr};
        CHolder holder(Parent(c.group), records);
        const Outcome outcome = ReadInto(holder, Holder("<Plain xmlns=\"\"/>"));
        EXPECT_EQ(holder.m_any != nullptr, c.accepted);
        EXPECT_EQ(outcome.message.empty(), c.accepted) << outcome.message;
    }
}

TEST(CElementInfoUntpd, WritingPutsTheElementUnderItsOwnNamespace) {
    CElementInfoSeqUntpdOpt any("any", kNs, CHolder::Id_Any, "##any", kNs);
    CElementInfo* records[] = {&g_name, &any, nullptr};
    CHolder holder(Parent(XmlElementGroupType_Sequence), records);
    holder.m_name = "n";
    EXPECT_EQ(holder.ToXml(false, false),
              "<AA:Holder xmlns:AA=\"urn:h\"><AA:Name>n</AA:Name></AA:Holder>");
    holder.m_any = new CElement("Ext", "urn:x");
    holder.m_any->GetAttributes()->Add("k", "v", "urn:x");
    holder.m_any->GetChildren()->Add("Leaf", "urn:h")->SetText("1");
    const std::string xml = holder.ToXml(false, false);
    EXPECT_EQ(xml,
              "<AA:Holder xmlns:AA=\"urn:h\"><AA:Name>n</AA:Name><AB:Ext xmlns:AB=\"urn:x\" "
              "AB:k=\"v\"><AA:Leaf>1</AA:Leaf></AB:Ext></AA:Holder>");
    CHolder copy(Parent(XmlElementGroupType_Sequence), records);
    EXPECT_EQ(ReadInto(copy, xml).message, "");
    EXPECT_EQ(copy.ToXml(false, false), xml);
}

// A choice branch that finds nothing of its own (a single wildcard, or a collection without
// items) declines with the cursor unchanged, so the next branch reads.
TEST(CElementInfoUntpd, ChoiceBranchDeclinesWithCursorUnchanged) {
    auto name = Text<CElementInfoChoicePrimOpt>("Name", CHolder::Id_Name);
    CElementInfoChoiceUntpdOpt any("any", kNs, CHolder::Id_Any, "##other", kNs);
    CElementInfoChoiceUntpdCol anyCol("any", kNs, CHolder::Id_AnyCol, "##other", kNs);
    struct Case {
        CElementInfo* wildcard;
        const char* content;
        const char* name;
        const char* any;  // the single wildcard's element
        int count;        // items of the collection
    } cases[] = {
        {&any, "<Name>n</Name>", "n", "", 0}, {&any, "<y:Pick xmlns:y=\"urn:y\"/>", "", "Pick", 0},
        {&anyCol, "<Name>n</Name>", "n", "", 0}, {&anyCol, "<x:A/><x:B/>", "", "", 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.content);
        CElementInfo* records[] = {c.wildcard, &name, nullptr};
        CHolder holder(Parent(XmlElementGroupType_Choice), records);
        EXPECT_EQ(ReadInto(holder, Holder(c.content, false)).message, "");
        EXPECT_EQ(holder.m_name, c.name);
        EXPECT_EQ(holder.m_any ? holder.m_any->GetName() : "", c.any);
        EXPECT_EQ(holder.m_anyCol->GetCount(), c.count);
    }
    EXPECT_TRUE(any.IsOptionalChoiceBranch(nullptr));
}

TEST(CElementInfoUntpd, AllGroupValidatesPresence) {
    auto name = Text<CElementInfoAllPrimOpt>("Name", CHolder::Id_Name);
    CElementInfoAllUntpdMnd mandatory("any", kNs, CHolder::Id_Any, "##other", kNs);
    CElementInfoAllUntpdOpt optional("any", kNs, CHolder::Id_Any, "##other", kNs);
    CElementInfoAllUntpdCol repeated("any", kNs, CHolder::Id_AnyCol, "##other", kNs);
    struct Case {
        const char* name;
        CElementInfo* record;
        const char* content;
        const char* message;
        int items;  // in the collection member
    } cases[] = {
        {"mandatory present after", &mandatory, "<Name>n</Name><x:W/>", "", 0},
        {"mandatory present before", &mandatory, "<x:W/><Name>n</Name>", "", 0},
        {"mandatory absent", &mandatory, "<Name>n</Name>",
         "Failed to find the mandatory element [any].", 0},
        {"optional absent", &optional, "<Name>n</Name>", "", 0},
        {"collection around the other member", &repeated, "<x:A/><Name>n</Name><x:B/>", "", 2},
        {"collection absent", &repeated, "<Name>n</Name>", "", 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        CElementInfo* records[] = {&name, c.record, nullptr};
        CHolder holder(Parent(XmlElementGroupType_All), records);
        const Outcome outcome = ReadInto(holder, Holder(c.content, false));
        EXPECT_EQ(outcome.message.empty() ? outcome.message : outcome.inner, c.message);
        EXPECT_EQ(holder.m_name, "n");
        EXPECT_EQ(holder.m_anyCol->GetCount(), c.items);
    }
}

TEST(CElementInfoUntpd, CollectionReadsConsecutiveAdmittedElementsWithinBounds) {
    CElementInfoSeqUntpdCol seq("any", kNs, CHolder::Id_AnyCol, "##other", kNs);
    CElementInfoChoiceUntpdCol choice("any", kNs, CHolder::Id_AnyCol, "##other", kNs);
    struct Case {
        const char* name;
        CElementInfo* record;
        const char* content;
        int count;
        const char* tail;
        const char* error;  // inner message when reading fails
    } cases[] = {
        {"sequence run then own element", &seq, "<x:A/><x:B/><Tail>t</Tail>", 2, "t", ""},
        {"sequence no item", &seq, "<Tail>t</Tail>", 0, "t", ""},
        {"sequence above the maximum", &seq, "<x:A/><x:B/><x:C/>", 3, "",
         "The Maximum number of [] elements allowed in this collection is 2"},
        {"choice run", &choice, "<x:A/>", 1, "", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        CElementInfo* records[] = {&g_name, c.record, &g_tail, nullptr};
        CHolder holder(Parent(XmlElementGroupType_Sequence), records);
        const Outcome outcome = ReadInto(holder, Holder(c.content));
        EXPECT_EQ(outcome.inner, c.error);
        EXPECT_EQ(holder.m_anyCol->GetCount(), c.count);
        EXPECT_EQ(holder.m_tail, c.tail);
        if (c.count > 0) {
            EXPECT_EQ(holder.m_anyCol->GetItem(0)->GetName(), "A");
        }
    }
}

TEST(CXmlObjectBase, FromXmlElementReadsTheUntypedSubtree) {
    CElement line("Line", "urn:bench:orders");
    line.GetAttributes()->Add("id", "L9", "");
    line.GetChildren()->Add("Sku", "urn:bench:orders")->SetText("AB-1");
    line.GetChildren()->Add("Quantity", "urn:bench:orders")->SetText("4");
    line.GetChildren()->Add("Tag", "urn:bench:orders")->SetText("red");
    KxExamples::CLine bound;
    bound.FromXmlElement(&line);
    EXPECT_EQ(bound.m_id, "L9");
    EXPECT_EQ(bound.m_sku, "AB-1");
    EXPECT_EQ(bound.m_quantity, 4);
    ASSERT_EQ(bound.m_tags->GetCount(), 1);
    EXPECT_EQ(bound.m_tags->Item(0), "red");

    // The same failures, with the same paths, as reading the text of that element.
    line.GetChildren()->Remove(0);
    KxExamples::CLine missing;
    KxTest::ExpectKxError<CKxException>(
        [&] { missing.FromXmlElement(&line); },
        "Failed to find the required child element [Sku].\nPath: /Line");
}
