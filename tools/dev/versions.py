"""That the Windows modules tell one version wherever they tell one: that of cmake/version.cmake."""

import pathlib
import re
import struct

import moduleFiles
import workshop

LIBRARY = "oxdiagk.dll"
CURRENT_VERSION = "?getCurrentVersion@nOXDIAG100@@YA?AVtSSVersion@@AEAJ@Z"

# By their letters, the phases' values and their order of release.
PHASES = "dfba"
ORDER = "dabf"

FIXED_SIGNATURE = 0xFEEF04BD
PRERELEASE = 2


class Version:
    """The version as the sources say it, in the forms in which the modules tell it."""

    def __init__(self):
        source = (workshop.TOP / "cmake/version.cmake").read_text()
        self.text = re.search(r"^set\(OXDIAG_VERSION (\S+)\)$", source, re.M).group(1)
        numbers = re.fullmatch(r"(\d+)\.(\d+)\.(\d+)([dabf])(\d+)", self.text).groups()
        letter = numbers[3]
        major, minor, update, build = (int(numbers[place]) for place in (0, 1, 2, 4))
        self.packed = (major << 24 | minor << 20 | update << 16
                       | PHASES.index(letter) << 12 | build)
        self.image = (major, minor)
        self.file = (major, minor, update, ORDER.index(letter) << 12 | build)
        self.flags = 0 if letter == "f" else PRERELEASE


def different(told, wanted):
    return [f"{place} {told.get(place)}, not {value}" for place, value in wanted.items()
            if told.get(place) != value]


def image_version(image):
    header = moduleFiles.read(image, "--file-headers")
    return tuple(int(re.search(rf"{part}ImageVersion: (\d+)", header).group(1))
                 for part in ("Major", "Minor"))


def resource(image):
    """The bytes of the one resource there is, the version information."""
    dump = moduleFiles.read(image, "--coff-resources")
    if dump.count("Type: VERSIONINFO") != 1:
        return b""
    lines = re.findall(r"^\s+[0-9A-F]{4}: ((?:[0-9A-F]+ )+) *\|", dump, re.M)
    return bytes.fromhex("".join(lines))


def fixed_properties(raw):
    """The numbers of a version information; two words hold a version of four numbers."""
    start = raw.find(struct.pack("<I", FIXED_SIGNATURE))
    if start < 0:
        return {}
    words = struct.unpack_from("<13I", raw, start)
    numbers = [number for word in words[2:6] for number in (word >> 16, word & 0xFFFF)]
    return {"file version": tuple(numbers[:4]), "product version": tuple(numbers[4:]),
            "flags": words[7] & words[6]}


def text_property(raw, name):
    """A text stands behind its zero-terminated name at the next multiple of four bytes."""
    key = f"{name}\0".encode("utf-16-le")
    start = raw.find(key)
    if start < 0:
        return None
    text = raw[(start + len(key) + 3) // 4 * 4:].decode("utf-16-le", "replace")
    return text.split("\0")[0]


def property_check(image):
    """Of a module, or of a program, by its path."""
    version, raw, name = Version(), resource(image), pathlib.Path(image).name
    told = {"header": image_version(image), **fixed_properties(raw),
            **{name: text_property(raw, name) for name in
               ("FileVersion", "ProductVersion", "InternalName", "OriginalFilename")}}
    wanted = {"header": version.image, "file version": version.file,
              "product version": version.file, "flags": version.flags,
              "FileVersion": version.text, "ProductVersion": version.text,
              "InternalName": name.rpartition(".")[0], "OriginalFilename": name}
    return f"{name} tells {version.text} in its header and properties", different(told, wanted)


def returned_version(image):
    """What getCurrentVersion stores through its first argument, read from its instructions."""
    text = workshop.demand(["llvm-objdump", "-d", "--no-show-raw-insn",
                            f"--disassemble-symbols={CURRENT_VERSION}",
                            moduleFiles.MODULES / image])
    stored = re.findall(r"movl\s+\$(\d+), \(%rcx\)", text.split("retq")[0])
    return int(stored[0]) if len(stored) == 1 else None


def debugger_version(image):
    """What a debugger shows for the constant; without kPackedVersion in the PDB, None."""
    text = workshop.demand(["llvm-pdbutil", "dump", "--globals", moduleFiles.pdb_of(image)])
    found = re.search(r"`nOXDIAG100::kPackedVersion`\n\s+type = .*, value = (\d+)", text)
    return int(found.group(1)) if found else None


def built_version(image):
    """The head of the build string, which is known by its tail."""
    raw = (moduleFiles.MODULES / image).read_bytes()
    found = re.findall(rb"\0?([^\0 ]+) \d{4}-\d\d-\d\d \d\d:\d\d:\d\d "
                       rb"oxdiagk/windows/x86_64/[^/\0]+/[^/\0]+\0", raw)
    return found[0].decode() if len(found) == 1 else None


def library_check(image):
    version = Version()
    told = {"getCurrentVersion": returned_version(image), "PDB": debugger_version(image),
            "build string": built_version(image)}
    wanted = {"getCurrentVersion": version.packed, "PDB": version.packed,
              "build string": version.text}
    return f"{image} tells {version.text} in code, PDB and build string", different(told, wanted)


def checks_of(image):
    return [property_check, library_check] if image == LIBRARY else [property_check]
