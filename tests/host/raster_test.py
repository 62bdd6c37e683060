"""Runs of the real orvo-tile: exit code, standard output, standard error, and what stands on the disk."""

import contextlib
import copy
import hashlib
import json
import os
import random
import re
import resource
import shutil
import signal
import struct
import subprocess
import sys
import time
import unittest

from osgeo import gdal, ogr, osr

from host_run import HostTest

gdal.UseExceptions()
ogr.UseExceptions()
gdal.PushErrorHandler("CPLQuietErrorHandler")
gdal.SetConfigOption("GDAL_PAM_ENABLED", "NO")
CONVERT = ["--converter", "/usr/bin/convert"]


@contextlib.contextmanager
def side_files():
    """Files beside an image are read, too."""
    gdal.SetConfigOption("GDAL_PAM_ENABLED", "YES")
    yield
    gdal.SetConfigOption("GDAL_PAM_ENABLED", "NO")


def pattern(column, row, band):
    """A cell value that differs from those around it, in every band."""
    return (column * 7 + row * 13 + band * 50 + (column * row) % 11) % 256


def write_raster(path, columns, rows, bands=3, cell=1.0, left=0.0, top=None, system=None):
    """A raster of the pattern in the format of its extension; png and jpg get a world file."""
    memory = gdal.GetDriverByName("MEM").Create("", columns, rows, bands)
    for band in range(bands):
        cells = bytes(pattern(x, y, band) for y in range(rows) for x in range(columns))
        memory.GetRasterBand(band + 1).WriteRaster(0, 0, columns, rows, cells)
        if bands == 3:
            memory.GetRasterBand(band + 1).SetColorInterpretation(gdal.GCI_RedBand + band)
    memory.SetGeoTransform([left, cell, 0, rows * cell if top is None else top, 0, -cell])
    memory.SetSpatialRef(system)
    kind = {"png": "PNG", "jpg": "JPEG", "tif": "GTiff"}[path.rsplit(".", 1)[-1]]
    gdal.GetDriverByName(kind).CreateCopy(path, memory, options=["WORLDFILE=YES"] if kind != "GTiff" else [])
    return path


def pixels(path, *window):
    """A digest of the cells of each band; of a palette, of its colours."""
    dataset = gdal.Open(path)
    if dataset.GetRasterBand(1).GetColorTable():
        dataset = gdal.Translate("", dataset, format="MEM", rgbExpand="rgb")
    window = window or (0, 0, dataset.RasterXSize, dataset.RasterYSize)
    return [hashlib.sha1(dataset.GetRasterBand(b + 1).ReadRaster(*window)).hexdigest()
            for b in range(dataset.RasterCount)]


def nearly(word, name):
    """Whether one letter, or a swap of two, makes a name of a word."""
    begin = len(os.path.commonprefix([word, name]))
    end = len(os.path.commonprefix([word[begin:][::-1], name[begin:][::-1]]))
    a, b = word[begin:len(word) - end], name[begin:len(name) - end]
    return max(len(a), len(b)) <= 1 or (len(a) == 2 and a == b[::-1])


class RasterTest(HostTest):
    def cut(self, *arguments, **options):
        return super().cut("raster", "-q", *arguments, **options)

    def check(self, summary):
        """The numbers add up, and the index names exactly the tiles on the disk."""
        tiles = summary["tiles"]
        self.assertEqual(tiles["expected"],
                         sum(tiles[k] for k in ("written", "failed", "blank", "outside", "not_reached")))
        self.assertEqual(tiles["failed"], len(summary["failures"]))
        features = self.index_of(summary) if summary["index"] else {}
        self.assertEqual(len(features), tiles["written"])
        for name in features:
            gdal.Open(os.path.join(summary["outdir"], name))  # fails for half a tile
        self.assertFalse([name for name in self.names(summary["outdir"]) if name.startswith(".")])

    def index_of(self, summary):
        """location → (column, row, envelope) as GDAL reads it."""
        index = ogr.Open(summary["index"])
        return {f["location"]: (f["column"], f["row"], f.GetGeometryRef().GetEnvelope()) for f in index.GetLayer()}

    def system_of(self, summary):
        """The coordinate system of the index as GDAL reads it."""
        index = ogr.Open(summary["index"])
        return index.GetLayer().GetSpatialRef().Clone()

    def write_model(self, name, columns, rows, kind=gdal.GDT_Float32):
        """Heights in degrees with all that a band can say of itself, and without data in the first 30 x 30 cells."""
        system = osr.SpatialReference()
        system.ImportFromEPSG(4326)
        made = gdal.GetDriverByName("GTiff").Create(self.path(name), columns, rows, 1, kind)
        made.SetGeoTransform([7, 1 / 3600, 0, 47, 0, -1 / 3600])
        made.SetSpatialRef(system)
        band = made.GetRasterBand(1)
        for setting, value in (("NoDataValue", -9999), ("Scale", 0.1), ("Offset", 3.5), ("Description", "height")):
            getattr(band, "Set" + setting)(value)
        for y in range(rows):
            values = [-9999 if x < 30 and y < 30 else x / 3 + y * 17.3 for x in range(columns)]
            band.WriteRaster(0, y, columns, 1, struct.pack(f"{columns}d", *values), buf_type=gdal.GDT_Float64)
        return self.path(name)

    def script(self, name, text):
        path = self.write(name, "#!/bin/sh\n" + text)
        os.chmod(path, 0o755)
        return path


