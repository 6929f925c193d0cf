#ifndef KVCART_BENCH_BENCHSUPPORT_H
#define KVCART_BENCH_BENCHSUPPORT_H

// What the benchmark files share: the per-point counter that the ratio table
// reads, and PROJ's per-point loop on the same points.
#include <benchmark/benchmark.h>
#include <vector>

#ifdef KVCART_BENCH_WITH_PROJ
#include <proj.h>
#endif

namespace kvbench {

// Items per second and the "ns/point" counter, for points transformed per iteration.
inline void CountPoints(benchmark::State& state, int points)
{
    state.SetItemsProcessed(state.iterations() * points);
    state.counters["ns/point"] = benchmark::Counter(static_cast<double>(state.iterations() * points),
                                                    benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

#ifdef KVCART_BENCH_WITH_PROJ
// A PROJ context and transformation made from a PROJ string, released with the object.
class CProj
{
public:
    explicit CProj(const char* definition) : m_context(proj_context_create())
    {
        m_pj = proj_create(m_context, definition);
    }
    CProj(const CProj&) = delete;
    CProj& operator=(const CProj&) = delete;
    ~CProj()
    {
        if (m_pj != nullptr)
            proj_destroy(m_pj);
        proj_context_destroy(m_context);
    }
    PJ* Get() const { return m_pj; }

private:
    PJ_CONTEXT* m_context;
    PJ* m_pj;
};

// proj_trans point by point: degrees in forward (converted to PROJ's radians
// inside the loop, as a host does), grid coordinates inverse.
inline void TimeProjTrans(benchmark::State& state, PJ* pj, PJ_DIRECTION direction, const std::vector<double>& lon,
                          const std::vector<double>& lat, const std::vector<double>& x, const std::vector<double>& y)
{
    const int n = static_cast<int>(lon.size());
    for (auto _ : state)
        for (int i = 0; i < n; ++i) {
            PJ_COORD c = direction == PJ_FWD ? proj_coord(proj_torad(lon[i]), proj_torad(lat[i]), 0, 0)
                                             : proj_coord(x[i], y[i], 0, 0);
            c = proj_trans(pj, direction, c);
            benchmark::DoNotOptimize(c);
        }
    CountPoints(state, n);
}
#endif

} // namespace kvbench

#endif
