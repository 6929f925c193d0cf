// The datum converter's geocentric step (geographic to geocentric on the
// source figure, the Helmert shift, Bowring back on the target figure) per
// point and in batches, alone (WGS 84 to OSGB 1936 latitude and longitude) and
// with the target's projection (WGS 84 to the British National Grid); PROJ's
// proj_trans on the same pipeline beside them when PROJ is present.
#include "coordsys/KvMapProjection.h"
#include "geodesy/KvDatumConverter.h"
#include "interface/KvCart.h"

#include "BenchSupport.h"

#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int kPoints = 1024;

struct Step
{
    const char* target;
    CKvDatumConverter::ETypeOfConversion type;
    const char* proj; // the same pipeline for PROJ, radians in
};

// EPSG:1314 (OSGB36 to WGS 84, position vector), taken back from WGS 84.
#define KVBENCH_OSGB_STEPS                                                                                           \
    "+proj=pipeline +step +proj=cart +ellps=WGS84 +step +inv +proj=helmert +x=446.448 +y=-125.157 +z=542.06 "       \
    "+rx=0.15 +ry=0.247 +rz=0.842 +s=-20.489 +convention=position_vector +step +inv +proj=cart +ellps=airy "

const Step kGeographic = {"EPSG:4277", CKvDatumConverter::eGeoToGeo, KVBENCH_OSGB_STEPS};
const Step kGrid = {"EPSG:27700", CKvDatumConverter::eGeoToProj,
                    KVBENCH_OSGB_STEPS "+step +proj=tmerc +lat_0=49 +lon_0=-2 +k=0.9996012717 +x_0=400000 "
                                       "+y_0=-100000 +ellps=airy"};

struct Points
{
    std::vector<double> lon, lat, h;
};

Points MakePoints()
{
    static bool setUp = [] {
        CARTSETUPLINUX(KVCART_SHIPPED_DATA_DIR, KVCART_SHIPPED_DATA_DIR);
        return true;
    }();
    (void)setUp;
    Points p;
    for (int i = 0; i < kPoints; ++i) {
        p.lon.push_back(-2.0 - 4.0 + 8.0 * ((i * 37) % kPoints) / kPoints);
        p.lat.push_back(54.0 - 4.0 + 8.0 * ((i * 61) % kPoints) / kPoints);
        p.h.push_back(100.0 * ((i * 17) % 13));
    }
    return p;
}

CKvDatumConverter MakeConverter(const Step& s)
{
    CKvDatumConverter converter("EPSG:4326", s.target);
    converter.SetConversionType(s.type);
    return converter;
}

// Convert(x, y, h) point by point.
void PerPoint(benchmark::State& state, const Step* s)
{
    const Points p = MakePoints();
    const CKvDatumConverter converter = MakeConverter(*s);
    for (auto _ : state)
        for (int i = 0; i < kPoints; ++i) {
            double x = p.lon[i], y = p.lat[i], h = p.h[i];
            converter.Convert(x, y, h);
            benchmark::DoNotOptimize(x);
            benchmark::DoNotOptimize(y);
            benchmark::DoNotOptimize(h);
        }
    kvbench::CountPoints(state, kPoints);
}

// Convert(n, x, y, h) on the whole array, copied back in place each time.
void Batch(benchmark::State& state, const Step* s)
{
    const Points p = MakePoints();
    const CKvDatumConverter converter = MakeConverter(*s);
    std::vector<double> x(kPoints), y(kPoints), h(kPoints);
    for (auto _ : state) {
        x = p.lon;
        y = p.lat;
        h = p.h;
        converter.Convert(kPoints, x.data(), y.data(), h.data());
        benchmark::DoNotOptimize(x.data());
        benchmark::ClobberMemory();
    }
    kvbench::CountPoints(state, kPoints);
}

#ifdef KVCART_BENCH_WITH_PROJ
void ProjPipeline(benchmark::State& state, const Step* s)
{
    const Points p = MakePoints();
    const kvbench::CProj proj(s->proj);
    if (proj.Get() == nullptr) {
        state.SkipWithError("PROJ does not take the pipeline");
        return;
    }
    const int n = kPoints;
    for (auto _ : state)
        for (int i = 0; i < n; ++i) {
            PJ_COORD c = proj_coord(proj_torad(p.lon[i]), proj_torad(p.lat[i]), p.h[i], 0);
            c = proj_trans(proj.Get(), PJ_FWD, c);
            benchmark::DoNotOptimize(c);
        }
    kvbench::CountPoints(state, kPoints);
}
#endif

// "/forward" beside "/proj-forward" in the ratio table; "/batch" is the same
// points through Convert(n, ...).
const bool kRegistered = [] {
    for (const auto& [name, step] : {std::make_pair("DatumStep/Wgs84ToOsgb36", &kGeographic),
                                     std::make_pair("DatumStep/Wgs84ToBritishNationalGrid", &kGrid)}) {
        const std::string base = name;
        benchmark::RegisterBenchmark((base + "/forward").c_str(), PerPoint, step);
        benchmark::RegisterBenchmark((base + "/batch").c_str(), Batch, step);
#ifdef KVCART_BENCH_WITH_PROJ
        benchmark::RegisterBenchmark((base + "/proj-forward").c_str(), ProjPipeline, step);
#endif
    }
    return true;
}();

} // namespace
