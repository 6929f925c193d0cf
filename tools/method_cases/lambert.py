# Lambert and polar variants: Lambert Conic Conformal (West Orientated) (EPSG
# method 9826), (2SP Belgium) (9803), Lambert Conic Near-Conformal (9817),
# Polar Stereographic (variant C) (9830) and the Tunisia Mining Grid (9816).
#
# The library is given the registry's GDAL WKT 1 of each EPSG system with its
# GEOGCS written out, and a few texts of the same methods on other figures and
# in the other hemisphere. PROJ computes none of these methods under their own
# names; where the method is one of PROJ's maps with other numbers, its string
# says so:
#   West Orientated  lcc with lat_1 = lat_0, +axis=wnu and x_0 = -FE, since
#                    W = FE - r sin(theta) (IOGP Guidance Note 7-2);
#   2SP Belgium      lcc about the meridian lambdaF + alpha / n, alpha =
#                    29.2985": theta - alpha = n (lambda - lambdaF - alpha / n).
#                    (PROJ's own reading of EPSG:31300 leaves alpha out, some
#                    745 m west of the guidance note's worked example.)
#   variant C        stere (variant B) with y_0 = NF -+ rhoF, rhoF = a mF the
#                    radius of the standard parallel, - about the south pole.
# The near-conformal conic and the mining grid have no PROJ counterpart: the
# guidance note's worked examples and the round trips check them.
import math
import os

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


def _registry():
    systems, geogcs = {}, {}
    with open(os.path.join(ROOT, "data", "epsg_registry.txt"), encoding="utf-8") as f:
        for line in f:
            fields = line.rstrip("\n").split("\t")
            if fields[0] == "W":
                geogcs[fields[1]] = fields[2]
            elif fields[0] == "P" and fields[1] == "EPSG":
                systems[int(fields[2])] = (fields[3], fields[-1])
    return systems, geogcs


_SYSTEMS, _GEOGCS = _registry()


def registry_wkt(code):
    """The registry's GDAL WKT 1 of EPSG:code, its name and GEOGCS written out."""
    name, text = _SYSTEMS[code]
    head, _, rest = text.partition(",@")
    wid, _, tail = rest.partition(",")
    return head.replace("$", name) + "," + _GEOGCS[wid] + "," + tail


def eccentricity(rf):
    f = 1.0 / rf if rf else 0.0
    return math.sqrt(f * (2.0 - f))


def lcc_n(rf, phi1, phi2):
    """The cone constant of two standard parallels (IOGP GN 7-2, method 9802)."""
    e = eccentricity(rf)

    def m(phi):
        return math.cos(phi) / math.sqrt(1.0 - (e * math.sin(phi)) ** 2)

    def t(phi):
        s = e * math.sin(phi)
        return math.tan(math.pi / 4 - phi / 2) / ((1.0 - s) / (1.0 + s)) ** (e / 2)

    p1, p2 = math.radians(phi1), math.radians(phi2)
    return (math.log(m(p1)) - math.log(m(p2))) / (math.log(t(p1)) - math.log(t(p2)))


def rho_f(a, rf, phi_f):
    """The radius a mF of the standard parallel of a polar stereographic."""
    e = eccentricity(rf)
    p = math.radians(phi_f)
    return a * math.cos(p) / math.sqrt(1.0 - (e * math.sin(p)) ** 2)


def dms(d, m, s):
    return math.copysign(abs(d) + m / 60.0 + s / 3600.0, d)


ALPHA = 29.2985 / 3600.0
BELGIUM_N = lcc_n(297.0, 49.8333333333333, 51.1666666666667)


