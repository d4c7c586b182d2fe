// ST_FOC starts or stops focusing, GT_FOS reports its state.
//   C<ST_FOC,AFO=1>        ->  ACK, later  A<FOS,AFO=0>  or  A<FOS,AFO=ER_FAL>
//   C<ST_FOC,MFO=D12.5>    ->  ACK, later  A<FOS,MFO=0>  or  A<FOS,MFO=ER_FAL>
//   C<GT_FOS,DPS,AFO>      ->  R<FOS,AFO=0,DPS=12.5000>, ACK        (table order)
#include "commands/measure/focus.h"

#include <exception>
#include <optional>
#include <string_view>

#include "QXCommMgr.h"
#include "commands/measure/focus_block.h"
#include "commands/measure/measured_data.h"
#include "commands/measure/valuetext/number_text.h"
#include "platform/event.h"
#include "platform/qxsystem.h"
#include "protocol/command_handlers.h"
#include "protocol/command_processor.h"
#include "protocol/command_table.h"

namespace qxcm {

namespace {

constexpr DWORD kLongestWait = 5650;  // milliseconds for the focusing side to signal
constexpr double kFarDistance = 5000.0;
constexpr double kNearDistance = 1.45;
constexpr double kMetresPerUnit = 0.0001;
constexpr std::uint32_t kAutofocusCancelled = 4;
constexpr LPARAM kAutofocusNotice = 1;
constexpr LPARAM kManualNotice = 2;
constexpr std::size_t kFocusRecordSize = 64;

bool StartOperation(const FocusJob& job) {
  switch (job.kind) {
    case FocusJob::Kind::kAutofocus:
      return QxSystemStartAutofocus(1) == 0;
    case FocusJob::Kind::kToDistance:
      return QxSystemFocusToDistance(job.distance) == 0;
    case FocusJob::Kind::kBySteps:
      return QxSystemMoveFocusBy(job.number) == 0;
    case FocusJob::Kind::kToPosition:
      return QxSystemMoveFocusTo(job.number) == 0;
  }
  return false;
}

struct ReleaseAtEnd {
  FocusBlock& block;
  ~ReleaseAtEnd() { block.Release(); }
};

/// Carries a job out; whether it succeeded. The block is free again afterwards, whatever happened.
bool CarryOut(const FocusJob& job) {
  const Event completed;
  FocusBlock block;
  if (!block.Claim(completed.handle())) return false;
  const ReleaseAtEnd release{block};
  if (!StartOperation(job)) return false;
  if (WaitForSingleObject(completed.handle(), kLongestWait) != WAIT_OBJECT_0) return false;
  return block.Copy().failed == 0;
}

FocusJob DistanceJob(double metres) { return {FocusJob::Kind::kToDistance, metres, 0}; }

/// The job that a value of "MFO" (but "0") names, if it names one.
std::optional<FocusJob> ParseManualJob(std::string_view text) {
  const std::string_view number = text.substr(text.empty() ? 0 : 1);
  switch (text.empty() ? '\0' : text.front()) {
    case 'C': {
      const bool is_signed = number.substr(0, 1) == "+" || number.substr(0, 1) == "-";
      return FocusJob{is_signed ? FocusJob::Kind::kBySteps : FocusJob::Kind::kToPosition, 0.0, ParseLeadingInt(number)};
    }
    case 'D':
      return DistanceJob(ParseLeadingDouble(number));
    case 'F':
      return DistanceJob(kFarDistance);
    case 'N':
      return DistanceJob(kNearDistance);
    default:
      return std::nullopt;
  }
}

std::int32_t StartJob(CommandProcessor& processor, const FocusJob& job) {
  if (!processor.service().focus_worker().Start(job)) return kFailed;
  const bool automatic = job.kind == FocusJob::Kind::kAutofocus;
  processor.PostNotification(QCM_NOTIFY_FOCUS, automatic ? kAutofocusNotice : kManualNotice);
  return kDone;
}

std::int32_t StopFocusing() {
  QxSystemStopFocus();  // a running job still waits for its event or its time-out, and reports
  return kDone;
}

}  // namespace

bool FocusWorker::Start(const FocusJob& job) {
  Guard guard(lock_);
  if (stopping_ || running_.load(std::memory_order_acquire)) return false;
  thread_.Join();  // a job that has reported ends at once
  if (!thread_.Create([this, job] { Run(job); })) return false;
  running_.store(true, std::memory_order_release);
  if (thread_.Start()) return true;
  running_.store(false, std::memory_order_release);
  return false;
}

void FocusWorker::Stop() {
  Guard guard(lock_);
  stopping_ = true;
  while (!thread_.JoinLettingSentMessagesThrough(INFINITE)) {
  }
}

void FocusWorker::Run(const FocusJob& job) {
  bool succeeded = false;
  try {
    succeeded = CarryOut(job);
  } catch (const std::exception&) {
    // The platform has no block or event to give, or refused its mutex: the job has failed.
  }
  running_.store(false, std::memory_order_release);  // a controller that has the outcome may start the next job
  const std::string_view key = job.kind == FocusJob::Kind::kAutofocus ? "AFO" : "MFO";
  service_.SendAsynchronous(Reply("FOS").Add(key, succeeded ? "0" : "ER_FAL").text());
}

std::int32_t StFoc(CommandProcessor& processor, const FieldMap& fields) {
  const auto* automatic = fields.Find("AFO");
  const auto* manual = fields.Find("MFO");
  if (automatic != nullptr && manual != nullptr) return kBadParameter;
  if (automatic != nullptr) {
    if (*automatic == "0") return StopFocusing();
    return *automatic == "1" ? StartJob(processor, FocusJob{}) : kBadParameter;
  }
  if (manual == nullptr) return kDone;
  if (*manual == "0") return StopFocusing();
  const auto job = ParseManualJob(*manual);
  return job ? StartJob(processor, *job) : kBadParameter;
}

std::int32_t GtFos(CommandProcessor& processor, const FieldMap& fields) {
  const FocusData focus = FocusBlock().Copy();
  const bool automatic = focus.automatic != 0 && focus.state != kAutofocusCancelled;
  const bool manual = focus.manual != 0 || automatic;  // a running autofocus reports both (kept)
  Reply reply("FOS");
  if (fields.Has("AFO")) reply.AddInt("AFO", automatic ? 1 : 0);
  if (fields.Has("MFO")) reply.AddInt("MFO", manual ? 1 : 0);
  if (fields.Has("CPS")) reply.AddInt("CPS", focus.position);
  if (fields.Has("DPS")) {
    std::uint32_t record[kFocusRecordSize / sizeof(std::uint32_t)] = {};
    QxSystemGetFocusDistance(record);  // the system library refreshes it; the value comes from the block
    AddDistance(reply, "DPS", focus.distance * kMetresPerUnit);
  }
  processor.SendReply(reply);
  return kDone;
}

}  // namespace qxcm
