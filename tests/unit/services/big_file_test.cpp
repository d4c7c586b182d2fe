// A file of five million bytes through the wire: written and read as lines and as bytes, and sought in.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>

#include "unit/services/controller_service.h"

namespace qxtest {
namespace {

constexpr std::size_t kSize = 5 * 1024 * 1024;
constexpr std::size_t kBlock = 504;
constexpr std::size_t kAtOnce = 1000;  // commands on their way at a time

std::string Hex(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string hex;
  for (const char c : bytes) {
    hex.push_back(kDigits[static_cast<unsigned char>(c) >> 4]);
    hex.push_back(kDigits[static_cast<unsigned char>(c) & 15]);
  }
  return hex;
}

/// The same at every run.
std::string RandomBytes(std::size_t count, int lowest, int highest) {
  std::mt19937 random(20240131);
  std::uniform_int_distribution<int> byte(lowest, highest);
  std::string bytes(count, '\0');
  std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(byte(random)); });
  return bytes;
}

class BigFile : public testing::Test {
 protected:
  void Open(std::string_view bytes = {}) {
    service_.MakeFile("/big", bytes);
    service_.Open("/big");
  }

  /// Sends commands and compares all that comes with what is expected, byte by byte.
  class Conversation {
   public:
    explicit Conversation(ControllerService& service) : service_(service) {}
    ~Conversation() { Finish(); }
    void Exchange(const std::string& command_frame, const std::string& reply_frame) {
      sent_ += command_frame;
      expected_ += reply_frame;
      expected_ += kAck;
      if (++count_ == kAtOnce) Finish();
    }
    void Finish() {
      service_.line.Send(sent_);
      const bool same = service_.line.TakeWithAcks(count_) == expected_;
      EXPECT_TRUE(same);
      sent_.clear();
      expected_.clear();
      count_ = 0;
    }

   private:
    ControllerService& service_;
    std::string sent_;
    std::string expected_;
    std::size_t count_ = 0;
  };

  ControllerService service_;
};

TEST_F(BigFile, IsWrittenAndReadInBlocks) {
  const std::string bytes = RandomBytes(kSize, 0, 255);
  Open();
  {
    Conversation talk(service_);
    for (std::size_t at = 0; at < bytes.size(); at += kBlock) {
      talk.Exchange(CommandFrame("WR_FIL,HAN=1,MOD=BIN,VAL=" + Hex(bytes.substr(at, kBlock))),
                    ReplyFrame("FIL,STS=SCS"));
    }
  }
  EXPECT_TRUE(service_.BytesOf("/big") == bytes);
  service_.Answer("SK_FIL,HAN=1,POS=0");
  {
    Conversation talk(service_);
    const std::string read = CommandFrame("RD_FIL,HAN=1,MOD=BIN,RBT=504");
    for (std::size_t at = 0; at < bytes.size(); at += kBlock) {
      talk.Exchange(read, ReplyFrame("FIL,STS=SCS,VAL=" + Hex(bytes.substr(at, kBlock))));
    }
    talk.Exchange(read, ReplyFrame("FIL,STS=EOF"));
  }
}

// At its beginning, in its middle and at its end; all of it with QX_LONG_TESTS set, which takes a minute.
TEST_F(BigFile, IsReadByteByByte) {
  constexpr std::size_t kPiece = 50000;
  const std::string bytes = RandomBytes(kSize, 0, 255);
  Open(bytes);
  host::EnableCallLog(false);
  std::array<std::string, 256> replies;
  for (int byte = 0; byte < 256; ++byte) {
    const std::string text(1, static_cast<char>(byte));
    replies[static_cast<std::size_t>(byte)] = ReplyFrame("FIL,STS=SCS,VAL=" + Hex(text));
  }
  const std::string read = CommandFrame("RD_FIL,HAN=1,MOD=BIN,RBT=1");
  const bool all = std::getenv("QX_LONG_TESTS") != nullptr;
  Conversation talk(service_);
  for (const std::size_t begin : {std::size_t{0}, kSize / 2, kSize - kPiece}) {
    const std::size_t end = all ? kSize : begin + kPiece;
    talk.Exchange(CommandFrame("SK_FIL,HAN=1,POS=" + std::to_string(all ? 0 : begin)), ReplyFrame("FIL,STS=SCS"));
    for (std::size_t at = all ? 0 : begin; at < end; ++at) {
      talk.Exchange(read, replies[static_cast<unsigned char>(bytes[at])]);
    }
    if (all) break;
  }
  talk.Exchange(read, ReplyFrame("FIL,STS=EOF"));
}

TEST_F(BigFile, IsWrittenAndReadInLines) {
  std::mt19937 random(7);
  std::uniform_int_distribution<std::size_t> length(0, 1000);
  const std::string text = RandomBytes(kSize, '0', 'z');
  Texts lines;
  for (std::size_t at = 0; at < text.size(); at += lines.back().size() + 1)
    lines.push_back(text.substr(at, length(random)));
  Open();
  const auto escaped = [](const std::string& line) {
    std::string out;
    for (const char c : line) out += c == '\\' ? "\\\\" : std::string(1, c);
    return out;
  };
  std::string all;
  {
    Conversation talk(service_);
    for (const std::string& line : lines) {
      const std::string value = line.empty() ? "VAL" : "VAL=" + escaped(line);
      talk.Exchange(CommandFrame("WR_FIL,HAN=1," + value), ReplyFrame("FIL,STS=SCS"));
      all += line + "\r\n";
    }
  }
  EXPECT_TRUE(service_.BytesOf("/big") == all);
  service_.Answer("SK_FIL,HAN=1,POS=0");
  Conversation talk(service_);
  const std::string read = CommandFrame("RD_FIL,HAN=1");
  for (const std::string& line : lines) {
    const std::string value = escaped(line);
    talk.Exchange(read, ReplyFrame(value.size() > 1008 ? "FIL,STS=ER_FAL" : "FIL,STS=SCS,VAL=" + value));
  }
  talk.Exchange(read, ReplyFrame("FIL,STS=EOF"));
}

TEST_F(BigFile, IsSoughtIn) {
  const std::string bytes = RandomBytes(kSize, 0, 255);
  Open(bytes);
  std::mt19937 random(3);
  std::uniform_int_distribution<std::size_t> position(0, kSize - 1);
  const std::string read = CommandFrame("RD_FIL,HAN=1,MOD=BIN,RBT=1");
  const std::string done = ReplyFrame("FIL,STS=SCS");
  Conversation talk(service_);
  std::size_t here = 0;
  for (int i = 0; i < 10000; ++i) {
    const std::size_t there = position(random);
    const auto way = static_cast<long>(there) - static_cast<long>(here);
    const bool relative = i % 2 == 1;
    talk.Exchange(CommandFrame("SK_FIL,HAN=1,POS=" +
                               (relative ? (way < 0 ? "" : "+") + std::to_string(way) : std::to_string(there))),
                  done);
    talk.Exchange(read, ReplyFrame("FIL,STS=SCS,VAL=" + Hex(bytes.substr(there, 1))));
    here = there + 1;
  }
}

}  // namespace
}  // namespace qxtest
