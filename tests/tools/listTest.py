"""zucom list: the serial devices of a machine, from trees that the test brings."""
import os
import unittest

from systemTree import SystemTree
from zucomProgram import UsageTest, json_of, run


class ListTest(UsageTest):
    def setUp(self):
        self.tree = SystemTree()
        self.addCleanup(self.tree.folder.cleanup)

    def list(self, *options):
        result = run("list", *self.tree.options, *options)
        self.assertEqual(0, result.returncode, result.stderr)
        return result

    def names(self, *options):
        return [device["path"].rsplit("/", 1)[1] for device in json_of(self.list("--json", *options))]

    def test_usage(self):
        self.check_usage("list", [(["/dev/ttyUSB0"], "/dev/ttyUSB0")])

    def test_this_machine(self):
        result = run("list", "--json")
        self.assertEqual(0, result.returncode, result.stderr)
        self.assertIsInstance(json_of(result), list)

    def test_usb_adapter(self):
        self.tree.port("ttyUSB0", "ftdi_sio", "pci0/usb1/1-1/1-1:1.0", idVendor="0403", idProduct="6001",
                       serial="A50285BI", manufacturer="Maker", product="USB to RS485")
        self.tree.link("../../ttyUSB0", "dev/serial/by-id/usb-Maker-if00-port0")
        self.tree.link("../../ttyUSB7", "dev/serial/by-id/usb-Gone-if00-port0")
        self.tree.process(812, "reader-daemon", "/dev/null", self.tree.at("dev/ttyUSB0"), self.tree.at("dev/ttyUSB0"))
        self.tree.process(99, "other", self.tree.at("dev/ttyUSB1"), "socket:[12]")
        self.assertEqual([{"path": self.tree.at("dev/ttyUSB0"),
                           "byId": [self.tree.at("dev/serial/by-id/usb-Maker-if00-port0")], "driver": "ftdi_sio",
                           "usb": {"vendor": "0403", "product": "6001", "serial": "A50285BI",
                                   "name": "Maker USB to RS485"},
                           "holders": [{"pid": 812, "name": "reader-daemon", "otherEnd": False}]}],
                         json_of(self.list("--json")))
        text = self.list().stdout
        for part in ("ttyUSB0  ftdi_sio", "stable name  ", "0403:6001 Maker USB to RS485, serial A50285BI",
                     "held by      reader-daemon (pid 812)"):
            self.assertIn(part, text)

    def test_which_ports_are_shown(self):
        for name in "ttyUSB10", "ttyUSB9", "ttyACM0":
            self.tree.port(name, "driver")
        self.tree.port("ttyS0", "serial8250", uart="4")
        self.tree.port("ttyS1", "serial8250", uart="0")
        self.tree.port("tty1", virtual=True)
        self.tree.port("console", virtual=True)
        self.assertEqual(["ttyACM0", "ttyS0", "ttyUSB9", "ttyUSB10"], self.names())
        self.assertEqual(["ttyACM0", "ttyS0", "ttyS1", "ttyUSB9", "ttyUSB10"], self.names("--all"))

    def test_driver_is_found_above_the_port(self):
        above = self.tree.port("ttyS0", "port", "pnp/00:01/ctrl")
        os.makedirs(self.tree.at("sys/bus/drivers/serial"))
        self.tree.link(self.tree.at("sys/bus/drivers/serial"), "sys/devices/pnp/00:01/driver")
        [device] = json_of(self.list("--json"))
        self.assertEqual(("serial", None), (device["driver"], device["usb"]), above)

    def test_trees_that_are_not_as_expected(self):
        self.assertIn("No serial device", self.list().stdout)
        self.assertEqual([], json_of(self.list("--json")))
        self.tree.port("ttyX0")  # without a driver
        self.tree.process(5, "\x1b[2Jname", self.tree.at("dev/ttyX0"))
        self.tree.write("", "proc/12345678901234567890/comm")
        self.tree.link(self.tree.at("sys/class/tty"), "sys/class/tty/loop")
        text = self.list().stdout
        self.assertIn("no driver", text)
        self.assertIn("?[2Jname (pid 5)", text)
        for root in range(3):
            options = list(self.tree.options)
            options[root] = options[root].split("=")[0] + "=/nowhere"
            result = run("list", *options)
            self.assertEqual(0, result.returncode, result.stderr)


if __name__ == "__main__":
    unittest.main()
