"""zucom monitor: log datagrams shown as they come."""
import json
import os
import signal
import socket
import subprocess
import tempfile
import unittest

from logText import Log
from zucomProgram import COMMAND, HANG, Simulator, UsageTest, frame, run


class Monitor:
    """The program in the background; it listens once the object exists."""

    def __init__(self, *arguments):
        self.process = subprocess.Popen([*COMMAND, "monitor", *arguments], stdout=subprocess.PIPE,
                                        stderr=subprocess.PIPE, text=True)
        self.hint = ""
        while "logerror" not in self.hint and (line := self.process.stderr.readline()):
            self.hint += line

    def end(self, how=None):
        """Exit code and what was printed."""
        if how:
            self.process.send_signal(how)
        output, self.errors = self.process.communicate(timeout=HANG)
        return self.process.returncode, output

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.returncode is None:
            self.process.kill()
            self.process.communicate()


def lines():
    log = Log(header=False)
    log.transmit(1, frame("52 00"))
    log.receive(1, "/dev/ttyUSB0", 0.25)
    log.timeout(1)
    log.transmit(26, frame("52 00"))
    log.answer(26, frame("52 00", 3))
    return log.text.splitlines()


def send(family, address, texts):
    with socket.socket(family, socket.SOCK_DGRAM) as sender:
        for text in texts:
            sender.sendto(text if isinstance(text, bytes) else text.encode() + b"\n", address)


def on_internet(family, host, *arguments):
    """A monitor on a port that nobody else has, and that port."""
    while True:
        with socket.socket(family, socket.SOCK_DGRAM) as probe:
            probe.bind((host, 0))
            port = probe.getsockname()[1]
        monitor = Monitor(host, "--port", str(port), *arguments)
        if "Listening" in monitor.hint or "cannot listen" not in monitor.hint:
            return monitor, port


class MonitorTest(UsageTest):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = folder.name + "/socket"

    def shown(self, texts, *arguments):
        """What a monitor with these filters shows of some lines, up to a last one that every filter lets pass."""
        with Monitor(self.path, *arguments) as monitor:
            send(socket.AF_UNIX, self.path, texts)
            code, output = monitor.end()
        self.assertEqual(0, code, monitor.errors)
        return output.splitlines()

    def test_usage(self):
        self.check_usage("monitor", [
            (["localhost"], "localhost is neither an IPv4 nor an IPv6 address"),
            (["--port", "0"], "0"), (["--port", "65536"], "65536"), (["--kind", "loud"], "loud"),
            (["--count", "-1"], "-1"), (["--handle", "x"], "x"),
        ])

    def test_internet_addresses(self):
        for family, host in (socket.AF_INET, "127.0.0.1"), (socket.AF_INET6, "::1"):
            with self.subTest(host):
                monitor, port = on_internet(family, host, "--count", "3")
                with monitor:
                    self.assertIn(f"logudpaddr = {host}\nlogudpport = {port}\n", monitor.hint)
                    send(family, (host, port), lines())
                    self.assertEqual((0, "\n".join(lines()[:3]) + "\n"), monitor.end())

    def test_filters(self):
        everything = lines()
        for arguments, wanted in (([], everything),
                                  (["--handle", "26"], [line for line in everything if "PH=0x1a" in line]),
                                  (["--kind", "error"], [line for line in everything if " ERROR" in line]),
                                  (["--kind", "trace"], [line for line in everything if " ERROR" not in line]),
                                  (["--kind", "frames"], [line for line in everything if "g data" in line or
                                                          "d protocol" in line]),
                                  (["--text", "ttyUSB0"], [line for line in everything if "ttyUSB0" in line]),
                                  (["--handle", "1", "--kind", "frames", "--text", "Trans"], everything[:1])):
            with self.subTest(arguments):
                self.assertEqual(wanted, self.shown(everything, *arguments, "--count", str(len(wanted))))

    def test_json(self):
        *rest, other = [json.loads(line) for line in self.shown([*lines(), "what?"], "--json", "--count", "9")]
        self.assertEqual({"text": "what?"}, other)
        self.assertEqual({"time": "0000.250000", "port": 1, "function": "ZucomPort::receive", "tag": 211,
                          "error": True, "message": "ZUCOM: receive timeout"}, rest[4])

    def test_foreign_datagrams(self):
        texts = [b"", b"\n", b"\x1b[2J\xff\x00tail\n", b"x" * 100000, b"two\nlines", "end"]
        self.assertEqual(["?[2J??tail", "x" * 100000, "two", "lines", "end"],
                         [line for line in self.shown(texts, "--count", "6") if line])

    def test_stops_cleanly(self):
        for how in signal.SIGINT, signal.SIGTERM:
            with Monitor(self.path) as monitor:
                self.assertTrue(os.path.exists(self.path))
                self.assertEqual((0, ""), monitor.end(how))
            self.assertFalse(os.path.exists(self.path))

    def test_path_in_use(self):
        with Monitor(self.path) as monitor:
            second = run("monitor", self.path)
            self.assertEqual((1, ""), (second.returncode, second.stdout))
            self.assertIn("cannot listen: Address already in use", second.stderr)
            monitor.process.kill()  # leaves its socket behind
            monitor.end()
        self.assertTrue(os.path.exists(self.path))
        self.assertEqual(["again"], self.shown(["again"], "--count", "1"))
        with open(self.path, "w", encoding="utf-8") as file:
            file.write("kept")
        self.assertEqual(1, run("monitor", self.path).returncode)
        self.assertTrue(os.path.exists(self.path))
        os.unlink(self.path)

    def test_log_of_the_library(self):
        with Simulator("--address", "3") as sim, Monitor(self.path, "--kind", "frames", "--count", "6") as monitor:
            configuration = self.path + ".conf"
            with open(configuration, "w", encoding="utf-8") as file:
                file.write(monitor.hint.split("\n\n", 1)[1])
            # A full socket loses lines rather than hold the port, so the exchanges go on until enough have come.
            exchange = subprocess.Popen([*COMMAND, "exchange", sim.device, "52 00", "--address", "3", "--repeat", "0",
                                         "--baud", "115200", "--timeout", "20000"], stdout=subprocess.DEVNULL,
                                        env={**os.environ, "MIRN_LOGGER_CONGIG_FILE": configuration})
            code, output = monitor.end()
            exchange.send_signal(signal.SIGINT)
            exchange.wait(timeout=HANG)
        self.assertEqual((0, 6), (code, output.count("Transmitting data: ") + output.count("Received protocol: ")))


if __name__ == "__main__":
    unittest.main()
