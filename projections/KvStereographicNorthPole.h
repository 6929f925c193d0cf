#ifndef KVCART_PROJECTIONS_KVSTEREOGRAPHICNORTHPOLE_H
#define KVCART_PROJECTIONS_KVSTEREOGRAPHICNORTHPOLE_H

#include "catalogue/KvStereographicNorthPoleProjection.h"
#include "projections/KvPolarStereographicEngine.h"

#include <string>

// Polar stereographic about the north pole with true scale on a standard parallel
// (EPSG method 9829, variant B). GetDerivedParameters gives the scale at the pole.
class CKvStereographicNorthPole
    : public CKvPolarStereographicEngine<CKvStereographicNorthPole, CKvStereographicNorthPoleProjection>
{
public:
    explicit CKvStereographicNorthPole(const CKvStereographicNorthPoleProjection* definition);
    // standard parallel and central meridian (degrees), FE, FN.
    CKvStereographicNorthPole(const std::string& name, double standardParallel, double centralMeridian,
                              double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid);

private:
    void _init(double standardParallel, double centralMeridian, double falseEasting, double falseNorthing);
};

#endif
