"""What GDB shows of objects with tools/debugger/oxdiagk-gdb.py: good ones, and bytes that are none.
A small program has the objects; it is compiled by g++ and by clang, with what GDB has to know."""

import json
import pathlib
import re
import tempfile

import compileChecks
import workshop

PRINTERS = workshop.TOP / "tools/debugger/oxdiagk-gdb.py"
SOURCE = workshop.TOP / "tests/debugger/samples.cpp"
LIBRARIES = ["source/liboxdiagk.a", "platform/qelmk/libqelmk.a", "platform/vexk/libvexk.a",
             "platform/ntos/host/libntos_strict.a"]
COMPILERS = {"g++": ["g++", "-femit-class-debug-always"], "clang": ["clang++", "-fstandalone-debug"]}
# What GDB itself says of classes that it does not find.
WARNING = re.compile(r"warning: .*\n(warning: .*\n)*")

LIMIT = 120  # seconds for one run of GDB

# An expression of a member of tSamples, and what GDB has to show for it, as a regular expression.
GOOD = {
    "success": r"success$",
    "plainCode": r"error -5$",
    "warning": r"warning 61001$",
    "failure": r"error -61007, samples, .*tests/debugger/samples\.cpp:\d+ = \{.*"
               r'references = 1.*description = 5 items = \{.*usage 1 = \{value = tTitleReportable\}.*'
               r"usage 2 = .*tIntrinsicTypeReportable<.*values = 1 elements = \{121\}.*"
               r"usage 3 = .*lower = 1, upper = 99.*"
               r'usage 4 = .*values = 1 texts = \{"1O"\}.*'
               r"usage 5 = .*propertyID = 5, values = 1 elements = \{1\}.*"
               r"frame 0 = .*_allocateImplementationObject.*frame 1 = .*main",
    "steering": r"error -5, a\\x1b\[2J\\n, .*texts = \{\"\\x1b\[2J\\x9b\"\}.*",
    "ring": r"error -6, samples, .*description = 8 items = "
            r"\{(usage 1 = \{value = <unreadable>\}(, )?){8}\}.*",
    "text": r'"narrow \\"text\\""$',
    "wide": r'"wide (ä|\\303\\244|\\344)"$',
    "numbers": r"3 elements = \{0, 10, 20\}$",
    "single": r"1 elements = \{7\}$",
    "list": r"3 elements = \{1, 2, 3\}$",
    "map": r'2 entries = \{\[1\] = "one", \[2\] = "two"\}$',
    "filter": r"terms = \{verbosity>=100, && compname==rack, \|\| linenumber!=5\}$",
    "emptyFilter": r"empty, every line is shown$",
    "guid": r"\{6D1F20C4-8A57-4B3E-910C-5E27B84413F9\}$",
    "time": r"2025-11-22T11:30:00\.12[45]\d+Z$",
    "version": r"2\.0\.1b7$",
    "*samples.heap": r"\d+ of 1024 units used, [1-9]\d* blocks, \d+ free fragments",
}

# What bytes without sense are shown as; each has to end, and to be no error.
TYPES = ["nOXDIAG100::tStatus2", "nOXDIAG100::tStatus2Implementation",
         "nOXDIAG100::tStatus2Description", "nOXDIAG100::tStatus2DescriptionImplementation",
         "nOXDIAG100::tReportItemContent", "nOXDIAG100::tEnumPropertyReportable",
         "nOXDIAG100::tWideTextList", "nOXDIAG100::tStatus2Heap", "nOXDIAG100::tTraceFilter",
         "nOXDIAG100::tTraceFilterTerm", "nQELM100::tGUID", "tSSTimeAbsolute", "tSSVersion"]
MEMBERS = ["text", "wide", "numbers", "single", "list", "map"]


def compile_program(name, compiler, folder):
    product = compileChecks.Target("host-plain")
    words = [word for word in product.command if word not in ("ccache", "-g1", "-O2")]
    words = [*compiler, *words[1:], "-g", "-O0", f"-I{workshop.TOP}/source"]
    program = folder / f"samples-{name}"
    objects = [workshop.tree("host-plain") / library for library in LIBRARIES]
    workshop.demand([*words, SOURCE, *objects, *objects, "-o", program, "-lpthread"],
                    cwd=product.folder)
    return program


