"""Logs as the library writes them, made independently of it."""
from datetime import datetime, timedelta

HEADER = "Log file of IVRA SDK\n\nOperating System: Linux\n\n\n"


class Log:
    """Lines with times that the test decides, in seconds; absolute ones count from a day in summer."""

    def __init__(self, absolute=False, header=True):
        self.absolute = absolute
        self.text = HEADER if header else ""
        self.now = 0.0

    def time(self):
        micro = round(self.now * 1e6)
        if self.absolute:
            return (datetime(2026, 6, 1, 23, 59, 50) + timedelta(microseconds=micro)).strftime("%Y.%m.%d-%H.%M.%S.%f")
        return f"{micro // 1000000:04}.{micro % 1000000:06}"

    def line(self, port, operation, tag, message, error=False):
        self.text += (f"{self.time()} :: ZUCOM PH=0x{port:x} TID=281473684197392 ZucomPort::{operation}:{tag}"
                      f"{' ERROR' if error else ''} :: {message}\n")

    def open(self, port, device):
        self.line(port, "openPort", 40, f"Opening device: devicePath={device} busaddress=255 opMode=RS232")

    def close(self, port, device):
        self.line(port, "closePort", 106, f"Closing device: {device}")
        self.line(port, "closePort", 113, "RS485 not available", error=True)

    def transmit(self, port, data):
        self.line(port, "transmit", 131, "Transmitting data: " + data.hex(" ") + " ")
        self.line(port, "transmit", 143, f"Sent {len(data)} Bytes")

    def receive(self, port, device, wait):
        self.line(port, "receive", 163, f"Receiving on device: {device}")
        self.line(port, "receive", 185, "Timeout: 250")
        self.now += wait

    def answer(self, port, data):
        self.line(port, "receive", 246, "Received protocol: " + data.hex(" ") + f"  Length: {len(data)}")

    def timeout(self, port):
        self.line(port, "receive", 211, "ZUCOM: receive timeout", error=True)

    def broken(self, port):
        self.line(port, "receive", 211, "ZUCOM: Invalid protocol length", error=True)

    def failed(self, port):
        self.line(port, "transmit", 139, "ZUCOM: error in transmit process :: System error: Input/output error",
                  error=True)
