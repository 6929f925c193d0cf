#include "projections/KvMercator2SP.h"

#include <cmath>

CKvMercator2SP::CKvMercator2SP(const CKvMercator2SPProjection* definition) : CKvMercatorEngine(*definition)
{
    _init(_scaleOnEquator(definition->GetParallel1()), definition->GetCentre(), definition->GetFalseEasting(),
          definition->GetFalseNorthing());
}

CKvMercator2SP::CKvMercator2SP(const std::string& name, double standardParallel, double centralMeridian,
                               double falseEasting, double falseNorthing, const CKvEllipsoid& ellipsoid)
    : CKvMercatorEngine(name.c_str(), ellipsoid)
{
    _init(_scaleOnEquator(standardParallel), centralMeridian, falseEasting, falseNorthing);
}

double CKvMercator2SP::_scaleOnEquator(double standardParallel) const
{
    const double phi1 = standardParallel * kDeg;
    const double s = std::sin(phi1);
    return std::cos(phi1) / std::sqrt(1.0 - _e2() * s * s);
}
