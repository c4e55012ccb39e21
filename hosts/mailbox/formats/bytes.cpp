#include "hosts/mailbox/formats/bytes.h"

#include "hosts/mailbox/formats/failures.h"
#include "hosts/mailbox/mime/decode.h"

namespace quillfile::formats {

ByteSource viewSource(std::string_view bytes, const Forget& forget) {
  return [bytes, behind = mime::behindOf(bytes, forget)](const ByteSink& sink) {
    mime::decode(mime::Encoding::identity, bytes, sink, behind);
  };
}

std::string gathered(const ByteSource& source) {
  std::string result;
  if (source) source([&](std::string_view bytes) { result += bytes; });
  return result;
}

void giveExactly(const ByteSource& source, std::uint64_t promised, const ByteSink& sink) {
  std::uint64_t left = promised;
  if (source) {
    source([&](std::string_view bytes) {
      if (bytes.size() > left) throw failures::sizeChanged();
      left -= bytes.size();
      sink(bytes);
    });
  }
  if (left > 0) throw failures::sizeChanged();
}

void BufferedSink::write(std::string_view bytes) {
  constexpr std::size_t kLarge = 64 * 1024;
  if (pending_.size() + bytes.size() > kLarge) flush();
  if (bytes.size() >= kLarge) {
    next_(bytes);
  } else {
    pending_ += bytes;
  }
}

void BufferedSink::flush() {
  if (!pending_.empty()) next_(pending_);
  pending_.clear();
}

}  // namespace quillfile::formats
