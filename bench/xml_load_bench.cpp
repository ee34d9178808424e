// Loading XML into the tree, next to expat alone, in one run:
//   kx_bench_xml_load
// The document (about 10 MB) comes from the shared generator at benchmark time. The pairs are
//   XmlLoad/ExpatBare            expat with namespace processing and no handlers
//   XmlLoad/ExpatTrivial         expat with element and character-data handlers that count
//   XmlLoad/LoadXmlStream/...    CXmlDocument::LoadXmlStream from memory, the whole tree built
//                                and freed, with a UTF-8 and with the "C" locale
// and the ratios of the tree builds to the two expat runs are printed at the end.
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

using namespace KxXmlLib16;

namespace {

const int kSizeMb = 10;

// The generated document, or empty with `error` set.
const std::string& Document(std::string& error) {
    static std::string failure;
    static const std::string document = KxBench::GenerateOrdersDocument(kSizeMb, failure);
    error = failure;
    return document;
}

class ScopedLocale {
public:
    explicit ScopedLocale(const char* name) : m_saved(std::setlocale(LC_ALL, nullptr)) {
        m_ok = std::setlocale(LC_ALL, name) != nullptr;
    }
    ~ScopedLocale() { std::setlocale(LC_ALL, m_saved.c_str()); }
    bool Ok() const { return m_ok; }

private:
    std::string m_saved;
    bool m_ok;
};

void RunExpat(benchmark::State& state, bool handlers) {
    std::string error;
    const std::string& xml = Document(error);
    if (xml.empty()) {
        state.SkipWithError(error.c_str());
        return;
    }
    for (auto _ : state) {
        KxBench::ExpatCounts counts;
        if (!KxBench::ParseWithExpat(xml, handlers, counts)) {
            state.SkipWithError("expat rejected the document");
            return;
        }
        benchmark::DoNotOptimize(counts);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(xml.size()));
}

void BM_ExpatBare(benchmark::State& state) { RunExpat(state, false); }

void BM_ExpatTrivial(benchmark::State& state) { RunExpat(state, true); }

void RunLoad(benchmark::State& state, const char* locale) {
    std::string error;
    const std::string& xml = Document(error);
    if (xml.empty()) {
        state.SkipWithError(error.c_str());
        return;
    }
    ScopedLocale scoped(locale);
    if (!scoped.Ok()) {
        state.SkipWithError("locale not available");
        return;
    }
    for (auto _ : state) {
        CXmlDocument document;
        document.LoadXmlStream(reinterpret_cast<const unsigned char*>(xml.data()),
                               static_cast<unsigned long>(xml.size()));
        benchmark::DoNotOptimize(document.GetDocumentElement());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(xml.size()));
}

void BM_LoadXmlStreamUtf8Locale(benchmark::State& state) { RunLoad(state, "C.UTF-8"); }

void BM_LoadXmlStreamCLocale(benchmark::State& state) { RunLoad(state, "C"); }

BENCHMARK(BM_ExpatBare)->Name("XmlLoad/ExpatBare")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ExpatTrivial)->Name("XmlLoad/ExpatTrivial")->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadXmlStreamUtf8Locale)
    ->Name("XmlLoad/LoadXmlStream/Utf8Locale")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadXmlStreamCLocale)
    ->Name("XmlLoad/LoadXmlStream/CLocale")
    ->Unit(benchmark::kMillisecond);

// The console output, then the ratio (in CPU time) of each tree build to each expat run.
class RatioReporter : public KxBench::TimeKeepingReporter {
public:
    void Finalize() override {
        ConsoleReporter::Finalize();
        const char* const baselines[] = {"XmlLoad/ExpatBare", "XmlLoad/ExpatTrivial"};
        for (const auto& entry : Times()) {
            if (entry.first.find("LoadXmlStream") == std::string::npos) continue;
            for (const char* baseline : baselines) {
                PrintRatio(entry.first, baseline);
            }
        }
    }

};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
