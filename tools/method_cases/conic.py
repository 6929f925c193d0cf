# The conic and azimuthal methods: American Polyconic, Bonne and its south
# orientated grid, the azimuthal equidistant (geodesic on the ellipsoid), the
# modified azimuthal equidistant of Micronesia, the Guam projection and
# Laborde's oblique Mercator of Madagascar. PROJ's poly, bonne, aeqd and labrd
# are the oracle; the worked examples are IOGP Guidance Note 7-2's.

def dms(d, m, s):
    return d + m / 60.0 + s / 3600.0


CLARKE66 = 'SPHEROID["Clarke_1866",6378206.4,294.9786982138982]'


def esri(name, geogcs, projection, params):
    return ('PROJCS["%s",%s,PROJECTION["%s"],%s,UNIT["Meter",1.0]]'
            % (name, geogcs, projection, ",".join('PARAMETER["%s",%r]' % p for p in params)))


GCS_CLARKE66 = ('GEOGCS["GCS_Guam_1963",DATUM["D_Guam_1963",' + CLARKE66 +
                '],PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]]')
GCS_SPHERE = ('GEOGCS["GCS_Sphere",DATUM["D_Sphere",SPHEROID["Sphere",6371000.0,0.0]],'
              'PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]]')
GCS_WGS84 = ('GEOGCS["GCS_WGS_1984",DATUM["D_WGS_1984",SPHEROID["WGS_1984",6378137.0,298.257223563]],'
             'PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]]')
GCS_BESSEL = ('GEOGCS["GCS_Bessel_1841",DATUM["D_Bessel_1841",SPHEROID["Bessel_1841",6377397.155,299.1528128]],'
              'PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]]')

# Guam 1963 / Guam SPCS (EPSG:3993), whose GDAL text does not exist: the
# guidance note's origin and example (s3.4.2, Guam Projection).
GUAM_LON0, GUAM_LAT0 = dms(144, 44, 55.50254), dms(13, 28, 20.87887)
# Guam 1963 / Yap Islands (EPSG:3295): the guidance note's example of the
# modified azimuthal equidistant method (s3.4.1).
YAP_LON0, YAP_LAT0 = dms(138, 10, 7.48), dms(9, 32, 48.15)

def bonne_south(name, geogcs, lon0):
    return ('PROJCS["%s",%s,PROJECTION["Bonne_(South_Orientated)"],'
            'PARAMETER["Latitude of natural origin",39.6666666666667],PARAMETER["Longitude of natural origin",%s],'
            'PARAMETER["False easting",0],PARAMETER["False northing",0],UNIT["metre",1],'
            'AXIS["Southing",SOUTH],AXIS["Westing",WEST]]' % (name, geogcs, lon0))


BONNE_SOUTH_5017 = bonne_south(
    "Lisbon 1890 / Portugal Bonne New",
    'GEOGCS["Lisbon 1890",DATUM["Lisbon_1890",SPHEROID["Bessel 1841",6377397.155,299.1528128]],'
    'PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]]', "-8.13190611111111")
BONNE_SOUTH_2963 = bonne_south(
    "Lisbon 1890 (Lisbon) / Portugal Bonne",
    'GEOGCS["Lisbon 1890 (Lisbon)",DATUM["Lisbon_1890_Lisbon",SPHEROID["Bessel 1841",6377397.155,299.1528128]],'
    'PRIMEM["Lisbon",-9.13190611111111],UNIT["degree",0.0174532925199433]]', "1")

def mirrored_bonne(points):
    """(lon, lat, x, y, source) of a Bonne map of standard parallel -30 on the
    sphere from PROJ's map of +30, mirrored in the equator."""
    import pyproj
    north = pyproj.Transformer.from_pipeline(
        "+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad "
        "+step +proj=bonne +lat_1=30 +lon_0=20 +x_0=1000 +R=6371000")
    examples = []
    for lon, lat in points:
        x, y = north.transform(lon, -lat)
        examples.append((lon, lat, round(x, 4), round(-y, 4), "PROJ bonne +lat_1=30 mirrored", 0.001))
    return examples


