#include "wkt/KvOgcWktWriter.h"

#include "catalogue/KvEpsgRegistry.h"
#include "catalogue/KvFloatCompareRel.h"
#include "catalogue/KvMapProjData.h"
#include "coordsys/KvMapProjection.h"
#include "paramfile/String.h"
#include "projections/KvProjection.h"
#include "wkt/KvPRJParser.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <stdexcept>

namespace {

constexpr double kDegree = 0.017453292519943295;  // radians
constexpr double kUsSurveyFoot = 1200.0 / 3937.0; // metres

bool IsSet(double value)
{
    return value != CKvPRJParser::Undefined;
}

// The shortest decimal text that reads back as the same double, in positional
// notation for the sizes of coordinates and angles (500000, not 5e+05), and
// independent of the process locale.
std::string Number(double value)
{
    char buffer[64];
    const double magnitude = std::fabs(value);
    const std::chars_format format = magnitude == 0.0 || (magnitude >= 1e-6 && magnitude < 1e17)
                                         ? std::chars_format::fixed
                                         : std::chars_format::general;
    const std::to_chars_result r = std::to_chars(buffer, buffer + sizeof buffer, value == 0.0 ? 0.0 : value, format);
    return std::string(buffer, r.ptr);
}

// A length converted to another unit, without the noise of the conversion:
// 152400.3048006096 m are 500000 US survey feet, not 500000.0000000001. The
// text of 15 significant digits is taken when it is within two units in the
// last place of the converted value (the conversion's own error).
std::string Converted(double value)
{
    char buffer[64];
    const std::to_chars_result r = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, 15);
    double rounded = 0.0;
    std::from_chars(buffer, r.ptr, rounded);
    if (std::fabs(rounded - value) <= 2.0 * std::fabs(value) * std::numeric_limits<double>::epsilon())
        return Number(rounded);
    return Number(value);
}

// The names the library's own WKT reader finds nodes by: a name holding one of
// them, a quote, a bracket or a control character would not read back.
bool ReadableName(const std::string& name)
{
    for (const unsigned char c : name)
        if (c < 0x20 || c == 0x7f || c == '"' || c == '[' || c == ']')
            return false;
    for (const char* keyword : {"PROJCS", "GEOGCS", "COMPD_CS", "DATUM", "SPHEROID", "TOWGS84", "PRIMEM", "UNIT",
                                "PROJECTION", "PARAMETER", "AXIS", "AUTHORITY", "EXTENSION"})
        if (name.find(keyword) != std::string::npos)
            return false;
    return true;
}

// The geographic system and datum of the library's datum names (the branches
// of the shipped catalogue, which serve as its datum names) under the names
// GDAL gives the EPSG datums in WKT 1; PROJ recognises the datums by them.
struct SDatumName
{
    const char* library;
    const char* geogcs;
    const char* datum;
};

const SDatumName kDatumNames[] = {
    {"WGS 84", "WGS 84", "WGS_1984"},
    {"UTM Projections", "WGS 84", "WGS_1984"}, // the UTM and UPS zones, all on WGS 84
    {"NAD83", "NAD83", "North_American_Datum_1983"},
    {"NAD27", "NAD27", "North_American_Datum_1927"},
    {"OSGB 1936", "OSGB36", "Ordnance_Survey_of_Great_Britain_1936"},
    {"ETRS89", "ETRS89", "European_Terrestrial_Reference_System_1989"},
    {"RGF93", "RGF93 v1", "Reseau_Geodesique_Francais_1993_v1"},
    {"Amersfoort", "Amersfoort", "Amersfoort"},
    {"NZGD49", "NZGD49", "New_Zealand_Geodetic_Datum_1949"},
    {"NZGD2000", "NZGD2000", "New_Zealand_Geodetic_Datum_2000"},
    {"CH1903", "CH1903", "CH1903"},
    {"DHDN", "DHDN", "Deutsches_Hauptdreiecksnetz"},
    {"S-JTSK", "S-JTSK", "System_of_the_Unified_Trigonometrical_Cadastral_Network"},
    {"Kertau (RSO)", "Kertau (RSO)", "Kertau_RSO"},
    {"Jamaica 1969", "JAD69", "Jamaica_1969"},
    {"Pulkovo 1942", "Pulkovo 1942", "Pulkovo_1942"},
};

