"""What packages say of the version, and how their texts are filled."""

import os
import pathlib
import tempfile
import unittest
import unittest.mock
import zipfile

import release
import windowsArchive
import workshop

# Oldest first.
VERSIONS = ["1.9.9f4000", "2.0.0d1", "2.0.0d12", "2.0.0a1", "2.0.0b1", "2.0.0b3", "2.0.0f1",
            "2.0.0f9", "2.0.0f10", "2.0.1d1", "2.1.0d1"]


class Releases(unittest.TestCase):
    def test_versions_keep_their_order_in_debian(self):
        for older, newer in zip(VERSIONS, VERSIONS[1:]):
            code, _ = workshop.run(["dpkg", "--compare-versions", release.in_debians_order(older),
                                    "lt", release.in_debians_order(newer)])
            self.assertEqual(code, 0, f"{older} {newer}")

    def test_a_template_is_filled_or_refused(self):
        with tempfile.TemporaryDirectory() as folder:
            template = pathlib.Path(folder) / "text"
            template.write_text("@ONE@ and @TWO@, to x@y.example")
            self.assertEqual(release.filled(template, ONE="1", TWO="2"), "1 and 2, to x@y.example")
            with self.assertRaises(workshop.Failure):
                release.filled(template, ONE="1")

    def test_a_time_of_the_sources_that_is_none_is_told(self):
        for text in ("now", "-1", "1.5", "1" * 30):
            with unittest.mock.patch.dict(os.environ, SOURCE_DATE_EPOCH=text):
                with self.assertRaisesRegex(workshop.Failure, "SOURCE_DATE_EPOCH"):
                    release.source_time()

    def test_an_archive_of_the_first_second_begins_with_1980(self):
        with tempfile.TemporaryDirectory() as name, \
                unittest.mock.patch.dict(os.environ, SOURCE_DATE_EPOCH="0"):
            top = pathlib.Path(name) / "top"
            top.mkdir()
            (top / "file").write_text("text")
            windowsArchive.pack(top, pathlib.Path(name) / "archive.zip")
            with zipfile.ZipFile(pathlib.Path(name) / "archive.zip") as archive:
                self.assertEqual(archive.infolist()[0].date_time, (1980, 1, 1, 0, 0, 0))
