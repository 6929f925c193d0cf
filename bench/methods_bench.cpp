// The methods described by their descriptor, in nanoseconds per point, forward
// and inverse, beside PROJ's proj_trans on the same points: every case of the
// reference files tests/data/method_vectors_*.txt, on the points PROJ computed
// for it (its forward grid over the area), or on its worked examples where PROJ
// has no such method.
#include "catalogue/KvCartSetup.h"
#include "coordsys/KvMapProjection.h"
#include "projections/KvProjection.h"

#include "BenchSupport.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <dirent.h>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr int kPoints = 1024;

struct MethodCase
{
    std::string id, crs, proj;
    std::vector<double> lon, lat, x, y;
    CKvProjection* engine = nullptr;
};

std::vector<std::string> Fields(const std::string& line)
{
    std::vector<std::string> fields;
    std::istringstream in(line);
    for (std::string field; std::getline(in, field, '\t');)
        fields.push_back(field);
    return fields;
}

// The cases, with up to kPoints of their points on the map (repeated to fill).
std::vector<MethodCase>& Cases()
{
    static std::vector<MethodCase> cases = [] {
        CKvCartSetup::Instance()->ReadData(KVCART_SHIPPED_DATA_DIR, "/nonexistent-user-directory/");
        std::vector<MethodCase> all;
        std::vector<std::string> files;
        if (DIR* dir = opendir(KVCART_TEST_DATA_DIR)) {
            while (const dirent* entry = readdir(dir)) {
                const std::string name = entry->d_name;
                if (name.compare(0, 15, "method_vectors_") == 0 && name.size() > 19 &&
                    name.compare(name.size() - 4, 4, ".txt") == 0)
                    files.push_back(name);
            }
            closedir(dir);
        }
        std::sort(files.begin(), files.end());
        for (const std::string& file : files) {
            std::ifstream in(std::string(KVCART_TEST_DATA_DIR) + file);
            for (std::string line; std::getline(in, line);) {
                const std::vector<std::string> f = Fields(line);
                if (f.size() == 2 && f[0] == "CASE") {
                    all.push_back({});
                    all.back().id = f[1];
                } else if (!all.empty() && f.size() == 2 && f[0] == "CRS") {
                    all.back().crs = f[1];
                } else if (!all.empty() && f.size() == 2 && f[0] == "PROJ") {
                    all.back().proj = f[1] == "-" ? std::string() : f[1];
                } else if (!all.empty() && ((f.size() == 6 && f[0] == "F" && f[3] != "nan") ||
                                            (f.size() == 7 && f[0] == "X" && all.back().proj.empty()))) {
                    // PROJ's points, or for a method PROJ has none of, the
                    // worked examples.
                    MethodCase& c = all.back();
                    c.lon.push_back(std::strtod(f[1].c_str(), nullptr));
                    c.lat.push_back(std::strtod(f[2].c_str(), nullptr));
                    c.x.push_back(std::strtod(f[3].c_str(), nullptr));
                    c.y.push_back(std::strtod(f[4].c_str(), nullptr));
                }
            }
        }
        std::vector<MethodCase> usable;
        for (MethodCase& c : all) {
            c.engine = CKvMapProjection::GetProjection(c.crs.c_str(), nullptr);
            if (c.engine == nullptr || c.lon.empty())
                continue;
            const size_t n = c.lon.size();
            for (size_t i = n; i < static_cast<size_t>(kPoints); ++i) {
                c.lon.push_back(c.lon[i % n]);
                c.lat.push_back(c.lat[i % n]);
                c.x.push_back(c.x[i % n]);
                c.y.push_back(c.y[i % n]);
            }
            c.lon.resize(kPoints);
            c.lat.resize(kPoints);
            c.x.resize(kPoints);
            c.y.resize(kPoints);
            usable.push_back(std::move(c));
        }
        return usable;
    }();
    return cases;
}

void Forward(benchmark::State& state, const MethodCase* c)
{
    for (auto _ : state)
        for (int i = 0; i < kPoints; ++i) {
            double x, y;
            c->engine->Geo2Proj(c->lon[i], c->lat[i], &x, &y);
            benchmark::DoNotOptimize(x);
            benchmark::DoNotOptimize(y);
        }
    kvbench::CountPoints(state, kPoints);
}

void Inverse(benchmark::State& state, const MethodCase* c)
{
    for (auto _ : state)
        for (int i = 0; i < kPoints; ++i) {
            double lon, lat;
            c->engine->Proj2Geo(c->x[i], c->y[i], &lon, &lat);
            benchmark::DoNotOptimize(lon);
            benchmark::DoNotOptimize(lat);
        }
    kvbench::CountPoints(state, kPoints);
}

#ifdef KVCART_BENCH_WITH_PROJ
void ProjMethod(benchmark::State& state, const MethodCase* c, PJ_DIRECTION direction)
{
    std::string definition;
    std::istringstream tokens(c->proj);
    for (std::string token; tokens >> token;)
        if (token != "+type=crs" && token != "+no_defs")
            definition += token + " ";
    const kvbench::CProj proj(definition.c_str());
    if (proj.Get() == nullptr) {
        state.SkipWithError("PROJ could not make the projection");
        return;
    }
    kvbench::TimeProjTrans(state, proj.Get(), direction, c->lon, c->lat, c->x, c->y);
}
#endif

const bool kRegistered = [] {
    for (const MethodCase& c : Cases()) {
        const std::string name = "Method/" + c.id;
        benchmark::RegisterBenchmark((name + "/forward").c_str(), Forward, &c);
        benchmark::RegisterBenchmark((name + "/inverse").c_str(), Inverse, &c);
#ifdef KVCART_BENCH_WITH_PROJ
        if (!c.proj.empty()) {
            benchmark::RegisterBenchmark((name + "/proj-forward").c_str(), ProjMethod, &c, PJ_FWD);
            benchmark::RegisterBenchmark((name + "/proj-inverse").c_str(), ProjMethod, &c, PJ_INV);
        }
#endif
    }
    return true;
}();

} // namespace
