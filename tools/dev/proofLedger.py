"""Which steps of ./dev prove have passed on the sources as they are: out/proof.json. So one that was
ended, or had a failure that was mended outside of the sources, goes on where it was."""

import hashlib
import json

import workshop

PATH = workshop.OUT / "proof.json"


def state_of(top):
    """What tells one state of the sources from another: the files that git knows or would take."""
    listed = workshop.demand(["git", "ls-files", "-co", "--exclude-standard", "-z"], cwd=top)
    state = hashlib.sha256()
    for name in sorted(set(listed.split("\0")) - {""}):
        path = top / name
        state.update(f"{name}\0".encode())
        if path.is_file():  # not one that was deleted, nor a submodule
            state.update(hashlib.sha256(path.read_bytes()).digest())
    return state.hexdigest()


class ProofLedger:
    """The outcomes of the steps that have passed on one state of the sources."""

    def __init__(self, state, path=None):
        self.state, self.path = state, path or PATH
        kept = json.loads(self.path.read_text()) if self.path.exists() else {}
        self.passed = kept["passed"] if kept.get("state") == state else {}

    def outcome(self, name):
        """What a step came to, or None when it is yet to pass."""
        return workshop.Outcome(*self.passed[name]) if name in self.passed else None

    def note(self, name, outcome):
        """In the file at once: the next step may be ended."""
        if outcome.failed:
            return
        self.passed[name] = outcome
        fresh = self.path.with_suffix(".new")
        fresh.parent.mkdir(parents=True, exist_ok=True)
        fresh.write_text(json.dumps({"state": self.state, "passed": self.passed}, indent=1) + "\n")
        fresh.replace(self.path)
