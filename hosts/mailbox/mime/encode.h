// Transfer encodings done: base64 and quoted-printable, and words and parameters of a header.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "core/text/text.h"
#include "hosts/mailbox/mime/range.h"

namespace quillfile::mime {

// Base64 in lines of 76 columns as the bytes come; every line but the last ends in `lineEnd`.
class Base64Encoder {
 public:
  Base64Encoder(std::string_view lineEnd, Sink sink) : lineEnd_{lineEnd}, sink_{std::move(sink)} {}
  void write(std::string_view bytes);
  void finish();

 private:
  void encodeLine(std::string_view bytes);
  std::string lineEnd_;
  Sink sink_;
  std::string rest_;  // less than a line's bytes
  std::string out_;
  bool first_ = true;
};

std::string toBase64(std::string_view bytes, std::string_view lineEnd);
// `text` has line ends of any kind; they become `lineEnd` (RFC 2045 6.7).
std::string toQuotedPrintable(std::string_view text, std::string_view lineEnd);

// A header value: as it stands when it is short ASCII, else encoded words in UTF-8, folded (RFC 2047).
std::string encodedText(TextView text, std::string_view lineEnd);
// "; name=value" for a header, folded before the name: a quoted string when it is ASCII, else RFC 2231 in
// UTF-8, with continuations when it is long.
std::string encodedParameter(std::string_view name, TextView value, std::string_view lineEnd);

}  // namespace quillfile::mime
