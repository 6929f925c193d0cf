// Every EPSG projected system as GDAL writes its .prj file, in the ESRI and the
// OGC WKT 1 form (tools/make_epsg_corpus.py), against PROJ's reading of the same
// text at three points of the system's area of use. The bar is no silent wrong
// answer: under the EPSG reading each text gives PROJ's coordinates within 1 mm
// or is refused with a reason; under the established reading every difference
// from PROJ is reported in the system's message.
#include "EpsgCorpus.h"
#include "TestSupport.h"

#include "coordsys/KvMapProjection.h"

#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <utility>

namespace {

const kvtest::EpsgCorpus& Corpus()
{
    static const kvtest::EpsgCorpus corpus = kvtest::LoadEpsgCorpus(KVCART_EPSG_CORPUS);
    return corpus;
}

using Reading = kvtest::EpsgReading;

constexpr double kTolerance = 1e-3; // metres

// Whether PROJ's order of the coordinates of a text is not the text's own. An
// ESRI text has no AXIS node and means easting, northing; for a polar ESRI text
// PROJ 9.1 reports both axes along meridians (north, north or south, south) and
// gives some northing first (EPSG:5482), others easting first (EPSG:32661). Such
// texts are compared in either order here; the order the library gives them,
// easting first, is tested on its own (EpsgReading.AxesNamedAlongMeridiansAtAPole).
bool ProjOrderUnsettled(const kvtest::EpsgText& text, int form)
{
    return form == 0 && text.axis1 == text.axis2 && (text.axis1 == "north" || text.axis1 == "south");
}

// The largest distance, over the text's points, between our coordinates and
// PROJ's; NaN-free points only. A point PROJ computes but we do not is infinite.
double WorstDifference(const CKvMapProjection& system, const kvtest::EpsgText& text, bool swap, int& compared);

double WorstDifference(const CKvMapProjection& system, const kvtest::EpsgText& text, int form, int& compared)
{
    const double worst = WorstDifference(system, text, false, compared);
    if (worst <= kTolerance || !ProjOrderUnsettled(text, form))
        return worst;
    int ignored = 0;
    return std::fmin(worst, WorstDifference(system, text, true, ignored));
}

double WorstDifference(const CKvMapProjection& system, const kvtest::EpsgText& text, bool swap, int& compared)
{
    double worst = 0.0;
    for (const kvtest::EpsgPoint& p : text.points) {
        if (!std::isfinite(p.x) || !std::isfinite(p.y))
            continue;
        double x = NAN, y = NAN;
        system.Geo2Proj(p.lon, p.lat, &x, &y);
        if (swap)
            std::swap(x, y);
        ++compared;
        const double d = std::hypot(x - p.x, y - p.y);
        worst = std::isfinite(d) ? std::fmax(worst, d) : INFINITY;
    }
    return worst;
}

// The first words of a reason, to count refusals by kind.
std::string ReasonKind(const std::string& reason)
{
    const size_t quote = reason.find("\" is not supported");
    if (quote != std::string::npos)
        return reason.substr(0, quote + 18);
    const size_t colon = reason.find(':');
    return colon == std::string::npos ? reason : reason.substr(0, colon);
}

// Texts PROJ 9.1 computes otherwise than the registry defines their method,
// whose registry figures the library gives (checked against the method's
// worked example in tests/data/method_vectors_*.txt): not compared with PROJ.
bool ProjDiffersFromTheRegistry(int code)
{
    // The Belgian Lambert (EPSG method 9803): PROJ drops the grid's 29.2985"
    // turn, 745 m at IOGP Guidance Note 7-2's example.
    return code == 31300;
}

const char* FormName(int form)
{
    return form == 0 ? "ESRI" : "OGC";
}

} // namespace

TEST(EpsgCorpus, EpsgReadingGivesProjsCoordinatesOrSaysWhy)
{
    const Reading reading(true);
    int right = 0, refused = 0, wrong = 0, compared = 0, projDiffers = 0;
    std::map<std::string, int> reasons;
    for (const kvtest::EpsgSystem& s : Corpus().systems) {
        for (int form = 0; form < 2; ++form) {
            const kvtest::EpsgText& text = s.texts[form];
            if (!text.written || !text.read)
                continue;
            const CKvMapProjection system(text.wkt);
            if (system.GetProjection() == nullptr) {
                ++refused;
                EXPECT_FALSE(system.GetMessage().empty()) << "EPSG:" << s.code << " " << FormName(form);
                ++reasons[ReasonKind(system.GetMessage())];
                continue;
            }
            if (ProjDiffersFromTheRegistry(s.code)) {
                ++projDiffers;
                continue;
            }
            const double worst = WorstDifference(system, text, form, compared);
            if (worst <= kTolerance) {
                ++right;
                continue;
            }
            ++wrong;
            ADD_FAILURE() << "EPSG:" << s.code << " " << FormName(form) << " (" << s.methodName << ") is off by "
                          << worst << " m\n"
                          << text.wkt;
        }
    }
    std::printf("EPSG reading: %d texts right to 1 mm, %d refused, %d wrong, %d where PROJ differs from the "
                "registry; %d points compared\n",
                right, refused, wrong, projDiffers, compared);
    for (const auto& [reason, count] : reasons)
        std::printf("  refused %5d  %s\n", count, reason.c_str());
    EXPECT_EQ(wrong, 0);
    // What the library reads today (both texts of EPSG:3857 among them, as Web
    // Mercator, and the methods described by their descriptor): a method added
    // may raise these, none may lower them.
    EXPECT_GE(right, 10224);
    EXPECT_LE(refused, 1);
    EXPECT_EQ(projDiffers, 2);
}

TEST(EpsgCorpus, EstablishedReadingReportsEveryDifference)
{
    const Reading reading(false);
    int right = 0, warned = 0, refused = 0, silent = 0, compared = 0;
    std::map<std::string, int> warnings;
    for (const kvtest::EpsgSystem& s : Corpus().systems) {
        for (int form = 0; form < 2; ++form) {
            const kvtest::EpsgText& text = s.texts[form];
            if (!text.written || !text.read)
                continue;
            const CKvMapProjection system(text.wkt);
            if (system.GetProjection() == nullptr) {
                ++refused;
                EXPECT_FALSE(system.GetMessage().empty()) << "EPSG:" << s.code << " " << FormName(form);
                continue;
            }
            if (ProjDiffersFromTheRegistry(s.code) || WorstDifference(system, text, form, compared) <= kTolerance) {
                ++right;
                continue;
            }
            if (!system.GetMessage().empty()) {
                ++warned;
                ++warnings[system.GetMessage().substr(0, system.GetMessage().find(':'))];
                continue;
            }
            ++silent;
            ADD_FAILURE() << "EPSG:" << s.code << " " << FormName(form) << " (" << s.methodName
                          << ") differs from PROJ without a warning\n"
                          << text.wkt;
        }
    }
    std::printf("Established reading: %d texts right to 1 mm, %d different with a warning, %d refused, %d silent\n",
                right, warned, refused, silent);
    for (const auto& [warning, count] : warnings)
        std::printf("  warned %5d  %s\n", count, warning.c_str());
    EXPECT_EQ(silent, 0);
    EXPECT_GE(right, 10152); // ESRI's text of EPSG:3857 among them
    EXPECT_LE(refused, 1);
}
