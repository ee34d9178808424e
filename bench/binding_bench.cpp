// Reading and writing the order bindings, next to the tree alone and expat, in one run:
//   kx_bench_binding
// The document (about 10 MB) comes from the shared generator at benchmark time. The runs are
//   Binding/ExpatTrivial     expat with element and character-data handlers that count
//   Binding/Tree             CXmlDocument::LoadXmlStream from memory, the tree built and freed
//   Binding/FromXmlStream    COrders::FromXmlStream: the tree, then the objects bound from it
//   Binding/FromXml          COrders::FromXml from the narrow text
//   Binding/ToXml            COrders::ToXml, formatted, of the bound document
// all under a UTF-8 locale (strings are held in the local code page). Before timing, the bound
// document is checked: as many orders as its count attribute says, as many lines as the text
// has, and a write/read round trip giving equal objects. The ratios of binding to tree and to
// expat are printed at the end.
#include <benchmark/benchmark.h>

#include <clocale>
#include <cstdio>
#include <map>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "BenchSupport.h"
#include "KxXmlLib16.h"
#include "OrderBindings.h"

using namespace KxXmlLib16;
using KxOrders::COrders;

namespace {

const int kSizeMb = 10;

size_t CountOccurrences(const std::string& text, const char* needle) {
    size_t count = 0;
    for (size_t at = text.find(needle); at != std::string::npos; at = text.find(needle, at + 1))
        ++count;
    return count;
}

// Whether the bindings read the whole document and give it back unchanged.
std::string CheckBinding(const std::string& xml) {
    try {
        COrders orders;
        orders.FromXml(xml.c_str());
        const int count = orders.m_orders->GetCount();
        if (!orders.m_hasCount || orders.m_count != count) return "the order count differs";
        size_t lines = 0;
        for (int i = 0; i < count; ++i) lines += orders.m_orders->Item(i)->m_lines->GetCount();
        if (lines != CountOccurrences(xml, "<Line ")) return "the line count differs";
        COrders again;
        again.FromXml(orders.ToXml().c_str());
        if (!(again == orders)) return "the round trip changed the objects";
    } catch (const CKxException& e) {
        return "reading failed: " + e.GetFullMessage();
    }
    return std::string();
}

// The generated document, or empty with `error` set.
const std::string& Document(std::string& error) {
    static std::string document;
    static std::string failure;
    static bool done = false;
    if (!done) {
        done = true;
        document = KxBench::GenerateOrdersDocument(kSizeMb, failure);
        if (!document.empty()) {
            failure = CheckBinding(document);
            if (!failure.empty()) document.clear();
        }
    }
    error = failure;
    return document;
}

// The document for a run, or null after skipping the run with the reason.
const std::string* Input(benchmark::State& state) {
    std::string error;
    const std::string& xml = Document(error);
    if (xml.empty()) {
        state.SkipWithError(error.c_str());
        return nullptr;
    }
    return &xml;
}

void SetBytes(benchmark::State& state, size_t bytes) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(bytes));
}

void BM_ExpatTrivial(benchmark::State& state) {
    const std::string* xml = Input(state);
    if (!xml) return;
    for (auto _ : state) {
        KxBench::ExpatCounts counts;
        if (!KxBench::ParseWithExpat(*xml, true, counts)) {
            state.SkipWithError("expat rejected the document");
            return;
        }
        benchmark::DoNotOptimize(counts);
    }
    SetBytes(state, xml->size());
}

void BM_Tree(benchmark::State& state) {
    const std::string* xml = Input(state);
    if (!xml) return;
    for (auto _ : state) {
        CXmlDocument document;
        document.LoadXmlStream(reinterpret_cast<const unsigned char*>(xml->data()),
                               static_cast<unsigned long>(xml->size()));
        benchmark::DoNotOptimize(document.GetDocumentElement());
    }
    SetBytes(state, xml->size());
}

void BM_FromXmlStream(benchmark::State& state) {
    const std::string* xml = Input(state);
    if (!xml) return;
    for (auto _ : state) {
        COrders orders;
        orders.FromXmlStream(reinterpret_cast<const unsigned char*>(xml->data()),
                             static_cast<unsigned long>(xml->size()));
        benchmark::DoNotOptimize(orders.m_orders->GetCount());
    }
    SetBytes(state, xml->size());
}

void BM_FromXml(benchmark::State& state) {
    const std::string* xml = Input(state);
    if (!xml) return;
    for (auto _ : state) {
        COrders orders;
        orders.FromXml(xml->c_str());
        benchmark::DoNotOptimize(orders.m_orders->GetCount());
    }
    SetBytes(state, xml->size());
}

void BM_ToXml(benchmark::State& state) {
    const std::string* xml = Input(state);
    if (!xml) return;
    COrders orders;
    orders.FromXml(xml->c_str());
    size_t written = 0;
    for (auto _ : state) {
        const std::string text = orders.ToXml();
        written = text.size();
        benchmark::DoNotOptimize(text.data());
    }
    SetBytes(state, written);
}

BENCHMARK(BM_ExpatTrivial)->Name("Binding/ExpatTrivial")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Tree)->Name("Binding/Tree")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FromXmlStream)->Name("Binding/FromXmlStream")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FromXml)->Name("Binding/FromXml")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ToXml)->Name("Binding/ToXml")->Unit(benchmark::kMillisecond);

// The console output, then the binding runs set against the tree and expat (CPU time).
class RatioReporter : public KxBench::TimeKeepingReporter {
public:
    void Finalize() override {
        ConsoleReporter::Finalize();
        const double tree = Time("Binding/Tree");
        const double expat = Time("Binding/ExpatTrivial");
        for (const char* binding : {"Binding/FromXmlStream", "Binding/FromXml"}) {
            const double time = Time(binding);
            if (time <= 0) continue;
            std::ostream& out = GetOutputStream();
            if (tree > 0) {
                out << binding << " / Binding/Tree = " << time / tree << "\n";
                out << "(" << binding << " - Binding/Tree) / Binding/Tree = "
                    << (time - tree) / tree << "\n";
            }
            if (expat > 0) out << binding << " / Binding/ExpatTrivial = " << time / expat << "\n";
        }
    }

};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    if (std::setlocale(LC_ALL, "C.UTF-8") == nullptr) {
        std::fprintf(stderr, "the C.UTF-8 locale is not available\n");
        return 1;
    }
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
