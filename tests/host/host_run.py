"""What every run of the real orvo-tile needs: the program, a folder of its own, and its summary."""

import json
import os
import re
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

ORVO_TILE = os.environ["ORVO_TILE"]


class HostTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.folder = os.path.realpath(tempfile.mkdtemp(prefix="orvo host "))
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.environment = {**os.environ, "LC_ALL": "C.UTF-8"}

    def path(self, *names):
        return os.path.join(self.folder, *names)

    def run_tile(self, *arguments, environment=None, **options):
        return subprocess.run([ORVO_TILE, *map(str, arguments)], capture_output=True, text=True, timeout=100,
                              cwd=self.folder, env={**self.environment, **(environment or {})},
                              stdin=subprocess.DEVNULL, **options)

    def cut(self, *arguments, exit_code=0, **options):
        """A run that prints a summary, which is checked."""
        done = self.run_tile(*arguments, **options)
        self.assertEqual(done.returncode, exit_code, done.stderr)
        summary = json.loads(done.stdout)
        self.check(summary)
        summary["stderr"] = done.stderr
        return summary

    def refuse(self, command, source, folder, arguments, code, words):
        """A run that says these words and ends before it writes anything."""
        before = sorted(os.listdir(self.folder))
        with self.subTest(source=source, folder=folder, arguments=arguments):
            done = self.run_tile(command, source, folder, *arguments)
            self.assertEqual((done.returncode, done.stdout), (code, ""), done.stderr)
            self.assertTrue(done.stderr.startswith("orvo-tile: "), done.stderr)
            self.assertNotIn("Procedure", done.stderr)
            for word in words:
                self.assertIn(word, done.stderr)
            self.assertEqual(sorted(os.listdir(self.folder)), before)

    def start(self, *arguments):
        return subprocess.Popen([ORVO_TILE, *arguments], cwd=self.folder, env=self.environment, text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def interrupt(self, process, ready, number=signal.SIGINT):
        """The summary of a run that gets a signal as soon as it is ready."""
        until = time.monotonic() + 60
        while not ready() and time.monotonic() < until:
            time.sleep(0.005)
        process.send_signal(number)
        out, error = process.communicate(timeout=5)
        self.assertEqual(process.returncode, 130, error)
        summary = json.loads(out)
        self.check(summary)
        self.assertTrue(summary["interrupted"])
        return summary

    def names(self, folder="out"):
        return set(os.listdir(self.path(folder))) if os.path.isdir(self.path(folder)) else set()

    @staticmethod
    def contents(folder):
        """Bytes by path of all that is in a folder; of job.json only that it is there."""
        found = {}
        for base, _, names in os.walk(folder):
            for name in names:
                with open(os.path.join(base, name), "rb") as file:
                    found[os.path.relpath(os.path.join(base, name), folder)] = name == "job.json" or file.read()
        return found

    def write(self, name, text):
        with open(self.path(name), "w") as file:
            file.write(text)
        return self.path(name)

    def read(self, name):
        with open(self.path(name)) as file:
            return file.read()

    def data_of(self, summary):
        """The preview page's data: title, area and sketch, tiles. The page stands alone."""
        page = self.read(summary["preview"])
        for network in ("http:", "https:", "//cdn", "@import", "src=\"", "href=\""):
            self.assertNotIn(network, page)
        data = re.search(r'<script type="application/jsonl" id="data">(.*?)</script>', page, re.S)[1]
        return [json.loads(line) for line in data.split("\n")]
