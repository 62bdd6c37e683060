"""Runs of orvo-tile vector and locate: what stands in the tiles, what was skipped, and what is said."""

import json
import os
import random
import re
import resource
import sys
import time
import unittest

from osgeo import gdal, ogr, osr

from host_run import HostTest

gdal.UseExceptions()
ogr.UseExceptions()


def system(code=25832):
    found = osr.SpatialReference()
    found.ImportFromEPSG(code)
    found.SetAxisMappingStrategy(osr.OAMS_TRADITIONAL_GIS_ORDER)
    return found


def write_layer(path, shapes, driver="GPKG", kind=ogr.wkbUnknown, name="shapes", srs=True):
    """Features of WKT texts (None for no geometry) with a number, a text, a date and a list of their own."""
    dataset = ogr.GetDriverByName(driver).CreateDataSource(path)
    layer = dataset.CreateLayer(name, system() if srs else None, kind)
    for field, field_type in (("number", ogr.OFTReal), ("text", ogr.OFTString), ("day", ogr.OFTDate)):
        layer.CreateField(ogr.FieldDefn(field, field_type))
    transaction = dataset.TestCapability(ogr.ODsCTransactions)
    transaction and dataset.StartTransaction()
    for i, shape in enumerate(shapes):
        feature = ogr.Feature(layer.GetLayerDefn())
        if i % 5 != 4:
            feature["number"] = i / 3
        feature["text"] = f'ä "{i}"\\\n'
        feature["day"] = "2024/02/29"
        if shape is not None:
            feature.SetGeometry(ogr.CreateGeometryFromWkt(shape))
        layer.CreateFeature(feature)
    transaction and dataset.CommitTransaction()
    return path


def square(x, y, size=1.0, height=None):
    z = "" if height is None else f" {height}"
    corners = [(x, y), (x + size, y), (x + size, y + size), (x, y + size), (x, y)]
    return f"POLYGON{' Z' if z else ''} ((" + ",".join(f"{a} {b}{z}" for a, b in corners) + "))"


def blobs(seed, count, size=9):
    rng = random.Random(seed)
    return [ogr.CreateGeometryFromWkt(f"POINT ({rng.uniform(10, 90)} {rng.uniform(10, 90)})")
            .Buffer(rng.uniform(0.5, size), 3).ExportToWkt() for _ in range(count)]


