// Every engine, forward, inverse and convergence, on every kind of double: each
// call returns, writes its outputs, and answers input outside its domain with a
// non-finite value rather than a made-up point.
#include "catalogue/KvCartSetup.h"
#include "catalogue/KvMapProjData.h"
#include "projections/KvProjection.h"

#include "TestSupport.h"

using kvtest::Parameters;

#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInf = std::numeric_limits<double>::infinity();
const double kDenormal = std::numeric_limits<double>::denorm_min();
const double kSentinel = 12345.678;

// Aborts the process, naming the case, when a case runs longer than the limit.
class CWatchdog
{
public:
    explicit CWatchdog(int seconds) : m_thread([this, seconds] { _watch(seconds); }) {}
    ~CWatchdog()
    {
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_done = true;
        }
        m_wake.notify_all();
        m_thread.join();
    }
    void Case(const std::string& name)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_case = name;
    }

private:
    void _watch(int seconds)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        if (!m_wake.wait_for(lock, std::chrono::seconds(seconds), [this] { return m_done; })) {
            std::fprintf(stderr, "hung in %s\n", m_case.c_str());
            std::abort();
        }
    }
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_done = false;
    std::string m_case;
    std::thread m_thread;
};

std::string Describe(double v)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", v);
    return text;
}

// One engine of each shipped grid on its own ellipsoid, on a sphere, on an
// unknown ellipsoid, and with each parameter in turn made non-finite.
struct SEngine
{
    std::string label;
    std::unique_ptr<CKvProjection> engine;
    bool parametersFinite;
};

std::vector<SEngine> AllEngines()
{
    kvtest::ShippedCatalogue();
    std::vector<SEngine> engines;
    CKvMapProjectionList& list = CKvCartSetup::Instance()->GetMapProjectionList();
    std::vector<bool> typeSeen(32, false);
    for (auto it = list.GetIteratorBegin(); it != list.GetIteratorEnd(); ++it) {
        const CKvMapProjData& d = **it;
        if (typeSeen[d.GetProjectionType()] || d.CanDelete())
            continue;
        typeSeen[d.GetProjectionType()] = true;
        std::vector<double> p = Parameters(d);
        for (const char* ellipsoid : {"", "XY", "ZZ"}) {
            const std::string id = *ellipsoid != '\0' ? ellipsoid : d.GetEllipsoidID();
            std::unique_ptr<CKvMapProjData> copy(
                CKvMapProjData::CreateProjection(d.GetProjectionType(), d.GetName(), "", id, p.data()));
            engines.push_back({d.GetName() + " on " + id, std::unique_ptr<CKvProjection>(copy->CreateProjection()),
                               true});
        }
        for (size_t i = 0; i < p.size(); ++i)
            for (double bad : {kNaN, kInf, -kInf, 1e308}) {
                std::vector<double> q = p;
                q[i] = bad;
                std::unique_ptr<CKvMapProjData> copy(CKvMapProjData::CreateProjection(
                    d.GetProjectionType(), d.GetName(), "", d.GetEllipsoidID(), q.data()));
                engines.push_back({d.GetName() + " parameter " + std::to_string(i) + " = " + Describe(bad),
                                   std::unique_ptr<CKvProjection>(copy->CreateProjection()), false});
            }
    }
    return engines;
}

} // namespace

TEST(EngineDomain, EveryDoubleReturnsAndOutOfDomainIsNotFinite)
{
    const double values[] = {kNaN,  kInf,   -kInf, 1e308,  -1e308, 1e17,  -1e17, kDenormal, -kDenormal, 0.0,
                             540.0, -540.0, 180.0, -180.0, 90.0,   -90.0, 91.0,  -91.0,     45.0,       1e6};
    CWatchdog watchdog(60);
    int cases = 0;
    for (const SEngine& e : AllEngines()) {
        const CKvProjection& engine = *e.engine;
        const bool geographic = engine.IsGeographical();
        for (double u : values)
            for (double v : values) {
                watchdog.Case(e.label + " at " + Describe(u) + ", " + Describe(v));
                ++cases;
                double x = kSentinel, y = kSentinel;
                engine.Geo2Proj(u, v, &x, &y);
                EXPECT_TRUE(x != kSentinel && y != kSentinel) << e.label << " forward leaves its outputs";
                const bool inputFinite = std::isfinite(u) && std::isfinite(v);
                if (!engine.IsLocal() && (!inputFinite || (!geographic && std::fabs(v) > 90.0))) {
                    EXPECT_FALSE(std::isfinite(x) && std::isfinite(y))
                        << e.label << " forward of " << u << ", " << v << " gives " << x << ", " << y;
                }
                const double gamma = engine.GetConvergence(u, v);
                if (!inputFinite && !geographic && !engine.IsLocal()) {
                    EXPECT_FALSE(std::isfinite(gamma)) << e.label << " convergence at " << u << ", " << v;
                }
                double lon = kSentinel, lat = kSentinel;
                engine.Proj2Geo(u, v, &lon, &lat);
                EXPECT_TRUE(lon != kSentinel && lat != kSentinel) << e.label << " inverse leaves its outputs";
                if (!inputFinite && !engine.IsLocal()) {
                    EXPECT_FALSE(std::isfinite(lon) && std::isfinite(lat))
                        << e.label << " inverse of " << u << ", " << v << " gives " << lon << ", " << lat;
                }
                // The transverse Mercator's northing ranges reach beyond the poles on purpose.
                const bool tm = e.label.rfind("UTM", 0) == 0 || e.label.rfind("NON-UTM", 0) == 0;
                if (std::isfinite(lat) && !geographic && !tm) {
                    EXPECT_LE(std::fabs(lat), 90.0) << e.label << " inverse of " << u << ", " << v;
                }
            }
        double a[4] = {kSentinel, kSentinel, kSentinel, kSentinel};
        engine.GetDefaultArea(&a[0], &a[1], &a[2], &a[3]);
        for (double corner : a)
            EXPECT_NE(corner, kSentinel) << e.label << " default area";
    }
    EXPECT_GT(cases, 100000);
}

