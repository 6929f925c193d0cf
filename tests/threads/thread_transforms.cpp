// Several threads transform points at once, each with its own coordinate
// systems, local grid and datum converter, all made from the catalogue that
// was set up first, and each asks every string function of the C interface
// about texts and longitudes of its own. Every thread must reproduce, bit for
// bit and character for character, what the same work gave on one thread
// before the threads started. Run under ThreadSanitizer in the continuous
// build.
// usage: thread_transforms system-directory/ user-directory/ [threads] [rounds]
#include "interface/KvCart.h"

#include <cstdio>
#include <algorithm>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace {

const char kDhdn[] =
    "GEOGCS[\"DHDN\",DATUM[\"Deutsches_Hauptdreiecksnetz\",SPHEROID[\"Bessel 1841\",6377397.155,299.1528128],"
    "TOWGS84[598.1,73.7,418.2,0.202,0.045,-2.455,6.7]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\","
    "0.0174532925199433]]";

const char* const kSystems[] = {"UTM-32", "UTM-33", "British National Grid", "LONG/LAT", kDhdn};

// A transverse Mercator of its own for each thread and index: its name and
// central meridian tell the threads' answers apart.
std::string OwnSystem(int thread, int i)
{
    char text[768];
    std::snprintf(text, sizeof text,
                  "PROJCS[\"Grid %d of thread %d\",GEOGCS[\"GCS_WGS_1984\",DATUM[\"D_WGS_1984\",SPHEROID["
                  "\"WGS_1984\",6378137.0,298.257223563]],PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\","
                  "0.0174532925199433]],PROJECTION[\"Transverse_Mercator\"],PARAMETER[\"False_Easting\",%d],"
                  "PARAMETER[\"False_Northing\",0.0],PARAMETER[\"Central_Meridian\",%d],PARAMETER["
                  "\"Scale_Factor\",0.9996],PARAMETER[\"Latitude_Of_Origin\",0.0],UNIT[\"Meter\",1.0]]",
                  i, thread, 100000 * (thread + 1) + i, 3 * thread - 177 + i);
    return text;
}

// A string result by the interface's idiom: a first call with size 0 tells the
// length, a buffer of length + 1 bytes then takes the text with size = length.
// A status that is neither is kept as the result, so that it is compared too.
std::string Text(const std::function<void(char*, int, int*)>& get)
{
    int status = -2;
    get(nullptr, 0, &status);
    if (status < 0)
        return "status " + std::to_string(status);
    std::vector<char> buffer(static_cast<size_t>(status) + 1, '#');
    const int length = status;
    get(buffer.data(), length, &status);
    if (status != 0)
        return "status " + std::to_string(status) + " after length " + std::to_string(length);
    return std::string(buffer.data());
}

struct SResults
{
    std::vector<double> numbers;
    std::vector<std::string> texts;
};