def nasty(seed, count):
    """Lines along edges and across, areas that cross themselves, parts, collections, and what is skipped."""
    rng = random.Random(seed)

    def path(corners, step, closed=False):
        points = [(rng.uniform(0, 100), rng.uniform(0, 100)) for _ in range(corners)]
        points = [(round(x / step) * step, round(y / step) * step) for x, y in points] if step else points
        return "(" + ",".join(f"{x} {y}" for x, y in points + points[:closed]) + ")"

    for n in range(count):
        step = (0, 2.5, 10)[n % 3]
        line = "LINESTRING " + path(rng.randint(2, 6), step)
        area = f"POLYGON ({path(rng.choice((3, 4, 5, 6, 12)), step, True)})"
        yield (line, area, area, f"MULTIPOINT {path(5, step)}", f"MULTILINESTRING ({path(4, step)},{path(3, 5)})",
               f"GEOMETRYCOLLECTION ({line},{area},POINT (20 30))")[n // 3 % 6]
    yield from (None, "POINT EMPTY", "LINESTRING (-3 0,-3 0)", square(0, 0, 100), square(-3, 40, 104),
                f"POLYGON ({path(60, 0, True)})", f"POLYGON ({path(110, 0, True)})")


class VectorTest(HostTest):
    def cut(self, *arguments, **options):
        return super().cut("vector", "-q", *arguments, **options)

    def check(self, summary):
        """The numbers add up, and the index names exactly the tiles on the disk."""
        features, tiles = summary["features"], summary["tiles"]
        self.assertEqual(features["in"], features["placed"] + features["skipped"])
        self.assertEqual(features["skipped"], sum(reason["features"] for reason in summary["skipped"]))
        self.assertEqual(tiles["total"],
                         tiles["written"] + tiles["failed"] + tiles["empty"] + tiles["not_reached"])
        names = self.names(summary["outdir"])
        self.assertFalse([name for name in names if name.startswith(".")])
        indexed = self.index_of(summary)
        self.assertEqual(len(indexed), tiles["written"])
        extensions = {name.rsplit(".", 1)[1] for name in indexed}
        self.assertEqual({name for name in names if "grp" in name and name.rsplit(".", 1)[1] in extensions},
                         set(indexed))
        self.assertEqual(sum(len(features) for features in self.tiles_of(summary).values()), summary["pieces"])

    def index_of(self, summary):
        """location → properties and envelope."""
        if not summary["index"]:
            return {}
        dataset = ogr.Open(summary["index"])
        for f in dataset.GetLayer():  # from the upper left corner, and from the lower left one
            self.assertEqual((f["column"], summary["grid"]["rows"] + 1 - f["row"]), (f["x"], f["y"]))
        return {f["location"]: (f["column"], f["row"], f["tile"], f.GetGeometryRef().GetEnvelope())
                for f in dataset.GetLayer()}

    def tiles_of(self, summary):
        """tile's name → its features: source_fid, tile, geometry, attributes."""
        tiles = {}
        for location, (_, _, tile, _) in self.index_of(summary).items():
            dataset = ogr.Open(os.path.join(summary["outdir"], location))
            tiles[tile] = [(int(f["source_fid"]), f["tile"], f.GetGeometryRef().Clone(), f.items())
                           for f in dataset.GetLayer()]
        return tiles

    def skipped_of(self, summary):
        """source_fid → reason."""
        if not summary["skipped_file"]:
            return {}
        dataset = ogr.Open(summary["skipped_file"])
        return {f["source_fid"]: f["reason"] for f in dataset.GetLayer()}


class TilesTest(VectorTest):
    def test_formats_hold_everything(self):
        seed = random.randrange(10**6)
        print("seed", seed)
        shapes = blobs(seed, 60, 25)
        areas = {i + 1: ogr.CreateGeometryFromWkt(shape).GetArea() for i, shape in enumerate(shapes)}
        source = write_layer(self.path("map.gpkg"), shapes, kind=ogr.wkbPolygon)
        for number, name in enumerate(("GeoJSON", "gpkg", "ESRI Shapefile", "FlatGeobuf", "MapInfo File")):
            with self.subTest(format=name, seed=seed):
                summary = self.cut(source, f"out{number}", "--tile-width", 13, "--tile-height", 7, "--format", name,
                                   "--id", "é_", "--preview")
                self.assertEqual(summary["stderr"], "")
                title, _, *drawn = self.data_of(summary)
                self.assertEqual((title, {tile["name"] for tile in drawn}), ("shapes", set(self.index_of(summary))))
                found = dict.fromkeys(areas, 0.0)
                places = {tile: place for _, _, tile, place in self.index_of(summary).values()}
                for tile, features in self.tiles_of(summary).items():
                    self.assertTrue(tile.startswith("é_grp"))
                    west, east, south, north = places[tile]
                    for fid, own, geometry, items in features:
                        self.assertEqual(own, tile)
                        self.assertTrue(geometry.IsValid())
                        found[fid] += geometry.GetArea()
                        a, b, c, d = geometry.GetEnvelope()
                        for low, high in ((west, a), (b, east), (south, c), (d, north)):
                            self.assertLessEqual(low, high + 1e-6)
                        i = fid - 1
                        self.assertEqual(items["text"].strip(), f'ä "{i}"\\')
                        self.assertEqual(str(items["day"]).replace("-", "/")[:10], "2024/02/29")
                        if i % 5 != 4:
                            self.assertAlmostEqual(items["number"], i / 3)
                for fid, area in areas.items():
                    self.assertAlmostEqual(found[fid], area, delta=1e-5 * area)
                tile = ogr.Open(self.path(f"out{number}", next(iter(self.index_of(summary)))))
                self.assertEqual(tile.GetLayer().GetSpatialRef().GetProjParm("central_meridian"), 9)
                again = self.cut(source, f"out{number}", "--columns", 1, "--rows", 1, "--overwrite")
                self.assertEqual(set(os.listdir(again["outdir"])), {"grp0.geojson", "tiles.geojson", "job.json"})

    def test_locate_agrees_with_vector(self):
        rng = random.Random(5)
        points = [(rng.randrange(0, 31), rng.randrange(0, 21)) for _ in range(80)] + [(0, 0), (30, 20)]
        source = write_layer(self.path("points.gpkg"), [f"POINT ({x} {y})" for x, y in points], kind=ogr.wkbPoint)
        size = ["--tile-width", 5, "--tile-height", 4]
        summary = self.cut(source, "out", *size)
        found = {fid: tile for tile, features in self.tiles_of(summary).items() for fid, *_ in features}
        self.assertEqual(len(found), len(points))
        places = {tile: place for _, _, tile, place in self.index_of(summary).values()}
        for fid, (x, y) in list(enumerate(points, 1))[::6] + [(82, (30, 20))]:
            answer = json.loads(self.run_tile("locate", source, x, y, *size).stdout)
            self.assertEqual(answer["tile"], found[fid])
            west, east, south, north = places[found[fid]]
            # North-east of the edge, but inside the grid.
            self.assertTrue((west <= x < east or x == east == 30) and (south <= y < north or y == north == 20))
            self.assertEqual(answer["on_edge"], x % 5 == 0 or y % 4 == 0)
            self.assertEqual((answer["column"], answer["row"]), (min(x // 5, 5) + 1, min(y // 4, 4) + 1))
        for x, y in ((-0.001, 5), (5, 20.001), (1e300, 0)):
            done = self.run_tile("locate", source, x, y, *size)
            self.assertEqual((done.returncode, done.stdout), (1, ""))
            self.assertIn("from x 0 to 30 and from y 0 to 20", done.stderr)

    def test_more_tiles_than_open_files(self):
        source = write_layer(self.path("map.gpkg"), blobs(3, 150, 2), kind=ogr.wkbPolygon)
        limits = lambda: resource.setrlimit(resource.RLIMIT_NOFILE, (64, 64))
        for number, name in enumerate(("geojson", "shp")):
            summary = self.cut(source, f"out{number}", "--columns", 40, "--rows", 40, "--format", name,
                               preexec_fn=limits)
            self.assertGreater(summary["tiles"]["written"], 100)
            self.assertEqual(summary["features"]["placed"], 150)


class TreatmentsTest(VectorTest):
    def test_every_kind_has_its_treatment(self):
        shapes = [
            ("POINT (15 5)", {"grp1"}), ("POINT Z (5 5 7)", {"grp0"}),
            ("POINT (10 10)", {"grp4"}),                                   # a corner: north-east
            ("POINT (30 30)", {"grp8"}),                                   # the grid's own corner: inside
            ("LINESTRING (10 2,10 18)", {"grp1", "grp4"}),                 # along an edge: east of it
            ("LINESTRING (12 30,28 30)", {"grp7", "grp8"}),                # along the north border: inside
            ("LINESTRING (2 10,8 10,8 15)", {"grp3"}),                     # on an edge, then into one tile
            ("LINESTRING (10 2,10 8,10 12,12 12)", {"grp1", "grp4"}),      # the stretch that Clip gives nobody
            (square(0, 0, 30), {f"grp{i}" for i in range(9)}),             # covers the middle tile
            (square(10, 10, 10), {"grp4"}),                                # equals a tile
            ("MULTIPOINT ((5 5),(25 25))", {"grp0", "grp8"}),
            ("GEOMETRYCOLLECTION (POINT (5 5),LINESTRING (1 1,2 2),GEOMETRYCOLLECTION (POINT (25 25)))",
             {"grp0", "grp8"}),
            ("CURVEPOLYGON (CIRCULARSTRING (12 15,15 18,18 15,15 12,12 15))", {"grp4"}),
            ("TIN Z (((1 1 0,2 1 0,1 2 3,1 1 0)),((2 1 0,2 2 3,1 2 3,2 1 0)))", {"grp0"}),
            ("POLYGON ((12 2,18 8,18 2,12 8,12 2))", {"grp1"}),            # crosses itself, whole in a tile
            ("POLYGON ((5 22,15 28,15 22,5 28,5 22))", {"grp6", "grp7"}),  # crosses itself, cut: mended
            ("LINESTRING M (1 1 9,12 1 9)", {"grp0", "grp1"}),
        ]
        odd = [(None, "no geometry"), ("POINT EMPTY", "empty"), ("GEOMETRYCOLLECTION EMPTY", "empty"),
               ("LINESTRING (10 10,10 10)", "nothing")]
        source = write_layer(self.path("mixed.gpkg"), [s for s, _ in shapes] + [s for s, _ in odd])
        summary = self.cut(source, "out", "--tile-width", 10, "--tile-height", 10, exit_code=1)
        tiles = self.tiles_of(summary)
        for fid, (shape, expected) in enumerate(shapes, 1):
            with self.subTest(shape=shape):
                pieces = [(tile, geometry) for tile, features in tiles.items() for own, _, geometry, _ in features
                          if own == fid]
                self.assertEqual({tile for tile, _ in pieces}, expected)
                whole = ogr.CreateGeometryFromWkt(shape)
                self.assertEqual({geometry.Is3D() for _, geometry in pieces}, {whole.Is3D()})
                if shape.startswith("LINE"):
                    self.assertAlmostEqual(sum(geometry.Length() for _, geometry in pieces), whole.Length())
                if fid == 9:
                    self.assertEqual([geometry.GetArea() for _, geometry in pieces], [100.0] * 9)
        skipped = self.skipped_of(summary)
        self.assertEqual(sorted(skipped), list(range(len(shapes) + 1, len(shapes) + len(odd) + 1)))
        for fid, (_, word) in enumerate(odd, len(shapes) + 1):
            self.assertIn(word, skipped[fid])
        for word in ("curves", "faces", "measures"):
            self.assertIn(word, " ".join(summary["notices"]))
        done = self.run_tile("vector", source, "shp", "--columns", 3, "--rows", 3, "--format", "shp")
        self.assertEqual((done.returncode, os.path.exists(self.path("shp"))), (1, False))
        self.assertIn("GPKG", done.stderr)

    def test_strict_leaves_covered_tiles_out_and_says_so(self):
        source = write_layer(self.path("map.gpkg"), [square(0, 0, 30), square(0, 0, 20),
                                                     f"GEOMETRYCOLLECTION (POINT (5 5),{square(0, 0, 20)})"])
        size = ["--tile-width", 10, "--tile-height", 10, "--strict"]
        # Each touches its tiles' edges from inside only: all are covered.
        summary = self.cut(source, "out", *size)
        self.assertEqual((summary["features"]["placed"], summary["covered_tiles_left_out"]), (1, 17))
        self.assertEqual(set(self.skipped_of(summary)), {1, 2})
        self.assertIn("--strict", self.skipped_of(summary)[1])

    def test_fields_of_our_names_and_no_coordinate_system(self):
        source = write_layer(self.path("map.shp"), [square(1, 1, 3)], "ESRI Shapefile", ogr.wkbPolygon, srs=False)
        first = self.cut(source, "one", "--columns", 1, "--rows", 1)
        second = self.cut(self.path("one", "grp0.geojson"), "two", "--columns", 2, "--rows", 1)
        properties = json.loads(self.read("two/grp1.geojson"))["features"][0]["properties"]
        self.assertEqual((properties["tile"], properties["tile_2"]), ("grp0", "grp1"))
        self.assertIn("source_fid_2", properties)
        self.assertIn("tile_2", " ".join(second["notices"]))
        self.assertIn("coordinate system", " ".join(first["notices"]))

    def test_a_format_keeps_each_value_or_names_the_field(self):
        fields = {"big": [9007199254740993, -2**63, 2**63 - 1, 7], "name": ["ä|\t,", "b\n", "long" * 90, ""],
                  "NAME": ["other"], "Name": ["third"], "quite_a_long_name": ["x"], "list": [[1, 2], list(range(100))],
                  "json": ['{"a":1}', "{'a':1}", "NaN", "[" * 300 + "]" * 300, '{"n":1e2,"m":12345678901234567890}'],
                  "real": [1 / 3, 1e300], "time": ["2024-02-29T12:13:14.567+02:00"]}
        values = [{name: given[i % len(given)] for name, given in fields.items()} for i in range(12)]
        source = self.path("map.geojson")
        with open(source, "w") as file:
            json.dump({"type": "FeatureCollection", "features": [
                {"type": "Feature", "id": i, "properties": value, "geometry": {"type": "Point", "coordinates": [i, i]}}
                for i, value in enumerate(values)]}, file)

        def plain(value):
            """The same for all forms of a value; real numbers to 15 digits."""
            try:
                value = json.loads(value) if isinstance(value, str) else value
            except ValueError:
                return [int(digits) for digits in re.findall(r"\d+", value)][:8] if value.startswith("2024") else value
            return "%.15g" % value if isinstance(value, float) else value

        def values_of(layer, field):
            names = [definition.GetName() for definition in layer.schema]
            place = names.index(field) if field in names else None
            return place is not None and {int(f["source_fid"]): plain(
                v if isinstance(v := f.GetField(place), (list, float)) else f.GetFieldAsString(place)) for f in layer}

        for name in ("GeoJSON", "GPKG", "ESRI Shapefile", "FlatGeobuf", "CSV", "LIBKML", "PDF", "netCDF", "PCIDSK",
                     "MapInfo File", "SQLite", "GML", "GeoJSONSeq", "OGR_GMT"):
            with self.subTest(format=name):
                summary = self.cut(source, name, "--columns", 1, "--rows", 1, "--format", name)
                told = " ".join(summary["notices"])
                (location,) = self.index_of(summary)
                dataset = ogr.Open(os.path.join(summary["outdir"], location))
                for field in fields:
                    kept = values_of(dataset.GetLayer(), field) == {i: plain(v[field]) for i, v in enumerate(values)}
                    self.assertTrue(kept or f'"{field}"' in told, (field, values_of(dataset.GetLayer(), field), told))
        for name in ("PDS4", "MVT"):
            done = self.run_tile("vector", source, name, "--columns", 1, "--rows", 1, "--format", name)
            self.assertEqual((done.returncode, os.path.exists(self.path(name))), (1, False))
            self.assertIn("another --format", done.stderr)

    def test_json_is_written_as_such_or_as_text(self):
        texts = ['{"n": [1e2, 12345678901234567890],\n "m": null}', "{'a':1}", "NaN", "[1,]", '1,"x":2',
                 "[" * 300 + "]" * 300, '"lone \\ud800"', ""]
        source = write_layer(self.path("map.gpkg"), ["POINT (1 1)"] * len(texts), name="old")
        dataset = ogr.Open(source, 1)
        field = ogr.FieldDefn("json", ogr.OFTString)
        field.SetSubType(ogr.OFSTJSON)
        layer = dataset.GetLayer()
        layer.CreateField(field)
        for feature, text in zip([*layer], texts):
            feature["json"] = text
            layer.SetFeature(feature)
        dataset = layer = feature = None
        self.cut(source, "out", "--columns", 1, "--rows", 1)
        with open(self.path("out", "grp0.geojson")) as file:
            strict = json.load(file, parse_constant=self.fail)
        self.assertEqual([feature["properties"]["json"] for feature in strict["features"]],
                         [json.loads(texts[0]), *texts[1:]])
        self.assertTrue(all("x" not in feature["properties"] for feature in strict["features"]))

    def test_texts_that_are_no_utf8(self):
        source = self.path("map.geojson")
        with open(source, "wb") as file:
            file.write(b'{"type":"FeatureCollection","features":[' + b",".join(
                b'{"type":"Feature","properties":{"a":"' + text + b'"},"geometry":{"type":"Point","coordinates":[1,2]}}'
                for text in (b"caf\xe9", b"\xed\xa0\x80", b"fine \xc3\xa9")) + b"]}")
        summary = self.cut(source, "out", "--columns", 1, "--rows", 1)
        with open(self.path("out", "grp0.geojson"), encoding="utf-8") as file:
            texts = [feature["properties"]["a"] for feature in json.load(file)["features"]]
        self.assertEqual((texts[0], set(texts[1]), texts[2]), ("caf\ufffd", {"\ufffd"}, "fine é"))
        self.assertIn('2 features had texts that are not UTF-8, first in the field "a"', " ".join(summary["notices"]))

    def test_coordinates_that_are_no_numbers(self):
        far = {"type": "LineString", "coordinates": [[1, 1], [2, "1e999"]]}
        features = [{"type": "Feature", "properties": {}, "geometry": geometry} for geometry in
                    ({"type": "Point", "coordinates": [1, 1]}, far, {"type": "Point", "coordinates": [9, 9]})]
        self.write("far.geojson", json.dumps({"type": "FeatureCollection", "features": features})
                   .replace('"1e999"', "1e999"))
        summary = self.cut("far.geojson", "out", "--tile-width", 4, "--tile-height", 8, exit_code=1)
        self.assertEqual(summary["grid"]["columns"], 2)
        self.assertEqual(set(self.tiles_of(summary)), {"grp0", "grp1"})
        self.assertIn("finite", " ".join(self.skipped_of(summary).values()))

    def test_extent_stated_too_small(self):
        source = write_layer(self.path("map.gpkg"), [square(0, 0), square(9, 9), square(-5, 4, 30)])
        dataset = gdal.OpenEx(source, gdal.OF_UPDATE)
        dataset.ExecuteSQL("UPDATE gpkg_contents SET min_x=0, min_y=0, max_x=10, max_y=10")
        dataset = None
        summary = self.cut(source, "out", "--tile-width", 5, "--tile-height", 5)
        pieces = [geometry for features in self.tiles_of(summary).values() for fid, _, geometry, _ in features
                  if fid == 3]
        self.assertAlmostEqual(sum(piece.GetArea() for piece in pieces), 900)
        self.assertIn("border", " ".join(summary["notices"]))


class WaysTest(VectorTest):
    """However many threads and machines, and however often it breaks: the same files."""

    CASES = [["--tile-width", 10, "--tile-height", 10, "--preview"],
             ["--columns", 13, "--rows", 4, "--strict", "--format", "gpkg", "--id", "a"],
             ["--columns", 3, "--rows", 9, "--format", "GeoJSONSeq", "--preview"]]

    def test_threads_and_parts(self):
        source = write_layer(self.path("map.gpkg"), nasty(11, 90))
        for number, options in enumerate(self.CASES):
            one = self.cut(source, f"one{number}", *options, "--jobs", 1, exit_code=1)
            whole = self.contents(self.path(f"one{number}"))
            self.assertGreater(one["features"]["skipped"], 2)
            for jobs in (2, 3, 8):
                self.cut(source, f"jobs{number}", *options, "--jobs", jobs, "--overwrite", exit_code=1)
                self.assertEqual(self.contents(self.path(f"jobs{number}")), whole, (options, jobs))
            out = f"parts{number}"
            job = list(map(str, ["vector", source, out, "-q", *options]))
            running = [self.start(*job, "--part", f"{part}/4") for part in (4, 2, 1)]
            self.assertEqual([process.communicate() and process.returncode for process in running], [0, 0, 0])
            missing = self.run_tile("merge", out)
            self.assertEqual((missing.returncode, missing.stderr.count("--part 3/4")), (1, 1), missing.stderr)
            self.run_tile(*job, "--part", "3/4")
            gone = json.loads(self.read(f"{out}/part-2-of-4.json"))["tiles"][0][0]
            os.remove(self.path(out, gone))
            missing = self.run_tile("merge", out)
            self.assertEqual((missing.returncode, "1 tile of part 2 by " in missing.stderr), (1, True))
            self.run_tile(*job, "--part", "2/4", "--resume")
            merged = json.loads(self.run_tile("merge", out).stdout)
            self.assertEqual(self.contents(self.path(out)), whole, options)
            files = {"outdir", "index", "preview", "skipped_file", "stderr"}
            self.assertEqual(*({key: value for key, value in summary.items() if key not in files}
                               for summary in (merged, one)))

    def test_resume(self):
        source = write_layer(self.path("map.gpkg"), nasty(5, 150))
        options = ["--columns", "20", "--rows", "20", "--preview"]
        self.cut(source, "one", *options, exit_code=1)
        process = self.start("vector", source, "out", *options, "-q")
        while process.poll() is None and sum(name.startswith("grp") for name in self.names()) < 9:
            time.sleep(0.001)
        process.kill()
        process.communicate()
        there = sum(name.startswith("grp") for name in self.names())
        refused = self.run_tile("vector", source, "out", *options, "--resume", "--strict")
        self.assertEqual((refused.returncode, "strict was" in refused.stderr), (2, True), refused.stderr)
        self.cut(source, "out", *options, "--resume", exit_code=1)
        self.assertGreater(there, 8)
        self.assertEqual(self.contents(self.path("out")), self.contents(self.path("one")))


class UsageTest(VectorTest):
    def test_refused(self):
        source = write_layer(self.path("map.gpkg"), [square(1, 1, 8)])
        write_layer(self.path("none.gpkg"), [])
        write_layer(self.path("null.gpkg"), [None])
        write_layer(self.path("plain.gpkg"), [None], kind=ogr.wkbNone)
        write_layer(self.path("far.gpkg"), ["POINT (0 0)", "POINT (9e9 0)"])
        write_layer(self.path("wide.gpkg"), ["POINT (0 0)", "POINT (2147483646 0)"])
        two = gdal.OpenEx(write_layer(self.path("two.gpkg"), [square(1, 1)], name="first"), gdal.OF_UPDATE)
        two.CreateLayer("second", system())
        two = None
        gdal.GetDriverByName("GTiff").Create(self.path("map.tif"), 5, 5)
        self.write("text.txt", "nothing")
        self.write("empty.shp", "")
        size = ["--tile-width", "5", "--tile-height", "5"]
        for arguments, *words in (
                ("", "--tile-width", "--columns"), ("--tile-width 5", "--tile-height"), ("--columns 5", "--rows"),
                ("--tile-width 5 --tile-height 5 --columns 5 --rows 5", "not both"),
                ("--columns 0 --rows 5", '"0"', "from 1"), ("--columns -1 --rows 5", '"-1"'),
                ("--columns 99999 --rows 99999", "99999 x 99999", "larger"),
                ("--tile-width 5.5 --tile-height 5", "5.5", "whole"),
                ("--columns 2 --rows 2 --format nonsense", "nonsense", "GPKG"),
                ("--columns 2 --rows 2 --id ../x", "../x"),
                ("--columns 2 --rows 2 --layer missing", "missing", "shapes")):
            self.refuse("vector", source, "out", arguments.split(), 2, words)
        self.refuse("vector", "wide.gpkg", "out", ["--columns", "1000000", "--rows", "1"], 2, ["32 bits", "fewer"])
        for name, code, *words in (
                ("two.gpkg", 2, "--layer", "first, second"), ("far.gpkg", 2, "32 bits"),
                ("missing.gpkg", 1, "missing.gpkg", "spelling"), ("none.gpkg", 1, "none.gpkg", "no features"),
                ("null.gpkg", 1, "null.gpkg", "geometry"), ("plain.gpkg", 1, "plain.gpkg", "no geometries"),
                ("map.tif", 1, "map.tif holds an image", "orvo-tile raster"),
                ("text.txt", 1, "text.txt"), ("empty.shp", 1, "empty.shp")):
            self.refuse("vector", name, "out", size, code, words)
        write_layer(self.path("map.geojson"), [square(1, 1)], "GeoJSON")
        for name, *words in (("map.geojson", "holds features", "orvo-tile vector"), (source, "orvo-tile vector"),
                             (f"GPKG:{source}:shapes", "orvo-tile vector"), ("plain.gpkg", "cannot be opened")):
            self.refuse("raster", name, "out", ["--tile-size", "5"], 1, [name, *words])
        os.mkfifo(self.path("pipe"))
        for name in ("pipe", "", "CSV:pipe", "/vsigzip/" + self.path("pipe"), "/vsistdin/"):
            for command, options in (("vector", size), ("raster", ["--tile-size", "5"])):
                self.refuse(command, name, "out", options, 2, ["INPUT", name])

    def test_overwrite_removes_nothing_that_the_source_is_read_from(self):
        source = write_layer(self.path("map.gpkg"), [square(1, 1), square(8, 8)])
        layer = '<OGRVRTLayer name="grp0"><SrcDataSource relativeToVRT="%d">%s</SrcDataSource></OGRVRTLayer>'
        virtual = f"<OGRVRTDataSource>{layer}</OGRVRTDataSource>"
        self.write("one.vrt", virtual % (0, self.path("gpkg/grp0.gpkg")))
        union = f'<OGRVRTUnionLayer name="all">{layer}</OGRVRTUnionLayer>' % (1, "one.vrt")
        self.write("union.vrt", f"<OGRVRTDataSource>{union}</OGRVRTDataSource>")
        os.symlink("gpkg/grp0.gpkg", self.path("link.gpkg"))
        for name in ("gpkg", "shp"):
            self.cut(source, name, "--columns", 2, "--rows", 2, "--format", name)
        os.link(self.path("gpkg/grp0.gpkg"), self.path("hard.gpkg"))
        for out, *names in (("gpkg", "gpkg/grp0.gpkg", "GPKG:gpkg/grp0.gpkg:grp0", "gpkg/tiles.geojson", "link.gpkg",
                             "hard.gpkg", "one.vrt", "union.vrt", virtual % (0, "gpkg/grp0.gpkg"),
                             "/vsisubfile/0_9999999,gpkg/grp0.gpkg"), ("shp", "shp/grp0.dbf", "shp")):
            before = sorted(os.listdir(self.path(out)))
            for name in names:
                done = self.run_tile("vector", name, out, "--columns", 1, "--rows", 1, "--overwrite",
                                     *(["--layer", "grp0"] if name == "shp" else []))
                self.assertEqual((done.returncode, "source" in done.stderr), (2, True), (name, done.stderr))
                self.assertEqual(sorted(os.listdir(self.path(out))), before, name)

    def test_one_run_at_a_time_removes_what_earlier_ones_left(self):
        source = write_layer(self.path("map.gpkg"), blobs(7, 300, 3), kind=ogr.wkbPolygon)
        run = ["vector", source, "out", "--columns", "20", "--rows", "20"]
        self.cut(*run[1:])
        for name in (".orvo-tile-1-2.geojson", ".i101112_1.reserved"):
            self.write("out/" + name, "left by a run that was killed")
        for name in (".orvo-tile-AbC123", ".convert-AbC123"):
            os.mkdir(self.path("out", name))
            self.write(f"out/{name}/grp0.gpkg", "likewise")
        processes = [self.start(*run, "--overwrite") for _ in range(6)]
        ends = [process.communicate() and process.returncode for process in processes]
        self.assertLessEqual(set(ends), {0, 2})
        self.assertIn(0, ends)
        tiles = []
        for name in os.listdir(self.path("out")):
            self.assertFalse(name.startswith("."), name)
            if name.startswith("tiles"):
                index = json.loads(self.read("out/" + name))
                tiles += [feature["properties"]["location"] for feature in index["features"]]
        self.assertEqual(len(tiles), len(set(tiles)))
        self.assertEqual({name for name in os.listdir(self.path("out")) if name.startswith("grp")}, set(tiles))

    def test_nothing_of_others_is_overwritten(self):
        source = write_layer(self.path("map.gpkg"), [square(1, 1), square(8, 8)])
        os.mkdir(self.path("out"))
        self.write("out/grp0.geojson", "mine")
        refused = self.run_tile("vector", source, "out", "--columns", 2, "--rows", 2)
        self.assertEqual(refused.returncode, 1)
        self.assertIn("grp0.geojson", refused.stderr)
        self.assertEqual(self.read("out/grp0.geojson"), "mine")
        self.assertEqual([name for _, _, name, _ in self.index_of(json.loads(refused.stdout)).values()], ["grp3"])
        done = self.run_tile("vector", source, "out", "--columns", 2, "--rows", 2)
        self.assertEqual(done.returncode, 2)
        self.assertIn("--overwrite", done.stderr)


class FaultsTest(VectorTest):
    def test_interrupted(self):
        source = write_layer(self.path("map.gpkg"), blobs(4, 400, 3), kind=ogr.wkbPolygon)
        process = self.start("vector", source, "out", "--columns", "40", "--rows", "40", "--format", "gpkg", "-q")
        summary = self.interrupt(process, lambda: any("grp" in name for name in self.names()))
        self.assertGreater(summary["tiles"]["not_reached"], 0)

    def test_tiles_that_vanish_stand_in_no_index(self):
        source = write_layer(self.path("map.gpkg"), blobs(4, 400, 3), kind=ogr.wkbPolygon)
        process = self.start("vector", source, "out", "--columns", "20", "--rows", "20", "--format", "gpkg", "-q")
        while process.poll() is None and not any(name.startswith("grp") for name in self.names()):
            time.sleep(0.005)
        gone = next(name for name in self.names() if name.startswith("grp"))
        os.remove(self.path("out", gone))
        summary = json.loads(process.communicate()[0])
        self.assertEqual([failure["tile"] + ".gpkg" for failure in summary["failures"]], [gone])
        self.assertEqual(process.returncode, 1)
        self.check(summary)

    def test_full_disk(self):
        # A file may grow to 6000 bytes: tiles of few features get through, the big one does not.
        crowd = [square(1 + i / 1000, 1) for i in range(200)]
        source = write_layer(self.path("map.gpkg"), crowd + [square(8, 8)], kind=ogr.wkbPolygon)
        for number, name in enumerate(("geojson", "shp", "fgb")):
            with self.subTest(format=name):
                summary = self.cut(source, f"out{number}", "--columns", 2, "--rows", 2, "--format", name,
                                   exit_code=1,
                                   preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (6000, 6000)))
                self.assertEqual([failure["tile"] for failure in summary["failures"]], ["grp0"])
                self.assertEqual(summary["tiles"]["written"], 1)
                self.assertIn("grp0", summary["stderr"])
                self.assertNotIn("grp0.", " ".join(os.listdir(summary["outdir"])))

    def test_source_that_breaks_off(self):
        source = write_layer(self.path("map.shp"), blobs(2, 50), "ESRI Shapefile", ogr.wkbPolygon)
        os.truncate(source, os.path.getsize(source) // 2)
        summary = self.cut(source, "out", "--columns", 3, "--rows", 3, exit_code=1)
        self.assertEqual(summary["features"]["in"], 50)
        self.assertEqual(set(self.skipped_of(summary).values()), {"its geometry cannot be read"})
        self.assertIn("damaged", " ".join(summary["errors"]))


if __name__ == "__main__":
    unittest.main(verbosity=0, argv=[sys.argv[0], *sys.argv[1:]])
