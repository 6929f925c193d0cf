#ifndef KVCART_PROJECTIONS_KVCASSINISOLDNER_H
#define KVCART_PROJECTIONS_KVCASSINISOLDNER_H

#include "catalogue/KvCassiniSoldnerProjection.h"
#include "projections/KvVariantEngine.h"

#include <string>

// Cassini-Soldner (EPSG method 9806), on the sphere or the ellipsoid.
class CKvCassiniSoldner : public CKvVariantEngine<CKvCassiniSoldner, CKvCassiniSoldnerProjection>
{
public:
    explicit CKvCassiniSoldner(const CKvCassiniSoldnerProjection* definition) : CKvVariantEngine(*definition) {}
    // longitude and latitude of the origin (degrees), FE, FN.
    CKvCassiniSoldner(const std::string& name, double centralMeridian, double originLatitude, double falseEasting,
                      double falseNorthing, const CKvEllipsoid& ellipsoid);

    static CKvVariant* _makeVariant(const CKvCassiniSoldnerProjection& parameters, const CKvEllipsoid& ellipsoid);
};

#endif
