"""The step `packages`: what is installed is found, linked and run by clients of their own."""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

import debianPackages
import letterbox
import manuals
import release
import workshop

sys.path.insert(0, str(workshop.TOP / "tests/install"))

import quickstart  # noqa: E402

# What is installed, of the builds that the tests have anyway: clients link the library without
# sanitizers. What people get is optimised.
PRESETS = {"development": "host-bare", "tools": workshop.PROGRAMS}
LONG_PRESETS = dict.fromkeys(PRESETS, "host-release")
PAGE = workshop.TOP / "docs/installing.md"
TYPED = re.compile(r"^```debian ?(\w*)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
CLIENT = workshop.TOP / "tests/install"
HELLO = workshop.TOP / "examples/hello"


def greeting():
    """What hello prints: its prefix names the line of the macro in its source."""
    lines = (HELLO / "hello.cpp").read_text().splitlines()
    number = next(n for n, line in enumerate(lines, 1) if "OXDIAG_TRACE(" in line)
    start = f"[hello--{number}--"
    return start + "hello.cpp".ljust(50 - 1 - len(start), "-") + "] hello from a program, slot 7\n"


def install(component, preset, prefix):
    workshop.build(preset, f"installed_{component}")
    workshop.demand(["cmake", "--install", workshop.tree(preset), "--component", component,
                     "--prefix", prefix])


def configure_and_build(source, tree, *settings):
    workshop.demand(["cmake", "-G", "Ninja", "-S", source, "-B", tree,
                     "-DCMAKE_BUILD_TYPE=Debug", *settings])
    workshop.demand(["cmake", "--build", tree, "-j", workshop.CORES])


def run(program, *arguments):
    return workshop.run([program, *arguments], timeout=60)


def expect(name, seen, wanted):
    return [] if seen == wanted else [f"{name}: {seen!r} instead of {wanted!r}"]


def check_hello(name, program):
    return expect(name, run(program), (0, greeting()))


def check_careless(tree):
    """Plain lets the mistake pass, strict stops the program with a sentence."""
    wrong = expect("careless_plain", run(tree / "careless_plain"),
                   (0, "plain\nnobody objected\n"))
    code, output = run(tree / "careless_strict")
    if code == 0 or not output.startswith("strict\nntos: ExAllocatePoolWithTag(PagedPool) "):
        wrong.append(f"careless_strict: {code} {output!r}")
    return wrong


def check_example(prefix, work):
    """As examples/hello/CMakeLists.txt says."""
    configure_and_build(HELLO, work / "hello", f"-DCMAKE_PREFIX_PATH={prefix}")
    return check_hello("find_package", work / "hello/hello")


def check_client(prefix, work):
    configure_and_build(CLIENT, work / "client", f"-DCMAKE_PREFIX_PATH={prefix}")
    return check_careless(work / "client")


def pkg_config(prefix, module):
    folder = next(pathlib.Path(prefix).rglob("oxdiagk.pc")).parent
    environment = dict(os.environ, PKG_CONFIG_PATH=str(folder))
    return subprocess.run(["pkg-config", "--cflags", "--libs", module], env=environment, text=True,
                          stdout=subprocess.PIPE, check=True).stdout.split()


def check_pkg_config(prefix, work):
    program = work / "hello_pc"
    workshop.demand(["g++", HELLO / "hello.cpp", "-o", program, *pkg_config(prefix, "oxdiagk")])
    wrong = check_hello("pkg-config", program)
    strict = work / "careless_pc"
    workshop.demand(["g++", CLIENT / "careless.cpp", "-o", strict,
                     *pkg_config(prefix, "oxdiagk-executive")])
    code, output = run(strict)
    if code == 0 or not output.startswith("strict\n"):
        wrong.append(f"pkg-config, executive: {code} {output!r}")
    return wrong


def check_moved(prefix, work):
    """A package is found where it was moved to, and nothing names where it was made."""
    moved = work / "elsewhere" / "a folder"
    shutil.copytree(prefix, moved)
    shutil.rmtree(prefix)
    wrong = check_example(moved, work / "moved")
    for file in moved.rglob("*"):
        if file.suffix in (".cmake", ".pc") and str(prefix) in file.read_text():
            wrong.append(f"{file.name} names the folder that it was installed into")
    return wrong


def check_subdirectory(_, work):
    configure_and_build(CLIENT, work / "subdirectory", f"-DOXDIAGK_SOURCES={workshop.TOP}")
    return (check_hello("add_subdirectory", work / "subdirectory/hello") +
            check_careless(work / "subdirectory"))


def tool_complaints(program):
    name, prefix = program.name, program.parents[1]
    code, output = run(program, "--version")
    page = next(prefix.glob(f"share/man/man1/{name}.1*"), None)
    completion = prefix / f"share/bash-completion/completions/{name}"
    loaded = workshop.run(["bash", "-c", f"source '{completion}' && complete -p {name}"])[0]
    return [complaint for held, complaint in [
        (code == 0 and output.startswith(f"{name} "), f"{name} --version: {code} {output!r}"),
        (loaded == 0, f"there is no completion for {name}"),
        (page is not None, f"there is no manual page of {name}"),
    ] if not held] + (manuals.complaints(page, program) if page else [])


def check_tools(prefix, _):
    """Each with a manual page of its options and a completion."""
    programs = sorted((pathlib.Path(prefix) / "bin").iterdir())
    wrong = [line for program in programs for line in tool_complaints(program)]
    return wrong if len(programs) >= 2 else ["tools are missing"]


# What stands for the system's programs where a page is typed: the packages go into a root of their
# own, and what they depend on is on this machine.
STAND_INS = {"sudo": 'exec "$@"', "apt-get": """verb=$1; shift
exec dpkg --root="$ROOT" --force-not-root --force-depends --force-bad-path \\
  --log="$ROOT/dpkg.log" "--$verb" "$@" """}


def prepare_root(work):
    """An empty root, and the environment of somebody for whom it is the machine."""
    root, tools = work / "root", work / "stand-ins"
    debianPackages.prepare_root(root)
    tools.mkdir()
    for name, text in STAND_INS.items():
        (tools / name).write_text(f"#!/bin/sh\n{text}\n")
        (tools / name).chmod(0o755)
    return dict(os.environ, ROOT=str(root), PATH=f"{tools}:{root}/usr/bin:{os.environ['PATH']}",
                CMAKE_PREFIX_PATH=f"{root}/usr", PKG_CONFIG_PATH=f"{root}/usr/lib/pkgconfig")


def type_block(name, block, folder, environment):
    """What is wrong with a block of the page, and what it printed."""
    code, output = workshop.run(["sh", "-ec", block], cwd=folder, env=environment)
    return ([] if code == 0 else [f"docs/installing.md, {name or block}: {code}\n{output}"]), output


def licence_complaints(package):
    told = workshop.demand(["dpkg-deb", "--field", package, "Description"])
    return [] if release.LICENCE in told else [f"{package.name} says nothing of a licence"]


def left_in(root):
    """Files that the packages brought."""
    return [str(path) for path in (root / "usr").rglob("*") if path.is_file()]


def check_debian(_, work):
    """The packages in an empty root, by the lines of docs/installing.md."""
    folder, root = work / "debian", work / "root"
    shutil.copytree(HELLO, folder)
    wrong = [line for package in debianPackages.make(folder)
             for line in licence_complaints(package)]
    environment = prepare_root(work)
    for name, block in TYPED.findall(PAGE.read_text()):
        failed, output = type_block(name, block, folder, environment)
        wrong += failed
        if name == "install":
            wrong += check_tools(root / "usr", work) if not failed else []
        elif name == "remove":
            wrong += [f"{path} is left behind" for path in left_in(root)]
        elif not output.endswith(greeting()):
            wrong.append(f"docs/installing.md, {block}: {output}")
    return wrong


def check_readme(*_):
    """The page shows the example as it is, but for the comment at its head."""
    source = (HELLO / "hello.cpp").read_text().split("\n\n", 1)[1]
    project = (HELLO / "CMakeLists.txt").read_text()
    lines = project[project.index("find_package"):]
    page = (workshop.TOP / "README.md").read_text()
    if release.LICENCE not in page:
        return ["README.md says nothing of a licence"]
    return [f"README.md does not show {name}" for name, text in
            (("hello.cpp", source), ("its CMakeLists.txt", lines)) if text not in page]


def check_quickstart(_, work):
    """The page installs into a folder of its own."""
    page = (workshop.TOP / "docs/quickstart.md").read_text()
    folder = work / "quickstart"
    folder.mkdir()
    variables = {"OXDIAG": str(workshop.TOP), "PREFIX": str(work / "quickstart prefix")}
    usage = workshop.demand([workshop.TOP / "dev"])
    return quickstart.unknown_verbs(page, usage) + quickstart.follow(page, folder, variables)


CHECKS = {
    "README.md shows examples/hello": check_readme,
    "installed tools": check_tools,
    "examples/hello finds the package": check_example,
    "a client chooses its executive": check_client,
    "pkg-config": check_pkg_config,
    "a package that was moved": check_moved,
    "add_subdirectory": check_subdirectory,
}
# A minute and a half together: for `./dev prove`.
LONG_CHECKS = {
    "docs/quickstart.md": check_quickstart,
    **letterbox.CHECKS,
    "Debian packages": check_debian,
}


def check():
    return run_checks(PRESETS, CHECKS)


def check_long():
    return run_checks(LONG_PRESETS, LONG_CHECKS | CHECKS)  # the last of which moves it away


BARE = ["env", "-i", "PATH=/usr/sbin:/usr/bin:/sbin:/bin", "HOME=/", "DEBIAN_FRONTEND=noninteractive"]


def in_system(root, command, **options):
    """A command in the folder of the client, below the top of the other system."""
    return workshop.run([*BARE, "chroot", root, "sh", "-ec", f"cd hello; {command}"], **options)


def check_clean_debian():
    """The commands of docs/installing.md in a Debian that has just been made, with nothing more in it."""
    results = []
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder) / "system"
        workshop.demand(["debootstrap", "--variant=minbase", "--include=sudo", "bookworm", root])
        shutil.copytree(HELLO, root / "hello")
        debianPackages.make(root / "hello")
        for name, block in TYPED.findall(PAGE.read_text()):
            code, output = in_system(root, block.replace("apt-get", "apt-get -y"))
            good = code == 0 and (name or output.endswith(greeting()))
            results.append((block.splitlines()[0], "" if good else f"{block}: {code}\n{output}"))
        left = in_system(root, "find /usr /etc -xdev -name '*oxdiag*'")[1]
        results.append(("nothing is left behind", left))
    failed = [f"clean Debian: {name}" for name, wrong in results if wrong]
    return workshop.Outcome(len(results) - len(failed), failed, "\n".join(wrong for _, wrong in results))


def run_checks(presets, checks):
    failed, output = [], []
    with tempfile.TemporaryDirectory() as folder:
        work = pathlib.Path(folder)
        prefix = work / "installed"
        for component, preset in presets.items():
            install(component, preset, prefix)
        for name, function in checks.items():
            wrong = guarded(function, prefix, work)
            if wrong:
                failed.append(f"packages: {name}")
                output += wrong
    return workshop.Outcome(len(checks) - len(failed), failed, "\n".join(output))


def guarded(function, prefix, work):
    try:
        return function(prefix, work)
    except workshop.Failure as failure:
        return [str(failure)]
