#!/usr/bin/python3
"""The real program at simulated scanners on pseudo-terminals: what it prints and its exit codes.

usage: program_test.py ORVEXCTL SIMULATOR SCHEMA
"""
import concurrent.futures
import json
import os
import re
import signal
import subprocess
import sys
import typing
import unittest

from desk import Desk, PATIENCE, PROGRAM

FACTORY = {"RSBAUD": "9600", "RSPRTY": "NONE", "RSBITS": "8", "RSSTOP": "1", "RSDELY": "", "RSCTSE": "0",
           "SPVOLU": "HIGH", "PREFIX": "", "PRECID": "0", "SUFFIX": "", "SUFFCR": "1", "CD39EN": "1",
           "CD39SS": "0", "CD128E": "1", "PDF417": "1", "MAG1EN": "1", "MAG2EN": "1", "MAG3EN": "1",
           "MAGLRC": "0", "MAGRAW": "0", "NOREAD": "0", "POWSET": "0", "SPPOWB": "1", "SPPARA": "1",
           "SERIEN": "0"}


def at(settings, **more):
    return {"port": None, "device": "DEVICE", "settings": settings, **more}


def show(setup, **said):
    revisions = {"application1": "3.22", "application2": "1.07", "hardware": "2.0B"}
    return at("9600,N,8,1", **{"revisions": revisions, "model": "OX-4100", "serial": "0004711",
                               "web": "www.example.org", "setup": setup, **said})


def change(name, before, after):
    return {"name": name, "before": before, "after": after}


LOUD = change("SPVOLU", "HIGH", "LOW")


class Row(typing.NamedTuple):
    options: str          # of the simulator
    words: str            # on the command line; \N in a word stands for a character, '' for none
    code: int
    expected: object      # the document, or what the text of its error has in it


