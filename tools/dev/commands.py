"""The commands on the pages: each has a test that types it, or a reason why none does.

A command is a line of a block that begins with the name of a program, behind "$ " or not; what stands
behind two blanks or a # is about it. TYPED are typed by the step `commands`, LONG by
`commands-long`, which `./dev prove` runs. The others are another test's.
"""

import fnmatch
import os
import pathlib
import re
import shlex
import signal
import subprocess
import tempfile
import time

import pages
import workshop

PROGRAMS = (r"\./dev|cmake|ctest|out/\S+|oxdiag\w+|pkg-config|apt(?:-get)?|dpkg(?:-deb)?|bcdedit|shutdown|powershell|"
            r"inf2cat|signtool|certutil|devcon|reg|pnputil|sc|eval|source")
COMMAND = re.compile(rf"^(?:\$ )?((?:{PROGRAMS})(?: .*)?)$")
FENCE = re.compile(r"^```(\w*)")
INDENT = "    "

WINDOWS = "typed on a Windows machine, which is not here; docs/windows.md says so"

# (page, command, whose it is); the first that fits counts.
OWNERS = [
    ("docs/windows.md", r"(bcdedit|shutdown|powershell|inf2cat|signtool|certutil|devcon|reg|pnputil|sc) .*", WINDOWS),
    ("docs/configuring.md", r".*", "tests/host/documents/configuringSamples.cpp"),
    ("README.md", r"\./dev demo examples/slotbus/faulty\.txt", "tests/host/documents/readmeSamples.cpp"),
    ("docs/testing-your-driver.md", r".*", "tools/dev/letterbox.py"),
    ("examples/letterbox/README.md", r".*", "tools/dev/letterbox.py"),
    ("README.md", r"cmake --install .*", "tools/dev/packages.py"),
    ("*", r"\./dev (test|prove|bench|build|setup)( .*)?", "tools/dev/check.py"),
    ("*", r"\./dev kernel demo", "tools/dev/demos.py"),
    ("*", r"\./dev metal", "tools/dev/metal.py"),
    ("*", r"\./dev docs", "tools/dev/handbook.py"),
    ("*", r"\./dev dist", "tools/dev/distribution.py"),
    ("*", r"\./dev mutants .*", "tools/dev/mutants.py"),
    ("*", r"\./dev kernel mutants( .*)?", "tools/dev/mutantWindows.py"),
    ("*", r"\./dev coverage( --report)?", "tools/dev/coverage.py"),
    ("*", r"\./dev kernel demo .* --save rack\.statuses --modules", "tools/dev/demos.py"),
    ("*", r"\./dev demo --crash", "tests/host/slotbus/demoCrash.cpp"),
    ("*", r".*oxdiag-view --dump DUMP", "tests/host/slotbus/demoCrash.cpp"),
    ("docs/status.md", r"oxdiagreport --symbols .*", "tests/host/report/reportModules.cpp"),
    ("*", r"\./dev budget( --write)?", "tools/dev/budget.py"),
]

# Typed as they are, or with the words behind -> in place of theirs.
TYPED = {
    "./dev": None,
    "./dev demo": None,
    "./dev demo FILE --filter 'verbosity>=60'": "./dev demo examples/slotbus/rack.txt --filter 'verbosity>=60'",
    "./dev demo --trace '--timestamp --timedelta --prefixwidth 70'": None,
    "./dev demo --trace '--destination file C:/rack.out'": None,
    "./dev demo --trace \"--destination file C:/rack.out overwrite\"": None,
    "./dev demo --trace \"--destination serial 9600\"":  # nobody watches a terminal here
        "./dev demo --serial port.out --trace \"--destination serial 9600\"",
    "./dev demo --help": None,
    "./dev demo examples/slotbus/faulty.txt --save out/rack.statuses":  # a rack with wrong lines
        "./dev demo examples/slotbus/faulty.txt --save out/rack.statuses; test $? -eq 1",
    "out/host-release/tools/oxdiagreport/oxdiagreport --words examples/slotbus/words/english.words "
    "out/rack.statuses": None,
    "./dev demo | out/host-release/tools/oxdiagview/oxdiag-view --html rack.html":  # says nothing
        "./dev demo | out/host-release/tools/oxdiagview/oxdiag-view --html rack.html; ls rack.html",
    "./dev demo --serve": None,
    "out/host-release/tools/oxdiagctl/oxdiagctl trace --timestamp on": None,
    "./dev fuzz --list": None,
}
# What runs for minutes is typed for seconds, and names that stand for any are replaced.
LONG = {
    "./dev soak": "./dev soak 1",
    "./dev soak 20": "./dev soak 1",
    "./dev fuzz": "./dev fuzz filterExpressions 1",
    "./dev fuzz optionWords": "./dev fuzz optionWords 1",
    "./dev fuzz optionWords --minutes 5": "./dev fuzz optionWords --minutes 0.02",
    "./dev fuzz all 600": "./dev fuzz all 1",
    "./dev fuzz --each --minutes 30": "./dev fuzz filterExpressions --each --minutes 0.02",
    "./dev fuzz --thread pnpThreads": "./dev fuzz --thread pnpThreads 1",
    "cmake --preset host-plain": None,
    "cmake --build out/host-plain --target trace.putfAgainstPrintf": None,
    "ctest --preset host-plain -R trace.putfAgainstPrintf": None,
    "cmake --build out/host-plain --target NAME": "cmake --build out/host-plain --target trace.putfAgainstPrintf",
    "out/host-plain/tests/host/bin/NAME --gtest_filter='Suite.Test'":
        "out/host-plain/tests/host/bin/trace.putfAgainstPrintf --gtest_filter='*'",
    "cmake --build --preset host-plain": "cmake --build --preset host-plain --target host_tests",
    "ctest --preset host-plain -R trace -j 4": None,
    "cmake --build out/host-coverage --target trace.putfAgainstPrintf":
        "cmake --preset host-coverage && "
        "cmake --build out/host-coverage --target trace.putfAgainstPrintf",
    "ctest --preset host-coverage -R trace.putfAgainstPrintf": None,
    "out/host-plain/tests/host/bin/schedules.lineLock":
        "cmake --build out/host-plain --target schedules.lineLock && "
        "out/host-plain/tests/host/bin/schedules.lineLock",
}
SERVER, CLIENT = "./dev demo --serve", "out/host-release/tools/oxdiagctl/oxdiagctl trace --timestamp on"