class TilesTest(RasterTest):
    def test_grid_index_mosaic_and_world_files(self):
        system = osr.SpatialReference()
        system.ImportFromEPSG(25832)
        source = write_raster(self.path("map.tif"), 105, 70, 3, 0.1, 500000.3, 5600000.7, system)
        summary = self.cut(source, "out", "--tile-size", 4, "--vrt", "--world-files")
        self.assertEqual(summary["stderr"], "")
        self.assertEqual((summary["input"], summary["index"]), (source, self.path("out", "tiles.geojson")))
        # 40 pixels a tile: two whole ones and a rest in each direction.
        features = self.index_of(summary)
        self.assertEqual(sorted((c, r) for c, r, _ in features.values()),
                         [(c, r) for c in (1, 2, 3) for r in (1, 2)])
        rings = {f["properties"]["location"]: f["geometry"]["coordinates"]
                 for f in json.loads(self.read(summary["index"]))["features"]}
        for name, (column, row, (west, east, south, north)) in features.items():
            # Against the clock from the south-west.
            self.assertEqual(rings[name], [[[west, south], [east, south], [east, north], [west, north], [west, south]]])
            self.assertEqual(name, f"r{row}_c{column}.png")
            x, y = 40 * (column - 1), 40 * (row - 1)
            width, height = min(40, 105 - x), min(40, 70 - y)
            tile = self.path("out", name)
            self.assertEqual(pixels(tile), pixels(source, x, y, width, height))
            left, top = 500000.3 + x / 10, 5600000.7 - y / 10
            numbers = list(map(float, self.read(tile[:-3] + "pgw").split()))
            with side_files():
                shown = gdal.Open(tile)
                self.assertEqual(shown.GetSpatialRef().GetAuthorityCode(None), "25832")
                self.assertAlmostEqual(shown.GetGeoTransform()[0], left, places=6)
            for number, expected in zip((west, east, north, south, *numbers),
                                        (left, left + width / 10, top, top - height / 10,
                                         0.1, 0, 0, -0.1, left + 0.05, top - 0.05)):
                self.assertAlmostEqual(number, expected, places=6)
        mosaic = gdal.Open(summary["vrt"])
        for found in (self.system_of(summary), mosaic.GetSpatialRef()):
            self.assertEqual(found.GetAuthorityCode(None), "25832")
        self.assertEqual(pixels(summary["vrt"]), pixels(source))
        # The mosaic goes with its folder.
        os.rename(self.path("out"), self.path("moved"))
        self.assertEqual(pixels(self.path("moved", "mosaic.vrt")), pixels(source))

    def test_coordinate_systems_without_code(self):
        system = osr.SpatialReference()
        system.ImportFromProj4("+proj=laea +lat_0=33 +lon_0=7 +ellps=bessel +units=m")
        write_raster(self.path("own.tif"), 10, 10, system=system)
        self.assertTrue(self.system_of(self.cut("own.tif", "own", "--tile-size", 10)).IsSame(system))
        write_raster(self.path("none.png"), 10, 10)
        summary = self.cut("none.png", "none", "--tile-size", 10)
        self.assertFalse(self.system_of(summary).IsGeographic())
        self.assertIn("coordinate system", summary["notices"][0])

    def test_clip(self):
        source = write_raster(self.path("map.tif"), 60, 40)
        for way in ([], CONVERT):
            out = f"out{len(way)}"
            summary = self.cut(source, out, "--tile-size", 20, "--clip", 25, -5, 33, 15, "--world-files", *way)
            self.assertEqual(summary["tiles"],
                             {"expected": 1, "written": 1, "failed": 0, "blank": 0, "outside": 0, "not_reached": 0})
            (name, (column, row, envelope)), = self.index_of(summary).items()
            self.assertEqual((column, row, envelope), (2, 2, (25, 33, 0, 15)))
        # The converter's window begins at pixel 5 and row 5 of the tile, both odd: R gives 6; 8 wide, 15 high gives
        # 16, which the raster's edge cuts back to 14.
        self.assertIn("clipped tiles", summary["notices"][0])
        self.assertEqual(pixels(self.path(out, name)), pixels(source, 26, 26, 8, 14))
        self.assertEqual(self.read(self.path(out, name[:-3] + "pgw")).split(), "1 0 0 -1 26.5 13.5".split())

    def test_mosaic_of_unlike_tiles(self):
        # One tile opaque, one half transparent in few colours, one in many: the converter writes them in three ways.
        source = write_raster(self.path("map.tif"), 60, 20, bands=4)
        dataset = gdal.Open(source, gdal.GA_Update)
        for band in range(4):
            dataset.GetRasterBand(band + 1).SetColorInterpretation(gdal.GCI_RedBand + band)
            dataset.GetRasterBand(band + 1).WriteRaster(20, 0, 20, 20, bytes([50 * band]) * 400)
        alpha = bytes([255] * 20 + [128] * 20 + [200] * 10 + [77] * 10) * 20
        dataset.GetRasterBand(4).WriteRaster(0, 0, 60, 20, alpha)
        dataset = None
        summary = self.cut(source, "out", "--tile-size", 20, "--vrt", *CONVERT)
        self.assertGreater(len({gdal.Open(self.path("out", n)).RasterCount for n in self.index_of(summary)}), 1)
        self.assertEqual(pixels(summary["vrt"]), pixels(source))

    def test_tile_formats(self):
        cases = [  # source, bands, arguments, extension of the tiles, word of a notice
            ("map.png", 3, ["--format", ".JPEG"], "jpg", None),
            ("map.png", 3, ["--format", "jpg", *CONVERT], "jpg", None),
            ("map.tif", 3, ["--format", "tif", "--preview", *CONVERT], "tif", None),
            ("map.jpg", 3, [], "png", None),
            ("five.tif", 5, [], "png", "5 bands"),
            ("five.tif", 5, ["--format", "webp", "--co", "LOSSLESS=YES", "--bands", "5,3,1"], "webp", None),
            ("map.tif", 3, ["--name", "map.png", "--format", "gif", *CONVERT], "gif", None),
        ]
        for number, (source, bands, arguments, extension, word) in enumerate(cases):
            write_raster(self.path(source), 20, 10, bands)
            summary = self.cut(source, f"out{number}", "--tile-size", 10, *arguments)
            self.assertEqual({name.rsplit(".")[-1] for name in self.index_of(summary)}, {extension})
            notices = " ".join(n for n in summary["notices"] if "coordinate" not in n)
            self.assertTrue(word in notices if word else not notices, notices)
            if "--bands" in arguments:
                tile, five = gdal.Open(self.path(f"out{number}", "r1_c2.webp")), gdal.Open(self.path(source))
                for band, chosen in ((1, 5), (2, 3), (3, 1)):
                    self.assertEqual(tile.GetRasterBand(band).ReadRaster(),
                                     five.GetRasterBand(chosen).ReadRaster(10, 0, 10, 10))

    def test_values_are_kept_or_the_change_is_told(self):
        model = self.write_model("model.tif", 75, 61)
        source = gdal.Open(model)
        for arguments, exact in ((["tif"], True), (["COG"], True), (["GTiff", "--co", "COMPRESS=LZW"], True),
                                 (["img"], True), (["tif", "--converter", "gdal_translate"], True),
                                 (["png"], False), (["webp"], False),
                                 (["png", "--converter", "gdal_translate"], False)):
            with self.subTest(arguments=arguments), side_files():
                out = "-".join(arguments).replace("/", "")
                summary = self.cut(model, out, "--tile-pixels", "31x30", "--skip-blank", "--format", *arguments)
                self.assertEqual((summary["tiles"]["written"], summary["tiles"]["blank"]), (9, 0))
                told = [n for n in summary["notices"] if "8 bits" in n]
                self.assertEqual(len(told), not exact)
                for name, (column, row, _) in self.index_of(summary).items() if exact else ():
                    tile, x, y = gdal.Open(self.path(out, name)), 31 * (column - 1), 30 * (row - 1)
                    window = (x, y, min(31, 75 - x), min(30, 61 - y))
                    self.assertEqual(tile.GetRasterBand(1).ReadRaster(), source.GetRasterBand(1).ReadRaster(*window))
                    self.assertEqual(tile.GetSpatialRef().IsSame(source.GetSpatialRef()), 1)
                    for number, expected in zip(tile.GetGeoTransform(), (7 + x / 3600, 1 / 3600, 0, 47 - y / 3600, 0, -1 / 3600)):
                        self.assertAlmostEqual(number, expected, places=11)
                    for said in ("NoDataValue", "Scale", "Offset", "Description"):
                        self.assertEqual(*(getattr(d.GetRasterBand(1), "Get" + said)() for d in (tile, source)))
                if not exact:
                    self.assertIn(f"{source.GetRasterBand(1).ComputeRasterMinMax()[1]:.9g}"[:6], told[0])
        summary = self.cut(model, "blank", "--tile-pixels", 30, "--skip-blank", "--format", "tif")
        self.assertEqual((summary["tiles"]["written"], summary["tiles"]["blank"]), (8, 1))
        self.refuse("raster", model, "no", ["--tile-pixels", "30", "--values", "refuse"], 2, ["Float32", "tif"])
        self.refuse("raster", model, "no", ["--tile-pixels", "30", *CONVERT], 2, ["Float32", "gdal_translate"])
        ranged = self.cut(model, "ranged", "--tile-pixels", 75, "--values", "stretch", 0, 1000)
        shown = gdal.Open(self.path("ranged", "r1_c1.png"))
        self.assertEqual(shown.GetRasterBand(1).ReadRaster(50, 40, 1, 1)[0], int((50 / 3 + 40 * 17.3) * 255 / 1000 + 0.5))
        self.assertIn("0 becomes 0 and 1000 255", ranged["notices"][0])

    def test_sizes_and_one_grid_for_several_layers(self):
        model = self.write_model("model.tif", 500, 300)
        sizes = [  # arguments, pixels of a tile, columns and rows, word of a notice
            (["--tile-pixels", 257], (257, 257), (2, 2), None), (["--tile-pixels", "31x256"], (31, 256), (17, 2), None),
            (["--tile-size", 0.025], (90, 90), (6, 4), None),
            (["--tile-size", 0.01251], (46, 46), (11, 7), "0.0127778 degrees a tile, 46 pixels"),
            (["--tile-width", 0.05, "--tile-height", -1], (180, 300), (3, 1), None)]
        for arguments, pixel, counts, word in sizes:
            plan = self.run_tile("raster", model, "plan", "--format", "tif", "--dry-run", *arguments)
            grid, notices = (json.loads(plan.stdout)[k] for k in ("grid", "notices"))
            self.assertEqual((grid["tile_pixels"], (grid["columns"], grid["rows"])), (list(pixel), counts))
            self.assertEqual([word in n for n in notices], [True] if word else [])
            self.assertEqual(self.names("plan"), set())
        # A second layer begins 100 cells to the right and 70 below; both know a tile by the same name and place.
        shifted = gdal.Translate(self.path("part.tif"), model, srcWin=[100, 70, 200, 150])
        shifted = None
        origin = ["--origin", 6.99, 47.01, "--tile-pixels", 64, "--format", "tif"]
        whole = self.index_of(self.cut(model, "whole", *origin))
        part = self.index_of(self.cut("part.tif", "part", *origin))
        self.assertTrue(set(part) < set(whole))
        for name in part:
            a, b = gdal.Open(self.path("whole", name)), gdal.Open(self.path("part", name))
            inner = [round((b.GetGeoTransform()[k] - a.GetGeoTransform()[k]) / a.GetGeoTransform()[d])
                     for k, d in ((0, 1), (3, 5))]
            self.assertEqual(b.ReadRaster(), a.ReadRaster(*inner, b.RasterXSize, b.RasterYSize))
        self.assertGreater(min(c for c, _, _ in part.values()), 1)
        self.refuse("raster", model, "no", ["--origin", "7.1", "48", "--tile-pixels", "64"], 2, ["--origin", "inside"])

    def test_any_number_of_tiles(self):
        source = write_raster(self.path("many.tif"), 1050, 4, bands=1)
        summary = self.cut(source, "out", "--tile-pixels", 1, "--vrt", "--progress", "json")
        self.assertEqual(summary["tiles"]["written"], 4200)
        self.assertEqual(pixels(summary["vrt"]), pixels(source))
        events = [json.loads(line) for line in summary["stderr"].splitlines()]
        self.assertEqual([e["cell"] for e in events if e["event"] == "cell"], list(range(1, 4201)))
        self.assertEqual([e["event"] for e in events if e["event"] in ("start", "end")], ["start", "end"])
        # Several sources are one mosaic, whose later ones lie above.
        for number in range(2):
            write_raster(self.path(f"{number}.tif"), 30, 20, left=25.0 * number)
        halves = self.cut("0.tif", "1.tif", "two", "--tile-pixels", 55)
        self.assertEqual(pixels(self.path("two", "r1_c1.png"), 25, 0, 30, 20), pixels(self.path("1.tif")))
        self.assertEqual(halves["inputs"], ["0.tif", "1.tif"])
        write_raster(self.path("1.tif"), 30, 20, bands=1)
        self.assertEqual(self.run_tile("raster", "0.tif", "1.tif", "no", "--tile-pixels", 9).returncode, 1)

    def test_files_are_the_same_for_every_number_of_jobs(self):
        write_raster(self.path("map.tif"), 110, 80)
        self.write_model("model.tif", 110, 80)
        copy = self.script("copy", 'exec cp "$1" "$2"')
        fail = self.script("fail", 'case $(cksum < "$1") in *[02468]" "*) exit 3;; esac; exec cp "$1" "$2"')
        cases = [["map.tif", "--format", name, "--world-files", "--tile-names", "{column}/{row}"]
                 for name in ("png", "jpg", "gif", "webp", "COG", "tif")]
        cases += [["model.tif", "--skip-blank", "--format", name] for name in ("png", "tif", "AAIGrid")]
        cases += [["map.tif", "--effort", effort] for effort in ("fast", "small")]
        cases += [["map.tif", "--clip", 20, 5, 99.5, 120], ["map.tif", "--format", "tif", "--converter", copy],
                  ["model.tif", "--format", "tif", "--converter", fail]]
        for number, (source, *options) in enumerate(cases):
            found = []
            for jobs in (1, 2, 3, 8):
                out = f"out{number}-{jobs}"
                done = self.run_tile("raster", source, out, "--tile-pixels", 13, "--jobs", jobs, *options, "-q")
                summary = json.loads(done.stdout.replace(out, "out"))
                self.check({**summary, **{k: json.loads(done.stdout)[k] for k in ("outdir", "index")}})
                found.append((summary, self.contents(self.path(out))))
            for one in found[1:]:
                self.assertEqual(one, found[0], options)

    def test_tile_names(self):
        source = write_raster(self.path("map.tif"), 20, 110, 1, 0.5)
        cases = [("{source}_{row}_{column}", "map_03_1.png"), ("{column}/{row}", "1/03.png"),
                 ("t{x}_{y}.png", "t0_45.png"), ("z/{row}/{source}{column}", "z/03/map1.png")]
        for number, (pattern, third) in enumerate(cases):
            summary = self.cut(source, f"out{number}", "--tile-pixels", 10, "--tile-names", pattern, "--preview")
            self.assertEqual(summary["tiles"]["written"], 22)
            self.assertIn(third, self.index_of(summary))
            self.assertIn(third, [tile["name"] for tile in self.data_of(summary)[2:]])
            self.cut(source, f"out{number}", "--tile-pixels", 200, "--overwrite")
            self.assertEqual(self.names(f"out{number}"), {"r1_c1.png", "tiles.geojson", "job.json"})
        for pattern, word in (("{row}", "two tiles"), ("{x}", "two tiles"), ("{row}_{colum}", "{colum}"),
                              ("../{row}_{column}", "dot"), ("/{row}_{column}", "slashes"), ("{row}_{column", "brace")):
            self.refuse("raster", source, "no", ["--tile-pixels", "1", "--tile-names", pattern], 2, [word])

    def test_odd_names(self):
        # The last is also the text of a stage, which must not hide the steps of the grid.
        for name in ("with blank.png", "quo'te\"s.png", "umläute ß.png", "-dash.png", "per%20cent.png",
                     "semi;colon&amp.png", "a <b> & c.png", "extern"):
            shutil.copy(write_raster(self.path("map.png"), 20, 10), self.path(name))
            summary = self.cut("--tile-size", 10, "--vrt", "--preview", *CONVERT, "--", name, name + " out/deep/")
            self.assertEqual(sorted((c, r) for c, r, _ in self.index_of(summary).values()), [(1, 1), (2, 1)])
            self.assertEqual(pixels(summary["vrt"]), pixels(self.path("map.png")))
            title, _, *tiles = self.data_of(summary)
            self.assertEqual(title, name)
            self.assertEqual({t["name"]: t["envelope"] for t in tiles},
                             {n: [w, s, e, n_] for n, (_, _, (w, e, s, n_)) in self.index_of(summary).items()})

    def test_progress_and_narration(self):
        write_raster(self.path("map.png"), 20, 20)
        summary = self.cut("map.png", "json", "--tile-size", 10, "--progress", "json")
        events = [json.loads(line) for line in summary["stderr"].splitlines()]
        self.assertEqual([e["cell"] for e in events if e["event"] == "cell"], [1, 2, 3, 4])
        self.assertEqual([events[0]["event"], events[-1]["event"], events[0]["of"]], ["start", "end", 4])
        for mode, drawn in (("auto", False), ("bar", True)):
            done = self.run_tile("raster", "map.png", mode, "--tile-size", 10, "--progress", mode)
            self.assertEqual("[...." in done.stderr, drawn)


