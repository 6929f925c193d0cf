// Popular Visualisation Pseudo Mercator (EPSG method 1024, Web Mercator): the
// engine against PROJ's webmerc and EPSG:3857 (tools/make_pseudo_mercator_vectors.py
// wrote the vectors), the edges of its domain, and the texts that name it as GDAL,
// PROJ and ESRI write them, read by both readings and written back.
#include "TestSupport.h"

#include "catalogue/KvMapProjectionList.h"
#include "catalogue/KvPseudoMercatorProjection.h"
#include "coordsys/KvMapProjection.h"
#include "paramfile/Gxr.h"
#include "projections/KvPseudoMercator.h"
#include "wkt/KvPRJParser.h"
#include "wkt/KvProjTranslator.h"

#include <cmath>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace {

using Reading = kvtest::EpsgReading;

const kvtest::VectorCase& VectorCase(const std::string& engine, const std::string& label)
{
    static const std::vector<kvtest::VectorCase> cases =
        kvtest::LoadVectorCases(KVCART_TEST_DATA_DIR "pseudo_mercator_vectors.txt");
    for (const kvtest::VectorCase& c : cases)
        if (c.engine == engine && c.label == label)
            return c;
    static const kvtest::VectorCase none;
    ADD_FAILURE() << "no case " << engine << " " << label;
    return none;
}

// EPSG:3857 as GDAL 3.6 writes it: gdalsrsinfo -o wkt_esri (ESRI's
// WGS_1984_Web_Mercator_Auxiliary_Sphere, also ESRI:102100) and -o wkt1.
const char kEsri3857[] =
    "PROJCS[\"WGS_1984_Web_Mercator_Auxiliary_Sphere\",GEOGCS[\"GCS_WGS_1984\",DATUM[\"D_WGS_1984\",SPHEROID["
    "\"WGS_1984\",6378137.0,298.257223563]],PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\",0.0174532925199433]],"
    "PROJECTION[\"Mercator_Auxiliary_Sphere\"],PARAMETER[\"False_Easting\",0.0],PARAMETER[\"False_Northing\",0.0],"
    "PARAMETER[\"Central_Meridian\",0.0],PARAMETER[\"Standard_Parallel_1\",0.0],PARAMETER[\"Auxiliary_Sphere_Type\","
    "0.0],UNIT[\"Meter\",1.0]]";
const char kOgc3857[] =
    "PROJCS[\"WGS 84 / Pseudo-Mercator\",GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\",6378137,"
    "298.257223563,AUTHORITY[\"EPSG\",\"7030\"]],AUTHORITY[\"EPSG\",\"6326\"]],PRIMEM[\"Greenwich\",0,AUTHORITY["
    "\"EPSG\",\"8901\"]],UNIT[\"degree\",0.0174532925199433,AUTHORITY[\"EPSG\",\"9122\"]],AUTHORITY[\"EPSG\","
    "\"4326\"]],PROJECTION[\"Mercator_1SP\"],PARAMETER[\"central_meridian\",0],PARAMETER[\"scale_factor\",1],"
    "PARAMETER[\"false_easting\",0],PARAMETER[\"false_northing\",0],UNIT[\"metre\",1,AUTHORITY[\"EPSG\",\"9001\"]],"
    "AXIS[\"Easting\",EAST],AXIS[\"Northing\",NORTH],EXTENSION[\"PROJ4\",\"+proj=merc +a=6378137 +b=6378137 "
    "+lat_ts=0 +lon_0=0 +x_0=0 +y_0=0 +k=1 +units=m +nadgrids=@null +wktext +no_defs\"],AUTHORITY[\"EPSG\","
    "\"3857\"]]";

