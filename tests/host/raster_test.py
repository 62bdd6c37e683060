"""Runs of the real orvo-tile: exit code, standard output, standard error, and what stands on the disk."""

import copy
import glob
import hashlib
import json
import os
import resource
import shutil
import signal
import subprocess
import sys
import time
import unittest

from osgeo import gdal, ogr, osr

from host_run import ORVO_TILE, HostTest

gdal.UseExceptions()
ogr.UseExceptions()
gdal.PushErrorHandler("CPLQuietErrorHandler")
gdal.SetConfigOption("GDAL_PAM_ENABLED", "NO")
CONVERT = ["--converter", "/usr/bin/convert"]


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


class RasterTest(HostTest):
    def run_tile(self, *arguments, **options):
        return super().run_tile("raster", *arguments, **options)

    def check(self, summary):
        """The numbers add up, and the index names exactly the tiles on the disk."""
        tiles = summary["tiles"]
        self.assertEqual(tiles["expected"],
                         tiles["written"] + tiles["failed"] + tiles["outside"] + tiles["not_reached"])
        self.assertEqual(tiles["failed"], len(summary["failures"]))
        if summary["index"]:
            features = self.index_of(summary)
            self.assertEqual(len(features), tiles["written"])
            for name in features:
                gdal.Open(os.path.join(summary["outdir"], name))  # fails for half a tile
        if os.path.isdir(summary["outdir"]):
            hidden = [name for name in os.listdir(summary["outdir"]) if name.startswith(".")]
            self.assertEqual(hidden, [])

    def index_of(self, summary):
        """location → (column, row, envelope) as GDAL reads it."""
        index = ogr.Open(summary["index"])
        return {f["location"]: (f["column"], f["row"], f.GetGeometryRef().GetEnvelope()) for f in index.GetLayer()}

    def extensions(self, summary):
        return {name.rsplit(".")[-1] for name in self.index_of(summary)}

    def system_of(self, summary):
        """The coordinate system of the index as GDAL reads it."""
        index = ogr.Open(summary["index"])
        return index.GetLayer().GetSpatialRef().Clone()

    def names(self, folder="out"):
        return set(os.listdir(self.path(folder)))

    def write(self, name, text):
        with open(self.path(name), "w") as file:
            file.write(text)
        return self.path(name)

    def read(self, path):
        with open(self.path(path)) as file:
            return file.read()

    def script(self, name, text):
        path = self.write(name, "#!/bin/sh\n" + text)
        os.chmod(path, 0o755)
        return path


