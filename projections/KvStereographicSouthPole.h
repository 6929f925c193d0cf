#ifndef KVCART_PROJECTIONS_KVSTEREOGRAPHICSOUTHPOLE_H
#define KVCART_PROJECTIONS_KVSTEREOGRAPHICSOUTHPOLE_H

#include "catalogue/KvStereographicSouthPoleProjection.h"
#include "projections/KvPolarStereographicEngine.h"

#include <string>

// Polar stereographic about the south pole with true scale on a standard parallel
// (EPSG method 9829, variant B). GetDerivedParameters gives the scale at the pole.
class CKvStereographicSouthPole
    : public CKvPolarStereographicEngine<CKvStereographicSouthPole, CKvStereographicSouthPoleProjection>
{
public:
    explicit CKvStereographicSouthPole(const CKvStereographicSouthPoleProjection* definition);
    // standard parallel and central meridian (degrees), FE, FN.
    CKvStereographicSouthPole(const std::string& name, double standardParallel, double centralMeridian,
                              double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid);

private:
    void _init(double standardParallel, double centralMeridian, double falseEasting, double falseNorthing);
};

#endif
