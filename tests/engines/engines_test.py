"""Eight parts in an engine, one of them killed and made again, merged: the files are those of one run."""

import filecmp
import os
import shutil
import socket
import subprocess
import sys
import tempfile
import time
import unittest

from osgeo import gdal

ORVO_TILE, ENGINES = os.environ["ORVO_TILE"], os.environ["ENGINES"]
OPTIONS = ["--tile-pixels", "16", "--world-files", "--vrt", "--preview", "--tile-names", "{row}/{column}"]
REQUIRED = os.environ.get("ORVO_ENGINES") == "required"


def need(*programs):
    missing = [name for name in programs if shutil.which(name) is None]
    if missing and not REQUIRED:
        print("LEFT OUT:", *missing, "not installed", file=sys.stderr)
        sys.exit(77)


def files(folder):
    return sorted(os.path.relpath(os.path.join(base, name), folder) for base, _, names in os.walk(folder) for name in names)


class EngineTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="orvo engine ")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.environment = {**os.environ, "LC_ALL": "C.UTF-8"}
        made = gdal.GetDriverByName("GTiff").Create(self.path("map.tif"), 200, 200, 3)
        made.SetGeoTransform([0, 1, 0, 200, 0, -1])
        for band in (1, 2, 3):
            made.GetRasterBand(band).WriteRaster(0, 0, 200, 200, os.urandom(40000))
        made = None
        squares = [f'{{"type":"Feature","properties":{{}},"geometry":{{"type":"Polygon","coordinates":[[[{x},{y}],[{x + 9},{y}],'
                   f'[{x},{y + 9}],[{x},{y}]]]}}}}' for x in range(0, 200, 7) for y in range(0, 200, 11)]
        with open(self.path("map.geojson"), "w") as file:
            file.write('{"type":"FeatureCollection","features":[' + ",".join(squares) + "]}")
        # A program that kills itself at its first run of part 5.
        self.environment["ORVO_TILE"] = self.path("killed")
        with open(self.path("killed"), "w") as script:
            script.write(f'#!/bin/sh\ncase "$*" in *"--part 5/8"*) mkdir "{self.folder}/once" 2>/dev/null && kill -9 $$;; '
                         f'esac\nexec "{ORVO_TILE}" "$@"\n')
        os.chmod(self.path("killed"), 0o755)

    def path(self, *names):
        return os.path.join(self.folder, *names)

    def run_engine(self, script, command, source, options):
        return subprocess.run([os.path.join(ENGINES, script), command, source, self.path("parts"), "8", *options],
                              capture_output=True, text=True, env=self.environment, cwd=self.folder, timeout=100)

    def check(self, script, command="raster", name="map.tif", options=OPTIONS):
        source = self.path(name)
        subprocess.run([ORVO_TILE, command, source, self.path("whole"), "-q", *options], check=True,
                       stdout=subprocess.DEVNULL)
        broken = self.run_engine(script, command, source, options)
        self.assertNotEqual(broken.returncode, 0, broken.stderr)
        self.assertTrue(os.path.isdir(self.path("once")), broken.stderr)
        done = self.run_engine(script, command, source, options)
        self.assertEqual(done.returncode, 0, done.stderr)
        whole = files(self.path("whole"))
        self.assertEqual(files(self.path("parts")), whole)
        self.assertEqual(filecmp.cmpfiles(self.path("whole"), self.path("parts"), whole, shallow=False), (whole, [], []))


class ParallelTest(EngineTest):
    def test_parallel(self):
        self.check("parallel.sh")

    def test_parallel_vector(self):
        self.check("parallel.sh", "vector", "map.geojson", ["--columns", "12", "--rows", "20", "--preview"])


CLUSTER = """ClusterName=test
SlurmctldHost={host}(127.0.0.1)
SlurmUser=root
SlurmctldPort={port}
SlurmdPort={other}
AuthType=auth/munge
ProctrackType=proctrack/pgid
TaskPlugin=task/none
MpiDefault=none
ReturnToService=2
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
SchedulerParameters=batch_sched_delay=0,sched_interval=1,sched_min_interval=100000
KillWait=1
MinJobAge=2
StateSaveLocation={folder}/state
SlurmdSpoolDir={folder}/spool
SlurmctldPidFile={folder}/ctld.pid
SlurmdPidFile={folder}/d.pid
SlurmctldLogFile={folder}/ctld.log
SlurmdLogFile={folder}/d.log
NodeName={host} NodeAddr=127.0.0.1 CPUs=2 RealMemory=1000 State=UNKNOWN
PartitionName=all Nodes={host} Default=YES State=UP
"""


def free_port():
    with socket.socket() as one:
        one.bind(("127.0.0.1", 0))
        return one.getsockname()[1]


class SlurmTest(EngineTest):
    """A cluster of this machine alone."""

    def setUp(self):
        super().setUp()
        folder = tempfile.mkdtemp(prefix="orvo-slurm-", dir="/tmp")
        self.addCleanup(shutil.rmtree, folder, ignore_errors=True)
        self.environment["SLURM_CONF"] = os.path.join(folder, "slurm.conf")
        for name in ("state", "spool"):
            os.mkdir(os.path.join(folder, name))
        host = socket.gethostname().split(".")[0]
        with open(self.environment["SLURM_CONF"], "w") as settings:
            settings.write(CLUSTER.format(host=host, folder=folder, port=free_port(), other=free_port()))
        if subprocess.run("munge -n | unmunge", shell=True, capture_output=True).returncode != 0:
            subprocess.run("install -d -o munge /run/munge && su -s /bin/sh munge -c /usr/sbin/munged", shell=True,
                           check=True)
        self.addCleanup(self.end, folder)
        subprocess.run(["slurmctld", "-f", self.environment["SLURM_CONF"]], check=True)
        subprocess.run(["slurmd", "-f", self.environment["SLURM_CONF"], "-N", host], check=True)
        until = time.monotonic() + 30
        while "idle" not in subprocess.run(["sinfo"], capture_output=True, text=True, env=self.environment).stdout:
            self.assertLess(time.monotonic(), until)
            time.sleep(0.2)

    def end(self, folder):
        for name in ("d.pid", "ctld.pid"):
            try:
                with open(os.path.join(folder, name)) as number:
                    os.kill(int(number.read()), 15)
            except OSError:
                pass
        time.sleep(1)

    def test_slurm(self):
        self.check("slurm.sh")


if __name__ == "__main__":
    if sys.argv[1] == "ParallelTest":
        need("parallel")
    else:
        if os.geteuid() != 0 and not REQUIRED:
            print("LEFT OUT: Slurm's daemons need root", file=sys.stderr)
            sys.exit(77)
        need("slurmctld", "slurmd", "sbatch", "munge")
    unittest.main(verbosity=0)
