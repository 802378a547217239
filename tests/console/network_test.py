#!/usr/bin/python3
"""The real program at scanners in the network: servers, latency, and servers that do wrong.

usage: network_test.py ORVEXCTL SIMULATOR SCHEMA
"""
import concurrent.futures
import signal
import subprocess
import sys
import time
import typing
import unittest

from desk import PATIENCE, PROGRAM
from network import COM_PORT, IAC, NetworkDesk, SER2NET, SREDIRD, Script, answer_to, missing

LATE = 0.05  # seconds each way
HERE = "--settings 9600,N,8,1 "
RATE, PARITY = 1, 3  # commands of RFC 2217


class Row(typing.NamedTuple):
    options: str    # of the simulator
    words: str      # on the command line
    code: int
    expected: str   # what stands in the output of words or of a failure


ROWS = [
    *(Row(f"--rate {rate}", "find", 0, f"{rate},N,8,1")
      for rate in (9600, 19200, 115200, 57600, 38400, 4800, 2400, 1200)),
    Row("", "show " + HERE, 0, "OX-4100"),
    Row("", HERE + "show SPVOLU", 0, "SPVOLU HIGH"),
    Row("--rate 4800", "set SPVOLU=low", 0, "HIGH -> LOW"),
    Row("", HERE + "set RSBAUD=115200 PREFIX=\u00ff\u00ff\u00ff", 0, "RSBAUD: 9600 -> 115200"),
    Row("", HERE + "save file", 0, ""),
    Row("", HERE + "send low", 0, "HIGH -> LOW"),
    Row("", HERE + "diff low", 1, "SPVOLU"),
    Row("--rate 2400", "factory --yes", 0, "RSBAUD: 2400 -> 9600"),
    Row("", "load new " + HERE, 0, "3.22 -> 4.00"),
    Row("--paced", "load new --fast " + HERE, 0, "3.22 -> 4.00"),
    Row("--fault silent", "find", 3, "No scanner answers"),
    Row("--fault only=<SETPAR --fault silent", HERE + "show", 5, "doesn't answer"),
    Row("--fault only=<SETPAR --fault unplug-after", HERE + "show", 5, "the server closed the connection"),
    Row("--fault only=<RSBAUD --fault unplug-after", HERE + "send low", 5, "the server closed the connection"),
]


def check(row, server, late):
    with NetworkDesk(*row.options.split(), server=server, late=late) as desk:
        code, out, err = desk.run(*row.words.split())
    said = (out + err).decode()
    assert (code, row.expected in said) == (row.code, True), (code, said)


class Servers(unittest.TestCase):
    # sredird has no parity on a pseudo-terminal, and says so.
    REFUSED = Row("", "--settings 9600,O,8,1 find", 4, "the server refused odd parity")

    def test_each_command_does_its_job_behind_each_server_and_latency(self):
        jobs = []
        if not missing(SER2NET):
            jobs += [("ser2net", LATE, row) for row in ROWS]
            # A way too long for the scanner's second, and one too long for the server's four.
            jobs += [("ser2net", 0.7, Row("", HERE + "find", 3, "No scanner answers")),
                     ("ser2net", 2.5, Row("", HERE + "find", 4, "no answer from the server"))]
        if not missing(SREDIRD, "socat"):
            # It holds a byte back for up to 0.1 s itself.
            some = [row for row in ROWS if row.code == 0 and row.words.split()[0] not in ("diff", "save")][::2]
            jobs += [("sredird", 0.01, row) for row in [*some, self.REFUSED]]
        print(missing(SER2NET) or "ser2net", missing(SREDIRD, "socat") or "sredird", sep=", ")
        with concurrent.futures.ThreadPoolExecutor(8) as pool:
            checks = [(server, row, pool.submit(check, row, server, late)) for server, late, row in jobs]
        for server, row, done in checks:
            with self.subTest(row.words, server=server, options=row.options):
                done.result()


