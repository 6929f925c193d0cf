#include "projections/KvObliqueMercator.h"

CKvObliqueMercator::CKvObliqueMercator(const CKvObliqueMercatorProjection* d) : CKvHotineEngine(*d)
{
    _init(d->GetScale(), d->GetCenterLongitude(), d->GetCenterLatitude(), d->GetAzimuth(), d->GetAzimuth(), true,
          d->GetFalseEasting(), d->GetFalseNorthing());
}

CKvObliqueMercator::CKvObliqueMercator(const std::string& name, double scale, double centerLongitude,
                                       double centerLatitude, double azimuth, double falseEasting, double falseNorthing,
                                       const CKvEllipsoid& ellipsoid)
    : CKvHotineEngine(name.c_str(), ellipsoid)
{
    _init(scale, centerLongitude, centerLatitude, azimuth, azimuth, true, falseEasting, falseNorthing);
}
