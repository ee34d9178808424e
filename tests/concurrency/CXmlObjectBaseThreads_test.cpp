// The reference count of one bindable object raised and lowered from several threads at once,
// directly and through the library's holders (smart pointers, variants, collections): the count
// must come out exact and the object must be destroyed exactly once, by the last release.
#include <atomic>
#include <string>

#include <gtest/gtest.h>

#include "KxXmlLib16.h"
#include "OrderBindings.h"
#include "ThreadTestSupport.h"

using namespace KxXmlLib16;
using KxThreadTest::kThreads;
using KxThreadTest::RunTogether;

namespace {

// A generated class that counts its destructions.
class CCountedLine : public KxOrders::CLine {
public:
    explicit CCountedLine(std::atomic<int>& deaths) : m_deaths(deaths) {
        m_sku = "SKU-1";
        m_hasSku = true;
    }
    ~CCountedLine() override { m_deaths.fetch_add(1); }

private:
    std::atomic<int>& m_deaths;
};

// Ways of taking and dropping references to a line; each returns a fault or "".
struct Holder {
    const char* name;
    std::string (*hold)(KxOrders::CLine* line);
};

const Holder kHolders[] = {
    {"AddRef and Release",
     [](KxOrders::CLine* line) -> std::string {
         const long long raised = line->AddRef();
         const long long lowered = line->Release();
         // Whoever started the test still holds one reference.
         if (raised < 2 || lowered < 1) return "a count fell below the references held";
         return "";
     }},
    {"smart pointers",
     [](KxOrders::CLine* line) -> std::string {
         CSmartPtr<KxOrders::CLine> first(line);
         CSmartPtr<KxOrders::CLine> second = first;
         CSmartPtr<CXmlObjectBase> base(second);
         return base->GetElementName() == "Line" ? "" : "the object's name changed";
     }},
    {"variants",
     [](KxOrders::CLine* line) -> std::string {
         KxVariant value;
         value.SetXmlObject(line);
         KxVariant copy;
         copy = value;
         CXmlObjectBase* got = copy.GetXmlObject();
         const bool same = got == line;
         got->Release();
         return same ? "" : "the variant holds another object";
     }},
    {"collection",
     [](KxOrders::CLine* line) -> std::string {
         KxOrders::CLineCol lines;
         lines.Add(line);
         lines.Add(line);
         const bool held = lines.GetCount() == 2 && lines.Item(1) == line;
         lines.Clear();
         return held ? "" : "the collection does not hold the line";
     }},
};
const int kHolderCount = static_cast<int>(sizeof(kHolders) / sizeof(kHolders[0]));

}  // namespace

TEST(CXmlObjectBase, ReferencesTakenAndDroppedOnEightThreadsKeepTheCountExact) {
    std::atomic<int> deaths{0};
    KxOrders::CLine* line = new CCountedLine(deaths);
    ASSERT_EQ(1, line->AddRef());
    const int rounds = 20000;

    RunTogether(kThreads, [&](int thread) -> std::string {
        for (int i = 0; i < rounds; ++i) {
            const Holder& holder = kHolders[(thread + i) % kHolderCount];
            const std::string fault = holder.hold(line);
            if (!fault.empty()) return std::string(holder.name) + ": " + fault;
        }
        return "";
    });

    EXPECT_EQ(1, line->GetRefCount());
    EXPECT_EQ(0, deaths.load());
    EXPECT_EQ(0, line->Release());
    EXPECT_EQ(1, deaths.load());
}

TEST(CXmlObjectBase, LastReleaseOnAnyThreadDestroysTheObjectOnce) {
    const int rounds = 300;
    std::atomic<int> deaths{0};
    for (int round = 0; round < rounds; ++round) {
        KxOrders::CLine* line = new CCountedLine(deaths);
        // One reference per thread; the threads drop theirs while the others are still busy.
        for (int t = 0; t < kThreads; ++t) line->AddRef();
        std::atomic<int> zeroes{0};
        RunTogether(kThreads, [&](int thread) -> std::string {
            std::string fault;
            for (int i = 0; i < 20 && fault.empty(); ++i) {
                fault = kHolders[(thread + i) % kHolderCount].hold(line);
            }
            if (line->m_sku != "SKU-1") fault = "the line changed before it was released";
            if (line->Release() == 0) zeroes.fetch_add(1);
            return fault;
        });
        ASSERT_EQ(1, zeroes.load()) << "round " << round;
        ASSERT_EQ(round + 1, deaths.load()) << "round " << round;
    }
}
