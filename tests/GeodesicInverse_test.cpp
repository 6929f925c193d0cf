// The inverse geodesic problem (CKvGeodesic, Karney's method) against
// GeographicLib's GeodSolve (tools/make_geodesic_inverse_vectors.py), its
// symmetries, a round trip through Vincenty's direct problem, its domain, and
// the coordinate systems and C interface that offer it.
#include "TestSupport.h"
#include "coordsys/KvMapProjection.h"
#include "geodesy/KvGeodesic.h"
#include "geodesy/KvVincenty.h"
#include "interface/KvCart.h"

#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr double kDegree = 3.141592653589793 / 180.0;

// The difference of two azimuths in degrees, taken around the circle.
double AzimuthDifference(double a, double b)
{
    return std::fabs(std::remainder(a - b, 360.0));
}

struct SInverseCase
{
    std::string figure, kind, line;
    double lon1, lat1, lon2, lat2, s12, azi1, azi2, m12;
};

struct SFigure
{
    double a, invf;
};

// "FIGURE tag a 1/f" lines and "tag lon1 lat1 lon2 lat2 s12 azi1 azi2 m12 kind".
void LoadInverseCases(std::map<std::string, SFigure>& figures, std::vector<SInverseCase>& cases)
{
    std::ifstream in(KVCART_TEST_DATA_DIR "geodesic_inverse.txt");
    ASSERT_TRUE(in) << "reference vectors missing";
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#')
            continue;
        std::istringstream fields(line);
        std::string tag;
        fields >> tag;
        if (tag == "FIGURE") {
            std::string name;
            SFigure f{};
            ASSERT_TRUE(fields >> name >> f.a >> f.invf) << line;
            figures[name] = f;
            continue;
        }
        SInverseCase c;
        c.figure = tag;
        c.line = line;
        ASSERT_TRUE(fields >> c.lon1 >> c.lat1 >> c.lon2 >> c.lat2 >> c.s12 >> c.azi1 >> c.azi2 >> c.m12 >> c.kind)
            << line;
        ASSERT_EQ(figures.count(tag), 1u) << line;
        cases.push_back(c);
    }
}

CKvGeodesic Figure(const SFigure& f)
{
    return CKvGeodesic(CKvEllipsoid("test", "XX", f.a, f.invf));
}

const CKvGeodesic& Wgs84()
{
    static const CKvGeodesic geodesic(CKvEllipsoid("WGS 84", "WE", 6378137.0, 298.257223563));
    return geodesic;
}

} // namespace

