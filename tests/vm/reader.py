"""A reader on the far side of a line: it checks every frame that arrives and answers it."""

import socket
import threading

# kind: (bytes before the payload, frame up to the payload for a whole length, address and direction)
KINDS = {
    "standard": (2, lambda length, address, direction: bytes([length, address])),
    "advanced": (4, lambda length, address, direction: bytes([2, length >> 8, length & 255, address])),
    "enhanced": (6, lambda length, address, direction: bytes([3, length >> 8, length & 255, 0, direction, address])),
}
REQUEST, ANSWER = 1, 2
TIME_LIMIT = 120  # seconds; ends a test that hangs, and nothing else


def crc16(data):
    crc = 0xFFFF
    for byte in data:
        crc ^= byte
        for _ in range(8):
            crc = crc >> 1 ^ (0x8408 if crc & 1 else 0)
    return crc


def frame(kind, payload, address=255, direction=REQUEST):
    offset, header = KINDS[kind]
    body = header(offset + len(payload) + 2, address, direction) + payload
    return body + crc16(body).to_bytes(2, "little")


def answer_to(request):
    """The answer with the same kind, address and command, status 0, and the rest of the request's payload."""
    kind = {2: "advanced", 3: "enhanced"}.get(request[0], "standard")
    offset, _ = KINDS[kind]
    payload = request[offset:-2]
    return frame(kind, payload[:1] + b"\0" + payload[1:], request[offset - 1], ANSWER)


def cut(pending):
    """Cuts the oldest whole frame off: (frame or None, the rest)."""
    length = pending[0] if pending and pending[0] > 4 else int.from_bytes(pending[1:3], "big")
    if len(pending) < 3 or len(pending) < length:
        return None, pending
    return pending[:length], pending[length:]


class Reader(threading.Thread):
    """Serves one connection after the other on a Unix socket: each is a line that was plugged in."""

    def __init__(self, path):
        super().__init__(daemon=True)
        self.path = path
        self.answering = True
        self.damaged = 0  # frames that arrived with a wrong checksum
        self._received = 0
        self._changed = threading.Condition()
        self._line = None
        self._server = socket.socket(socket.AF_UNIX)
        self._server.bind(path)
        self._server.listen()
        self.start()

    def run(self):
        while True:
            self._line, _ = self._server.accept()
            self._serve()

    def send(self, data):
        self._line.sendall(data)

    def count_anew(self):
        """Starts counting for wait_received()."""
        with self._changed:
            self._received = 0

    def wait_received(self, count):
        with self._changed:
            if not self._changed.wait_for(lambda: self._received >= count, TIME_LIMIT):
                raise TimeoutError(f"{self._received} of {count} bytes reached the reader")

    def _serve(self):
        pending = b""
        while data := self._read():
            with self._changed:
                self._received += len(data)
                self._changed.notify_all()
            if self.answering:
                pending = self._answer(pending + data)

    def _read(self):
        try:
            return self._line.recv(65536)
        except ConnectionError:
            return b""

    def _answer(self, pending):
        request, pending = cut(pending)
        while request:
            if crc16(request[:-2]) == int.from_bytes(request[-2:], "little"):
                self._line.sendall(answer_to(request))
            else:
                self.damaged += 1
            request, pending = cut(pending)
        return pending
