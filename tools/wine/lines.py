#!/usr/bin/env python3
"""Serial lines for programs under Wine. A line is two ptys whose bytes are copied to one another; each of its ends is a
COM port of a Wine prefix or a link to a tty.

  lines.py join PREFIX END END   one line. END is "COM" for any free port, "COM7" for this one, or a path for the link.
                                 Prints both ends' names on one line, then lasts until its standard input ends or it
                                 is told to stop (SIGINT, SIGTERM).
  lines.py serve PREFIX FILE     lines on request: writes the TCP port it listens on (127.0.0.1) to the file. Each
                                 connection gets a line of its own with two free COM ports, is told "COM8 COM9", and
                                 keeps the line for as long as it lasts.

A port's number is taken by a lock in PREFIX/ports, so that any number of these programs can share a prefix.
"""
import fcntl
import os
import selectors
import signal
import socket
import sys
import tty
from pathlib import Path

FIRST_PORT, LAST_PORT = 10, 255  # below: the machine's own
MOST = 4096  # bytes that are taken from one end before the other has them


class Port:
    """A number of the prefix that leads to a tty."""

    def __init__(self, prefix, number, target):
        folder = prefix / "ports"
        folder.mkdir(exist_ok=True)
        self.name = f"COM{number}"
        self._lock = os.open(folder / self.name, os.O_RDWR | os.O_CREAT | os.O_CLOEXEC, 0o600)
        try:
            fcntl.flock(self._lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except OSError:
            os.close(self._lock)
            raise
        self._link = prefix / "dosdevices" / self.name.lower()
        replace_link(self._link, target)

    def close(self):
        self._link.unlink(missing_ok=True)
        os.close(self._lock)


class Tty:
    """An end without a name of its own."""

    def __init__(self, tty_name):
        self.name = tty_name

    def close(self):
        pass


class Link:
    """A symbolic link to a tty."""

    def __init__(self, path, target):
        self.name = str(path)
        self._link = path
        replace_link(path, target)

    def close(self):
        self._link.unlink(missing_ok=True)


def replace_link(path, target):
    made = path.with_name(f"{path.name}.{os.getpid()}.new")
    made.symlink_to(target)
    made.replace(path)


def take_port(prefix, target):
    for number in range(FIRST_PORT, LAST_PORT + 1):
        try:
            return Port(prefix, number, target)
        except BlockingIOError:
            continue
    raise SystemExit("no COM port is free")


def take_name(prefix, end, target):
    if end.upper() == "COM":
        return take_port(prefix, target)
    if end.upper().startswith("COM") and end[3:].isdigit():
        return Port(prefix, int(end[3:]), target)
    if end == "TTY":
        return Tty(target)
    return Link(Path(end).absolute(), target)


class End:
    """One pty. Its slave is kept open here, so that it never hangs up."""

    def __init__(self, prefix, end):
        self.master, self._slave = os.openpty()
        tty.setraw(self._slave)
        os.set_blocking(self.master, False)
        self.pending = b""  # to be written to the master
        self.name = take_name(prefix, end, os.ttyname(self._slave))

    def close(self):
        self.name.close()
        os.close(self.master)
        os.close(self._slave)


class Line:
    """Two ends; what comes in at one is written to the other, and no more is taken before all of it has gone."""

    def __init__(self, selector, prefix, ends=("COM", "COM")):
        self._selector = selector
        self._ends = [End(prefix, end) for end in ends]
        self._watch()

    def names(self):
        return " ".join(end.name.name for end in self._ends)

    def _watch(self):
        for end, other in zip(self._ends, reversed(self._ends)):
            wanted = (0 if other.pending else selectors.EVENT_READ) | (selectors.EVENT_WRITE if end.pending else 0)
            watched = self._selector.get_map().get(end.master)
            if watched is not None and watched.events == wanted:
                continue
            if watched is not None:
                self._selector.unregister(end.master)
            if wanted:
                self._selector.register(end.master, wanted, self.move)

    def move(self):
        for end, other in zip(self._ends, reversed(self._ends)):
            self._move(end, other)
        self._watch()

    @staticmethod
    def _move(end, other):
        try:
            if not other.pending:
                other.pending = os.read(end.master, MOST)
            if other.pending:
                other.pending = other.pending[os.write(other.master, other.pending):]
        except BlockingIOError:
            pass

    def close(self):
        for end in self._ends:
            if end.master in self._selector.get_map():
                self._selector.unregister(end.master)
            end.close()


class Server:
    def __init__(self, selector, prefix, file):
        self._selector, self._prefix = selector, prefix
        self._lines = {}
        self._socket = socket.create_server(("127.0.0.1", 0), backlog=64)
        selector.register(self._socket, selectors.EVENT_READ, self._accept)
        made = file.with_name(file.name + ".new")
        made.write_text(f"{self._socket.getsockname()[1]}\n")
        made.replace(file)

    def _accept(self):
        connection, _ = self._socket.accept()
        line = Line(self._selector, self._prefix)
        self._lines[connection] = line
        self._selector.register(connection, selectors.EVENT_READ, lambda: self._heard(connection))
        connection.sendall(line.names().encode() + b"\n")

    # Nobody says anything: what is heard is the end.
    def _heard(self, connection):
        try:
            if connection.recv(64):
                return
        except ConnectionError:
            pass
        self._selector.unregister(connection)
        connection.close()
        self._lines.pop(connection).close()

    def close(self):
        for line in self._lines.values():
            line.close()


def run(selector, ends_with_input):
    def stop(*_):
        raise KeyboardInterrupt
    signal.signal(signal.SIGTERM, stop)
    if ends_with_input:
        selector.register(sys.stdin, selectors.EVENT_READ, lambda: os.read(0, 64) or stop())
    try:
        while True:
            ready = [key for key, _ in selector.select()]
            for key in ready:
                if selector.get_map().get(key.fd) is not None:  # an earlier one may have closed it
                    key.data()
    except KeyboardInterrupt:
        pass


def main(arguments):
    selector = selectors.DefaultSelector()
    if len(arguments) == 4 and arguments[0] == "join":
        line = Line(selector, Path(arguments[1]), arguments[2:])
        print(line.names(), flush=True)
        run(selector, ends_with_input=True)
        line.close()
    elif len(arguments) == 3 and arguments[0] == "serve":
        server = Server(selector, Path(arguments[1]), Path(arguments[2]))
        run(selector, ends_with_input=False)
        server.close()
    else:
        print(__doc__, file=sys.stderr)
        return 2
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
