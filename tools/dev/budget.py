"""./dev budget: how many instructions the library's paths take, beside their committed budgets.

usage: ./dev budget            the table; fails when a path is above its budget
       ./dev budget --write    the budgets become what was counted

valgrind counts the instructions of bench/paths, each path by itself, so the numbers do not depend on
what else the machine does. The pool is the kernel's business: its instructions are not counted, but
its blocks are. The C library takes the same functions on every processor."""

import json
import os
import pathlib
import re
import sys
import tempfile

import workshop

BUDGETS = workshop.TOP / "bench/budget.json"
PRESET = "host-release"
TOLERANCE = 3  # percent
TAKE = "ExAllocatePoolWithTag"
POOL = {TAKE, "ExFreePoolWithTag"}

# The functions of the C library that every x86-64 has: which one it takes, and so the count, would
# else depend on the processor.
PLAIN_PROCESSOR = "glibc.cpu.hwcaps=" + ",".join(
    "-" + feature for feature in ("AVX_Fast_Unaligned_Load", "AVX", "AVX2", "AVX512F", "AVX512VL",
                                  "AVX512BW", "BMI2", "ERMS", "FSRM", "SSE4_1", "SSE4_2", "SSSE3"))

MARK = re.compile(r"^desc: Trigger: Client Request: (.*) x(\d+)$", re.MULTILINE)
TOTAL = re.compile(r"^(?:summary|totals): (\d+)$", re.MULTILINE)


class Count:
    """What one operation of a path takes."""

    def __init__(self, instructions, blocks):
        self.instructions, self.blocks = instructions, blocks

    def __format__(self, _):
        return f"{self.instructions:12.0f} {self.blocks:6.1f}"


def pool_share(profile):
    """The instructions within calls of the pool, and the number of blocks taken from it."""
    instructions = blocks = 0
    function = callee = None
    lines = iter(profile.splitlines())
    for line in lines:
        if line.startswith("fn="):
            function = line[3:]
        elif line.startswith("cfn="):
            callee = line[4:]
        elif line.startswith("calls="):
            cost = int(next(lines).split()[1])
            if callee in POOL and function not in POOL:
                instructions += cost
                blocks += int(line[6:].split()[0]) if callee == TAKE else 0
    return instructions, blocks


def read_profile(profile):
    """(path, Count) of one of callgrind's files; None for what is no path."""
    mark = MARK.search(profile)
    if mark is None:
        return None
    operations = int(mark[2])
    in_pool, blocks = pool_share(profile)
    total = int(TOTAL.search(profile)[1])
    return mark[1], Count(round((total - in_pool) / operations), round(blocks / operations, 1))


def measure():
    """Path -> Count, in the order of the program."""
    program = workshop.tree(PRESET) / "bench/oxdiag_paths"
    with tempfile.TemporaryDirectory() as folder:
        workshop.demand(
            ["valgrind", "-q", "--tool=callgrind", "--compress-strings=no",
             f"--callgrind-out-file={folder}/profile", program],
            env={**os.environ, "GLIBC_TUNABLES": PLAIN_PROCESSOR})
        files = sorted(pathlib.Path(folder).glob("profile.*"), key=lambda file: int(file.suffix[1:]))
        return dict(filter(None, (read_profile(file.read_text()) for file in files)))


def compiler():
    return "g++ " + workshop.demand(["g++", "-dumpfullversion"]).strip()


def read_budgets():
    text = json.loads(BUDGETS.read_text())
    return text["compiler"], {path: Count(**budget) for path, budget in text["paths"].items()}


def write_budgets(counts):
    paths = {path: vars(count) for path, count in counts.items()}
    BUDGETS.write_text(json.dumps({"compiler": compiler(), "paths": paths}, indent=2) + "\n")


def judge(count, budget):
    """What is to be said of a path: "" when it keeps its budget."""
    if budget is None:
        return "has no budget"
    if (count.instructions > budget.instructions * (1 + TOLERANCE / 100)
            or count.blocks > budget.blocks):
        return "ABOVE"
    if (count.instructions < budget.instructions * (1 - TOLERANCE / 100)
            or count.blocks < budget.blocks):
        return "below: lower the budget"
    return ""


def verdicts(counts, budgets):
    """Path -> (Count or None, budget or None, what is to be said), the paths without a count last."""
    found = {path: (count, budgets.get(path), judge(count, budgets.get(path)))
             for path, count in counts.items()}
    lost = {path: (None, budget, "is not measured any more")
            for path, budget in budgets.items() if path not in counts}
    return found | lost


def is_kept(verdict):
    return verdict == "" or verdict.startswith("below")


def table(found):
    width = max(len(path) for path in found)
    lines = [f"{'':{width}}  instructions blocks        budget blocks"]
    for path, (count, budget, verdict) in found.items():
        lines.append(f"{path:{width}}  {count or '':19}  {budget or '':19}  {verdict}".rstrip())
    return "\n".join(lines)


def build():
    workshop.build(PRESET, "oxdiag_paths")


def check():
    """The step of ./dev test. Another compiler makes other code, which these budgets are not for."""
    counted_by, budgets = read_budgets()
    if counted_by != compiler():
        return workshop.Outcome(0, [], "", [f"budget: it is that of {counted_by}, this is {compiler()}"])
    build()
    found = verdicts(measure(), budgets)
    failed = [f"budget: {path}" for path, (_, _, verdict) in found.items() if not is_kept(verdict)]
    return workshop.Outcome(len(found) - len(failed), failed, table(found))


def main(arguments):
    if arguments not in ([], ["--write"]):
        print(__doc__, file=sys.stderr)
        return 2
    workshop.step("build the paths", build)
    counts = workshop.step("count their instructions", measure)
    budgets = read_budgets()[1] if BUDGETS.exists() else {}
    found = verdicts(counts, budgets)
    print(table(found))
    if arguments:
        write_budgets(counts)
        return 0
    return 0 if all(is_kept(verdict) for _, _, verdict in found.values()) else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
