// The datum converter against PROJ (cs2cs --3d with the same +towgs84, and
// +proj=cart for geocentric coordinates; tools/make_datum_vectors.py), and its
// flags, order and copies.
#include "TestSupport.h"

#include "coordsys/KvMapProjection.h"
#include "geodesy/KvDatumConverter.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr double kMetresPerDegree = 111320.0;

struct DatumCase
{
    int type = 0;
    std::string source, target;
    std::vector<std::vector<double>> values; // x y h x' y' h'
};

std::vector<std::string> Fields(const std::string& line)
{
    std::vector<std::string> f;
    std::istringstream in(line);
    for (std::string field; std::getline(in, field, '\t');)
        f.push_back(field);
    return f;
}

std::vector<double> Numbers(const std::vector<std::string>& f, size_t from)
{
    std::vector<double> v;
    for (size_t i = from; i < f.size(); ++i)
        v.push_back(std::strtod(f[i].c_str(), nullptr));
    return v;
}

void Load(std::map<std::string, DatumCase>& cases, std::vector<std::vector<double>>& geocentric)
{
    std::ifstream in(std::string(KVCART_TEST_DATA_DIR) + "datum_vectors.txt");
    for (std::string line; std::getline(in, line);) {
        const std::vector<std::string> f = Fields(line);
        if (f[0] == "C") {
            DatumCase& c = cases[f[1]];
            c.type = std::stoi(f[2]);
            c.source = f[3];
            c.target = f[4];
        } else if (f[0] == "V") {
            cases.at(f[1]).values.push_back(Numbers(f, 2));
        } else if (f[0] == "G") {
            geocentric.push_back(Numbers(f, 1));
        }
    }
}

// The distance in metres between two results, geographical ones scaled.
double Miss(bool geographical, double x, double y, double xRef, double yRef)
{
    if (!geographical)
        return std::hypot(x - xRef, y - yRef);
    return kMetresPerDegree * std::hypot((x - xRef) * std::cos(yRef * M_PI / 180.0), y - yRef);
}

std::string Geographic(double a, double rf)
{
    char text[256];
    std::snprintf(text, sizeof text,
                  "GEOGCS[\"G\",DATUM[\"D\",SPHEROID[\"S\",%.17g,%.17g]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\","
                  "0.0174532925199433]]",
                  a, rf);
    return text;
}

} // namespace

TEST(DatumConverter, AgreesWithProjForEveryConversionType)
{
    std::map<std::string, DatumCase> cases;
    std::vector<std::vector<double>> geocentric;
    Load(cases, geocentric);
    ASSERT_GE(cases.size(), 7u);
    std::set<int> types;
    for (const auto& [name, c] : cases) {
        CKvDatumConverter converter(c.source.c_str(), c.target.c_str());
        ASSERT_FALSE(converter.GetBypassXYZ()) << name;
        converter.SetConversionType(static_cast<CKvDatumConverter::ETypeOfConversion>(c.type));
        types.insert(c.type);
        const bool geoIn = c.type >= 2, geoOut = c.type % 2 == 1;
        const bool sevenParameters = converter.GetShiftType(true) == CKvCartDef::eSevenParameters ||
                                     converter.GetShiftType(false) == CKvCartDef::eSevenParameters;
        ASSERT_EQ(c.values.size(), 16u) << name;
        for (const std::vector<double>& v : c.values) {
            double x = v[0], y = v[1], h = v[2];
            converter.Convert(x, y, h);
            EXPECT_LT(Miss(geoOut, x, y, v[3], v[4]), 1e-3) << name << " at " << v[0] << " " << v[1];
            EXPECT_NEAR(h, v[5], 1e-3) << name;
            // The reverse uses the transposed rotation: exact for translations,
            // first order (millimetres at 5 arc-seconds) for rotations.
            converter.InvConvert(x, y, h);
            const double back = sevenParameters ? 1e-2 : 1e-5;
            EXPECT_LT(Miss(geoIn, x, y, v[0], v[1]), back) << name;
            EXPECT_NEAR(h, v[2], back) << name;
        }
    }
    EXPECT_EQ(types.size(), 4u);
}

TEST(DatumConverter, GeocentricCoordinatesAgreeWithProjCart)
{
    std::map<std::string, DatumCase> cases;
    std::vector<std::vector<double>> points;
    Load(cases, points);
    ASSERT_GT(points.size(), 500u);
    double worstForward = 0.0, worstBowring = 0.0;
    for (const std::vector<double>& g : points) {
        const CKvMapProjection system(Geographic(g[0], g[1]));
        double X = 0, Y = 0, Z = 0;
        system.Geo2XYZ(g[2], g[3], g[4], &X, &Y, &Z);
        worstForward = std::max(worstForward, std::hypot(X - g[5], Y - g[6], Z - g[7]));
        double lon = 0, lat = 0, h = 0;
        system.XYZ2Geo(g[5], g[6], g[7], &lon, &lat, &h);
        const double horizontal = 6.4e6 * M_PI / 180.0 *
                                  std::hypot((lon - g[2]) * std::cos(g[3] * M_PI / 180.0), lat - g[3]);
        worstBowring = std::max({worstBowring, horizontal, std::fabs(h - g[4])});
    }
    // One step of Bowring's method, heights -1 km to 10 km: 2.2e-6 m at worst.
    EXPECT_LT(worstForward, 1e-4);
    EXPECT_LT(worstBowring, 1e-4);
    RecordProperty("bowring_worst_metres", std::to_string(worstBowring));
    std::printf("geocentric: forward %.3g m, Bowring inverse %.3g m worst\n", worstForward, worstBowring);
}

