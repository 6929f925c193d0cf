# Krovak Modified and its north-orientated form, Colombia Urban, the
# Transverse Mercator Zoned Grid System and the Hyperbolic Cassini-Soldner.
#
# PROJ 9.1 computes neither Krovak Modified form: their references are the
# worked example of IOGP Guidance Note 7-2 and, over Czechia, PROJ's krovak
# (the unmodified grid, +axis=swu for southing and westing) with the Czech Land
# Survey Office's published polynomial applied here (krovak_modified below).
# PROJ's krovak takes the cone's axis as S-JTSK's 30 17 17.30311 whatever +alpha
# says, so the points over Czechia are those of a text with that co-latitude;
# the registry's S-JTSK/05 systems (30 17 17.3031) have the worked example.
# The zoned grid system is PROJ's tmerc of one zone at a time, its false
# easting carrying the zone number (zone * 10^6 + FE).
#
# The registry's systems by their codes (EPSG:5224, 5225, 5515, 5516, 6247,
# 32600, 32700), and texts of our own: the Ferro-free and Ferro forms, ESRI's
# IGAC_Plano_Cartesiano and GDAL's spelling of the EPSG names, other figures.
# EPSG:3139 is not in the registry (GDAL writes no WKT 1 for the method): its
# text is the one GDAL would write, the EPSG names with underscores, which PROJ
# reads as the same map.
import pyproj

GEOG_SJTSK05 = ('GEOGCS["S-JTSK/05",DATUM["System_of_the_Unified_Trigonometrical_Cadastral_Network_05",'
                'SPHEROID["Bessel 1841",6377397.155,299.1528128]],PRIMEM["Greenwich",0],'
                'UNIT["degree",0.0174532925199433]]')
GEOG_SJTSK05_FERRO = ('GEOGCS["S-JTSK/05 (Ferro)",DATUM["System_of_the_Unified_Trigonometrical_Cadastral_'
                      'Network_05_Ferro",SPHEROID["Bessel 1841",6377397.155,299.1528128]],'
                      'PRIMEM["Ferro",-17.6666666666667],UNIT["degree",0.0174532925199433]]')
GEOG_MAGNA = ('GEOGCS["GCS_MAGNA",DATUM["D_MAGNA",SPHEROID["GRS_1980",6378137.0,298.257222101]],'
              'PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]]')
GEOG_VANUA_LEVU = ('GEOGCS["Vanua Levu 1915",DATUM["Vanua_Levu_1915",SPHEROID["Clarke 1880 (international foot)",'
                   '6378306.3696,293.466307655635]],PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]]')

CZECHIA = (12.09, 48.58, 18.86, 51.06)
LINK = 0.201168

# --- Krovak Modified -------------------------------------------------------

# The polynomial of the method (EPSG conversion "Modified Krovak"): evaluation
# point and coefficients C1..C10.
X0, Y0 = 1089000.0, 654000.0
C = [None, 2.946529277E-02, 2.515965696E-02, 1.193845912E-07, -4.668270147E-07, 9.233980362E-12,
     1.523735715E-12, 1.696780024E-18, 4.408314235E-18, -8.331083518E-24, -3.689471323E-24]


# S-JTSK's co-latitude of the cone axis, the one PROJ's krovak computes with.
SJTSK_CONE = "30.2881397527778"


def krovak_modified(lon, lat, fe=5000000.0, fn=5000000.0):
    """(southing, westing) of the modified grid on S-JTSK's cone: PROJ's krovak,
    then the guidance note's polynomial."""
    proj = pyproj.Proj("+proj=krovak +axis=swu +lat_0=49.5 +lon_0=24.8333333333333 +alpha=%s "
                       "+k=0.9999 +x_0=0 +y_0=0 +ellps=bessel" % SJTSK_CONE)
    xp, yp = proj(lon, lat)
    xr, yr = xp - X0, yp - Y0
    dx = (C[1] + C[3] * xr - C[4] * yr - 2 * C[6] * xr * yr + C[5] * (xr ** 2 - yr ** 2)
          + C[7] * xr * (xr ** 2 - 3 * yr ** 2) - C[8] * yr * (3 * xr ** 2 - yr ** 2)
          + 4 * C[9] * xr * yr * (xr ** 2 - yr ** 2) + C[10] * (xr ** 4 + yr ** 4 - 6 * xr ** 2 * yr ** 2))
    dy = (C[2] + C[3] * yr + C[4] * xr + 2 * C[5] * xr * yr + C[6] * (xr ** 2 - yr ** 2)
          + C[8] * xr * (xr ** 2 - 3 * yr ** 2) + C[7] * yr * (3 * xr ** 2 - yr ** 2)
          - 4 * C[10] * xr * yr * (xr ** 2 - yr ** 2) + C[9] * (xr ** 4 + yr ** 4 - 6 * xr ** 2 * yr ** 2))
    return fn + xp - dx, fe + yp - dy


