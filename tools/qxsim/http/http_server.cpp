#include "qxsim/http/http_server.h"

#include <array>
#include <atomic>
#include <boost/asio.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <chrono>
#include <deque>
#include <mutex>
#include <optional>
#include <set>
#include <system_error>
#include <thread>

#include "qxsim/http/worker_pool.h"
#include "qxsim/system/listening.h"

namespace qxsim {
namespace {

namespace beast = boost::beast;
namespace http = boost::beast::http;
namespace net = boost::asio;
using boost::system::error_code;
using net::ip::tcp;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr seconds kPatience{30};   // for a peer to send a request or take an answer
constexpr seconds kFarewell{5};    // for a refused peer to stop sending
constexpr seconds kHeartbeat{15};  // between signs of life to those who listen to the traffic
constexpr milliseconds kAcceptPause{100};
constexpr std::size_t kMostListeners = 16;

/// "127.0.0.1:80", "[::1]:80" or "localhost": what no foreign site can be called.
bool IsPlainHost(std::string host) {
  if (!host.empty() && host.front() == '[') {
    host = host.substr(1, host.find(']') - 1);
  } else {
    host = host.substr(0, host.find(':'));
  }
  error_code error;
  net::ip::make_address(host, error);
  return !error || host == "localhost";
}

/// Pages of other sites may neither read nor change the instrument.
bool IsForeign(const http::request<http::string_body>& request, bool anyone) {
  const std::string host(request[http::field::host]);
  if (!anyone && !host.empty() && !IsPlainHost(host)) return true;
  const auto origin = request.find(http::field::origin);
  return origin != request.end() && origin->value() != "http://" + host;
}

/// How a request that could not be read is answered; nothing when the peer has gone or was too slow.
std::optional<Response> RefusalFor(const error_code& error) {
  if (error == http::error::body_limit) return ErrorResponse(kPayloadTooLarge, "the body is too large");
  if (error == http::error::header_limit) return ErrorResponse(kHeaderTooLarge, "the header is too large");
  const error_code any_http_error = http::error::bad_method;
  const bool gone = error == http::error::end_of_stream || error == http::error::partial_message;
  if (error.category() != any_http_error.category() || gone) return std::nullopt;
  return ErrorResponse(kBadRequest, "not HTTP: " + error.message());
}

/// One listener to the traffic. All on the server's own thread.
class TrafficStream : public std::enable_shared_from_this<TrafficStream> {
 public:
  using Chunk = std::shared_ptr<const std::string>;
  using EndHandler = std::function<void(const std::shared_ptr<TrafficStream>&)>;

  TrafficStream(beast::tcp_stream stream, EndHandler ended) : stream_(std::move(stream)), ended_(std::move(ended)) {}

  void Start() {
    Push(std::make_shared<const std::string>(
        "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\nCache-Control: no-store\r\n"
        "Connection: close\r\n\r\n: listening\n\n"));
    WatchPeer();
  }

  /// Sends the chunk after those waiting; ends the stream when too much is waiting already.
  void Push(Chunk chunk) {
    queued_bytes_ += chunk->size();
    if (queued_bytes_ > kMostQueuedTraffic) return End();
    queue_.push_back(std::move(chunk));
    if (queue_.size() == 1) WriteNext();
  }

  void End() {
    if (ending_) return;
    ending_ = true;
    stream_.close();
    ended_(shared_from_this());
  }

 private:
  // A listener has nothing to say: whatever is read is passed over, until it hangs up.
  void WatchPeer() {
    stream_.expires_never();
    stream_.async_read_some(net::buffer(scrap_), [self = shared_from_this()](const error_code& error, std::size_t) {
      if (error) return self->End();
      self->WatchPeer();
    });
  }

  void WriteNext() {
    if (ending_) return;
    stream_.expires_after(kPatience);
    net::async_write(stream_, net::buffer(*queue_.front()),
                     [self = shared_from_this()](const error_code& error, std::size_t) {
                       if (error) return self->End();
                       self->queued_bytes_ -= self->queue_.front()->size();
                       self->queue_.pop_front();
                       if (!self->queue_.empty()) self->WriteNext();
                     });
  }

