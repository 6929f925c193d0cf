/* The C interface from a C99 program: handles, status codes, the string
 * buffer contract, the argument order of S_ISTYPE, UTM zones at the
 * antimeridian, NULL arguments, and a host that switched to a comma-decimal
 * locale before calling. */
#include "interface/KvCart.h"

#include <locale.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int failures = 0;

#define CHECK(condition)                                                                                       \
    do {                                                                                                       \
        if (!(condition)) {                                                                                    \
            fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition);                                   \
            ++failures;                                                                                        \
        }                                                                                                      \
    } while (0)

#define NEAR(a, b, tolerance) CHECK(fabs((a) - (b)) <= (tolerance))

static const char* kUtm32 =
    "PROJCS[\"WGS 84 / UTM zone 32N\",GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\",6378137,"
    "298.257223563]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],PROJECTION["
    "\"Transverse_Mercator\"],PARAMETER[\"latitude_of_origin\",0],PARAMETER[\"central_meridian\",9],"
    "PARAMETER[\"scale_factor\",0.9996],PARAMETER[\"false_easting\",500000],PARAMETER[\"false_northing\",0],"
    "UNIT[\"metre\",1]]";

static const char* kDhdn =
    "GEOGCS[\"DHDN\",DATUM[\"Deutsches_Hauptdreiecksnetz\",SPHEROID[\"Bessel 1841\",6377397.155,299.1528128],"
    "TOWGS84[598.1,73.7,418.2,0.202,0.045,-2.455,6.7]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\","
    "0.0174532925199433]]";

static void strings(KVMP_HANDLE system)
{
    /* "UTM-32" has 6 characters: size 5 reports 6 and leaves the buffer alone,
     * size 6 and 7 copy 7 bytes. */
    char buffer[16];
    int status = -2;
    memset(buffer, 'x', sizeof buffer);
    C_KVMP_GETNAME(system, buffer, 5, &status);
    CHECK(status == 6);
    CHECK(buffer[0] == 'x');
    C_KVMP_GETNAME(system, buffer, 6, &status);
    CHECK(status == 0);
    CHECK(strcmp(buffer, "UTM-32") == 0);
    CHECK(buffer[7] == 'x');
    memset(buffer, 'x', sizeof buffer);
    C_KVMP_GETNAME(system, buffer, 7, &status);
    CHECK(status == 0 && strcmp(buffer, "UTM-32") == 0);

    S_LONGITUDETOUTMZONE(buffer, 6, &status, -0.5);
    CHECK(status == 0 && strcmp(buffer, "UTM-30") == 0);
    /* The antimeridian is the western edge of zone 1; any finite longitude is
     * brought onto the globe first; NaN has no zone. */
    S_LONGITUDETOUTMZONE(buffer, 16, &status, 180.0);
    CHECK(status == 0 && strcmp(buffer, "UTM-1") == 0);
    S_LONGITUDETOUTMZONE(buffer, 16, &status, 359.9);
    CHECK(status == 0 && strcmp(buffer, "UTM-30") == 0);
    S_LONGITUDETOUTMZONE(buffer, 16, &status, NAN);
    CHECK(status == 0 && buffer[0] == '\0');
    S_PROJECTIONSHORTNAME(kUtm32, buffer, 16, &status);
    CHECK(status == (int)strlen("WGS 84 / UTM zone 32N"));
    S_GETGOOGLEMAPPROJECTIONSTRING(NULL, 0, &status);
    CHECK(status > 100);
    {
        char* google = malloc((size_t)status + 1);
        int size = status;
        S_GETGOOGLEMAPPROJECTIONSTRING(google, size, &status);
        CHECK(status == 0 && strncmp(google, "PROJCS[\"Google Maps - Mercator\"", 31) == 0);
        free(google);
    }
}

