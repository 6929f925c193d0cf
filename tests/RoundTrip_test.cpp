// Repeated round trips, IOGP's conformance criterion: a point projected and
// inverted 1 000 times may drift 6 mm at most, on the grid and on the ground.
// That asks for an inverse that is its own forward's, not a truncated series that
// misses it by a little on every trip. Each family is run on the parameters of
// real systems (EPSG, and ESRI's for the equidistant conic, which EPSG lacks) over
// a grid of points spread across their areas of use, with the points that made
// earlier inverses creep among them; a single trip must come back within 1e-11
// degree (about a micrometre).
#include "projections/KvAlbersEqualArea.h"
#include "projections/KvCassiniSoldner.h"
#include "projections/KvEckertIV.h"
#include "projections/KvEqualEarth.h"
#include "projections/KvEquidistantConic.h"
#include "projections/KvHyperbolicCassini.h"
#include "projections/KvHotineObliqueMercator.h"
#include "projections/KvKrovak.h"
#include "projections/KvLambert1SP.h"
#include "projections/KvLambert2SP.h"
#include "projections/KvLambertAzimuthalEqualArea.h"
#include "projections/KvMercator1SP.h"
#include "projections/KvMercator2SP.h"
#include "projections/KvMollweide.h"
#include "projections/KvNaturalEarth.h"
#include "projections/KvNewZealandMapGrid.h"
#include "projections/KvObliqueMercator.h"
#include "projections/KvPolarStereographic.h"
#include "projections/KvRectifiedSkewOrthomorphic.h"
#include "projections/KvRobinson.h"
#include "projections/KvSinusoidal.h"
#include "projections/KvStereographic.h"
#include "projections/KvStereographicNorthPole.h"
#include "projections/KvStereographicSouthPole.h"
#include "projections/KvTransverseMercator.h"
#include "projections/KvTransverseMercatorJHS.h"
#include "projections/KvWinkelTripel.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int kTrips = 1000;
constexpr double kDriftLimit = 0.006; // metres, after kTrips
constexpr double kTripLimit = 1e-11;  // degrees, one trip
constexpr double kDeg = M_PI / 180.0;

const CKvEllipsoid kWgs84("WGS 84", "", 6378137.0, 298.257223563);
const CKvEllipsoid kGrs80("GRS 1980", "", 6378137.0, 298.257222101);
const CKvEllipsoid kBessel("Bessel 1841", "", 6377397.155, 299.1528128);
const CKvEllipsoid kAiry("Airy 1830", "", 6377563.396, 299.3249646);
const CKvEllipsoid kIntl("International 1924", "", 6378388.0, 297.0);
const CKvEllipsoid kClarkeIgn("Clarke 1880 (IGN)", "", 6378249.2, 293.4660212936269);
const CKvEllipsoid kClarke1858("Clarke 1858", "", 6378293.64520876,
                               6378293.64520876 / (6378293.64520876 - 6356617.98767984));
const CKvEllipsoid kKrassowsky("Krassowsky 1940", "", 6378245.0, 298.3);
const CKvEllipsoid kEverest("Everest 1830 (1967 Definition)", "", 6377298.556, 300.8017);
const CKvEllipsoid kEase("EASE-Grid sphere", "", 6371228.0, 0.0);
const CKvEllipsoid kSphere("Sphere", "", 6371000.0, 0.0);

struct SSystem
{
    std::string name;
    std::shared_ptr<CKvProjection> engine;
    double west, south, east, north;              // an area of use, degrees; east may pass 180
    std::vector<std::pair<double, double>> extra; // points of interest besides the grid
};

struct SDrift
{
    double trip = 0.0;   // one trip, degrees (longitude scaled by cos lat)
    double ground = 0.0; // after kTrips, metres on the ellipsoid's surface
    double grid = 0.0;   // after kTrips, metres on the grid
    std::string where;
};

// A value that is not finite is the worst of all (std::max would drop a NaN).
double Worse(double current, double value)
{
    return std::isfinite(value) ? std::max(current, value) : HUGE_VAL;
}

