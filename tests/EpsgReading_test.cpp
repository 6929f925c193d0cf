// The two readings of WKT that the EPSG registry and the library's established
// reading part on, the reasons a text or name is refused, and how a host learns
// both. Texts are as GDAL 3.6 writes them (gdalsrsinfo -o wkt_esri / -o wkt1);
// expected coordinates are PROJ 9.1's for the same text, on the projection
// alone (the texts carry no datum shift).
#include "TestSupport.h"
#include "coordsys/KvMapProjection.h"
#include "interface/KvCart.h"
#include "wkt/KvPRJParser.h"

#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

// Sets the process-wide reading for one test and restores it afterwards.
using Reading = kvtest::EpsgReading;

const char kGeogcsWgs84Esri[] = "GEOGCS[\"GCS_WGS_1984\",DATUM[\"D_WGS_1984\",SPHEROID[\"WGS_1984\",6378137.0,"
                                "298.257223563]],PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\",0.0174532925199433]]";

// EPSG:2046, Hartebeesthoek94 / Lo15: westing/southing.
const std::string kLo15Esri = std::string("PROJCS[\"Hartebeesthoek94_Lo15\",GEOGCS[\"GCS_Hartebeesthoek_1994\","
                                          "DATUM[\"D_Hartebeesthoek_1994\",SPHEROID[\"WGS_1984\",6378137.0,"
                                          "298.257223563]],PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\","
                                          "0.0174532925199433]],PROJECTION[\"Transverse_Mercator_South_Orientated\"],"
                                          "PARAMETER[\"latitude_of_origin\",0.0],PARAMETER[\"central_meridian\",15.0],"
                                          "PARAMETER[\"scale_factor\",1.0],PARAMETER[\"false_easting\",0.0],"
                                          "PARAMETER[\"false_northing\",0.0],UNIT[\"Meter\",1.0]]");

// EPSG:2056, CH1903+ / LV95 (Hotine variant B, no grid angle in the ESRI form).
const char kLv95Esri[] =
    "PROJCS[\"CH1903+_LV95\",GEOGCS[\"GCS_CH1903+\",DATUM[\"D_CH1903+\",SPHEROID[\"Bessel_1841\",6377397."
    "155,299.1528128]],PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\",0.0174532925199433]],PROJECTION[\"Hotine"
    "_Oblique_Mercator_Azimuth_Center\"],PARAMETER[\"False_Easting\",2600000.0],PARAMETER[\"False_Northin"
    "g\",1200000.0],PARAMETER[\"Scale_Factor\",1.0],PARAMETER[\"Azimuth\",90.0],PARAMETER[\"Longitude_Of_"
    "Center\",7.43958333333333],PARAMETER[\"Latitude_Of_Center\",46.9524055555556],UNIT[\"Meter\",1.0]]";

// EPSG:3078, NAD83 / Michigan Oblique Mercator (variant A, no grid angle).
const char kMichiganEsri[] =
    "PROJCS[\"NAD_1983_Michigan_GeoRef_Meters\",GEOGCS[\"GCS_North_American_1983\",DATUM[\"D_North_Americ"
    "an_1983\",SPHEROID[\"GRS_1980\",6378137.0,298.257222101]],PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\","
    "0.0174532925199433]],PROJECTION[\"Hotine_Oblique_Mercator_Azimuth_Natural_Origin\"],PARAMETER[\"Fals"
    "e_Easting\",2546731.496],PARAMETER[\"False_Northing\",-4354009.816],PARAMETER[\"Scale_Factor\",0.999"
    "6],PARAMETER[\"Azimuth\",-22.74444],PARAMETER[\"Longitude_Of_Center\",-86.0],PARAMETER[\"Latitude_Of"
    "_Center\",45.3091666666667],UNIT[\"Meter\",1.0]]";

