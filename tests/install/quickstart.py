"""docs/quickstart.md as a reader follows it: its files are written, its commands run in their order, and
what it says they print is compared."""

import os
import re
import subprocess

BLOCK = re.compile(r"^```(run|prints|cpp|cmake)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
VERB = re.compile(r"\./dev (\w+)(?: (\w+))?")
FILES = {"cpp": "rack.cpp", "cmake": "CMakeLists.txt"}
TIMEOUT = 300  # seconds for one block of commands


def shows(output, wanted):
    """Whether the output ends with the lines that are wanted; "..." stands for any text, also lines."""
    parts = [re.escape(part) for part in wanted.rstrip("\n").split("...")]
    return re.search("(?:^|\n)" + ".*".join(parts).rstrip("\n") + "\n*$", output, re.DOTALL)


def follow(page, folder, variables):
    """What is wrong with the page; the first wrong thing ends it."""
    output = ""
    for kind, text in BLOCK.findall(page):
        if kind in FILES:
            (folder / FILES[kind]).write_text(text)
        elif kind == "run":
            done = subprocess.run(["sh", "-c", "set -e\n" + text], cwd=folder, text=True,
                                  env=dict(os.environ, **variables), stdout=subprocess.PIPE,
                                  stderr=subprocess.STDOUT, timeout=TIMEOUT, check=False)
            output = done.stdout
            if done.returncode != 0:
                return [f"docs/quickstart.md: {text}ended with {done.returncode}:\n{output}"]
        elif not shows(output, text):
            return [f"docs/quickstart.md: {output}\ninstead of\n{text}"]
    return []


def unknown_verbs(page, usage):
    """What the page calls ./dev with and its help does not have: a verb, or one of `kernel`."""
    known = {tuple(line.split()[:2]) for line in usage.splitlines() if line.startswith("  ")}
    verbs = {words[0] for words in known if words}
    used = [(verb, rest) for verb, rest in VERB.findall(page)]
    return [f"docs/quickstart.md: ./dev has no '{verb} {rest}'" for verb, rest in used
            if verb not in verbs or (verb == "kernel" and (verb, rest) not in known)]
