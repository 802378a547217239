"""A simulated scanner on a pseudo-terminal, and orvexctl at it.

The first words on the command line are ORVEXCTL SIMULATOR SCHEMA.
"""
import json
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time

import jsonschema

PROGRAM, SIMULATOR, SCHEMA = map(os.path.abspath, sys.argv[1:4])
DEFS = json.loads(pathlib.Path(SCHEMA).read_text())
PATIENCE = 60  # seconds, on a machine that is busy with other things

# Where tests run in the background it may be ignored, and programs take that over.
signal.signal(signal.SIGINT, signal.default_int_handler)


def image(revision, size=4096):
    head = bytearray(os.urandom(size))
    head[80:87] = revision.ljust(7).encode()
    return bytes(head)


def setup_file(**values):
    return b"".join(b"\x01<%s=%s>\x04" % (name.encode(), value.encode("latin-1"))
                    for name, value in values.items())


class Desk:
    """A simulated scanner, and a folder with files."""

    def __init__(self, *options):
        self.folder = tempfile.TemporaryDirectory()
        self.path = pathlib.Path(self.folder.name)
        self.link = self.path / "scanner"
        self.device = self.link  # as the program is told
        self.log = self.path / "log"
        self.simulator = None
        if options != ("none",):
            with self.log.open("wb") as log:
                self.simulator = subprocess.Popen([SIMULATOR, *options, self.link], stdin=subprocess.PIPE, stdout=log)
            self.wait(self.link.is_symlink)
        for name, content in {"low": setup_file(SPVOLU="LOW", RSDELY="000"), "text": b"no setup",
                              "slip": setup_file(SPVOLU="Low", RSDELY="000"),
                              "new": image("4.00"), "old": image("1.00"), "short": b"x" * 108,
                              "odd": image("none"), "big": image("4.00", 262144)}.items():
            (self.path / name).write_bytes(content)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.simulator:
            self.simulator.stdin.close()
            self.simulator.terminate()
            self.simulator.wait()
        self.folder.cleanup()

    def wait(self, condition):
        end = time.monotonic() + PATIENCE
        while not condition():
            if time.monotonic() > end:
                raise TimeoutError
            time.sleep(0.01)

    def tell(self, command):
        self.simulator.stdin.write(command.encode() + b"\n")
        self.simulator.stdin.flush()

    def heard(self, text):
        return text in self.log.read_text(errors="replace")

    def start(self, *words, device=True, **options):
        place = ["--device", self.device] if device else []
        return subprocess.Popen([PROGRAM, *place, *words], cwd=self.path, stdin=subprocess.DEVNULL,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, **options)

    def run(self, *words, **options):
        process = self.start(*words, **options)
        out, err = process.communicate(timeout=PATIENCE)
        return process.returncode, out, err

    def json(self, *words, **options):
        """Exit code and document, which has passed its schema, with "DEVICE" for the device."""
        code, out, _ = self.run("--json", *words, **options)
        document = json.loads(out)
        command = next((word for word in words if word in DEFS["$defs"]), "error")
        name = "error" if "error" in document else command
        jsonschema.Draft202012Validator({"$ref": f"#/$defs/{name}", "$defs": DEFS["$defs"]}).validate(document)
        jsonschema.Draft202012Validator(DEFS).validate(document)
        if document.get("device"):
            device = os.path.realpath(self.link) if self.device == self.link else self.device
            assert document["device"] == device, document
            document["device"] = "DEVICE"
        return code, document
