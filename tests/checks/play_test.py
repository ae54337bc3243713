"""What ./play starts, in a tree whose build is there and whose programs write down that they ran."""

import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]


class Play(unittest.TestCase):
    def setUp(self):
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="rollix-play-"))
        self.addCleanup(shutil.rmtree, self.root)
        shutil.copy(ROOT / "play", self.root)
        (self.root / "tools").mkdir()
        (self.root / "tools/setup.bash").write_text("""
            root=$PWD build=$PWD/build/release playPackages=()
            installPackages() { :; }; bringPhysx() { :; }; dropStaleBuild() { :; }
            configure() { :; }; compile() { :; }
            fail() { echo "$*" >&2; exit 1; }
            """, encoding="utf-8")
        (self.root / "build/release").mkdir(parents=True)
        for name in ("rollix", "rollix-hand"):
            program = self.root / "build/release" / name
            program.write_text(f'#!/bin/bash\necho "{name} in $PWD:" "$@"\n', encoding="utf-8")
            program.chmod(0o755)

    def play(self, *arguments, display=":0"):
        environment = dict(os.environ, DISPLAY=display)
        environment.pop("WAYLAND_DISPLAY", None)
        return subprocess.run([str(self.root / "play"), *arguments], env=environment, cwd="/",
                              capture_output=True, text=True, check=False)

    def lines(self, *arguments):
        return self.play(*arguments).stdout.splitlines()

    def test_starts_the_game_where_its_data_is(self):
        self.assertEqual(self.lines(), [f"rollix in {self.root}:"])

    def test_hands_its_arguments_to_the_game(self):
        self.assertEqual(self.lines("-style", "x")[-1], f"rollix in {self.root}: -style x")

    def test_brings_up_the_hand_that_brings_up_the_game(self):
        self.assertEqual(self.lines("hand")[-1], f"rollix-hand in {self.root}:")
        self.assertEqual(self.lines("hand", "--rate", "60")[-1],
                         f"rollix-hand in {self.root}: --rate 60")

    def test_starts_nothing_without_a_display(self):
        done = self.play("hand", display="")
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stdout, "")
        self.assertIn("no display", done.stderr)
