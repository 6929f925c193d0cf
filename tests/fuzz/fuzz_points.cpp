// libFuzzer target over the kvcart program's point lines. The input is one or
// more lines for the stream, converted from LONG/LAT to UTM-32 and back and
// from UTM-32 to a national grid on another datum. Beyond the sanitizers'
// findings it checks the program's promises: exactly one output line per input
// line, and a marked line ("* *") exactly when the stream reports it.
#include "coordsys/KvMapProjection.h"
#include "geodesy/KvDatumConverter.h"
#include "interface/KvCart.h"
#include "tools/kvcart/KvPointStream.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

void Check(bool condition, const char* what)
{
    if (!condition) {
        std::fprintf(stderr, "broken promise: %s\n", what);
        std::abort();
    }
}

struct Converters
{
    CKvDatumConverter toUtm{"LONG/LAT", "UTM-32"};
    CKvDatumConverter toGrid{"UTM-32", "British National Grid"};
    Converters()
    {
        toUtm.SetConversionType(CKvDatumConverter::eGeoToProj);
        const double shift[7] = {446.448, -125.157, 542.06, 7.27e-7, 1.197e-6, 4.082e-6, -20.489e-6};
        toGrid.SetDatumShift(CKvCartDef::eSevenParameters, shift, false);
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const bool setUp = [] {
        CARTSETUPLINUX(KVCART_SHIPPED_DATA_DIR, "/nonexistent-kvcart-fuzz/");
        return true;
    }();
    (void)setUp;
    static Converters converters;
    const std::string text(reinterpret_cast<const char*>(data), size);
    for (const CKvDatumConverter* converter : {&converters.toUtm, &converters.toGrid}) {
        for (bool inverse : {false, true}) {
            CKvPointStream stream(*converter, inverse, static_cast<int>(size % 18), 4);
            size_t begin = 0;
            while (begin <= text.size()) {
                size_t end = text.find('\n', begin);
                if (end == std::string::npos)
                    end = text.size();
                std::string out, problem;
                const bool ok = stream.ConvertLine(text.data() + begin, end - begin, out, problem);
                Check(out.find('\n') == std::string::npos, "one output line per input line");
                Check(ok == problem.empty(), "a problem exactly for a marked line");
                Check(ok || out.compare(0, 3, "* *") == 0, "a marked line starts with * *");
                begin = end + 1;
            }
        }
    }
    return 0;
}
