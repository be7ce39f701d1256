"""The counterpart of ours.cpp for Python's plistlib: plistlib_peer.py read|write FILE."""

import os
import plistlib
import sys
import time

operation, path = sys.argv[1:]
start = time.monotonic()
with open(path, "rb") as file:
    value = plistlib.load(file)
if operation == "write":
    start = time.monotonic()
    plistlib.dumps(value)
elapsed = (time.monotonic() - start) * 1e3
with open("/proc/self/status") as status:
    peak = next(line.split()[1] for line in status if line.startswith("VmHWM"))
print(f"{elapsed:.2f} {peak}", flush=True)
os._exit(0)
