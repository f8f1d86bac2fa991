"""examples/demo.sh: the first thing that a newcomer runs."""
import os
import subprocess
import unittest

from zucomProgram import BUILD, HANG, Simulator

DEMO = os.path.join(os.path.dirname(__file__), "..", "..", "examples", "demo.sh")


def demo(*arguments):
    return subprocess.run([DEMO, BUILD, *arguments], capture_output=True, text=True, timeout=HANG)


class DemoTest(unittest.TestCase):
    def check(self, result):
        self.assertEqual((0, ""), (result.returncode, result.stderr), result.stdout)
        self.assertEqual(3, result.stdout.count("   valid\n"), "a valid answer of each kind")
        self.assertIn("last error: -1051 ZUCOM: parameter out of range", result.stdout)
        self.assertIn("2 sent, 2 answered", result.stdout)
        self.assertIn("swapped", result.stdout)

    def test_with_its_own_reader_and_the_log(self):
        result = demo("--log")
        self.check(result)
        self.assertIn("Received protocol: 07 01 52 00 00 b4 2a  Length: 7", result.stdout)

    def test_with_a_device(self):
        # Found at 115200 8E2, because a pseudo-terminal takes that as a change of what opening set.
        with Simulator("--baud", "115200", "--stop-bits", "2", "--address", "9") as sim:
            self.check(demo(sim.device))

    def test_usage(self):
        for arguments in ["--nonsense"], ["one", "two"]:
            self.assertEqual(2, demo(*arguments).returncode)
        self.assertEqual(1, demo("/nowhere").returncode)


if __name__ == "__main__":
    unittest.main()
