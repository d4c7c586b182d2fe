#!/usr/bin/env python3
"""Proves that every check can fail: each test plants one fault in a small tree and expects it to be named."""
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

import ce_names
import layers
import test_report
import tree
import words


class CheckTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        self.write("src/platform/windows_api.h", "#include <windows.h>\nBOOL WINAPI EventModify(HANDLE, DWORD);\n")
        self.write("src/platform/lock.h", "#include <atomic>\n")
        self.write("src/link/link.h", '#include "platform/lock.h"\n')
        self.write("host/include/windows.h", "BOOL WINAPI CloseHandle(HANDLE);\nBOOL WINAPI BeepTwice(DWORD);\n")

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)

    def expect_clean(self, check):
        self.assertEqual(check(self.root)[0], [])

    def expect_problem(self, check, *parts):
        problems = check(self.root)[0]
        self.assertEqual(len(problems), 1, problems)
        for part in parts:
            self.assertIn(part, problems[0])


class LayersTest(CheckTest):
    def test_accepts_includes_that_point_down(self):
        self.write("src/api/x.cpp", '#include "link/link.h"\n#include "QXCommMgr.h"\n#include <string>\n')
        self.expect_clean(layers.check)

    def test_names_an_include_that_points_up(self):
        self.write("src/platform/x.cpp", '\n#include "link/link.h"\n')
        self.expect_problem(layers.check, "src/platform/x.cpp:2", "platform is below link")

    def test_names_an_include_beside_the_file_that_leaves_the_source_folder(self):
        self.write("host/common/calls/calls.h", "")
        self.write("src/link/x.cpp", '#include "common/calls/calls.h"\n')
        self.expect_problem(layers.check, "nothing outside src/")

    def test_names_a_missing_file(self):
        self.write("src/link/x.cpp", '#include "link/gone.h"\n')
        self.expect_problem(layers.check, "no such file")

    def test_names_a_second_windows_include(self):
        self.write("src/link/x.cpp", "#include <windows.h>\n")
        self.expect_problem(layers.check, "only platform/windows_api.h")

    def test_names_a_header_that_is_not_of_the_standard_library(self):
        self.write("src/link/x.cpp", "#include <unistd.h>\n")
        self.expect_problem(layers.check, "standard library")

    def test_names_a_folder_outside_the_layers(self):
        self.write("src/extra/x.cpp", '#include "platform/lock.h"\n')
        self.expect_problem(layers.check, "not in one of the folders")

    def test_names_a_helper_that_knows_a_command_family(self):
        self.write("src/commands/measure/switches.h", "")
        self.write("src/commands/measure/valuetext/x.cpp", '#include "commands/measure/switches.h"\n')
        self.expect_problem(layers.check, "know no family")

    def test_names_a_host_conditional_and_ignores_one_in_a_comment(self):
        self.write("src/link/x.cpp", "// #ifdef _WIN32\n/*\n#ifdef _WIN32\n*/\n#if defined(__linux__)\n#endif\n")
        self.expect_problem(layers.check, "src/link/x.cpp:5", "conditional for a host")

    def test_allows_host_conditionals_in_the_platform_header_and_counts_them(self):
        self.write("src/platform/windows_api.h", "#include <windows.h>\n#ifdef UNDER_CE\n#endif\n")
        problems, summary = layers.check(self.root)
        self.assertEqual(problems, [])
        self.assertIn("1 conditionals for a host", summary)

    def test_names_a_host_file_that_includes_the_library(self):
        self.write("host/posix/x.cpp", '#include "platform/lock.h"\n')
        self.expect_problem(layers.check, "host/posix includes nothing of src/")

    def test_names_a_controller_file_that_includes_the_host(self):
        self.write("tools/qxctl/x.cpp", '#include "../../host/include/windows.h"\n')
        self.expect_problem(layers.check, "tools/qxctl includes nothing of host/")

    def test_names_a_controller_that_links_the_library(self):
        self.write("tools/qxctl/CMakeLists.txt", "target_link_libraries(qxctl PRIVATE qxcommmgr)\n")
        self.expect_problem(layers.check, "links qxcommmgr")

    def test_names_an_empty_tree(self):
        empty = self.root / "empty"
        empty.mkdir()
        self.assertEqual(layers.check(empty)[0], ["src/ holds no source"])


