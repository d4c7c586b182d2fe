// A small HTTP/1.1 client over one connection, written apart from the server so that it is a second opinion on it.
#ifndef QXTEST_SUPPORT_HTTP_CLIENT_H
#define QXTEST_SUPPORT_HTTP_CLIENT_H

#include <chrono>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace qxtest {

struct HttpReply {
  int status = 0;                              ///< 0: the connection ended, or nothing came in time
  std::map<std::string, std::string> headers;  ///< names in lower case
  std::string body;

  nlohmann::json Json() const { return nlohmann::json::parse(body); }
};

/// One keep-alive connection; connects anew when the server has closed it.
class HttpClient {
 public:
  /// \param url  "http://127.0.0.1:8580"
  explicit HttpClient(const std::string& url);
  HttpClient(const HttpClient&) = delete;
  HttpClient& operator=(const HttpClient&) = delete;
  ~HttpClient();

  HttpReply Get(const std::string& path) { return Call("GET", path, {}); }
  /// \param headers  further header lines, each with its "\r\n"
  HttpReply Call(const std::string& method, const std::string& path, const std::string& body,
                 const std::string& headers = {});
  /// The same with JSON both ways; throws std::runtime_error unless the status is 200.
  nlohmann::json Ask(const std::string& method, const std::string& path,
                     const nlohmann::json& body = nlohmann::json::object());

  /// Asks for a stream of server-sent events and waits for its header. ReadEvent then gives one event after the other.
  HttpReply Listen(const std::string& path);
  /// The data of the next event; nothing when the stream has ended or the time is over.
  std::optional<std::string> ReadEvent(std::chrono::milliseconds time);

  /// For requests no client should send: raw bytes, and whatever answer comes. SendRaw is false when the server has
  /// hung up.
  bool SendRaw(const std::string& bytes);
  HttpReply ReadReply(bool with_body = true);
  /// True when the server closes the connection within the time, whatever it still sends.
  bool WaitForClose(std::chrono::milliseconds time);

  void set_patience(std::chrono::milliseconds patience) { patience_ = patience; }

 private:
  void Connect();
  void Close();
  bool Fill(std::chrono::steady_clock::time_point deadline);
  std::optional<std::string> TakeThrough(const std::string& end, std::chrono::steady_clock::time_point deadline);

  std::string host_;
  int port_ = 0;
  int socket_ = -1;
  std::string pending_;
  std::chrono::milliseconds patience_{20000};
};

}  // namespace qxtest

#endif
