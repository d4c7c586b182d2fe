#include "qxsim/application/services.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <vector>

#include "common/text/utf.h"
#include "instrument/battery.h"
#include "instrument/event_window.h"

namespace qxsim {
namespace {

/// A buffer of exactly so many bytes, aligned for what the exports write; writing past its end does not go unseen by
/// the sanitizers.
class FilledBuffer {
 public:
  FilledBuffer(bool present, std::uint32_t bytes) : bytes_(present ? bytes : 0) {
    if (!present) return;
    data_ = ::operator new(std::max<std::uint32_t>(bytes, 1));
    std::memset(data_, 0xCD, bytes);
  }
  FilledBuffer(const FilledBuffer&) = delete;
  FilledBuffer& operator=(const FilledBuffer&) = delete;
  ~FilledBuffer() { ::operator delete(data_); }

  void* data() { return data_; }
  std::optional<std::string> Content() const {
    if (data_ == nullptr) return std::nullopt;
    return std::string(static_cast<const char*>(data_), bytes_);
  }
  /// The text up to its zero; empty when it has none.
  std::string Text() const {
    const host::WideView units(static_cast<const WCHAR*>(data_), bytes_ / sizeof(WCHAR));
    const std::size_t end = units.find(TEXT('\0'));
    return end == host::WideView::npos ? std::string() : host::WideToUtf8(units.substr(0, end));
  }

 private:
  void* data_ = nullptr;
  std::uint32_t bytes_;
};

constexpr std::uint32_t kRoomForPortName = 520;

ExportResult OpenComm(const ExportCall& call) {
  const host::WideString name = host::Utf8ToWide(call.port.value_or(""));
  return {QCMOpenComm(call.port ? name.c_str() : nullptr), {}, {}};
}

ExportResult GetPortName(const ExportCall& call) {
  const std::uint32_t bytes = call.bytes.value_or(kRoomForPortName);
  FilledBuffer buffer(call.has_buffer, bytes);
  const QCM_INT32 result = QCMGetPortName(call.handle, static_cast<QCM_WCHAR*>(buffer.data()), bytes);
  return {result, buffer.Text(), buffer.Content()};
}

template <auto kExport>
ExportResult WithHandle(const ExportCall& call) {
  return {kExport(call.handle), {}, {}};
}

template <class Record, QCM_INT32 (*kExport)(QCM_HANDLE, Record*)>
ExportResult Fetch(const ExportCall& call) {
  FilledBuffer buffer(call.has_buffer, call.bytes.value_or(sizeof(Record)));
  const QCM_INT32 result = kExport(call.handle, static_cast<Record*>(buffer.data()));
  return {result, {}, buffer.Content()};
}

struct Export {
  const char* name;
  ExportResult (*call)(const ExportCall&);
  std::uint32_t record_bytes;
};

template <class Record, QCM_INT32 (*kExport)(QCM_HANDLE, Record*)>
constexpr Export RecordExport(const char* name) {
  return {name, Fetch<Record, kExport>, sizeof(Record)};
}

const Export kExports[] = {
    {"QCMOpenComm", OpenComm, 0},
    {"QCMCloseComm", WithHandle<QCMCloseComm>, 0},
    {"QCMSuspendComm", WithHandle<QCMSuspendComm>, 0},
    {"QCMResumeComm", WithHandle<QCMResumeComm>, 0},
    {"QCMRegisterNotifyWindow",
     [](const ExportCall& call) -> ExportResult {
       return {QCMRegisterNotifyWindow(call.handle, call.window, call.message), {}, {}};
     },
     0},
    {"QCMUnregisterNotifyWindow",
     [](const ExportCall& call) -> ExportResult {
       return {QCMUnregisterNotifyWindow(call.handle, call.window), {}, {}};
     },
     0},
    {"QCMGetPortName", GetPortName, 0},
    {"QCMSetAngleRoundParams",
     [](const ExportCall& call) -> ExportResult {
       return {QCMSetAngleRoundParams(call.handle, call.step), {}, {}};
     },
     0},
    RecordExport<QCM_MSR_PARAMS, QCMGetLastMsrParams>("QCMGetLastMsrParams"),
    RecordExport<QCM_EXECUTED_PROCESS_INFO, QCMGetLastExecutedProcessInfo>("QCMGetLastExecutedProcessInfo"),
    RecordExport<QCM_TURN_PARAMS, QCMGetLastTurnParams>("QCMGetLastTurnParams"),
    RecordExport<QCM_TARGET_SEARCH_PARAMS, QCMGetLastTargetSearchParams>("QCMGetLastTargetSearchParams"),
    RecordExport<QCM_SAVED_IMAGE_PARAMS, QCMGetLastSavedImageParams>("QCMGetLastSavedImageParams"),
    RecordExport<QCM_TARGET_SEARCH_RESULT, QCMGetLastTargetSearchResult>("QCMGetLastTargetSearchResult"),
    {"QCMT_UpgradeToolsMode", WithHandle<QCMT_UpgradeToolsMode>, 0},
};

const Export* FindExport(const std::string& name) {
  const auto found = std::find_if(std::begin(kExports), std::end(kExports),
                                  [&name](const Export& candidate) { return candidate.name == name; });
  return found == std::end(kExports) ? nullptr : found;
}

bool Opened(const ExportCall& call, const ExportResult& result) {
  return call.name == "QCMOpenComm" && result.result != 0;
}

}  // namespace

std::uint32_t RecordBytes(const std::string& name) {
  const Export* found = FindExport(name);
  return found == nullptr ? 0 : found->record_bytes;
}

bool IsExport(const std::string& name) { return FindExport(name) != nullptr; }

std::optional<ExportResult> Services::Call(const ExportCall& call) {
  if (!Begin()) return std::nullopt;
  const ExportResult result = FindExport(call.name)->call(call);
  // The instrument tells a new service how its batteries stand.
  if (Opened(call, result)) host::instrument::DeliverEvents(host::instrument::kBatteryEvent);
  End(call, result);
  return result;
}

bool Services::Begin() {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (closing_) return false;
  ++calls_;
  return true;
}

void Services::End(const ExportCall& call, const ExportResult& result) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (Opened(call, result)) {
    open_.insert(static_cast<QCM_HANDLE>(result.result));
    if (own_ == 0) own_ = static_cast<QCM_HANDLE>(result.result);
  } else if (call.name == "QCMCloseComm" && result.result == QCM_OK) {
    open_.erase(call.handle);
    if (own_ == call.handle) own_ = 0;
  }
  --calls_;
  changed_.notify_all();
}

QCM_HANDLE Services::Own() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return own_;
}

std::size_t Services::Open() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return open_.size();
}

void Services::CloseAll() {
  std::unique_lock<std::mutex> lock(mutex_);
  closing_ = true;
  while (!open_.empty()) {
    const QCM_HANDLE handle = *open_.begin();
    open_.erase(open_.begin());
    lock.unlock();
    QCMCloseComm(handle);
    lock.lock();
  }
  own_ = 0;
  // An open still under way may bring one more.
  changed_.wait(lock, [this] { return calls_ == 0; });
  const bool another = !open_.empty();
  lock.unlock();
  if (another) CloseAll();
}

}  // namespace qxsim
