// Shared by the benchmark programs: the generated benchmark document and a reporter that keeps
// each run's CPU time so a program can print ratios between runs of the same invocation.
#ifndef KX_BENCH_BENCHSUPPORT_H
#define KX_BENCH_BENCHSUPPORT_H

#include <benchmark/benchmark.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace KxBench {

// What expat reported to the counting handlers (kept so that their work cannot be dropped).
struct ExpatCounts {
    long elements = 0;
    long attributes = 0;
    long textBytes = 0;
};

// Parses the text with expat, namespace processing on; with `handlers`, through element and
// character-data handlers that only count (the floor the library's reader stands on). False
// when expat rejects the text.
bool ParseWithExpat(const std::string& xml, bool handlers, ExpatCounts& counts);

// The order document of about `sizeMb` MB from the shared generator (python3), or empty with
// `failure` saying why.
std::string GenerateOrdersDocument(int sizeMb, std::string& failure);

// The console output, plus the CPU time of every run: with repetitions the mean stands for the
// benchmark, otherwise its one run does. Subclasses print their ratios in Finalize.
class TimeKeepingReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override;

protected:
    // CPU time of the named run, 0 when it did not run.
    double Time(const std::string& name) const;
    // Prints "numerator / denominator = ratio<note>" when both ran.
    void PrintRatio(const std::string& numerator, const std::string& denominator,
                    const char* note = "");
    const std::map<std::string, double>& Times() const { return m_times; }

private:
    std::map<std::string, double> m_times;
    std::set<std::string> m_fromMean;
};

}  // namespace KxBench

#endif
