#include "wkt/KvProjTranslator.h"

#include "coordsys/KvMapProjection.h"
#include "geodesy/KvDatumShift.h"
#include "projections/KvProjection.h"
#include "wkt/KvPRJParser.h"
#include "paramfile/NumericLocale.h"

#include <memory>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace {

// The WKT of a resolved coordinate-system string: the text itself when it is
// WKT; for a catalogue name, the WKT that its engine describes. The two special
// names stay as they are.
CString WktOf(const std::string& text, const CKvProjection& engine)
{
    CString wkt(text);
    if (CKvPRJParser::IsPRJ(wkt) || CKvMapProjection::IsLocal(text.c_str()) ||
        CKvMapProjection::IsLongLat(text.c_str()))
        return wkt;
    CKvPRJParser(&engine).Format(wkt);
    return wkt;
}

// Degrees per angular unit. WKT writes the degree with 16 digits or fewer
// (ESRI: 0.0174532925199433); taken literally, 9 of them would be written as
// 9.000000000000002 degrees and 90 as 90.00000000000001, which PROJ refuses as a
// latitude. A factor that is the degree to the precision it was written with
// is the degree.
double DegreesPerUnit(double factor)
{
    const double k = 180.0 * factor / 3.141592653589793;
    return std::fabs(k - 1.0) <= 1e-14 ? 1.0 : k;
}

} // namespace