// Distances within 15 nm of GeodSolve, azimuths within 1e-9 degree where the
// points determine them. Where they do not, the bound widens by what rounding
// the inputs (relatively 1e-16, some 1e-9 m of position) can turn them: dx /
// m12, with m12 the reduced length. That is the case of coincident points
// (m12 = 0: the azimuths are a convention, checked exactly in
// GeodesicInverse.Conventions), short lines, and points nearly antipodal on a
// sphere, where every great circle nearly joins them.
TEST(GeodesicInverse, AgreesWithGeodSolve)
{
    std::map<std::string, SFigure> figures;
    std::vector<SInverseCase> cases;
    LoadInverseCases(figures, cases);
    ASSERT_EQ(figures.size(), 4u);
    ASSERT_EQ(cases.size(), 1312u);

    std::map<std::string, CKvGeodesic> geodesics;
    for (const auto& f : figures)
        geodesics.emplace(f.first, Figure(f.second));
    double worstDistance = 0.0, worstAzimuth = 0.0;
    int widened = 0, evaluations = 0, mostEvaluations = 0, iterated = 0;
    for (const SInverseCase& c : cases) {
        const CKvGeodesic& geodesic = geodesics.at(c.figure);
        double s12 = 0.0, azi1 = 0.0, azi2 = 0.0;
        ASSERT_TRUE(geodesic.Inverse(c.lon1, c.lat1, c.lon2, c.lat2, s12, azi1, azi2)) << c.line;
        const double distanceError = std::fabs(s12 - c.s12);
        EXPECT_LE(distanceError, 1.5e-8) << c.line << "\n  s12 " << s12;
        const double bound = 1e-9 + 1e-15 * geodesic.GetMajor() / std::fabs(c.m12) / kDegree;
        const double error1 = AzimuthDifference(azi1, c.azi1), error2 = AzimuthDifference(azi2, c.azi2);
        EXPECT_LE(error1, bound) << c.line << "\n  azi1 " << azi1;
        EXPECT_LE(error2, bound) << c.line << "\n  azi2 " << azi2;
        for (double azimuth : {azi1, azi2}) {
            EXPECT_GT(azimuth, -180.0) << c.line;
            EXPECT_LE(azimuth, 180.0) << c.line;
            EXPECT_FALSE(azimuth == 0.0 && std::signbit(azimuth)) << c.line;
        }
        worstDistance = std::max(worstDistance, distanceError);
        if (std::max(error1, error2) > 1e-9)
            ++widened;
        else
            worstAzimuth = std::max({worstAzimuth, error1, error2});
        // Newton's method from the spherical or the astroid start converges in
        // a few steps on an ellipsoid; bisections would take tens.
        const int n = CKvGeodesic::GetLastEvaluations();
        if (n > 0 && c.figure != "SPHERE") {
            EXPECT_LE(n, 10) << c.line;
            evaluations += n;
            mostEvaluations = std::max(mostEvaluations, n);
            ++iterated;
        }
    }
    std::printf("[ measured ] %zu geodesics: worst distance %.3g m, worst azimuth %.3g deg (%d beyond 1e-9 deg); "
                "on the ellipsoids %.2f evaluations on average, at most %d\n",
                cases.size(), worstDistance, worstAzimuth, widened,
                static_cast<double>(evaluations) / std::max(1, iterated), mostEvaluations);
}

// The exchange of the points reverses the geodesic: the same length, the
// azimuths turned half a turn and exchanged. The mirror images in the equator
// and in a meridian mirror the azimuths. Every path of the canonical position
// (exchange, mirrors) is taken by some case.
TEST(GeodesicInverse, SymmetriesOfTheEllipsoid)
{
    std::map<std::string, SFigure> figures;
    std::vector<SInverseCase> cases;
    LoadInverseCases(figures, cases);
    const CKvGeodesic& geodesic = Wgs84();
    for (const SInverseCase& c : cases) {
        if (c.figure != "WGS84" || c.kind == "coincident")
            continue;
        double s, a1, a2;
        ASSERT_TRUE(geodesic.Inverse(c.lon1, c.lat1, c.lon2, c.lat2, s, a1, a2));
        // Bounds as for the reference: these azimuths are as well defined as the points.
        const double bound = 2e-9 + 2e-15 * geodesic.GetMajor() / std::fabs(c.m12) / kDegree;
        // Two shortest geodesics (points antipodal in latitude beyond the
        // equatorial line's reach) make the mirrors pick the other one.
        const bool twoSolutions = c.lat1 == -c.lat2 && std::fabs(std::remainder(c.lon2 - c.lon1, 360.0)) > 179.0;

        double sx, x1, x2;
        ASSERT_TRUE(geodesic.Inverse(c.lon2, c.lat2, c.lon1, c.lat1, sx, x1, x2));
        EXPECT_NEAR(sx, s, 1.5e-8) << c.line;
        if (!twoSolutions) {
            EXPECT_LE(AzimuthDifference(x1, a2 + 180.0), bound) << c.line;
            EXPECT_LE(AzimuthDifference(x2, a1 + 180.0), bound) << c.line;
        }

        double sm, m1, m2;
        ASSERT_TRUE(geodesic.Inverse(-c.lon1, c.lat1, -c.lon2, c.lat2, sm, m1, m2)); // mirror in a meridian
        EXPECT_NEAR(sm, s, 1.5e-8) << c.line;
        if (!twoSolutions) {
            EXPECT_LE(AzimuthDifference(m1, -a1), bound) << c.line;
            EXPECT_LE(AzimuthDifference(m2, -a2), bound) << c.line;
        }

        double se, e1, e2;
        ASSERT_TRUE(geodesic.Inverse(c.lon1, -c.lat1, c.lon2, -c.lat2, se, e1, e2)); // mirror in the equator
        EXPECT_NEAR(se, s, 1.5e-8) << c.line;
        if (!twoSolutions) {
            EXPECT_LE(AzimuthDifference(e1, 180.0 - a1), bound) << c.line;
            EXPECT_LE(AzimuthDifference(e2, 180.0 - a2), bound) << c.line;
        }

        // A whole turn added to either longitude is the same point.
        double st, t1, t2;
        ASSERT_TRUE(geodesic.Inverse(c.lon1 + 720.0, c.lat1, c.lon2 - 360.0, c.lat2, st, t1, t2));
        EXPECT_NEAR(st, s, 1.5e-8) << c.line;
    }
}