// The coordinates of a system at the points of a case, within 1 mm, and back.
void ExpectCase(const CKvMapProjection& system, const kvtest::VectorCase& c, const std::string& what)
{
    ASSERT_NE(system.GetProjection(), nullptr) << what << ": " << system.GetMessage();
    ASSERT_FALSE(c.points.empty()) << what;
    for (const kvtest::VectorPoint& p : c.points) {
        double x = NAN, y = NAN, lon = NAN, lat = NAN;
        system.Geo2Proj(p.lon, p.lat, &x, &y);
        EXPECT_NEAR(x, p.x, 1e-3) << what << " at " << p.lon << " " << p.lat;
        EXPECT_NEAR(y, p.y, 1e-3) << what << " at " << p.lon << " " << p.lat;
        system.Proj2Geo(p.x, p.y, &lon, &lat);
        EXPECT_NEAR(lat, p.lat, 1e-9) << what << " at " << p.lon << " " << p.lat;
        if (std::fabs(p.lat) < 89.9) {
            EXPECT_NEAR(std::remainder(lon - p.lon, 360.0), 0.0, 1e-9) << what << " at " << p.lon << " " << p.lat;
        }
    }
}

} // namespace

namespace {

// A text of tests/data/pseudo_mercator_wkt.txt: PROJ's coordinates from it, and
// PROJ's verdict on the strings we write for it.
struct WktText
{
    std::string id, wkt, proj, legacy;
    double projWorst = NAN, legacyWorst = NAN;
    kvtest::VectorCase points;
};

std::vector<WktText> LoadWktTexts()
{
    std::ifstream in(KVCART_TEST_DATA_DIR "pseudo_mercator_wkt.txt");
    std::vector<WktText> texts;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#')
            continue;
        const std::vector<std::string> f = kvtest::TabFields(line);
        if (f[0] == "W") {
            texts.push_back({f[1], f[2], "", "", NAN, NAN, {}});
            continue;
        }
        WktText& t = texts.back();
        if (f[0] == "P") {
            kvtest::VectorPoint p;
            p.lon = std::stod(f[2]);
            p.lat = std::stod(f[3]);
            p.x = std::stod(f[4]);
            p.y = std::stod(f[5]);
            t.points.points.push_back(p);
        } else if (f[0] == "S") {
            t.proj = f[2];
            t.projWorst = std::strtod(f[3].c_str(), nullptr);
        } else if (f[0] == "L") {
            t.legacy = f[2];
            t.legacyWorst = std::strtod(f[3].c_str(), nullptr);
        }
    }
    return texts;
}

} // namespace

// ESRI's, GDAL's and PROJ's texts of EPSG:3857 and ESRI:102100, a grid on GRS 80
// with its own central meridian and false origin in both forms, a sphere, and the
// registry's name of the method: PROJ's coordinates under the EPSG reading; the
// same under the established reading, except for GDAL's spherical EXTENSION,
// which keeps its established answer with its warning. PROJ reads the PROJ string
// we write as the same system (+proj=webmerc), and the legacy PROJ.4 text (a
// spherical merc with a null grid) as well where the reading is the registry's.
TEST(PseudoMercatorWkt, TextsAsGdalProjAndEsriWriteThem)
{
    const std::vector<WktText> texts = LoadWktTexts();
    ASSERT_GE(texts.size(), 9u);
    const CKvProjTranslator translator;
    for (const WktText& t : texts) {
        SCOPED_TRACE(t.id);
        {
            const Reading reading(true);
            const CKvMapProjection system(t.wkt);
            ExpectCase(system, t.points, t.id + ", EPSG reading");
            EXPECT_EQ(system.GetMessage(), "");
            std::string reason;
            EXPECT_EQ(translator.ConvertToProj(t.wkt, nullptr, 0, &reason), t.proj) << reason;
            EXPECT_LE(t.projWorst, 1e-3) << t.proj;
        }
        const Reading reading(false);
        const CKvMapProjection system(t.wkt);
        const bool extension = t.wkt.find("EXTENSION[") != std::string::npos;
        if (!extension)
            ExpectCase(system, t.points, t.id + ", established reading");
        EXPECT_EQ(system.GetMessage().empty(), !extension) << system.GetMessage();
        EXPECT_EQ(translator.Convert2Proj4(t.wkt, nullptr, 0), t.legacy);
        if (!extension) {
            EXPECT_LE(t.legacyWorst, 1e-3) << t.legacy;
        }
    }
}

