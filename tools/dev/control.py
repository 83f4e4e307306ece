"""Programs for Windows, under Wine: oxdiagctl as far as nobody has to answer it, and the branch of
platform/compiler for the vendor's compiler."""

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


# gcc has not all of the vendor's intrinsics, clang does; the one header that neither has comes last.
BRANCH = workshop.TOP / "tests/compile/kit/vendorBranch.cpp"
BRANCH_PROGRAM = workshop.tree(PRESET) / "vendorBranch.exe"
BRANCH_COMPILER = [
    "clang++", "--target=x86_64-w64-mingw32", "-fms-extensions", "-std=c++20", "-O2", "-Wall",
    "-Wextra", "-Werror", "-fno-exceptions", "-fno-rtti", "-nostdinc++",
    "-idirafter", workshop.TOP / "tests/compile/kit/msvc",
    f"-I{workshop.TOP}/platform/compiler/include",
    f"-I{workshop.TOP}/platform/compiler/windows/include"]


def build_branch():
    made = BRANCH_PROGRAM.with_suffix(".o")
    workshop.demand([*BRANCH_COMPILER, "-c", BRANCH, "-o", made])
    workshop.demand(["x86_64-w64-mingw32-g++", "-static", made, "-o", BRANCH_PROGRAM])


def run_program(arguments, program=PROGRAM):
    environment = dict(wine.environment(), WINEDEBUG="-all")
    done = subprocess.run(["wine", program, *arguments], env=environment, text=True,
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


def check_branch():
    """The same for what the vendor's branch is made of."""
    code, seen, errors = run_program([], BRANCH_PROGRAM)
    return "" if (code, seen) == (0, "0 faults\n") else f"vendor's branch: {code}\n{seen}{errors}"


def check():
    workshop.build(PRESET)
    build_branch()
    with wine.alone():
        wine.create_prefix()
        try:
            complaints = [check_case(case) for case in CASES] + [check_branch()]
        finally:
            wine.stop_server()
    title, wrong = versions.property_check(PROGRAM)
    complaints.append(", ".join(wrong))
    titles = [*(f"oxdiagctl.exe {case[0]}" for case in CASES), "the vendor's branch runs", title]
    failed = [name for name, seen in zip(titles, complaints) if seen]
    return workshop.Outcome(len(titles) - len(failed), failed, "\n".join(filter(None, complaints)))
