#include "catalogue/KvMapProjData.h"

#include "catalogue/KvAlbersEqualAreaProjection.h"
#include "catalogue/KvCartSetup.h"
#include "catalogue/KvCassiniSoldnerProjection.h"
#include "catalogue/KvEquidistantConicProjection.h"
#include "catalogue/KvGeographicalProjection.h"
#include "catalogue/KvHotineObliqueMercatorProjection.h"
#include "catalogue/KvKrovakProjection.h"
#include "catalogue/KvLambert1SPProjection.h"
#include "catalogue/KvLambert2SPProjection.h"
#include "catalogue/KvLambertAzimuthalEqualAreaProjection.h"
#include "catalogue/KvMercator1SPProjection.h"
#include "catalogue/KvMercator2SPProjection.h"
#include "catalogue/KvNewZealandMapGridProjection.h"
#include "catalogue/KvObliqueMercatorProjection.h"
#include "catalogue/KvPolarStereographicProjection.h"
#include "catalogue/KvPseudoMercatorProjection.h"
#include "catalogue/KvRectifiedSkewOrthomorphicProjection.h"
#include "catalogue/KvRotatedLongitudeLatitudeProjection.h"
#include "catalogue/KvStereographicNorthPoleProjection.h"
#include "catalogue/KvStereographicProjection.h"
#include "catalogue/KvStereographicSnyderProjection.h"
#include "catalogue/KvStereographicSouthPoleProjection.h"
#include "catalogue/KvTransverseMercatorProjection.h"
#include "catalogue/KvMethodProjection.h"
#include "paramfile/Gxr.h"
#include "projections/KvAzimuthalEquidistant.h"
#include "projections/KvBonne.h"
#include "projections/KvBonneSouthOrientated.h"
#include "projections/KvColombiaUrban.h"
#include "projections/KvCylindricalEqualArea.h"
#include "projections/KvEckertIV.h"
#include "projections/KvEqualEarth.h"
#include "projections/KvEquidistantCylindrical.h"
#include "projections/KvEquidistantCylindricalEllipsoidal.h"
#include "projections/KvGuam.h"
#include "projections/KvHyperbolicCassini.h"
#include "projections/KvKrovakModified.h"
#include "projections/KvKrovakModifiedNorth.h"
#include "projections/KvLaborde.h"
#include "projections/KvLambert2SPBelgium.h"
#include "projections/KvLambertNearConformal.h"
#include "projections/KvLambertWestOrientated.h"
#include "projections/KvMillerCylindrical.h"
#include "projections/KvModifiedAzimuthalEquidistant.h"
#include "projections/KvMollweide.h"
#include "projections/KvNaturalEarth.h"
#include "projections/KvPolarStereographicC.h"
#include "projections/KvPolyconic.h"
#include "projections/KvRobinson.h"
#include "projections/KvSinusoidal.h"
#include "projections/KvTransverseMercatorZoned.h"
#include "projections/KvTunisiaMiningGrid.h"
#include "projections/KvVanDerGrinten.h"
#include "projections/KvWinkelTripel.h"
#include "wkt/KvPRJParser.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

// The methods described wholly by their descriptor, in catalogue order: each
// engine class holds its descriptor, and its definition is the common one.
struct SMethodType
{
    const CKvMapProjData::STypeInfo* info;
    CKvMapProjData* (*make)(const std::string& name, const std::string& branch, const std::string& ellipsoidID,
                            const double* parameters);
    CKvProjection* (*engine)(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid);
};

template <class TEngine>
CKvMapProjData* MakeMethod(const std::string& name, const std::string& branch, const std::string& ellipsoidID,
                           const double* parameters)
{
    return new CKvMethodProjection<TEngine>(name, branch, ellipsoidID, parameters);
}

template <class TEngine>
CKvProjection* MakeEngine(const std::string& name, const double* parameters, const CKvEllipsoid& ellipsoid)
{
    return new TEngine(name, parameters, ellipsoid);
}