#include "projections/KvObliqueMercator.h"
#include "projections/KvPolarStereographic.h"

TEST(EngineDomain, PolesAndCentresLandWhereTheyShould)
{
    const CKvEllipsoid wgs84("WGS 84", "WE", 6378137.0, 298.257223563);
    // The pole of a polar stereographic grid is its false origin, and back.
    for (double pole : {90.0, -90.0}) {
        const CKvPolarStereographic ups("ups", 0.994, 0.0, pole, 2000000.0, 2000000.0, wgs84);
        double lon = kNaN, lat = kNaN;
        ups.Proj2Geo(2000000.0, 2000000.0, &lon, &lat);
        EXPECT_EQ(lat, pole);
        EXPECT_TRUE(std::isfinite(lon));
    }
    // An oblique Mercator with its azimuth at the centre puts the centre on the false
    // origin, whichever way the centre line runs.
    for (double azimuth = -179.0; azimuth <= 180.0; azimuth += 7.0) {
        if (std::fabs(std::fabs(azimuth) - 90.0) < 1e-9)
            continue;
        const CKvObliqueMercator omerc("omerc", 0.9996, 10.0, 45.0, azimuth, 500000.0, 200000.0, wgs84);
        double x, y, lon, lat;
        omerc.Geo2Proj(10.0, 45.0, &x, &y);
        EXPECT_NEAR(x, 500000.0, 1e-6) << azimuth;
        EXPECT_NEAR(y, 200000.0, 1e-6) << azimuth;
        omerc.Proj2Geo(500000.0, 200000.0, &lon, &lat);
        EXPECT_NEAR(lon, 10.0, 1e-9) << azimuth;
        EXPECT_NEAR(lat, 45.0, 1e-9) << azimuth;
    }
}

#include "projections/KvAngle.h"

#include <cstring>
#include <random>

// The longitude reductions every engine shares: the bits of the exact
// remainder, on random differences of every size, the quotients' ties (540,
// 3 pi), the edges and the non-finite values.
TEST(EngineDomain, LongitudeReductionIsTheExactRemainder)
{
    const auto same = [](double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; };
    const auto radians = [](double d) { return std::isfinite(d) ? std::remainder(d, 2.0 * CKvAngle::Pi) : NAN; };
    const auto degrees = [](double d) { return std::isfinite(d) ? std::remainder(d, 360.0) : NAN; };
    std::mt19937_64 random(59);
    std::vector<double> values = {180.0, -180.0, 540.0, -540.0, 539.9999999999999, 900.0, 1e17, -1e308,
                                  CKvAngle::Pi, -CKvAngle::Pi, 3.0 * CKvAngle::Pi, 9.0, -9.0, 8.999999999999998,
                                  HUGE_VAL, -HUGE_VAL, NAN, 5e-324};
    for (int i = 0; i < 200000; ++i) {
        const double scale = i % 3 == 0 ? 12.0 : i % 3 == 1 ? 800.0 : 1e6;
        values.push_back(std::uniform_real_distribution<double>(-scale, scale)(random));
    }
    for (const double d : values) {
        const double r = CKvAngle::ReduceLongitude(d), g = CKvAngle::ReduceLongitudeDegrees(d);
        if (std::fabs(d) > CKvAngle::Pi || std::isnan(d))
            ASSERT_TRUE(same(r, radians(d)) || (std::isnan(r) && std::isnan(radians(d)))) << d;
        else
            ASSERT_TRUE(same(r, d)) << d;
        if (std::fabs(d) > 180.0 || std::isnan(d))
            ASSERT_TRUE(same(g, degrees(d)) || (std::isnan(g) && std::isnan(degrees(d)))) << d;
        else
            ASSERT_TRUE(same(g, d)) << d;
        if (std::isfinite(d) && std::fabs(d) <= 1e6) {
            EXPECT_LE(std::fabs(g), 180.0) << d;
            const double lon = std::fmod(d, 180.0), lon0 = lon - d; // d = lon - lon0
            const double diff = CKvAngle::LongitudeDifferenceDegrees(lon, lon0);
            ASSERT_TRUE(std::fabs(lon - lon0) <= 180.0 ? same(diff, lon - lon0) : same(diff, degrees(lon - lon0)))
                << lon << " " << lon0;
        }
    }
}
