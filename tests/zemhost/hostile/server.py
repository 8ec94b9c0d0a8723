"""One start of the program for all runs on a player: each is a process of its own, but the program is loaded once."""

import os
import socket
import struct
import subprocess


class Run:
    """A run under way, as much of subprocess.Popen as its reader needs."""

    def __init__(self, connection, pid):
        self.connection, self.pid = connection, pid

    def kill(self):
        os.kill(self.pid, 9)

    def wait(self):
        """How it ended: its status, below zero for a signal."""
        return os.waitstatus_to_exitcode(_number(self.connection))


class Server:
    """The program with the library of ../RunServer.cpp, which says what is asked of it."""

    def __init__(self, library, program, **how):
        self.connection, theirs = socket.socketpair(socket.AF_UNIX, socket.SOCK_SEQPACKET)
        environment = how.pop("env") | {"LD_PRELOAD": library, "RUN_SERVER_SOCKET": str(theirs.fileno())}
        self.process = subprocess.Popen([program], env=environment, pass_fds=[theirs.fileno()], **how)
        theirs.close()

    def start(self, words, output):
        request = b"".join(os.fsencode(word) + b"\0" for word in words)
        socket.send_fds(self.connection, [request], [output])
        return Run(self.connection, _number(self.connection))

    def close(self):
        self.connection.close()
        self.process.wait()


def _number(connection):
    """The next number that the server says."""
    said = connection.recv(4)
    if len(said) != 4:
        raise RuntimeError("the program ends before its main function")
    return struct.unpack("i", said)[0]
