# World maps: Equal Earth, Robinson, Mollweide, Sinusoidal and Eckert IV, from
# the registry's systems (EPSG:8857-8859, ESRI:5400x/5403x on WGS 84 and the
# 53xxx spheres) and texts of our own with a false origin, a central meridian off
# Greenwich and other figures, written as ESRI and as GDAL write them.
#
# Where PROJ's numbers are not the map's, the points are chosen to leave them out
# rather than loosening the comparison:
# - Mollweide: PROJ stops its iteration for theta short of the pole, which puts
#   the pole itself 112 m off the central meridian at 180 degrees of longitude
#   (4 cm at 89.9999, 0.3 mm at 89.995), and its numerical meridian convergence
#   drifts by 1e-6 degree beyond 89.5; the area ends at +-89 and the poles are
#   checked by their closed form, x = 0 and y = +-sqrt 2 R (Snyder's eqs. 31-1,
#   31-2 with theta = +-90 degrees), both ways.
# - Eckert IV: PROJ takes every latitude within about 0.005 degree of a pole
#   for the pole (x 197 m short at 89.999); the edges stay at 89.99 and the poles
#   have their closed form, x = Cx R (lambda - lambda0), y = +-Cy R.
# - Robinson: the spline's six-figure pieces leave steps of a few 1e-8 between
#   them at the tabulated parallels (every 5 degrees), where PROJ's numerical
#   convergence picks up the step; 24 points a side keep the grid off those
#   parallels (the equator, where the map's symmetry leaves no step, apart).
# - Equal Earth on the ellipsoid: PROJ's inverse takes the geodetic latitude from
#   the authalic one by a three-term series that misses it by up to 1.6 mm (1.4e-8
#   degree); the library's is exact to rounding, so the comparison allows 2 mm.
#   Where PROJ's inverse misses its own forward by more than 1 mm the vectors
#   hold no point, and the library's answer must map back instead.
# PROJ's meridian convergence is numerical; near a pole it reaches across it,
# so no edge lies closer than 0.01 degree to one. Which edge of the map PROJ
# puts a point exactly on the antimeridian of a central meridian off Greenwich
# depends on the rounding of its radians; the edges lie a micro-degree to
# either side of it instead.
import math

SQRT2 = math.sqrt(2.0)
# Eckert IV's constants: 2 / sqrt(pi (4 + pi)) and 2 sqrt(pi / (4 + pi)).
ECK4_CX = 2.0 / math.sqrt(math.pi * (4.0 + math.pi))
ECK4_CY = 2.0 * math.sqrt(math.pi / (4.0 + math.pi))
WGS84_A = 6378137.0

WORLD = (-180, -90, 180, 90)


def esri_text(name, geogcs, projection, centre, fe=0.0, fn=0.0):
    return ('PROJCS["%s",%s,PROJECTION["%s"],PARAMETER["False_Easting",%r],PARAMETER["False_Northing",%r],'
            'PARAMETER["Central_Meridian",%r],UNIT["Meter",1.0]]' % (name, geogcs, projection, fe, fn, centre))


def gdal_text(name, geogcs, projection, centre_key, centre, fe=0.0, fn=0.0):
    return ('PROJCS["%s",%s,PROJECTION["%s"],PARAMETER["%s",%r],PARAMETER["false_easting",%r],'
            'PARAMETER["false_northing",%r],UNIT["metre",1]]' % (name, geogcs, projection, centre_key, centre, fe, fn))


CLARKE1866 = ('GEOGCS["GCS_Clarke_1866",DATUM["D_Clarke_1866",SPHEROID["Clarke_1866",6378206.4,294.9786982]],'
              'PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]]')
INTL1924_GDAL = ('GEOGCS["International 1924",DATUM["Not_specified_based_on_International_1924_ellipsoid",'
                 'SPHEROID["International 1924",6378388,297]],PRIMEM["Greenwich",0],'
                 'UNIT["degree",0.0174532925199433]]')
GRS80 = ('GEOGCS["GCS_ETRS_1989",DATUM["D_ETRS_1989",SPHEROID["GRS_1980",6378137.0,298.257222101]],'
         'PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]]')
MODIS_SPHERE = ('GEOGCS["GCS_Unknown_datum_based_upon_the_custom_spheroid",DATUM["D_Not_specified_based_on_custom_'
                'spheroid",SPHEROID["Custom_spheroid",6371007.181,0.0]],PRIMEM["Greenwich",0.0],'
                'UNIT["Degree",0.0174532925199433]]')
SPHERE_6371000 = ('GEOGCS["GCS_Sphere",DATUM["D_Sphere",SPHEROID["Sphere",6371000.0,0.0]],PRIMEM["Greenwich",0.0],'
                  'UNIT["Degree",0.0174532925199433]]')

