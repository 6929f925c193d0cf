// The engines against independent references: GeographicLib's exact transverse
// Mercator and PROJ (tools/make_projection_vectors.py wrote the vectors).
#include "TestSupport.h"
#include "projections/KvAlbersEqualArea.h"
#include "projections/KvCassiniSoldner.h"
#include "projections/KvEquidistantConic.h"
#include "projections/KvHotineObliqueMercator.h"
#include "projections/KvKrovak.h"
#include "projections/KvLambert1SP.h"
#include "projections/KvLambert2SP.h"
#include "projections/KvLambertAzimuthalEqualArea.h"
#include "projections/KvMercator1SP.h"
#include "projections/KvMercator2SP.h"
#include "projections/KvNewZealandMapGrid.h"
#include "projections/KvObliqueMercator.h"
#include "projections/KvPolarStereographic.h"
#include "projections/KvRectifiedSkewOrthomorphic.h"
#include "projections/KvRotatedLongitudeLatitude.h"
#include "projections/KvStereographic.h"
#include "projections/KvStereographicNorthPole.h"
#include "projections/KvStereographicSouthPole.h"
#include "projections/KvTransverseMercator.h"
#include "projections/KvTransverseMercatorJHS.h"

#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Point = kvtest::VectorPoint;
using Case = kvtest::VectorCase;

std::vector<Case> LoadCases(const std::string& file)
{
    return kvtest::LoadVectorCases(KVCART_TEST_DATA_DIR + file);
}

std::unique_ptr<CKvProjection> MakeEngine(const Case& c, bool complexTm = false)
{
    const CKvEllipsoid e(c.label, "", c.a, c.invf);
    const std::vector<double>& p = c.params;
    CKvProjection* engine = nullptr;
    if (c.engine == "tm" && complexTm)
        engine = new CKvTransverseMercator("tm", p[0], p[1], p[2], p[3], p[4], e);
    else if (c.engine == "tm")
        engine = new CKvTransverseMercatorJHS("tm", p[0], p[1], p[2], p[3], p[4], e);
    else if (c.engine == "lcc1")
        engine = new CKvLambert1SP("lcc1", p[0], p[1], p[2], p[3], p[4], e);
    else if (c.engine == "lcc2")
        engine = new CKvLambert2SP("lcc2", p[0], p[1], p[2], p[3], p[4], p[5], e);
    else if (c.engine == "merc1")
        engine = new CKvMercator1SP("merc1", p[0], p[1], p[2], p[3], e);
    else if (c.engine == "merc2")
        engine = new CKvMercator2SP("merc2", p[0], p[1], p[2], p[3], e);
    else if (c.engine == "aea")
        engine = new CKvAlbersEqualArea("aea", p[0], p[1], p[2], p[3], p[4], p[5], e);
    else if (c.engine == "eqdc")
        engine = new CKvEquidistantConic("eqdc", p[0], p[1], p[2], p[3], p[4], p[5], e);
    else if (c.engine == "rot")
        engine = new CKvRotatedLongitudeLatitude("rot", p[0], p[1], p[2], e);
    else if (c.engine == "sterea")
        engine = new CKvStereographic("sterea", p[0], p[1], p[2], p[3], p[4], e);
    else if (c.engine == "stere")
        engine = new CKvPolarStereographic("stere", p[0], p[1], p[2], p[3], p[4], e);
    else if (c.engine == "sterenp")
        engine = new CKvStereographicNorthPole("sterenp", p[0], p[1], p[2], p[3], e);
    else if (c.engine == "stereps")
        engine = new CKvStereographicSouthPole("stereps", p[0], p[1], p[2], p[3], e);
    else if (c.engine == "omerc_a")
        engine = new CKvHotineObliqueMercator("omerc_a", p[0], p[1], p[2], p[3], p[4], p[5], e);
    else if (c.engine == "omerc_b")
        engine = new CKvObliqueMercator("omerc_b", p[0], p[1], p[2], p[3], p[4], p[5], e);
    else if (c.engine == "rso")
        engine = new CKvRectifiedSkewOrthomorphic("rso", p[0], p[1], p[2], p[3], p[4], p[5], p[6], e);
    else if (c.engine == "krovak")
        engine = new CKvKrovak("krovak", p[0], p[1], p[2], p[3], p[4], p[5], p[6], p[7], p[8], p[9], e);
    else if (c.engine == "nzmg")
        engine = new CKvNewZealandMapGrid("nzmg", p[0], p[1], p[2], p[3], e);
    else if (c.engine == "laea")
        engine = new CKvLambertAzimuthalEqualArea("laea", p[0], p[1], p[2], p[3], e);
    else if (c.engine == "cass")
        engine = new CKvCassiniSoldner("cass", p[0], p[1], p[2], p[3], e);
    return std::unique_ptr<CKvProjection>(engine);
}

