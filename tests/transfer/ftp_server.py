#!/usr/bin/env python3
"""FTP servers for the transfer tests, on 127.0.0.1 only.

  ftp_server.py PORTFILE ROOT [--drop-after BYTES]   a real server (pyftpdlib),
      user "tavlet" password "secret" with every right on ROOT; with
      --drop-after it drops the whole session once a transfer has moved BYTES.
  ftp_server.py PORTFILE --fake SCENARIO             a fake server that sends
      one of the broken conversations below.

The port is written to PORTFILE once the server listens. The server stops when
its standard input closes (the test that started it has ended; not with
--no-stdin, for Wine, where the input means nothing), when a file
PORTFILE.stop appears, or after --lifetime seconds (120), whichever comes first.
"""
import os
import socket
import sys
import threading
import time

USER, PASSWORD = "tavlet", "secret"
USE_STDIN = True

# Each scenario: the greeting, then the reply sent for each command in turn.
# None closes the connection.
FAKE = {
    "garbage-greeting": [b"SSH-2.0-OpenSSH_9.2\r\n"],
    "bad-code": [b"220 ready\r\n", b"2x0 ok\r\n"],
    "code-out-of-range": [b"220 ready\r\n", b"650 odd\r\n"],
    "endless-line": [b"220 " + b"x" * 20000],
    "unfinished-multiline": [b"220-first\r\n220-second\r\n", None],
    "closed-after-greeting": [b"220 ready\r\n", None],
    "silent": [b"220 ready\r\n", b""],
    "bad-pasv": [b"220 ready\r\n", b"230 in\r\n", b"502 no FEAT\r\n", b"200 binary\r\n",
                 b"227 passive mode, no address\r\n"],
    "pasv-out-of-range": [b"220 ready\r\n", b"230 in\r\n", b"502 no FEAT\r\n", b"200 binary\r\n",
                          b"227 Entering Passive Mode (127,0,0,1,300,1)\r\n"],
    "bad-pwd": [b"220 ready\r\n", b"230 in\r\n", b"502 no FEAT\r\n", b"200 binary\r\n", b"257 no quotes\r\n"],
    "huge-multiline": [b"220 ready\r\n", b"230 in\r\n", b"211-features\r\n" + b" X\r\n" * 2000 + b"211 end\r\n"],
}


def write_port(portfile, port):
    with open(portfile + ".tmp", "w") as f:
        f.write(str(port))
    os.replace(portfile + ".tmp", portfile)


def watch(portfile, lifetime, stop):
    """Calls stop() when the test is gone or asks for it."""
    def stdin_closed():
        try:
            while sys.stdin.buffer.read(1):
                pass
        except Exception:
            return
        stop()
    if USE_STDIN and not sys.stdin.isatty():
        threading.Thread(target=stdin_closed, daemon=True).start()
    deadline = time.time() + lifetime

    def poll():
        while time.time() < deadline and not os.path.exists(portfile + ".stop"):
            time.sleep(0.1)
        stop()
    threading.Thread(target=poll, daemon=True).start()


def run_fake(portfile, scenario, lifetime):
    replies = FAKE[scenario]
    listener = socket.socket(socket.AF_INET, socket.SOCK_STREAM)
    listener.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
    listener.bind(("127.0.0.1", 0))
    listener.listen(4)
    watch(portfile, lifetime, lambda: os._exit(0))
    write_port(portfile, listener.getsockname()[1])
    while True:
        conn, _ = listener.accept()
        try:
            with conn:
                reader = conn.makefile("rb")
                for i, reply in enumerate(replies):
                    if reply is None:
                        break
                    if i > 0 and not reader.readline():
                        break
                    conn.sendall(reply)
                else:
                    # Past the scenario: read until the client goes.
                    while reader.readline():
                        pass
                reader.close()
                conn.shutdown(socket.SHUT_RDWR)
        except OSError:
            pass


def run_real(portfile, root, drop_after, lifetime):
    from pyftpdlib.authorizers import DummyAuthorizer
    from pyftpdlib.handlers import DTPHandler, FTPHandler
    from pyftpdlib.servers import FTPServer

    class DroppingDTP(DTPHandler):
        def _dropped(self):
            total = self.tot_bytes_sent + self.tot_bytes_received
            if drop_after is not None and total >= drop_after:
                self.cmd_channel.close()
                return True
            return False

        def send(self, data):
            sent = super().send(data)
            self._dropped()
            return sent

        def handle_read(self):
            super().handle_read()
            self._dropped()

        # The base class binds this name to its own handle_read.
        handle_read_event = handle_read

    authorizer = DummyAuthorizer()
    authorizer.add_user(USER, PASSWORD, root, perm="elradfmwMT")
    handler = type("Handler", (FTPHandler,), {})
    handler.authorizer = authorizer
    handler.auth_failed_timeout = 0
    handler.banner = "tavlet test server ready"
    if drop_after is not None:
        handler.dtp_handler = DroppingDTP
        handler.use_sendfile = False
    server = FTPServer(("127.0.0.1", 0), handler)
    watch(portfile, lifetime, lambda: os._exit(0))
    write_port(portfile, server.socket.getsockname()[1])
    server.serve_forever(handle_exit=False)


def main(argv):
    import logging
    logging.basicConfig(level=logging.ERROR)
    args = list(argv)
    lifetime = 120.0
    global USE_STDIN
    if "--no-stdin" in args:
        args.remove("--no-stdin")
        USE_STDIN = False
    if "--lifetime" in args:
        i = args.index("--lifetime")
        lifetime = float(args[i + 1])
        del args[i:i + 2]
    portfile = args[0]
    if args[1] == "--fake":
        run_fake(portfile, args[2], lifetime)
        return
    drop_after = None
    if "--drop-after" in args:
        drop_after = int(args[args.index("--drop-after") + 1])
    run_real(portfile, args[1], drop_after, lifetime)


if __name__ == "__main__":
    main(sys.argv[1:])