class CeNamesTest(CheckTest):
    def test_accepts_calls_on_offer(self):
        self.write("src/link/x.cpp", "void F() { CloseHandle(h); EventModify(e, 3); }\n")
        self.expect_clean(ce_names.check)

    def test_names_a_call_that_is_not_on_offer(self):
        self.write("src/link/x.cpp", "// BeepTwice(1)\nvoid F() { BeepTwice(2); }\n")
        self.expect_problem(ce_names.check, "src/link/x.cpp:2", "BeepTwice is not on offer")

    def test_names_wide_text_functions_and_ignores_them_in_literals(self):
        self.write("src/link/x.cpp", 'auto a = "wcslen";\nauto b = wcslen(c);\n')
        self.expect_problem(ce_names.check, "src/link/x.cpp:2", "16 bits")

    def test_names_each_of_the_standard_librarys_threads_and_files(self):
        for name in ("thread", "mutex", "condition_variable_any", "filesystem::path", "ofstream", "chrono::seconds"):
            with self.subTest(name):
                self.write("src/link/x.cpp", f"std::{name} x;\n")
                self.expect_problem(ce_names.check, "the platform's own")

    def test_names_a_host_header_without_declarations(self):
        self.write("host/include/windows.h", "")
        self.write("src/platform/windows_api.h", "")
        self.expect_problem(ce_names.check, "no declaration")

    def symbols(self, *names):
        return ce_names.symbol_problems(set(names), {"CloseHandle", "memcpy"})

    def test_accepts_imports_on_offer_and_the_compilers_own(self):
        problems, imports = self.symbols("__imp_CloseHandle", "__imp_QxSystemGetAngles", "__imp_GetCurrentThreadId",
                                         "memcpy", "wcslen", "__cxa_throw", "std::terminate()", "operator new(unsigned)")
        self.assertEqual((problems, imports), ([], 3))

    def test_names_symbols_that_are_not_on_offer(self):
        for name in ("__imp_SwitchToThread", "usleep", "qxcm::Missing()", "pthread_mutex_lock",
                     "std::chrono::_V2::steady_clock::now()", "std::thread::join()"):
            with self.subTest(name):
                self.assertEqual(len(self.symbols(name)[0]), 1)

    def test_the_kept_list_is_whole(self):
        exports = ce_names.EXPORTS.read_text().split()
        self.assertEqual(len(exports), len(set(exports)))
        self.assertTrue({"CreateFileW", "WaitCommEvent", "RegOpenKeyExW"} <= set(exports))


class WordsTest(CheckTest):
    def test_names_each_word_that_is_not_ours_to_write(self):
        for text in ("as the sp" + "ec says", "Part " + "4.4", "spec" + "ification", "hand" + "book", "issue" + " 12",
                     "TO" + "DO", "cd /wo" + "rk/x", "/ho" + "me/me"):
            with self.subTest(text):
                self.write("docs/x.md", "fine\n" + text + "\n")
                self.expect_problem(words.check, "docs/x.md:2")

    def test_lets_ordinary_words_pass(self):
        self.write("docs/x.md", "special inspection; ~/work/x; a network/home; one part 4; https://example.org\n")
        self.expect_clean(words.check)

    def test_names_a_file_name(self):
        self.write("docs/spec" + "ification.md", "")
        self.expect_problem(words.check, "the name")

    def test_names_a_host_in_a_script_but_not_this_machine(self):
        self.write("scripts/x", "curl http://127.0.0.1:80 http://local" + "host\ncurl https://example.org\n")
        self.expect_problem(words.check, "scripts/x:2", "names a host")

    def test_names_tests_that_cannot_fail(self):
        for text in ("GTEST_SKI" + "P();", "TEST(A, DISABLE" + "D_B) {}", "EXPECT_TRUE(tru" + "e);"):
            with self.subTest(text):
                self.write("tests/x_test.cpp", text + "\n")
                self.expect_problem(words.check, "tests/x_test.cpp:1")

    def test_lets_a_skip_with_a_reason_pass(self):
        self.write("tests/x_test.cpp", 'GTEST_SKIP() << "no wine";\n')
        self.expect_clean(words.check)


class TreeTest(unittest.TestCase):
    def test_blanks_comments_and_literals_and_keeps_lines(self):
        text = 'a /* b\n c */ "d // e" \'"\' f // g\n1\'000 h R"(i "j)" k'
        self.assertEqual(tree.code_only(text).split(), ["a", "f", "1'000", "h", "k"])
        self.assertEqual(tree.code_only(text).count("\n"), text.count("\n"))
        self.assertIn('"d // e"', tree.without_comments(text))