  beast::tcp_stream stream_;
  EndHandler ended_;
  std::deque<Chunk> queue_;
  std::size_t queued_bytes_ = 0;
  std::array<char, 512> scrap_{};
  bool ending_ = false;
};

/// All listeners. The traffic comes in on the library's threads and is handed on in chunks by the server's own.
class TrafficStreams {
 public:
  TrafficStreams(net::io_context& context, TrafficLog& log) : context_(context), log_(log), timer_(context) {}
  ~TrafficStreams() {
    if (!streams_.empty()) log_.Unsubscribe(subscription_);
  }

  bool Full() const { return streams_.size() >= kMostListeners; }

  void Add(beast::tcp_stream stream) {
    if (streams_.empty()) Listen();
    const auto listener = std::make_shared<TrafficStream>(
        std::move(stream), [this](const std::shared_ptr<TrafficStream>& ended) { Remove(ended); });
    streams_.insert(listener);
    listener->Start();
  }

 private:
  void Listen() {
    subscription_ = log_.Subscribe([this](const TrafficEvent& event) { Take("data: " + ToJsonText(event) + "\n\n"); });
    Beat();
  }

  void Remove(const std::shared_ptr<TrafficStream>& stream) {
    streams_.erase(stream);
    if (!streams_.empty()) return;
    log_.Unsubscribe(subscription_);
    timer_.cancel();
  }

  void Beat() {
    timer_.expires_after(kHeartbeat);
    timer_.async_wait([this](const error_code& error) {
      if (error) return;
      Take(":\n\n");
      Beat();
    });
  }

  void Take(const std::string& text) {
    const std::lock_guard<std::mutex> lock(mutex_);
    // More than any listener may have waiting: they will all be dropped, so nothing more is kept.
    if (pending_.size() <= kMostQueuedTraffic) pending_ += text;
    if (!flush_posted_) net::post(context_, [this] { Flush(); });
    flush_posted_ = true;
  }

  void Flush() {
    std::string pending;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      pending.swap(pending_);
      flush_posted_ = false;
    }
    const auto chunk = std::make_shared<const std::string>(std::move(pending));
    const auto streams = streams_;
    for (const auto& stream : streams) stream->Push(chunk);
  }

  net::io_context& context_;
  TrafficLog& log_;
  net::steady_timer timer_;
  std::set<std::shared_ptr<TrafficStream>> streams_;
  std::uint64_t subscription_ = 0;
  std::mutex mutex_;  // guards the two below
  std::string pending_;
  bool flush_posted_ = false;
};

/// What every connection uses.
struct Shared {
  Shared(bool let_anyone, HttpServer::Handler answer, TrafficLog& log)
      : anyone(let_anyone), handler(std::move(answer)), streams(context, log) {}

  const bool anyone;
  const HttpServer::Handler handler;
  net::io_context context;
  TrafficStreams streams;
  WorkerPool pool{kMostConnections};
};

/// One connection: request, answer, and again.
class Session : public std::enable_shared_from_this<Session> {
 public:
  Session(tcp::socket socket, Shared& shared) : shared_(shared), stream_(std::move(socket)) {}

  void Read() {
    parser_.emplace();
    parser_->header_limit(kLargestHeader);
    parser_->body_limit(kLargestBody);
    stream_.expires_after(kPatience);
    http::async_read(stream_, buffer_, *parser_, [self = shared_from_this()](const error_code& error, std::size_t) {
      error ? self->Refuse(error) : self->Answer();
    });
  }

 private:
  void Refuse(const error_code& error) {
    if (const auto refusal = RefusalFor(error)) Write(*refusal, false);
  }

  void Answer() {
    const http::request<http::string_body> request = parser_->release();
    const std::string target(request.target());
    const std::string method(request.method_string());
    const bool keep_alive = request.keep_alive();
    if (IsForeign(request, shared_.anyone)) return Write(ErrorResponse(kForbidden, "asked by a foreign page"), false);
    if (method == "HEAD") return Write({kMethodNotAllowed, "application/json", ""}, false);
    if (method == "GET" && target.substr(0, target.find('?')) == kTrafficPath) return Stream();
    shared_.pool.Post([self = shared_from_this(), method, target, keep_alive, body = request.body()] {
      Response response = Run(self->shared_.handler, method, target, body);
      net::post(self->shared_.context,
                [self, keep_alive, response = std::move(response)] { self->Write(response, keep_alive); });
    });
  }

