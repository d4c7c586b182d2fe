#include "common/files/file_facts.h"

namespace host {
namespace {

void Apply(const std::optional<bool>& wanted, DWORD attribute, DWORD* attributes) {
  if (!wanted) return;
  *attributes = *wanted ? *attributes | attribute : *attributes & ~attribute;
}

}  // namespace

DWORD ChangedAttributes(DWORD attributes, const FileChange& change) {
  Apply(change.readonly, FILE_ATTRIBUTE_READONLY, &attributes);
  Apply(change.hidden, FILE_ATTRIBUTE_HIDDEN, &attributes);
  Apply(change.system, FILE_ATTRIBUTE_SYSTEM, &attributes);
  Apply(change.archive, FILE_ATTRIBUTE_ARCHIVE, &attributes);
  return attributes;
}

}  // namespace host