const std::vector<Case>& Cases()
{
    static const std::vector<Case> cases = LoadCases("projection_vectors.txt");
    return cases;
}

// Grids next to the antimeridian, the poles, a polar origin, azimuths all round.
const std::vector<Case>& DomainCases()
{
    static const std::vector<Case> cases = LoadCases("domain_vectors.txt");
    return cases;
}

// Runs one engine family over its cases and checks the bounds.
void CheckFamily(const std::string& family, double forwardBound, double inverseBound, bool complexTm = false,
                 const std::vector<Case>& all = Cases())
{
    kvtest::CaseErrors worst;
    int cases = 0;
    for (const Case& c : all) {
        if (c.engine != family)
            continue;
        std::unique_ptr<CKvProjection> engine = MakeEngine(c, complexTm);
        ASSERT_NE(engine, nullptr);
        const kvtest::CaseErrors one = kvtest::MeasureCase(*engine, c, c.engine == "rot");
        std::string params;
        for (double v : c.params)
            params += " " + std::to_string(v);
        EXPECT_LE(one.forward, forwardBound) << family << " on " << c.label << params;
        EXPECT_LE(one.inverse, inverseBound) << family << " on " << c.label << params;
        EXPECT_LE(one.roundTrip, inverseBound) << family << " on " << c.label << params;
        worst.Add(one);
        ++cases;
    }
    EXPECT_GT(cases, 0) << family;
    std::printf("[ measured ] %-6s%s %zu points: forward %.3g %s, inverse %.3g deg, round trip %.3g deg\n",
                family.c_str(), complexTm ? " (complex)" : "", worst.points, worst.forward,
                family == "rot" ? "deg" : "m", worst.inverse, worst.roundTrip);
}

} // namespace

TEST(ProjectionReference, VectorsAreComplete)
{
    std::map<std::string, int> perEngine;
    for (const Case& c : Cases()) {
        EXPECT_FALSE(c.points.empty()) << c.engine;
        perEngine[c.engine] += static_cast<int>(c.points.size());
    }
    for (const char* engine : {"tm", "lcc1", "lcc2", "merc1", "merc2", "aea", "eqdc", "rot", "sterea", "stere",
                               "sterenp", "stereps", "omerc_a", "omerc_b", "rso", "krovak", "nzmg", "laea", "cass"})
        EXPECT_GT(perEngine[engine], 300) << engine;
}

const std::vector<Case>& PolarCases()
{
    static const std::vector<Case> cases = LoadCases("polar_vectors.txt");
    return cases;
}

