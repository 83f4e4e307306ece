"""For how long each fuzz target has run as it is: out/fuzz/ledger.json. A target that was built
anew from other sources begins again, for what it was run with says nothing of it."""

import collections
import contextlib
import fcntl
import hashlib
import json

Entry = collections.namedtuple("Entry", "program seconds runs coverage finding")
# Its program, the seconds of a processor and the inputs that this had, the edges that were reached at
# last, and the file of the input that was a finding, if there was one.


def state_of(program):
    """What tells one build of a target from another."""
    return hashlib.sha256(program.read_bytes()).hexdigest()


class Ledger:
    def __init__(self, path):
        self.path = path
        self.entries = self.read()

    def read(self):
        if not self.path.exists():
            return {}
        kept = json.loads(self.path.read_text())
        return {name: Entry(**fields) for name, fields in kept.items()}

    def write(self):
        fresh = self.path.with_suffix(".new")
        kept = {name: entry._asdict() for name, entry in sorted(self.entries.items())}
        fresh.write_text(json.dumps(kept, indent=1) + "\n")
        fresh.replace(self.path)

    @contextlib.contextmanager
    def alone(self):
        """No other thread or program of this folder writes meanwhile."""
        self.path.parent.mkdir(parents=True, exist_ok=True)
        with open(self.path.with_suffix(".lock"), "w", encoding="ascii") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            yield

    def entry(self, name, program):
        """What is known of this build of a target."""
        kept = self.entries.get(name)
        return kept if kept and kept.program == program else Entry(program, 0, 0, 0, "")

    def add(self, name, program, seconds, runs, coverage, finding):
        """Notes one run, in the file at once: the next one may be interrupted."""
        with self.alone():
            self.entries = self.read()
            kept = self.entry(name, program)
            self.entries[name] = Entry(program, round(kept.seconds + seconds, 1), kept.runs + runs,
                                       max(kept.coverage, coverage), finding or kept.finding)
            self.write()

    def lacking(self, name, program, seconds):
        """How long a target has yet to run for so many seconds; not at all behind a finding."""
        kept = self.entry(name, program)
        return 0 if kept.finding else max(0, seconds - kept.seconds)
