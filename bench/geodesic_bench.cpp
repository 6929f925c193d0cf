// The inverse geodesic problem (CKvGeodesic, Karney's method) in nanoseconds
// per pair of points, over a fixed set of pairs spread over the whole earth;
// beside it PROJ's geod_inverse on the same pairs, where PROJ is installed.
#include "geodesy/KvGeodesic.h"

#include "BenchSupport.h"

#include <cmath>
#include <vector>

#ifdef KVCART_BENCH_WITH_PROJ
#include <geodesic.h>
#endif

namespace {

constexpr int kPairs = 1024;
constexpr double kA = 6378137.0, kF = 1.0 / 298.257223563;

struct Pairs
{
    std::vector<double> lon1, lat1, lon2, lat2;
};

// Pairs of points spread over the sphere by fixed strides (no random state):
// short, long and nearly antipodal lines in their natural proportions.
const Pairs& MakePairs()
{
    static const Pairs pairs = [] {
        Pairs p;
        for (int i = 0; i < kPairs; ++i) {
            const double u = ((i * 37) % kPairs + 0.5) / kPairs, v = ((i * 61) % kPairs + 0.5) / kPairs;
            const double w = ((i * 89) % kPairs + 0.5) / kPairs, t = ((i * 113) % kPairs + 0.5) / kPairs;
            p.lat1.push_back(std::asin(2.0 * u - 1.0) * 180.0 / 3.141592653589793);
            p.lat2.push_back(std::asin(2.0 * w - 1.0) * 180.0 / 3.141592653589793);
            p.lon1.push_back(360.0 * v - 180.0);
            p.lon2.push_back(360.0 * t - 180.0);
        }
        return p;
    }();
    return pairs;
}

void Inverse(benchmark::State& state)
{
    const Pairs& p = MakePairs();
    const CKvGeodesic geodesic(kA, kF);
    for (auto _ : state)
        for (int i = 0; i < kPairs; ++i) {
            double s12, azi1, azi2;
            geodesic.Inverse(p.lon1[i], p.lat1[i], p.lon2[i], p.lat2[i], s12, azi1, azi2);
            benchmark::DoNotOptimize(s12);
            benchmark::DoNotOptimize(azi1);
            benchmark::DoNotOptimize(azi2);
        }
    kvbench::CountPoints(state, kPairs);
}

#ifdef KVCART_BENCH_WITH_PROJ
// PROJ's geod_inverse (Karney's C implementation) on the same pairs; latitude first.
void ProjInverse(benchmark::State& state)
{
    const Pairs& p = MakePairs();
    geod_geodesic g;
    geod_init(&g, kA, kF);
    // The same problem, or no comparison: the first pair must agree to 1 um.
    double s, a1, a2, ours, o1, o2;
    geod_inverse(&g, p.lat1[0], p.lon1[0], p.lat2[0], p.lon2[0], &s, &a1, &a2);
    CKvGeodesic(kA, kF).Inverse(p.lon1[0], p.lat1[0], p.lon2[0], p.lat2[0], ours, o1, o2);
    if (!(std::fabs(s - ours) < 1e-6)) {
        state.SkipWithError("PROJ's geodesic gives another distance");
        return;
    }
    for (auto _ : state)
        for (int i = 0; i < kPairs; ++i) {
            double s12, azi1, azi2;
            geod_inverse(&g, p.lat1[i], p.lon1[i], p.lat2[i], p.lon2[i], &s12, &azi1, &azi2);
            benchmark::DoNotOptimize(s12);
            benchmark::DoNotOptimize(azi1);
            benchmark::DoNotOptimize(azi2);
        }
    kvbench::CountPoints(state, kPairs);
}
#endif

// Named so that the ratio table sets the inverse beside PROJ's.
const bool kRegistered = [] {
    benchmark::RegisterBenchmark("Geodesic/WGS84/inverse", Inverse);
#ifdef KVCART_BENCH_WITH_PROJ
    benchmark::RegisterBenchmark("Geodesic/WGS84/proj-inverse", ProjInverse);
#endif
    return true;
}();

} // namespace