// EPSG:29873, Timbalai 1948 / RSO Borneo (m): centre form, grid angle != azimuth.
const char kBorneoOgc[] =
    "PROJCS[\"Timbalai 1948 / RSO Borneo (m)\",GEOGCS[\"Timbalai 1948\",DATUM[\"Timbalai_1948\",SPHEROID[\"Everest "
    "1830 (1967 Definition)\",6377298.556,300.8017]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],"
    "PROJECTION[\"Hotine_Oblique_Mercator_Azimuth_Center\"],PARAMETER[\"latitude_of_center\",4],"
    "PARAMETER[\"longitude_of_center\",115],PARAMETER[\"azimuth\",53.3158204722222],PARAMETER[\"rectified_grid_"
    "angle\",53.1301023611111],PARAMETER[\"scale_factor\",0.99984],PARAMETER[\"false_easting\",590476.87],"
    "PARAMETER[\"false_northing\",442857.65],UNIT[\"metre\",1],AXIS[\"Easting\",EAST],AXIS[\"Northing\",NORTH]]";
const char kBorneoEsri[] =
    "PROJCS[\"Timbalai_1948_RSO_Borneo_Meters\",GEOGCS[\"GCS_Timbalai_1948\",DATUM[\"D_Timbalai_1948\",SPHEROID["
    "\"Everest_Definition_1967\",6377298.556,300.8017]],PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\","
    "0.0174532925199433]],PROJECTION[\"Rectified_Skew_Orthomorphic_Center\"],PARAMETER[\"False_Easting\",590476.87],"
    "PARAMETER[\"False_Northing\",442857.65],PARAMETER[\"Scale_Factor\",0.99984],PARAMETER[\"Azimuth\","
    "53.3158204722222],PARAMETER[\"Longitude_Of_Center\",115.0],PARAMETER[\"Latitude_Of_Center\",4.0],"
    "PARAMETER[\"XY_Plane_Rotation\",53.1301023611111],UNIT[\"Meter\",1.0]]";

// EPSG:3857 as GDAL writes it in WKT 1: Mercator_1SP on the WGS 84 ellipsoid,
// with PROJ's spherical definition in an EXTENSION.
const char kWebMercatorOgc[] =
    "PROJCS[\"WGS 84 / Pseudo-Mercator\",GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\",6378137,"
    "298.257223563]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],PROJECTION[\"Mercator_1SP\"],"
    "PARAMETER[\"central_meridian\",0],PARAMETER[\"scale_factor\",1],PARAMETER[\"false_easting\",0],"
    "PARAMETER[\"false_northing\",0],UNIT[\"metre\",1],AXIS[\"Easting\",EAST],AXIS[\"Northing\",NORTH],"
    "EXTENSION[\"PROJ4\",\"+proj=merc +a=6378137 +b=6378137 +lat_ts=0 +lon_0=0 +x_0=0 +y_0=0 +k=1 +units=m "
    "+nadgrids=@null +wktext +no_defs\"]]";

// EPSG:5041 and 32661, UPS North: GDAL names both axes SOUTH (along 90 E and
// 180 E); 32661 gives northing first.
const char kUpsNorthEN[] =
    "PROJCS[\"WGS 84 / UPS North (E,N)\",GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\",6378137,"
    "298.257223563]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],PROJECTION[\"Polar_"
    "Stereographic\"],PARAMETER[\"latitude_of_origin\",90],PARAMETER[\"central_meridian\",0],PARAMETER[\"scale_"
    "factor\",0.994],PARAMETER[\"false_easting\",2000000],PARAMETER[\"false_northing\",2000000],UNIT[\"metre\",1],"
    "AXIS[\"Easting\",SOUTH],AXIS[\"Northing\",SOUTH]]";
const char kUpsNorthNE[] =
    "PROJCS[\"WGS 84 / UPS North (N,E)\",GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\",6378137,"
    "298.257223563]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],PROJECTION[\"Polar_"
    "Stereographic\"],PARAMETER[\"latitude_of_origin\",90],PARAMETER[\"central_meridian\",0],PARAMETER[\"scale_"
    "factor\",0.994],PARAMETER[\"false_easting\",2000000],PARAMETER[\"false_northing\",2000000],UNIT[\"metre\",1],"
    "AXIS[\"Northing\",SOUTH],AXIS[\"Easting\",SOUTH]]";

// EPSG:3031, Antarctic Polar Stereographic, variant B as GDAL writes it in WKT 1:
// no scale factor, the latitude of origin is the latitude of true scale.
const char kAntarcticOgc[] =
    "PROJCS[\"WGS 84 / Antarctic Polar Stereographic\",GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\","
    "6378137,298.257223563]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],PROJECTION[\"Polar_"
    "Stereographic\"],PARAMETER[\"latitude_of_origin\",-71],PARAMETER[\"central_meridian\",0],PARAMETER[\"false_"
    "easting\",0],PARAMETER[\"false_northing\",0],UNIT[\"metre\",1],AXIS[\"Easting\",NORTH],AXIS[\"Northing\","
    "NORTH]]";