// One row per method: its descriptor, its definition and its engine.
#define KV_METHOD(TEngine) {&TEngine::TypeInfo, &MakeMethod<TEngine>, &MakeEngine<TEngine>}

const SMethodType kMethodTypes[] = {
    KV_METHOD(CKvMillerCylindrical),
    KV_METHOD(CKvEqualEarth),
    KV_METHOD(CKvRobinson),
    KV_METHOD(CKvMollweide),
    KV_METHOD(CKvSinusoidal),
    KV_METHOD(CKvEckertIV),
    KV_METHOD(CKvWinkelTripel),
    KV_METHOD(CKvVanDerGrinten),
    KV_METHOD(CKvNaturalEarth),
    KV_METHOD(CKvCylindricalEqualArea),
    KV_METHOD(CKvEquidistantCylindrical),
    KV_METHOD(CKvPolyconic),
    KV_METHOD(CKvBonne),
    KV_METHOD(CKvBonneSouthOrientated),
    KV_METHOD(CKvAzimuthalEquidistant),
    KV_METHOD(CKvModifiedAzimuthalEquidistant),
    KV_METHOD(CKvGuam),
    KV_METHOD(CKvLaborde),
    KV_METHOD(CKvLambertWestOrientated),
    KV_METHOD(CKvLambert2SPBelgium),
    KV_METHOD(CKvLambertNearConformal),
    KV_METHOD(CKvPolarStereographicC),
    KV_METHOD(CKvTunisiaMiningGrid),
    KV_METHOD(CKvKrovakModified),
    KV_METHOD(CKvKrovakModifiedNorth),
    KV_METHOD(CKvColombiaUrban),
    KV_METHOD(CKvTransverseMercatorZoned),
    KV_METHOD(CKvHyperbolicCassini),
    KV_METHOD(CKvEquidistantCylindricalEllipsoidal),
};

const SMethodType* FindMethod(CKvMapProjData::EProjectionType type)
{
    for (const SMethodType& method : kMethodTypes)
        if (method.info->type == type)
            return &method;
    return nullptr;
}

// Angles that may also be written as degrees, minutes and seconds ("<keyword>_dms").
const char* const kDmsKeywords[] = {"Centre",           "Origin_Longitude", "Origin_Latitude",
                                    "Central_Meridian", "Parallel_1",       "Parallel_2",
                                    "Center_Longitude", "Center_Latitude",  "Pseudo_Parallel"};

bool IsDmsKeyword(const char* keyword)
{
    for (const char* k : kDmsKeywords)
        if (std::strcmp(k, keyword) == 0)
            return true;
    return false;
}

// An EPSG code: a whole number that an int holds, above 0.
bool IsCode(double value)
{
    return value >= 1.0 && value <= 2147483647.0 && value == std::floor(value);
}

// One US survey foot is 1200/3937 metres exactly.
constexpr double kUsSurveyFoot = 12.0 / 39.37;

} // namespace

CKvMapProjData::CKvMapProjData(const STypeInfo& info, const std::string& name, const std::string& branch,
                               const std::string& ellipsoidID, const double* parameters)
    : m_pInfo(&info), m_name(name), m_branchName(branch), m_ellipsoidID(ellipsoidID), m_bCanDelete(true),
      m_bCanEdit(true)
{
    for (int i = 0; i < MaxParameters; ++i)
        m_adParams[i] = (parameters != nullptr && i < info.noOfParameters) ? parameters[i] : 0.0;
}

CKvMapProjData::~CKvMapProjData() = default;

void CKvMapProjData::CopyFieldsFrom(const CKvMapProjData& other)
{
    SetName(other.GetName());
    SetBranchName(other.GetBranchName());
    SetEllipsoidID(other.GetEllipsoidID());
    m_epsgCode = other.m_epsgCode;
    m_shiftCount = other.m_shiftCount;
    std::copy(other.m_shift, other.m_shift + CKvDatumShift::NoOfParameters, m_shift);
    m_shiftCode = other.m_shiftCode;
    m_shiftAccuracy = other.m_shiftAccuracy;
    double values[MaxParameters] = {};
    const int n = other.GetNoOfParameters() < GetNoOfParameters() ? other.GetNoOfParameters() : GetNoOfParameters();
    for (int i = 0; i < n; ++i)
        values[i] = other.m_adParams[i];
    SetParameters(values);
}

