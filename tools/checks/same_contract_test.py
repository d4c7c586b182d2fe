"""The comparison of both hosts' tests finds what is missing on one side without a reason."""
import contextlib
import io
import tempfile
import unittest
from pathlib import Path

import same_contract


class SameContract(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        (self.folder / "event_test.cpp").write_text("// Events.\nTEST(Event, IsSet) {\nTEST_P(Event, IsNamed) {\n")
        (self.folder / "host_port_test.cpp").write_text("// Ports of this host.\nTEST_F(HostPort, IsAPty) {\n")

    def compare(self, linux, windows):
        for name, tests in (("linux", linux), ("windows", windows)):
            (self.folder / name).write_text("".join(f"passed\tstage.platform.{test}\t\n" for test in tests))
        output = io.StringIO()
        with contextlib.redirect_stdout(output):
            status = same_contract.main(self.folder, self.folder / "linux", self.folder / "windows")
        return status, output.getvalue()

    def test_tests_of_one_host_alone_are_named_with_their_reason(self):
        status, output = self.compare(["Event.IsSet", "All/Event.IsNamed/0", "HostPort.IsAPty"],
                                      ["Event.IsSet", "Event.IsNamed/1"])
        self.assertEqual(status, 0)
        self.assertIn("2 tests on both hosts, 1 on Linux alone, 0 on Windows alone", output)
        self.assertIn("host_port_test.cpp: Ports of this host.", output)

    def test_a_common_test_that_ran_on_one_side_is_a_problem(self):
        status, output = self.compare(["Event.IsSet", "Event.IsNamed/0"], ["Event.IsSet"])
        self.assertEqual(status, 1)
        self.assertIn("Event.IsNamed ran on Linux alone", output)

    def test_a_test_of_the_other_host_is_a_problem(self):
        status, _ = self.compare(["Event.IsSet"], ["Event.IsSet", "HostPort.IsAPty"])
        self.assertEqual(status, 1)

    def test_nothing_in_common_is_a_problem(self):
        self.assertEqual(self.compare(["HostPort.IsAPty"], [])[0], 1)


if __name__ == "__main__":
    unittest.main()
