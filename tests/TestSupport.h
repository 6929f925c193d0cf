#ifndef KVCART_TESTS_TESTSUPPORT_H
#define KVCART_TESTS_TESTSUPPORT_H

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <unistd.h>

namespace kvtest {

// Systems the datum tests share. OSGB 1936 / British National Grid with the
// seven-parameter shift of EPSG:1314; ED50 / UTM zone 31N with the
// three-parameter shift of EPSG:1133.
inline constexpr char kOsgbGrid[] =
    "PROJCS[\"OSGB 1936 / British National Grid\",GEOGCS[\"OSGB 1936\",DATUM[\"OSGB_1936\",SPHEROID[\"Airy "
    "1830\",6377563.396,299.3249646],TOWGS84[446.448,-125.157,542.06,0.15,0.247,0.842,-20.489]],PRIMEM[\"Greenwich\","
    "0],UNIT[\"degree\",0.0174532925199433]],PROJECTION[\"Transverse_Mercator\"],PARAMETER[\"latitude_of_origin\","
    "49],PARAMETER[\"central_meridian\",-2],PARAMETER[\"scale_factor\",0.9996012717],PARAMETER[\"false_easting\","
    "400000],PARAMETER[\"false_northing\",-100000],UNIT[\"metre\",1]]";
inline constexpr char kEd50Utm31[] =
    "PROJCS[\"ED50 / UTM zone 31N\",GEOGCS[\"ED50\",DATUM[\"European_Datum_1950\",SPHEROID[\"International "
    "1924\",6378388,297],TOWGS84[-87,-98,-121,0,0,0,0]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\","
    "0.0174532925199433]],PROJECTION[\"Transverse_Mercator\"],PARAMETER[\"latitude_of_origin\",0],"
    "PARAMETER[\"central_meridian\",3],PARAMETER[\"scale_factor\",0.9996],PARAMETER[\"false_easting\",500000],"
    "PARAMETER[\"false_northing\",0],UNIT[\"metre\",1]]";

// RGF93 / Lambert-93 with its axes north, east.
inline constexpr char kLambert93NorthEast[] =
    "PROJCS[\"RGF93 / Lambert-93\",GEOGCS[\"RGF93\",DATUM[\"RGF93\",SPHEROID[\"GRS 1980\",6378137,298.257222101]],"
    "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],PROJECTION[\"Lambert_Conformal_Conic_2SP\"],"
    "PARAMETER[\"standard_parallel_1\",49],PARAMETER[\"standard_parallel_2\",44],PARAMETER[\"latitude_of_origin\","
    "46.5],PARAMETER[\"central_meridian\",3],PARAMETER[\"false_easting\",700000],PARAMETER[\"false_northing\","
    "6600000],UNIT[\"metre\",1],AXIS[\"Northing\",NORTH],AXIS[\"Easting\",EAST]]";

// A fresh directory under /tmp, removed with its files when the object goes.
class TempDir
{
public:
    TempDir()
    {
        char pattern[] = "/tmp/kvcart-test-XXXXXX";
        const char* made = mkdtemp(pattern);
        m_path = made != nullptr ? std::string(made) + "/" : std::string();
    }
    ~TempDir()
    {
        if (!m_path.empty())
            std::system(("rm -rf '" + m_path + "'").c_str());
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::string& Path() const { return m_path; }
    std::string File(const std::string& name) const { return m_path + name; }

private:
    std::string m_path;
};

inline void WriteFile(const std::string& path, const std::string& text)
{
    std::ofstream out(path, std::ios::binary);
    out << text;
}

inline std::string ReadFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// How often what occurs in text, overlapping occurrences included.
inline int Count(const std::string& text, const std::string& what)
{
    int n = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
        ++n;
    return n;
}

// Whether text holds part; the whole text is shown when the expectation fails
// (EXPECT_TRUE for a message that must be there, EXPECT_FALSE for one that must not).
inline ::testing::AssertionResult Contains(const std::string& text, const std::string& part)
{
    if (text.find(part) == std::string::npos)
        return ::testing::AssertionFailure() << "'" << part << "' is not in:\n" << text;
    return ::testing::AssertionSuccess() << "'" << part << "' is in:\n" << text;
}

// Switches the process to a German locale, whose decimal separator is a comma,
// for the lifetime of the object. The locale is compiled into the build tree.
class CommaLocale
{
public:
    CommaLocale()
    {
        setenv("LOCPATH", KVCART_TEST_LOCPATH, 1);
        m_active = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
    }
    ~CommaLocale() { std::setlocale(LC_ALL, "C"); }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;
    bool Active() const { return m_active; }

private:
    bool m_active = false;
};

} // namespace kvtest


#include "catalogue/KvCartSetup.h"
#include "catalogue/KvEpsgRegistry.h"
#include "catalogue/KvMapProjData.h"
#include "coordsys/KvMapProjection.h"
#include "interface/KvCart.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace kvtest {

// Loads the shipped catalogue into the process-wide setup once per process, with
// a private user directory that is removed after the setup has written back.
inline const std::string& ShippedCatalogue()
{
    static const std::string userDirectory = [] {
        char pattern[] = "/tmp/kvcart-user-XXXXXX";
        const std::string dir = std::string(mkdtemp(pattern)) + "/";
        static std::string toRemove;
        toRemove = dir;
        // Registered before the setup exists, so it runs after the setup's write-back.
        std::atexit([] { std::system(("rm -rf '" + toRemove + "'").c_str()); });
        CARTSETUPLINUX(KVCART_SHIPPED_DATA_DIR, dir.c_str());
        return dir;
    }();
    return userDirectory;
}

// The tab-separated fields of a line of a reference file.
inline std::vector<std::string> TabFields(const std::string& line)
{
    std::vector<std::string> fields;
    std::istringstream in(line);
    for (std::string field; std::getline(in, field, '\t');)
        fields.push_back(field);
    return fields;
}

// A case of a reference-vector file (tools/make_projection_vectors.py and its
// kin): "CASE engine label a invf parameters...", then its points, one a line,
// "lon lat x y [convergence]" (NaN where no convergence is given).
struct VectorPoint
{
    double lon = 0.0, lat = 0.0, x = 0.0, y = 0.0, convergence = 0.0;
};

struct VectorCase
{
    std::string engine, label;
    double a = 0.0, invf = 0.0;
    std::vector<double> params;
    std::vector<VectorPoint> points;
};

inline std::vector<VectorCase> LoadVectorCases(const std::string& path)
{
    std::ifstream in(path);
    std::vector<VectorCase> cases;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#')
            continue;
        std::istringstream fields(line);
        if (line.compare(0, 5, "CASE ") == 0) {
            std::string tag;
            VectorCase c;
            fields >> tag >> c.engine >> c.label >> c.a >> c.invf;
            for (double v; fields >> v;)
                c.params.push_back(v);
            cases.push_back(c);
        } else if (!cases.empty()) {
            VectorPoint p;
            fields >> p.lon >> p.lat >> p.x >> p.y;
            if (!(fields >> p.convergence))
                p.convergence = std::nan("");
            cases.back().points.push_back(p);
        }
    }
    return cases;
}