void CKvMapProjData::SetPermissions(bool canDelete, bool canEdit)
{
    m_bCanDelete = canDelete;
    m_bCanEdit = canEdit;
}

bool CKvMapProjData::IsSectionID(const std::string& id) const
{
    return id == m_pInfo->sectionID || (m_pInfo->sectionAlias != nullptr && id == m_pInfo->sectionAlias);
}

std::vector<CKvUserCatalogue::SKeywordRule> CKvMapProjData::GetKeywordRules() const
{
    std::vector<CKvUserCatalogue::SKeywordRule> rules = {
        {"Projection_Name", true, 1, 1}, {"Branch_Name", true, 1, 1}, {"Ellipsoid", true, 1, 1}};
    for (int i = 0; i < GetNoOfParameters(); ++i) {
        const std::string keyword = m_pInfo->parameters[i].keyword;
        rules.push_back({keyword, false, 1, 1});
        if (IsDmsKeyword(keyword.c_str()))
            rules.push_back({keyword + "_dms", false, 1, 3});
        if (keyword == "Scale")
            rules.push_back({"Scale_Reduction", false, 1, 1});
        if (keyword == "Feast" || keyword == "Fnorth")
            rules.push_back({keyword + "_ft_us", false, 1, 1});
    }
    rules.push_back({"EPSG_Code", false, 1, 1});
    rules.push_back({"TOWGS84", false, 3, CKvDatumShift::NoOfParameters});
    rules.push_back({"TOWGS84_Code", false, 1, 1});
    rules.push_back({"TOWGS84_Accuracy", false, 1, 1});
    return rules;
}

bool CKvMapProjData::CheckSection(const GxrSection& section, std::string& problem) const
{
    if (!CKvUserCatalogue::CheckSection(section, GetKeywordRules(), problem))
        return false;
    bool shifted = false;
    for (const GxrKeyword& keyword : section.keywords)
        shifted = shifted || keyword.name == "TOWGS84";
    for (const GxrKeyword& keyword : section.keywords) {
        const std::string where = std::to_string(keyword.line) + ": keyword '" + keyword.name + "' ";
        const GxrParam& first = keyword.params.front();
        if ((keyword.name == "EPSG_Code" || keyword.name == "TOWGS84_Code") && !IsCode(first.number)) {
            problem = where + "takes a whole number from 1 to 2147483647, not " + first.text;
            return false;
        }
        if (keyword.name == "TOWGS84") {
            const size_t n = keyword.params.size();
            if (n != 3 && n != CKvDatumShift::NoOfParameters) {
                problem = where + "takes 3 values (dx dy dz) or 7 (dx dy dz rx ry rz ds), not " + std::to_string(n);
                return false;
            }
            for (const GxrParam& value : keyword.params)
                if (!std::isfinite(value.number)) {
                    problem = where + "takes finite numbers, not " + value.text;
                    return false;
                }
        }
        if (keyword.name == "TOWGS84_Accuracy" && !(first.number >= 0.0 && std::isfinite(first.number))) {
            problem = where + "takes a length in metres, 0 or more, not " + first.text;
            return false;
        }
        // A code or an accuracy without the shift it belongs to would be lost
        // when the definition is written back.
        if ((keyword.name == "TOWGS84_Code" || keyword.name == "TOWGS84_Accuracy") && !shifted) {
            problem = where + "describes the datum shift, and the section has no TOWGS84";
            return false;
        }
    }
    return true;
}

bool CKvMapProjData::GetParameter(int index, std::string& label, double& value, EParamType& kind) const
{
    if (index < 0 || index >= GetNoOfParameters())
        return false;
    label = m_pInfo->parameters[index].label;
    value = m_adParams[index];
    kind = m_pInfo->parameters[index].kind;
    return true;
}

