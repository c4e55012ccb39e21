#include "hosts/mailbox/outlook/body_part.h"

#include <algorithm>

#include "hosts/mailbox/mime/charset.h"
#include "hosts/mailbox/outlook/body_encoding.h"

namespace quillfile::mailbox {
namespace {

// A part's bytes without their transfer encoding, and the text that they are in its charset, lines as they
// come.
struct Decoded {
  std::string_view bytes;
  std::string charset;
  bool ascii = false;  // a byte is a unit, and there is no need for `text`
  Text text;
  mime::Doubt doubt;
  std::string own;  // the bytes, where they do not stand in the message as they are

  // Calls `use` with the text, in units of one size or the other.
  template <class Use>
  auto withText(Use&& use) const {
    return ascii ? use(bytes) : use(TextView{text});
  }
};

Decoded decodedPart(const mime::PartTree& tree, mime::PartIndex part) {
  Decoded result;
  if (tree[part].encoding == mime::Encoding::identity) {
    result.bytes = tree.body(part);
  } else {
    result.own = mime::decoded(tree[part].encoding, tree.body(part), &result.doubt);
    result.bytes = result.own;
  }
  result.charset = tree.type(part).parameters.bytes("charset").value_or("");
  result.ascii = mime::isAsciiIn(result.bytes, result.charset);
  if (result.ascii) return result;
  mime::Doubt doubt;
  result.text = mime::fromCharset(result.bytes, result.charset, &doubt);
  if (result.doubt.empty()) result.doubt = doubt;
  return result;
}

// Calls `line` with each line of a text as it came, without its line end, and whether it has one.
template <class View, class Line>
void forLines(View text, Line&& line) {
  while (!text.empty()) {
    const auto end = text.find('\n');
    if (end == View::npos) return line(text, false);
    line(text.substr(0, end > 0 && text[end - 1] == '\r' ? end - 1 : end), true);
    text.remove_prefix(end + 1);
  }
}

template <class View>
Text withPairedLineEnds(View text) {
  std::size_t size = 0;
  forLines(text, [&](View line, bool ends) { size += line.size() + (ends ? 2 : 0); });
  Text result;
  result.reserve(size);
  forLines(text, [&](View line, bool ends) {
    result.append(line.begin(), line.end());
    if (ends) result += u"\r\n";
  });
  return result;
}

// The same within the text itself, from its end on.
Text withPairedLineEnds(Text text) {
  std::size_t size = 0;
  forLines(TextView{text}, [&](TextView line, bool ends) { size += line.size() + (ends ? 2 : 0); });
  auto from = text.size(), to = size;
  text.resize(size);
  while (from < to) {
    const char16_t unit = text[--to] = text[--from];
    if (unit == u'\n' && (from == 0 || text[from - 1] != u'\r')) text[--to] = u'\r';
  }
  return text;
}

// Whether a text that comes piece by piece, lines as they come, is `paired` with its line ends paired.
class PairedComparison {
 public:
  explicit PairedComparison(TextView paired) : paired_(paired) {}

  template <class View>
  void expect(View piece) {
    while (same_ && !piece.empty()) {
      const auto line = piece.substr(0, piece.find('\n'));
      take(line);
      if (!line.empty()) afterReturn_ = line.back() == '\r';
      piece.remove_prefix(line.size());
      if (piece.empty()) return;
      if (!afterReturn_) take(TextView{u"\r"});
      take(TextView{u"\n"});
      afterReturn_ = false;
      piece.remove_prefix(1);
    }
  }
  bool complete() const { return same_ && paired_.empty(); }

