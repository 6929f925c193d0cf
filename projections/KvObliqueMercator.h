#ifndef KVCART_PROJECTIONS_KVOBLIQUEMERCATOR_H
#define KVCART_PROJECTIONS_KVOBLIQUEMERCATOR_H

#include "catalogue/KvObliqueMercatorProjection.h"
#include "projections/KvHotineEngine.h"

#include <string>

// Hotine oblique Mercator, variant B (EPSG method 9815): false easting and northing at
// the projection centre, grid rectified by the azimuth of the centre line.
class CKvObliqueMercator : public CKvHotineEngine<CKvObliqueMercator, CKvObliqueMercatorProjection>
{
public:
    explicit CKvObliqueMercator(const CKvObliqueMercatorProjection* definition);
    // scale at the centre, centre longitude and latitude, azimuth (degrees), FE, FN.
    CKvObliqueMercator(const std::string& name, double scale, double centerLongitude, double centerLatitude,
                       double azimuth, double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid);
};

#endif