void CKvMapProjData::SetParameters(const double* values)
{
    for (int i = 0; i < GetNoOfParameters(); ++i)
        m_adParams[i] = values[i];
}

double CKvMapProjData::_readParameter(GxrSection* section, const char* keyword) const
{
    double value = 0.0;
    const std::string plain(keyword);
    if (plain == "Scale") {
        // A scale reduction r stands for the scale (r - 1) / r, e.g. 2500 for 0.9996.
        double reduction = 0.0;
        if (gxrGetParam(section, "Scale_Reduction", &reduction, 1, 1))
            return (reduction - 1.0) / reduction;
    } else if (IsDmsKeyword(keyword)) {
        int degrees = 0, minutes = 0;
        double seconds = 0.0;
        if (gxrGetParamDMS(section, (plain + "_dms").c_str(), &degrees, &minutes, &seconds)) {
            // The sign comes from the degrees alone.
            const double sign = degrees < 0 ? -1.0 : 1.0;
            return degrees + sign * minutes / 60.0 + sign * seconds / 3600.0;
        }
    } else if (plain == "Feast" || plain == "Fnorth") {
        double feet = 0.0;
        if (gxrGetParam(section, (plain + "_ft_us").c_str(), &feet, 1, 1))
            return feet * kUsSurveyFoot;
    }
    gxrGetParam(section, keyword, &value, 1, 1);
    return value;
}

bool CKvMapProjData::ReadFromHandle(void* handle, bool custom)
{
    GxrSection* section = static_cast<GxrSection*>(handle);
    if (section == nullptr)
        return false;
    CString text;
    m_name = gxrGetParam(section, "Projection_Name", &text, 1, 1) ? text.GetStdString() : std::string();
    m_branchName = gxrGetParam(section, "Branch_Name", &text, 1, 1) ? text.GetStdString() : std::string();
    m_ellipsoidID = gxrGetParam(section, "Ellipsoid", &text, 1, 1) ? text.GetStdString() : std::string();
    double values[MaxParameters] = {};
    for (int i = 0; i < GetNoOfParameters(); ++i)
        values[i] = _readParameter(section, m_pInfo->parameters[i].keyword);
    SetParameters(values);
    m_bUsSurveyFeet = gxrKeywordByNameNum(section, "Feast_ft_us", 1) != nullptr &&
                      gxrKeywordByNameNum(section, "Fnorth_ft_us", 1) != nullptr;
    double code = 0.0;
    m_epsgCode = gxrGetParam(section, "EPSG_Code", &code, 1, 1) && IsCode(code) ? static_cast<int>(code) : 0;
    RemoveDatumShift();
    if (GxrKeyword* line = gxrKeywordByNameNum(section, "TOWGS84", 1)) {
        const int n = gxrGetNoParams(line);
        double values[CKvDatumShift::NoOfParameters] = {0, 0, 0, 0, 0, 0, 0};
        for (int i = 0; i < n && i < CKvDatumShift::NoOfParameters; ++i)
            values[i] = gxrGetDouble(gxrParamByNum(line, i + 1));
        double shiftCode = 0.0, accuracy = -1.0;
        gxrGetParam(section, "TOWGS84_Code", &shiftCode, 1, 1);
        gxrGetParam(section, "TOWGS84_Accuracy", &accuracy, 1, 1);
        SetDatumShift(values, n, IsCode(shiftCode) ? static_cast<int>(shiftCode) : 0, accuracy);
    }
    SetPermissions(custom, custom);
    return true;
}