// OGC's unit names, by the unit's size; another unit keeps the record's name.
std::string AngularUnitName(const CString& name, double radians)
{
    if (CKvFloatCompareRel::Close(radians, kDegree, 1e-12))
        return "degree";
    if (CKvFloatCompareRel::Close(radians, kDegree * 0.9, 1e-12))
        return "grad";
    if (radians == 1.0)
        return "radian";
    return name.GetStdString();
}

std::string LinearUnitName(const CString& name, double metres)
{
    if (metres == 1.0)
        return "metre";
    if (metres == 0.3048)
        return "foot";
    if (CKvFloatCompareRel::Close(metres, kUsSurveyFoot, 1e-12))
        return "US survey foot";
    return name.GetStdString();
}

// Directions of map coordinates, numbered as CKvProjectionInfo::CAxis's types.
enum EDirection
{
    eEast = 0,
    eNorth = 1,
    eWest = 2,
    eSouth = 3
};

EDirection Opposite(EDirection d)
{
    return static_cast<EDirection>((d + 2) % 4);
}

bool Vertical(EDirection d)
{
    return d == eNorth || d == eSouth;
}

// An AXIS word as the library reads it: anything but the four words is east.
EDirection Word(const CString& word)
{
    static const char* const kWords[] = {"EAST", "NORTH", "WEST", "SOUTH"};
    for (int i = 0; i < 4; ++i)
        if (word.CompareNoCase(kWords[i]) == 0)
            return static_cast<EDirection>(i);
    return eEast;
}

const char* AxisNode(EDirection d)
{
    static const char* const kNodes[] = {"AXIS[\"Easting\",EAST]", "AXIS[\"Northing\",NORTH]", "AXIS[\"Westing\",WEST]",
                                         "AXIS[\"Southing\",SOUTH]"};
    return kNodes[d];
}

// One PARAMETER of the OGC form: its name and the record's value.
struct SParameter
{
    const char* name;
    double value;
    bool length; // written in the grid's unit
};

// The parameters of a method, ten at most.
class CParameterList
{
public:
    void Set(std::initializer_list<SParameter> items)
    {
        m_count = 0;
        for (const SParameter& p : items)
            Add(p);
    }
    void Add(const SParameter& p)
    {
        if (m_count < kMax)
            m_items[m_count++] = p;
    }
    struct SRange
    {
        const SParameter* first;
        const SParameter* last;
        const SParameter* begin() const { return first; }
        const SParameter* end() const { return last; }
    };
    SRange Items() const { return {m_items, m_items + m_count}; }

private:
    static constexpr size_t kMax = 10;
    SParameter m_items[kMax] = {};
    size_t m_count = 0;
};

// The top-level AUTHORITY["EPSG","n"] of a WKT text (the one that names the
// whole system, not its datum or units); 0 when there is none.
int TopLevelEpsgCode(const std::string& text)
{
    int depth = 0;
    bool quoted = false;
    int code = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '"') {
            quoted = !quoted;
        } else if (quoted) {
            continue;
        } else if (c == '[' || c == '(') {
            ++depth;
        } else if (c == ']' || c == ')') {
            --depth;
        } else if (depth == 1 && text.compare(i, 10, "AUTHORITY[") == 0) {
            const size_t open = text.find('"', i);
            if (open == std::string::npos || text.compare(open, 6, "\"EPSG\"") != 0)
                continue;
            size_t at = open + 6;
            while (at < text.size() && (text[at] == ',' || text[at] == ' ' || text[at] == '"'))
                ++at;
            int value = 0;
            const std::from_chars_result r = std::from_chars(text.data() + at, text.data() + text.size(), value);
            if (r.ec == std::errc() && value > 0)
                code = value;
        }
    }
    return code;
}

} // namespace

