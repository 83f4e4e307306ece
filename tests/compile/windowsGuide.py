"""What docs/windows.md and the INF files say is so: the commands build the driver on that page, and
each INF file installs files that there are, all that its driver needs, from sections and strings that
there are."""

import collections
import os
import re
import tempfile

import images
import samples
import workshop

PAGE = workshop.TOP / "docs/windows.md"
HARDWARE_ID = r"ROOT\SLOTBUS"
BUILD = re.compile(r"^```build\n(.*?)^```$", re.MULTILINE | re.DOTALL)
MODULES = workshop.tree("windows") / "modules"

# An INF file, the section of the files that it copies, and what its driver needs beside modules.
Inf = collections.namedtuple("Inf", "path service files others")
SLOTBUS = Inf("examples/slotbus/windows/slotbus.inf", "slotbus", "Slotbus_Files", {"rack.txt"})
CONTROL = Inf("platform/control/oxdiagcontrol.inf", "oxdiagcontrol", "Control_Files", set())


def build_complaints():
    with tempfile.TemporaryDirectory() as folder:
        with open(f"{folder}/hello.cpp", "w") as file:
            file.write(samples.sample_source(PAGE))
        script = "set -e\n" + BUILD.search(PAGE.read_text()).group(1)
        environment = dict(os.environ, OXDIAG=str(workshop.TOP), MODULES=str(MODULES))
        code, output = workshop.run(["sh", "-c", script], cwd=folder, env=environment)
        if code != 0:
            return [output]
        imported = images.imports_of(f"{folder}/hello.sys")
        headers = workshop.demand(["llvm-readobj", "--file-headers", f"{folder}/hello.sys"])
    missing = {"oxdiagk.dll", "vexk.dll"} - imported
    unguarded = "IMAGE_DLL_CHARACTERISTICS_GUARD_CF" not in headers
    return [f"hello.sys does not import from {name}" for name in sorted(missing)] + \
        (["hello.sys has no control-flow guard"] if unguarded else [])


def sections_of(text):
    """Section name in lower case -> its lines without comments, as (key, value) or (line, "")."""
    sections = {}
    for line in text.splitlines():
        line = line.split(";")[0].strip()
        if line.startswith("["):
            current = sections.setdefault(line.strip("[]").lower(), [])
        elif line:
            key, _, value = line.partition("=")
            current.append((key.strip(), value.strip()))
    return sections


def keys(sections, name):
    return {key.lower() for key, _ in sections.get(name.lower(), [])}


def value(sections, name, key):
    return next((found for each, found in sections.get(name.lower(), [])
                 if each.lower() == key.lower()), None)


def needed_files(image):
    """The image and the family's modules that it needs, directly or not."""
    found = {image}
    for name in images.imports(image) & set(images.FAMILY):
        found |= needed_files(name)
    return found


def string_complaints(text, sections):
    used = set(re.findall(r"%([A-Za-z]\w*)%", text))
    known = {key for key, _ in sections.get("strings", [])}
    return [f"string {name} is not defined" for name in sorted(used - known)] + \
        [f"string {name} is not used" for name in sorted(known - used)]


def file_complaints(inf, sections):
    listed, copied = keys(sections, "SourceDisksFiles"), keys(sections, inf.files)
    wanted = needed_files(f"{inf.service}.sys") | inf.others
    return [f"{name} is not there" for name in sorted(listed) if not (MODULES / name).exists()] + \
        [f"{name} is not copied" for name in sorted(wanted - copied)] + \
        [f"{name} is listed in one place only" for name in sorted(listed ^ copied)]


def held_or(*claims):
    return [complaint for held, complaint in claims if not held]


def device_of(sections):
    """The install section and the hardware id of the one device that there is."""
    _, models = sections["manufacturer"][0]
    name, target = [part.strip() for part in models.split(",")]
    return [part.strip() for part in sections[f"{name}.{target}".lower()][0][1].split(",")]


def install_complaints(inf, sections, install):
    """Each section is there under the name that another one has for it."""
    added = value(sections, f"{install}.Services", "AddService") or "none,,none"
    service, _, service_section = [part.strip() for part in added.split(",")]
    binary = value(sections, service_section, "ServiceBinary")
    return held_or(
        (value(sections, install, "CopyFiles") == inf.files, "nothing is copied"),
        (service == inf.service, f"the service is {service}"),
        (binary == rf"%12%\{inf.service}.sys", f"the service starts {binary}"),
        (value(sections, service_section, "ServiceType") == "1", "the service is no driver"),
        (value(sections, service_section, "StartType") == "3", "it is not started on demand"),
        (value(sections, "DestinationDirs", "DefaultDestDir") == "12", "files go elsewhere"),
        (value(sections, "Version", "CatalogFile") == f"{inf.service}.cat", "another catalog"),
        (value(sections, "Version", "Signature") == '"$WINDOWS NT$"', "no signature"))


def inf_complaints(inf, find_install):
    text = (workshop.TOP / inf.path).read_text(encoding="ascii")
    sections = sections_of(text)
    install, complaints = find_install(sections)
    return complaints + string_complaints(text, sections) + file_complaints(inf, sections) + \
        install_complaints(inf, sections, install)


def of_device(sections):
    install, hardware_id = device_of(sections)
    return f"{install}.NT", held_or((hardware_id == HARDWARE_ID,
                                     f"the hardware id is {hardware_id}"))


def of_no_device(sections):
    """A driver without hardware: its section names the processor, and no maker is there."""
    return "DefaultInstall.NTamd64", held_or(
        ("manufacturer" not in sections, "it is of a device"),
        ("defaultinstall" not in sections, "it installs on every processor"))


def check():
    """The modules are built."""
    results = [("docs/windows.md builds a driver", build_complaints()),
               ("slotbus.inf installs what the driver needs", inf_complaints(SLOTBUS, of_device)),
               ("oxdiagcontrol.inf installs what the driver needs",
                inf_complaints(CONTROL, of_no_device))]
    failed = [title for title, complaints in results if complaints]
    output = "\n".join(line for _, complaints in results for line in complaints)
    return workshop.Outcome(len(results) - len(failed), failed, output)
