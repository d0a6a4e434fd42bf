"""A test of a controller in the loop, on the demo's target: python3 -m unittest test_demo

Start the simulated target first (vireo2-target --link port; export VIREO2_COM1=$PWD/port) or
plug in a real one; VIREO2_FOLDER is the folder with settings and map, VIREO2_CONSOLE the program.
"""
import itertools
import os
import unittest

from vireo2 import Vireo2, Vireo2Error

FOLDER = os.environ.get("VIREO2_FOLDER", os.path.join(os.path.dirname(__file__), ".."))
PROGRAM = os.environ.get("VIREO2_CONSOLE", "vireo2-console")


class DemoTarget(unittest.TestCase):
    def setUp(self):
        self.target = Vireo2(FOLDER, "--full", program=PROGRAM)
        self.addCleanup(self.target.__exit__)

    def test_the_gain_takes_what_is_written(self):
        self.target.write("wGain", 120)
        self.assertEqual(self.target.read("wGain"), 120)
        self.assertIn("120", self.target.run("dump wGain, u2, 1"))

    def test_a_value_that_does_not_fit_is_refused_and_changes_nothing(self):
        before = self.target.read("wGain")
        with self.assertRaises(Vireo2Error) as refused:
            self.target.write("wGain", 70000)
        self.assertEqual(refused.exception.code, "out-of-range")
        self.assertEqual(self.target.read("wGain"), before)

    def test_the_sine_moves_and_stays_within_its_amplitude(self):
        readings = [row["nSine"] for row in itertools.islice(self.target.watch(["nSine"], 20), 20)]
        self.assertGreater(len(set(readings)), 1)
        self.assertLessEqual(max(map(abs, readings)), 1000)


if __name__ == "__main__":
    unittest.main()
