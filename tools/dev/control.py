"""oxdiagctl for Windows: built, and run under Wine as far as nobody has to answer it."""

import subprocess

import versions
import wine
import workshop

PRESET = "windows-tools"
PROGRAM = workshop.tree(PRESET) / "tools/oxdiagctl/oxdiagctl.exe"
DEFAULT = r"\\.\oxdiag"
FOLDER = r"C:\windows"  # opening one as a file is denied
FILE = r"C:\windows\win.ini"  # no device: it knows no device controls

# Name, arguments, exit code, the whole of standard error, a part of standard output.
CASES = [
    ("help", ["--help"], 0, "", "Usage: oxdiagctl"),
    ("help of a command", ["trace", "--help"], 0, "", "  --timestamp [on|off] "),
    ("words for the shell", ["words", "assert"], 0, "", "--terminate\n"),
    ("no command", [], 64, "a command is needed: list, trace, assert or version\n"
     "Run with --help for more information.\n", ""),
    ("an unknown word", ["trace", "--timestmp"], 4,
     "oxdiagctl: '--timestmp' is no option, perhaps --timestamp.\n", ""),
    ("a path of Windows", ["trace", "--destination", "file", "/x.out"], 4,
     "oxdiagctl: '/x.out' is neither overwrite nor append nor a name of 127 characters at most "
     "such as C:/rack.out.\n", ""),
    ("nobody listens", ["list"], 2, f"oxdiagctl: nobody listens at {DEFAULT}; as an administrator, "
     "start the driver with 'sc start oxdiagcontrol'.\n", ""),
    ("nobody listens elsewhere", ["trace", "--at", r"\\.\nobody", "--off"], 2,
     "oxdiagctl: nobody listens at \\\\.\\nobody.\n", ""),
    ("access is denied", ["--at", FOLDER, "list"], 3,
     f"oxdiagctl: access to {FOLDER} is denied; administrators only, run it as one.\n", ""),
    ("something else listens", ["--at", FILE, "list"], 1,
     f"oxdiagctl: at {FILE}, something else listens.\n", ""),
]


def run_program(arguments):
    environment = dict(wine.environment(), WINEDEBUG="-all")
    done = subprocess.run(["wine", PROGRAM, *arguments], env=environment, text=True,
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, timeout=wine.CALL_LIMIT)
    return done.returncode, done.stdout.replace("\r", ""), done.stderr.replace("\r", "")


def check_case(case):
    """Nothing when the case holds, otherwise what was seen."""
    name, arguments, code, errors, part = case
    seen = run_program(arguments)
    if seen[0] == code and seen[2] == errors and part in seen[1]:
        return ""
    return f"{name}: exit code {seen[0]}\n{seen[1]}{seen[2]}"


def check():
    workshop.build(PRESET)
    with wine.alone():
        wine.create_prefix()
        try:
            complaints = [check_case(case) for case in CASES]
        finally:
            wine.stop_server()
    failed = [f"oxdiagctl.exe {case[0]}" for case, seen in zip(CASES, complaints) if seen]
    title, wrong = versions.property_check(PROGRAM)
    failed += [f"{title}: {', '.join(wrong)}"] if wrong else []
    return workshop.Outcome(len(CASES) + 1 - len(failed), failed,
                            "\n".join(filter(None, complaints)))
