// Reading and running conversations.
#include "conversations/conversation.h"

#include <chrono>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <stdexcept>

namespace qxtest {

namespace {

using Json = nlohmann::json;

constexpr std::chrono::seconds kPatience{10};
constexpr std::chrono::milliseconds kSilence{200};
constexpr unsigned kNoticeMessage = 0x8001;

class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

std::string Unescape(const std::string& text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\') {
      bytes += text[i];
      continue;
    }
    const char kind = text.at(++i);
    if (kind == 'x') {
      bytes += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
      i += 2;
    } else {
      bytes += kind == 'r' ? '\r' : kind == 'n' ? '\n' : kind;
    }
  }
  return bytes;
}

std::string Describe(const Received& received) {
  switch (received.kind) {
    case Received::Kind::kReply:
      return "R " + received.text;
    case Received::Kind::kMessage:
      return "A " + received.text;
    case Received::Kind::kAcknowledged:
      return "ACK";
    case Received::Kind::kRefused:
      return "NAK";
    case Received::Kind::kBad:
      break;
  }
  return "bad bytes " + received.text;
}

/// The first word, taken off the text.
std::string TakeWord(std::string& text) {
  const std::size_t end = std::min(text.find(' '), text.size());
  const std::string word = text.substr(0, end);
  text.erase(0, end == text.size() ? end : end + 1);
  return word;
}

class Runner {
 public:
  Runner(Controller& controller, Surroundings& world) : controller_(controller), world_(world) {
    calls_begin_ = world_.Ask("GET", "/calls", {})["next"];
  }

  void Run(const Step& step) {
    if (step.mark == ">") return controller_.Send(wire::CommandFrame(step.text));
    if (step.mark == ">>") return controller_.Send(Unescape(step.text));
    if (step.mark == "<") return Expect(step.text);
    if (step.mark == "!") return Act(step.text);
    See(step.text);
  }

  void ExpectNothingMore() { Expect("nothing"); }

 private:
  void Expect(const std::string& expected) {
    const bool nothing = expected == "nothing";
    const auto received = controller_.Read(nothing ? kSilence : std::chrono::milliseconds(kPatience));
    const std::string got = received ? Describe(*received) : "nothing";
    if (got != expected) throw Failure("expected \"" + expected + "\", got \"" + got + "\"");
  }

  Json Service(const std::string& call, const Json& args = Json::object()) {
    const Json answer = world_.Ask("POST", "/service", {{"call", call}, {"args", args}});
    if (answer["result"] != 0) throw Failure(call + " returned " + answer["result"].dump());
    return answer;
  }

  void Act(std::string text) {
    const std::map<std::string, std::function<void()>> verbs = {
        {"tools-mode", [&] { Service("QCMT_UpgradeToolsMode"); }},
        {"suspend", [&] { Service("QCMSuspendComm"); }},
        {"resume", [&] { Service("QCMResumeComm"); }},
        {"window", [&] { MakeWindow(); }},
        {"key",
         [&] {
           world_.Ask("POST", "/keys", {{"codes", Numbers(text)}});
         }},
        {"event",
         [&] {
           world_.Ask("POST", "/events", {{"mask", std::stoul(text, nullptr, 0)}});
         }},
        {"set", [&] { world_.Ask("PATCH", "/state", Json::parse(text)); }},
        {"fault", [&] { world_.Ask("POST", "/faults", Json::parse(text)); }},
        {"no-faults", [&] { world_.Ask("DELETE", "/faults", {}); }},
    };
    const std::string word = TakeWord(text);
    const auto verb = verbs.find(word);
    if (verb != verbs.end()) return verb->second();
    const std::string path = TakeWord(text);
    world_.Ask(word, path, text.empty() ? Json::object() : Json::parse(text));
  }

  void MakeWindow() {
    const Json window = world_.Ask("POST", "/windows", Json::object())["window"];
    Service("QCMRegisterNotifyWindow", {{"window", window}, {"message", kNoticeMessage}});
  }

  static Json Numbers(const std::string& text) {
    Json numbers = Json::array();
    std::istringstream words(text);
    for (std::string word; words >> word;) numbers.push_back(std::stoul(word, nullptr, 0));
    return numbers;
  }