class UsageTest(RasterTest):
    def test_options(self):
        write_raster(self.path("map.png"), 20, 10)
        self.write("file", "x")
        cases = [  # words of the message, and arguments that lead to it each
            (["--tile-size"], "", "10 --tile-width 5", "10 --tile-pixels 5"),
            (["--tile-height"], None),
            (["above 0", "-1"], "0", "-2", "-0.5"),
            (["32 bits", "-1"], "2147483648", "99999999999999999999", "2147483647"),  # the last: odd, rounded up
            (["no size", "256x512"], "10 --tile-pixels 0", "10 --tile-pixels 5x", "10 --tile-pixels 1.5"),
            (["commas"], "10 --bands 1,,2", "10 --bands x"),
            (["refuse", "MIN MAX"], "10 --values clip"),
            (["MIN below MAX"], "10 --values stretch 5 5"),
            (["--co", "SPEED"], "10 --format tif --co SPEED=9"),
            (["--resume"], "10 --overwrite --resume"),
            (["1 to 100"], "10 --quality 0", "10 --quality 101"),
            (["es", "de, en or fr"], "10 --language es"),
            (["--clip", "XMIN", "YMIN"], "10 --clip 5 0 5 9", "10 --clip 0 9 5 1"),
            (["decimal point"], "10 --clip 0 0 east 9", "10 --clip 0 0 1e999 9"),
            (["does not meet", "0 0 20 10"], "10 --clip 20 0 30 10"),
            (["--clip"], "10 --clip 1 2 3"),
            (["--format"], "10 --format ../x"),
            (["VRT", "GTiff"], "10 --format VRT"),
            (["no-such-program", "PATH"], "10 --converter no-such-program"),
            (["./file"], "10 --converter ./file"),
            (["backslash"], "10 --name a\\b"),
            (["missing.png"], "10 --name missing.png"),
        ]
        for words, *runs in cases:
            for run in runs:
                arguments = ["--tile-width", "10"] if run is None else ["--tile-size", *run.split()] if run else []
                self.refuse("raster", "map.png", "out", arguments, 2, words)
        for option in ("--format", "--converter", "--tile-size"):
            self.refuse("raster", "map.png", "out", ["--tile-size", "10", option, ""], 2, [option])

    def test_slips_are_named_with_what_was_meant(self):
        def said(*arguments):
            done = self.run_tile(*arguments)
            self.assertEqual((done.returncode, done.stdout, done.stderr.count("\n")), (2, "", 1), done.stderr)
            return done.stderr

        random.seed(5)
        slips = (lambda t, i: t[:i] + t[i + 1:], lambda t, i: t[:i] + "z" + t[i:], lambda t, i: t[:i] + "z" + t[i + 1:],
                 lambda t, i: t[:i] + t[i + 1] + t[i] + t[i + 2:])
        commands = re.findall(r"^  ([a-z-]+) ", self.run_tile("--help").stdout.split("Subcommands:")[1], re.M)
        self.assertLessEqual({"raster", "vector", "locate"}, set(commands))
        for command in commands:
            options = re.findall(r"--([a-z-]+)", self.run_tile(command, "--help").stdout.split("Exit codes")[0])
            for name in {command, *options}:
                word = random.choice(slips)(name, random.randrange(len(name) - 1))
                if word in {*commands, *options} or sum(nearly(word, other) for other in options) > 1:
                    continue  # two equal letters swapped, or another name is as near
                with self.subTest(command=command, word=word):
                    if name == command:
                        self.assertEqual(said(word, "a", "--vtr"), f'orvo-tile: "{word}" is no command; did you mean '
                                         f"{name}? (orvo-tile --help lists them)\n")
                    else:
                        self.assertEqual(said(command, "a", f"--{word}=5"),
                                         f'orvo-tile: "--{word}" is no option of {command}; did you mean --{name}? '
                                         f"(orvo-tile {command} --help lists them)\n")
        for arguments, name in (("tiles", "tiles"), ("raster a b -x", "-x"), ("raster --colour red", "--colour"),
                                ("--tile-size 5 raster a b", "--tile-size"), ("x" * 99999, "x" * 99999)):
            self.assertRegex(said(*arguments.split()), f'^orvo-tile: "{name}" is no (command|option of [a-z-]+) .orvo')

    def test_help_names_values_that_serve(self):
        for command in ("raster", "vector", "locate", "error-demo"):
            text = self.run_tile(command, "--help").stdout.split("Exit codes")[0]
            groups = re.findall(r"^(\w.*):$", text, re.M)
            self.assertEqual(groups[-2:], ["Messages and failures", "Help"])
            if command != "error-demo":
                self.assertEqual((groups[:2], groups[-3]), (["Arguments", "Tiles"], "Run"))
            self.assertLessEqual(max(map(len, text.splitlines())), 80)
            self.assertNotIn("\n\n\n", text)
            found = re.findall(r"^  (--\S+) (\S+)(?: \[(.+)\])?$", text.replace("  ", "\n  "), re.M)
            self.assertIn(("--on-error", "ask|next|leave", "ask"), found)
            for option, values, usual in found:
                words = values.split("|") if "|" in values else ["1", "100"] if values == "1-100" else []
                for word in {*words, usual} - {""}:
                    with self.subTest(command=command, option=option, word=word):
                        self.assertNotIn(option + ' "', self.run_tile(command, "-", "-", "1", option, word).stderr)

    def test_paths_and_sources(self):
        write_raster(self.path("map.png"), 20, 10)
        write_raster(self.path("ten.tif"), 10, 10)
        self.write("empty.png", "")
        self.write("text.png", "not a picture")
        shutil.copy(self.path("map.png"), self.path("back\\slash.png"))
        rotated = gdal.Open(self.path("ten.tif"), gdal.GA_Update)
        rotated.SetGeoTransform([0, 1, 0.5, 10, 0.5, -1])
        rotated = None
        for source in ("missing.png", "empty.png", "text.png", "."):
            self.refuse("raster", source, "out", ["--tile-size", "5"], 1, [source])
        self.refuse("raster", "ten.tif", "out", ["--tile-size", "5"], 1, ["ten.tif", "gdalwarp"])
        huge = gdal.GetDriverByName("GTiff").Create(self.path("huge.tif"), 5, 5)
        huge.SetGeoTransform((0, 2e16, 0, 1e17, 0, -2e16))
        huge = None
        self.refuse("raster", "huge.tif", "out", ["--tile-size", "1"], 2, ["no pixels", "2e+16"])
        self.refuse("raster", "back\\slash.png", "out", ["--tile-size", "5"], 2, ["backslash"])
        for folder, *words in (("o\\ut", "backslash"), ("text.png", "text.png", "folder"),
                               ("text.png/deep", "text.png"), ("", "OUTDIR"), ("/proc", "/proc", "written"), ("/proc/deep/er", "/proc")):
            self.refuse("raster", "map.png", folder, ["--tile-size", "5"], 2, words)


