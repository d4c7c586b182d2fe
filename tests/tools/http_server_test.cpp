#include "qxsim/http/http_server.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>

#include "qxsim/http/worker_pool.h"
#include "support/controller.h"
#include "support/http_client.h"
#include "tools/simulator_test.h"

namespace qxtest {
namespace {

using wire::CommandFrame;

using qxsim::HttpServer;
using qxsim::Request;
using qxsim::Response;
using std::chrono::milliseconds;
using std::chrono::seconds;

/// Answers what it was asked; "/wait" waits to be let go.
class HttpServerTest : public testing::Test {
 protected:
  ~HttpServerTest() override {
    server_->Stop();
    LetGo();
  }
  void LetGo() {
    if (!let_go_.exchange(true)) gate_.set_value();
  }

  Response Answer(const Request& request) {
    if (!request.path.empty() && request.path[0] == "wait") opened_.wait();
    if (!request.path.empty() && request.path[0] == "throw") throw std::runtime_error("failed");
    std::string text = request.method;
    for (const std::string& segment : request.path) text += "/" + segment;
    for (const auto& [name, value] : request.query) text += " " + name + "=" + value;
    return {200, "text/plain", text + " " + request.body};
  }

  qxsim::TrafficLog traffic_;
  std::promise<void> gate_;
  std::shared_future<void> opened_ = gate_.get_future().share();
  std::atomic<bool> let_go_{false};
  std::unique_ptr<HttpServer> server_ = std::make_unique<HttpServer>(
      qxsim::HttpAddress{"127.0.0.1", 0}, false, [this](const Request& request) { return Answer(request); }, traffic_);
  HttpClient client_{server_->Url()};
};

TEST_F(HttpServerTest, PassesMethodPathQueryAndBodyOn) {
  EXPECT_EQ(client_.Call("PUT", "/a%2Fb/c?x=1&y=two%20words+more", "the body").body,
            "PUT/a/b/c x=1 y=two words more the body");
}

TEST_F(HttpServerTest, KeepsAConnectionForManyRequests) {
  for (int round = 0; round < 100; ++round) EXPECT_EQ(client_.Get("/x").status, 200);
}

TEST_F(HttpServerTest, AnswersRequestsSentTogetherInOrder) {
  client_.SendRaw("GET /1 HTTP/1.1\r\nHost: localhost\r\n\r\nGET /2 HTTP/1.1\r\nHost: localhost\r\n\r\n");
  EXPECT_EQ(client_.ReadReply().body, "GET/1 ");
  EXPECT_EQ(client_.ReadReply().body, "GET/2 ");
}

TEST_F(HttpServerTest, ARequestThatWaitsHoldsUpNoOther) {
  std::vector<std::unique_ptr<HttpClient>> waiting;
  for (int i = 0; i < 30; ++i) {
    waiting.push_back(std::make_unique<HttpClient>(server_->Url()));
    waiting.back()->SendRaw("GET /wait HTTP/1.1\r\nHost: localhost\r\n\r\n");
  }
  EXPECT_EQ(client_.Get("/x").status, 200);
  LetGo();
  for (auto& client : waiting) EXPECT_EQ(client->ReadReply().status, 200);
}

TEST_F(HttpServerTest, AFailedHandlerIsAnErrorInJson) {
  const HttpReply reply = client_.Get("/throw");
  EXPECT_EQ(reply.status, 500);
  EXPECT_EQ(reply.Json()["error"], "failed");
}

TEST_F(HttpServerTest, AMalformedAddressIsRefused) {
  EXPECT_EQ(client_.Get("/%zz").status, 400);
  EXPECT_EQ(client_.Get("/%4").status, 400);
}

TEST_F(HttpServerTest, HugeBodiesAreRefusedBeforeTheyAreRead) {
  const HttpReply reply = client_.Call("POST", "/x", std::string(8 * 1024 * 1024, 'x'));
  EXPECT_EQ(reply.status, 413);
  EXPECT_TRUE(reply.Json()["error"].is_string());
  EXPECT_EQ(client_.Call("POST", "/x", std::string(qxsim::kLargestBody, 'x')).status, 200);
}

TEST_F(HttpServerTest, EndlessChunkedBodiesAreRefused) {
  client_.SendRaw("POST /x HTTP/1.1\r\nHost: localhost\r\nTransfer-Encoding: chunked\r\n\r\n");
  const std::string chunk = "10000\r\n" + std::string(0x10000, 'x') + "\r\n";
  for (int i = 0; i < 20; ++i) client_.SendRaw(chunk);
  EXPECT_EQ(client_.ReadReply().status, 413);
}

TEST_F(HttpServerTest, HugeHeadersAreRefused) {
  EXPECT_EQ(client_.Call("GET", "/x", "", "X-Long: " + std::string(64 * 1024, 'x') + "\r\n").status, 431);
}

TEST_F(HttpServerTest, WhatIsNotHttpIsRefused) {
  client_.SendRaw("C<GT_OMD>!\r\n\r\n");
  EXPECT_EQ(client_.ReadReply().status, 400);
}

TEST_F(HttpServerTest, AClientThatHangsUpInMidRequestDoesNoHarm) {
  for (int round = 0; round < 200; ++round) {
    HttpClient rude(server_->Url());
    rude.SendRaw("POST /x HTTP/1.1\r\nContent-Length: 100\r\n\r\nhalf");
  }
  EXPECT_EQ(client_.Get("/x").status, 200);
}

TEST_F(HttpServerTest, ConnectionsAreBounded) {
  std::vector<std::unique_ptr<HttpClient>> clients;
  EXPECT_EQ(client_.Get("/x").status, 200);
  for (std::size_t i = 1; i < qxsim::kMostConnections; ++i) {
    clients.push_back(std::make_unique<HttpClient>(server_->Url()));
    ASSERT_EQ(clients.back()->Get("/x").status, 200);
  }
  HttpClient extra(server_->Url());
  EXPECT_EQ(extra.Get("/x").status, 0);
  clients.clear();
  EXPECT_TRUE(Eventually([this] { return HttpClient(server_->Url()).Get("/x").status == 200; }));
}

TEST_F(HttpServerTest, ForeignPagesAndHostNamesAreRefused) {
  EXPECT_EQ(client_.Call("POST", "/x", "", "Origin: http://evil.example\r\n").status, 403);
  EXPECT_EQ(client_.Call("POST", "/x", "", "Origin: null\r\n").status, 403);
  EXPECT_EQ(client_.Call("POST", "/x", "", "Origin: " + server_->Url() + "\r\n").status, 200);
  client_.SendRaw("GET /x HTTP/1.1\r\nHost: evil.example:80\r\n\r\n");
  EXPECT_EQ(client_.ReadReply().status, 403);
}

TEST_F(HttpServerTest, AHeadRequestIsRefusedWithoutABody) {
  client_.SendRaw("HEAD /x HTTP/1.1\r\nHost: localhost\r\n\r\n");
  const HttpReply reply = client_.ReadReply();
  EXPECT_EQ(reply.status, 405);
  EXPECT_EQ(reply.body, "");
}

TEST_F(HttpServerTest, AnAddressInUseIsAnError) {
  const auto port = static_cast<std::uint16_t>(std::stoi(server_->Url().substr(17)));
  EXPECT_THROW(HttpServer({"127.0.0.1", port}, false, nullptr, traffic_), std::system_error);
}

TEST_F(HttpServerTest, StreamsTheTrafficToEveryListener) {
  HttpClient other(server_->Url());
  EXPECT_EQ(client_.Listen(qxsim::kTrafficPath).headers["content-type"], "text/event-stream");
  EXPECT_EQ(other.Listen(qxsim::kTrafficPath).status, 200);
  traffic_.Feed("COM5:", true, CommandFrame("GT_OMD"));
  traffic_.Feed("COM5:", false, "\x06");
  for (HttpClient* listener : {&client_, &other}) {
    const auto command = nlohmann::json::parse(listener->ReadEvent(seconds(10)).value());
    EXPECT_EQ(command["kind"], "command");
    EXPECT_EQ(command["text"], "GT_OMD");
    EXPECT_EQ(command["way"], "in");
    EXPECT_EQ(nlohmann::json::parse(listener->ReadEvent(seconds(10)).value())["kind"], "ack");
  }
}

TEST_F(HttpServerTest, AListenerThatDoesNotReadIsDroppedAndTheOthersAreNot) {
  HttpClient slow(server_->Url());
  slow.Listen(qxsim::kTrafficPath);
  client_.Listen(qxsim::kTrafficPath);
  const std::string frame = CommandFrame(std::string(8000, 'x'));
  // More than all buffers on the way hold; the other one reads it as it comes.
  for (int i = 0; i < 4000; ++i) {
    traffic_.Feed("COM5:", true, frame);
    ASSERT_TRUE(client_.ReadEvent(seconds(10))) << i;
  }
  EXPECT_TRUE(slow.WaitForClose(seconds(20)));
  traffic_.Feed("COM5:", true, frame);
  EXPECT_TRUE(client_.ReadEvent(seconds(10)));
}

TEST_F(HttpServerTest, ListenersAreBounded) {
  std::vector<std::unique_ptr<HttpClient>> listeners;
  for (int i = 0; i < 16; ++i) {
    listeners.push_back(std::make_unique<HttpClient>(server_->Url()));
    ASSERT_EQ(listeners.back()->Listen(qxsim::kTrafficPath).status, 200);
  }
  EXPECT_EQ(client_.Get(qxsim::kTrafficPath).status, 503);
  listeners.pop_back();
  EXPECT_TRUE(Eventually([this] { return HttpClient(server_->Url()).Listen(qxsim::kTrafficPath).status == 200; }));
}

TEST_F(HttpServerTest, ManyClientsAtOnceAreAllAnswered) {
  std::vector<std::thread> clients;
  std::atomic<int> answered{0};
  for (int i = 0; i < 8; ++i) {
    clients.emplace_back([this, &answered] {
      HttpClient client(server_->Url());
      for (int round = 0; round < 50; ++round) answered += client.Get("/x").status == 200;
    });
  }
  for (std::thread& client : clients) client.join();
  EXPECT_EQ(answered, 400);
}

TEST(WorkerPoolTest, RunsAsManyTasksAtOnceAsItHasThreads) {
  std::promise<void> gate;
  std::shared_future<void> opened = gate.get_future().share();
  std::atomic<int> running{0};
  std::atomic<int> most{0};
  {
    qxsim::WorkerPool pool(3);
    for (int i = 0; i < 10; ++i) {
      pool.Post([&] {
        most = std::max<int>(most, ++running);
        opened.wait();
        --running;
      });
    }
    EXPECT_TRUE(Eventually([&] { return running == 3; }));
    gate.set_value();
    EXPECT_TRUE(Eventually([&] { return running == 0; }));
  }
  EXPECT_LE(most, 3);
}

TEST(WorkerPoolTest, WaitsForTasksUnderWayWhenItGoes) {
  std::atomic<bool> done{false};
  std::promise<void> begun;
  {
    qxsim::WorkerPool pool(1);
    pool.Post([&] {
      begun.set_value();
      std::this_thread::sleep_for(milliseconds(20));
      done = true;
    });
    begun.get_future().wait();
  }
  EXPECT_TRUE(done);
}

}  // namespace
}  // namespace qxtest