 private:
  template <class View>
  void take(View text) {
    same_ = same_ && text.size() <= paired_.size() && std::equal(text.begin(), text.end(), paired_.begin());
    if (same_) paired_.remove_prefix(text.size());
  }
  TextView paired_;
  bool same_ = true, afterReturn_ = false;
};

// From places in a text whose line ends are paired to places in the text as it came. Asked in ascending
// order.
template <class View>
class AsItCame {
 public:
  explicit AsItCame(View text) : text_(text) { lineEnd_ = text.find('\n'); }
  std::size_t at(std::size_t paired) {
    while (lineEnd_ != View::npos) {
      const bool bare = lineEnd_ == 0 || text_[lineEnd_ - 1] != '\r';
      const std::size_t next = paired_ + (lineEnd_ - raw_) + (bare ? 2 : 1);
      if (next > paired) break;
      paired_ = next;
      raw_ = lineEnd_ + 1;
      lineEnd_ = text_.find('\n', raw_);
    }
    return raw_ + (paired - paired_);
  }

 private:
  View text_;
  std::size_t raw_ = 0, paired_ = 0;  // where the line that was reached begins
  std::size_t lineEnd_;               // and where it ends
};

// From places in a text to places in the bytes that it was read from. Asked in ascending order.
class ByteOffsets {
 public:
  explicit ByteOffsets(const Decoded& from) : from_(from) {
    const auto name = mime::lowerCase(from.charset);
    oneEach_ = from.ascii || from.bytes.size() == from.text.size();
    if (oneEach_) return;
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
  ByteOffsets offsets{decoded};
  const auto charset = writingCharset(decoded);
  const auto hunksIn = [&](auto text) -> std::optional<std::vector<ByteHunk>> {
    AsItCame places{text};
    std::vector<ByteHunk> result;
    for (const auto& hunk : change.hunks()) {
      const auto begin = offsets.at(places.at(hunk.begin));
      const auto end = begin ? offsets.at(places.at(hunk.end)) : begin;
      const auto wanted = lineEnd == "\n" ? replaceAll(hunk.replacement, u"\r\n", u"\n") : hunk.replacement;
      auto bytes = mime::toCharset(wanted, charset);
      if (!end || !bytes) return std::nullopt;
      result.push_back({*begin, *end, std::move(*bytes)});
    }
    return result;
  };
  return decoded.withText(hunksIn);
}

// The proof: whether what the changed bytes say is what was wanted.
bool say(const Decoded& decoded, const std::vector<ByteHunk>& hunks, TextView wanted) {
  const auto pieces = appliedPieces(decoded.bytes, hunks);
  const bool ascii = std::all_of(pieces.begin(), pieces.end(), [&](std::string_view piece) {
    return mime::isAsciiIn(piece, decoded.charset);
  });
  PairedComparison comparison{wanted};
  if (ascii) {
    for (const auto piece : pieces) comparison.expect(piece);
  } else {
    comparison.expect(TextView{mime::fromCharset(applied(decoded.bytes, hunks), decoded.charset)});
  }
  return comparison.complete();
}

}  // namespace

BodyText bodyText(const mime::PartTree& tree, mime::PartIndex part) {
  auto decoded = decodedPart(tree, part);
  return {decoded.ascii ? withPairedLineEnds(decoded.bytes) : withPairedLineEnds(std::move(decoded.text)),
          decoded.doubt};
}

std::optional<std::vector<Splice>> bodySplices(const mime::PartTree& tree, mime::PartIndex part,
                                               const TextChange& change) {
  if (tree.body(part).empty()) return std::nullopt;
  auto decoded = decodedPart(tree, part);
  const bool canonical = tree[part].encoding == mime::Encoding::base64;
  const auto inBytes =
      byteHunks(decoded, change, lineEndOf(decoded.bytes, canonical ? "\r\n" : tree.lineEnd()));
  decoded.text = {};  // it may be large, and what follows is about bytes
  if (!inBytes || !say(decoded, *inBytes, change.current())) return std::nullopt;
  auto hunks = encodedHunks(tree[part].encoding, tree.body(part), decoded.bytes, *inBytes, tree.lineEnd());
  if (!hunks) return std::nullopt;
  std::vector<Splice> splices;
  const auto start = tree[part].body.begin;
  for (auto& hunk : *hunks)
    splices.push_back({{start + hunk.begin, start + hunk.end}, {mime::Piece{std::move(hunk.bytes)}}});
  return splices;
}

}  // namespace quillfile::mailbox