// Vincenty's direct problem (the library's other geodesic engine, 0.06 mm from
// GeodSolve up to 10 000 km) from point 1 along azi1 for s12 lands on point 2
// with the azimuth azi2.
TEST(GeodesicInverse, RoundTripThroughTheDirectProblem)
{
    const CKvEllipsoid ellipsoid("WGS 84", "WE", 6378137.0, 298.257223563);
    const CKvGeodesic inverse(ellipsoid);
    const CKvVincenty direct(ellipsoid);
    int checked = 0;
    for (double lat1 = -80.0; lat1 <= 80.0; lat1 += 20.0)
        for (double lat2 = -85.0; lat2 <= 85.0; lat2 += 17.0)
            for (double dlon = -170.0; dlon <= 170.0; dlon += 34.0) {
                double s12, azi1, azi2;
                ASSERT_TRUE(inverse.Inverse(10.0, lat1, 10.0 + dlon, lat2, s12, azi1, azi2));
                if (s12 > 1e7)
                    continue;
                double lon, lat, azimuth;
                direct.GetPoint(10.0, lat1, azi1, s12, lon, lat, azimuth);
                const double north = (lat - lat2) * kDegree * 6378137.0;
                const double east = std::remainder(lon - 10.0 - dlon, 360.0) * kDegree * 6378137.0 *
                                    std::cos(lat2 * kDegree);
                EXPECT_LT(std::hypot(north, east), 1e-4) << lat1 << " " << lat2 << " " << dlon;
                EXPECT_LT(AzimuthDifference(azimuth, azi2), 1e-8) << lat1 << " " << lat2 << " " << dlon;
                ++checked;
            }
    EXPECT_GT(checked, 400);
}

// Coincident points, the poles and the equator follow GeographicLib's
// conventions exactly: the azimuth at a pole is the limit along the meridian of
// the longitude given; of two shortest geodesics the first point's northward
// one.
TEST(GeodesicInverse, Conventions)
{
    const CKvGeodesic& g = Wgs84();
    double s, a1, a2;
    const struct
    {
        double lon1, lat1, lon2, lat2, s12, azi1, azi2;
    } cases[] = {
        {0.0, 0.0, 0.0, 0.0, 0.0, 180.0, 180.0},               // coincident on the equator
        {10.0, -90.0, -20.0, -90.0, 0.0, -30.0, 0.0},          // one pole, two longitudes
        {10.0, 90.0, -170.0, 90.0, 0.0, 0.0, 180.0},           // the same from the other side
        {0.0, 0.0, 0.0, 90.0, 10001965.729312724, 0.0, 0.0},   // a quarter meridian
        {0.0, 0.0, 180.0, 0.0, 20003931.458625447, 0.0, 180.0}, // antipodes on the equator: over the north pole
        {0.0, 0.0, 90.0, 0.0, 10018754.171394622, 90.0, 90.0}, // along the equator
        {0.0, 0.0, -90.0, 0.0, 10018754.171394622, -90.0, -90.0},
    };
    for (const auto& c : cases) {
        ASSERT_TRUE(g.Inverse(c.lon1, c.lat1, c.lon2, c.lat2, s, a1, a2));
        EXPECT_NEAR(s, c.s12, 4e-9) << c.lon1 << " " << c.lat1 << " " << c.lon2 << " " << c.lat2;
        EXPECT_NEAR(a1, c.azi1, 1e-12) << c.lon1 << " " << c.lat1 << " " << c.lon2 << " " << c.lat2;
        EXPECT_NEAR(a2, c.azi2, 1e-12) << c.lon1 << " " << c.lat1 << " " << c.lon2 << " " << c.lat2;
    }
    // Two points on one pole are 0 m apart, not a rounding of the cosine that stands for the pole.
    ASSERT_TRUE(g.Inverse(0.0, 90.0, 123.0, 90.0, s, a1, a2));
    EXPECT_EQ(s, 0.0);
}

