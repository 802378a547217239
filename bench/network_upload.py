#!/usr/bin/python3
"""Uploads to a simulated scanner behind ser2net, through a relay with latency: by orvexctl over RFC 2217,
and by sz over plain TCP to the same server. Prints rows of a table.

usage: network_upload.py ORVEXCTL SIMULATOR SCHEMA [MILLISECONDS_EACH_WAY...]
"""
import concurrent.futures
import pathlib
import re
import socket
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "testing/console"))
from network import NetworkDesk, Relay, free_port  # noqa: E402

SIZE = 262144
LINE = 11520  # bytes a second at 115200 Bps
LATENCIES = [0, 20, 50, 100]
SCANNER = ("--rate", "115200", "--paced")


def by_orvexctl(late):
    with NetworkDesk(*SCANNER, late=late) as desk:
        code, out, err = desk.run("--settings", "115200,N,8,1", "load", "big")
    assert code == 0, err
    return float(re.search(rb"in ([0-9.]+) s", out)[1])


def by_sz(late):
    """The seconds from the start of sz to its end; the server holds the port at its rate."""
    with NetworkDesk(*SCANNER) as desk:
        desk.server.terminate()
        desk.server.wait()
        port = free_port()
        (desk.path / "ser2net.yaml").write_text(f"connection: &scanner\n  accepter: tcp,127.0.0.1,{port}\n"
                                                f"  connector: serialdev,{desk.link},115200n81,local\n")
        desk.server = subprocess.Popen(["/usr/sbin/ser2net", "-n", "-d", "-c", desk.path / "ser2net.yaml"],
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        time.sleep(1)
        relay = Relay(port, late)
        with socket.create_connection(("127.0.0.1", relay.port)) as line:
            line.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            line.sendall(b"\x01<A1CODE=Z>\x04")
            assert line.recv(1) == b"\x06"
            began = time.monotonic()
            subprocess.run(["sz", "--binary", "-q", desk.path / "big"], stdin=line, stdout=line, check=True)
            took = time.monotonic() - began
            desk.wait(lambda: desk.heard("loaded "))
        relay.close()
    return took


def main():
    latencies = [int(word) for word in sys.argv[4:]] or LATENCIES
    with concurrent.futures.ThreadPoolExecutor(len(latencies)) as pool:
        rows = [(late, pool.submit(by_orvexctl, late / 1000)) for late in latencies]
        ours = [(late, row.result()) for late, row in rows]
        others = list(pool.map(lambda late: by_sz(late / 1000), latencies))
    for (late, seconds), sz in zip(ours, others):
        print(f"| {late} ms | {seconds:.2f} | {sz:.2f} | {100 * SIZE / LINE / seconds:.1f} % |", flush=True)


if __name__ == "__main__":
    main()
