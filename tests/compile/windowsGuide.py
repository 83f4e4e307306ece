"""What docs/windows.md and the example's INF file say is so: the commands build the driver on that
page, and the INF file installs files that there are, all that the driver needs, from sections and
strings that there are."""

import os
import re
import tempfile

import images
import samples
import workshop

PAGE = workshop.TOP / "docs/windows.md"
INF = workshop.TOP / "examples/slotbus/windows/slotbus.inf"
DRIVER = "slotbus.sys"
HARDWARE_ID = r"ROOT\SLOTBUS"
BUILD = re.compile(r"^```build\n(.*?)^```$", re.MULTILINE | re.DOTALL)
MODULES = workshop.tree("windows") / "modules"


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
    missing = {"oxdiagk.dll", "vexk.dll"} - imported
    return [f"hello.sys does not import from {name}" for name in sorted(missing)]


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


def file_complaints(sections):
    listed, copied = keys(sections, "SourceDisksFiles"), keys(sections, "Slotbus_Files")
    wanted = needed_files(DRIVER) | {"rack.txt"}
    return [f"{name} is not there" for name in sorted(listed) if not (MODULES / name).exists()] + \
        [f"{name} is not copied" for name in sorted(wanted - copied)] + \
        [f"{name} is listed in one place only" for name in sorted(listed ^ copied)]


def section_complaints(sections):
    """Each section is there under the name that another one has for it."""
    _, models = sections["manufacturer"][0]
    name, target = [part.strip() for part in models.split(",")]
    devices = f"{name}.{target}"
    install, hardware_id = [part.strip() for part in sections[devices.lower()][0][1].split(",")]
    added = value(sections, f"{install}.NT.Services", "AddService") or "none,,none"
    service, _, service_section = [part.strip() for part in added.split(",")]
    binary = value(sections, service_section, "ServiceBinary")
    return [complaint for held, complaint in [
        (hardware_id == HARDWARE_ID, f"the hardware id is {hardware_id}"),
        (value(sections, f"{install}.NT", "CopyFiles") == "Slotbus_Files", "nothing is copied"),
        (service == "slotbus", f"the service is {service}"),
        (binary == rf"%12%\{DRIVER}", f"the service starts {binary}"),
        (value(sections, "DestinationDirs", "DefaultDestDir") == "12", "files go elsewhere"),
        (value(sections, "Version", "Signature") == '"$WINDOWS NT$"', "no signature"),
    ] if not held]


def inf_complaints():
    text = INF.read_text(encoding="ascii")
    sections = sections_of(text)
    return string_complaints(text, sections) + file_complaints(sections) + \
        section_complaints(sections)


def check():
    """The modules are built."""
    results = [("docs/windows.md builds a driver", build_complaints()),
               ("slotbus.inf installs what the driver needs", inf_complaints())]
    failed = [title for title, complaints in results if complaints]
    output = "\n".join(line for _, complaints in results for line in complaints)
    return workshop.Outcome(len(results) - len(failed), failed, output)
