#include "catalogue/KvCartSetup.h"

CKvCartSetup* CKvCartSetup::Instance()
{
    static CKvCartSetup instance;
    return &instance;
}

CKvCartSetup::~CKvCartSetup()
{
    WriteBack();
}

void CKvCartSetup::ReadData(const std::string& systemDirectory, const std::string& userDirectory)
{
    m_userDirectory = userDirectory;
    m_bHasUserDirectory = true;
    m_ellipsoids.ReadEllipsoids(systemDirectory + "ellipsoid.gxr", false);
    m_ellipsoids.ReadEllipsoids(userDirectory + "custom_ellipsoid.gxr", true);
    m_ellipsoids.GenerateCompleteList();
    m_projections.InitMapProjections(systemDirectory, userDirectory);
}

void CKvCartSetup::WriteBack()
{
    if (!m_bHasUserDirectory)
        return;
    // Only the user's own definitions go back, so that reading the file again does
    // not duplicate the system catalogue. Both writes replace the file atomically.
    if (m_bMapProjectionListModified &&
        m_projections.WriteCustomMapProjections(m_userDirectory + "custom_projection.gxr", true) == 0)
        m_bMapProjectionListModified = false;
    if (m_bEllipsoidListModified && m_ellipsoids.WriteCustomEllipsoids(m_userDirectory + "custom_ellipsoid.gxr") == 0)
        m_bEllipsoidListModified = false;
}
