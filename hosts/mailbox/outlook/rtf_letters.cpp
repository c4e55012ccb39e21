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

// Whether the text in front of `rest` and its first character are in a link.
bool staysInLink(bool inLink, TextView rest) {
  return (inLink || rest.starts_with(u"file:///")) && rest[0] != u'>';
}

// Goes through rich text in steps that nothing may part: an escape, a backslash with what follows, a raw
// pair. In a link an escaped brace shows as the brace: it belongs to the path.
class Steps {
 public:
  explicit Steps(TextView rtf) : rtf_(rtf) {}
  bool ended() const { return at_ == rtf_.size(); }
  std::size_t at() const { return at_; }
  // What the next step shows.
  TextView next() {
    const auto rest = rtf_.substr(at_);
    inLink_ = staysInLink(inLink_, rest);
    if (inLink_ && (rest.starts_with(u"\\{") || rest.starts_with(u"\\}"))) {
      at_ += 2;
      return rest.substr(1, 1);
    }
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
  bool inLink_ = false;
};

}  // namespace

Text rtfEscaped(TextView text) {
  Text result;
  bool inLink = false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char16_t unit = text[at];
    inLink = staysInLink(inLink, text.substr(at));
    if (unit >= 0x80) {
      result += fill(u"\\u{}?", static_cast<std::int16_t>(unit));
    } else {
      if (inLink && (unit == u'{' || unit == u'}')) result += u'\\';
      result += unit;
    }
  }
  return result;
}

Text rtfUnescaped(TextView rtf) {
  Text result;
  for (Steps steps{rtf}; !steps.ended();) result += steps.next();
  return result;
}

namespace {

Text changedDocument(TextView rtf, TextView text) {
  const Text shown = rtfUnescaped(rtf);
  Steps steps{rtf}, rest = steps;  // `rest` stands where the first difference is
  std::size_t beginShown = 0;
  while (!steps.ended()) {
    const auto step = steps.next();
    if (text.substr(beginShown, step.size()) != step) break;
    rest = steps;
    beginShown += step.size();
  }
  const auto begin = rest.at();
  const auto most = std::min(shown.size(), text.size()) - beginShown;
  const auto same = static_cast<std::size_t>(
      std::mismatch(shown.rbegin(), shown.rbegin() + static_cast<std::ptrdiff_t>(most), text.rbegin()).first -
      shown.rbegin());
  std::size_t endShown = beginShown;
  while (endShown < shown.size() - same) endShown += rest.next().size();
  const auto behind = shown.size() - endShown;
  return Text{rtf.substr(0, begin)} + rtfEscaped(text.substr(beginShown, text.size() - behind - beginShown)) +
         Text{rtf.substr(rest.at())};
}

// The blanks and zeros behind the last brace, which are no part of the document.
TextView tailOf(TextView rtf) {
  const auto brace = rtf.rfind(u'}');
  const auto tail = brace == TextView::npos ? TextView{} : rtf.substr(brace + 1);
  return std::all_of(tail.begin(), tail.end(), [](char16_t unit) { return unit <= u' '; }) ? tail
                                                                                           : TextView{};
}

}  // namespace

Text rtfChanged(TextView rtf, TextView text) {
  const auto tail = text.ends_with(u'}') ? tailOf(rtf) : TextView{};
  return changedDocument(rtf.substr(0, rtf.size() - tail.size()), text).append(tail);
}

}  // namespace quillfile::mailbox
