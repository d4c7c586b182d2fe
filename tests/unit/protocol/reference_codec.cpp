// The literal decoder and splitter.
#include "unit/protocol/reference_codec.h"

namespace qxtest {

void ReferenceDecoder::TakeByte(char byte) {
  if (byte == 0x05) {
    frame_.clear();
    happenings_.push_back("ack");
  } else if (byte == 0x06 || byte == 0x15) {
    return;
  } else if (byte == 0x0D || byte == 0x0A) {
    if (!frame_.empty()) ValidateFrame();
    frame_.clear();
  } else if (frame_.size() >= 8232) {
    frame_.clear();
  } else if (!frame_.empty() || byte == 'C') {
    frame_.push_back(byte);
  }
}

void ReferenceDecoder::ValidateFrame() {
  if (frame_.size() < 5) return;
  if (frame_[0] != 'C' || frame_[1] != '<') return;
  const char received = frame_.back();
  frame_.pop_back();
  unsigned char sum = 0;
  for (const char byte : frame_) sum = static_cast<unsigned char>(sum + static_cast<unsigned char>(byte));
  if (received != (sum & 0x3F) + 0x20) {
    happenings_.push_back("nak");
    return;
  }
  frame_.pop_back();
  std::string text = ":";
  for (std::size_t i = 2; i < frame_.size() && frame_[i] != '\0'; ++i) text.push_back(frame_[i]);
  happenings_.push_back(text);
}

namespace {

bool IsCut(const std::string& text, std::size_t comma) {
  std::size_t backslashes = 0;
  while (backslashes < comma && text[comma - backslashes - 1] == '\\') ++backslashes;
  return backslashes % 2 == 0;
}

std::vector<std::string> Tokens(const std::string& text) {
  std::vector<std::string> tokens(1);
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == ',' && IsCut(text, i)) {
      tokens.emplace_back();
    } else {
      tokens.back().push_back(text[i]);
    }
  }
  std::vector<std::string> filled;
  for (const std::string& token : tokens) {
    if (!token.empty()) filled.push_back(token);
  }
  return filled;
}

std::string WithoutEscapes(const std::string& value) {
  std::string plain;
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] == '\\') ++i;
    if (i < value.size()) plain.push_back(value[i]);
  }
  return plain;
}

}  // namespace

ReferenceCommand ReferenceSplit(const std::string& text) {
  const std::vector<std::string> tokens = Tokens(text);
  if (tokens.empty()) return {"", std::map<std::string, std::string>()};
  std::map<std::string, std::string> fields;
  for (std::size_t i = 1; i < tokens.size(); ++i) {
    const std::string& token = tokens[i];
    const std::size_t equals = token.find('=');
    const std::string key = token.substr(0, equals);
    if (key.empty() || equals == token.size() - 1 || fields.count(key) != 0) return {tokens[0], std::nullopt};
    fields[key] = equals == std::string::npos ? "" : WithoutEscapes(token.substr(equals + 1));
  }
  return {tokens[0], fields};
}

}  // namespace qxtest