CASES = [
    # American Polyconic: Brazil's grid, a world map on the sphere and on
    # WGS 84, and a southern origin off the equator.
    dict(id="poly-epsg5880", crs="EPSG:5880",
         proj="+proj=poly +lat_0=0 +lon_0=-54 +x_0=5000000 +y_0=10000000 +ellps=GRS80",
         area=(-74.01, -35.71, -25.28, 7.04),
         edges=[(-54, 0), (-54, -90), (-54, 90), (-144, 0), (36, 0), (-100, 60), (0, -70)]),
    dict(id="poly-esri54021", crs="ESRI:54021",
         proj="+proj=poly +lat_0=0 +lon_0=0 +x_0=0 +y_0=0 +ellps=WGS84",
         area=(-90, -85, 90, 85),
         edges=[(180, 0), (-180, 0), (0, 90), (0, -90), (120, 45), (-150, -30)]),
    dict(id="poly-sphere-south",
         crs=esri("Polyconic_South", GCS_SPHERE, "Polyconic",
                  [("False_Easting", 200000.0), ("False_Northing", -50000.0), ("Central_Meridian", 30.0),
                   ("Latitude_Of_Origin", -35.0)]),
         proj="+proj=poly +lat_0=-35 +lon_0=30 +x_0=200000 +y_0=-50000 +R=6371000",
         area=(0, -80, 50, 20),
         edges=[(30, -90), (30, 90), (-150, 0), (210, 0)]),
    # Bonne: Portugal's Bessel grid (ESRI:102163), a southern standard
    # parallel on a sphere, and Werner's (standard parallel at the pole).
    dict(id="bonne-esri102163", crs="ESRI:102163",
         proj="+proj=bonne +lat_1=39.6666666666667 +lon_0=-8.13190611111111 +x_0=0 +y_0=0 +ellps=bessel",
         area=(-9.56, 36.95, -6.19, 42.16),
         edges=[(-8.13190611111111, 90), (-8.13190611111111, -90), (171.8, 0), (-100, 60), (120, -60)]),
    dict(id="bonne-sphere-north",
         crs=esri("Bonne_North", GCS_SPHERE, "Bonne",
                  [("False_Easting", 1000.0), ("False_Northing", 2000.0), ("Central_Meridian", 20.0),
                   ("Standard_Parallel_1", 30.0)]),
         proj="+proj=bonne +lat_1=30 +lon_0=20 +x_0=1000 +y_0=2000 +R=6371000",
         area=(-180, -85, 180, 85),
         edges=[(20, -90), (20, 90), (-159.9, 0), (199.9, 0)]),
    # A southern standard parallel: PROJ 9.1's Bonne inverts no point of such a
    # map, so the reference is its northern map mirrored in the equator
    # (phi -> -phi, y -> -y with no false northing).
    dict(id="bonne-sphere-south",
         crs=esri("Bonne_South", GCS_SPHERE, "Bonne",
                  [("False_Easting", 1000.0), ("False_Northing", 0.0), ("Central_Meridian", 20.0),
                   ("Standard_Parallel_1", -30.0)]),
         proj=None,
         area=(-180, -85, 180, 85),
         examples=mirrored_bonne([(20, -30), (5, -40), (100, 10), (-170, -80), (60, 70), (20, 90)])),
    dict(id="bonne-werner-wgs84",
         crs=esri("Werner", GCS_WGS84, "Bonne",
                  [("False_Easting", 0.0), ("False_Northing", 0.0), ("Central_Meridian", 0.0),
                   ("Standard_Parallel_1", 90.0)]),
         proj="+proj=bonne +lat_1=90 +lon_0=0 +ellps=WGS84",
         area=(-180, -85, 180, 89),
         edges=[(0, 90), (0, -90), (180, 0), (-180, 0)]),
    # Bonne (South Orientated): Portugal's grids, GDAL's texts of EPSG:5017 and
    # EPSG:2963 (the latter on the Lisbon meridian); PROJ's Bonne with the axes
    # turned is the reference.
    dict(id="bonne-south-epsg5017", crs=BONNE_SOUTH_5017,
         proj="+proj=bonne +lat_1=39.6666666666667 +lon_0=-8.13190611111111 +x_0=0 +y_0=0 +ellps=bessel +axis=wsu",
         area=(-9.56, 36.95, -6.19, 42.16), convergence=False,
         edges=[(-8.13190611111111, 90), (-8.13190611111111, -90), (-100, 60)]),
    dict(id="bonne-south-epsg2963", crs=BONNE_SOUTH_2963,
         proj="+proj=bonne +lat_1=39.6666666666667 +lon_0=-8.13190611111111 +x_0=0 +y_0=0 +ellps=bessel +axis=wsu",
         area=(-9.56, 36.95, -6.19, 42.16), convergence=False),
    # Azimuthal equidistant: Yap and Palau by GDAL's and ESRI's texts, the
    # north polar map of ESRI:102016 and an oblique world map on a sphere.
    dict(id="aeqd-epsg3295", crs="EPSG:3295",
         proj="+proj=aeqd +lat_0=9.54670833333333 +lon_0=138.168744444444 +x_0=40000 +y_0=60000 +ellps=clrk66",
         area=(137.99, 9.39, 138.27, 9.69),
         edges=[(138.168744444444, 90), (138.168744444444, -90), (-60, 0), (0, 0), (100, -60)]),
    dict(id="aeqd-esri102016", crs="ESRI:102016",
         proj="+proj=aeqd +lat_0=90 +lon_0=0 +x_0=0 +y_0=0 +ellps=WGS84",
         # PROJ's convergence on the meridian of 180 degrees is +180 seen from
         # +180 and -180 seen from -180, so that only one of them is compared.
         area=(-179, 0, 180, 90),
         edges=[(180, 0), (0, 90), (0, -89.9), (45, -60)]),
    dict(id="aeqd-esri102096", crs="ESRI:102096",
         proj="+proj=aeqd +lat_0=7.35122211111111 +lon_0=134.450444861111 +x_0=50000 +y_0=150000 +ellps=clrk66",
         area=(134.0, 6.8, 135.0, 8.0),
         edges=[(134.450444861111, 90), (134.450444861111, -90), (-100, 20), (10, 40)]),
    dict(id="aeqd-sphere-world",
         crs=esri("Sphere_AEQD", GCS_SPHERE, "Azimuthal_Equidistant",
                  [("False_Easting", 0.0), ("False_Northing", 0.0), ("Central_Meridian", 10.0),
                   ("Latitude_Of_Origin", 50.0)]),
         proj="+proj=aeqd +lat_0=50 +lon_0=10 +R=6371000",
         area=(-180, -80, 180, 90),
         edges=[(10, 90), (10, -90), (-170, -49), (-170, 0), (100, 0)]),
    # Modified azimuthal equidistant: the guidance note's Yap example. PROJ's
    # geodesic aeqd is within 2 mm of the method over the islands and 9 mm some
    # 25 km beyond them (the inverse's box); its meridian
    # convergence is the geodesic map's, 1e-6 degree off this one's.
    dict(id="maeqd-yap",
         crs=esri("Guam_1963_Yap_Islands", GCS_CLARKE66, "Modified_Azimuthal_Equidistant",
                  [("False_Easting", 40000.0), ("False_Northing", 60000.0), ("Central_Meridian", YAP_LON0),
                   ("Latitude_Of_Origin", YAP_LAT0)]),
         proj="+proj=aeqd +lat_0=%r +lon_0=%r +x_0=40000 +y_0=60000 +ellps=clrk66" % (YAP_LAT0, YAP_LON0),
         area=(137.99, 9.39, 138.27, 9.69), tol=0.01, convergence=False,
         edges=[(YAP_LON0, YAP_LAT0), (YAP_LON0, 9.0), (138.5, 9.6)],
         examples=[(dms(138, 11, 34.908), dms(9, 35, 47.493), 42665.90, 65509.82, "IOGP GN 7-2 s3.4.1")]),
    # Guam Projection: the guidance note's example on Guam 1963 / Guam SPCS.
    dict(id="guam-epsg3993",
         crs=esri("Guam_1963_Guam_SPCS", GCS_CLARKE66, "Guam_Projection",
                  [("False_Easting", 50000.0), ("False_Northing", 50000.0), ("Central_Meridian", GUAM_LON0),
                   ("Latitude_Of_Origin", GUAM_LAT0)]),
         proj="+proj=aeqd +guam +lat_0=%r +lon_0=%r +x_0=50000 +y_0=50000 +ellps=clrk66" % (GUAM_LAT0, GUAM_LON0),
         area=(144.58, 13.18, 145.01, 13.7),
         edges=[(GUAM_LON0, GUAM_LAT0), (146, 15), (143, 12)],
         examples=[(dms(144, 38, 7.19265), dms(13, 20, 20.53846), 37712.48, 35242.00, "IOGP GN 7-2 s3.4.2")]),
    # Laborde: Tananarive / Laborde Grid with Greenwich longitudes, and the
    # Paris one in grads. PROJ's labrd departs from the note's closed formulas
    # by up to 17 mm at Madagascar's ends.
    dict(id="labrd-epsg8441", crs="EPSG:8441",
         proj="+proj=labrd +lat_0=-18.9 +lon_0=46.4372291666667 +azi=18.9 +k=0.9995 +x_0=400000 +y_0=800000 "
              "+ellps=intl",
         area=(43.18, -25.64, 50.56, -11.89), tol=0.02),
    dict(id="labrd-epsg29701", crs="EPSG:29701",
         proj="+proj=labrd +lat_0=-18.9 +lon_0=46.4372291666667 +azi=18.9 +k=0.9995 +x_0=400000 +y_0=800000 "
              "+ellps=intl",
         area=(43.18, -25.64, 50.56, -11.89), tol=0.02),
]
