// Writing and reading the order bindings as JSON next to XML text, in one run:
//   kx_bench_json
// The document (about 10 MB of XML) comes from the shared generator at benchmark time and is
// bound into COrders once. The runs are
//   Json/ToXml            COrders::ToXml, formatted, to a string
//   Json/ToJson           COrders::ToJson, formatted, to a string, with standard escaping
//   Json/ToJsonLenient    the same with the default (lenient) escaping
//   Json/FromXml          COrders::FromXml of the text ToXml wrote
//   Json/FromJson         COrders::FromJson, standard escaping, of the text ToJson wrote
//   Json/RapidJsonParse   rapidjson::Document::Parse of the same JSON bytes, nothing bound
//                         (built only when rapidjson's headers were found)
// all under a UTF-8 locale (strings are held in the local code page). Bytes processed are those
// of the text written or read. The generated descriptions hold quotation marks, which the
// lenient escaping leaves bare, so only the standard escaping gives JSON that reads back (and
// that rapidjson accepts); the lenient run is timed for writing alone. Before timing, the JSON
// is checked to read back into objects equal to the bound ones. The ratios of JSON to XML, and
// of binding JSON to parsing it alone, are printed at the end.
#include <benchmark/benchmark.h>

#ifdef KX_HAVE_RAPIDJSON
#include <rapidjson/document.h>
#endif

#include <clocale>
#include <cstdio>
#include <map>
#include <memory>
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

// The bound orders and the texts written from them, made once for every run.
struct Inputs {
    std::unique_ptr<COrders> orders;
    CSerializationContext standard;  // JSON with standard escaping
    std::string xml;
    std::string json;
    std::string lenientJson;
    std::string failure;
};

// Binds the generated document, writes it both ways, and checks that each text reads back
// into equal objects (a benchmark of a broken round trip would time the wrong work).
void Prepare(Inputs& inputs) {
    const std::string generated = KxBench::GenerateOrdersDocument(kSizeMb, inputs.failure);
    if (generated.empty()) return;
    try {
        inputs.standard.GetJsonContext()->SetStandardEscaping(true);
        inputs.orders.reset(new COrders);
        inputs.orders->FromXml(generated.c_str());
        if (inputs.orders->m_orders->GetCount() == 0) {
            inputs.failure = "the generated document has no orders";
            return;
        }
        inputs.xml = inputs.orders->ToXml();
        inputs.json = inputs.orders->ToJson(true, EOLType_LF, inputs.standard);
        inputs.lenientJson = inputs.orders->ToJson();
        COrders fromXml;
        fromXml.FromXml(inputs.xml.c_str());
        if (!(fromXml == *inputs.orders)) inputs.failure = "the XML round trip changed the objects";
        COrders fromJson;
        fromJson.FromJson(inputs.json.c_str(), inputs.standard);
        if (!(fromJson == *inputs.orders))
            inputs.failure = "the JSON round trip changed the objects";
    } catch (const CKxException& e) {
        inputs.failure = "preparing failed: " + e.GetFullMessage();
    }
}

// The inputs for a run, or null after skipping the run with the reason.
const Inputs* Input(benchmark::State& state) {
    static Inputs inputs;
    static bool done = false;
    if (!done) {
        done = true;
        Prepare(inputs);
    }
    if (!inputs.failure.empty()) {
        state.SkipWithError(inputs.failure.c_str());
        return nullptr;
    }
    return &inputs;
}

void SetBytes(benchmark::State& state, size_t bytes) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(bytes));
}

void BM_ToXml(benchmark::State& state) {
    const Inputs* in = Input(state);
    if (!in) return;
    for (auto _ : state) {
        const std::string text = in->orders->ToXml();
        benchmark::DoNotOptimize(text.data());
    }
    SetBytes(state, in->xml.size());
}

void BM_ToJson(benchmark::State& state) {
    const Inputs* in = Input(state);
    if (!in) return;
    for (auto _ : state) {
        const std::string text = in->orders->ToJson(true, EOLType_LF, in->standard);
        benchmark::DoNotOptimize(text.data());
    }
    SetBytes(state, in->json.size());
}

void BM_ToJsonLenient(benchmark::State& state) {
    const Inputs* in = Input(state);
    if (!in) return;
    for (auto _ : state) {
        const std::string text = in->orders->ToJson();
        benchmark::DoNotOptimize(text.data());
    }
    SetBytes(state, in->lenientJson.size());
}

void BM_FromXml(benchmark::State& state) {
    const Inputs* in = Input(state);
    if (!in) return;
    for (auto _ : state) {
        COrders orders;
        orders.FromXml(in->xml.c_str());
        benchmark::DoNotOptimize(orders.m_orders->GetCount());
    }
    SetBytes(state, in->xml.size());
}

void BM_FromJson(benchmark::State& state) {
    const Inputs* in = Input(state);
    if (!in) return;
    for (auto _ : state) {
        COrders orders;
        orders.FromJson(in->json.c_str(), in->standard);
        benchmark::DoNotOptimize(orders.m_orders->GetCount());
    }
    SetBytes(state, in->json.size());
}

BENCHMARK(BM_ToXml)->Name("Json/ToXml")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ToJson)->Name("Json/ToJson")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ToJsonLenient)->Name("Json/ToJsonLenient")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FromXml)->Name("Json/FromXml")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FromJson)->Name("Json/FromJson")->Unit(benchmark::kMillisecond);

#ifdef KX_HAVE_RAPIDJSON
void BM_RapidJsonParse(benchmark::State& state) {
    const Inputs* in = Input(state);
    if (!in) return;
    for (auto _ : state) {
        rapidjson::Document document;
        document.Parse(in->json.data(), in->json.size());
        if (document.HasParseError()) {
            state.SkipWithError("rapidjson rejected the JSON");
            return;
        }
        benchmark::DoNotOptimize(document.MemberCount());
    }
    SetBytes(state, in->json.size());
}

BENCHMARK(BM_RapidJsonParse)->Name("Json/RapidJsonParse")->Unit(benchmark::kMillisecond);
#endif

// The console output, then JSON set against XML and against rapidjson (CPU time).
class RatioReporter : public KxBench::TimeKeepingReporter {
public:
    void Finalize() override {
        ConsoleReporter::Finalize();
        PrintRatio("Json/ToJson", "Json/ToXml", " (limit 1.5)");
        PrintRatio("Json/ToJsonLenient", "Json/ToXml", " (limit 1.5)");
        PrintRatio("Json/FromJson", "Json/FromXml", "");
        PrintRatio("Json/FromJson", "Json/RapidJsonParse", "");
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