void ExpectPoint(const CKvMapProjection& system, double lon, double lat, double x, double y, const char* what)
{
    ASSERT_NE(system.GetProjection(), nullptr) << what << ": " << system.GetMessage();
    double gx = NAN, gy = NAN;
    system.Geo2Proj(lon, lat, &gx, &gy);
    EXPECT_NEAR(gx, x, 1e-3) << what;
    EXPECT_NEAR(gy, y, 1e-3) << what;
    double back[2] = {NAN, NAN};
    system.Proj2Geo(gx, gy, &back[0], &back[1]);
    EXPECT_NEAR(back[0], lon, 1e-9) << what;
    EXPECT_NEAR(back[1], lat, 1e-9) << what;
}

} // namespace

TEST(EpsgReading, HotineWithoutGridAngleTakesTheAzimuthAndKeepsItsCentreOrigin)
{
    // Read as the rectified skew form, as always, but with the grid angle of the
    // azimuth; a centre-form text counts from its centre. Both readings agree.
    const kvtest::WithoutRegistry texts; // the datum's shift is not what is tested
    for (const bool epsg : {false, true}) {
        const Reading reading(epsg);
        CKvPRJParser parser(kLv95Esri);
        ASSERT_TRUE(parser.Parse(false));
        EXPECT_EQ(parser.GetProjectionType(), CKvMapProjData::eRectifiedSkewOrthomorphic);
        EXPECT_TRUE(parser.GetCentreOrigin());
        ExpectPoint(CKvMapProjection(kLv95Esri), 8.225, 46.815, 2659933.4187, 1185026.7141, "LV95 ESRI");
        ExpectPoint(CKvMapProjection(kMichiganEsri), -86.275, 45.005, 478167.8785, 494847.0008, "Michigan ESRI");
        ExpectPoint(CKvMapProjection(kBorneoOgc), 114.46, 4.26, 530452.6012, 471427.3805, "RSO Borneo OGC");
        ExpectPoint(CKvMapProjection(kBorneoEsri), 114.46, 4.26, 530452.6012, 471427.3805, "RSO Borneo ESRI");
        EXPECT_EQ(CKvMapProjection(kLv95Esri).GetMessage(), "");
    }
}

TEST(EpsgReading, SouthOrientatedTransverseMercatorWarnsOrCountsWestingSouthing)
{
    const kvtest::WithoutRegistry texts; // the datum's shift is not what is tested
    {
        const Reading reading(false);
        const CKvMapProjection system(kLo15Esri);
        ExpectPoint(system, 14.475, -22.915, -53858.5029, -2535220.4668, "Lo15 compatible");
        EXPECT_EQ(system.GetMessage(), "Transverse_Mercator_South_Orientated read as plain transverse Mercator: "
                                       "coordinates are easting/northing (the registry's are westing/southing)");
    }
    {
        const Reading reading(true);
        const CKvMapProjection system(kLo15Esri);
        ExpectPoint(system, 14.475, -22.915, 53858.5029, 2535220.4668, "Lo15 EPSG");
        EXPECT_EQ(system.GetCoordSysType(), 4 * 2 + 3); // west, south
    }
    // With a false origin the registry subtracts: W = FE - E, S = FN - N.
    std::string offset = kLo15Esri;
    offset.replace(offset.find("\"false_easting\",0.0"), 19, "\"false_easting\",100000.0");
    offset.replace(offset.find("\"false_northing\",0.0"), 20, "\"false_northing\",3000000.0");
    {
        const Reading reading(true);
        ExpectPoint(CKvMapProjection(offset), 14.475, -22.915, 100000 + 53858.5029, 3000000 + 2535220.4668,
                    "Lo15 EPSG, false origin");
    }
    // The OGC text with west/south axes reads the same under both, without
    // warning, when its false origin is zero.
    const std::string ogc =
        kLo15Esri.substr(0, kLo15Esri.size() - 1) + ",AXIS[\"Westing\",WEST],AXIS[\"Southing\",SOUTH]]";
    const Reading reading(false);
    const CKvMapProjection system(ogc);
    ExpectPoint(system, 14.475, -22.915, 53858.5029, 2535220.4668, "Lo15 OGC compatible");
    EXPECT_EQ(system.GetMessage(), "");
}

