#include "wkt/KvProjTranslator.h"

#include "coordsys/KvMapProjection.h"
#include "geodesy/KvDatumShift.h"
#include "projections/KvProjection.h"
#include "wkt/KvPRJParser.h"

#include <cmath>
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

    CKvPRJParser parser(WktOf(text, *engine));
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
    default: break; // "Non_Projected" has no PROJ.4 name: the figure only
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