class FolderTest(RasterTest):
    def setUp(self):
        super().setUp()
        write_raster(self.path("map.png"), 20, 20)

    def again(self, *arguments, source="map.png"):
        return self.run_tile("raster", source, "out", "--tile-size", 10, *arguments)

    def test_overwrite_takes_exactly_the_earlier_run(self):
        self.cut("map.png", "out", "--tile-size", 10, "--vrt", "--preview", "--world-files")
        earlier = self.names()
        refused = self.again()
        self.assertEqual(refused.returncode, 2)
        self.assertIn("--overwrite", refused.stderr)
        mine = {"mine.txt", "i123456_1.png"}  # the second looks like a tile, but no index names it
        for name in mine:
            self.write("out/" + name, "mine")
        # A refused run takes nothing away.
        self.assertEqual(self.again("--overwrite", "--clip", "90", "90", "99", "99").returncode, 2)
        self.assertEqual(self.names(), earlier | mine)
        summary = self.cut("map.png", "out", "--tile-size", 20, "--overwrite")
        self.assertEqual(self.names(), set(self.index_of(summary)) | {"tiles.geojson", "job.json"} | mine)

    def test_forged_indexes_are_refused(self):
        self.write("victim.png", "mine")
        self.cut("map.png", "out", "--tile-size", 20)
        genuine = json.loads(self.read("out/tiles.geojson"))
        before = self.names()
        for place, value in (("location", "../victim.png"), ("location", self.path("victim.png")),
                             ("location", "holiday.png"), ("companions", ["../victim.png"]), ("companions", None),
                             ("location", "r1_c1/../../victim.png"), ("companions", ["r1_c1.png/../../victim.png"]),
                             ("generator", "other")):
            with self.subTest(place=place, value=value):
                forged = copy.deepcopy(genuine)
                (forged["features"][0]["properties"] if place == "location" else forged)[place] = value
                self.write("out/tiles.geojson", json.dumps(forged))
                done = self.again("--overwrite")
                self.assertEqual(done.returncode, 2, done.stderr)
                self.assertIn("tiles.geojson", done.stderr)
                self.assertEqual((self.names(), self.read("victim.png")), (before, "mine"))

    def test_links_are_not_followed(self):
        tile, = self.index_of(self.cut("map.png", "out", "--tile-size", 20, "--tile-names", "whole{row}{column}"))
        self.write("victim.png", "mine")
        os.remove(self.path("out", tile))
        os.symlink(self.path("victim.png"), self.path("out", tile))
        self.assertEqual(self.again("--overwrite").returncode, 0)  # its tiles have other names
        self.assertTrue(os.path.islink(self.path("out", tile)) and os.path.exists(self.path("victim.png")))
        os.rename(self.path("out", "tiles.geojson"), self.path("index"))
        os.symlink(self.path("index"), self.path("out", "tiles.geojson"))
        self.assertEqual(self.again("--overwrite").returncode, 2)

    def test_the_source_is_never_removed(self):
        tile, = self.index_of(self.cut("map.png", "out", "--tile-size", 20, "--world-files"))
        gdal.BuildVRT(self.path("view.vrt"), [self.path("out", tile)]).FlushCache()
        for source in (self.path("out", tile), "view.vrt"):  # nor through a virtual raster that shows it
            self.assertEqual(self.again("--overwrite", source=source).returncode, 2)
        self.assertIn(tile, self.names())

    def test_foreign_files_keep_their_names(self):
        os.mkdir(self.path("out"))
        self.write("out/index.html", "mine")
        summary = self.cut("map.png", "out", "--tile-size", 10, "--preview", "--vrt")
        self.assertEqual(self.read("out/index.html"), "mine")
        self.assertEqual([os.path.basename(summary[k]) for k in ("index", "vrt", "preview")],
                         ["tiles_2.geojson", "mosaic_2.vrt", "index_2.html"])

    def test_one_run_at_a_time(self):
        slow = self.script("slow", 'sleep 0.02; exec cp "$1" "$2"')
        running = [self.start("raster", "map.png", "out", "--tile-size", "4", "-q", "--converter", slow, "--format",
                              "tif") for _ in range(3)]
        done = sorted((process.wait(60), *process.communicate()) for process in running)
        self.assertEqual([code for code, _, _ in done], [0, 2, 2])
        self.check(json.loads(done[0][1]))
        for _, out, error in done[1:]:
            self.assertRegex(error, "another run is writing|holds tiles already")

    def test_a_run_that_was_killed_is_resumed_or_removed(self):
        options = ["--tile-pixels", "6", "--world-files", "--vrt", "--preview", "--tile-names", "{row}/{column}",
                   "--skip-blank", "--format", "tif"]
        whole = self.contents(self.cut("map.png", "whole", *options)["outdir"])
        # The converter kills its parent at the n-th tile; the resumed run has another converter of that name.
        for number in (1, 2, 7, 16):
            for way in ("--resume", "--overwrite"):
                self.write("calls", "")
                killer = self.script("killer", f'echo >> "{self.folder}/calls"\ncp "$1" "$2"\n'
                                     f'[ $(wc -l < "{self.folder}/calls") -lt {number} ] || '
                                     f'{{ mkdir "{self.folder}/killed" 2>/dev/null && kill -9 $PPID; }}; true\n')
                shutil.rmtree(self.path("killed"), ignore_errors=True)
                shutil.rmtree(self.path("out"), ignore_errors=True)
                command = ["map.png", "out", *options, "--converter", killer]
                self.assertEqual(self.run_tile("raster", *command).returncode, -9)
                self.write("out/mine.txt", "mine")
                if way == "--resume":
                    refused = self.run_tile("raster", *command, "--resume", "--tile-pixels", "7")
                    self.assertEqual(refused.returncode, 2)
                    refused = self.run_tile("raster", *command[:-1], "/bin/cp", "--resume")
                    self.assertIn("converter was", refused.stderr)
                self.assertEqual(self.again().returncode, 2)
                summary = self.cut(*command, way) if way == "--resume" else self.cut("map.png", "out", *options, way)
                self.assertEqual(summary["tiles"]["written"], 16)
                if way == "--overwrite":
                    os.remove(self.path("out", "mine.txt"))
                    found = self.contents(self.path("out"))
                    self.assertEqual(found, whole)

    def test_parts_are_merged_into_what_one_run_makes(self):
        write_raster(self.path("map.tif"), 110, 80)
        self.write_model("model.tif", 110, 80)
        cases = [["map.tif", "--format", "jpg", "--tile-names", "{row}/{column}", "--preview", "--vrt"],
                 ["model.tif", "--skip-blank", "--clip", 7.002, 46.98, 7.025, 46.9977, "--world-files"],
                 ["model.tif", "--skip-blank", "--format", "tif", "--vrt", "--preview"]]
        for number, (source, *options) in enumerate(cases):
            whole, out = f"whole{number}", f"parts{number}"
            job = ["raster", source, out, "--tile-pixels", 10, "-q", *options]
            one = self.cut(source, whole, "--tile-pixels", 10, *options)
            self.assertEqual(self.run_tile("merge", out).returncode, 2)
            running = [self.start(*map(str, job), "--part", f"{part}/4") for part in (4, 2)]
            self.assertEqual([process.wait(60) for process in running], [0, 0])
            for process in running:
                process.communicate()
            self.assertEqual(self.run_tile(*job, "--part", "2/4").returncode, 0)  # once more
            other = self.run_tile(*job, "--part", "1/4", "--quality", 7)
            self.assertEqual((other.returncode, "quality was 75 and is 7" in other.stderr), (2, True), other.stderr)
            # The message names what is missing; a shell makes it.
            for commands, found in ((2, "parts are missing"), (1, "tiles are missing")):
                merge = self.run_tile("merge", out)
                self.assertEqual((merge.returncode, found in merge.stderr), (1, True), merge.stderr)
                named = re.findall(r" by (.+?)(?=; part|; \d+ tile|$)", merge.stderr.strip())
                self.assertEqual(len(named), commands, merge.stderr)
                for command in named:
                    subprocess.run(command, shell=True, check=True, cwd=self.folder, stdout=subprocess.DEVNULL)
                if commands == 2:
                    tile = next(iter(json.loads(self.read(f"{out}/part-3-of-4.json"))["tiles"]))[0]
                    os.remove(self.path(out, tile))
            merged = json.loads(self.run_tile("merge", out).stdout)
            self.check(merged)
            self.assertEqual(merged["tiles"], one["tiles"])
            self.assertEqual(self.contents(self.path(out)), self.contents(self.path(whole)))
            self.assertEqual(self.run_tile("merge", out).returncode, 1)
        # What is left of parts goes with --overwrite; a part does not touch a run that is finished.
        self.assertEqual(self.run_tile(*job, "--part", "1/4").returncode, 2)
        shutil.rmtree(self.path(out))
        self.run_tile(*job, "--part", "3/4")
        os.mkdir(self.path(out, ".orvo-tile-run-1-of-4"))
        summary = self.cut("map.png", out, "--tile-size", 20, "--overwrite")
        self.assertEqual(self.names(out), set(self.index_of(summary)) | {"tiles.geojson", "job.json"})

    def test_two_runs_four_parts_and_a_merge_at_once(self):
        write_raster(self.path("crowd.tif"), 300, 200)
        self.write("crowd.geojson", json.dumps({"type": "FeatureCollection", "features": [
            {"type": "Feature", "properties": {}, "geometry": {"type": "Point", "coordinates": [n % 97, n % 89]}}
            for n in range(3000)]}))
        for command, source, size in (("raster", "crowd.tif", "--tile-pixels"), ("vector", "crowd.geojson", "--tile-width")):
            job = [command, source, "crowd", "-q", size, "10", *(["--tile-height", "10"] if command == "vector" else [])]
            self.assertEqual(self.run_tile(*job[:2], "alone", *job[3:]).returncode, 0)
            for _ in range(4):
                parts = [["--part", f"{part}/4"] for part in range(1, 5)]
                runs = [self.start(*job, *more) for more in ([], *parts, [])] + [self.start("merge", "crowd")]
                ends = [run.communicate(timeout=60) and run.returncode for run in runs]
                self.assertLessEqual(set(ends), {0, 1, 2})
                if not os.path.exists(self.path("crowd", "tiles.geojson")):
                    self.assertEqual([self.run_tile(*job, *part).returncode for part in parts], [0] * 4)
                    self.assertEqual(self.run_tile("merge", "crowd").returncode, 0)
                self.assertEqual(self.contents(self.path("crowd")), self.contents(self.path("alone")))
                shutil.rmtree(self.path("crowd"))
            shutil.rmtree(self.path("alone"))

    def test_failures_are_made_up_for_by_resume(self):
        slow = self.script("cut", 'cp "$1" "$2"')
        command = ["map.png", "out", "--tile-pixels", 5, "--format", "heic", "--world-files", "--converter", slow]
        whole = self.contents(self.cut("map.png", "whole", *command[2:])["outdir"])
        self.write("calls", "")
        self.script("cut", f'echo >> "{self.folder}/calls"; [ $(wc -l < "{self.folder}/calls") -gt 8 ] && cp "$1" "$2"')
        failed = self.cut(*command, exit_code=1)
        self.assertGreaterEqual(failed["tiles"]["failed"] + len(failed["leftovers"]), 1)
        self.assertEqual(self.cut(*command, "--resume")["tiles"]["written"], 16)
        now = self.contents(self.path("out"))
        self.assertEqual({k for k in now if now[k] != whole.get(k)} | set(whole) - set(now), set())