TEST(DatumConverter, FlagsOrderAndCopies)
{
    kvtest::ShippedCatalogue();
    const std::string osgb =
        "GEOGCS[\"OSGB36\",DATUM[\"OSGB36\",SPHEROID[\"Airy 1830\",6377563.396,299.3249646],TOWGS84[446.448,"
        "-125.157,542.06,1,0.247,0.842,-20.489]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]]";
    const std::string wgs84 = CKvMapProjection::IDtoProjectionString(CKvMapProjection::eWgs84Geographic);

    // Same figure, no shift: bypassed, a geographical conversion changes nothing.
    CKvDatumConverter same(wgs84.c_str(), "UTM-32");
    EXPECT_TRUE(same.GetBypassXYZ());
    same.SetConversionType(CKvDatumConverter::eGeoToGeo);
    double x = 9.5, y = 50.25, h = 123.0;
    same.Convert(x, y, h);
    EXPECT_EQ(x, 9.5);
    EXPECT_EQ(y, 50.25);
    EXPECT_EQ(h, 123.0);

    // Arc-seconds and ppm of TOWGS84 are taken as radians and a correction.
    CKvDatumConverter shifted(osgb.c_str(), wgs84.c_str());
    EXPECT_FALSE(shifted.GetBypassXYZ());
    EXPECT_NEAR(shifted.GetShift(true)[3], 4.84813681109536e-06, 1e-20);
    EXPECT_NEAR(shifted.GetShift(true)[6], -20.489e-6, 1e-20);
    shifted.BypassXYZ();
    EXPECT_TRUE(shifted.GetBypassXYZ());
    shifted.ResetBypassXYZ();
    EXPECT_FALSE(shifted.GetBypassXYZ());
    // Setting the shifts recomputes the bypass; Airy and WGS 84 differ, so even
    // with no shift on either side the geocentric step stays.
    EXPECT_FALSE(shifted.SetDatumShift(CKvCartDef::eNoDatumShift, nullptr, false));
    EXPECT_FALSE(shifted.SetDatumShift(CKvCartDef::eNoDatumShift, nullptr, true));

    // The geocentric shift and its reverse; the order inverted twice is the same converter.
    CKvDatumConverter converter(osgb.c_str(), "UTM-32");
    converter.SetConversionType(CKvDatumConverter::eProjToGeo);
    double X = 3980000.0, Y = -100000.0, Z = 4970000.0;
    converter.DatumShift(X, Y, Z);
    EXPECT_GT(std::fabs(X - 3980000.0), 100.0);
    converter.InvDatumShift(X, Y, Z);
    EXPECT_NEAR(X, 3980000.0, 1e-3);
    EXPECT_NEAR(Y, -100000.0, 1e-3);
    EXPECT_NEAR(Z, 4970000.0, 1e-3);
    converter.InvertOrder();
    EXPECT_EQ(converter.GetConversionType(), CKvDatumConverter::eGeoToProj);
    EXPECT_EQ(converter.GetShiftType(true), CKvCartDef::eNoDatumShift);
    converter.InvertOrder();
    EXPECT_EQ(converter.GetConversionType(), CKvDatumConverter::eProjToGeo);
    EXPECT_EQ(converter.GetShiftType(true), CKvCartDef::eSevenParameters);
    EXPECT_STREQ(converter.GetMapProjection(false)->GetName(), "UTM-32");

    // A local system on either side leaves every coordinate alone.
    CKvDatumConverter local("NON-UTM", osgb.c_str());
    local.SetConversionType(CKvDatumConverter::eGeoToGeo);
    x = 1.0, y = 2.0, h = 3.0;
    local.Convert(x, y, h);
    local.InvConvert(x, y, h);
    EXPECT_EQ(x, 1.0);
    EXPECT_EQ(y, 2.0);
    EXPECT_EQ(h, 3.0);

    // A copy owns copies of owned systems: it outlives the original.
    CKvDatumConverter* original = new CKvDatumConverter(osgb.c_str(), wgs84.c_str());
    original->SetConversionType(CKvDatumConverter::eGeoToGeo);
    CKvDatumConverter copy(*original);
    CKvDatumConverter assigned(wgs84.c_str(), wgs84.c_str());
    assigned = *original;
    double lon1 = -2.0, lat1 = 52.0, lon2 = -2.0, lat2 = 52.0;
    original->Convert(lon1, lat1);
    delete original;
    copy.Convert(lon2, lat2);
    EXPECT_EQ(lon1, lon2);
    EXPECT_EQ(lat1, lat2);
    assigned.Convert(lon2 = -2.0, lat2 = 52.0);
    EXPECT_EQ(lat1, lat2);
    // Systems it does not own stay shared and are not deleted by either.
    CKvMapProjection a(osgb), b(wgs84);
    CKvDatumConverter borrowing(&a, &b);
    { CKvDatumConverter second(borrowing); EXPECT_EQ(second.GetMapProjection(true), &a); }
    EXPECT_STREQ(a.GetName(), borrowing.GetMapProjection(true)->GetName());

    EXPECT_THROW(CKvDatumConverter("UTM", "UTM-32"), std::out_of_range);
}
