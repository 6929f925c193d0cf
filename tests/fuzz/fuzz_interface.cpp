// libFuzzer target over the flat C interface. The input is split at '\n' into
// up to three strings and a tail of bytes read as doubles: the strings go into
// every create function, the string queries and the PROJ.4 translation, and the
// created objects then transform the doubles (NaN, infinities and huge values
// included) through every conversion. Beyond the sanitizers' findings it checks
// the interface's promises: a failed create leaves the handle alone, a string
// result either fits or reports its length, and destroy nulls the handle.
#include "interface/KvCart.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

void Check(bool condition, const char* what)
{
    if (!condition) {
        std::fprintf(stderr, "broken promise: %s\n", what);
        std::abort();
    }
}

// A string result into a buffer of a size the input chose. The translation
// alone may report -1, for the generic "UTM".
template <typename Call>
void StringResult(Call call, int size, bool mayFail = false)
{
    std::vector<char> buffer(static_cast<size_t>(size) + 1, '\x7f');
    int status = -2;
    call(buffer.data(), size, &status);
    if (mayFail && status == -1)
        return;
    Check(status >= 0, "string status");
    if (status == 0)
        Check(std::memchr(buffer.data(), '\0', buffer.size()) != nullptr, "copied text is terminated");
    else
        Check(status > size && buffer[0] == '\x7f', "a text that does not fit leaves the buffer");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    static char user[] = "/tmp/kvcart-fuzz-XXXXXX";
    if (mkdtemp(user) == nullptr)
        return 0;
    std::atexit([] { rmdir(user); });
    const std::string userDirectory = std::string(user) + "/";
    CARTSETUPLINUX(KVCART_SHIPPED_DATA_DIR, userDirectory.c_str());
    return 0;
}

