"""orvo-tile error-demo: the error dialog without a terminal, in a pseudo terminal, and where its log cannot be written."""

import base64
import fcntl
import json
import os
import pty
import re
import subprocess
import sys
import termios
import unittest

from host_run import ORVO_TILE, HostTest

PROMPT = "(1-7) > "
MAIL, WEB = "support@example.com", "https://www.example.com/support/en"


class ErrorDemoTest(HostTest):
    def setUp(self):
        super().setUp()
        os.mkdir(self.path("bin"))
        foreign = ("DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "BROWSER", "TMUX", "STY")
        kept = {name: value for name, value in os.environ.items() if name not in foreign}
        # Only our own programs, so that no printer and no browser of this machine is met.
        self.environment = {**kept, "TEMP": self.folder, "TERM": "xterm", "PATH": self.path("bin"), "LC_ALL": "C.UTF-8"}

    def read(self, name):
        with open(self.path(name), encoding="utf-8", newline="") as file:
            return file.read()

    def program(self, name, commands):
        os.chmod(self.write("bin/" + name, f"#!/bin/sh\n{commands}\n"), 0o755)

    def session(self, *turns, language="en", **environment):
        """A run at a terminal. Each turn is a text to wait for and the answer to it."""
        master, slave = pty.openpty()
        arguments = [ORVO_TILE, "error-demo", "--language", language]
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
        leaving = (("de", "Prozedur verlassen"), ("en", "Exit Procedure"), ("fr", "Procédure de sortie"))
        for count, (language, leave) in enumerate(leaving, 1):
            done = self.run_tile("error-demo", "--language", language)
            self.assertRegex(done.stderr, f"^[^\\n]*: 11 .Division by zero[^\\n]* -> {leave}\n$")
            self.assertEqual(json.loads(done.stdout), {"shown": 1, "answer": "leave", "saved": None,
                                                       "log": self.path("Orvo_Tile.EPT")})
            self.assertEqual(self.read("Orvo_Tile.EPT").count("\tFailOnPurpose\r\n"), count)
        done = self.run_tile("error-demo", "--on-error", "next")
        self.assertEqual(json.loads(done.stdout)["answer"], "next")
        # A display that is none: said once, and the policy of the terminal holds.
        done = self.run_tile("error-demo", environment={"DISPLAY": ":9999"})
        self.assertEqual((done.returncode, done.stderr.count("orvo-tile: no window: ")), (0, 1))
        self.assertEqual(json.loads(done.stdout)["answer"], "leave")

    def test_report_actions_at_a_terminal(self):
        self.program("lpr", f'/bin/cat "$1" > "{self.folder}/printed"; echo "$1" > "{self.folder}/document"')
        self.program("xdg-open", f'echo "$1" >> "{self.folder}/opened"')
        turns = [(PROMPT, answer + "\n") for answer in ("p", "s", "6", "e", "w", "r", "3")]
        answer, shown = self.session(*turns, DISPLAY=":9999")
        self.assertEqual(answer, {"shown": 2, "answer": "leave", "log": self.path("Orvo_Tile.EPT"),
                                  "saved": self.path("Orvo_Tile.ERR")})
        for text in ("Error protocol was written into '" + self.path("Orvo_Tile.ERR") + "'!",
                     "Please give the number: 3, 6\n",
                     "technical Support of Example ."):  # the second notice is complete
            self.assertIn(text, shown)
        self.assertEqual(self.read("opened"), f"mailto:{MAIL}\n{WEB}\n")
        first, second = (base64.b64decode(text).decode() for text in re.findall("\033]52;c;([^\a]*)\a", shown))
        for text in (first, second, self.read("Orvo_Tile.ERR")):
            self.assertIn("Error description:\t11 (Division by zero", text)
        self.assertIn("          Modul:\tErrorDemo \n", self.read("printed"))
        self.assertFalse(os.path.exists(self.read("document").strip()))

    def test_what_fails_or_is_missing_is_said_and_what_else_serves_is_used(self):
        self.program("xdg-open", "exit 3")
        self.program("lynx", f'echo "$@" >> "{self.folder}/opened"')
        missing = self.session((PROMPT, "p\n"), (PROMPT, "6\n"), (PROMPT, "w\n"), (PROMPT, "\x04"),
                               TERM="dumb", DISPLAY=":9999", BROWSER="lynx -x %s:other")[1]
        self.program("lp", "echo no; echo default; exit 1")
        self.program("lpr", "exit 0")  # is not asked after lp
        answer, failing = self.session((PROMPT, "p\n"), (PROMPT, "w\n"), (PROMPT, "\x04"), BROWSER="lynx")
        self.assertEqual(answer["answer"], "leave")
        for shown, text in ((missing, "482 (Printer error: there is no lp or lpr; install cups-client"),
                            (missing, "The report stands last in " + self.path("Orvo_Tile.EPT")),
                            (missing, "open this address yourself: mailto:" + MAIL),  # a browser sends none
                            (failing, "482 (Printer error: lp says: no default (lpoptions"),
                            (failing, "open this address yourself: " + WEB)):  # there is no display
            self.assertIn(text, shown)
        self.assertEqual(self.read("opened"), f"-x {WEB}\n")
        for language, *words in (
                ("de", "482 (Druckerfehler: lp meldet: no default (lpoptions", "gespeichert werden))\n",
                 "Zwischenablage des Terminals", "Bitte diese Adresse selbst öffnen: https:"),
                ("fr", "482 (Erreur d'impression : lp répond : no default (lpoptions", "être enregistré))\n",
                 "presse-papier du terminal", "Veuillez ouvrir cette adresse vous-même : https:")):
            shown = self.session((PROMPT, "4\n"), (PROMPT, "7\n"), (PROMPT, "\x04"), language=language)[1]
            for text in words:
                self.assertIn(text, shown)

    def test_a_log_that_cannot_be_written_hides_nothing(self):
        cannot = "The error report cannot be logged. Path not found: /no/folder/Orvo_Tile.EPT"
        done = self.run_tile("error-demo", environment={"TEMP": "/no/folder"})
        self.assertEqual((done.returncode, done.stdout), (1, ""))
        self.assertIn(cannot, done.stderr)
        self.assertIn("What failed: 11 (Division by zero", done.stderr)


if __name__ == "__main__":
    unittest.main(verbosity=0, argv=[sys.argv[0], *sys.argv[1:]])
