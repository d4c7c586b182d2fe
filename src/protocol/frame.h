// Frames of the link, both ways: type letter, "<", text, ">", checksum character, CR. docs/wire.md has examples;
// FrameDecoder (frame_decoder.h) reads what ComposeFrame's counterpart on the controller writes.
#ifndef QXCM_PROTOCOL_FRAME_H
#define QXCM_PROTOCOL_FRAME_H

#include <cstddef>
#include <string>
#include <string_view>

namespace qxcm {

constexpr char kEnq = 0x05;
constexpr char kAck = 0x06;
constexpr char kLf = 0x0A;
constexpr char kCr = 0x0D;
constexpr char kNak = 0x15;

constexpr char kCommandLetter = 'C';  // received
constexpr char kReplyLetter = 'R';    // sent, belongs to a command
constexpr char kMessageLetter = 'A';  // sent unasked
constexpr char kTextBegin = '<';
constexpr char kTextEnd = '>';

/// Bytes of one frame that are kept while its end is awaited.
constexpr std::size_t kFrameLimit = 8232;

/// The checksum character over a frame from its type letter to ">": the low six bits of the sum, plus 0x20.
char Checksum(std::string_view bytes);

/// Replaces `frame` with the whole frame around `text`, as an asynchronous message or as a reply.
void ComposeFrame(bool asynchronous, std::string_view text, std::string& frame);

}  // namespace qxcm

#endif