// Every string function, and the questions on strings, on texts of the thread's own.
void AskStrings(int thread, int round, SResults& out)
{
    std::vector<std::string>& texts = out.texts;
    for (int i = 0; i < 50; ++i) {
        const std::string own = OwnSystem(thread, i);
        texts.push_back(Text([&](char* b, int n, int* s) { S_PROJECTIONSHORTNAME(own.c_str(), b, n, s); }));
        const double lon = -200.0 + 7.3 * thread + 11.0 * i + 0.5 * round;
        texts.push_back(Text([&](char* b, int n, int* s) { S_LONGITUDETOUTMZONE(b, n, s, lon); }));
        if (i % 10 != 0)
            continue;
        texts.push_back(Text([&](char* b, int n, int* s) {
            C_KVC_CONVERT2PROJ4(own.c_str(), nullptr, 0, b, n, s);
        }));
        texts.push_back(Text([&](char* b, int n, int* s) {
            C_KVC_CONVERT2PROJ(own.c_str(), nullptr, 0, b, n, s);
        }));
        texts.push_back(Text([&](char* b, int n, int* s) { C_KVMP_GETLASTERROR(b, n, s); }));

        KVMP_HANDLE system = nullptr;
        int status = -2;
        C_KVMP_CREATE(own.c_str(), &system, &status);
        texts.push_back(Text([&](char* b, int n, int* s) { C_KVMP_GETNAME(system, b, n, s); }));
        texts.push_back(Text([&](char* b, int n, int* s) { C_KVMP_GETPROJECTIONSTRING(system, b, n, s); }));
        texts.push_back(Text([&](char* b, int n, int* s) { C_KVMP_GETMESSAGE(system, b, n, s); }));
        C_KVMP_DESTROY(&system, &status);

        // A name that resolves nowhere: the reason names it.
        const std::string unknown = "No grid " + std::to_string(thread) + "." + std::to_string(i);
        C_KVMP_CREATE(unknown.c_str(), &system, &status);
        texts.push_back(Text([&](char* b, int n, int* s) { C_KVMP_GETLASTERROR(b, n, s); }));
        texts.push_back(Text([&](char* b, int n, int* s) { C_KVMP_GETMESSAGE(system, b, n, s); }));
        C_KVMP_DESTROY(&system, &status);

        KVC_HANDLE grid = nullptr;
        C_KVC_CREATE("UTM", lon, 10.0 * thread - 30.0, 1.0 * i, &grid, &status);
        texts.push_back(Text([&](char* b, int n, int* s) { C_KVC_GETPROJECTIONNAME(grid, b, n, s); }));
        texts.push_back(Text([&](char* b, int n, int* s) { C_KVC_GETPROJECTIONSTRING(grid, b, n, s); }));
        double x = 0.0, y = 0.0;
        C_KVC_XY2PROJ(grid, 100.0, 200.0, &x, &y);
        out.numbers.insert(out.numbers.end(), {x, y, C_KVC_GETPROJNORTH(grid)});
        C_KVC_DESTROY(&grid, &status);
    }
    texts.push_back(Text([&](char* b, int n, int* s) { S_GETGOOGLEMAPPROJECTIONSTRING(b, n, s); }));
    texts.push_back(Text([&](char* b, int n, int* s) { CARTGETERRORLINUX(b, n, s); }));

    // The questions read the catalogue's listing; once a round, they are slow.
    const std::string own = OwnSystem(thread, round);
    std::vector<double>& numbers = out.numbers;
    for (const char* text : {own.c_str(), "UTM-32", "British National Grid", "LONG/LAT", "NON-UTM", "UTM", "No grid"})
        numbers.insert(numbers.end(), {1.0 * S_ISVALID(text), 1.0 * S_ISLOCAL(text), 1.0 * S_ISLONGLAT(text),
                                       1.0 * S_ISGEOGRAPHICAL(text), 1.0 * S_ISGEOREFERENCED(text),
                                       1.0 * S_HASDATUM(text), 1.0 * S_ISTYPE(text, 3),
                                       1.0 * S_GETCOORDSYSTYPE(text), 1.0 * S_AREIDENTICAL(text, "UTM-32")});
    double x0 = 0.0, y0 = 0.0;
    int status = -2;
    S_PROJECTIONORIGIN(own.c_str(), &x0, &y0, &status);
    numbers.insert(numbers.end(), {x0, y0, 1.0 * status, 1.0 * C_KVC_GETEPSGREADING()});
    KVP_HANDLE engine = NewKvProjection(own.c_str());
    numbers.push_back(engine != nullptr ? 1.0 : 0.0);
    DeleteKvProjection(engine);
}

// Everything one thread computes, in order.
SResults Work(int thread, int rounds)
{
    SResults results;
    std::vector<double>& out = results.numbers;
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
        AskStrings(thread, r, results);
    }
    return results;
}

// The number of places where two sequences differ, a missing or extra element
// counting as one each; NaN equals NaN.
template <class T, class Same>
size_t Differences(const std::vector<T>& got, const std::vector<T>& expected, Same same)
{
    const size_t common = std::min(got.size(), expected.size());
    size_t count = std::max(got.size(), expected.size()) - common;
    for (size_t i = 0; i < common; ++i)
        if (!same(got[i], expected[i]))
            ++count;
    return count;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3)
        return 2;
    CARTSETUPLINUX(argv[1], argv[2]);
    const int threads = argc > 3 ? std::atoi(argv[3]) : 8;
    const int rounds = argc > 4 ? std::atoi(argv[4]) : 20;
    // Each thread's work done first on this thread alone.
    std::vector<SResults> expected;
    for (int t = 0; t < threads; ++t) {
        expected.push_back(Work(t, rounds));
        if (expected.back().numbers.empty()) {
            std::fprintf(stderr, "the systems did not resolve\n");
            return 1;
        }
    }
    std::vector<SResults> results(static_cast<size_t>(threads));
    std::vector<std::thread> pool;
    for (int t = 0; t < threads; ++t)
        pool.emplace_back([&results, t, rounds] { results[static_cast<size_t>(t)] = Work(t, rounds); });
    for (std::thread& thread : pool)
        thread.join();
    int failed = 0;
    for (int t = 0; t < threads; ++t) {
        // Bit for bit: no thread may see another's state.
        const SResults& got = results[static_cast<size_t>(t)];
        const SResults& want = expected[static_cast<size_t>(t)];
        const size_t numbers = Differences(got.numbers, want.numbers,
                                           [](double a, double b) { return a == b || (a != a && b != b); });
        const size_t texts =
            Differences(got.texts, want.texts, [](const std::string& a, const std::string& b) { return a == b; });
        if (numbers + texts != 0) {
            std::fprintf(stderr, "thread %d computed something else: %zu of %zu values, %zu of %zu texts\n", t,
                         numbers, want.numbers.size(), texts, want.texts.size());
            ++failed;
        }
    }
    std::printf("%d threads x %d rounds, %zu values and %zu texts each: %s\n", threads, rounds,
                expected[0].numbers.size(), expected[0].texts.size(), failed == 0 ? "identical" : "DIFFERENT");
    return failed == 0 ? 0 : 1;
}
