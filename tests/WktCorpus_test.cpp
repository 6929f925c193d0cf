// Real one-line WKT from GDAL (ESRI and OGC forms, tools/make_wkt_corpus.py)
// against PROJ: each text must read to the type its projection name stands for,
// its engine must agree with PROJ's own definition of the EPSG code, and the
// PROJ.4 text we write must make PROJ compute what our engine computes.
#include "TestSupport.h"
#include "coordsys/KvMapProjection.h"
#include "projections/KvProjection.h"
#include "wkt/KvPRJParser.h"
#include "wkt/KvProjTranslator.h"

#include <cctype>
#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct CorpusPoint
{
    double lon, lat, xOurs, yOurs, xEpsg, yEpsg, xAdjusted, yAdjusted;
};

struct CorpusEntry
{
    std::string id, wkt, proj4;
    std::string adjustment; // why PROJ needs our text adjusted, or ""
    int type = 0;
    std::vector<CorpusPoint> points;
};

std::vector<CorpusEntry> LoadCorpus()
{
    std::ifstream in(std::string(KVCART_TEST_DATA_DIR) + "wkt_corpus.txt");
    std::vector<CorpusEntry> entries;
    std::map<std::string, size_t> index;
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#')
            continue;
        const std::vector<std::string> f = kvtest::TabFields(line);
        if (f[0] == "W") {
            CorpusEntry e;
            e.id = f[1];
            e.type = std::stoi(f[2]);
            e.wkt = f[3];
            index[e.id] = entries.size();
            entries.push_back(e);
        } else if (f[0] == "T") {
            entries[index.at(f[1])].proj4 = f.size() > 2 ? f[2] : "";
        } else if (f[0] == "A") {
            entries[index.at(f[1])].adjustment = f[2];
        } else if (f[0] == "P") {
            CorpusPoint p;
            double* v[] = {&p.lon, &p.lat, &p.xOurs, &p.yOurs, &p.xEpsg, &p.yEpsg, &p.xAdjusted, &p.yAdjusted};
            for (int i = 0; i < 8; ++i)
                *v[i] = std::strtod(f[2 + i].c_str(), nullptr);
            entries[index.at(f[1])].points.push_back(p);
        }
    }
    return entries;
}

struct EngineDeleter
{
    void operator()(CKvProjection* engine) const { CKvProjection::Release(engine); }
};

// Where the PROJ.4 text we write makes PROJ compute something else on purpose,
// the generator also asked PROJ with the text adjusted; the engine must agree
// with that. Whether PROJ's own EPSG definition can agree as well:
//  omerc  PROJ's omerc wants the centre longitude as +lonc and the natural-origin
//         form +no_uoff; our text has +lon_0, and a Hotine text without grid angle
//         is written with the undefined marker as +gamma. The engine follows the
//         registry's rules instead (the grid angle is the azimuth when none is
//         given, a centre-form text counts from its centre), so it is held to
//         PROJ's own EPSG definition, not to PROJ on our text.
//  krovak The X/Y scales and plane rotation are not written (+axis=swu restores
//         the southing/westing). The proj tool ignores +axis, so no EPSG check.
//  polar  The polar stereographic text has +lat_ts and the scale it implies;
//         PROJ refuses both together, so it was asked without +k.
// Grids across the antimeridian (Alaska zone 10, PDC Mercator, the Mercator of
// EPSG:3994) need no adjustment: their points are given within [-180, 180], where
// every engine reduces the longitude difference as PROJ's EPSG definition does.
bool EpsgComparable(const CorpusEntry& e)
{
    return e.adjustment.empty() || e.adjustment == "polar" || e.adjustment == "omerc";
}

// The reference of a point: PROJ on our text (adjusted), or for the oblique
// Mercator family PROJ's EPSG definition.
double ExpectedX(const CorpusEntry& e, const CorpusPoint& p)
{
    return e.adjustment == "omerc" ? p.xEpsg : p.xAdjusted;
}

double ExpectedY(const CorpusEntry& e, const CorpusPoint& p)
{
    return e.adjustment == "omerc" ? p.yEpsg : p.yAdjusted;
}

} // namespace

TEST(WktCorpus, ReadsEveryTextToTheTypeOfItsProjectionName)
{
    const std::vector<CorpusEntry> corpus = LoadCorpus();
    ASSERT_GT(corpus.size(), 300u);
    std::set<int> types;
    int failed = 0;
    for (const CorpusEntry& e : corpus) {
        CKvPRJParser parser(e.wkt.c_str());
        const bool parsed = parser.Parse(false);
        EXPECT_EQ(parser.GetProjectionType(), e.type) << e.id << "\n" << e.wkt;
        EXPECT_EQ(parsed, e.type != CKvMapProjData::eNoProjection) << e.id;
        types.insert(parser.GetProjectionType());
        failed += parser.GetProjectionType() == CKvMapProjData::eNoProjection;
    }
    // The corpus covers the methods of the table and three described ones; it
    // holds no text of a method the library lacks any more (refusals are read
    // in tests/PrjParser_test.cpp and tests/EpsgReading_test.cpp).
    for (int type : {1, 2, 3, 4, 5, 7, 8, 10, 11, 12, 13, 14, 15, 16, 17, 18, 24, 34, 35, 36})
        EXPECT_EQ(types.count(type), 1u) << "no text of type " << type;
    EXPECT_EQ(failed, 0);
}

