#include "support/http_client.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <system_error>

namespace qxtest {
namespace {

using Clock = std::chrono::steady_clock;

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char letter) { return std::tolower(letter); });
  return text;
}

HttpReply ParseHead(const std::string& head) {
  HttpReply reply;
  reply.status = head.size() > 12 ? std::atoi(head.c_str() + 9) : 0;
  std::size_t line = head.find("\r\n") + 2;
  while (line < head.size()) {
    const std::size_t end = head.find("\r\n", line);
    const std::size_t colon = head.find(": ", line);
    if (end == std::string::npos || colon == std::string::npos || colon > end) break;
    reply.headers[Lower(head.substr(line, colon - line))] = head.substr(colon + 2, end - colon - 2);
    line = end + 2;
  }
  return reply;
}

}  // namespace

HttpClient::HttpClient(const std::string& url) {
  const std::string address = url.substr(url.find("//") + 2);
  const std::size_t colon = address.rfind(':');
  host_ = address.substr(0, colon);
  port_ = std::stoi(address.substr(colon + 1));
  Connect();
}

HttpClient::~HttpClient() { Close(); }

void HttpClient::Close() {
  if (socket_ >= 0) close(socket_);
  socket_ = -1;
  pending_.clear();
}

void HttpClient::Connect() {
  socket_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port_));
  inet_pton(AF_INET, host_.c_str(), &address.sin_addr);
  if (connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
    throw std::system_error(errno, std::generic_category(), "connect");
  }
  const int on = 1;
  setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

HttpReply HttpClient::Call(const std::string& method, const std::string& path, const std::string& body,
                           const std::string& headers) {
  if (socket_ < 0) Connect();
  const bool sent = SendRaw(method + " " + path + " HTTP/1.1\r\nHost: " + host_ + ":" + std::to_string(port_) + "\r\n" +
                            headers + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
  HttpReply reply = ReadReply();
  if (!sent || reply.status == 0 || Lower(reply.headers["connection"]) == "close") Close();
  return reply;
}

nlohmann::json HttpClient::Ask(const std::string& method, const std::string& path, const nlohmann::json& body) {
  const HttpReply reply = Call(method, path, method == "GET" ? "" : body.dump());
  if (reply.status != 200) {
    throw std::runtime_error(method + " " + path + ": " + std::to_string(reply.status) + " " + reply.body);
  }
  return reply.Json();
}

HttpReply HttpClient::Listen(const std::string& path) {
  if (socket_ < 0) Connect();
  SendRaw("GET " + path + " HTTP/1.1\r\nHost: " + host_ + ":" + std::to_string(port_) + "\r\n\r\n");
  return ReadReply(false);
}

std::optional<std::string> HttpClient::ReadEvent(std::chrono::milliseconds time) {
  const auto deadline = Clock::now() + time;
  while (auto event = TakeThrough("\n\n", deadline)) {
    if (event->compare(0, 6, "data: ") == 0) return event->substr(6, event->size() - 8);
  }
  return std::nullopt;
}

bool HttpClient::SendRaw(const std::string& bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t count = send(socket_, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
    if (count <= 0) return false;
    done += static_cast<std::size_t>(count);
  }
  return true;
}

HttpReply HttpClient::ReadReply(bool with_body) {
  const auto deadline = Clock::now() + patience_;
  const auto head = TakeThrough("\r\n\r\n", deadline);
  if (!head) return {};
  HttpReply reply = ParseHead(*head);
  const std::size_t length = with_body ? std::stoul("0" + reply.headers["content-length"]) : 0;
  while (pending_.size() < length && Fill(deadline)) {
  }
  reply.body = pending_.substr(0, length);
  pending_.erase(0, reply.body.size());
  return reply;
}

bool HttpClient::WaitForClose(std::chrono::milliseconds time) {
  const auto deadline = Clock::now() + time;
  while (Fill(deadline)) pending_.clear();
  return Clock::now() < deadline;
}

bool HttpClient::Fill(Clock::time_point deadline) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
  pollfd ready = {socket_, POLLIN, 0};
  if (left <= 0 || poll(&ready, 1, static_cast<int>(left)) <= 0) return false;
  char bytes[16384];
  const ssize_t count = recv(socket_, bytes, sizeof bytes, 0);
  if (count <= 0) return false;
  pending_.append(bytes, static_cast<std::size_t>(count));
  return true;
}

std::optional<std::string> HttpClient::TakeThrough(const std::string& end, Clock::time_point deadline) {
  std::size_t found;
  while ((found = pending_.find(end)) == std::string::npos) {
    if (!Fill(deadline)) return std::nullopt;
  }
  const std::string taken = pending_.substr(0, found + end.size());
  pending_.erase(0, taken.size());
  return taken;
}

}  // namespace qxtest
