// Several threads transform points at once, each with its own coordinate
// systems, local grid and datum converter, all made from the catalogue that
// was set up first. Every thread must reproduce the results computed before the
// threads started. Run under ThreadSanitizer in the continuous build.
// usage: thread_transforms system-directory/ user-directory/ [threads] [rounds]
#include "interface/KvCart.h"

#include <cstdio>
#include <algorithm>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace {

const char kDhdn[] =
    "GEOGCS[\"DHDN\",DATUM[\"Deutsches_Hauptdreiecksnetz\",SPHEROID[\"Bessel 1841\",6377397.155,299.1528128],"
    "TOWGS84[598.1,73.7,418.2,0.202,0.045,-2.455,6.7]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\","
    "0.0174532925199433]]";

const char* const kSystems[] = {"UTM-32", "UTM-33", "British National Grid", "LONG/LAT", kDhdn};

// Everything one thread computes, in order.
std::vector<double> Work(int rounds)
{
    std::vector<double> out;
    for (int r = 0; r < rounds; ++r) {
        for (const char* text : kSystems) {
            KVMP_HANDLE system = nullptr;
            int status = 0;
            C_KVMP_CREATE(text, &system, &status);
            if (status != 0)
                return {};
            for (int i = 0; i < 50; ++i) {
                double x = 0, y = 0, lon = 0, lat = 0;
                C_KVMP_GEO2PROJ(system, 5.0 + 0.1 * i, 48.0 + 0.07 * i, &x, &y);
                C_KVMP_PROJ2GEO(system, x, y, &lon, &lat);
                out.insert(out.end(), {x, y, lon, lat, C_KVMP_GETCONVERGENCE(system, 5.0 + 0.1 * i, 50.0)});
            }
            // The same points through the batch functions, in place.
            double bx[50], by[50];
            for (int i = 0; i < 50; ++i) {
                bx[i] = 5.0 + 0.1 * i;
                by[i] = 48.0 + 0.07 * i;
            }
            C_KVMP_GEO2PROJ_N(system, 50, bx, by, bx, by);
            out.insert(out.end(), bx, bx + 50);
            C_KVMP_PROJ2GEO_N(system, 50, bx, by, bx, by);
            out.insert(out.end(), by, by + 50);
            C_KVMP_DESTROY(&system, &status);
        }
        KVC_HANDLE grid = nullptr;
        KVDC_HANDLE converter = nullptr;
        int status = 0;
        C_KVC_CREATE("UTM", 9.5, 50.0, 12.0, &grid, &status);
        C_KVDC_CREATE(kDhdn, "UTM-32", &converter, &status);
        C_KVDC_SETCONVERSIONTYPE(converter, 2);
        for (int i = 0; i < 50; ++i) {
            double x = 0, y = 0, h = 10.0 * i, lon = 8.0 + 0.05 * i, lat = 49.0 + 0.05 * i;
            C_KVC_GEO2XY(grid, lon, lat, &x, &y);
            out.insert(out.end(), {x, y});
            C_KVDC_CONVERTXYH(converter, &lon, &lat, &h);
            out.insert(out.end(), {lon, lat, h});
        }
        double lons[50], lats[50], hs[50];
        for (int i = 0; i < 50; ++i) {
            lons[i] = 8.0 + 0.05 * i;
            lats[i] = 49.0 + 0.05 * i;
            hs[i] = 10.0 * i;
        }
        C_KVDC_CONVERTXYH_N(converter, 50, lons, lats, hs);
        out.insert(out.end(), lons, lons + 50);
        out.insert(out.end(), hs, hs + 50);
        C_KVC_DESTROY(&grid, &status);
        C_KVDC_DESTROY(&converter, &status);
    }
    return out;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3)
        return 2;
    CARTSETUPLINUX(argv[1], argv[2]);
    const int threads = argc > 3 ? std::atoi(argv[3]) : 4;
    const int rounds = argc > 4 ? std::atoi(argv[4]) : 20;
    const std::vector<double> expected = Work(rounds);
    if (expected.empty()) {
        std::fprintf(stderr, "the systems did not resolve\n");
        return 1;
    }
    std::vector<std::vector<double>> results(static_cast<size_t>(threads));
    std::vector<std::thread> pool;
    for (int t = 0; t < threads; ++t)
        pool.emplace_back([&results, t, rounds] { results[static_cast<size_t>(t)] = Work(rounds); });
    for (std::thread& thread : pool)
        thread.join();
    int failed = 0;
    for (int t = 0; t < threads; ++t) {
        // Bit for bit: no thread may see another's state.
        const std::vector<double>& got = results[static_cast<size_t>(t)];
        if (got.size() != expected.size() ||
            !std::equal(got.begin(), got.end(), expected.begin(),
                        [](double a, double b) { return a == b || (a != a && b != b); })) {
            std::fprintf(stderr, "thread %d computed something else\n", t);
            ++failed;
        }
    }
    std::printf("%d threads x %d rounds, %zu values each: %s\n", threads, rounds, expected.size(),
                failed == 0 ? "identical" : "DIFFERENT");
    return failed == 0 ? 0 : 1;
}
