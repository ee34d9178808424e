// Conversion hot paths that every read and write goes through, each next to the nearest standard
// facility so that the ratio can be read off one run:
//   kx_bench_values --benchmark_filter=I4
// Pairs are named <Subject>/Kx and <Subject>/Std.
#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <random>
#include <string>
#include <vector>

#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;
constexpr size_t kCount = 1024;

std::vector<long> Integers() {
    std::mt19937_64 random(42);
    std::vector<long> values(kCount);
    for (auto& value : values) value = static_cast<long>(random() % 2000000000) - 1000000000;
    return values;
}

std::vector<double> Doubles() {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> distribution(-1e6, 1e6);
    std::vector<double> values(kCount);
    for (auto& value : values) value = distribution(random);
    return values;
}

template <typename T, typename Format>
std::vector<std::string> Texts(const std::vector<T>& values, Format format) {
    std::vector<std::string> texts;
    texts.reserve(values.size());
    for (const T& value : values) texts.push_back(format(value));
    return texts;
}

std::vector<std::string> IntegerTexts() {
    return Texts(Integers(), [](long v) { return std::to_string(v); });
}

std::vector<std::string> DoubleTexts() {
    return Texts(Doubles(), [](double v) { return CConversions::r8ToString(v); });
}

// --- i4 ---

void I4Parse_Kx(benchmark::State& state) {
    const auto texts = IntegerTexts();
    for (auto _ : state)
        for (const auto& text : texts) benchmark::DoNotOptimize(CConversions::i4FromString(text, kCollapse));
    state.SetItemsProcessed(state.iterations() * texts.size());
}
void I4Parse_Std(benchmark::State& state) {
    const auto texts = IntegerTexts();
    for (auto _ : state)
        for (const auto& text : texts) {
            long value = 0;
            std::from_chars(text.data(), text.data() + text.size(), value);
            benchmark::DoNotOptimize(value);
        }
    state.SetItemsProcessed(state.iterations() * texts.size());
}
void I4Format_Kx(benchmark::State& state) {
    const auto values = Integers();
    for (auto _ : state)
        for (long value : values) benchmark::DoNotOptimize(CConversions::i4ToString(value));
    state.SetItemsProcessed(state.iterations() * values.size());
}
void I4Format_Std(benchmark::State& state) {
    const auto values = Integers();
    for (auto _ : state)
        for (long value : values) {
            char buffer[32];
            auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
            benchmark::DoNotOptimize(std::string(buffer, end));
        }
    state.SetItemsProcessed(state.iterations() * values.size());
}

// --- r8 ---

void R8Parse_Kx(benchmark::State& state) {
    const auto texts = DoubleTexts();
    for (auto _ : state)
        for (const auto& text : texts) benchmark::DoNotOptimize(CConversions::r8FromString(text, kCollapse));
    state.SetItemsProcessed(state.iterations() * texts.size());
}
void R8Parse_Std(benchmark::State& state) {
    const auto texts = DoubleTexts();
    for (auto _ : state)
        for (const auto& text : texts) benchmark::DoNotOptimize(std::strtod(text.c_str(), nullptr));
    state.SetItemsProcessed(state.iterations() * texts.size());
}
void R8Format_Kx(benchmark::State& state) {
    const auto values = Doubles();
    for (auto _ : state)
        for (double value : values) benchmark::DoNotOptimize(CConversions::r8ToString(value));
    state.SetItemsProcessed(state.iterations() * values.size());
}
void R8Format_Std(benchmark::State& state) {
    const auto values = Doubles();
    for (auto _ : state)
        for (double value : values) {
            char buffer[48];
            const int length = std::snprintf(buffer, sizeof buffer, "%.16g", value);
            benchmark::DoNotOptimize(std::string(buffer, static_cast<size_t>(length)));
        }
    state.SetItemsProcessed(state.iterations() * values.size());
}

// --- decimal (the nearest standard facility is the double conversion of the same text) ---

std::vector<std::string> DecimalTexts() {
    return Texts(Doubles(), [](double v) {
        char buffer[48];
        std::snprintf(buffer, sizeof buffer, "%.4f", v);
        return std::string(buffer);
    });
}
void DecimalParse_Kx(benchmark::State& state) {
    const auto texts = DecimalTexts();
    for (auto _ : state)
        for (const auto& text : texts) benchmark::DoNotOptimize(CConversions::decimalFromString(text, kCollapse));
    state.SetItemsProcessed(state.iterations() * texts.size());
}
void DecimalParse_Std(benchmark::State& state) {
    const auto texts = DecimalTexts();
    for (auto _ : state)
        for (const auto& text : texts) benchmark::DoNotOptimize(std::strtod(text.c_str(), nullptr));
    state.SetItemsProcessed(state.iterations() * texts.size());
}
void DecimalFormat_Kx(benchmark::State& state) {
    std::vector<CDecimal> values;
    for (const auto& text : DecimalTexts()) values.emplace_back(text);
    for (auto _ : state)
        for (const auto& value : values) benchmark::DoNotOptimize(CConversions::decimalToString(value));
    state.SetItemsProcessed(state.iterations() * values.size());
}
void DecimalFormat_Std(benchmark::State& state) {
    const auto values = Doubles();
    for (auto _ : state)
        for (double value : values) {
            char buffer[48];
            const int length = std::snprintf(buffer, sizeof buffer, "%.4f", value);
            benchmark::DoNotOptimize(std::string(buffer, static_cast<size_t>(length)));
        }
    state.SetItemsProcessed(state.iterations() * values.size());
}

// --- dateTime (the standard facility is strptime/strftime, which know no fraction or zone) ---