// Every family against its reference, forward in metres (degrees for the
// rotated grid), inverse and round trip in degrees.
TEST(ProjectionReference, EveryFamilyAgainstItsReference)
{
    struct Family
    {
        const char* family;
        double forward, inverse;
        bool complexTm;
        const std::vector<Case>& (*cases)();
    };
    const Family families[] = {
        // The transverse Mercator against GeographicLib's exact one, both engines.
        {"tm", 1e-5, 1e-10, false, Cases},
        {"tm", 1e-5, 1e-10, true, Cases},
        {"lcc1", 1e-3, 1e-9, false, Cases},
        {"lcc2", 1e-3, 1e-9, false, Cases},
        // The inverse ends in Karney's conformal latitude series to n^6, exact to
        // rounding; what is left is the references' micrometre.
        {"merc1", 1e-3, 1e-10, false, Cases},
        {"merc2", 1e-3, 1e-10, false, Cases},
        // The inverses are their forwards' own, through a Newton step on q and on the
        // meridian distance (Helmert's series for the equidistant conic).
        {"aea", 1e-3, 1e-10, false, Cases},
        {"eqdc", 1e-3, 1e-10, false, Cases},
        {"rot", 1e-9, 1e-9, false, Cases},
        {"sterea", 1e-3, 1e-9, false, Cases},
        {"stere", 1e-3, 1e-9, false, Cases},
        {"sterenp", 1e-3, 1e-9, false, Cases},
        {"stereps", 1e-3, 1e-9, false, Cases},
        // The polar stereographic on every latitude it draws: within metres of the
        // pole, across the equator to 80 degrees beyond it (where the closed-form
        // inverse turns to the other pole), and on a figure flattened to 1/10, beyond
        // the eccentricity series (tools/make_polar_vectors.py). Forward within 1e-5 m
        // where the radius reaches 1.5e8 m; the inverse's bound is the longitude 111 m
        // from the pole, where a grid coordinate of 2e6 m written to the nanometre (or
        // held to its last bit) fixes the direction only to some 3e-10 degree.
        {"stere", 1e-5, 1e-9, false, PolarCases},
        {"sterenp", 1e-5, 1e-9, false, PolarCases},
        {"stereps", 1e-5, 1e-9, false, PolarCases},
        {"omerc_a", 1e-3, 1e-9, false, Cases},
        {"omerc_b", 1e-3, 1e-9, false, Cases},
        {"rso", 1e-3, 1e-9, false, Cases},
        {"krovak", 1e-3, 1e-9, false, Cases},
        // The inverse ends in the published polynomial for the latitude: about 6e-10 degree.
        {"nzmg", 1e-3, 1e-9, false, Cases},
        // Both inverses are their forwards' own (a Newton step on q, Newton's steps
        // on the Cassini-Soldner series); Cassini-Soldner's forward series lies up to
        // 0.07 mm from PROJ's 2 degrees from the central meridian, 6.5e-10 degree.
        {"laea", 1e-3, 1e-9, false, Cases},
        {"cass", 1e-3, 1e-9, false, Cases},
        // The edges PROJ handles and the engines must too: a point given as 180 or
        // -180 east lands on the same meridian, the poles are finite, a stereographic
        // may sit on a pole, and an oblique Mercator centre line may run in any
        // direction.
        {"sterea", 1e-3, 1e-9, false, DomainCases},
        {"cass", 1e-3, 1e-9, false, DomainCases},
        {"laea", 1e-3, 1e-9, false, DomainCases},
        {"omerc_b", 1e-3, 1e-9, false, DomainCases},
        {"krovak", 1e-3, 1e-9, false, DomainCases},
        {"nzmg", 1e-3, 1e-9, false, DomainCases},
    };
    EXPECT_EQ(DomainCases().size(), 82u);
    for (const Family& f : families) {
        SCOPED_TRACE(f.family);
        CheckFamily(f.family, f.forward, f.inverse, f.complexTm, f.cases());
    }
}

// The engines that let a line run on across the antimeridian: a longitude within
// [-180, 180] is reduced as PROJ reduces it (Alaska Albers at 173 E, PDC Mercator
// at 164.655 W), one beyond +-180 is taken unreduced as PROJ takes it with +over,
// and a difference of exactly 180 degrees keeps its sign (World Mercator's -180
// and 180 are its western and eastern edges). Every inverse gives the longitude
// back within [-180, 180], -180 and 180 on their own sides.
TEST(ProjectionReference, AntimeridianAgainstProj)
{
    for (const char* family : {"aea", "lcc1", "lcc2", "merc1", "merc2"})
        CheckFamily(family, 1e-3, 1e-10, false, DomainCases());
    // Half a turn from the origin the equidistant conic's grid is 0.02 mm from
    // PROJ's, whose meridian distance is a few micrometres from ours.
    CheckFamily("eqdc", 1e-3, 1e-9, false, DomainCases());
    int inside = 0, beyond = 0;
    for (const Case& c : DomainCases()) {
        const std::unique_ptr<CKvProjection> engine = MakeEngine(c);
        if (c.engine == "sterea" || c.engine == "cass" || c.engine == "laea" || c.engine == "omerc_b" ||
            c.engine == "krovak" || c.engine == "nzmg")
            continue;
        ASSERT_NE(engine, nullptr) << c.engine;
        double lon0, lat0;
        engine->GetOrigin(&lon0, &lat0);
        for (const Point& p : c.points) {
            double lon, lat;
            engine->Proj2Geo(p.x, p.y, &lon, &lat);
            EXPECT_LE(std::fabs(lon), 180.0) << c.engine << " at " << p.lon << " " << p.lat;
            // Half a turn from the origin is the edge of the map, where the side counts.
            if (std::fabs(p.lon) <= 180.0 && std::fabs(std::fabs(p.lon - lon0) - 180.0) < 1e-9) {
                EXPECT_NEAR(lon, p.lon, 1e-9) << c.engine << " at " << p.lon << " " << p.lat;
            }
            ++(std::fabs(p.lon) <= 180.0 ? inside : beyond);
        }
    }
    EXPECT_GT(inside, 500);
    EXPECT_GT(beyond, 100);
}