std::string CKvProjTranslator::Convert2Proj4(const std::string& text, const double* datumShift, int count) const
{
    const CKvMapProjection system(text);
    const CKvProjection* engine = system.GetProjection();
    if (engine == nullptr)
        return std::string();

    // The system's own text: a catalogue name as the catalogue spells it.
    CKvPRJParser parser(WktOf(system.GetProjectionString(), *engine));
    parser.Parse(false);

    CString name;
    double u = CKvPRJParser::Undefined, f = CKvPRJParser::Undefined, pm = CKvPRJParser::Undefined;
    parser.GetProjUnit(name, u);
    parser.GetAngularUnit(name, f);
    parser.GetPrimeMeridian(name, pm);
    const double k = DegreesPerUnit(f);

    CKvEllipsoid ellipsoid;
    engine->GetAnonymousEllipsoid(ellipsoid);

    const double x0 = parser.GetFalseEasting() * u;
    const double y0 = parser.GetFalseNorthing() * u;
    const double scale = parser.GetScaleFactor();
    CString out;
    auto latitude = [&out, k](const char* key, double value) {
        out.AppendFormat("+%s=%.16g ", key, value * k);
    };
    auto longitude = [&out, k, pm](double value) { out.AppendFormat("+lon_0=%.16g ", value * k + pm); };
    auto tail = [&out, x0, y0](bool withScale, double scaleFactor) {
        if (withScale)
            out.AppendFormat("+k=%.16g ", scaleFactor);
        out.AppendFormat("+x_0=%.16g +y_0=%.16g ", x0, y0);
    };

    switch (parser.GetProjectionType()) {
    case CKvMapProjData::eTransverseMercator:
        out += "+proj=tmerc ";
        latitude("lat_0", parser.GetLatitudeOfOrigin());
        longitude(parser.GetCentralMeridian());
        tail(true, scale);
        break;
    case CKvMapProjData::eLambert2SP:
    case CKvMapProjData::eAlbersEqualArea:
    case CKvMapProjData::eEquidistantConic:
        out += parser.GetProjectionType() == CKvMapProjData::eLambert2SP       ? "+proj=lcc "
               : parser.GetProjectionType() == CKvMapProjData::eAlbersEqualArea ? "+proj=aea "
                                                                                 : "+proj=eqdc ";
        latitude("lat_1", parser.GetStandardParallel1());
        latitude("lat_2", parser.GetStandardParallel2());
        latitude("lat_0", parser.GetLatitudeOfOrigin());
        longitude(parser.GetCentralMeridian());
        tail(false, scale);
        break;
    case CKvMapProjData::eLambert1SP:
        out += "+proj=lcc ";
        latitude("lat_1", parser.GetLatitudeOfOrigin());
        latitude("lat_0", parser.GetLatitudeOfOrigin());
        longitude(parser.GetCentralMeridian());
        tail(true, scale);
        break;
    case CKvMapProjData::eStereographic: {
        // The oblique (double) stereographic is PROJ's sterea; any other name of
        // the family is taken as the plain stereographic.
        const CString typeName = parser.GetProjectionTypeName();
        out += typeName == "Double_Stereographic" || typeName == "Oblique_Stereographic" ? "+proj=sterea "
                                                                                          : "+proj=stere ";
        latitude("lat_0", parser.GetLatitudeOfOrigin());
        longitude(parser.GetCentralMeridian());
        tail(true, scale);
        break;
    }
    case CKvMapProjData::eNewZealandMapGrid:
        out += "+proj=nzmg ";
        latitude("lat_0", parser.GetLatitudeOfOrigin());
        longitude(parser.GetCentralMeridian());
        tail(false, scale);
        break;
    case CKvMapProjData::eHotineObliqueMercator:
    case CKvMapProjData::eObliqueMercator:
    case CKvMapProjData::eRectifiedSkewOrthomorphic:
        out += "+proj=omerc ";
        latitude("lat_0", parser.GetLatitudeOfCenter());
        longitude(parser.GetLongitudeOfCenter());
        latitude("alpha", parser.GetAzimuth());
        if (parser.GetProjectionType() == CKvMapProjData::eRectifiedSkewOrthomorphic)
            latitude("gamma", parser.GetXYPlaneRotation());
        tail(true, scale);
        break;
    case CKvMapProjData::eRotatedLongitudeLatitude:
    case CKvMapProjData::eNoProjection:
        // Nothing PROJ.4 could be told: no ellipsoid, datum or unit either.
        return "+proj=undef ";
    case CKvMapProjData::eMercator2SP:
    case CKvMapProjData::eMercator1SP:
        out += "+proj=merc ";
        latitude("lat_ts", parser.GetStandardParallel1());
        longitude(parser.GetCentralMeridian());
        tail(true, scale);
        break;
    case CKvMapProjData::eStereographicNorthPole:
    case CKvMapProjData::eStereographicSouthPole:
        out.AppendFormat("+proj=stere +lat_0=%.16g ",
                         parser.GetProjectionType() == CKvMapProjData::eStereographicNorthPole ? 90.0 : -90.0);
        latitude("lat_ts", parser.GetStandardParallel1());
        longitude(parser.GetCentralMeridian());
        tail(true, scale);
        break;
    case CKvMapProjData::eGeographical: out += "+proj=longlat "; break;
    case CKvMapProjData::ePseudoMercator: {
        // PROJ.4's classic Web Mercator: the Mercator of the sphere of the
        // semi-major axis, and a null grid shift, which takes the geographic
        // coordinates as they are (the datum's, WGS 84's for EPSG:3857) rather
        // than shifting them from the sphere. A datum shift on top has no such
        // text: the sphere would be taken for the datum's figure.
        CKvDatumShift shift;
        parser.GetDatumShift(shift);
        if ((datumShift != nullptr && count >= 1) || shift.GetType() != CKvCartDef::eNoDatumShift)
            return "+proj=undef ";
        out += "+proj=merc ";
        latitude("lat_ts", 0.0);
        longitude(parser.GetCentralMeridian());
        tail(true, 1.0);
        out.AppendFormat("+a=%.16g +b=%.16g +nadgrids=@null ", ellipsoid.GetMajor(), ellipsoid.GetMajor());
        if (u != CKvPRJParser::Undefined) {
            if (u == 1.0)
                out += "+units=m ";
            else
                out.AppendFormat("+to_meter=%.16g ", u);
        }
        out += "+no_defs  no_defs <>";
        return out.GetStdString();
    }
    case CKvMapProjData::eKrovak:
        // The pseudo standard parallel, the axis scales and the plane rotation
        // have no PROJ.4 counterpart and are not written.
        out += "+proj=krovak ";
        latitude("lat_0", parser.GetLatitudeOfCenter());
        longitude(parser.GetLongitudeOfCenter());
        latitude("alpha", parser.GetAzimuth());
        tail(true, scale);
        break;
    case CKvMapProjData::eLambertAzimuthalEqualArea:
    case CKvMapProjData::eCassiniSoldner:
        out += parser.GetProjectionType() == CKvMapProjData::eCassiniSoldner ? "+proj=cass " : "+proj=laea ";
        latitude("lat_0", parser.GetLatitudeOfOrigin());
        longitude(parser.GetCentralMeridian());
        tail(false, scale);
        break;
    case CKvMapProjData::ePolarStereographic:
        // The pole is chosen by the sign of the latitude of origin as written.
        out.AppendFormat("+proj=stere +lat_0=%.16g ", parser.GetLatitudeOfOrigin() >= 0.0 ? 90.0 : -90.0);
        latitude("lat_ts", parser.GetLatitudeOfOrigin());
        longitude(parser.GetCentralMeridian());
        tail(true, scale);
        break;
    default: {
        // A described method: PROJ's method and the parameters' keys from its
        // descriptor (a method PROJ cannot compute, like "Non_Projected", has
        // no PROJ.4 name: the figure only).
        const CKvMapProjData::EProjectionType type = parser.GetProjectionType();
        const CKvMapProjData::STypeInfo* info = CKvMapProjData::GetTypeInfo(type);
        if (!CKvMapProjData::IsDescribedMethod(type) || info->proj == nullptr)
            break;
        out.AppendFormat("%s ", info->proj);
        for (int i = 0; i < info->noOfParameters; ++i) {
            const CKvMapProjData::SParameter& parameter = info->parameters[i];
            const double value = parser.GetMethodParameter(i);
            if (parameter.projKey == nullptr)
                continue;
            double written = parameter.fallback;
            if (value != CKvPRJParser::Undefined)
                written = parameter.kind == CKvMapProjData::eLength                         ? value * u
                          : parameter.kind == CKvMapProjData::eAngle && parameter.longitude ? value * k + pm
                          : parameter.kind == CKvMapProjData::eAngle                        ? value * k
                                                                                            : value;
            out.AppendFormat("+%s=%.16g ", parameter.projKey, written);
        }
        break;
    }
    }

    out.AppendFormat("+a=%.16g +b=%.16g ", ellipsoid.GetMajor(), ellipsoid.GetMinor());

    CKvDatumShift shift;
    parser.GetDatumShift(shift);
    if (datumShift != nullptr && count >= 1) {
        out.AppendFormat("+towgs84=%.16g", datumShift[0]);
        for (int i = 1; i < CKvDatumShift::NoOfParameters; ++i)
            out.AppendFormat(",%.16g", i < count ? datumShift[i] : 0.0);
        out += " ";
    } else if (shift.GetType() != CKvCartDef::eNoDatumShift) {
        out.AppendFormat("+towgs84=%.16g", shift[0]);
        for (int i = 1; i < CKvDatumShift::NoOfParameters; ++i)
            out.AppendFormat(",%.16g", shift[i]);
        out += " ";
    }

    if (u != CKvPRJParser::Undefined) {
        if (u == 1.0)
            out += "+units=m ";
        else
            out.AppendFormat("+to_meter=%.16g ", u);
    }
    out += "+no_defs  no_defs <>";
    return out.GetStdString();
}