SDrift Measure(const SSystem& s)
{
    std::vector<std::pair<double, double>> points = s.extra;
    constexpr int n = 5;
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) {
            const double lon = s.west + (s.east - s.west) * i / (n - 1);
            points.emplace_back(lon > 180.0 ? lon - 360.0 : lon, s.south + (s.north - s.south) * j / (n - 1));
        }
    const CKvProjection& engine = *s.engine;
    double a = 0.0, invF = 0.0;
    {
        CKvEllipsoid figure;
        if (engine.GetAnonymousEllipsoid(figure)) {
            a = figure.GetMajor();
            invF = figure.GetInvFlatness();
        }
    }
    const double e2 = invF > 0.0 ? (2.0 - 1.0 / invF) / invF : 0.0;
    SDrift drift;
    for (const auto& p0 : points) {
        double x0, y0;
        engine.Geo2Proj(p0.first, p0.second, &x0, &y0);
        double lon = p0.first, lat = p0.second;
        for (int k = 0; k < kTrips; ++k) {
            double x, y;
            engine.Geo2Proj(lon, lat, &x, &y);
            engine.Proj2Geo(x, y, &lon, &lat);
            if (k == 0) {
                const double dLon = std::remainder(lon - p0.first, 360.0) * std::cos(p0.second * kDeg);
                const double trip = std::max(std::fabs(dLon), std::fabs(lat - p0.second));
                if (!(trip <= drift.trip))
                    drift.where = std::to_string(p0.first) + " " + std::to_string(p0.second);
                drift.trip = Worse(drift.trip, trip);
            }
        }
        // On the ground: the meridian's and the parallel's radii of curvature.
        const double s = std::sin(p0.second * kDeg), w = 1.0 - e2 * s * s;
        const double nu = a / std::sqrt(w), rho = a * (1.0 - e2) / (w * std::sqrt(w));
        const double north = (lat - p0.second) * kDeg * rho;
        const double east = std::remainder(lon - p0.first, 360.0) * kDeg * nu * std::cos(p0.second * kDeg);
        drift.ground = Worse(drift.ground, std::hypot(north, east));
        double x, y;
        engine.Geo2Proj(lon, lat, &x, &y);
        drift.grid = Worse(drift.grid, std::hypot(x - x0, y - y0));
    }
    return drift;
}

template <class T, class... A> std::shared_ptr<CKvProjection> Make(A... args)
{
    return std::make_shared<T>(args...);
}

// A system: its name, its engine, an area of use (west, south, east, north) and
// points of interest besides the grid spread over the area.
SSystem System(const char* name, std::shared_ptr<CKvProjection> engine, double west, double south, double east,
               double north, std::vector<std::pair<double, double>> extra = {})
{
    return {name, std::move(engine), west, south, east, north, std::move(extra)};
}

// Runs the systems of one family: every one within both limits, the figures printed.
void CheckFamily(const char* family, const std::vector<SSystem>& systems, double tripLimit = kTripLimit,
                 double driftLimit = kDriftLimit)
{
    SDrift worst;
    for (const SSystem& s : systems) {
        const SDrift d = Measure(s);
        EXPECT_LE(d.trip, tripLimit) << s.name << ", worst at " << d.where;
        EXPECT_LE(d.ground, driftLimit) << s.name;
        EXPECT_LE(d.grid, driftLimit) << s.name;
        worst.trip = std::max(worst.trip, d.trip);
        worst.ground = std::max(worst.ground, d.ground);
        worst.grid = std::max(worst.grid, d.grid);
    }
    std::printf("[ measured ] %-28s one trip %.2g deg; %d trips: %.2g m on the ground, %.2g m on the grid\n", family,
                worst.trip, kTrips, worst.ground, worst.grid);
}

} // namespace

TEST(RoundTrip, TransverseMercator)
{
    const auto utm = [](auto engine) { return System("WGS 84 / UTM zone 32N", engine, 6, 0, 12, 84, {{12.0, 42.0}}); };
    const auto bng = [](auto engine) { return System("British National Grid", engine, -9, 49, 2, 61); };
    CheckFamily("transverse Mercator (JHS)",
                {utm(Make<CKvTransverseMercatorJHS>("u", 0.9996, 9.0, 0.0, 500000.0, 0.0, kWgs84)),
                 bng(Make<CKvTransverseMercatorJHS>("b", 0.9996012717, -2.0, 49.0, 400000.0, -100000.0, kAiry))});
    CheckFamily("transverse Mercator (complex)",
                {utm(Make<CKvTransverseMercator>("u", 0.9996, 9.0, 0.0, 500000.0, 0.0, kWgs84)),
                 bng(Make<CKvTransverseMercator>("b", 0.9996012717, -2.0, 49.0, 400000.0, -100000.0, kAiry))});
}

