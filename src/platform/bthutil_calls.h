// The calls of the platform's Bluetooth library (BTHUTIL.dll), which is imported by ordinal only: one row a call.
//
// BTH_UTIL_CALL(ordinal, role, parameters) is defined by whoever includes this file, once for each use of the table:
// the declarations in instrument_libraries.h, the rows of the import library's .def. Every call returns 0 for success.

#ifndef BTH_UTIL_CALL
#error "define BTH_UTIL_CALL(ordinal, role, parameters) first"
#endif

// The radio's mode; 2 = on and discoverable.
BTH_UTIL_CALL(1, SetRadioMode, (DWORD mode))
BTH_UTIL_CALL(2, GetRadioMode, (DWORD * mode))