static void systems(void)
{
    KVMP_HANDLE system = NULL, unknown = NULL, wkt = NULL;
    int status = -2;
    double x = 0, y = 0, lon = 0, lat = 0;

    C_KVMP_CREATE("UTM", &system, &status);
    CHECK(status == -1 && system == NULL);
    C_KVMP_CREATE("No such grid", &unknown, &status);
    CHECK(status == 0 && unknown != NULL);
    {
        char name[8] = "unset";
        C_KVMP_GETNAME(unknown, name, 7, &status);
        CHECK(status == 0 && name[0] == '\0');
        C_KVMP_GETORIGIN(unknown, &x, &y);
        CHECK(x == 0.0 && y == 0.0);
    }
    C_KVMP_DESTROY(&unknown, &status);
    CHECK(status == 0 && unknown == NULL);
    C_KVMP_DESTROY(&unknown, &status);
    CHECK(status == -1);

    C_KVMP_CREATE(" UTM-32 ", &system, &status);
    CHECK(status == 0);
    C_KVMP_CREATE(kUtm32, &wkt, &status);
    CHECK(status == 0);
    C_KVMP_GEO2PROJ(system, 10.0, 50.0, &x, &y);
    /* PROJ: echo 10 50 | proj +proj=utm +zone=32 +ellps=WGS84 */
    NEAR(x, 571666.4475034359, 1e-3);
    NEAR(y, 5539109.8152987976, 1e-3);
    C_KVMP_PROJ2GEO(wkt, x, y, &lon, &lat);
    NEAR(lon, 10.0, 1e-9);
    NEAR(lat, 50.0, 1e-9);
    NEAR(C_KVMP_GETCONVERGENCE(system, 9.0, 50.0), 0.0, 1e-9);
    CHECK(C_KVMP_GETCONVERGENCE(system, 10.0, 50.0) > 0.7);
    {
        double X = 0, Y = 0, Z = 0, h = 0;
        C_KVMP_GEO2XYZ(wkt, 10.0, 50.0, 100.0, &X, &Y, &Z);
        C_KVMP_XYZ2GEO(wkt, X, Y, Z, &lon, &lat, &h);
        NEAR(lon, 10.0, 1e-11);
        NEAR(lat, 50.0, 1e-11);
        NEAR(h, 100.0, 1e-6);
    }
    {
        double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
        C_KVMP_GETDEFAULTAREA(system, &x0, &y0, &x1, &y1);
        CHECK(x0 < x1 && y0 < y1);
    }
    strings(system);
    C_KVMP_DESTROY(&system, &status);
    C_KVMP_DESTROY(&wkt, &status);
    CHECK(status == 0);
}

static void queries(void)
{
    double x = -1, y = -1;
    int status = -2;
    /* The string first, the mask second. */
    CHECK(S_ISTYPE("LONG/LAT", 4) == 1);
    CHECK(S_ISTYPE("UTM-32", 1) == 1);
    CHECK(S_ISTYPE("UTM-32", 2) == 0);
    CHECK(S_ISTYPE("UTM", 3) == 0);
    CHECK(S_ISVALID(" NON-UTM ") == 1 && S_ISVALID("UTM") == 0 && S_ISVALID("") == 0);
    CHECK(S_ISLOCAL("NON-UTM") == 1 && S_ISGEOREFERENCED("NON-UTM") == 0);
    CHECK(S_ISLONGLAT(" LONG/LAT") == 1 && S_ISGEOGRAPHICAL("LONG/LAT") == 1);
    CHECK(S_HASDATUM("LONG/LAT") == 0 && S_HASDATUM(kUtm32) == 1);
    CHECK(S_AREIDENTICAL("UTM-32", kUtm32) == 1 && S_AREIDENTICAL("UTM-33", kUtm32) == 0);
    CHECK(S_GETCOORDSYSTYPE("UTM-32") == 1);
    S_PROJECTIONORIGIN("UTM-32", &x, &y, &status);
    CHECK(status == 0);
    S_PROJECTIONORIGIN("UTM", &x, &y, &status);
    CHECK(status == -1);
    {
        KVP_HANDLE engine = NewKvProjection("UTM-32");
        CHECK(engine != NULL);
        DeleteKvProjection(engine);
        CHECK(NewKvProjection("UTM") == NULL);
        CHECK(NewKvProjection("No such grid") == NULL);
    }
}

