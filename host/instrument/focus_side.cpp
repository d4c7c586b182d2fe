// The focusing side, its thread and its system library calls.
#include "instrument/focus_side.h"

#include <chrono>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "common/kernel/handles.h"
#include "common/kernel/shared_memory.h"
#include "common/sync/sync.h"
#include "instrument/system_calls.h"

namespace host::instrument {

namespace {
constexpr WCHAR kBlockName[] = TEXT("KORAX-HALVERN.RZM.CMemFocusDat");
constexpr WCHAR kMutexName[] = TEXT("KORAX-HALVERN.RZM.CMemFocusMtx");

std::mutex instance_mutex;
std::shared_ptr<FocusSide> instance;  // guarded by instance_mutex
}  // namespace

std::shared_ptr<FocusSide> FocusSide::Instance() {
  const std::lock_guard<std::mutex> lock(instance_mutex);
  if (instance == nullptr) instance = std::make_shared<FocusSide>();
  return instance;
}

void FocusSide::Forget() {
  std::shared_ptr<FocusSide> last;
  const std::lock_guard<std::mutex> lock(instance_mutex);
  last.swap(instance);
}

FocusSide::FocusSide()
    : block_mutex_(host::CreateMutexW(nullptr, FALSE, kMutexName)),
      mapping_(host::CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(FocusBlockData),
                                        kBlockName)),
      view_(host::MapViewOfFile(mapping_, FILE_MAP_WRITE, 0, 0, sizeof(FocusBlockData))) {
  if (view_ == nullptr) throw std::runtime_error("no focus block");
  Reset();
  thread_ = std::thread([this] { Run(); });
}

FocusSide::~FocusSide() {
  {
    std::lock_guard guard(mutex_);
    quit_ = true;
  }
  changed_.notify_all();
  thread_.join();
  host::UnmapViewOfFile(view_);
  host::CloseHandle(mapping_);
  host::CloseHandle(block_mutex_);
}

FocusBlockData FocusSide::Read() {
  FocusBlockData data;
  Change([&](FocusBlockData& block) { data = block; });
  return data;
}

void FocusSide::Change(const std::function<void(FocusBlockData&)>& change) {
  host::WaitForSingleObject(block_mutex_, INFINITE);
  FocusBlockData data;
  std::memcpy(&data, view_, sizeof data);
  change(data);
  std::memcpy(view_, &data, sizeof data);
  host::ReleaseMutex(block_mutex_);
}

// Under the lock as a whole: whoever sees the job in the block can complete it.
void FocusSide::Start(bool automatic, Outcome outcome) {
  const std::lock_guard<std::mutex> guard(mutex_);
  Change([&](FocusBlockData& block) {
    block.automatic = automatic ? 1 : 0;
    block.manual = automatic ? 0 : 1;
    block.failed = 0;
  });
  running_ = true;
  outcome_ = std::move(outcome);
  ++started_;
  changed_.notify_all();
}

void FocusSide::Stop() {
  {
    std::lock_guard guard(mutex_);
    outcome_ = nullptr;
  }
  Change([](FocusBlockData& block) { block.automatic = block.manual = 0; });
}

bool FocusSide::Complete(bool failed) {
  Outcome outcome;
  {
    std::lock_guard guard(mutex_);
    if (!running_) return false;
    running_ = false;
    outcome = std::move(outcome_);
    changed_.notify_all();
  }
  Finish(failed, outcome);
  return true;
}

// The failure flag is written before the event is signalled, under the mutex: whoever owns the event then reads it.
void FocusSide::Finish(bool failed, const Outcome& outcome) {
  Change([&](FocusBlockData& block) {
    block.automatic = block.manual = 0;
    block.failed = failed ? 1 : 0;
    if (!failed && outcome) outcome(block);
    if (block.event != 0) host::EventModify(reinterpret_cast<HANDLE>(std::uintptr_t{block.event}), kEventSet);
  });
}

void FocusSide::Run() {
  std::unique_lock guard(mutex_);
  while (!quit_) {
    if (!running_) {
      changed_.wait(guard);
      continue;
    }
    const std::uint64_t mine = started_;
    const std::chrono::milliseconds time(takes_ms_);
    if (changed_.wait_for(guard, time, [&] { return quit_ || !running_ || started_ != mine; })) continue;
    running_ = answer_ == FocusAnswer::kSilence;
    if (running_) {  // only Complete ends it now
      changed_.wait(guard, [&] { return quit_ || !running_ || started_ != mine; });
      continue;
    }
    const bool failed = answer_ == FocusAnswer::kFailure;
    const Outcome outcome = std::move(outcome_);
    guard.unlock();
    Finish(failed, outcome);
    guard.lock();
  }
}

FocusAnswer FocusSide::answer() const {
  std::lock_guard guard(mutex_);
  return answer_;
}

void FocusSide::SetAnswer(FocusAnswer answer) {
  std::lock_guard guard(mutex_);
  answer_ = answer;
}

std::uint32_t FocusSide::takes_ms() const {
  std::lock_guard guard(mutex_);
  return takes_ms_;
}

void FocusSide::SetTakesMs(std::uint32_t milliseconds) {
  std::lock_guard guard(mutex_);
  takes_ms_ = milliseconds;
}

void FocusSide::Reset() {
  {
    std::lock_guard guard(mutex_);
    answer_ = FocusAnswer::kSuccess;
    takes_ms_ = kStandardTakesMs;
  }
  Change([](FocusBlockData& block) {
    const std::uint32_t event = block.event;  // a running job keeps the block
    const std::uint32_t owner = block.owner;
    block = {};
    block.event = event;
    block.owner = owner;
    block.distance = kStandardDistance;
  });
}

}  // namespace host::instrument

using host::instrument::FocusBlockData;
using host::instrument::FocusSide;
using host::instrument::SystemCall;

namespace {

constexpr double kUnitsPerMetre = 10000.0;
constexpr double kLongestDistance = 400000.0;  // metres that the block's word can hold

std::uint32_t DistanceWord(double metres) {
  if (!(metres > 0.0)) return 0;
  return static_cast<std::uint32_t>((metres < kLongestDistance ? metres : kLongestDistance) * kUnitsPerMetre + 0.5);
}

}  // namespace

// The buffer's content is the system library's own: left as it is.
std::int32_t WINAPI QxSystemGetFocusDistance(void*) {
  return SystemCall(30, {}, [] {});
}

std::int32_t WINAPI QxSystemFocusToDistance(double distance) {
  return SystemCall(31, {distance}, [&] {
    FocusSide::Instance()->Start(false, [=](FocusBlockData& block) { block.distance = DistanceWord(distance); });
  });
}

std::int32_t WINAPI QxSystemStartAutofocus(std::int32_t on) {
  return SystemCall(32, {on}, [] { FocusSide::Instance()->Start(true, nullptr); });
}

std::int32_t WINAPI QxSystemStopFocus() {
  return SystemCall(64, {}, [] { FocusSide::Instance()->Stop(); });
}

std::int32_t WINAPI QxSystemMoveFocusTo(std::int32_t position) {
  return SystemCall(65, {position}, [&] {
    FocusSide::Instance()->Start(false, [=](FocusBlockData& block) { block.position = position; });
  });
}

std::int32_t WINAPI QxSystemMoveFocusBy(std::int32_t steps) {
  return SystemCall(66, {steps}, [&] {
    FocusSide::Instance()->Start(false, [=](FocusBlockData& block) {
      // Wraps like the instrument's own counter.
      block.position =
          static_cast<std::int32_t>(static_cast<std::uint32_t>(block.position) + static_cast<std::uint32_t>(steps));
    });
  });
}
