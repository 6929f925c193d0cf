#include "projections/KvTransverseMercatorZoned.h"
#include "projections/KvAngle.h"
#include "projections/KvBatch.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr double kZoneStep = 1.0e6; // the easting of zone Z starts at Z * 10^6

// The number of zones 360 / W when W divides the circle into whole zones, else 0.
int ZoneCount(double width)
{
    if (!(width > 0.0 && width <= 360.0))
        return 0;
    const double count = 360.0 / width;
    const double whole = std::nearbyint(count);
    return std::fabs(count - whole) <= 1e-9 * whole ? static_cast<int>(whole) : 0;
}

std::string Problem(const double* p)
{
    for (int i = 0; i < 6; ++i)
        if (!std::isfinite(p[i]))
            return "the parameters must be finite numbers";
    if (!(std::fabs(p[0]) <= 90.0))
        return "the latitude of natural origin must lie between the poles";
    if (ZoneCount(p[2]) == 0)
        return "the zone width must divide 360 degrees into whole zones";
    if (!(p[3] > 0.0))
        return "the scale factor must be positive";
    return "";
}
} // namespace

CKvTransverseMercatorZoned::CKvTransverseMercatorZoned(const std::string& name, const double* p,
                                                       const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid),
      // The zones' own engine is named apart from the system: an empty name, or
      // the catalogue's "NON-UTM", would make it the local (identity) grid.
      m_tm("Transverse Mercator zone", p[3], 0.0, p[0], 0.0, p[5], ellipsoid)
{
    m_lat0 = p[0];
    m_lonI = p[1];
    m_width = p[2];
    m_FE = p[4];
    m_zones = ZoneCount(m_width);
    m_valid = Problem(p).empty() && _a() > 0.0 && std::isfinite(_a()) && _e2() >= 0.0 && _e2() < 1.0;
}

int CKvTransverseMercatorZoned::_zone(double lon, double* fromCentre) const
{
    // The common case without a call of floor: q = (lambda - lambdaI) / W within
    // [0, zones) and at least 1/1000 of a zone short of the next edge, so that
    // neither the rule for the edges below nor the modulo can change its
    // whole part, which the conversion to int truncates.
    const double q0 = (lon - m_lonI) / m_width;
    if (q0 >= 0.0 && q0 < m_zones) {
        const int k = static_cast<int>(q0);
        if (q0 - k <= 0.999) {
            *fromCentre = CKvAngle::ReduceLongitudeDegrees(lon - _centralMeridian(k + 1));
            return k + 1;
        }
    }
    return _zoneAtEdge(lon, fromCentre);
}

int CKvTransverseMercatorZoned::_zoneAtEdge(double lon, double* fromCentre) const
{
    // floor((lambda - lambdaI) / W) mod (360 / W), the modulo towards negative
    // infinity as the guidance note has it: 180 and -180 share the first zone of
    // a system starting at -180. A longitude on a zone's western edge within
    // rounding (a degree written to 16 digits turns an initial longitude of -180
    // into -179.99999999999997) lies in that zone, as the edge is the zone's.
    double q = (lon - m_lonI) / m_width;
    const double edge = std::nearbyint(q);
    if (std::fabs(q - edge) <= 1e-12 * std::max(1.0, std::fabs(edge)))
        q = edge;
    const double k = std::floor(q);
    double z = k - std::floor(k / m_zones) * m_zones;
    // Rounding can leave z at the count itself for a longitude a hair below the
    // initial one.
    if (!(z >= 0.0 && z < m_zones))
        z = 0.0;
    const int zone = static_cast<int>(z) + 1;
    *fromCentre = CKvAngle::ReduceLongitudeDegrees(lon - _centralMeridian(zone));
    return zone;
}

int CKvTransverseMercatorZoned::_forwardZone(double lon, double lat, double* fromCentre) const
{
    if (!m_valid || !std::isfinite(lon) || !CKvAngle::IsLatitude(lat))
        return 0;
    return _zone(CKvAngle::ReduceLongitudeDegrees(lon), fromCentre);
}