// Latitudes closer to the equator than 1e-20 degree (subnormal ones too) are on
// it, with their sign; beyond that the iteration resolves the geodesic. Either
// way the answer is the equatorial one, continuously: the distance changes by
// no more than the points moved (beyond the equatorial line's reach the points
// lie on the cut locus, where it changes at that rate).
TEST(GeodesicInverse, LatitudesNextToTheEquator)
{
    const CKvGeodesic& g = Wgs84();
    double s0, e1, e2;
    for (double dlon : {1.0, 90.0, 179.39, 179.5, 179.9}) {
        ASSERT_TRUE(g.Inverse(0.0, 0.0, dlon, 0.0, s0, e1, e2));
        for (double tiny : {1e-12, 1e-20, 1e-40, 1e-150, 1e-300, 4.9e-324}) {
            const double moved = 2.0 * tiny * kDegree * g.GetMajor();
            for (double other : {0.0, tiny, -tiny}) {
                double s, a1, a2;
                ASSERT_TRUE(g.Inverse(0.0, tiny, dlon, other, s, a1, a2)) << tiny << " " << dlon;
                EXPECT_NEAR(s, s0, 1.5e-8 + moved) << tiny << " " << other << " " << dlon;
                EXPECT_LT(AzimuthDifference(a1, e1), 1e-6) << tiny << " " << other << " " << dlon;
                // The other side of the equator: the southward of the two.
                ASSERT_TRUE(g.Inverse(0.0, -tiny, dlon, -other, s, a1, a2));
                EXPECT_NEAR(s, s0, 1.5e-8 + moved) << tiny << " " << other << " " << dlon;
                EXPECT_LT(AzimuthDifference(a1, dlon > 179.4 ? 180.0 - e1 : e1), 1e-6) << tiny << " " << dlon;
            }
        }
    }
}

