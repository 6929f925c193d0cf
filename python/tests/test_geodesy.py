"""Geodesics, grid convergence, geocentric coordinates, site grids and the
systems' axes and areas: against PROJ through pyproj where it has the same
quantity, by their defining properties where it has not."""

import pickle

import numpy as np
import pyproj
import pytest

import kvcart


def random_points(rng, n):
    lon = rng.uniform(-180.0, 180.0, n)
    lat = np.degrees(np.arcsin(rng.uniform(-1.0, 1.0, n)))
    return lon, lat


@pytest.mark.parametrize("name, proj_ellps", [("WGS 84", "WGS84"), ("Clarke 1866", "clrk66"),
                                              ("Bessel 1841", "bessel")])
def test_geodesics_agree_with_proj(name, proj_ellps, rng):
    ours, theirs = kvcart.Geod(name), pyproj.Geod(ellps=proj_ellps)
    assert ours.a == theirs.a and abs(ours.f - theirs.f) < 1e-15
    lon1, lat1 = random_points(rng, 4000)
    lon2, lat2 = random_points(rng, 4000)
    # Short, long and nearly antipodal pairs.
    lon2[:1000] = lon1[:1000] + rng.uniform(-0.01, 0.01, 1000)
    lat2[:1000] = np.clip(lat1[:1000] + rng.uniform(-0.01, 0.01, 1000), -90, 90)
    lon2[1000:1500] = lon1[1000:1500] + 179.5
    lat2[1000:1500] = -lat1[1000:1500] + rng.uniform(-0.5, 0.5, 500)
    lat2 = np.clip(lat2, -90, 90)
    az, back, dist = ours.inv(lon1, lat1, lon2, lat2)
    paz, pback, pdist = theirs.inv(lon1, lat1, lon2, lat2)
    assert np.max(np.abs(dist - pdist)) < 1e-6
    # Azimuths where they are defined (not at a pole, not for coincident points).
    far = (np.abs(lat1) < 89.9) & (np.abs(lat2) < 89.9) & (dist > 1.0)
    turn = lambda a, b: np.abs((a - b + 180.0) % 360.0 - 180.0)
    assert np.max(turn(az, paz)[far]) < 1e-9 and np.max(turn(back, pback)[far]) < 1e-9
    # The direct problem from the same starts.
    s = rng.uniform(-2.0e7, 4.0e7, 4000)
    flon, flat, fback = ours.fwd(lon1, lat1, az, s)
    plon, plat, pfback = theirs.fwd(lon1, lat1, az, s)
    assert np.max(turn(flon, plon)) < 1e-9 and np.max(np.abs(flat - plat)) < 1e-9
    assert np.max(turn(fback, pfback)[np.abs(flat) < 89.9]) < 1e-8
    assert np.all((flon >= -180.0) & (flon <= 180.0))


def test_geodesic_shapes_scalars_and_points_that_are_none():
    g = kvcart.Geod()
    lon, lat, back = g.fwd(0.0, 0.0, 90.0, 1000.0)
    assert isinstance(lon, float) and lat == 0.0 and back == -90.0
    # Broadcasting: one start, a row of azimuths by a column of distances.
    lon, lat, back = g.fwd(10.0, 50.0, np.array([0.0, 90.0, 180.0]), np.array([[1.0], [1000.0]]))
    assert lon.shape == (2, 3) and lat[1, 0] > 50.0 and lat[1, 2] < 50.0
    az, back, dist = g.inv([0.0, np.nan, 0.0, 0.0], [0.0, 0.0, 91.0, 0.0], [1.0, 1.0, 1.0, np.inf], 0.0)
    assert dist[0] > 0 and np.all(np.isnan(dist[1:])) and np.all(np.isnan(az[1:])) and np.all(np.isnan(back[1:]))
    lon, lat, back = g.fwd([0.0, 0.0, np.nan], 0.0, [90.0, np.inf, 0.0], [np.nan, 1.0, 1.0])
    assert np.all(np.isnan(lon)) and np.all(np.isnan(lat)) and np.all(np.isnan(back))
    with pytest.raises(ValueError, match="broadcast"):
        g.inv([0.0, 1.0], [0.0, 1.0, 2.0], 0.0, 0.0)
    assert g.fwd([], [], [], [])[0].shape == (0,)


