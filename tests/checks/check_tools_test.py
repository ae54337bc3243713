"""The checks in tools/ on small trees of files: a bad one has to fail, and to name the place."""

import pathlib
import shutil
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]

TABLE = """# How it is built
| Folder | May include |
|---|---|
| `hud` | `frame`, `platform/leap` |
| `frame` | |
| `platform/leap` | nothing |

| `hud` | `physics` |
"""


class Tree(unittest.TestCase):
    def setUp(self):
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="rollix-check-"))
        self.addCleanup(shutil.rmtree, self.root)
        self.write("docs/architecture.md", TABLE)

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def run_tool(self, tool):
        done = subprocess.run([ROOT / "tools" / tool, self.root], capture_output=True, text=True,
                              check=False)
        return done.returncode, done.stdout.splitlines()


class CheckIncludes(Tree):
    def test_is_content_with_includes_that_follow_the_arrows(self):
        self.write("src/hud/Menu.h", '#include "hud/Line.h"\n#include <osg/Node>\n')
        self.write("src/hud/Menu.cpp", '#include "frame/GameLoop.h"\n#include <Leap.h>\n')
        self.assertEqual(self.run_tool("check-includes"), (0, []))

    def test_names_file_and_line_of_an_include_against_the_arrows(self):
        self.write("src/frame/GameLoop.h", '#pragma once\n\n#  include "hud/Menu.h"\n')
        self.assertEqual(self.run_tool("check-includes"),
                         (1, ["src/frame/GameLoop.h:3: frame may not include hud"]))

    def test_knows_the_folder_of_a_header_that_is_included_by_its_vendors_name(self):
        self.write("src/frame/GameLoop.cpp", "#include <Leap.h>\n")
        self.assertEqual(self.run_tool("check-includes"),
                         (1, ["src/frame/GameLoop.cpp:1: frame may not include platform/leap"]))

    def test_ends_the_table_at_its_last_row(self):
        self.write("src/hud/Menu.cpp", '#include "physics/PhysxScene.h"\n')
        self.write("docs/architecture.md", TABLE.replace("| nothing |", "| |\n| `physics` | |"))
        self.assertEqual(self.run_tool("check-includes"),
                         (1, ["src/hud/Menu.cpp:1: hud may not include physics"]))

    def test_asks_for_a_row_for_every_folder(self):
        self.write("src/video/Film.h", "#pragma once\n")
        self.assertEqual(self.run_tool("check-includes"),
                         (1, ["src/video/Film.h: video has no row in docs/architecture.md"]))

    def test_refuses_an_arrow_to_a_folder_without_a_row(self):
        self.write("docs/architecture.md", TABLE.replace("`frame`, ", "`frame`, `films`, "))
        self.assertEqual(self.run_tool("check-includes"),
                         (1, ["docs/architecture.md: hud may include films, no such row"]))

    def test_fails_when_there_is_no_table(self):
        self.write("docs/architecture.md", "# How it is built\n")
        code, lines = self.run_tool("check-includes")
        self.assertEqual(code, 1)
        self.assertIn("no table", lines[0])


@unittest.skipUnless(shutil.which("clang-format-14"), "the check is not made without it either")
class CheckFormat(Tree):
    def setUp(self):
        super().setUp()
        shutil.copy(ROOT / ".clang-format", self.root)

    def test_names_the_file_that_is_not_formatted_and_no_other(self):
        self.write("src/hud/Good.cpp", "int good()\n{\n    return 1;\n}\n")
        self.write("src/hud/Bad.cpp", "int bad() {\n  return 1; }\n")
        self.assertEqual(self.run_tool("check-format"), (1, ["src/hud/Bad.cpp: not formatted"]))

    def test_leaves_what_the_build_made_alone(self):
        self.write("src/hud/Good.cpp", "int good()\n{\n    return 1;\n}\n")
        self.write("build/release/moc_Bad.cpp", "int bad() {\n  return 1; }\n")
        self.assertEqual(self.run_tool("check-format"), (0, []))


if __name__ == "__main__":
    unittest.main()
