#include "projections/KvProjectionEngine.h"

#include "catalogue/KvCartSetup.h"
#include "paramfile/String.h"

#include <algorithm>
#include <cmath>
#include <cstring>

CKvProjectionEngine::CKvProjectionEngine(const char* name, const CKvEllipsoid& ellipsoid)
{
    _setName(name);
    _setEllipsoid(ellipsoid);
}

CKvProjectionEngine::CKvProjectionEngine(const CKvMapProjData& definition)
{
    _setName(definition.GetName().c_str());
    const std::string id = definition.GetEllipsoidID();
    const CKvEllipsoid* ellipsoid =
        id.empty() ? nullptr : CKvCartSetup::Instance()->GetEllipsoidList().GetEllipsoid(id);
    if (ellipsoid != nullptr) {
        _setEllipsoid(*ellipsoid);
    } else {
        m_dA = m_dInvF = m_dE = m_dE2 = 0.0;
    }
}

void CKvProjectionEngine::_setName(const char* name)
{
    CString::CopyBounded(m_szName, sizeof m_szName, name);
}

void CKvProjectionEngine::_setEllipsoid(const CKvEllipsoid& ellipsoid)
{
    m_dA = ellipsoid.GetMajor();
    m_dInvF = ellipsoid.GetInvFlatness();
    m_dE = ellipsoid.GetEccentricity();
    m_dE2 = m_dE * m_dE;
}

bool CKvProjectionEngine::GetAnonymousEllipsoid(CKvEllipsoid& ellipsoid) const
{
    if (!(m_dA > 0.0))
        return false;
    ellipsoid.SetParams(m_dA, m_dInvF);
    return true;
}

bool CKvProjectionEngine::GetEllipsoid(CKvEllipsoid& ellipsoid) const
{
    const CKvEllipsoid* found = CKvMapProjection::Ellipsoid(m_szName);
    if (found == nullptr)
        return false;
    ellipsoid = *found;
    return true;
}

double CKvProjectionEngine::_numericConvergence(double lon, double lat) const
{
    double x1, y1, x2, y2;
    Geo2Proj(lon, lat, &x1, &y1);
    Geo2Proj(lon, lat + 1.0 / 60.0, &x2, &y2);
    return std::atan2(x1 - x2, y2 - y1) * 180.0 / 3.141592653589793;
}

void CKvProjectionEngine::_boxAround(double lon, double lat, bool clampLongitude, double* x1, double* y1, double* x2,
                                     double* y2) const
{
    const double west = clampLongitude ? std::max(lon - 3.0, -180.0) : lon - 3.0;
    const double east = clampLongitude ? std::min(lon + 3.0, 180.0) : lon + 3.0;
    Geo2Proj(west, std::max(lat - 3.0, -90.0), x1, y1);
    Geo2Proj(east, std::min(lat + 3.0, 90.0), x2, y2);
}