bool CKvMapProjData::WriteToHandle(void* handle) const
{
    GxrSection* section = gxrAddSection(static_cast<GxrTarget*>(handle), m_pInfo->sectionID);
    if (section == nullptr)
        return false;
    bool ok = gxrPutParam(section, "Projection_Name", CString(m_name)) == GXR_OK;
    ok = gxrPutParam(section, "Branch_Name", CString(m_branchName)) == GXR_OK && ok;
    ok = gxrPutParam(section, "Ellipsoid", CString(m_ellipsoidID)) == GXR_OK && ok;
    for (int i = 0; i < GetNoOfParameters(); ++i)
        ok = gxrPutParam(section, m_pInfo->parameters[i].keyword, m_adParams[i]) == GXR_OK && ok;
    if (m_epsgCode > 0)
        ok = gxrPutParam(section, "EPSG_Code", static_cast<double>(m_epsgCode)) == GXR_OK && ok;
    if (m_shiftCount != 0) {
        GxrKeyword* line = gxrAddKeyword(section, "TOWGS84");
        ok = line != nullptr && ok;
        for (int i = 0; line != nullptr && i < m_shiftCount; ++i)
            ok = gxrAppendParam(line, m_shift[i]) == GXR_OK && ok;
        if (m_shiftCode > 0)
            ok = gxrPutParam(section, "TOWGS84_Code", static_cast<double>(m_shiftCode)) == GXR_OK && ok;
        if (m_shiftAccuracy >= 0.0)
            ok = gxrPutParam(section, "TOWGS84_Accuracy", m_shiftAccuracy) == GXR_OK && ok;
    }
    return gxrEndSection(section) == GXR_OK && ok;
}

bool CKvMapProjData::GetDatumShift(CKvDatumShift& shift) const
{
    if (m_shiftCount == 0) {
        shift.Reset();
        return false;
    }
    shift.SetParameters(m_shift);
    return true;
}

bool CKvMapProjData::SetDatumShift(const double* values, int count, int code, double accuracy)
{
    if (values == nullptr || (count != 3 && count != CKvDatumShift::NoOfParameters))
        return false;
    for (int i = 0; i < count; ++i)
        if (!std::isfinite(values[i]))
            return false;
    std::fill(m_shift, m_shift + CKvDatumShift::NoOfParameters, 0.0);
    std::copy(values, values + count, m_shift);
    m_shiftCount = count;
    m_shiftCode = code > 0 ? code : 0;
    m_shiftAccuracy = accuracy >= 0.0 && std::isfinite(accuracy) ? accuracy : -1.0;
    return true;
}

void CKvMapProjData::RemoveDatumShift()
{
    m_shiftCount = 0;
    std::fill(m_shift, m_shift + CKvDatumShift::NoOfParameters, 0.0);
    m_shiftCode = 0;
    m_shiftAccuracy = -1.0;
}

void CKvMapProjData::TransferWith(CKvPRJParser& parser, const CKvEllipsoid& ellipsoid, bool found,
                                  bool writeUnknownEllipsoid) const
{
    parser.SetProjCSname(CString(GetName()));
    parser.SetGeoCSname("Unused");
    parser.SetDatum(CString(GetBranchName())); // the branch deliberately serves as the datum name
    parser.SetPrimeMeridian("Greenwich", 0.0);
    parser.SetAngularUnit("Degree", 0.017453292519943295);
    if (found || writeUnknownEllipsoid)
        parser.SetEllipsoid(CString(ellipsoid.GetName()), ellipsoid.GetMajor(), ellipsoid.GetInvFlatness());
    if (found) {
        parser.SetProjectionType(GetProjectionType());
        parser.SetProjectionTypeName(m_pInfo->wktName);
    } else {
        parser.SetProjectionType(eNonProjected);
        parser.SetProjectionTypeName("Non_Projected");
    }
    const int count = GetNoOfParameters();
    for (int i = 0; i < count; ++i) {
        const SParameter& parameter = m_pInfo->parameters[i];
        if (parameter.wktSetter != nullptr)
            (parser.*parameter.wktSetter)(m_adParams[i]);
        else
            parser.SetMethodParameter(i, m_adParams[i]);
    }
    parser.SetProjUnit("Meter", 1.0);
}

