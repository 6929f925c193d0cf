#ifndef KVCART_PROJECTIONS_KVRECTIFIEDSKEWORTHOMORPHIC_H
#define KVCART_PROJECTIONS_KVRECTIFIEDSKEWORTHOMORPHIC_H

#include "catalogue/KvRectifiedSkewOrthomorphicProjection.h"
#include "projections/KvHotineEngine.h"

#include <string>

// Rectified skew orthomorphic: Hotine variant A with a grid rotation of its own (the
// Malaysian and Bornean grids).
class CKvRectifiedSkewOrthomorphic
    : public CKvHotineEngine<CKvRectifiedSkewOrthomorphic, CKvRectifiedSkewOrthomorphicProjection>
{
public:
    explicit CKvRectifiedSkewOrthomorphic(const CKvRectifiedSkewOrthomorphicProjection* definition);
    // scale at the centre, centre longitude and latitude, azimuth, grid rotation (degrees), FE, FN.
    // centreOrigin: the false origin is at the projection centre (EPSG variant B,
    // u counted from the centre) instead of the natural origin.
    CKvRectifiedSkewOrthomorphic(const std::string& name, double scale, double centerLongitude, double centerLatitude,
                                 double azimuth, double xyPlaneRotation, double falseEasting, double falseNorthing,
                                 const CKvEllipsoid& ellipsoid, bool centreOrigin = false);
};

#endif
