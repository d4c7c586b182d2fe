#include "unit/services/controller_service.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "common/files/file_root.h"
#include "common/files/program_files.h"
#include "common/registry/registry.h"
#include "common/system/clock.h"
#include "common/system/power.h"
#include "common/system/programs.h"
#include "instrument/battery.h"

namespace qxtest {

namespace {

std::string ValueText(const host::CallValue& value) {
  if (const auto* number = std::get_if<std::int64_t>(&value)) return std::to_string(*number);
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  return "null";
}

std::string CallText(const host::CallRecord& record) {
  std::string text = ValueText(record.call) + "(";
  for (std::size_t i = 0; i < record.args.size(); ++i) text += (i == 0 ? "" : ", ") + ValueText(record.args[i]);
  return text + ")";
}

/// The texts of the frames in what was written, whose other bytes must be ACKs.
Texts FrameTexts(const std::string& written) {
  Texts texts;
  for (std::size_t at = 0; at < written.size();) {
    if (written[at] == kAck.front()) {
      ++at;
      continue;
    }
    const std::size_t end = written.find('\r', at);
    if (end == std::string::npos || end < at + 4) {
      ADD_FAILURE() << "no frame: " << written.substr(at, 80);
      return texts;
    }
    texts.push_back(written.substr(at + 2, end - at - 4));
    EXPECT_EQ(written.substr(at, end + 1 - at), ReplyFrame(texts.back()));
    at = end + 1;
  }
  return texts;
}

}  // namespace

InstrumentWorld::InstrumentWorld() {
  std::filesystem::create_directory(root());
  host::SetFileRoot(root());
  host::SetProgramLookup(host::LookUpProgramFile);
  host::instrument::LoadBatteryQuery();
  Defaults();
  host::RunClock(false);
}

InstrumentWorld::~InstrumentWorld() {
  host::RunClock(true);
  Defaults();
  host::instrument::UnloadBatteryQuery();
  host::SetProgramLookup(nullptr);
  host::ClearFileRoot();
}

void InstrumentWorld::Defaults() {
  host::Registry::Instance().Replace(host::DefaultRegistry());
  host::SetFreeFileSpace(std::nullopt);
  host::instrument::Battery::Instance().Change([](host::instrument::BatteryLevels& levels) { levels = {}; });
  host::SetSystemPowerState(nullptr, host::kPowerOn, 0);
}

void InstrumentWorld::MakeFile(const std::string& path, std::string_view bytes) const {
  std::filesystem::create_directories(Outside(path).parent_path());
  std::ofstream(Outside(path), std::ios::binary) << bytes;
}

std::string InstrumentWorld::BytesOf(const std::string& path) const {
  std::ostringstream bytes;
  bytes << std::ifstream(Outside(path), std::ios::binary).rdbuf();
  return bytes.str();
}

void ControllerService::Tools() { manager.processor().SetToolsMode(); }

Texts ControllerService::Answers(std::string_view command) { return FrameTexts(line.Exchange(command)); }

Texts ControllerService::AnswersTo(const Texts& commands) {
  for (const std::string& command : commands) line.Send(CommandFrame(command));
  return FrameTexts(line.TakeWithAcks(commands.size()));
}

std::string ControllerService::Open(const std::string& path) {
  const std::string answer = Answer("OP_FIL,PTH=" + path);
  const std::string begin = "FIL,STS=SCS,HAN=";
  EXPECT_EQ(answer.substr(0, begin.size()), begin) << path;
  return answer.substr(std::min(answer.size(), begin.size()));
}

Texts ControllerService::PlatformCalls(const Texts& names) const {
  Texts calls;
  for (const host::CallRecord& record : host::CallsSince(platform_calls_begin_, nullptr)) {
    if (std::find(names.begin(), names.end(), ValueText(record.call)) != names.end()) calls.push_back(CallText(record));
  }
  return calls;
}

}  // namespace qxtest
