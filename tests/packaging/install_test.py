"""Installs the build into a folder of its own, and looks at what a player gets.

Usage: install_test.py CMAKE BUILD_FOLDER [ARGUMENT OF UNITTEST]...
"""

import gzip
import os
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import time
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
LIMIT = 60.0  # s for anything to happen

CMAKE = BUILD = None  # by the command line


def run(*command, **options):
    return subprocess.run([str(part) for part in command], capture_output=True, text=True, check=False,
                          **options)


def without(tool):
    return unittest.skipUnless(shutil.which(tool), f"{tool} is not installed")


class Installation(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp(prefix="rollix-install-"))
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        cls.prefix = cls.folder / "usr"
        done = run(CMAKE, "--install", BUILD, "--prefix", cls.prefix)
        assert done.returncode == 0, done.stdout + done.stderr

    def has(self, name):
        self.assertTrue((self.prefix / name).is_file(), name)
        return self.prefix / name


class Files(Installation):
    def test_programs_stand_where_the_menu_and_the_shell_find_them(self):
        for name in ("games/rollix", "games/rollix-hand", "bin/rollix-level"):
            self.assertTrue(os.access(self.has(name), os.X_OK), name)

    def test_everything_that_the_game_reads_comes_along(self):
        data = self.prefix / "share/games/rollix/data"
        wanted = {p.relative_to(ROOT / "data") for p in (ROOT / "data").rglob("*") if p.is_file()}
        found = {p.relative_to(data) for p in data.rglob("*") if p.is_file()}
        self.assertEqual(wanted - found, {pathlib.Path("Bevan-OFL.txt")}, "its text is in copyright")
        self.assertEqual(found - wanted, set())

    def test_nothing_stands_anywhere_else(self):
        folders = {str(p.relative_to(self.prefix).parent) for p in self.prefix.rglob("*") if p.is_file()}
        known = re.compile(r"games|bin|share/(games/rollix/data(/Rollix)?|doc/rollix(/.*)?|man/man[16]|"
                           r"applications|metainfo|lintian/overrides|icons/hicolor/(\d+x\d+|scalable)/apps)")
        self.assertEqual([f for f in folders if not known.fullmatch(f)], [])

    def test_icons_are_of_the_size_that_their_folder_says(self):
        for size in (16, 22, 24, 32, 48, 64, 128, 256, 512):
            for name in ("rollix", "rollix-hand"):
                icon = self.has(f"share/icons/hicolor/{size}x{size}/apps/{name}.png")
                self.assertEqual(struct.unpack(">II", icon.read_bytes()[16:24]), (size, size))
        for name in ("rollix", "rollix-hand"):
            self.has(f"share/icons/hicolor/scalable/apps/{name}.svg")

    def test_every_program_has_its_manual_page(self):
        for page in ("man6/rollix.6", "man6/rollix-hand.6", "man1/rollix-level.1"):
            text = gzip.decompress(self.has(f"share/man/{page}.gz").read_bytes()).decode()
            self.assertIn(f"Rollix {self.version()}", text.splitlines()[0])
            self.assertNotIn("@", text.splitlines()[0])

    @unittest.skipUnless(os.environ.get("DISPLAY"), "a program with a window asks for a display")
    def test_the_manual_tells_of_every_command_and_option_and_of_no_other(self):
        for program, page in (("games/rollix-hand", "man6/rollix-hand.6"),
                              ("bin/rollix-level", "man1/rollix-level.1")):
            page = gzip.decompress(self.has(f"share/man/{page}.gz").read_bytes()).decode()
            page = page.replace("\\-", "-")
            helps = self.help_of(program)
            commands = re.findall(r"(?m)^  ([a-z]+)  ", helps.partition("Subcommands:")[2])
            for command in commands:
                self.assertIn(f'"{command} ', page, program)
                helps += self.help_of(program, command)
            options = set(re.findall(r"(?m)^  (?:-\w,)?(--[a-z-]+)", helps))
            self.assertEqual(options, set(re.findall(r"(?<![\w-])--[a-z-]+", page)), program)

    def help_of(self, program, *command):
        done = run(self.has(program), *command, "--help")
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        return done.stdout

    def test_the_licence_of_the_font_is_told_whole(self):
        def words(text):
            return re.sub(r"[\s.-]+", " ", text)
        copyright_file = self.has("share/doc/rollix/copyright").read_text(encoding="utf-8")
        licence = (ROOT / "data/Bevan-OFL.txt").read_text(encoding="utf-8")
        self.assertIn(words(licence[licence.index("SIL OPEN FONT LICENSE Version"):]).strip(),
                      words(copyright_file))

    def test_brings_the_palette_for_paint_programs(self):
        palette = self.has("share/doc/rollix/rollix.gpl").read_text(encoding="utf-8")
        self.assertTrue(palette.startswith("GIMP Palette\n"))
        self.assertIn("\thole\n", palette)

    def test_the_guide_for_authors_finds_its_pictures(self):
        guide = self.has("share/doc/rollix/levels.md")
        for target in re.findall(r"\]\(([^)#:]+)[)#]", guide.read_text(encoding="utf-8")):
            self.assertTrue((guide.parent / target).exists(), target)

    def test_all_places_tell_one_version(self):
        newest = re.search(r"^## ([0-9.]+) \(([0-9-]+)\)$",
                           (ROOT / "CHANGELOG.md").read_text(encoding="utf-8"), re.MULTILINE)
        self.assertEqual(newest.group(1), self.version())
        metainfo = self.has("share/metainfo/org.rollix.rollix.metainfo.xml").read_text(encoding="utf-8")
        self.assertEqual(re.search(r'<release version="([^"]+)" date="([^"]+)"', metainfo).groups(),
                         newest.groups())

    def version(self):
        return re.search(r"project\(Rollix VERSION ([0-9.]+)",
                         (ROOT / "CMakeLists.txt").read_text(encoding="utf-8")).group(1)


