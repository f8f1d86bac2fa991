"""zucom doctor: from the device node to the reader, each step with a verdict and a remedy."""
import os
import shutil
import signal
import subprocess
import tempfile
import termios
import unittest

from systemTree import SystemTree
from zucomProgram import BUILD, COMMAND, HANG, Line, Simulator, UsageTest, json_of, run

PING = ["--ping", "--baud", "115200", "--timeout", "20000"]


def steps(result):
    """Verdict and text of each step by its name."""
    return {finding["step"]: (finding["verdict"], finding["text"], finding["remedy"]) for finding in json_of(result)}


class DoctorTest(UsageTest):
    def doctor(self, *arguments):
        result = run("doctor", *arguments, "--json")
        return result.returncode, steps(result)

    def check(self, verdict, text, found):
        self.assertEqual(verdict, found[0], found)
        self.assertRegex(found[1], text)
        if verdict != "OK" and "this device has none" not in found[1]:
            self.assertTrue(found[2], "a remedy")

    def test_usage(self):
        self.check_usage("doctor", [
            ([], "give either a device or --code"), (["/dev/null", "--code", "1000"], "give either"),
            (["--code", "x"], "x is no code"), (["--code", "1000x"], "no code"), (["DEVICE", "--baud", "7"], "7"),
        ])
        with Simulator() as sim:
            self.check_usage("doctor", [([sim.device, "--ping", "--payload", "5"], "no payload in hexadecimal: 5")])

    def test_healthy_reader(self):
        with Simulator("--address", "3", "--baud", "115200") as sim:
            with Line(sim.device) as line:
                before = termios.tcgetattr(line.fd)
            code, found = self.doctor(sim.device, *PING, "--address", "3")
            with Line(sim.device) as line:
                self.assertEqual(before, termios.tcgetattr(line.fd))
            text = run("doctor", sim.device).stdout
        self.assertEqual(0, code)
        self.assertEqual(["node", "rights", "holder", "terminal", "settings", "RS485", "counters", "reader"], list(found))
        self.check("OK", "^exists$", found["node"])
        self.check("OK", "^c[rwx-]{9} .*; you are ", found["rights"])
        self.check("OK", "simulated by ", found["holder"])
        self.check("OK", "is a serial line", found["terminal"])
        self.check("OK", "^answers at 115200 8E1, address 3 within [0-9.]+ ms$", found["reader"])
        self.assertRegex(text, "(?m)^OK   node         exists$")

    def test_settings_that_a_pseudo_terminal_drops(self):
        with Simulator() as sim:
            code, found = self.doctor(sim.device)
        self.assertEqual(0, code)
        if not os.environ.get("ZUCOM_EMULATOR"):  # the emulator turns B921600 into B0
            self.check("WARN", "^the driver does not keep 8E1, 8O1, 7E1, 7O1$", found["settings"])
        self.check("WARN", "does not keep .*8E1", found["settings"])

    def test_reader_that_does_not_answer(self):
        with Simulator("--address", "3") as sim:
            code, found = self.doctor(sim.device, "--ping", "--baud", "115200", "--address", "4", "--timeout", "50")
            self.assertEqual(1, code)
            self.check("FAIL", r"does not answer at 115200 8E1, address 4: ZUCOM: receive timeout \(-1030\)",
                       found["reader"])
            self.assertIn("zucom scan", found["reader"][2])
            code, found = self.doctor(sim.device, "--ping", "--frame", "8N1")
            self.assertEqual(1, code)
            self.check("FAIL", "FRAME 8N1: ZUCOM: error in change port parameter", found["reader"])
        with Simulator("--fault", "wrong-crc") as sim:
            code, found = self.doctor(sim.device, *PING)
            self.assertEqual(1, code)
            self.assertIn("zucom explain", found["reader"][2])

    def test_what_is_asked_for(self):
        with Simulator() as sim:
            code, found = self.doctor(sim.device, "--modem-lines")
            self.assertEqual(0, code)
            self.check("WARN", "this device has none", found["modem lines"])
            code, found = self.doctor(sim.device, "--mode", "RS485")
            self.assertEqual(1, code)
            self.check("FAIL", "knows no RS485", found["RS485"])

    def test_line_in_use(self):
        with Simulator() as sim, Line(sim.device) as line:
            settings = termios.tcgetattr(line.fd)
            code, found = self.doctor(sim.device)
            self.assertEqual(settings, termios.tcgetattr(line.fd))
        self.assertEqual(0, code)
        self.check("WARN", rf"\(pid {os.getpid()}\).*two programs steal each other's bytes", found["holder"])
        self.assertNotIn("settings", found)

    def test_nodes_that_are_none(self):
        with tempfile.TemporaryDirectory() as folder:
            os.symlink(folder + "/gone", folder + "/link")
            os.mkfifo(folder + "/fifo")
            for path, step, text in ((folder + "/nothing", "node", "No such file"),
                                     (folder + "/link", "node", "the link leads nowhere: the device is unplugged"),
                                     (folder, "node", "no character device"), (folder + "/fifo", "node", "no character"),
                                     ("/dev/null", "terminal", "opens, but is no serial line")):
                with self.subTest(path):
                    code, found = self.doctor(path)
                    self.assertEqual((1, step), (code, list(found)[-1]))
                    self.check("FAIL", text, found[step])
            with Simulator() as sim:
                os.symlink(sim.device, folder + "/reader")
                code, found = self.doctor(folder + "/reader")
                self.assertEqual((0, "exists, leads to " + sim.device), (code, found["node"][1]))

    def test_latency_and_holders_from_a_tree(self):
        for latency, verdict in ("16", "WARN"), ("1", "OK"):
            with SystemTree() as tree, Simulator() as sim:
                name = os.path.relpath(sim.device, "/dev")
                hardware = tree.port(name, "ftdi_sio")
                tree.write(latency, hardware, "latency_timer")
                tree.process(12, "reader-daemon", sim.device)
                code, found = self.doctor(sim.device, *tree.options[0:1], *tree.options[2:])
                self.assertEqual(0, code)
                self.check(verdict, f"up to {latency} ms", found["latency"])
                self.check("WARN", r"in use by reader-daemon \(pid 12\)", found["holder"])
                if verdict == "WARN":
                    self.assertRegex(found["latency"][2], "^echo 1 | sudo tee .*/latency_timer$")

    @unittest.skipUnless(os.geteuid() == 0, "needs root to become somebody else")
    def test_no_rights(self):
        with tempfile.TemporaryDirectory() as folder, Simulator() as sim:
            os.chmod(folder, 0o755)
            os.chmod(sim.device, 0o660)
            shutil.chown(sim.device, "root", "dialout")
            nobody = {"user": 65534, "group": 65534, "extra_groups": []}
            if subprocess.run([*COMMAND, "--version"], capture_output=True, **nobody).returncode != 0:
                self.skipTest(f"others may not run what lies in {BUILD}")
            result = subprocess.run([*COMMAND, "doctor", sim.device, "--json"], capture_output=True, text=True,
                                    timeout=HANG, **nobody)
            self.assertEqual(1, result.returncode)
            found = steps(result)
            self.assertEqual(["node", "rights"], list(found))
            self.check("FAIL", "^crw-rw---- root:dialout; you are nobody in nogroup$", found["rights"])
            self.assertRegex(found["rights"][2], "^sudo usermod -aG dialout nobody ")

    def test_codes(self):
        for code in "-1041", "1041":
            result = run("doctor", f"--code={code}")
            self.assertEqual((0, ""), (result.returncode, result.stderr))
            self.assertTrue(result.stdout.startswith("-1041  ZUCOM: port not connnected\n"), result.stdout)
        self.assertEqual(0, run("doctor", "--code", "-1041").returncode)
        self.assertEqual(1, run("doctor", "--code", "1007").returncode)
        everything = run("doctor", "--code", "all").stdout
        with open(os.path.join(os.path.dirname(__file__), "../../include/zucom/zucom.h"), encoding="utf-8") as header:
            codes = [line.split("= ")[1].split(",")[0].split()[0] for line in header if " ZUCOM_ERR_" in line and " = -" in line]
        self.assertGreater(len(codes), 30)
        for code in codes:
            self.assertIn(f"\n{code}  ZUCOM: ", everything)
        self.assertNotIn("unknown error code", everything.replace("-1  ZUCOM: unknown error code", ""))


if __name__ == "__main__":
    unittest.main()
