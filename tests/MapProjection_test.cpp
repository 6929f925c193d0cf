// The coordinate-system object: resolution of its string, the neutral answers
// of an unresolved object, axes around the engine, geocentric coordinates and
// geodesics.
#include "TestSupport.h"

#include "catalogue/KvCartSetup.h"
#include "coordsys/KvMapProjection.h"
#include "interface/KvCart.h"
#include "projections/KvProjection.h"

#include <cmath>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace {

const std::string kNorthEast =
    "PROJCS[\"UTM 32 north-east\",GEOGCS[\"G\",DATUM[\"D\",SPHEROID[\"WGS 84\",6378137,298.257223563]],"
    "PRIMEM[\"Greenwich\",0],UNIT[\"Degree\",0.017453292519943295]],PROJECTION[\"Transverse_Mercator\"],"
    "PARAMETER[\"False_Easting\",500000],PARAMETER[\"False_Northing\",0],PARAMETER[\"Central_Meridian\",9],"
    "PARAMETER[\"Scale_Factor\",0.9996],PARAMETER[\"Latitude_Of_Origin\",0],UNIT[\"Meter\",1],"
    "AXIS[\"N\",NORTH],AXIS[\"E\",EAST]]";

} // namespace

TEST(MapProjection, ResolvesStringsAndAnswersNeutrallyWithout)
{
    kvtest::ShippedCatalogue();
    for (const char* local : {"", "   "}) {
        const CKvMapProjection blank(local);
        ASSERT_NE(blank.GetProjection(), nullptr) << '"' << local << '"';
        EXPECT_STREQ(blank.GetName(), "NON-UTM");
    }
    EXPECT_THROW(CKvMapProjection(" UTM "), std::out_of_range);
    try {
        CKvMapProjection generic("UTM");
    } catch (const std::out_of_range& e) {
        EXPECT_STREQ(e.what(), "Can't use generic UTM");
    }

    const CKvMapProjection zone(" UTM-32 ");
    ASSERT_NE(zone.GetProjection(), nullptr);
    EXPECT_STREQ(zone.GetProjectionString(), " UTM-32 ");
    EXPECT_STREQ(zone.GetName(), "UTM-32");
    // A catalogue name gets its units from the WKT its engine describes.
    char name[CKvProjectionInfo::UnitNameSize];
    double factor = 0.0;
    EXPECT_TRUE(zone.GetUnit(CKvMapProjection::eProjUnit, &factor, name));
    EXPECT_STREQ(name, "Meter");
    EXPECT_EQ(factor, 1.0);
    EXPECT_TRUE(zone.GetUnit(CKvMapProjection::eAngularUnit, &factor, name));
    EXPECT_FALSE(zone.GetUnit(static_cast<CKvMapProjection::EMapProjectionInfo>(3), &factor, name));

    const CKvMapProjection unknown("No such system");
    EXPECT_EQ(unknown.GetProjection(), nullptr);
    EXPECT_STREQ(unknown.GetName(), "");
    EXPECT_STREQ(unknown.GetProjectionString(), "");
    double x = 7.0, y = 8.0, lon = 1.0, lat = 2.0;
    unknown.GetOrigin(&x, &y);
    EXPECT_EQ(x, 0.0);
    EXPECT_EQ(y, 0.0);
    EXPECT_EQ(unknown.GetConvergence(10, 50), 0.0);
    EXPECT_FALSE(unknown.IsGeographical());
    EXPECT_FALSE(unknown.IsLocal());
    unknown.Proj2Geo(100, 200, &lon, &lat);
    EXPECT_EQ(lon, 1.0); // untouched
    x = 3.0;
    y = 4.0;
    unknown.Geo2Proj(10, 50, &x, &y);
    EXPECT_EQ(x, 3.0); // the caller's values, converted in place (east/north: unchanged)
    double distance = -1.0;
    EXPECT_TRUE(unknown.GetDistance(10, 50, 10, 50, distance));
    EXPECT_EQ(distance, 0.0);
    EXPECT_FALSE(unknown.GetDistance(10, 50, 11, 50, distance));
    EXPECT_STREQ(CKvMapProjection::IDtoProjectionString(0), "");
    EXPECT_STREQ(CKvMapProjection::IDtoProjectionString(5), "");
}