static void grids_and_datums(void)
{
    KVC_HANDLE grid = NULL;
    KVDC_HANDLE converter = NULL, failed = NULL;
    int status = -2;
    double x = 0, y = 0, X = 0, Y = 0, h = 0;
    char name[32];

    C_KVC_CREATE("UTM", 9.5, 50.0, 30.0, &grid, &status);
    CHECK(status == 0);
    C_KVC_GETPROJECTIONNAME(grid, name, 31, &status);
    CHECK(status == 0 && strcmp(name, "UTM-32") == 0);
    C_KVC_GETPROJECTIONSTRING(grid, name, 31, &status);
    CHECK(status == 0 && strcmp(name, "UTM-32") == 0);
    NEAR(C_KVC_GETTRUENORTH(grid, 0.0, 0.0), 30.0, 1e-12);
    NEAR(C_KVC_GETPROJNORTH(grid), 30.0 - C_KVMP_GETCONVERGENCE(C_KVC_GETPROJECTION(grid), 9.5, 50.0), 1e-12);
    C_KVC_XY2PROJ(grid, 100.0, 200.0, &X, &Y);
    C_KVC_PROJ2XY(grid, X, Y, &x, &y);
    NEAR(x, 100.0, 1e-9);
    NEAR(y, 200.0, 1e-9);
    C_KVC_XY2GEO(grid, 100.0, 200.0, &X, &Y);
    C_KVC_GEO2XY(grid, X, Y, &x, &y);
    NEAR(x, 100.0, 1e-6);
    C_KVC_GEO2PROJ(grid, 9.5, 50.0, &X, &Y);
    C_KVC_PROJ2GEO(grid, X, Y, &x, &y);
    NEAR(x, 9.5, 1e-9);
    C_KVC_DESTROY(&grid, &status);
    CHECK(status == 0 && grid == NULL);
    C_KVC_CREATE(" UTM", 9.5, 50.0, 0.0, &grid, &status);
    CHECK(status == -1 && grid == NULL);
    C_KVC_DESTROY(&grid, &status);
    CHECK(status == -1);
    /* A grid on the antimeridian is one of zone 1 and transforms; NaN names no
     * zone and makes no grid.
     * PROJ: echo 180 50 | cs2cs +proj=longlat +ellps=WGS84 +to +proj=utm +zone=1 +ellps=WGS84 */
    C_KVC_CREATE("UTM", 180.0, 50.0, 0.0, &grid, &status);
    CHECK(status == 0);
    C_KVC_GETPROJECTIONNAME(grid, name, 31, &status);
    CHECK(status == 0 && strcmp(name, "UTM-1") == 0);
    C_KVC_GEO2PROJ(grid, 180.0, 50.0, &X, &Y);
    NEAR(X, 285015.763265, 1e-6);
    NEAR(Y, 5542944.018649, 1e-6);
    C_KVC_DESTROY(&grid, &status);
    C_KVC_CREATE("UTM", NAN, 50.0, 0.0, &grid, &status);
    CHECK(status == -1 && grid == NULL);

    C_KVDC_CREATE("UTM", "LONG/LAT", &failed, &status);
    CHECK(status == -1 && failed == NULL);
    C_KVDC_CREATE(kDhdn, "UTM-32", &converter, &status);
    CHECK(status == 0 && C_KVDC_GETBYPASSXYZ(converter) == 0);
    C_KVDC_SETCONVERSIONTYPE(converter, 2);
    x = 10.0;
    y = 50.0;
    h = 0.0;
    C_KVDC_CONVERTXYH(converter, &x, &y, &h);
    /* PROJ: cs2cs --3d +proj=longlat +ellps=bessel +towgs84=598.1,73.7,418.2,0.202,0.045,-2.455,6.7
     *       +to +proj=utm +zone=32 +ellps=WGS84 +towgs84=0,0,0 */
    NEAR(x, 571583.1440, 1e-3);
    NEAR(y, 5538981.6282, 1e-3);
    NEAR(h, 48.9643, 1e-3);
    C_KVDC_INVCONVERTXYH(converter, &x, &y, &h);
    NEAR(x, 10.0, 1e-7);
    NEAR(y, 50.0, 1e-7);
    C_KVDC_BYPASSXYZ(converter);
    CHECK(C_KVDC_GETBYPASSXYZ(converter) == 1);
    C_KVDC_RESETBYPASSXYZ(converter);
    CHECK(C_KVDC_GETBYPASSXYZ(converter) == 0);
    {
        double none[7] = {0, 0, 0, 0, 0, 0, 0};
        X = 4000000.0;
        Y = 700000.0;
        h = 4900000.0;
        C_KVDC_DATUMSHIFT(converter, &X, &Y, &h);
        C_KVDC_INVDATUMSHIFT(converter, &X, &Y, &h);
        NEAR(X, 4000000.0, 1e-3);
        CHECK(C_KVDC_SETDATUMSHIFT(converter, 0, none, 1) == 0); /* Bessel and WGS 84 differ */
    }
    C_KVDC_INVERTORDER(converter);
    x = 10.0;
    y = 50.0;
    C_KVDC_CONVERTXY(converter, &x, &y);
    C_KVDC_INVCONVERTXY(converter, &x, &y);
    NEAR(x, 10.0, 1e-7);
    C_KVDC_DESTROY(&converter, &status);
    CHECK(status == 0 && converter == NULL);
    C_KVDC_DESTROY(&converter, &status);
    CHECK(status == -1);
}