// What the method does not have is not read as something else: ESRI's other
// auxiliary spheres, an origin off the equator, a scale, and a spherical
// EXTENSION that is not the pseudo-Mercator of the text's own parameters (another
// radius, another central meridian, another scale, another projection). Each is
// refused with its reason under the EPSG reading; under the established reading
// the EXTENSION texts keep their answer and their old warning, which names no
// Web Mercator reading.
TEST(PseudoMercatorWkt, WhatTheMethodDoesNotHaveIsRefusedWithItsReason)
{
    // A text with one piece replaced.
    const auto with = [](std::string text, const std::string& from, const std::string& to) {
        return text.replace(text.find(from), from.size(), to);
    };
    const auto esriWith = [&with](const std::string& from, const std::string& to) { return with(kEsri3857, from, to); };
    const auto ogcWith = [&with](const std::string& from, const std::string& to) { return with(kOgc3857, from, to); };
    const struct
    {
        std::string text, reason;
    } refused[] = {
        {esriWith("\"Auxiliary_Sphere_Type\",0.0", "\"Auxiliary_Sphere_Type\",1.0"),
         "projection \"Mercator_Auxiliary_Sphere\": its Auxiliary_Sphere_Type 1 is not supported (only 0, the "
         "sphere of the semi-major axis)"},
        {esriWith("\"Auxiliary_Sphere_Type\",0.0", "\"Auxiliary_Sphere_Type\",3.0"),
         "projection \"Mercator_Auxiliary_Sphere\": its Auxiliary_Sphere_Type 3 is not supported (only 0, the "
         "sphere of the semi-major axis)"},
        {esriWith("\"Standard_Parallel_1\",0.0", "\"Standard_Parallel_1\",30.0"),
         "projection \"Mercator_Auxiliary_Sphere\": its latitude of origin 30 is not supported (the "
         "pseudo-Mercator's natural origin is on the equator)"},
        {esriWith("PARAMETER[\"Central_Meridian\",0.0],", ""),
         "projection \"Mercator_Auxiliary_Sphere\": the parameter \"Central_Meridian\" is missing"},
        {esriWith("\"Mercator_Auxiliary_Sphere\"],", "\"Popular_Visualisation_Pseudo_Mercator\"],PARAMETER["
                                                     "\"Scale_Factor\",0.9996],"),
         "projection \"Popular_Visualisation_Pseudo_Mercator\": its Scale_Factor 0.9996 is not supported (the "
         "pseudo-Mercator has no scale of its own)"},
    };
    for (const bool epsg : {false, true}) {
        const Reading reading(epsg);
        for (const auto& r : refused) {
            const CKvMapProjection system(r.text);
            EXPECT_EQ(system.GetProjection(), nullptr) << r.text;
            EXPECT_EQ(system.GetMessage(), r.reason);
        }
    }
    // Without Auxiliary_Sphere_Type or Standard_Parallel_1 the text is the sphere
    // of the semi-major axis on the equator, as PROJ reads it.
    for (const std::string& text : {esriWith("PARAMETER[\"Auxiliary_Sphere_Type\",0.0],", ""),
                                    esriWith("PARAMETER[\"Standard_Parallel_1\",0.0],", "")}) {
        const CKvMapProjection system(text);
        ExpectCase(system, VectorCase("webmerc", "EPSG3857"), text);
    }

    const std::string notWeb[] = {
        ogcWith("+a=6378137 +b=6378137", "+a=6371000 +b=6371000"),
        ogcWith("+lon_0=0 ", "+lon_0=10 "),
        ogcWith("+k=1 ", "+k=0.9996 "),
        ogcWith("PARAMETER[\"scale_factor\",1]", "PARAMETER[\"scale_factor\",0.9996]"),
        ogcWith("+proj=merc ", "+proj=eqc "),
    };
    for (const std::string& text : notWeb) {
        {
            const Reading reading(true);
            const CKvMapProjection system(text);
            EXPECT_EQ(system.GetProjection(), nullptr) << text;
            EXPECT_NE(system.GetMessage().find("over the ellipsoidal datum (Web Mercator): not supported"),
                      std::string::npos)
                << system.GetMessage();
        }
        const Reading reading(false);
        const CKvMapProjection system(text);
        EXPECT_NE(system.GetProjection(), nullptr) << text;
        EXPECT_NE(system.GetMessage().find("read on its SPHEROID instead"), std::string::npos) << text;
        EXPECT_EQ(system.GetMessage().find("EPSG reading"), std::string::npos) << system.GetMessage();
    }
    // GDAL's older form of the same system, a Mercator_2SP on the equator, is it.
    {
        const Reading reading(true);
        const CKvMapProjection system(
            ogcWith("PROJECTION[\"Mercator_1SP\"],PARAMETER[\"central_meridian\",0],PARAMETER[\"scale_factor\",1]",
                    "PROJECTION[\"Mercator_2SP\"],PARAMETER[\"standard_parallel_1\",0],PARAMETER[\"central_"
                    "meridian\",0]"));
        ExpectCase(system, VectorCase("webmerc", "EPSG3857"), "Mercator_2SP with the EXTENSION");
    }
}