@unittest.skipIf(missing(SER2NET), missing(SER2NET))
class Sequences(unittest.TestCase):
    def test_characters_that_telnet_escapes_go_both_ways_as_they_are(self):
        with NetworkDesk() as desk:
            self.assertEqual(desk.json("set", "PREFIX=\u00ffa\u00ff\u00ff", "SUFFIX=\u00f0\u00ff")[0], 0)
            setup = desk.json("show")[1]["setup"]
            self.assertEqual((setup["PREFIX"], setup["SUFFIX"]), ("\u00ffa\u00ff\u00ff", "\u00f0\u00ff"))
            image = bytes(range(256)) * 64 + b"\xff" * 4096
            (desk.path / "image").write_bytes(image[:80] + b"4.00   " + image[87:])
            self.assertEqual(desk.run("load", "image")[0], 0)

    def test_an_interrupt_ends_a_wait_for_the_server_and_a_transfer(self):
        silent = Script(b"")
        with NetworkDesk("--paced") as desk:
            waiting = subprocess.Popen([PROGRAM, "--device", silent.device, "find"], stderr=subprocess.DEVNULL)
            loading = desk.start(*(HERE + "load big").split())
            desk.wait(lambda: desk.heard("loader started"))
            time.sleep(0.5)
            for process in (waiting, loading):
                process.send_signal(signal.SIGTERM)
            began = time.monotonic()
            self.assertEqual((waiting.wait(PATIENCE), loading.wait(PATIENCE)), (130, 130))
            self.assertLess(time.monotonic() - began, 3)
            loading.communicate()
            desk.wait(lambda: desk.heard("load failed"))
            self.assertEqual(desk.run("find")[0], 0)
        silent.close()


def options_without_end(way, data):
    """Options and notices around each piece, more than any reader wants."""
    noise = b"".join(IAC + bytes([verb, option]) for verb in (251, 252, 253, 254) for option in range(1, 256)
                     if option != COM_PORT)
    return noise * 20 + data + b"\xff\xfa\x2c\x6b\x30\xff\xf0" * 1000 if way == "back" else data


def without(command, since=b"<"):
    """No answer any more to this command once the client has said this."""
    state = {}

    def tamper(way, data):
        if way == "there" and since in data:
            state["said"] = True
        return answer_to(command).sub(b"", data) or None if way == "back" and "said" in state else data
    return tamper


def refusing(command, value):
    return lambda way, data: answer_to(command).sub(b"\xff\xfa\x2c" + bytes([command + 100]) + value + b"\xff\xf0",
                                                    data) if way == "back" else data


def refusing_a_rate(rate):
    wanted = b"\xff\xfa\x2c\x65" + rate.to_bytes(4, "big") + b"\xff\xf0"
    return lambda way, data: data.replace(wanted, b"\xff\xfa\x2c\x65\0\0\x25\x80\xff\xf0") if way == "back" else data


class Once:
    """At the moment when the client says this, `act` is done with the relay; from then on `passes`."""

    def __init__(self, mark, passes=True):
        self.mark, self.passes, self.met, self.relay = mark, passes, False, None

    def __call__(self, way, data):
        if way == "there" and self.mark in data and not self.met:
            self.met = True
            if self.passes:
                self.relay().cut()
        return data if not self.met or self.passes else None


