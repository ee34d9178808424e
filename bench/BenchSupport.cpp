#include "BenchSupport.h"

#include <expat.h>

#include <cstdio>
#include <ostream>

namespace KxBench {

namespace {

void XMLCALL CountStart(void* data, const XML_Char*, const XML_Char** attributes) {
    ExpatCounts* counts = static_cast<ExpatCounts*>(data);
    ++counts->elements;
    for (const XML_Char** a = attributes; *a != nullptr; a += 2) ++counts->attributes;
}

void XMLCALL CountEnd(void*, const XML_Char*) {}

void XMLCALL CountText(void* data, const XML_Char*, int length) {
    static_cast<ExpatCounts*>(data)->textBytes += length;
}

}  // namespace

bool ParseWithExpat(const std::string& xml, bool handlers, ExpatCounts& counts) {
    XML_Parser parser = XML_ParserCreateNS(nullptr, '|');
    if (handlers) {
        XML_SetUserData(parser, &counts);
        XML_SetElementHandler(parser, CountStart, CountEnd);
        XML_SetCharacterDataHandler(parser, CountText);
    }
    const bool ok = XML_Parse(parser, xml.data(), static_cast<int>(xml.size()), 1) == XML_STATUS_OK;
    XML_ParserFree(parser);
    return ok;
}

std::string GenerateOrdersDocument(int sizeMb, std::string& failure) {
    const char* const generator = KX_BENCH_GEN_SCRIPT;
    std::string document;
    std::FILE* probe = std::fopen(generator, "r");
    if (probe == nullptr) {
        failure = std::string("generator not found: ") + generator;
        return document;
    }
    std::fclose(probe);
    const std::string command =
        "python3 '" + std::string(generator) + "' " + std::to_string(sizeMb) + " 2>/dev/null";
    if (std::FILE* pipe = popen(command.c_str(), "r")) {
        char buffer[65536];
        size_t got;
        while ((got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) document.append(buffer, got);
        if (pclose(pipe) != 0) document.clear();
    }
    if (document.empty()) failure = "the generator failed: " + command;
    return document;
}

void TimeKeepingReporter::ReportRuns(const std::vector<Run>& runs) {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
        if (run.error_occurred) continue;
        const std::string name = run.run_name.str();
        if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "mean") {
            m_times[name] = run.GetAdjustedCPUTime();
            m_fromMean.insert(name);
        } else if (run.run_type == Run::RT_Iteration && m_fromMean.count(name) == 0) {
            m_times[name] = run.GetAdjustedCPUTime();
        }
    }
}

double TimeKeepingReporter::Time(const std::string& name) const {
    const auto found = m_times.find(name);
    return found == m_times.end() ? 0 : found->second;
}

void TimeKeepingReporter::PrintRatio(const std::string& numerator,
                                     const std::string& denominator, const char* note) {
    const double top = Time(numerator);
    const double bottom = Time(denominator);
    if (top <= 0 || bottom <= 0) return;
    GetOutputStream() << numerator << " / " << denominator << " = " << top / bottom << note
                      << "\n";
}

}  // namespace KxBench