/* A host that passes NULL: a NULL status makes the call do nothing, a NULL
 * handle pointer or handle is refused with -1, a NULL buffer learns the
 * length. */
static void null_arguments(void)
{
    KVMP_HANDLE system = NULL;
    KVC_HANDLE grid = NULL;
    KVDC_HANDLE converter = NULL;
    int status = -2;
    char name[8] = "unset";

    C_KVMP_CREATE("UTM-32", NULL, &status);
    CHECK(status == -1);
    status = -2;
    C_KVC_CREATE("UTM", 9.5, 50.0, 0.0, NULL, &status);
    CHECK(status == -1);
    status = -2;
    C_KVDC_CREATE(kDhdn, "UTM-32", NULL, &status);
    CHECK(status == -1);
    C_KVMP_CREATE("UTM-32", &system, NULL);
    C_KVC_CREATE("UTM", 9.5, 50.0, 0.0, &grid, NULL);
    C_KVDC_CREATE(kDhdn, "UTM-32", &converter, NULL);
    CHECK(system == NULL && grid == NULL && converter == NULL);
    C_KVMP_DESTROY(NULL, NULL);
    C_KVC_DESTROY(NULL, NULL);
    C_KVDC_DESTROY(NULL, NULL);
    status = -2;
    C_KVMP_DESTROY(NULL, &status);
    CHECK(status == -1);

    C_KVMP_CREATE("UTM-32", &system, &status);
    CHECK(status == 0);
    C_KVMP_GETNAME(system, name, 7, NULL);
    CHECK(strcmp(name, "unset") == 0);
    C_KVMP_GETNAME(NULL, name, 7, &status);
    CHECK(status == -1);
    C_KVMP_GETNAME(system, NULL, 7, &status);
    CHECK(status == 6);
    C_KVMP_DESTROY(&system, NULL);
    CHECK(system != NULL);
    C_KVMP_DESTROY(&system, &status);
    CHECK(status == 0 && system == NULL);
}

