#!/usr/bin/env python3
"""An update endpoint for the update-check tests, on 127.0.0.1 only.

  update_server.py PORTFILE [--no-stdin] [--lifetime SECONDS]

Paths: /good (a newer build), /same (this build), /missing (404),
/malformed (an HTML page), /huge (10 MB), /huge-unsized (10 MB without a
Content-Length), /silent (accepts and never answers). Stops as ftp_server.py.
"""
import os
import sys
import threading
import time
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import ftp_server  # noqa: E402  (its port file and stop rules)

GOOD = b"tavlet-update 1\nversion 2.0.9\nurl https://downloads.example.invalid/tavlet-2.0.9.zip\nnotes Fixes.\n"
SAME = b"tavlet-update 1\nversion 2.0.7\nurl https://downloads.example.invalid/tavlet-2.0.7.zip\n"
STOP = threading.Event()


class Handler(BaseHTTPRequestHandler):
    def log_message(self, *args):
        pass

    def answer(self, status, body, sized=True):
        self.send_response(status)
        self.send_header("Content-Type", "text/plain")
        if sized:
            self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        try:
            self.wfile.write(body)
        except ConnectionError:
            pass  # the client stops reading a body that is too large

    def do_GET(self):
        path = self.path
        if path == "/good":
            self.answer(200, GOOD)
        elif path == "/same":
            self.answer(200, SAME)
        elif path == "/malformed":
            self.answer(200, b"<html><body>It works!</body></html>\n")
        elif path in ("/huge", "/huge-unsized"):
            self.answer(200, b"tavlet-update 1\n" + b"#" * (10 * 1024 * 1024), sized=path == "/huge")
        elif path == "/silent":
            STOP.wait(60)
        else:
            self.answer(404, b"not found\n")


def main(argv):
    args = list(argv)
    lifetime = 120.0
    if "--lifetime" in args:
        i = args.index("--lifetime")
        lifetime = float(args[i + 1])
        del args[i:i + 2]
    if "--no-stdin" in args:
        args.remove("--no-stdin")
        ftp_server.USE_STDIN = False
    portfile = args[0]
    server = ThreadingHTTPServer(("127.0.0.1", 0), Handler)
    server.daemon_threads = True

    def stop():
        STOP.set()
        os._exit(0)
    ftp_server.watch(portfile, lifetime, stop)
    ftp_server.write_port(portfile, server.server_address[1])
    server.serve_forever()


if __name__ == "__main__":
    main(sys.argv[1:])