def test_line_length_is_the_sum_of_the_legs():
    g = kvcart.Geod()
    lons, lats = [0.0, 1.0, 1.0, 0.0], [0.0, 0.0, 1.0, 1.0]
    want = pyproj.Geod(ellps="WGS84").line_length(lons, lats)
    assert abs(g.line_length(lons, lats) - want) < 1e-6
    assert g.line_length([5.0], [5.0]) == 0.0


def test_geod_from_figures_and_their_refusals():
    sphere = kvcart.Geod(a=6371000.0, f=0.0)
    # On a sphere a quarter of the equator is a quarter of the circle.
    assert abs(sphere.inv(0.0, 0.0, 90.0, 0.0)[2] - np.pi * 6371000.0 / 2.0) < 1e-6
    assert kvcart.Geod(a=6378388.0, rf=297.0) == kvcart.Geod("International 1924")
    assert kvcart.Geod("wgs84").a == 6378137.0 and kvcart.Geod().b == pytest.approx(6356752.314245, abs=1e-6)
    with pytest.raises(ValueError, match="Clarke 1866"):
        kvcart.Geod("Clark 1866")
    with pytest.raises(ValueError, match="flattening"):
        kvcart.Geod(a=6378137.0, f=0.2)
    with pytest.raises(ValueError, match="flattening"):
        kvcart.Geod(a=6378137.0, f=-0.001)
    with pytest.raises(ValueError, match="semi-major"):
        kvcart.Geod(a=float("nan"), f=0.0)
    for bad in ({"a": 1.0}, {"f": 0.0}, {"a": 1.0, "f": 0.0, "rf": 1.0}):
        with pytest.raises(TypeError):
            kvcart.Geod(**bad)
    with pytest.raises(TypeError):
        kvcart.Geod("WGS 84", a=1.0, f=0.0)
    with pytest.raises(TypeError):
        kvcart.Geod(a="6378137", f=0.0)
    g = kvcart.Geod("Bessel 1841")
    assert pickle.loads(pickle.dumps(g)) == g and "Bessel 1841" in repr(pickle.loads(pickle.dumps(g)))


def test_a_systems_geod_is_its_ellipsoid():
    assert kvcart.CRS("EPSG:27700").get_geod() == kvcart.Geod("Airy 1830")
    assert kvcart.CRS("LONG/LAT").get_geod() == kvcart.Geod()  # WGS 84 for want of one
    assert kvcart.CRS("NON-UTM").get_geod() is None


@pytest.mark.parametrize("code, box", [("EPSG:32632", ((3, 15), (-80, 84))), ("EPSG:2154", ((-5, 9), (41, 51))),
                                       ("EPSG:27700", ((-7.5, 1.7), (49.9, 60.8))),
                                       ("EPSG:3031", ((-180, 180), (-89, -60)))])
def test_convergence_agrees_with_proj(code, box, rng):
    lon = rng.uniform(*box[0], 2000)
    lat = rng.uniform(*box[1], 2000)
    ours = kvcart.CRS(code).convergence(lon, lat)
    theirs = pyproj.Proj(code).get_factors(lon, lat).meridian_convergence
    # PROJ's figure is a numerical derivative, a few 1e-6 degrees off near
    # the edge of a zone at high latitude.
    assert np.max(np.abs(ours - theirs)) < 5e-6


