// Names. Whatever a header says: one clean component that stays below its folder.
#include <cstdint>
#include <string>

#include "hosts/mailbox/mime/address.h"
#include "hosts/mailbox/mime/clean_name.h"
#include "hosts/mailbox/mime/content_type.h"
#include "hosts/mailbox/mime/date.h"
#include "hosts/mailbox/mime/header_value.h"
#include "tests/fuzz/require.h"

using namespace quillfile;
using namespace quillfile::mime;

namespace {

void requireClean(const Text& name) {
  const auto bytes = toUtf8(name);
  require(bytes.size() <= longestName - numberRoom && fromUtf8(bytes) == name);
  require(name != u"." && name != u"..");
  for (const char16_t c : name)
    require(c != u'/' && c != u'\\' && c >= 0x20 && !(c >= 0x202A && c <= 0x202E));
  require(name.empty() || (name.back() != u' ' && name.back() != u'.' && name.front() != u' '));
  require(cleanName(name) == name);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes{reinterpret_cast<const char*>(data), size};
  const auto name = givenName(Header{bytes});
  requireClean(cleanName(name));
  requireClean(cleanName(fromUtf8(bytes)));
  Text raw;
  for (std::size_t i = 0; i + 1 < size; i += 2) raw += static_cast<char16_t>(data[i] << 8 | data[i + 1]);
  requireClean(cleanName(raw));

  const auto clean = cleanName(name);
  const auto field = "Content-Disposition: attachment" + encodedParameter("filename", clean, "\n") + "\n";
  require(clean.find(u"=?") != Text::npos || givenName(Header{field}) == clean);
  parseAddresses(unfolded(bytes));
  parseDate(bytes);
  return 0;
}
