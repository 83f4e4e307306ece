"""The Debian packages oxdiagk-tools and liboxdiagk-dev, of what cmake --install puts into place."""

import email.utils
import gzip
import hashlib
import os
import pathlib
import re
import stat
import tempfile

import release
import workshop

PRESET = "host-release"
TEMPLATES = workshop.TOP / "packaging/debian"
COMPONENTS = {"oxdiagk-tools": "tools", "liboxdiagk-dev": "development"}
MAINTAINER = "The maintainers of oxdiagk <maintainers@oxdiagk.example>"


def build():
    workshop.build(PRESET, "installed")


def architecture():
    return workshop.demand(["dpkg", "--print-architecture"]).strip()


def file_name(package):
    """As dpkg-deb names it."""
    return f"{package}_{release.debian_version()}_{architecture()}.deb"


def compress(path, text):
    """As gzip -9n writes it."""
    path.parent.mkdir(parents=True, exist_ok=True)
    with open(path, "wb") as raw, gzip.GzipFile("", "wb", 9, raw, mtime=0) as file:
        file.write(text)


def words(**more):
    return dict(more, VERSION=release.debian_version(), MAINTAINER=MAINTAINER,
                LICENCE=release.LICENCE)


def put_documents(root, package):
    folder = root / "usr/share/doc" / package
    folder.mkdir(parents=True)
    copyright_words = {"LICENCE": release.LICENCE}
    (folder / "copyright").write_text(
        release.filled(TEMPLATES / "copyright.in", **copyright_words))
    date = email.utils.formatdate(release.source_time())
    text = release.filled(TEMPLATES / "changelog.in",
                          **words(OWN_VERSION=release.version(), DATE=date))
    compress(folder / "changelog.gz", text.encode())
    compress(folder / "CHANGELOG.md.gz", (workshop.TOP / "CHANGELOG.md").read_bytes())


def compress_manual(root):
    for page in sorted(root.glob("usr/share/man/man*/*")):
        compress(page.with_name(f"{page.name}.gz"), page.read_bytes())
        page.unlink()


def programs(root):
    return sorted(root.glob("usr/bin/*"))


def strip_programs(root):
    for program in programs(root):
        workshop.demand(["strip", "--strip-unneeded", "--remove-section=.comment",
                         "--remove-section=.note", program])


def dependencies(root):
    """What the programs need, told by the libraries that are there."""
    if not programs(root):
        return ""
    with tempfile.TemporaryDirectory() as work:
        control = pathlib.Path(work) / "debian/control"
        control.parent.mkdir()
        control.write_text("Source: oxdiagk\n\nPackage: oxdiagk-tools\nArchitecture: any\n")
        told = workshop.demand(["dpkg-shlibdeps", "-O", *programs(root)], cwd=work)
    return re.search(r"^shlibs:Depends=(.*)$", told, re.M).group(1)


def files_of(root):
    return sorted(path for path in root.rglob("*") if path.is_file())


def set_modes(root):
    """Whatever the umask is and was."""
    for path in [root, *root.rglob("*")]:
        is_open = path.is_dir() or path.parent == root / "usr/bin"
        path.chmod(0o755 if is_open else 0o644)


def installed_size(root):
    """In KiB, each file and folder rounded up, as the packages of the distribution count it."""
    sizes = [-(-path.stat().st_size // 1024) if stat.S_ISREG(path.stat().st_mode) else 1
             for path in root.rglob("*")]
    return str(sum(sizes))


def sums(root):
    lines = [f"{hashlib.md5(path.read_bytes()).hexdigest()}  {path.relative_to(root)}\n"
             for path in files_of(root)]
    return "".join(lines)


def put_control(root, package):
    depends, size, md5sums = dependencies(root), installed_size(root), sums(root)
    control = words(ARCHITECTURE=architecture(), DEPENDS=depends, SIZE=size)
    folder = root / "DEBIAN"
    folder.mkdir()
    (folder / "control").write_text(
        release.filled(TEMPLATES / f"{package}.control.in", **control))
    (folder / "md5sums").write_text(md5sums)


def assemble(root, package):
    workshop.demand(["cmake", "--install", workshop.tree(PRESET), "--prefix", root / "usr",
                     "--component", COMPONENTS[package]])
    put_documents(root, package)
    compress_manual(root)
    strip_programs(root)
    put_control(root, package)
    set_modes(root)


def pack(root, file):
    """The times of the files are at most that of the sources."""
    environment = dict(os.environ, SOURCE_DATE_EPOCH=str(release.source_time()))
    for path in [root, *root.rglob("*")]:
        os.utime(path, (release.source_time(), release.source_time()))
    workshop.demand(["dpkg-deb", "--root-owner-group", "-Zxz", "--build", root, file],
                    env=environment)
    return file


def make_package(package, folder):
    with tempfile.TemporaryDirectory() as work:
        root = pathlib.Path(work) / package
        root.mkdir()
        assemble(root, package)
        return pack(root, folder / file_name(package))


def make(folder):
    """The packages, in a folder that there is."""
    build()
    return [make_package(package, folder) for package in COMPONENTS]


def prepare_root(root):
    """A root without any package, for dpkg --root."""
    database = root / "var/lib/dpkg"
    for folder in ("info", "updates", "triggers"):
        (database / folder).mkdir(parents=True)
    (database / "status").touch()