class Checks(Installation):
    """Those that a distribution makes."""

    @without("desktop-file-validate")
    def test_the_menu_entries_are_right(self):
        for entry in ("rollix", "rollix-hand"):
            done = run("desktop-file-validate", self.has(f"share/applications/{entry}.desktop"))
            self.assertEqual((done.returncode, done.stdout + done.stderr), (0, ""))

    @without("appstreamcli")
    def test_the_metainfo_is_right(self):
        done = run("appstreamcli", "validate", "--pedantic", "--no-net", "--no-color",
                   self.has("share/metainfo/org.rollix.rollix.metainfo.xml"))
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        self.assertNotRegex(done.stdout, r"(?m)^[EWIP]: ")

    @without("man")
    def test_the_manual_pages_are_right(self):
        for page in ("man6/rollix.6", "man6/rollix-hand.6", "man1/rollix-level.1"):
            done = run("man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z",
                       self.has(f"share/man/{page}.gz"), env=dict(os.environ, LC_ALL="C.UTF-8"))
            self.assertEqual((done.returncode, done.stderr), (0, ""), page)


@unittest.skipUnless(os.environ.get("DISPLAY"), "the game needs a display")
class Game(Installation):
    def setUp(self):
        self.home = self.folder / "home"
        self.home.mkdir()
        self.addCleanup(shutil.rmtree, self.home)

    def plays_from(self, folder):
        """The lines that the game has said once its window is there."""
        environment = dict(os.environ, HOME=str(self.home), ALSOFT_DRIVERS="none",
                           MESA_SHADER_CACHE_DISABLE="true")  # the driver's own, wherever it likes
        for name in ("XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"):
            environment.pop(name, None)
        log = self.folder / "log"
        with log.open("w", encoding="utf-8") as output:
            game = subprocess.Popen([self.prefix / "games/rollix"], cwd=folder, env=environment,
                                    stdout=output, stderr=subprocess.STDOUT)
        try:
            end = time.monotonic() + LIMIT
            # The last thing that it says when it starts: there is no sound to be had.
            while "FMOD" not in log.read_text(encoding="utf-8") and time.monotonic() < end:
                self.assertIsNone(game.poll(), "it ended by itself")
                time.sleep(0.05)
            time.sleep(1.0)
            self.assertIsNone(game.poll(), "it ended by itself")
        finally:
            game.kill()
            game.wait()
        return log.read_text(encoding="utf-8").splitlines()

    def test_finds_its_data_from_any_folder_and_writes_nothing(self):
        before = sorted((p, p.stat().st_mtime_ns) for p in self.prefix.rglob("*"))
        lines = self.plays_from("/")
        self.assertIn("reading level data/Rollix/level0.png", lines)
        self.assertEqual([line for line in lines if line.startswith("I ")], [])
        self.assertEqual(sorted((p, p.stat().st_mtime_ns) for p in self.prefix.rglob("*")), before)
        self.assertEqual(list(self.home.rglob("*")), [])

    def test_prefers_the_data_of_the_folder_that_it_is_started_in(self):
        (self.home / "data/Rollix").mkdir(parents=True)
        lines = self.plays_from(self.home)
        self.assertTrue([line for line in lines if line.startswith("I cannot read")], lines)


if __name__ == "__main__":
    CMAKE, BUILD = sys.argv[1:3]
    unittest.main(argv=[sys.argv[0]] + sys.argv[3:])
