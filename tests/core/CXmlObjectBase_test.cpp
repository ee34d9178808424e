#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

// Counts its own destructions so that tests can see exactly when an object dies.
class Counted : public CXmlObjectBase {
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
