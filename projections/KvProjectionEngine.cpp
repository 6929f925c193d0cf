#include "projections/KvProjectionEngine.h"

#include "catalogue/KvCartSetup.h"

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
    const size_t length = name != nullptr ? strnlen(name, NameSize - 1) : 0;
    std::memcpy(m_szName, name != nullptr ? name : "", length);
    m_szName[length] = '\0';
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
