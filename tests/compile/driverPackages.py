"""That the INF files beside the modules install their drivers as Windows wants it today: run from the
driver store, signed by a catalog, with the version of the image, all files that the driver needs, and
from sections and strings that there are."""

import re

import images
import moduleFiles
import versions

DRIVER_STORE = "13"
FIRST_BUILD = 16299  # that finds files there


class Inf:
    """Section name in lower case -> its lines without comments, as (key, value)."""

    def __init__(self, text):
        self.text, self.sections = text, {}
        current = self.sections.setdefault("", [])
        for line in text.splitlines():
            line = line.split(";")[0].strip()
            if line.startswith("["):
                current = self.sections.setdefault(line.strip("[]").lower(), [])
            elif line:
                key, _, value = line.partition("=")
                current.append((key.strip(), value.strip()))

    def lines(self, section):
        return self.sections.get(section.lower(), [])

    def keys(self, section):
        return {key.lower() for key, _ in self.lines(section)}

    def value(self, section, key):
        return next((value for each, value in self.lines(section) if each.lower() == key.lower()),
                    "")

    def models(self):
        """The name of the devices' section and the systems that it is for; without a device, none."""
        words = self.lines("Manufacturer")[0][1].split(",") if self.lines("Manufacturer") else []
        return [word.strip() for word in words]

    def install(self):
        """The install section and the hardware id of the one device; without a device, none."""
        if not self.models():
            return "DefaultInstall.NTamd64", None
        section, hardware_id = self.lines(".".join(self.models()))[0][1].split(",")
        return f"{section.strip()}.NT", hardware_id.strip()

    def service(self):
        """The service's name and its section."""
        words = self.value(f"{self.install()[0]}.Services", "AddService").split(",")
        return (words[0].strip(), words[2].strip()) if len(words) > 2 else ("", "")

    def copied(self):
        sections = self.value(self.install()[0], "CopyFiles").split(",")
        return {key for section in sections for key in self.keys(section.strip())}


def needed_files(image):
    """The image and the modules beside it that it needs, directly or not."""
    found, beside = {image}, set(moduleFiles.every_image())
    for name in images.imports(image) & beside:
        found |= needed_files(name)
    return found


def string_complaints(inf):
    used = set(re.findall(r"%([A-Za-z]\w*)%", inf.text))
    known = {key for key, _ in inf.lines("Strings")}
    return [f"string {name} is not defined" for name in sorted(used - known)] + \
        [f"string {name} is not used" for name in sorted(known - used)]


def file_complaints(inf, driver):
    listed, copied = inf.keys("SourceDisksFiles"), inf.copied()
    wanted = needed_files(driver)
    missing = [name for name in sorted(listed) if not (moduleFiles.MODULES / name).exists()]
    return [f"{name} is not there" for name in missing] + \
        [f"{name} is not copied" for name in sorted(wanted - copied)] + \
        [f"{name} is listed in one place only" for name in sorted(listed ^ copied)]


def place_complaints(inf, driver):
    """Every file stays in the driver store, and whatever names one says so."""
    _, section = inf.service()
    places = [value.split(",")[0].strip() for _, value in inf.lines("DestinationDirs")]
    dirids = re.findall(r"%(\d+)%", inf.text)
    binary = inf.value(section, "ServiceBinary")
    return [complaint for held, complaint in [
        (places and set(places) == {DRIVER_STORE}, f"files go to {places}"),
        (set(dirids) == {DRIVER_STORE}, f"files are looked for in {dirids}"),
        (binary == rf"%{DRIVER_STORE}%\{driver}", f"the service starts {binary}"),
    ] if not held]


def system_complaints(inf):
    """No system that cannot run a driver from the driver store takes the device for its own."""
    if not inf.models():
        return []
    wanted = f"NTamd64.10.0...{FIRST_BUILD}"
    return [] if inf.models()[1:] == [wanted] else [f"its devices are not for {wanted} alone"]


def version_complaints(inf, name):
    stem = name.removesuffix(".inf")
    told = re.fullmatch(r"(\d\d/\d\d/\d{4}), *([\d.]+)", inf.value("Version", "DriverVer"))
    wanted = ".".join(str(number) for number in versions.Version().file)
    guid = inf.value("Version", "ClassGuid")
    return [complaint for held, complaint in [
        (inf.value("Version", "Signature").upper() == '"$WINDOWS NT$"', "no signature"),
        (inf.value("Version", "CatalogFile") == f"{stem}.cat", "no catalog of its name"),
        (inf.value("Version", "Class"), "no class"),
        (re.fullmatch(r"\{[0-9a-fA-F]{8}(-[0-9a-fA-F]{4}){3}-[0-9a-fA-F]{12}\}", guid), "no GUID"),
        (inf.value("Version", "Provider"), "no provider"),
        (inf.value("Version", "PnpLockdown") == "1", "its files can be replaced"),
        (told and told.group(2) == wanted, f"DriverVer is not of {wanted}"),
    ] if not held]


def service_complaints(inf, name):
    """A device is one without a bus, and named as the driver; so is the service, started on demand."""
    stem, hardware_id = name.removesuffix(".inf"), inf.install()[1]
    service, section = inf.service()
    return [complaint for held, complaint in [
        (hardware_id in (None, rf"ROOT\{stem.upper()}"), f"the hardware id is {hardware_id}"),
        (not inf.lines("DefaultInstall"), "it installs on every processor"),
        (service == stem, f"the service is {service}"),
        (inf.value(section, "ServiceType") == "1", "the service is no driver"),
        (inf.value(section, "StartType") == "3", "it is not started on demand"),
    ] if not held]


def complaints(name):
    inf = Inf((moduleFiles.MODULES / name).read_text(encoding="ascii"))
    driver = name.replace(".inf", ".sys")
    return string_complaints(inf) + file_complaints(inf, driver) + place_complaints(inf, driver) + \
        system_complaints(inf) + version_complaints(inf, name) + service_complaints(inf, name)


def checks():
    """The modules are built."""
    packages = sorted(path.name for path in moduleFiles.MODULES.glob("*.inf"))
    return [("there is a driver package", [] if packages else ["none"]),
            *((f"{name} installs what its driver needs", complaints(name)) for name in packages)]