  void See(std::string text) {
    const std::string what = TakeWord(text);
    if (what == "notice") return SeeNotice(text);
    if (what == "state") return SeeState(text);
    if (what == "calls") return SeeCalls(text);
    throw Failure("cannot see \"" + what + "\"");
  }

  void SeeNotice(const std::string& expected) {
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    Json notices;
    do {
      notices = world_.Ask("GET", "/notifications?since=" + std::to_string(notices_seen_), {})["notifications"];
    } while (notices.empty() && std::chrono::steady_clock::now() < deadline);
    if (notices.empty()) throw Failure("no notice");
    const Json& notice = notices[0];
    notices_seen_ = notice["n"].get<std::uint64_t>() + 1;
    const std::string got = notice["wparam"].dump() + " " + notice["lparam"].dump();
    if (got != expected) throw Failure("expected notice " + expected + ", got " + got);
  }

  void SeeState(std::string text) {
    const std::string pointer = TakeWord(text);
    const Json expected = Json::parse(text);
    Json value;
    const bool holds = Within([&] {
      value = world_.Ask("GET", "/state", {}).at(Json::json_pointer(pointer));
      return value == expected;
    });
    if (!holds) throw Failure("state " + pointer + " is " + value.dump());
  }

  void SeeCalls(std::string text) {
    const std::string library = TakeWord(text);
    const std::string call = TakeWord(text);
    int count = 0;
    const bool holds = Within([&] {
      count = CountCalls(library, call);
      return std::to_string(count) == text;
    });
    if (!holds) throw Failure(call + " has been called " + std::to_string(count) + " times");
  }

  int CountCalls(const std::string& library, const std::string& call) {
    const Json calls = world_.Ask("GET", "/calls?since=" + std::to_string(calls_begin_), {})["calls"];
    int count = 0;
    for (const Json& one : calls) {
      const std::string name = one["call"].is_string() ? one["call"].get<std::string>() : one["call"].dump();
      count += one["library"] == library && name == call ? 1 : 0;
    }
    return count;
  }

  /// Whether the condition comes to hold while one waits for it.
  static bool Within(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (!condition()) {
      if (std::chrono::steady_clock::now() > deadline) return false;
    }
    return true;
  }

  Controller& controller_;
  Surroundings& world_;
  std::uint64_t calls_begin_ = 0;
  std::uint64_t notices_seen_ = 0;
};

}  // namespace

namespace {

std::vector<std::string> ReadLines(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

Step ParseStep(std::string line, int number) {
  Step step;
  step.line = number;
  step.mark = TakeWord(line);
  step.text = line;
  if (step.mark != ">" && step.mark != ">>" && step.mark != "<" && step.mark != "!" && step.mark != "?") {
    throw std::runtime_error("line " + std::to_string(number) + ": unknown mark");
  }
  return step;
}

}  // namespace

std::vector<Step> ReadConversation(const std::string& path) {
  std::vector<Step> steps;
  int number = 0;
  for (const std::string& line : ReadLines(path)) {
    ++number;
    if (!line.empty() && line.front() != '#') steps.push_back(ParseStep(line, number));
  }
  return steps;
}

std::vector<Documented> ReadDocumented(const std::string& path) {
  std::vector<Documented> conversations;
  std::string title;
  bool inside = false;
  int number = 0;
  for (const std::string& line : ReadLines(path)) {
    ++number;
    const bool begins = line == "```conversation";
    if (!inside && line.rfind("## ", 0) == 0) title = line.substr(3);
    if (begins) conversations.push_back({title, {}});
    if (inside && line != "```") conversations.back().steps.push_back(ParseStep(line, number));
    inside = begins || (inside && line != "```");
  }
  return conversations;
}

std::string RunConversation(const std::vector<Step>& steps, Controller& controller, Surroundings& world) {
  int line = 0;
  try {
    Runner runner(controller, world);
    for (const Step& step : steps) {
      line = step.line;
      runner.Run(step);
    }
    runner.ExpectNothingMore();
  } catch (const std::exception& failure) {
    return "line " + std::to_string(line) + ": " + failure.what();
  }
  return {};
}

}  // namespace qxtest