@unittest.skipIf(missing(SER2NET), missing(SER2NET))
class Faults(unittest.TestCase):
    """A server that does wrong leads to the job's failure in time, and the next job finds the port free."""

    def fails(self, tamper, words, code, text, seconds, options=""):
        with NetworkDesk(*options.split(), tamper=tamper) as desk:
            if isinstance(tamper, Once):
                tamper.relay = lambda: desk.relay
            began = time.monotonic()
            found, out, err = desk.run(*words.split())
            took = time.monotonic() - began
            said = (out + err).decode()
            desk.relay.tamper = lambda _, data: data
            desk.tell("fault none")
            after = desk.run("find")
        assert (found, text in said) == (code, True), (found, said)
        assert took < seconds, took
        # A loader may still wait for its sender.
        assert after[0] in ((0, 3) if "load" in words else (0,)), after

    CASES = [
        (refusing(RATE, b"\0\0\0\0"), HERE + "find", 4, "the server refused 9600 Bps", 6, ""),
        (refusing_a_rate(115200), "find", 0, "4800,N,8,1", 6, "--rate 4800"),
        (refusing_a_rate(19200), HERE + "set RSBAUD=19200", 5, "doesn't answer", 10, ""),
        (without(RATE, b""), HERE + "find", 4, "no answer from the server", 8, ""),
        (without(RATE), HERE + "set RSBAUD=19200", 5, "no answer from the server", 12, ""),
        (options_without_end, "find", 0, "19200,N,8,1", 10, "--rate 19200"),
        (Once(b"<SETPAR"), HERE + "show", 5, "the server closed the connection", 6, ""),
        (Once(b"<TXPING"), HERE + "find", 3, "No scanner answers", 6, ""),
        (Once(b"<SETPAR", passes=False), HERE + "show", 5, "doesn't answer", 8, ""),
        (Once(b"<A1CODE"), HERE + "load new", 5, "the server closed the connection", 10, ""),
        (Once(b"**\x18B00"), HERE + "load new", 7, "the line is gone", 10, ""),
    ]

    def test_faults_lead_to_their_failures(self):
        with concurrent.futures.ThreadPoolExecutor(6) as pool:
            checks = [(case, pool.submit(self.fails, *case)) for case in self.CASES]
        for case, done in checks:
            with self.subTest(case[1], text=case[3]):
                done.result()


class Strangers(unittest.TestCase):
    """Servers that are none of RFC 2217, or say odd things."""

    GREETS = b"\xff\xfd\x2c\xff\xfd\x00\xff\xfb\x00"
    TABLE = [
        (b"", False, "no answer from the server", 4),
        (b"SSH-2.0-OpenSSH\r\n", False, "the server doesn't know RFC 2217", 4),
        (b"\xff\xfe\x2c", False, "the server doesn't know RFC 2217", 0),
        (b"\xff\xfd\x2c\xff\xfe\x00", False, "the server doesn't pass all bytes", 0),
        (b"".join(IAC + bytes([253, option]) for option in range(1, 44)) * 100, True,
         "the server doesn't know RFC 2217", 4),
        (GREETS, False, "no answer from the server", 4),
        (GREETS + b"\xff\xfa\x2c", False, "no answer from the server", 4),
        (GREETS + b"\xff\xfa" + b"\x2c\x65" * 1000, True, "no answer from the server", 4),
    ]

    def check(self, words, again, text, seconds):
        server = Script(words, again)
        began = time.monotonic()
        done = subprocess.run([PROGRAM, "--device", server.device, "find"], capture_output=True, timeout=PATIENCE,
                              check=False)
        took = time.monotonic() - began
        server.close()
        assert done.returncode == 4 and text in done.stderr.decode(), done
        assert seconds <= took < seconds + 2, took

    def test_they_are_told_in_words_and_in_time(self):
        with concurrent.futures.ThreadPoolExecutor(8) as pool:
            checks = [(row, pool.submit(self.check, *row)) for row in self.TABLE]
        for row, done in checks:
            with self.subTest(row[0][:20]):
                done.result()

    def test_a_host_or_server_that_is_not_there_is_named_as_such(self):
        for name, text in (("rfc2217://127.0.0.1:1", "connection refused"),
                           ("rfc2217://nobody.invalid", "no such host"),
                           ("rfc2217://me@till7", "not of the form rfc2217://HOST:PORT")):
            done = subprocess.run([PROGRAM, "--device", name, "find"], capture_output=True, check=False)
            self.assertEqual((done.returncode, text in done.stderr.decode()), (4, True), done)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
