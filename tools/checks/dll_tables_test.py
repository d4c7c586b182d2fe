#!/usr/bin/env python3
"""Proves that the check of the DLL's tables can fail: each test puts one fault into a table and expects it to be named."""
import tempfile
import unittest
import unittest.mock
from pathlib import Path

import dll_tables

ROOT = Path(__file__).resolve().parents[2]
ORDINALS = {
    "QCMOpenComm": 1, "QCMCloseComm": 2, "QCMSuspendComm": 3, "QCMResumeComm": 4, "QCMRegisterNotifyWindow": 5,
    "QCMUnregisterNotifyWindow": 6, "QCMGetPortName": 7, "QCMSetAngleRoundParams": 20, "QCMGetLastMsrParams": 40,
    "QCMGetLastExecutedProcessInfo": 41, "QCMGetLastTurnParams": 42, "QCMGetLastTargetSearchParams": 43,
    "QCMGetLastSavedImageParams": 44, "QCMGetLastTargetSearchResult": 45, "QCMT_UpgradeToolsMode": 80}
IMPORTS = {"COREDLL.dll": ["ReadFile", "GetCurrentThreadId"], "QxSystem.dll": [5, 46], "BTHUTIL.dll": [1, 2],
           "ParamBlk.dll": ["GetParameterItem"], "OPVLIB.dll": ["GetProductOSRevision"],
           "KERNEL32.dll": ["TlsGetValue"], "msvcrt.dll": ["memcpy"]}
OWN_CALLS = {"__imp_ReadFile", "memcpy", "GetFileVersionInfoW"}


def objdump_text(exports, imports):
    """What objdump -p prints of a DLL with these tables."""
    lines = ["The Import Tables (interpreted .idata section contents)"]
    for library, members in imports.items():
        lines += [" 0005c000\t0005c0a0 00000000 00000000 0005d7c4 0005c6d0", "", f"\tDLL Name: {library}",
                  "\tvma:  Hint/Ord Member-Name Bound-To"]
        lines += [f"\t{0x8000000000000000 + member:x}\t    {member:09x}  <none>" if isinstance(member, int) else
                  f"\t5cd00\t  123  {member}" for member in members] + [""]
    lines += ["The Export Tables (interpreted .edata section contents)", "", "Ordinal Base \t\t\t1", "",
              "Export Address Table -- Ordinal Base 1"]
    lines += [f"\t[{ordinal - 1:4d}] +base[{ordinal:4d}] 17240 Export RVA" for ordinal in exports.values()]
    lines += ["", "[Ordinal/Name Pointer] Table"]
    return "\n".join(lines + [f"\t[{ordinal - 1:4d}] {name}" for name, ordinal in exports.items()] + [""])


