"""The steps that ./play and ./test share, in a tree of their own, with a Debian that is played by
scripts on the PATH: what is asked of apt-get, what is said, and how a failure ends."""

import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]


class Setup(unittest.TestCase):
    def setUp(self):
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="rollix-setup-"))
        self.addCleanup(shutil.rmtree, self.root)
        self.bin = self.root / "bin"
        self.bin.mkdir()
        # A cache with PhysX in it, so that nothing is built, wherever the tests run.
        library = self.root / "cache/rollix/physx-5.1.3/lib/libphysx.a"
        library.parent.mkdir(parents=True)
        library.touch()

    def program(self, name, body):
        path = self.bin / name
        path.write_text("#!/bin/bash\n" + body + "\n", encoding="utf-8")
        path.chmod(0o755)

    def debian(self, installed, apt="exit 0"):
        """A Debian with these packages, whose apt-get and sudo write down how they are called."""
        lines = "\n".join(f"installed {name}" for name in installed)
        self.program("dpkg-query", f"cat <<'END'\n{lines}\nEND")
        self.program("apt-get", f'echo "$*" >> "{self.root}/calls"\n{apt}')
        self.program("sudo", f'echo "sudo $1" >> "{self.root}/calls"\n[[ $1 == -v ]] || "$@"')

    def calls(self):
        path = self.root / "calls"
        return path.read_text(encoding="utf-8").splitlines() if path.exists() else []

    def sh(self, script):
        environment = dict(os.environ, PATH=f"{self.bin}:{os.environ['PATH']}",
                           XDG_CACHE_HOME=str(self.root / "cache"))
        text = f"set -uo pipefail\ncommand=play\nsource {ROOT}/tools/setup.bash\n{script}\n"
        return subprocess.run(["bash", "-c", text], cwd=self.root, env=environment,
                              capture_output=True, text=True, check=False)


class Packages(Setup):
    def test_says_and_does_nothing_when_all_are_there(self):
        self.debian(["cmake", "g++"])
        done = self.sh("installPackages cmake g++")
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))
        self.assertEqual(self.calls(), [])

    def test_installs_what_is_missing_and_only_that(self):
        self.debian(["cmake"])
        done = self.sh("installPackages cmake g++ xvfb")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn("play: installing Debian packages: g++ xvfb\n", done.stdout)
        update, install = [call for call in self.calls() if not call.startswith("sudo")]
        self.assertTrue(update.endswith(" update"))
        self.assertTrue(install.endswith(" g++ xvfb"), install)
        self.assertIn("--no-remove", install)

    def test_a_package_that_was_removed_but_for_its_settings_is_missing(self):
        self.debian([])
        self.program("dpkg-query", "echo 'config-files cmake'; echo 'installed g++'")
        done = self.sh("missingPackages cmake g++")
        self.assertEqual(done.stdout, "cmake\n")

    def test_asks_for_cargo_only_while_physx_is_not_built(self):
        self.debian(["cmake"])
        self.program("cargo", "echo cargo 1.65.0")
        shutil.rmtree(self.root / "cache")
        done = self.sh("installPackages cmake")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertRegex(self.calls()[-1], r" cargo(-web)?$")

    def test_takes_a_cargo_that_is_new_enough_as_it_is(self):
        self.debian(["cmake"])
        self.program("cargo", "echo 'cargo 1.70.0 (ec8a8a0ca 2023-04-25)'")
        shutil.rmtree(self.root / "cache")
        self.assertEqual(self.sh("installPackages cmake").stdout, "")
        self.assertEqual(self.calls(), [])

    def test_a_refusal_of_apt_ends_with_its_words_and_what_to_do(self):
        self.debian([], apt="[[ $* != *install* ]] || { echo 'E: no space left'; exit 100; }")
        done = self.sh("installPackages cmake; echo went on")
        self.assertEqual(done.returncode, 1)
        self.assertIn("play: installing packages failed. The end of build/packages.log:\n"
                      "    E: no space left\n", done.stderr)
        self.assertIn("apt-get install cmake", done.stderr)
        self.assertNotIn("went on", done.stdout)


