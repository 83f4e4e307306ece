"""What the built Windows modules must be."""

import re

import guards
import versions
import workshop
from moduleFiles import every_image, pdb_of, read

PAGE_SIZE = 4096
KERNEL = {"ntoskrnl.exe", "hal.dll"}
FAMILY = {
    "vexk.dll": KERNEL,
    "qelmk.dll": KERNEL | {"vexk.dll"},
    "oxdiagk.dll": KERNEL | {"vexk.dll", "qelmk.dll"},
    "oxdiagcontrol.sys": {"ntoskrnl.exe", "vexk.dll"},
    "slotbus.sys": KERNEL | {"vexk.dll", "qelmk.dll", "oxdiagk.dll"},
}
ENTRIES = {"DllInitialize", "DllUnload"}
WRAPPER_ENTRIES = {"pkgSetLegacyWrapperLoadState", "pkgSetWDMWrapperLoadStateAndGetGUID",
                   "pkgWDMWrapperCallSSMain"}


def imports(image):
    return imports_in(read(image, "--coff-imports"))


def imports_of(path):
    """The same of any file."""
    return imports_in(workshop.demand(["llvm-readobj", "--coff-imports", path]))


def imports_in(text):
    return {name.lower() for name in re.findall(r"^\s+Name: (\S+\.(?:exe|dll|sys))$", text, re.M)}


def exports(image):
    return set(re.findall(r"^\s+Name: (\S+)$", read(image, "--coff-exports"), re.M))


def import_check(image):
    extra = imports(image) - FAMILY[image]
    return f"{image} imports only from {', '.join(sorted(FAMILY[image]))}", sorted(extra)


def native_check(image):
    text = read(image, "--file-headers")
    wanted = ["IMAGE_SUBSYSTEM_NATIVE", "IMAGE_FILE_MACHINE_AMD64",
              "IMAGE_DLL_CHARACTERISTICS_DYNAMIC_BASE", "IMAGE_DLL_CHARACTERISTICS_NX_COMPAT"]
    return (f"{image} is a relocatable native image for x86-64",
            [word for word in wanted if word not in text])


def number_in(text, name):
    return int(re.search(rf"\b{name}: (0x[0-9A-F]+|\d+)", text).group(1), 0)


def executable_ranges(sections):
    """The addresses of each executable section, from the start of the image."""
    for section in sections:
        if "IMAGE_SCN_MEM_EXECUTE" in section:
            start = number_in(section, "VirtualAddress")
            yield range(start, start + number_in(section, "VirtualSize"))


def section_check(image):
    """What memory integrity asks of an image."""
    headers = read(image, "--file-headers")
    sections = read(image, "--sections").split("Section {")[1:]
    wrong = [re.search(r"Name: (\S+)", section).group(1) for section in sections
             if "IMAGE_SCN_MEM_WRITE" in section and "IMAGE_SCN_MEM_EXECUTE" in section]
    if number_in(headers, "SectionAlignment") % PAGE_SIZE != 0:
        wrong.append("sections on parts of pages")
    imports_at = number_in(headers, "IATRVA")
    if any(imports_at in addresses for addresses in executable_ranges(sections)):
        wrong.append("imports that can be executed")
    return f"{image} has sections that memory integrity allows", wrong


def unwind_check(image):
    """Stack traces and structured exceptions of the kernel live on this table."""
    size = exception_table_size(read(image, "--file-headers"))
    return f"{image} has unwind data", [] if size else ["its exception table is empty"]


def exception_table_size(text):
    found = re.search(r"ExceptionTableSize: (0x[0-9A-F]+)", text)
    return int(found.group(1), 16) if found else 0


def export_check(image):
    """Plain names are the C entry points; every C++ name is mangled the way of Microsoft."""
    names = exports(image)
    entries = ENTRIES | WRAPPER_ENTRIES if image == "oxdiagk.dll" else ENTRIES
    wrong = {name for name in names if re.match(r"_Z|\w+\(", name)} | (entries - names)
    if not any(name.startswith("?") for name in names):
        wrong.add("no mangled name at all")
    return f"{image} exports its entries and Microsoft-mangled names", sorted(wrong)


def guid_of_image(image):
    match = re.search(r"PDBGUID: \(([0-9A-F ]+)\)", read(image, "--coff-debug-directory"))
    raw = bytes.fromhex(match.group(1)) if match else b""
    return (raw[3::-1] + raw[5:3:-1] + raw[7:5:-1] + raw[8:]).hex() if len(raw) == 16 else None


def guid_of_pdb(image):
    pdb = pdb_of(image)
    if not pdb.exists():
        return None
    text = workshop.demand(["llvm-pdbutil", "dump", "--summary", pdb])
    return re.search(r"GUID: \{([0-9A-F-]+)\}", text).group(1).replace("-", "").lower()


def pdb_check(image):
    wanted, seen = guid_of_image(image), guid_of_pdb(image)
    wrong = [] if wanted and wanted == seen else [f"image {wanted}", f"PDB {seen}"]
    return f"{image} has its PDB beside it", wrong


def checks_of(image):
    checks = [native_check, section_check, unwind_check, pdb_check, *guards.CHECKS,
              *versions.checks_of(image)]
    checks += [import_check, guards.code_check] if image in FAMILY else []
    return checks + [export_check] if image.endswith(".dll") else checks


def missing_check():
    return "every image of the family is built", sorted(set(FAMILY) - set(every_image()))


def check():
    workshop.build("windows")
    jobs = [(one, image) for image in every_image() for one in checks_of(image)]
    results = [missing_check(), *workshop.in_parallel(lambda job: job[0](job[1]), jobs)]
    failed = [f"{title}: {', '.join(wrong)}" for title, wrong in results if wrong]
    return workshop.Outcome(len(results) - len(failed), failed, "\n".join(failed))
