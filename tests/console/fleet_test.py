#!/usr/bin/python3
"""What docs/fleet.md says, run at simulated scanners.

usage: fleet_test.py ORVEXCTL SIMULATOR SCHEMA SOURCE_FOLDER
"""
import contextlib
import os
import pathlib
import re
import shutil
import socket
import subprocess
import sys
import tempfile
import time
import unittest

from desk import Desk, PATIENCE, PROGRAM, setup_file

SOURCE = pathlib.Path(sys.argv[4]).resolve()
FLEET = SOURCE / "packaging/fleet"
BY_ID = "/dev/serial/by-id"
HERE = ["--settings", "9600,N,8,1"]


def blocks(language):
    """The blocks of this language in the document, in their order."""
    text = (SOURCE / "docs/fleet.md").read_text()
    return re.findall(rf"```{language}\n(.*?)```", text, re.S)


class Fleet:
    """Scanners behind links of one folder, which stands for the machine's own."""

    def __init__(self, count, *options):
        self.stack = contextlib.ExitStack()
        self.path = pathlib.Path(self.stack.enter_context(tempfile.TemporaryDirectory()))
        (self.path / "by-id").mkdir()
        (self.path / "bin").mkdir()
        (self.path / "bin/orvexctl").symlink_to(PROGRAM)
        self.desks = [self.stack.enter_context(Desk(*options, "--serial", f"{i:04}")) for i in range(1, count + 1)]
        for i, desk in enumerate(self.desks, 1):
            (self.path / f"by-id/usb-{i}").symlink_to(desk.link)
        self.environment = {**os.environ, "PATH": f"{self.path}/bin:{os.environ['PATH']}", "HOME": str(self.path),
                            "LC_ALL": "C.UTF-8", "ANSIBLE_ROLES_PATH": str(FLEET / "roles"),
                            "ANSIBLE_LOCALHOST_WARNING": "False", "ANSIBLE_FORKS": str(count)}

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.stack.close()

    def here(self, text):
        return text.replace(BY_ID, str(self.path / "by-id"))

    def bash(self, script):
        return subprocess.run(["bash", "-euc", self.here(script)], cwd=self.path, env=self.environment, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=3 * PATIENCE, check=False)

    def sends(self):
        return sum(desk.log.read_text().count("heard <RSBAUD=") for desk in self.desks)


class Parallel(unittest.TestCase):
    def test_32_scanners_are_set_up_in_one_go_and_not_twice(self):
        send, again, table, _, _ = blocks("sh")
        with Fleet(32) as fleet:
            self.assertEqual(fleet.desks[0].run("set", "SPVOLU=LOW", "SUFFIX=[CR]")[0], 0)
            begun = time.monotonic()
            sent = fleet.bash(send)
            seconds = time.monotonic() - begun
            self.assertEqual(sent.returncode, 0, sent.stdout)
            # The first scanner has what it was saved from.
            self.assertEqual(fleet.sends(), 1 + 31)
            rows = (fleet.path / "joblog").read_text().splitlines()[1:]
            self.assertEqual([row.split("\t")[6] for row in rows], ["0"] * 32)
            self.assertEqual(fleet.bash(send).returncode, 0)
            self.assertEqual(fleet.sends(), 32)
            self.assertEqual(fleet.bash(again).returncode, 0)
            shown = fleet.bash(table).stdout.splitlines()
            self.assertEqual({row.split("\t")[1] for row in shown}, {f"{i:04}" for i in range(1, 33)})
            self.assertEqual({row.split("\t")[2] for row in shown}, {"LOW"})
        print(f"32 scanners: {seconds:.2f} s")

    def test_one_that_fails_is_counted_and_the_others_are_set_up(self):
        with Fleet(3) as fleet:
            fleet.desks[1].tell("fault silent")
            fleet.desks[1].tell("nothing")  # is answered once the line before it is through
            fleet.desks[1].wait(lambda: fleet.desks[1].heard("not understood"))
            (fleet.path / "till.txt").write_bytes(setup_file(SPVOLU="OFF"))
            self.assertEqual(fleet.bash(blocks("sh")[0].splitlines()[1]).returncode, 1)
            self.assertEqual(fleet.sends(), 2)


