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

<!-- arrows, drawn by tools/check-includes --draw -->
```mermaid
graph TD
    hud[hud]
    frame[frame]
    platform_leap[platform/leap]
    hud --> frame
    hud --> platform_leap
```
<!-- end of arrows -->
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
    def setUp(self):
        super().setUp()
        self.write("src/hud/Menu.h", '#include "hud/Line.h"\n#include <osg/Node>\n')
        self.write("src/hud/Menu.cpp", '#include "frame/GameLoop.h"\n#include <Leap.h>\n')

    def table(self, old, new):
        path = self.root / "docs/architecture.md"
        text = path.read_text(encoding="utf-8")
        self.assertIn(old, text)
        path.write_text(text.replace(old, new), encoding="utf-8")

    def complaints(self):
        """What the check says about the tree once the picture is drawn anew."""
        subprocess.run([ROOT / "tools/check-includes", "--draw", self.root], check=False,
                       stdout=subprocess.DEVNULL)
        return self.run_tool("check-includes")

    def test_is_content_with_includes_that_follow_the_arrows(self):
        self.assertEqual(self.run_tool("check-includes"), (0, []))

    def test_names_file_and_line_of_an_include_against_the_arrows(self):
        self.write("src/frame/GameLoop.h", '#pragma once\n\n#  include "hud/Menu.h"\n')
        self.assertEqual(self.complaints(),
                         (1, ["src/frame/GameLoop.h:3: frame may not include hud"]))

    def test_knows_the_folder_of_a_header_that_is_included_by_its_vendors_name(self):
        self.write("src/frame/GameLoop.cpp", "#include <Leap.h>\n")
        self.assertEqual(self.complaints(),
                         (1, ["src/frame/GameLoop.cpp:1: frame may not include platform/leap"]))

    def test_ends_the_table_at_its_last_row(self):
        self.write("src/hud/Line.cpp", '#include "physics/PhysxScene.h"\n')
        self.table("| nothing |", "| |\n| `physics` | |")
        self.assertEqual(self.complaints(),
                         (1, ["src/hud/Line.cpp:1: hud may not include physics"]))

    def test_asks_for_a_row_for_every_folder(self):
        self.write("src/video/Film.h", "#pragma once\n")
        self.assertEqual(self.complaints(),
                         (1, ["src/video/Film.h: video has no row in docs/architecture.md"]))

    def test_refuses_an_arrow_to_a_folder_without_a_row(self):
        self.table("`frame`, `platform", "`frame`, `films`, `platform")
        self.assertEqual(self.complaints(),
                         (1, ["docs/architecture.md: hud may include films, no such row"]))

    def test_refuses_an_arrow_that_no_include_follows(self):
        self.table("| `frame` | |", "| `frame` | `platform/leap` |")
        self.assertEqual(self.complaints(),
                         (1, ["docs/architecture.md: frame may include platform/leap, "
                              "and never does"]))

    def closes_a_circle(self):
        self.write("src/frame/GameLoop.cpp", '#include "hud/Menu.h"\n')
        self.table("| `frame` | |", "| `frame` | `hud` |")

    def test_refuses_a_circle_that_is_not_named(self):
        self.closes_a_circle()
        self.assertEqual(self.complaints(),
                         (1, ["docs/architecture.md: hud to frame to hud is a circle that no "
                              "arrow back names"]))

    def test_sees_a_circle_over_more_than_two_folders(self):
        self.write("src/frame/GameLoop.cpp", "#include <Leap.h>\n")
        self.write("src/platform/leap/Hand.cpp", '#include "hud/Menu.h"\n')
        self.write("src/hud/Menu.cpp", '#include "frame/GameLoop.h"\n')
        self.table("`frame`, `platform/leap` |", "`frame` |")
        self.table("| `frame` | |", "| `frame` | `platform/leap` |")
        self.table("| nothing |", "| `hud` |")
        self.assertEqual(self.complaints(),
                         (1, ["docs/architecture.md: hud to frame to platform/leap to hud is a "
                              "circle that no arrow back names"]))

    def test_is_content_with_a_circle_that_is_named(self):
        self.closes_a_circle()
        self.table("\n<!-- arrows",
                   "\n| Arrow back | Why |\n|---|---|\n| `frame` to `hud` | so |\n\n<!-- arrows")
        self.assertEqual(self.complaints(), (0, []))

    def test_refuses_an_arrow_back_that_closes_no_circle(self):
        self.table("\n<!-- arrows",
                   "\n| Arrow back | Why |\n|---|---|\n| `hud` to `frame` | so |\n\n<!-- arrows")
        self.assertEqual(self.complaints(),
                         (1, ["docs/architecture.md: hud to frame is an arrow back, "
                              "and closes no circle"]))

    def test_refuses_a_picture_that_the_includes_have_left_behind(self):
        self.write("src/frame/GameLoop.cpp", "#include <Leap.h>\n")
        self.table("| `frame` | |", "| `frame` | `platform/leap` |")
        self.assertEqual(self.run_tool("check-includes"),
                         (1, ["docs/architecture.md: the picture of the arrows is not current "
                              "(tools/check-includes --draw)"]))
        self.assertEqual(self.complaints(), (0, []))

    def test_leaves_out_of_the_picture_what_a_longer_way_says_too(self):
        self.write("src/frame/GameLoop.cpp", "#include <Leap.h>\n")
        self.table("| `frame` | |", "| `frame` | `platform/leap` |")
        self.assertEqual(self.complaints(), (0, []))
        text = (self.root / "docs/architecture.md").read_text(encoding="utf-8")
        self.assertIn("    hud --> frame\n    frame --> platform_leap\n```", text)

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