void CKvMapProjData::TransferParameters(CKvPRJParser& parser) const
{
    const CKvEllipsoid* ellipsoid = CKvCartSetup::Instance()->GetEllipsoidList().GetEllipsoid(GetEllipsoidID());
    TransferWith(parser, ellipsoid != nullptr ? *ellipsoid : CKvEllipsoid(), ellipsoid != nullptr, false);
}

bool CKvMapProjData::IsEquivalent(int flags, EProjectionType type)
{
    switch (type) {
    case eRotatedLongitudeLatitude:
    case eGeographical: return (flags & 2) != 0;
    case eNonProjected:
    case eNoProjection: return false;
    default: return (flags & 1) != 0;
    }
}

bool CKvMapProjData::gxrGetParamDMS(GxrSection* handle, const char* keyword, int* degrees, int* minutes,
                                    double* seconds)
{
    *degrees = 0;
    *minutes = 0;
    *seconds = 0.0;
    GxrKeyword* line = gxrKeywordByNameNum(handle, keyword, 1);
    if (line == nullptr)
        return false;
    const int n = gxrGetNoParams(line);
    *degrees = gxrGetInt(gxrParamByNum(line, 1));
    if (n > 1)
        *minutes = gxrGetInt(gxrParamByNum(line, 2));
    if (n > 2)
        *seconds = gxrGetDouble(gxrParamByNum(line, 3));
    return true;
}

CKvMapProjData* CKvMapProjData::CreateProjection(EProjectionType type, const std::string& name,
                                                 const std::string& branch, const std::string& ellipsoidID,
                                                 const double* parameters)
{
    switch (type) {
    case eTransverseMercator: return new CKvTransverseMercatorProjection(name, branch, ellipsoidID, parameters);
    case eLambert2SP: return new CKvLambert2SPProjection(name, branch, ellipsoidID, parameters);
    case eLambert1SP: return new CKvLambert1SPProjection(name, branch, ellipsoidID, parameters);
    case eStereographic: return new CKvStereographicProjection(name, branch, ellipsoidID, parameters);
    case eNewZealandMapGrid: return new CKvNewZealandMapGridProjection(name, branch, ellipsoidID, parameters);
    case eHotineObliqueMercator: return new CKvHotineObliqueMercatorProjection(name, branch, ellipsoidID, parameters);
    case eObliqueMercator: return new CKvObliqueMercatorProjection(name, branch, ellipsoidID, parameters);
    case eRectifiedSkewOrthomorphic:
        return new CKvRectifiedSkewOrthomorphicProjection(name, branch, ellipsoidID, parameters);
    case eRotatedLongitudeLatitude:
        return new CKvRotatedLongitudeLatitudeProjection(name, branch, ellipsoidID, parameters);
    case eMercator2SP: return new CKvMercator2SPProjection(name, branch, ellipsoidID, parameters);
    case eMercator1SP: return new CKvMercator1SPProjection(name, branch, ellipsoidID, parameters);
    case eStereographicNorthPole: return new CKvStereographicNorthPoleProjection(name, branch, ellipsoidID, parameters);
    case eStereographicSouthPole: return new CKvStereographicSouthPoleProjection(name, branch, ellipsoidID, parameters);
    case eGeographical: return new CKvGeographicalProjection(name, branch, ellipsoidID);
    case eKrovak: return new CKvKrovakProjection(name, branch, ellipsoidID, parameters);
    case eAlbersEqualArea: return new CKvAlbersEqualAreaProjection(name, branch, ellipsoidID, parameters);
    case eLambertAzimuthalEqualArea:
        return new CKvLambertAzimuthalEqualAreaProjection(name, branch, ellipsoidID, parameters);
    case eCassiniSoldner: return new CKvCassiniSoldnerProjection(name, branch, ellipsoidID, parameters);
    case eEquidistantConic: return new CKvEquidistantConicProjection(name, branch, ellipsoidID, parameters);
    case ePolarStereographic: return new CKvPolarStereographicProjection(name, branch, ellipsoidID, parameters);
    case eStereographicSnyder: return new CKvStereographicSnyderProjection(name, branch, ellipsoidID, parameters);
    case ePseudoMercator: return new CKvPseudoMercatorProjection(name, branch, ellipsoidID, parameters);
    default: break;
    }
    const SMethodType* method = FindMethod(type);
    return method != nullptr ? method->make(name, branch, ellipsoidID, parameters) : nullptr;
}

