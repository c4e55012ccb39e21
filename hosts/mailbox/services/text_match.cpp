#include "hosts/mailbox/services/text_match.h"

namespace quillfile::mailbox {
namespace {

// The usual two-pointer walk: on a mismatch, let the last star take one more unit. No recursion.
bool covers(TextView pattern, TextView text) {
  std::size_t p = 0, t = 0, star = TextView::npos, starText = 0;
  while (t < text.size()) {
    if (p < pattern.size() && pattern[p] == u'*') {
      star = p++;
      starText = t;
    } else if (p < pattern.size() && (pattern[p] == u'?' || pattern[p] == text[t])) {
      ++p, ++t;
    } else if (star != TextView::npos) {
      p = star + 1;
      t = ++starText;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of(u'*', p) == TextView::npos;
}

}  // namespace

bool matchText(LetterCase& letters, TextView text, TextView pattern) {
  if (pattern.empty()) return false;
  const Text loweredText = letters.lower(text);
  const Text loweredPattern = letters.lower(pattern);
  const bool wild = loweredPattern.find_first_of(u"*?") != Text::npos;
  return wild ? covers(loweredPattern, loweredText) : loweredText.find(loweredPattern) != Text::npos;
}

}  // namespace quillfile::mailbox
