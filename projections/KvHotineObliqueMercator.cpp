#include "projections/KvHotineObliqueMercator.h"

CKvHotineObliqueMercator::CKvHotineObliqueMercator(const CKvHotineObliqueMercatorProjection* d) : CKvHotineEngine(*d)
{
    _init(d->GetScale(), d->GetCenterLongitude(), d->GetCenterLatitude(), d->GetAzimuth(), d->GetAzimuth(), false,
          d->GetFalseEasting(), d->GetFalseNorthing());
}

CKvHotineObliqueMercator::CKvHotineObliqueMercator(const std::string& name, double scale, double centerLongitude,
                                                   double centerLatitude, double azimuth, double falseEasting,
                                                   double falseNorthing, const CKvEllipsoid& ellipsoid)
    : CKvHotineEngine(name.c_str(), ellipsoid)
{
    _init(scale, centerLongitude, centerLatitude, azimuth, azimuth, false, falseEasting, falseNorthing);
}