const CKvMapProjData::STypeInfo* CKvMapProjData::GetTypeInfo(EProjectionType type)
{
    static const STypeInfo* const infos[] = {
        &CKvTransverseMercatorProjection::TypeInfo,
        &CKvLambert2SPProjection::TypeInfo,
        &CKvLambert1SPProjection::TypeInfo,
        &CKvStereographicProjection::TypeInfo,
        &CKvNewZealandMapGridProjection::TypeInfo,
        &CKvHotineObliqueMercatorProjection::TypeInfo,
        &CKvObliqueMercatorProjection::TypeInfo,
        &CKvRectifiedSkewOrthomorphicProjection::TypeInfo,
        &CKvRotatedLongitudeLatitudeProjection::TypeInfo,
        &CKvMercator2SPProjection::TypeInfo,
        &CKvMercator1SPProjection::TypeInfo,
        &CKvStereographicNorthPoleProjection::TypeInfo,
        &CKvStereographicSouthPoleProjection::TypeInfo,
        &CKvGeographicalProjection::TypeInfo,
        &CKvKrovakProjection::TypeInfo,
        &CKvAlbersEqualAreaProjection::TypeInfo,
        &CKvLambertAzimuthalEqualAreaProjection::TypeInfo,
        &CKvCassiniSoldnerProjection::TypeInfo,
        &CKvEquidistantConicProjection::TypeInfo,
        &CKvPolarStereographicProjection::TypeInfo,
        &CKvStereographicSnyderProjection::TypeInfo,
        &CKvPseudoMercatorProjection::TypeInfo,
    };
    constexpr int established = static_cast<int>(sizeof infos / sizeof infos[0]);
    const int index = ProjectionType2Enum(type);
    if (index >= 0 && index < established)
        return infos[index];
    const SMethodType* method = FindMethod(type);
    return method != nullptr ? method->info : nullptr;
}

int CKvMapProjData::GetNoOfProjections()
{
    return 22 + static_cast<int>(sizeof kMethodTypes / sizeof kMethodTypes[0]);
}

CKvMapProjData::EProjectionType CKvMapProjData::Enum2ProjectionType(int index)
{
    if (index >= 0 && index < 20)
        return static_cast<EProjectionType>(index + 1);
    if (index == 20)
        return eStereographicSnyder;
    if (index == 21)
        return ePseudoMercator;
    if (index >= 22 && index < GetNoOfProjections())
        return kMethodTypes[index - 22].info->type;
    return eNoProjection;
}

int CKvMapProjData::ProjectionType2Enum(EProjectionType type)
{
    if (type >= eTransverseMercator && type <= ePolarStereographic)
        return static_cast<int>(type) - 1;
    if (type == eStereographicSnyder)
        return 20;
    if (type == ePseudoMercator)
        return 21;
    for (int i = 0; i < GetNoOfProjections() - 22; ++i)
        if (kMethodTypes[i].info->type == type)
            return 22 + i;
    return -1;
}

bool CKvMapProjData::IsDescribedMethod(EProjectionType type)
{
    return FindMethod(type) != nullptr;
}

CKvProjection* CKvMapProjData::CreateMethodEngine(EProjectionType type, const std::string& name,
                                                 const double* parameters, const CKvEllipsoid& ellipsoid)
{
    const SMethodType* method = FindMethod(type);
    return method != nullptr ? method->engine(name, parameters, ellipsoid) : nullptr;
}

CKvMapProjData* CKvMapProjData::CreateDefaultParameterProjection(EProjectionType type)
{
    const STypeInfo* info = GetTypeInfo(type);
    if (info == nullptr)
        return nullptr;
    return CreateProjection(type, info->defaultName, std::string(), info->defaultEllipsoidID, info->defaults);
}