TEST(EpsgReading, AxesNamedAlongMeridiansAtAPole)
{
    {
        const Reading reading(true);
        ExpectPoint(CKvMapProjection(kUpsNorthEN), 10, 80, 2193261.9368, 903957.0916, "5041 EPSG");
        ExpectPoint(CKvMapProjection(kUpsNorthNE), 10, 80, 903957.0916, 2193261.9368, "32661 EPSG");
        ExpectPoint(CKvMapProjection(kAntarcticOgc), 0, -75, 0.0, 1638783.2384, "3031 EPSG");
    }
    const Reading reading(false);
    // The established reading takes the words as directions: a south first axis
    // exchanges and negates, a north one exchanges; each with a warning.
    const CKvMapProjection ups(kUpsNorthEN);
    ExpectPoint(ups, 10, 80, -903957.0916, -2193261.9368, "5041 compatible");
    EXPECT_TRUE(kvtest::Contains(ups.GetMessage(), "negate and exchange the coordinates"));
    const CKvMapProjection antarctic(kAntarcticOgc);
    ExpectPoint(antarctic, 0, -75, 1638783.2384, 0.0, "3031 compatible");
    EXPECT_TRUE(kvtest::Contains(antarctic.GetMessage(), "exchange the coordinates"));
    // A northing first, both named NORTH (EPSG:5482 at the south pole), reads the
    // same either way, without a warning.
    std::string northFirst = kAntarcticOgc;
    const std::string axes = "AXIS[\"Easting\",NORTH],AXIS[\"Northing\",NORTH]";
    northFirst.replace(northFirst.find(axes), axes.size(), "AXIS[\"Northing\",NORTH],AXIS[\"Easting\",NORTH]");
    const CKvMapProjection rsps(northFirst);
    ExpectPoint(rsps, 0, -75, 1638783.2384, 0.0, "northing first, compatible");
    EXPECT_EQ(rsps.GetMessage(), "");
    // An ESRI text has no AXIS node: easting, northing under both readings.
    const std::string esri = std::string(kUpsNorthEN).substr(0, std::string(kUpsNorthEN).find(",AXIS[")) + "]";
    for (const bool epsg : {false, true}) {
        const Reading inner(epsg);
        const CKvMapProjection system(esri);
        ExpectPoint(system, 10, 80, 2193261.9368, 903957.0916, "UPS North without axes");
        EXPECT_EQ(system.GetMessage(), "");
    }
}

// GDAL's WKT 1 of EPSG:3857: the pseudo-Mercator under the registry's reading
// (PROJ: cs2cs +proj=webmerc), the Mercator of its SPHEROID with a warning under
// the established one (PROJ: +proj=merc on WGS 84), some 24 km apart at 34 S.
TEST(EpsgReading, SphericalExtensionIsWebMercatorOrWarned)
{
    {
        const Reading reading(true);
        const CKvMapProjection system(kWebMercatorOgc);
        ExpectPoint(system, -70, -34, -7792364.3555, -4028802.0261, "3857, EPSG reading");
        ExpectPoint(system, 15, 60, 1669792.3619, 8399737.8898, "3857, EPSG reading");
        EXPECT_EQ(system.GetMessage(), "");
    }
    const Reading reading(false);
    const CKvMapProjection system(kWebMercatorOgc);
    ExpectPoint(system, -70, -34, -7792364.3555, -4004909.1095, "3857, established reading");
    ExpectPoint(system, 15, 60, 1669792.3619, 8362698.5485, "3857, established reading");
    EXPECT_TRUE(kvtest::Contains(system.GetMessage(), "sphere of radius 6378137"));
    EXPECT_TRUE(kvtest::Contains(system.GetMessage(), "the EPSG reading gives Web Mercator"));
}