def krovak_grid(north):
    """Points over Czechia, 6 by 6, as examples at 1 mm."""
    out = []
    west, south, east, north_ = CZECHIA
    for i in range(6):
        for j in range(6):
            lon = west + (east - west) * j / 5.0
            lat = south + (north_ - south) * i / 5.0
            s, w = krovak_modified(lon, lat)
            x, y = (-w, -s) if north else (s, w)
            out.append((lon, lat, x, y, "PROJ krovak and the published polynomial", 0.001))
    return out


# IOGP Guidance Note 7-2, Krovak Modified: 50 12 32.442 N, 16 50 59.179 E
# (Greenwich) gives southing 6 050 538.71 m, westing 5 568 990.91 m.
GN_KROVAK = (16.84977194, 50.20901167, 6050538.71, 5568990.91)

KROVAK_PARAMS = ('PARAMETER["Latitude of projection centre",49.5],PARAMETER["Longitude of origin",%s],'
                 'PARAMETER["Co-latitude of cone axis",%s],'
                 'PARAMETER["Latitude of pseudo standard parallel",78.5],'
                 'PARAMETER["Scale factor on pseudo standard parallel",0.9999],PARAMETER["False easting",5000000],'
                 'PARAMETER["False northing",5000000],UNIT["metre",1]')
SOUTH_WEST = ',AXIS["Southing",SOUTH],AXIS["Westing",WEST]]'
EAST_NORTH = ',AXIS["Easting",EAST],AXIS["Northing",NORTH]]'


def krovak_case(id, code, name, geogcs, lon0, north, cone="30.2881397222222"):
    """A case of the registry's system EPSG:code, or (code 0) of a text of our
    own on the given cone."""
    method = "Krovak_Modified_(North_Orientated)" if north else "Krovak_Modified"
    case = dict(
        id=id,
        crs="EPSG:%d" % code if code else 'PROJCS["%s",%s,PROJECTION["%s"],%s%s' % (
            name, geogcs, method, KROVAK_PARAMS % (lon0, cone), EAST_NORTH if north else SOUTH_WEST),
        proj=None,
        area=CZECHIA)
    if code:
        lon, lat, s, w = GN_KROVAK
        example = (lon, lat, -w, -s) if north else (lon, lat, s, w)
        case["examples"] = [example + ("IOGP GN 7-2 Krovak Modified%s (EPSG:%d)" % (
            " (North Orientated)" if north else "", code),)]
    else:
        case["examples"] = krovak_grid(north)
    return case


# --- Colombia Urban --------------------------------------------------------

def esri_urban(name, fe, fn, lon0, lat0, h0):
    return ('PROJCS["%s",%s,PROJECTION["IGAC_Plano_Cartesiano"],PARAMETER["False_Easting",%r],'
            'PARAMETER["False_Northing",%r],PARAMETER["Longitude_Of_Center",%r],PARAMETER["Latitude_Of_Center",%r],'
            'PARAMETER["Height",%r],UNIT["Meter",1.0]]' % (name, GEOG_MAGNA, fe, fn, lon0, lat0, h0))


def col_urban(lat0, lon0, fe, fn, h0, figure="+ellps=GRS80"):
    return "+proj=col_urban +lat_0=%r +lon_0=%r +x_0=%r +y_0=%r +h_0=%r %s" % (lat0, lon0, fe, fn, h0, figure)


# The closed-form reverse of the guidance note (PROJ's) misses the forward's
# inverse by up to a millimetre over a city; the library's is the exact one.
COLOMBIA_TOL = 0.002

# --- Transverse Mercator Zoned Grid System ----------------------------------