# Run in GDB: prints what is shown for each question, or the error, as JSON between two lines.
ASKING = """
import gdb, json
def ring_items():
    pointer = gdb.parse_and_eval("samples.ring.implementation->description")
    description = pointer.cast(pointer.dynamic_type)
    gdb.set_convenience_variable("ring", description)
    return [f"$ring->implementation->items.items_[{{index}}].reportable" for index in range(8)]
def ask_of_ring():
    kept = {{item: int(gdb.parse_and_eval(item)) for item in ring_items()}}
    for item in kept:
        gdb.execute(f"set variable {{item}} = (void*)$ring", to_string=True)
    shown = gdb.execute("print samples.ring", to_string=True)
    for item, value in kept.items():
        gdb.execute(f"set variable {{item}} = {{value}}", to_string=True)
    return shown
def ask(expression):
    try:
        if expression == "samples.ring":
            return ask_of_ring()
        if expression.startswith("member "):
            kind = gdb.parse_and_eval("samples." + expression[7:]).type.pointer()
            place = gdb.parse_and_eval("&garbage").cast(kind)
            gdb.set_convenience_variable("place", place)
            expression = "*$place"
        return gdb.execute("print " + expression, to_string=True)
    except gdb.error as error:
        return f"error: {{error}}"
for command in ["set width 0", "set print elements 300", "source {printers}", "break show", "run"]:
    gdb.execute(command, to_string=True)
answers = {{}}
for place, questions in {questions!r}.items():
    gdb.execute("up")
    for name, expression in questions.items():
        answers[place + " " + name] = ask(expression)
    gdb.execute("continue", to_string=True)
print("@" + json.dumps(answers) + "@")
"""


def questions():
    """For each stop of the program: names, and the expressions that GDB is to print."""
    nonsense = {name: f"*('{name}'*)garbage" for name in TYPES}
    nonsense |= {name: f"member {name}" for name in MEMBERS}
    good = {name: name if name.startswith("*") else f"samples.{name}" for name in GOOD}
    return {"good": good, "garbage": nonsense, "rings": nonsense}


def answers(program, folder):
    script = folder / "asking.py"
    script.write_text(ASKING.format(printers=PRINTERS, questions=questions()))
    _, output = workshop.run(["gdb", "-nx", "-batch", "-x", script, program], timeout=LIMIT)
    found = re.search(r"^@(.*)@$", output, re.M)
    shown = json.loads(found[1]) if found else {}
    return {name: WARNING.sub("", answer) for name, answer in shown.items()}, output


def complaints(program, folder):
    found, output = answers(program, folder)
    wrong = []
    for name, wanted in GOOD.items():
        shown = found.get(f"good {name}", "")
        if not re.search(r"= " + wanted, shown.strip(), re.S):
            wrong.append(f"{name}: {shown or output[-2000:]}")
    for place in ("garbage", "rings"):
        for name in [*TYPES, *MEMBERS]:
            shown = found.get(f"{place} {name}", "")
            if not shown.startswith("$") or "Traceback" in shown or "Python Exception" in shown:
                wrong.append(f"{place} as {name}: {shown or output[-2000:]}")
            if len(shown) > 200_000:
                wrong.append(f"{place} as {name}: {len(shown)} characters")
    return wrong


def check():
    workshop.build("host-plain", "oxdiagk", "qelmk", "vexk", "ntos_strict")
    failed, output, shown = [], [], 0
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        for name, compiler in COMPILERS.items():
            wrong = complaints(compile_program(name, compiler, folder), folder)
            shown += len(GOOD) + 2 * len(TYPES + MEMBERS)
            failed += [f"{name}, {line.split(':')[0]}" for line in wrong]
            output += wrong
    return workshop.Outcome(shown - len(failed), failed, "\n".join(output))
