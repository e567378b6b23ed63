#!/usr/bin/python3
"""Leaves a scene as a save does that is interrupted: half written, with its undo record beside it.

usage: interrupt.py SCENE SAVED [untouched]   (SAVED is the scene after the save, of the same length)
"""
import pathlib
import struct
import sys


def checksum(*pieces):
    state = 0
    for piece in pieces:
        padded = piece + bytes(-len(piece) % 8)
        for word in (len(piece), *struct.unpack(f">{len(padded) // 8}Q", padded)):
            state = (state ^ word) * 0x9E3779B97F4A7C15 % 2**64
            state ^= state >> 32
    return struct.pack(">Q", state)


scene, saved, *untouched = sys.argv[1:]
old, new = pathlib.Path(scene).read_bytes(), pathlib.Path(saved).read_bytes()
begin = next(i for i in range(len(old)) if old[i] != new[i])
end = next(i for i in range(len(old), 0, -1) if old[i - 1] != new[i - 1])
around = checksum(old[: min(begin, 4096)], old[max(0, begin - 4096) : begin])
head = b"VUMOUNDO" + struct.pack(">IIQQ", 1, 1, len(old), len(new)) + around
head += struct.pack(">QQQ", begin, end - begin, end - begin)
record = head + old[begin:end] + new[begin:end] + checksum(head, old[begin:end], new[begin:end])
pathlib.Path(scene + ".vumo-undo").write_bytes(record)
if not untouched:
    half = (begin + end) // 2
    pathlib.Path(scene).write_bytes(new[:half] + old[half:])