// Sets the process-wide WKT reading (the EPSG registry's, or the established
// one) for a scope, and restores the one before.
class EpsgReading
{
public:
    explicit EpsgReading(bool epsg) : m_before(CKvMapProjection::GetEpsgReading())
    {
        CKvMapProjection::SetEpsgReading(epsg);
    }
    ~EpsgReading() { CKvMapProjection::SetEpsgReading(m_before); }
    EpsgReading(const EpsgReading&) = delete;
    EpsgReading& operator=(const EpsgReading&) = delete;

private:
    bool m_before;
};

// Reads texts for a scope as a host without the EPSG registry does: no datum
// shift or code is taken from it, whether or not a catalogue is set up.
class WithoutRegistry
{
public:
    WithoutRegistry() { CKvEpsgRegistry::Instance().UseFile("/nonexistent/epsg_registry.txt"); }
    ~WithoutRegistry() { CKvEpsgRegistry::Instance().UseFile(""); }
    WithoutRegistry(const WithoutRegistry&) = delete;
    WithoutRegistry& operator=(const WithoutRegistry&) = delete;
};

// A definition's parameters in stored order.
inline std::vector<double> Parameters(const CKvMapProjData& d)
{
    std::vector<double> values;
    std::string label;
    double value;
    CKvMapProjData::EParamType kind;
    for (int i = 0; d.GetParameter(i, label, value, kind); ++i)
        values.push_back(value);
    return values;
}