def test_convergence_shapes_and_edges():
    utm = kvcart.CRS("UTM-32")
    assert utm.convergence(9.0, 0.0) == 0.0 and isinstance(utm.convergence(9.0, 0.0), float)
    assert utm.convergence(np.zeros((2, 3)) + 12.0, 50.0).shape == (2, 3)
    assert np.isnan(utm.convergence(np.nan, 50.0)) and np.isnan(utm.convergence(9.0, np.inf))
    assert kvcart.CRS("EPSG:4326").convergence(30.0, 60.0) == 0.0


def test_geocentric_agrees_with_proj(rng):
    lon, lat = random_points(rng, 3000)
    h = rng.uniform(-500.0, 9000.0, 3000)
    x, y, z = kvcart.CRS("EPSG:4326").to_geocentric(lon, lat, h)
    px, py, pz = pyproj.Transformer.from_crs("EPSG:4979", "EPSG:4978", always_xy=True).transform(lon, lat, h)
    assert max(np.max(np.abs(x - px)), np.max(np.abs(y - py)), np.max(np.abs(z - pz))) < 1e-6
    # Another ellipsoid, and back.
    airy = kvcart.CRS("EPSG:27700")
    blon, blat, bh = airy.from_geocentric(*airy.to_geocentric(lon, lat, h))
    assert np.max(np.abs((blon - lon + 180) % 360 - 180)) < 1e-9 and np.max(np.abs(blat - lat)) < 1e-9
    assert np.max(np.abs(bh - h)) < 1e-5
    assert np.all(np.isnan(airy.to_geocentric(0.0, 91.0, 0.0)))
    with pytest.raises(ValueError, match="ellipsoid"):
        kvcart.CRS("LONG/LAT").to_geocentric(0.0, 0.0)


def test_site_grid_follows_its_orientation_from_true_north(rng):
    for text, code, lon0, lat0 in [("UTM", "EPSG:32632", 9.5, 47.5), ("EPSG:2154", "EPSG:2154", 6.0, 46.0),
                                   ("EPSG:27700", "EPSG:27700", -3.0, 56.0)]:
        crs = pyproj.CRS(code)
        project = pyproj.Transformer.from_crs(crs.geodetic_crs, crs, always_xy=True)
        for orientation in (0.0, 30.0, -120.0):
            grid = kvcart.SiteGrid(text, lon0, lat0, orientation)
            assert np.allclose(grid.from_geographic(lon0, lat0), (0.0, 0.0), atol=1e-6)
            assert grid.true_north(0.0, 0.0) == pytest.approx(orientation, abs=1e-9)
            conv = grid.crs.convergence(lon0, lat0)
            assert grid.projection_north == pytest.approx(orientation - conv, abs=1e-9)
            # 200 m along the azimuth of the y axis is on the y axis, ahead;
            # 200 m to its right is on the x axis.
            g = grid.crs.get_geod()
            alon, alat, _ = g.fwd(lon0, lat0, orientation, 200.0)
            rlon, rlat, _ = g.fwd(lon0, lat0, orientation + 90.0, 200.0)
            ax, ay = grid.from_geographic(alon, alat)
            rx, ry = grid.from_geographic(rlon, rlat)
            assert abs(ax) < 1e-3 and 199.0 < ay < 201.0
            assert abs(ry) < 1e-3 and 199.0 < rx < 201.0
            # Round trips through all three kinds of coordinates.
            x = rng.uniform(-5000.0, 5000.0, 500)
            y = rng.uniform(-5000.0, 5000.0, 500)
            lon, lat = grid.to_geographic(x, y)
            bx, by = grid.from_geographic(lon, lat)
            assert np.max(np.hypot(bx - x, by - y)) < 1e-6
            # The projected coordinates are the projection's own, as PROJ
            # projects (no datum change: a transformer from WGS 84 would
            # move GRS 80 points by a tenth of a millimetre).
            px, py = grid.to_projected(x, y)
            tx, ty = project.transform(lon, lat)
            assert np.max(np.hypot(px - tx, py - ty)) < 1e-6
            cx, cy = grid.from_projected(px, py)
            assert np.max(np.hypot(cx - x, cy - y)) < 1e-6


