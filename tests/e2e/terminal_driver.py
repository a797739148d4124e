#!/usr/bin/python3
"""Drives `lumenote-cli record` on a pseudo-terminal, as a user at a keyboard.

Usage: terminal_driver.py SCRIPT -- COMMAND...
SCRIPT holds one step per line: `expect TEXT` waits (up to 20 s) until TEXT
has appeared in the output since the previous expectation, `send TEXT` types
TEXT ("\\n" for Enter, "\\xNN" for any byte: "\\x7f" Backspace, "\\x1b" Escape,
"\\x04" Ctrl-D), `exit N` waits for the program to end with status N.
Prints the whole output on failure and exits 1.
"""
import os
import re
import pty
import select
import sys
import time

DEADLINE = 20.0


def main():
    separator = sys.argv.index("--")
    script = open(sys.argv[1], encoding="utf-8").read().splitlines()
    command = sys.argv[separator + 1:]
    pid, fd = pty.fork()
    if pid == 0:
        os.execvp(command[0], command)
    output = b""
    seen = 0

    def fail(why):
        sys.stderr.write(f"terminal driver: {why}\n--- output\n")
        sys.stderr.write(output.decode("utf-8", "replace"))
        try:
            os.kill(pid, 9)
        except ProcessLookupError:
            pass
        sys.exit(1)

    def read_some(timeout):
        nonlocal output
        ready, _, _ = select.select([fd], [], [], timeout)
        if ready:
            try:
                chunk = os.read(fd, 4096)
            except OSError:
                return False
            if not chunk:
                return False
            output += chunk
        return True

    for step in script:
        if not step.strip() or step.startswith("#"):
            continue
        verb, _, argument = step.partition(" ")
        if verb == "expect":
            wanted = argument.encode("utf-8")
            until = time.monotonic() + DEADLINE
            while output.find(wanted, seen) < 0:
                if time.monotonic() > until or not read_some(0.1):
                    if output.find(wanted, seen) >= 0:
                        break
                    fail(f"never saw {argument!r}")
            seen = output.find(wanted, seen) + len(wanted)
        elif verb == "send":
            typed = re.sub(r"\\x([0-9a-fA-F]{2})", lambda m: chr(int(m.group(1), 16)),
                           argument.replace("\\n", "\n"))
            os.write(fd, typed.encode("utf-8"))
        elif verb == "exit":
            until = time.monotonic() + DEADLINE
            while read_some(0.1) and time.monotonic() < until:
                pass
            _, status = os.waitpid(pid, 0)
            code = os.waitstatus_to_exitcode(status)
            if code != int(argument):
                fail(f"exit status {code}, expected {argument}")
        else:
            fail(f"unknown step {step!r}")


if __name__ == "__main__":
    main()