TEST(WktCorpus, EnginesAgreeWithProjAndTheTranslationWithTheEngine)
{
    const CKvProjTranslator translator;
    int compared = 0, adjusted = 0, acrossAntimeridian = 0;
    for (const CorpusEntry& e : LoadCorpus()) {
        // The text handed to PROJ is the one we still write.
        EXPECT_EQ(translator.Convert2Proj4(e.wkt, nullptr, 0), e.proj4) << e.id;
        if (e.points.empty())
            continue;
        CKvPRJParser parser(e.wkt.c_str());
        ASSERT_TRUE(parser.Parse(false)) << e.id;
        const std::unique_ptr<CKvProjection, EngineDeleter> engine(parser.CreateMapProjection());
        ASSERT_TRUE(engine) << e.id;
        const bool epsgAgrees = EpsgComparable(e);
        adjusted += !e.adjustment.empty();
        double lon0 = 0, lat0 = 0;
        engine->GetOrigin(&lon0, &lat0);
        for (const CorpusPoint& p : e.points) {
            double x = NAN, y = NAN;
            engine->Geo2Proj(p.lon, p.lat, &x, &y);
            ASSERT_TRUE(std::isfinite(ExpectedX(e, p))) << e.id << " " << p.lon << " " << p.lat;
            EXPECT_NEAR(x, ExpectedX(e, p), 1e-3) << e.id << " " << e.adjustment << " " << e.proj4 << " at " << p.lon;
            EXPECT_NEAR(y, ExpectedY(e, p), 1e-3) << e.id << " " << e.adjustment << " " << e.proj4 << " at " << p.lat;
            if (e.adjustment == "krovak") {
                // Unadjusted, PROJ's Krovak answers east-north: minus westing, minus southing.
                EXPECT_NEAR(x, -p.yOurs, 1e-3) << e.id;
                EXPECT_NEAR(y, -p.xOurs, 1e-3) << e.id;
            }
            if (epsgAgrees) {
                EXPECT_NEAR(x, p.xEpsg, 1e-3) << e.id << " EPSG at " << p.lon << " " << p.lat;
                EXPECT_NEAR(y, p.yEpsg, 1e-3) << e.id << " EPSG at " << p.lon << " " << p.lat;
                // Given on the other side of the antimeridian from the origin.
                acrossAntimeridian += std::fabs(p.lon - lon0) > 180.0;
            }
            ++compared;
        }
    }
    EXPECT_GT(compared, 2500);
    EXPECT_GE(acrossAntimeridian, 12); // Alaska zone 10, PDC Mercator, EPSG:3994
    EXPECT_LT(adjusted, 25); // the deliberate differences stay the exception
}

TEST(WktCorpus, CoordinateSystemObjectsTransformAsProjInTheirAxisOrder)
{
    // Each text as given, and with its axes declared northing/easting and
    // westing/southing (the south-oriented grids of southern Africa): the object
    // must give PROJ's grid in that order and with those signs, and invert it.
    struct Axes
    {
        const char* nodes;
        bool swap;
        double sign;
    };
    const Axes variants[] = {{"", false, 1.0},
                             {",AXIS[\"Northing\",NORTH],AXIS[\"Easting\",EAST]", true, 1.0},
                             {",AXIS[\"Westing\",WEST],AXIS[\"Southing\",SOUTH]", false, -1.0}};
    int compared = 0;
    for (const CorpusEntry& e : LoadCorpus()) {
        if (e.points.empty() || e.wkt.find("AXIS[") != std::string::npos || e.type == 15)
            continue; // Krovak's own axes are southing/westing already
        for (const Axes& axes : variants) {
            std::string wkt = e.wkt;
            wkt.insert(wkt.size() - 1, axes.nodes);
            const CKvMapProjection system(wkt);
            ASSERT_NE(system.GetProjection(), nullptr) << e.id;
            for (const CorpusPoint& p : e.points) {
                double x = NAN, y = NAN, lon = NAN, lat = NAN;
                system.Geo2Proj(p.lon, p.lat, &x, &y);
                const double east = axes.sign * ExpectedX(e, p), north = axes.sign * ExpectedY(e, p);
                EXPECT_NEAR(x, axes.swap ? north : east, 1e-3) << e.id << axes.nodes;
                EXPECT_NEAR(y, axes.swap ? east : north, 1e-3) << e.id << axes.nodes;
                // Every point comes back, those across the antimeridian included,
                // with its longitude within [-180, 180] as it was given.
                system.Proj2Geo(x, y, &lon, &lat);
                EXPECT_NEAR(lon, p.lon, 1e-8) << e.id << axes.nodes;
                EXPECT_NEAR(lat, p.lat, 1e-8) << e.id << axes.nodes;
                ++compared;
            }
        }
    }
    EXPECT_GT(compared, 3 * 2500);
}
