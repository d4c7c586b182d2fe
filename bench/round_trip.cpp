// Round trips over a pty: a command out, its reply and ACK back, one at a time; and commands sent without waiting.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "QXCommMgr.h"
#include "api/comm_manager.h"
#include "common/ports/ports.h"
#include "instrument/angles.h"
#include "instrument/event_window.h"
#include "link/serial_channel.h"
#include "protocol/frame.h"
#include "reference_programs.h"
#include "support/memory_link.h"
#include "support/test_application.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kExchanges = 2000;
constexpr WPARAM kAngleEvent = 0x8;
constexpr int kBurst = 1000;  // well below the command queue's limit
constexpr int kBursts = 20;

std::string Request() {
  std::string frame = "C<GT_MDT,HAN,VAN,XTL,YTL>";
  frame.push_back(qxcm::Checksum(frame));
  frame.push_back(qxcm::kCr);
  return frame;
}

std::string Answer() {
  std::string frame;
  qxcm::ComposeFrame(false, "MDT,HAN=0.00000,VAN=0.00000,XTL=0.00000,YTL=0.00000", frame);
  frame.push_back(qxcm::kAck);
  return frame;
}

/// One iteration does the work kExchanges times; its time is their median.
template <class Work>
void Measure(benchmark::State& state, Work work) {
  std::vector<double> seconds(kExchanges);
  for (auto _ : state) {
    for (double& one : seconds) {
      const auto start = Clock::now();
      work();
      one = std::chrono::duration<double>(Clock::now() - start).count();
    }
    std::sort(seconds.begin(), seconds.end());
    state.SetIterationTime(seconds[kExchanges / 2]);
    state.counters["p99"] = seconds[kExchanges * 99 / 100];
  }
}

/// Round trips over the line at `path`.
void Exchange(benchmark::State& state, const std::string& path) {
  qxtest::Controller controller(path);
  const std::string request = Request();
  Measure(state, [&] {
    controller.Send(request);
    controller.ReceiveAcks(1);
  });
}

void RoundTripFloorRaw(benchmark::State& state) {
  const qxbench::FloorRaw program(Answer());
  Exchange(state, program.path());
}

void RoundTripFloorHops(benchmark::State& state) {
  const qxbench::FloorHops program(Answer());
  Exchange(state, program.path());
}

void RoundTripLibrary(benchmark::State& state) {
  const std::string path = host::AttachPty("COM5:");
  {
    qxcm::CommManager service(TEXT("COM5:"), std::make_unique<qxcm::SerialChannel>());
    Exchange(state, path);
  }
  host::DetachPort("COM5:");
}

/// From an event posted to the application's window to its message on the wire, all output modes on.
void EventLibrary(benchmark::State& state) {
  const std::string path = host::AttachPty("COM5:");
  qxtest::TestWindow window;
  host::instrument::SetEventWindow(window.handle(), qxtest::kEventMessage);
  const QCM_HANDLE service = QCMOpenComm(u"COM5:");
  if (service == 0) state.SkipWithError("the service cannot be opened");
  {
    qxtest::Controller controller(path);
    std::string modes = "C<ST_OMD,ANG=1,TLT=1,DST=1,KEY=1>";
    modes.push_back(qxcm::Checksum(modes));
    controller.Send(modes + qxcm::kCr);
    controller.ReceiveAcks(1);
    double angle = 0.0;
    Measure(state, [&] {
      angle = angle < 6.0 ? angle + 0.0001 : 0.0;  // radians: always another second of arc
      host::instrument::Angles::Instance().Change([&](auto& pose) { pose.haf = angle; });
      PostMessageW(window.handle(), qxtest::kEventMessage, kAngleEvent, 0);
      controller.ReceiveFrame();
    });
  }
  QCMCloseComm(service);
  host::instrument::ResetEventWindow();
  host::DetachPort("COM5:");
}

/// Commands through one service in memory, as fast as its dispatcher takes them.
void PipelinedLibrary(benchmark::State& state) {
  qxtest::MemoryLine line;
  qxcm::CommManager service(TEXT("COM5:"), line.MakeLink());
  std::string burst;
  for (int i = 0; i < kBurst; ++i) burst += Request();
  for (auto _ : state) {
    const auto start = Clock::now();
    for (int i = 0; i < kBursts; ++i) {
      line.Send(burst);
      benchmark::DoNotOptimize(line.TakeWithAcks(kBurst));
    }
    state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count() / (kBurst * kBursts));
  }
}

BENCHMARK(RoundTripFloorRaw)->UseManualTime()->Iterations(1)->Unit(benchmark::kMicrosecond);
BENCHMARK(RoundTripFloorHops)->UseManualTime()->Iterations(1)->Unit(benchmark::kMicrosecond);
BENCHMARK(RoundTripLibrary)->UseManualTime()->Iterations(1)->Unit(benchmark::kMicrosecond);
BENCHMARK(EventLibrary)->UseManualTime()->Iterations(1)->Unit(benchmark::kMicrosecond);
BENCHMARK(PipelinedLibrary)->UseManualTime()->Iterations(1)->Unit(benchmark::kMicrosecond);

}  // namespace
