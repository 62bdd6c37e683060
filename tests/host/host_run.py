"""What every run of the real orvo-tile needs: the program, a folder of its own, and its summary."""

import json
import os
import re
import shutil
import subprocess
import tempfile
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

    def data_of(self, page):
        """The preview page's data: title, area and sketch, tiles."""
        data = re.search(r'<script type="application/jsonl" id="data">(.*?)</script>', page, re.S)[1]
        return [json.loads(line) for line in data.split("\n")]
