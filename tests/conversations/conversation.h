// Conversations between a controller, the instrument and the world around them, written as text files (*.txt here).
//
//   # remark
//   > TEXT             the controller sends the command TEXT in a frame
//   >> BYTES           the controller sends bytes as they stand; \xHH, \r, \n and \\ are bytes
//   < R TEXT           the instrument replies; < A TEXT  it sends a message; < ACK; < NAK; < nothing (for a while)
//   ! tools-mode on    the world acts: tools-mode on | suspend | resume | window | key N ... | event MASK |
//                      set STATE-PATCH | fault FAULT | no-faults | METHOD PATH BODY (of the API)
//   ? notice CODE DETAIL            the next notice that the application's window has got
//   ? state POINTER VALUE           a value that the state has, or comes to have soon (JSON pointer, JSON)
//   ? calls LIBRARY CALL COUNT      how often a platform call has been made since the beginning, now or soon
//
// A conversation runs on a fresh instrument; whatever the instrument sends must be named, in its order.
#ifndef QXTEST_CONVERSATIONS_CONVERSATION_H
#define QXTEST_CONVERSATIONS_CONVERSATION_H

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/controller.h"

namespace qxtest {

using wire::Controller;
using wire::Received;

/// The instrument's API, wherever it runs. Throws std::runtime_error when a request is refused.
class Surroundings {
 public:
  virtual ~Surroundings() = default;
  virtual nlohmann::json Ask(const std::string& method, const std::string& path, const nlohmann::json& body) = 0;
};

struct Step {
  int line = 0;
  std::string mark;  // ">", ">>", "<", "!", "?"
  std::string text;
};

std::vector<Step> ReadConversation(const std::string& path);

struct Documented {
  std::string title;  // the heading it stands under
  std::vector<Step> steps;
};

/// The conversations in a document: its code blocks marked "conversation".
std::vector<Documented> ReadDocumented(const std::string& path);

/// Runs the steps; returns what went otherwise than written, with its line, or nothing.
std::string RunConversation(const std::vector<Step>& steps, Controller& controller, Surroundings& world);

}  // namespace qxtest

#endif