class ReportTest(unittest.TestCase):
    def judge(self, xml):
        return test_report.judge(ElementTree.fromstring(xml))

    def skip(self, output, message="SKIP_REGULAR_EXPRESSION_MATCHED"):
        return self.judge(f'<testcase status="notrun"><skipped message="{message}"/>'
                          f"<system-out>{output}</system-out></testcase>")

    def test_tells_passed_failed_and_skipped_apart(self):
        self.assertEqual(self.judge('<testcase status="run"/>'), ("passed", ""))
        self.assertEqual(self.judge('<testcase status="fail"><failure/></testcase>'), ("failed", ""))
        self.assertEqual(self.skip("x.cpp:1: Skipped\nno\nwine\n[  SKIPPED ] A.B"), ("skipped", "no wine"))

    def test_a_program_that_was_not_built_has_failed(self):
        self.assertEqual(self.skip("", "Unable to find executable"), ("failed", ""))

    def test_a_skipped_test_that_leaks_has_failed(self):
        self.assertEqual(self.skip("ERROR: LeakSanitizer: detected memory leaks"), ("failed", ""))

    def collect_suite(self, status, *cases):
        with tempfile.TemporaryDirectory() as folder:
            record = "".join(cases)
            Path(folder, "unit.P_Suite.xml").write_text(
                f"<testsuites><testsuite>{record}</testsuite></testsuites>")
            junit = Path(folder, "junit.xml")
            junit.write_text(f'<testsuite><testcase name="unit.P/Suite" status="{status}"/></testsuite>')
            return test_report.collect("asan", junit, folder)

    PASSED = '<testcase classname="P/Suite" name="A/0" status="run" result="completed"/>'
    FAILED = '<testcase classname="P/Suite" name="B/0" status="run"><failure message="x"/></testcase>'
    SKIPPED = '<testcase classname="P/Suite" name="C/0" status="run"><skipped message="x.cpp:1&#x0A;no wine"/></testcase>'

    def test_a_suite_counts_as_its_tests(self):
        rows = self.collect_suite("fail", self.PASSED, self.FAILED, self.SKIPPED)
        self.assertEqual(rows, [("passed", "asan.unit.P/Suite.A/0", ""), ("failed", "asan.unit.P/Suite.B/0", ""),
                                ("skipped", "asan.unit.P/Suite.C/0", "no wine")])

    def test_a_suite_that_fails_without_a_failed_test_has_failed(self):
        rows = self.collect_suite("fail", self.PASSED)
        self.assertEqual([row[0] for row in rows], ["passed", "failed"])
        self.assertEqual(rows[1][1], "asan.unit.P/Suite")

    def test_a_program_without_a_record_or_without_tests_has_failed(self):
        self.assertEqual(test_report.program("wine", "a_tests", "no/such/file.xml")[0][:2], ("failed", "wine.a_tests"))
        with tempfile.NamedTemporaryFile("w", suffix=".xml") as record:
            record.write("<testsuites/>")
            record.flush()
            self.assertEqual(test_report.program("wine", "a_tests", record.name),
                             [("failed", "wine.a_tests", "no tests")])

    def test_a_run_without_a_record_has_failed(self):
        self.assertEqual(test_report.collect("asan", "no/such/file.xml")[0][:2], ("failed", "asan.ctest"))

    def test_names_each_test_once_and_without_its_parameters(self):
        with tempfile.NamedTemporaryFile("w", suffix=".xml") as junit:
            case = '<testcase name="a.B/c  # GetParam() = 1" status="run"/>'
            junit.write(f"<testsuite>{case}{case}</testsuite>")
            junit.flush()
            self.assertEqual(test_report.collect("asan", junit.name), [("passed", "asan.a.B/c", "")])

    def test_the_last_line_is_the_sum(self):
        rows = [("passed", "a", ""), ("skipped", "b", "no wine"), ("passed", "c", "")]
        lines, good = test_report.summary(rows)
        self.assertEqual(lines, ["skipped: b (no wine)", "failed: none", "2 passed, 0 failed, 1 skipped"])
        self.assertTrue(good)

    def test_nothing_run_or_a_row_not_understood_is_not_good(self):
        self.assertFalse(test_report.summary([])[1])
        self.assertFalse(test_report.summary([("passed", "a", ""), ("odd", "b", "")])[1])


if __name__ == "__main__":
    unittest.main()
