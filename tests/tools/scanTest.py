"""zucom scan: finds out how readers are set."""
import os
import re
import shlex
import signal
import termios
import unittest

from zucomProgram import Line, Simulator, Terminal, UsageTest, json_of, run

PATIENT = ["--timeout", "2000"]  # where an answer is to be had, however busy the machine
HASTY = ["--timeout", "1"]       # where there is none


def scan(device, *options):
    result = run("scan", device, "--json", *options)
    data = json_of(result)
    data["found"] = [(reader["baud"], reader["frame"], reader["address"]) for reader in data["found"]]
    data["noise"] = [(line["baud"], line["frame"]) for line in data["noise"]]
    return result.returncode, data


class ScanTest(UsageTest):
    def test_usage(self):
        self.check_usage("scan", [
            ([], "device is required"),
            (["DEVICE", "--baud", "9600,1200"], "1200 is no speed"),
            (["DEVICE", "--address", "256"], "addresses are numbers from 0 to 255"),
            (["DEVICE", "--payload", "5"], "no payload in hexadecimal: 5"),
            (["DEVICE", "--payload", "00" * 252], "252 bytes does not fit"),
            (["DEVICE", "--kind", "modern"], "modern"),
        ])
        with Simulator() as sim:
            self.check_usage("scan", [([sim.device, "--frame", "9N1"], "no frame is called 9N1")])

    def test_device_that_does_not_open(self):
        result = run("scan", "/nowhere")
        self.assertEqual((1, ""), (result.returncode, result.stdout))
        self.assertIn("/nowhere does not open", result.stderr)

    def test_finds_a_reader(self):
        cases = [  # of the simulator, of the scan, found
            (["--address", "42"], [], (9600, "8E1", 42)),
            (["--baud", "115200"], [], (115200, "8E1", 1)),
            (["--baud", "4800"], ["--baud", "4800"], (4800, "8E1", 1)),
            (["--stop-bits", "2"], ["--frame", "8E1,8N2", "-b", "9600"], (9600, "8N2", 1)),
            (["--address", "5"], ["--address", "4-9", "--kind", "enhanced"], (9600, "8E1", 5)),
            (["--fault", "pieces"], ["--payload", "A1 02"], (9600, "8E1", 1)),
        ]
        for reader, options, found in cases:
            with self.subTest(found), Simulator(*reader) as sim:
                code, data = scan(sim.device, *options, *PATIENT)
                self.assertEqual((0, [found], False), (code, data["found"], data["stopped"]))

    def test_stops_at_the_first_or_finds_all(self):
        with Simulator("--address", "2,4", "--baud", "19200") as sim:
            options = ["--baud", "19200", "--frame", "8E1", "--address", "255,4", *PATIENT]
            self.assertEqual([(19200, "8E1", 2)], scan(sim.device, *options)[1]["found"])
            self.assertEqual([(19200, "8E1", 2), (19200, "8E1", 4)], scan(sim.device, "--all", *options)[1]["found"])

    def test_random_reader_is_found_and_its_settings_can_be_pasted(self):
        with Simulator("--random", "--tell", "--seed", "8") as sim:
            address, baud = re.findall(r"\d+", sim.line())[:2]
            result = run("scan", sim.device, "--baud", baud, *PATIENT)
            self.assertEqual((0, ""), (result.returncode, result.stderr))
            for key, value in ("BAUD", baud), ("FRAME", "8E1"), ("BUSADDRESS", address):
                self.assertIn(f'ZUCOM_SetPortPara(handle, "{key}", "{value}");', result.stdout)
            pasted = shlex.split(re.search("zucom (exchange .*)", result.stdout)[1])
            self.assertEqual(0, run(*pasted, "--timeout", "20000").returncode)

    def test_nobody_there_costs_one_request_for_each_address(self):
        with Simulator("--fault", "never") as sim:
            code, data = scan(sim.device, "--baud", "9600,19200", "--frame", "8E1", "--address", "0-9", *HASTY)
            self.assertEqual((1, [], 20, 0), (code, data["found"], data["requests"], data["refused"]))

    def test_refused_settings_are_skipped_and_counted(self):
        with Simulator("--fault", "never") as sim:  # a pseudo-terminal has no parity: 8N1 changes nothing after 8E1
            code, data = scan(sim.device, "--baud", "9600", "--frame", "8E1,8N1,8N2", *HASTY)
            self.assertEqual((1, 3, 1, 2), (code, data["settings"], data["refused"], data["requests"]))

    def test_what_is_no_answer_is_noise(self):
        for fault in "wrong-crc", "foreign-address":
            with self.subTest(fault), Simulator("--fault", fault) as sim:
                code, data = scan(sim.device, "-b", "9600", "-f", "8E1", "--address", "1", *PATIENT)
                self.assertEqual((1, [], [(9600, "8E1")]), (code, data["found"], data["noise"]))

    def test_device_that_goes_away(self):
        with Simulator("--fault", "hang-up=60000") as sim:
            result = run("scan", sim.device, *PATIENT)
            self.assertEqual((1, ""), (result.returncode, result.stdout))
            self.assertIn("the device failed: ZUCOM: port not connnected (-1041)", result.stderr)

    def test_progress_only_on_a_terminal(self):
        with Simulator("--fault", "never") as sim:
            options = ["scan", sim.device, "--baud", "9600", "--frame", "8E1", "--address", "0-29", "--timeout", "10"]
            with Terminal(*options) as terminal:
                self.assertEqual(1, terminal.wait())
                self.assertRegex(terminal.text, r"\[#+\.+\] +\d+ %  0:\d\d left  9600 8E1 address \d+")
            self.assertEqual("", run(*options).stderr)

    def test_interrupted_scan_leaves_the_line_as_it_was(self):
        def press_ctrl_c(terminal):
            terminal.press(b"\x03")

        def terminate(terminal):
            os.kill(terminal.process.pid, signal.SIGTERM)

        for interrupt in press_ctrl_c, terminate:
            with self.subTest(interrupt.__name__), Simulator("--fault", "never") as sim:
                with Line(sim.device, termios.B57600, stop_bits=2) as line:
                    before = termios.tcgetattr(line.fd)
                    with Terminal("scan", sim.device, "--baud", "9600,19200", "--timeout", "60000") as terminal:
                        self.assertTrue(terminal.wait_for("9600 8E1 address 255"))
                        self.assertNotEqual(before, termios.tcgetattr(line.fd))
                        interrupt(terminal)
                        self.assertEqual(1, terminal.wait())
                    self.assertIn("stopped before the end", terminal.text)
                    self.assertEqual(before, termios.tcgetattr(line.fd))


if __name__ == "__main__":
    unittest.main()
