// Decoding: what the decoders share, and the decoders one by one. Only decode.cpp calls these.
#pragma once

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "hosts/mailbox/mime/decode.h"

namespace quillfile::mime {

// Gathers decoded bytes into chunks for a sink, so that a decoder writes straight into the chunk.
class Chunks {
 public:
  // `most` is the largest number of bytes that the decoder will write, `chunk` that of one chunk.
  Chunks(const Sink& sink, std::size_t most, std::size_t chunk = std::size_t{128} << 10)
      : sink_{sink}, size_{std::min(most, chunk) + slack}, buffer_{new char[size_]} {}

  // Room for `bytes`, at most a chunk, and 32 more that vector code may scribble on. Then say what was
  // written.
  char* room(std::size_t bytes) {
    if (used_ + bytes + slack > size_) flush();
    return buffer_.get() + used_;
  }
  void written(std::size_t bytes) { used_ += bytes; }

  void put(char byte) {
    *room(1) = byte;
    written(1);
  }
  void append(std::string_view bytes) {
    while (!bytes.empty()) {
      const auto part = bytes.substr(0, std::min(bytes.size(), size_ - slack));
      std::memcpy(room(part.size()), part.data(), part.size());
      written(part.size());
      bytes.remove_prefix(part.size());
    }
  }
  void flush() {
    if (used_ > 0) sink_({buffer_.get(), used_});
    used_ = 0;
  }
  // The bytes since the last flush; the last call.
  DecodedBytes release() { return {std::move(buffer_), used_}; }

 private:
  static constexpr std::size_t slack = 32;
  const Sink& sink_;
  std::size_t size_;
  std::unique_ptr<char[]> buffer_;
  std::size_t used_ = 0;
};

Doubt decodeBase64(std::string_view encoded, Chunks& out, Progress& progress);
Doubt decodeQuotedPrintable(std::string_view encoded, Chunks& out, Progress& progress);
Doubt decodeUuencode(std::string_view encoded, Chunks& out, Progress& progress);

// Decodes groups of four base64 digits from the front of `in` for as long as nothing but digits stands there.
// Returns how many digits it took, a multiple of 4; three bytes for each four went to `out`, which has room
// for size / 4 * 3 bytes and 32 more to scribble on.
using DigitRun = std::size_t (*)(const char* in, std::size_t size, char* out);
DigitRun fastestDigitRun();  // the best one that this processor has
std::size_t plainDigitRun(const char* in, std::size_t size, char* out);

// The value of a base64 digit, 0 to 63; 64 for a byte that is none (RFC 4648 table 1).
unsigned char base64Value(char digit);
int hexValue(char digit);  // 0 to 15; -1 for a byte that is no hexadecimal digit

}  // namespace quillfile::mime
