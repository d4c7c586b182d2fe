// A real service on an instrument with an empty file system, a fresh registry and a clock that stands still: for the
// tests of the controller services. The test plays the controller; it sees the files from outside.
#ifndef QXTEST_UNIT_SERVICES_CONTROLLER_SERVICE_H
#define QXTEST_UNIT_SERVICES_CONTROLLER_SERVICE_H

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "support/process.h"
#include "unit/measure/measuring_service.h"

namespace qxtest {

using Texts = std::vector<std::string>;

/// The instrument's world; it stands before the service opens and is put back after it has closed.
class InstrumentWorld {
 public:
  InstrumentWorld();
  InstrumentWorld(const InstrumentWorld&) = delete;
  InstrumentWorld& operator=(const InstrumentWorld&) = delete;
  ~InstrumentWorld();

  /// The folder that is the instrument's file system.
  std::filesystem::path root() const { return std::filesystem::path(folder_.path()) / "files"; }
  /// Where "/Temp/a.txt" lies on this machine.
  std::filesystem::path Outside(const std::string& path) const { return root() / path.substr(1); }
  void MakeFile(const std::string& path, std::string_view bytes = {}) const;
  void MakeFolder(const std::string& path) const { std::filesystem::create_directories(Outside(path)); }
  std::string BytesOf(const std::string& path) const;
  bool Exists(const std::string& path) const { return std::filesystem::exists(Outside(path)); }

 private:
  static void Defaults();

  TemporaryFolder folder_;
};

class ControllerService : public InstrumentWorld, public MeasuringService {
 public:
  ControllerService() { Tools(); }

  /// All reply texts up to the ACK.
  Texts Answers(std::string_view command);
  /// Sends many commands without waiting in between; the reply texts up to the last one's ACK.
  Texts AnswersTo(const Texts& commands);
  /// Opens a file; its handle number as text.
  std::string Open(const std::string& path);
  /// The platform's calls with these names, as "CreateFileW(\a.txt, 3221225472, ...)".
  Texts PlatformCalls(const Texts& names) const;
  void ForgetPlatformCalls() { platform_calls_begin_ = host::TakeCallNumber() + 1; }

 private:
  void Tools();
  std::uint64_t platform_calls_begin_ = host::TakeCallNumber() + 1;
};

/// "FIL,STS=" and the status.
inline std::string Status(const std::string& status) { return "FIL,STS=" + status; }
inline const std::string kDone = Status("SCS");
inline const std::string kFailed = Status("ER_FAL");

}  // namespace qxtest

#endif
