#ifndef KVCART_PROJECTIONS_KVGEOGRAPHICAL_H
#define KVCART_PROJECTIONS_KVGEOGRAPHICAL_H

#include "catalogue/KvGeographicalProjection.h"
#include "projections/KvProjectionEngine.h"

#include <string>

// Longitude/latitude: the identity on the points of the ellipsoid. Nothing is
// wrapped or clamped; a latitude beyond +-90 or a longitude that is not finite
// (NaN, infinite) gives NaN for both coordinates.
class CKvGeographical : public CKvEngine<CKvGeographical, CKvGeographicalProjection>
{
public:
    explicit CKvGeographical(const CKvGeographicalProjection* definition);
    CKvGeographical(const std::string& name, const CKvEllipsoid& ellipsoid);

    using CKvProjection::Geo2Proj;
    using CKvProjection::Proj2Geo;
    void Geo2Proj(double lon, double lat, double* x, double* y) const override;
    void Proj2Geo(double x, double y, double* lon, double* lat) const override;
    bool IsGeographical() const override { return true; }
    // Longitude -180..180, latitude -60..81: the far south is deliberately left
    // out of the default view while the north reaches 81 degrees.
    void GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const override;
};

#endif