def west_case(cid, crs, lat0, lon0, fe, fn, figure, area, k0=1.0, **extra):
    return dict(id=cid, crs=crs,
                proj="+proj=lcc +lat_1=%r +lat_0=%r +lon_0=%r +k_0=%r +x_0=%r +y_0=%r %s +axis=wnu"
                     % (lat0, lat0, lon0, k0, -fe, fn, figure),
                area=area,
                # Either side of the antimeridian of the origin (on it the two
                # edges of the sheet meet, and a rounding of the WKT's degree
                # picks one), both poles (the apex and the pole at infinity),
                # and 540 degrees.
                edges=[(math.remainder(lon0 + 179.9999, 360.0), lat0), (math.remainder(lon0 - 179.9999, 360.0), lat0),
                       (lon0 - 180.001, lat0), (lon0, 90.0), (lon0, -90.0),
                       (lon0 + 30.0, math.copysign(89.999999, lat0)), (540.0, lat0)],
                **extra)


CASES = [
    # Lambert Conic Conformal (West Orientated): Iceland, Faroes, Greenland.
    west_case("lcc-west-reykjavik1900", registry_wkt(3052), 65.0, -19.022125, 0.0, 0.0,
              "+a=6377019.27 +rf=300", (-24.66, 63.34, -13.38, 66.59)),
    west_case("lcc-west-hjorsey1955", registry_wkt(3053), 65.0, -18.0, 500000.0, 500000.0,
              "+ellps=intl", (-24.66, 63.34, -13.38, 66.59)),
    # The registry writes the Faroe and Greenland grids' axes northing first,
    # which the OGC writer does not give back; ETRS89 / Faroe Lambert (EPSG:3145)
    # with its axes westing first, as Iceland's.
    west_case("lcc-west-faroe-etrs89",
              registry_wkt(3145).replace('AXIS["Northing",NORTH],AXIS["Westing",WEST]',
                                         'AXIS["Westing",WEST],AXIS["Northing",NORTH]'),
              62.0, -9.0, 500000.0, 500000.0, "+ellps=GRS80", (-7.49, 61.33, -6.33, 62.41)),
    # A southern cone with a scale below 1, and the guidance note's 1SP example
    # (Jamaica, method 9801) drawn westwards: W = 2 FE - E.
    west_case("lcc-west-jamaica",
              'PROJCS["JAD69 westwards",GEOGCS["JAD69",DATUM["Jamaica_1969",'
              'SPHEROID["Clarke 1866",6378206.4,294.978698213898]],PRIMEM["Greenwich",0],'
              'UNIT["degree",0.0174532925199433]],PROJECTION["Lambert_Conic_Conformal_(West_Orientated)"],'
              'PARAMETER["Latitude of natural origin",18],PARAMETER["Longitude of natural origin",-77],'
              'PARAMETER["Scale factor at natural origin",1],PARAMETER["False easting",250000],'
              'PARAMETER["False northing",150000],UNIT["metre",1]]',
              18.0, -77.0, 250000.0, 150000.0, "+a=6378206.4 +rf=294.978698213898", (-78.5, 17.6, -76.1, 18.6),
              examples=[(-dms(76, 56, 37.26), dms(17, 55, 55.80), 2 * 250000.0 - 255966.58, 142493.51,
                         "IOGP GN 7-2 method 9801 example (JAD69), westing 2 FE - E")]),
    west_case("lcc-west-south-sphere",
              'PROJCS["South westwards",GEOGCS["Sphere",DATUM["Sphere",SPHEROID["Sphere",6371000,0]],'
              'PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]],'
              'PROJECTION["Lambert_Conic_Conformal_(West_Orientated)"],'
              'PARAMETER["Latitude of natural origin",-40],PARAMETER["Longitude of natural origin",170],'
              'PARAMETER["Scale factor at natural origin",0.9999],PARAMETER["False easting",1000000],'
              'PARAMETER["False northing",2000000],UNIT["metre",1]]',
              -40.0, 170.0, 1000000.0, 2000000.0, "+R=6371000", (160.0, -50.0, -175.0, -30.0), k0=0.9999),

    # Lambert Conic Conformal (2SP Belgium): Belge Lambert 72 and its guidance
    # note example (published to the centimetre).
    dict(id="lcc-belgium-31300", crs=registry_wkt(31300),
         proj="+proj=lcc +lat_0=90 +lon_0=%r +lat_1=49.8333333333333 +lat_2=51.1666666666667 "
              "+x_0=150000.01256 +y_0=5400088.4378 +ellps=intl" % (4.35693972222222 + ALPHA / BELGIUM_N),
         area=(2.5, 49.5, 6.4, 51.51),
         edges=[(4.35693972222222 + 180.0, 50.0), (0.0, 90.0), (5.0, -90.0), (-175.0, 0.0), (540.0, 50.0)],
         examples=[(dms(5, 48, 26.533), dms(50, 40, 46.461), 251763.20, 153034.13,
                    "IOGP GN 7-2 method 9803 example (Belge Lambert 72), with EF, NF as there",
                    0.02)]),
    # The same grid with the guidance note's rounded false origin, so that its
    # worked example is checked to its own centimetre.
    dict(id="lcc-belgium-gn-example",
         crs='PROJCS["Belge Lambert 72 (example)",GEOGCS["BD72",DATUM["Reseau_National_Belge_1972",'
             'SPHEROID["International 1924",6378388,297]],PRIMEM["Greenwich",0],'
             'UNIT["degree",0.0174532925199433]],PROJECTION["Lambert_Conformal_Conic_2SP_Belgium"],'
             'PARAMETER["latitude_of_origin",90],PARAMETER["central_meridian",%r],'
             'PARAMETER["standard_parallel_1",49.8333333333333],PARAMETER["standard_parallel_2",51.1666666666667],'
             'PARAMETER["false_easting",150000.01],PARAMETER["false_northing",5400088.44],UNIT["metre",1]]'
             % dms(4, 21, 24.983),
         proj="+proj=lcc +lat_0=90 +lon_0=%r +lat_1=49.8333333333333 +lat_2=51.1666666666667 "
              "+x_0=150000.01 +y_0=5400088.44 +ellps=intl" % (dms(4, 21, 24.983) + ALPHA / BELGIUM_N),
         area=(2.5, 49.5, 6.4, 51.51),
         examples=[(dms(5, 48, 26.533), dms(50, 40, 46.461), 251763.20, 153034.13,
                    "IOGP GN 7-2 method 9803 example (Belge Lambert 72)")]),
    # A southern cone from a false origin off the pole, on a sphere.
    dict(id="lcc-belgium-south-sphere",
         crs='PROJCS["Turned south",GEOGCS["Sphere",DATUM["Sphere",SPHEROID["Sphere",6371000,0]],'
             'PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]],'
             'PROJECTION["Lambert_Conformal_Conic_2SP_Belgium"],PARAMETER["latitude_of_origin",-30],'
             'PARAMETER["central_meridian",-60],PARAMETER["standard_parallel_1",-25],'
             'PARAMETER["standard_parallel_2",-45],PARAMETER["false_easting",500000],'
             'PARAMETER["false_northing",1000000],UNIT["metre",1]]',
         proj="+proj=lcc +lat_0=-30 +lon_0=%r +lat_1=-25 +lat_2=-45 +x_0=500000 +y_0=1000000 +R=6371000"
              % (-60.0 + ALPHA / lcc_n(0.0, -25.0, -45.0)),
         area=(-75.0, -50.0, -45.0, -20.0),
         edges=[(120.0, -30.0), (-60.0, -90.0), (-60.0, 90.0), (540.0, -30.0)]),

    # Lambert Conic Near-Conformal: the Levant zone and its guidance note
    # example (the truncated series' own figures, to the centimetre), and the
    # same map mirrored about the equator (E unchanged, N - FN negated).
    dict(id="lcc-near-conformal-22700", crs=registry_wkt(22700), proj=None,
         area=(35.04, 32.31, 42.38, 37.3),
         examples=[(dms(34, 8, 11.291), dms(37, 31, 17.625), 15707.96, 623165.96,
                    "IOGP GN 7-2 method 9817 example (Deir ez Zor / Levant Zone)")]),
    dict(id="lcc-near-conformal-mirrored",
         crs='PROJCS["Levant mirrored",GEOGCS["Deir ez Zor",DATUM["Deir_ez_Zor",'
             'SPHEROID["Clarke 1880 (IGN)",6378249.2,293.466021293627]],PRIMEM["Greenwich",0],'
             'UNIT["degree",0.0174532925199433]],PROJECTION["Lambert_Conic_Near-Conformal"],'
             'PARAMETER["Latitude of natural origin",-34.65],PARAMETER["Longitude of natural origin",37.35],'
             'PARAMETER["Scale factor at natural origin",0.9996256],PARAMETER["False easting",300000],'
             'PARAMETER["False northing",300000],UNIT["metre",1]]',
         proj=None, area=(35.04, -37.3, 42.38, -32.31),
         examples=[(dms(34, 8, 11.291), -dms(37, 31, 17.625), 15707.96, 2 * 300000.0 - 623165.96,
                    "IOGP GN 7-2 method 9817 example mirrored about the equator")]),

    # Polar Stereographic (variant C): Terre Adelie (Petrels 1972, Perroud 1950)
    # with the guidance note example, and a northern grid on another figure.
    dict(id="stere-c-petrels1972", crs=registry_wkt(2985),
         proj="+proj=stere +lat_0=-90 +lat_ts=-67 +lon_0=140 +x_0=300000 +y_0=%r +ellps=intl"
              % (200000.0 - rho_f(6378388.0, 297.0, -67.0)),
         area=(139.44, -66.78, 141.5, -66.1),
         # Next to the antimeridian of the origin rather than on it, where the
         # convergence is +-180 alike; the north pole lies at infinity (PROJ
         # gives it a finite point).
         edges=[(140.0, -90.0), (-40.001, -60.0), (-39.999, 0.0), (140.0, 89.0), (320.0, -70.0), (540.0, -67.0)],
         examples=[(dms(140, 4, 17.040), -dms(66, 36, 18.820), 303169.52, 244055.72,
                    "IOGP GN 7-2 method 9830 example (Petrels 1972 / Terre Adelie Polar Stereographic)")]),
    dict(id="stere-c-perroud1950", crs=registry_wkt(2986),
         proj="+proj=stere +lat_0=-90 +lat_ts=-67 +lon_0=140 +x_0=300000 +y_0=%r +ellps=intl"
              % (200000.0 - rho_f(6378388.0, 297.0, -67.0)),
         area=(136.0, -67.13, 142.0, -65.61)),
    dict(id="stere-c-north-wgs84",
         crs='PROJCS["North variant C",GEOGCS["WGS 84",DATUM["WGS_1984",SPHEROID["WGS 84",6378137,298.257223563]],'
             'PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]],PROJECTION["Polar_Stereographic_(variant_C)"],'
             'PARAMETER["Latitude of standard parallel",71],PARAMETER["Longitude of origin",-45],'
             'PARAMETER["Easting at false origin",100000],PARAMETER["Northing at false origin",-50000],'
             'UNIT["metre",1]]',
         proj="+proj=stere +lat_0=90 +lat_ts=71 +lon_0=-45 +x_0=100000 +y_0=%r +ellps=WGS84"
              % (-50000.0 + rho_f(6378137.0, 298.257223563, 71.0)),
         area=(-180.0, 50.0, 180.0, 90.0),
         edges=[(135.0, 0.0), (-45.0, -89.0), (180.0, 60.0), (-180.0, 60.0), (-45.0, 90.0)]),

    # Tunisia Mining Grid: the guidance note example (grid reference 302598,
    # 38.97997 grad N and 8.22437 grad E of Paris, exact in grads).
    dict(id="tunisia-mining-grid-22300", crs=registry_wkt(22300), proj=None,
         area=(7.49, 30.23, 11.59, 37.4),
         examples=[(8.22437 * 0.9 + 2.33722917, 38.97997 * 0.9, 302000.0, 598000.0,
                    "IOGP GN 7-2 method 9816 example (grid reference 302598)")]),
]
