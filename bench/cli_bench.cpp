// The command-line program's transform loop end to end on text: lines read,
// parsed, converted (LONG/LAT to UTM-32 and back), formatted and written, as
// 'kvcart transform' runs them, on one thread and with two converting threads.
// Input comes from memory and output goes to /dev/null, so that the figure is
// the program's own work, not the disk's.
#include "coordsys/KvMapProjection.h"
#include "geodesy/KvDatumConverter.h"
#include "interface/KvCart.h"
#include "tools/kvcart/KvPointStream.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <string>

namespace {

constexpr int kLines = 100000;

std::string MakeText(bool geographic)
{
    CARTSETUPLINUX(KVCART_SHIPPED_DATA_DIR, KVCART_SHIPPED_DATA_DIR);
    const CKvMapProjection utm("UTM-32");
    std::string text;
    char line[96];
    for (int i = 0; i < kLines; ++i) {
        const double lon = 6.0 + 6.0 * ((i * 37) % kLines) / kLines;
        const double lat = -80.0 + 164.0 * ((i * 61) % kLines) / kLines;
        double x = 0, y = 0;
        utm.Geo2Proj(lon, lat, &x, &y);
        if (geographic)
            std::snprintf(line, sizeof line, "%.7f %.7f\n", lon, lat);
        else
            std::snprintf(line, sizeof line, "%.4f %.4f\n", x, y);
        text += line;
    }
    return text;
}

void StreamUtm(benchmark::State& state, bool forward, int threads)
{
    static const std::string geographic = MakeText(true);
    static const std::string projected = MakeText(false);
    std::string text = forward ? geographic : projected;
    CKvDatumConverter converter("LONG/LAT", "UTM-32");
    converter.SetConversionType(CKvDatumConverter::eGeoToProj);
    CKvPointStream stream(converter, !forward, forward ? 4 : 9, 4);
    stream.SetThreads(threads);
    FILE* sink = std::fopen("/dev/null", "w");
    for (auto _ : state) {
        FILE* in = fmemopen(&text[0], text.size(), "r");
        const long marked = stream.Run(in, "bench", sink, stderr);
        std::fclose(in);
        if (marked != 0)
            state.SkipWithError("lines were marked");
    }
    std::fclose(sink);
    state.SetItemsProcessed(state.iterations() * kLines);
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

} // namespace

BENCHMARK_CAPTURE(StreamUtm, LongLatToUtm32, true, 1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(StreamUtm, Utm32ToLongLat, false, 1)->Unit(benchmark::kMillisecond);
// Two converting threads besides the reader and the writer (wall clock).
BENCHMARK_CAPTURE(StreamUtm, LongLatToUtm32Threads2, true, 2)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(StreamUtm, Utm32ToLongLatThreads2, false, 2)->Unit(benchmark::kMillisecond)->UseRealTime();
