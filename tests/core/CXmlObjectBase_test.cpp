#include <gtest/gtest.h>

#include <functional>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

// Counts its own destructions so that tests can see exactly when an object dies.
class Counted : public KxTest::Inert<CXmlObjectBase> {
public:
    explicit Counted(int* deaths) : m_deaths(deaths) {}
    ~Counted() override { ++*m_deaths; }
    CXmlObjectBase* Clone() const override { return new Counted(*this); }

private:
    int* m_deaths;
};

}  // namespace

TEST(CXmlObjectBase, ReleaseOfTheLastReferenceDestroysTheObject) {
    int deaths = 0;
    Counted* object = new Counted(&deaths);
    EXPECT_EQ(0, object->GetRefCount());
    EXPECT_EQ(1, object->AddRef());
    EXPECT_EQ(2, object->AddRef());
    EXPECT_EQ(1, object->Release());
    EXPECT_EQ(0, deaths);
    EXPECT_EQ(0, object->Release());
    EXPECT_EQ(1, deaths);
}

TEST(CXmlObjectBase, CloneAndCopyStartWithTheirOwnCount) {
    int deaths = 0;
    CSmartPtr<CXmlObjectBase> original(new Counted(&deaths));
    original->SetElementName("Order");
    CSmartPtr<CXmlObjectBase> copy(original->Clone());
    EXPECT_EQ(1, original->GetRefCount());
    EXPECT_EQ(1, copy->GetRefCount());
    EXPECT_EQ("Order", copy->GetElementName());
    copy = nullptr;
    EXPECT_EQ(1, deaths);
    original->SetElementName(nullptr);
    EXPECT_EQ("", original->GetElementName());
}

TEST(CSmartPtr, CopiesAssignmentsAndSelfAssignmentKeepTheCountRight) {
    int deaths = 0;
    Counted* raw = new Counted(&deaths);
    {
        CSmartPtr<Counted> first(raw);
        CSmartPtr<Counted> second(first);
        EXPECT_EQ(2, raw->GetRefCount());
        second = second;
        EXPECT_EQ(2, raw->GetRefCount());
        CSmartPtr<CXmlObjectBase> widened(first);
        EXPECT_EQ(3, raw->GetRefCount());
        CSmartPtr<Counted> moved(std::move(first));
        EXPECT_EQ(nullptr, first);
        EXPECT_EQ(3, raw->GetRefCount());
        second = nullptr;
        EXPECT_EQ(2, raw->GetRefCount());
        EXPECT_EQ(raw, moved.Ptr());
    }
    EXPECT_EQ(1, deaths);
}

