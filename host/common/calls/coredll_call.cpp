#include "common/calls/coredll_call.h"

#include "common/text/hex.h"

namespace host {

void AppendStructure(const void* bytes, std::size_t size, CallValues* values) {
  if (bytes == nullptr) return AppendPointer(bytes, values);
  values->emplace_back(HexOf(bytes, size));
}

}  // namespace host
