#!/usr/bin/env python3
"""Plays the browser extension against the real TallywiseBrowserHost.

Usage: extension_driver.py HOST_EXECUTABLE BROWSER_ID HOSTNAME SECONDS [private]

Starts the host as a browser would (frames on its standard input and output),
says hello, waits until the host reports a running session, then reports the
active tab on HOSTNAME and a heartbeat every second for SECONDS seconds, and
closes the connection. Prints each message of the host as one JSON line.
With "private", every event says it comes from a private window and still
names the host, as a faulty extension might: nothing may keep that name.
"""
import json
import select
import struct
import subprocess
import sys
import time
import uuid
from datetime import datetime, timezone


def frame(message):
    data = json.dumps(message).encode()
    return struct.pack("=I", len(data)) + data


def now_text():
    return datetime.now(timezone.utc).isoformat(timespec="milliseconds").replace("+00:00", "Z")


def event(browser, event_type, hostname, private=False):
    return {
        "id": str(uuid.uuid4()).upper(),
        "browserDisplayName": "Chromium",
        "browserBundleIdentifier": browser,
        "hostname": hostname,
        "temporaryTabIdentifier": "tab-1",
        "timestamp": now_text(),
        "eventType": event_type,
        "isPrivate": private,
        "resourceType": "website",
    }


class HostOutput:
    def __init__(self, stream):
        self.stream = stream
        self.buffer = b""

    def messages(self, timeout):
        ready, _, _ = select.select([self.stream], [], [], timeout)
        if ready:
            chunk = self.stream.read1(65536)
            if not chunk:
                raise SystemExit("the host closed its output")
            self.buffer += chunk
        found = []
        while len(self.buffer) >= 4:
            (length,) = struct.unpack("=I", self.buffer[:4])
            if len(self.buffer) < 4 + length:
                break
            found.append(json.loads(self.buffer[4:4 + length]))
            self.buffer = self.buffer[4 + length:]
        for message in found:
            print(json.dumps(message), flush=True)
        return found


def main():
    executable, browser, hostname, seconds = sys.argv[1:5]
    private = sys.argv[5:6] == ["private"]
    host = subprocess.Popen([executable, "--browser=" + browser],
                            stdin=subprocess.PIPE, stdout=subprocess.PIPE)
    output = HostOutput(host.stdout)
    host.stdin.write(frame({"bridgeMessage": "hello", "extensionVersion": "0.1.0",
                            "protocolVersion": 1}))
    host.stdin.flush()
    deadline = time.monotonic() + 20
    while not any(m.get("sessionRunning") for m in output.messages(0.5)):
        if time.monotonic() > deadline:
            raise SystemExit("the host never reported a running session")
    host.stdin.write(frame(event(browser, "tabActivated", hostname, private)))
    host.stdin.flush()
    end = time.monotonic() + float(seconds)
    while time.monotonic() < end:
        output.messages(1.0)
        host.stdin.write(frame(event(browser, "heartbeat", hostname, private)))
        host.stdin.flush()
    host.stdin.close()
    if host.wait(timeout=10) != 0:
        raise SystemExit("the host ended with status %d" % host.returncode)


if __name__ == "__main__":
    main()