def utm_zone(zone, south):
    lon0 = -180 + 6 * zone - 3
    # The zone's own longitudes, its eastern edge (the next zone's) left out.
    west, east = lon0 - 3, lon0 + 2.999999
    return dict(
        id="tmzoned-utm-%s-z%d" % ("s" if south else "n", zone),
        crs="EPSG:32700" if south else "EPSG:32600",
        proj="+proj=tmerc +lat_0=0 +lon_0=%d +k=0.9996 +x_0=%d +y_0=%d +ellps=WGS84" % (
            lon0, zone * 1000000 + 500000, 10000000 if south else 0),
        area=(west, -80, east, 0) if south else (west, 0, east, 84),
        edges=[(west, 0), (east, 0), (lon0, 90 if not south else -90), (lon0, -30 if not south else 30),
               (west + 360 if west < 0 else west - 360, 45 if not south else -45)],
    )


CASES = [
    krovak_case("krovak-modified-5515", 5515, "S-JTSK/05 / Modified Krovak", GEOG_SJTSK05, "24.8333333333333",
                False),
    krovak_case("krovak-modified-5224-ferro", 5224, "S-JTSK/05 (Ferro) / Modified Krovak", GEOG_SJTSK05_FERRO,
                "42.5", False),
    krovak_case("krovak-modified-north-5516", 5516, "S-JTSK/05 / Modified Krovak East North", GEOG_SJTSK05,
                "24.8333333333333", True),
    krovak_case("krovak-modified-north-5225-ferro", 5225, "S-JTSK/05 (Ferro) / Modified Krovak East North",
                GEOG_SJTSK05_FERRO, "42.5", True),
    # S-JTSK's cone, where PROJ's krovak computes the unmodified grid.
    krovak_case("krovak-modified-sjtsk-cone", 0, "Modified Krovak on the S-JTSK cone", GEOG_SJTSK05,
                "24.8333333333333", False, SJTSK_CONE),
    # ... and on it, east-north, from Ferro.
    krovak_case("krovak-modified-north-sjtsk-cone-ferro", 0, "Modified Krovak East North on the S-JTSK cone",
                GEOG_SJTSK05_FERRO, "42.5", True, SJTSK_CONE),

    # EPSG:6247, the registry's (ESRI's) text. IOGP GN 7-2: 4 48 00 N, 74 15 00 W
    # gives E 80 859.033 m, N 122 543.174 m.
    dict(id="colombia-bogota-6247",
         crs="EPSG:6247",
         proj=col_urban(4.68048611111111, -74.1465916666667, 92334.879, 109320.965, 2550.0),
         area=(-74.27, 4.45, -73.98, 4.85),
         edges=[(-74.1465916666667, 4.68048611111111)],
         examples=[(-74.25, 4.8, 80859.033, 122543.174, "IOGP GN 7-2 Colombia Urban (EPSG:6247)", 0.001)],
         tol=COLOMBIA_TOL),
    # EPSG:6255, south of the equator, at the registry's text.
    dict(id="colombia-leticia-6255",
         crs=esri_urban("MAGNA_Leticia_2005", 25978.217, 27501.365, -69.9428110583333, -4.19768404722222, 89.7),
         proj=col_urban(-4.19768404722222, -69.9428110583333, 25978.217, 27501.365, 89.7),
         area=(-69.97, -4.23, -69.92, -4.17),
         tol=COLOMBIA_TOL),
    # The EPSG names as GDAL would write the method, on another ellipsoid, a city
    # grid 3 500 m up. (The note's closed-form reverse, PROJ's, misses the
    # forward by more than a millimetre over most of it: there the library's
    # answer is checked as a true point of the forward.)
    dict(id="colombia-ogc-names-international",
         crs='PROJCS["Urban test",GEOGCS["ED50",DATUM["European_Datum_1950",SPHEROID["International 1924",'
             '6378388,297]],PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]],PROJECTION["Colombia_Urban"],'
             'PARAMETER["Latitude of natural origin",10.25],PARAMETER["Longitude of natural origin",-73.5],'
             'PARAMETER["False easting",200000],PARAMETER["False northing",300000],'
             'PARAMETER["Projection plane origin height",3500],UNIT["metre",1]]',
         proj=col_urban(10.25, -73.5, 200000.0, 300000.0, 3500.0, "+ellps=intl"),
         area=(-73.7, 10.05, -73.3, 10.45),
         tol=COLOMBIA_TOL),
    dict(id="colombia-sphere",
         crs='PROJCS["Urban sphere",GEOGCS["Sphere",DATUM["Sphere",SPHEROID["Sphere",6371000,0]],'
             'PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]],PROJECTION["Colombia_Urban"],'
             'PARAMETER["Latitude of natural origin",-33.5],PARAMETER["Longitude of natural origin",151.0],'
             'PARAMETER["False easting",50000],PARAMETER["False northing",60000],'
             'PARAMETER["Projection plane origin height",500],UNIT["metre",1]]',
         proj=col_urban(-33.5, 151.0, 50000.0, 60000.0, 500.0, "+R=6371000"),
         area=(150.8, -33.7, 151.2, -33.3),
         tol=COLOMBIA_TOL),

    # WGS 84 / UTM grid system, EPSG:32600 and 32700, zone by zone: zone 31 (the
    # prime meridian), the two zones at the antimeridian (180 and -180 fall in
    # zone 1), a southern zone.
    utm_zone(31, False),
    utm_zone(1, False),
    utm_zone(60, False),
    utm_zone(33, True),
    # A zoned grid of 3-degree zones from 0 E on the International ellipsoid,
    # with an origin off the equator and no false easting (eastings below the
    # zone's million west of its central meridian): zone 5, 12 E to 15 E.
    dict(id="tmzoned-3deg-intl-z5",
         crs='PROJCS["Zoned test",GEOGCS["ED50",DATUM["European_Datum_1950",SPHEROID["International 1924",'
             '6378388,297]],PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]],'
             'PROJECTION["Transverse_Mercator_Zoned_Grid_System"],PARAMETER["Latitude of natural origin",10],'
             'PARAMETER["Initial longitude",0],PARAMETER["Zone width",3],'
             'PARAMETER["Scale factor at natural origin",1],PARAMETER["False easting",0],'
             'PARAMETER["False northing",100000],UNIT["metre",1]]',
         proj="+proj=tmerc +lat_0=10 +lon_0=13.5 +k=1 +x_0=5000000 +y_0=100000 +ellps=intl",
         area=(12.0, -60.0, 14.999999, 75.0),
         edges=[(12.0, 0.0), (13.5, 90.0)]),

    # Vanua Levu Grid (EPSG:3139) in links, as GDAL would write the method.
    # IOGP GN 7-2: 16 50 29.2435 S, 179 59 39.6115 E gives E 1 601 528.90 links,
    # N 1 336 966.01 links.
    dict(id="hyperbolic-cassini-3139",
         crs='PROJCS["Vanua Levu 1915 / Vanua Levu Grid",' + GEOG_VANUA_LEVU +
             ',PROJECTION["Hyperbolic_Cassini_Soldner"],PARAMETER["Latitude of natural origin",-16.25],'
             'PARAMETER["Longitude of natural origin",179.333333333333],PARAMETER["False easting",1251331.8],'
             'PARAMETER["False northing",1662888.5],UNIT["link",0.201168],AXIS["Northing",NORTH],'
             'AXIS["Easting",EAST]]',
         proj="+proj=cass +hyperbolic +lat_0=-16.25 +lon_0=179.333333333333 +x_0=251727.9155424 "
              "+y_0=334519.953768 +a=6378306.3696 +rf=293.466307655635",
         area=(178.42, -17.07, -179.77, -16.1),
         edges=[(179.333333333333, -16.25), (180.0, -16.5), (-180.0, -16.5)],
         examples=[(179 + (59 + 39.6115 / 60) / 60, -(16 + (50 + 29.2435 / 60) / 60), 1601528.90 * LINK,
                    1336966.01 * LINK, "IOGP GN 7-2 Hyperbolic Cassini-Soldner (EPSG:3139)", 0.01)]),
    # ESRI's Cassini names, another ellipsoid, north of the equator, a wider grid.
    dict(id="hyperbolic-cassini-esri-names",
         crs='PROJCS["Hyperbolic test",GEOGCS["GCS_WGS_1984",DATUM["D_WGS_1984",SPHEROID["WGS_1984",6378137.0,'
             '298.257223563]],PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]],'
             'PROJECTION["Hyperbolic_Cassini_Soldner"],PARAMETER["False_Easting",300000.0],'
             'PARAMETER["False_Northing",400000.0],PARAMETER["Central_Meridian",-61.0],'
             'PARAMETER["Latitude_Of_Origin",10.5],UNIT["Meter",1.0]]',
         proj="+proj=cass +hyperbolic +lat_0=10.5 +lon_0=-61 +x_0=300000 +y_0=400000 +ellps=WGS84",
         area=(-63.0, 8.5, -59.0, 12.5)),
]