class Ansible(unittest.TestCase):
    def play(self, fleet, *options, hosts=8):
        """Changed tasks of all hosts; -1 where a host has failed."""
        command = " ".join([blocks("sh")[3].strip(), *options, f"--extra-vars orvex_setup_copy={fleet.path}/"
                            "{{inventory_hostname}}.txt"]).replace("$PWD", str(fleet.path))
        done = fleet.bash(command)
        recap = re.findall(r"changed=(\d+) +unreachable=(\d+) +failed=(\d+)", done.stdout)
        self.assertEqual(len(recap), hosts, done.stdout)
        if done.returncode != 0:
            return -1
        return sum(int(changed) for changed, _, _ in recap)

    def test_a_second_play_changes_nothing(self):
        with Fleet(8) as fleet:
            hosts = [f"till-{i} ansible_connection=local ansible_python_interpreter=/usr/bin/python3 "
                     f"orvex_device={BY_ID}/usb-{i}" for i in range(1, 9)]
            self.assertIn(hosts[0].split(" ", 3)[3], blocks("ini")[0])
            (fleet.path / "inventory").write_text(fleet.here("\n".join(["[scanners]", *hosts, ""])))
            shutil.copy(FLEET / "scanners.yml", fleet.path)
            (fleet.path / "till.txt").write_bytes(setup_file(SPVOLU="OFF", PREFIX="[STX]"))
            plays = [self.play(fleet), self.play(fleet)]
            self.assertEqual((plays, fleet.sends()), ([8 * 2, 0], 8))
            (fleet.path / "till-1.txt").unlink()  # as on a machine that is new
            self.assertEqual(self.play(fleet, "--check --limit till-1", hosts=1), 1)
            (fleet.path / "till.txt").write_bytes(setup_file(SPVOLU="OFF", PREFIX="[STX]", SUFFIX="[ETX]"))
            shutil.copy(fleet.path / "till.txt", fleet.path / "till-1.txt")
            self.assertEqual((self.play(fleet, "--check --limit till-1", hosts=1), fleet.sends()), (1, 8))
            fleet.desks[0].tell("fault silent")
            self.assertEqual(self.play(fleet, "--limit till-1", hosts=1), -1)


class Systemd(unittest.TestCase):
    def test_the_units_are_sound_and_their_command_tells_a_difference(self):
        with Fleet(1) as fleet:
            for unit in ("orvex-diff@.service", "orvex-diff@.timer"):
                text = (FLEET / unit).read_text().replace("/usr/bin/orvexctl", PROGRAM)
                (fleet.path / unit.replace("@", "@1")).write_text(text.replace("%i", "1"))
            verified = subprocess.run(["systemd-analyze", "verify", "--man=no", *fleet.path.glob("orvex-diff*")],
                                      capture_output=True, text=True, check=False)
            self.assertEqual((verified.returncode, verified.stderr.replace("SystemCallFilter", "")), (0, ""))
            command = re.search("^ExecStart=(.*)$", (FLEET / "orvex-diff@.service").read_text(), re.M)[1]
            command = command.replace("/usr/bin/", "").replace("--port %i", f"--device {BY_ID}/usb-1")
            for volume, code in (("HIGH", 0), ("LOW", 1)):
                (fleet.path / "port1.txt").write_bytes(setup_file(SPVOLU=volume))
                self.assertEqual(fleet.bash(command.replace("/etc/orvex/port%i", "port1")).returncode, code)


class Network(unittest.TestCase):
    def test_a_port_of_a_serial_device_server_serves_at_its_rate(self):
        with socket.socket() as probe:
            probe.bind(("localhost", 0))
            port = probe.getsockname()[1]
        with Fleet(1) as fleet:
            (fleet.path / "ser2net.yaml").write_text(fleet.here(blocks("yaml")[0]).replace("4001", str(port)))
            server = subprocess.Popen(["/usr/sbin/ser2net", "-n", "-d", "-c", fleet.path / "ser2net.yaml"],
                                      stderr=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
            fleet.stack.callback(server.wait)
            fleet.stack.callback(server.terminate)
            line = re.search("^    (socat .*)$", (SOURCE / "docs/fleet.md").read_text(), re.M)[1]
            client = subprocess.Popen([*line.replace("4001", str(port)).split()[:-1],
                                       f"tcp:localhost:{port},retry=50,interval=0.1"], cwd=fleet.path)
            fleet.stack.callback(client.wait)
            fleet.stack.callback(client.terminate)
            end = time.monotonic() + PATIENCE
            shown = fleet.bash(blocks("sh")[4])
            while shown.returncode != 0 and time.monotonic() < end:
                time.sleep(0.2)  # until server and client have met
                shown = fleet.bash(blocks("sh")[4])
            self.assertEqual((shown.returncode, shown.stdout.split()[:2]), (0, ["SPVOLU", "HIGH"]), shown.stdout)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