// The legacy PROJ.4 text cannot put a datum shift beside the sphere: PROJ.4 would
// take the sphere for the datum's figure, so a system with a shift has none.
TEST(PseudoMercatorWkt, LegacyTextWithADatumShiftIsUndefined)
{
    const CKvProjTranslator translator;
    const double shift[3] = {-87.0, -98.0, -121.0};
    EXPECT_EQ(translator.Convert2Proj4(kEsri3857, shift, 3), "+proj=undef ");
    std::string withShift = kEsri3857;
    withShift.insert(withShift.find("]],PRIMEM") + 1, ",TOWGS84[-87,-98,-121,0,0,0,0]");
    const CKvMapProjection system(withShift);
    ASSERT_NE(system.GetProjection(), nullptr) << withShift;
    EXPECT_EQ(translator.Convert2Proj4(withShift, nullptr, 0), "+proj=undef ");
    EXPECT_NE(translator.Convert2Proj4(kEsri3857, nullptr, 0), "+proj=undef ");
}

// GDAL's text of EPSG:3857 under the established reading keeps its answer, the
// Mercator of the SPHEROID, and its warning, which names the reading that gives
// Web Mercator (the EPSG reading of the text is among the texts above).
TEST(PseudoMercatorWkt, GdalTextOfEpsg3857KeepsItsEstablishedAnswer)
{
    const Reading reading(false);
    const CKvMapProjection system(kOgc3857);
    ExpectCase(system, VectorCase("merc1", "WGS84-spheroid"), "OGC, established");
    EXPECT_NE(system.GetMessage().find("sphere of radius 6378137"), std::string::npos) << system.GetMessage();
    EXPECT_NE(system.GetMessage().find("the EPSG reading gives Web Mercator"), std::string::npos)
        << system.GetMessage();
}

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kPiA = 3.141592653589793 * 6378137.0; // half the web map's width on WGS 84
const CKvEllipsoid kWgs84("WGS 84", "WE", 6378137.0, 298.257223563);

std::unique_ptr<CKvPseudoMercator> Engine(const kvtest::VectorCase& c)
{
    const CKvEllipsoid figure(c.label, "", c.a, c.invf);
    return std::make_unique<CKvPseudoMercator>(c.label, c.params[0], c.params[1], c.params[2], c.params[3], figure);
}

} // namespace

// Forward within 1 mm of PROJ and back within 1e-9 degree, on WGS 84 (EPSG:3857
// itself), GRS 80 with a central meridian at 150 E (points across the
// antimeridian), Clarke 1866, a sphere, and longitudes beyond +-180 (PROJ +over).
// The worst differences are printed for the README's table.
TEST(PseudoMercator, AgainstProj)
{
    double worstForward = 0.0, worstInverse = 0.0;
    int compared = 0;
    for (const char* label : {"EPSG3857", "lon150-GRS80", "lon-60-Clarke1866", "lon10-sphere", "over"}) {
        const kvtest::VectorCase& c = VectorCase("webmerc", label);
        ASSERT_FALSE(c.points.empty()) << label;
        const std::unique_ptr<CKvPseudoMercator> engine = Engine(c);
        for (const kvtest::VectorPoint& p : c.points) {
            double x = NAN, y = NAN, lon = NAN, lat = NAN;
            engine->Geo2Proj(p.lon, p.lat, &x, &y);
            const double d = std::hypot(x - p.x, y - p.y);
            EXPECT_LE(d, 1e-3) << label << " at " << p.lon << " " << p.lat << ": " << x << " " << y;
            worstForward = std::fmax(worstForward, d);
            engine->Proj2Geo(p.x, p.y, &lon, &lat);
            // Back within +-180: a longitude given beyond comes back reduced.
            const double dLon = std::remainder(lon - p.lon, 360.0);
            EXPECT_LE(std::fabs(lon), 180.0) << label;
            EXPECT_NEAR(dLon, 0.0, 1e-9) << label << " at " << p.lon << " " << p.lat;
            EXPECT_NEAR(lat, p.lat, 1e-9) << label << " at " << p.lon << " " << p.lat;
            worstInverse = std::fmax(worstInverse, std::fmax(std::fabs(dLon), std::fabs(lat - p.lat)));
            ++compared;
        }
    }
    EXPECT_GT(compared, 1800);
    std::printf("pseudo-Mercator against PROJ: %d points, forward %.2g mm, inverse %.2g degree\n", compared,
                worstForward * 1e3, worstInverse);
}