void CKvMapProjData::ComputeFourierCoefficients(EProjectionType type, bool forward, double x, double* c)
{
    const double x2 = x * x, x3 = x2 * x, x4 = x3 * x;
    switch (type) {
    case eTransverseMercator:
        // Krüger's series in the third flattening n (Karney 2011, eqs. 35 and 36).
        if (forward) {
            c[0] = x / 2.0 - 2.0 * x2 / 3.0 + 5.0 * x3 / 16.0 + 41.0 * x4 / 180.0;
            c[1] = 13.0 * x2 / 48.0 - 3.0 * x3 / 5.0 + 557.0 * x4 / 1440.0;
            c[2] = 61.0 * x3 / 240.0 - 103.0 * x4 / 140.0;
            c[3] = 49561.0 * x4 / 161280.0;
        } else {
            c[0] = x / 2.0 - 2.0 * x2 / 3.0 + 37.0 * x3 / 96.0 - x4 / 360.0;
            c[1] = x2 / 48.0 + x3 / 15.0 - 437.0 * x4 / 1440.0;
            c[2] = 17.0 * x3 / 480.0 - 37.0 * x4 / 840.0;
            c[3] = 4397.0 * x4 / 161280.0;
        }
        break;
    case eStereographic:
    case eHotineObliqueMercator:
    case eObliqueMercator:
    case eRectifiedSkewOrthomorphic:
    case eMercator2SP:
    case eMercator1SP:
    case eStereographicNorthPole:
    case eStereographicSouthPole:
    case eStereographicSnyder:
        // Geodetic from conformal latitude, in e^2 (Snyder, eq. 3-5).
        if (!forward) {
            c[0] = x / 2.0 + 5.0 * x2 / 24.0 + x3 / 12.0 + 13.0 * x4 / 360.0;
            c[1] = 7.0 * x2 / 48.0 + 29.0 * x3 / 240.0 + 811.0 * x4 / 11520.0;
            c[2] = 7.0 * x3 / 120.0 + 81.0 * x4 / 1120.0;
            c[3] = 4279.0 * x4 / 161280.0;
        }
        break;
    case eAlbersEqualArea:
    case eLambertAzimuthalEqualArea:
        // Geodetic from authalic latitude, in e^2 (Snyder, eq. 3-18).
        if (!forward) {
            c[0] = x / 3.0 + 31.0 * x2 / 180.0 + 517.0 * x3 / 5040.0;
            c[1] = 23.0 * x2 / 360.0 + 251.0 * x3 / 3780.0;
            c[2] = 761.0 * x3 / 45360.0;
        }
        break;
    case eCassiniSoldner:
    case eEquidistantConic:
        if (forward) {
            // Meridian distance M = a (c0 phi - c1 sin 2phi + c2 sin 4phi - c3 sin 6phi) (Snyder, eq. 3-21).
            c[0] = 1.0 - x / 4.0 - 3.0 * x2 / 64.0 - 5.0 * x3 / 256.0;
            c[1] = 3.0 * x / 8.0 + 3.0 * x2 / 32.0 + 45.0 * x3 / 1024.0;
            c[2] = 15.0 * x2 / 256.0 + 45.0 * x3 / 1024.0;
            c[3] = 35.0 * x3 / 3072.0;
        } else {
            // Footpoint latitude from the rectifying latitude (Snyder, eq. 3-26).
            const double s = std::sqrt(1.0 - x);
            const double e1 = (1.0 - s) / (1.0 + s);
            const double e2 = e1 * e1, e3 = e2 * e1, e4 = e3 * e1;
            c[0] = 3.0 * e1 / 2.0 - 27.0 * e3 / 32.0;
            c[1] = 21.0 * e2 / 16.0 - 55.0 * e4 / 32.0;
            c[2] = 151.0 * e3 / 96.0;
            c[3] = 1097.0 * e4 / 512.0;
        }
        break;
    default: break;
    }
}