class DllTablesTest(unittest.TestCase):
    def setUp(self):
        self.exports = dict(ORDINALS)
        self.imports = {library: list(members) for library, members in IMPORTS.items()}

    def problems(self, root=ROOT, text=None):
        tables = dll_tables.Tables(text or objdump_text(self.exports, self.imports))
        return dll_tables.export_problems(root, tables) + dll_tables.import_problems(ROOT, tables, OWN_CALLS)

    def expect_problem(self, *parts, **changed):
        problems = self.problems(**changed)
        self.assertEqual(len(problems), 1, problems)
        for part in parts:
            self.assertIn(part, problems[0])

    def test_accepts_the_tables_as_they_shall_be(self):
        self.assertEqual(self.problems(), [])

    def test_the_ordinals_are_those_that_applications_are_linked_with(self):
        self.assertEqual(dll_tables.definition_rows(ROOT), ORDINALS)
        self.assertEqual(dll_tables.header_names(ROOT), set(ORDINALS))

    def test_names_a_wrong_ordinal(self):
        self.exports["QCMGetPortName"] = 8
        self.expect_problem("QCMGetPortName", "ordinal 8 instead of 7")

    def test_names_a_missing_export(self):
        del self.exports["QCMT_UpgradeToolsMode"]
        self.expect_problem("QCMT_UpgradeToolsMode", "not exported")

    def test_names_an_export_too_many(self):
        self.exports["DllRegisterServer"] = 81
        self.expect_problem("DllRegisterServer", "not defined")

    def test_names_an_export_without_a_name(self):
        text = objdump_text(self.exports, self.imports)
        row = "\t[  79] +base[  80] 17240 Export RVA"
        self.expect_problem("@90 has no name", text=text.replace(row, row + "\n\t[  89] +base[  90] 17240 Export RVA"))

    def test_names_an_export_that_is_passed_on(self):
        text = objdump_text(self.exports, self.imports)
        self.expect_problem("@80 is passed on", text=text.replace("+base[  80] 17240 Export RVA",
                                                                  "+base[  80] 17240 Forwarder RVA -- OTHER.Call"))

    def test_names_a_call_that_header_and_definition_do_not_share(self):
        for file, cut, expected in ((dll_tables.HEADER, "QCM_INT32 QCMResumeComm(QCM_HANDLE handle);", "not in include"),
                                    (dll_tables.DEFINITION, "  QCMResumeComm                  @4\n", "not in src")):
            with self.subTest(file), tempfile.TemporaryDirectory() as folder:
                for name in (dll_tables.HEADER, dll_tables.DEFINITION):
                    copy = Path(folder) / name
                    copy.parent.mkdir(parents=True)
                    copy.write_text((ROOT / name).read_text().replace(cut if name == file else "\0", ""))
                self.assertTrue(any(expected in problem for problem in self.problems(root=Path(folder))))

    def test_names_each_import_that_is_not_allowed(self):
        for library, member, expected in (
                ("COREDLL.dll", "SwitchToThread", "SwitchToThread"), ("COREDLL.dll", 496, "ordinal 496"),
                ("QxSystem.dll", 200, "ordinal 200"), ("QxSystem.dll", "StartDistance", "StartDistance"),
                ("BTHUTIL.dll", 3, "ordinal 3"), ("BTHUTIL.dll", "BthUtilGetRadioMode", "BthUtilGetRadioMode"),
                ("ParamBlk.dll", "DeleteParameterItem", "DeleteParameterItem"), ("ParamBlk.dll", 1, "ordinal 1"),
                ("OPVLIB.dll", "GetParameterItem", "GetParameterItem"), ("KERNEL32.dll", "CreateFileA", "CreateFileA"),
                ("msvcrt.dll", "fopen", "fopen"), ("USER32.dll", "MessageBoxW", "MessageBoxW"),
                ("kernel32.dll", "TlsGetValue", "TlsGetValue"), ("libstdc++-6.dll", "_ZSt9terminatev", "terminate")):
            with self.subTest(f"{library} {member}"):
                self.setUp()
                self.imports.setdefault(library, []).append(member)
                self.expect_problem(library, expected, "not allowed")

    def test_names_a_call_of_the_librarys_own_that_the_desktop_would_serve(self):
        for call in ("__imp_TlsGetValue", "TlsGetValue"):
            with self.subTest(call):
                tables = dll_tables.Tables(objdump_text(self.exports, self.imports))
                problems = dll_tables.import_problems(ROOT, tables, OWN_CALLS | {call})
                self.assertEqual(len(problems), 1, problems)
                self.assertIn("called by the library itself", problems[0])

    def test_names_each_library_of_the_platform_that_nothing_is_imported_from(self):
        for library in ("COREDLL.dll", "QxSystem.dll", "BTHUTIL.dll", "ParamBlk.dll", "OPVLIB.dll"):
            with self.subTest(library):
                self.setUp()
                del self.imports[library]
                self.expect_problem(library, "nothing is imported")

    def test_names_everything_where_there_is_nothing_to_read(self):
        self.assertGreater(len(self.problems(text="objdump: file format not recognized")), len(ORDINALS))

    def test_names_a_size_beyond_the_limit(self):
        self.assertEqual(dll_tables.LARGEST, 300_000)
        self.assertEqual(dll_tables.size_problems(300_000), [])
        self.assertEqual(dll_tables.size_problems(300_001), ["300001 bytes are 1 too many"])

    def test_counts_the_bytes_of_the_file(self):
        with tempfile.TemporaryDirectory() as folder:
            objdump = Path(folder) / "objdump"
            objdump.write_text("#!/bin/sh\necho no tables\n")
            objdump.chmod(0o755)
            dll = Path(folder) / "QXCommMgr.dll"
            for size, too_large in ((300_000, False), (300_512, True)):
                dll.write_bytes(bytes(size))
                with unittest.mock.patch("ce_names.undefined_symbols", return_value=OWN_CALLS):
                    problems, last_line = dll_tables.check(ROOT, dll, [], prefix=folder + "/")
                self.assertEqual("300512 bytes are 512 too many" in problems, too_large)
                self.assertIn(f"{size} bytes; 0 exports", last_line)

    def test_the_runtimes_list_is_whole(self):
        rows = [row for row in dll_tables.RUNTIME.read_text().splitlines() if row and not row.startswith("#")]
        self.assertEqual(len(rows), len(set(rows)))
        self.assertEqual({row.split()[0] for row in rows}, {"KERNEL32.dll", "msvcrt.dll"})


if __name__ == "__main__":
    unittest.main()
