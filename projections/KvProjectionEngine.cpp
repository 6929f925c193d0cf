#include "projections/KvProjectionEngine.h"

#include <cstring>

CKvProjectionEngine::CKvProjectionEngine(const char* name, const CKvEllipsoid& ellipsoid)
    : m_dA(ellipsoid.GetMajor()), m_dInvF(ellipsoid.GetInvFlatness()), m_dE(ellipsoid.GetEccentricity()),
      m_dE2(m_dE * m_dE)
{
    const size_t length = name != nullptr ? strnlen(name, NameSize - 1) : 0;
    std::memcpy(m_szName, name != nullptr ? name : "", length);
    m_szName[length] = '\0';
}

bool CKvProjectionEngine::GetAnonymousEllipsoid(CKvEllipsoid& ellipsoid) const
{
    if (!(m_dA > 0.0))
        return false;
    ellipsoid.SetParams(m_dA, m_dInvF);
    return true;
}
