#!/usr/bin/env python3
"""Proves that the check of the forwarders can fail: each test puts one fault into a small tree."""
import tempfile
import unittest
from pathlib import Path

import forwarders


class ForwardersTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        self.write("host/include/windows.h", "BOOL WINAPI CloseHandle(HANDLE);\nDWORD WINAPI GetLastError(void);\n")
        self.write("host/common/coredll/sync.cpp", "BOOL COREDLL(CloseHandle)(HANDLE object) { return TRUE; }\n")
        self.write("src/platform/windows_api.h", "#include <windows.h>\n")
        self.write("src/platform/handle.h", "void Close() { CloseHandle(handle_); GetLastError(); }\n")
        self.write("src/platform/instrument_libraries.h",
                   "DECLSPEC_IMPORT BOOL WINAPI GetParameterItem(void);\nDECLSPEC_IMPORT DWORD WINAPI GetProductOSRevision(void);\n")
        self.define("COREDLL", CloseHandle="QXHost.CoreDllCloseHandle", GetLastError="KERNEL32.GetLastError")
        self.define("ParamBlk", GetParameterItem="QXHost.GetParameterItem")
        self.define("OPVLIB", GetProductOSRevision="QXHost.GetProductOSRevision")

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)

    def define(self, library, **exports):
        rows = "".join(f"  {name} = {target}\n" for name, target in exports.items())
        self.write(f"{forwarders.FOLDER}/{library}.def", f"; a comment\nLIBRARY {library}.dll\nEXPORTS\n{rows}")

    def expect_problem(self, *parts):
        problems, _ = forwarders.check(self.root)
        self.assertEqual(len(problems), 1, problems)
        for part in parts:
            self.assertIn(part, problems[0])

    def test_accepts_what_is_whole(self):
        self.assertEqual(forwarders.check(self.root), ([], "forwarders: 2 exports of COREDLL, 0 problems"))

    def test_names_an_export_that_windows_ce_does_not_offer(self):
        self.write("host/common/coredll/beep.cpp", "BOOL COREDLL(BeepTwice)(DWORD) { return TRUE; }\n")
        self.define("COREDLL", CloseHandle="QXHost.CoreDllCloseHandle", GetLastError="KERNEL32.GetLastError",
                    BeepTwice="QXHost.CoreDllBeepTwice")
        self.expect_problem("BeepTwice", "not on offer")

    def test_names_a_row_without_an_export(self):
        self.write("host/common/coredll/more.cpp", "void COREDLL(Sleep)(DWORD) {}\n")
        self.expect_problem("Sleep is missing", "host/common/coredll")

    def test_names_an_export_without_a_row(self):
        self.write("host/common/coredll/sync.cpp", "\n")
        self.expect_problem("CloseHandle has no row")

    def test_names_a_call_of_the_library_that_would_come_from_the_desktop(self):
        self.write("host/include/windows_files.h", "BOOL WINAPI DeleteFileW(LPCWSTR path);\n")
        self.write("src/link/link.cpp", "bool Remove() { return DeleteFileW(path_); }\n")
        self.expect_problem("DeleteFileW is missing", "src/ calls")

    def test_names_a_call_that_is_handed_on_to_another(self):
        self.define("COREDLL", CloseHandle="KERNEL32.CloseHandle", GetLastError="KERNEL32.GetLastError")
        self.expect_problem("CloseHandle is handed on to KERNEL32.CloseHandle")

    def test_names_a_call_of_the_instruments_libraries_that_is_not_exported(self):
        self.define("OPVLIB")
        self.expect_problem("GetProductOSRevision is not exported")


if __name__ == "__main__":
    unittest.main()