class Steps(Setup):
    def test_shows_only_the_lines_that_tell_how_far_it_is(self):
        done = self.sh("step compiling advice log '^\\[' printf '%s\\n' '[1/2] a' 'noise'")
        self.assertEqual((done.returncode, done.stdout), (0, "[1/2] a\n"))
        self.assertEqual((self.root / "log").read_text(encoding="utf-8"), "[1/2] a\nnoise\n")

    def test_a_failure_shows_the_compilers_first_error_and_ends_the_command(self):
        self.program("ninja", "echo '[1/2] Building'; echo 'FAILED: Ball.o';"
                              "echo 'ccache /usr/bin/c++ -O3 Ball.cpp'; echo 'Ball.cpp:3: no';"
                              "for i in {1..99}; do echo more; done; exit 1")
        done = self.sh("mkdir -p build/release; compile all; echo went on")
        self.assertEqual(done.returncode, 1)
        self.assertIn("play: compiling failed. The end of build/release/compile.log:\n"
                      "    FAILED: Ball.o\n    Ball.cpp:3: no\n", done.stderr)
        self.assertNotIn("went on", done.stdout)

    def test_is_silent_when_there_is_nothing_to_compile(self):
        self.program("ninja", "echo 'ninja: no work to do.'")
        done = self.sh("mkdir -p build/release; compile all")
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))

    def test_waits_for_another_build_of_the_same_checkout(self):
        self.program("ninja", f'echo ninja >> "{self.root}/order"')
        done = self.sh("""mkdir -p build/release
            exec 7>build/release/.lock; flock 7
            compile all > out & waiting=$!
            until grep -q waiting out 2>/dev/null; do sleep 0.01; done
            echo first >> order; flock -u 7; wait $waiting""")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual((self.root / "order").read_text(encoding="utf-8"), "first\nninja\n")


class StaleBuild(Setup):
    def cache(self, **entries):
        path = self.root / "build/release/CMakeCache.txt"
        path.parent.mkdir(parents=True)
        path.write_text("".join(f"{name}{value}\n" for name, value in entries.values()),
                        encoding="utf-8")
        (path.parent / "build.ninja").touch()
        return path.parent

    def test_stays_when_it_was_made_here(self):
        folder = self.cache(home=("CMAKE_HOME_DIRECTORY:INTERNAL=", self.root))
        self.assertEqual(self.sh("dropStaleBuild").stdout, "")
        self.assertTrue((folder / "build.ninja").exists())

    def test_goes_when_the_checkout_was_moved(self):
        folder = self.cache(home=("CMAKE_HOME_DIRECTORY:INTERNAL=", self.root / "elsewhere"))
        self.assertIn("starting it anew", self.sh("dropStaleBuild").stdout)
        self.assertFalse(folder.exists())

    def test_is_configured_anew_when_physx_is_gone(self):
        folder = self.cache(home=("CMAKE_HOME_DIRECTORY:INTERNAL=", self.root),
                            physx=("PhysX_LIBRARY:FILEPATH=", self.root / "gone/libphysx.a"))
        self.assertIn("configuring anew", self.sh("dropStaleBuild").stdout)
        self.assertTrue(folder.exists())
        self.assertFalse((folder / "build.ninja").exists())


class Physx(Setup):
    def build(self):
        environment = dict(os.environ, PATH=f"{self.bin}:{os.environ['PATH']}",
                           XDG_CACHE_HOME=str(self.root / "cache"))
        return subprocess.run([ROOT / "third_party/physx/build"], env=environment,
                              capture_output=True, text=True, check=False)

    def test_is_left_alone_when_it_is_there(self):
        headers = self.root / "cache/rollix/physx-5.1.3/include"
        headers.mkdir()
        (headers / "PxPhysicsAPI.h").touch()
        self.program("cargo", "exit 1")
        done = self.build()
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))

    def test_refuses_a_cargo_that_is_too_old_before_any_work(self):
        self.program("cargo", "echo cargo 1.65.0")
        done = self.build()
        self.assertEqual(done.returncode, 1)
        self.assertIn("cargo 1.65.0 is too old, 1.70 is needed", done.stderr)

    def test_a_failed_fetch_shows_cargos_words_and_leaves_nothing_half_done(self):
        self.program("cargo", "[[ $1 == --version ]] && echo cargo 1.96.0 && exit\n"
                              "echo 'error: no such host'; exit 101")
        done = self.build()
        self.assertEqual(done.returncode, 1)
        self.assertIn("    error: no such host\n", done.stderr)
        self.assertIn("PhysX: check the network connection and start again\n", done.stderr)
        self.assertEqual(sorted(p.name for p in (self.root / "cache/rollix").iterdir()),
                         ["physx-5.1.3.lock", "physx-5.1.3.log"])


if __name__ == "__main__":
    unittest.main()
