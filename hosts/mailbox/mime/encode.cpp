#include "hosts/mailbox/mime/encode.h"

#include <algorithm>
#include <cstdint>

namespace quillfile::mime {
namespace {

constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::string_view hexDigits = "0123456789ABCDEF";

void appendGroup(std::string& out, std::string_view bytes) {
  const auto byte = [&](std::size_t i) -> std::uint32_t {
    return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0;
  };
  const auto bits = byte(0) << 16 | byte(1) << 8 | byte(2);
  for (std::size_t i = 0; i < 4; ++i) out += i <= bytes.size() ? digits[bits >> (18 - 6 * i) & 0x3F] : '=';
}

// Whether a byte of quoted-printable text stands for itself, wherever it is.
bool isPlain(char c) { return c > ' ' && c <= '~' && c != '='; }

// One line of a text, its soft line breaks put in.
class QuotedLine {
 public:
  QuotedLine(std::string& out, std::string_view lineEnd) : out_{out}, lineEnd_{lineEnd} {}

  // `goesOn`: a soft line break ends it.
  void write(std::string_view line, bool goesOn) {
    for (std::size_t i = 0; i < line.size(); ++i) {
      const bool last = i + 1 == line.size() && !goesOn;
      const bool innerBlank = (line[i] == ' ' || line[i] == '\t') && !last;
      if (isPlain(line[i]) || innerBlank) {
        add({&line[i], 1}, last);
      } else {
        const auto byte = static_cast<unsigned char>(line[i]);
        const char coded[] = {'=', hexDigits[byte >> 4], hexDigits[byte & 0xF]};
        add({coded, sizeof coded}, last);
      }
    }
    if (goesOn) out_.append("=").append(lineEnd_);
  }

 private:
  void add(std::string_view coded, bool last) {
    constexpr std::size_t longest = 76;
    if (column_ + coded.size() > (last ? longest : longest - 1)) {
      out_.append("=").append(lineEnd_);
      column_ = 0;
    }
    const auto safe = column_ == 0 && coded == "-" ? std::string_view{"=2D"} : coded;
    out_ += safe;
    column_ += safe.size();
  }

  std::string& out_;
  std::string_view lineEnd_;
  std::size_t column_ = 0;
};

}  // namespace

void Base64Encoder::write(std::string_view bytes) {
  if (!rest_.empty()) {
    const auto missing = bytes.substr(0, base64LineBytes - rest_.size());
    rest_ += missing;
    bytes.remove_prefix(missing.size());
    if (rest_.size() < base64LineBytes) return;
    encodeLine(rest_);
    rest_.clear();
  }
  for (; bytes.size() >= base64LineBytes; bytes.remove_prefix(base64LineBytes)) {
    encodeLine(bytes.substr(0, base64LineBytes));
  }
  rest_ = bytes;
}

void Base64Encoder::finish() {
  if (!rest_.empty()) encodeLine(rest_);
  rest_.clear();
  flush();
}

void Base64Encoder::encodeLine(std::string_view bytes) {
  constexpr std::size_t chunk = std::size_t{64} << 10;
  if (!firstLine_) out_ += lineEnd_;
  firstLine_ = false;
  for (; !bytes.empty(); bytes.remove_prefix(std::min<std::size_t>(3, bytes.size()))) {
    appendGroup(out_, bytes.substr(0, 3));
  }
  if (out_.size() >= chunk) flush();
}

void Base64Encoder::flush() {
  if (!out_.empty()) sink_(out_);
  out_.clear();
}

std::string toBase64(std::string_view bytes, std::string_view lineEnd) {
  std::string out;
  const Sink sink = [&](std::string_view chunk) { out += chunk; };
  Base64Encoder encoder{lineEnd, sink};
  encoder.write(bytes);
  encoder.finish();
  return out;
}

std::size_t base64Size(std::size_t bytes, std::size_t lineEndSize) {
  if (bytes == 0) return 0;
  return (bytes + 2) / 3 * 4 + (bytes - 1) / base64LineBytes * lineEndSize;
}

std::string toQuotedPrintable(std::string_view text, std::string_view lineEnd, bool goesOn) {
  std::string out;
  for (;;) {
    const auto end = text.find_first_of("\r\n");
    QuotedLine{out, lineEnd}.write(text.substr(0, end), goesOn && end == text.npos);
    if (end == text.npos) return out;
    out += lineEnd;
    text.remove_prefix(end + (text.substr(end, 2) == "\r\n" ? 2 : 1));
  }
}

}  // namespace quillfile::mime
