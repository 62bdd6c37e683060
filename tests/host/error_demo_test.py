"""orvo-tile error-demo: the error dialog without a terminal, in a pseudo terminal, and where its log cannot be written."""

import base64
import fcntl
import json
import os
import pty
import re
import shutil
import subprocess
import sys
import tempfile
import termios
import unittest

ORVO_TILE = os.environ["ORVO_TILE"]
LEAVE = {"de": "Prozedur verlassen", "en": "Exit Procedure", "fr": "Procédure de sortie"}


class ErrorDemoTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.folder = os.path.realpath(tempfile.mkdtemp(prefix="orvo demo "))
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        os.mkdir(self.path("bin"))
        kept = {k: v for k, v in os.environ.items() if k not in ("DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "BROWSER",
                                                                  "TMUX", "STY")}
        # Only our own programs, so that no printer and no browser of this machine is met.
        self.environment = {**kept, "TEMP": self.folder, "TERM": "xterm", "PATH": self.path("bin"), "LC_ALL": "C.UTF-8"}

    def path(self, *names):
        return os.path.join(self.folder, *names)

    def read(self, name):
        with open(self.path(name), encoding="utf-8", newline="") as file:
            return file.read()

    def write(self, name, text, mode=0o644):
        with open(self.path(name), "w", encoding="utf-8") as file:
            file.write(text)
        os.chmod(self.path(name), mode)

    def run_tile(self, *arguments, **environment):
        return subprocess.run([ORVO_TILE, *arguments], capture_output=True, text=True, timeout=60, cwd=self.folder,
                              env={**self.environment, **environment}, stdin=subprocess.DEVNULL)

    def session(self, *turns, **environment):
        """A run at a terminal. Each turn is a text to wait for and the answer to it."""
        master, slave = pty.openpty()
        arguments = [ORVO_TILE, "error-demo", "--language", "en"]
        process = subprocess.Popen(arguments, cwd=self.folder, env={**self.environment, **environment}, stdin=slave,
                                   stdout=subprocess.PIPE, stderr=slave, start_new_session=True,
                                   preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0))
        self.addCleanup(process.kill)
        os.close(slave)
        shown, seen = b"", 0
        for awaited, answer in turns:
            while (at := shown.find(awaited.encode(), seen)) < 0:
                shown += os.read(master, 65536)
            seen = at + len(awaited)
            os.write(master, answer.encode())
        answer = json.loads(process.communicate(timeout=30)[0])
        try:
            while chunk := os.read(master, 65536):
                shown += chunk
        except OSError:
            pass  # the other end is closed
        os.close(master)
        self.assertEqual(process.returncode, 0)
        return answer, shown.decode().replace("\r\n", "\n")

    def test_without_a_terminal(self):
        for count, (language, leave) in enumerate(LEAVE.items(), 1):
            done = self.run_tile("error-demo", "--language", language)
            self.assertEqual(done.returncode, 0)
            self.assertIn(": 11 (Division by zero", done.stderr)
            self.assertTrue(done.stderr.endswith(f" -> {leave}\n"))
            self.assertEqual(done.stderr.count("\n"), 1)
            self.assertEqual(json.loads(done.stdout), {"shown": 1, "answer": "leave", "saved": None,
                                                       "log": self.path("Orvo_Tile.EPT")})
            log = self.read("Orvo_Tile.EPT")
            self.assertEqual(log.count("F E H L E R P R O T O K O L L vom Ferrow\r\n"), count)
            self.assertEqual(log.count("\tFailOnPurpose\r\n"), count)
        done = self.run_tile("error-demo", "--on-error", "next")
        self.assertEqual(json.loads(done.stdout)["answer"], "next")
        # A display that is none: said once, and the policy of the terminal holds.
        done = self.run_tile("error-demo", DISPLAY=":9999")
        self.assertEqual((done.returncode, done.stderr.count("orvo-tile: no window: ")), (0, 1))
        self.assertEqual(json.loads(done.stdout)["answer"], "leave")

    def test_report_actions_at_a_terminal(self):
        self.write("bin/lp", f'#!/bin/sh\n/bin/cat "$1" > "{self.folder}/printed"\n', 0o755)
        self.write("bin/xdg-open", f'#!/bin/sh\necho "$1" >> "{self.folder}/opened"\n', 0o755)
        prompt = "(1-7) > "
        answer, shown = self.session((prompt, "p\n"), (prompt, "s\n"), (prompt, "s\n"), ("[y/n] > ", "n\n"),
                                     (prompt, "6\n"), (prompt, "e\n"), (prompt, "w\n"), (prompt, "r\n"),
                                     (prompt, "3\n"), DISPLAY=":9999")
        self.assertEqual(answer, {"shown": 2, "answer": "leave", "log": self.path("Orvo_Tile.EPT"),
                                  "saved": self.path("Orvo_Tile.ERR")})
        self.assertIn("Error protocol was written into '" + self.path("Orvo_Tile.ERR") + "'!", shown)
        self.assertIn("Please give the number: 3, 6\n", shown)
        self.assertIn("technical Support of Example .", shown)  # the second notice is complete
        self.assertEqual(self.read("opened"), "mailto:support@example.com\nhttps://www.example.com/support/en\n")
        copies = [base64.b64decode(text).decode() for text in re.findall("\033]52;c;([^\a]*)\a", shown)]
        self.assertEqual(len(copies), 2)
        plain = [re.sub(r"\d\d-\d\d-\d{4} / \S+", "NOW", text) for text in (copies[0] + "\r\n", self.read("Orvo_Tile.ERR"))]
        self.assertEqual(plain[0], plain[1])
        self.assertIn("Error description:\t11 (Division by zero", plain[0])
        self.assertIn("          Modul:\tErrorDemo \n", self.read("printed"))

    def test_a_terminal_without_printer_clipboard_and_browser(self):
        prompt = "(1-7) > "
        answer, shown = self.session((prompt, "p\n"), (prompt, "6\n"), (prompt, "\x04"), TERM="dumb")
        self.assertEqual(answer["answer"], "leave")
        for text in ("482 (Printer error: there is no lp or lpr; install cups-client",
                     "The report stands last in " + self.path("Orvo_Tile.EPT"),
                     "open this address yourself: mailto:support@example.com"):
            self.assertIn(text, shown)

    def test_a_log_that_cannot_be_written_hides_nothing(self):
        cannot = "The error report cannot be logged. Path not found: /no/folder/Orvo_Tile.EPT"
        done = self.run_tile("error-demo", TEMP="/no/folder")
        self.assertEqual((done.returncode, done.stdout), (1, ""))
        self.assertIn(cannot, done.stderr)
        self.assertIn("What failed: 11 (Division by zero", done.stderr)
        self.write("map.pgm", "P5 20 10 255\n" + "x" * 200)
        self.write("bin/away", f'#!/bin/sh\n/bin/rm -r "{self.folder}/out"\nexit 1\n', 0o755)
        done = self.run_tile("raster", "map.pgm", "out", "--tile-size", "10", "--format", "tif", "--converter", "away",
                             TEMP="/no/folder")
        self.assertEqual(done.returncode, 1)
        summary = json.loads(done.stdout)
        self.assertEqual((summary["tiles"]["expected"], summary["tiles"]["written"]), (2, 0))
        self.assertIn(cannot, done.stderr)
        self.assertIn(cannot, json.dumps(summary["failures"]))

    def test_usage(self):
        for arguments, text in ((["--dialog", "window"], "--dialog window: "), (["--dialog", "x"], "auto, window or terminal"),
                                (["--on-error", "x"], "ask, next or leave"), (["--language", "x"], "de, en or fr")):
            done = self.run_tile("error-demo", *arguments)
            self.assertEqual((done.returncode, done.stdout), (2, ""))
            self.assertIn(text, done.stderr)


if __name__ == "__main__":
    unittest.main(verbosity=0, argv=[sys.argv[0], *sys.argv[1:]])
