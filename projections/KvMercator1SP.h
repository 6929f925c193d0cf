#ifndef KVCART_PROJECTIONS_KVMERCATOR1SP_H
#define KVCART_PROJECTIONS_KVMERCATOR1SP_H

#include "catalogue/KvMercator1SPProjection.h"
#include "projections/KvMercatorEngine.h"

#include <string>

// Mercator with the scale on the equator (EPSG method 9804, variant A).
class CKvMercator1SP : public CKvMercatorEngine<CKvMercator1SP, CKvMercator1SPProjection>
{
public:
    explicit CKvMercator1SP(const CKvMercator1SPProjection* definition);
    // k0, central meridian (degrees), FE, FN.
    CKvMercator1SP(const std::string& name, double k0, double centralMeridian, double falseEasting,
                   double falseNorthing, const CKvEllipsoid& ellipsoid);

    // Writes 0: this form has no derived scale to report.
    void GetDerivedParameters(double* values) const override { values[0] = 0.0; }
};

#endif