std::string CKvProjTranslator::ConvertPRJFile2Proj4(const std::string& path, const double* datumShift,
                                                   int count) const
{
    std::string line;
    std::ifstream file(path);
    if (file)
        std::getline(file, line);
    const size_t cr = line.find('\r');
    if (cr != std::string::npos)
        line.erase(cr);
    return Convert2Proj4(line, datumShift, count);
}

namespace {

// The shortest decimal form that reads back as the same double ("%.17g" at
// most): 0.999975, not 0.9999749999999999.
std::string Shortest(double value)
{
    if (value == 0.0)
        return "0"; // also for -0
    if (!std::isfinite(value))
        return value != value ? "nan" : value > 0.0 ? "inf" : "-inf";
    char buffer[400];
    int digits = 1;
    for (; digits < 17; ++digits) {
        std::snprintf(buffer, sizeof buffer, "%.*g", digits, value);
        if (CNumericLocale::Strtod(buffer, nullptr) == value)
            break;
    }
    // Positional notation for the sizes of coordinates and angles: 500000, not 5e+05.
    const int exponent = static_cast<int>(std::floor(std::log10(std::fabs(value))));
    if (exponent >= -6 && exponent < 17) {
        std::snprintf(buffer, sizeof buffer, "%.*f", std::max(0, digits - 1 - exponent), value);
        return buffer;
    }
    std::snprintf(buffer, sizeof buffer, "%.*g", digits, value);
    return buffer;
}

} // namespace

