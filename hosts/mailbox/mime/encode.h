// Transfer encodings done: base64 and quoted-printable.
#pragma once

#include <string>
#include <string_view>

#include "hosts/mailbox/mime/range.h"

namespace quillfile::mime {

inline constexpr std::size_t base64LineBytes = 57;  // bytes on a full line of 76 digits

// Base64 in lines of 76 columns while the bytes come. Every line but the last ends in `lineEnd`.
class Base64Encoder {
 public:
  // Both must outlive the encoder.
  Base64Encoder(std::string_view lineEnd, const Sink& sink) : lineEnd_{lineEnd}, sink_{sink} {}
  void write(std::string_view bytes);
  void finish();  // once, at the end

 private:
  void encodeLine(std::string_view bytes);
  void flush();
  std::string_view lineEnd_;
  const Sink& sink_;
  std::string rest_;  // less than a line's bytes
  std::string out_;
  bool firstLine_ = true;
};

std::string toBase64(std::string_view bytes, std::string_view lineEnd);

// How many bytes toBase64 makes of that many.
std::size_t base64Size(std::size_t bytes, std::size_t lineEndSize);

// Text bytes as quoted-printable (RFC 2045 6.7): "\r\n", "\n" and "\r" become `lineEnd`. A hyphen at the
// beginning of a line is encoded, so that no line can be a boundary line. `goesOn`: more text follows in the
// last line, which therefore ends in a soft line break.
std::string toQuotedPrintable(std::string_view text, std::string_view lineEnd, bool goesOn = false);

}  // namespace quillfile::mime
