"""Runs the program on hostile players and says what it did that it must not do."""

import ctypes
import fcntl
import os
import pty
import re
import resource
import select
import shutil
import stat
import subprocess
import termios
import time

from place import CANARY, FORGED, Place
from server import Server
from watch import Watch, changes, manifest, steering

# What is run on every player, by the command's name. {player}: its root, {work}: a folder to write to.
COMMANDS = {
    "info": [["{player}"]],
    "songs": [["{player}"]],
    "playlists": [["{player}"]],
    "playlist": [["{player}", "1"]],
    "plays": [["{player}"]],
    "stats": [["{player}"], ["{player}", "--by", "album", "--measure", "time"], ["{player}", "--json"]],
    "report": [["{player}", "-o", "-"], ["{player}", "--privacy", "-o", "{work}/exports/library.html"]],
    "check": [["{player}"], ["{player}", "--read", "--json"]],
    "export": [["{player}", "--format", "csv"], ["{player}", "--format", "ndjson"], ["{player}", "--format", "m3u8"],
               ["{player}", "--format", "m3u8", "--paths", "device", "-o", "{work}/exports/list.m3u8"],
               ["{player}", "--format", "xspf", "--all-playlists", "{work}/lists"],
               ["{player}", "--format", "json", "-o", "{work}/exports/songs.json"],
               ["{player}", "--format", "sqlite", "-o", "{work}/exports/songs.sqlite"],
               ["{player}", "--format", "listenbrainz", "--since-sync"]],
    "rescue": [["{player}", "{work}/music", "--covers", "--playlists", "xspf", "--tags"],
               ["{player}", "{player}/music"]],
    "verify": [["{work}/music"]],
    "covers": [["{player}", "{work}/covers"], ["{player}", "{player}/covers"]],
    "photos": [["{player}", "{work}/photos"]],
    "compare": [["{player}", "{player}"]],
    "duplicates": [["{player}"]],
    "call": [["{player}", "VolumeName", "GetTitle(0)", "GetPath(0)", "GetAbsolutePath(0)", "GetFolderItem(0)",
              "GetPlayListName(0)"]],
    "class": [[]],
}

# How a command may end: well, with one line that says why not, or with a report of what is wrong. The command lines
# are right, and no signal ends a program that is well.
_STATUSES = {"check": {0, 1, 3}, "export": {0, 1, 3}, "rescue": {0, 1, 3}, "verify": {0, 1, 3}, "covers": {0, 1, 3},
             "photos": {0, 1, 3}}
_USUAL_STATUSES = {0, 1}
_REPORTS = re.compile(rb"(Address|Leak|Memory|Thread|UndefinedBehavior)Sanitizer|runtime error:|terminate called")
_BAD_NAME = re.compile("^[.]|[\0-\x1f\x7f-\x9f\u2028\u2029\u200e\u200f\u202a-\u202e\u2066-\u2069\\\\:*?\"<>|]|[. ]$|"
                       "^(?i:con|prn|aux|nul|com[0-9]|lpt[0-9])([.]|$)|^(?i:autorun[.]inf)$")

_CAPABILITIES = (1, 2)  # root's, to read what nobody may read
_PR_CAPBSET_DROP = 24


class Ended:
    """How a run ended: its status, below zero for a signal, and what it wrote."""

    def __init__(self, status, out):
        self.status, self.out = status, out


class Needs(Ended):
    """And what it needed."""

    def __init__(self, status, out, usage, reads):
        super().__init__(status, out)
        self.seconds = usage.ru_utime + usage.ru_stime
        self.kilobytes = usage.ru_maxrss
        self.bytes_read = reads


def _before():
    libc = ctypes.CDLL(None)
    for capability in _CAPABILITIES:
        libc.prctl(_PR_CAPBSET_DROP, capability)
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def _bytes_read(process):
    """What a process that has ended and was not waited for read in all; 0 where the system does not say."""
    try:
        with open(f"/proc/{process.pid}/io", encoding="ascii") as file:
            return int(re.search(r"rchar: (\d+)", file.read())[1])
    except (OSError, TypeError):
        return 0


def _how(place, terminal):
    """Where and how the program is started for a player."""
    environment = {"PATH": os.environ["PATH"], "TERM": "xterm", "LANG": "C.UTF-8", "SECRET": CANARY,
                   "TMPDIR": str(place.work / "tmp"),
                   "ASAN_OPTIONS": "detect_leaks=0:exitcode=77:malloc_context_size=1:"
                                   f"quarantine_size_mb={256 if terminal else 4}",
                   "UBSAN_OPTIONS": "print_stacktrace=1"}
    return {"stdin": subprocess.DEVNULL, "cwd": place.root, "env": environment, "preexec_fn": _before,
            "start_new_session": True}


def _read(ours, process, seconds):
    """What a run writes to its end; None, and it is ended, when it does not end."""
    shown, end = [], time.monotonic() + seconds
    while True:
        if not select.select([ours], [], [], max(0, end - time.monotonic()))[0]:
            process.kill()
            return None
        try:
            part = os.read(ours, 1 << 16)
        except OSError:  # a terminal whose other side is closed
            part = b""
        if not part:
            return b"".join(shown)
        shown.append(part)


