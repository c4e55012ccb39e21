#include "hosts/mailbox/engine/printable.h"

namespace quillfile::mailbox {
namespace {

bool obeyed(char16_t unit) {
  const bool control = unit < 0x20 || (unit >= 0x7F && unit <= 0x9F);
  const bool direction = (unit >= 0x202A && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069) ||
                         unit == 0x200E || unit == 0x200F || unit == 0x061C;
  return control || direction || unit == 0x2028 || unit == 0x2029;
}

char16_t harmless(char16_t unit) {
  if (unit == u'\n' || unit == u'\r' || unit == u'\t') return u' ';
  return obeyed(unit) ? u'\xFFFD' : unit;
}

}  // namespace

std::string printable(TextView text) {
  Text shown{text};
  for (char16_t& unit : shown) unit = harmless(unit);
  return toUtf8(shown);
}

std::string printableLines(TextView text) {
  Text shown;
  shown.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text.substr(i, 2) == u"\r\n") continue;
    shown += text[i] == u'\n' ? u'\n' : harmless(text[i]);
  }
  return toUtf8(shown);
}

}  // namespace quillfile::mailbox