int CKvTransverseMercatorZoned::_inverseZone(double x, double y) const
{
    // floor(q) within [1, zones] is q within [1, zones + 1), where the
    // conversion to int truncates it: no call of floor.
    const double q = (x - m_FE) / kZoneStep + 0.5;
    if (!m_valid || !(q >= 1.0 && q < m_zones + 1.0) || !std::isfinite(y))
        return 0;
    return static_cast<int>(q);
}

void CKvTransverseMercatorZoned::_inverseFinish(int zone, double x, double y, double* lon, double* lat) const
{
    // At a pole every longitude names the point: the zone's central meridian is
    // the one that takes it back into the same zone. Within 1e-9 degree of it
    // (0.1 mm) the longitude is rounding's.
    const double fromCentre = std::fabs(*lat) >= 90.0 - 1e-9 ? 0.0 : *lon;
    *lon = CKvAngle::InverseLongitudeDegrees(fromCentre + _centralMeridian(zone));
    CKvAngle::GuardInverse(x, y, lon, lat);
}

void CKvTransverseMercatorZoned::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    double fromCentre;
    const int zone = _forwardZone(lon, lat, &fromCentre);
    if (zone == 0) {
        *x = *y = std::nan("");
        return;
    }
    m_tm.CKvTransverseMercatorJHS::Geo2Proj(fromCentre, lat, x, y);
    *x += zone * kZoneStep + m_FE;
}

void CKvTransverseMercatorZoned::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    const int zone = _inverseZone(x, y);
    if (zone == 0) {
        *lon = *lat = std::nan("");
        return;
    }
    m_tm.CKvTransverseMercatorJHS::Proj2Geo(x - m_FE - zone * kZoneStep, y, lon, lat);
    _inverseFinish(zone, x, y, lon, lat);
}

// The batches: the zones of a block first, then the zones' transverse Mercator
// over the whole block in its own (vectorized) batch, whose results are its
// single-point calls' bits, then the zones' offsets.
void CKvTransverseMercatorZoned::Geo2Proj(std::size_t n, const double* lon, std::size_t lonStride, const double* lat,
                                          std::size_t latStride, double* x, std::size_t xStride, double* y,
                                          std::size_t yStride) const
{
    constexpr std::size_t D = sizeof(double);
    CKvBatch::ForEachCopiedBlock(
        n, lon, lonStride, lat, latStride,
        [&](std::size_t first, std::size_t count, const double* a, const double* b) {
            double fromCentre[CKvBatch::BlockSize], u[CKvBatch::BlockSize], v[CKvBatch::BlockSize];
            int zone[CKvBatch::BlockSize];
            for (std::size_t i = 0; i < count; ++i) {
                zone[i] = _forwardZone(a[i], b[i], &fromCentre[i]);
                if (zone[i] == 0)
                    fromCentre[i] = 0.0;
            }
            m_tm.CKvTransverseMercatorJHS::Geo2Proj(count, fromCentre, D, b, D, u, D, v, D);
            for (std::size_t i = 0; i < count; ++i) {
                if (zone[i] == 0)
                    u[i] = v[i] = std::nan("");
                else
                    u[i] += zone[i] * kZoneStep + m_FE;
                *CKvBatch::At(x, xStride, first + i) = u[i];
                *CKvBatch::At(y, yStride, first + i) = v[i];
            }
        });
}

void CKvTransverseMercatorZoned::Proj2Geo(std::size_t n, const double* x, std::size_t xStride, const double* y,
                                          std::size_t yStride, double* lon, std::size_t lonStride, double* lat,
                                          std::size_t latStride) const
{
    constexpr std::size_t D = sizeof(double);
    CKvBatch::ForEachCopiedBlock(
        n, x, xStride, y, yStride, [&](std::size_t first, std::size_t count, const double* a, const double* b) {
            double zx[CKvBatch::BlockSize], zy[CKvBatch::BlockSize], u[CKvBatch::BlockSize], v[CKvBatch::BlockSize];
            int zone[CKvBatch::BlockSize];
            for (std::size_t i = 0; i < count; ++i) {
                zone[i] = _inverseZone(a[i], b[i]);
                zx[i] = zone[i] == 0 ? 0.0 : a[i] - m_FE - zone[i] * kZoneStep;
                zy[i] = zone[i] == 0 ? 0.0 : b[i];
            }
            m_tm.CKvTransverseMercatorJHS::Proj2Geo(count, zx, D, zy, D, u, D, v, D);
            for (std::size_t i = 0; i < count; ++i) {
                if (zone[i] == 0)
                    u[i] = v[i] = std::nan("");
                else
                    _inverseFinish(zone[i], a[i], b[i], &u[i], &v[i]);
                *CKvBatch::At(lon, lonStride, first + i) = u[i];
                *CKvBatch::At(lat, latStride, first + i) = v[i];
            }
        });
}

