#!/usr/bin/env python3
"""A local HTTPS server for the update fetch tests.

Serves the files of --root on 127.0.0.1 on a port the system chooses and
prints that port on one line once it listens. Each request's path and
headers are appended to requests.jsonl in --root. Two paths are special:
/redirect/<address> answers 302 to <address> (percent-decoded), and
/cookie/<path> answers with the file <path> and sets a cookie.
"""
import argparse
import functools
import http.server
import json
import os
import ssl
import sys
import urllib.parse


class Handler(http.server.SimpleHTTPRequestHandler):
    def do_GET(self):
        with open(os.path.join(self.directory, "requests.jsonl"), "a", encoding="utf-8") as log:
            log.write(json.dumps({"path": self.path, "headers": dict(self.headers)}) + "\n")
        if self.path.startswith("/redirect/"):
            self.send_response(302)
            self.send_header("Location", urllib.parse.unquote(self.path[len("/redirect/"):]))
            self.send_header("Content-Length", "0")
            self.end_headers()
            return
        if self.path.startswith("/cookie/"):
            with open(os.path.join(self.directory, self.path[len("/cookie/"):]), "rb") as served:
                body = served.read()
            self.send_response(200)
            self.send_header("Set-Cookie", "visitor=tracked; Path=/")
            self.send_header("Content-Length", str(len(body)))
            self.end_headers()
            self.wfile.write(body)
            return
        super().do_GET()

    def log_message(self, *args):
        pass


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--root", required=True)
    parser.add_argument("--cert", required=True)
    parser.add_argument("--key", required=True)
    arguments = parser.parse_args()
    handler = functools.partial(Handler, directory=arguments.root)
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(arguments.cert, arguments.key)
    server.socket = context.wrap_socket(server.socket, server_side=True)
    print(server.server_address[1], flush=True)
    server.serve_forever()


if __name__ == "__main__":
    sys.exit(main())
