"""Runs the zucom program the way a user does. Every wait is for an event; the limit below only ends a hang."""
import contextlib
import fcntl
import json
import os
import pty
import select
import shlex
import signal
import struct
import subprocess
import tempfile
import termios
import time
import unittest

BUILD = os.environ.get("ZUCOM_BUILD", "build/gcc")
EMULATOR = os.environ.get("ZUCOM_EMULATOR", "")
COMMAND = shlex.split(EMULATOR) + [os.path.join(BUILD, "tools", "zucom")]
HANG = 300  # seconds


def run(*arguments, text=None, env=None):
    """One run to its end: .returncode, .stdout, .stderr."""
    return subprocess.run([*COMMAND, *arguments], input=text, capture_output=True, text=True, timeout=HANG,
                          env={**os.environ, **(env or {})})


def json_of(result):
    return json.loads(result.stdout)


def crc(data):
    """CRC-16/MCRF4XX, low byte first."""
    value = 0xFFFF
    for byte in data:
        value ^= byte
        for _ in range(8):
            value = value >> 1 ^ (0x8408 if value & 1 else 0)
    return struct.pack("<H", value)


def frame(payload, address=255, kind="standard", direction=1):
    """A frame around a payload in hexadecimal, built independently of the library."""
    payload = bytes.fromhex(payload)
    head = {"standard": lambda: bytes([len(payload) + 4, address]),
            "advanced": lambda: struct.pack(">BHB", 2, len(payload) + 6, address),
            "enhanced": lambda: struct.pack(">BHBBB", 3, len(payload) + 8, 0, direction, address)}[kind]()
    return head + payload + crc(head + payload)


class Simulator:
    """zucom sim in the background; .device is open for business once the object exists."""

    def __init__(self, *options):
        self.process = subprocess.Popen([*COMMAND, "sim", *options], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                        text=True)
        self.device = self.line()

    def line(self):
        """The next line that it prints; waits for it."""
        return self.process.stdout.readline().rstrip("\n")

    def stop(self, how=signal.SIGTERM):
        """Exit code."""
        self.process.send_signal(how)
        self.rest, self.errors = self.process.stdout.read(), self.process.stderr.read()
        self.process.stdout.close()
        self.process.stderr.close()
        return self.process.wait(timeout=HANG)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.returncode is None:
            self.stop()


class Line:
    """The device of a simulator opened by hand, as a program without the library would."""

    def __init__(self, device, speed=termios.B9600, stop_bits=1):
        self.fd = os.open(device, os.O_RDWR | os.O_NOCTTY)
        settings = termios.tcgetattr(self.fd)
        settings[2] = settings[2] & ~termios.CSTOPB | (termios.CSTOPB if stop_bits == 2 else 0)
        settings[4] = settings[5] = speed
        with contextlib.suppress(termios.error):  # a pseudo-terminal refuses what changes nothing
            termios.tcsetattr(self.fd, termios.TCSANOW, settings)

    def send(self, data):
        os.write(self.fd, data)

    def read(self, count):
        """That many bytes, or fewer when the other side hangs up."""
        data = b""
        while len(data) < count and select.select([self.fd], [], [], HANG)[0]:
            try:
                piece = os.read(self.fd, count - len(data))
            except OSError:
                piece = b""
            if not piece:
                break
            data += piece
        return data

    def ask(self, request, count):
        self.send(request)
        return self.read(count)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.close(self.fd)


class Terminal:
    """A run of the program on a terminal of its own, to be interrupted from its keyboard."""

    def __init__(self, *arguments, env=None):
        self.fd, inner = pty.openpty()
        fcntl.ioctl(inner, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 100, 0, 0))
        self.process = subprocess.Popen([*COMMAND, *arguments], stdin=inner, stdout=inner, stderr=inner,
                                        start_new_session=True, preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0),
                                        env={**os.environ, **(env or {})})
        os.close(inner)
        self.text = ""

    def wait_for(self, text):
        while text not in self.text and self.more():
            pass
        return text in self.text

    def more(self):
        """Reads on; False at the end."""
        try:
            piece = os.read(self.fd, 65536)
        except OSError:
            piece = b""
        self.text += piece.decode(errors="replace")
        return bool(piece)

    def press(self, key):
        os.write(self.fd, key)

    def wait(self):
        """Exit code, once everything that it prints is in .text."""
        while self.more():
            pass
        return self.process.wait(timeout=HANG)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()
        os.close(self.fd)


@contextlib.contextmanager
def file_of(text):
    """The path of a file with this content."""
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "file")
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        yield path


class UsageTest(unittest.TestCase):
    """What holds for every sub-command; a test file calls it with the usages that are wrong for its own."""

    def check_usage(self, command, wrong):
        help_run = run(command, "--help")
        self.assertEqual((0, ""), (help_run.returncode, help_run.stderr))
        self.assertIn(f"zucom {command}", help_run.stdout)
        for arguments, complaint in wrong:
            with self.subTest(arguments=arguments):
                result = run(command, *arguments, text="")
                self.assertEqual((2, ""), (result.returncode, result.stdout))
                self.assertIn(complaint, result.stderr)