void CKvTransverseMercatorZoned::GetOrigin(double* x, double* y) const
{
    *x = m_lonI;
    *y = m_lat0;
}

double CKvTransverseMercatorZoned::GetConvergence(double lon, double lat) const
{
    if (!m_valid || !std::isfinite(lon) || !CKvAngle::IsLatitude(lat))
        return std::nan("");
    double fromCentre;
    _zone(CKvAngle::ReduceLongitudeDegrees(lon), &fromCentre);
    return m_tm.GetConvergence(fromCentre, lat);
}

void CKvTransverseMercatorZoned::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    if (!m_valid) {
        *x1 = *y1 = *x2 = *y2 = std::nan("");
        return;
    }
    // The zones' edges on the equator, where a zone is widest, and the central
    // meridian's northings at 84 S and 84 N.
    double west, east, south, north, unused;
    m_tm.CKvTransverseMercatorJHS::Geo2Proj(-0.5 * m_width, 0.0, &west, &unused);
    m_tm.CKvTransverseMercatorJHS::Geo2Proj(0.5 * m_width, 0.0, &east, &unused);
    m_tm.CKvTransverseMercatorJHS::Geo2Proj(0.0, -84.0, &unused, &south);
    m_tm.CKvTransverseMercatorJHS::Geo2Proj(0.0, 84.0, &unused, &north);
    *x1 = kZoneStep + m_FE + west;
    *x2 = m_zones * kZoneStep + m_FE + east;
    *y1 = south;
    *y2 = north;
}

const CKvMapProjData::STypeInfo CKvTransverseMercatorZoned::TypeInfo = {
    CKvMapProjData::eTransverseMercatorZoned,
    "TRANSVERSE_MERCATOR_ZONED_PROJECTION",
    nullptr,
    "Transverse Mercator Zoned Grid System",
    "Transverse_Mercator_Zoned_Grid_System",
    6,
    {
        {"Origin_Latitude", "Latitude of origin:", CKvMapProjData::eAngle, nullptr,
         {"Latitude of natural origin", nullptr, "latitude_of_origin", "Latitude_Of_Origin"}, "lat_0", false, 0.0},
        {"Initial_Longitude", "Initial longitude:", CKvMapProjData::eAngle, nullptr,
         {"Initial longitude", nullptr, "Initial_Longitude"}, nullptr, true},
        {"Zone_Width", "Zone width:", CKvMapProjData::eAngle, nullptr, {"Zone width", nullptr, "Zone_Width"}, nullptr,
         false},
        {"Scale_Factor", "Scale factor:", CKvMapProjData::eDimensionless, nullptr,
         {"Scale factor at natural origin", nullptr, "scale_factor", "Scale_Factor"}, "k", false},
        {"Feast", "False easting:", CKvMapProjData::eLength, nullptr,
         {"False easting", nullptr, "false_easting", "False_Easting"}, "x_0", false, 0.0},
        {"Fnorth", "False northing:", CKvMapProjData::eLength, nullptr,
         {"False northing", nullptr, "false_northing", "False_Northing"}, "y_0", false, 0.0},
    },
    "Default Transverse Mercator Zoned Grid System",
    "WE",
    // WGS 84 / UTM grid system (northern hemisphere), EPSG:32600.
    {0.0, -180.0, 6.0, 0.9996, 500000.0, 0.0},
    9824,
    "Transverse_Mercator_Zoned_Grid_System",
    {"Transverse Mercator Zoned Grid System"},
    // PROJ has no zoned grid (its utm takes one zone).
    nullptr,
    &Problem,
};
