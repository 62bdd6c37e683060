"""A call of the system fails on any of four threads, once or for good, under each answer: no tile is lost without a reason.

A sample of all calls; ORVO_FAULTS=all takes each of them.
"""

import json
import os
import pty
import random
import resource
import shutil
import subprocess
import sys
import time
import unittest

from osgeo import gdal

from host_run import ORVO_TILE, HostTest

EVERY = os.environ.get("ORVO_FAULTS") == "all"
SAMPLE = 25
PATIENCE = 4  # repetitions of a step that goes on failing


class FaultsTest(HostTest):
    def setUp(self):
        super().setUp()
        self.random = random.Random(seed := int(os.environ.get("ORVO_SEED", time.time())))
        self.about = f"ORVO_SEED={seed}"
        rgb = gdal.GetDriverByName("GTiff").Create(self.path("map.tif"), 64, 48, 3, options=["TILED=YES", "BLOCKXSIZE=16",
                                                                                          "BLOCKYSIZE=16"])
        heights = gdal.GetDriverByName("GTiff").Create(self.path("heights.tif"), 64, 48, 1, gdal.GDT_Float32)
        for dataset in (rgb, heights):
            dataset.SetGeoTransform([0, 1, 0, 48, 0, -1])
        for band in (1, 2, 3):
            rgb.GetRasterBand(band).WriteRaster(0, 0, 64, 48, self.random.randbytes(64 * 48))
        heights.GetRasterBand(1).WriteRaster(0, 0, 64, 48, bytes(range(64)) * 48, buf_type=gdal.GDT_Byte)
        rgb = heights = None
        areas = [[[x, y], [x + 1.7, y], [x + 1, y + 1.6], [x, y]] for x in range(12) for y in range(9)]
        self.write("map.geojson", json.dumps({"type": "FeatureCollection", "features": [
            {"type": "Feature", "properties": {"n": n}, "geometry": {"type": "Polygon", "coordinates": [ring]}}
            for n, ring in enumerate(areas)]}))
        self.write("copy", '#!/bin/sh\nexec cp "$1" "$2"\n')
        os.chmod(self.path("copy"), 0o755)

    def attempt(self, command, answer, call, lasting):
        """Exit code, standard output and standard error of a run with one fault in it."""
        folder, shim = os.path.split(os.environ["FAULTS"])  # a blank ends a path in LD_PRELOAD
        environment = {**self.environment, "LD_PRELOAD": shim, "LD_LIBRARY_PATH": folder, "FAULTS_FOLDER": "/out",
                       "FAULTS_CALL": str(call), "FAULTS_LASTING": str(int(lasting)), "FAULTS_COUNT": self.path("count")}
        policy = [] if answer == "retry" else ["--on-error", answer]
        limits = {"cwd": self.folder, "env": environment, "text": True, "stdout": subprocess.PIPE}
        if answer != "retry":
            done = subprocess.run([ORVO_TILE, *command, *policy], stderr=subprocess.PIPE, stdin=subprocess.DEVNULL, timeout=30,
                                  check=False, **limits)
            return done.returncode, done.stdout, done.stderr
        master, slave = pty.openpty()
        process = subprocess.Popen([ORVO_TILE, *command], stdin=slave, stderr=slave, start_new_session=True, **limits)
        os.close(slave)
        shown = ""
        try:
            while chunk := os.read(master, 65536).decode(errors="replace"):
                shown += chunk
                if shown.rstrip(" ").endswith(":") or shown.rstrip(" ").endswith(">"):
                    asked = shown.count("Procedure")
                    os.write(master, b"1\n" if asked < PATIENCE else b"3\n")
        except OSError:
            pass  # the other end is closed
        out = process.communicate(timeout=30)[0]
        os.close(master)
        return process.returncode, out, shown

    def judge(self, whole, done):
        """Nothing is lost without a word, and what stands under a tile's name is that tile."""
        code, out, error = done
        self.assertIn(code, (0, 1, 2), error)
        found = self.contents(self.path("out")) if os.path.isdir(self.path("out")) else {}
        for name, content in found.items():
            if name in whole and not name.startswith(("tiles", "mosaic", "index", "job")):
                self.assertEqual(content, whole[name], name)
        if not out:
            self.assertNotEqual((code, error), (0, ""))
            return
        summary = json.loads(out)
        tiles = summary["tiles"]
        lost = tiles["failed"] + tiles["not_reached"]
        self.assertEqual(len(summary["failures"]), tiles["failed"])
        self.assertTrue(all(failure["reason"] for failure in summary["failures"]))
        self.assertTrue(lost == 0 or error or summary["errors"], (summary, error))
        if code == 0:
            self.assertEqual(found, whole)
        if summary["index"]:
            index = json.loads(self.read("out/" + os.path.basename(summary["index"])))
            listed = {feature["properties"]["location"] for feature in index["features"]}
            self.assertEqual(len(listed), tiles["written"])
            self.assertLessEqual(listed, set(found))

    def fail_each(self, *command):
        command = [command[0], command[1], "out", "-q", "--jobs", "4", *command[2:]]
        code, _, error = self.attempt(command, "leave", 0, False)
        self.assertEqual(code, 0, error)
        whole, count = self.contents(self.path("out")), int(self.read("count").split()[0])
        self.assertGreater(count, 50)
        cases = [(call, lasting, answer) for call in range(1, count + 1) for lasting in (False, True)
                 for answer in ("next", "leave", "retry")]
        for call, lasting, answer in cases if EVERY else self.random.sample(cases, SAMPLE):
            with self.subTest(call=call, lasting=lasting, answer=answer, about=self.about):
                shutil.rmtree(self.path("out"))
                self.judge(whole, self.attempt(command, answer, call, lasting))
                again = self.run_tile(*command, "--resume")
                self.assertEqual(again.returncode, 0, again.stderr)
                self.assertEqual(self.contents(self.path("out")), whole)

    def test_pictures(self):
        self.fail_each("raster", "map.tif", "--tile-pixels", "16", "--world-files", "--vrt")

    def test_cells(self):
        self.fail_each("raster", "heights.tif", "--tile-pixels", "16", "--format", "tif")

    def test_converter(self):
        self.fail_each("raster", "map.tif", "--tile-pixels", "16", "--format", "tif", "--converter", self.path("copy"))

    def test_features(self):
        self.fail_each("vector", "map.geojson", "--columns", "4", "--rows", "3", "--preview")

    def test_features_of_a_library(self):
        self.fail_each("vector", "map.geojson", "--columns", "4", "--rows", "3", "--format", "fgb")

    def test_memory_that_runs_out(self):
        """Whatever the limit: no hang, and what is there is whole."""
        command = ["raster", "map.tif", "out", "-q", "--jobs", "4", "--tile-pixels", "16"]
        self.run_tile(*command)
        whole = self.contents(self.path("out"))
        for limit in range(60, 1500, 20 if EVERY else 160):
            with self.subTest(megabytes=limit):
                shutil.rmtree(self.path("out"), ignore_errors=True)
                self.run_tile(*command, preexec_fn=lambda m=limit << 20: resource.setrlimit(resource.RLIMIT_AS, (m, m)))
                again = self.run_tile(*command, *(["--resume"] if os.path.isdir(self.path("out")) else []))
                self.assertEqual(again.returncode, 0, again.stderr)
                self.assertEqual(self.contents(self.path("out")), whole)


if __name__ == "__main__":
    unittest.main(verbosity=0, argv=[sys.argv[0], *sys.argv[1:]])