TEST(RoundTrip, LambertConformalConic)
{
    CheckFamily("Lambert conformal conic 1SP",
                {System("NTF (Paris) / Lambert zone II",
                        Make<CKvLambert1SP>("l", 0.99987742, 2.337229166666667, 46.8, 600000.0, 2200000.0, kClarkeIgn),
                        -4.8, 42.3, 8.3, 51.1)});
    CheckFamily("Lambert conformal conic 2SP",
                {System("RGF93 / Lambert-93",
                        Make<CKvLambert2SP>("l", 49.0, 44.0, 3.0, 46.5, 700000.0, 6600000.0, kGrs80), -9.86, 41.15,
                        10.38, 51.56),
                 System("NAD83 / Alaska zone 10",
                        Make<CKvLambert2SP>("l", 53.0 + 5.0 / 6.0, 51.0 + 5.0 / 6.0, -176.0, 51.0, 1000000.0, 0.0,
                                            kGrs80),
                        172.42, 51.3, 195.16, 54.34)});
}

TEST(RoundTrip, Mercator)
{
    CheckFamily("Mercator 1SP",
                {System("WGS 84 / World Mercator", Make<CKvMercator1SP>("m", 1.0, 0.0, 0.0, 0.0, kWgs84), -180, -80,
                        180, 84),
                 System("WGS 84 / PDC Mercator", Make<CKvMercator1SP>("m", 1.0, 150.0, 0.0, 0.0, kWgs84), 98.69, -60,
                        292, 66.67, {{-164.655, 3.335}})});
    CheckFamily("Mercator 2SP",
                {System("Pulkovo 1942 / Caspian Sea Mercator",
                        Make<CKvMercator2SP>("m", 42.0, 51.0, 0.0, 0.0, kKrassowsky), 46.95, 37.35, 53.93, 46.97),
                 System("WGS 84 / Mercator 41", Make<CKvMercator2SP>("m", -41.0, 100.0, 0.0, 0.0, kWgs84), 155, -60,
                        190.01, -25)});
}

TEST(RoundTrip, AlbersEqualArea)
{
    CheckFamily("Albers equal-area",
                {System("GDA94 / Australian Albers",
                        Make<CKvAlbersEqualArea>("a", -18.0, -36.0, 132.0, 0.0, 0.0, 0.0, kGrs80), 112.85, -43.7,
                        153.69, -9.86, {{140.0, -20.0}}),
                 System("NAD83 / Conus Albers",
                        Make<CKvAlbersEqualArea>("a", 29.5, 45.5, -96.0, 23.0, 0.0, 0.0, kGrs80), -125, 24, -66, 50),
                 System("NAD83 / Alaska Albers",
                        Make<CKvAlbersEqualArea>("a", 55.0, 65.0, -154.0, 50.0, 0.0, 0.0, kGrs80), 172.42, 51.3, 230.01,
                        71.4, {{173.0, 52.9}}),
                 System("Conus Albers on a sphere",
                        Make<CKvAlbersEqualArea>("a", 29.5, 45.5, -96.0, 23.0, 0.0, 0.0, kSphere), -125, 24, -66, 50)});
}

TEST(RoundTrip, EquidistantConic)
{
    CheckFamily("equidistant conic",
                {System("Europe Equidistant Conic",
                        Make<CKvEquidistantConic>("e", 43.0, 62.0, 10.0, 30.0, 0.0, 0.0, kIntl), -30, 30, 45, 72),
                 System("USA Contiguous Equidistant Conic",
                        Make<CKvEquidistantConic>("e", 33.0, 45.0, -96.0, 39.0, 0.0, 0.0, kGrs80), -125, 24, -66, 50),
                 System("Sphere Equidistant Conic",
                        Make<CKvEquidistantConic>("e", 60.0, 60.0, 0.0, 0.0, 0.0, 0.0, kSphere), -60, 30, 60, 80)});
}

TEST(RoundTrip, LambertAzimuthalEqualArea)
{
    CheckFamily("Lambert azimuthal equal-area",
                {System("ETRS89-extended / LAEA Europe",
                        Make<CKvLambertAzimuthalEqualArea>("l", 10.0, 52.0, 4321000.0, 3210000.0, kGrs80), -35.58, 24.6,
                        44.83, 84.73),
                 System("WGS 84 / North Pole LAEA Bering Sea",
                        Make<CKvLambertAzimuthalEqualArea>("l", 180.0, 90.0, 0.0, 0.0, kWgs84), -180, 45, 180, 89.5),
                 System("NSIDC EASE-Grid North", Make<CKvLambertAzimuthalEqualArea>("l", 0.0, 90.0, 0.0, 0.0, kEase),
                        -180, 0, 180, 89.5)});
}

