#ifndef KVCART_TESTS_EPSGCORPUS_H
#define KVCART_TESTS_EPSGCORPUS_H

// Loader of the EPSG projected-system corpus (tools/make_epsg_corpus.py): every
// non-deprecated EPSG projected coordinate system as GDAL writes it into a .prj
// file (ESRI form and OGC WKT 1 form), with PROJ's coordinates at three points of
// the system's area of use, once from the text and once from the EPSG definition.
// The build extracts the archive tests/data/epsg_corpus.tsv.tar.xz to the path
// KVCART_EPSG_CORPUS. The file's record types are described in the script.

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <iterator>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace kvtest {

// A point of a system's area of use: Greenwich longitude and latitude in degrees
// on the system's own datum, and PROJ's coordinates in metres along the first
// and second axis (NaN where PROJ gave no finite value).
struct EpsgPoint
{
    double lon = 0.0, lat = 0.0, x = 0.0, y = 0.0;
};

enum class EpsgForm { Esri = 0, Ogc = 1 };

// One text of a system as GDAL writes it, and PROJ's reading of it.
struct EpsgText
{
    bool written = false;   // GDAL wrote the text (else gdalReason says why not)
    std::string wkt;        // one line
    std::string gdalReason;
    bool read = false;      // PROJ read the text (else projReason says why not)
    std::string projReason;
    std::string axis1, axis2; // directions of the projected axes: east, north, west, south
    double metresPerUnit = std::numeric_limits<double>::quiet_NaN();
    std::vector<EpsgPoint> points; // PROJ on the text: metres, in the text's axis order
};

struct EpsgSystem
{
    int code = 0;
    std::string name;
    int methodCode = 0;
    std::string methodName;
    double west = 0.0, south = 0.0, east = 0.0, north = 0.0; // west > east across the antimeridian
    std::array<EpsgText, 2> texts;  // indexed by EpsgForm
    std::vector<EpsgPoint> epsgPoints; // PROJ on EPSG:code: metres, in EPSG's axis order

    const EpsgText& Text(EpsgForm form) const { return texts[static_cast<size_t>(form)]; }
};

struct EpsgCorpus
{
    std::string header; // the first comment line: PROJ, GDAL and EPSG dataset versions
    std::vector<EpsgSystem> systems; // ascending code

    const EpsgSystem* Find(int code) const
    {
        const auto it = std::lower_bound(systems.begin(), systems.end(), code,
                                         [](const EpsgSystem& s, int c) { return s.code < c; });
        return it != systems.end() && it->code == code ? &*it : nullptr;
    }
};

namespace epsg_detail {

[[noreturn]] inline void Fail(size_t lineNumber, const std::string& what)
{
    throw std::runtime_error("epsg corpus line " + std::to_string(lineNumber) + ": " + what);
}

// Numbers are read with from_chars: the C locale whatever the process has set.
inline double Number(std::string_view text, size_t lineNumber)
{
    double value = 0.0;
    const auto r = std::from_chars(text.data(), text.data() + text.size(), value);
    if (r.ec != std::errc() || r.ptr != text.data() + text.size())
        Fail(lineNumber, "not a number: '" + std::string(text) + "'");
    return value;
}

inline int Integer(std::string_view text, size_t lineNumber)
{
    int value = 0;
    const auto r = std::from_chars(text.data(), text.data() + text.size(), value);
    if (r.ec != std::errc() || r.ptr != text.data() + text.size())
        Fail(lineNumber, "not an integer: '" + std::string(text) + "'");
    return value;
}

} // namespace epsg_detail

// Reads the whole corpus. Throws std::runtime_error, naming the line, when the
// file is missing or a record is malformed or does not follow its system's S line.
inline EpsgCorpus LoadEpsgCorpus(const std::string& path)
{
    using epsg_detail::Fail;
    using epsg_detail::Integer;
    using epsg_detail::Number;

    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw std::runtime_error("cannot open the epsg corpus " + path);
    const std::string data((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());

    EpsgCorpus corpus;
    corpus.systems.reserve(5200);
    std::array<std::string_view, 10> f;
    size_t lineNumber = 0;
    for (size_t pos = 0; pos < data.size();) {
        size_t end = data.find('\n', pos);
        if (end == std::string::npos)
            end = data.size();
        const std::string_view line(data.data() + pos, end - pos);
        pos = end + 1;
        ++lineNumber;
        if (line.empty())
            continue;
        if (line[0] == '#') {
            if (corpus.header.empty())
                corpus.header = std::string(line.substr(1));
            continue;
        }

        size_t n = 0;
        for (size_t start = 0;;) {
            const size_t tab = line.find('\t', start);
            if (n == f.size())
                Fail(lineNumber, "too many fields");
            f[n++] = line.substr(start, tab == std::string_view::npos ? std::string_view::npos : tab - start);
            if (tab == std::string_view::npos)
                break;
            start = tab + 1;
        }
        const auto expect = [&](size_t count) {
            if (n != count)
                Fail(lineNumber, "expected " + std::to_string(count) + " fields, found " + std::to_string(n));
        };
        if (f[0].size() != 1)
            Fail(lineNumber, "unknown record '" + std::string(f[0]) + "'");
        const char kind = f[0][0];

        if (kind == 'S') {
            expect(9);
            EpsgSystem s;
            s.code = Integer(f[1], lineNumber);
            s.name = std::string(f[2]);
            s.methodCode = Integer(f[3], lineNumber);
            s.methodName = std::string(f[4]);
            s.west = Number(f[5], lineNumber);
            s.south = Number(f[6], lineNumber);
            s.east = Number(f[7], lineNumber);
            s.north = Number(f[8], lineNumber);
            if (!corpus.systems.empty() && corpus.systems.back().code >= s.code)
                Fail(lineNumber, "systems out of code order");
            corpus.systems.push_back(std::move(s));
            continue;
        }

        if (n < 2 || corpus.systems.empty() || Integer(f[1], lineNumber) != corpus.systems.back().code)
            Fail(lineNumber, "record does not follow its system's S line");
        EpsgSystem& s = corpus.systems.back();
        if (kind == 'G') {
            expect(6);
            s.epsgPoints.push_back({Number(f[2], lineNumber), Number(f[3], lineNumber), Number(f[4], lineNumber),
                                    Number(f[5], lineNumber)});
            continue;
        }

        if (n < 3 || (f[2] != "E" && f[2] != "O"))
            Fail(lineNumber, "form must be E or O");
        EpsgText& t = s.texts[f[2] == "E" ? 0 : 1];
        switch (kind) {
        case 'W':
            expect(4);
            t.written = true;
            t.wkt = std::string(f[3]);
            break;
        case 'X':
            expect(4);
            t.gdalReason = std::string(f[3]);
            break;
        case 'A':
            expect(6);
            t.read = true;
            t.axis1 = std::string(f[3]);
            t.axis2 = std::string(f[4]);
            t.metresPerUnit = Number(f[5], lineNumber);
            break;
        case 'U':
            expect(4);
            t.projReason = std::string(f[3]);
            break;
        case 'P':
            expect(7);
            t.points.push_back({Number(f[3], lineNumber), Number(f[4], lineNumber), Number(f[5], lineNumber),
                                Number(f[6], lineNumber)});
            break;
        default:
            Fail(lineNumber, "unknown record '" + std::string(f[0]) + "'");
        }
    }
    return corpus;
}

#ifdef KVCART_EPSG_CORPUS
// The corpus the build extracted.
inline EpsgCorpus LoadEpsgCorpus() { return LoadEpsgCorpus(KVCART_EPSG_CORPUS); }
#endif

} // namespace kvtest

#endif
