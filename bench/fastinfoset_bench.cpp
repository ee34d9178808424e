// Writing and reading the order bindings as Fast Infoset next to XML text, in one run:
//   kx_bench_fastinfoset
// The document (about 10 MB of XML) comes from the shared generator at benchmark time and is
// bound into COrders once. The runs are
//   Fi/ToXmlStream            COrders::ToXmlStream, formatted, with the XML declaration
//   Fi/ToFastInfoset          COrders::ToFastInfosetStream, default options (every value a
//                             UTF-8 string)
//   Fi/ToFastInfosetSuggested the same after SetSuggestedValues (numbers, booleans and dates
//                             as encoding algorithms and restricted alphabets)
//   Fi/FromXmlStream          COrders::FromXmlStream of the bytes ToXmlStream wrote
//   Fi/FromFastInfoset        COrders::FromXmlStream of the bytes ToFastInfoset wrote
//   Fi/FromFastInfosetSuggested  the same for the ToFastInfosetSuggested bytes
// all under a UTF-8 locale (strings are held in the local code page). Bytes processed are
// those of the document written or read. Before timing, each form is checked to read back into
// objects equal to the bound ones. At the end the sizes (and Fast Infoset against XML) and the
// time ratios are printed; the targets are a Fast Infoset read at least 1.5 times faster than
// the XML read, and a Fast Infoset document at least 30% smaller than the XML text.
#include <benchmark/benchmark.h>

#include <clocale>
#include <cstdio>
#include <memory>
#include <ostream>
#include <string>

#include "BenchSupport.h"
#include "KxXmlLib16.h"
#include "OrderBindings.h"

using namespace KxXmlLib16;
using KxOrders::COrders;

namespace {

const int kSizeMb = 10;

// The bound orders and the documents written from them, made once for every run.
struct Inputs {
    std::unique_ptr<COrders> orders;
    CSerializationContext suggested;  // Fast Infoset with the suggested value encodings
    CBinaryData xml;
    CBinaryData xmlCompact;  // without indentation: the size only
    CBinaryData fi;
    CBinaryData fiSuggested;
    std::string failure;
};

// A failure message when `bytes` do not read back into objects equal to `orders`.
std::string CheckReadBack(const COrders& orders, const CBinaryData& bytes,
                          const CSerializationContext& ctx, const char* what) {
    COrders back;
    back.FromXmlStream(bytes, ctx);
    if (!(back == orders)) return std::string("the ") + what + " round trip changed the objects";
    return std::string();
}

void Prepare(Inputs& inputs) {
    const std::string generated = KxBench::GenerateOrdersDocument(kSizeMb, inputs.failure);
    if (generated.empty()) return;
    try {
        inputs.suggested.GetFIContext()->SetSuggestedValues();
        inputs.orders.reset(new COrders);
        inputs.orders->FromXml(generated.c_str());
        if (inputs.orders->m_orders->GetCount() == 0) {
            inputs.failure = "the generated document has no orders";
            return;
        }
        const COrders& orders = *inputs.orders;
        inputs.xml = orders.ToXmlStream();
        inputs.xmlCompact = orders.ToXmlStream(true, false);
        inputs.fi = orders.ToFastInfosetStream();
        inputs.fiSuggested = orders.ToFastInfosetStream(FInfoDecl_None, inputs.suggested);
        const CSerializationContext& plain = CSerializationContext::m_defaultContext;
        inputs.failure = CheckReadBack(orders, inputs.xml, plain, "XML");
        if (inputs.failure.empty())
            inputs.failure = CheckReadBack(orders, inputs.fi, plain, "Fast Infoset");
        if (inputs.failure.empty()) {
            inputs.failure =
                CheckReadBack(orders, inputs.fiSuggested, inputs.suggested, "suggested Fast Infoset");
        }
    } catch (const CKxException& e) {
        inputs.failure = "preparing failed: " + e.GetFullMessage();
    }
}

// The inputs, prepared on the first call.
const Inputs& Shared() {
    static Inputs inputs;
    static bool done = false;
    if (!done) {
        done = true;
        Prepare(inputs);
    }
    return inputs;
}

// The inputs for a run, or null after skipping the run with the reason.
const Inputs* Input(benchmark::State& state) {
    const Inputs& inputs = Shared();
    if (!inputs.failure.empty()) {
        state.SkipWithError(inputs.failure.c_str());
        return nullptr;
    }
    return &inputs;
}

void SetBytes(benchmark::State& state, unsigned long bytes) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(bytes));
}

