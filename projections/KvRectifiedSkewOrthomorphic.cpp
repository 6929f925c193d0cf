#include "projections/KvRectifiedSkewOrthomorphic.h"

CKvRectifiedSkewOrthomorphic::CKvRectifiedSkewOrthomorphic(const CKvRectifiedSkewOrthomorphicProjection* d)
    : CKvHotineEngine(*d)
{
    _init(d->GetScale(), d->GetCenterLongitude(), d->GetCenterLatitude(), d->GetAzimuth(), d->GetXYPlaneRotation(),
          false, d->GetFalseEasting(), d->GetFalseNorthing());
}

CKvRectifiedSkewOrthomorphic::CKvRectifiedSkewOrthomorphic(const std::string& name, double scale,
                                                           double centerLongitude, double centerLatitude,
                                                           double azimuth, double xyPlaneRotation, double falseEasting,
                                                           double falseNorthing, const CKvEllipsoid& ellipsoid,
                                                           bool centreOrigin)
    : CKvHotineEngine(name.c_str(), ellipsoid)
{
    _init(scale, centerLongitude, centerLatitude, azimuth, xyPlaneRotation, centreOrigin, falseEasting,
          falseNorthing);
}