// The map is not conformal on the ellipsoid: its scales along the meridian and the
// parallel, against PROJ's coordinates over geodesic lengths on WGS 84, and the
// meridians are grid north.
TEST(PseudoMercator, ScalesOnTheEllipsoidAndConvergence)
{
    const kvtest::VectorCase& c = VectorCase("scale", "EPSG3857");
    ASSERT_FALSE(c.points.empty());
    const std::unique_ptr<CKvPseudoMercator> engine = Engine(c);
    for (const kvtest::VectorPoint& p : c.points) {
        double h = NAN, k = NAN;
        engine->GetScaleFactors(p.lon, p.lat, &h, &k);
        EXPECT_NEAR(h / p.x, 1.0, 1e-8) << p.lat;
        EXPECT_NEAR(k / p.y, 1.0, 1e-8) << p.lat;
        EXPECT_EQ(engine->GetConvergence(p.lon, p.lat), p.convergence) << p.lat;
    }
    // On the equator the parallel is true to scale and the meridian is not.
    double h = NAN, k = NAN;
    engine->GetScaleFactors(0.0, 0.0, &h, &k);
    EXPECT_EQ(k, 1.0);
    EXPECT_NEAR(h, 1.0 / (1.0 - 0.0066943799901413165), 1e-15);
    // On a sphere both are sec phi.
    const CKvPseudoMercator sphere("sphere", 0.0, 0.0, 0.0, 0.0, CKvEllipsoid("sphere", "", 6371229.0, 0.0));
    sphere.GetScaleFactors(5.0, 60.0, &h, &k);
    EXPECT_NEAR(h, 2.0, 1e-14);
    EXPECT_NEAR(k, 2.0, 1e-14);
    sphere.GetScaleFactors(5.0, 90.0, &h, &k);
    EXPECT_EQ(h, kInf);
    EXPECT_EQ(k, kInf);
    for (const double bad : {91.0, -90.5, std::nan(""), kInf}) {
        sphere.GetScaleFactors(5.0, bad, &h, &k);
        EXPECT_TRUE(std::isnan(h) && std::isnan(k)) << bad;
        EXPECT_TRUE(std::isnan(sphere.GetConvergence(5.0, bad))) << bad;
    }
    sphere.GetScaleFactors(NAN, 10.0, &h, &k);
    EXPECT_TRUE(std::isnan(h) && std::isnan(k));
    EXPECT_TRUE(std::isnan(sphere.GetConvergence(kInf, 10.0)));
}

