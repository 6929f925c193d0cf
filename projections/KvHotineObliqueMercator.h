#ifndef KVCART_PROJECTIONS_KVHOTINEOBLIQUEMERCATOR_H
#define KVCART_PROJECTIONS_KVHOTINEOBLIQUEMERCATOR_H

#include "catalogue/KvHotineObliqueMercatorProjection.h"
#include "projections/KvHotineEngine.h"

#include <string>

// Hotine oblique Mercator, variant A (EPSG method 9812): false easting and northing at
// the natural origin, grid rectified by the azimuth of the centre line.
class CKvHotineObliqueMercator : public CKvHotineEngine<CKvHotineObliqueMercator, CKvHotineObliqueMercatorProjection>
{
public:
    explicit CKvHotineObliqueMercator(const CKvHotineObliqueMercatorProjection* definition);
    // scale at the centre, centre longitude and latitude, azimuth (degrees), FE, FN.
    CKvHotineObliqueMercator(const std::string& name, double scale, double centerLongitude, double centerLatitude,
                             double azimuth, double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid);
};

#endif
