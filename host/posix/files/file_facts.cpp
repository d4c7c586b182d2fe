#include "common/files/file_facts.h"

#include "common/files/file_space.h"
#include "posix/disk/attributes.h"
#include "posix/disk/places.h"

namespace host {

DWORD ReadInstrumentFile(std::u16string_view path, InstrumentFile* file) {
  const auto lock = LockNames();
  Place place;
  const DWORD error = LocateExisting(path, &place);
  if (error == ERROR_SUCCESS) *file = {ReadAttributes(place.entry), ToFileTime(place.entry.facts.written)};
  return error;
}

DWORD ChangeInstrumentFile(std::u16string_view path, const FileChange& change) {
  const auto lock = LockNames();
  Place place;
  DWORD error = LocateExisting(path, &place);
  if (error != ERROR_SUCCESS) return error;
  const int pin = place.entry.descriptor.get();
  const FileFacts& facts = place.entry.facts;
  const DWORD before = ReadAttributes(place.entry) & kSettableAttributes;
  const DWORD after = ChangedAttributes(before, change) & kSettableAttributes;
  if (after != before) error = StoreAttributes(pin, facts, after);
  if (error != ERROR_SUCCESS || !change.written) return error;
  error = StoreWrittenTime(pin, FromFileTime(*change.written));
  if (error != ERROR_SUCCESS && after != before) StoreAttributes(pin, facts, before);
  return error;
}

}  // namespace host
