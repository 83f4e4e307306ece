"""What every package that is made here says of itself."""

import hashlib
import os
import re

import versions
import workshop

LICENCE = "The owner has not chosen a licence yet."


def version():
    """As the sources say it, such as 2.0.0d1."""
    return versions.Version().text


def in_debians_order(text):
    """A tilde comes before the end there: d, then a, then b are before the release, f is behind."""
    release, letter, build = re.fullmatch(r"([\d.]+)([dabf])(\d+)", text).groups()
    mark = {"d": "~~d", "a": "~a", "b": "~b", "f": "+f"}[letter]
    return f"{release}{mark}{build}"


def debian_version():
    return in_debians_order(version())


def source_time():
    """Seconds since 1970: SOURCE_DATE_EPOCH, else the time of the commit, else of the file that
    holds the version. What is made of the same sources is the same at any time."""
    given = os.environ.get("SOURCE_DATE_EPOCH", "")
    code, told = workshop.run(["git", "log", "-1", "--format=%ct"], cwd=workshop.TOP)
    if given and not re.fullmatch(r"\d{1,10}", given):
        raise workshop.Failure(f"SOURCE_DATE_EPOCH is no number of seconds: {given!r}")
    if given:
        return int(given)
    if code == 0 and told.strip():
        return int(told)
    return int((workshop.TOP / "cmake/version.cmake").stat().st_mtime)


def filled(template, **words):
    """The text of a template, with each @NAME@ replaced."""
    text = template.read_text()
    for name, value in words.items():
        text = text.replace(f"@{name}@", value)
    left = re.search(r"@[A-Z_]+@", text)
    if left:
        raise workshop.Failure(f"{template.name}: nothing for {left.group()}")
    return text


def digest(path):
    return hashlib.sha256(path.read_bytes()).hexdigest()