def command_in(line):
    match = COMMAND.match(line.strip())
    return re.split(r"\s+#|\s{2,}", match[1])[0].strip() if match else ""


def commands_of(page):
    """Those of its blocks, without those that another test compares as a whole."""
    language = None
    for line in page.read_text().splitlines():
        fence = FENCE.match(line)
        if fence:
            language = None if language is not None else fence[1]
            continue
        is_shown = line.startswith(INDENT) if language is None else language in ("", "sh", "letterbox")
        is_typed = language == "console" and line.startswith("$ ")
        if (is_shown or is_typed) and command_in(line):
            yield command_in(line)


def owner_of(page, command):
    for place, words, owner in OWNERS:
        if fnmatch.fnmatch(page, place) and re.fullmatch(words, command):
            return owner
    return "typed" if command in TYPED else "long" if command in LONG else ""


def all_commands():
    return [(page.relative_to(workshop.TOP).as_posix(), command)
            for page in pages.pages() for command in commands_of(page)]


def complaints():
    """Commands that nobody types, and types that no page has."""
    seen = all_commands()
    wrong = [f"{page}: no test types '{command}' (tools/dev/commands.py)"
             for page, command in seen if not owner_of(page, command)]
    wrong += [f"{owner} is not there" for _, _, owner in OWNERS
              if owner != WINDOWS and not (workshop.TOP / owner).exists()]
    shown = {command for _, command in seen}
    wrong += [f"no page shows '{command}'" for command in [*TYPED, *LONG] if command not in shown]
    return wrong


# The commands are typed with the programs of the tests' own build.
PRESET = workshop.PROGRAMS

# In place of ./dev, for a folder of its own: the demo is built already.
STAND_IN = f"""#!/bin/sh
[ "$1" = demo ] || exec "$TOP/dev" "$@"
shift
exec "$TOP/out/{PRESET}/examples/slotbus/slotbus_demo" "$@"
"""


def make_folder(folder):
    """What a clone has, as far as the commands see it."""
    (folder / "dev").write_text(STAND_IN)
    (folder / "dev").chmod(0o755)
    (folder / "examples").symlink_to(workshop.TOP / "examples")
    tools = folder / "out/host-release/tools"
    tools.parent.mkdir(parents=True)
    tools.symlink_to(workshop.tree(PRESET) / "tools")
    return dict(os.environ, TOP=str(workshop.TOP), XDG_RUNTIME_DIR=str(folder))


def type_it(command, folder, environment):
    code, output = workshop.run(["sh", "-c", command], cwd=folder, env=environment,
                                stdin=subprocess.DEVNULL, timeout=600)
    return [] if code == 0 and output.strip() else [f"{command}: {code}\n{output}"]


def type_pair(folder, environment):
    """The demo serves, and a second terminal changes its trace."""
    server = subprocess.Popen(shlex.split(SERVER), cwd=folder, env=environment,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    socket = pathlib.Path(folder) / "oxdiag.socket"
    for _ in range(100):
        if socket.exists():
            break
        time.sleep(0.05)
    wrong = type_it(CLIENT, folder, environment)
    server.send_signal(signal.SIGINT)
    code = server.wait(timeout=30)
    return wrong + ([] if code == 0 else [f"{SERVER}: {code}"])


def check():
    workshop.build(PRESET, "slotbus_demo", "oxdiagreport", "oxdiagctl", "oxdiag-view")
    results = [("each has a test", complaints())]
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        environment = make_folder(folder)
        for command, instead in TYPED.items():
            if command not in (SERVER, CLIENT):
                results.append((command, type_it(instead or command, folder, environment)))
        results.append((SERVER, type_pair(folder, environment)))
    return outcome(results)


def check_long():
    return outcome([(command, type_it(instead or command, workshop.TOP, dict(os.environ)))
                    for command, instead in LONG.items()])


def outcome(results):
    failed = [f"commands: {command}" for command, wrong in results if wrong]
    return workshop.Outcome(len(results) - len(failed), failed,
                            "\n".join(line for _, wrong in results for line in wrong))
