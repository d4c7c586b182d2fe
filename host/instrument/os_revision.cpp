// OPVLIB: what the product says of its operating system.
#include "instrument/instrument_libraries.h"
#include "posix/calls/entry.h"
#include "posix/system/identity.h"

DWORD WINAPI GetProductOSRevision(void) {
  const auto revision = []() -> DWORD { return host::OsRevision(); };
  return host::Entry(
      "OPVLIB", "GetProductOSRevision", true, [] { return host::CallValues(); }, revision);
}
