// The fuzz targets: each takes any bytes and aborts when the code under test breaks one of its promises.
//
// The fuzzers (libfuzzer_entry.cpp) and the replay of the kept inputs (replay_test.cpp) run the same functions.
#ifndef QX_TESTS_FUZZ_TARGETS_H
#define QX_TESTS_FUZZ_TARGETS_H

#include <cstddef>
#include <cstdint>

namespace fuzz {

using Run = void (*)(const std::uint8_t* data, std::size_t size);

void FuzzFrameDecoder(const std::uint8_t* data, std::size_t size);
void FuzzCommandSplitter(const std::uint8_t* data, std::size_t size);
void FuzzVersionResource(const std::uint8_t* data, std::size_t size);

struct Target {
  const char* name;  ///< also the name of its source file, of its folder in seeds/ and of its dictionary
  Run run;
};

constexpr Target kTargets[] = {
    {"frame_decoder", FuzzFrameDecoder},
    {"command_splitter", FuzzCommandSplitter},
    {"version_resource", FuzzVersionResource},
};

}  // namespace fuzz

#endif