TEST(RoundTrip, CassiniSoldner)
{
    // Johor's grid, and the point 5.6 degrees east of its meridian whose latitude
    // the guidance note's inverse series alone brought back 3.8 cm south.
    constexpr double link = 0.201166195164;
    CheckFamily(
        "Cassini-Soldner",
        {System("GDM2000 / Johor Grid",
                Make<CKvCassiniSoldner>("c", 103.4279362361, 2.121679744, -14810.562, 8758.32, kGrs80), 102.44, 1.21,
                104.6, 2.95, {{109.0, 5.0}}),
         System("DHDN / Soldner Berlin",
                Make<CKvCassiniSoldner>("c", 13.627203666666667, 52.41864827777778, 40000.0, 10000.0, kBessel), 13.0,
                52.3, 13.8, 52.7),
         System("Trinidad 1903 / Trinidad Grid",
                Make<CKvCassiniSoldner>("c", -61.33333333333333, 10.441666666666666, 430000.0 * link, 325000.0 * link,
                                        kClarke1858),
                -62.09, 9.83, -60, 11.51),
         System("Sphere Cassini", Make<CKvCassiniSoldner>("c", 0.0, 0.0, 0.0, 0.0, kSphere), -5, -60, 5, 60),
         // Across the antimeridian: longitudes given beyond 180 and coming back
         // on the other side, both on the short paths.
         System("Cassini about 179.5 E", Make<CKvCassiniSoldner>("c", 179.5, -17.0, 0.0, 0.0, kWgs84), 176.5, -20.0,
                183.0, -14.0, {{-179.0, -17.0}, {180.0, -16.0}, {-177.5, -15.0}})},
        // One Newton step on the forward's exact Jacobian brings the points back
        // to rounding, 2.8e-14 degree and 3.2e-8 m after the trips at worst: a
        // Jacobian entry off by a part in 1e5 (dx/dlambda) leaves 2.4e-6 m
        // after them, which these limits refuse.
        1e-13, 1e-6);
    // The Vanua Levu Grid across the antimeridian, out to 750 km from its
    // origin, where the inverse's Newton start leaves its short path.
    static const double vanuaLevu[4] = {-16.25, 179.333333333333, 251727.9155424, 334519.953768};
    const CKvEllipsoid clarke1880("Clarke 1880 (international foot)", "", 6378306.3696, 293.466307655635);
    CheckFamily("hyperbolic Cassini-Soldner",
                {System("Vanua Levu 1915 / Vanua Levu Grid", Make<CKvHyperbolicCassini>("h", vanuaLevu, clarke1880),
                        172.6, -23.0, 186.0, -9.5, {{180.0, -16.25}, {179.333333333333, -22.9}})},
                // 5.2e-14 degree and 5.6e-6 m at worst; the same faulty entry
                // leaves 6.4e-13 degree and 7e-5 m.
                2e-13, 2e-5);
}

// The families below have inverses of their own (conformal-latitude series,
// Newton's methods, closed forms); the same criterion watches them.
TEST(RoundTrip, StereographicFamily)
{
    CheckFamily("oblique stereographic",
                {System("Amersfoort / RD New",
                        Make<CKvStereographic>("s", 0.9999079, 5.387638888888889, 52.15616055555555, 155000.0, 463000.0,
                                               kBessel),
                        3.2, 50.75, 7.3, 53.7)});
    CheckFamily("polar stereographic",
                {System("WGS 84 / UPS North",
                        Make<CKvPolarStereographic>("s", 0.994, 0.0, 90.0, 2000000.0, 2000000.0, kWgs84), -180, 60, 180,
                        89.5),
                 System("WGS 84 / NSIDC Sea Ice Polar Stereographic North",
                        Make<CKvStereographicNorthPole>("s", 70.0, -45.0, 0.0, 0.0, kWgs84), -180, 60, 180, 89.5),
                 System("WGS 84 / Antarctic Polar Stereographic",
                        Make<CKvStereographicSouthPole>("s", -71.0, 0.0, 0.0, 0.0, kWgs84), -180, -89.5, 180, -60)});
}

