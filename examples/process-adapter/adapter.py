#!/usr/bin/env python3
"""An adapter of the driver "process": a room with a heater, whose temperature moves by itself.

docs/process-protocol.md describes the lines. Standard library only; runs until its input ends.
"""
import json
import select
import sys
import time

SECONDS = 1.0  # between two steps of the room

values = {"temperature": 18.5, "target": 21, "heating": False, "note": "idle"}
LIMITS = {"target": (5, 30)}
TEXTS = {"note"}
subscribed = set()


def say(**message):
    print(json.dumps(message), flush=True)


def set_value(name, value):
    """Keeps a value of the room, and reports it to a panel that subscribed to it."""
    if values[name] != value:
        values[name] = value
        if name in subscribed:
            say(type="changed", name=name, value=value)


def step():
    heating = values["temperature"] < values["target"]
    change = 0.5 if heating else -0.1
    set_value("heating", heating)
    set_value("temperature", round(values["temperature"] + change, 1))


def write(name, value):
    """Returns why the value is refused, or None when it is kept."""
    if name in TEXTS and isinstance(value, str):
        values[name] = value
        return None
    if name not in LIMITS:
        return name + " can only be read"
    low, high = LIMITS[name]
    if isinstance(value, str) or not low <= value <= high:
        return f"expected {low} to {high}"
    values[name] = value
    return None


def answer(request):
    kind, name, number = request.get("type"), request.get("name"), request.get("id")
    if number is None:
        return  # a greeting, an error, or a message of a later version
    if kind not in ("read", "write", "subscribe"):
        return say(type="error", id=number, message=f"unknown request {kind}")
    if name not in values:
        return say(type="error", id=number, message=f"there is no {name}")
    if kind == "write":
        refusal = write(name, request.get("value"))
        if refusal:
            return say(type="error", id=number, message=refusal)
    if kind == "subscribe":
        subscribed.add(name)
    say(type="result", id=number, value=values[name])


def main():
    say(type="hello", version=1)
    received = b""
    next_step = time.monotonic() + SECONDS
    while True:
        left = next_step - time.monotonic()
        if left <= 0:
            step()
            next_step += SECONDS
        ready, _, _ = select.select([sys.stdin.buffer.raw], [], [], max(left, 0))
        if not ready:
            continue
        piece = sys.stdin.buffer.raw.read(4096)
        if not piece:
            return  # the panel has ended
        *lines, received = (received + piece).split(b"\n")
        for line in lines:
            answer(json.loads(line))


main()
