#ifndef KVCART_PROJECTIONS_KVMERCATOR2SP_H
#define KVCART_PROJECTIONS_KVMERCATOR2SP_H

#include "catalogue/KvMercator2SPProjection.h"
#include "projections/KvMercatorEngine.h"

#include <string>

// Mercator true to scale on a standard parallel (EPSG method 9805, variant B):
// k0 = cos phi1 / sqrt(1 - e^2 sin^2 phi1).
class CKvMercator2SP : public CKvMercatorEngine<CKvMercator2SP, CKvMercator2SPProjection>
{
public:
    explicit CKvMercator2SP(const CKvMercator2SPProjection* definition);
    // standard parallel and central meridian (degrees), FE, FN.
    CKvMercator2SP(const std::string& name, double standardParallel, double centralMeridian, double falseEasting,
                   double falseNorthing, const CKvEllipsoid& ellipsoid);

    // values[0]: the scale on the equator that the standard parallel implies.
    void GetDerivedParameters(double* values) const override { values[0] = GetScale(); }

private:
    double _scaleOnEquator(double standardParallel) const;
};

#endif
