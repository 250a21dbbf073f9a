"""What the servers of the driver soak have in common: a clock that everybody can read, and a record of writes.

The record is a file with a line for each write, "MILLISECONDS NAME VALUE", of the machine's monotonic clock. It survives a
server that is killed: a server that comes back holds what was written last.
"""
import os
import time


def milliseconds():
    return int(time.monotonic() * 1000)


def clock():
    """The value of a sensor: it says by itself when it was taken, in tenths of a second."""
    return milliseconds() // 100


class Record:
    def __init__(self, path):
        self.held = {}
        self._file = os.open(path, os.O_WRONLY | os.O_CREAT | os.O_APPEND | os.O_CLOEXEC, 0o600)
        with open(path) as lines:
            for line in lines:
                _, name, value = line.rstrip("\n").split(" ", 2)
                self.held[name] = int(value)

    def write(self, name, value):
        """Keeps a value: it is in the record before anybody can see it."""
        os.write(self._file, f"{milliseconds()} {name} {value}\n".encode())
        self.held[name] = value
