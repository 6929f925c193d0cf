#include "wkt/KvPRJParser.h"

#include "catalogue/KvEpsgRegistry.h"

#include "catalogue/KvFloatCompareRel.h"
#include "coordsys/KvMapProjection.h"
#include "paramfile/NumericLocale.h"
#include "projections/KvAlbersEqualArea.h"
#include "projections/KvCassiniSoldner.h"
#include "projections/KvEquidistantConic.h"
#include "projections/KvGeographical.h"
#include "projections/KvHotineObliqueMercator.h"
#include "projections/KvKrovak.h"
#include "projections/KvLambert1SP.h"
#include "projections/KvLambert2SP.h"
#include "projections/KvLambertAzimuthalEqualArea.h"
#include "projections/KvMercator1SP.h"
#include "projections/KvMercator2SP.h"
#include "projections/KvNewZealandMapGrid.h"
#include "projections/KvObliqueMercator.h"
#include "projections/KvPolarStereographic.h"
#include "projections/KvPseudoMercator.h"
#include "projections/KvRectifiedSkewOrthomorphic.h"
#include "projections/KvRotatedLongitudeLatitude.h"
#include "projections/KvStereographic.h"
#include "projections/KvStereographicNorthPole.h"
#include "projections/KvStereographicSouthPole.h"
#include "projections/KvStereographicSnyder.h"
#include "projections/KvTransverseMercatorJHS.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <memory>