// Every double is an input: NaN and infinities, latitudes beyond the poles give
// false and NaN in all three outputs; longitudes of any finite size are points.
TEST(GeodesicInverse, Domain)
{
    const CKvGeodesic& g = Wgs84();
    const double nan = std::nan(""), inf = HUGE_VAL;
    const double bad[][4] = {{nan, 0, 0, 0},      {0, nan, 0, 0},    {0, 0, nan, 0},    {0, 0, 0, nan},
                             {inf, 0, 0, 0},      {-inf, 0, 0, 0},   {0, 0, inf, 0},    {0, inf, 0, 0},
                             {0, 0, 0, -inf},     {0, 90.000000000001, 0, 0},            {0, 0, 0, -91.0},
                             {0, 1e308, 0, 0},    {0, -1e308, 1, 1}, {1e308, 95.0, 0, 0}};
    for (const auto& b : bad) {
        double s = 1.0, a1 = 2.0, a2 = 3.0;
        EXPECT_FALSE(g.Inverse(b[0], b[1], b[2], b[3], s, a1, a2)) << b[0] << " " << b[1] << " " << b[2] << " " << b[3];
        EXPECT_TRUE(std::isnan(s) && std::isnan(a1) && std::isnan(a2));
    }
    // Huge longitudes are reduced exactly: 1e308 and 1e17 are whole turns away
    // from their remainders.
    double s, a1, a2, r, r1, r2;
    ASSERT_TRUE(g.Inverse(1e308, 10.0, 1e17, -20.0, s, a1, a2));
    ASSERT_TRUE(g.Inverse(std::remainder(1e308, 360.0), 10.0, std::remainder(1e17, 360.0), -20.0, r, r1, r2));
    EXPECT_EQ(s, r);
    EXPECT_EQ(a1, r1);
    EXPECT_EQ(a2, r2);
    ASSERT_TRUE(g.Inverse(540.0, 0.0, -540.0, 0.0, s, a1, a2));
    EXPECT_EQ(s, 0.0);

    // Figures outside the method's domain are refused, never approximated.
    for (const auto& figure : {std::make_pair(6378137.0, -0.001), std::make_pair(6378137.0, 0.2),
                               std::make_pair(0.0, 0.003), std::make_pair(-1.0, 0.003),
                               std::make_pair(nan, 0.003), std::make_pair(inf, 0.003),
                               std::make_pair(6378137.0, nan)}) {
        const CKvGeodesic invalid(figure.first, figure.second);
        EXPECT_FALSE(invalid.IsValid()) << figure.first << " " << figure.second;
        EXPECT_FALSE(invalid.Inverse(0.0, 0.0, 1.0, 1.0, s, a1, a2));
        EXPECT_TRUE(std::isnan(s));
    }
    // The catalogue's sphere (inverse flattening 0) is a sphere: a quarter great circle.
    const CKvGeodesic sphere(CKvEllipsoid("Sphere", "XY", 6371000.0, 0.0));
    ASSERT_TRUE(sphere.IsValid());
    ASSERT_TRUE(sphere.Inverse(0.0, 0.0, 0.0, 90.0, s, a1, a2));
    EXPECT_NEAR(s, 6371000.0 * 3.141592653589793 / 2, 1e-8);
}

// Coordinate systems solve on their own ellipsoid (WGS 84 for LONG/LAT, as for
// the direct problem); a copy keeps it; a system without one answers false.
TEST(GeodesicInverse, OnTheEllipsoidOfASystem)
{
    kvtest::ShippedCatalogue();
    const CKvGeodesic airy(CKvEllipsoid("Airy 1830", "AA", 6377563.396, 299.3249646));
    const CKvGeodesic international(CKvEllipsoid("International 1924", "IN", 6378388.0, 297.0));
    const char kEd50Wkt[] = "GEOGCS[\"ED50\",DATUM[\"European_Datum_1950\",SPHEROID[\"International 1924\",6378388,297]],"
                            "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]]";
    const struct
    {
        const char* text;
        const CKvGeodesic& figure;
    } systems[] = {{"LONG/LAT", Wgs84()},
                   {"UTM-32", Wgs84()},
                   {"British National Grid", airy},
                   {kEd50Wkt, international}};
    for (const auto& system : systems) {
        const CKvMapProjection cs(system.text);
        ASSERT_NE(cs.GetProjection(), nullptr) << system.text;
        const CKvMapProjection copy(cs);
        CKvMapProjection assigned("NON-UTM");
        assigned = cs;
        double s, a1, a2, t, t1, t2;
        ASSERT_TRUE(system.figure.Inverse(-5.7, 50.07, 9.5, 47.5, t, t1, t2));
        const CKvMapProjection* const objects[] = {&cs, &copy, &assigned};
        for (const CKvMapProjection* object : objects) {
            ASSERT_TRUE(object->GetInverseGeodesic(-5.7, 50.07, 9.5, 47.5, s, a1, a2)) << system.text;
            EXPECT_EQ(s, t) << system.text;
            EXPECT_EQ(a1, t1) << system.text;
            EXPECT_EQ(a2, t2) << system.text;
        }
    }
    // The figures differ by hundreds of metres over this line.
    double sw, sa, a1, a2;
    ASSERT_TRUE(Wgs84().Inverse(-5.7, 50.07, 9.5, 47.5, sw, a1, a2));
    ASSERT_TRUE(airy.Inverse(-5.7, 50.07, 9.5, 47.5, sa, a1, a2));
    EXPECT_GT(std::fabs(sw - sa), 100.0);

    for (const char* none : {"NON-UTM", "Nowhere Grid"}) {
        const CKvMapProjection cs(none);
        double s = 1.0, x1 = 2.0, x2 = 3.0;
        EXPECT_FALSE(cs.GetInverseGeodesic(0.0, 0.0, 1.0, 1.0, s, x1, x2)) << none;
        EXPECT_TRUE(std::isnan(s) && std::isnan(x1) && std::isnan(x2)) << none;
    }
    const CKvMapProjection longLat("LONG/LAT");
    double s = 1.0, x1 = 2.0, x2 = 3.0;
    EXPECT_FALSE(longLat.GetInverseGeodesic(0.0, 95.0, 1.0, 1.0, s, x1, x2));
    EXPECT_TRUE(std::isnan(s) && std::isnan(x1) && std::isnan(x2));
}