static void comma_locale(void)
{
    char text[512];
    int status = -2;
    KVMP_HANDLE system = NULL;
    double x = 0, y = 0;
    if (setlocale(LC_ALL, "de_DE.UTF-8") == NULL) {
        fprintf(stderr, "the comma-decimal test locale is missing\n");
        ++failures;
        return;
    }
    {
        char probe[16];
        snprintf(probe, sizeof probe, "%.1f", 0.5);
        CHECK(strcmp(probe, "0,5") == 0); /* the host's own formatting is German */
    }
    C_KVMP_CREATE(kUtm32, &system, &status);
    CHECK(status == 0);
    C_KVMP_GEO2PROJ(system, 10.0, 50.0, &x, &y);
    NEAR(x, 571666.4475034359, 1e-3);
    C_KVC_CONVERT2PROJ4(kUtm32, NULL, 0, text, (int)sizeof text - 1, &status);
    CHECK(status == 0 && strstr(text, "+k=0.9996") != NULL && strchr(text, ',') == NULL);
    C_KVMP_DESTROY(&system, &status);
    setlocale(LC_ALL, "C");
}

/* A catalogue directory that does not exist is reported, and a name then says
 * why it does not resolve; the directory named without its final "/" (as
 * pkg-config's datadir gives it) is read like the one with it. */
static void catalogue_directories(const char* system, const char* user)
{
    char buffer[1024], directory[4096];
    int status = -2;
    KVMP_HANDLE handle = NULL;
    CARTSETUPLINUX("/nonexistent-kvcart-catalogue/", user);
    CARTGETERRORLINUX(buffer, sizeof buffer - 1, &status);
    CHECK(status == 0 && strstr(buffer, "'/nonexistent-kvcart-catalogue/' does not exist") != NULL);
    C_KVMP_CREATE("RD New", &handle, &status);
    CHECK(status == 0);
    C_KVMP_GETMESSAGE(handle, buffer, sizeof buffer - 1, &status);
    CHECK(status == 0 && strstr(buffer, "unknown coordinate system \"RD New\" (no catalogue was read") != NULL);
    C_KVMP_DESTROY(&handle, &status);

    snprintf(directory, sizeof directory, "%s", system);
    if (strlen(directory) > 1 && directory[strlen(directory) - 1] == '/')
        directory[strlen(directory) - 1] = '\0';
    CARTSETUPLINUX(directory, user);
    CARTGETERRORLINUX(buffer, sizeof buffer - 1, &status);
    CHECK(status == 0 && buffer[0] == '\0');
    C_KVMP_CREATE("RD New", &handle, &status);
    C_KVMP_GETMESSAGE(handle, buffer, sizeof buffer - 1, &status);
    CHECK(status == 0 && buffer[0] == '\0');
    C_KVMP_GETNAME(handle, buffer, sizeof buffer - 1, &status);
    CHECK(strcmp(buffer, "RD New") == 0);
    C_KVMP_DESTROY(&handle, &status);
}

int main(int argc, char** argv)
{
    if (argc < 3) {
        fprintf(stderr, "usage: %s system-directory/ user-directory/\n", argv[0]);
        return 2;
    }
    {
        /* Making and describing systems only reads the catalogue: nothing of the
         * user's is written back. */
        char custom[4096];
        snprintf(custom, sizeof custom, "%scustom_projection.gxr", argv[2]);
        remove(custom);
        catalogue_directories(argv[1], argv[2]);
        CARTSETUPLINUX(argv[1], argv[2]);
        systems();
        queries();
        grids_and_datums();
        null_arguments();
        comma_locale();
        CHECK(CARTWRITEBACKLINUX() == 0);
        CHECK(fopen(custom, "r") == NULL);
    }
    if (failures != 0)
        fprintf(stderr, "%d checks failed\n", failures);
    return failures == 0 ? 0 : 1;
}