TEST(EpsgReading, RefusedTextsAndNamesSayWhy)
{
    const struct
    {
        std::string text;
        const char* reason;
    } cases[] = {
        {std::string("PROJCS[\"World_Aitoff\",") + kGeogcsWgs84Esri +
             ",PROJECTION[\"Aitoff\"],PARAMETER[\"False_Easting\",0.0],PARAMETER[\"False_Northing\",0.0],"
             "PARAMETER[\"Central_Meridian\",0.0],UNIT[\"Meter\",1.0]]",
         "projection \"Aitoff\" is not supported"},
        {std::string("PROJCS[\"WGS_1984_Web_Mercator_Auxiliary_Sphere\",") + kGeogcsWgs84Esri +
             ",PROJECTION[\"Mercator_Auxiliary_Sphere\"],PARAMETER[\"False_Easting\",0.0],PARAMETER[\"False_"
             "Northing\",0.0],PARAMETER[\"Central_Meridian\",0.0],PARAMETER[\"Standard_Parallel_1\",0.0],"
             "PARAMETER[\"Auxiliary_Sphere_Type\",2.0],UNIT[\"Meter\",1.0]]",
         "projection \"Mercator_Auxiliary_Sphere\": its Auxiliary_Sphere_Type 2 is not supported (only 0, the "
         "sphere of the semi-major axis)"},
        {std::string("PROJCS[\"x\",") + kGeogcsWgs84Esri +
             ",PROJECTION[\"Transverse_Mercator\"],PARAMETER[\"False_Easting\",0.0],PARAMETER[\"False_"
             "Northing\",0.0],PARAMETER[\"Central_Meridian\",9.0],PARAMETER[\"Latitude_Of_Origin\",0.0],"
             "UNIT[\"Meter\",1.0]]",
         "projection \"Transverse_Mercator\": the parameter \"Scale_Factor\" is missing"},
        {std::string("PROJCS[\"x\",") + kGeogcsWgs84Esri +
             ",PROJECTION[\"Transverse_Mercator\"],PARAMETER[\"False_Easting\",0.0],PARAMETER[\"False_"
             "Northing\",0.0],PARAMETER[\"Central_Meridian\",9.0],PARAMETER[\"Scale_Factor\",1.0],"
             "PARAMETER[\"Latitude_Of_Origin\",0.0]]",
         "the projected system has no linear UNIT after its GEOGCS"},
        {"PROJCS[\"x\",GEOGCS[\"y\",DATUM[\"z\",SPHEROID[\"s\",6378137,298.257223563]]],PROJECTION[\"T\"]]]",
         "not WKT: the ']' at character 87 closes no node"},
        {"PROJCS[\"x\",GEOGCS[\"y\",DATUM[\"z\",SPHEROID[\"s\",6378137,298.257223563]],",
         "not WKT: 2 bracket(s) left open at the end of the text"},
        {"PROJCRS[\"WGS 84 / UTM zone 32N\",BASEGEOGCRS[\"WGS 84\",DATUM[\"World Geodetic System 1984\",ELLIPSOID["
         "\"WGS 84\",6378137,298.257223563]]],CONVERSION[\"UTM zone 32N\",METHOD[\"Transverse Mercator\"]]]",
         "WKT 2 is not read: give the system as WKT 1 (PROJCS or GEOGCS, as a .prj file holds it)"},
        {"Britsh National Grid",
         "unknown coordinate system \"Britsh National Grid\"; did you mean \"British National Grid\" (EPSG:27700)?"},
    };
    kvtest::ShippedCatalogue();
    for (const bool epsg : {false, true}) {
        const Reading reading(epsg);
        for (const auto& c : cases) {
            const CKvMapProjection system(c.text);
            EXPECT_EQ(system.GetProjection(), nullptr) << c.text;
            EXPECT_EQ(system.GetMessage(), c.reason) << c.text;
            EXPECT_EQ(CKvMapProjection::GetLastMessage(), c.reason);
        }
    }
    // A system that resolves as written leaves no message behind.
    const CKvMapProjection utm(std::string("UTM-32"));
    EXPECT_EQ(CKvMapProjection::GetLastMessage(), "");
    EXPECT_THROW(CKvMapProjection("UTM"), std::out_of_range);
    EXPECT_EQ(CKvMapProjection::GetLastMessage(), "Can't use generic UTM: name a zone, UTM-1 to UTM-60");
}

