#include "projections/KvGeographical.h"

#include "projections/KvAngle.h"

#include <cmath>

CKvGeographical::CKvGeographical(const CKvGeographicalProjection* definition) : CKvEngine(*definition) {}

CKvGeographical::CKvGeographical(const std::string& name, const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid)
{
}

void CKvGeographical::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    // A latitude beyond the poles or a longitude that is no number is no
    // point: NaN for both coordinates, as every projection answers it.
    if (CKvAngle::IsPoint(lon, lat)) {
        *x = lon;
        *y = lat;
    } else {
        *x = *y = std::nan("");
    }
}

void CKvGeographical::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    if (CKvAngle::IsPoint(x, y)) {
        *lon = x;
        *lat = y;
    } else {
        *lon = *lat = std::nan("");
    }
}

void CKvGeographical::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    Geo2Proj(-180.0, -60.0, x1, y1);
    Geo2Proj(180.0, 81.0, x2, y2);
}
