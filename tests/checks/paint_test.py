"""art/levels/paint from outside: what it refuses, and what it leaves alone."""

import pathlib
import shutil
import subprocess
import tempfile
import unittest

PAINT = pathlib.Path(__file__).resolve().parents[2] / "art/levels/paint"


class Paint(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="rollix-paint-"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.picture = self.folder / "level.png"

    def paint(self, *arguments):
        done = subprocess.run([PAINT, *arguments], cwd=self.folder, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, check=False)
        return done.returncode, done.stderr.splitlines()

    def drawing(self, text):
        (self.folder / "drawing.txt").write_bytes(text if isinstance(text, bytes) else text.encode())
        return "drawing.txt"

    def refuses(self, text, complaint):
        code, lines = self.paint(self.drawing(text), "level.png")
        self.assertEqual((code, lines), (1, [f"paint: {complaint}"]))
        self.assertFalse(self.picture.exists())


class Arguments(Paint):
    def test_that_are_wrong_paint_nothing(self):
        for arguments in (["--nonsense"], [self.drawing("SG")], ["drawing.txt", "a.png", "b.png"]):
            code, lines = self.paint(*arguments)
            self.assertEqual(code, 2, arguments)
            self.assertTrue(lines[0].startswith("usage: paint"), lines)
        self.assertEqual([path.name for path in self.folder.iterdir()], ["drawing.txt"])

    def test_that_name_no_file_are_told(self):
        self.assertEqual(self.paint("none.txt", "a.png"),
                         (1, ["paint: none.txt: No such file or directory"]))
        self.assertEqual(self.paint(self.drawing("SG"), "none/a.png"),
                         (1, ["paint: none/a.png: No such file or directory"]))


class Drawings(Paint):
    def test_that_mean_nothing_are_refused_with_their_place(self):
        self.refuses("S.\n.?", "drawing.txt: line 2, character 2: no meaning for '?'; give it one "
                               "at the top: ! ? hue saturation value alpha")
        self.refuses("! a 1 2\nS", "drawing.txt: line 1: a character needs four numbers: "
                                   "! c hue saturation value alpha")
        self.refuses("! a 361 2 3 4\nS", "drawing.txt: line 1: hue is 361, and goes to 360")
        self.refuses("! a 101 3 20 255\nS", "drawing.txt: line 1: no colour has hue 101, "
                                            "saturation 3 and value 20")
        self.refuses("", "drawing.txt: there is no cell in this drawing")
        self.refuses(b"\xff\xfe", "drawing.txt: this is no drawing, but a file of bytes")

    def test_may_begin_with_remarks(self):
        self.assertEqual(self.paint(self.drawing("! A door, 3 wide\n! a b\nSG"), "level.png"),
                         (0, []))


class Pictures(Paint):
    def test_of_its_own_are_painted_over(self):
        for text in ("SG", "S.G"):
            self.assertEqual(self.paint(self.drawing(text), "level.png"), (0, []))

    def test_of_others_stay_as_they_are_without_a_word_for_it(self):
        self.picture.write_bytes(b"somebody's work")
        code, lines = self.paint(self.drawing("SG"), "level.png")
        self.assertEqual((code, lines),
                         (1, ["paint: drawing.txt: level.png is there, and not my work; with "
                              "--overwrite I paint over it"]))
        self.assertEqual(self.picture.read_bytes(), b"somebody's work")
        self.assertEqual(self.paint("--overwrite", "drawing.txt", "level.png"), (0, []))
        self.assertTrue(self.picture.read_bytes().startswith(b"\x89PNG"))

    def test_that_somebody_went_on_painting_are_others(self):
        self.paint(self.drawing("SG"), "level.png")
        change = ("from PIL import Image, PngImagePlugin\n"
                  "picture = Image.open('level.png')\n"
                  "mark = PngImagePlugin.PngInfo()\n"
                  "mark.add_text('Software', picture.info['Software'])\n"
                  "picture.putpixel((0, 0), (93, 186, 0, 255))\n"
                  "picture.save('level.png', pnginfo=mark)\n")
        subprocess.run(["/usr/bin/python3", "-c", change], cwd=self.folder, check=True)
        code, _ = self.paint("drawing.txt", "level.png")
        self.assertEqual(code, 1)


if __name__ == "__main__":
    unittest.main()
