#include "coordsys/KvCartography.h"

#include "coordsys/KvMapProjection.h"

#include <cmath>
#include <memory>
#include <string>

namespace {

constexpr double kPi = 3.141592653589793;

} // namespace

CKvCartography::CKvCartography(const char* projection, double lon0, double lat0, double orientation)
    : m_pProjection(nullptr)
{
    std::string name(projection != nullptr ? projection : "");
    // The generic name picks the zone of the origin, 1 to 60 (the antimeridian
    // is zone 1). An origin on no meridian (NaN, infinite) keeps the generic
    // name, which the projection refuses.
    if (name == "UTM") {
        const std::string zone = CKvMapProjection::UTMZoneName(lon0);
        if (!zone.empty())
            name = zone;
    }
    m_pProjection = new CKvMapProjection(name);
    _init(lon0, lat0, orientation);
}

CKvCartography::CKvCartography(const CKvMapProjection& projection, double lon0, double lat0, double orientation)
    : m_pProjection(nullptr)
{
    std::unique_ptr<CKvMapProjection> copy(new CKvMapProjection(""));
    *copy = projection;
    m_pProjection = copy.release();
    _init(lon0, lat0, orientation);
}

CKvCartography::CKvCartography(const CKvCartography& other) : m_pProjection(nullptr)
{
    _copy(other);
}

CKvCartography& CKvCartography::operator=(const CKvCartography& other)
{
    if (this != &other) {
        _dealloc();
        _copy(other);
    }
    return *this;
}

CKvCartography::~CKvCartography()
{
    _dealloc();
}

// The projection is built again from its string rather than cloned; a string
// that no longer resolves gives an unresolved projection.
void CKvCartography::_copy(const CKvCartography& other)
{
    m_pProjection = new CKvMapProjection(other.GetProjectionString());
    m_originX = other.m_originX;
    m_originY = other.m_originY;
    m_projectionNorth = other.m_projectionNorth;
    m_cosine = other.m_cosine;
    m_sine = other.m_sine;
    m_originLon = other.m_originLon;
    m_originLat = other.m_originLat;
    m_orientation = other.m_orientation;
}

void CKvCartography::_dealloc()
{
    delete m_pProjection;
    m_pProjection = nullptr;
}

void CKvCartography::_init(double lon0, double lat0, double orientation)
{
    m_originLon = lon0;
    m_originLat = lat0;
    m_orientation = orientation;
    m_originX = 0.0;
    m_originY = 0.0;
    m_pProjection->Geo2Proj(lon0, lat0, &m_originX, &m_originY);
    m_projectionNorth = orientation - m_pProjection->GetConvergence(lon0, lat0);
    m_cosine = std::cos(m_projectionNorth * kPi / 180.0);
    m_sine = std::sin(m_projectionNorth * kPi / 180.0);
}

const char* CKvCartography::GetProjectionName() const
{
    return m_pProjection->GetName();
}

const char* CKvCartography::GetProjectionString() const
{
    return m_pProjection->GetProjectionString();
}

void CKvCartography::Geo2Proj(double lon, double lat, double* X, double* Y) const
{
    m_pProjection->Geo2Proj(lon, lat, X, Y);
}

void CKvCartography::Proj2Geo(double X, double Y, double* lon, double* lat) const
{
    m_pProjection->Proj2Geo(X, Y, lon, lat);
}

void CKvCartography::Xy2Proj(double x, double y, double* X, double* Y) const
{
    *X = m_cosine * x + m_sine * y + m_originX;
    *Y = m_cosine * y - m_sine * x + m_originY;
}

void CKvCartography::Proj2Xy(double X, double Y, double* x, double* y) const
{
    const double dx = X - m_originX, dy = Y - m_originY;
    *x = m_cosine * dx - m_sine * dy;
    *y = m_sine * dx + m_cosine * dy;
}

void CKvCartography::Geo2Xy(double lon, double lat, double* x, double* y) const
{
    double X = 0.0, Y = 0.0;
    m_pProjection->Geo2Proj(lon, lat, &X, &Y);
    Proj2Xy(X, Y, x, y);
}

void CKvCartography::Xy2Geo(double x, double y, double* lon, double* lat) const
{
    double X = 0.0, Y = 0.0;
    Xy2Proj(x, y, &X, &Y);
    m_pProjection->Proj2Geo(X, Y, lon, lat);
}

double CKvCartography::GetTrueNorth(double x, double y) const
{
    double lon = 0.0, lat = 0.0;
    Xy2Geo(x, y, &lon, &lat);
    return m_pProjection->GetConvergence(lon, lat) + m_projectionNorth;
}

void CKvCartography::ConvertFrom(const CKvCartography& other, double X, double Y, double* X2, double* Y2) const
{
    double lon = 0.0, lat = 0.0;
    other.m_pProjection->Proj2Geo(X, Y, &lon, &lat);
    m_pProjection->Geo2Proj(lon, lat, X2, Y2);
}

void CKvCartography::_csysrot(double x, double y, double angle, double* xr, double* yr)
{
    const double a = angle * 0.017453292519943295;
    *xr = x * std::cos(a) + y * std::sin(a);
    *yr = -x * std::sin(a) + y * std::cos(a);
}
