#ifndef KVCART_PROJECTIONS_KVEQUIDISTANTCONIC_H
#define KVCART_PROJECTIONS_KVEQUIDISTANTCONIC_H

#include "catalogue/KvEquidistantConicProjection.h"
#include "projections/KvVariantEngine.h"

#include <string>

// Equidistant conic (Snyder, chapter 16), on the sphere or the ellipsoid.
class CKvEquidistantConic : public CKvVariantEngine<CKvEquidistantConic, CKvEquidistantConicProjection>
{
public:
    explicit CKvEquidistantConic(const CKvEquidistantConicProjection* definition) : CKvVariantEngine(*definition) {}
    // first and second parallel, central meridian, origin latitude (degrees), FE, FN.
    CKvEquidistantConic(const std::string& name, double phi1, double phi2, double centralMeridian,
                        double originLatitude, double falseEasting, double falseNorthing,
                        const CKvEllipsoid& ellipsoid);

    static CKvVariant* _makeVariant(const CKvEquidistantConicProjection& parameters, const CKvEllipsoid& ellipsoid);
};

#endif