class FaultsTest(RasterTest):
    def setUp(self):
        super().setUp()
        self.source = write_raster(self.path("map.tif"), 40, 40)

    def test_interrupted(self):
        slow = self.script("slow", 'sleep 0.15; exec cp "$1" "$2"')
        for number in (signal.SIGINT, signal.SIGTERM):
            out = f"out{number}"
            process = self.start("raster", self.source, out, "--tile-size", "4", "--converter", slow, "--format", "tif")
            ready = lambda: sum(name.endswith("tif") and name[0] == "r" for name in self.names(out)) >= 3
            summary = self.interrupt(process, ready, number)
            self.assertGreaterEqual(summary["tiles"]["written"], 3)
            self.assertGreater(summary["tiles"]["not_reached"], 50)
            self.assertEqual(summary["tiles"]["failed"], 0)
            self.assertEqual(self.names(out), set(self.index_of(summary)) | {"tiles.geojson", "job.json"})
        # Converters that hang and do not listen are killed; all of them, soon.
        deaf = self.script("deaf", f'trap "" TERM; echo >> "{self.folder}/hung"; while :; do sleep 0.1; done')
        process = self.start("raster", self.source, "hung.out", "--tile-size", "4", "--converter", deaf, "--jobs", "4")
        since = []
        ready = lambda: os.path.exists(self.path("hung")) and len(self.read("hung")) >= 4 and (since.append(
            time.monotonic()) or True)
        summary = self.interrupt(process, ready)
        self.assertLess(time.monotonic() - since[0], 2.5)
        self.assertEqual((summary["tiles"]["written"], os.path.exists(self.path("hung.out"))), (0, False))
        self.assertEqual(subprocess.run(["pgrep", "-f", deaf], stdout=subprocess.DEVNULL).returncode, 1)

    def test_a_converter_that_fails(self):
        refuse = self.script("refuse", "echo no licence >&2; exit 3")
        # The layer's own export steps in, and the notice says why.
        summary = self.cut(self.source, "png", "--tile-size", 20, "--converter", refuse)
        self.assertEqual(summary["tiles"]["written"], 4)
        notice, = [n for n in summary["notices"] if n.startswith("4 tiles")]
        self.assertIn("no licence", notice)
        # It steps in vain for a format that nobody writes. Said once, not once a tile.
        summary = self.cut(self.source, "out", "--tile-size", 20, "--format", "heic", "--converter", refuse,
                           exit_code=1)
        self.assertEqual([(f["column"], f["row"]) for f in summary["failures"]], [(1, 1), (2, 1), (1, 2), (2, 2)])
        self.assertRegex(summary["stderr"], r"^.*4 tiles failed.*\n$")
        # What was exported on the way is kept, named, and cleared away by the next run.
        self.assertEqual(len(summary["leftovers"]), 4)
        self.assertEqual(self.names(), set(summary["leftovers"]) | {"tiles.geojson", "job.json"})
        self.cut(self.source, "out", "--tile-size", 40, "--overwrite")
        self.assertEqual(len(self.names()), 3)
        # One that changes values is not believed.
        ruin = self.script("ruin", 'exec gdal_translate -q -scale 0 255 0 100 "$1" "$2"')
        summary = self.cut(self.source, "ruined", "--tile-size", 20, "--vrt", "--converter", ruin)
        self.assertIn("values are not those of the source", " ".join(summary["notices"]))
        self.assertEqual(pixels(summary["vrt"]), pixels(self.source))

    def counting(self, number, act):
        """A converter that does something once, at its n-th call or soon after: calls may be side by side."""
        self.write("calls", "")
        return self.script("counting", f'echo x >> "{self.folder}/calls"\ncp "$1" "$2"\n'
                           f'[ $(wc -l < "{self.folder}/calls") -ge {number} ] && '
                           f'mkdir "{self.folder}/acted" 2>/dev/null && {act}\nexit 0\n')

    def test_source_cut_short_during_the_run(self):
        source = write_raster(self.path("long.tif"), 400, 800)
        cutter = self.counting(10, f'truncate -s 100000 "{source}"')
        summary = self.cut(source, "out", "--tile-size", 100, "--format", "tif", "--converter", cutter, exit_code=1)
        self.assertGreaterEqual(summary["tiles"]["written"], 5, summary)
        self.assertGreaterEqual(summary["tiles"]["failed"], 4)
        self.assertEqual(summary["leftovers"], [])

    def test_files_that_cannot_grow(self):
        # The left half is noise, which no format makes small; the right half is flat.
        noisy = gdal.GetDriverByName("GTiff").Create(self.path("half.tif"), 200, 100, 3)
        for band in (1, 2, 3):
            noisy.GetRasterBand(band).WriteRaster(0, 0, 100, 100, os.urandom(10000))
        noisy = None
        summary = self.cut("half.tif", "out", "--tile-size", 100, exit_code=1,
                           preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (12000, 12000)))
        self.assertEqual((summary["tiles"]["written"], summary["tiles"]["failed"]), (1, 1))
        self.assertIn("File too large", summary["failures"][0]["reason"])
        self.assertEqual(self.names(), set(self.index_of(summary)) | {"tiles.geojson", "job.json"})

    def test_a_folder_that_goes_away(self):
        converter = self.counting(2, f'mv "{self.folder}/out" "{self.folder}/gone"')
        summary = self.cut(self.source, "out", "--tile-size", 10, "--format", "tif", "--converter", converter,
                           exit_code=1)
        self.assertEqual((summary["tiles"]["written"], summary["index"]), (0, None))
        self.assertTrue(any("No such file" in f["reason"] for f in summary["failures"]), summary["failures"])


if __name__ == "__main__":
    unittest.main(verbosity=0, argv=[sys.argv[0], *sys.argv[1:]])
