"""Servers of RFC 2217 with a simulated scanner behind them, and a relay in front that can be slow and
do wrong."""
import itertools
import os
import re
import selectors
import shutil
import signal
import socket
import subprocess
import threading
import time

from desk import Desk

IAC, SB, SE, COM_PORT = b"\xff", b"\xff\xfa\x2c", b"\xff\xf0", 44
SER2NET, SREDIRD = "/usr/sbin/ser2net", "/usr/sbin/sredird"


def missing(*programs):
    """What of these isn't installed, in words; None where all are."""
    gone = [program for program in programs if not shutil.which(program)]
    return f"left out: there is no {gone[0]}" if gone else None


PORTS = itertools.count(20000 + os.getpid() % 10000)  # no system gives these to others by itself
PORTS_LOCK = threading.Lock()


def free_port():
    with PORTS_LOCK:
        return next(port for port in PORTS if not answers(port))


def answers(port):
    with socket.socket() as probe:
        return probe.connect_ex(("127.0.0.1", port)) == 0


class Relay:
    """Passes one connection after another on to a server, each way late by so many seconds. `tamper`
    may change what passes: it gets "there" or "back" and the bytes, and gives those to go on."""

    def __init__(self, port, late=0.0, tamper=lambda _, data: data):
        self.target, self.late, self.tamper = port, late, tamper
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.port = self.listener.getsockname()[1]
        self.pair = ()
        self.over = False
        self.thread = threading.Thread(target=self.serve, daemon=True)
        self.thread.start()

    def serve(self):
        self.listener.settimeout(0.05)
        while not self.over:
            try:
                client = self.listener.accept()[0]
            except TimeoutError:
                continue
            server = socket.create_connection(("127.0.0.1", self.target))
            self.pair = (client, server)
            for end in self.pair:
                end.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            try:
                self.carry(client, server)
            except OSError:
                pass
            client.close()
            server.close()
        self.listener.close()

    def carry(self, client, server):
        under_way = []  # when it is due, for whom, what; b"" for the end
        with selectors.DefaultSelector() as selector:
            selector.register(client, selectors.EVENT_READ, ("there", server))
            selector.register(server, selectors.EVENT_READ, ("back", client))
            while not self.over:
                now = time.monotonic()
                while under_way and under_way[0][0] <= now:
                    _, target, data = under_way.pop(0)
                    if not data:
                        return
                    target.sendall(data)
                wait = min(0.05, under_way[0][0] - now) if under_way else 0.05
                for key, _ in selector.select(wait):
                    way, target = key.data
                    data = key.fileobj.recv(65536)
                    if not data:
                        selector.unregister(key.fileobj)
                    data = self.tamper(way, data) if data else data
                    if data is not None:
                        under_way.append((time.monotonic() + self.late, target, data))

    def cut(self):
        for end in self.pair:
            end.shutdown(socket.SHUT_RDWR)

    def close(self):
        self.over = True
        self.thread.join()


class NetworkDesk(Desk):
    """A simulated scanner behind a server and a relay."""

    def __init__(self, *options, server="ser2net", late=0.0, tamper=lambda _, data: data):
        super().__init__(*options)
        port = free_port()
        if server == "ser2net":
            (self.path / "ser2net.yaml").write_text(f"connection: &scanner\n  accepter: telnet(rfc2217),tcp,127.0.0.1,"
                                                    f"{port}\n  connector: serialdev,{self.link},9600n81,local\n")
            command = [SER2NET, "-n", "-d", "-c", self.path / "ser2net.yaml"]
        else:
            device = os.path.realpath(self.link)
            command = ["socat", f"TCP-LISTEN:{port},bind=127.0.0.1,reuseaddr,fork",
                       f"EXEC:{SREDIRD} 5 {device} {self.path}/lock"]
        # In a group of its own, since socat leaves the sredird of each connection behind, which heeds no other
        # signal once its port is gone.
        self.server = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                       start_new_session=True)
        self.wait(lambda: answers(port))
        self.relay = Relay(port, late, tamper)
        self.device = f"rfc2217://127.0.0.1:{self.relay.port}"

    def __exit__(self, *rest):
        self.relay.close()
        os.killpg(self.server.pid, signal.SIGKILL)
        self.server.wait()
        super().__exit__(*rest)


class Script:
    """A server that says some words to whoever connects, again and again if told to, and nothing else."""

    def __init__(self, words, again=False):
        self.words, self.again = words, again
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.device = f"rfc2217://127.0.0.1:{self.listener.getsockname()[1]}"
        threading.Thread(target=self.serve, daemon=True).start()

    def serve(self):
        try:
            while True:
                client = self.listener.accept()[0]
                threading.Thread(target=self.talk, args=(client,), daemon=True).start()
        except OSError:
            pass

    def talk(self, client):
        try:
            client.sendall(self.words)
            while self.again:
                client.sendall(self.words)
            while client.recv(4096):
                pass
        except OSError:
            pass
        client.close()

    def close(self):
        self.listener.shutdown(socket.SHUT_RDWR)
        self.listener.close()


def answer_to(command):
    """Finds the server's answers to a command of RFC 2217."""
    return re.compile(re.escape(SB + bytes([command + 100])) + b".*?" + re.escape(SE), re.S)
