#include "hosts/mailbox/services/letters.h"

#include <wctype.h>

#include "core/platform/failure.h"

namespace quillfile::mailbox {
namespace {

constexpr std::size_t units = 0x10000;

bool isPair(TextView text, std::size_t i) {
  return text[i] >= 0xD800 && text[i] <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
         text[i + 1] <= 0xDFFF;
}

// Most text is ASCII: a block at a time, without a branch, which compilers make a few instructions of. False,
// and nothing is changed, when it is not ASCII.
constexpr std::size_t asciiBlock = 64;
bool lowerAscii(char16_t* block) {
  char16_t all = 0;
  for (std::size_t i = 0; i < asciiBlock; ++i) all |= block[i];
  if (all >= 0x80) return false;
  for (std::size_t i = 0; i < asciiBlock; ++i) {
    const bool capital = static_cast<char16_t>(block[i] - u'A') < 26;
    block[i] = static_cast<char16_t>(block[i] | (capital ? 0x20 : 0));
  }
  return true;
}

}  // namespace

UnicodeLetters::UnicodeLetters() : tables_(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {
  if (!tables_) throw Failure{2, u"The system has no C.UTF-8 locale; install the package libc-bin"};
}

UnicodeLetters::~UnicodeLetters() { freelocale(tables_); }

char16_t UnicodeLetters::lowerUnit(char16_t unit) {
  if (!lowered_) {
    lowered_ = std::make_unique<char16_t[]>(units);
    for (std::size_t i = 0; i < units; ++i) {
      const bool surrogate = i >= 0xD800 && i <= 0xDFFF;
      const auto lower = surrogate ? static_cast<wint_t>(i) : towlower_l(static_cast<wint_t>(i), tables_);
      lowered_[i] = static_cast<char16_t>(lower < units ? lower : i);
    }
  }
  return lowered_[unit];
}

Text UnicodeLetters::lower(TextView text) {
  Text result{text};
  for (std::size_t i = 0; i < result.size(); ++i) {
    while (i + asciiBlock <= result.size() && lowerAscii(&result[i])) i += asciiBlock;
    if (i == result.size()) break;
    const char16_t unit = result[i];
    if (unit < 0x80) {
      if (unit >= u'A' && unit <= u'Z') result[i] = static_cast<char16_t>(unit | 0x20);
    } else if (isPair(result, i)) {
      const wint_t codePoint =
          0x10000 + ((static_cast<wint_t>(unit) - 0xD800) << 10) + (result[i + 1] - 0xDC00u);
      const wint_t lowered = towlower_l(codePoint, tables_);
      if (lowered >= 0x10000) {
        result[i] = static_cast<char16_t>(0xD800 + ((lowered - 0x10000) >> 10));
        result[i + 1] = static_cast<char16_t>(0xDC00 + ((lowered - 0x10000) & 0x3FF));
      }
      ++i;
    } else {
      result[i] = lowerUnit(unit);
    }
  }
  return result;
}

}  // namespace quillfile::mailbox
