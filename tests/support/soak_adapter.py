"""An adapter of the driver "process" for the driver soak: "polled RECORD" on its standard streams, or "pushing RECORD SOCKET",
which listens at a Unix socket and sends its clock ten times a second.

A line in RECORD.pid names the process. Ends with its input, or when it is killed.
"""
import json
import os
import select
import socket
import sys
import time

from soak_record import Record, clock

TICK = 0.1  # seconds


class Session:
    """A panel at the other end of two descriptors."""

    def __init__(self, record, pushes, reader, writer):
        self._record, self._pushes, self._reader, self._writer = record, pushes, reader, writer
        self._subscribed = set()

    def say(self, **message):
        text = json.dumps(message).encode() + b"\n"
        while text:
            text = text[os.write(self._writer, text):]

    def value(self, name):
        return clock() if name == "clock" else f"T{clock()}" if name == "text" else self._record.held.get(name, 0)

    def answer(self, request):
        kind, name, number = request.get("type"), request.get("name"), request.get("id")
        if number is None:
            return
        if kind == "subscribe" and not self._pushes:
            self.say(type="error", id=number, message="it is not watched")
            return
        if kind == "subscribe":
            self._subscribed.add(name)
        if kind == "write" and request["value"] % 97 == 13:
            self.say(type="error", id=number, message="an unlucky number")
            return
        if kind == "write":
            self._record.write(name, request["value"])
        self.say(type="result", id=number, value=self.value(name))

    def serve(self):
        self.say(type="hello", version=1)
        received = b""
        next_tick = time.monotonic() + TICK
        while True:
            ready, _, _ = select.select([self._reader], [], [], max(next_tick - time.monotonic(), 0))
            if time.monotonic() >= next_tick:
                next_tick = time.monotonic() + TICK
                for name in self._subscribed & {"clock", "text"}:
                    self.say(type="changed", name=name, value=self.value(name))
            if not ready:
                continue
            piece = os.read(self._reader, 4096)
            if not piece:
                return
            *lines, received = (received + piece).split(b"\n")
            for line in lines:
                self.answer(json.loads(line))


def main():
    kind, path = sys.argv[1:3]
    with open(path + ".pid.new", "w") as file:
        file.write(str(os.getpid()))
    os.rename(path + ".pid.new", path + ".pid")
    record = Record(path)
    if kind == "polled":
        Session(record, False, 0, 1).serve()
        return
    listener = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
    if os.path.exists(sys.argv[3]):
        os.unlink(sys.argv[3])
    listener.bind(sys.argv[3])
    listener.listen(5)
    print("ready", flush=True)
    while True:
        client, _ = listener.accept()
        with client:
            try:
                Session(record, True, client.fileno(), client.fileno()).serve()
            except OSError:
                pass  # the panel has closed the connection


main()
