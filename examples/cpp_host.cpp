// A host program in C++: sets up the catalogue, makes coordinate systems from
// WKT and from a catalogue name, projects places and back, converts between two
// datums and writes a system back as PROJ.4 text.
// Usage: cpp_host [system-directory/ [user-directory/]]
#include "coordsys/KvMapProjection.h"
#include "geodesy/KvDatumConverter.h"
#include "interface/KvCart.h"
#include "wkt/KvProjTranslator.h"

#include <cstdio>

namespace {

// ED50 / UTM zone 32N with the EPSG:1133 shift to WGS 84.
const char kEd50[] =
    "PROJCS[\"ED50 / UTM zone 32N\",GEOGCS[\"ED50\",DATUM[\"European_Datum_1950\",SPHEROID[\"International "
    "1924\",6378388,297],TOWGS84[-87,-98,-121,0,0,0,0]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\","
    "0.0174532925199433]],PROJECTION[\"Transverse_Mercator\"],PARAMETER[\"latitude_of_origin\",0],"
    "PARAMETER[\"central_meridian\",9],PARAMETER[\"scale_factor\",0.9996],PARAMETER[\"false_easting\",500000],"
    "PARAMETER[\"false_northing\",0],UNIT[\"metre\",1]]";

struct Place
{
    const char* name;
    double lon, lat;
};

} // namespace

int main(int argc, char** argv)
{
    const char* system = argc > 1 ? argv[1] : KVCART_DATA_DIR;
    CARTSETUPLINUX(system, argc > 2 ? argv[2] : system);

    const CKvMapProjection ed50(kEd50);
    const CKvMapProjection wgs84("UTM-32");
    const Place places[] = {{"Munich", 11.5755, 48.1372}, {"Zurich", 8.5417, 47.3769}, {"Hamburg", 9.9937, 53.5511}};

    std::printf("%-8s %13s %13s %13s %13s %9s\n", "place", "ED50 east", "ED50 north", "UTM-32 east", "UTM-32 north",
                "conv.");
    for (const Place& p : places) {
        double e = 0, n = 0, ue = 0, un = 0, lon = 0, lat = 0;
        ed50.Geo2Proj(p.lon, p.lat, &e, &n);
        wgs84.Geo2Proj(p.lon, p.lat, &ue, &un);
        wgs84.Proj2Geo(ue, un, &lon, &lat);
        std::printf("%-8s %13.3f %13.3f %13.3f %13.3f %9.5f  (back %.9f %.9f)\n", p.name, e, n, ue, un,
                    wgs84.GetConvergence(p.lon, p.lat), lon, lat);
    }

    // Grid coordinates on WGS 84 to ED50 grid coordinates (3-parameter shift).
    CKvDatumConverter converter("UTM-32", kEd50);
    std::printf("\nUTM-32 (WGS 84) to ED50 / UTM 32N:\n");
    for (const Place& p : places) {
        double x = 0, y = 0;
        wgs84.Geo2Proj(p.lon, p.lat, &x, &y);
        const double x84 = x, y84 = y;
        converter.Convert(x, y);
        std::printf("%-8s %13.3f %13.3f -> %13.3f %13.3f\n", p.name, x84, y84, x, y);
    }

    std::printf("\nPROJ.4: %s\n", CKvProjTranslator().Convert2Proj4(kEd50, nullptr, 0).c_str());
    std::printf("identical to UTM-32: %s\n", CKvMapProjection::AreIdentical(kEd50, "UTM-32") ? "yes" : "no");
    return 0;
}
