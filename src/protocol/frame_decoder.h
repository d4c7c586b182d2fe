// Cuts a stream of received bytes into command texts: a pure decoder, without thread, port or lock.
#ifndef QXCM_PROTOCOL_FRAME_DECODER_H
#define QXCM_PROTOCOL_FRAME_DECODER_H

#include <string>
#include <string_view>

namespace qxcm {

/// What the decoder found in the stream.
enum class FrameEvent {
  kNone,         ///< all bytes are consumed
  kEnquiry,      ///< an ENQ: the partial frame is discarded; the controller awaits an ACK
  kBadChecksum,  ///< a frame whose checksum is wrong; the controller awaits a NAK
  kCommand,      ///< a good frame: text() is its command
};

/// Not thread safe; its FrameAssembler guards it. Keeps at most kFrameLimit bytes.
class FrameDecoder {
 public:
  /// Consumes bytes from the front of `bytes` up to and including the next event. Noise between frames, frames that
  /// are too short, too long or do not begin with "C<" pass without an event.
  FrameEvent Next(std::string_view& bytes);

  /// The command of the last kCommand, up to its first NUL; good until the next call of Next or Discard.
  std::string_view text() const { return text_; }

  /// Forgets the partial frame.
  void Discard();

 private:
  void Append(std::string_view run);
  FrameEvent Validate();

  std::string frame_;  // everything since the "C"
  bool done_ = false;  // frame_ holds a finished frame that text_ points into
  std::string_view text_;
};

}  // namespace qxcm

#endif
