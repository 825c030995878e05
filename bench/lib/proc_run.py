#!/usr/bin/env python3
"""Runs one command as a whole process and prints what it cost, on one line:
wall seconds, peak resident KB, and its I/O accounting (rchar, wchar, read_bytes, write_bytes),
read at its exit before it is reaped. Its own output goes to /dev/null.
usage: proc_run.py COMMAND [ARG...]"""
import os
import sys
import time


def main():
    if len(sys.argv) < 2:
        print(__doc__, file=sys.stderr)
        return 64
    start = time.monotonic()
    pid = os.fork()
    if pid == 0:
        null = os.open(os.devnull, os.O_RDWR)
        for fd in (0, 1, 2):
            os.dup2(null, fd)
        try:
            os.execvp(sys.argv[1], sys.argv[1:])
        finally:
            os._exit(127)
    # WNOWAIT leaves the finished process unreaped, so its accounting can still be read.
    os.waitid(os.P_PID, pid, os.WEXITED | os.WNOWAIT)
    wall = time.monotonic() - start
    io = {}
    with open(f"/proc/{pid}/io") as f:
        for line in f:
            key, value = line.split(":")
            io[key] = int(value)
    _, status, usage = os.wait4(pid, 0)
    print(f"{wall:.4f} {usage.ru_maxrss} {io['rchar']} {io['wchar']} {io['read_bytes']} {io['write_bytes']}")
    return os.waitstatus_to_exitcode(status)


if __name__ == "__main__":
    sys.exit(main())
