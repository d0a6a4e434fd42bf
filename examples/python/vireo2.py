"""Drives a controller through vireo2-console --serve; the standard library is all it needs.

    with Vireo2("demo.dbg's folder", "--full") as target:
        target.write("wGain", 120)
        assert target.read("wGain") == 120
"""
import json
import subprocess


class Vireo2Error(Exception):
    """A request that was refused or failed; `code` is one of the documented words."""

    def __init__(self, error):
        super().__init__(error["message"])
        self.code = error["code"]


class Vireo2:
    def __init__(self, folder=".", *options, program="vireo2-console"):
        self._process = subprocess.Popen(
            [program, "--serve", *options], cwd=folder, text=True, encoding="utf-8",
            stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self._id = 0
        self.events = []  # readings of watches that came between answers

    def __enter__(self):
        return self

    def __exit__(self, *unused):
        self._process.stdin.close()
        self._process.wait(timeout=10)

    def _receive(self):
        line = self._process.stdout.readline()
        if not line:
            raise EOFError("vireo2-console has ended")
        return json.loads(line)

    def request(self, op, **fields):
        self._id += 1
        print(json.dumps({"id": self._id, "op": op, **fields}), file=self._process.stdin, flush=True)
        while True:
            answer = self._receive()
            if "event" in answer:
                self.events.append(answer)
            elif answer["ok"]:
                return answer
            else:
                raise Vireo2Error(answer["error"])

    def read_all(self, items):
        """Values by name, read together."""
        values = self.request("read", items=items)["values"]
        for value in values:
            if "error" in value:
                raise Vireo2Error(value["error"])
        return {value["name"]: value["value"] for value in values}

    def read(self, item):
        return next(iter(self.read_all([item]).values()))

    def write(self, item, value):
        """Written and read back; raises when the target holds another value afterwards."""
        self.request("write", item=item, value=value)

    def run(self, line):
        """One console line; what it printed."""
        return self.request("run", line=line)["output"]

    def watch(self, items, period_ms):
        """Readings as they come, each a dictionary by name; ends when the loop is left."""
        started = self.request("watch", items=items, period=period_ms)["id"]
        try:
            while True:
                event = self.events.pop(0) if self.events else self._receive()
                if event.get("watch") == started:
                    yield {value["name"]: value.get("value") for value in event.get("values", [])}
        finally:
            self.request("unwatch", watch=started)
            self.events = [event for event in self.events if event.get("watch") != started]