def measure(command, place, seconds):
    """Runs it in the player's folder to its end, and says what it needed; None when it does not end."""
    ours, theirs = os.pipe()
    process = subprocess.Popen(command, stdout=theirs, stderr=theirs, **_how(place, terminal=False))
    os.close(theirs)
    shown = _read(ours, process, seconds)
    os.waitid(os.P_PID, process.pid, os.WEXITED | os.WNOWAIT)
    reads = _bytes_read(process)
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    os.close(ours)
    return None if shown is None else Needs(process.returncode, shown, usage, reads)


def show(server, words, seconds):
    """Runs a command on a terminal to its end; None when it does not end."""
    ours, theirs = pty.openpty()
    fcntl.ioctl(theirs, termios.TIOCSWINSZ, b"\x18\0\x84\0\0\0\0\0")
    process = server.start(words, theirs)
    os.close(theirs)
    shown = _read(ours, process, seconds)
    status = process.wait()
    os.close(ours)
    return None if shown is None else Ended(status, shown)


def faults_of_run(name, ended, seconds):
    """What is wrong with how a command ended and what it showed on the terminal."""
    if ended is None:
        return [f"does not end within {seconds} seconds"]
    found = []
    if ended.status not in _STATUSES.get(name, _USUAL_STATUSES):
        word = f"signal {-ended.status}" if ended.status < 0 else f"status {ended.status}"
        found.append(f"ends with {word}: {ended.out[-2000:].decode('utf-8', 'replace')}")
    if ended.status == 1 and b"zemhost:" not in ended.out:
        found.append("fails without a word")
    if report := _REPORTS.search(ended.out):
        found.append(f"has a report of a sanitizer: {ended.out[report.start():][:3000].decode('utf-8', 'replace')}")
    if CANARY.encode() in ended.out or b"root:x:0:0" in ended.out:
        found.append("shows what stands outside the player")
    if steer := steering(ended.out, name == "rescue"):
        found.append(f"sends the terminal {steer}")
    if any(line.lstrip("- ").startswith(FORGED) for line in ended.out.decode("utf-8", "replace").split("\n")):
        found.append("shows a line that the player made up")
    return found


def faults_of_files(folder):
    """What is wrong with what was written: content from outside, and names that are not safe."""
    found = []
    for where, folders, files in os.walk(folder):
        for name in folders + files:
            path = os.path.join(where, name)
            shown = os.path.relpath(path, folder)
            if os.path.islink(path) or not (os.path.isfile(path) or os.path.isdir(path)):
                found.append(f"writes {shown!r}, which is no file")
            elif os.path.isfile(path):
                with open(path, "rb") as file:
                    content = file.read()
                if CANARY.encode() in content or b"root:x:0:0" in content:
                    found.append(f"writes what stands outside the player to {shown!r}")
            if _BAD_NAME.search(name):
                found.append(f"writes a file called {name!r}")
    return found


def attack(program, library, name, build, folder, seconds):
    """Builds one player and runs every command on it. Returns the number of runs, and the faults, a line each."""
    place = Place(folder)
    build(place)
    place.path("x")  # the folder itself, where the player has none
    faults, count = [], 0
    surroundings = manifest(place.machine)
    watch = Watch([where for where, _, _ in os.walk(place.outside)])
    server = Server(library, program, **_how(place, terminal=True))
    for command, rows in COMMANDS.items():
        for row in rows:
            arguments = [part.format(player=place.root, work=place.work) for part in row]
            count += 1
            found = faults_of_run(command, show(server, [command, *arguments], seconds), seconds)
            found += [f"outside the player: {event}" for event in watch.seen()]
            now = manifest(place.machine)
            found += [f"on the player or beside it: {change}" for change in changes(surroundings, now)]
            watch.seen()  # what the manifest itself opened
            surroundings = now
            line = " ".join([command, *row])
            faults += [f"{name}: {line}: {fault}" for fault in found]
    server.close()
    if left := os.listdir(place.work / "tmp"):
        faults.append(f"{name}: temporary files stay: {left}")
    if unexpected := set(os.listdir(place.work)) - {"tmp", "exports", "lists", "music"}:
        faults.append(f"{name}: beside the destination: {sorted(unexpected)}")
    for folder in ("exports", "lists", "music"):
        faults += [f"{name}: {fault}" for fault in faults_of_files(place.work / folder)]
    watch.close()
    remove(place.base)
    return count, faults


def remove(folder):
    """Removes what a player was made of, whatever its rights."""
    for _, folders, _, descriptor in os.fwalk(folder):
        for name in folders:
            if not stat.S_ISLNK(os.lstat(name, dir_fd=descriptor).st_mode):
                os.chmod(name, 0o700, dir_fd=descriptor)
    shutil.rmtree(folder)


def commands_without_runs(program):
    """The commands that the program offers and the table above lacks, and those that it does not offer."""
    done = subprocess.run([program, "--help"], capture_output=True, text=True, check=False,
                          env={**os.environ, "ASAN_OPTIONS": "detect_leaks=0"})
    if done.returncode != 0:
        return [f"{program} --help ends with {done.returncode}"]
    listed = set(re.findall(r"^  ([a-z]\S*)", done.stdout.partition("Subcommands:")[2], re.M))
    return ([f"no run of the command {name} is planned" for name in sorted(listed - set(COMMANDS))] +
            [f"the program has no command {name}" for name in sorted(set(COMMANDS) - listed)])
