#!/usr/bin/python3
"""The real program at simulated scanners on pseudo-terminals: what it prints and its exit codes.

usage: program_test.py ORVEXCTL SIMULATOR SCHEMA
"""
import concurrent.futures
import json
import re
import sys
import typing
import unittest

from desk import Desk

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
    Row("none", "diff slip", 6, "SPVOLU has no such value. There are OFF (Off), LOW"),
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


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
