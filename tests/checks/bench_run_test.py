"""bench/run on small reports: what its table says, and when it complains."""

import importlib.machinery
import importlib.util
import pathlib
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]


def load_script(path):
    loader = importlib.machinery.SourceFileLoader("bench_run", str(path))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("bench_run", loader))
    loader.exec_module(module)
    return module


bench = load_script(ROOT / "bench/run")


def ticks(game, bare):
    return {"tick/game/0:median_ms": game, "tick/bare/0:median_ms": bare}


def line_of(lines, title):
    return next(line for line in lines if line.startswith(title))


class Figures(unittest.TestCase):
    def test_go_by_the_name_that_the_benchmark_was_given(self):
        report = {"benchmarks": [
            {"name": "tick/game/0/process_time/real_time", "real_time": 250.0, "time_unit": "us"},
            {"name": "tick/drawn/0/iterations:400/process_time/real_time", "real_time": 12.0,
             "time_unit": "ms", "p99_ms": 15.5},
            {"name": "effects/with/process_time/real_time", "real_time": 0.5, "time_unit": "s"}]}
        self.assertEqual(bench.figures_of(report),
                         {"tick/game/0": 0.25, "tick/drawn/0": 12.0, "tick/drawn/0:p99_ms": 15.5,
                          "effects/with": 500.0})

    def test_end_with_the_words_of_a_benchmark_that_failed(self):
        report = {"benchmarks": [{"name": "start/game/0", "error_occurred": True,
                                  "error_message": "the program has failed"}]}
        with self.assertRaisesRegex(SystemExit, "start/game/0: the program has failed"):
            bench.figures_of(report)

    def test_exist_as_benchmarks_for_every_row(self):
        sources = "".join(path.read_text(encoding="utf-8")
                          for path in (ROOT / "bench").glob("*.cpp"))
        for row in bench.ROWS:
            for figure in filter(None, (row.game, row.bare)):
                name, _, counter = figure.partition(":")
                self.assertIn(f'"{name.rstrip("-0123456789").rstrip("/")}"', sources)
                self.assertIn(f'"{counter}"' if counter else "", sources)


class Table(unittest.TestCase):
    def test_takes_the_median_of_the_ratios_of_the_rounds(self):
        rounds = [ticks(0.2, 0.1), ticks(0.9, 0.3), ticks(2.0, 0.2)]
        lines, ratios, short = bench.table(rounds, {})
        self.assertEqual(ratios, {"tick, level 0, not drawn": 3.0})
        self.assertRegex(line_of(lines, "tick, level 0"), r"0\.90 ms +0\.20 ms +3\.00")
        self.assertEqual(short, ["tick, level 0, not drawn"])

    def test_leaves_out_what_was_not_measured(self):
        lines, ratios, short = bench.table([ticks(0.1, 0.1)], {})
        self.assertEqual(len(lines), 2)

    def test_holds_the_tick_to_a_tenth_and_a_fifth_of_a_millisecond_above_the_bare_step(self):
        for game, verdict in ((1.29, "kept"), (1.31, "MISSED")):
            lines, _, short = bench.table([ticks(game, 1.0)], {})
            self.assertTrue(lines[1].endswith(verdict), lines[1])
            self.assertEqual(bool(short), verdict == "MISSED")

    def test_tells_a_ratio_that_has_risen_by_more_than_a_third(self):
        before = {"tick, level 0, not drawn": 1.0}
        for game, slower in ((0.133, False), (0.134, True)):
            lines, _, short = bench.table([ticks(game, 0.1)], before)
            self.assertEqual("SLOWER" in lines[1], slower, lines[1])
            self.assertEqual(bool(short), slower)


if __name__ == "__main__":
    unittest.main()