// Every double is an input: the poles lie at an infinite northing, whose inverse
// is no point; the edge of the square web map, the antimeridian from both sides,
// latitudes beyond the poles and numbers that are none.
TEST(PseudoMercator, EdgesOfTheDomain)
{
    const CKvPseudoMercator web("web", 0.0, 0.0, 0.0, 0.0, kWgs84);
    double x = NAN, y = NAN, lon = NAN, lat = NAN;
    web.Geo2Proj(12.0, 90.0, &x, &y);
    EXPECT_NEAR(x, 12.0 * kPiA / 180.0, 1e-6);
    EXPECT_EQ(y, kInf);
    web.Geo2Proj(12.0, -90.0, &x, &y);
    EXPECT_EQ(y, -kInf);
    kvtest::ExpectInverseNaN(web, x, y);
    // Close to the pole the northing is large but finite, and comes back.
    web.Geo2Proj(12.0, 89.99999999, &x, &y);
    EXPECT_TRUE(std::isfinite(y));
    EXPECT_GT(y, 1.0e8);
    web.Proj2Geo(x, y, &lon, &lat);
    EXPECT_NEAR(lat, 89.99999999, 1e-12);
    // A northing too far for any latitude to be told from the pole is the pole.
    web.Proj2Geo(0.0, 1e308, &lon, &lat);
    EXPECT_EQ(lat, 90.0);
    EXPECT_EQ(lon, 0.0);
    web.Proj2Geo(0.0, -1e308, &lon, &lat);
    EXPECT_EQ(lat, -90.0);

    // The square: pi a on each side, at latitude 85.0511287798066.
    const double edge = 85.0511287798066;
    web.Geo2Proj(180.0, edge, &x, &y);
    EXPECT_NEAR(x, kPiA, 1e-6);
    EXPECT_NEAR(y, kPiA, 1e-4);
    kvtest::ExpectInverse(web, kPiA, kPiA, 180.0, edge, 1e-12);
    double x1, y1, x2, y2;
    web.GetDefaultArea(&x1, &y1, &x2, &y2);
    for (const double corner : {-x1, -y1, x2, y2})
        EXPECT_NEAR(corner, kPiA, 1e-6);
    const CKvPseudoMercator shifted("shifted", 150.0, 0.0, 1000.0, -2000.0, kWgs84);
    shifted.GetDefaultArea(&x1, &y1, &x2, &y2);
    EXPECT_NEAR(x1, 1000.0 - kPiA, 1e-6);
    EXPECT_NEAR(y2, -2000.0 + kPiA, 1e-6);
    shifted.GetOrigin(&lon, &lat);
    EXPECT_EQ(lon, 150.0);
    EXPECT_EQ(lat, 0.0);
    // A copy is the same map.
    const std::unique_ptr<CKvProjection> copy(shifted.Clone());
    shifted.Geo2Proj(-170.0, 33.3, &x1, &y1);
    copy->Geo2Proj(-170.0, 33.3, &x2, &y2);
    EXPECT_TRUE(x1 == x2 && y1 == y2);

    // The antimeridian: -180 and 180 are the two edges of the map (a difference of
    // half a turn keeps its sign), each coming back on its own side; from an origin
    // at 150 E, 170 W lies 40 degrees east.
    web.Geo2Proj(-180.0, 10.0, &x1, &y1);
    web.Geo2Proj(180.0, 10.0, &x2, &y2);
    EXPECT_NEAR(x2 - x1, 2.0 * kPiA, 1e-6);
    EXPECT_EQ(y1, y2);
    kvtest::ExpectInverse(web, x1, y1, -180.0, 10.0, 1e-12);
    kvtest::ExpectInverse(web, x2, y2, 180.0, 10.0, 1e-12);
    shifted.Geo2Proj(-170.0, 0.0, &x, &y);
    EXPECT_NEAR(x - 1000.0, 40.0 * kPiA / 180.0, 1e-6);
    shifted.Geo2Proj(180.0, 0.0, &x1, &y1);
    shifted.Geo2Proj(-180.0, 0.0, &x2, &y2);
    EXPECT_EQ(x1, x2);

    // Latitudes off the ellipsoid and numbers that are none: NaN, both ways.
    const double bad[][2] = {{0.0, 90.0000001}, {0.0, -91.0}, {0.0, 1e308}, {0.0, NAN},  {NAN, 0.0},
                             {kInf, 0.0},       {-kInf, 0.0}, {0.0, kInf},  {0.0, -kInf}};
    for (const auto& p : bad) {
        kvtest::ExpectForwardNaN(web, p[0], p[1]);
        if (!std::isfinite(p[0]) || !std::isfinite(p[1]))
            kvtest::ExpectInverseNaN(web, p[0], p[1]);
    }
    // A longitude of 540 is a line carried on one and a half turns east; 1e308
    // has an easting beyond the doubles.
    web.Geo2Proj(540.0, 0.0, &x, &y);
    EXPECT_NEAR(x, 3.0 * kPiA, 1e-6);
    web.Proj2Geo(x, y, &lon, &lat);
    EXPECT_NEAR(std::fabs(lon), 180.0, 1e-12); // the antimeridian, from either side
    web.Geo2Proj(1e308, 0.0, &x, &y);
    EXPECT_EQ(x, kInf);
    // A grid point beyond the doubles' eastings is still a longitude: reduced.
    web.Proj2Geo(1e300, 0.0, &lon, &lat);
    EXPECT_LE(std::fabs(lon), 180.0);
    EXPECT_EQ(lat, 0.0);
}