def test_site_grid_on_feet_takes_projected_coordinates_in_feet():
    grid = kvcart.SiteGrid("EPSG:2263", -74.0, 40.7, 10.0)
    X, Y = grid.to_projected(0.0, 0.0)
    tx, ty = pyproj.Transformer.from_crs("EPSG:4269", "EPSG:2263", always_xy=True).transform(-74.0, 40.7)
    assert abs(X - tx) < 1e-6 and abs(Y - ty) < 1e-6
    # 100 m along the y axis is 328 feet away on the map.
    X2, Y2 = grid.to_projected(0.0, 100.0)
    assert np.hypot(X2 - X, Y2 - Y) == pytest.approx(100.0 / 0.3048006096, rel=1e-3)


def test_site_grid_refusals_and_pickling():
    grid = kvcart.SiteGrid("UTM", 9.5, 47.5, 30.0)
    assert grid.crs.srs == "UTM-32" and grid.origin == (9.5, 47.5) and grid.orientation == 30.0
    again = pickle.loads(pickle.dumps(grid))
    assert again.from_geographic(9.6, 47.6) == grid.from_geographic(9.6, 47.6)
    assert np.all(np.isnan(grid.from_geographic(np.nan, 47.0)))
    for bad in [(np.nan, 47.5, 0.0), (9.5, 91.0, 0.0), (9.5, 47.5, np.inf)]:
        with pytest.raises(ValueError):
            kvcart.SiteGrid("UTM", *bad)
    with pytest.raises(ValueError, match="did you mean"):
        kvcart.SiteGrid("Britsh National Grid", -2.0, 52.0)
    with pytest.raises(TypeError):
        kvcart.SiteGrid("UTM-32", "9.5", 47.5)


def test_axes_units_and_areas():
    axes = kvcart.CRS("EPSG:2193").axis_info
    assert [a.direction for a in axes] == ["north", "east"] and axes[0].unit_conversion_factor == 1.0
    feet = kvcart.CRS("EPSG:2263").axis_info
    assert feet[0].unit_name == "US survey foot"
    assert feet[0].unit_conversion_factor == pytest.approx(1200.0 / 3937.0, rel=1e-15)
    # A catalogue grid kept in feet: its engine's description is in metres,
    # its coordinates are in feet.
    nad27 = kvcart.CRS("NAD27 / Alabama East").axis_info
    assert nad27[1].unit_name == "US survey foot" and nad27[1].unit_conversion_factor == 1200.0 / 3937.0
    # The directions as the coordinates are written, as the registry has them,
    # whether the engine or the text's axes make them so.
    for code in ("EPSG:5513", "EPSG:5514", "EPSG:2065", "EPSG:2053", "EPSG:22275", "EPSG:3139", "EPSG:32632"):
        want = [a.direction.lower() for a in pyproj.CRS(code).axis_info]
        assert [a.direction for a in kvcart.CRS(code).axis_info] == want, code
    geo = kvcart.CRS("EPSG:4326").axis_info
    assert [(a.direction, a.unit_name) for a in geo] == [("east", "degree"), ("north", "degree")]
    assert kvcart.CRS("EPSG:4326").is_geographic and not kvcart.CRS("EPSG:4326").is_projected
    assert kvcart.CRS("UTM-32").is_projected and not kvcart.CRS("NON-UTM").is_projected
    area = kvcart.CRS("EPSG:27700").area_of_use
    assert area == pytest.approx(tuple(pyproj.CRS("EPSG:27700").area_of_use.bounds), abs=1e-9)
    # Across the antimeridian, west > east as the registry gives it.
    assert kvcart.CRS("EPSG:3994").area_of_use == (155.0, -60.0, -169.99, -25.0)
    assert kvcart.CRS("UTM-32").area_of_use is None
    x0, y0, x1, y1 = kvcart.CRS("UTM-32").default_area
    assert x0 < 500000.0 < x1 and y0 < y1
