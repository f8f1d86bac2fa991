"""The virtual machine: its three lines with a reader each, the agent inside, and what the hardware was programmed to."""

import json
import os
import re
import socket
import subprocess

from reader import TIME_LIMIT, Reader

PL011, UART, FTDI = "/dev/ttyAMA0", "/dev/ttyS0", "/dev/ttyUSB0"
RTS = 0x800  # in the PL011's control register


def pl011_frame(register):
    """The frame in the line control register: data bits from bit 5, two stop bits 3, even parity 2, any parity 1."""
    register = int(register, 16)
    parity = "N" if not register & 2 else "E" if register & 4 else "O"
    return f"{5 + (register >> 5 & 3)}{parity}{2 if register & 8 else 1}"


# device: (fact about the line, QEMU's trace line that tells it, what the line's values mean)
TRACES = {
    PL011: [
        ("baud", r"pl011_baudrate_change .*ibrd: (\d+), fbrd: (\d+)",
         lambda whole, fraction: 4 * 24_000_000 // max(1, 64 * int(whole) + int(fraction))),
        ("frame", r"pl011_write addr 0x0000002c value 0x(.*)", pl011_frame),
        ("control", r"pl011_write addr 0x00000030 value 0x(.*)", lambda value: int(value, 16)),
    ],
    UART: [
        ("baud", r"serial_update_parameters baudrate=(\d+)", int),
        ("frame", r"serial_update_parameters .*parity='(.)' data=(\d) stop=(\d)",
         lambda parity, data, stop: data + parity + stop),
    ],
    FTDI: [
        ("baud", r"usb_serial_set_baud .* baud rate (\d+)", int),
        ("frame", r"usb_serial_set_data .* parity (.), data bits (\d), stop bits (\d)",
         lambda parity, data, stop: data + parity + stop),
    ],
}


class Lines:
    """A socket that is spoken over in lines."""

    def __init__(self, path):
        self._server = socket.socket(socket.AF_UNIX)
        self._server.bind(path)
        self._server.listen(1)

    def accept(self):
        self._server.settimeout(TIME_LIMIT)
        connection, _ = self._server.accept()
        connection.settimeout(TIME_LIMIT)
        self._stream = connection.makefile("rw")
        return self

    def write(self, text):
        self._stream.write(text + "\n")
        self._stream.flush()

    def read(self):
        line = self._stream.readline()
        if not line:
            raise ConnectionError("the virtual machine has ended")
        return line.rstrip("\n")


class Machine:
    def __init__(self, folder, kernel, initrd):
        self.hardware = {device: {fact: [] for fact, _, _ in TRACES[device]} for device in TRACES}  # oldest first
        self.plugged = True
        self.unplugged = 0  # times
        self.readers = {device: Reader(f"{folder}/{os.path.basename(device)}") for device in TRACES}
        self._alive = True
        agent, monitor = Lines(f"{folder}/agent"), Lines(f"{folder}/monitor")
        log = open(f"{folder}/trace.log", "w")
        self._log = open(log.name)
        lines = [reader.path for reader in self.readers.values()]
        self._process = subprocess.Popen(
            ["qemu-system-aarch64", "-M", "virt", "-cpu", "cortex-a53", "-m", "512", "-accel", "tcg", "-display", "none",
             "-nodefaults", "-no-reboot", "-kernel", kernel, "-initrd", initrd,
             "-append", "console=hvc0 quiet panic=-1", "-qmp", f"unix:{folder}/monitor",
             "-trace", "pl011_baudrate_change", "-trace", "pl011_write", "-trace", "serial_update_parameters",
             "-trace", "usb_serial_set*",
             "-chardev", f"file,id=console,path={folder}/console.log", "-device", "virtio-serial-pci",
             "-device", "virtconsole,chardev=console",
             "-chardev", f"socket,id=agent,path={folder}/agent", "-device", "virtserialport,chardev=agent,name=control",
             "-chardev", f"socket,id=pl011,path={lines[0]}", "-serial", "chardev:pl011",
             "-chardev", f"socket,id=uart,path={lines[1]}", "-device", "pci-serial,chardev=uart",
             "-chardev", f"socket,id=usb1,path={lines[2]}", "-device", "qemu-xhci,id=xhci",
             "-device", "usb-serial,id=adapter,bus=xhci.0,chardev=usb1"],
            stdin=subprocess.DEVNULL, stderr=log)
        self._monitor = monitor.accept()
        self._monitor.read()  # greeting
        self._monitor_command("qmp_capabilities")
        self._agent = agent.accept()
        if self._agent.read() != "ready":
            raise ConnectionError("the agent did not start")
        self.ask("present", FTDI)

    def ask(self, *words):
        """Has the agent do something and gives its answer."""
        if not self._alive:
            raise ConnectionError("the virtual machine no longer answers")
        self._alive = False  # until the answer is there
        self._agent.write(" ".join(str(word) for word in words))
        answer = self._agent.read()
        self._alive = True
        self._read_traces()
        return answer.strip()

    def unplug(self):
        self.plugged = False
        self.unplugged += 1
        self._monitor_command("device_del", id="adapter")
        while json.loads(self._monitor.read()).get("event") != "DEVICE_DELETED":
            pass

    def plug(self):
        self._monitor_command("chardev-remove", id=f"usb{self.unplugged}")
        backend_name = f"usb{self.unplugged + 1}"
        address = {"type": "unix", "data": {"path": self.readers[FTDI].path}}
        backend = {"type": "socket", "data": {"addr": address, "server": False}}
        self._monitor_command("chardev-add", id=backend_name, backend=backend)
        self._monitor_command("device_add", driver="usb-serial", id="adapter", bus="xhci.0",
                              chardev=backend_name)
        self.plugged = True

    def stop(self):
        self._monitor_command("quit")
        self._process.wait(TIME_LIMIT)

    def _monitor_command(self, name, **arguments):
        self._monitor.write(json.dumps({"execute": name, "arguments": arguments}))
        while "return" not in (reply := json.loads(self._monitor.read())):
            if "error" in reply:
                raise RuntimeError(f"{name}: {reply['error']['desc']}")

    def _read_traces(self):
        """The hardware's lines are written before the agent can answer what caused them."""
        for line in self._log:
            for device, facts in TRACES.items():
                for fact, pattern, meaning in facts:
                    if match := re.search(pattern, line):
                        self.hardware[device][fact].append(meaning(*match.groups()))