TEST(EpsgReading, CInterfaceSwitchMessagesAndLastErrorPerThread)
{
    kvtest::ShippedCatalogue();
    const Reading restore(CKvMapProjection::GetEpsgReading());
    C_KVC_SETEPSGREADING(0);
    EXPECT_EQ(C_KVC_GETEPSGREADING(), 0);
    KVMP_HANDLE handle = nullptr;
    int status = 1;
    C_KVMP_CREATE(kLo15Esri.c_str(), &handle, &status);
    ASSERT_EQ(status, 0);
    char buffer[512];
    C_KVMP_GETMESSAGE(handle, buffer, sizeof buffer - 1, &status);
    ASSERT_EQ(status, 0);
    EXPECT_TRUE(kvtest::Contains(buffer, "South_Orientated"));
    // The string rule: a size below the length reports the length.
    C_KVMP_GETMESSAGE(handle, buffer, 10, &status);
    EXPECT_EQ(status, static_cast<int>(std::string(handle->GetMessage()).size()));
    double x = 0, y = 0;
    C_KVMP_GEO2PROJ(handle, 14.475, -22.915, &x, &y);
    EXPECT_NEAR(x, -53858.5029, 1e-3);
    C_KVMP_DESTROY(&handle, &status);

    C_KVC_SETEPSGREADING(7); // any non-zero value
    EXPECT_EQ(C_KVC_GETEPSGREADING(), 1);
    C_KVMP_CREATE(kLo15Esri.c_str(), &handle, &status);
    C_KVMP_GEO2PROJ(handle, 14.475, -22.915, &x, &y);
    EXPECT_NEAR(x, 53858.5029, 1e-3);
    C_KVMP_GETMESSAGE(handle, buffer, sizeof buffer - 1, &status);
    EXPECT_STREQ(buffer, "");
    C_KVMP_DESTROY(&handle, &status);

    // The generic name fails the create; the last error says why, in this
    // thread only.
    C_KVMP_CREATE("UTM", &handle, &status);
    EXPECT_EQ(status, -1);
    C_KVMP_GETLASTERROR(buffer, sizeof buffer - 1, &status);
    EXPECT_STREQ(buffer, "Can't use generic UTM: name a zone, UTM-1 to UTM-60");
    std::string other;
    std::thread([&other] {
        KVMP_HANDLE h = nullptr;
        int s = 0;
        C_KVMP_CREATE("No Such Grid", &h, &s);
        char text[256];
        C_KVMP_GETLASTERROR(text, sizeof text - 1, &s);
        other = text;
        C_KVMP_DESTROY(&h, &s);
    }).join();
    EXPECT_EQ(other, "unknown coordinate system \"No Such Grid\"");
    C_KVMP_GETLASTERROR(buffer, sizeof buffer - 1, &status);
    EXPECT_STREQ(buffer, "Can't use generic UTM: name a zone, UTM-1 to UTM-60");
}

TEST(EpsgReading, EsriStereographicIsSnydersUnderTheRegistrysReading)
{
    // tools/make_esri_stereographic.py: ESRI texts of "Stereographic" (polar and
    // oblique, ellipsoids and a sphere) with PROJ's coordinates from each text.
    std::ifstream in(std::string(KVCART_TEST_DATA_DIR) + "esri_stereographic.txt");
    std::string line, wkt, id;
    int compared = 0;
    double worstCompatible = 0.0;
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        std::string kind;
        std::getline(fields, kind, '\t');
        std::getline(fields, id, '\t');
        if (kind == "W") {
            std::getline(fields, wkt);
            continue;
        }
        double lon, lat, x, y;
        fields >> lon >> lat >> x >> y;
        {
            const Reading reading(true);
            const CKvMapProjection system(wkt);
            ExpectPoint(system, lon, lat, x, y, id.c_str());
            EXPECT_EQ(system.GetMessage(), "") << id;
        }
        const Reading reading(false);
        const CKvMapProjection system(wkt);
        double gx = NAN, gy = NAN;
        system.Geo2Proj(lon, lat, &gx, &gy);
        worstCompatible = std::fmax(worstCompatible, std::hypot(gx - x, gy - y));
        EXPECT_TRUE(kvtest::Contains(system.GetMessage(), "Stereographic read as the oblique (double) stereographic"))
            << id;
        ++compared;
    }
    EXPECT_EQ(compared, 36);
    // The double stereographic is another projection: decimetres and more away.
    EXPECT_GT(worstCompatible, 0.1);
}
