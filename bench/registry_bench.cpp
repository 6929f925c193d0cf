// The EPSG registry: the set-up that does not read it, the first look-up that
// does (the file read and indexed), and every later look-up (a search and the
// system built from its text), beside PROJ's proj_create("EPSG:n") on its
// database in one context as a host keeps it.
#include "catalogue/KvCartSetup.h"
#include "catalogue/KvEpsgRegistry.h"
#include "coordsys/KvMapProjection.h"
#include "interface/KvCart.h"

#include "BenchSupport.h"

#include <string>

namespace {

// The catalogue read once, as a host does at start-up.
void SetUpOnce()
{
    static const bool done = [] {
        CKvCartSetup::Instance()->ReadData(KVCART_SHIPPED_DATA_DIR, "/nonexistent-user-directory/");
        return true;
    }();
    (void)done;
}

const char* const kCodes[] = {"EPSG:27700", "EPSG:2154", "EPSG:28992", "EPSG:32632", "EPSG:3035", "EPSG:4277"};

// CARTSETUPLINUX's work, once per process as a host does it: the catalogue
// files read. The registry is not read (its first look-up below reads it).
void CatalogueSetUp(benchmark::State& state)
{
    for (auto _ : state)
        SetUpOnce();
}
BENCHMARK(CatalogueSetUp)->Unit(benchmark::kMillisecond)->Iterations(1);

// The first look-up of a process: the file read and indexed, then one system.
void RegistryFirstLookUp(benchmark::State& state)
{
    SetUpOnce();
    const std::string path = std::string(KVCART_SHIPPED_DATA_DIR) + "epsg_registry.txt";
    for (auto _ : state) {
        CKvEpsgRegistry::Instance().UseFile(path); // forgets what was read
        const CKvMapProjection system("EPSG:27700");
        benchmark::DoNotOptimize(system.GetProjection());
    }
}
BENCHMARK(RegistryFirstLookUp)->Unit(benchmark::kMillisecond);

// A later look-up: "EPSG:n" to a coordinate system ready to transform.
void RegistryLookUp(benchmark::State& state)
{
    SetUpOnce();
    const char* code = kCodes[state.range(0)];
    { const CKvMapProjection warm(code); }
    for (auto _ : state) {
        const CKvMapProjection system(code);
        benchmark::DoNotOptimize(system.GetProjection());
    }
    state.SetLabel(code);
}
BENCHMARK(RegistryLookUp)->DenseRange(0, 5)->Unit(benchmark::kMicrosecond);

#ifdef KVCART_BENCH_WITH_PROJ
void ProjCreateEpsg(benchmark::State& state)
{
    PJ_CONTEXT* context = proj_context_create();
    const char* code = kCodes[state.range(0)];
    for (auto _ : state) {
        PJ* crs = proj_create(context, code);
        benchmark::DoNotOptimize(crs);
        proj_destroy(crs);
    }
    proj_context_destroy(context);
    state.SetLabel(code);
}
BENCHMARK(ProjCreateEpsg)->DenseRange(0, 5)->Unit(benchmark::kMicrosecond);
#endif

} // namespace