// The C interface: status 0 and the C++ results; -1 for a NULL handle or output
// (nothing written), and -1 with NaN for points that are none or a system
// without an ellipsoid.
TEST(GeodesicInverse, CInterface)
{
    kvtest::ShippedCatalogue();
    KVMP_HANDLE system = nullptr, local = nullptr;
    int status = -1;
    C_KVMP_CREATE("British National Grid", &system, &status);
    ASSERT_EQ(status, 0);
    C_KVMP_CREATE("NON-UTM", &local, &status);
    ASSERT_EQ(status, 0);

    double s = 0.0, a1 = 0.0, a2 = 0.0, t, t1, t2;
    EXPECT_EQ(C_KVMP_GETINVERSEGEODESIC(system, -5.7, 50.07, -3.07, 58.64, &s, &a1, &a2), 0);
    ASSERT_TRUE(system->GetInverseGeodesic(-5.7, 50.07, -3.07, 58.64, t, t1, t2));
    EXPECT_EQ(s, t);
    EXPECT_EQ(a1, t1);
    EXPECT_EQ(a2, t2);
    // GeodSolve -i -e 6377563.396 1/299.3249646: 968857.386151295 m, 9.10126142630937, 11.24463993788251.
    EXPECT_NEAR(s, 968857.386151295, 1e-8);
    EXPECT_NEAR(a1, 9.10126142630937, 1e-12);
    EXPECT_NEAR(a2, 11.24463993788251, 1e-12);

    double u = 7.0, u1 = 8.0, u2 = 9.0;
    EXPECT_EQ(C_KVMP_GETINVERSEGEODESIC(nullptr, 0, 0, 1, 1, &u, &u1, &u2), -1);
    EXPECT_EQ(C_KVMP_GETINVERSEGEODESIC(system, 0, 0, 1, 1, nullptr, &u1, &u2), -1);
    EXPECT_EQ(C_KVMP_GETINVERSEGEODESIC(system, 0, 0, 1, 1, &u, nullptr, &u2), -1);
    EXPECT_EQ(C_KVMP_GETINVERSEGEODESIC(system, 0, 0, 1, 1, &u, &u1, nullptr), -1);
    EXPECT_EQ(u, 7.0);
    EXPECT_EQ(u1, 8.0);
    EXPECT_EQ(u2, 9.0);
    for (const auto& p : {std::vector<double>{std::nan(""), 0, 1, 1}, std::vector<double>{0, 0, HUGE_VAL, 1},
                          std::vector<double>{0, -90.5, 1, 1}}) {
        u = u1 = u2 = 0.0;
        EXPECT_EQ(C_KVMP_GETINVERSEGEODESIC(system, p[0], p[1], p[2], p[3], &u, &u1, &u2), -1);
        EXPECT_TRUE(std::isnan(u) && std::isnan(u1) && std::isnan(u2));
    }
    u = u1 = u2 = 0.0;
    EXPECT_EQ(C_KVMP_GETINVERSEGEODESIC(local, 0, 0, 1, 1, &u, &u1, &u2), -1);
    EXPECT_TRUE(std::isnan(u) && std::isnan(u1) && std::isnan(u2));

    C_KVMP_DESTROY(&system, &status);
    C_KVMP_DESTROY(&local, &status);
}
