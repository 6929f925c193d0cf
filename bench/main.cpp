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
        std::FILE* table = m_tableOut.empty() ? nullptr : std::fopen(m_tableOut.c_str(), "w");
        PrintEngineTable(stdout);
        if (table != nullptr) {
            PrintEngineTable(table);
            std::fclose(table);
        }
    }
    void PrintEngineTable(std::FILE* out) const
    {
        bool header = false;
        for (const auto& [name, time] : m_times) {
            const auto slash = name.rfind('/');
            if (name.substr(slash + 1) != "forward")
                continue;
            const std::string base = name.substr(0, slash);
            if (!header) {
                std::fprintf(out, "\nEngines, nanoseconds per point (ratio: ours over PROJ's; batch: its speed-up over "
                            "the per-point calls)\n\n");
                std::fprintf(out, "| Engine | forward | PROJ | ratio | batch | speed-up | inverse | PROJ | ratio | batch | "
                            "speed-up |\n|---|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|\n");
                header = true;
            }
            std::fprintf(out, "| %s", base.c_str());
            for (const char* leaf : {"forward", "inverse"}) {
                const double own = Time(base + "/" + leaf), proj = Time(base + "/proj-" + leaf),
                             batch = Time(base + "/batch-" + leaf);
                Cell(out, own, "%.1f");
                Cell(out, proj, "%.1f");
                Cell(out, own / proj, "%.2f");
                Cell(out, batch, "%.1f");
                Cell(out, own / batch, "%.1f");
            }
            std::fprintf(out, " |\n");
        }
    }
    double Time(const std::string& name) const
    {
        const auto found = m_times.find(name);
        return found == m_times.end() ? std::nan("") : found->second;
    }
    static void Cell(std::FILE* out, double value, const char* format)
    {
        std::fprintf(out, " | ");
        if (std::isfinite(value) && value > 0.0)
            std::fprintf(out, format, value);
        else
            std::fprintf(out, "–");
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

public:
    std::string m_tableOut; // a file for the engine table too, or empty
};

} // namespace

int main(int argc, char** argv)
{
    // --table_out=FILE (ours, taken out before Google Benchmark reads the rest):
    // the engine table is written to FILE as well, for make bench's summary.
    std::string tableOut;
    int kept = 1;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg.rfind("--table_out=", 0) == 0)
            tableOut = arg.substr(12);
        else
            argv[kept++] = argv[i];
    }
    argc = kept;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RatioReporter reporter;
    reporter.m_tableOut = tableOut;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
