// Pattern facets: the full string check (lengths, pattern translation, compilation or cache
// look-up, local-code-page step, match) next to a bare pcre2_match of the same pattern compiled
// once, so that the ratio can be read off one run:
//   kx_bench_facets --benchmark_filter=Postcode
// Pairs are named <Subject>/Kx and <Subject>/Bare; <Subject>/TestRegEx is the pattern test
// alone and <Subject>/Compile the compilation alone.
#define PCRE2_CODE_UNIT_WIDTH 8
#include <benchmark/benchmark.h>
#include <pcre2.h>

#include <cstring>
#include <string>
#include <vector>

#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

const char kPostcode[] = "[A-Z]{2}[0-9]{4}";
const char kEmail[] = "[A-Za-z0-9._%+\\-]+@[A-Za-z0-9.\\-]+\\.[A-Za-z]{2,}";

// Valid values, the common case: a failed check costs an exception on top of the match.
std::vector<std::string> PostcodeValues() {
    return {"AB1234", "ZZ0000", "QX9876", "MN5555", "CD4321", "EF1010", "GH2024", "XY7777"};
}

std::vector<std::string> EmailValues() {
    return {"john.smith@example.com", "a@b.io",       "first.last+tag@mail.example.org",
            "x_y%z@host-name.net",    "info@kx.dev",  "user@sub.domain.co.uk",
            "oneil@example.ie",       "12345@num.biz"};
}

size_t TotalBytes(const std::vector<std::string>& values) {
    size_t total = 0;
    for (const std::string& value : values) total += value.size();
    return total;
}

void CheckString(benchmark::State& state, const char* pattern,
                 const std::vector<std::string>& values) {
    const CPrimitiveRestrictions restrictions(pattern, -1, -1, nullptr, nullptr, nullptr, nullptr,
                                              -1, -1, -1);
    size_t failures = 0;
    for (auto _ : state) {
        for (const std::string& value : values) {
            try {
                CXmlObjectHelper::CheckRestrictionForstring("member", value, restrictions);
            } catch (const CKxException&) {
                ++failures;
            }
        }
    }
    state.counters["failures"] = static_cast<double>(failures);
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(values.size()));
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(TotalBytes(values)));
}

pcre2_code* CompileAnchored(const char* pattern) {
    const std::string anchored = std::string("^(") + pattern + ")$";
    int errorCode = 0;
    PCRE2_SIZE errorOffset = 0;
    return pcre2_compile(reinterpret_cast<PCRE2_SPTR>(anchored.c_str()), PCRE2_ZERO_TERMINATED,
                         PCRE2_UTF, &errorCode, &errorOffset, nullptr);
}

void BareMatch(benchmark::State& state, const char* pattern,
               const std::vector<std::string>& values) {
    pcre2_code* code = CompileAnchored(pattern);
    pcre2_match_data* matchData = pcre2_match_data_create_from_pattern(code, nullptr);
    size_t matches = 0;
    for (auto _ : state) {
        for (const std::string& value : values) {
            const int rc = pcre2_match(code, reinterpret_cast<PCRE2_SPTR>(value.data()),
                                       value.size(), 0, PCRE2_ANCHORED, matchData, nullptr);
            if (rc >= 0 && pcre2_get_ovector_pointer(matchData)[1] == value.size()) ++matches;
        }
    }
    state.counters["matches"] = static_cast<double>(matches);
    pcre2_match_data_free(matchData);
    pcre2_code_free(code);
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(values.size()));
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(TotalBytes(values)));
}

// The pattern test alone, without the facet record and the pattern's code-page step.
void TestOnly(benchmark::State& state, const char* pattern,
              const std::vector<std::string>& values) {
    const std::string text(pattern);
    size_t matches = 0;
    for (auto _ : state) {
        for (const std::string& value : values) matches += TestRegEx(text, value) ? 1 : 0;
    }
    state.counters["matches"] = static_cast<double>(matches);
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(values.size()));
}

void CompileOnly(benchmark::State& state, const char* pattern) {
    for (auto _ : state) {
        pcre2_code* code = CompileAnchored(pattern);
        benchmark::DoNotOptimize(code);
        pcre2_code_free(code);
    }
}

void Postcode_Kx(benchmark::State& state) { CheckString(state, kPostcode, PostcodeValues()); }
void Postcode_Bare(benchmark::State& state) { BareMatch(state, kPostcode, PostcodeValues()); }
void Postcode_Compile(benchmark::State& state) { CompileOnly(state, kPostcode); }
void Postcode_TestRegEx(benchmark::State& state) { TestOnly(state, kPostcode, PostcodeValues()); }
void Email_Kx(benchmark::State& state) { CheckString(state, kEmail, EmailValues()); }
void Email_Bare(benchmark::State& state) { BareMatch(state, kEmail, EmailValues()); }
void Email_Compile(benchmark::State& state) { CompileOnly(state, kEmail); }
void Email_TestRegEx(benchmark::State& state) { TestOnly(state, kEmail, EmailValues()); }

}  // namespace

BENCHMARK(Postcode_Kx)->Name("Postcode/Kx");
BENCHMARK(Postcode_Bare)->Name("Postcode/Bare");
BENCHMARK(Postcode_Compile)->Name("Postcode/Compile");
BENCHMARK(Postcode_TestRegEx)->Name("Postcode/TestRegEx");
BENCHMARK(Email_Kx)->Name("Email/Kx");
BENCHMARK(Email_Bare)->Name("Email/Bare");
BENCHMARK(Email_Compile)->Name("Email/Compile");
BENCHMARK(Email_TestRegEx)->Name("Email/TestRegEx");
BENCHMARK(Postcode_Kx)->Name("Postcode/Kx")->Threads(4);

BENCHMARK_MAIN();