void BM_ToXmlStream(benchmark::State& state) {
    const Inputs* in = Input(state);
    if (!in) return;
    for (auto _ : state) {
        const CBinaryData bytes = in->orders->ToXmlStream();
        benchmark::DoNotOptimize(bytes.GetData());
    }
    SetBytes(state, in->xml.GetLength());
}

void BM_ToFastInfoset(benchmark::State& state) {
    const Inputs* in = Input(state);
    if (!in) return;
    for (auto _ : state) {
        const CBinaryData bytes = in->orders->ToFastInfosetStream();
        benchmark::DoNotOptimize(bytes.GetData());
    }
    SetBytes(state, in->fi.GetLength());
}

void BM_ToFastInfosetSuggested(benchmark::State& state) {
    const Inputs* in = Input(state);
    if (!in) return;
    for (auto _ : state) {
        const CBinaryData bytes = in->orders->ToFastInfosetStream(FInfoDecl_None, in->suggested);
        benchmark::DoNotOptimize(bytes.GetData());
    }
    SetBytes(state, in->fiSuggested.GetLength());
}

// Reads `bytes` into fresh objects on every iteration.
void ReadRun(benchmark::State& state, const CBinaryData& bytes,
             const CSerializationContext& ctx) {
    for (auto _ : state) {
        COrders orders;
        orders.FromXmlStream(bytes, ctx);
        benchmark::DoNotOptimize(orders.m_orders->GetCount());
    }
    SetBytes(state, bytes.GetLength());
}

void BM_FromXmlStream(benchmark::State& state) {
    const Inputs* in = Input(state);
    if (in) ReadRun(state, in->xml, CSerializationContext::m_defaultContext);
}

void BM_FromFastInfoset(benchmark::State& state) {
    const Inputs* in = Input(state);
    if (in) ReadRun(state, in->fi, CSerializationContext::m_defaultContext);
}

void BM_FromFastInfosetSuggested(benchmark::State& state) {
    const Inputs* in = Input(state);
    if (in) ReadRun(state, in->fiSuggested, in->suggested);
}

BENCHMARK(BM_ToXmlStream)->Name("Fi/ToXmlStream")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ToFastInfoset)->Name("Fi/ToFastInfoset")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ToFastInfosetSuggested)
    ->Name("Fi/ToFastInfosetSuggested")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FromXmlStream)->Name("Fi/FromXmlStream")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FromFastInfoset)->Name("Fi/FromFastInfoset")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FromFastInfosetSuggested)
    ->Name("Fi/FromFastInfosetSuggested")
    ->Unit(benchmark::kMillisecond);

// The console output, then the sizes and the time ratios (CPU time).
class RatioReporter : public KxBench::TimeKeepingReporter {
public:
    void Finalize() override {
        ConsoleReporter::Finalize();
        const Inputs& in = Shared();
        if (in.failure.empty()) {
            std::ostream& out = GetOutputStream();
            const double xml = static_cast<double>(in.xml.GetLength());
            out << "size XML (formatted)           " << in.xml.GetLength() << " bytes\n"
                << "size XML (no indentation)      " << in.xmlCompact.GetLength() << " bytes\n";
            PrintSize("size Fast Infoset             ", in.fi.GetLength(), xml);
            PrintSize("size Fast Infoset (suggested) ", in.fiSuggested.GetLength(), xml);
        }
        PrintRatio("Fi/FromXmlStream", "Fi/FromFastInfoset", " (target at least 1.5)");
        PrintRatio("Fi/FromXmlStream", "Fi/FromFastInfosetSuggested", " (target at least 1.5)");
        PrintRatio("Fi/ToFastInfoset", "Fi/ToXmlStream", "");
        PrintRatio("Fi/ToFastInfosetSuggested", "Fi/ToXmlStream", "");
    }

private:
    void PrintSize(const char* label, unsigned long size, double xml) {
        GetOutputStream() << label << size << " bytes, Fast Infoset / XML = "
                          << static_cast<double>(size) / xml << " (target at most 0.7)\n";
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
