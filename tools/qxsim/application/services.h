// The library's exports as the application calls them, by name, and the services it has open.
#ifndef QXSIM_APPLICATION_SERVICES_H
#define QXSIM_APPLICATION_SERVICES_H

#include <QXCommMgr.h>
#include <windows.h>

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <set>
#include <string>

namespace qxsim {

/// One call of an export. Members that the export does not take are not looked at.
struct ExportCall {
  std::string name;
  QCM_HANDLE handle = 0;
  std::optional<std::string> port;  ///< UTF-8; nothing = a null pointer
  HWND window = nullptr;
  std::uint32_t message = 0;
  bool has_buffer = true;              ///< else a null pointer
  std::optional<std::uint32_t> bytes;  ///< buffer size; nothing = the record's own, or room for any port name
  double step = 0;
};

struct ExportResult {
  std::int64_t result = 0;
  std::optional<std::string> text;    ///< UTF-8, up to the zero; for QCMGetPortName
  std::optional<std::string> record;  ///< the buffer's bytes, filled with CD before the call
};

constexpr std::uint32_t kLargestBuffer = 64 * 1024;

/// The size of the record this export fills; 0 when it is not one of those.
std::uint32_t RecordBytes(const std::string& name);
bool IsExport(const std::string& name);

/// Any thread.
class Services {
 public:
  Services() = default;
  Services(const Services&) = delete;
  Services& operator=(const Services&) = delete;
  ~Services() { CloseAll(); }

  /// Makes the call; the name must be an export's, and a record's buffer must hold it. Nothing once closing has begun.
  std::optional<ExportResult> Call(const ExportCall& call);

  /// The first service that was opened and is open still; 0 when none is.
  QCM_HANDLE Own() const;
  std::size_t Open() const;
  /// Refuses further calls, closes every service and waits until no call is under way.
  void CloseAll();

 private:
  bool Begin();
  void End(const ExportCall& call, const ExportResult& result);

  mutable std::mutex mutex_;  // guards all below
  std::condition_variable changed_;
  std::set<QCM_HANDLE> open_;
  QCM_HANDLE own_ = 0;
  int calls_ = 0;
  bool closing_ = false;
};

}  // namespace qxsim

#endif
