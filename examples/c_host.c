/* A host program in C: sets up the catalogue, makes coordinate systems from WKT
 * and from a catalogue name, projects places, converts between two datums and
 * lays a local site grid. Usage: c_host [system-directory/ [user-directory/]] */
#include "interface/KvCart.h"

#include <stdio.h>

static const char* kOsgb36 =
    "PROJCS[\"OSGB 1936 / British National Grid\",GEOGCS[\"OSGB 1936\",DATUM[\"OSGB_1936\",SPHEROID["
    "\"Airy 1830\",6377563.396,299.3249646],TOWGS84[446.448,-125.157,542.06,0.15,0.247,0.842,-20.489]],"
    "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],PROJECTION[\"Transverse_Mercator\"],"
    "PARAMETER[\"latitude_of_origin\",49],PARAMETER[\"central_meridian\",-2],PARAMETER[\"scale_factor\","
    "0.9996012717],PARAMETER[\"false_easting\",400000],PARAMETER[\"false_northing\",-100000],UNIT[\"metre\",1]]";

int main(int argc, char** argv)
{
    const char* system = argc > 1 ? argv[1] : KVCART_DATA_DIR;
    const char* user = argc > 2 ? argv[2] : system;
    static const struct { const char* name; double lon, lat; } places[] = {
        {"Greenwich", 0.0, 51.4779}, {"Ben Nevis", -5.0035, 56.7969}, {"Land's End", -5.7146, 50.0657}};
    KVMP_HANDLE grid = NULL, zone = NULL;
    KVDC_HANDLE converter = NULL;
    KVC_HANDLE site = NULL;
    char name[64];
    int status = 0, i;

    CARTSETUPLINUX(system, user);
    C_KVMP_CREATE(kOsgb36, &grid, &status);
    if (status != 0)
        return 1;
    C_KVMP_CREATE("UTM-30", &zone, &status);
    if (status != 0)
        return 1;
    C_KVMP_GETNAME(zone, name, (int)sizeof name - 1, &status);

    printf("%-12s %14s %14s %14s %14s\n", "place", "BNG east", "BNG north", "UTM-30 east", "UTM-30 north");
    for (i = 0; i < 3; ++i) {
        double e = 0, n = 0, ue = 0, un = 0;
        C_KVMP_GEO2PROJ(grid, places[i].lon, places[i].lat, &e, &n);
        C_KVMP_GEO2PROJ(zone, places[i].lon, places[i].lat, &ue, &un);
        printf("%-12s %14.3f %14.3f %14.3f %14.3f\n", places[i].name, e, n, ue, un);
    }

    /* WGS 84 places to OSGB36 national grid coordinates through the datum shift. */
    C_KVDC_CREATE("UTM-30", kOsgb36, &converter, &status);
    if (status != 0)
        return 1;
    C_KVDC_SETCONVERSIONTYPE(converter, 2); /* longitude/latitude in, grid out */
    printf("\nWGS 84 to OSGB36 (7-parameter shift), national grid:\n");
    for (i = 0; i < 3; ++i) {
        double x = places[i].lon, y = places[i].lat, h = 0.0;
        C_KVDC_CONVERTXYH(converter, &x, &y, &h);
        printf("%-12s %14.3f %14.3f  height %+8.3f\n", places[i].name, x, y, h);
    }

    /* A site grid at Greenwich whose y axis points 45 degrees east of north. */
    C_KVC_CREATE("UTM", 0.0, 51.4779, 45.0, &site, &status);
    if (status != 0)
        return 1;
    C_KVC_GETPROJECTIONNAME(site, name, (int)sizeof name - 1, &status);
    {
        double lon = 0, lat = 0;
        C_KVC_XY2GEO(site, 0.0, 1000.0, &lon, &lat);
        printf("\nsite grid on %s: 1 km up its y axis is %.7f %.7f, true north there %.4f degrees\n", name, lon,
               lat, C_KVC_GETTRUENORTH(site, 0.0, 1000.0));
    }

    C_KVC_DESTROY(&site, &status);
    C_KVDC_DESTROY(&converter, &status);
    C_KVMP_DESTROY(&zone, &status);
    C_KVMP_DESTROY(&grid, &status);
    return status == 0 ? 0 : 1;
}
