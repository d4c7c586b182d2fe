#include "posix/calls/coredll_call.h"

namespace host {

void AppendStructure(const void* bytes, std::size_t size, CallValues* values) {
  if (bytes == nullptr) return AppendPointer(bytes, values);
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string hex;
  for (std::size_t i = 0; i < size; ++i) {
    const unsigned byte = static_cast<const unsigned char*>(bytes)[i];
    hex.push_back(kDigits[byte >> 4]);
    hex.push_back(kDigits[byte & 15]);
  }
  values->emplace_back(std::move(hex));
}

}  // namespace host
