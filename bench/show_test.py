"""The table and the picture that scripts/bench-show.py makes of results."""
import importlib.util
import pathlib
import tempfile
import unittest
import xml.etree.ElementTree

SCRIPT = pathlib.Path(__file__).parent.parent / "scripts" / "bench-show.py"
DESCRIPTION = importlib.util.spec_from_file_location("bench_show", SCRIPT)
bench_show = importlib.util.module_from_spec(DESCRIPTION)
DESCRIPTION.loader.exec_module(bench_show)

RESULTS = """# a machine
row\tpeer\tslow\t4000
row\tproduct\tenqueue16\t110
row\tfloor\tfloorRow\t100
row\tproduct\tenqueue16\t130
row\tproduct\tenqueue16\t120
row\tfloor\tfloorRow\t500
row\tfloor\tfloorRow\t90
"""


class Show(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def load(self, results=RESULTS):
        path = self.folder / "results.tsv"
        path.write_text(results, encoding="utf-8")
        return bench_show.load(path)

    def test_shows_medians_extremes_ratios_and_goals(self):
        self.assertEqual(list(bench_show.table(*self.load()))[4:], [
            "| row | by hand | 100.0 ns | 90.0 ns to 500.0 ns | 1 |  |",
            "|  | **enqueue16** | 120.0 ns | 110.0 ns to 130.0 ns | 1.20 | 1.1 |",
            "|  | slow | 4000.0 ns | 4000.0 ns to 4000.0 ns | 40 |  |"])

    def test_refuses_a_row_without_a_floor_and_results_without_rows(self):
        for results in (RESULTS.replace("floor\t", "peer\t"), "# a machine\n"):
            with self.subTest(results):
                self.assertRaises(SystemExit, self.load, results)

    def test_replaces_the_section_of_the_document_and_draws_every_ratio(self):
        document = self.folder / "performance.md"
        document.write_text("before\n\n## One run\n\nold\n\n## Next\nafter\n", encoding="utf-8")
        bench_show.update(*self.load(), self.folder)
        content = document.read_text(encoding="utf-8")
        self.assertTrue(content.startswith("before\n\n## One run\n\na machine\n"), content)
        self.assertTrue(content.endswith("| 40 |  |\n\n## Next\nafter\n"), content)
        picture = xml.etree.ElementTree.parse(self.folder / "performance.svg")
        texts = [element.text for element in picture.iter("{http://www.w3.org/2000/svg}text")]
        for expected in ("row, by hand 100.0 ns", "enqueue16", "1.20", "slow", "40", "a machine"):
            self.assertIn(expected, texts)

    def test_leaves_a_document_without_a_place_for_the_table_alone(self):
        document = self.folder / "performance.md"
        document.write_text("nothing\n", encoding="utf-8")
        self.assertRaises(SystemExit, bench_show.update, *self.load(), self.folder)
        self.assertEqual(document.read_text(encoding="utf-8"), "nothing\n")


if __name__ == "__main__":
    unittest.main()
