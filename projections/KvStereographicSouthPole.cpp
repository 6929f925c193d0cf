#include "projections/KvStereographicSouthPole.h"

#include <cmath>

CKvStereographicSouthPole::CKvStereographicSouthPole(const CKvStereographicSouthPoleProjection* definition)
    : CKvPolarStereographicEngine(*definition)
{
    _init(definition->GetParallel1(), definition->GetCentre(), definition->GetFalseEasting(),
          definition->GetFalseNorthing());
}

CKvStereographicSouthPole::CKvStereographicSouthPole(const std::string& name, double standardParallel,
                                                     double centralMeridian, double falseEasting, double falseNorthing,
                                                     const CKvEllipsoid& ellipsoid)
    : CKvPolarStereographicEngine(name.c_str(), ellipsoid)
{
    _init(standardParallel, centralMeridian, falseEasting, falseNorthing);
}

void CKvStereographicSouthPole::_init(double standardParallel, double centralMeridian, double falseEasting,
                                      double falseNorthing)
{
    // The parallel is taken on this engine's pole whatever its written sign.
    const double parallel = -1 * std::fabs(standardParallel);
    _setCore(CKvPolarStereographicCore::OnParallel(_a(), _e(), parallel * kDeg, 1.0, centralMeridian * kDeg,
                                                   falseEasting, falseNorthing),
             centralMeridian, -1 * 90.0);
}
