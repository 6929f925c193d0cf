#include "projections/KvPolarStereographic.h"

#include "catalogue/KvFloatCompareRel.h"

CKvPolarStereographic::CKvPolarStereographic(const CKvPolarStereographicProjection* definition)
    : CKvPolarStereographicEngine(*definition)
{
    _init(definition->GetScale(), definition->GetCentre(), definition->GetOriginLatitude(),
          definition->GetFalseEasting(), definition->GetFalseNorthing());
}

CKvPolarStereographic::CKvPolarStereographic(const std::string& name, double scale, double centralMeridian,
                                             double originLatitude, double falseEasting, double falseNorthing,
                                             const CKvEllipsoid& ellipsoid)
    : CKvPolarStereographicEngine(name.c_str(), ellipsoid)
{
    _init(scale, centralMeridian, originLatitude, falseEasting, falseNorthing);
}

void CKvPolarStereographic::_init(double scale, double centralMeridian, double originLatitude, double falseEasting,
                                  double falseNorthing)
{
    const bool atPole =
        CKvFloatCompareRel::Close(originLatitude, 90.0) || CKvFloatCompareRel::Close(originLatitude, -90.0);
    const CKvPolarStereographicCore core =
        atPole ? CKvPolarStereographicCore::AtPole(_a(), _e(), originLatitude > 0 ? 1 : -1, scale,
                                                   centralMeridian * kDeg, falseEasting, falseNorthing)
               : CKvPolarStereographicCore::OnParallel(_a(), _e(), originLatitude * kDeg, scale, centralMeridian * kDeg,
                                                       falseEasting, falseNorthing);
    _setCore(core, centralMeridian, originLatitude);
}
