"""The host that runs the plug-in for host code, as a process of its own."""

import json
import subprocess

from .lexer import BasicError
from .text import Text


class PluginObject:
    """An object of a class of the plug-in."""

    def __init__(self, number, plugin_class):
        self.number = number
        self.plugin_class = plugin_class


class PluginClass:
    """Members in small letters: how many arguments the methods of a name take, and which properties can be written."""

    def __init__(self, description):
        self.methods = {}
        for name, count in description["methods"]:
            self.methods.setdefault(name.lower(), set()).add(count)
        self.properties = {name.lower(): writable for name, writable in description["properties"]}


class FolderItem:
    def __init__(self, path, mac_path):
        self.path = path
        self.mac_path = mac_path


def _to_json(value):
    if isinstance(value, Text):
        return {"text": value.data.hex(), "encoding": value.encoding or 0}
    if isinstance(value, FolderItem):
        return {"path": value.path, "macPath": value.mac_path}
    if value is None or isinstance(value, (bool, int)):
        return value
    raise BasicError(f"the plug-in takes no {type(value).__name__}")


def _from_json(value):
    if isinstance(value, dict):
        if "path" in value:
            return FolderItem(value["path"], value["macPath"])
        return Text(bytes.fromhex(value["text"]), value["encoding"])
    return value


class Session:
    """`program` is host_session; the volumes are folders by name. A context manager that ends the process."""

    def __init__(self, program, plugin, volumes):
        self.volumes = volumes
        self._process = subprocess.Popen(
            [program, plugin, *(f"{name}={folder}" for name, folder in volumes.items())],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, encoding="utf-8")
        self._classes = {}

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._process.communicate()

    def _ask(self, *request):
        self._process.stdin.write(json.dumps(request) + "\n")
        self._process.stdin.flush()
        line = self._process.stdout.readline()
        if not line:
            raise BasicError(f"the host ended at {request}")
        answer = json.loads(line)
        if isinstance(answer, dict) and "error" in answer:
            raise BasicError(answer["error"])
        return answer

    def plugin_class(self, name):
        if name not in self._classes:
            self._classes[name] = PluginClass(self._ask("class", name))
        return self._classes[name]

    def new(self, name):
        return PluginObject(self._ask("new", name), self.plugin_class(name))

    def reset(self):
        """Puts back the one switch that all objects share."""
        self.set(self.new("ZemiTunesDB"), "ZerobasePlayerlist", False)

    def call(self, target, method, arguments):
        return _from_json(self._ask("call", target.number, method, [_to_json(a) for a in arguments]))

    def get(self, target, name):
        return _from_json(self._ask("get", target.number, name))

    def set(self, target, name, value):
        self._ask("set", target.number, name, _to_json(value))

    def converted(self, text, encoding):
        """The text in another encoding, as the host converts it."""
        return _from_json(self._ask("convert", _to_json(text), encoding))
