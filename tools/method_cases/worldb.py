# World maps and cylindrical maps: Winkel Tripel, Van der Grinten I, Natural
# Earth, Cylindrical Equal Area and Equidistant Cylindrical, from the registry's
# systems (ESRI:54042, 54029, 54077, 54034, 54002, 54001, EPSG:6933, 4087) and
# texts of our own with a false origin, a central meridian off Greenwich and
# other figures, written as ESRI and as GDAL write them.
#
# Where PROJ's numbers are not the map's:
# - Van der Grinten: PROJ takes Snyder's formulas as printed, whose differences
#   cancel near the central meridian and the equator: its forward misses the
#   formulas (evaluated to 60 digits in Python's decimal) by 1.6 cm at 0.5 W
#   1.5 S and by kilometres within a thousandth of a degree of the centre, and
#   its inverse (Snyder's trigonometric cubic) loses half the digits along the
#   equator. The library's forward keeps those figures to 1e-16 of R; the
#   grids of 25 and 21 points a side stay off the centre's neighbourhood, and
#   the points where PROJ's inverse misses its own forward by more than 1 mm
#   hold no point (the library must give one that maps back).
# - Winkel Tripel: PROJ drops the Aitoff part within about 1e-6 of R of the
#   centre (79 micrometres at 1e-9 degree) and refuses the inverse there.
# - Equidistant Cylindrical: PROJ's eqc is the spherical formula on the
#   semi-major axis, which is what ESRI's Equidistant_Cylindrical and
#   Plate_Carree and GDAL's Equirectangular (EPSG:4087's text) name and what
#   the cases below check; the registry's ellipsoidal method 1028 is the
#   engine's other form, checked against the guidance note's example in
#   tests/EquidistantCylindricalEllipsoidal_test.cpp.
#   PROJ's numerical meridian convergence on the outer meridians steps across
#   them: at 180 degrees and 60 S it gives 29.99995 degrees where the map's
#   meridian meets the circle at 30 degrees exactly (the library's, from the
#   formulas, is within 4e-9 degree of the 60-digit figures), so the grids
#   stay 0.1 degree inside the outline.
# - Cylindrical Equal Area on the ellipsoid: PROJ's inverse takes the geodetic
#   latitude from the authalic one by a three-term series that misses it by up
#   to 1.1 mm; the library's is exact to rounding, so the comparison allows 2 mm.
# PROJ's meridian convergence is numerical; near a pole it reaches across it,
# so no edge lies closer than 0.01 degree to one.

from decimal import Decimal, getcontext

WORLD = (-180, -90, 180, 90)


def vandg_60_digits(lon, lat, radius):
    """Van der Grinten I by Snyder's eqs. 29-1 to 29-8 as printed, in 60-digit
    decimal arithmetic, where their differences cost nothing."""
    getcontext().prec = 60
    pi = Decimal("3.14159265358979323846264338327950288419716939937510582097494")
    lam = Decimal(lon) * pi / 180
    phi = Decimal(lat) * pi / 180
    s = abs(2 * phi / pi)
    c = (1 - s * s).sqrt()
    if phi == 0:  # the equator, divided truly
        return float(Decimal(radius) * lam), 0.0
    if lam == 0 or s == 1:  # the central meridian and the poles
        return 0.0, float((pi * Decimal(radius) * s / (1 + c)).copy_sign(phi))
    a = abs(pi / lam - lam / pi) / 2
    g = c / (s + c - 1)
    p = g * (2 / s - 1)
    q = a * a + g
    x = (a * (g - p * p) + (a * a * (g - p * p) ** 2 - (p * p + a * a) * (g * g - p * p)).sqrt()) / (p * p + a * a)
    y = (p * q - a * ((a * a + 1) * (p * p + a * a) - q * q).sqrt()) / (p * p + a * a)
    k = pi * Decimal(radius)
    return float((k * x).copy_sign(lam)), float((k * y).copy_sign(phi))


def vandg_examples(points, radius):
    return [(lon, lat) + vandg_60_digits(lon, lat, radius) + ("Snyder eqs. 29-1 to 29-8, 60 digits", 1e-5)
            for lon, lat in points]
WGS84 = ('GEOGCS["GCS_WGS_1984",DATUM["D_WGS_1984",SPHEROID["WGS_1984",6378137.0,298.257223563]],'
         'PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]]')
CLARKE1866 = ('GEOGCS["GCS_Clarke_1866",DATUM["D_Clarke_1866",SPHEROID["Clarke_1866",6378206.4,294.9786982]],'
              'PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]]')
SPHERE = ('GEOGCS["GCS_Sphere",DATUM["D_Sphere",SPHEROID["Sphere",6371000.0,0.0]],PRIMEM["Greenwich",0.0],'
          'UNIT["Degree",0.0174532925199433]]')
INTL1924_GDAL = ('GEOGCS["International 1924",DATUM["Not_specified_based_on_International_1924_ellipsoid",'
                 'SPHEROID["International 1924",6378388,297]],PRIMEM["Greenwich",0],'
                 'UNIT["degree",0.0174532925199433]]')
