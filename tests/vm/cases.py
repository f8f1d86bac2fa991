"""cases.py FOLDER KERNEL INITRD: boots the virtual machine and tries the library on its three real drivers."""

import functools
import os
import sys
import unittest

from machine import FTDI, PL011, RTS, UART, Machine
from reader import KINDS, answer_to, frame

OK = "0"
NO_PORT, TIMEOUT, NOT_CONNECTED, TRANSMIT = "-1000", "-1030", "-1041", "-1037"
FLUSH_INPUT, FLUSH_OUTPUT, CHANGE, READ = "-1034", "-1035", "-1036", "-1040"
DEVICES = [(PL011,), (UART,), (FTDI,)]
RATES = (4800, 9600, 19200, 38400, 57600, 115200, 230400, 460800, 921600)
FRAMES = [f"{data}{parity}{stop}" for data in (5, 6, 7, 8) for parity in "NEO" for stop in (1, 2)]
# What each driver really programs: the 16550A stays as it is above 115200, the adapter has no frame of 5 or 6 bits.
KEPT = {PL011: (RATES, FRAMES), UART: (RATES[:6], FRAMES), FTDI: (RATES, [kept for kept in FRAMES if kept > "7"])}
ROUNDS = [(number,) for number in range(20)]
PROCESSOR_LIMIT = 1000  # ms; a loop would spend the whole TIMEOUT of 99 s
LOOP, OUT2 = 0x8000, 0x4000  # TIOCM bits


def each(rows):
    """Makes a test of the method for every row."""
    def mark(method):
        method.rows = rows
        return method
    return mark


class DriverTest(unittest.TestCase):
    machine = None

    def __init_subclass__(cls):
        for name, method in list(vars(cls).items()):
            for row in getattr(method, "rows", ()):
                parts = [os.path.basename(str(part)) for part in row]
                setattr(cls, "_".join(["test", name, *parts]), functools.partialmethod(method, *row))

    def ask(self, *words):
        return self.machine.ask(*words)

    def expect(self, answer, *words):
        self.assertEqual(answer, self.ask(*words), " ".join(map(str, words)))

    def open(self, device, **settings):
        port = self.ask("open", device)
        self.assertGreater(int(port), 0, device)
        self.addCleanup(self.ask, "close", port)
        for key, value in {"TXDELAYTIME": 0, **settings}.items():
            self.expect(OK, "set", port, key, value)
        return port

    def exchange(self, device, port, *kinds, payload=bytes([0x52, 1, 2, 3])):
        self.expect(OK, "receiver", device)
        for kind in kinds or KINDS:
            request = frame(kind, payload)
            answer = answer_to(request)
            self.expect(str(len(request)), "transmit", port, request.hex())
            self.expect(f"{len(answer)} {answer.hex()}", "receive", port)

    def programmed(self, device):
        facts = self.machine.hardware[device]
        return facts["baud"][-1], facts["frame"][-1]