std::vector<std::string> DateTimeTexts() {
    std::vector<std::string> texts;
    for (size_t i = 0; i < kCount; ++i) {
        char buffer[64];
        std::snprintf(buffer, sizeof buffer, "%04zu-%02zu-%02zuT%02zu:%02zu:%02zu", 1990 + i % 40,
                      1 + i % 12, 1 + i % 28, i % 24, i % 60, (i * 7) % 60);
        texts.push_back(buffer);
    }
    return texts;
}
void DateTimeParse_Kx(benchmark::State& state) {
    const auto texts = DateTimeTexts();
    for (auto _ : state)
        for (const auto& text : texts) benchmark::DoNotOptimize(CConversions::datetimeFromString(text, kCollapse));
    state.SetItemsProcessed(state.iterations() * texts.size());
}
void DateTimeParse_Std(benchmark::State& state) {
    const auto texts = DateTimeTexts();
    for (auto _ : state)
        for (const auto& text : texts) {
            std::tm fields{};
            benchmark::DoNotOptimize(strptime(text.c_str(), "%Y-%m-%dT%H:%M:%S", &fields));
            benchmark::DoNotOptimize(fields);
        }
    state.SetItemsProcessed(state.iterations() * texts.size());
}
void DateTimeFormat_Kx(benchmark::State& state) {
    std::vector<CDateTime> values;
    for (const auto& text : DateTimeTexts()) values.push_back(CConversions::datetimeFromString(text, kCollapse));
    for (auto _ : state)
        for (const auto& value : values) benchmark::DoNotOptimize(CConversions::datetimeToString(value));
    state.SetItemsProcessed(state.iterations() * values.size());
}
void DateTimeFormat_Std(benchmark::State& state) {
    std::vector<std::tm> values;
    for (const auto& text : DateTimeTexts()) {
        std::tm fields{};
        strptime(text.c_str(), "%Y-%m-%dT%H:%M:%S", &fields);
        values.push_back(fields);
    }
    for (auto _ : state)
        for (const auto& value : values) {
            char buffer[64];
            const size_t length = std::strftime(buffer, sizeof buffer, "%Y-%m-%dT%H:%M:%S", &value);
            benchmark::DoNotOptimize(std::string(buffer, length));
        }
    state.SetItemsProcessed(state.iterations() * values.size());
}

// --- base64 (no standard facility: bytes per second is the figure) ---

CBinaryData RandomBytes(size_t length) {
    std::mt19937 random(3);
    std::vector<unsigned char> bytes(length);
    for (auto& byte : bytes) byte = static_cast<unsigned char>(random());
    return CBinaryData(bytes.data(), static_cast<unsigned long>(bytes.size()), false);
}
void Base64Encode(benchmark::State& state) {
    const CBinaryData data = RandomBytes(64 * 1024);
    for (auto _ : state) benchmark::DoNotOptimize(data.GetAsBase64());
    state.SetBytesProcessed(state.iterations() * data.GetLength());
}
void Base64Decode(benchmark::State& state) {
    const std::string text = RandomBytes(64 * 1024).GetAsBase64();
    for (auto _ : state) {
        CBinaryData data;
        data.SetAsBase64(text.c_str());
        benchmark::DoNotOptimize(data.GetData());
    }
    state.SetBytesProcessed(state.iterations() * text.size());
}

// --- text accumulation ---

const char* const kPieces[] = {"<Order id=\"", "12345", "\">", "\n  ", "<Line>", "Widget", "</Line>"};

void StringBufferAppend_Kx(benchmark::State& state) {
    for (auto _ : state) {
        CStringBuffer buffer;
        for (int i = 0; i < 10000; ++i)
            for (const char* piece : kPieces) buffer.Append(piece);
        benchmark::DoNotOptimize(buffer.GetText());
    }
    state.SetItemsProcessed(state.iterations() * 10000 * 7);
}
void StringBufferAppend_Std(benchmark::State& state) {
    for (auto _ : state) {
        std::string buffer;
        for (int i = 0; i < 10000; ++i)
            for (const char* piece : kPieces) buffer.append(piece);
        benchmark::DoNotOptimize(buffer.c_str());
    }
    state.SetItemsProcessed(state.iterations() * 10000 * 7);
}

}  // namespace

BENCHMARK(I4Parse_Kx)->Name("I4Parse/Kx");
BENCHMARK(I4Parse_Std)->Name("I4Parse/Std");
BENCHMARK(I4Format_Kx)->Name("I4Format/Kx");
BENCHMARK(I4Format_Std)->Name("I4Format/Std");
BENCHMARK(R8Parse_Kx)->Name("R8Parse/Kx");
BENCHMARK(R8Parse_Std)->Name("R8Parse/Std");
BENCHMARK(R8Format_Kx)->Name("R8Format/Kx");
BENCHMARK(R8Format_Std)->Name("R8Format/Std");
BENCHMARK(DecimalParse_Kx)->Name("DecimalParse/Kx");
BENCHMARK(DecimalParse_Std)->Name("DecimalParse/Std");
BENCHMARK(DecimalFormat_Kx)->Name("DecimalFormat/Kx");
BENCHMARK(DecimalFormat_Std)->Name("DecimalFormat/Std");
BENCHMARK(DateTimeParse_Kx)->Name("DateTimeParse/Kx");
BENCHMARK(DateTimeParse_Std)->Name("DateTimeParse/Std");
BENCHMARK(DateTimeFormat_Kx)->Name("DateTimeFormat/Kx");
BENCHMARK(DateTimeFormat_Std)->Name("DateTimeFormat/Std");
BENCHMARK(Base64Encode);
BENCHMARK(Base64Decode);
BENCHMARK(StringBufferAppend_Kx)->Name("StringBufferAppend/Kx");
BENCHMARK(StringBufferAppend_Std)->Name("StringBufferAppend/Std");

BENCHMARK_MAIN();
