#include "hosts/mailbox/store/item_id.h"

#include <charconv>

namespace quillfile::mailbox {

std::string printableUnique(std::string_view unique) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string printable;
  printable.reserve(unique.size());
  for (const char c : unique) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte > 0x20 && byte < 0x7F && c != '%') {
      printable += c;
    } else {
      printable += '%';
      printable += digits[byte >> 4];
      printable += digits[byte & 15];
    }
  }
  return printable;
}

std::string uniqueFromPrintable(std::string_view printable) {
  std::string unique;
  unique.reserve(printable.size());
  for (std::size_t i = 0; i < printable.size(); ++i) {
    unsigned value = 0;
    const char* const begin = printable.data() + i + 1;
    if (printable[i] == '%' && i + 2 < printable.size() &&
        std::from_chars(begin, begin + 2, value, 16).ptr == begin + 2) {
      unique += static_cast<char>(value);
      i += 2;
    } else {
      unique += printable[i];
    }
  }
  return unique;
}

}  // namespace quillfile::mailbox
