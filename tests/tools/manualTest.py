"""The manual page tells of every sub-command and option that the program has."""
import os
import re
import unittest

from zucomProgram import run

PAGE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "docs", "man", "zucom.1")


class ManualTest(unittest.TestCase):
    def test_every_option(self):
        with open(PAGE, encoding="utf-8") as file:
            sections = dict(re.findall(r"\n\.Ss zucom (\w+)\n(.*?)(?=\n\.S[sh] )", file.read(), re.DOTALL))
        commands = re.findall(r"(?m)^  (\w+) {2,}\w", run("--help").stdout.split("Subcommands:")[1])
        self.assertEqual(sorted(commands), sorted(sections))
        for command in commands:
            options = set(re.findall(r"(?m)^  (?:-\w,)?--([\w-]+)", run(command, "--help").stdout)) - {"help"}
            described = set(re.findall(r"(?m)^\.It .*Fl -([\w-]+)", sections[command]))
            self.assertEqual(options, described, command)


if __name__ == "__main__":
    unittest.main()