// Equal, or NaN in both.
static bool SameBits(double a, double b)
{
    return a == b || (a != a && b != b);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    std::vector<std::string> texts;
    size_t start = 0;
    while (texts.size() < 3) {
        const size_t end = bytes.find('\n', start);
        if (end == std::string::npos) {
            texts.push_back(bytes.substr(start));
            start = bytes.size();
            break;
        }
        texts.push_back(bytes.substr(start, end - start));
        start = end + 1;
    }
    while (texts.size() < 3)
        texts.push_back(texts.back());
    std::vector<double> values;
    for (size_t at = start; at + sizeof(double) <= bytes.size() && values.size() < 8; at += sizeof(double)) {
        double v;
        std::memcpy(&v, bytes.data() + at, sizeof v);
        values.push_back(v);
    }
    const double defaults[] = {10.0, 50.0, 500000.0, 5500000.0, 100.0, 30.0, 3.0, 0.0};
    for (size_t i = values.size(); i < 8; ++i)
        values.push_back(defaults[i]);
    const char* a = texts[0].c_str();
    const char* b = texts[1].c_str();
    const int room = static_cast<int>(static_cast<unsigned char>(texts[2].empty() ? 0 : texts[2][0]));

    // The queries that search the whole catalogue listing cost milliseconds;
    // one input in two asks them.
    if ((room & 0x80) != 0) {
        S_ISVALID(a);
        S_ISGEOREFERENCED(a);
        S_HASDATUM(a);
    }
    S_ISLOCAL(a);
    S_ISLONGLAT(a);
    S_ISGEOGRAPHICAL(a);
    S_ISTYPE(a, room & 15);
    S_AREIDENTICAL(a, b);
    S_GETCOORDSYSTYPE(a);
    StringResult([&](char* buf, int n, int* st) { S_PROJECTIONSHORTNAME(a, buf, n, st); }, room);
    StringResult([&](char* buf, int n, int* st) { S_LONGITUDETOUTMZONE(buf, n, st, values[0]); }, room);
    StringResult([&](char* buf, int n, int* st) { C_KVC_CONVERT2PROJ4(a, values.data(), room % 9, buf, n, st); },
                 room * 8, true);
    StringResult([&](char* buf, int n, int* st) { C_KVC_CONVERT2PROJ(a, values.data(), room % 9, buf, n, st); },
                 room * 8, true);
    C_KVC_SETEPSGREADING(room & 1);
    double x = 0, y = 0, z = 0, lon = 0, lat = 0, h = 0;
    int status = -2;
    S_PROJECTIONORIGIN(a, &x, &y, &status);
    KVP_HANDLE engine = NewKvProjection(a);
    DeleteKvProjection(engine);

    KVMP_HANDLE system = reinterpret_cast<KVMP_HANDLE>(&status); // a create that fails must not touch it
    C_KVMP_CREATE(a, &system, &status);
    if (status != 0) {
        Check(system == reinterpret_cast<KVMP_HANDLE>(&status), "failed create leaves the handle");
    } else {
        StringResult([&](char* buf, int n, int* st) { C_KVMP_GETNAME(system, buf, n, st); }, room);
        StringResult([&](char* buf, int n, int* st) { C_KVMP_GETMESSAGE(system, buf, n, st); }, room);
        StringResult([&](char* buf, int n, int* st) { C_KVMP_GETLASTERROR(buf, n, st); }, room);
        StringResult([&](char* buf, int n, int* st) { C_KVMP_GETPROJECTIONSTRING(system, buf, n, st); }, room * 8);
        C_KVMP_GEO2PROJ(system, values[0], values[1], &x, &y);
        C_KVMP_PROJ2GEO(system, values[2], values[3], &lon, &lat);
        C_KVMP_GETCONVERGENCE(system, values[0], values[1]);
        // The batch forms, in place, give the single calls' results for the same values.
        for (int inverse = 0; inverse < 2; ++inverse) {
            double bx[3] = {values[0], values[2], values[4]}, by[3] = {values[1], values[3], values[5]};
            double sx[3], sy[3];
            for (int i = 0; i < 3; ++i) {
                sx[i] = bx[i]; // in place: what a single call leaves untouched stays the input
                sy[i] = by[i];
                if (inverse == 0)
                    C_KVMP_GEO2PROJ(system, bx[i], by[i], &sx[i], &sy[i]);
                else
                    C_KVMP_PROJ2GEO(system, bx[i], by[i], &sx[i], &sy[i]);
            }
            if (inverse == 0)
                C_KVMP_GEO2PROJ_N(system, 3, bx, by, bx, by);
            else
                C_KVMP_PROJ2GEO_N(system, 3, bx, by, bx, by);
            for (int i = 0; i < 3; ++i)
                Check(SameBits(bx[i], sx[i]) && SameBits(by[i], sy[i]), "batch equals single calls");
        }
        C_KVMP_GEO2XYZ(system, values[0], values[1], values[4], &x, &y, &z);
        C_KVMP_XYZ2GEO(system, values[2], values[3], values[4], &lon, &lat, &h);
        C_KVMP_GETORIGIN(system, &x, &y);
        C_KVMP_GETDEFAULTAREA(system, &x, &y, &lon, &lat);
        C_KVMP_DESTROY(&system, &status);
        Check(status == 0 && system == nullptr, "destroy nulls the handle");
    }

    KVC_HANDLE grid = nullptr;
    C_KVC_CREATE(a, values[0], values[1], values[5], &grid, &status);
    if (status == 0) {
        StringResult([&](char* buf, int n, int* st) { C_KVC_GETPROJECTIONNAME(grid, buf, n, st); }, room);
        C_KVC_GETTRUENORTH(grid, values[2], values[3]);
        C_KVC_GETPROJNORTH(grid);
        C_KVC_GEO2XY(grid, values[0], values[1], &x, &y);
        C_KVC_XY2GEO(grid, values[2], values[3], &lon, &lat);
        C_KVC_PROJ2XY(grid, values[2], values[3], &x, &y);
        C_KVC_XY2PROJ(grid, values[2], values[3], &x, &y);
        C_KVMP_GEO2PROJ(C_KVC_GETPROJECTION(grid), values[0], values[1], &x, &y);
        C_KVC_DESTROY(&grid, &status);
    }

    KVDC_HANDLE converter = nullptr;
    C_KVDC_CREATE(a, b, &converter, &status);
    if (status == 0) {
        for (int type = 0; type < 4; ++type) {
            C_KVDC_SETCONVERSIONTYPE(converter, type);
            x = values[type % 2 == 0 ? 0 : 2];
            y = values[type % 2 == 0 ? 1 : 3];
            h = values[4];
            C_KVDC_CONVERTXYH(converter, &x, &y, &h);
            C_KVDC_INVCONVERTXYH(converter, &x, &y, &h);
            C_KVDC_CONVERTXY(converter, &x, &y);
            C_KVDC_INVCONVERTXY(converter, &x, &y);
        }
        x = values[2], y = values[3], z = values[4];
        C_KVDC_DATUMSHIFT(converter, &x, &y, &z);
        C_KVDC_INVDATUMSHIFT(converter, &x, &y, &z);
        C_KVDC_SETDATUMSHIFT(converter, room % 4, values.data(), room & 1);
        C_KVDC_INVERTORDER(converter);
        C_KVDC_CONVERTXY(converter, &x, &y);
        C_KVDC_DESTROY(&converter, &status);
        C_KVDC_DESTROY(&converter, &status);
        Check(status == -1, "a second destroy reports -1");
    }
    return 0;
}
