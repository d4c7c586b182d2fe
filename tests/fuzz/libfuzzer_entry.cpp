// The entry of one fuzzer: QX_FUZZ_TARGET names the target it runs.
#include <cstdint>
#include <cstring>

#include "promise.h"
#include "targets.h"

namespace {

fuzz::Run Chosen() {
  for (const fuzz::Target& target : fuzz::kTargets) {
    if (std::strcmp(target.name, QX_FUZZ_TARGET) == 0) return target.run;
  }
  fuzz::Promise(false, "every fuzzer's target is in the table");
  return nullptr;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const fuzz::Run run = Chosen();
  run(data, size);
  return 0;
}
