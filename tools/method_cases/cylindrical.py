# Equidistant Cylindrical, EPSG method 1028 (the parallels at their true
# distance along the meridian), as EPSG:4087 defines it: PROJ and GDAL have only
# the spherical form, so the references are IOGP Guidance Note 7-2's worked
# example and the meridian quadrant of WGS 84 (GeographicLib's geodesic from the
# equator to the pole, 10 001 965.7293 m); on a sphere (ESRI's Moon system) the
# method is PROJ's eqc.
WGS84_TEXT = ('PROJCS["WGS_1984_World_Equidistant_Cylindrical",GEOGCS["GCS_WGS_1984",DATUM["D_WGS_1984",'
              'SPHEROID["WGS_1984",6378137.0,298.257223563]],PRIMEM["Greenwich",0.0],'
              'UNIT["Degree",0.0174532925199433]],PROJECTION["Equidistant_Cylindrical_Ellipsoidal"],'
              'PARAMETER["False_Easting",0.0],PARAMETER["False_Northing",0.0],PARAMETER["Central_Meridian",0.0],'
              'PARAMETER["Standard_Parallel_1",0.0],UNIT["Meter",1.0]]')
# ESRI's Behrmann: the cylindrical equal-area map of the parallel 30 degrees,
# written without that parallel (ESRI:54017) or with it (ESRI's text of
# EPSG:6933, EASE-Grid 2.0, which the corpus holds).
CASES = [
    dict(id="behrmann-esri54017", crs="ESRI:54017",
         proj="+proj=cea +lat_ts=30 +lon_0=0 +x_0=0 +y_0=0 +ellps=WGS84",
         area=(-180, -90, 180, 90), tol=0.002,
         edges=[(179.9999999, 0), (-179.9999999, 45), (0, 89.99)]),
    dict(id="eqc-ellipsoidal-wgs84", crs=WGS84_TEXT, proj=None,
         area=(-180, -90, 180, 90),
         examples=[(10.0, 55.0, 1113194.91, 6097230.31, "IOGP GN 7-2 Equidistant Cylindrical (EPSG:4087)"),
                   (0.0, 90.0, 0.0, 10001965.7293, "meridian quadrant of WGS 84 (GeographicLib)", 0.0001),
                   (0.0, -90.0, 0.0, -10001965.7293, "meridian quadrant of WGS 84 (GeographicLib)", 0.0001)]),
    dict(id="eqc-ellipsoidal-moon", crs="ESRI:103881",
         proj="+proj=eqc +lat_ts=0 +lat_0=0 +lon_0=0 +x_0=0 +y_0=0 +R=1737400",
         area=(-180, -90, 180, 90),
         edges=[(179.9999999, 0), (-179.9999999, 45)]),
]
