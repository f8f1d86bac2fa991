"""zucom exchange: frames to a reader, its answers shown."""
import json
import termios
import unittest

from zucomProgram import Line, Simulator, Terminal, UsageTest, file_of, frame, json_of, run

PATIENT = ["--timeout", "20000"]  # where an answer is sure to come, however busy the machine


def text_of(data, payload_at):
    """A frame as the library prints it."""
    digits = data.hex(" ").upper().split()
    return " ".join(digits[:payload_at]) + "|" + " ".join(digits[payload_at:-2]) + "|" + " ".join(digits[-2:])


class ExchangeTest(UsageTest):
    def test_usage(self):
        self.check_usage("exchange", [
            ([], "device is required"),
            (["DEVICE", "5"], "no payload in hexadecimal: 5"),
            (["DEVICE", "52 0G"], "no payload in hexadecimal: 52 0G"),
            (["DEVICE", ""], "no payload in hexadecimal"),
            (["DEVICE", "52", "--baud", "1200"], "1200"),
            (["DEVICE", "52", "--address", "256"], "256"),
            (["DEVICE", "52", "--kind", "modern"], "modern"),
            (["DEVICE", "52", "--mode", "RS422"], "RS422"),
            (["DEVICE", "52", "--timeout", "100000"], "100000"),
        ])
        for arguments, complaint in (["52", "--frame", "9N1"], "FRAME 9N1: ZUCOM: parameter out of range (-1051)"), (
                ["00" * 252], "252 bytes does not fit"):
            with Simulator() as sim:
                self.check_usage("exchange", [([sim.device, *arguments], complaint)])

    def test_device_that_does_not_open(self):
        for device in "/nowhere", "/dev/null":
            result = run("exchange", device, "52")
            self.assertEqual((1, ""), (result.returncode, result.stdout))
            self.assertIn(device + " does not open: ZUCOM: error while creating new port object (-1000)", result.stderr)

    def test_each_kind_shown_and_as_json(self):
        for kind, payload_at, name in ("standard", 2, "Std"), ("advanced", 4, "Adv"), ("enhanced", 6, "Enh"):
            with self.subTest(kind), Simulator("--address", "3") as sim:
                request = text_of(frame("52 07", 3, kind), payload_at)
                answer = text_of(frame("52 00 07", 3, kind, direction=2), payload_at)
                settings = ["--kind", kind, "--address", "3", *PATIENT]
                shown = run("exchange", sim.device, "52 07", *settings)
                self.assertEqual((0, ""), (shown.returncode, shown.stderr))
                lines = shown.stdout.splitlines()
                self.assertEqual("request  " + request, lines[0])
                self.assertRegex(lines[1], "^answer   " + answer.replace("|", r"\|") + r"  after \d+\.\d ms$")
                self.assertIn(f"{name} frame, address 3, command 52, status 00, payload 52 00 07, check sum right",
                              lines[2])

                data = json_of(run("exchange", sim.device, "5207", "--json", *settings))
                self.assertGreater(data.pop("milliseconds"), 0)
                self.assertEqual({"request": request,
                                  "answer": {"frame": answer, "kind": name, "address": 3, "command": "52",
                                             "status": "00", "payload": "52 00 07", "valid": True}}, data)

    def test_settings_reach_the_line(self):
        with Simulator("--baud", "57600", "--stop-bits", "2", "--address", "9") as sim:
            result = run("exchange", sim.device, "52", "--baud", "57600", "--frame", "8N2", "-a", "9", *PATIENT)
            self.assertEqual(0, result.returncode, result.stderr)
            self.assertEqual(1, run("exchange", sim.device, "52", "--baud", "57600", "-t", "1").returncode)

    def test_what_the_driver_refuses(self):
        for option, complaint in ("--frame=8N1", "FRAME 8N1: ZUCOM: error in change port parameter (-1036)"), (
                "--mode=RS485", "OPMODE RS485: ZUCOM: error in change port parameter (-1036)"):
            with self.subTest(option), Simulator() as sim:
                result = run("exchange", sim.device, "52", option)
                self.assertEqual((1, ""), (result.returncode, result.stdout))
                self.assertIn(complaint, result.stderr)

    def test_failures(self):
        cases = [  # fault, time-out, code, failure; the seed loses a byte behind the length
            ("never", 50, -1030, "ZUCOM: receive timeout (-1030)"),
            ("lost-byte", 2000, -1042, "ZUCOM: Invalid protocol length (-1042)"),
            ("foreign-address", 50, -1030, "ZUCOM: receive timeout (-1030)"),
            ("hang-up", 20000, -1041, "ZUCOM: port not connnected (-1041)"),
            ("wrong-crc", 20000, 0, "the check sum of the answer is wrong"),
        ]
        for fault, timeout, code, failure in cases:
            with self.subTest(fault), Simulator("--fault", fault, "--seed", "4", "--address", "8") as sim:
                result = run("exchange", sim.device, "52", "--json", "--address", "8", "--timeout", str(timeout))
                self.assertEqual(1, result.returncode)
                data = json_of(result)
                self.assertEqual((code, failure), (data["code"], data["failure"]))

    def test_secrets_stay_hidden(self):
        with Simulator() as sim:
            for options in [], ["--json"]:
                result = run("exchange", sim.device, "A0 DE AD BE EF", *options, *PATIENT)
                self.assertIn("A0 ## ## ## ##", result.stdout)
                self.assertNotRegex(result.stdout, "(?i)DE.?AD|BE.?EF")

    def test_batch_from_standard_input(self):
        with Simulator() as sim:
            batch = "52 00\n\n  # nothing\nA1 01 # note\r\n53\n"
            result = run("exchange", sim.device, "--json", *PATIENT, text=batch)
            self.assertEqual(0, result.returncode)
            commands = [json.loads(line)["answer"]["command"] for line in result.stdout.splitlines()]
            self.assertEqual(["52", "A1", "53"], commands)

            result = run("exchange", sim.device, *PATIENT, text="52\nxx\n53\n")
            self.assertEqual(2, result.returncode)
            self.assertIn("line 2 is no payload in hexadecimal: xx", result.stderr)
            self.assertEqual(1, run("exchange", sim.device, text="").returncode, "nothing was sent")

    def test_repeat_and_summary(self):
        with file_of("53 => silence\n") as script, Simulator("--answers", script) as sim:
            result = run("exchange", sim.device, "52", "54", "--repeat", "3", "--interval", "1", *PATIENT)
            self.assertEqual(0, result.returncode)
            self.assertEqual(6, result.stdout.count("request"))
            self.assertRegex(result.stdout, r"6 sent, 6 answered, least .* ms, median .* ms, most .* ms\n$")
            result = run("exchange", sim.device, "52", "53", "--timeout", "2000")
            self.assertEqual(1, result.returncode)
            self.assertIn("2 sent, 1 answered", result.stdout)

    def test_ctrl_c_ends_an_endless_series(self):
        with Simulator() as sim, Terminal("exchange", sim.device, "52", "-r0", "-i", "100", *PATIENT) as terminal:
            self.assertTrue(terminal.wait_for("answer"))
            terminal.text = ""
            self.assertTrue(terminal.wait_for("answer"))
            terminal.press(b"\x03")
            self.assertEqual(0, terminal.wait(), terminal.text)
            self.assertRegex(terminal.text, r"\d+ sent, \d+ answered")

    def test_colour_only_on_a_terminal_that_wants_it(self):
        with Simulator() as sim:
            for env, coloured in ({}, True), ({"NO_COLOR": "1"}, False):
                with Terminal("exchange", sim.device, "52", *PATIENT, env=env) as terminal:
                    self.assertEqual(0, terminal.wait())
                    self.assertEqual(coloured, "\x1b[" in terminal.text)
            self.assertNotIn("\x1b[", run("exchange", sim.device, "52", *PATIENT).stdout)

    def test_line_is_restored(self):
        with Simulator() as sim, Line(sim.device, termios.B19200) as line:
            before = termios.tcgetattr(line.fd)
            run("exchange", sim.device, "52", "--baud", "115200", *PATIENT)
            self.assertEqual(before, termios.tcgetattr(line.fd))


if __name__ == "__main__":
    unittest.main()
