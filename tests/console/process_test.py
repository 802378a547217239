#!/usr/bin/python3
"""The real program as a process among others: its streams, signals, terminal and port.

usage: process_test.py ORVEXCTL SIMULATOR SCHEMA
"""
import concurrent.futures
import contextlib
import json
import os
import signal
import subprocess
import sys
import unittest

from desk import Desk, PATIENCE, PROGRAM


class Streams(unittest.TestCase):
    def test_output_that_nobody_takes_is_a_failure(self):
        with open("/dev/full", "w") as full:
            self.assertEqual(subprocess.run([PROGRAM, "ports"], stdout=full, stderr=subprocess.DEVNULL).returncode, 6)

    def test_streams_that_are_closed_cost_the_result_alone(self):
        # A pipe or port of the program would get their numbers, and then what it prints.
        with Desk() as desk:
            load = ["bash", "-c", '"$@" <&- >&- 2>&-', "bash", PROGRAM, "--device", desk.link, "load", desk.path / "new"]
            self.assertEqual(subprocess.run(load, timeout=PATIENCE).returncode, 6)
            self.assertEqual(desk.json("show", "RSBAUD")[1]["revisions"]["application1"], "4.00   ")

    def test_a_signal_ends_a_program_whose_output_nobody_takes(self):
        reader, writer = os.pipe()
        os.set_blocking(writer, False)
        with contextlib.suppress(BlockingIOError):
            while True:
                os.write(writer, bytes(4096))
        os.set_blocking(writer, True)
        with Desk() as desk:
            process = subprocess.Popen([PROGRAM, "--device", desk.link, "show", "--trace", desk.path / "trace"],
                                       stdout=writer, stderr=subprocess.DEVNULL)
            desk.wait(lambda: (desk.path / "trace").exists() and "closed" in (desk.path / "trace").read_text())
            desk.wait(lambda: process.send_signal(signal.SIGTERM) or process.poll() is not None)
            self.assertEqual(process.returncode, 130)
        os.close(reader)
        os.close(writer)


class Port(unittest.TestCase):
    def test_a_port_that_is_held_is_refused_and_its_holder_named(self):
        with Desk("--fault", "silent") as desk:
            holder = desk.start("find", "--trace", "trace")
            desk.wait(lambda: (desk.path / "trace").exists() and "opened" in (desk.path / "trace").read_text())
            code, document = desk.json("find")
            holder.terminate()
            holder.communicate()
        self.assertEqual(code, 4)
        self.assertIn(f"held by process {holder.pid} (orvexctl)", document["error"]["text"])

    def test_after_a_load_the_device_is_looked_for_behind_its_link(self):
        with Desk("--restart", "manual") as desk:
            before = os.path.realpath(desk.link)
            process = desk.start("--quiet", "load", "new", "--restart-wait", "30")
            desk.wait(lambda: desk.heard("loaded "))
            desk.tell("unplug")
            taken = []  # the number is another's when it comes back
            desk.wait(lambda: taken.extend(os.openpty()) or os.ttyname(taken[-1]) == before)
            desk.tell("plug")
            desk.tell("restart")
            process.communicate(timeout=PATIENCE)
            for end in taken:
                os.close(end)
            self.assertNotEqual(os.path.realpath(desk.link), before)
            self.assertEqual(process.returncode, 0)


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

    def test_a_signal_that_is_ignored_at_the_start_stays_so(self):
        with Desk("--fault", "silent") as desk:
            process = subprocess.Popen(["nohup", PROGRAM, "--device", desk.link, "find"], stdin=subprocess.DEVNULL,
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            desk.wait(lambda: desk.heard("heard <TXPING"))
            process.send_signal(signal.SIGHUP)
            self.assertEqual(process.wait(PATIENCE), 3)


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