HERE = "--settings 9600,n,8,1 "
ROWS = [
    Row("--rate 19200", "find", 0, at("19200,N,8,1")),
    Row("", HERE + "find", 0, at("9600,N,8,1")),
    Row("", "show " + HERE, 0, show(FACTORY)),
    Row("", HERE + "show spvolu SUFFIX", 0, show({"SPVOLU": "HIGH", "SUFFIX": ""})),
    Row("--revision 3.21 --model OX-4100-LONG --web scanner.example.org/about", HERE + "show RSBAUD", 0,
        show({"RSBAUD": "9600"}, serial=None, model="OX-4100-LONG", web="scanner.example.org/about",
             revisions={"application1": "3.21", "application2": "1.07", "hardware": "2.0B"})),
    Row("", HERE + "set SPVOLU=low sufFCR=disable", 0,
        at("9600,N,8,1", changed=[LOUD, change("SUFFCR", "1", "0")])),
    Row("", HERE + "set SPVOLU=high", 0, at("9600,N,8,1", changed=[])),
    Row("", HERE + "set --dry-run SPVOLU=LOW", 0, at("9600,N,8,1", changed=[LOUD])),
    Row("", HERE + "set RSBAUD=19200 PREFIX=[STX]é", 0,
        at("19200,N,8,1", changed=[change("RSBAUD", "9600", "19200"), change("PREFIX", "", "[STX]é")])),
    Row("", HERE + "set RSDELY=7", 0, at("9600,N,8,1", changed=[change("RSDELY", "", "007")])),
    Row("", HERE + "set RSDELY=7 --dry-run", 0, at("9600,N,8,1", changed=[change("RSDELY", "", "007")])),
    Row("", HERE + "save file", 0, at("9600,N,8,1")),
    Row("", HERE + "send low", 0, at("9600,N,8,1", changed=[change("RSDELY", "", "000"), LOUD])),
    Row("", HERE + "send low --dry-run", 0, at("9600,N,8,1", changed=[change("RSDELY", "", "000"), LOUD])),
    Row("", HERE + "diff low", 1,
        {"differences": [{"name": "RSDELY", "scanner": "", "file": "000"},
                         {"name": "SPVOLU", "scanner": "HIGH", "file": "LOW"}]}),
    Row("", HERE + "factory --yes", 0, at("9600,N,8,1", changed=[])),
    Row("", "load new " + HERE, 0, {"bytes": 4096, "before": "3.22", "after": "4.00   "}),
    Row("", "load old --allow-older --fast " + HERE, 0, {"bytes": 4096, "before": "3.22", "after": "1.00   "}),
    # Wrong use.
    Row("none", "", 2, ""),
    Row("none", "bogus", 2, "bogus"),
    Row("none", "diff --dry-run low", 2, "--dry-run"),
    Row("none", "--port 7 find", 2, ""),
    Row("none", "--settings 9600,n,9,1 find", 2, "9600,n,9,1"),
    Row("none", "show COLOUR", 2, "RSBAUD"),
    Row("none", "set", 2, ""),
    Row("none", "set SPVOLU", 2, "NAME=VALUE"),
    Row("none", "set COLOUR=1", 2, "RSBAUD"),
    Row("none", "set SPVOLU=loud", 2, "MEDIUM"),
    Row("none", "set RSDELY=1000", 2, "3 digits"),
    Row("none", "set RSDELY=-1", 2, "3 digits"),
    Row("none", "set PREFIX=a\\x1Bb", 2, "[CR]"),
    Row("none", "set PREFIX=a\\x85b", 2, "[CR]"),
    Row("none", "set PREFIX=\\u20AC", 2, "8859-1"),
    Row("none", "set PREFIX=" + 41 * "x", 2, "40"),
    Row("none", "set SPVOLU=LOW SPVOLU=OFF", 2, "twice"),
    Row("none", "factory", 2, "--yes"),
    Row("none", "load new --restart-wait 86401", 2, "86400"),
    Row("none", "save ''", 2, "FILE"),
    Row("none", "load ''", 2, "IMAGE"),
    Row("none", "find --trace ''", 2, "--trace"),
    Row("none", "send low --trace ./low", 2, "low"),
    Row("", HERE + "load old", 2, "--allow-older"),
    # Nobody there.
    Row("--fault silent", "find", 3, ""),
    Row("--fault silent", HERE + "show", 3, ""),
    Row("--fault nak", HERE + "find", 3, ""),
    Row("--restart manual", "load new --restart-wait 1 " + HERE, 3, "not come back"),
    Row("none", "find", 4, "scanner"),
    # A scanner that has answered and then fails.
    Row("--fault only=<SETPAR --fault nak", HERE + "diff low", 5, "refused"),
    Row("--fault only=<SETPAR --fault silent", HERE + "set SPVOLU=LOW", 5, "doesn't answer"),
    Row("--fault only=<SETPAR --fault unplug-after", HERE + "show", 5, "went away"),
    Row("--fault only=<SETPAR --fault no-eot", HERE + "save file", 5, "Overflow"),
    Row("--fault only=<FINGER --fault nak", HERE + "show", 5, "Model"),
    Row("--fault only=<RSBAUD --fault nak", HERE + "send low", 5, "refused"),
    Row("--fault only=<RSBAUD --fault unplug-after", HERE + "send low", 5, "went away"),
    Row("--fault only=<RSBAUD --fault ignored", HERE + "set SPVOLU=LOW", 5, "not take SPVOLU"),
    Row("--fault only=<FACDEF --fault nak", HERE + "factory --yes", 5, "refused"),
    Row("--fault only=<FINGER --fault nak", HERE + "factory --yes", 0, at("9600,N,8,1", changed=[])),
    Row("--fault only=<A1CODE --fault nak", HERE + "load new", 5, "refused"),
    Row("--fault only=<A1CODE --fault nak", HERE + "load old --allow-older", 5, "refused"),
    # Files.
    Row("none", "send missing", 6, "missing"),
    Row("none", "send text", 6, "no setup"),
    Row("none", "diff .", 6, ""),
    Row("none", "load short", 6, "no firmware"),
    Row("none", "load odd", 6, "no firmware"),
    Row("none", "load missing", 6, "missing"),
    Row("", HERE + "save missing/file", 6, "missing"),
    Row("none", "--trace missing/file find", 6, "missing"),
    Row("--receiver false", HERE + "load new", 7, "failed"),
]


def split(words):
    return [re.sub(r"\\x(..)|\\u(....)", lambda m: chr(int(m[1] or m[2], 16)), word.replace("''", ""))
            for word in words.split()]


class Table(unittest.TestCase):
    def check(self, row):
        with Desk(*row.options.split()) as desk:
            code, document = desk.json(*split(row.words))
        document.pop("seconds", None)
        if isinstance(row.expected, str):
            assert document["error"]["code"] == row.code, document
            assert row.expected in document["error"]["text"], document
        else:
            assert document == row.expected, document
        assert code == row.code, code

    def test_each_command_gives_its_document_and_its_exit_code(self):
        with concurrent.futures.ThreadPoolExecutor(16) as pool:
            checks = [(row, pool.submit(self.check, row)) for row in ROWS]
        for row, check in checks:
            with self.subTest(row.words, options=row.options):
                check.result()

    def test_help_is_no_failure(self):
        with Desk("none") as desk:
            code, out, err = desk.run("--help")
        self.assertEqual((code, err), (0, b""))
        self.assertIn(b"factory", out)


