#include "projections/KvRotatedLongitudeLatitude.h"
#include "projections/KvAngle.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kDeg = kPi / 180.0;
} // namespace

CKvRotatedLongitudeLatitude::CKvRotatedLongitudeLatitude(const CKvRotatedLongitudeLatitudeProjection* definition)
    : CKvEngine(*definition)
{
    _init(definition->GetSouthPoleLongitude(), definition->GetSouthPoleLatitude(), definition->GetRotationAngle());
}

CKvRotatedLongitudeLatitude::CKvRotatedLongitudeLatitude(const std::string& name, double southPoleLongitude,
                                                         double southPoleLatitude, double rotationAngle,
                                                         const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid)
{
    _init(southPoleLongitude, southPoleLatitude, rotationAngle);
}

void CKvRotatedLongitudeLatitude::_init(double southPoleLongitude, double southPoleLatitude, double rotationAngle)
{
    m_lambdaP = southPoleLongitude;
    m_phiP = southPoleLatitude;
    m_gamma = rotationAngle;
    // Grid to true: tilt the pole from the south pole up to phiP, then turn it to
    // lambdaP. The X-axis factors are identities, kept as the place of a rotation
    // about X that the parameters do not set.
    m_inverse = CMatrix(m_lambdaP, CMatrix::eRotateZ) * CMatrix(-90.0 - m_phiP, CMatrix::eRotateY) *
                CMatrix(0.0, CMatrix::eRotateX);
    m_forward = CMatrix(0.0, CMatrix::eRotateX) * CMatrix(90.0 + m_phiP, CMatrix::eRotateY) *
                CMatrix(-m_lambdaP, CMatrix::eRotateZ);
    for (int k = 0; k < 3; ++k)
        for (int j = 0; j < 3; ++j) {
            m_inv[k][j] = m_inverse(j, k);
            m_fwd[k][j] = m_forward(j, k);
        }
}

void CKvRotatedLongitudeLatitude::_apply(const double (&m)[3][3], double& X, double& Y, double& Z)
{
    const double x = m[0][0] * X + m[0][1] * Y + m[0][2] * Z;
    const double y = m[1][0] * X + m[1][1] * Y + m[1][2] * Z;
    const double z = m[2][0] * X + m[2][1] * Y + m[2][2] * Z;
    X = x;
    Y = y;
    Z = z;
}

void CKvRotatedLongitudeLatitude::Geo2XYZ(double lon, double lat, double& X, double& Y, double& Z) const
{
    const double phi = lat * kDeg, lambda = lon * kDeg;
    const double s = std::sin(phi);
    const double nu = _a() / std::sqrt(1.0 - _e2() * s * s);
    X = nu * std::cos(phi) * std::cos(lambda);
    Y = nu * std::cos(phi) * std::sin(lambda);
    Z = nu * (1.0 - _e2()) * s;
}

void CKvRotatedLongitudeLatitude::XYZ2Geo(double X, double Y, double Z, double& lon, double& lat) const
{
    const double a = _a(), b = _b(), f = _f(), e2 = _e2();
    const double p = std::sqrt(X * X + Y * Y);
    const double r = std::sqrt(p * p + Z * Z);
    const double u = std::atan((Z / p) * ((1.0 - f) + e2 * a / r));
    const double su = std::sin(u), cu = std::cos(u);
    lon = std::atan2(Y, X) / kDeg;
    lat = std::atan((Z + ((a * a - b * b) / (b * b)) * b * su * su * su) / (p - e2 * a * cu * cu * cu)) / kDeg;
}

void CKvRotatedLongitudeLatitude::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    if (!CKvAngle::GuardForward(lat, x, y))
        return;
    double X, Y, Z;
    Geo2XYZ(lon, lat, X, Y, Z);
    _apply(m_fwd, X, Y, Z);
    XYZ2Geo(X, Y, Z, *x, *y);
    // The rotation about the new pole is a plain shift of the rotated longitude.
    *x -= m_gamma;
}

void CKvRotatedLongitudeLatitude::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    double X, Y, Z;
    Geo2XYZ(x + m_gamma, y, X, Y, Z);
    _apply(m_inv, X, Y, Z);
    XYZ2Geo(X, Y, Z, *lon, *lat);
}

void CKvRotatedLongitudeLatitude::GetOrigin(double* x, double* y) const
{
    *x = m_lambdaP;
    *y = m_phiP + 90.0;
}

void CKvRotatedLongitudeLatitude::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    double lon, lat;
    GetOrigin(&lon, &lat);
    _boxAround(lon, lat, true, x1, y1, x2, y2);
}
