#include "hosts/mailbox/outlook/rtf_letters.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace quillfile::mailbox {
namespace {

constexpr std::size_t mostFallback = 100;

Text escapeOf(char16_t unit, std::size_t fallback) {
  return fill(u"\\u{}", static_cast<std::int16_t>(unit)) +
         (fallback == 0 ? Text{u" "} : Text(fallback, u'?'));
}

// The number behind a control word of `length` letters at the beginning of `rtf`; 0 where none is.
int numberBehind(TextView rtf, std::size_t length) {
  constexpr std::size_t longest = TextView{u"-32768"}.size();
  return std::atoi(toUtf8(rtf.substr(length, longest)).c_str());
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
  // The \uc that is in force here.
  std::size_t fallback() const { return fallbacks_.back(); }
  // What the next step shows.
  TextView next() {
    const auto rest = rtf_.substr(at_);
    inLink_ = staysInLink(inLink_, rest);
    if (inLink_ && (rest.starts_with(u"\\{") || rest.starts_with(u"\\}"))) {
      at_ += 2;
      return rest.substr(1, 1);
    }
    if (rest.starts_with(u"\\u")) {
      unit_ = static_cast<char16_t>(numberBehind(rest, 2));
      const auto escape = escapeOf(unit_, fallback());
      if (unit_ >= 0x80 && rest.starts_with(escape)) {
        at_ += escape.size();
        return {&unit_, 1};
      }
    }
    heed(rest);
    const bool two = rest[0] == u'\\' || (rest[0] >= 0xD800 && rest[0] <= 0xDBFF);
    const auto shown = rest.substr(0, two ? 2 : 1);
    at_ += shown.size();
    return shown;
  }

 private:
  // \uc holds until its group ends.
  void heed(TextView rest) {
    if (rest[0] == u'{') {
      fallbacks_.push_back(fallbacks_.back());
    } else if (rest[0] == u'}' && fallbacks_.size() > 1) {
      fallbacks_.pop_back();
    } else if (rest.starts_with(u"\\uc") && rest.substr(3, 1).find_first_of(u"-0123456789") == 0) {
      fallbacks_.back() = static_cast<std::uint8_t>(std::clamp<int>(numberBehind(rest, 3), 0, mostFallback));
    }
  }

  TextView rtf_;
  std::size_t at_ = 0;
  char16_t unit_ = 0;
  bool inLink_ = false;
  std::vector<std::uint8_t> fallbacks_{1};  // of the open groups
};

}  // namespace

Text rtfEscaped(TextView text, std::size_t fallback) {
  Text result;
  bool inLink = false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char16_t unit = text[at];
    inLink = staysInLink(inLink, text.substr(at));
    if (unit >= 0x80) {
      result += escapeOf(unit, fallback);
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

std::vector<Hunk> rtfHunks(TextView rtf, const std::vector<Hunk>& shown) {
  Steps steps{rtf};
  // The step that was reached: where it stands, where and how much it shows, and the \uc in front of it.
  std::size_t at = 0, shownAt = 0, size = 0, fallback = steps.fallback();
  const auto place = [&](std::size_t wanted) {
    while (shownAt + size <= wanted) {
      shownAt += size;
      at = steps.at();
      fallback = steps.fallback();
      size = steps.ended() ? wanted - shownAt + 1 : steps.next().size();
    }
    return at + (wanted - shownAt);  // within a step of two it is one that is shown as it stands
  };
  std::vector<Hunk> hunks;
  for (const auto& hunk : shown) {
    const auto begin = place(hunk.begin);
    auto replacement = rtfEscaped(hunk.replacement, fallback);
    hunks.push_back({begin, place(hunk.end), std::move(replacement), {}});
  }
  return hunks;
}

TextView behindDocument(TextView rtf) {
  const auto brace = rtf.rfind(u'}');
  const auto tail = brace == TextView::npos ? TextView{} : rtf.substr(brace + 1);
  return std::all_of(tail.begin(), tail.end(), [](char16_t unit) { return unit <= u' '; }) ? tail
                                                                                           : TextView{};
}

}  // namespace quillfile::mailbox