CASES = [
    # Equal Earth (EPSG method 1078): the registry's three WGS 84 systems, an
    # ESRI sphere, and a text on GRS 1980 with a false origin.
    dict(id="eqearth-epsg8857", crs="EPSG:8857",
         proj="+proj=eqearth +lon_0=0 +x_0=0 +y_0=0 +ellps=WGS84",
         area=WORLD, tol=0.002,
         edges=[(180, 0), (-180, 0), (180, 89.99), (-180, -89.99), (179.999999, 33.3), (540, 12.5)]),
    dict(id="eqearth-epsg8858", crs="EPSG:8858",
         proj="+proj=eqearth +lon_0=-90 +x_0=0 +y_0=0 +ellps=WGS84",
         area=(90.01, -90, 89.99, 90), tol=0.002,
         edges=[(90, 0), (90, 45), (-90, 89.99), (89.999999, -60.5)]),
    dict(id="eqearth-epsg8859", crs="EPSG:8859",
         proj="+proj=eqearth +lon_0=150 +x_0=0 +y_0=0 +ellps=WGS84",
         area=(-29.99, -90, -30.01, 90), tol=0.002,
         edges=[(-29.999999, 0), (-30.000001, -70.2), (150, 89.99), (-30.000001, 10.0)]),
    dict(id="eqearth-esri53036", crs="ESRI:53036",
         proj="+proj=eqearth +lon_0=-90 +x_0=0 +y_0=0 +R=6371008.7714",
         area=WORLD,
         edges=[(89.999999, 0), (-270.000001, 20), (90, -89.99), (0, 89.99)]),
    dict(id="eqearth-grs80-offset",
         crs=esri_text("Equal_Earth_Offset", GRS80, "Equal_Earth", 10.5, 1000000.0, -500000.0),
         proj="+proj=eqearth +lon_0=10.5 +x_0=1000000 +y_0=-500000 +ellps=GRS80",
         area=(-60, -60, 80, 85), tol=0.002,
         edges=[(-169.5, 0), (-169.5, 50), (10.5, 89.99)]),

    # Robinson: ESRI:54030 on WGS 84 (PROJ and ESRI use the sphere of radius a),
    # the ESRI sphere and GDAL's form of a text on International 1924.
    dict(id="robinson-esri54030", crs="ESRI:54030",
         proj="+proj=robin +lon_0=0 +x_0=0 +y_0=0 +ellps=WGS84",
         area=WORLD, grid=24,
         edges=[(180, 0), (-180, 0), (180, 47.3), (-180, -12.7), (0, 88.8), (179.999999, -61.1), (540, 33.3)]),
    dict(id="robinson-esri53030", crs="ESRI:53030",
         proj="+proj=robin +lon_0=0 +x_0=0 +y_0=0 +R=6371000",
         area=WORLD, grid=24,
         edges=[(180, 0), (-180, 72.2), (0, -88.8)]),
    dict(id="robinson-intl1924-gdal",
         crs=gdal_text("Robinson_Pacific", INTL1924_GDAL, "Robinson", "longitude_of_center", 160.0, 20000000.0,
                       10000000.0),
         proj="+proj=robin +lon_0=160 +x_0=20000000 +y_0=10000000 +a=6378388 +rf=297",
         area=WORLD, grid=24,
         edges=[(-19.999999, 0), (-20.000001, 51.1), (160, -88.8), (-20.000001, 21.1)]),

    # Mollweide (sphere of radius a on an ellipsoid, as PROJ).
    dict(id="mollweide-esri54009", crs="ESRI:54009",
         proj="+proj=moll +lon_0=0 +x_0=0 +y_0=0 +ellps=WGS84",
         area=(-180, -89, 180, 89),
         edges=[(180, 0), (-180, 0), (180, 60.1), (179.999999, -45.5), (540, 10.0)],
         examples=[(0.0, 90.0, 0.0, SQRT2 * WGS84_A, "Snyder eqs. 31-1, 31-2 at the pole (theta = 90 deg)", 0.001),
                   (120.0, -90.0, 0.0, -SQRT2 * WGS84_A, "Snyder eqs. 31-1, 31-2 at the pole (theta = -90 deg)",
                    0.001)]),
    dict(id="mollweide-esri53009", crs="ESRI:53009",
         proj="+proj=moll +lon_0=0 +x_0=0 +y_0=0 +R=6371000",
         area=(-180, -89, 180, 89),
         edges=[(180, 0), (-180, 30.0)],
         # Snyder's worked example (Map Projections: A Working Manual, 1987, the
         # numerical examples) on a unit sphere, central meridian 90 W, at 75 W
        # 50 S: x = 0.1788845 R,
         # y = -0.9208758 R; here 15 degrees east of the central meridian.
         examples=[(15.0, -50.0, 0.1788845 * 6371000.0, -0.9208758 * 6371000.0, "Snyder 1987, Mollweide numerical example", 1.0)]),
    dict(id="mollweide-clarke-gdal",
         crs=gdal_text("Mollweide_Offset", CLARKE1866.replace("GCS_Clarke_1866", "Clarke 1866"), "Mollweide",
                       "central_meridian", -96.0, 500000.0, -200000.0),
         proj="+proj=moll +lon_0=-96 +x_0=500000 +y_0=-200000 +a=6378206.4 +rf=294.9786982",
         area=(-170, -80, 0, 85),
         edges=[(83.999999, 10), (-276.000001, 10), (84.000001, -5.5)]),

    # Sinusoidal: ellipsoidal on WGS 84 (ESRI:54008) and on Clarke 1866 with a
    # false origin, Africa's system (ESRI:102011) over its area, the ESRI sphere
    # and the MODIS sphere of 6 371 007.181 m.
    dict(id="sinusoidal-esri54008", crs="ESRI:54008",
         proj="+proj=sinu +lon_0=0 +x_0=0 +y_0=0 +ellps=WGS84",
         area=WORLD,
         edges=[(180, 0), (-180, 0), (180, 89.99), (-179.999999, -70.5), (540, 20.0)]),
    dict(id="sinusoidal-esri102011", crs="ESRI:102011",
         proj="+proj=sinu +lon_0=15 +x_0=0 +y_0=0 +ellps=WGS84",
         area=(-25, -35, 55, 39),
         edges=[(-164.999999, 0), (195.000001, 10), (15, 89.99)]),
    dict(id="sinusoidal-clarke-offset",
         crs=esri_text("Sinusoidal_Offset", CLARKE1866, "Sinusoidal", -96.0, 1000000.0, 2000000.0),
         proj="+proj=sinu +lon_0=-96 +x_0=1000000 +y_0=2000000 +a=6378206.4 +rf=294.9786982",
         area=(-170, -80, 0, 85),
         edges=[(83.999999, 10), (-276.000001, 10), (-96, -89.99)]),
    dict(id="sinusoidal-esri53008", crs="ESRI:53008",
         proj="+proj=sinu +lon_0=0 +x_0=0 +y_0=0 +R=6371000",
         area=WORLD,
         edges=[(180, 0), (-180, 45.0), (0, 89.99)]),
    dict(id="sinusoidal-modis",
         crs=esri_text("MODIS_Sinusoidal", MODIS_SPHERE, "Sinusoidal", 0.0),
         proj="+proj=sinu +lon_0=0 +x_0=0 +y_0=0 +R=6371007.181",
         area=WORLD,
         edges=[(180, 0), (-180, -10.0), (179.999999, 80.0)]),

    # Eckert IV (sphere of radius a on an ellipsoid, as PROJ).
    dict(id="eckert4-esri54012", crs="ESRI:54012",
         proj="+proj=eck4 +lon_0=0 +x_0=0 +y_0=0 +ellps=WGS84",
         area=WORLD,
         edges=[(180, 0), (-180, 0), (180, 89.99), (-180, -89.99), (179.999999, 30.5), (540, 40.0)],
         examples=[(180.0, 90.0, ECK4_CX * WGS84_A * math.pi, ECK4_CY * WGS84_A,
                    "Snyder eqs. 32-1, 32-2 at the pole (theta = 90 deg)", 0.001),
                   (-90.0, -90.0, -ECK4_CX * WGS84_A * math.pi / 2.0, -ECK4_CY * WGS84_A,
                    "Snyder eqs. 32-1, 32-2 at the pole (theta = -90 deg)", 0.001)]),
    dict(id="eckert4-esri53012", crs="ESRI:53012",
         proj="+proj=eck4 +lon_0=0 +x_0=0 +y_0=0 +R=6371000",
         area=WORLD,
         edges=[(180, 0), (-180, 60.0)],
         # Snyder's worked example (Map Projections: A Working Manual, 1987, the
         # numerical examples) on a unit sphere, central meridian 90 W, at 75 W
        # 50 S: x = 0.1875270 R,
         # y = -0.9519210 R; here 15 degrees east of the central meridian.
         examples=[(15.0, -50.0, 0.1875270 * 6371000.0, -0.9519210 * 6371000.0, "Snyder 1987, Eckert IV numerical example", 1.0)]),
    dict(id="eckert4-intl1924-gdal",
         crs=gdal_text("Eckert_IV_Offset", INTL1924_GDAL, "Eckert_IV", "central_meridian", 30.0, 300000.0, 400000.0),
         proj="+proj=eck4 +lon_0=30 +x_0=300000 +y_0=400000 +a=6378388 +rf=297",
         area=(-40, -70, 100, 80),
         edges=[(-149.999999, 0), (210.000001, -30), (30, 89.99)]),
]
