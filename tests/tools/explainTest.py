"""zucom explain: what bytes and log lines mean, and what would make a broken frame right."""
import json
import os
import re
import subprocess
import tempfile
import unittest

from logText import HEADER, Log
from zucomProgram import COMMAND, HANG, UsageTest, crc, file_of, frame, run

KINDS = "standard", "advanced", "enhanced"
PAYLOAD_AT = {"standard": 2, "advanced": 4, "enhanced": 6}


def explained(*lines):
    """One JSON object for each line, by one run."""
    with file_of("\n".join(lines) + "\n") as path:
        result = run("explain", "--json", path)
    return [json.loads(line) for line in result.stdout.splitlines()]


def flip(data, bit):
    changed = bytearray(data)
    changed[bit // 8] ^= 1 << bit % 8
    return bytes(changed)


def with_length(data, kind, length):
    return bytes([length]) + data[1:] if kind == "standard" else data[:1] + length.to_bytes(2, "big") + data[3:]


class ExplainTest(UsageTest):
    def test_usage(self):
        self.check_usage("explain", [(["--colour"], "--colour")])

    def test_fields_of_right_frames(self):
        for kind in KINDS:
            for payload in "52", "52 00", "52 00 11 22 33 44 55 66 77 88 99":
                with self.subTest(kind=kind, payload=payload):
                    data = frame(payload, 7, kind)
                    [line] = explained(data.hex())
                    [read] = line["frames"]
                    bytes_of = {field["name"]: field["bytes"] for field in read["fields"]}
                    self.assertEqual((True, kind, len(data), len(data), 7, 0x52, [], []),
                                     tuple(read[key] for key in ("right", "kind", "length", "statedLength", "address",
                                                                 "command", "faults", "remedies")))
                    self.assertEqual(int.from_bytes(data[-2:], "little"), read["crcFound"])
                    self.assertEqual(read["crcExpected"], read["crcFound"])
                    self.assertEqual(data.hex(" ").upper(), " ".join(field["bytes"] for field in read["fields"]))
                    self.assertEqual("07", bytes_of["address"])
                    self.assertEqual("52", bytes_of["command"])

    def test_status_of_answers_only(self):
        log = Log()
        log.transmit(1, frame("52 07"))
        log.answer(1, frame("52 07"))
        lines = explained(log.text, frame("52 07").hex(), frame("52 07", kind="enhanced").hex(),
                          frame("52 07", kind="enhanced", direction=2).hex())
        self.assertEqual([("request", None), ("answer", 7), ("", 7), ("request", None), ("answer", 7)],
                         [(line["frames"][0]["direction"], line["frames"][0]["status"]) for line in lines])

    def test_every_way_to_write_bytes(self):
        for text in ("06FF52000F6E", "06 ff 52 00 0f 6e", "0x06,0xFF,0x52,0x00,0x0F,0x6E", "06:FF:52:00:0F:6E",
                     " 06 FF|52 00|0F 6E", "{0x06, 0xff, 0x52, 0x00, 0x0f, 0x6e};", "06-FF-52-00-0F-6E", "06\tFF5200 0F6E"):
            with self.subTest(text):
                result = run("explain", text)
                self.assertEqual((0, ""), (result.returncode, result.stderr))
                self.assertIn("standard frame, 6 bytes: right", result.stdout)
        self.assertEqual(0, run("explain", "06", "FF", "52", "00", "0F", "6E").returncode)
        self.assertEqual(0, run("explain", text="06 FF 52 00 0F 6E\n").returncode)

    def test_what_cannot_be_read(self):
        for text, complaint in (("06 FF 5", "a hexadecimal digit without a partner at column 7"),
                                ("06 FG", "a hexadecimal digit without a partner at column 4"),
                                ("6x", "a hexadecimal digit without a partner at column 1"),
                                ("06 ## 52", "holds hidden bytes"), ("0x", "'x' at column 2"), ("hello", "'h'"),
                                ("\x07", "the byte 0x07 at column 1"), ("  ", "no bytes")):
            with self.subTest(text):
                result = run("explain", text)
                self.assertEqual(1, result.returncode)
                self.assertIn(complaint, result.stdout)

    # --- what would make a broken frame right ---

    def check_remedies(self, cases):
        """Cases of broken bytes and the remedy that must be among those that are proposed."""
        lines = explained(*[data.hex(" ") for data, _ in cases])
        self.assertEqual(len(cases), len(lines))
        for (data, remedy), line in zip(cases, lines):
            with self.subTest(data=data.hex(" ")):
                self.assertEqual([False], [read["right"] for read in line["frames"]])
                self.assertIn(remedy, " / ".join(line["frames"][0]["remedies"]))

    def test_crc_bytes_swapped(self):
        self.check_remedies([(data[:-2] + data[:-3:-1], "CRC bytes are swapped: the low byte comes first, "
                              + data[-2:].hex(" ").upper()) for data in (frame("52 01 7B", 3, kind) for kind in KINDS)])

    def test_byte_missing_anywhere(self):
        cases = []
        for kind in KINDS:
            data = frame("52 01 7A 03", 9, kind)
            cases += [(data[:i] + data[i + 1:], f"a byte is missing: {data[i]:02X} at offset {i}")
                      for i in range(len(data))]
        self.check_remedies([case for case in cases if case[0][0] not in (0, 1, 4)])

    def test_byte_too_many_anywhere(self):
        cases = []
        for kind in KINDS:
            data = frame("52 01 7A 03", 9, kind)
            cases += [(data[:i] + b"\xEE" + data[i:], f"a byte is too many: EE at offset {i}")
                      for i in range(1, len(data))]
        self.check_remedies(cases)

    def test_bit_flipped_anywhere(self):
        cases = []
        for kind in KINDS:
            data = frame("52 01 7A 03", 9, kind)
            length_at = (0,) if kind == "standard" else (0, 1, 2)
            cases += [(flip(data, bit), f"bit {bit % 8} is flipped: the byte at offset {bit // 8} must be "
                       f"{data[bit // 8]:02X}") for bit in range(len(data) * 8) if bit // 8 not in length_at]
        self.check_remedies(cases)

    def test_wrong_length(self):
        cases = []
        for kind in KINDS:
            data = frame("52 01 7A 03", 9, kind)
            field = data[:1] if kind == "standard" else data[1:3]
            for length in len(data) - 3, len(data) + 1, 200:
                wrong = with_length(data, kind, length)
                cases.append((wrong, f"the length field is wrong: with {field.hex(' ').upper()} everything fits"))
                sent = wrong[:-2] + crc(wrong[:-2])
                cases.append((sent, "the sender wrote a wrong length (its CRC fits, so nothing was lost on the line): "
                              f"the length field must be {field.hex(' ').upper()}, the CRC then "
                              f"{data[-2:].hex(' ').upper()}"))
        self.check_remedies(cases)

    def test_other_faults(self):
        data = frame("52 01 7A 03", 9)
        self.check_remedies([
            (data[:-2], f"the CRC may be missing: {data[-2:].hex(' ').upper()} at the end"),
            (data[:4], "4 bytes more must come"),
            (data[:-2] + b"\x12\x34", f"when all other bytes are right, the CRC must be {data[-2:].hex(' ').upper()}"),
        ])

    def test_several_frames_and_noise(self):
        first, second = frame("52", 1), frame("52 00", 1)
        for data, right in ((first + second, [True, True]), (b"\x00" + first, [False, True]),
                            (first + b"\x0D\x0A" + second, [True, False, True]), (first + b"\x00", [True, False])):
            with self.subTest(data.hex(" ")):
                [line] = explained(data.hex())
                self.assertEqual(right, [read["right"] for read in line["frames"]])
                noise = [read for read in line["frames"] if not read["right"]]
                self.assertTrue(all("only right frames would be left" in read["faults"][-1] for read in noise))

    # --- secrets ---

    def test_secrets_are_never_shown(self):
        first_secret = (("A0", 1), ("A1", 2), ("A2", 3), ("A4", 3), ("AD", 4), ("A3", 5), ("B2 B0", 5), ("B2 00 08", 5))
        for command, first in first_secret:
            head = bytes.fromhex(command)
            payload = head + bytes(max(0, first - len(head))) + bytes([0xC5, 0xC6, 0xC7, 0xC8])
            payload = payload[:first] + bytes([0xC5, 0xC6, 0xC7, 0xC8])
            for kind in KINDS:
                data = frame(payload.hex(), 3, kind)
                cut = data[:-4]
                lost = data[:-3] + data[-2:]
                wrong = flip(data, 8 * (PAYLOAD_AT[kind] + first))
                for case in data, cut, lost, wrong:
                    with self.subTest(command=command, data=case.hex(" ")):
                        shown = run("explain", case.hex()).stdout + run("explain", "--json", case.hex()).stdout
                        self.assertIn("##", shown)
                        shown = shown.replace(data[-2:].hex(" ").upper(), "")  # a check sum is no secret
                        shown = re.sub("CRC must be .. ..|CRC then .. ..|does not fit: .. .. expected", "", shown)
                        self.assertIsNone(re.search(r"\bC[4-8]\b", shown), shown)
        self.assertIn("│   A2    │   00   │ 00 ## ## ## ## │",
                      run("explain", frame("A2 00 00 C5 C6 C7 C8").hex()).stdout)

    # --- logs ---

    def test_log_line(self):
        log = Log(absolute=True, header=False)
        log.transmit(26, frame("52 00", 3))
        result = run("explain", log.text.splitlines()[0])
        self.assertEqual((0, ""), (result.returncode, result.stderr))
        self.assertIn("PH=0x1a at 2026.06.01-23.59.50.000000, ZucomPort::transmit: standard request, 6 bytes: right",
                      result.stdout)
        nothing = run("explain", log.text.splitlines()[1])
        self.assertEqual((1, ""), (nothing.returncode, nothing.stdout))
        self.assertIn("neither a frame nor an error", nothing.stderr)

    def test_error_line_is_explained(self):
        log = Log(header=False)
        log.timeout(1)
        result = run("explain", log.text.strip())
        self.assertEqual(1, result.returncode)
        self.assertIn("ZUCOM: receive timeout (-1030)", result.stdout)
        self.assertIn("zucom scan DEVICE", result.stdout)

    def test_whole_log(self):
        log = Log()
        log.open(1, "/dev/ttyUSB0")
        for _ in range(3):
            log.transmit(1, frame("52 00"))
            log.receive(1, "/dev/ttyUSB0", 0.01)
            log.answer(1, frame("52 00 01", 3))
        log.transmit(1, frame("52 00")[:-1])
        log.receive(1, "/dev/ttyUSB0", 0.25)
        log.timeout(1)
        log.close(1, "/dev/ttyUSB0")
        with file_of(log.text) as path:
            whole = run("explain", path)
            broken = run("explain", "--broken", path)
        self.assertEqual(1, whole.returncode)
        self.assertEqual("6 right, 1 broken, 1 failure or unreadable line, 20 other lines", whole.stdout.splitlines()[-1])
        self.assertEqual(6, whole.stdout.count(": right\n"))
        self.assertEqual(0, broken.stdout.count(": right\n"))
        self.assertIn("line 22, PH=0x1 at 0000.030000, ZucomPort::transmit: standard request, 5 bytes: BROKEN",
                      broken.stdout)
        with file_of(log.text.split("Transmitting data: 06 ff 52 00 0f \n")[0].rsplit("\n", 1)[0]) as path:
            self.assertEqual(0, run("explain", path).returncode)

    def test_no_such_file(self):
        result = run("explain", "/nowhere/port.log")
        self.assertEqual(1, result.returncode)
        self.assertIn("no hexadecimal bytes: '/' at column 1", result.stdout)

    # --- hostile input ---

    def test_hostile_input(self):
        line = Log(header=False)
        line.transmit(1, frame("52 00"))
        texts = [b"\x00\xff\x80" * 5000, b"\n" * 100000, line.text.encode()[:40], b"06 FF " * 50000,
                 HEADER.encode() * 3, b" :: " * 4000, b"\xff" * 70000 + b"\n" + line.text.encode(),
                 b"0001.000000 :: ZUCOM PH=0xffffffffff TID=1 x:1 :: Transmitting data: ",
                 b"9999999999.000000 :: ZUCOM PH=0x1 TID=1 x:99999999 :: y", b"020000FF5200" * 2000, b"03FFFF" * 5000]
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "file")
            for text in texts:
                with self.subTest(text[:30]):
                    with open(path, "wb") as file:
                        file.write(text)
                    for options in [], ["--json"]:
                        result = subprocess.run([*COMMAND, "explain", path, *options], capture_output=True, timeout=HANG)
                        self.assertIn(result.returncode, (0, 1), result.stderr)
                        result.stdout.decode()  # is UTF-8 whatever came in

    def test_line_of_a_gibibyte(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "file")
            with open(path, "wb") as file:
                file.truncate(1 << 30)  # zeros without a line feed
            process = subprocess.Popen([*COMMAND, "explain", path], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
            errors = process.stderr.read()
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = os.waitstatus_to_exitcode(status)
            process.stderr.close()
        self.assertEqual(1, process.returncode, errors)
        self.assertIn(b"1 lines of more than 1 MiB were cut", errors)
        self.assertLess(usage.ru_maxrss, 512 * 1024)  # KiB, with room for sanitizers and emulation


if __name__ == "__main__":
    unittest.main()
