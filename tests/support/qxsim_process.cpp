#include "support/qxsim_process.h"

#include <csignal>
#include <cstdlib>
#include <stdexcept>

namespace qxtest {
namespace {

constexpr std::chrono::seconds kPatience{20};

/// The word behind "port=" in "qxsim ready port=... http=...".
std::string Value(const std::string& line, const std::string& name) {
  const std::size_t start = line.find(" " + name + "=");
  if (start == std::string::npos) return {};
  const std::size_t value = start + name.size() + 2;
  return line.substr(value, line.find(' ', value) - value);
}

}  // namespace

std::string QxsimProgram() {
  const char* program = std::getenv("QX_QXSIM");
  return program == nullptr || *program == '\0' ? Program("qxsim") : program;
}

QxsimProcess::QxsimProcess(const std::vector<std::string>& options, bool ephemeral) {
  std::vector<std::string> arguments = {QxsimProgram(), "--link", folder_ / "line", "--http", "127.0.0.1:0"};
  if (ephemeral) {
    arguments.push_back("--ephemeral");
  } else {
    arguments.insert(arguments.end(), {"--home", folder_ / "home"});
  }
  arguments.insert(arguments.end(), options.begin(), options.end());
  // Its temporary files go where the test's own are removed, however it ends.
  process_ = std::make_unique<Process>(arguments, folder_.path(), std::vector<std::string>{"TMPDIR=" + folder_.path()});
  ready_line_ = process_->ReadLine(kPatience).value_or("");
  port_ = Value(ready_line_, "port");
  url_ = Value(ready_line_, "http");
  if (port_.empty()) throw std::runtime_error("qxsim is not ready: " + process_->ErrorText());
}

HttpClient& QxsimProcess::http() {
  if (http_ == nullptr) http_ = std::make_unique<HttpClient>(url_);
  return *http_;
}

int QxsimProcess::Stop() {
  process_->Signal(SIGINT);
  return process_->Wait(kPatience).value_or(-1);
}

}  // namespace qxtest
