"""Applies a template with a terminal as standard error and tells what was drawn there."""

import fcntl
import os
import pty
import struct
import subprocess
import sys
import termios
import threading
import time

COLUMNS = 80
REDRAW = b"\r\x1b[K"


def run(name, errors):
    """The input is a pipe that keeps the program waiting: by then a redraw is due."""
    os.mkfifo(name)
    command = ["bomparser", "apply", "-t", "parts.xml", "-o", "out.xml", name]
    with subprocess.Popen(command, stderr=errors) as program, open(name, "wb") as source:
        time.sleep(0.2)
        source.write(b"R1 10\n" * 200_000)
        source.close()
        status = program.wait()
    os.remove(name)
    return status


def drawn_on_terminal(name):
    terminal, errors = pty.openpty()
    fcntl.ioctl(errors, termios.TIOCSWINSZ, struct.pack("HHHH", 24, COLUMNS, 0, 0))
    pieces = []

    def read():
        try:
            while piece := os.read(terminal, 65536):
                pieces.append(piece)
        except OSError:
            pass  # The last writer has closed it.

    reader = threading.Thread(target=read)
    reader.start()
    status = run(name, errors)
    os.close(errors)
    reader.join()
    return status, b"".join(pieces)


def judge(name):
    status, drawn = drawn_on_terminal(name)
    # A machine that is busy elsewhere may see the program start later than its input.
    for _ in range(5):
        if drawn:
            break
        status, drawn = drawn_on_terminal(name)
    before, *texts = drawn.split(REDRAW)
    print("status", status)
    print("draws:", bool(texts))
    print("nothing but redraws:", before == b"" and all(text.isascii() and text.decode().isprintable() for text in texts))
    print("each in one row:", all(len(text) < COLUMNS for text in texts))
    print("each has a share:", all(b"%" in text for text in texts[:-1]))
    print("the last one clears the row:", texts[-1:] == [b""])


def main():
    for name in ("list.txt", "a_name_" + 100 * "x" + ".txt"):
        judge(name)
    with open("errors", "wb") as errors:
        print("status", run("list.txt", errors))
    print("elsewhere:", os.path.getsize("errors"), "bytes")


sys.exit(main())
