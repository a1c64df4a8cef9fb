"""What becomes of the benchmark programs' reports: medians, ratios, refusals, table and picture."""
import copy
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

SCRIPTS = pathlib.Path(__file__).parent.parent / "scripts"
sys.path.insert(0, str(SCRIPTS))
import bench_results  # noqa: E402  (the folder must be known first)


def run(name, real_time, family_index, batch=10):
    return {"name": name, "run_name": name + "/manual_time", "run_type": "iteration", "family_index": family_index,
            "iterations": 4, "delivered": 4.0 * batch, "batch": float(batch), "real_time": real_time, "time_unit": "ns"}


REPORT = {
    "context": {"date": "2026-11-21T10:00:00+00:00", "host_name": "secret", "num_cpus": 2, "load_avg": [0.25, 0, 0],
                "compiler": "g++ 12", "boost": "1_74", "spdlog": "1.10"},
    "benchmarks": [
        run("row/peer/slow", 40000, 2), run("row/product/ours", 1300, 1), run("row/floor//bin/true", 1000, 0),
        run("row/floor//bin/true", 900, 0), run("row/floor//bin/true", 5000, 0), run("row/product/ours", 1200, 1),
        run("row/product/ours", 1100, 1),
        {"name": "row/product/ours_mean", "run_name": "row/product/ours", "run_type": "aggregate", "family_index": 1},
    ],
}


class Results(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.report = copy.deepcopy(REPORT)

    def path(self, name):
        return str(pathlib.Path(self.folder.name) / name)

    def merged(self):
        with open(self.path("report.json"), "w", encoding="utf-8") as file:
            json.dump(self.report, file)
        return bench_results.merged([self.path("report.json")])

    def script(self, name, *arguments):
        return subprocess.run([sys.executable, SCRIPTS / name, *arguments], capture_output=True, text=True, check=False)

    def test_takes_the_median_of_one_operation(self):
        self.assertEqual([m["nanoseconds"] for m in self.merged()["rows"][0]["measurements"]], [100, 120, 4000])

    def test_puts_the_floor_first_whatever_the_order_of_the_runs(self):
        self.assertEqual([(m["role"], m["what"]) for m in self.merged()["rows"][0]["measurements"]],
                         [("floor", "/bin/true"), ("product", "ours"), ("peer", "slow")])

    def test_divides_by_the_floor(self):
        self.assertEqual([ratio for _, ratio in bench_results.with_ratios(self.merged()["rows"][0])], [1, 1.2, 40])

    def test_keeps_the_extremes(self):
        floor = self.merged()["rows"][0]["measurements"][0]
        self.assertEqual((floor["lowest"], floor["highest"], floor["runs"]), (90, 500, 3))

    def test_understands_other_units_of_time(self):
        self.report["benchmarks"][0].update(real_time=40, time_unit="us")
        self.assertEqual(self.merged()["rows"][0]["measurements"][2]["nanoseconds"], 4000)

    def test_refuses_a_run_that_lost_an_operation(self):
        self.report["benchmarks"][1]["delivered"] -= 1
        self.assertRaises(bench_results.InvalidResults, self.merged)

    def test_refuses_a_run_with_an_error(self):
        self.report["benchmarks"][1]["error_occurred"] = True
        self.assertRaises(bench_results.InvalidResults, self.merged)

    def test_refuses_a_row_without_a_floor(self):
        self.report["benchmarks"] = self.report["benchmarks"][:2]
        self.assertRaises(bench_results.InvalidResults, self.merged)

    def test_refuses_an_unknown_role(self):
        self.report["benchmarks"].append(run("row/pear/typo", 1, 3))
        self.assertRaises(bench_results.InvalidResults, self.merged)

    def test_refuses_a_report_without_runs(self):
        self.report["benchmarks"] = []
        self.assertRaises(bench_results.InvalidResults, self.merged)

    def test_keeps_the_name_of_the_machine_to_itself(self):
        self.assertNotIn("secret", json.dumps(self.merged()))

    def test_calls_figures_of_a_busy_machine_provisional(self):
        self.assertNotIn("provisional", " ".join(bench_results.machine_sentence(self.merged()["machine"])))
        self.report["context"]["load_avg"] = [3.0, 0, 0]
        self.assertIn("provisional", " ".join(bench_results.machine_sentence(self.merged()["machine"])))

    def test_merging_fails_with_one_sentence(self):
        self.report["benchmarks"] = []
        with open(self.path("report.json"), "w", encoding="utf-8") as file:
            json.dump(self.report, file)
        result = self.script("bench-merge.py", self.path("results.json"), self.path("report.json"))
        self.assertEqual((result.returncode, result.stderr.count("\n")), (1, 1))

    def test_replaces_the_table_of_a_document_and_nothing_else(self):
        bench_results.save(self.merged(), self.path("results.json"))
        document = pathlib.Path(self.path("document.md"))
        document.write_text("before\n\n## One run\n\nold\n\n## Next\nafter\n", encoding="utf-8")
        result = self.script("bench-table.py", self.path("results.json"), "--write", str(document))
        text = document.read_text(encoding="utf-8")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertTrue(text.startswith("before\n\n## One run\n\n") and text.endswith("\n\n## Next\nafter\n"))
        self.assertIn("|  | **ours** | 120.0 ns | 110.0 ns to 130.0 ns | 1.20 |  |", text)
        self.assertNotIn("old", text)

    def test_leaves_a_document_without_a_place_for_the_table_alone(self):
        bench_results.save(self.merged(), self.path("results.json"))
        document = pathlib.Path(self.path("document.md"))
        document.write_text("nothing\n", encoding="utf-8")
        self.assertEqual(self.script("bench-table.py", self.path("results.json"), "--write", str(document)).returncode, 1)
        self.assertEqual(document.read_text(encoding="utf-8"), "nothing\n")

    def test_draws_every_measurement_with_its_ratio(self):
        bench_results.save(self.merged(), self.path("results.json"))
        result = self.script("bench-picture.py", self.path("results.json"))
        picture = xml.etree.ElementTree.fromstring(result.stdout)
        texts = [element.text for element in picture.iter("{http://www.w3.org/2000/svg}text")]
        for expected in ("row", "floor: 100 ns", "ours", "1.20", "slow", "40"):
            self.assertIn(expected, texts)


if __name__ == "__main__":
    unittest.main()