// No map of parameters the method does not have: an origin off the equator, an
// unknown or unusable figure, an origin that is no number. Every answer is NaN.
TEST(PseudoMercator, UnusableParametersGiveNaN)
{
    const CKvEllipsoid unknown("", "", 0.0, 0.0);
    std::vector<std::unique_ptr<CKvPseudoMercator>> engines;
    engines.emplace_back(new CKvPseudoMercator("lat10", 0.0, 10.0, 0.0, 0.0, kWgs84));
    engines.emplace_back(new CKvPseudoMercator("latNaN", 0.0, NAN, 0.0, 0.0, kWgs84));
    engines.emplace_back(new CKvPseudoMercator("a0", 0.0, 0.0, 0.0, 0.0, unknown));
    engines.emplace_back(new CKvPseudoMercator("a-", 0.0, 0.0, 0.0, 0.0, CKvEllipsoid("", "", -6378137.0, 0.0)));
    engines.emplace_back(new CKvPseudoMercator("aInf", 0.0, 0.0, 0.0, 0.0, CKvEllipsoid("", "", kInf, 0.0)));
    engines.emplace_back(new CKvPseudoMercator("lonInf", kInf, 0.0, 0.0, 0.0, kWgs84));
    engines.emplace_back(new CKvPseudoMercator("feNaN", 0.0, 0.0, NAN, 0.0, kWgs84));
    const CKvPseudoMercatorProjection orphan("orphan", "", "??", 0.0, 0.0, 0.0, 0.0);
    engines.emplace_back(new CKvPseudoMercator(&orphan));
    for (const auto& engine : engines) {
        SCOPED_TRACE(engine->GetName());
        kvtest::ExpectForwardNaN(*engine, 10.0, 45.0);
        kvtest::ExpectForwardNaN(*engine, 10.0, 90.0);
        kvtest::ExpectInverseNaN(*engine, 1000.0, 2000.0);
        EXPECT_TRUE(std::isnan(engine->GetConvergence(10.0, 45.0)));
        double x, y, x2, y2;
        engine->GetDefaultArea(&x, &y, &x2, &y2);
        EXPECT_TRUE(std::isnan(x) && std::isnan(y2));
    }
}

// 1 000 trips forward and back over the web map drift by nothing measurable.
TEST(PseudoMercator, RoundTrips)
{
    const CKvPseudoMercator web("web", -60.0, 0.0, 500000.0, 100000.0, CKvEllipsoid("", "", 6378206.4, 294.9786982));
    double worst = 0.0;
    for (double lat = -85.0; lat <= 85.0; lat += 8.5)
        for (double lon = -179.0; lon <= 179.0; lon += 17.9) {
            double x0, y0, x = 0.0, y = 0.0, u = lon, v = lat;
            web.Geo2Proj(lon, lat, &x0, &y0);
            for (int i = 0; i < 1000; ++i) {
                web.Geo2Proj(u, v, &x, &y);
                web.Proj2Geo(x, y, &u, &v);
            }
            EXPECT_NEAR(u, lon, 1e-10);
            EXPECT_NEAR(v, lat, 1e-10);
            worst = std::fmax(worst, std::hypot(x - x0, y - y0));
        }
    EXPECT_LT(worst, 1e-6);
}

