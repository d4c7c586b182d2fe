// The straw-man codec: the least work that reads a command at all. memchr for the frame end, one pass for the checksum,
// fields as views in a flat array, a hashed look-up. It keeps none of the receiver's rules beyond that.
#ifndef QXCM_BENCH_STRAW_MAN_H
#define QXCM_BENCH_STRAW_MAN_H

#include <array>
#include <cstddef>
#include <string_view>
#include <unordered_map>

namespace qxbench {

class StrawMan {
 public:
  explicit StrawMan(std::size_t words);

  /// Takes one frame off the front of `bytes`; whether it was good and its word known.
  bool Next(std::string_view& bytes);
  /// The value of a field of the last frame; empty when there is none.
  std::string_view Value(std::string_view key) const;

 private:
  struct Field {
    std::string_view key;
    std::string_view value;
  };
  static constexpr std::size_t kMostFields = 16;

  std::unordered_map<std::string_view, int> words_;
  std::array<Field, kMostFields> fields_;
  std::size_t count_ = 0;
};

}  // namespace qxbench

#endif
