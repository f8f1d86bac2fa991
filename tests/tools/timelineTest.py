"""zucom timeline: where the time went, in numbers, as text and as a picture."""
import json
import os
import random
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as xml

from logText import Log
from zucomProgram import COMMAND, HANG, Simulator, UsageTest, file_of, frame, run

REQUEST, ANSWER = frame("52 00"), frame("52 00 01", 3)
SVG = "{http://www.w3.org/2000/svg}"


def numbers(*texts):
    """What --json tells of logs with these texts."""
    with tempfile.TemporaryDirectory() as folder:
        paths = []
        for text in texts:
            paths.append(os.path.join(folder, str(len(paths))))
            with open(paths[-1], "w", encoding="utf-8") as file:
                file.write(text)
        result = run("timeline", "--json", *paths)
    assert result.returncode == 0, result.stderr
    return json.loads(result.stdout)


def picture(text):
    """The root of the SVG of a log."""
    with file_of(text) as path:
        result = run("timeline", path, "--svg", "-")
    assert result.returncode == 0, result.stderr
    return xml.fromstring(result.stdout), result.stdout


def exchange(log, port, device, wait, end="answer"):
    log.transmit(port, REQUEST)
    log.receive(port, device, wait)
    if end == "answer":
        log.answer(port, ANSWER)
    else:
        getattr(log, end)(port)


def story(absolute=False):
    """Ten answers of 20 ms, two time-outs of 250 ms, one broken answer of 260 ms, gaps of 5 ms and one of 2 s."""
    log = Log(absolute)
    log.open(1, "/dev/ttyUSB0")
    for i, end in enumerate(["answer"] * 5 + ["timeout"] + ["answer"] * 5 + ["broken", "timeout"]):
        log.now += 2 if i == 3 else 0.005
        exchange(log, 1, "/dev/ttyUSB0", {"answer": 0.02, "timeout": 0.25, "broken": 0.26}[end], end)
    log.failed(1)
    log.close(1, "/dev/ttyUSB0")
    return log.text


