"""zucom sim: the reader simulator."""
import contextlib
import fcntl
import os
import signal
import tempfile
import termios
import unittest

from zucomProgram import Line, Simulator, UsageTest, file_of, frame, run

TIOCGEXCL = 0x80045440
REQUEST = frame("52 00", 1)
ANSWER = frame("52 00 00", 1)


def flipped_bits(left, right):
    return sum((a ^ b).bit_count() for a, b in zip(left, right))


def is_subsequence(part, whole):
    rest = iter(whole)
    return all(byte in rest for byte in part)


class SimTest(UsageTest):
    def test_usage(self):
        self.check_usage("sim", [
            (["--baud", "1200"], "1200"),
            (["--stop-bits", "3"], "3"),
            (["--address", "255"], "addresses are numbers from 0 to 254"),
            (["--address", "7-3"], "7-3"),
            (["--address", ""], "the list of addresses is empty"),
            (["--fault", "rust"], "no fault is called rust"),
            (["--fault", "delay=x"], "=x is no number"),
            (["--fault", "wrong-crc=3"], "takes no number"),
            (["--fault", "never@101"], "@101 is no number from 0 to 100"),
            (["--answers", "/nowhere"], "cannot read /nowhere"),
            (["--nonsense"], "--nonsense"),
        ])

    def test_answers_in_the_kind_it_was_asked_in(self):
        for kind in "standard", "advanced", "enhanced":
            with self.subTest(kind), Simulator() as sim, Line(sim.device) as line:
                answer = frame("A1 00 02 03", 1, kind, direction=2)
                self.assertEqual(answer, line.ask(frame("A1 02 03", 1, kind), len(answer)))

    def test_stays_silent_where_a_reader_would(self):
        bad_crc = REQUEST[:-1] + bytes([REQUEST[-1] ^ 1])
        cases = [
            ("wrong CRC", [], bad_crc),
            ("another address", [], frame("52 00", 2)),
            ("its own answer come back", [], frame("52 00 00", 1, "enhanced", direction=2)),
            ("noise", [], b"\x00\x01\x04"),
            ("another speed", ["--baud", "19200"], REQUEST),
            ("other stop bits", ["--stop-bits", "2"], REQUEST),
        ]
        for name, options, request in cases:
            with self.subTest(name), Simulator("--show", *options) as sim, Line(sim.device) as line:
                line.send(request)
                said = sim.line()
                if said.startswith("request"):
                    said = sim.line()
                self.assertRegex(said, "^(silence|noise): ")

    def test_hears_at_the_settings_it_was_given(self):
        with Simulator("--baud", "57600", "--stop-bits", "2") as sim, Line(sim.device, termios.B57600, 2) as line:
            self.assertEqual(ANSWER, line.ask(REQUEST, len(ANSWER)))

    def test_every_address_answers_for_itself_and_the_first_for_all(self):
        with Simulator("--address", "7,3-4") as sim, Line(sim.device) as line:
            for asked, answering in (3, 3), (4, 4), (7, 7), (255, 7):
                self.assertEqual(frame("52 00 00", answering), line.ask(frame("52 00", asked), len(ANSWER)))

    def test_request_in_pieces_and_two_at_once(self):
        with Simulator() as sim, Line(sim.device) as line:
            self.assertEqual(ANSWER + ANSWER, line.ask(REQUEST + REQUEST, 2 * len(ANSWER)))

    def test_scripted_answers(self):
        script = "# comment\n52 00 => 52 00 AB # exact\n52 * => 52 EE\nA0 => silence\n* => FF 01\n"
        with file_of(script) as path, Simulator("--answers", path, "--show") as sim, Line(sim.device) as line:
            for payload, answer in ("52 00", "52 00 AB"), ("52 01", "52 EE"), ("52", "52 EE"), ("B7 01", "FF 01"):
                expected = frame(answer, 1)
                self.assertEqual(expected, line.ask(frame(payload, 1), len(expected)))
                self.assertEqual(["request", "answer "], [sim.line()[:7], sim.line()[:7]])
            line.send(frame("A0", 1))
            self.assertEqual(["request", "silence: as scripted"], [sim.line()[:7], sim.line()])

    def test_script_that_cannot_be_read(self):
        for text in "52 00\n", "5 => 52\n", "=> 52\n", "52 =>\n", "52 => 5G\n":
            with self.subTest(text), file_of("# first line\n" + text) as path:
                result = run("sim", "--answers", path)
                self.assertEqual((2, ""), (result.returncode, result.stdout))
                self.assertIn(f"{path}:2: expected REQUEST => ANSWER", result.stderr)

    def test_faults(self):
        cases = [  # fault, bytes that come, what holds for them
            ("foreign-address", 7, lambda got: got == frame("52 00 00", 2)),
            ("foreign-address=9", 7, lambda got: got == frame("52 00 00", 9)),
            ("wrong-crc", 7, lambda got: got[:5] == ANSWER[:5] and got != ANSWER),
            ("flipped-bit", 7, lambda got: flipped_bits(got, ANSWER) == 1),
            ("lost-byte", 6, lambda got: is_subsequence(got, ANSWER)),
            ("two-frames", 14, lambda got: got == ANSWER + ANSWER),
            ("garbage=5", 12, lambda got: got[5:] == ANSWER),
            ("echo", 13, lambda got: got == REQUEST + ANSWER),
            ("pieces=0", 7, lambda got: got == ANSWER),
            ("delay=1", 7, lambda got: got == ANSWER),
            ("wrong-crc@0", 7, lambda got: got == ANSWER),
        ]
        for fault, count, holds in cases:
            with self.subTest(fault), Simulator("--fault", fault, "--seed", "3") as sim, Line(sim.device) as line:
                got = line.ask(REQUEST, count)
                self.assertTrue(holds(got), got.hex(" "))

    def test_pieces_come_one_by_one(self):
        with Simulator("--fault", "pieces=60000", "--seed", "1") as sim, Line(sim.device) as line:
            line.send(REQUEST)
            first = os.read(line.fd, 100)
            self.assertLess(len(first), len(ANSWER))
            self.assertEqual(0, sim.stop(), "it stops in the middle of a pause")

    def test_never(self):
        with Simulator("--fault", "never", "--show") as sim, Line(sim.device) as line:
            line.send(REQUEST)
            self.assertIn("request", sim.line())
            self.assertIn("answer", sim.line())
            self.assertEqual("spoilt by never", sim.line())

    def test_hang_up_and_return(self):
        with tempfile.TemporaryDirectory() as folder:
            link = os.path.join(folder, "reader")
            with Simulator("--link", link, "--fault", "hang-up=1@50", "--seed", "2") as sim:
                self.assertEqual(link, sim.device)
                for _ in range(100):  # until the first hang-up
                    target = os.readlink(link)
                    with Line(link) as line:
                        if line.ask(REQUEST, len(ANSWER)) == b"":
                            break
                else:
                    self.fail("no hang-up in 100 requests")
                self.assertEqual(link, sim.line())
                self.assertTrue(os.path.exists(link), target)
            self.assertFalse(os.path.lexists(link))

    def test_link_never_replaces_a_file(self):
        with file_of("precious") as path:
            result = run("sim", "--link", path)
            self.assertEqual((1, ""), (result.returncode, result.stdout))
            self.assertIn("link " + path, result.stderr)
            with open(path, encoding="utf-8") as file:
                self.assertEqual("precious", file.read())

    def test_same_seed_same_faults(self):
        def answers(seed):
            with Simulator("--fault", "flipped-bit", "--seed", seed) as sim, Line(sim.device) as line:
                return [line.ask(REQUEST, len(ANSWER)) for _ in range(10)]
        first = answers("42")
        self.assertEqual(first, answers("42"))
        self.assertNotEqual(first, answers("43"))

    def test_random_reader_is_told_only_when_asked(self):
        def said(*options):
            with Simulator("--random", "--seed", "5", *options) as sim:
                sim.stop()
                return sim.rest
        self.assertEqual("", said())
        self.assertRegex(said("--tell"), r"^address \d+, \d+ bit/s, any stop bits, seed 5\n$")
        self.assertEqual(said("--tell"), said("--tell"))

    def test_opens_again_after_a_program_that_wanted_it_alone(self):
        def is_exclusive(line):
            return fcntl.ioctl(line.fd, TIOCGEXCL, b"\0\0\0\0") != b"\0\0\0\0"

        with Simulator() as sim:
            with Line(sim.device) as line:
                fcntl.ioctl(line.fd, termios.TIOCEXCL)
                self.assertTrue(is_exclusive(line))
            while True:  # until the simulator has seen the close; only an administrator gets in before that
                with contextlib.suppress(OSError), Line(sim.device) as line:
                    if not is_exclusive(line):
                        break

    def test_stops_cleanly(self):
        for how in signal.SIGINT, signal.SIGTERM:
            with Simulator() as sim, Line(sim.device):
                self.assertEqual((0, ""), (sim.stop(how), sim.errors))


if __name__ == "__main__":
    unittest.main()
