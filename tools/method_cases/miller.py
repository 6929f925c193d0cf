# Miller Cylindrical: ESRI:54003 (the sphere of WGS 84's area, as PROJ's +R_A)
# and an ESRI text on another ellipsoid with a false origin and a central
# meridian off Greenwich, and one on a sphere.
CASES = [
    dict(id="miller-esri54003", crs="ESRI:54003",
         proj="+proj=mill +R_A +lon_0=0 +x_0=0 +y_0=0 +ellps=WGS84",
         area=(-180, -90, 180, 90),
         edges=[(180, 0), (-180, 0), (0, 90), (0, -90), (179.999999, 89.999999), (-180, -89.999)]),
    dict(id="miller-clarke-offset",
         crs='PROJCS["Miller_Offset",GEOGCS["GCS_Clarke_1866",DATUM["D_North_American_1927",'
             'SPHEROID["Clarke_1866",6378206.4,294.9786982]],PRIMEM["Greenwich",0.0],'
             'UNIT["Degree",0.0174532925199433]],PROJECTION["Miller_Cylindrical"],'
             'PARAMETER["False_Easting",500000.0],PARAMETER["False_Northing",-200000.0],'
             'PARAMETER["Central_Meridian",-96.0],UNIT["Meter",1.0]]',
         proj="+proj=mill +R_A +lon_0=-96 +x_0=500000 +y_0=-200000 +a=6378206.4 +rf=294.9786982",
         area=(-170, -80, 0, 85),
         edges=[(83.9999999, 10), (-275.9999999, 10), (-96, 90)]),
    dict(id="miller-sphere",
         crs='PROJCS["Miller_Sphere",GEOGCS["GCS_Sphere",DATUM["D_Sphere",SPHEROID["Sphere",6371000.0,0.0]],'
             'PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]],PROJECTION["Miller_Cylindrical"],'
             'PARAMETER["False_Easting",0.0],PARAMETER["False_Northing",0.0],PARAMETER["Central_Meridian",0.0],'
             'UNIT["Meter",1.0]]',
         proj="+proj=mill +R=6371000",
         area=(-180, -90, 180, 90),
         # Snyder's worked example (Map Projections: A Working Manual, p. 268) on
         # a unit sphere scaled to R: phi = 50 N, lambda = 75 W, x = -1.3089969 R,
         # y = 0.9536371 R.
         examples=[(-75.0, 50.0, -1.3089969 * 6371000.0, 0.9536371 * 6371000.0, "Snyder 1987 p. 268", 1.0)]),
]
