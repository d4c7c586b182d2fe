// The link in memory.
#include "support/memory_link.h"

#include <utility>

namespace qxtest {

namespace {

std::string Frame(char letter, std::string_view text) {
  std::string frame(1, letter);
  frame.append("<").append(text).append(">");
  unsigned sum = 0;
  for (const char byte : frame) sum += static_cast<unsigned char>(byte);
  frame.push_back(static_cast<char>(sum % 256 % 64 + 32));
  frame.push_back('\r');
  return frame;
}

}  // namespace

std::string CommandFrame(std::string_view text) { return Frame('C', text); }
std::string ReplyFrame(std::string_view text) { return Frame('R', text); }
std::string MessageFrame(std::string_view text) { return Frame('A', text); }

/// The instrument's end of a MemoryLine.
class MemoryLink final : public qxcm::Link {
 public:
  explicit MemoryLink(MemoryLine& line) : line_(line) {
    const std::lock_guard<std::mutex> delivering(line_.delivering_);
    line_.link_ = this;
  }

  ~MemoryLink() override {
    MemoryLink::Close();
    const std::lock_guard<std::mutex> delivering(line_.delivering_);
    line_.link_ = nullptr;
  }

  bool Open(LPCWSTR port) override {
    const std::lock_guard<std::mutex> lock(line_.mutex_);
    ++line_.opens_;
    if (line_.open_) return true;
    if (line_.refuse_) return false;
    const std::u16string_view name(port);
    line_.port_.assign(name.begin(), name.end());
    line_.open_ = true;
    return true;
  }

  void Close() override {
    {
      const std::lock_guard<std::mutex> lock(line_.mutex_);
      line_.open_ = false;
    }
    const std::lock_guard<std::mutex> delivering(line_.delivering_);
    const std::lock_guard<std::mutex> lock(line_.mutex_);
    line_.received_.clear();
  }

  void TakeReceived(std::string& bytes) override {
    bytes.clear();
    const std::lock_guard<std::mutex> lock(line_.mutex_);
    bytes.swap(line_.received_);
  }

  void Write(std::string_view bytes) override {
    const std::lock_guard<std::mutex> lock(line_.mutex_);
    if (!line_.open_) return;
    line_.sent_.append(bytes);
    if (bytes != kAck) return;  // an ACK is written alone; in a frame the byte is data
    ++line_.acks_;
    line_.written_.notify_all();
  }

  void WaitForRoom(const qxcm::Event&) override {}  // the test takes all

  void Deliver() { TellOwner(); }

 private:
  MemoryLine& line_;
};

std::unique_ptr<qxcm::Link> MemoryLine::MakeLink() { return std::make_unique<MemoryLink>(*this); }

void MemoryLine::Send(std::string_view bytes) {
  const std::lock_guard<std::mutex> delivering(delivering_);
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!open_ || link_ == nullptr) return;
    received_.append(bytes);
  }
  link_->Deliver();
}

std::string MemoryLine::Take() {
  const std::lock_guard<std::mutex> lock(mutex_);
  acks_ = 0;
  return std::exchange(sent_, {});
}

std::string MemoryLine::TakeWithAcks(std::size_t acks) {
  std::unique_lock<std::mutex> lock(mutex_);
  written_.wait_for(lock, kPatience, [&] { return acks_ >= acks; });
  acks_ = 0;
  std::string taken;
  taken.swap(sent_);
  return taken;
}

std::string MemoryLine::Exchange(std::string_view text) {
  Send(CommandFrame(text));
  return TakeWithAcks(1);
}

void MemoryLine::RefuseToOpen(bool refuse) {
  const std::lock_guard<std::mutex> lock(mutex_);
  refuse_ = refuse;
}

bool MemoryLine::is_open() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return open_;
}

std::string MemoryLine::port() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return port_;
}

int MemoryLine::opens() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return opens_;
}

}  // namespace qxtest
