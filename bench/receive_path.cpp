// Receive path: from bytes to a command that has been assembled, checked, split, looked up, and four fields read.
#include <benchmark/benchmark.h>

#include <stdexcept>
#include <string>
#include <string_view>

#include "protocol/command_queue.h"
#include "protocol/command_table.h"
#include "protocol/field_map.h"
#include "protocol/frame.h"
#include "protocol/frame_decoder.h"
#include "straw_man.h"

namespace {

constexpr std::string_view kKeys[] = {"ANG", "TLT", "DST", "KEY"};
constexpr std::size_t kSmallTable = 8;
constexpr std::size_t kLargeTable = 64;

std::string CommandFrame() {
  std::string frame = "C<ST_OMD,ANG=11,TLT=1,DST=12,KEY=1>";
  frame.push_back(qxcm::Checksum(frame));
  frame.push_back(qxcm::kCr);
  return frame;
}

void ReceiveStrawMan(benchmark::State& state) {
  qxbench::StrawMan codec(static_cast<std::size_t>(state.range(0)));
  const std::string frame = CommandFrame();
  for (auto _ : state) {
    std::string_view bytes = frame;
    benchmark::DoNotOptimize(bytes);
    if (!codec.Next(bytes)) throw std::logic_error("refused");
    for (const auto key : kKeys) benchmark::DoNotOptimize(codec.Value(key));
  }
}

void ReadCommand(std::string& text, qxcm::FieldMap& fields) {
  std::string_view word;
  if (!qxcm::SplitCommand(text, &word, &fields)) throw std::logic_error("refused");
  if (qxcm::FindCommand(word, false) == nullptr) throw std::logic_error("unknown");
  for (const auto key : kKeys) benchmark::DoNotOptimize(fields.Find(key));
}

void ReceiveLibrary(benchmark::State& state) {
  qxcm::FrameDecoder decoder;
  qxcm::FieldMap fields;
  std::string text;
  const std::string frame = CommandFrame();
  for (auto _ : state) {
    std::string_view bytes = frame;
    benchmark::DoNotOptimize(bytes);
    if (decoder.Next(bytes) != qxcm::FrameEvent::kCommand) throw std::logic_error("refused");
    text.assign(decoder.text());
    ReadCommand(text, fields);
  }
}

void ReceiveLibraryThroughQueue(benchmark::State& state) {
  qxcm::FrameDecoder decoder;
  qxcm::CommandQueue queue;
  qxcm::FieldMap fields;
  std::string text;
  const std::string frame = CommandFrame();
  for (auto _ : state) {
    std::string_view bytes = frame;
    benchmark::DoNotOptimize(bytes);
    if (decoder.Next(bytes) != qxcm::FrameEvent::kCommand) throw std::logic_error("refused");
    queue.Push(decoder.text());
    if (!queue.Pop(text)) throw std::logic_error("lost");
    ReadCommand(text, fields);
  }
}

BENCHMARK(ReceiveStrawMan)->Arg(kSmallTable)->Arg(kLargeTable);
BENCHMARK(ReceiveLibrary);
BENCHMARK(ReceiveLibraryThroughQueue);

}  // namespace
