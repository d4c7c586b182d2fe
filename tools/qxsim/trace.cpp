#include "qxsim/trace.h"

#include <cerrno>
#include <cstring>

#include "qxsim/start_error.h"
#include "qxsim/system/files.h"

namespace qxsim {
namespace {

std::string Begin(double at, const char* what) {
  char text[64];
  std::snprintf(text, sizeof text, "%12.3f %-7s ", at, what);
  return text;
}

/// The text on one line.
std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char byte : text) {
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\x%02X", static_cast<unsigned char>(byte));
    quoted += static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F ? escape : std::string(1, byte);
  }
  return quoted + '"';
}

struct ValueText {
  std::string operator()(std::nullptr_t) const { return "null"; }
  std::string operator()(std::int64_t number) const { return std::to_string(number); }
  std::string operator()(double number) const {
    char text[32];
    std::snprintf(text, sizeof text, "%.17g", number);
    return text;
  }
  std::string operator()(const std::string& text) const { return Quoted(text); }
};

std::string CallText(const host::CallValue& call) {
  const auto* name = std::get_if<std::string>(&call);
  return name != nullptr ? *name : std::visit(ValueText(), call);
}

}  // namespace

std::string TraceLine(const TrafficEvent& event) {
  std::string line = Begin(event.at, "frame") + event.port + (event.in ? " in  " : " out ") + KindName(event.kind);
  return event.text.empty() ? line : line + " " + event.text;
}

std::string TraceLine(const host::CallRecord& call) {
  std::string args;
  for (const host::CallValue& arg : call.args) args += (args.empty() ? "" : ", ") + std::visit(ValueText(), arg);
  return Begin(call.at, "call") + call.library + " " + CallText(call.call) + "(" + args +
         ") = " + std::visit(ValueText(), call.result);
}

std::string TraceLine(const Notification& notification) {
  char text[96];
  std::snprintf(text, sizeof text, "window %u %s 0x%X %llu %lld", notification.window,
                notification.sent ? "sent" : "posted", notification.message,
                static_cast<unsigned long long>(notification.wparam), static_cast<long long>(notification.lparam));
  return Begin(host::MillisecondsSinceStart(), "notice") + text;
}

Trace::Trace(const std::string& file) {
  file_ = file == "-" ? stderr : OpenTextFile(std::filesystem::u8path(file));
  if (file_ == nullptr) throw StartError("trace: " + file + ": " + std::strerror(errno));
}

Trace::~Trace() {
  if (file_ != stderr) std::fclose(file_);
}

void Trace::Write(const std::string& line) {
  const std::lock_guard<std::mutex> lock(mutex_);
  std::fprintf(file_, "%s\n", line.c_str());
  std::fflush(file_);
}

}  // namespace qxsim