WORLD_EDGES = [(180, 0), (-180, 0), (0, 89.99), (0, -89.99), (179.999999, 89.99), (-180, -89.99), (90, 45.5)]


def esri(name, geogcs, projection, params):
    return ('PROJCS["%s",%s,PROJECTION["%s"],%s,UNIT["Meter",1.0]]'
            % (name, geogcs, projection, ",".join('PARAMETER["%s",%r]' % p for p in params)))


def gdal(name, geogcs, projection, params):
    return ('PROJCS["%s",%s,PROJECTION["%s"],%s,UNIT["metre",1]]'
            % (name, geogcs, projection, ",".join('PARAMETER["%s",%r]' % p for p in params)))


CASES = [
    # Winkel Tripel
    dict(id="wintri-esri54042", crs="ESRI:54042",
         proj="+proj=wintri +lon_0=0 +lat_1=50.467 +x_0=0 +y_0=0 +ellps=WGS84",
         area=WORLD, edges=WORLD_EDGES + [(0, 90), (0, -90), (180, 90)], convergence=True),
    dict(id="wintri-clarke-offset",
         crs=esri("Winkel_Offset", CLARKE1866, "Winkel_Tripel",
                  [("False_Easting", 500000.0), ("False_Northing", -200000.0), ("Central_Meridian", 150.0),
                   ("Standard_Parallel_1", 40.0)]),
         proj="+proj=wintri +lon_0=150 +lat_1=40 +x_0=500000 +y_0=-200000 +a=6378206.4 +rf=294.9786982",
         area=(-179, -89, 179, 89), edges=[(-30.000001, 10), (-29.999999, -10), (150, 89.99), (-100, -60)]),
    # Without Standard_Parallel_1 the text takes Winkel's own, acos(2/pi), as PROJ does.
    dict(id="wintri-sphere-winkel-parallel",
         crs=esri("Winkel_Sphere", SPHERE, "Winkel_Tripel",
                  [("False_Easting", 0.0), ("False_Northing", 0.0), ("Central_Meridian", -20.0)]),
         proj="+proj=wintri +lon_0=-20 +R=6371000",
         area=WORLD, edges=[(160.000001, 0), (159.999999, 45)]),
    # Van der Grinten I: ESRI's on the sphere of WGS 84's area, as PROJ's +R_A.
    dict(id="vandg-esri54029", crs="ESRI:54029",
         proj="+proj=vandg +R_A +lon_0=0 +x_0=0 +y_0=0 +ellps=WGS84",
         area=(-179.9, -89.9, 179.9, 89.9), edges=[(180, 0), (-180, 0), (0, 89.99), (0, -89.99), (90, 45.5),
                                                   (179.999, 60), (0, 90), (0, -90)]),
    dict(id="vandg-gdal-intl-offset",
         crs=gdal("VanDerGrinten_Offset", INTL1924_GDAL, "VanDerGrinten",
                  [("central_meridian", 30.0), ("false_easting", 1000000.0), ("false_northing", 2000000.0)]),
         proj="+proj=vandg +R_A +lon_0=30 +x_0=1000000 +y_0=2000000 +ellps=intl",
         area=(-149.9, -80, 29, 80), edges=[(-149.999999, 0), (-150.000001, 0), (30, 89.99)]),
    # Where PROJ's figures are not the formulas' (the centre's neighbourhood),
    # the formulas to 60 digits, both ways, to 0.01 mm.
    dict(id="vandg-sphere-centre",
         crs=esri("Van_der_Grinten_Sphere", SPHERE, "Van_der_Grinten_I",
                  [("False_Easting", 0.0), ("False_Northing", 0.0), ("Central_Meridian", 0.0)]),
         proj="+proj=vandg +R=6371000",
         area=(-179.9, -89.9, 179.9, 89.9), edges=[(180, 0), (-180, 0), (0, 90), (0, -90)],
         examples=vandg_examples([(0.001, 0.001), (-0.5, -1.5), (1.0, 1.0), (10.0, 0.01), (-0.1, 30.0),
                                  (120.0, 55.0), (179.0, 89.0), (-170.0, -30.0), (0.0, 45.0), (45.0, 0.0),
                                  (180.0, 60.0), (-90.0, -89.999), (1e-7, 60.0), (60.0, 1e-7)], 6371000.0)),
    # Natural Earth
    dict(id="natearth-esri54077", crs="ESRI:54077",
         proj="+proj=natearth +lon_0=0 +x_0=0 +y_0=0 +ellps=WGS84",
         area=WORLD, edges=WORLD_EDGES + [(0, 90), (0, -90), (180, 90)]),
    dict(id="natearth-clarke-offset",
         crs=esri("Natural_Earth_Offset", CLARKE1866, "Natural_Earth",
                  [("False_Easting", 500000.0), ("False_Northing", -200000.0), ("Central_Meridian", -96.0)]),
         proj="+proj=natearth +lon_0=-96 +x_0=500000 +y_0=-200000 +a=6378206.4 +rf=294.9786982",
         area=WORLD, edges=[(83.9999999, 10), (84.0000001, -10), (-96, 89.99)]),
    # Cylindrical Equal Area: EASE-Grid 2.0 (EPSG method 9835), ESRI's world
    # system and a text of GDAL's with a false origin; Behrmann's parallel of 30
    # degrees as ESRI's Cylindrical_Equal_Area on the sphere.
    dict(id="cea-epsg6933", crs="EPSG:6933",
         proj="+proj=cea +lat_ts=30 +lon_0=0 +x_0=0 +y_0=0 +ellps=WGS84",
         tol=0.002, area=(-180, -86, 180, 86), edges=[(180, 0), (-180, 0), (0, 90), (0, -90), (179.999999, 89.999999)]),
    dict(id="cea-esri54034", crs="ESRI:54034",
         proj="+proj=cea +lat_ts=0 +lon_0=0 +x_0=0 +y_0=0 +ellps=WGS84",
         tol=0.002, area=WORLD, edges=[(180, 0), (-180, 0), (0, 90), (0, -90)]),
    dict(id="cea-gdal-intl-offset",
         crs=gdal("CEA_Offset", INTL1924_GDAL, "Cylindrical_Equal_Area",
                  [("standard_parallel_1", -45.0), ("central_meridian", 100.0), ("false_easting", 300000.0),
                   ("false_northing", 100000.0)]),
         proj="+proj=cea +lat_ts=-45 +lon_0=100 +x_0=300000 +y_0=100000 +ellps=intl",
         tol=0.002, area=(-100, -80, 120, 80), edges=[(-80.000001, 0), (-79.999999, 5), (100, 90)]),
    dict(id="cea-sphere-behrmann-parallel",
         crs=esri("Behrmann_As_CEA", SPHERE, "Cylindrical_Equal_Area",
                  [("False_Easting", 0.0), ("False_Northing", 0.0), ("Central_Meridian", 0.0),
                   ("Standard_Parallel_1", 30.0)]),
         proj="+proj=cea +lat_ts=30 +R=6371000",
         area=WORLD, edges=[(180, 0), (0, 90)]),
    # Equidistant Cylindrical, PROJ's eqc (the spherical formula on the semi-major axis)
    dict(id="eqc-esri54002", crs="ESRI:54002",
         proj="+proj=eqc +lat_ts=60 +lat_0=0 +lon_0=0 +x_0=0 +y_0=0 +ellps=WGS84",
         area=WORLD, edges=[(180, 0), (-180, 0), (0, 90), (0, -90)]),
    dict(id="eqc-esri54001-plate-carree", crs="ESRI:54001",
         proj="+proj=eqc +lat_ts=0 +lat_0=0 +lon_0=0 +x_0=0 +y_0=0 +ellps=WGS84",
         area=WORLD, edges=[(180, 0), (-180, 0), (0, 90), (0, -90)]),
    # GDAL's .prj of EPSG:4087 says "Equirectangular", the spherical form PROJ
    # computes; the code itself is the registry's ellipsoidal method (type 53,
    # tools/method_cases/cylindrical.py).
    dict(id="eqc-epsg4087-gdal-prj", crs='PROJCS["WGS 84 / World Equidistant Cylindrical",GEOGCS["WGS 84",DATUM["WGS_1984",SPHEROID["WGS 84",6378137,298.257223563,AUTHORITY["EPSG","7030"]],AUTHORITY["EPSG","6326"]],PRIMEM["Greenwich",0,AUTHORITY["EPSG","8901"]],UNIT["degree",0.0174532925199433,AUTHORITY["EPSG","9122"]],AUTHORITY["EPSG","4326"]],PROJECTION["Equirectangular"],PARAMETER["standard_parallel_1",0],PARAMETER["central_meridian",0],PARAMETER["false_easting",0],PARAMETER["false_northing",0],UNIT["metre",1,AUTHORITY["EPSG","9001"]],AXIS["Easting",EAST],AXIS["Northing",NORTH],AUTHORITY["EPSG","4087"]]',
         proj="+proj=eqc +lat_ts=0 +lat_0=0 +lon_0=0 +x_0=0 +y_0=0 +ellps=WGS84",
         area=WORLD, edges=[(180, 0), (-180, 0), (0, 90), (0, -90)]),
    dict(id="eqc-gdal-intl-origin",
         crs=gdal("Equirectangular_Offset", INTL1924_GDAL, "Equirectangular",
                  [("standard_parallel_1", 30.0), ("latitude_of_origin", 10.0), ("central_meridian", -60.0),
                   ("false_easting", 200000.0), ("false_northing", 50000.0)]),
         proj="+proj=eqc +lat_ts=30 +lat_0=10 +lon_0=-60 +x_0=200000 +y_0=50000 +ellps=intl",
         area=(-150, -60, 30, 80), edges=[(119.999999, 0), (-60, 90), (-60, -90)]),
]
