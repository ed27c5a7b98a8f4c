// Every row of a benchmark table is a subject measured against its baseline
// in the same run: the two run alternately, round after round, each round timed in the thread's CPU time (child processes: in
// their CPU time). A row reports the median of the per-round ratios
// (subject / baseline; above 1 is slower) and their spread, the lowest and
// highest quarter. Rows whose target is a time ratio say whether it holds.
#pragma once

#include <benchmark/benchmark.h>
#include <time.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace bench {

inline double ThreadCpuNs() {
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return now.tv_sec * 1e9 + now.tv_nsec;
}

inline double Timed(const std::function<void()>& body) {
    double start = ThreadCpuNs();
    body();
    return ThreadCpuNs() - start;
}

struct Row {
    std::string measure;
    double median, low, high;  // ratios, or the exponent of a growth row
    double target;             // the ratio the row must stay at or below; 0: none
    std::string note;
};

inline std::vector<Row>& Rows() {
    static std::vector<Row> rows;
    return rows;
}

inline double Quantile(std::vector<double> v, double q) {
    if (v.empty()) return 0;
    std::sort(v.begin(), v.end());
    double at = q * double(v.size() - 1);
    size_t i = size_t(at);
    return i + 1 < v.size() ? v[i] + (at - double(i)) * (v[i + 1] - v[i]) : v[i];
}

// The median nanoseconds of each side, for growth rows.
struct Times {
    double baseline, subject;
};

// `rounds` rounds of baseline then subject; the clock is pluggable so that
// process rows can time their children.
inline Times Compare(int rounds, const std::string& measure, double target,
                     const std::function<double(const std::function<void()>&)>& clock,
                     const std::function<void()>& baseline, const std::function<void()>& subject,
                     const std::string& note = "") {
    std::vector<double> ratios, base, subj;
    baseline();  // warm caches and allocators once on both sides
    subject();
    for (int i = 0; i < rounds; ++i) {
        double b = clock(baseline), s = clock(subject);
        base.push_back(b);
        subj.push_back(s);
        if (b > 0) ratios.push_back(s / b);
    }
    Rows().push_back({measure, Quantile(ratios, 0.5), Quantile(ratios, 0.25), Quantile(ratios, 0.75), target, note});
    return {Quantile(base, 0.5), Quantile(subj, 0.5)};
}

inline Times Compare(int rounds, const std::string& measure, double target, const std::function<void()>& baseline,
                     const std::function<void()>& subject, const std::string& note = "") {
    return Compare(rounds, measure, target, Timed, baseline, subject, note);
}

// The exponent k of time ~ n^k between the smallest and largest size, for
// the subject; the target is the baseline's own exponent (the caches slow
// both alike) plus a tenth.
inline void Growth(const std::string& measure, const std::vector<std::pair<double, Times>>& sizes) {
    if (sizes.size() < 2) return;
    auto exponent = [&](double Times::*side) {
        return std::log(sizes.back().second.*side / sizes.front().second.*side) /
               std::log(sizes.back().first / sizes.front().first);
    };
    double ours = exponent(&Times::subject), theirs = exponent(&Times::baseline);
    char note[64];
    std::snprintf(note, sizeof note, "exponent; the baseline's is %.2f", theirs);
    Rows().push_back({measure, ours, ours, ours, theirs + 0.1, note});
}

inline void PrintTable(const char* title) {
    std::printf("\n### %s\n\n| measure | median ratio | spread (q1–q3) | target | holds |\n|---|---|---|---|---|\n",
                title);
    for (const Row& r : Rows()) {
        std::string target = r.target > 0 ? "≤ " + std::to_string(r.target).substr(0, 4) : "-";
        const char* holds = r.target <= 0 ? "-" : r.median <= r.target ? "yes" : "NO";
        std::printf("| %s%s | %.2f | %.2f–%.2f | %s | %s |\n", r.measure.c_str(),
                    r.note.empty() ? "" : (" (" + r.note + ")").c_str(), r.median, r.low, r.high,
                    target.c_str(), holds);
    }
    std::fflush(stdout);
}

}  // namespace bench

// A benchmark program's main: runs the benchmarks (each runs its rounds in a
// single iteration), then prints its table.
#define BENCH_MAIN(title)                             \
    int main(int argc, char** argv) {                 \
        benchmark::Initialize(&argc, argv);           \
        benchmark::RunSpecifiedBenchmarks();          \
        bench::PrintTable(title);                     \
        benchmark::Shutdown();                        \
        return 0;                                     \
    }
