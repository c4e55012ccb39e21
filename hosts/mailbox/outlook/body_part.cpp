#include "hosts/mailbox/outlook/body_part.h"

#include "hosts/mailbox/mime/charset.h"
#include "hosts/mailbox/outlook/body_encoding.h"

namespace quillfile::mailbox {
namespace {

// A part's bytes without their transfer encoding, and the text that they are in its charset, lines as they
// come.
struct Decoded {
  std::string bytes;
  std::string charset;
  Text text;
  mime::Doubt doubt;
};

Decoded decodedPart(const mime::PartTree& tree, mime::PartIndex part) {
  Decoded result;
  result.bytes = mime::decoded(tree[part].encoding, tree.body(part), &result.doubt);
  result.charset = tree.type(part).parameters.bytes("charset").value_or("");
  mime::Doubt doubt;
  result.text = mime::fromCharset(result.bytes, result.charset, &doubt);
  if (result.doubt.empty()) result.doubt = doubt;
  return result;
}

Text withPairedLineEnds(TextView text) {
  Text result;
  result.reserve(text.size() + text.size() / 32);
  for (std::size_t at = 0; at < text.size();) {
    const auto end = text.find(u'\n', at);
    if (end == TextView::npos) return result += text.substr(at);
    result += text.substr(at, end - at);
    if (end == 0 || text[end - 1] != u'\r') result += u'\r';
    result += u'\n';
    at = end + 1;
  }
  return result;
}

// From places in a text whose line ends are paired to places in the text as it came. Asked in ascending
// order.
class AsItCame {
 public:
  explicit AsItCame(TextView text) : text_(text) { lineEnd_ = text.find(u'\n'); }
  std::size_t at(std::size_t paired) {
    while (lineEnd_ != TextView::npos) {
      const bool bare = lineEnd_ == 0 || text_[lineEnd_ - 1] != u'\r';
      const std::size_t next = paired_ + (lineEnd_ - raw_) + (bare ? 2 : 1);
      if (next > paired) break;
      paired_ = next;
      raw_ = lineEnd_ + 1;
      lineEnd_ = text_.find(u'\n', raw_);
    }
    return raw_ + (paired - paired_);
  }

 private:
  TextView text_;
  std::size_t raw_ = 0, paired_ = 0;  // where the line that was reached begins
  std::size_t lineEnd_;               // and where it ends
};

// From places in a text to places in the bytes that it was read from. Asked in ascending order.
class ByteOffsets {
 public:
  explicit ByteOffsets(const Decoded& from) : from_(from) {
    const auto name = mime::lowerCase(from.charset);
    oneEach_ = from.bytes.size() == from.text.size();
    utf8_ = name == "utf-8" || name == "utf8" || (mime::isUtf8(from.bytes) && !name.starts_with("utf-16"));
  }
  // None when the charset has states or forms that cannot be found again.
  std::optional<std::size_t> at(std::size_t unit) {
    if (oneEach_) return unit;
    if (!utf8_) return byEncoding(unit);
    while (unit_ < unit && byte_ < from_.bytes.size()) stepUtf8();
    return byte_;
  }

 private:
  std::optional<std::size_t> byEncoding(std::size_t unit) {
    const auto more = mime::toCharset(TextView{from_.text}.substr(unit_, unit - unit_), from_.charset);
    if (!more || from_.bytes.compare(byte_, more->size(), *more) != 0) return std::nullopt;
    byte_ += more->size();
    unit_ = unit;
    return byte_;
  }
  void stepUtf8() {
    const auto lead = static_cast<unsigned char>(from_.bytes[byte_]);
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 1;
    // A byte that is no UTF-8 was read as one U+FFFD.
    const bool valid = from_.text[unit_] != u'\uFFFD' || from_.bytes.compare(byte_, 3, "\xEF\xBF\xBD") == 0;
    byte_ += valid ? length : 1;
    unit_ += valid && length == 4 ? 2 : 1;
  }
  const Decoded& from_;
  bool oneEach_ = false, utf8_ = false;
  std::size_t unit_ = 0, byte_ = 0;
};

// The charset that new text is written in, beside what is there.
std::string writingCharset(const Decoded& decoded) {
  const bool unsaid = mime::lowerCase(decoded.charset) == "us-ascii" || decoded.charset.empty();
  return unsaid && !mime::isAscii(decoded.bytes) && mime::isUtf8(decoded.bytes) ? "utf-8" : decoded.charset;
}

std::string_view lineEndOf(std::string_view bytes, std::string_view otherwise) {
  const auto end = bytes.find('\n');
  if (end == std::string_view::npos) return otherwise;
  return end > 0 && bytes[end - 1] == '\r' ? "\r\n" : "\n";
}

// The hunks of the text as hunks of the decoded bytes.
std::optional<std::vector<ByteHunk>> byteHunks(const Decoded& decoded, const TextChange& change,
                                               std::string_view lineEnd) {
  AsItCame places{decoded.text};
  ByteOffsets offsets{decoded};
  std::vector<ByteHunk> result;
  for (const auto& hunk : change.hunks()) {
    const auto begin = offsets.at(places.at(hunk.begin));
    const auto end = begin ? offsets.at(places.at(hunk.end)) : begin;
    const auto wanted = lineEnd == "\n" ? replaceAll(hunk.replacement, u"\r\n", u"\n") : hunk.replacement;
    auto bytes = mime::toCharset(wanted, writingCharset(decoded));
    if (!end || !bytes) return std::nullopt;
    result.push_back({*begin, *end, std::move(*bytes)});
  }
  const auto read = mime::fromCharset(applied(decoded.bytes, result), decoded.charset);
  return withPairedLineEnds(read) == change.current() ? std::optional{result} : std::nullopt;
}

}  // namespace

BodyText bodyText(const mime::PartTree& tree, mime::PartIndex part) {
  const auto decoded = decodedPart(tree, part);
  return {withPairedLineEnds(decoded.text), decoded.doubt};
}

std::optional<std::vector<Splice>> bodySplices(const mime::PartTree& tree, mime::PartIndex part,
                                               const TextChange& change) {
  if (tree.body(part).empty()) return std::nullopt;
  const auto decoded = decodedPart(tree, part);
  const bool canonical = tree[part].encoding == mime::Encoding::base64;
  const auto inBytes =
      byteHunks(decoded, change, lineEndOf(decoded.bytes, canonical ? "\r\n" : tree.lineEnd()));
  if (!inBytes) return std::nullopt;
  auto hunks = encodedHunks(tree[part].encoding, tree.body(part), *inBytes, tree.lineEnd());
  if (!hunks) return std::nullopt;
  std::vector<Splice> splices;
  const auto start = tree[part].body.begin;
  for (auto& hunk : *hunks)
    splices.push_back({{start + hunk.begin, start + hunk.end}, {mime::Piece{std::move(hunk.bytes)}}});
  return splices;
}

}  // namespace quillfile::mailbox