TEST(MapProjection, AxesAreaCopiesAndGeodesy)
{
    kvtest::ShippedCatalogue();
    const CKvMapProjection northEast(kNorthEast);
    const CKvMapProjection zone("UTM-32");
    double n = 0.0, e = 0.0, x = 0.0, y = 0.0, lon = 0.0, lat = 0.0;
    northEast.Geo2Proj(11.5, 48.1, &n, &e);
    zone.Geo2Proj(11.5, 48.1, &x, &y);
    EXPECT_EQ(n, y);
    EXPECT_EQ(e, x);
    EXPECT_EQ(northEast.GetCoordSysType(), 4);
    EXPECT_EQ(zone.GetCoordSysType(), 1);
    northEast.Proj2Geo(n, e, &lon, &lat);
    EXPECT_NEAR(lon, 11.5, 1e-9);
    EXPECT_NEAR(lat, 48.1, 1e-9);

    // Copies own a clone of the engine.
    CKvMapProjection copy(northEast);
    EXPECT_NE(copy.GetProjection(), northEast.GetProjection());
    copy = zone;
    copy.Geo2Proj(11.5, 48.1, &n, &e);
    EXPECT_EQ(n, x);
    EXPECT_STREQ(copy.GetProjectionString(), "UTM-32");

    // A default area of 4 x 2 cells 1000 m wide around the projected origin;
    // no cells: the engine's own area.
    double x0 = 0, y0 = 0, x1 = 0, y1 = 0, cx = 0, cy = 0, olon = 0, olat = 0;
    zone.GetProjection()->GetOrigin(&olon, &olat);
    zone.GetProjection()->Geo2Proj(olon, olat, &cx, &cy);
    zone.GetDefaultArea(4, 2, CKvMapProjection::eSizeX, 1000.0, &x0, &y0, &x1, &y1);
    EXPECT_EQ(x1 - x0, 1000.0);
    EXPECT_EQ(y1 - y0, 500.0);
    EXPECT_EQ((x0 + x1) / 2, cx);
    zone.GetDefaultArea(4, 2, CKvMapProjection::eSizeY, 1000.0, &x0, &y0, &x1, &y1);
    EXPECT_EQ(x1 - x0, 2000.0);
    double a0 = 0, b0 = 0, a1 = 0, b1 = 0;
    zone.GetDefaultArea(0, 2, CKvMapProjection::eSizeX, 1000.0, &x0, &y0, &x1, &y1);
    zone.GetDefaultArea(&a0, &b0, &a1, &b1);
    EXPECT_EQ(x0, a0);
    EXPECT_EQ(y1, b1);

    // Geocentric coordinates: the worked example of IOGP Guidance Note 7-2
    // (WGS 84, 53 48 33.820 N, 2 07 46.380 E, h = 73 m).
    const double glat = 53 + 48 / 60.0 + 33.820 / 3600.0, glon = 2 + 7 / 60.0 + 46.380 / 3600.0;
    double X = 0, Y = 0, Z = 0, h = 0;
    zone.Geo2XYZ(glon, glat, 73.0, &X, &Y, &Z);
    EXPECT_NEAR(X, 3771793.968, 1e-3);
    EXPECT_NEAR(Y, 140253.342, 1e-3);
    EXPECT_NEAR(Z, 5124304.349, 1e-3);
    zone.XYZ2Geo(X, Y, Z, &lon, &lat, &h);
    EXPECT_NEAR(lon, glon, 1e-11);
    EXPECT_NEAR(lat, glat, 1e-9);
    EXPECT_NEAR(h, 73.0, 1e-3);

    // LONG/LAT has no figure: its geodesics are on WGS 84. (The inverse problem
    // is not provided by the geodesic class: it reports true and leaves its
    // outputs as they were.)
    const CKvMapProjection longLat("LONG/LAT");
    const CKvMapProjection wgs84(CKvMapProjection::IDtoProjectionString(CKvMapProjection::eWgs84Geographic));
    ASSERT_TRUE(longLat.IsGeographical());
    double d = -1.0;
    EXPECT_TRUE(longLat.GetDistance(5, 52, 13, 52.5, d));
    double lon2 = 0, lat2 = 0, az21 = 0, lon3 = 0, lat3 = 0, az31 = 0;
    EXPECT_TRUE(longLat.GetPoint(5, 52, 60, 500000, lon2, lat2, az21));
    EXPECT_TRUE(wgs84.GetPoint(5, 52, 60, 500000, lon3, lat3, az31));
    EXPECT_EQ(lon2, lon3);
    EXPECT_EQ(lat2, lat3);
    EXPECT_GT(lon2, 11.0);
    EXPECT_FALSE(CKvMapProjection("No such system").GetPoint(5, 52, 60, 500000, lon2, lat2, az21));
}

TEST(MapProjection, OriginsComeBackAsTheCatalogueHoldsThem)
{
    // The origin an engine reports is the catalogue's number itself, not its
    // round trip through radians (15, not 14.999999999999998, for UTM-33).
    kvtest::ShippedCatalogue();
    const CKvMapProjectionList& list = CKvCartSetup::Instance()->GetMapProjectionList();
    int checked = 0;
    for (auto it = list.GetIteratorBegin(); it != list.GetIteratorEnd(); ++it) {
        const CKvMapProjData& definition = **it;
        if (definition.GetProjectionType() == CKvMapProjData::eGeographical ||
            definition.GetProjectionType() == CKvMapProjData::eRotatedLongitudeLatitude || definition.GetEllipsoidID().empty())
            continue;
        const CKvMapProjection system(definition.GetName());
        ASSERT_NE(system.GetProjection(), nullptr) << definition.GetName();
        double lon = NAN, lat = NAN;
        system.GetOrigin(&lon, &lat);
        bool lonHeld = false, latHeld = false;
        const std::vector<double> values = kvtest::Parameters(definition);
        for (const double v : values) {
            lonHeld = lonHeld || v == lon;
            latHeld = latHeld || v == lat;
        }
        // Forms without an origin latitude report the equator, the polar forms
        // defined by a standard parallel their pole.
        const bool polar = definition.GetProjectionType() == CKvMapProjData::eStereographicNorthPole ||
                           definition.GetProjectionType() == CKvMapProjData::eStereographicSouthPole;
        EXPECT_TRUE(lonHeld) << definition.GetName() << " origin longitude " << lon;
        EXPECT_TRUE(latHeld || lat == 0.0 || (polar && std::fabs(lat) == 90.0))
            << definition.GetName() << " origin latitude " << lat;
        ++checked;
    }
    EXPECT_GT(checked, 300);
    double x = NAN, y = NAN;
    int status = -1;
    S_PROJECTIONORIGIN("UTM-33", &x, &y, &status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(x, 15.0);
}