  static Response Run(const HttpServer::Handler& handler, const std::string& method, const std::string& target,
                      const std::string& body) {
    try {
      return handler(MakeRequest(method, target, body));
    } catch (const ApiError& error) {
      return ErrorResponse(error.status(), error.what());
    } catch (const std::exception& error) {
      return ErrorResponse(kServerError, error.what());
    }
  }

  void Stream() {
    if (shared_.streams.Full()) return Write(ErrorResponse(kUnavailable, "too many listeners"), false);
    shared_.streams.Add(std::move(stream_));
  }

  void Write(const Response& response, bool keep_alive) {
    response_ = {};
    response_.result(static_cast<unsigned>(response.status));
    response_.set(http::field::content_type, response.type);
    response_.set(http::field::cache_control, "no-store");
    response_.set("X-Content-Type-Options", "nosniff");
    response_.body() = response.body;
    response_.keep_alive(keep_alive);
    response_.prepare_payload();
    stream_.expires_after(kPatience);
    http::async_write(stream_, response_, [self = shared_from_this()](const error_code& error, std::size_t) {
      if (error) return;
      self->response_.keep_alive() ? self->Read() : self->Farewell();
    });
  }

  // Closing while the peer still sends would take the answer away from it before it is read.
  void Farewell() {
    error_code ignored;
    stream_.socket().shutdown(tcp::socket::shutdown_send, ignored);
    stream_.expires_after(kFarewell);
    PassOver();
  }

  void PassOver() {
    stream_.async_read_some(net::buffer(scrap_), [self = shared_from_this()](const error_code& error, std::size_t) {
      if (!error) self->PassOver();
    });
  }

  Shared& shared_;
  beast::tcp_stream stream_;
  beast::flat_buffer buffer_;
  std::optional<http::request_parser<http::string_body>> parser_;
  http::response<http::string_body> response_;
  std::array<char, 4096> scrap_{};
};

tcp::acceptor Listen(net::io_context& context, const HttpAddress& address) {
  const tcp::endpoint endpoint(net::ip::make_address(address.address), address.port);
  try {
    return tcp::acceptor(context, endpoint, ReusesAddresses());
  } catch (const boost::system::system_error& error) {
    throw std::system_error(error.code().value(), std::system_category(),
                            "address " + address.address + ":" + std::to_string(address.port));
  }
}

}  // namespace

class HttpServer::Impl {
 public:
  Impl(const HttpAddress& address, bool anyone, Handler handler, TrafficLog& traffic)
      : shared_(anyone, std::move(handler), traffic),
        acceptor_(Listen(shared_.context, address)),
        pause_(shared_.context) {
    Accept();
    thread_ = std::thread([this] { shared_.context.run(); });
  }

  ~Impl() {
    Stop();
    thread_.join();
  }

  void Stop() { shared_.context.stop(); }

  std::string Url() const {
    const tcp::endpoint endpoint = acceptor_.local_endpoint();
    const std::string address = endpoint.address().to_string();
    const std::string host = endpoint.address().is_v6() ? "[" + address + "]" : address;
    return "http://" + host + ":" + std::to_string(endpoint.port());
  }

 private:
  void Accept() {
    acceptor_.async_accept([this](const error_code& error, tcp::socket socket) {
      if (error) return AcceptLater();
      if (std::shared_ptr<Session> session = MakeSession(std::move(socket))) session->Read();
      Accept();
    });
  }

  // Out of descriptors, for example: it may pass.
  void AcceptLater() {
    pause_.expires_after(kAcceptPause);
    pause_.async_wait([this](const error_code& error) {
      if (!error) Accept();
    });
  }

  std::shared_ptr<Session> MakeSession(tcp::socket socket) {
    if (connections_ >= kMostConnections) return nullptr;
    ++connections_;
    return std::shared_ptr<Session>(new Session(std::move(socket), shared_), [this](Session* session) {
      --connections_;
      delete session;
    });
  }

  std::atomic<std::size_t> connections_{0};  // given back on whichever thread lets go last
  Shared shared_;
  tcp::acceptor acceptor_;
  net::steady_timer pause_;
  std::thread thread_;
};

HttpServer::HttpServer(const HttpAddress& address, bool anyone, Handler handler, TrafficLog& traffic)
    : impl_(std::make_unique<Impl>(address, anyone, std::move(handler), traffic)) {}

HttpServer::~HttpServer() = default;

void HttpServer::Stop() { impl_->Stop(); }

std::string HttpServer::Url() const { return impl_->Url(); }

}  // namespace qxsim
