#include "projections/KvKrovakModifiedNorth.h"
#include "projections/KvMeridianDirection.h"

CKvKrovakModifiedNorth::CKvKrovakModifiedNorth(const std::string& name, const double* p,
                                               const CKvEllipsoid& ellipsoid)
    : CKvEngine(name.c_str(), ellipsoid), m_southWest(name, p, ellipsoid)
{
}

void CKvKrovakModifiedNorth::Geo2Proj(double lon, double lat, double* x, double* y) const
{
    double southing, westing;
    m_southWest.CKvKrovakModified::Geo2Proj(lon, lat, &southing, &westing);
    *x = -westing;
    *y = -southing;
}

void CKvKrovakModifiedNorth::Proj2Geo(double x, double y, double* lon, double* lat) const
{
    m_southWest.CKvKrovakModified::Proj2Geo(-y, -x, lon, lat);
}

void CKvKrovakModifiedNorth::GetDefaultArea(double* x1, double* y1, double* x2, double* y2) const
{
    double lon, lat;
    m_southWest.GetOrigin(&lon, &lat);
    _boxAround(lon, lat, true, x1, y1, x2, y2);
}

double CKvKrovakModifiedNorth::GetConvergence(double lon, double lat) const
{
    return CKvMeridianDirection::Convergence(*this, lon, lat);
}

namespace {

// The same parameters as the modified Krovak's, read and written under the same
// names; only the method's names and its grid's orientation differ.
CKvMapProjData::STypeInfo NorthOrientated()
{
    CKvMapProjData::STypeInfo info = CKvKrovakModified::TypeInfo;
    info.type = CKvMapProjData::eKrovakModifiedNorth;
    info.sectionID = "KROVAK_MODIFIED_NORTH_PROJECTION";
    info.title = "Krovak Modified (North Orientated)";
    info.wktName = "Krovak_Modified_(North_Orientated)";
    // S-JTSK/05 / Modified Krovak East North (EPSG:5516), whose parameters are
    // those of EPSG:5515.
    info.defaultName = "Default Krovak Modified (North Orientated)";
    info.epsgMethod = 1043;
    info.ogcName = "Krovak_Modified_(North_Orientated)";
    info.otherNames[0] = "Krovak Modified (North Orientated)";
    // Easting and northing: the grid's own axes are the usual ones.
    info.engineAxes[0] = info.engineAxes[1] = nullptr;
    return info;
}

} // namespace

// Initialised from the modified Krovak's descriptor, which is a constant
// aggregate and so set before any dynamic initialisation.
const CKvMapProjData::STypeInfo CKvKrovakModifiedNorth::TypeInfo = NorthOrientated();
