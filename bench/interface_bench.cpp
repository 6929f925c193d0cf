// Per point through the C interface (C_KVMP_GEO2PROJ / C_KVMP_PROJ2GEO) against
// the engine called directly on the same points, so that the cost of the
// wrapper, the axis handling and the virtual calls shows; PROJ's proj_trans on
// the same points and the same definition beside them when PROJ is present.
#include "coordsys/KvMapProjection.h"
#include "interface/KvCart.h"
#include "projections/KvProjection.h"

#include "BenchSupport.h"

#include <string>
#include <vector>

namespace {

constexpr int kPoints = 1024;

struct System
{
    const char* name;
    const char* text; // for the library
    const char* proj; // the same system for PROJ
    double lon0, lat0;
};

const char kLambert93[] =
    "PROJCS[\"RGF93 / Lambert-93\",GEOGCS[\"RGF93\",DATUM[\"RGF93\",SPHEROID[\"GRS 1980\",6378137,298.257222101]],"
    "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],PROJECTION[\"Lambert_Conformal_Conic_2SP\"],"
    "PARAMETER[\"standard_parallel_1\",49],PARAMETER[\"standard_parallel_2\",44],PARAMETER[\"latitude_of_origin\","
    "46.5],PARAMETER[\"central_meridian\",3],PARAMETER[\"false_easting\",700000],PARAMETER[\"false_northing\","
    "6600000],UNIT[\"metre\",1],AXIS[\"Northing\",NORTH],AXIS[\"Easting\",EAST]]";

const System kSystems[] = {
    {"UTM32", "UTM-32", "+proj=utm +zone=32 +ellps=WGS84", 9.0, 50.0},
    {"WorldMercator", "World Mercator", "+proj=merc +ellps=WGS84", 0.0, 30.0},
    {"RDNew", "RD New",
     "+proj=sterea +lat_0=52.15616055555555 +lon_0=5.38763888888889 +k=0.9999079 +x_0=155000 +y_0=463000 "
     "+ellps=bessel",
     5.4, 52.2},
    {"Lambert93NorthEast", kLambert93,
     "+proj=pipeline +step +proj=lcc +lat_1=49 +lat_2=44 +lat_0=46.5 +lon_0=3 +x_0=700000 +y_0=6600000 +ellps=GRS80 "
     "+step +proj=axisswap +order=2,1",
     3.0, 46.5},
};

struct Points
{
    std::vector<double> lon, lat, x, y;
};

Points MakePoints(const System& s)
{
    static bool setUp = [] {
        CARTSETUPLINUX(KVCART_SHIPPED_DATA_DIR, KVCART_SHIPPED_DATA_DIR);
        return true;
    }();
    (void)setUp;
    const CKvMapProjection system(s.text);
    Points p;
    for (int i = 0; i < kPoints; ++i) {
        p.lon.push_back(s.lon0 - 3.0 + 6.0 * ((i * 37) % kPoints) / kPoints);
        p.lat.push_back(s.lat0 - 3.0 + 6.0 * ((i * 61) % kPoints) / kPoints);
        double x = 0, y = 0;
        system.Geo2Proj(p.lon.back(), p.lat.back(), &x, &y);
        p.x.push_back(x);
        p.y.push_back(y);
    }
    return p;
}

// The whole array through the C batch functions.
void CInterfaceBatch(benchmark::State& state, const System* s, bool forward)
{
    const Points p = MakePoints(*s);
    KVMP_HANDLE handle = nullptr;
    int status = 0;
    C_KVMP_CREATE(s->text, &handle, &status);
    std::vector<double> u(kPoints), v(kPoints);
    for (auto _ : state) {
        if (forward)
            C_KVMP_GEO2PROJ_N(handle, kPoints, p.lon.data(), p.lat.data(), u.data(), v.data());
        else
            C_KVMP_PROJ2GEO_N(handle, kPoints, p.x.data(), p.y.data(), u.data(), v.data());
        benchmark::DoNotOptimize(u.data());
        benchmark::ClobberMemory();
    }
    C_KVMP_DESTROY(&handle, &status);
    kvbench::CountPoints(state, kPoints);
}

// Through the C interface, forward (lon/lat in) or inverse (grid in).
void CInterface(benchmark::State& state, const System* s, bool forward)
{
    const Points p = MakePoints(*s);
    KVMP_HANDLE handle = nullptr;
    int status = 0;
    C_KVMP_CREATE(s->text, &handle, &status);
    for (auto _ : state) {
        for (int i = 0; i < kPoints; ++i) {
            double u, v;
            if (forward)
                C_KVMP_GEO2PROJ(handle, p.lon[i], p.lat[i], &u, &v);
            else
                C_KVMP_PROJ2GEO(handle, p.x[i], p.y[i], &u, &v);
            benchmark::DoNotOptimize(u);
            benchmark::DoNotOptimize(v);
        }
    }
    C_KVMP_DESTROY(&handle, &status);
    kvbench::CountPoints(state, kPoints);
}

// The engine alone: engine order (easting, northing), no axis handling.
void EngineForward(benchmark::State& state, const System* s)
{
    const Points p = MakePoints(*s);
    const CKvMapProjection system(s->text);
    const CKvProjection* engine = system.GetProjection();
    for (auto _ : state) {
        for (int i = 0; i < kPoints; ++i) {
            double x, y;
            engine->Geo2Proj(p.lon[i], p.lat[i], &x, &y);
            benchmark::DoNotOptimize(x);
            benchmark::DoNotOptimize(y);
        }
    }
    kvbench::CountPoints(state, kPoints);
}

void EngineInverse(benchmark::State& state, const System* s)
{
    const Points p = MakePoints(*s);
    const CKvMapProjection system(s->text);
    const CKvProjection* engine = system.GetProjection();
    const bool swapped = system.GetCoordSysType() == 4;
    for (auto _ : state) {
        for (int i = 0; i < kPoints; ++i) {
            double lon, lat;
            engine->Proj2Geo(swapped ? p.y[i] : p.x[i], swapped ? p.x[i] : p.y[i], &lon, &lat);
            benchmark::DoNotOptimize(lon);
            benchmark::DoNotOptimize(lat);
        }
    }
    kvbench::CountPoints(state, kPoints);
}

#ifdef KVCART_BENCH_WITH_PROJ
void ProjTrans(benchmark::State& state, const System* s, PJ_DIRECTION direction)
{
    const Points p = MakePoints(*s);
    const kvbench::CProj proj(s->proj);
    if (proj.Get() == nullptr) {
        state.SkipWithError("PROJ could not make the system");
        return;
    }
    kvbench::TimeProjTrans(state, proj.Get(), direction, p.lon, p.lat, p.x, p.y);
}

// PROJ's own array interface on the same points (radians in, as PROJ wants).
void ProjTransGeneric(benchmark::State& state, const System* s, PJ_DIRECTION direction)
{
    const Points p = MakePoints(*s);
    const kvbench::CProj proj(s->proj);
    if (proj.Get() == nullptr) {
        state.SkipWithError("PROJ could not make the system");
        return;
    }
    std::vector<double> a(kPoints), b(kPoints);
    for (auto _ : state) {
        state.PauseTiming();
        for (int i = 0; i < kPoints; ++i) {
            a[i] = direction == PJ_FWD ? proj_torad(p.lon[i]) : p.x[i];
            b[i] = direction == PJ_FWD ? proj_torad(p.lat[i]) : p.y[i];
        }
        state.ResumeTiming();
        proj_trans_generic(proj.Get(), direction, a.data(), sizeof(double), kPoints, b.data(), sizeof(double), kPoints,
                           nullptr, 0, 0, nullptr, 0, 0);
        benchmark::DoNotOptimize(a.data());
        benchmark::ClobberMemory();
    }
    kvbench::CountPoints(state, kPoints);
}
#else
void ProjMissing(benchmark::State& state)
{
    for (auto _ : state) {
    }
    state.SkipWithError("PROJ's development files were not found at configure time: no comparison");
}
#endif

const bool kRegistered = [] {
    for (const System& s : kSystems) {
        const std::string name = std::string("Interface/") + s.name;
        benchmark::RegisterBenchmark((name + "/C_KVMP_GEO2PROJ").c_str(), CInterface, &s, true);
        benchmark::RegisterBenchmark((name + "/engine-forward").c_str(), EngineForward, &s);
        benchmark::RegisterBenchmark((name + "/C_KVMP_GEO2PROJ_N").c_str(), CInterfaceBatch, &s, true);
        benchmark::RegisterBenchmark((name + "/C_KVMP_PROJ2GEO").c_str(), CInterface, &s, false);
        benchmark::RegisterBenchmark((name + "/C_KVMP_PROJ2GEO_N").c_str(), CInterfaceBatch, &s, false);
        benchmark::RegisterBenchmark((name + "/engine-inverse").c_str(), EngineInverse, &s);
#ifdef KVCART_BENCH_WITH_PROJ
        benchmark::RegisterBenchmark((name + "/proj_trans-forward").c_str(), ProjTrans, &s, PJ_FWD);
        benchmark::RegisterBenchmark((name + "/proj_trans-inverse").c_str(), ProjTrans, &s, PJ_INV);
        benchmark::RegisterBenchmark((name + "/proj_trans_generic-forward").c_str(), ProjTransGeneric, &s, PJ_FWD);
        benchmark::RegisterBenchmark((name + "/proj_trans_generic-inverse").c_str(), ProjTransGeneric, &s, PJ_INV);
#endif
    }
#ifndef KVCART_BENCH_WITH_PROJ
    benchmark::RegisterBenchmark("Interface/proj_trans", ProjMissing);
#endif
    return true;
}();

} // namespace
