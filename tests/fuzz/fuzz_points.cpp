// libFuzzer target over the kvcart program's point lines. The input is one or
// more lines for the stream, converted from LONG/LAT to UTM-32 and back and
// from UTM-32 to a national grid on another datum in US survey feet. Beyond the
// sanitizers' findings it checks the program's promises: exactly one output
// line per input line, line by line and through the whole reader (a byte-order
// mark, header lines, a last line without its end); a marked line ("* *")
// exactly when the stream reports it; and messages that are printable UTF-8,
// whatever bytes the input held.
#include "coordsys/KvMapProjection.h"
#include "geodesy/KvDatumConverter.h"
#include "interface/KvCart.h"
#include "tools/kvcart/KvPointStream.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
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

// No control byte but the line end, and every byte above 0x7f within
// well-formed UTF-8 (the escapes leave nothing else).
bool Printable(const std::string& text)
{
    for (size_t i = 0; i < text.size(); ++i) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        if ((c < 0x20 && c != '\n') || c == 0x7f)
            return false;
        if (c < 0x80)
            continue;
        size_t n = c >= 0xf0 ? 4 : c >= 0xe0 ? 3 : 2;
        if (c < 0xc2 || c > 0xf4 || i + n > text.size())
            return false;
        for (size_t k = 1; k < n; ++k)
            if ((static_cast<unsigned char>(text[i + k]) & 0xc0) != 0x80)
                return false;
        i += n - 1;
    }
    return true;
}

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
        const double feet = converter == &converters.toGrid ? 1200.0 / 3937.0 : 1.0;
        for (bool inverse : {false, true}) {
            CKvPointStream stream(*converter, inverse, static_cast<int>(size % 18), 4);
            stream.SetUnits(1.0, feet);
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
                Check(Printable(problem), "messages are printable UTF-8");
                begin = end + 1;
            }

            // The whole reader: as many output lines as input lines.
            stream.SetSkipHeader(static_cast<long>(size % 3));
            FILE* in = fmemopen(const_cast<char*>(text.data()), text.size(), "r");
            char* written = nullptr;
            size_t writtenSize = 0;
            char* said = nullptr;
            size_t saidSize = 0;
            FILE* out = open_memstream(&written, &writtenSize);
            FILE* err = open_memstream(&said, &saidSize);
            if (in != nullptr && out != nullptr && err != nullptr) {
                const long marked = stream.Run(in, "fuzz", out, err);
                std::fflush(out);
                std::fflush(err);
                // A byte-order mark opening the input is no text of a line: an
                // input of nothing else is empty.
                const std::string body = text.compare(0, 3, "\xEF\xBB\xBF") == 0 ? text.substr(3) : text;
                const long lines = static_cast<long>(std::count(body.begin(), body.end(), '\n')) +
                                   (body.empty() || body.back() == '\n' ? 0 : 1);
                Check(static_cast<long>(std::count(written, written + writtenSize, '\n')) == lines,
                      "the reader gives one output line per input line");
                Check(marked >= 0, "memory input reads and writes");
                Check(Printable(std::string(said, saidSize)), "the reader's messages are printable UTF-8");
            }
            if (in != nullptr)
                std::fclose(in);
            if (out != nullptr)
                std::fclose(out);
            if (err != nullptr)
                std::fclose(err);
            std::free(written);
            std::free(said);
        }
    }
    return 0;
}
