"""What the documents say of the code, held against the code."""

import pathlib
import re
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
DOCUMENTS = [ROOT / "README.md", ROOT / "CONTRIBUTING.md", *sorted((ROOT / "docs").glob("*.md"))]
SOURCES = [path for folder in ("src", "tests", "tools", "bench", "cmake", "data")
           for path in sorted((ROOT / folder).rglob("*"))
           if path.suffix in (".h", ".hpp", ".cpp", ".txt", ".cmake", ".vert", ".frag", ".geom",
                              ".glsl", "") and path.is_file()]
KIND = re.compile(r'#include "(?:level|blocks)/Block('
                  r'Standard|Checkpoint|Button|Ghost|Elevator|Trap|Item|Portal)\.h"')


def text_of(paths):
    return "\n".join(path.read_text(encoding="utf-8", errors="replace") for path in paths)


def quoted(document):
    """What stands between backquotes within a line, outside of blocks of code."""
    prose = re.sub(r"^```.*?^```", "", document.read_text(encoding="utf-8"),
                   flags=re.DOTALL | re.MULTILINE)
    return re.findall(r"`([^`\n]+)`", prose)


class Documents(unittest.TestCase):
    def test_name_only_sources_that_there_are(self):
        for document in DOCUMENTS:
            for name in quoted(document):
                if not re.fullmatch(r"[\w/-]+\.(h|cpp|vert|frag|geom|glsl|supp|cmake)", name):
                    continue
                with self.subTest(document=document.name, name=name):
                    places = [ROOT / name, *(ROOT / f / name for f in ("src", "data", "tests")),
                              *(ROOT / "data").rglob(pathlib.PurePath(name).name)]
                    self.assertTrue(any(place.exists() for place in places))

    def test_name_only_operations_that_there_are(self):
        code = text_of(SOURCES)
        for document in DOCUMENTS:
            for name in quoted(document):
                called = re.fullmatch(r"(?:\w+(?:::|\.))*([a-z]\w*)\(\)|\w+::(\w+)|([a-z]+[A-Z]\w*)",
                                      name)
                if not called:
                    continue
                with self.subTest(document=document.name, name=name):
                    last = next(group for group in called.groups() if group)
                    self.assertRegex(code, rf"\b{last}\b")

    def test_tell_what_a_picture_may_ask_for(self):
        header = (ROOT / "src/level/PictureFile.h").read_text(encoding="utf-8")
        guide = (ROOT / "docs/levels.md").read_text(encoding="utf-8")
        for limit in ("mostCells", "mostBodies"):
            number = re.search(rf"constexpr int {limit} = (\d+);", header).group(1)
            self.assertIn(f" more than {number} ", guide)

    def test_no_kind_of_block_knows_another(self):
        for folder in ("level", "blocks"):
            for path in sorted((ROOT / "src" / folder).glob("Block*.*")):
                kinds = set(KIND.findall(path.read_text(encoding="utf-8")))
                if path.stem != "BlockFactory":
                    with self.subTest(source=path.name):
                        self.assertLessEqual({f"Block{kind}" for kind in kinds}, {path.stem})


class Suppressions(unittest.TestCase):
    def test_of_ours_name_operations_that_there_are(self):
        suppressions = (ROOT / "tests/tsan.supp").read_text(encoding="utf-8")
        ours = 0
        for owner, name in re.findall(r"^race:(?:Leap::)?(\w+)::~?(\w*)$", suppressions,
                                      re.MULTILINE):
            sources = [path for path in (ROOT / "src").rglob("*") if path.name.startswith(owner)]
            if not sources:
                continue  # a library's
            ours += 1
            with self.subTest(suppression=f"{owner}::{name}"):
                self.assertRegex(text_of(sources), rf"\b{name}\b")
        self.assertGreater(ours, 5)

    def test_leave_out_the_key_flags_which_one_thread_has_to_itself(self):
        suppressions = (ROOT / "tests/tsan.supp").read_text(encoding="utf-8")
        self.assertNotIn("key", suppressions)


if __name__ == "__main__":
    unittest.main()