std::string CKvProjTranslator::ConvertToProj(const std::string& text, const double* datumShift, int count,
                                             std::string* reason) const
{
    std::string why;
    const auto fail = [&why, reason](const std::string& r) {
        if (reason != nullptr)
            *reason = r;
        return std::string();
    };
    // A catalogue name in another case is the name as the catalogue spells it.
    CString trimmed(CKvMapProjection::CatalogueSpelling(text.c_str()).c_str());
    trimmed.Trim();
    // A catalogue name is described by its engine's definition; its own reading
    // is the registry's already.
    std::unique_ptr<CKvProjection, void (*)(CKvProjection*)> engine(nullptr, CKvProjection::Release);
    double gridUnit = 0.0; // the unit of the grid's coordinates when not the WKT's
    CString wkt;
    std::string registryText;
    if (CKvPRJParser::IsPRJ(trimmed)) {
        wkt = trimmed;
    } else if (CKvMapProjection::RegistryText(trimmed.GetString(), registryText, &why)) {
        // "EPSG:n": the registry's own text, datum shift and axes included.
        wkt = registryText.c_str();
    } else {
        engine.reset(CKvMapProjection::GetProjection(trimmed.GetString(), nullptr, &why));
        if (!engine)
            return fail(why);
        if (CKvMapProjection::IsLocal(trimmed.GetString()))
            return fail("\"NON-UTM\" is a local grid, not georeferenced: PROJ has no string for it");
        if (CKvMapProjection::IsLongLat(trimmed.GetString()))
            return fail("\"LONG/LAT\" names no ellipsoid: PROJ has no string for it");
        CKvPRJParser(engine.get()).Format(wkt);
        // The engine describes itself in metres; a catalogue grid kept in US
        // survey feet is read and written in feet (its false origin stays metres).
        const CKvMapProjData* definition = CKvMapProjection::FindMapProjectionDefinition(trimmed.GetString());
        if (definition != nullptr && definition->IsInUsSurveyFeet())
            gridUnit = 1200.0 / 3937.0;
    }
    CKvPRJParser parser(wkt);
    parser.SetReading(CKvPRJParser::eEpsgReading);
    if (!parser.Parse(false))
        return fail(parser.GetFailureReason().empty() ? "the text is not a coordinate system"
                                                      : parser.GetFailureReason());

    CString name;
    double u = CKvPRJParser::Undefined, f = CKvPRJParser::Undefined, pm = CKvPRJParser::Undefined;
    double a = 0.0, rf = 0.0;
    parser.GetProjUnit(name, u);
    parser.GetAngularUnit(name, f);
    parser.GetPrimeMeridian(name, pm);
    parser.GetEllipsoid(name, a, rf);
    if (pm == CKvPRJParser::Undefined)
        pm = 0.0;
    const double k = DegreesPerUnit(f);
    const double metres = u == CKvPRJParser::Undefined ? 1.0 : u;

    std::string out;
    bool finite = true; // every number written is one
    const auto token = [&out, &finite](const char* key, double value) {
        finite = finite && std::isfinite(value);
        out += std::string("+") + key + "=" + Shortest(value) + " ";
    };
    const auto angle = [&token, k](const char* key, double value) { token(key, value * k); };
    const auto longitude = [&token, k, pm](const char* key, double value) { token(key, value * k + pm); };
    // PROJ's x_0 and y_0 are added before +axis turns the grid: the registry's
    // south-orientated grid subtracts the coordinates from its false origin.
    const double originSign = parser.GetSouthOrientated() ? -1.0 : 1.0;
    const auto falseOrigin = [&]() {
        token("x_0", originSign * parser.GetFalseEasting() * metres);
        token("y_0", originSign * parser.GetFalseNorthing() * metres);
    };
    const double scale = parser.GetScaleFactor();
    const bool given = [](double v) { return v != CKvPRJParser::Undefined; }(parser.GetXYPlaneRotation());

    switch (parser.GetProjectionType()) {
    case CKvMapProjData::eTransverseMercator:
    case CKvMapProjData::eNonProjected:
        out += "+proj=tmerc ";
        if (parser.GetSouthOrientated())
            out += "+axis=wsu ";
        angle("lat_0", parser.GetLatitudeOfOrigin());
        longitude("lon_0", parser.GetCentralMeridian());
        token("k", scale);
        falseOrigin();
        break;
    case CKvMapProjData::eLambert2SP:
        out += "+proj=lcc ";
        angle("lat_0", parser.GetLatitudeOfOrigin());
        longitude("lon_0", parser.GetCentralMeridian());
        angle("lat_1", parser.GetStandardParallel1());
        angle("lat_2", parser.GetStandardParallel2());
        falseOrigin();
        if (parser.GetScaleFactor() != CKvPRJParser::Undefined && parser.GetScaleFactor() != 1.0)
            token("k_0", parser.GetScaleFactor());
        break;
    case CKvMapProjData::eLambert1SP:
        out += "+proj=lcc ";
        angle("lat_1", parser.GetLatitudeOfOrigin());
        angle("lat_0", parser.GetLatitudeOfOrigin());
        longitude("lon_0", parser.GetCentralMeridian());
        token("k_0", scale);
        falseOrigin();
        break;
    case CKvMapProjData::eAlbersEqualArea:
    case CKvMapProjData::eEquidistantConic:
        out += parser.GetProjectionType() == CKvMapProjData::eAlbersEqualArea ? "+proj=aea " : "+proj=eqdc ";
        angle("lat_0", parser.GetLatitudeOfOrigin());
        longitude("lon_0", parser.GetCentralMeridian());
        angle("lat_1", parser.GetStandardParallel1());
        angle("lat_2", parser.GetStandardParallel2());
        falseOrigin();
        break;
    case CKvMapProjData::eStereographic:
    case CKvMapProjData::eStereographicSnyder:
        // EPSG's oblique stereographic is PROJ's sterea; Snyder's is PROJ's stere.
        out += parser.GetProjectionType() == CKvMapProjData::eStereographic ? "+proj=sterea " : "+proj=stere ";
        angle("lat_0", parser.GetLatitudeOfOrigin());
        longitude("lon_0", parser.GetCentralMeridian());
        token("k", scale);
        falseOrigin();
        break;
    case CKvMapProjData::eNewZealandMapGrid:
        out += "+proj=nzmg ";
        angle("lat_0", parser.GetLatitudeOfOrigin());
        longitude("lon_0", parser.GetCentralMeridian());
        falseOrigin();
        break;
    case CKvMapProjData::eHotineObliqueMercator:
    case CKvMapProjData::eObliqueMercator:
    case CKvMapProjData::eRectifiedSkewOrthomorphic: {
        // Variant A counts from the natural origin (+no_uoff), variant B from the
        // centre; the grid angle is the azimuth unless one is given.
        const bool centre = parser.GetProjectionType() == CKvMapProjData::eObliqueMercator ||
                            (parser.GetProjectionType() == CKvMapProjData::eRectifiedSkewOrthomorphic &&
                             parser.GetCentreOrigin());
        out += centre ? "+proj=omerc " : "+proj=omerc +no_uoff ";
        angle("lat_0", parser.GetLatitudeOfCenter());
        longitude("lonc", parser.GetLongitudeOfCenter());
        angle("alpha", parser.GetAzimuth());
        if (parser.GetProjectionType() == CKvMapProjData::eRectifiedSkewOrthomorphic && given)
            angle("gamma", parser.GetXYPlaneRotation());
        token("k", scale);
        falseOrigin();
        break;
    }
    case CKvMapProjData::eMercator2SP:
        out += "+proj=merc ";
        angle("lat_ts", parser.GetStandardParallel1());
        longitude("lon_0", parser.GetCentralMeridian());
        falseOrigin();
        break;
    case CKvMapProjData::eMercator1SP:
        out += "+proj=merc ";
        longitude("lon_0", parser.GetCentralMeridian());
        token("k", scale);
        falseOrigin();
        break;
    case CKvMapProjData::eStereographicNorthPole:
    case CKvMapProjData::eStereographicSouthPole:
        out += parser.GetProjectionType() == CKvMapProjData::eStereographicNorthPole ? "+proj=stere +lat_0=90 "
                                                                                     : "+proj=stere +lat_0=-90 ";
        angle("lat_ts", parser.GetStandardParallel1());
        longitude("lon_0", parser.GetCentralMeridian());
        falseOrigin();
        break;
    case CKvMapProjData::ePolarStereographic:
        // Variant A: the scale at the pole; the pole by the sign of the latitude.
        out += parser.GetLatitudeOfOrigin() >= 0.0 ? "+proj=stere +lat_0=90 " : "+proj=stere +lat_0=-90 ";
        longitude("lon_0", parser.GetCentralMeridian());
        token("k", scale);
        falseOrigin();
        break;
    case CKvMapProjData::eKrovak: {
        // The engine's grid counts southing and westing, turned and scaled by the
        // ESRI parameters; PROJ's counts easting and northing, and +axis turns it.
        const double rotation = parser.GetXYPlaneRotation() * k;
        const double xs = parser.GetXScale(), ys = parser.GetYScale();
        const double quarter = std::remainder(rotation, 360.0) / 90.0;
        // A right angle in a unit written to 16 digits comes within rounding of 90.
        if (std::fabs(xs) != 1.0 || std::fabs(ys) != 1.0 || !std::isfinite(quarter) ||
            std::fabs(quarter - std::nearbyint(quarter)) > 1e-9)
            return fail("a Krovak grid scaled by other than 1 or turned by other than a right angle has no PROJ "
                        "string");
        const char southing = xs > 0.0 ? 's' : 'n', westing = ys > 0.0 ? 'w' : 'e';
        char first = southing, second = westing;
        const int turns = (static_cast<int>(std::nearbyint(quarter)) % 4 + 4) % 4;
        const auto opposite = [](char c) { return c == 's' ? 'n' : c == 'n' ? 's' : c == 'w' ? 'e' : 'w'; };
        for (int i = 0; i < turns; ++i) { // (x, y) -> (-y, x)
            const char x = opposite(second), y = first;
            first = x;
            second = y;
        }
        out += "+proj=krovak ";
        if (!(first == 'e' && second == 'n'))
            out += std::string("+axis=") + first + second + "u ";
        angle("lat_0", parser.GetLatitudeOfCenter());
        longitude("lon_0", parser.GetLongitudeOfCenter());
        angle("alpha", parser.GetAzimuth());
        token("k", scale);
        falseOrigin();
        break;
    }
    case CKvMapProjData::eLambertAzimuthalEqualArea:
    case CKvMapProjData::eCassiniSoldner:
        out += parser.GetProjectionType() == CKvMapProjData::eCassiniSoldner ? "+proj=cass " : "+proj=laea ";
        angle("lat_0", parser.GetLatitudeOfOrigin());
        longitude("lon_0", parser.GetCentralMeridian());
        falseOrigin();
        break;
    case CKvMapProjData::eGeographical: out += "+proj=longlat "; break;
    case CKvMapProjData::ePseudoMercator:
        // PROJ's webmerc takes the figure of the datum and projects on the sphere
        // of its semi-major axis, as the registry's method does.
        out += "+proj=webmerc ";
        angle("lat_0", parser.GetLatitudeOfOrigin());
        longitude("lon_0", parser.GetCentralMeridian());
        falseOrigin();
        break;
    default: {
        // A described method: PROJ's method and its parameters' keys from the
        // descriptor; a parameter the text does not give is written with its
        // fallback, which is in degrees and metres.
        const CKvMapProjData::EProjectionType type = parser.GetProjectionType();
        const CKvMapProjData::STypeInfo* info = CKvMapProjData::GetTypeInfo(type);
        if (!CKvMapProjData::IsDescribedMethod(type) || info->proj == nullptr)
            return fail("a " + parser.GetProjectionTypeTitle().GetStdString() + " system has no PROJ string");
        out += std::string(info->proj) + " ";
        for (int i = 0; i < info->noOfParameters; ++i) {
            const CKvMapProjData::SParameter& parameter = info->parameters[i];
            if (parameter.projKey == nullptr)
                continue;
            const double value = parser.GetMethodParameter(i);
            if (value == CKvPRJParser::Undefined)
                token(parameter.projKey, parameter.fallback);
            else if (parameter.kind == CKvMapProjData::eLength)
                token(parameter.projKey, value * metres);
            else if (parameter.kind == CKvMapProjData::eAngle && parameter.longitude)
                longitude(parameter.projKey, value);
            else if (parameter.kind == CKvMapProjData::eAngle)
                angle(parameter.projKey, value);
            else
                token(parameter.projKey, value);
        }
        break;
    }
    }

    if (rf == 0.0)
        token("R", a);
    else {
        token("a", a);
        token("rf", rf);
    }
    CKvDatumShift shift;
    parser.GetDatumShift(shift);
    const bool shiftGiven = datumShift != nullptr && count >= 1;
    if (shiftGiven || shift.GetType() != CKvCartDef::eNoDatumShift) {
        out += "+towgs84=";
        for (int i = 0; i < CKvDatumShift::NoOfParameters; ++i) {
            const double value = shiftGiven ? (i < count ? datumShift[i] : 0.0) : shift[i];
            finite = finite && std::isfinite(value);
            out += (i > 0 ? "," : "") + Shortest(value);
        }
        out += " ";
    }
    if (parser.GetProjectionType() != CKvMapProjData::eGeographical) {
        const double unit = gridUnit > 0.0 ? gridUnit : metres;
        out += unit == 1.0 ? std::string("+units=m ") : "+to_meter=" + Shortest(unit) + " ";
    }
    out += "+no_defs +type=crs";
    if (!finite)
        return fail("a parameter of the system is not a finite number: PROJ could not be told it");
    if (reason != nullptr)
        reason->clear();
    return out;
}
