#include "hosts/mailbox/formats/rtf/rtf_document.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "hosts/mailbox/formats/mapi/code_page.h"

namespace quillfile::formats {
namespace {

bool isLetter(char16_t unit) { return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z'); }
bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

// The code page of a font's \fcharset.
struct FontCharset {
  std::int32_t charset;
  std::uint32_t page;
};
constexpr std::array kFontCharsets = {
    FontCharset{77, 10000}, FontCharset{128, 932},  FontCharset{129, 949},  FontCharset{134, 936},
    FontCharset{136, 950},  FontCharset{161, 1253}, FontCharset{162, 1254}, FontCharset{163, 1258},
    FontCharset{177, 1255}, FontCharset{178, 1256}, FontCharset{186, 1257}, FontCharset{204, 1251},
    FontCharset{222, 874},  FontCharset{238, 1250},
};

// Whether the byte begins a character of two bytes.
bool isLead(std::uint32_t page, unsigned char byte) {
  if (page == 932) return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
  return (page == 936 || page == 949 || page == 950) && byte >= 0x81 && byte != 0xFF;
}

// Words and symbols that stand for characters, and how the HTML has them.
struct Character {
  TextView word, text, html;
};
constexpr std::array kCharacters = {
    Character{u"par", u"\r\n", u"\r\n"},
    Character{u"line", u"\r\n", u"\r\n"},
    Character{u"sect", u"\r\n", u"\r\n"},
    Character{u"row", u"\r\n", u"\r\n"},
    Character{u"tab", u"\t", u"\t"},
    Character{u"cell", u"\t", u"\t"},
    Character{u"lquote", u"\u2018", u"&lsquo;"},
    Character{u"rquote", u"\u2019", u"&rsquo;"},
    Character{u"ldblquote", u"\u201C", u"&ldquo;"},
    Character{u"rdblquote", u"\u201D", u"&rdquo;"},
    Character{u"bullet", u"\u2022", u"&bull;"},
    Character{u"endash", u"\u2013", u"&ndash;"},
    Character{u"emdash", u"\u2014", u"&mdash;"},
    Character{u"emspace", u" ", u"&emsp;"},
    Character{u"enspace", u" ", u"&ensp;"},
    Character{u"~", u" ", u"&nbsp;"},
    Character{u"_", u"-", u"&shy;"},
    Character{u"\r", u"\r\n", u"\r\n"},
    Character{u"\n", u"\r\n", u"\r\n"},
    Character{u"\\", u"\\", u"\\"},
    Character{u"{", u"{", u"{"},
    Character{u"}", u"}", u"}"},
};

constexpr std::array<TextView, 6> kHidden = {u"fonttbl", u"colortbl", u"stylesheet",
                                             u"info",    u"pict",     u"objdata"};

// What holds until the end of a group.
struct Group {
  bool hidden = false;        // a destination that is no text
  bool isTag = false;         // \*\htmltag: a piece of the page's markup
  bool notInHtml = false;     // \htmlrtf: for readers of RTF only
  bool fonts = false;         // the font table
  std::int32_t fallback = 1;  // \uc: how many characters follow \u for readers without Unicode
  std::uint32_t page = mapi::kWestern;
};

constexpr std::size_t kDeepest = 1'000;  // groups; deeper ones are read as parts of theirs

class Reader {
 public:
  explicit Reader(TextView rtf) : rtf_(rtf) {}

  RtfDocument run() {
    while (at_ < rtf_.size()) step();
    flush();
    if (result_.origin != RtfOrigin::html) result_.html.clear();
    return std::move(result_);
  }

 private:
  Group& group() { return groups_.back(); }

  void step() {
    const char16_t unit = rtf_[at_++];
    if (unit == u'{') {
      open();
    } else if (unit == u'}') {
      close();
    } else if (unit == u'\\' && at_ < rtf_.size()) {
      if (isLetter(rtf_[at_])) {
        word();
      } else {
        symbol();
      }
    } else if (unit != u'\r' && unit != u'\n' && unit != u'\0') {
      if (skipped()) return;
      // The second byte of a character may be a letter.
      if (unit < 0x80 && halfCharacter()) {
        bytes_ += static_cast<char>(unit);
      } else {
        give({&unit, 1}, {&unit, 1});
      }
    }
  }

  void open() {
    flush();
    skip_ = 0;
    if (groups_.size() >= kDeepest) {
      ++tooDeep_;
      return;
    }
    groups_.push_back(group());
    const TextView rest = rtf_.substr(at_, 10);
    if (rest.starts_with(u"\\*")) {
      group().isTag = rest == u"\\*\\htmltag";
      group().hidden = group().hidden || !group().isTag;
    }
  }

  void close() {
    flush();
    skip_ = 0;
    if (tooDeep_ > 0) {
      --tooDeep_;
    } else if (groups_.size() > 1) {
      groups_.pop_back();
    }
  }

  // Whether what comes is what readers without Unicode show, in place of a character that was given already.
  bool skipped() { return skip_ > 0 && skip_-- > 0; }

  void symbol() {
    const char16_t symbol = rtf_[at_++];
    if (symbol != u'\'') return character({&symbol, 1});
    const int high = hex(at_), low = hex(at_ + 1);
    at_ = std::min(at_ + 2, rtf_.size());
    if (high < 0 || low < 0 || skipped()) return;
    bytes_ += static_cast<char>(high << 4 | low);
    if (bytes_.size() > 4096 && !halfCharacter()) flush();
  }

  int hex(std::size_t at) const {
    const char16_t unit = at < rtf_.size() ? rtf_[at] : u'\0';
    if (isDigit(unit)) return unit - u'0';
    const char16_t letter = unit | 0x20;
    return isLetter(unit) && letter <= u'f' ? letter - u'a' + 10 : -1;
  }

  void word() {
    const std::size_t start = at_;
    while (at_ < rtf_.size() && isLetter(rtf_[at_])) ++at_;
    const TextView name = rtf_.substr(start, at_ - start);
    const bool negative = at_ + 1 < rtf_.size() && rtf_[at_] == u'-' && isDigit(rtf_[at_ + 1]);
    if (negative) ++at_;
    const bool numbered = at_ < rtf_.size() && isDigit(rtf_[at_]);
    std::int64_t number = 0;
    while (at_ < rtf_.size() && isDigit(rtf_[at_]))
      number = std::min<std::int64_t>(number * 10 + (rtf_[at_++] - u'0'), INT32_MAX);
    if (at_ < rtf_.size() && rtf_[at_] == u' ') ++at_;
    control(name, numbered, static_cast<std::int32_t>(negative ? -number : number));
  }

  void control(TextView name, bool numbered, std::int32_t number) {
    if (name == u"u") return unicode(number);
    if (name == u"bin") {
      at_ += std::min(rtf_.size() - at_, static_cast<std::size_t>(std::max(number, 0)));
    } else if (name == u"uc") {
      group().fallback = std::clamp(number, 0, 100);
    } else if (name == u"ansicpg") {
      defaultPage_ = group().page = static_cast<std::uint32_t>(std::max(number, 0));
      for (Group& one : groups_) one.page = group().page;
    } else if (name == u"mac") {
      defaultPage_ = group().page = 10000;
    } else if (name == u"fromhtml") {
      result_.origin = number == 0 && numbered ? result_.origin : RtfOrigin::html;
    } else if (name == u"fromtext") {
      result_.origin = RtfOrigin::plain_text;
    } else if (name == u"htmlrtf") {
      flush();
      group().notInHtml = !numbered || number != 0;
    } else if (name == u"f") {
      font(number);
    } else if (name == u"fcharset") {
      if (group().fonts) fonts_[font_] = pageOf(number);
    } else if (name == u"plain") {
      flush();
      group().page = defaultPage_;
    } else if (std::find(kHidden.begin(), kHidden.end(), name) != kHidden.end()) {
      group().hidden = true;
      group().fonts = name == u"fonttbl";
    } else {
      character(name);
    }
  }

  std::uint32_t pageOf(std::int32_t charset) const {
    for (const FontCharset& row : kFontCharsets)
      if (row.charset == charset) return row.page;
    return charset == 0 ? mapi::kWestern : defaultPage_;
  }

  void font(std::int32_t number) {
    if (group().fonts) {
      font_ = number;
      return;
    }
    const auto known = fonts_.find(number);
    const std::uint32_t page = known == fonts_.end() ? defaultPage_ : known->second;
    if (page == group().page) return;
    flush();
    group().page = page;
  }

  void unicode(std::int32_t number) {
    const auto unit = static_cast<char16_t>(number);
    if (!skipped()) give({&unit, 1}, {&unit, 1});
    skip_ = group().fallback;
  }

  void character(TextView word) {
    const auto known = std::find_if(kCharacters.begin(), kCharacters.end(),
                                    [&](const Character& row) { return row.word == word; });
    if (known != kCharacters.end() && !skipped()) give(known->text, known->html);
  }

  bool halfCharacter() const {
    bool half = false;
    for (const char byte : bytes_)
      half = !half && isLead(groups_.back().page, static_cast<unsigned char>(byte));
    return half;
  }

  void flush() {
    if (bytes_.empty()) return;
    const Text text = mapi::fromCodePage(bytes_, group().page);
    bytes_.clear();
    put(text, text);
  }

  void give(TextView text, TextView html) {
    flush();
    put(text, html);
  }

  void put(TextView text, TextView html) {
    if (group().hidden) return;
    if (!group().isTag) result_.text += text;
    // Within markup the characters are the page's own.
    if (!group().notInHtml) result_.html += group().isTag && text != u"\r\n" ? text : html;
  }

  TextView rtf_;
  std::size_t at_ = 0;
  std::vector<Group> groups_{Group{}};
  std::size_t tooDeep_ = 0;
  std::map<std::int32_t, std::uint32_t> fonts_;
  std::int32_t font_ = 0;
  std::uint32_t defaultPage_ = mapi::kWestern;
  std::string bytes_;  // of a code page, not yet read
  std::int32_t skip_ = 0;
  RtfDocument result_;
};

}  // namespace

RtfDocument readRtf(TextView rtf) { return Reader(rtf).run(); }

}  // namespace quillfile::formats