TEST(CXmlObjectBase, CountsStayExactUnderConcurrentAddRefAndRelease) {
    int deaths = 0;
    CSmartPtr<Counted> keeper(new Counted(&deaths));
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([&keeper] {
            for (int i = 0; i < 10000; ++i) {
                CSmartPtr<Counted> local(keeper);
                local->AddRef();
                local->Release();
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(1, keeper->GetRefCount());
    EXPECT_EQ(0, deaths);
    keeper = nullptr;
    EXPECT_EQ(1, deaths);
}

TEST(CXmlObjectBase, ChoiceHelpersKeepOneBranchAtATime) {
    enum Helper { Select, Changed, Valid, Read };
    const int item = 1;
    const int* set = &item;
    const int* null = nullptr;
    const char* bracketed =
        "The Property [Card] is already set. Only one element within this class bay be set at a "
        "time";
    const char* plain =
        "The Property Card is already set. Only one element within this class bay be set at a "
        "time";
    struct Case {
        Helper helper;
        const char* name;
        const int* value;  // Choice_SelectElement
        int number;        // item count, or valid as 0/1
        const char* before;
        const char* after;  // "" when the helper must throw...
        const char* error;  // ...this message (null: no error)
    };
    const Case cases[] = {
        {Select, "Card", set, 0, "", "Card", nullptr},
        {Select, "Card", null, 0, "", "Card", nullptr},  // an empty current is taken anyway
        {Select, "Card", set, 0, "Card", "Card", nullptr},
        {Select, "Card", null, 0, "Card", "", nullptr},
        {Select, "Invoice", set, 0, "Card", "Card", bracketed},
        {Select, "Invoice", null, 0, "Card", "Card", nullptr},
        {Changed, "Tag", nullptr, 2, "", "Tag", nullptr},
        {Changed, "Tag", nullptr, 0, "", "", nullptr},
        {Changed, "Tag", nullptr, 0, "Tag", "", nullptr},
        {Changed, "Tag", nullptr, 3, "Tag", "Tag", nullptr},
        {Changed, "Tag", nullptr, 1, "Card", "Card", bracketed},
        {Changed, "Tag", nullptr, 0, "Card", "Card", nullptr},
        {Valid, "Card", nullptr, 0, "Invoice", "", nullptr},
        {Valid, "Card", nullptr, 1, "Card", "Card", nullptr},
        {Valid, "Card", nullptr, 1, "", "Card", nullptr},
        {Valid, "Invoice", nullptr, 1, "Card", "Card", plain},
        {Read, "Tag", nullptr, 2, "Card", "Tag", nullptr},
        {Read, "Tag", nullptr, 0, "Tag", "", nullptr},
        {Read, "Tag", nullptr, 0, "Card", "Card", nullptr},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(testing::Message() << "helper " << row.helper << " " << row.name << " "
                                        << row.number << " from [" << row.before << "]");
        std::string current = row.before;
        auto run = [&] {
            switch (row.helper) {
                case Select:
                    CXmlObjectBase::Choice_SelectElement(row.name, row.value, current);
                    break;
                case Changed:
                    CXmlObjectBase::Choice_CollectionChanged(row.name, row.number, current);
                    break;
                case Valid:
                    CXmlObjectBase::Choice_SetElementValid(row.number != 0, row.name, current);
                    break;
                case Read:
                    CXmlObjectBase::Choice_Read_Collection(row.name, row.number, current);
                    break;
            }
        };
        if (row.error) {
            KxTest::ExpectKxError<CKxInvalidStateException>(run, row.error);
        } else {
            run();
        }
        EXPECT_EQ(row.after, current);
    }
}

TEST(CXmlObjectBase, SetterChecksNameTheProperty) {
    int deaths = 0;
    CSmartPtr<Counted> line(new Counted(&deaths));
    line->SetElementName("Line");
    const int value = 0;
    CXmlObjectBase::Throw_IfPropertyIsNull(&value, "Total");
    CXmlObjectBase::Throw_IfElementNameDiffers(line, "Line");
    CXmlObjectBase::Throw_IfElementNameDiffers(nullptr, "Line");
    KxTest::ExpectKxError<CKxInvalidParamException>(
        [] { CXmlObjectBase::Throw_IfPropertyIsNull(nullptr, "Total"); },
        "The Property [Total] is mandatory, it may node be NULL");
    KxTest::ExpectKxError<CKxInvalidParamException>(
        [&] { CXmlObjectBase::Throw_IfElementNameDiffers(line, "Item"); },
        "This property requires an element with the name Item the element being set has the "
        "element name Line");
}

namespace {

struct Recorder : IEventSink {
    void OnEvent(CXmlObjectBase* source, MsgType type, void* data) override {
        sources.push_back(source);
        types.push_back(type);
        datas.push_back(data);
        const bool remove =
            type == MsgType_CollectionRemove || type == MsgType_CollectionRemoveComplete;
        indexes.push_back(remove ? *static_cast<int*>(data) : 0);
    }
    std::vector<CXmlObjectBase*> sources;
    std::vector<IEventSink::MsgType> types;
    std::vector<void*> datas;
    std::vector<int> indexes;
};

}  // namespace

TEST(CXmlObjectBase, EventHelpersCallTheSinkWithTheCollectionAndTheData) {
    int deaths = 0;
    CSmartPtr<Counted> collection(new Counted(&deaths));
    int item = 0;
    Recorder sink;
    struct Case {
        std::function<void(IEventSink*)> fire;
        IEventSink::MsgType type;
        void* data;  // null for the remove messages, which carry the index instead
        int index;
    };
    const Case cases[] = {
        {[&](IEventSink* s) { CXmlObjectBase::FireOnCollectionChangeEvent(s, collection); },
         IEventSink::MsgType_CollectionChange, nullptr, 0},
        {[&](IEventSink* s) { CXmlObjectBase::FireOnCollectionAddEvent(s, collection, &item); },
         IEventSink::MsgType_CollectionAdd, &item, 0},
        {[&](IEventSink* s) {
             CXmlObjectBase::FireOnCollectionAddCompleteEvent(s, collection, &item); },
         IEventSink::MsgType_CollectionAddComplete, &item, 0},
        {[&](IEventSink* s) { CXmlObjectBase::FireOnCollectionRemoveEvent(s, collection, -1); },
         IEventSink::MsgType_CollectionRemove, nullptr, -1},
        {[&](IEventSink* s) {
             CXmlObjectBase::FireOnCollectionRemoveCompleteEvent(s, collection, 7); },
         IEventSink::MsgType_CollectionRemoveComplete, nullptr, 7},
    };
    for (size_t i = 0; i < std::size(cases); ++i) {
        SCOPED_TRACE(i);
        cases[i].fire(nullptr);  // no sink: nothing happens
        cases[i].fire(&sink);
        ASSERT_EQ(i + 1, sink.types.size());
        EXPECT_EQ(collection.Ptr(), sink.sources[i]);
        EXPECT_EQ(cases[i].type, sink.types[i]);
        if (cases[i].index == 0) {
            EXPECT_EQ(cases[i].data, sink.datas[i]);
        }
        EXPECT_EQ(cases[i].index, sink.indexes[i]);
    }
    // The object's own hook does nothing by default.
    collection->OnEvent(collection, IEventSink::MsgType_CollectionChange, nullptr);
    EXPECT_EQ(1, collection->GetRefCount());
}

TEST(CXmlObjectBase, NamespaceTestsTakeCharacterPointers) {
    struct Case {
        const char* ns;
        const char* constraint;
        const char* target;
        bool valid;
    };
    const Case cases[] = {
        {"urn:a", "##any", "urn:t", true}, {"urn:t", "##other", "urn:t", false},
        {nullptr, "##local", nullptr, true}, {"urn:a", nullptr, "", false},
        {nullptr, nullptr, nullptr, true},  // the empty namespace passes a URI constraint
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(testing::Message() << (row.ns ? row.ns : "null") << " / "
                                        << (row.constraint ? row.constraint : "null"));
        EXPECT_EQ(row.valid, CXmlObjectBase::IsNamespaceValid(row.ns, row.constraint, row.target));
        if (row.valid) {
            EXPECT_TRUE(CXmlObjectBase::TestNamespace(row.ns, row.constraint, row.target));
        } else {
            EXPECT_THROW(CXmlObjectBase::TestNamespace(row.ns, row.constraint, row.target),
                         CKxInvalidNamespaceException);
        }
    }
    CXmlDocument document;
    document.LoadXml("<p:Order xmlns:p='urn:o'/>");
    const CXmlElement* root = document.GetDocumentElement();
    const CSerializationContext& ctx = CSerializationContext::m_defaultContext;
    EXPECT_TRUE(CXmlObjectBase::DoesElementNameMatch(ctx, root, "Order", "urn:o"));
    EXPECT_FALSE(CXmlObjectBase::DoesElementNameMatch(ctx, root, "Order", nullptr));
    EXPECT_FALSE(CXmlObjectBase::DoesElementNameMatch(ctx, root, nullptr, "urn:o"));
}

TEST(CXmlObjectBase, StreamingFileOutputIsOffUntilSwitchedOn) {
    EXPECT_FALSE(GetAsyncToXmlFile());
    AsyncToXmlFile(true);
    EXPECT_TRUE(GetAsyncToXmlFile());
    AsyncFromXmlFile(true);  // accepted and ignored
    AsyncToXmlFile(false);
    EXPECT_FALSE(GetAsyncToXmlFile());
}
