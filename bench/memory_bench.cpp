// Peak memory of large documents: the streamed write (AsyncToXmlFile(true)) of an order
// document of SIZE_MB megabytes, and the read of that file through a CXmlDocument whose element
// filter drops each completed order.
//   kx_bench_memory [SIZE_MB]            (default 64; scripts/bench.sh --memory SIZE_MB)
// The objects come from the shared generator's document (a few MB): its orders are appended to
// one collection again and again until the document written from it reaches SIZE_MB, so the
// objects stay small whatever the size, and they are measured apart from what the write adds.
// Each figure is the peak resident size an operation adds: the heap is trimmed, the peak reset
// (/proc/self/clear_refs) and read back after the operation. Up to 256 MB the write built in
// memory and the unfiltered read are measured too, for contrast.
#include <unistd.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "BenchSupport.h"
#include "KxXmlLib16.h"
#include "OrderBindings.h"
#include "PeakMemory.h"

using namespace KxXmlLib16;
using KxOrders::COrder;
using KxOrders::COrders;

namespace {

const double kMb = 1024.0 * 1024.0;

struct Row {
    std::string operation;
    double documentMb;
    long addedBytes;
    std::string note;
};

void PrintRow(const Row& row) {
    if (row.addedBytes < 0) {
        std::printf("%-34s %12.1f %14s  %s\n", row.operation.c_str(), row.documentMb, "n/a",
                    row.note.c_str());
    } else {
        std::printf("%-34s %12.1f %14.2f  %s\n", row.operation.c_str(), row.documentMb,
                    row.addedBytes / kMb, row.note.c_str());
    }
}

// Reads `path` through a document that drops every completed Order element; returns how many
// were dropped.
long ReadFiltered(const std::string& path) {
    long dropped = 0;
    CXmlDocument document([&dropped](CXmlElement* element) {
        if (element->GetLocalName() != "Order") return false;
        ++dropped;
        return true;
    });
    document.Load(path.c_str());
    return dropped;
}

}  // namespace

int main(int argc, char** argv) {
    const int sizeMb = argc > 1 ? std::atoi(argv[1]) : 64;
    if (sizeMb <= 0) {
        std::fprintf(stderr, "usage: kx_bench_memory [SIZE_MB]\n");
        return 2;
    }
    std::setlocale(LC_ALL, "C.UTF-8");
    const std::string path = "/tmp/kx_bench_memory_" + std::to_string(getpid()) + ".xml";
    std::vector<Row> rows;
    try {
        KxTest::ResetPeakResident();
        const long before = KxTest::ResidentBytes();
        CSmartPtr<COrders> base(new COrders());
        {
            std::string failure;
            const std::string xml = KxBench::GenerateOrdersDocument(sizeMb < 4 ? sizeMb : 4, failure);
            if (xml.empty()) {
                std::fprintf(stderr, "kx_bench_memory: %s\n", failure.c_str());
                return 1;
            }
            base->FromXml(xml.c_str());
        }
        const double baseBytes = static_cast<double>(base->ToXml().size());
        const long repeats = static_cast<long>(sizeMb * kMb / baseBytes) + 1;
        const int distinct = base->m_orders->GetCount();
        CSmartPtr<COrders> orders(new COrders());
        for (long r = 0; r < repeats; ++r) {
            for (int i = 0; i < distinct; ++i) orders->m_orders->Add(base->m_orders->Item(i));
        }
        KxTest::ResetPeakResident();
        rows.push_back({"objects (" + std::to_string(distinct) + " orders x " +
                            std::to_string(repeats) + ")",
                        0, KxTest::ResidentBytes() - before, "held during the write"});

        AsyncToXmlFile(true);
        const long streamed =
            KxTest::PeakResidentAddedBy([&] { orders->ToXmlFile(path.c_str()); });
        AsyncToXmlFile(false);
        const double documentMb = KxTest::FileSize(path) / kMb;
        rows.push_back({"ToXmlFile, AsyncToXmlFile(true)", documentMb, streamed, ""});
        if (sizeMb <= 256) {
            rows.push_back({"ToXmlFile, built in memory", documentMb,
                            KxTest::PeakResidentAddedBy([&] { orders->ToXmlFile(path.c_str()); }),
                            "contrast"});
        }
        const long expectedOrders = orders->m_orders->GetCount();
        orders = nullptr;
        base = nullptr;

        long dropped = 0;
        const long filtered = KxTest::PeakResidentAddedBy([&] { dropped = ReadFiltered(path); });
        rows.push_back({"Load with a filter dropping Order", documentMb, filtered,
                        dropped == expectedOrders ? std::to_string(dropped) + " orders dropped"
                                                  : "WRONG COUNT " + std::to_string(dropped)});
        if (sizeMb <= 256) {
            rows.push_back({"Load without a filter", documentMb,
                            KxTest::PeakResidentAddedBy([&] {
                                CXmlDocument document;
                                document.Load(path.c_str());
                            }),
                            "contrast"});
        }
    } catch (const CKxException& e) {
        std::fprintf(stderr, "kx_bench_memory: %s\n", e.GetFullMessage().c_str());
        std::remove(path.c_str());
        return 1;
    }
    std::remove(path.c_str());

    std::printf("%-34s %12s %14s\n", "operation", "document MB", "added peak MB");
    for (const Row& row : rows) PrintRow(row);
    return 0;
}