class TilesTest(RasterTest):
    def test_grid_index_mosaic_and_world_files(self):
        system = osr.SpatialReference()
        system.ImportFromEPSG(25832)
        source = write_raster(self.path("map.tif"), 105, 70, 3, 0.1, 500000.3, 5600000.7, system)
        summary = self.cut(source, "out", "--tile-size", 4, "--vrt", "--world-files", "-q")
        self.assertEqual(summary["stderr"], "")
        self.assertEqual(summary["input"], source)
        self.assertEqual(summary["index"], self.path("out", "tiles.geojson"))
        # 40 pixels a tile: two whole ones and a rest in each direction.
        features = self.index_of(summary)
        self.assertEqual(sorted((c, r) for c, r, _ in features.values()),
                         [(c, r) for c in range(3) for r in range(2)])
        rings = {f["properties"]["location"]: f["geometry"]["coordinates"]
                 for f in json.loads(self.read(summary["index"]))["features"]}
        for name, (column, row, (west, east, south, north)) in features.items():
            # Against the clock from the south-west.
            self.assertEqual(rings[name], [[[west, south], [east, south], [east, north], [west, north], [west, south]]])
            width, height = min(40, 105 - 40 * column), min(40, 70 - 40 * row)
            for edge, expected in ((west, 500000.3 + 4 * column), (east, 500000.3 + 4 * column + width / 10),
                                   (north, 5600000.7 - 4 * row), (south, 5600000.7 - 4 * row - height / 10)):
                self.assertAlmostEqual(edge, expected, places=6)
            tile = self.path("out", name)
            self.assertEqual(pixels(tile), pixels(source, 40 * column, 40 * row, width, height))
            numbers = map(float, self.read(tile[:-3] + "pgw").split())
            for number, expected in zip(numbers, (0.1, 0, 0, -0.1, west + 0.05, north - 0.05)):
                self.assertAlmostEqual(number, expected, places=6)
        self.assertEqual(self.system_of(summary).GetAuthorityCode(None), "25832")
        mosaic = gdal.Open(summary["vrt"])
        self.assertEqual(mosaic.GetSpatialRef().GetAuthorityCode(None), "25832")
        self.assertEqual(pixels(summary["vrt"]), pixels(source))
        # The mosaic goes with its folder.
        os.rename(self.path("out"), self.path("moved"))
        self.assertEqual(pixels(self.path("moved", "mosaic.vrt")), pixels(source))

    def test_coordinate_systems_without_code(self):
        system = osr.SpatialReference()
        system.ImportFromProj4("+proj=laea +lat_0=33 +lon_0=7 +ellps=bessel +units=m")
        write_raster(self.path("own.tif"), 10, 10, system=system)
        summary = self.cut("own.tif", "own", "--tile-size", 10, "-q")
        self.assertTrue(self.system_of(summary).IsSame(system))
        write_raster(self.path("none.png"), 10, 10)
        summary = self.cut("none.png", "none", "--tile-size", 10, "-q")
        self.assertFalse(self.system_of(summary).IsGeographic())
        self.assertIn("coordinate system", summary["notices"][0])

    def test_clip(self):
        source = write_raster(self.path("map.tif"), 60, 40)
        for way in ([], CONVERT):
            out = f"out{len(way)}"
            summary = self.cut(source, out, "--tile-size", 20, "--clip", 25, -5, 33, 15, "--preview", "--world-files",
                               "-q", *way)
            self.assertEqual(summary["tiles"],
                             {"expected": 6, "written": 1, "failed": 0, "outside": 5, "not_reached": 0})
            (name, (column, row, envelope)), = self.index_of(summary).items()
            self.assertEqual((column, row, envelope), (1, 1, (25, 33, 0, 15)))
            if way:
                # The window begins at pixel 5 and row 5 of the tile, both odd: R gives 6; 8 wide, 15 high gives 16,
                # which the raster's edge cuts back to 14.
                self.assertIn("clipped tiles", summary["notices"][0])
                self.assertEqual(pixels(self.path(out, name)), pixels(source, 26, 26, 8, 14))
                numbers = map(float, self.read(self.path(out, name[:-3] + "pgw")).split())
                self.assertEqual(list(numbers), [1, 0, 0, -1, 26.5, 13.5])

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
        summary = self.cut(source, "out", "--tile-size", 20, "--vrt", "-q", *CONVERT)
        self.assertGreater(len({gdal.Open(self.path("out", n)).RasterCount for n in self.index_of(summary)}), 1)
        self.assertEqual(pixels(summary["vrt"]), pixels(source))

    def test_tile_formats(self):
        cases = [  # source, bands, arguments, extension of the tiles, word of a notice
            ("map.png", 3, ["--format", ".JPEG"], "jpg", None),
            ("map.png", 3, ["--format", "jpg", *CONVERT], "png", "stay png"),
            ("map.tif", 3, ["--format", "tif", "--preview", *CONVERT], "tif", None),
            ("map.jpg", 3, [], "jpg", "stay jpg"),
            ("five.tif", 5, [], "png", "5 bands"),
        ]
        for number, (source, bands, arguments, extension, word) in enumerate(cases):
            write_raster(self.path(source), 20, 10, bands)
            summary = self.cut(source, f"out{number}", "--tile-size", 10, "-q", *arguments)
            self.assertEqual(self.extensions(summary), {extension})
            notices = " ".join(summary["notices"])
            self.assertTrue(word in notices if word else "stay" not in notices, notices)

    def test_preview_stands_alone(self):
        write_raster(self.path("a <b> & c.png"), 20, 20)
        summary = self.cut("a <b> & c.png", "out", "--tile-size", 10, "--preview", "-q")
        page = self.read(summary["preview"])
        title, _, *tiles = self.data_of(page)
        self.assertEqual(title, "a <b> & c.png")
        self.assertEqual({t["name"]: t["envelope"] for t in tiles},
                         {name: [w, s, e, n] for name, (_, _, (w, e, s, n)) in self.index_of(summary).items()})
        for network in ("http:", "https:", "//cdn", "@import", "src=\"", "href=\""):
            self.assertNotIn(network, page)

    def test_most_tiles(self):
        write_raster(self.path("more.png"), 80, 50, bands=1)
        texts = {"de": "zuviele Kacheln (max. 999)", "en": "too many tiles (max. 999)",
                 "fr": "trop de tuiles (max. 999)"}
        for language, text in texts.items():
            done = self.run_tile("more.png", "more", "--tile-size", 2, "--language", language)
            self.assertEqual(done.returncode, 2)
            self.assertIn(text, done.stderr)
            self.assertIn("40 x 25 = 1000 tiles", done.stderr)
        self.assertFalse(os.path.exists(self.path("more")))
        self.assertIn("--tile-size 3 would do", done.stderr)
        self.cut("more.png", "more", "--tile-size", 3, "-q")
        done = self.run_tile("more.png", "german", "--tile-size", 2, environment={"LC_ALL": "de_DE.UTF-8"})
        self.assertIn(texts["de"], done.stderr)

    def test_odd_names(self):
        for name in ("with blank", "quo'te\"s", "umläute ß", "-dash", "per%20cent", "semi;colon&amp"):
            write_raster(self.path(name + ".png"), 20, 10)
            summary = self.cut("--tile-size", 10, "--vrt", "--preview", "-q", *CONVERT, "--",
                               name + ".png", name + " out/deep/")
            self.assertEqual(summary["tiles"]["written"], 2)
            self.assertEqual(pixels(summary["vrt"]), pixels(self.path(name + ".png")))

    def test_progress_and_narration(self):
        write_raster(self.path("map.png"), 20, 20)
        summary = self.cut("map.png", "json", "--tile-size", 10, "--progress", "json", "-q")
        events = [json.loads(line) for line in summary["stderr"].splitlines()]
        self.assertEqual([e["cell"] for e in events if e["event"] == "cell"], [1, 2, 3, 4])
        self.assertEqual([events[0]["event"], events[-1]["event"], events[0]["of"]], ["start", "end", 4])
        self.assertNotIn("[....", self.cut("map.png", "auto", "--tile-size", 10)["stderr"])
        self.assertIn("[....", self.cut("map.png", "bar", "--tile-size", 10, "--progress", "bar")["stderr"])

    def test_name_of_the_image(self):
        write_raster(self.path("map.tif"), 20, 10)
        write_raster(self.path("twin.png"), 20, 10)
        summary = self.cut("map.tif", "out", "--tile-size", 10, "--name", "twin.png", "--format", "gif", "-q", *CONVERT)
        self.assertEqual(self.extensions(summary), {"png"})
        done = self.run_tile("map.tif", "none", "--tile-size", 10, "--name", "missing.png", "--language", "en")
        self.assertEqual(done.returncode, 1)
        self.assertIn("File not found or format not supported", done.stderr)
        self.assertFalse(os.path.exists(self.path("none")))
        # A name that is also the text of a stage must not hide the steps of the grid.
        shutil.copy(self.path("twin.png"), self.path("extern"))
        summary = self.cut("extern", "stage", "--tile-size", 10, "-q", *CONVERT)
        self.assertEqual(sorted((c, r) for c, r, _ in self.index_of(summary).values()), [(0, 0), (1, 0)])


