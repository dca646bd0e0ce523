"""The checks of the manual notice what they are there for: each fault is put into a copy, and must be found."""

import contextlib
import io
import os
import shutil
import tempfile
import unittest

import check_blocks
import check_links
import check_messages
import check_oddities
from manual import ROOT


class Checks(unittest.TestCase):
    def setUp(self):
        self.root = tempfile.mkdtemp(prefix="tessel-manual-")
        self.addCleanup(shutil.rmtree, self.root)
        for part in ("docs", "examples", "lab", "scripts", "src", "platform"):
            shutil.copytree(os.path.join(ROOT, part), os.path.join(self.root, part), symlinks=True)
        shutil.copy(os.path.join(ROOT, "README.md"), self.root)

    def change(self, path, old, new):
        path = os.path.join(self.root, path)
        with open(path, encoding="utf-8") as file:
            text = file.read()
        self.assertIn(old, text)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text.replace(old, new, 1))

    def assert_found(self, check, problem):
        output = io.StringIO()
        with contextlib.redirect_stdout(output):
            status = check.main(self.root)
        self.assertEqual(status, 1, output.getvalue())
        self.assertIn(problem, output.getvalue())

    def test_an_example_that_changed(self):
        self.change("examples/first_lun.cpp", "lun.CAPACITY", "lun.ALLOCCAPACITY")
        self.assert_found(check_blocks, "README.md:")

    def test_a_block_that_changed(self):
        self.change("docs/getting-started.md", "cmake --build build\n", "cmake --build  build\n")
        self.assert_found(check_blocks, "does not stand in examples/quickstart/run.sh")

    def test_a_block_without_an_example(self):
        self.change("docs/host.md", "<!-- example: examples/host/login.sh -->", "")
        self.assert_found(check_blocks, "does not name its example")

    def test_a_block_of_an_example_that_is_gone(self):
        os.remove(os.path.join(self.root, "examples/host/login.sh"))
        self.assert_found(check_blocks, "examples/host/login.sh: No such file")

    def test_a_block_in_a_language_of_another_name(self):
        self.change("docs/getting-started.md", "```cpp", "```c")
        self.assert_found(check_blocks, "a block of 'c'")

    def test_a_link_to_a_page_that_is_gone(self):
        os.remove(os.path.join(self.root, "docs/host.md"))
        self.assert_found(check_links, "host.md: no such file")

    def test_a_link_to_an_image_that_is_gone(self):
        os.remove(os.path.join(self.root, "docs/images/objects.svg"))
        self.assert_found(check_links, "images/objects.svg: no such file")

    def test_a_link_to_a_heading_that_is_gone(self):
        self.change("docs/index.md", "(host.md)", "(host.md#the-lock-of-the-moon)")
        self.assert_found(check_links, "no such heading")

    def test_a_link_to_a_heading(self):
        self.change("docs/index.md", "(host.md)", "(host.md#the-lock-of-the-scans)")
        with contextlib.redirect_stdout(io.StringIO()):
            self.assertEqual(check_links.main(self.root), 0)

    def test_a_page_that_nothing_leads_to(self):
        with open(os.path.join(self.root, "docs", "alone.md"), "w", encoding="utf-8") as file:
            file.write("# Alone\n")
        self.assert_found(check_links, "docs/alone.md: no link leads to this page")

    def test_a_message_that_the_manual_does_not_have(self):
        self.change("src/session/Session.cpp", '"Get cookie Err"', '"Get no cookie"')
        self.assert_found(check_messages, "the manual does not have 'Get no cookie'")

    def test_a_message_that_no_source_has(self):
        self.change("src/session/Session.cpp", '"Get cookie Err"', '"Get no cookie"')
        self.assert_found(check_messages, "no source has 'Get cookie Err'")

    def test_an_oddity_that_is_gone(self):
        self.change("docs/oddities.md", '<a id="closing-line"></a>', "")
        self.assert_found(check_oddities, "no oddity 'closing-line'")

    def test_an_oddity_that_no_source_names(self):
        self.change("src/session/Log.cpp", "docs/oddities.md#cut-at-512", "on purpose")
        self.assert_found(check_oddities, "no source names 'cut-at-512'")

    def test_an_oddity_without_an_anchor(self):
        self.change("docs/oddities.md", '<a id="lun-0"></a>', "")
        self.assert_found(check_oddities, "no anchor: - LUN 0 is never removed")


if __name__ == "__main__":
    unittest.main(verbosity=2)
