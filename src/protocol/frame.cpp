// Checksum and composition of frames.
#include "protocol/frame.h"

namespace qxcm {

char Checksum(std::string_view bytes) {
  unsigned sum = 0;
  for (const char byte : bytes) sum += static_cast<unsigned char>(byte);
  return static_cast<char>((sum & 0x3F) + 0x20);
}

void ComposeFrame(bool asynchronous, std::string_view text, std::string& frame) {
  frame.clear();
  frame.push_back(asynchronous ? kMessageLetter : kReplyLetter);
  frame.push_back(kTextBegin);
  frame.append(text);
  frame.push_back(kTextEnd);
  frame.push_back(Checksum(frame));
  frame.push_back(kCr);
}

}  // namespace qxcm