class UsageTest(RasterTest):
    def refuse(self, source, folder, arguments, code, words):
        """A run that ends before it writes anything."""
        before = sorted(os.listdir(self.folder))
        with self.subTest(source=source, folder=folder, arguments=arguments):
            done = self.run_tile(source, folder, *arguments)
            self.assertEqual((done.returncode, done.stdout), (code, ""), done.stderr)
            self.assertTrue(done.stderr.startswith("orvo-tile: "), done.stderr)
            for word in words:
                self.assertIn(word, done.stderr)
            self.assertEqual(sorted(os.listdir(self.folder)), before)

    def test_options(self):
        write_raster(self.path("map.png"), 20, 10)
        self.write("file", "x")
        size = ["--tile-size", "10"]
        converter = [*size, "--converter"]
        cases = [  # arguments, words of the message
            ([], ["--tile-size"]),
            (["--tile-width", "10"], ["--tile-height"]),
            ([*size, "--tile-width", "5"], ["--tile-size"]),
            (["--tile-size", "0"], ['"0"', "1 to 2147483647"]),
            (["--tile-size", "-2"], ['"-2"', "-1"]),
            (["--tile-size", "2147483648"], ["32 bits"]),
            (["--tile-size", "99999999999999999999"], ["32 bits"]),
            (["--tile-size", "12.5"], ["12.5", "whole"]),
            (["--tile-size", ""], ["--tile-size"]),
            (["--tile-size", "2147483647"], ["32 bits", "-1"]),  # odd: rounded up past the range
            ([*size, "--quality", "0"], ["1 to 100"]),
            ([*size, "--quality", "101"], ["1 to 100"]),
            ([*size, "--language", "es"], ["es", "de, en or fr"]),
            ([*size, "--on-error", "panic"], ["panic", "ask, next or leave"]),
            ([*size, "--progress", "dots"], ["dots", "auto"]),
            ([*size, "--clip", "5", "0", "5", "9"], ["--clip", "XMIN"]),
            ([*size, "--clip", "0", "9", "5", "1"], ["--clip", "YMIN"]),
            ([*size, "--clip", "0", "0", "east", "9"], ["east", "decimal point"]),
            ([*size, "--clip", "0", "0", "1e999", "9"], ["1e999"]),
            ([*size, "--clip", "20", "0", "30", "10"], ["does not meet", "0 0 20 10"]),
            ([*size, "--clip", "1", "2", "3"], ["--clip"]),
            ([*size, "--format", ""], ["png"]),
            ([*size, "--format", "../x"], ["../x"]),
            ([*size, "--format", "tif"], ["tif", "--converter"]),
            ([*converter, "no-such-program"], ["no-such-program", "PATH"]),
            ([*converter, "./file"], ["./file"]),
            ([*converter, ""], ["--converter"]),
            ([*size, "--colour"], ["--colour"]),
            ([*size, "--name", "a\\b"], ["backslash"]),
        ]
        for arguments, words in cases:
            self.refuse("map.png", "out", arguments, 2, words)

    def test_paths_and_sources(self):
        write_raster(self.path("map.png"), 20, 10)
        write_raster(self.path("ten.tif"), 10, 10)
        self.write("empty.png", "")
        self.write("text.png", "not a picture")
        shutil.copy(self.path("map.png"), self.path("back\\slash.png"))
        rotated = gdal.Open(self.path("ten.tif"), gdal.GA_Update)
        rotated.SetGeoTransform([0, 1, 0.5, 10, 0.5, -1])
        rotated = None
        for source, folder, code, words in [
                ("missing.png", "out", 1, ["missing.png"]),
                ("empty.png", "out", 1, ["empty.png"]),
                ("text.png", "out", 1, ["text.png"]),
                ("ten.tif", "out", 1, ["ten.tif", "gdalwarp"]),
                (".", "out", 1, ["."]),
                ("back\\slash.png", "out", 2, ["backslash"]),
                ("map.png", "o\\ut", 2, ["backslash"]),
                ("map.png", "text.png", 2, ["text.png", "folder"]),
                ("map.png", "text.png/deep", 2, ["text.png"]),
                ("map.png", "", 2, ["OUTDIR"]),
                ("map.png", "/proc", 2, ["/proc", "written"]),
                ("map.png", "/proc/deep/er", 2, ["/proc"])]:
            self.refuse(source, folder, ["--tile-size", "5"], code, words)



