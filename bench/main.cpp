// Runs every benchmark several times in turns and prints the medians, with their ratios to the reference programs.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace {

constexpr int kRounds = 9;

/// A figure of one benchmark: its median time, or the median of one of its counters. Nanoseconds.
struct Figure {
  const char* benchmark;
  const char* counter;  // null for the time
};

struct Row {
  const char* what;
  Figure figure;
  Figure reference;  // its benchmark is null when there is none
  const char* goal;
};

constexpr Row kRows[] = {
    {"receive path, 64 words", {"ReceiveLibrary", nullptr}, {"ReceiveStrawMan/64", nullptr}, "<= 1.75"},
    {"receive path with the command queue",
     {"ReceiveLibraryThroughQueue", nullptr},
     {"ReceiveStrawMan/64", nullptr},
     ""},
    {"straw man, 64 words against 8", {"ReceiveStrawMan/64", nullptr}, {"ReceiveStrawMan/8", nullptr}, ""},
    {"floor-hops against floor-raw, median", {"RoundTripFloorHops", nullptr}, {"RoundTripFloorRaw", nullptr}, ""},
    {"round trip over a pty, median", {"RoundTripLibrary", nullptr}, {"RoundTripFloorHops", nullptr}, "<= 1.10"},
    {"round trip over a pty, 99th percentile", {"RoundTripLibrary", "p99"}, {"RoundTripFloorHops", "p99"}, "<= 1.25"},
    {"event to message over a pty, median", {"EventLibrary", nullptr}, {"RoundTripFloorHops", nullptr}, "<= 1.30"},
    {"pipelined in memory, one command", {"PipelinedLibrary", nullptr}, {nullptr, nullptr}, "<= 6667 ns"},
};

/// Keeps the medians over the rounds and prints nothing of its own.
class Medians : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.error_occurred) failed_ = true;
      if (run.aggregate_name != "median") continue;
      const std::string name = run.run_name.function_name + (run.run_name.args.empty() ? "" : "/" + run.run_name.args);
      const double to_nanoseconds = 1e9 / benchmark::GetTimeUnitMultiplier(run.time_unit);
      figures_[name] = run.GetAdjustedRealTime() * to_nanoseconds;
      for (const auto& [counter, value] : run.counters) figures_[name + ":" + counter] = value.value * 1e9;
    }
  }

  bool Has(const Figure& figure) const { return figures_.count(Name(figure)) != 0; }
  double Get(const Figure& figure) const { return figures_.at(Name(figure)); }
  bool failed() const { return failed_; }

 private:
  static std::string Name(const Figure& figure) {
    return figure.counter == nullptr ? figure.benchmark : std::string(figure.benchmark) + ":" + figure.counter;
  }

  std::map<std::string, double> figures_;
  bool failed_ = false;
};

void PrintRow(const Row& row, const Medians& medians) {
  const double figure = medians.Get(row.figure);
  std::printf("| %-40s | %9.0f ", row.what, figure);
  if (row.reference.benchmark == nullptr) {
    std::printf("| %9s | %5s | %-10s |\n", "", "", row.goal);
    return;
  }
  const double reference = medians.Get(row.reference);
  std::printf("| %9.0f | %5.2f | %-10s |\n", reference, figure / reference, row.goal);
}

}  // namespace

int main(int argc, char** argv) {
  std::string repetitions = "--benchmark_repetitions=" + std::to_string(kRounds);
  std::string interleaving = "--benchmark_enable_random_interleaving=true";
  std::vector<char*> arguments(argv, argv + argc);
  arguments.insert(arguments.begin() + 1, {repetitions.data(), interleaving.data()});
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  Medians medians;
  benchmark::RunSpecifiedBenchmarks(&medians);
  if (medians.failed()) return 1;
  std::printf("Medians of %d rounds in turns, nanoseconds.\n\n", kRounds);
  std::printf("| %-40s | %9s | %9s | %5s | %-10s |\n", "what", "here", "reference", "ratio", "goal");
  std::printf("|%s|%s|%s|%s|%s|\n", std::string(42, '-').c_str(), std::string(11, '-').c_str(),
              std::string(11, '-').c_str(), std::string(7, '-').c_str(), std::string(12, '-').c_str());
  for (const Row& row : kRows) {
    if (medians.Has(row.figure)) PrintRow(row, medians);
  }
  return 0;
}
