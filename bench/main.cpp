// The benchmark program: Google Benchmark's console output, then the ratios that
// matter side by side: each engine against PROJ on the same points, the C
// interface per point and in batches against PROJ's proj_trans and
// proj_trans_generic, the batch against the per-point path and against the
// vector-maths limit.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace {

class RatioReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            const auto counter = run.counters.find("ns/point");
            if (counter == run.counters.end() || run.error_occurred)
                continue;
            std::string name = run.benchmark_name();
            // With repetitions, the median stands for the benchmark.
            if (run.run_type == Run::RT_Aggregate) {
                if (run.aggregate_name != "median")
                    continue;
                name = name.substr(0, name.size() - std::string("_median").size());
            } else if (m_times.count(name) != 0 && run.repetitions > 1) {
                continue;
            }
            m_times[name] = counter->second.value * 1e9; // seconds per point to nanoseconds
        }
    }

    void Finalize() override
    {
        ConsoleReporter::Finalize();
        PrintEngineTable();
        std::printf("\nRatios (time of the first over the second; below 1 is faster)\n");
        for (const auto& [name, time] : m_times) {
            const auto slash = name.rfind('/');
            const std::string base = name.substr(0, slash), leaf = name.substr(slash + 1);
            if (leaf == "C_KVMP_GEO2PROJ") {
                Print(name, base + "/proj_trans-forward");
                Print(base + "/C_KVMP_GEO2PROJ_N", base + "/proj_trans_generic-forward");
                Print(base + "/C_KVMP_GEO2PROJ_N", name);
                Print(base + "/C_KVMP_GEO2PROJ_N", base + "/limit-forward-vector-maths");
                Print(base + "/C_KVMP_GEO2PROJ_N", base + "/limit-forward-libm");
            } else if (leaf == "C_KVMP_PROJ2GEO") {
                Print(name, base + "/proj_trans-inverse");
                Print(base + "/C_KVMP_PROJ2GEO_N", base + "/proj_trans_generic-inverse");
                Print(base + "/C_KVMP_PROJ2GEO_N", name);
                Print(base + "/C_KVMP_PROJ2GEO_N", base + "/limit-inverse-vector-maths");
                Print(base + "/C_KVMP_PROJ2GEO_N", base + "/limit-inverse-libm");
            }
        }
    }

private:
    // One row per engine: per point forward and inverse beside PROJ's
    // proj_trans, the ratio (ours over PROJ's), and the batch form with its
    // speed-up over the per-point calls. Markdown, as the README keeps it.
    void PrintEngineTable() const
    {
        bool header = false;
        for (const auto& [name, time] : m_times) {
            const auto slash = name.rfind('/');
            if (name.substr(slash + 1) != "forward")
                continue;
            const std::string base = name.substr(0, slash);
            if (!header) {
                std::printf("\nEngines, nanoseconds per point (ratio: ours over PROJ's; batch: its speed-up over "
                            "the per-point calls)\n\n");
                std::printf("| Engine | forward | PROJ | ratio | batch | speed-up | inverse | PROJ | ratio | batch | "
                            "speed-up |\n|---|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|\n");
                header = true;
            }
            std::printf("| %s", base.c_str());
            for (const char* leaf : {"forward", "inverse"}) {
                const double own = Time(base + "/" + leaf), proj = Time(base + "/proj-" + leaf),
                             batch = Time(base + "/batch-" + leaf);
                Cell(own, "%.1f");
                Cell(proj, "%.1f");
                Cell(own / proj, "%.2f");
                Cell(batch, "%.1f");
                Cell(own / batch, "%.1f");
            }
            std::printf(" |\n");
        }
    }
    double Time(const std::string& name) const
    {
        const auto found = m_times.find(name);
        return found == m_times.end() ? std::nan("") : found->second;
    }
    static void Cell(double value, const char* format)
    {
        std::printf(" | ");
        if (std::isfinite(value) && value > 0.0)
            std::printf(format, value);
        else
            std::printf("–");
    }

    void Print(const std::string& first, const std::string& second) const
    {
        const auto a = m_times.find(first), b = m_times.find(second);
        if (a == m_times.end() || b == m_times.end() || b->second <= 0.0)
            return;
        std::printf("  %-50s / %-45s %6.2f  (%.1f / %.1f ns)\n", first.c_str(), second.c_str(),
                    a->second / b->second, a->second, b->second);
    }

    std::map<std::string, double> m_times;
};

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
