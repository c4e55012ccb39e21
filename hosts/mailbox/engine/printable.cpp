#include "hosts/mailbox/engine/printable.h"

namespace quillfile::mailbox {
namespace {

bool obeyed(char16_t unit) {
  const bool control = unit < 0x20 || (unit >= 0x7F && unit <= 0x9F);
  const bool direction = (unit >= 0x202A && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069) ||
                         unit == 0x200E || unit == 0x200F || unit == 0x061C;
  return control || direction || unit == 0x2028 || unit == 0x2029;
}

}  // namespace

std::string printable(TextView text) {
  Text shown{text};
  for (char16_t& unit : shown) {
    if (unit == u'\n' || unit == u'\r' || unit == u'\t') unit = u' ';
    if (obeyed(unit)) unit = 0xFFFD;
  }
  return toUtf8(shown);
}

std::string printableLines(TextView text) {
  std::string lines;
  for (const Text& line : split(replaceAll(text, u"\r\n", u"\n"), u'\n')) lines += printable(line) + '\n';
  lines.pop_back();
  return lines;
}

}  // namespace quillfile::mailbox
