// Header: the fields of one header block (RFC 5322 2.2), read where they stand. Nothing is copied until a
// value is unfolded. A line that is no field is passed over.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/text/text.h"

namespace quillfile::mime {

// Views into the block.
struct Field {
  std::string_view name;   // as written: "Content-Type"
  std::string_view value;  // after the colon, still folded, with the last line end cut off
  std::string_view whole;  // name to last line end, all of it
};

// The field at the front of `block`, which is shortened by it; none at the end of the block.
std::optional<Field> takeField(std::string_view& block);

class Header {
 public:
  explicit Header(std::string_view block) : block_{block} {}

  std::string_view block() const { return block_; }
  // The first field of that name; ASCII case is ignored.
  std::optional<Field> field(std::string_view name) const;
  std::vector<Field> fields(std::string_view name) const;  // all of that name, topmost first
  // The value of the first field of that name, unfolded and without blanks at its ends; empty when there is
  // none.
  std::string value(std::string_view name) const;
  // The same for a person to read: encoded words decoded, raw 8-bit bytes made out.
  Text text(std::string_view name) const;

 private:
  std::string_view block_;
};

// Whether two ASCII words are equal when case is ignored, whatever the locale.
bool equalWords(std::string_view a, std::string_view b);
std::string lowerCase(std::string_view ascii);
// Without blanks, tabs and line ends at either end.
std::string_view trimmed(std::string_view bytes);

// A value without its line ends (RFC 5322 2.2.3: only the line ends go, the blanks after them stay) and
// without blanks at its ends.   unfolded("a\r\n b") == "a b"
std::string unfolded(std::string_view value);

}  // namespace quillfile::mime