class TimelineTest(UsageTest):
    def test_usage(self):
        self.check_usage("timeline", [([], "log is required"), (["x", "--json", "--svg", "-"], "want standard output")])

    def test_files_that_are_no_logs(self):
        for path, complaint in (("/nowhere", "No such file or directory"), ("/", "Is a directory"),
                                ("/dev/null", "no line of a port in the log")):
            result = run("timeline", path)
            self.assertEqual((1, ""), (result.returncode, result.stdout))
            self.assertIn(complaint, result.stderr)
        with file_of(story()) as path:
            self.assertEqual(1, run("timeline", path, "--svg", "/nowhere/x.svg").returncode)

    def test_numbers(self):
        for absolute in False, True:
            with self.subTest(absolute=absolute):
                data = numbers(story(absolute))
                [lane] = data["lanes"]
                self.assertEqual(absolute, data["absolute"])
                self.assertEqual([13, 10, 2, 1, 1],
                                 [lane[key] for key in ("transmits", "answers", "timeouts", "broken", "errors")])
                self.assertEqual({"answered": 200000, "timedOut": 500000, "failed": 260000}, lane["waited"])
                self.assertEqual((12, 2055000, 2000000),
                                 tuple(lane["gaps"][key] for key in ("count", "total", "longest")))
                self.assertEqual(data["end"] - data["begin"], 5000 + sum(lane["waited"].values()) + 2055000)
                times = data["answerTimes"]
                self.assertEqual((10, 20000, 20000, 20000),
                                 tuple(times[key] for key in ("count", "shortest", "mean", "longest")))
                self.assertEqual(10, sum(bar["count"] for bar in times["bars"]))
                self.assertEqual([("timeouts", "ZUCOM: receive timeout, request 0x52 to address 255"),
                                  ("broken", "ZUCOM: Invalid protocol length, request 0x52 to address 255"),
                                  ("timeouts", "ZUCOM: receive timeout, request 0x52 to address 255"),
                                  ("errors", "ZUCOM: error in transmit process :: System error: Input/output error")],
                                 [(trouble["kind"], trouble["text"]) for trouble in data["troubles"]])
                self.assertEqual([], data["notes"])

    def test_answer_times_are_exact_to_three_percent(self):
        log = Log()
        waits = [10 ** random.Random(i).uniform(-4, 1) for i in range(400)]
        for wait in waits:
            exchange(log, 1, "/dev/ttyUSB0", wait)
        times = numbers(log.text)["answerTimes"]
        waits.sort()
        for key, index in ("median", 199), ("p90", 359), ("p99", 395):
            self.assertAlmostEqual(1, times[key] / 1e6 / waits[index], delta=0.035, msg=key)
        for bar in times["bars"]:
            self.assertEqual(bar["count"], sum(bar["from"] <= round(wait * 1e6) < bar["to"] for wait in waits))

    def test_ports_side_by_side(self):
        log = Log()
        for i in range(30):
            log.transmit(1, REQUEST)
            log.transmit(2, REQUEST)
            log.receive(1, "/dev/ttyUSB0", 0.01)
            log.answer(1, ANSWER)
            log.receive(2, "/dev/ttyUSB1", 0.01)
            log.answer(2, ANSWER)
        self.assertEqual([("PH=0x1 /dev/ttyUSB0", 30, 10000), ("PH=0x2 /dev/ttyUSB1", 30, 20000)],
                         [(lane["name"], lane["answers"], lane["answerTimes"]["longest"])
                          for lane in numbers(log.text)["lanes"]])

    def test_device_opened_again_continues_its_lane(self):
        log = Log()
        for port in range(1, 100):
            log.open(port, "/dev/ttyUSB0")
            exchange(log, port, "/dev/ttyUSB0", 0.01)
            log.now += 5
            log.close(port, "/dev/ttyUSB0")
        [lane] = numbers(log.text)["lanes"]
        self.assertEqual((99, 99, 0, 0), (lane["port"], lane["answers"], lane["errors"], lane["gaps"]["count"]))

    def test_more_ports_than_lanes(self):
        log = Log()
        for port in range(1, 100):
            exchange(log, port, f"/dev/tty{port}", 0.01)
        data = numbers(log.text)
        self.assertEqual(33, len(data["lanes"]))
        self.assertEqual("further ports", data["lanes"][-1]["name"])
        self.assertEqual(99, sum(lane["answers"] for lane in data["lanes"]))
        self.assertIn("only 32 ports have a lane of their own", data["notes"][0])

    def test_time_that_runs_back(self):
        first, second = story(), story()
        data = numbers(first + second)
        self.assertEqual(26, data["lanes"][0]["transmits"])
        self.assertIn("the time ran back 1 time ", data["notes"][0])
        single = numbers(first)
        self.assertEqual(2 * (single["end"] - single["begin"]), data["end"] - data["begin"])
        mixed = numbers(story() + story(absolute=True) + story())
        self.assertEqual((39, 2), (mixed["lanes"][0]["transmits"], int(mixed["notes"][0].split()[4])))

    def test_files_of_one_process_lie_side_by_side(self):
        one, two = Log(), Log()
        for log, port in (one, 1), (two, 2):
            for _ in range(20):
                exchange(log, port, f"/dev/ttyUSB{port}", 0.01)
        data = numbers(one.text, two.text)
        self.assertEqual([20, 20], [lane["answers"] for lane in data["lanes"]])
        self.assertEqual((200000, []), (data["end"] - data["begin"], data["notes"]))

    def test_log_without_trace_lines(self):
        errors = "".join(line + "\n" for line in story().splitlines() if " ERROR" in line)
        data = numbers(errors)
        self.assertEqual([0, 0, 2, 1, 1], [data["lanes"][0][key] for key in
                                           ("transmits", "answers", "timeouts", "broken", "errors")])
        self.assertIn("logtrace", data["notes"][0])

    def test_text(self):
        with file_of(story()) as path:
            text = run("timeline", path).stdout
        for part in ("PH=0x1 /dev/ttyUSB0: transmits 13, answers 10, time-outs 2, broken answers 1, errors 1",
                     "Answer times: 10 answers, shortest 20 ms, median 20 ms",
                     "2.06 s in 12 gaps, the longest 2 s after 0.075 s"):
            self.assertIn(part, text)
        waiting, trouble = [next(line for line in text.splitlines() if line.startswith(name))
                            for name in ("  waiting", "  trouble")]
        self.assertEqual(len(waiting), len(trouble))
        self.assertEqual("TBE", "".join(dict.fromkeys(trouble.split("|")[1].replace(" ", ""))))

    # --- the picture ---

    def test_picture(self):
        root, text = picture(story())
        self.assertEqual(SVG + "svg", root.tag)
        shown = " / ".join(element.text for element in root.iter(SVG + "text") if element.text)
        for part in ("PH=0x1", "/dev/ttyUSB0", "13 transmits", "10 answers", "2 time-outs", "1 broken answer",
                     "gap 2 s", "Answer times", "10 answers: shortest 20 ms"):
            self.assertIn(part, shown)
        self.assertGreaterEqual(len(list(root.iter(SVG + "title"))), 13)
        for foreign in "<script", "href", "url(", "@import", "<image":
            self.assertNotIn(foreign, text)

    def test_marks_lie_where_the_time_is(self):
        log = Log()
        for at in 0, 1, 4:  # of 4 s
            log.now = at
            log.transmit(1, REQUEST)
        root, _ = picture(log.text)
        marks = next(element.get("d") for element in root.iter(SVG + "path") if element.get("fill") == "#1f6fb4"
                     and element.get("d").count("M") == 3)
        left, quarter, right = [float(part.split()[0]) for part in marks.split("M")[1:]]
        self.assertAlmostEqual(0.25, (quarter - left) / (right - left), delta=0.003)

    def test_names_in_the_picture_are_text(self):
        log = Log()
        device = '/dev/<b>&"\x01\xe9'
        log.open(1, device)
        exchange(log, 1, device, 0.01)
        root, _ = picture(log.text)
        self.assertIn('/dev/<b>&"???', [element.text for element in root.iter(SVG + "text")])

    def test_long_log_makes_no_long_picture(self):
        block = Log()
        for i in range(500):
            block.now += 0.003
            exchange(block, 1 + i % 4, "/dev/ttyUSB0", 0.02 if i % 50 else 0.25, "answer" if i % 50 else "timeout")
        once = block.text.replace("Log file", "Log file of an application\nLog file")
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "log")
            with open(path, "w", encoding="utf-8") as file:
                for _ in range(20):
                    file.write(once)
            process = subprocess.Popen([*COMMAND, "timeline", path, "--json", "--svg", path + ".svg"],
                                       stdout=subprocess.PIPE, text=True)
            data = json.loads(process.stdout.read())
            process.stdout.close()
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = os.waitstatus_to_exitcode(status)
            size = os.path.getsize(path + ".svg")
            xml.parse(path + ".svg")
        self.assertEqual(0, process.returncode)
        self.assertEqual(20 * 500, sum(lane["transmits"] for lane in data["lanes"]))
        self.assertEqual(200, len(data["troubles"]))
        self.assertLess(size, 4 << 20)
        self.assertLess(usage.ru_maxrss, 512 * 1024)  # KiB, with room for sanitizers and emulation

    # --- real and hostile input ---

    def test_log_of_the_library(self):
        with tempfile.TemporaryDirectory() as folder, Simulator("--address", "3") as sim:
            with open(folder + "/conf", "w", encoding="utf-8") as file:
                file.write(f"[OUTPUTTER]\nlogpath = {folder}\nlogfile = trace\nlogfileshared = on\n"
                           "[ZUCOM]\nlogtrace = on\nlogerror = on\n")
            environment = {"MIRN_LOGGER_CONGIG_FILE": folder + "/conf"}
            log = folder + "/trace-ZUCOM.log"
            for address, timeout in ("3", "20000"), ("4", "50"):
                run("exchange", sim.device, "52 00", "--address", address, "--repeat", "5", "--timeout", timeout,
                    "--baud", "115200", env=environment)
            data = json.loads(run("timeline", "--json", log).stdout)
            explained = run("explain", log)
        [lane] = data["lanes"]
        self.assertEqual((sim.device, 10, 5, 5),
                         tuple(lane[key] for key in ("device", "transmits", "answers", "timeouts")))
        self.assertGreaterEqual(lane["waited"]["timedOut"], 5 * 50000)
        self.assertEqual([], data["notes"])
        self.assertIn("15 right, 0 broken, 5 failures", explained.stdout)

    def test_hostile_input(self):
        head, tail = "0001.000000 :: ZUCOM PH=0x1 TID=1 ZucomPort::", " :: x\n"
        texts = [os.urandom(200000), story().encode()[:-30], b"\n" * 10000,
                 (head + "transmit:131" + tail).encode() * 1000,
                 b"".join(f"{second}.000000 :: ZUCOM PH=0x1 TID=1 ZucomPort::transmit:131 :: Transmitting data: \n".encode()
                          for second in ("0000", "4294967295") * 500),
                 b"".join(f"{year}.01.01-00.00.00.000000 :: ZUCOM PH=0x{year} TID=1 x:246 :: y\n".encode()
                          for year in ("1970", "9999") * 500),
                 (head + "openPort:40" + tail).encode() * 100, (head + "receive:211 ERROR" + tail).encode() * 1000]
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "log")
            for text in texts:
                with self.subTest(text[:40]):
                    with open(path, "wb") as file:
                        file.write(text)
                    for options in [], ["--json"], ["--svg", "-"]:
                        result = subprocess.run([*COMMAND, "timeline", path, *options], capture_output=True, timeout=HANG)
                        self.assertIn(result.returncode, (0, 1), result.stderr)
                        if options == ["--svg", "-"] and result.returncode == 0:
                            xml.fromstring(result.stdout)

    def test_line_of_a_gibibyte(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "log")
            with open(path, "w", encoding="utf-8") as file:
                file.write(story())
                file.truncate(1 << 30)
            process = subprocess.Popen([*COMMAND, "timeline", path, "--json"], stdout=subprocess.PIPE,
                                       stderr=subprocess.PIPE, text=True)
            output, errors = process.stdout.read(), process.stderr.read()
            process.stdout.close()
            process.stderr.close()
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = os.waitstatus_to_exitcode(status)
        self.assertIn("1 lines of more than 1 MiB were cut", errors)
        self.assertEqual(13, json.loads(output)["lanes"][0]["transmits"])
        self.assertLess(usage.ru_maxrss, 512 * 1024)


if __name__ == "__main__":
    unittest.main()