TEST(RoundTrip, ObliqueMercatorAndKrovak)
{
    CheckFamily("Hotine oblique Mercator",
                {System("NAD83(HARN) / Michigan Oblique Mercator",
                        Make<CKvHotineObliqueMercator>("o", 0.9996, -86.0, 45.30916666666667, 337.25556, 2546731.496,
                                                       -4354009.816, kGrs80),
                        -90.4, 41.7, -82.4, 48.3),
                 System("CH1903 / LV03",
                        Make<CKvObliqueMercator>("o", 1.0, 7.439583333333333, 46.95240555555556, 90.0, 600000.0,
                                                 200000.0, kBessel),
                        5.96, 45.82, 10.49, 47.81),
                 System("Kertau (RSO) / RSO Malaya",
                        Make<CKvRectifiedSkewOrthomorphic>("r", 0.99984, 102.25, 4.0, 323.0257905, 323.13010236111114,
                                                           804670.24, 0.0, kEverest),
                        99.6, 1.2, 104.6, 6.7)});
    CheckFamily("Krovak", {System("S-JTSK / Krovak",
                                  Make<CKvKrovak>("k", 0.9999, 78.5, 24.833333333333333, 49.5, 30.28813975277778, 0.0,
                                                  1.0, 1.0, 0.0, 0.0, kBessel),
                                  12.09, 47.73, 22.56, 51.06)});
}

TEST(RoundTrip, NewZealandMapGrid)
{
    // The published latitude polynomial alone misses the forward by up to 6.2e-10
    // degree a trip (7 cm in 1 000); the inverse polishes it on the forward's own.
    CheckFamily("New Zealand Map Grid",
                {System("NZGD49 / New Zealand Map Grid",
                        Make<CKvNewZealandMapGrid>("n", 173.0, -41.0, 2510000.0, 6023150.0, kIntl), 166.37, -47.33,
                        178.63, -34.1)});
}

TEST(RoundTrip, WorldMaps)
{
    // The forwards' Newton steps from polynomial starts against the inverses'
    // closed forms (Mollweide, Eckert IV) and the inverses' steps against the
    // forwards (Equal Earth, sinusoidal, Natural Earth, and Winkel Tripel's from
    // its interpolated table, with standard parallels from the equator to
    // near the pole, where the pole lines shrink and the table's cells beyond
    // the outline give no start): across each start's
    // border (sin phi = 0.9, 64.158 degrees; Natural Earth's northing 1.15 R,
    // 66.741 degrees; Robinson's pieces with two steps, from 75 degrees on),
    // towards the poles and at the map's edges. Not
    // within a tenth of a degree of the poles, where the inverses' latitude from
    // a northing that is quadratic in the distance to the pole keeps only half
    // the digits.
    const double centre[4] = {0.0, 0.0, 0.0, 0.0}, offset[3] = {-96.0, 500000.0, -200000.0};
    const double winkel80[4] = {-96.0, 80.0, 500000.0, -200000.0}, winkel85[4] = {30.0, -85.0, 0.0, 0.0};
    const std::vector<std::pair<double, double>> extra = {
        {170.0, 64.15806723683288}, {-120.0, -64.1580672368329}, {179.99, 89.9},  {30.0, 89.5},
        {-179.9, -89.9},       {45.0, 63.9},                {-3.0, 72.5},    {100.0, 1e-9},
        {-60.0, 66.7408952041796}, {60.0, -66.7408952041797}, {-170.0, -75.0}, {10.0, 77.5}};
    CheckFamily("World maps",
                {System("Mollweide, sphere", Make<CKvMollweide>("m", centre, kSphere), -180, -90, 180, 90, extra),
                 System("Eckert IV, sphere", Make<CKvEckertIV>("e", offset, kSphere), -180, -90, 180, 90, extra),
                 System("Equal Earth, WGS 84", Make<CKvEqualEarth>("q", centre, kWgs84), -180, -90, 180, 90, extra),
                 System("Sinusoidal, Clarke 1880", Make<CKvSinusoidal>("s", offset, kClarkeIgn), -180, -90, 180, 90,
                        extra),
                 System("Natural Earth, Clarke 1880", Make<CKvNaturalEarth>("n", offset, kClarkeIgn), -180, -90, 180,
                        90, extra),
                 System("Robinson, sphere", Make<CKvRobinson>("r", offset, kSphere), -180, -90, 180, 90, extra),
                 System("Winkel Tripel, equator", Make<CKvWinkelTripel>("w", centre, kWgs84), -180, -90, 180, 90,
                        extra),
                 System("Winkel Tripel, 80 degrees", Make<CKvWinkelTripel>("w", winkel80, kSphere), -180, -90, 180,
                        90, extra),
                 System("Winkel Tripel, -85 degrees", Make<CKvWinkelTripel>("w", winkel85, kWgs84), -180, -90, 180,
                        90, extra)});
}