class CheckCredits(Tree):
    HEADER = "| File pattern | Author | Licence | Origin |\n|---|---|---|---|\n"

    def setUp(self):
        super().setUp()
        self.write("data/Hat.ttf", "")
        self.rows("`*`", "`docs/**`", "`data/*.ttf`")

    def rows(self, *patterns):
        self.write("CREDITS.md",
                   self.HEADER + "".join(f"| {p} | me | MIT | here |\n" for p in patterns))

    def test_is_content_when_every_file_has_a_row(self):
        self.assertEqual(self.run_tool("check-credits"), (0, []))

    def test_names_a_file_that_no_row_covers(self):
        self.write("data/Hat.txt", "")
        self.assertEqual(self.run_tool("check-credits"), (1, ["data/Hat.txt: no row in CREDITS.md"]))

    def test_one_star_stays_in_its_folder_and_two_go_below(self):
        self.write("data/old/Hat.ttf", "")
        self.assertEqual(self.run_tool("check-credits"),
                         (1, ["data/old/Hat.ttf: no row in CREDITS.md"]))
        self.rows("`*`", "`docs/**`", "`data/**.ttf`")
        self.assertEqual(self.run_tool("check-credits"), (0, []))

    def test_names_a_row_that_matches_nothing(self):
        self.rows("`*`", "`docs/**`", "`data/*.ttf`", "`data/*.otf`")
        self.assertEqual(self.run_tool("check-credits"), (1, ["CREDITS.md:6: data/*.otf is no file"]))

    def test_names_a_file_that_two_rows_claim(self):
        self.rows("`*`", "`docs/**`", "`data/*.ttf`", "`data/Hat.*`")
        self.assertEqual(self.run_tool("check-credits"),
                         (1, ["data/Hat.ttf: data/*.ttf and data/Hat.* in CREDITS.md"]))

    def test_asks_for_all_four_cells_of_a_row(self):
        self.write("CREDITS.md", self.HEADER + "| `**` | me | MIT | here |\n| `*.md` | me | | here |\n")
        self.assertEqual(self.run_tool("check-credits"),
                         (1, ["CREDITS.md:4: a row is pattern, author, licence, origin"]))

    def test_fails_without_a_table(self):
        self.write("CREDITS.md", "# Credits\n")
        code, lines = self.run_tool("check-credits")
        self.assertEqual(code, 1)
        self.assertIn("no table", lines[0])

    @unittest.skipUnless(shutil.which("git"), "git tells what a checkout ignores")
    def test_leaves_what_git_ignores_alone_but_not_what_is_new(self):
        subprocess.run(["git", "init", "-q", self.root], check=True)
        self.write(".gitignore", "*.log\n")
        self.write("data/game.log", "")
        self.assertEqual(self.run_tool("check-credits"), (0, []))
        self.write("data/game.txt", "")
        self.assertEqual(self.run_tool("check-credits"),
                         (1, ["data/game.txt: no row in CREDITS.md"]))


if __name__ == "__main__":
    unittest.main()
