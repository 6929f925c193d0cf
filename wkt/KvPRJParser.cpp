#include "wkt/KvPRJParser.h"

#include "coordsys/KvMapProjection.h"
#include "projections/KvProjection.h"

namespace {

// WKT projection names and the projection types they stand for. Several names
// deliberately share a type: the south-orientated and Gauss-Kruger names are
// plain transverse Mercator, the double and oblique stereographic names are the
// same method, a bare "Mercator" is the two-parallel form, and a bare
// "Lambert_Conformal_Conic" starts as two-parallel.
struct SProjectionName
{
    const char* name;
    CKvMapProjData::EProjectionType type;
};

const SProjectionName kProjectionNames[] = {
    {"Transverse_Mercator", CKvMapProjData::eTransverseMercator},
    {"Transverse_Mercator_Complex", CKvMapProjData::eTransverseMercator},
    {"Transverse_Mercator_South_Orientated", CKvMapProjData::eTransverseMercator},
    {"Gauss_Kruger", CKvMapProjData::eTransverseMercator},
    {"Lambert_Conformal_Conic", CKvMapProjData::eLambert2SP},
    {"Lambert_Conformal_Conic_2SP", CKvMapProjData::eLambert2SP},
    {"Lambert_Conformal_Conic_1SP", CKvMapProjData::eLambert1SP},
    {"Stereographic", CKvMapProjData::eStereographic},
    {"Double_Stereographic", CKvMapProjData::eStereographic},
    {"Oblique_Stereographic", CKvMapProjData::eStereographic},
    {"Polar_Stereographic", CKvMapProjData::ePolarStereographic},
    {"Stereographic_North_Pole", CKvMapProjData::eStereographicNorthPole},
    {"Stereographic_South_Pole", CKvMapProjData::eStereographicSouthPole},
    {"New_Zealand_Map_Grid", CKvMapProjData::eNewZealandMapGrid},
    {"Hotine_Oblique_Mercator_Azimuth_Natural_Origin", CKvMapProjData::eHotineObliqueMercator},
    {"Hotine_Oblique_Mercator", CKvMapProjData::eHotineObliqueMercator},
    {"Hotine_Oblique_Mercator_Azimuth_Center", CKvMapProjData::eObliqueMercator},
    {"Rectified_Skew_Orthomorphic_Natural_Origin", CKvMapProjData::eRectifiedSkewOrthomorphic},
    {"Rotated_Longitude_Latitude", CKvMapProjData::eRotatedLongitudeLatitude},
    {"Mercator", CKvMapProjData::eMercator2SP},
    {"Mercator_2SP", CKvMapProjData::eMercator2SP},
    {"Mercator_1SP", CKvMapProjData::eMercator1SP},
    {"Geographical", CKvMapProjData::eGeographical},
    {"Krovak", CKvMapProjData::eKrovak},
    {"Albers", CKvMapProjData::eAlbersEqualArea},
    {"Albers_Conic_Equal_Area", CKvMapProjData::eAlbersEqualArea},
    {"Lambert_Azimuthal_Equal_Area", CKvMapProjData::eLambertAzimuthalEqualArea},
    {"Cassini", CKvMapProjData::eCassiniSoldner},
    {"Cassini_Soldner", CKvMapProjData::eCassiniSoldner},
    {"Equidistant_Conic", CKvMapProjData::eEquidistantConic},
    {"Non_Projected", CKvMapProjData::eNonProjected},
};

} // namespace

CKvPRJParser::CKvPRJParser(const CString& text)
{
    _initialize();
    m_text = text;
}

CKvPRJParser::CKvPRJParser(const char* text)
{
    _initialize();
    m_text = CString(text);
}

CKvPRJParser::CKvPRJParser(const CKvProjection* engine)
{
    _initialize();
    if (engine != nullptr)
        engine->TransferParameters(*this);
}

CKvPRJParser::CKvPRJParser(const CKvMapProjData* definition)
{
    _initialize();
    if (definition != nullptr)
        definition->TransferParameters(*this);
}

