"""That a Windows image guards itself: its stack by cookies, its calls by control-flow guard, its file
by a checksum."""

import re

import moduleFiles
import workshop

# Debian's Python, which sees Debian's python3-pefile whichever Python runs the workshop.
SYSTEM_PYTHON = "/usr/bin/python3"
CHECKSUM_HELD = "import pefile, sys; print(pefile.PE(sys.argv[1], fast_load=True).verify_checksum())"

INSTRUMENTED = 0x100
HAS_TABLE = 0x400

# An instruction: its address, its name, its operands, and the address that the disassembler computed.
LINE = re.compile(r"^([0-9a-f]+): +\t(\w+)(?:[ \t]+([^\n#<]*))?[^\n#]*(?:# (0x[0-9a-f]+))?", re.M)


class Layout:
    """The addresses that matter, from the headers of the image."""

    def __init__(self, image):
        text = moduleFiles.read(image, "--file-headers", "--coff-load-config")
        self.text = text
        base = self.number("ImageBase")
        self.entry = base + self.number("AddressOfEntryPoint")
        self.imports = range(base + self.number("IATRVA"),
                             base + self.number("IATRVA") + self.number("IATSize"))
        self.dispatch = self.number("GuardCFCheckDispatch")
        table = text.partition("GuardFidTable [")[2].partition("]")[0]
        self.targets = {int(word, 16) for word in re.findall(r"0x[0-9A-F]+", table)}

    def number(self, name):
        found = re.search(rf"^ *{name}: (0x[0-9A-F]+|\d+)(?: |$)", self.text, re.M)
        return int(found.group(1), 0) if found else 0


def instructions(image):
    text = workshop.demand(["llvm-objdump", "-d", "--no-show-raw-insn",
                            moduleFiles.MODULES / image])
    return [(int(address, 16), name, operands.strip(), int(computed, 16) if computed else None)
            for address, name, operands, computed in LINE.findall(text)]


def header_check(image):
    layout = Layout(image)
    flags = layout.number("GuardFlags")
    wrong = [what for held, what in [
        ("IMAGE_DLL_CHARACTERISTICS_GUARD_CF" in layout.text, "its header does not say so"),
        (layout.number("GuardCFCheckFunction"), "no pointer to check a target with"),
        (layout.dispatch, "no pointer to call a target with"),
        (flags & INSTRUMENTED and flags & HAS_TABLE, f"the flags are {flags:#x}"),
        (len(layout.targets) == layout.number("GuardCFFunctionCount") > 0, "a wrong table"),
        (layout.entry in layout.targets, "its entry is no target"),
    ] if not held]
    return f"{image} tells loaders that its calls are guarded", wrong


def last_load(code, place, register):
    """The address from which a register was loaded last before this place, None for any other last
    write to it."""
    for _, name, operands, computed in reversed(code[:place]):
        if operands.endswith(f", {register}") and not name.startswith(("cmp", "test")):
            if name != "movq":
                return None
            if computed is not None or not operands.startswith("%"):
                return computed
            register = operands.split(",")[0]
    return None


def call_complaints(layout, code):
    """A call or jump through a pointer goes by way of the guard, unless the pointer is an import,
    which the loader wrote and nobody can change; but for one jump, that of what stands for the guard
    where the loader knows of none."""
    unguarded = []
    for place, (address, name, operands, computed) in enumerate(code):
        if not (name.startswith(("call", "jmp")) and operands.startswith("*")):
            continue
        if operands.startswith("*%"):
            computed = last_load(code, place, operands[1:])
        if computed != layout.dispatch and computed not in layout.imports:
            unguarded.append(f"{address:x}: {name} {operands}")
    held = [each.split(": ")[1] for each in unguarded] == ["jmpq *%rax"]
    return [] if held else unguarded or ["nothing stands for the guard"]


def cookie_complaints(layout, code):
    """Some function has a cookie, and all of them show it to one function."""
    checkers = {after[2].split()[0] for before, after in zip(code, code[1:])
                if before[1:3] == ("xorq", "%rsp, %rcx") and after[1] == "callq"}
    wrong = [] if layout.number("SecurityCookie") else ["its loader is not told of a cookie"]
    return wrong if len(checkers) == 1 else [*wrong, f"{len(checkers)} functions check cookies"]


def code_check(image):
    layout, code = Layout(image), instructions(image)
    return (f"{image} has cookies on its stack and calls through the guard",
            [*cookie_complaints(layout, code), *call_complaints(layout, code)])


def checksum_check(image):
    held = workshop.demand([SYSTEM_PYTHON, "-c", CHECKSUM_HELD, moduleFiles.MODULES / image])
    return f"{image} has the checksum of its bytes", [] if held.strip() == "True" else ["another"]


CHECKS = [header_check, checksum_check]