class Line(DriverTest):
    def check(self, device, baud, line_frame, real_baud, real_frame):
        port = self.open(device, BAUD=baud, FRAME=line_frame)
        programmed_baud, programmed_frame = self.programmed(device)
        self.assertAlmostEqual(programmed_baud, real_baud, delta=real_baud // 100)
        self.assertEqual(programmed_frame, real_frame)
        self.expect(f"0 {baud}", "get", port, "BAUD")
        self.expect(f"0 {line_frame}", "get", port, "FRAME")
        self.exchange(device, port)

    @each([(device, baud, kept) for device, (rates, frames) in KEPT.items() for baud in rates for kept in frames])
    def exchanges(self, device, baud, kept):
        self.check(device, baud, kept, baud, kept)

    @each([(UART, baud, "8E1", 9600, "8E1") for baud in RATES[6:]] + [(FTDI, 9600, "5N1", 9600, "8N1")])
    def driverAnswersSuccessButKeepsAnother(self, *row):
        self.check(*row)

    @each(DEVICES)
    def longFrames(self, device):
        port = self.open(device, BAUD=115200)
        self.exchange(device, port, "advanced", "enhanced", payload=bytes(range(250)) * 12)
        self.exchange(device, port, "standard", payload=bytes(range(250)))

    @each(DEVICES)
    def silenceEndsWithoutSpinning(self, device):
        port = self.open(device, TIMEOUT=300)
        damaged = bytearray(frame("standard", b"\x52\0"))
        damaged[-1] ^= 1
        self.expect(str(len(damaged)), "transmit", port, damaged.hex())
        self.expect(OK, "start", "receive", port)
        result, milliseconds, reads = self.ask("end").replace("|", "").split()
        self.assertEqual((TIMEOUT, "0"), (result, reads))
        self.assertLess(int(milliseconds), 150)

    @each(DEVICES)
    def closingRestoresTheSettings(self, device):
        before = self.ask("settings", device)
        port = self.open(device, BAUD=38400, FRAME="7O2")
        self.assertNotEqual(before, self.ask("settings", device))
        self.expect(OK, "close", port)
        self.expect(before, "settings", device)

    @each(DEVICES)
    def secondOpenIsRefusedToAPlainUser(self, device):
        self.expect("0 0", "plainuser", device)
        port = self.open(device)
        self.expect(f"EBUSY {NO_PORT}", "plainuser", device)
        self.expect(OK, "close", port)
        self.expect("0 0", "plainuser", device)

    @each([("/dev/ttyS3", "EIO"), ("/dev/null", "ENOTTY"), ("/dev/ttyUSB9", "EBADF")])
    def failingDeviceDoesNotOpen(self, device, failure):
        descriptors = self.ask("descriptors")
        self.expect(failure, "settings", device)
        self.expect(NO_PORT, "open", device)
        self.expect(descriptors, "descriptors")


class Rs485(DriverTest):
    @each([("0 0 0",), ("5 7 9",), ("3 0 1",)])
    def isSetAndRestoredOnClose(self, before):
        self.expect(OK, "setrs485", PL011, before)
        self.addCleanup(self.ask, "setrs485", PL011, "0 0 0")
        port = self.open(PL011, BAUD=115200, OPMODE="RS485")
        self.expect("3 5 5", "rs485", PL011)
        control = self.machine.hardware[PL011]["control"]
        control.clear()
        self.exchange(PL011, port)
        self.assertEqual({0, RTS}, {value & RTS for value in control}, "RTS switches around a transmission")
        self.expect(CHANGE, "command", port, "SETRTS", "ON")
        self.expect("0 RS485", "get", port, "OPMODE")
        self.expect(OK, "set", port, "OPMODE", "RS232")
        self.expect("0 0 0", "rs485", PL011)
        self.expect(OK, "set", port, "OPMODE", "RS485")
        self.expect(OK, "close", port)
        self.expect(before, "rs485", PL011)

    @each([(UART,), (FTDI,)])
    def isRefusedByOtherDrivers(self, device):
        port = self.open(device, BAUD=115200)
        self.expect(CHANGE, "set", port, "OPMODE", "RS485")
        self.expect("0 RS485", "get", port, "OPMODE")
        self.expect(CHANGE, "command", port, "SETDTR", "ON")
        self.expect(CHANGE, "command", port, "SETRTS", "ON")
        self.expect("0 ON", "command", port, "GETDTR", "-")
        self.exchange(device, port)


class ModemLines(DriverTest):
    """The 16550A in loopback: RTS comes back as CTS, DTR as DSR, its second output as DCD, data as itself."""

    def setUp(self):
        self.port = self.open(UART, BAUD=115200)
        self.expect(OK, "receiver", UART)
        self.expect(OK, "modembits", UART, "on", LOOP)
        self.addCleanup(self.ask, "modembits", UART, "off", LOOP)
        self.addCleanup(self.ask, "modembits", UART, "on", OUT2)

    @each([("SETRTS", "GETRTS", "GETCTS"), ("SETDTR", "GETDTR", "GETDSR"), ("setrts", "getrts", "GetCts")])
    def outputComesBack(self, switch, output, looped):
        for value, state in (("ON", "ON"), ("OFF", "OFF"), ("on", "ON"), ("ONE", "OFF"), ("On", "ON"), ("1", "OFF")):
            self.expect(f"0 {value}", "command", self.port, switch, value)
            self.expect(f"0 {state}", "command", self.port, output, "-")
            self.expect(f"0 {state}", "command", self.port, looped, "-")

    @each([("off", "OFF"), ("on", "ON")])
    def carrierIsRead(self, output, state):
        self.expect(OK, "modembits", UART, output, OUT2)
        self.expect(f"0 {state}", "command", self.port, "GETDCD", "-")

    @each([("FLUSHINQ", TIMEOUT), ("FLUSHOUTQ", "6 06ff52000f6e")])
    def flushDiscardsWhatWaits(self, command, received):
        request = frame("standard", b"\x52\0")
        self.expect(OK, "set", self.port, "TIMEOUT", 0)
        self.expect(str(len(request)), "transmit", self.port, request.hex())
        self.expect(str(len(request)), "queued", UART, len(request))
        self.expect("0 -", "command", self.port, command, "-")
        self.expect(received, "receive", self.port)


class Unplugged(DriverTest):
    """The adapter is pulled out at every stage; then it is plugged in and a new port works."""

    def setUp(self):
        self.reader = self.machine.readers[FTDI]
        self.reader.answering = True
        self.descriptors = self.ask("descriptors")
        self.addCleanup(self.ensurePlugged)
        self.port = self.open(FTDI, BAUD=115200, TIMEOUT=99999)

    def ensurePlugged(self):
        if not self.machine.plugged:
            self.ask("absent", FTDI)
            self.machine.plug()
            self.ask("present", FTDI)

    def expectQuietEnd(self, result, most_reads):
        answer, milliseconds, reads = self.ask("end").replace("|", "").split()
        self.assertEqual(result, answer)
        self.assertLess(int(milliseconds), PROCESSOR_LIMIT)
        self.assertLessEqual(int(reads), most_reads)

    def expectClosedPort(self):
        self.expect(NOT_CONNECTED, "receive", self.port)
        self.expect(NOT_CONNECTED, "transmit", self.port, "06ff52000f6e")
        self.expect(f"0 {NOT_CONNECTED}", "get", self.port, "ERRCODE")
        self.expect(OK, "close", self.port)
        self.expectToWorkAgain()

    def expectToWorkAgain(self):
        self.expect(self.descriptors, "descriptors")
        self.ensurePlugged()
        self.reader.answering = True
        port = self.open(FTDI, BAUD=115200)
        self.exchange(FTDI, port)
        self.expect(OK, "close", port)

    @each(ROUNDS)
    def duringReceive(self, number):
        pieces = number % 2  # nothing has arrived yet, or the beginning of a frame
        if pieces:
            self.reader.send(bytes([20, 255, 0x52]))
            self.ask("queued", FTDI, 3)
        self.expect(OK, "start", "receive", self.port)
        self.expect(OK, "blocked", "select")
        self.machine.unplug()
        self.expectQuietEnd(NOT_CONNECTED, pieces + 1)
        self.expectClosedPort()

    @each(ROUNDS)
    def duringTransmit(self, number):
        self.reader.answering = False
        self.reader.count_anew()
        self.expect(OK, "start", "flood", self.port, 65536)
        self.reader.wait_received(10000 * (number + 1))
        self.machine.unplug()
        self.assertEqual(TRANSMIT, self.ask("end").split()[0])
        self.expectClosedPort()

    @each(ROUNDS)
    def betweenCalls(self, number):
        self.exchange(FTDI, self.port, "standard")
        self.machine.unplug()
        self.ask("absent", FTDI)
        for result, *words in (
                (CHANGE, "set", self.port, "BAUD", "9600"), (CHANGE, "set", self.port, "FRAME", "8N1"),
                (CHANGE, "set", self.port, "OPMODE", "RS232"), (OK, "set", self.port, "BUSADDRESS", "7"),
                (FLUSH_INPUT, "command", self.port, "FLUSHINQ", "-"), (READ, "command", self.port, "GETCTS", "-"),
                (FLUSH_OUTPUT, "command", self.port, "FLUSHOUTQ", "-"), (CHANGE, "command", self.port, "SETDTR", "ON")):
            self.assertEqual(result, self.ask(*words).split()[0], words)
        if number % 2:
            self.expect(TRANSMIT, "transmit", self.port, "06ff52000f6e")
        else:
            self.expect(NOT_CONNECTED, "receive", self.port)
        self.expectClosedPort()

    @each(ROUNDS)
    def duringClose(self, number):
        """Held before the settings are restored, before RS485 is, and before the descriptor is closed."""
        self.expect(OK, "gate", ("tcsetattr", "ioctl", "close")[number % 3])
        self.expect(OK, "start", "close", self.port)
        self.expect(OK, "blocked", "gate")
        self.machine.unplug()
        self.ask("absent", FTDI)
        self.expect(OK, "opengate")
        self.expectQuietEnd(OK, 1)
        self.expectToWorkAgain()

    def test_pluggedInBeforeThePortIsClosed(self):
        """The dead port still holds the name; the adapter comes back under the next one and works there."""
        self.machine.unplug()
        self.ask("absent", FTDI)
        self.machine.plug()
        self.ask("present", "/dev/ttyUSB1")
        port = self.open("/dev/ttyUSB1", BAUD=115200)
        self.exchange("/dev/ttyUSB1", port)
        self.expect(NOT_CONNECTED, "receive", self.port)
        self.expect(OK, "close", port)
        self.expect(OK, "close", self.port)
        self.machine.unplug()
        self.ask("absent", "/dev/ttyUSB1")
        self.expectToWorkAgain()


def main(folder, kernel, initrd):
    try:
        DriverTest.machine = Machine(folder, kernel, initrd)
        suite = unittest.defaultTestLoader.loadTestsFromModule(sys.modules[__name__])
        result = unittest.TextTestRunner(descriptions=False).run(suite)
        DriverTest.machine.stop()
    finally:
        with open(f"{folder}/console.log", encoding="utf-8", errors="replace") as console:
            sys.stderr.write(console.read())
    failed = len(result.failures) + len(result.errors)
    print(f"vm: {result.testsRun} cases, {DriverTest.machine.unplugged} faults, {failed} failures")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
