#include "hosts/mailbox/outlook/rtf_letters.h"

#include <algorithm>
#include <cstdlib>

namespace quillfile::mailbox {
namespace {

// The character whose escape stands at the beginning of `rtf`; 0 where none does.
char16_t escapedUnit(TextView rtf) {
  constexpr std::size_t longest = TextView{u"\\u-32768?"}.size();
  const auto escape = rtf.substr(0, std::min(longest, rtf.find(u'?') + 1));
  if (escape.substr(0, 2) != u"\\u") return 0;
  const auto unit = static_cast<char16_t>(std::atoi(toUtf8(escape.substr(2)).c_str()));
  return unit >= 0x80 && rtfEscaped({&unit, 1}) == escape ? unit : 0;
}

// Goes through rich text in steps that nothing may part: an escape, a backslash with what follows, a raw
// pair.
class Steps {
 public:
  explicit Steps(TextView rtf) : rtf_(rtf) {}
  bool ended() const { return at_ == rtf_.size(); }
  std::size_t at() const { return at_; }
  // What the next step shows.
  TextView next() {
    const auto rest = rtf_.substr(at_);
    if (rest[0] == u'\\' && (unit_ = escapedUnit(rest)) != 0) {
      at_ += std::min(rest.find(u'?'), rest.size()) + 1;
      return {&unit_, 1};
    }
    const bool two = rest[0] == u'\\' || (rest[0] >= 0xD800 && rest[0] <= 0xDBFF);
    const auto shown = rest.substr(0, two ? 2 : 1);
    at_ += shown.size();
    return shown;
  }

 private:
  TextView rtf_;
  std::size_t at_ = 0;
  char16_t unit_ = 0;
};

}  // namespace

Text rtfEscaped(TextView text) {
  Text result;
  for (const char16_t unit : text) {
    if (unit < 0x80) {
      result += unit;
    } else {
      result += fill(u"\\u{}?", static_cast<std::int16_t>(unit));
    }
  }
  return result;
}

Text rtfUnescaped(TextView rtf) {
  Text result;
  for (Steps steps{rtf}; !steps.ended();) result += steps.next();
  return result;
}

Text rtfChanged(TextView rtf, TextView text) {
  const Text shown = rtfUnescaped(rtf);
  Steps steps{rtf};
  std::size_t begin = 0, beginShown = 0;  // before these nothing differs
  while (!steps.ended()) {
    const auto step = steps.next();
    if (text.substr(beginShown, step.size()) != step) break;
    begin = steps.at();
    beginShown += step.size();
  }
  const auto most = std::min(shown.size(), text.size()) - beginShown;
  const auto same = static_cast<std::size_t>(
      std::mismatch(shown.rbegin(), shown.rbegin() + static_cast<std::ptrdiff_t>(most), text.rbegin()).first -
      shown.rbegin());
  Steps rest{rtf.substr(begin)};
  std::size_t endShown = beginShown;
  while (endShown < shown.size() - same) endShown += rest.next().size();
  const auto behind = shown.size() - endShown;
  return Text{rtf.substr(0, begin)} + rtfEscaped(text.substr(beginShown, text.size() - behind - beginShown)) +
         Text{rtf.substr(begin + rest.at())};
}

}  // namespace quillfile::mailbox
