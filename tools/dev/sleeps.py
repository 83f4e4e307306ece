"""The step `sleeps`: a test asks for what it waits for; where it sleeps, a comment says why.

The comment is on the line of the sleep or on one of the two before it."""

import re

import workshop

FOLDERS = ["tests", "bench", "examples"]
KINDS = {".cpp", ".h", ".py"}
TOOLS = workshop.TOP / "tests/tools"  # made-up texts
SLEEP = re.compile(r"(?<!void )\b(sleep_for|sleep_until|usleep|nanosleep|time\.sleep|tWorker::sleep)\((?!0\))")
COMMENT = re.compile(r"//|(^|\s)# ")
NEAR = 2


def unexplained(lines):
    """The numbers of the lines that sleep and do not say why."""
    return [number for number, line in enumerate(lines, 1) if SLEEP.search(line)
            and not any(COMMENT.search(near) for near in lines[max(0, number - 1 - NEAR):number])]


def sources():
    return sorted(path for folder in FOLDERS for path in (workshop.TOP / folder).rglob("*")
                  if path.suffix in KINDS and path.parent != TOOLS)


def check():
    files = {path.relative_to(workshop.TOP): unexplained(path.read_text().splitlines())
             for path in sources()}
    failed = [f"{path}:{number} sleeps and does not say why"
              for path, numbers in files.items() for number in numbers]
    return workshop.Outcome(1 if not failed else 0, failed, "\n".join(failed))
