#include "projections/KvMercator1SP.h"

CKvMercator1SP::CKvMercator1SP(const CKvMercator1SPProjection* definition) : CKvMercatorEngine(*definition)
{
    _init(definition->GetScale(), definition->GetCentre(), definition->GetFalseEasting(),
          definition->GetFalseNorthing());
}

CKvMercator1SP::CKvMercator1SP(const std::string& name, double k0, double centralMeridian, double falseEasting,
                               double falseNorthing, const CKvEllipsoid& ellipsoid)
    : CKvMercatorEngine(name.c_str(), ellipsoid)
{
    _init(k0, centralMeridian, falseEasting, falseNorthing);
}
