"""scripts/bench: medians and verdicts are right, and every goal names benchmarks that exist."""
import importlib.machinery
import importlib.util
import pathlib
import sys
import unittest

sys.dont_write_bytecode = True
ROOT = pathlib.Path(__file__).resolve().parents[2]
LOADER = importlib.machinery.SourceFileLoader("bench", str(ROOT / "scripts/bench"))
bench = importlib.util.module_from_spec(importlib.util.spec_from_loader("bench", LOADER))
LOADER.exec_module(bench)

# Ratios 0.5, 2 and 4 in some order: an outlier on either side does not move the median.
PAIRS = [(400, 100), (100, 200), (200, 100)]


class Verdict(unittest.TestCase):
    def test_each_direction_at_and_beyond_its_limit(self):
        for direction, limit, value, reached in [
                ("at most", 2, "2.00", "yes"), ("at most", 1.99, "2.00", "no"),
                ("times faster", 0.5, "0.50", "yes"), ("times faster", 0.51, "0.50", "no"),
                ("extra ns", 100, "100", "yes"), ("extra ns", 99, "100", "no")]:
            with self.subTest(direction, limit=limit):
                row = {"direction": direction, "limit": limit}
                self.assertEqual(bench.verdict(row, PAIRS)[1:], (value, reached))

    def test_a_row_without_a_limit_is_only_shown(self):
        self.assertEqual(bench.verdict({"direction": "at most"}, PAIRS), ("-", "2.00", "-"))


class Goals(unittest.TestCase):
    def test_every_row_names_benchmarks_of_its_subsystem(self):
        rows = bench.read_goals()
        self.assertTrue(rows)
        for row in rows:
            source = (ROOT / f'benchmarks/{row["subsystem"]}_bench.cpp').read_text()
            for name in (row["numerator"], row["denominator"]):
                with self.subTest(bench.label(row), benchmark=name):
                    self.assertIn(name.split("/")[0], source)
            self.assertIn(row["direction"], bench.DIRECTIONS)


if __name__ == "__main__":
    unittest.main()
