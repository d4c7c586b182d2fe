// OPVLIB: what the product says of its operating system.
#include "common/calls/entry.h"
#include "common/system/identity.h"
#include "instrument/instrument_libraries.h"

DWORD WINAPI GetProductOSRevision(void) {
  const auto revision = []() -> DWORD { return host::OsRevision(); };
  return host::Entry(
      "OPVLIB", "GetProductOSRevision", true, [] { return host::CallValues(); }, revision);
}
