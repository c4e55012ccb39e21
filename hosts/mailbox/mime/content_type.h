// ContentType and Disposition: a word with parameters (RFC 2045 5.1, RFC 2183), and the names that hide in
// them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/text/text.h"
#include "hosts/mailbox/mime/header.h"

namespace quillfile::mime {

// A parameter as it stands in the field, quotes and escapes undone, nothing decoded.
struct Parameter {
  std::string name;  // lower case: "filename", "filename*0*"
  std::string value;
};

class Parameters {
 public:
  Parameters() = default;
  // Reads `;name=value` over and over; at most 1,000 of them, the rest is passed over.
  explicit Parameters(std::string_view list);

  const std::vector<Parameter>& all() const { return all_; }
  // The bytes of the first parameter of that very name; none when it is missing.
  std::optional<std::string> bytes(std::string_view name) const;
  // The decoded text: RFC 2231 (charset, percent, continuations), encoded words (wrong here, and common),
  // raw 8-bit bytes. None when it is missing in every form.
  std::optional<Text> text(std::string_view name) const;

 private:
  std::optional<Text> extended(std::string_view name) const;
  std::vector<Parameter> all_;
};

struct ContentType {
  std::string type = "text";      // lower case
  std::string subtype = "plain";  // lower case
  Parameters parameters;

  // is("text/html"), is("multipart/*"); `pattern` in lower case
  bool is(std::string_view pattern) const;
};

struct Disposition {
  std::string word;  // lower case: "attachment", "inline"; empty when there is no such field
  Parameters parameters;
};

// Content-Type of a part; text/plain where it is missing or cannot be read (RFC 2045 5.2). Its parameters
// count even then: a part that says "application-x-gzip; name=a.gz" is a file to whoever gets it.
ContentType contentType(const Header& header);
// The same from the field's value. None when it does not begin with type "/" subtype.
std::optional<ContentType> parseContentType(std::string_view value);
Disposition disposition(const Header& header);

// The name that the sender gave a part, decoded and otherwise as it came (see cleanName): `filename` of the
// disposition, else `name` of the type; empty when there is none.
Text givenName(const Header& header);

}  // namespace quillfile::mime
