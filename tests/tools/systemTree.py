"""A machine's trees of devices and processes, as far as zucom looks at them."""
import os
import tempfile


class SystemTree:
    """Folders sys, dev and proc that look like a kernel's."""

    def __init__(self):
        self.folder = tempfile.TemporaryDirectory()
        self.root = os.path.realpath(self.folder.name)
        for name in "sys/class/tty", "dev/serial/by-id", "proc/self":
            os.makedirs(self.at(name))
        self.options = [f"--{name}={self.at(name)}" for name in ("sys", "dev", "proc")]

    def at(self, *names):
        return os.path.join(self.root, *names)

    def write(self, text, *names):
        os.makedirs(os.path.dirname(self.at(*names)), exist_ok=True)
        with open(self.at(*names), "w", encoding="utf-8") as file:
            file.write(text + "\n")

    def link(self, target, *names):
        os.makedirs(os.path.dirname(self.at(*names)), exist_ok=True)
        os.symlink(target, self.at(*names))

    def port(self, name, driver=None, parent="platform/serial", uart=None, virtual=False, **usb):
        """A port below a parent device; with USB attributes its parent is an adapter."""
        self.write("", "dev", name)
        hardware = f"sys/devices/{parent}/{name}"
        os.makedirs(self.at(hardware), exist_ok=True)
        for key, value in usb.items():
            self.write(value, "sys/devices", os.path.dirname(parent), key)
        if driver:
            os.makedirs(self.at("sys/bus/drivers", driver), exist_ok=True)
            self.link(self.at("sys/bus/drivers", driver), hardware, "driver")
        if uart is not None:
            self.write(uart, "sys/class/tty", name, "type")
        os.makedirs(self.at("sys/class/tty", name), exist_ok=True)
        if not virtual:
            self.link(self.at(hardware), "sys/class/tty", name, "device")
        return hardware

    def process(self, pid, name, *descriptors):
        self.write(name, "proc", str(pid), "comm")
        os.makedirs(self.at("proc", str(pid), "fd"), exist_ok=True)
        for number, path in enumerate(descriptors):
            self.link(path, "proc", str(pid), "fd", str(number))

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.folder.cleanup()