// The new definition type 24 (its index, section and file form: KvMapProjData's
// tests): the engine its definition makes, and its WKT.
TEST(PseudoMercator, CatalogueTypeAndItsText)
{
    using D = CKvMapProjData;
    EXPECT_TRUE(D::IsEquivalent(1, D::ePseudoMercator));
    EXPECT_FALSE(D::IsEquivalent(2, D::ePseudoMercator));
    EXPECT_EQ(std::unique_ptr<D>(D::CreateDefaultParameterProjection(D::ePseudoMercator))->GetProjectionTypeTitle(),
              "Popular Visualisation Pseudo Mercator");

    // The engine its definition makes.
    kvtest::ShippedCatalogue(); // the ellipsoid WE
    const CKvPseudoMercatorProjection web("Web test", "Tests", "WE", 150.0, 0.0, 1000.0, -2000.0);
    const std::unique_ptr<CKvProjection> fromDefinition(web.CreateProjection());
    ASSERT_NE(dynamic_cast<CKvPseudoMercator*>(fromDefinition.get()), nullptr);
    // (The map takes the semi-major axis alone, the same on WGS 84 and GRS 80.)
    const kvtest::VectorCase& reference = VectorCase("webmerc", "lon150-GRS80");
    const CKvPseudoMercator byValue("w", 150.0, 0.0, 1000.0, -2000.0, kWgs84);
    for (const kvtest::VectorPoint& p : reference.points) {
        double x1, y1, x2, y2;
        fromDefinition->Geo2Proj(p.lon, p.lat, &x1, &y1);
        byValue.Geo2Proj(p.lon, p.lat, &x2, &y2);
        EXPECT_EQ(x1, x2);
        EXPECT_EQ(y1, y2);
    }

    // Described to WKT by its catalogue definition, in ESRI's form (the parameters
    // in the order GDAL writes them), which reads back as itself under both readings.
    auto* definition = new CKvPseudoMercatorProjection("Web test grid", "Tests", "WE", 150.0, 0.0, 1000.0, -2000.0);
    CKvMapProjection::AddMapProjection(definition);
    CString wkt;
    {
        const std::unique_ptr<CKvProjection> engine(definition->CreateProjection());
        const CKvPRJParser record(engine.get());
        EXPECT_EQ(record.GetProjectionType(), D::ePseudoMercator);
        EXPECT_TRUE(record.Format(wkt));
    }
    CKvMapProjection::DeleteMapProjection(definition);
    const std::string written = wkt.GetStdString();
    EXPECT_NE(written.find("DATUM[\"Tests\",SPHEROID["), std::string::npos) << written;
    EXPECT_NE(written.find(",6378137,298.257223563]]"), std::string::npos) << written;
    EXPECT_NE(written.find("PROJECTION[\"Mercator_Auxiliary_Sphere\"],PARAMETER[\"False_Easting\",1000],"
                           "PARAMETER[\"False_Northing\",-2000],PARAMETER[\"Central_Meridian\",150],"
                           "PARAMETER[\"Standard_Parallel_1\",0],PARAMETER[\"Auxiliary_Sphere_Type\",0],"
                           "UNIT[\"Meter\",1]]"),
              std::string::npos)
        << written;
    for (const bool epsg : {false, true}) {
        const Reading reading(epsg);
        const CKvMapProjection system(written);
        ExpectCase(system, reference, epsg ? "written WKT, EPSG reading" : "written WKT, established");
        EXPECT_EQ(system.GetMessage(), "");
    }
}

// The datum stays the ellipsoid's: geocentric coordinates of a Web Mercator
// system are those of WGS 84 (as UTM's on the same ellipsoid), not of the sphere
// its map is drawn on.
TEST(PseudoMercatorWkt, GeocentricCoordinatesAreTheEllipsoids)
{
    kvtest::ShippedCatalogue();
    const CKvMapProjection web(kEsri3857), utm("UTM-32");
    ASSERT_NE(web.GetProjection(), nullptr);
    ASSERT_NE(utm.GetProjection(), nullptr);
    for (const double lat : {-89.0, -34.0, 0.0, 51.5, 85.0}) {
        double wx, wy, wz, ux, uy, uz;
        web.Geo2XYZ(10.0, lat, 100.0, &wx, &wy, &wz);
        utm.Geo2XYZ(10.0, lat, 100.0, &ux, &uy, &uz);
        EXPECT_EQ(wx, ux) << lat;
        EXPECT_EQ(wy, uy) << lat;
        EXPECT_EQ(wz, uz) << lat;
        double lon, back, h;
        web.XYZ2Geo(wx, wy, wz, &lon, &back, &h);
        EXPECT_NEAR(back, lat, 1e-9);
        EXPECT_NEAR(h, 100.0, 1e-3);
    }
    // On the sphere of radius a the pole would lie 21 km further out.
    double x, y, z;
    web.Geo2XYZ(0.0, 90.0, 0.0, &x, &y, &z);
    EXPECT_NEAR(z, 6356752.314245, 1e-3);
}
