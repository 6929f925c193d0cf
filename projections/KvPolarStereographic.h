#ifndef KVCART_PROJECTIONS_KVPOLARSTEREOGRAPHIC_H
#define KVCART_PROJECTIONS_KVPOLARSTEREOGRAPHIC_H

#include "catalogue/KvPolarStereographicProjection.h"
#include "projections/KvPolarStereographicEngine.h"

#include <string>

// Polar stereographic from scale, central meridian and latitude of origin. With a
// latitude of origin of +-90 it is EPSG's variant A, the scale being that at the
// pole (UPS: 0.994). Otherwise the latitude of origin is the standard parallel of
// variant B on the pole of its sign, and the scale multiplies the scale it implies.
class CKvPolarStereographic : public CKvPolarStereographicEngine<CKvPolarStereographic, CKvPolarStereographicProjection>
{
public:
    explicit CKvPolarStereographic(const CKvPolarStereographicProjection* definition);
    CKvPolarStereographic(const std::string& name, double scale, double centralMeridian, double originLatitude,
                          double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid);

private:
    void _init(double scale, double centralMeridian, double originLatitude, double falseEasting, double falseNorthing);
};

#endif