CKvOgcWktWriter::CKvOgcWktWriter(const CKvPRJParser& record) : m_record(record) {}

bool CKvOgcWktWriter::Write(std::string& out, std::string& reason) const
{
    out.clear();
    reason.clear();
    const CKvPRJParser& r = m_record;
    const CKvMapProjData::EProjectionType type = r.GetProjectionType();
    const auto refuse = [&reason](const std::string& why) {
        reason = why;
        return false;
    };

    // --- The method and its parameters, in GDAL's order.
    std::string method;
    CParameterList parameters;
    const auto latitudeOfOrigin = SParameter{"latitude_of_origin", r.GetLatitudeOfOrigin(), false};
    const auto centralMeridian = SParameter{"central_meridian", r.GetCentralMeridian(), false};
    const auto scaleFactor = SParameter{"scale_factor", r.GetScaleFactor(), false};
    const auto falseEasting = SParameter{"false_easting", r.GetFalseEasting(), true};
    const auto falseNorthing = SParameter{"false_northing", r.GetFalseNorthing(), true};
    bool pseudoMercator = false;
    // The engine's coordinates before the axes: easting and northing, except
    // for Krovak, whose grid counts southing and westing.
    EDirection engine[2] = {eEast, eNorth};
    switch (type) {
    case CKvMapProjData::eTransverseMercator:
        // The registry's south-orientated grid (W = FE - E, S = FN - N) as GDAL
        // writes it; read by the established rule, such a text is the plain
        // transverse Mercator its axes make of it, and is written so.
        method = r.GetSouthOrientated() && r.GetReading() == CKvPRJParser::eEpsgReading
                     ? "Transverse_Mercator_South_Orientated"
                     : "Transverse_Mercator";
        parameters.Set({latitudeOfOrigin, centralMeridian, scaleFactor, falseEasting, falseNorthing});
        break;
    case CKvMapProjData::eLambert1SP:
        method = "Lambert_Conformal_Conic_1SP";
        parameters.Set({latitudeOfOrigin, centralMeridian, scaleFactor, falseEasting, falseNorthing});
        break;
    case CKvMapProjData::eLambert2SP:
        // The registry's reading applies a two-parallel Lambert's scale factor
        // (EPSG method 1051, the Michigan form), which WKT 1 cannot name.
        if (r.GetReading() == CKvPRJParser::eEpsgReading && IsSet(r.GetScaleFactor()) && r.GetScaleFactor() != 1.0)
            return refuse("the two-parallel Lambert conformal conic with a scale factor (EPSG method 1051, "
                          "Michigan) has no name in OGC WKT 1");
        method = "Lambert_Conformal_Conic_2SP";
        parameters.Set({{"standard_parallel_1", r.GetStandardParallel1(), false},
                        {"standard_parallel_2", r.GetStandardParallel2(), false},
                        latitudeOfOrigin,
                        centralMeridian,
                        falseEasting,
                        falseNorthing});
        break;
    case CKvMapProjData::eStereographic:
        method = "Oblique_Stereographic";
        parameters.Set({latitudeOfOrigin, centralMeridian, scaleFactor, falseEasting, falseNorthing});
        break;
    case CKvMapProjData::eStereographicSnyder:
        method = "Stereographic";
        parameters.Set({latitudeOfOrigin, centralMeridian, scaleFactor, falseEasting, falseNorthing});
        break;
    case CKvMapProjData::ePolarStereographic:
        method = "Polar_Stereographic";
        parameters.Set({latitudeOfOrigin, centralMeridian, scaleFactor, falseEasting, falseNorthing});
        break;
    case CKvMapProjData::eStereographicNorthPole:
    case CKvMapProjData::eStereographicSouthPole:
        // Variant B as GDAL writes it: the latitude of true scale as the latitude
        // of origin and no scale factor; its sign names the pole.
        if ((type == CKvMapProjData::eStereographicNorthPole) != (r.GetStandardParallel1() > 0.0))
            return refuse("a polar stereographic whose standard parallel lies in the other hemisphere than its "
                          "pole has no OGC WKT 1 form");
        method = "Polar_Stereographic";
        parameters.Set(
            {{"latitude_of_origin", r.GetStandardParallel1(), false}, centralMeridian, falseEasting, falseNorthing});
        break;
    case CKvMapProjData::eMercator1SP:
        method = "Mercator_1SP";
        parameters.Set({centralMeridian, scaleFactor, falseEasting, falseNorthing});
        break;
    case CKvMapProjData::ePseudoMercator:
        // OGC WKT 1 has no name for EPSG method 1024: GDAL writes the Mercator
        // of the text's parameters with a PROJ4 EXTENSION that projects the
        // sphere of the semi-major axis (added below), which PROJ computes with
        // and the library's EPSG reading reads as this method.
        method = "Mercator_1SP";
        pseudoMercator = true;
        parameters.Set({centralMeridian, {"scale_factor", 1.0, false}, falseEasting, falseNorthing});
        break;
    case CKvMapProjData::eMercator2SP:
        method = "Mercator_2SP";
        parameters.Set(
            {{"standard_parallel_1", r.GetStandardParallel1(), false}, centralMeridian, falseEasting, falseNorthing});
        break;
    case CKvMapProjData::eHotineObliqueMercator:
    case CKvMapProjData::eObliqueMercator:
    case CKvMapProjData::eRectifiedSkewOrthomorphic: {
        // EPSG's variants A and B: counted from the natural origin or from the
        // centre. The grid angle is the azimuth but for the rectified skew form.
        const bool centre = type == CKvMapProjData::eObliqueMercator ||
                            (type == CKvMapProjData::eRectifiedSkewOrthomorphic && r.GetCentreOrigin());
        method = centre ? "Hotine_Oblique_Mercator_Azimuth_Center" : "Hotine_Oblique_Mercator";
        const double gridAngle = type == CKvMapProjData::eRectifiedSkewOrthomorphic && IsSet(r.GetXYPlaneRotation())
                                     ? r.GetXYPlaneRotation()
                                     : r.GetAzimuth();
        parameters.Set({{"latitude_of_center", r.GetLatitudeOfCenter(), false},
                        {"longitude_of_center", r.GetLongitudeOfCenter(), false},
                        {"azimuth", r.GetAzimuth(), false},
                        {"rectified_grid_angle", gridAngle, false},
                        scaleFactor,
                        falseEasting,
                        falseNorthing});
        break;
    }
    case CKvMapProjData::eNewZealandMapGrid:
        method = "New_Zealand_Map_Grid";
        parameters.Set({latitudeOfOrigin, centralMeridian, falseEasting, falseNorthing});
        break;
    case CKvMapProjData::eKrovak: {
        // WKT 1 has no scales nor plane rotation (ESRI's parameters): its AXIS
        // nodes say how the grid runs. The grid counts x = X_Scale southing,
        // y = Y_Scale westing, turned by the rotation: a quarter turn gives
        // x = -Y_Scale westing, y = X_Scale southing.
        double unit = 0.0;
        CString unitName;
        r.GetAngularUnit(unitName, unit);
        const double degrees = !IsSet(r.GetXYPlaneRotation()) ? 0.0
                               : IsSet(unit)                  ? r.GetXYPlaneRotation() * (unit / kDegree)
                                                              : r.GetXYPlaneRotation();
        const double xs = r.GetXScale(), ys = r.GetYScale();
        if (std::fabs(xs) != 1.0 || std::fabs(ys) != 1.0)
            return refuse("a Krovak grid scaled by other than +-1 (X_Scale, Y_Scale) has no OGC WKT 1 form");
        if (degrees == 0.0) {
            engine[0] = xs > 0.0 ? eSouth : eNorth;
            engine[1] = ys > 0.0 ? eWest : eEast;
        } else if (CKvFloatCompareRel::Close(degrees, 90.0, 1e-12)) {
            engine[0] = ys < 0.0 ? eWest : eEast;
            engine[1] = xs > 0.0 ? eSouth : eNorth;
        } else {
            char turn[32];
            std::snprintf(turn, sizeof turn, "%.12g", degrees);
            return refuse(std::string("a Krovak grid turned by ") + turn +
                          " degrees (XY_Plane_Rotation) has no OGC WKT 1 form: only a southing and a westing or "
                          "their negations");
        }
        method = "Krovak";
        parameters.Set({{"latitude_of_center", r.GetLatitudeOfCenter(), false},
                        {"longitude_of_center", r.GetLongitudeOfCenter(), false},
                        {"azimuth", r.GetAzimuth(), false},
                        {"pseudo_standard_parallel_1", r.GetPseudoParallel(), false},
                        scaleFactor,
                        falseEasting,
                        falseNorthing});
        break;
    }
    case CKvMapProjData::eAlbersEqualArea:
    case CKvMapProjData::eEquidistantConic:
        method = type == CKvMapProjData::eAlbersEqualArea ? "Albers_Conic_Equal_Area" : "Equidistant_Conic";
        parameters.Set({{"latitude_of_center", r.GetLatitudeOfOrigin(), false},
                        {"longitude_of_center", r.GetCentralMeridian(), false},
                        {"standard_parallel_1", r.GetStandardParallel1(), false},
                        {"standard_parallel_2", r.GetStandardParallel2(), false},
                        falseEasting,
                        falseNorthing});
        break;
    case CKvMapProjData::eLambertAzimuthalEqualArea:
        method = "Lambert_Azimuthal_Equal_Area";
        parameters.Set({{"latitude_of_center", r.GetLatitudeOfOrigin(), false},
                        {"longitude_of_center", r.GetCentralMeridian(), false},
                        falseEasting,
                        falseNorthing});
        break;
    case CKvMapProjData::eCassiniSoldner:
        method = "Cassini_Soldner";
        parameters.Set({latitudeOfOrigin, centralMeridian, falseEasting, falseNorthing});
        break;
    case CKvMapProjData::eGeographical: break;
    case CKvMapProjData::eRotatedLongitudeLatitude:
        return refuse("rotated longitude/latitude (a grid about a displaced pole) has no name in OGC WKT 1");
    case CKvMapProjData::eNonProjected:
        return refuse("the system is not georeferenced (no projection, no datum): it has no WKT");
    default: {
        // A described method: GDAL's name and parameter names from its
        // descriptor; a parameter the text did not give with its fallback.
        const CKvMapProjData::STypeInfo* info = CKvMapProjData::GetTypeInfo(type);
        if (!CKvMapProjData::IsDescribedMethod(type))
            return refuse("the system has no projection to write");
        if (info->ogcName == nullptr)
            return refuse(std::string("the method ") + info->title + " has no name in OGC WKT 1");
        method = info->ogcName;
        parameters.Set({});
        for (int i = 0; i < info->noOfParameters; ++i) {
            const CKvMapProjData::SParameter& parameter = info->parameters[i];
            const double value = r.GetMethodParameter(i);
            parameters.Add({parameter.wktNames[1] != nullptr ? parameter.wktNames[1] : parameter.wktNames[0],
                            IsSet(value) ? value : parameter.fallback, parameter.kind == CKvMapProjData::eLength});
        }
        break;
    }
    }
    for (const SParameter& p : parameters.Items())
        if (!IsSet(p.value) || !std::isfinite(p.value))
            return refuse(std::string("the parameter ") + p.name + " of " + method + " is not a finite number");

    // --- The geographic system.
    CString ellipsoidName, angularName, meridianName;
    double a = 0.0, rf = 0.0, angular = 0.0, meridian = 0.0;
    r.GetEllipsoid(ellipsoidName, a, rf);
    r.GetAngularUnit(angularName, angular);
    r.GetPrimeMeridian(meridianName, meridian);
    if (!IsSet(a) || !(a > 0.0) || !std::isfinite(a) || !IsSet(rf) || !(rf == 0.0 || rf > 1.0) || !std::isfinite(rf))
        return refuse("the system names no ellipsoid of positive size");
    if (!IsSet(angular) || !(angular > 0.0) || !std::isfinite(angular))
        return refuse("the system has no angular unit");
    if (!IsSet(meridian) || meridianName.IsEmpty()) {
        meridianName = "Greenwich";
        meridian = 0.0;
    }
    if (!std::isfinite(meridian))
        return refuse("the prime meridian is not a finite number");

    std::string datum = r.GetDatum().GetStdString();
    std::string geogcs = r.GetGeoCSname().GetStdString();
    const bool named = !geogcs.empty() && geogcs != "Unused"; // the library's placeholder for a catalogue system
    // ESRI's prefixes of datum and geographic system names: PROJ takes a text
    // that has them for ESRI's dialect, whose Hotine centre form counts from
    // another origin than OGC's.
    std::string ogcDatum = datum;
    if (ogcDatum.compare(0, 2, "D_") == 0)
        ogcDatum.erase(0, 2);
    if (geogcs.compare(0, 4, "GCS_") == 0)
        geogcs.erase(0, 4);
    std::string ogcGeogcs = datum;
    for (const SDatumName& d : kDatumNames)
        if (datum == d.library) {
            ogcDatum = d.datum;
            ogcGeogcs = d.geogcs;
        }
    if (named)
        ogcGeogcs = geogcs;
    if (ogcDatum.empty())
        ogcDatum = "Unknown based on " + ellipsoidName.GetStdString() + " ellipsoid";
    if (ogcGeogcs.empty())
        ogcGeogcs = "unknown";
    const std::string projcs = r.GetProjCSname().GetStdString();
    for (const std::string* name : std::initializer_list<const std::string*>{
             &projcs, &ogcGeogcs, &ogcDatum, &ellipsoidName.GetStdString(), &meridianName.GetStdString()})
        if (!ReadableName(*name))
            return refuse("the name \"" + *name +
                          "\" holds a quote, a bracket, a control character or a WKT keyword; it would not read back");

    std::string geographic = "GEOGCS[\"" + (type == CKvMapProjData::eGeographical ? projcs : ogcGeogcs) + "\",";
    geographic += "DATUM[\"" + ogcDatum + "\",SPHEROID[\"" + ellipsoidName.GetStdString() + "\"," + Number(a) + "," +
                  Number(rf) + "]";
    CKvDatumShift shift;
    r.GetDatumShift(shift);
    if (shift.GetType() != CKvCartDef::eNoDatumShift || m_shiftKnown) {
        geographic += ",TOWGS84[";
        for (int i = 0; i < CKvDatumShift::NoOfParameters; ++i) {
            if (!std::isfinite(shift[i]))
                return refuse("the datum shift holds a value that is not a finite number");
            geographic += (i > 0 ? "," : "") + Number(shift[i]);
        }
        geographic += "]";
    }
    geographic += "],PRIMEM[\"" + meridianName.GetStdString() + "\"," + Number(meridian) + "],UNIT[\"" +
                  AngularUnitName(angularName, angular) + "\"," + Number(angular) + "]";
    const std::string authority =
        m_epsgCode > 0 ? ",AUTHORITY[\"EPSG\",\"" + std::to_string(m_epsgCode) + "\"]" : std::string();

    if (type == CKvMapProjData::eGeographical) {
        // The library's geographical coordinates are longitude, latitude.
        out = geographic + ",AXIS[\"Longitude\",EAST],AXIS[\"Latitude\",NORTH]" + authority + "]";
        return true;
    }

    // --- The projected system: units, then the axes the library's coordinates run along.
    CString linearName;
    double linear = 0.0;
    r.GetProjUnit(linearName, linear);
    if (!IsSet(linear) || !(linear > 0.0) || !std::isfinite(linear))
        return refuse("the projected system has no linear unit");
    // Lengths in the record's unit, and in the unit they are written in.
    const double recordUnit = linear;
    if (m_gridUnit > 0.0 && m_gridUnit != linear) {
        linear = m_gridUnit;
        linearName = "unit";
    }
    const std::string linearUnit = LinearUnitName(linearName, linear);
    if (!ReadableName(linearUnit))
        return refuse("the unit name \"" + linearUnit + "\" would not read back");

    // The library gives the engine's coordinates with each sign the AXIS word
    // makes (west and south negate) and exchanges them when the first word is
    // north or south; the directions that result are written.
    CString axisName, word1, word2;
    r.GetAxisInfo(CKvPRJParser::eFirstAxis, axisName, word1);
    r.GetAxisInfo(CKvPRJParser::eSecondAxis, axisName, word2);
    const EDirection first = Word(word1), second = Word(word2);
    const EDirection x = first == eWest || first == eSouth ? Opposite(engine[0]) : engine[0];
    const EDirection y = second == eWest || second == eSouth ? Opposite(engine[1]) : engine[1];
    const EDirection axes[2] = {Vertical(first) ? y : x, Vertical(first) ? x : y};
    if (Vertical(axes[0]) == Vertical(axes[1]))
        return refuse("the axes do not make one easting and one northing (" + word1.GetStdString() + ", " +
                      word2.GetStdString() + ")");
    // A northing first reads back right only with both signs alike (north,
    // east or south, west): the library takes the first word's sign for the
    // easting.
    if (Vertical(axes[0]) && (axes[0] == eNorth) != (axes[1] == eEast))
        return refuse("axes running " + std::string(axes[0] == eNorth ? "north, west" : "south, east") +
                      " have no WKT 1 form that reads back the same");

    out = "PROJCS[\"" + projcs + "\"," + geographic + "],PROJECTION[\"" + method + "\"]";
    for (const SParameter& p : parameters.Items())
        out += ",PARAMETER[\"" + std::string(p.name) + "\"," +
               (p.length && linear != recordUnit ? Converted(p.value * recordUnit / linear) : Number(p.value)) + "]";
    out += ",UNIT[\"" + linearUnit + "\"," + Number(linear) + "]";
    out += std::string(",") + AxisNode(axes[0]) + "," + AxisNode(axes[1]);
    if (pseudoMercator) {
        // PROJ's terms: metres and Greenwich degrees.
        if (linear != 1.0)
            return refuse("the pseudo-Mercator in another unit than the metre has no OGC WKT 1 form");
        const double lon0 = r.GetCentralMeridian() * (angular / kDegree) + meridian;
        out += ",EXTENSION[\"PROJ4\",\"+proj=merc +a=" + Number(a) + " +b=" + Number(a) +
               " +lat_ts=0 +lon_0=" + Number(lon0) + " +x_0=" + Number(r.GetFalseEasting()) +
               " +y_0=" + Number(r.GetFalseNorthing()) + " +k=1 +units=m +nadgrids=@null +wktext +no_defs\"]";
    }
    out += authority + "]";
    return true;
}