class FolderTest(RasterTest):
    def setUp(self):
        super().setUp()
        write_raster(self.path("map.png"), 20, 20)

    def again(self, *arguments):
        return self.run_tile("map.png", "out", "--tile-size", 10, "-q", *arguments)

    def test_overwrite_takes_exactly_the_earlier_run(self):
        self.cut("map.png", "out", "--tile-size", 10, "--vrt", "--preview", "-q")
        earlier = self.names()
        refused = self.again()
        self.assertEqual(refused.returncode, 2)
        self.assertIn("--overwrite", refused.stderr)
        for name in ("mine.txt", "i123456_1.png"):  # the second looks like a tile, but no index names it
            self.write("out/" + name, "mine")
        # A refused run takes nothing away.
        self.assertEqual(self.again("--overwrite", "--clip", "90", "90", "99", "99").returncode, 2)
        self.assertEqual(self.names(), earlier | {"mine.txt", "i123456_1.png"})
        summary = self.cut("map.png", "out", "--tile-size", 20, "--overwrite", "-q")
        self.assertEqual(self.names(), set(self.index_of(summary)) | {"tiles.geojson", "mine.txt", "i123456_1.png"})

    def test_forged_indexes_are_refused(self):
        self.write("victim.png", "mine")
        self.cut("map.png", "out", "--tile-size", 20, "-q")
        genuine = json.loads(self.read("out/tiles.geojson"))
        before = self.names()
        for place, value in (("location", "../victim.png"), ("location", self.path("victim.png")),
                             ("location", "holiday.png"), ("companions", ["../victim.png"]), ("companions", None),
                             ("generator", "other")):
            with self.subTest(place=place, value=value):
                forged = copy.deepcopy(genuine)
                (forged["features"][0]["properties"] if place == "location" else forged)[place] = value
                self.write("out/tiles.geojson", json.dumps(forged))
                done = self.again("--overwrite")
                self.assertEqual(done.returncode, 2, done.stderr)
                self.assertIn("tiles.geojson", done.stderr)
                self.assertEqual(self.names(), before)
                self.assertTrue(os.path.exists(self.path("victim.png")))

    def test_links_are_not_followed(self):
        summary = self.cut("map.png", "out", "--tile-size", 20, "-q")
        tile, = self.index_of(summary)
        self.write("victim.png", "mine")
        os.remove(self.path("out", tile))
        os.symlink(self.path("victim.png"), self.path("out", tile))
        self.assertEqual(self.again("--overwrite").returncode, 0)
        self.assertTrue(os.path.islink(self.path("out", tile)) and os.path.exists(self.path("victim.png")))
        os.rename(self.path("out", "tiles.geojson"), self.path("index"))
        os.symlink(self.path("index"), self.path("out", "tiles.geojson"))
        self.assertEqual(self.again("--overwrite").returncode, 2)

    def test_the_source_is_never_removed(self):
        summary = self.cut("map.png", "out", "--tile-size", 20, "-q", "--world-files")
        tile, = self.index_of(summary)
        done = self.run_tile(self.path("out", tile), "out", "--tile-size", 10, "--overwrite")
        self.assertEqual(done.returncode, 2)
        # Nor through a virtual raster that shows it.
        gdal.BuildVRT(self.path("view.vrt"), [self.path("out", tile)]).FlushCache()
        self.assertEqual(self.run_tile("view.vrt", "out", "--tile-size", 10, "--overwrite").returncode, 2)
        self.assertTrue(os.path.exists(self.path("out", tile)))

    def test_foreign_files_keep_their_names(self):
        os.mkdir(self.path("out"))
        self.write("out/index.html", "mine")
        summary = self.cut("map.png", "out", "--tile-size", 10, "--preview", "--vrt", "-q")
        self.assertEqual(self.read("out/index.html"), "mine")
        self.assertEqual([os.path.basename(summary[k]) for k in ("index", "vrt", "preview")],
                         ["tiles_2.geojson", "mosaic_2.vrt", "index_2.html"])

    def test_processes_share_a_folder(self):
        write_raster(self.path("big.tif"), 120, 120)
        arguments = [ORVO_TILE, "raster", "big.tif", "out", "--tile-size", "10", "--vrt", "--preview", "-q",
                     "--converter", self.script("slow", 'sleep 0.002; exec cp "$1" "$2"'), "--format", "tif"]
        running = [subprocess.Popen(arguments, cwd=self.folder, stdout=subprocess.PIPE, text=True) for _ in range(2)]
        summaries = [json.loads(process.communicate(timeout=60)[0]) for process in running]
        self.assertEqual([process.returncode for process in running], [0, 0])
        self.assertEqual({os.path.basename(s["index"]) for s in summaries}, {"tiles.geojson", "tiles_2.geojson"})
        tiles = []
        for summary in summaries:
            self.check(summary)
            self.assertEqual(pixels(summary["vrt"]), pixels(self.path("big.tif")))
            tiles += self.index_of(summary)
        self.assertEqual(len(set(tiles)), 288)
        # One --overwrite clears both runs away.
        self.cut("map.png", "out", "--tile-size", 20, "--overwrite", "-q")
        self.assertEqual(len(self.names()), 2)