namespace {

// The tokenizer's delimiter sets.
const char kNodeDelimiters[] = "[]\"";
const char kValueDelimiters[] = "],";

// The reading new parsers take: the established one unless a host chose the
// registry's (an atomic, so that a host may switch it while other threads read).
std::atomic<int> g_defaultReading{CKvPRJParser::eCompatibleReading};

// The degree as a WKT angular unit, in radians.
constexpr double kDegree = 0.017453292519943295;

// Deeper nesting than this is indented as this level when WKT is re-flowed, so
// that hostile text cannot make the output grow with the square of its length.
constexpr int kMaxIndentLevel = 32;

std::string LowerCase(const std::string& text)
{
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

double ToDouble(const CString& token)
{
    return CNumericLocale::Strtod(token.GetString(), nullptr);
}

// The value of the quoted parameter name in text, whose lower-case copy is
// lower; false when the name does not occur.
bool FindParam(const CString& text, const std::string& lower, const char* name, double& value)
{
    const std::string key = "\"" + LowerCase(name) + "\"";
    const size_t at = lower.find(key);
    if (at == std::string::npos)
        return false;
    int pos = static_cast<int>(at);
    text.Tokenize(kValueDelimiters, pos); // the quoted name
    value = ToDouble(text.Tokenize(kValueDelimiters, pos));
    return true;
}

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
    // Names beyond the established table. ESRI's rectified skew form counted
    // from the projection centre (EPSG Hotine variant B with a grid angle).
    {"Rectified_Skew_Orthomorphic_Center", CKvMapProjData::eRectifiedSkewOrthomorphic},
    // The pseudo-Mercator (EPSG method 1024): ESRI's name, with its auxiliary
    // sphere, and the registry's name as WKT 1 writers spell it.
    {"Mercator_Auxiliary_Sphere", CKvMapProjData::ePseudoMercator},
    {"Popular_Visualisation_Pseudo_Mercator", CKvMapProjData::ePseudoMercator},
    {"Popular Visualisation Pseudo Mercator", CKvMapProjData::ePseudoMercator},
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

void CKvPRJParser::SetDefaultReading(EReading reading)
{
    g_defaultReading.store(reading == eEpsgReading ? eEpsgReading : eCompatibleReading);
}

CKvPRJParser::EReading CKvPRJParser::GetDefaultReading()
{
    return g_defaultReading.load() == eEpsgReading ? eEpsgReading : eCompatibleReading;
}

void CKvPRJParser::_initialize()
{
    m_reading = GetDefaultReading();
    m_failureReason.clear();
    m_warnings.clear();
    m_centreOrigin = false;
    m_southOrientated = false;
    m_lambertScale = false;
    m_krovakFromAxes = false;
    m_extensionSphere = 0.0;
    m_projectionNames.clear();
    for (const SProjectionName& row : kProjectionNames)
        m_projectionNames[CString(row.name).MakeLower()] = row.type;
    // The described methods by their ESRI, OGC and other names.
    for (int index = 0; index < CKvMapProjData::GetNoOfProjections(); ++index) {
        const CKvMapProjData::EProjectionType type = CKvMapProjData::Enum2ProjectionType(index);
        const CKvMapProjData::STypeInfo* info = CKvMapProjData::GetTypeInfo(type);
        if (info == nullptr || !CKvMapProjData::IsDescribedMethod(type))
            continue;
        for (const char* name : {info->wktName, info->ogcName, info->otherNames[0], info->otherNames[1],
                                 info->otherNames[2], info->otherNames[3]})
            if (name != nullptr)
                m_projectionNames.emplace(CString(name).MakeLower(), type);
    }
    for (double& value : m_methodValues)
        value = Undefined;
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

namespace {

// Reads the name of the node whose keyword starts at index at: returns the
// position after the name (-1 at the end of the text).
int ReadNodeName(const CString& text, int at, const char* keyword, CString& name)
{
    // A well-formed node with an empty name, KEYWORD["": the tokenizer would skip
    // the empty quotes and take the text after them for the name.
    const int after = at + static_cast<int>(std::strlen(keyword));
    if (text.GetStdString().compare(static_cast<size_t>(after), 3, "[\"\"") == 0) {
        name.Empty();
        return after + 3;
    }
    int pos = at;
    text.Tokenize(kNodeDelimiters, pos); // the keyword itself
    name = text.Tokenize(kNodeDelimiters, pos);
    return pos;
}

// Name and value token of the first node of keyword; false when it is absent.
// remainder: the text after the value token.
bool NameAndValue(const CString& text, const char* keyword, CString& name, CString& value, CString& remainder)
{
    const int at = text.Find(keyword);
    if (at < 0)
        return false;
    int pos = ReadNodeName(text, at, keyword, name);
    value = text.Tokenize(kValueDelimiters, pos);
    remainder = pos >= 0 ? text.Mid(pos) : CString();
    return true;
}

} // namespace

CString CKvPRJParser::GetName(const CString& text, const char* keyword)
{
    const int at = text.Find(keyword);
    CString name;
    if (at >= 0)
        ReadNodeName(text, at, keyword, name);
    return name;
}

CString CKvPRJParser::GetNameParam(const CString& text, const char* keyword, CString& name, double& value)
{
    CString token, remainder;
    if (!NameAndValue(text, keyword, name, token, remainder))
        return CString();
    value = ToDouble(token);
    return remainder;
}

CString CKvPRJParser::GetNameParam(const CString& text, const char* keyword, CString& name, CString& value)
{
    CString token, remainder;
    if (!NameAndValue(text, keyword, name, token, remainder))
        return CString();
    value = token.Trim();
    return remainder;
}

double CKvPRJParser::GetParam(const CString& text, const char* name, double defaultValue)
{
    double value = defaultValue;
    FindParam(text, LowerCase(text.GetStdString()), name, value);
    return value;
}

double CKvPRJParser::GetParam(const CString& text, const std::list<CString>& names, double defaultValue)
{
    const std::string lower = LowerCase(text.GetStdString());
    double value = defaultValue;
    for (const CString& name : names)
        if (FindParam(text, lower, name, value))
            break;
    return value;
}

int CKvPRJParser::_MatchBrackets(const CString& text)
{
    int level = 0;
    const int length = text.GetLength();
    for (int i = 0; i < length; ++i) {
        const char c = text.GetAt(i);
        if (c == '[')
            ++level;
        else if (c == ']' && --level < 0)
            return i;
    }
    return level != 0 ? length : -1;
}

bool CKvPRJParser::_MatchCommas(const CString& text)
{
    const std::string& s = text.GetStdString();
    return std::count(s.begin(), s.end(), ',') > std::count(s.begin(), s.end(), '[');
}

int CKvPRJParser::_GetBracketLevel(const CString& text)
{
    int level = 0;
    for (const char c : text.GetStdString()) {
        if (c == '[')
            ++level;
        else if (c == ']' && --level < 0)
            break;
    }
    return level;
}

bool CKvPRJParser::IsPRJ(const CString& text)
{
    return _MatchBrackets(text) < 0 && _MatchCommas(text) && (text.Find("PROJCS") >= 0 || text.Find("GEOGCS") >= 0);
}

CString CKvPRJParser::DatumName(const CString& text)
{
    return GetName(text, "DATUM");
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

namespace {

// A PARAMETER of the reader: up to two alternative names, tried in order, the
// field it fills and whether the type needs it.
struct SReadParameter
{
    const char* names[2];
    void (CKvPRJParser::*set)(double);
    double (CKvPRJParser::*get)() const;
    bool required;
};

#define KV_FIELD(Field) &CKvPRJParser::Set##Field, &CKvPRJParser::Get##Field
const SReadParameter kFalseEasting = {{"False_Easting", nullptr}, KV_FIELD(FalseEasting), true};
const SReadParameter kFalseNorthing = {{"False_Northing", nullptr}, KV_FIELD(FalseNorthing), true};
const SReadParameter kCentralMeridian = {{"Central_Meridian", nullptr}, KV_FIELD(CentralMeridian), true};
const SReadParameter kScaleFactor = {{"Scale_Factor", nullptr}, KV_FIELD(ScaleFactor), true};
const SReadParameter kLatitudeOfOrigin = {{"Latitude_Of_Origin", nullptr}, KV_FIELD(LatitudeOfOrigin), true};
const SReadParameter kParallel1 = {{"Standard_Parallel_1", nullptr}, KV_FIELD(StandardParallel1), true};
const SReadParameter kParallel2 = {{"Standard_Parallel_2", nullptr}, KV_FIELD(StandardParallel2), true};
const SReadParameter kLongitudeOfCenter = {{"Longitude_Of_Center", nullptr}, KV_FIELD(LongitudeOfCenter), true};
const SReadParameter kLatitudeOfCenter = {{"Latitude_Of_Center", nullptr}, KV_FIELD(LatitudeOfCenter), true};
const SReadParameter kAzimuth = {{"Azimuth", nullptr}, KV_FIELD(Azimuth), true};
const SReadParameter kXYPlaneRotation = {{"XY_Plane_Rotation", nullptr}, KV_FIELD(XYPlaneRotation), true};
#undef KV_FIELD

// The parameter lists of the reader, per type.
const SReadParameter kReadTransverseMercator[] = {kFalseEasting, kFalseNorthing, kCentralMeridian, kScaleFactor,
                                                  kLatitudeOfOrigin};
const SReadParameter kReadLambert2SP[] = {kFalseEasting, kFalseNorthing, kCentralMeridian, kParallel1,
                                          kParallel2,    kScaleFactor,   kLatitudeOfOrigin};
const SReadParameter kReadStereographic[] = {
    kFalseEasting, kFalseNorthing,
    {{"Central_Meridian", "Longitude_Of_Origin"}, &CKvPRJParser::SetCentralMeridian,
     &CKvPRJParser::GetCentralMeridian, true},
    kScaleFactor, kLatitudeOfOrigin};
const SReadParameter kReadNewZealand[] = {kFalseEasting, kFalseNorthing,
                                          {{"Longitude_Of_Origin", "Central_Meridian"},
                                           &CKvPRJParser::SetCentralMeridian,
                                           &CKvPRJParser::GetCentralMeridian,
                                           true},
                                          kLatitudeOfOrigin};
const SReadParameter kReadHotine[] = {kFalseEasting,
                                      kFalseNorthing,
                                      kLongitudeOfCenter,
                                      kLatitudeOfCenter,
                                      kAzimuth,
                                      {{"Rectified_Grid_Angle", nullptr},
                                       &CKvPRJParser::SetXYPlaneRotation,
                                       &CKvPRJParser::GetXYPlaneRotation,
                                       false},
                                      kScaleFactor};
const SReadParameter kReadSkewOrthomorphic[] = {kFalseEasting, kFalseNorthing,  kLongitudeOfCenter, kLatitudeOfCenter,
                                                kAzimuth,      kXYPlaneRotation, kScaleFactor};
const SReadParameter kReadRotated[] = {
    {{"Longitude_Of_South_Pole", nullptr}, &CKvPRJParser::SetLongitudeOfSouthPole,
     &CKvPRJParser::GetLongitudeOfSouthPole, true},
    {{"Latitude_Of_South_Pole", nullptr}, &CKvPRJParser::SetLatitudeOfSouthPole, &CKvPRJParser::GetLatitudeOfSouthPole,
     true},
    {{"Angle_Of_Rotation", nullptr}, &CKvPRJParser::SetAngleOfRotation, &CKvPRJParser::GetAngleOfRotation, true}};
const SReadParameter kReadMercator2SP[] = {kFalseEasting, kFalseNorthing, kCentralMeridian, kParallel1};
const SReadParameter kReadMercator1SP[] = {kFalseEasting, kFalseNorthing, kCentralMeridian, kScaleFactor};
const SReadParameter kReadKrovak[] = {
    kFalseEasting, kFalseNorthing, kLongitudeOfCenter, kLatitudeOfCenter, kAzimuth, kXYPlaneRotation, kScaleFactor,
    {{"Pseudo_Standard_Parallel_1", nullptr}, &CKvPRJParser::SetPseudoParallel, &CKvPRJParser::GetPseudoParallel,
     true},
    {{"X_Scale", nullptr}, &CKvPRJParser::SetXScale, &CKvPRJParser::GetXScale, true},
    {{"Y_Scale", nullptr}, &CKvPRJParser::SetYScale, &CKvPRJParser::GetYScale, true}};
const SReadParameter kCenterMeridian = {{"Central_Meridian", "Longitude_Of_Center"},
                                        &CKvPRJParser::SetCentralMeridian, &CKvPRJParser::GetCentralMeridian, true};
const SReadParameter kOriginOrCenterLatitude = {{"Latitude_Of_Origin", "Latitude_Of_Center"},
                                                &CKvPRJParser::SetLatitudeOfOrigin,
                                                &CKvPRJParser::GetLatitudeOfOrigin, true};
const SReadParameter kReadConic[] = {kFalseEasting, kFalseNorthing, kCenterMeridian,
                                     kParallel1,    kParallel2,     kOriginOrCenterLatitude};
const SReadParameter kReadAzimuthalEqualArea[] = {kFalseEasting, kFalseNorthing, kCenterMeridian,
                                                  kOriginOrCenterLatitude};
const SReadParameter kReadCassini[] = {kFalseEasting, kFalseNorthing, kCentralMeridian, kLatitudeOfOrigin};
// ESRI gives the latitude of the natural origin as Standard_Parallel_1; without
// one it is the equator.
const SReadParameter kReadPseudoMercator[] = {
    kFalseEasting, kFalseNorthing,
    {{"Central_Meridian", "Longitude_Of_Origin"}, &CKvPRJParser::SetCentralMeridian,
     &CKvPRJParser::GetCentralMeridian, true},
    {{"Standard_Parallel_1", "Latitude_Of_Origin"}, &CKvPRJParser::SetLatitudeOfOrigin,
     &CKvPRJParser::GetLatitudeOfOrigin, false}};

struct SParameterList
{
    const SReadParameter* first;
    int count;
};

template <size_t N> SParameterList List(const SReadParameter (&list)[N])
{
    return {list, static_cast<int>(N)};
}

SParameterList ReadList(CKvMapProjData::EProjectionType type)
{
    switch (type) {
    case CKvMapProjData::eTransverseMercator:
    case CKvMapProjData::eNonProjected:
    case CKvMapProjData::eLambert1SP:
    case CKvMapProjData::ePolarStereographic: return List(kReadTransverseMercator);
    case CKvMapProjData::eLambert2SP: return List(kReadLambert2SP);
    case CKvMapProjData::eStereographic: return List(kReadStereographic);
    case CKvMapProjData::eNewZealandMapGrid: return List(kReadNewZealand);
    case CKvMapProjData::eHotineObliqueMercator:
    case CKvMapProjData::eObliqueMercator: return List(kReadHotine);
    case CKvMapProjData::eRectifiedSkewOrthomorphic: return List(kReadSkewOrthomorphic);
    case CKvMapProjData::eRotatedLongitudeLatitude: return List(kReadRotated);
    case CKvMapProjData::eMercator2SP:
    case CKvMapProjData::eStereographicNorthPole:
    case CKvMapProjData::eStereographicSouthPole: return List(kReadMercator2SP);
    case CKvMapProjData::eMercator1SP: return List(kReadMercator1SP);
    case CKvMapProjData::eKrovak: return List(kReadKrovak);
    case CKvMapProjData::eAlbersEqualArea:
    case CKvMapProjData::eEquidistantConic: return List(kReadConic);
    case CKvMapProjData::eLambertAzimuthalEqualArea: return List(kReadAzimuthalEqualArea);
    case CKvMapProjData::eCassiniSoldner: return List(kReadCassini);
    case CKvMapProjData::ePseudoMercator: return List(kReadPseudoMercator);
    default: return {nullptr, 0};
    }
}

bool IsSet(double value)
{
    return value != CKvPRJParser::Undefined;
}

} // namespace

void CKvPRJParser::_readMethodParameters(const CString& P, const std::string& lowerP)
{
    const CKvMapProjData::STypeInfo* info = CKvMapProjData::GetTypeInfo(m_type);
    std::string reason;
    for (int i = 0; i < info->noOfParameters && reason.empty(); ++i) {
        const CKvMapProjData::SParameter& parameter = info->parameters[i];
        double value = Undefined;
        bool found = false;
        for (const char* name : parameter.wktNames)
            if (name != nullptr && (found = FindParam(P, lowerP, name, value)))
                break;
        // ESRI's Behrmann is the cylindrical equal-area map whose true-scale
        // parallel is 30 degrees; ESRI writes it with or without that parallel.
        if (!found && m_type == CKvMapProjData::eCylindricalEqualArea && LowerCase(m_typeName.GetStdString()) == "behrmann" &&
            std::strcmp(parameter.wktNames[0], "Standard_Parallel_1") == 0) {
            value = 30.0 * (kDegree / m_angularUnit);
            found = true;
        }
        if (!found && !std::isnan(parameter.fallback))
            value = parameter.fallback; // in degrees or metres: kept so below
        else if (!found)
            reason = std::string("the parameter \"") + parameter.wktNames[0] + "\" is missing";
        m_methodValues[i] = found ? value : Undefined;
    }
    if (!reason.empty()) {
        m_type = CKvMapProjData::eNoProjection;
        m_failureReason = "projection \"" + m_typeName.GetStdString() + "\": " + reason;
    }
}

void CKvPRJParser::_methodValuesInDegreesAndMetres(double* values) const
{
    const CKvMapProjData::STypeInfo* info = CKvMapProjData::GetTypeInfo(m_type);
    const double k = IsSet(m_angularUnit) ? m_angularUnit / kDegree : 1.0;
    const double u = IsSet(m_projUnit) ? m_projUnit : 1.0;
    const double pm = IsSet(m_primeMeridian) ? m_primeMeridian : 0.0;
    for (int i = 0; i < CKvMapProjData::MaxParameters; ++i) {
        if (info == nullptr || i >= info->noOfParameters) {
            values[i] = 0.0;
            continue;
        }
        const CKvMapProjData::SParameter& parameter = info->parameters[i];
        // A parameter the text does not give takes its fallback, which is in
        // degrees and metres already.
        if (!IsSet(m_methodValues[i])) {
            values[i] = parameter.fallback;
            continue;
        }
        const double v = m_methodValues[i];
        switch (parameter.kind) {
        case CKvMapProjData::eLength: values[i] = v * u; break;
        case CKvMapProjData::eAngle: values[i] = parameter.longitude ? v * k + pm : v * k; break;
        default: values[i] = v; break;
        }
    }
}

void CKvPRJParser::_readParameters(const CString& P, const std::string& lowerP)
{
    if (CKvMapProjData::IsDescribedMethod(m_type))
        return _readMethodParameters(P, lowerP);
    const SParameterList list = ReadList(m_type);
    bool complete = true;
    const char* missing = nullptr; // the first required parameter not given
    for (int i = 0; i < list.count; ++i) {
        const SReadParameter& parameter = list.first[i];
        double value = Undefined;
        for (const char* name : parameter.names)
            if (name != nullptr && FindParam(P, lowerP, name, value))
                break;
        (this->*parameter.set)(value);
        if (parameter.required && !IsSet(value)) {
            complete = false;
            if (missing == nullptr)
                missing = parameter.names[0];
        }
    }
    std::string reason = missing != nullptr ? std::string("the parameter \"") + missing + "\" is missing" : "";
    switch (m_type) {
    case CKvMapProjData::eLambert2SP:
        // Both parallels make the two-parallel form; a scale factor without
        // them the one-parallel form of the same name.
        if (!IsSet(m_falseEasting)) {
            complete = false;
            reason = "the parameter \"False_Easting\" is missing";
        } else if (IsSet(m_falseNorthing) && IsSet(m_centralMeridian) && IsSet(m_standardParallel1) &&
                   IsSet(m_standardParallel2) && IsSet(m_latitudeOfOrigin))
            complete = true;
        else if (IsSet(m_falseNorthing) && IsSet(m_centralMeridian) && IsSet(m_latitudeOfOrigin) &&
                 IsSet(m_scaleFactor)) {
            m_type = CKvMapProjData::eLambert1SP;
            complete = true;
        } else {
            complete = false;
            reason = "it needs False_Northing, Central_Meridian and Latitude_Of_Origin with either "
                     "Standard_Parallel_1 and Standard_Parallel_2 or a Scale_Factor";
        }
        break;
    case CKvMapProjData::eHotineObliqueMercator:
    case CKvMapProjData::eObliqueMercator:
        // A grid angle other than the azimuth (or none) is the rectified skew form.
        if (complete && CKvFloatCompareRel::NotEqual(m_azimuth, m_xyPlaneRotation, 1e-12))
            m_type = CKvMapProjData::eRectifiedSkewOrthomorphic;
        break;
    case CKvMapProjData::ePolarStereographic:
        // Without a scale factor the latitude of origin is the latitude of true
        // scale (EPSG variant B, as GDAL writes it in WKT 1): the polar form of
        // that pole with its standard parallel.
        if (!complete && !IsSet(m_scaleFactor) && IsSet(m_falseEasting) && IsSet(m_falseNorthing) &&
            IsSet(m_centralMeridian) && IsSet(m_latitudeOfOrigin) && m_latitudeOfOrigin != 0.0) {
            m_type = m_latitudeOfOrigin > 0.0 ? CKvMapProjData::eStereographicNorthPole
                                              : CKvMapProjData::eStereographicSouthPole;
            m_standardParallel1 = m_latitudeOfOrigin;
            complete = true;
        }
        break;
    case CKvMapProjData::eKrovak:
        // WKT 1 as GDAL writes it names no X/Y scales nor plane rotation (ESRI's
        // parameters): its AXIS nodes say how the grid runs. They are derived from
        // the axes once those are read.
        if (!complete && IsSet(m_falseEasting) && IsSet(m_falseNorthing) && IsSet(m_longitudeOfCenter) &&
            IsSet(m_latitudeOfCenter) && IsSet(m_azimuth) && IsSet(m_scaleFactor) && IsSet(m_pseudoParallel) &&
            !IsSet(m_xScale) && !IsSet(m_yScale) && !IsSet(m_xyPlaneRotation)) {
            m_krovakFromAxes = true;
            complete = true;
        }
        break;
    case CKvMapProjData::ePseudoMercator: {
        // The registry's method has its natural origin on the equator and no scale
        // of its own, and ESRI's auxiliary sphere 0 (PROJ's default when none is
        // named) is the sphere of the semi-major axis, the method's own. ESRI's
        // other spheres (1 the semi-minor axis, 2 and 3 authalic radii) make other
        // maps; neither they nor an origin or scale the method does not have are
        // read as something else.
        if (!IsSet(m_latitudeOfOrigin))
            m_latitudeOfOrigin = 0.0;
        double sphereType = 0.0, scale = 1.0;
        FindParam(P, lowerP, "Auxiliary_Sphere_Type", sphereType);
        FindParam(P, lowerP, "Scale_Factor", scale);
        char buffer[200];
        buffer[0] = '\0';
        if (sphereType != 0.0)
            std::snprintf(buffer, sizeof buffer,
                          "its Auxiliary_Sphere_Type %.16g is not supported (only 0, the sphere of the semi-major "
                          "axis)",
                          sphereType);
        else if (m_latitudeOfOrigin != 0.0)
            std::snprintf(buffer, sizeof buffer,
                          "its latitude of origin %.16g is not supported (the pseudo-Mercator's natural origin is "
                          "on the equator)",
                          m_latitudeOfOrigin);
        else if (scale != 1.0)
            std::snprintf(buffer, sizeof buffer,
                          "its Scale_Factor %.16g is not supported (the pseudo-Mercator has no scale of its own)",
                          scale);
        if (complete && buffer[0] != '\0') {
            complete = false;
            reason = buffer;
        }
        break;
    }
    default: break;
    }
    if (!complete) {
        m_type = CKvMapProjData::eNoProjection;
        m_failureReason = "projection \"" + m_typeName.GetStdString() + "\": " + reason;
    }
}

namespace {

bool SameWord(const CString& a, const char* b)
{
    return LowerCase(a.GetStdString()) == LowerCase(b);
}

// Why a text is not WKT that the reader takes.
std::string NotWktReason(const CString& text)
{
    if (text.Find("PROJCRS") >= 0 || text.Find("GEOGCRS") >= 0 || text.Find("GEODCRS") >= 0)
        return "WKT 2 is not read: give the system as WKT 1 (PROJCS or GEOGCS, as a .prj file holds it)";
    if (text.Find("PROJCS") < 0 && text.Find("GEOGCS") < 0)
        return "not WKT: no PROJCS or GEOGCS node";
    const int at = CKvPRJParser::_MatchBrackets(text);
    char buffer[160];
    if (at >= 0 && at < text.GetLength())
        std::snprintf(buffer, sizeof buffer, "not WKT: the ']' at character %d closes no node", at + 1);
    else if (at >= 0)
        std::snprintf(buffer, sizeof buffer, "not WKT: %d bracket(s) left open at the end of the text",
                      CKvPRJParser::_GetBracketLevel(text));
    else
        std::snprintf(buffer, sizeof buffer, "not WKT: too few commas between its nodes");
    return buffer;
}

// The numbers of a PROJ string token, +key=value, in text; false when absent.
bool ProjToken(const std::string& text, const char* key, double& value)
{
    const std::string token = std::string("+") + key + "=";
    const size_t at = text.find(token);
    if (at == std::string::npos)
        return false;
    value = CNumericLocale::Strtod(text.c_str() + at + token.size(), nullptr);
    return true;
}

// The word of a PROJ string token, +key=word, in text ("merc" of +proj=merc);
// empty when absent.
std::string ProjWord(const std::string& text, const char* key)
{
    const std::string token = std::string("+") + key + "=";
    const size_t at = text.find(token);
    if (at == std::string::npos)
        return std::string();
    const size_t from = at + token.size();
    const size_t end = text.find_first_of(" \"]", from);
    return text.substr(from, end == std::string::npos ? std::string::npos : end - from);
}

} // namespace

// A datum named without TOWGS84 (every ESRI .prj): the registry knows its
// shift by the name, in GDAL's or ESRI's spelling. The EPSG reading takes it,
// the established reading keeps the text's silence and says what it leaves out.
void CKvPRJParser::_datumFromRegistry()
{
    CKvEpsgRegistry::SShift shift;
    std::string system;
    if (!CKvEpsgRegistry::Instance().FindDatum(m_datum.GetStdString(), shift, system))
        return;
    if (shift.parameters == 0 && shift.code.empty())
        return; // WGS 84 itself: nothing to take
    char accuracy[64] = "";
    if (shift.accuracy >= 0.0)
        std::snprintf(accuracy, sizeof accuracy, ", accuracy %g m", shift.accuracy);
    const std::string what = shift.code + " " + shift.name + accuracy;
    if (m_reading == eEpsgReading) {
        m_datumShift.SetParameters(shift.values);
        m_shiftKnown = true;
        m_shiftSource = "the registry's for the datum \"" + m_datum.GetStdString() + "\" (as " + system +
                        "): " + what;
    } else {
        double size = 0.0;
        for (int i = 0; i < 3; ++i)
            size = std::max(size, std::fabs(shift.values[i]));
        char buffer[160];
        std::snprintf(buffer, sizeof buffer, "; between datums expect errors of the order of %.0f m", size);
        _warn("its datum \"" + m_datum.GetStdString() + "\" has no TOWGS84 and is read without a shift to WGS 84; " +
              "the registry's is " + what + " (as " + system + ")" + (size > 0.0 ? buffer : ""));
    }
}

void CKvPRJParser::_warn(const std::string& sentence)
{
    if (!m_warnings.empty())
        m_warnings += '\n';
    m_warnings += sentence;
}

bool CKvPRJParser::_fail(const std::string& reason)
{
    m_failureReason = reason;
    return false;
}

void CKvPRJParser::_applyReadingRules(const CString& name, const CString& T, const CString& P)
{
    const bool epsg = m_reading == eEpsgReading;
    char buffer[400];

    // Oblique Mercator named after its centre: EPSG variant B, coordinates
    // counted from the centre, also when a grid angle that differs from the
    // azimuth (or none) makes it the rectified skew form.
    if (SameWord(name, "Hotine_Oblique_Mercator_Azimuth_Center") ||
        SameWord(name, "Rectified_Skew_Orthomorphic_Center"))
        m_centreOrigin = true;

    // A Krovak text without ESRI's scales and rotation: the engine's own grid
    // counts southing and westing; each AXIS names one of them, or its negation
    // (north, east: EPSG's north-orientated form), and the scales and rotation
    // are chosen to give those coordinates in that order.
    if (m_krovakFromAxes) {
        const auto component = [](const CString& direction, bool& southing, double& sign) {
            southing = SameWord(direction, "SOUTH") || SameWord(direction, "NORTH");
            sign = SameWord(direction, "SOUTH") || SameWord(direction, "WEST") ? 1.0 : -1.0;
        };
        bool firstSouthing = false, secondSouthing = false;
        double sign1 = 1.0, sign2 = 1.0;
        component(m_axisDirection[0], firstSouthing, sign1);
        component(m_axisDirection[1], secondSouthing, sign2);
        if (firstSouthing == secondSouthing) {
            m_type = CKvMapProjData::eNoProjection;
            m_failureReason = "projection \"Krovak\": its axes " + m_axisDirection[0].GetStdString() + " and " +
                              m_axisDirection[1].GetStdString() + " do not name a southing and a westing";
            return;
        }
        if (firstSouthing) { // x = sign1 southing, y = sign2 westing
            m_xScale = sign1;
            m_yScale = sign2;
            m_xyPlaneRotation = 0.0;
        } else { // turned a quarter: x = -Y_Scale westing, y = X_Scale southing
            m_xScale = sign2;
            m_yScale = -sign1;
            m_xyPlaneRotation = 90.0 * (kDegree / m_angularUnit);
        }
        m_axisDirection[0] = "EAST";
        m_axisDirection[1] = "NORTH";
    }

    // A described method whose grid runs other ways than east and north (the
    // modified Krovak's southing and westing, the west-orientated Lambert's
    // westing): its engine gives those coordinates, and AXIS nodes that name
    // them, in either order, say only their order.
    if (CKvMapProjData::IsDescribedMethod(m_type)) {
        const CKvMapProjData::STypeInfo* info = CKvMapProjData::GetTypeInfo(m_type);
        if (info->engineAxes[0] != nullptr && info->engineAxes[1] != nullptr) {
            if (SameWord(m_axisDirection[0], info->engineAxes[0]) && SameWord(m_axisDirection[1], info->engineAxes[1])) {
                m_axisDirection[0] = "EAST";
                m_axisDirection[1] = "NORTH";
            } else if (SameWord(m_axisDirection[0], info->engineAxes[1]) &&
                       SameWord(m_axisDirection[1], info->engineAxes[0])) {
                m_axisDirection[0] = "NORTH";
                m_axisDirection[1] = "EAST";
            }
        }
    }

    // The south-orientated transverse Mercator (EPSG 9808) counts westing and
    // southing: W = FE - E, S = FN - N.
    if (SameWord(name, "Transverse_Mercator_South_Orientated") &&
        m_type == CKvMapProjData::eTransverseMercator) {
        m_southOrientated = true;
        const bool westSouth = SameWord(m_axisDirection[0], "WEST") && SameWord(m_axisDirection[1], "SOUTH");
        const bool offset = m_falseEasting != 0.0 || m_falseNorthing != 0.0;
        if (epsg) {
            m_axisName[0] = "Westing";
            m_axisDirection[0] = "WEST";
            m_axisName[1] = "Southing";
            m_axisDirection[1] = "SOUTH";
        } else if (!westSouth) {
            _warn("Transverse_Mercator_South_Orientated read as plain transverse Mercator: coordinates are "
                  "easting/northing (the registry's are westing/southing)");
        } else if (offset) {
            _warn("Transverse_Mercator_South_Orientated read as plain transverse Mercator with its axes "
                  "negated: the false easting and northing are negated too (the registry subtracts the "
                  "coordinates from them)");
        }
    }

    // ESRI's "Stereographic" is Snyder's stereographic on the conformal sphere of
    // the origin, not the double stereographic of EPSG method 9809.
    if (SameWord(name, "Stereographic") && m_type == CKvMapProjData::eStereographic) {
        if (epsg)
            m_type = CKvMapProjData::eStereographicSnyder;
        else
            _warn("Stereographic read as the oblique (double) stereographic, EPSG method 9809: the registry's "
                  "Stereographic is Snyder's, which differs by up to decimetres");
    }

    // A two-parallel Lambert with a scale factor (EPSG 1051, the Michigan form)
    // scales the cone's radii.
    if (m_type == CKvMapProjData::eLambert2SP && IsSet(m_scaleFactor) && m_scaleFactor != 1.0) {
        if (epsg) {
            m_lambertScale = true;
        } else {
            std::snprintf(buffer, sizeof buffer,
                          "Lambert_Conformal_Conic with two standard parallels: its Scale_Factor %.16g is not "
                          "applied (the registry's two-parallel Michigan form scales the map by it)",
                          m_scaleFactor);
            _warn(buffer);
        }
    }

    // At a pole GDAL names the axes by the meridians they run along, with the
    // same word for both ("SOUTH" along 90 E and 180 E at the north pole): there
    // those words are no signs. The names say which axis is the easting.
    const double originLatitude = m_latitudeOfOrigin * (m_angularUnit / kDegree);
    const bool polar = m_type == CKvMapProjData::ePolarStereographic ||
                       m_type == CKvMapProjData::eStereographicNorthPole ||
                       m_type == CKvMapProjData::eStereographicSouthPole ||
                       ((m_type == CKvMapProjData::eLambertAzimuthalEqualArea ||
                         m_type == CKvMapProjData::eStereographic ||
                         m_type == CKvMapProjData::eStereographicSnyder) &&
                        CKvFloatCompareRel::Close(std::fabs(originLatitude), 90.0, 1e-12));
    const bool sameWord = SameWord(m_axisDirection[0], m_axisDirection[1].GetString()) &&
                          (SameWord(m_axisDirection[0], "NORTH") || SameWord(m_axisDirection[0], "SOUTH"));
    if (polar && sameWord) {
        const auto northing = [](const CString& axisName) {
            const char c = axisName.IsEmpty() ? ' ' : axisName.GetAt(0);
            return c == 'N' || c == 'n' || c == 'Y' || c == 'y';
        };
        const bool northFirst = northing(m_axisName[0]) && !northing(m_axisName[1]);
        if (epsg) {
            m_axisDirection[0] = northFirst ? "NORTH" : "EAST";
            m_axisDirection[1] = northFirst ? "EAST" : "NORTH";
        } else {
            // Read as directions, a north or south first axis exchanges the two and
            // south negates: the same as the registry's only for a northing first,
            // both named NORTH.
            const bool south = SameWord(m_axisDirection[0], "SOUTH");
            if (south || !northFirst) {
                std::snprintf(buffer, sizeof buffer,
                              "the axes %s and %s both run %s along meridians at the pole; read as directions "
                              "they %s%s the coordinates (the registry's are %s)",
                              m_axisName[0].GetString(), m_axisName[1].GetString(), m_axisDirection[0].GetString(),
                              south ? "negate" : "exchange", south && !northFirst ? " and exchange" : "",
                              northFirst ? "northing, easting" : "easting, northing");
                _warn(buffer);
            }
        }
    }

    // A PROJ4 EXTENSION that computes on a sphere over an ellipsoidal datum (Web
    // Mercator as GDAL writes EPSG:3857).
    const int extension = T.Find("EXTENSION[");
    if (extension >= 0 && P.GetLength() > 0) {
        const std::string ext = T.Mid(extension).GetStdString();
        double a = 0.0, b = 0.0, r = 0.0;
        double sphere = 0.0;
        if (ProjToken(ext, "R", r))
            sphere = r;
        else if (ProjToken(ext, "a", a) && ProjToken(ext, "b", b) && a == b)
            sphere = a;
        if (sphere > 0.0 && IsSet(m_inverseFlattening) && m_inverseFlattening != 0.0) {
            m_extensionSphere = sphere;
            const bool webMercator = _isPseudoMercatorExtension(ext, sphere);
            if (epsg && webMercator) {
                // The registry's pseudo-Mercator (EPSG method 1024): the map of the
                // sphere of the semi-major axis on the ellipsoid's own latitudes. The
                // record names the method by the name it is written back with.
                m_type = CKvMapProjData::ePseudoMercator;
                m_typeName = "Mercator_Auxiliary_Sphere";
                m_latitudeOfOrigin = 0.0;
            } else if (epsg) {
                std::snprintf(buffer, sizeof buffer,
                              "its PROJ4 EXTENSION projects on a sphere of radius %.16g over the ellipsoidal datum "
                              "(Web Mercator): not supported",
                              sphere);
                m_failureReason = buffer;
                m_type = CKvMapProjData::eNoProjection;
            } else {
                std::snprintf(buffer, sizeof buffer,
                              "its PROJ4 EXTENSION projects on a sphere of radius %.16g (Web Mercator); read on its "
                              "SPHEROID instead, the coordinates differ by kilometres%s",
                              sphere,
                              webMercator ? " (the EPSG reading gives Web Mercator, the registry's pseudo-Mercator)"
                                          : "");
                _warn(buffer);
            }
        }
    }
}

bool CKvPRJParser::_isPseudoMercatorExtension(const std::string& ext, double sphere) const
{
    // PROJ computes with the EXTENSION alone, so the text is the pseudo-Mercator
    // only where its PARAMETER nodes say the same: a Mercator with scale 1 on the
    // equator, on the sphere of the SPHEROID's semi-major axis, with the text's
    // central meridian and false origin (tokens the EXTENSION leaves out are
    // PROJ's defaults, the same zeros and ones).
    const bool mercator = (m_type == CKvMapProjData::eMercator1SP && m_scaleFactor == 1.0) ||
                          (m_type == CKvMapProjData::eMercator2SP && m_standardParallel1 == 0.0);
    if (!mercator || ProjWord(ext, "proj") != "merc" || !CKvFloatCompareRel::Close(sphere, m_semiMajorAxis))
        return false;
    const double degrees = m_angularUnit / kDegree;
    const double primeMeridian = IsSet(m_primeMeridian) ? m_primeMeridian : 0.0;
    const auto agrees = [&ext](const char* key, double expected, double tolerance) {
        double value = 0.0;
        return !ProjToken(ext, key, value) || std::fabs(value - expected) <= tolerance;
    };
    return agrees("k", 1.0, 0.0) && agrees("k_0", 1.0, 0.0) && agrees("lat_ts", 0.0, 0.0) &&
           agrees("lon_0", m_centralMeridian * degrees + primeMeridian, 1e-9) &&
           agrees("x_0", m_falseEasting * m_projUnit, 1e-6) && agrees("y_0", m_falseNorthing * m_projUnit, 1e-6);
}

bool CKvPRJParser::Parse(bool sortParallels)
{
    const CString& T = m_text;
    m_failureReason.clear();
    m_warnings.clear();
    m_centreOrigin = m_southOrientated = m_lambertScale = m_krovakFromAxes = false;
    m_extensionSphere = 0.0;
    m_shiftSource.clear();
    m_shiftKnown = false;
    if (!IsPRJ(T))
        return _fail(NotWktReason(T));

    m_projCSName = ShortName(T);
    m_geoCSName = GetName(T, "GEOGCS");
    m_datum = GetName(T, "DATUM");
    if (m_projCSName.IsEmpty())
        m_projCSName = m_geoCSName;

    const int spheroid = T.Find("SPHEROID");
    if (spheroid >= 0) {
        int pos = spheroid;
        T.Tokenize(kNodeDelimiters, pos);
        m_ellipsoidName = T.Tokenize(kNodeDelimiters, pos);
        m_semiMajorAxis = ToDouble(T.Tokenize(",", pos));
        m_inverseFlattening = ToDouble(T.Tokenize(",]", pos));
    }

    const int towgs84 = T.Find("TOWGS84");
    if (towgs84 >= 0) {
        // Always seven values: the format has the seven-parameter form only.
        int pos = towgs84;
        T.Tokenize(kNodeDelimiters, pos);
        double values[CKvDatumShift::NoOfParameters];
        for (double& value : values)
            value = ToDouble(T.Tokenize(",", pos));
        m_datumShift.SetParameters(values);
        m_shiftKnown = true;
    } else if (!m_datum.IsEmpty()) {
        _datumFromRegistry();
    }

    GetNameParam(T, "PRIMEM", m_primeMeridianName, m_primeMeridian);
    const CString R = GetNameParam(T, "UNIT", m_angularUnitName, m_angularUnit);
    if (!IsSet(m_angularUnit)) {
        m_type = CKvMapProjData::eNoProjection;
        return _fail("the geographic system has no UNIT node with its angular unit");
    }

    const int projection = T.Find("PROJECTION");
    if (projection < 0) {
        m_type = CKvMapProjData::eGeographical;
        m_typeName = "Geographical";
        m_axisName[0] = "Longitude";
        m_axisName[1] = "Latitude";
    } else {
        const CString P = T.Mid(projection);
        int pos = 0;
        P.Tokenize(kNodeDelimiters, pos);
        const CString name = P.Tokenize(kNodeDelimiters, pos);
        m_type = LookUpProjectionName(name);
        if (m_type == CKvMapProjData::eNoProjection)
            return _fail("projection \"" + name.GetStdString() + "\" is not supported");
        m_typeName = name;

        _readParameters(P, LowerCase(P.GetStdString()));

        if (sortParallels &&
            (m_type == CKvMapProjData::eLambert2SP || m_type == CKvMapProjData::eAlbersEqualArea ||
             m_type == CKvMapProjData::eEquidistantConic) &&
            m_standardParallel2 < m_standardParallel1)
            std::swap(m_standardParallel1, m_standardParallel2);

        GetNameParam(R, "UNIT", m_projUnitName, m_projUnit);
        if (!IsSet(m_projUnit)) {
            m_type = CKvMapProjData::eNoProjection;
            return _fail("the projected system has no linear UNIT after its GEOGCS");
        }

        const CString A = GetNameParam(P, "AXIS", m_axisName[0], m_axisDirection[0]);
        GetNameParam(A, "AXIS", m_axisName[1], m_axisDirection[1]);
        if (m_type != CKvMapProjData::eNoProjection)
            _applyReadingRules(name, T, P);
    }

    // A described method says why its parameters make no map.
    if (CKvMapProjData::IsDescribedMethod(m_type)) {
        const CKvMapProjData::STypeInfo* info = CKvMapProjData::GetTypeInfo(m_type);
        double values[CKvMapProjData::MaxParameters];
        _methodValuesInDegreesAndMetres(values);
        const std::string reason = info->problem != nullptr ? info->problem(values) : std::string();
        if (!reason.empty()) {
            m_type = CKvMapProjData::eNoProjection;
            return _fail("projection \"" + m_typeName.GetStdString() + "\": " + reason);
        }
    }

    // Validation: the engine must be constructible; it also fills the derived
    // parameters of the Mercator and polar stereographic forms.
    if (m_type != CKvMapProjData::eNoProjection) {
        CKvProjection* engine = CreateMapProjection();
        if (engine == nullptr) {
            m_failureReason = "projection \"" + m_typeName.GetStdString() + "\" could not be built";
            m_type = CKvMapProjData::eNoProjection;
        }
        CKvProjection::Release(engine);
    }
    return m_type != CKvMapProjData::eNoProjection;
}

CKvProjection* CKvPRJParser::CreateMapProjection()
{
    if (m_type == CKvMapProjData::eNoProjection)
        return nullptr;
    const CKvEllipsoid ellipsoid(m_ellipsoidName.GetStdString(), std::string(), m_semiMajorAxis, m_inverseFlattening);
    const std::string name = m_projCSName.GetStdString();
    // Degrees per angular unit and metres per linear unit. The prime meridian is
    // added as written: exact for the usual degree-based WKT.
    const double k = m_angularUnit / kDegree;
    const double u = m_projUnit;
    auto angle = [k](double value) { return value * k; };
    auto longitude = [this, k](double value) { return value * k + m_primeMeridian; };
    auto length = [u](double value) { return value * u; };
    // The registry's south-orientated grid subtracts the coordinates from the
    // false origin; the axes (west, south) negate what the engine gives.
    const double originSign = m_southOrientated && m_reading == eEpsgReading ? -1.0 : 1.0;
    const double fe = originSign * length(m_falseEasting);
    const double fn = originSign * length(m_falseNorthing);

    if (CKvMapProjData::IsDescribedMethod(m_type)) {
        double values[CKvMapProjData::MaxParameters];
        _methodValuesInDegreesAndMetres(values);
        return CKvMapProjData::CreateMethodEngine(m_type, name, values, ellipsoid);
    }
    CKvProjection* engine = nullptr;
    double derived[4] = {0.0, 0.0, 0.0, 0.0};
    switch (m_type) {
    case CKvMapProjData::eTransverseMercator:
    case CKvMapProjData::eNonProjected:
        return new CKvTransverseMercatorJHS(name, m_scaleFactor, longitude(m_centralMeridian),
                                            angle(m_latitudeOfOrigin), fe, fn, ellipsoid);
    case CKvMapProjData::eLambert2SP:
        // The Michigan form's scale only by the registry's reading.
        return new CKvLambert2SP(name, angle(m_standardParallel1), angle(m_standardParallel2),
                                 longitude(m_centralMeridian), angle(m_latitudeOfOrigin), fe, fn, ellipsoid,
                                 m_lambertScale ? m_scaleFactor : 1.0);
    case CKvMapProjData::eLambert1SP:
        return new CKvLambert1SP(name, m_scaleFactor, longitude(m_centralMeridian), angle(m_latitudeOfOrigin), fe,
                                 fn, ellipsoid);
    case CKvMapProjData::eStereographic:
        return new CKvStereographic(name, m_scaleFactor, longitude(m_centralMeridian), angle(m_latitudeOfOrigin),
                                    fe, fn, ellipsoid);
    case CKvMapProjData::eStereographicSnyder:
        return new CKvStereographicSnyder(name, m_scaleFactor, longitude(m_centralMeridian),
                                          angle(m_latitudeOfOrigin), fe, fn, ellipsoid);
    case CKvMapProjData::eNewZealandMapGrid:
        return new CKvNewZealandMapGrid(name, longitude(m_centralMeridian), angle(m_latitudeOfOrigin), fe, fn,
                                        ellipsoid);
    case CKvMapProjData::eHotineObliqueMercator:
        return new CKvHotineObliqueMercator(name, m_scaleFactor, longitude(m_longitudeOfCenter),
                                            angle(m_latitudeOfCenter), angle(m_azimuth), fe, fn, ellipsoid);
    case CKvMapProjData::eObliqueMercator:
        return new CKvObliqueMercator(name, m_scaleFactor, longitude(m_longitudeOfCenter), angle(m_latitudeOfCenter),
                                      angle(m_azimuth), fe, fn, ellipsoid);
    case CKvMapProjData::eRectifiedSkewOrthomorphic:
        // A Hotine text without a grid angle is read as this form: its grid angle
        // is then the azimuth (EPSG's rule for both Hotine variants).
        return new CKvRectifiedSkewOrthomorphic(
            name, m_scaleFactor, longitude(m_longitudeOfCenter), angle(m_latitudeOfCenter), angle(m_azimuth),
            angle(IsSet(m_xyPlaneRotation) ? m_xyPlaneRotation : m_azimuth), fe, fn, ellipsoid, m_centreOrigin);
    case CKvMapProjData::eRotatedLongitudeLatitude:
        // The pole and the rotation are taken as written, in degrees.
        return new CKvRotatedLongitudeLatitude(name, m_longitudeOfSouthPole, m_latitudeOfSouthPole,
                                               m_angleOfRotation, ellipsoid);
    case CKvMapProjData::eMercator2SP:
        engine = new CKvMercator2SP(name, angle(m_standardParallel1), longitude(m_centralMeridian), fe, fn, ellipsoid);
        engine->GetDerivedParameters(derived);
        m_scaleFactor = derived[0];
        return engine;
    case CKvMapProjData::eMercator1SP:
        engine = new CKvMercator1SP(name, m_scaleFactor, longitude(m_centralMeridian), fe, fn, ellipsoid);
        engine->GetDerivedParameters(derived);
        m_standardParallel1 = derived[0];
        return engine;
    case CKvMapProjData::eStereographicNorthPole:
        engine = new CKvStereographicNorthPole(name, angle(m_standardParallel1), longitude(m_centralMeridian), fe, fn,
                                               ellipsoid);
        engine->GetDerivedParameters(derived);
        m_scaleFactor = derived[0];
        return engine;
    case CKvMapProjData::eStereographicSouthPole:
        engine = new CKvStereographicSouthPole(name, angle(m_standardParallel1), longitude(m_centralMeridian), fe, fn,
                                               ellipsoid);
        engine->GetDerivedParameters(derived);
        m_scaleFactor = derived[0];
        return engine;
    case CKvMapProjData::eGeographical: return new CKvGeographical(name, ellipsoid);
    case CKvMapProjData::eKrovak:
        return new CKvKrovak(name, m_scaleFactor, angle(m_pseudoParallel), longitude(m_longitudeOfCenter),
                             angle(m_latitudeOfCenter), angle(m_azimuth), angle(m_xyPlaneRotation), m_xScale,
                             m_yScale, fe, fn, ellipsoid);
    case CKvMapProjData::eAlbersEqualArea:
        return new CKvAlbersEqualArea(name, angle(m_standardParallel1), angle(m_standardParallel2),
                                      longitude(m_centralMeridian), angle(m_latitudeOfOrigin), fe, fn, ellipsoid);
    case CKvMapProjData::eLambertAzimuthalEqualArea:
        return new CKvLambertAzimuthalEqualArea(name, longitude(m_centralMeridian), angle(m_latitudeOfOrigin), fe, fn,
                                                ellipsoid);
    case CKvMapProjData::eCassiniSoldner:
        return new CKvCassiniSoldner(name, longitude(m_centralMeridian), angle(m_latitudeOfOrigin), fe, fn, ellipsoid);
    case CKvMapProjData::eEquidistantConic:
        return new CKvEquidistantConic(name, angle(m_standardParallel1), angle(m_standardParallel2),
                                       longitude(m_centralMeridian), angle(m_latitudeOfOrigin), fe, fn, ellipsoid);
    case CKvMapProjData::ePolarStereographic:
        return new CKvPolarStereographic(name, m_scaleFactor, longitude(m_centralMeridian), angle(m_latitudeOfOrigin),
                                         fe, fn, ellipsoid);
    case CKvMapProjData::ePseudoMercator:
        return new CKvPseudoMercator(name, longitude(m_centralMeridian),
                                     IsSet(m_latitudeOfOrigin) ? angle(m_latitudeOfOrigin) : 0.0, fe, fn, ellipsoid);
    default: return nullptr;
    }
}

namespace {

using Getter = double (CKvPRJParser::*)() const;
using Setter = void (CKvPRJParser::*)(double);

// The record's numeric parameter fields, as the definitions name them (by setter).
struct SField
{
    Setter set;
    Getter get;
};

#define KV_FIELD(Field) {&CKvPRJParser::Set##Field, &CKvPRJParser::Get##Field}
const SField kFields[] = {
    KV_FIELD(FalseEasting),     KV_FIELD(FalseNorthing),        KV_FIELD(CentralMeridian),
    KV_FIELD(StandardParallel1), KV_FIELD(StandardParallel2),   KV_FIELD(LatitudeOfOrigin),
    KV_FIELD(LongitudeOfCenter), KV_FIELD(LatitudeOfCenter),    KV_FIELD(Azimuth),
    KV_FIELD(XYPlaneRotation),   KV_FIELD(ScaleFactor),         KV_FIELD(LongitudeOfSouthPole),
    KV_FIELD(LatitudeOfSouthPole), KV_FIELD(AngleOfRotation),   KV_FIELD(PseudoParallel),
    KV_FIELD(XScale),            KV_FIELD(YScale),
};
#undef KV_FIELD

Getter GetterFor(Setter set)
{
    for (const SField& field : kFields)
        if (field.set == set)
            return field.get;
    return nullptr;
}

// A PARAMETER of the writer: its WKT name and the field written.
struct SWriteParameter
{
    const char* name;
    Getter get;
};

const SWriteParameter kWriteTransverseMercator[] = {{"False_Easting", &CKvPRJParser::GetFalseEasting},
                                                    {"False_Northing", &CKvPRJParser::GetFalseNorthing},
                                                    {"Central_Meridian", &CKvPRJParser::GetCentralMeridian},
                                                    {"Scale_Factor", &CKvPRJParser::GetScaleFactor},
                                                    {"Latitude_Of_Origin", &CKvPRJParser::GetLatitudeOfOrigin}};
// Two-parallel Lambert, Albers and equidistant conic. No scale factor, so
// that a two-parallel Lambert reads back as such.
const SWriteParameter kWriteConic[] = {{"False_Easting", &CKvPRJParser::GetFalseEasting},
                                       {"False_Northing", &CKvPRJParser::GetFalseNorthing},
                                       {"Central_Meridian", &CKvPRJParser::GetCentralMeridian},
                                       {"Standard_Parallel_1", &CKvPRJParser::GetStandardParallel1},
                                       {"Standard_Parallel_2", &CKvPRJParser::GetStandardParallel2},
                                       {"Latitude_Of_Origin", &CKvPRJParser::GetLatitudeOfOrigin}};
const SWriteParameter kWriteNewZealand[] = {{"False_Easting", &CKvPRJParser::GetFalseEasting},
                                            {"False_Northing", &CKvPRJParser::GetFalseNorthing},
                                            {"Longitude_Of_Origin", &CKvPRJParser::GetCentralMeridian},
                                            {"Latitude_Of_Origin", &CKvPRJParser::GetLatitudeOfOrigin}};
// No Rectified_Grid_Angle: read back, a Hotine system becomes the rectified
// skew form.
const SWriteParameter kWriteHotine[] = {{"False_Easting", &CKvPRJParser::GetFalseEasting},
                                        {"False_Northing", &CKvPRJParser::GetFalseNorthing},
                                        {"Scale_Factor", &CKvPRJParser::GetScaleFactor},
                                        {"Azimuth", &CKvPRJParser::GetAzimuth},
                                        {"Longitude_Of_Center", &CKvPRJParser::GetLongitudeOfCenter},
                                        {"Latitude_Of_Center", &CKvPRJParser::GetLatitudeOfCenter}};
const SWriteParameter kWriteSkewOrthomorphic[] = {{"False_Easting", &CKvPRJParser::GetFalseEasting},
                                                  {"False_Northing", &CKvPRJParser::GetFalseNorthing},
                                                  {"Scale_Factor", &CKvPRJParser::GetScaleFactor},
                                                  {"Azimuth", &CKvPRJParser::GetAzimuth},
                                                  {"Longitude_Of_Center", &CKvPRJParser::GetLongitudeOfCenter},
                                                  {"Latitude_Of_Center", &CKvPRJParser::GetLatitudeOfCenter},
                                                  {"XY_Plane_Rotation", &CKvPRJParser::GetXYPlaneRotation}};
const SWriteParameter kWriteRotated[] = {{"Longitude_Of_South_Pole", &CKvPRJParser::GetLongitudeOfSouthPole},
                                         {"Latitude_Of_South_Pole", &CKvPRJParser::GetLatitudeOfSouthPole},
                                         {"Angle_Of_Rotation", &CKvPRJParser::GetAngleOfRotation}};
const SWriteParameter kWriteOneParallel[] = {{"False_Easting", &CKvPRJParser::GetFalseEasting},
                                             {"False_Northing", &CKvPRJParser::GetFalseNorthing},
                                             {"Central_Meridian", &CKvPRJParser::GetCentralMeridian},
                                             {"Standard_Parallel_1", &CKvPRJParser::GetStandardParallel1}};
const SWriteParameter kWriteMercator1SP[] = {{"False_Easting", &CKvPRJParser::GetFalseEasting},
                                             {"False_Northing", &CKvPRJParser::GetFalseNorthing},
                                             {"Central_Meridian", &CKvPRJParser::GetCentralMeridian},
                                             {"Scale_Factor", &CKvPRJParser::GetScaleFactor}};
const SWriteParameter kWriteKrovak[] = {{"False_Easting", &CKvPRJParser::GetFalseEasting},
                                        {"False_Northing", &CKvPRJParser::GetFalseNorthing},
                                        {"Pseudo_Standard_Parallel_1", &CKvPRJParser::GetPseudoParallel},
                                        {"Scale_Factor", &CKvPRJParser::GetScaleFactor},
                                        {"Azimuth", &CKvPRJParser::GetAzimuth},
                                        {"Longitude_Of_Center", &CKvPRJParser::GetLongitudeOfCenter},
                                        {"Latitude_Of_Center", &CKvPRJParser::GetLatitudeOfCenter},
                                        {"X_Scale", &CKvPRJParser::GetXScale},
                                        {"Y_Scale", &CKvPRJParser::GetYScale},
                                        {"XY_Plane_Rotation", &CKvPRJParser::GetXYPlaneRotation}};
// ESRI's form: the latitude of origin as Standard_Parallel_1, and the auxiliary
// sphere of the semi-major axis.
const SWriteParameter kWritePseudoMercator[] = {{"False_Easting", &CKvPRJParser::GetFalseEasting},
                                                {"False_Northing", &CKvPRJParser::GetFalseNorthing},
                                                {"Central_Meridian", &CKvPRJParser::GetCentralMeridian},
                                                {"Standard_Parallel_1", &CKvPRJParser::GetLatitudeOfOrigin},
                                                {"Auxiliary_Sphere_Type", &CKvPRJParser::GetAuxiliarySphereType}};
const SWriteParameter kWriteAzimuthal[] = {{"False_Easting", &CKvPRJParser::GetFalseEasting},
                                           {"False_Northing", &CKvPRJParser::GetFalseNorthing},
                                           {"Central_Meridian", &CKvPRJParser::GetCentralMeridian},
                                           {"Latitude_Of_Origin", &CKvPRJParser::GetLatitudeOfOrigin}};

struct SWriteList
{
    const SWriteParameter* first;
    int count;
    bool writable;
};

template <size_t N> SWriteList Write(const SWriteParameter (&list)[N])
{
    return {list, static_cast<int>(N), true};
}

SWriteList WriteList(CKvMapProjData::EProjectionType type)
{
    switch (type) {
    case CKvMapProjData::eTransverseMercator:
    case CKvMapProjData::eNonProjected:
    case CKvMapProjData::eLambert1SP:
    case CKvMapProjData::eStereographic:
    case CKvMapProjData::eStereographicSnyder:
    case CKvMapProjData::ePolarStereographic: return Write(kWriteTransverseMercator);
    case CKvMapProjData::eLambert2SP:
    case CKvMapProjData::eAlbersEqualArea:
    case CKvMapProjData::eEquidistantConic: return Write(kWriteConic);
    case CKvMapProjData::eNewZealandMapGrid: return Write(kWriteNewZealand);
    case CKvMapProjData::eHotineObliqueMercator:
    case CKvMapProjData::eObliqueMercator: return Write(kWriteHotine);
    case CKvMapProjData::eRectifiedSkewOrthomorphic: return Write(kWriteSkewOrthomorphic);
    case CKvMapProjData::eRotatedLongitudeLatitude: return Write(kWriteRotated);
    case CKvMapProjData::eMercator2SP:
    case CKvMapProjData::eStereographicNorthPole:
    case CKvMapProjData::eStereographicSouthPole: return Write(kWriteOneParallel);
    case CKvMapProjData::eMercator1SP: return Write(kWriteMercator1SP);
    case CKvMapProjData::eGeographical: return {nullptr, 0, true};
    case CKvMapProjData::eKrovak: return Write(kWriteKrovak);
    case CKvMapProjData::eLambertAzimuthalEqualArea:
    case CKvMapProjData::eCassiniSoldner: return Write(kWriteAzimuthal);
    case CKvMapProjData::ePseudoMercator: return Write(kWritePseudoMercator);
    default: return {nullptr, 0, false};
    }
}

} // namespace

CKvMapProjData* CKvPRJParser::_CreateProjData() const
{
    const CKvMapProjData::STypeInfo* info = CKvMapProjData::GetTypeInfo(m_type);
    if (info == nullptr)
        return nullptr;
    double values[CKvMapProjData::MaxParameters] = {};
    for (int i = 0; i < info->noOfParameters; ++i) {
        const Getter get = GetterFor(info->parameters[i].wktSetter);
        values[i] = get != nullptr ? (this->*get)() : info->parameters[i].wktSetter == nullptr ? m_methodValues[i] : Undefined;
    }
    return CKvMapProjData::CreateProjection(m_type, m_projCSName.GetStdString(), m_datum.GetStdString(),
                                            m_ellipsoidName.GetStdString(), values);
}

void CKvPRJParser::ConvertToDegreesAndMetres()
{
    if (m_angularUnit == Undefined || m_projUnit == Undefined)
        return;
    const double k = m_angularUnit / kDegree;
    const double u = m_projUnit;
    const double pm = m_primeMeridian == Undefined ? 0.0 : m_primeMeridian;
    const auto convert = [](double& value, double factor, double offset) {
        if (value != Undefined)
            value = value * factor + offset;
    };
    for (double* length : {&m_falseEasting, &m_falseNorthing})
        convert(*length, u, 0.0);
    for (double* longitude : {&m_centralMeridian, &m_longitudeOfCenter})
        convert(*longitude, k, pm);
    // The rotated pole and its rotation are taken as written, in degrees.
    for (double* angle : {&m_standardParallel1, &m_standardParallel2, &m_latitudeOfOrigin, &m_latitudeOfCenter,
                          &m_azimuth, &m_xyPlaneRotation, &m_pseudoParallel})
        convert(*angle, k, 0.0);
    if (CKvMapProjData::IsDescribedMethod(m_type)) {
        const CKvMapProjData::STypeInfo* info = CKvMapProjData::GetTypeInfo(m_type);
        double values[CKvMapProjData::MaxParameters];
        _methodValuesInDegreesAndMetres(values);
        for (int i = 0; i < info->noOfParameters; ++i)
            if (IsSet(m_methodValues[i]))
                m_methodValues[i] = values[i];
    }
    SetAngularUnit("Degree", kDegree);
    SetProjUnit("Meter", 1.0);
    SetPrimeMeridian("Greenwich", 0.0);
}

CString CKvPRJParser::GetProjectionTypeTitle() const
{
    const std::unique_ptr<CKvMapProjData> definition(_CreateProjData());
    return definition ? CString(definition->GetProjectionTypeTitle()) : CString("Non projection");
}

int CKvPRJParser::GetNoOfParameters() const
{
    const std::unique_ptr<CKvMapProjData> definition(_CreateProjData());
    return definition ? definition->GetNoOfParameters() : 0;
}

bool CKvPRJParser::GetParameter(int index, CString& name, double& value, CString& unitName, double& unitFactor) const
{
    const std::unique_ptr<CKvMapProjData> definition(_CreateProjData());
    if (!definition)
        return false;
    std::string label;
    double parameter = 0.0;
    CKvMapProjData::EParamType kind = CKvMapProjData::eDimensionless;
    if (!definition->GetParameter(index, label, parameter, kind))
        return false;
    name = label;
    value = parameter;
    switch (kind) {
    case CKvMapProjData::eLength:
        unitName = m_projUnitName;
        unitFactor = m_projUnit;
        break;
    case CKvMapProjData::eAngle:
        unitName = m_angularUnitName;
        unitFactor = m_angularUnit;
        break;
    default:
        unitName.Empty();
        unitFactor = 1.0;
        break;
    }
    return true;
}

bool CKvPRJParser::Format(CString& out) const
{
    out.Format("%s[\"%s\",", "PROJCS", m_projCSName.GetString());
    out.AppendFormat("%s[\"%s\",", "GEOGCS", m_geoCSName.GetString());
    out.AppendFormat("%s[\"%s\",", "DATUM", m_datum.GetString());
    out.AppendFormat("%s[\"%s\",%.16g,%.16g]],", "SPHEROID", m_ellipsoidName.GetString(), m_semiMajorAxis,
                     m_inverseFlattening);
    out.AppendFormat("%s[\"%s\",%.16g],", "PRIMEM", m_primeMeridianName.GetString(), m_primeMeridian);
    out.AppendFormat("%s[\"%s\",%.16g]],", "UNIT", m_angularUnitName.GetString(), m_angularUnit);
    out.AppendFormat("%s[\"%s\"],", "PROJECTION", m_typeName.GetString());
    if (CKvMapProjData::IsDescribedMethod(m_type)) {
        // ESRI's names; a parameter the text did not give is written with its
        // fallback (degrees and metres, as the record is after conversion).
        const CKvMapProjData::STypeInfo* info = CKvMapProjData::GetTypeInfo(m_type);
        for (int i = 0; i < info->noOfParameters; ++i) {
            const CKvMapProjData::SParameter& parameter = info->parameters[i];
            out.AppendFormat("%s[\"%s\",%.16g],", "PARAMETER", parameter.wktNames[0],
                             IsSet(m_methodValues[i]) ? m_methodValues[i] : parameter.fallback);
        }
        out.AppendFormat("%s[\"%s\",%.16g]]", "UNIT", m_projUnitName.GetString(), m_projUnit);
        return true;
    }
    const SWriteList list = WriteList(m_type);
    if (!list.writable)
        return false;
    for (int i = 0; i < list.count; ++i)
        out.AppendFormat("%s[\"%s\",%.16g],", "PARAMETER", list.first[i].name, (this->*list.first[i].get)());
    out.AppendFormat("%s[\"%s\",%.16g]]", "UNIT", m_projUnitName.GetString(), m_projUnit);
    return true;
}

bool CKvPRJParser::Format(char* buffer, int size) const
{
    CString text;
    Format(text);
    if (buffer == nullptr || text.GetLength() >= size)
        return false;
    std::memcpy(buffer, text.GetString(), static_cast<size_t>(text.GetLength()) + 1);
    return true;
}

void CKvPRJParser::FormatAsReadableWKT(const CString& text, CString& out)
{
    std::string result;
    // The bracket level of result, kept as it grows (the walk of
    // _GetBracketLevel, which stops at the first negative level).
    int level = 0;
    bool stopped = false;
    auto append = [&](const std::string& piece) {
        result += piece;
        for (const char c : piece) {
            if (stopped)
                break;
            if (c == '[')
                ++level;
            else if (c == ']' && --level < 0)
                stopped = true;
        }
    };
    const std::string& input = text.GetStdString();
    int pos = 0;
    CString token = text.Tokenize("[", pos);
    append(token.GetStdString() + "[");
    while (!token.IsEmpty()) {
        token = text.Tokenize("[", pos);
        const std::string& piece = token.GetStdString();
        if (piece.size() <= input.size() && input.compare(input.size() - piece.size(), piece.size(), piece) == 0) {
            append(piece); // the tail (or a piece that reads the same)
            continue;
        }
        const size_t comma = piece.rfind(',');
        const size_t split = comma == std::string::npos ? 0 : comma + 1;
        append(piece.substr(0, split)); // closes the nodes that end before the comma
        std::string line = "\r\n";
        line.append(4 * static_cast<size_t>(std::clamp(level, 0, kMaxIndentLevel)), ' ');
        line += piece.substr(split) + "[";
        append(line);
    }
    out = CString(result);
}