// The grid point of a geographical one, within tol, by an engine or a system.
template <class TSystem>
void ExpectForward(const TSystem& system, double lon, double lat, double x, double y, double tol)
{
    double px = NAN, py = NAN;
    system.Geo2Proj(lon, lat, &px, &py);
    EXPECT_NEAR(px, x, tol) << "forward of " << lon << " " << lat;
    EXPECT_NEAR(py, y, tol) << "forward of " << lon << " " << lat;
}

// The geographical point of a grid one, within tol.
template <class TSystem>
void ExpectInverse(const TSystem& system, double x, double y, double lon, double lat, double tol)
{
    double plon = NAN, plat = NAN;
    system.Proj2Geo(x, y, &plon, &plat);
    EXPECT_NEAR(plon, lon, tol) << "inverse of " << x << " " << y;
    EXPECT_NEAR(plat, lat, tol) << "inverse of " << x << " " << y;
}

// The worst errors of an engine at the points of a reference case: forward in
// metres (degrees for an angular grid), the inverse of the reference's grid
// point and the round trip in degrees (the longitude of a pole means nothing),
// and the convergence where the reference gives one. A non-finite error is the
// worst of all (std::max would drop a NaN).
struct CaseErrors
{
    double forward = 0.0, inverse = 0.0, roundTrip = 0.0, convergence = 0.0;
    size_t points = 0;
    static void Worse(double& current, double error)
    {
        current = std::isfinite(error) ? std::max(current, error) : HUGE_VAL;
    }
    void Add(const CaseErrors& other)
    {
        Worse(forward, other.forward);
        Worse(inverse, other.inverse);
        Worse(roundTrip, other.roundTrip);
        Worse(convergence, other.convergence);
        points += other.points;
    }
};

template <class TEngine> CaseErrors MeasureCase(const TEngine& engine, const VectorCase& c, bool angular = false)
{
    const auto angle = [](double a, double b) { return std::fabs(std::remainder(a - b, 360.0)); };
    CaseErrors e;
    for (const VectorPoint& p : c.points) {
        double x, y, lon, lat, lon2, lat2;
        engine.Geo2Proj(p.lon, p.lat, &x, &y);
        CaseErrors::Worse(e.forward,
                          angular ? std::max(angle(x, p.x), std::fabs(y - p.y)) : std::hypot(x - p.x, y - p.y));
        const bool pole = std::fabs(p.lat) == 90.0;
        engine.Proj2Geo(p.x, p.y, &lon, &lat);
        CaseErrors::Worse(e.inverse, std::max(pole ? 0.0 : angle(lon, p.lon), std::fabs(lat - p.lat)));
        engine.Proj2Geo(x, y, &lon2, &lat2);
        CaseErrors::Worse(e.roundTrip, std::max(pole ? 0.0 : angle(lon2, p.lon), std::fabs(lat2 - p.lat)));
        if (std::isfinite(p.convergence) && !pole)
            CaseErrors::Worse(e.convergence, angle(engine.GetConvergence(p.lon, p.lat), p.convergence));
        ++e.points;
    }
    return e;
}

// No point: NaN in both outputs, forward or inverse.
template <class TSystem> void ExpectForwardNaN(const TSystem& system, double lon, double lat)
{
    double x = 0.0, y = 0.0;
    system.Geo2Proj(lon, lat, &x, &y);
    EXPECT_TRUE(std::isnan(x) && std::isnan(y)) << "forward of " << lon << " " << lat << " gives " << x << " " << y;
}

template <class TSystem> void ExpectInverseNaN(const TSystem& system, double x, double y)
{
    double lon = 0.0, lat = 0.0;
    system.Proj2Geo(x, y, &lon, &lat);
    EXPECT_TRUE(std::isnan(lon) && std::isnan(lat)) << "inverse of " << x << " " << y << " gives " << lon << " " << lat;
}

} // namespace kvtest

#endif
