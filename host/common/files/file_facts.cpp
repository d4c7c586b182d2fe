#include "common/files/file_facts.h"

#include "common/disk/attributes.h"
#include "common/disk/places.h"
#include "common/files/file_space.h"
#include "disk/places.h"

namespace host {
namespace {

void Apply(const std::optional<bool>& wanted, DWORD attribute, DWORD* attributes) {
  if (!wanted) return;
  *attributes = *wanted ? *attributes | attribute : *attributes & ~attribute;
}

DWORD ChangedAttributes(DWORD attributes, const FileChange& change) {
  Apply(change.readonly, FILE_ATTRIBUTE_READONLY, &attributes);
  Apply(change.hidden, FILE_ATTRIBUTE_HIDDEN, &attributes);
  Apply(change.system, FILE_ATTRIBUTE_SYSTEM, &attributes);
  Apply(change.archive, FILE_ATTRIBUTE_ARCHIVE, &attributes);
  return attributes;
}

}  // namespace

DWORD ReadInstrumentFile(WideView path, InstrumentFile* file) {
  const auto lock = LockNames();
  Place place;
  const DWORD error = LocateExisting(path, &place);
  if (error == ERROR_SUCCESS) *file = {AttributesOf(place.entry), TimesOf(place.entry).written};
  return error;
}

DWORD ChangeInstrumentFile(WideView path, const FileChange& change) {
  const auto lock = LockNames();
  Place place;
  DWORD error = LocateExisting(path, &place);
  if (error != ERROR_SUCCESS) return error;
  const DWORD before = AttributesOf(place.entry) & kSettableAttributes;
  const DWORD after = ChangedAttributes(before, change);
  if (after != before) error = StoreAttributes(place.entry, after);
  if (error != ERROR_SUCCESS || !change.written) return error;
  error = StoreWrittenTime(place.entry, *change.written);
  if (error != ERROR_SUCCESS && after != before) StoreAttributes(place.entry, before);
  return error;
}

}  // namespace host