void CKvPRJParser::_initialize()
{
    m_projectionNames.clear();
    for (const SProjectionName& row : kProjectionNames)
        m_projectionNames[CString(row.name).MakeLower()] = row.type;
    m_primeMeridian = Undefined;
    m_angularUnit = Undefined;
    m_semiMajorAxis = Undefined;
    m_inverseFlattening = Undefined;
    m_datumShift.Reset();
    m_type = CKvMapProjData::eNoProjection;
    m_falseEasting = m_falseNorthing = Undefined;
    m_centralMeridian = m_standardParallel1 = m_standardParallel2 = m_latitudeOfOrigin = Undefined;
    m_longitudeOfCenter = m_latitudeOfCenter = m_azimuth = m_xyPlaneRotation = Undefined;
    m_scaleFactor = Undefined;
    m_longitudeOfSouthPole = m_latitudeOfSouthPole = m_angleOfRotation = Undefined;
    m_pseudoParallel = m_xScale = m_yScale = Undefined;
    m_projUnit = Undefined;
    m_axisName[0] = "Easting";
    m_axisDirection[0] = "EAST";
    m_axisName[1] = "Northing";
    m_axisDirection[1] = "NORTH";
}

CKvMapProjData::EProjectionType CKvPRJParser::LookUpProjectionName(const CString& wktName) const
{
    CString key(wktName);
    key.MakeLower();
    const auto found = m_projectionNames.find(key);
    return found != m_projectionNames.end() ? found->second : CKvMapProjData::eNoProjection;
}

CString CKvPRJParser::GetName(const CString& text, const char* keyword)
{
    const int at = text.Find(keyword);
    if (at < 0)
        return CString();
    static const char delimiters[] = "[]\"";
    int pos = at;
    text.Tokenize(delimiters, pos); // the keyword itself
    if (pos < 0)
        return CString();
    return text.Tokenize(delimiters, pos);
}

CString CKvPRJParser::ShortName(const CString& text)
{
    for (const char* keyword : {"COMPD_CS", "PROJCS", "GEOGCS"}) {
        const CString name = GetName(text, keyword);
        if (!name.IsEmpty())
            return name;
    }
    if (CKvMapProjection::IsLocal(text))
        return CString("Local Coordinates");
    return text;
}

void CKvPRJParser::GetPrimeMeridian(CString& name, double& longitude) const
{
    name = m_primeMeridianName;
    longitude = m_primeMeridian;
}

void CKvPRJParser::SetPrimeMeridian(const CString& name, double longitude)
{
    m_primeMeridianName = name;
    m_primeMeridian = longitude;
}

void CKvPRJParser::GetAngularUnit(CString& name, double& factor) const
{
    name = m_angularUnitName;
    factor = m_angularUnit;
}

void CKvPRJParser::SetAngularUnit(const CString& name, double factor)
{
    m_angularUnitName = name;
    m_angularUnit = factor;
}

void CKvPRJParser::GetEllipsoid(CString& name, double& semiMajorAxis, double& inverseFlattening) const
{
    name = m_ellipsoidName;
    semiMajorAxis = m_semiMajorAxis;
    inverseFlattening = m_inverseFlattening;
}

void CKvPRJParser::SetEllipsoid(const CString& name, double semiMajorAxis, double inverseFlattening)
{
    m_ellipsoidName = name;
    m_semiMajorAxis = semiMajorAxis;
    m_inverseFlattening = inverseFlattening;
}

void CKvPRJParser::GetProjUnit(CString& name, double& factor) const
{
    name = m_projUnitName;
    factor = m_projUnit;
}

void CKvPRJParser::SetProjUnit(const CString& name, double factor)
{
    m_projUnitName = name;
    m_projUnit = factor;
}

void CKvPRJParser::GetAxisInfo(EAxisType axis, CString& name, CString& direction) const
{
    if (axis != eFirstAxis && axis != eSecondAxis)
        return;
    name = m_axisName[axis - 1];
    direction = m_axisDirection[axis - 1];
}

void CKvPRJParser::SetAxisInfo(EAxisType axis, const CString& name, const CString& direction)
{
    if (axis != eFirstAxis && axis != eSecondAxis)
        return;
    m_axisName[axis - 1] = name;
    m_axisDirection[axis - 1] = direction;
}