bool CKvOgcWktWriter::Describe(const std::string& text, SSystem& system, std::string& reason)
{
    system = SSystem();
    reason.clear();
    CString trimmed(text);
    trimmed.Trim();
    if (CKvPRJParser::IsPRJ(trimmed)) {
        auto record = std::make_unique<CKvPRJParser>(trimmed);
        if (!record->Parse(false)) {
            reason = record->GetFailureReason();
            return false;
        }
        // The text's own code stands for the system only when it reads as the
        // registry defines it.
        if (record->GetWarnings().empty())
            system.epsgCode = TopLevelEpsgCode(trimmed.GetStdString());
        // A TOWGS84 node of zeros, or a shift the reading took from elsewhere.
        system.shiftKnown = trimmed.Find("TOWGS84[") >= 0 || CKvMapProjection(trimmed.GetString()).IsDatumShiftKnown();
        system.record = std::move(record);
        return true;
    }
    // "EPSG:n": the registry's text, read by the registry's rules whatever the
    // reading in force, as the system of that name is made.
    std::string registryText, registryReason;
    if (CKvMapProjection::RegistryText(trimmed.GetString(), registryText, &registryReason)) {
        auto record = std::make_unique<CKvPRJParser>(registryText.c_str());
        record->SetReading(CKvPRJParser::eEpsgReading);
        if (!record->Parse(false)) {
            reason = record->GetFailureReason();
            return false;
        }
        std::string authority;
        int code = 0;
        if (CKvEpsgRegistry::ParseCode(trimmed.GetString(), authority, code) && authority == "EPSG")
            system.epsgCode = code;
        system.shiftKnown = registryText.find("TOWGS84[") != std::string::npos || record->HasKnownDatumShift();
        system.record = std::move(record);
        return true;
    }
    if (!registryReason.empty()) {
        reason = registryReason;
        return false;
    }
    if (CKvMapProjection::IsLongLat(trimmed.GetString())) {
        reason = "LONG/LAT names no datum nor ellipsoid: it has no WKT";
        return false;
    }
    if (CKvMapProjection::IsLocal(trimmed.GetString()) || trimmed.IsEmpty()) {
        reason = "NON-UTM is a local grid, not georeferenced: it has no WKT";
        return false;
    }
    std::unique_ptr<CKvMapProjection> resolved;
    try {
        resolved.reset(new CKvMapProjection(trimmed.GetString()));
    } catch (const std::out_of_range&) {
        reason = "\"UTM\" names no zone";
        return false;
    }
    const CKvProjection* engine = resolved->GetProjection();
    if (engine == nullptr) {
        reason = resolved->GetMessage().empty() ? "unknown coordinate system" : resolved->GetMessage();
        return false;
    }
    // A catalogue system: its engine describes it as its definition holds it.
    const CKvMapProjData* definition = CKvMapProjection::FindMapProjectionDefinition(engine->GetName());
    if (definition == nullptr) {
        reason = "the system has no definition the library can describe";
        return false;
    }
    auto record = std::make_unique<CKvPRJParser>(engine);
    CKvDatumShift shift;
    resolved->GetDatumShift(shift);
    record->SetDatumShift(shift);
    static const char* const kWords[] = {"EAST", "NORTH", "WEST", "SOUTH"};
    static const char* const kNames[] = {"Easting", "Northing", "Westing", "Southing"};
    const int axes = resolved->GetCoordSysType();
    const int first = (axes / 4) & 3, second = axes & 3;
    record->SetAxisInfo(CKvPRJParser::eFirstAxis, kNames[first], kWords[first]);
    record->SetAxisInfo(CKvPRJParser::eSecondAxis, kNames[second], kWords[second]);
    const double unit = resolved->GetLinearUnit();
    if (unit > 0.0 && unit != 1.0)
        system.gridUnit = unit;
    system.epsgCode = definition->GetEpsgCode();
    system.shiftKnown = resolved->IsDatumShiftKnown();
    system.record = std::move(record);
    return true;
}

bool CKvOgcWktWriter::WriteSystem(const std::string& text, std::string& out, std::string& reason)
{
    out.clear();
    SSystem system;
    if (!Describe(text, system, reason))
        return false;
    CKvOgcWktWriter writer(*system.record);
    writer.SetEpsgCode(system.epsgCode);
    writer.SetGridUnit(system.gridUnit);
    writer.SetDatumShiftKnown(system.shiftKnown);
    return writer.Write(out, reason);
}