class FaultsTest(RasterTest):
    def setUp(self):
        super().setUp()
        self.source = write_raster(self.path("map.tif"), 40, 40)

    def test_interrupted(self):
        slow = self.script("slow", 'sleep 0.15; exec cp "$1" "$2"')
        for number in (signal.SIGINT, signal.SIGTERM):
            out = f"out{number}"
            process = subprocess.Popen(
                [ORVO_TILE, "raster", self.source, out, "--tile-size", "4", "--converter", slow, "--format", "tif"],
                cwd=self.folder, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
            deadline = time.monotonic() + 30
            while len(glob.glob(self.path(out, "i*.tif"))) < 3 and time.monotonic() < deadline:
                time.sleep(0.01)
            sent = time.monotonic()
            process.send_signal(number)
            stdout, stderr = process.communicate(timeout=30)
            self.assertLess(time.monotonic() - sent, 5)
            self.assertEqual(process.returncode, 130, stderr)
            summary = json.loads(stdout)
            self.check(summary)
            self.assertTrue(summary["interrupted"])
            self.assertGreaterEqual(summary["tiles"]["written"], 3)
            self.assertGreater(summary["tiles"]["not_reached"], 50)
            self.assertEqual(summary["tiles"]["failed"], 0)
            self.assertEqual(self.names(out), set(self.index_of(summary)) | {"tiles.geojson"})

    def test_a_converter_that_fails(self):
        # The layer's own export steps in, and the notice says why.
        refuse = self.script("refuse", "echo no licence >&2; exit 3")
        summary = self.cut(self.source, "out", "--tile-size", 20, "-q", "--converter", refuse)
        self.assertEqual(summary["tiles"]["written"], 4)
        notice, = [n for n in summary["notices"] if n.startswith("4 tiles")]
        self.assertIn("no licence", notice)

    def test_a_format_that_nobody_writes(self):
        broken = self.script("broken", "exit 3")
        arguments = [self.source, "out", "--tile-size", 20, "--format", "webp", "--converter", broken]
        summary = self.cut(*arguments, "-q", exit_code=1)
        self.assertEqual(summary["tiles"]["failed"], 4)
        self.assertEqual([(f["column"], f["row"]) for f in summary["failures"]], [(0, 0), (1, 0), (0, 1), (1, 1)])
        # Said once, not once a tile.
        self.assertEqual(len(summary["stderr"].splitlines()), 1, summary["stderr"])
        self.assertIn("4 tiles failed", summary["stderr"])
        # What was exported on the way is kept, named, and cleared away by the next run.
        self.assertEqual(len(summary["leftovers"]), 4)
        self.assertEqual(self.names(), set(summary["leftovers"]) | {"tiles.geojson"})
        self.cut(self.source, "out", "--tile-size", 40, "-q", "--overwrite")
        self.assertEqual(len(self.names()), 2)

    def counting(self, number, act):
        """A converter that does something at its n-th call."""
        return self.script("counting", f'echo x >> "{self.folder}/calls"\ncp "$1" "$2"\n'
                           f'[ $(wc -l < "{self.folder}/calls") -eq {number} ] && {act}\nexit 0\n')

    def test_source_cut_short_during_the_run(self):
        source = write_raster(self.path("long.tif"), 400, 400)
        cutter = self.counting(6, f'truncate -s 100000 "{source}"')
        summary = self.cut(source, "out", "--tile-size", 100, "-q", "--format", "tif", "--converter", cutter, exit_code=1)
        self.assertGreaterEqual(summary["tiles"]["written"], 5)
        self.assertGreaterEqual(summary["tiles"]["failed"], 4)
        self.assertEqual(summary["leftovers"], [])

    def test_files_that_cannot_grow(self):
        # The left half is noise, which no format makes small; the right half is flat.
        noisy = gdal.GetDriverByName("GTiff").Create(self.path("half.tif"), 200, 100, 3)
        for band in (1, 2, 3):
            noisy.GetRasterBand(band).WriteRaster(0, 0, 100, 100, os.urandom(10000))
        noisy = None
        summary = self.cut("half.tif", "out", "--tile-size", 100, "-q", exit_code=1,
                           preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (12000, 12000)))
        self.assertEqual((summary["tiles"]["written"], summary["tiles"]["failed"]), (1, 1))
        self.assertIn("File too large", summary["failures"][0]["reason"])
        self.assertEqual(self.names(), set(self.index_of(summary)) | {"tiles.geojson"})

    def vanishing(self, policy):
        """Arguments of a run whose output folder goes away at its second tile."""
        self.write("calls", "")
        converter = self.counting(2, f'rm -rf "{self.folder}/out"')
        return [self.source, "out", "--tile-size", "20", "--format", "tif", "--on-error", policy, "--converter", converter,
                "--language", "en"]

    def test_failures_without_a_terminal(self):
        for policy, lines in (("leave", 1), ("ask", 1), ("next", 2)):
            with self.subTest(policy):
                done = self.run_tile(*self.vanishing(policy), "-q")
                self.assertEqual(done.returncode, 1)
                shown = [line for line in done.stderr.splitlines() if "Error description:" in line]
                self.assertGreaterEqual(len(shown), lines)
                self.assertIn("Path not found", shown[0])
                self.assertIn("Exit Procedure" if policy != "next" else "Continue with next Command", shown[0])
                summary = json.loads(done.stdout)
                self.assertEqual(summary["tiles"]["written"], 0)
                self.assertIsNone(summary["index"])



if __name__ == "__main__":
    unittest.main(verbosity=0, argv=[sys.argv[0], *sys.argv[1:]])
