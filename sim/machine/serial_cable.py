#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""The serial cables of the simulated machine, made of pseudo-terminals.

usage: serial_cable.py PORTS_FOLDER

Each COM port with a device behind it is a link PORTS_FOLDER/COMn to a pseudo-terminal. This program keeps the other
side of every pseudo-terminal and carries the bytes across:

  COM3 - COM4, COM5 - COM6   null-modem cables. Either end may be closed and opened again; the other end notices nothing.
  COM7 - COM8                the cable of a USB receiver. COM7 exists while somebody has COM8 open: closing COM8 is
                             pulling the plug (reads of COM7 fail, the link is gone), opening it is plugging in.

Bytes for an end that nobody has open are dropped, as a serial port drops what nobody reads, and so are bytes that an
end had not read when it was closed. While an end is open nothing is lost: a writer that is faster than the reader waits.
The settings of a port (speed, handshake) stay with its pseudo-terminal while it is closed.
"""
import os
import select
import signal
import sys
import termios
import tty

CHUNK = 4096
# How many chunks one direction may carry before the other cables have their turn.
TURN_CHUNKS = 16
# How often to look for what the kernel has no event for: the far end of an unplugged USB cable being opened, or an end
# being closed while bytes wait for its reader.
POLL_SECONDS = 0.01

NULL_MODEM_CABLES = (("COM3", "COM4"), ("COM5", "COM6"))
USB_CABLES = (("COM7", "COM8"),)


class Port:
    """One COM port: our side of a pseudo-terminal and the link under which the machine finds the other side."""

    def __init__(self, folder, name, epoll):
        self.link = os.path.join(folder, name)
        self.epoll = epoll
        self.master = -1
        self.path = ""
        # Bytes that wait because the reader of this port has fallen behind.
        self.waiting = b""

    def plug(self):
        self.master, slave = os.openpty()
        tty.setraw(slave)
        self.path = os.ttyname(slave)
        # We keep no descriptor of the machine's side: that side then tells whether anybody has the port open. Its
        # settings live as long as ours.
        os.close(slave)
        os.set_blocking(self.master, False)
        self.epoll.register(self.master, select.EPOLLIN | select.EPOLLOUT | select.EPOLLET)
        fresh = self.link + ".new"
        if os.path.lexists(fresh):
            os.unlink(fresh)
        os.symlink(self.path, fresh)
        os.replace(fresh, self.link)

    def unplug(self):
        if os.path.lexists(self.link):
            os.unlink(self.link)
        if self.master >= 0:
            self.epoll.unregister(self.master)
            os.close(self.master)
        self.master = -1
        self.waiting = b""

    def plugged(self):
        return self.master >= 0

    def opened(self):
        """Whether somebody has the port open now."""
        if self.master < 0:
            return False
        poll = select.poll()
        poll.register(self.master, 0)
        return not any(events & select.POLLHUP for _, events in poll.poll(0))

    def take(self):
        """Bytes that the machine wrote to this port; none when there are none now."""
        if self.master < 0:
            return b""
        try:
            return os.read(self.master, CHUNK)
        except BlockingIOError:
            return b""
        except OSError:  # Closed, and everything written before has been taken.
            return b""

    def deliver(self):
        """Hands waiting bytes to the reader of this port. True when nothing is left waiting."""
        if not self.waiting:
            return True
        if not self.opened():
            self.waiting = b""
            return True
        try:
            self.waiting = self.waiting[os.write(self.master, self.waiting) :]
        except BlockingIOError:
            pass
        return not self.waiting

    def drop(self):
        """Forgets every byte on its way to the reader of this port."""
        self.waiting = b""
        if self.master >= 0:
            # On their way through the kernel, and arrived: the latter only the machine's side can flush.
            termios.tcflush(self.master, termios.TCOFLUSH)
            slave = os.open(self.path, os.O_RDWR | os.O_NOCTTY)
            termios.tcflush(slave, termios.TCIFLUSH)
            os.close(slave)


class Cable:
    """Two ports. With a USB cable the first port exists while the second one is open."""

    def __init__(self, near, far, usb):
        self.near = near
        self.far = far
        self.usb = usb
        far.plug()
        if not usb:
            near.plug()
        self.was_open = {near: False, far: False}

    def waits_for_plug(self):
        return self.usb and not self.near.plugged()

    def service(self):
        """Does what there is to do now. True when there is more."""
        self.follow_ends()
        more = self.carry(self.near, self.far)
        return self.carry(self.far, self.near) or more

    def follow_ends(self):
        for port in (self.near, self.far):
            is_open = port.opened()
            if self.was_open[port] and not is_open:
                port.drop()
            self.was_open[port] = is_open
        if self.usb and self.far.opened() != self.near.plugged():
            if self.near.plugged():
                self.near.unplug()
            else:
                self.near.plug()

    @staticmethod
    def carry(source, sink):
        # The sink is asked before every chunk, so that bytes written after an end was opened always reach it.
        for _ in range(TURN_CHUNKS):
            if not sink.deliver():
                return False
            sink.waiting = source.take()
            if not sink.waiting:
                return False
        return True


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: serial_cable.py PORTS_FOLDER")
    folder = sys.argv[1]
    os.makedirs(folder, exist_ok=True)
    epoll = select.epoll()
    cables = [Cable(Port(folder, a, epoll), Port(folder, b, epoll), False) for a, b in NULL_MODEM_CABLES]
    cables += [Cable(Port(folder, a, epoll), Port(folder, b, epoll), True) for a, b in USB_CABLES]

    def stop(_signal, _frame):
        for cable in cables:
            cable.near.unplug()
            cable.far.unplug()
        sys.exit(0)

    signal.signal(signal.SIGTERM, stop)
    signal.signal(signal.SIGINT, stop)
    more = False
    while True:
        # Only edges are reported: a closed end would otherwise report its hang-up without pause.
        look_again = any(cable.waits_for_plug() or cable.near.waiting or cable.far.waiting for cable in cables)
        epoll.poll(0 if more else POLL_SECONDS if look_again else -1)
        more = False
        for cable in cables:
            more = cable.service() or more


if __name__ == "__main__":
    main()
