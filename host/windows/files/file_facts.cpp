#include "common/files/file_facts.h"

#include "common/files/file_space.h"
#include "windows/disk/attributes.h"
#include "windows/disk/places.h"

namespace host {

DWORD ReadInstrumentFile(WideView path, InstrumentFile* file) {
  const auto lock = LockNames();
  Place place;
  const DWORD error = LocateExisting(path, &place);
  if (error == ERROR_SUCCESS) *file = {InstrumentAttributes(place.entry.facts), place.entry.facts.written};
  return error;
}

DWORD ChangeInstrumentFile(WideView path, const FileChange& change) {
  const auto lock = LockNames();
  Place place;
  DWORD error = LocateExisting(path, &place);
  if (error != ERROR_SUCCESS) return error;
  const SystemHandle open = OpenForFacts(place.entry.path);
  if (!open.valid()) return SystemError();
  const DWORD before = place.entry.facts.attributes & kSettableAttributes;
  const DWORD after = ChangedAttributes(before, change) & kSettableAttributes;
  if (after != before) error = StoreAttributes(open.get(), after);
  if (error != ERROR_SUCCESS || !change.written) return error;
  error = StoreWrittenTime(open.get(), *change.written);
  if (error != ERROR_SUCCESS && after != before) StoreAttributes(open.get(), before);
  return error;
}

}  // namespace host
