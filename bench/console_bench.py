#!/usr/bin/python3
"""Measures orvexctl: its start, a setup of 32 scanners beside that of one, and what a process takes.

usage: console_bench.py ORVEXCTL SIMULATOR
"""
import contextlib
import os
import pathlib
import statistics
import subprocess
import sys
import tempfile
import time
import tty

PROGRAM, SIMULATOR = map(os.path.abspath, sys.argv[1:3])
STARTS = 21
RUNS = 5
SCANNERS = 32


def row(figure, measured, limit="", verdict=""):
    print(f"| {figure} | {measured} | {limit} | {verdict} |")


def first_byte():
    """Milliseconds from the start of the process to the first byte on the line."""
    master, slave = os.openpty()
    tty.setraw(slave)
    begun = time.monotonic()
    process = subprocess.Popen([PROGRAM, "--device", os.ttyname(slave), "--settings", "9600,N,8,1", "find"],
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.read(master, 1)
    span = 1000 * (time.monotonic() - begun)
    process.terminate()
    process.wait()
    os.close(master)
    os.close(slave)
    return span


@contextlib.contextmanager
def scanners(folder, count):
    """Links of paced scanners at 9600 Bps."""
    links = [folder / f"scanner-{i}" for i in range(count)]
    running = [subprocess.Popen([SIMULATOR, "--paced", link], stdin=subprocess.PIPE, stdout=subprocess.DEVNULL)
               for link in links]
    while not all(link.is_symlink() for link in links):
        time.sleep(0.01)
    yield links
    for process in running:
        process.terminate()
        process.wait()


def set_all(links, volume):
    """Seconds that parallel takes to change one value of each."""
    begun = time.monotonic()
    subprocess.run(["parallel", "--jobs", "0", PROGRAM, "--quiet", "--device", "{}", "set", f"SPVOLU={volume}",
                    ":::", *links], check=True, stdout=subprocess.DEVNULL)
    return time.monotonic() - begun


def one_process(link, volume):
    """Seconds, KiB of memory at most and milliseconds of processor time of one process."""
    begun = time.monotonic()
    process = subprocess.Popen([PROGRAM, "--quiet", "--device", link, "set", f"SPVOLU={volume}"],
                               stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(process.pid, 0)
    assert status == 0
    return time.monotonic() - begun, usage.ru_maxrss, 1000 * (usage.ru_utime + usage.ru_stime)


def main():
    spans = [first_byte() for _ in range(STARTS)]
    start = statistics.median(spans)
    row("orvexctl: start of the process to the first byte", f"{start:.1f} ms ({min(spans):.1f} to {max(spans):.1f})",
        "30 ms", "kept" if start <= 30 else "MISSED")
    with tempfile.TemporaryDirectory() as name:
        with scanners(pathlib.Path(name), SCANNERS) as links:
            volumes = ["LOW", "OFF"] * RUNS
            alone = [one_process(links[0], volume) for volume in volumes[:RUNS]]
            one, memory, processor = (statistics.median(column) for column in zip(*alone))
            single = statistics.median(set_all(links[:1], volume) for volume in ["HIGH", *volumes[:RUNS - 1]])
            many = statistics.median(set_all(links, volume) for volume in ["MEDIUM", *volumes[:RUNS - 1]])
    row("orvexctl: set of one value at 9600 Bps", f"{one:.3f} s")
    row("orvexctl: the same by parallel", f"{single:.3f} s")
    row(f"orvexctl: the same of {SCANNERS} scanners by parallel", f"{many:.3f} s, {many / single:.2f} times")
    row("orvexctl: memory of one process", f"{memory / 1024:.1f} MiB")
    row("orvexctl: processor time of one process", f"{processor:.0f} ms")


if __name__ == "__main__":
    main()