class Sequences(unittest.TestCase):
    def test_a_setup_goes_out_to_a_file_and_comes_back_and_is_sent_once(self):
        with Desk() as desk:
            self.assertEqual(desk.run("set", "PREFIX=[STX]a", "RSDELY=25")[0], 0)
            self.assertEqual(desk.run("save", "file")[0], 0)
            self.assertEqual(desk.json("diff", "file"), (0, {"differences": []}))
            self.assertEqual(desk.run("factory", "--yes")[0], 0)
            self.assertEqual(desk.json("diff", "file")[0], 1)
            changed = [change("RSDELY", "", "025"), change("PREFIX", "", "[STX]a")]
            self.assertEqual(desk.json("send", "file"), (0, at("9600,N,8,1", changed=changed)))
            frames = desk.log.read_text().count("heard <RSBAUD")
            code, _, err = desk.run("send", "file")
            self.assertEqual((code, desk.log.read_text().count("heard <RSBAUD")), (0, frames))
            self.assertIn(b"Nothing differs", err)

    def test_no_control_character_of_a_scanner_gets_out(self):
        evil = "\x1b[31m\x7f\x85é\\"
        with Desk("--model", evil.encode("latin-1")) as desk:
            outputs = [desk.run("show", "--trace", "trace")[1], desk.run("show", "--json")[1],
                       (desk.path / "trace").read_bytes()]
            self.assertEqual(desk.json("show")[1]["model"], evil)
        for output in outputs:
            self.assertNotRegex(output.decode(), "[\x00-\x09\x0b-\x1f\x7f-\x9f]")
        self.assertIn("\\x1B[31m\\x7F\\x85é\\\\", outputs[0].decode())

    def test_a_trace_has_every_byte_with_its_time_and_direction(self):
        with Desk() as desk:
            desk.run("find", "--trace", "trace")
            lines = [re.sub(r"^\d+\.\d{6} ", "", line) for line in (desk.path / "trace").read_text().splitlines()]
        self.assertEqual([line for line in lines if line[0] != "="], ['> SOH "<TXPING:>" EOT', "< ACK"])

    def test_an_empty_device_is_not_the_stored_port(self):
        with Desk("none") as desk:
            self.assertEqual(desk.run("--device", "", "find", device=False)[0], 2)

    def test_output_that_nobody_takes_is_a_failure(self):
        with open("/dev/full", "w") as full:
            self.assertEqual(subprocess.run([PROGRAM, "ports"], stdout=full, stderr=subprocess.DEVNULL).returncode, 6)

    def test_streams_that_are_closed_cost_the_result_alone(self):
        # A pipe or port of the program would get their numbers, and then what it prints.
        with Desk() as desk:
            load = ["bash", "-c", '"$@" <&- >&- 2>&-', "bash", PROGRAM, "--device", desk.link, "load", desk.path / "new"]
            self.assertEqual(subprocess.run(load, timeout=PATIENCE).returncode, 6)
            self.assertEqual(desk.json("show", "RSBAUD")[1]["revisions"]["application1"], "4.00   ")

    def test_a_signal_that_is_ignored_at_the_start_stays_so(self):
        with Desk("--fault", "silent") as desk:
            process = subprocess.Popen(["nohup", PROGRAM, "--device", desk.link, "find"], stdin=subprocess.DEVNULL,
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            desk.wait(lambda: desk.heard("heard <TXPING"))
            process.send_signal(signal.SIGHUP)
            self.assertEqual(process.wait(PATIENCE), 3)

    def test_after_a_load_the_device_is_looked_for_behind_its_link(self):
        with Desk("--restart", "manual") as desk:
            before = os.path.realpath(desk.link)
            process = desk.start("--quiet", "load", "new", "--restart-wait", "30")
            desk.wait(lambda: desk.heard("loaded "))
            desk.tell("unplug")
            desk.wait(lambda: not os.path.exists(before))
            taken = os.openpty()  # the number is another's when it comes back
            desk.tell("plug")
            desk.tell("restart")
            process.communicate(timeout=PATIENCE)
            for end in taken:
                os.close(end)
            self.assertNotEqual(os.path.realpath(desk.link), before)
            self.assertEqual(process.returncode, 0)

    def test_a_port_that_is_held_is_refused_and_its_holder_named(self):
        with Desk("--fault", "silent") as desk:
            holder = desk.start("find", "--trace", "trace")
            desk.wait(lambda: (desk.path / "trace").exists() and "opened" in (desk.path / "trace").read_text())
            code, document = desk.json("find")
            holder.terminate()
            holder.communicate()
        self.assertEqual(code, 4)
        self.assertIn(f"held by process {holder.pid} (orvexctl)", document["error"]["text"])


class Interrupts(unittest.TestCase):
    """A signal in each phase: 130, a port that is free at once, and a transfer that is cancelled."""

    # options of the simulator, words, what the phase is told by
    PHASES = [
        ("--fault silent", "find", "heard <TXPING"),
        ("--fault only=<SETPAR --fault silent", "show", "heard <SETPAR"),
        ("--fault only=<RSBAUD --fault silent", "set SPVOLU=LOW", "heard <RSBAUD"),
        ("--fault only=<FACDEF --fault silent", "factory --yes", "heard <FACDEF"),
        ("--fault only=<A1CODE --fault silent", "load new", "heard <A1CODE"),
        ("--paced", "load big", "loader started"),
        ("", "load new", "loaded "),
        ("--restart manual", "load new", "RESTART"),
    ]

    def check(self, phase, number):
        options, words, mark = phase
        with Desk(*options.split()) as desk:
            process = desk.start("--json", *words.split(), "--settings", "9600,N,8,1") if words != "find" \
                else desk.start("--json", "find")
            if mark == "RESTART":
                os.set_blocking(process.stderr.fileno(), False)
                seen = bytearray()
                desk.wait(lambda: seen.extend(process.stderr.read() or b"") or mark.encode() in seen)
            else:
                desk.wait(lambda: desk.heard(mark))
            process.send_signal(number)
            out, _ = process.communicate(timeout=PATIENCE)
            assert process.returncode == 130, process.returncode
            assert json.loads(out)["error"]["code"] == 130
            if mark == "loader started":
                desk.wait(lambda: desk.heard("load failed"))
            desk.tell("fault none")
            desk.tell("restart")
            assert desk.run("find")[0] in (0, 3)

    def test_a_signal_ends_every_phase_and_frees_the_port(self):
        numbers = [signal.SIGINT, signal.SIGTERM, signal.SIGHUP]
        with concurrent.futures.ThreadPoolExecutor(16) as pool:
            checks = [(phase, pool.submit(self.check, phase, numbers[i % 3]))
                      for i, phase in enumerate(self.PHASES)]
        for phase, check in checks:
            with self.subTest(phase):
                check.result()


class Terminal(unittest.TestCase):
    def ask(self, answer):
        """Exit code and what the terminal showed."""
        with Desk() as desk:
            master, slave = os.openpty()
            process = subprocess.Popen([PROGRAM, "--device", desk.link, "--settings", "9600,N,8,1", "--json", "factory"],
                                       stdin=slave, stderr=slave, stdout=subprocess.PIPE, start_new_session=True)
            os.close(slave)
            shown = b""
            while b"[y/N]" not in shown:
                shown += os.read(master, 1024)
            if answer is None:
                process.send_signal(signal.SIGINT)
            else:
                os.write(master, answer)
            out, _ = process.communicate(timeout=PATIENCE)
            os.close(master)
            return process.returncode, json.loads(out), desk.heard("heard <FACDEF")

    def test_the_question_before_a_factory_default_takes_yes_no_and_an_interrupt(self):
        for answer, code, sent in ((b"y\n", 0, True), (b"n\n", 0, False), (b"\n", 0, False), (None, 130, False)):
            with self.subTest(answer):
                got, document, heard = self.ask(answer)
                self.assertEqual((got, heard), (code, sent))
                self.assertEqual("error" in document, code == 130)

    def test_a_progress_bar_shows_on_a_terminal_only(self):
        with Desk() as desk:
            master, slave = os.openpty()
            process = subprocess.Popen([PROGRAM, "--device", desk.link, "load", "big"], cwd=desk.path,
                                       stderr=slave, stdout=subprocess.PIPE)
            os.close(slave)
            shown = b""
            while b"RESTART" not in shown:
                shown += os.read(master, 4096)
            process.communicate(timeout=PATIENCE)
            os.close(master)
            self.assertEqual(process.returncode, 0)
            self.assertIn(b"100 %", shown)
            self.assertNotIn(b"%", desk.run("load", "big")[2])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
