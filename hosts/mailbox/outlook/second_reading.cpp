#include "hosts/mailbox/outlook/second_reading.h"

#include <algorithm>

#include "hosts/mailbox/mime/decode.h"
#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {
namespace {

constexpr std::size_t step = std::size_t{256} << 10;

bool isDigit64(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' || c == '/' ||
         c == '=';
}

// The beginning of `rest` that can be decoded by itself: whole groups of base64, whole lines of
// quoted-printable.
std::string_view stretch(mime::Encoding encoding, std::string_view rest) {
  if (rest.size() <= step) return rest;
  if (encoding == mime::Encoding::quoted_printable) {
    const auto end = rest.find('\n', step);
    return rest.substr(0, end == std::string_view::npos ? end : end + 1);
  }
  auto digits = std::count_if(rest.begin(), rest.begin() + step, isDigit64);
  std::size_t end = step;
  for (; digits % 4 != 0 && end < rest.size(); ++end) digits += isDigit64(rest[end]) ? 1 : 0;
  return rest.substr(0, end);
}

}  // namespace

Content secondReading(std::shared_ptr<const Message> message, mime::PartIndex part) {
  return [message = std::move(message), part](const Sink& sink) {
    const auto& at = message->tree()[part];
    const auto behind = message->behind(at.body);
    auto rest = message->tree().body(part);
    if (at.encoding != mime::Encoding::base64 && at.encoding != mime::Encoding::quoted_printable) {
      mime::decode(at.encoding, rest, sink, behind);
      return;
    }
    for (std::size_t told = 0; !rest.empty();) {
      const auto next = stretch(at.encoding, rest);
      const auto bytes = mime::decodePlain(at.encoding, next);
      if (!bytes)
        throw failure("Could not read the attachment a second time: its encoding is not as it should be");
      sink(*bytes);
      rest.remove_prefix(next.size());
      const auto done = at.body.size() - rest.size();
      if (behind && done - told >= mime::behindStep) behind(told = done);
    }
  };
}

}  // namespace quillfile::mailbox
