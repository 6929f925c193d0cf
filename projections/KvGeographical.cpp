#include "projections/KvGeographical.h"

CKvGeographical::CKvGeographical(const CKvGeographicalProjection* definition) : CKvEngine(*definition) {}

CKvGeographical::CKvGeographical(const std::string& name, const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid)
{
}

void CKvGeographical::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    *x = lon;
    *y = lat;
}

void CKvGeographical::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    *lon = x;
    *lat = y;
}

void CKvGeographical::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    Geo2Proj(-180.0, -60.0, x1, y1);
    Geo2Proj(180.0, 81.0, x2, y2);
}
