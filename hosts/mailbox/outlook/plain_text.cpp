#include "hosts/mailbox/outlook/plain_text.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "hosts/mailbox/formats/rtf/rtf_document.h"
#include "hosts/mailbox/mime/header.h"

namespace quillfile::mailbox {
namespace {

constexpr TextView lineEnd = u"\r\n";

bool isSpace(char16_t unit) { return unit == u' ' || unit == u'\t' || unit == u'\r' || unit == u'\n'; }
bool isLetter(char16_t unit) { return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z'); }
bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

void append(Text& text, char32_t codePoint) {
  if (codePoint < 0x10000) {
    text += static_cast<char16_t>(codePoint);
  } else if (codePoint < 0x110000) {
    text += static_cast<char16_t>(0xD800 + ((codePoint - 0x10000) >> 10));
    text += static_cast<char16_t>(0xDC00 + ((codePoint - 0x10000) & 0x3FF));
  }
}

std::string lowerName(TextView text) { return mime::lowerCase(toUtf8(text)); }

struct Entity {
  TextView name;
  char16_t unit;
};
constexpr Entity entities[] = {
    {u"amp", u'&'}, {u"lt", u'<'}, {u"gt", u'>'}, {u"quot", u'"'}, {u"apos", u'\''}, {u"nbsp", u' '},
};

// The number in "#8364" or "#x20AC"; none when it is none.
std::optional<char32_t> numbered(TextView name) {
  if (name.size() < 2 || name.size() > 9 || name[0] != u'#') return std::nullopt;
  const bool hex = name[1] == u'x' || name[1] == u'X';
  char32_t value = 0;
  for (const char16_t unit : name.substr(hex ? 2 : 1)) {
    const char32_t digit = isDigit(unit)           ? unit - u'0'
                           : hex && isLetter(unit) ? (unit | 0x20) - u'a' + 10
                                                   : 99;
    if (digit >= (hex ? 16u : 10u)) return std::nullopt;
    value = value * (hex ? 16 : 10) + digit;
  }
  return value;
}

// Reads the entity at the front of `html` into `text` and takes it away; a "&" that begins none stays.
void takeEntity(TextView& html, Text& text) {
  const auto end = html.substr(0, 12).find(u';');
  if (end != TextView::npos) {
    const auto name = html.substr(1, end - 1);
    const auto row =
        std::find_if(std::begin(entities), std::end(entities), [&](auto& e) { return e.name == name; });
    const auto number = numbered(name);
    if (row != std::end(entities) || number) {
      append(text, number ? *number : row->unit);
      html.remove_prefix(end + 1);
      return;
    }
  }
  text += html.front();
  html.remove_prefix(1);
}

constexpr std::array blocks{"p",  "div", "br",    "tr", "li", "h1",         "h2", "h3",  "h4",
                            "h5", "h6",  "table", "ul", "ol", "blockquote", "hr", "pre", "body"};
constexpr std::array hidden{"script", "style", "head", "title"};

template <class Names>
bool isOneOf(const Names& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// Takes one tag, or a comment, away and tells its name, with "/" in front where it closes; empty for a
// comment.
std::string takeTag(TextView& html) {
  if (html.starts_with(u"<!--")) {
    const auto end = html.find(u"-->", 4);
    html.remove_prefix(end == TextView::npos ? html.size() : end + 3);
    return {};
  }
  const auto close = html.find(u'>');
  const auto tag = html.substr(1, close == TextView::npos ? close : close - 1);
  html.remove_prefix(close == TextView::npos ? html.size() : close + 1);
  std::size_t length = !tag.empty() && tag[0] == u'/' ? 1 : 0;
  while (length < tag.size() && (isLetter(tag[length]) || isDigit(tag[length]))) ++length;
  return lowerName(tag.substr(0, length));
}

void skipTo(TextView& html, const std::string& closing) {
  while (!html.empty()) {
    const auto next = html.find(u'<');
    html.remove_prefix(next == TextView::npos ? html.size() : next);
    if (!html.empty() && takeTag(html) == closing) return;
  }
}

}  // namespace

Text htmlToText(TextView html) {
  Text text;
  text.reserve(html.size());
  bool blank = false;
  const auto newLine = [&] {
    blank = false;
    if (!text.empty() && !text.ends_with(u"\r\n\r\n")) text += lineEnd;
  };
  while (!html.empty()) {
    const char16_t unit = html.front();
    if (unit == u'<' && html.size() > 1 &&
        (isLetter(html[1]) || html[1] == u'/' || html[1] == u'!' || html[1] == u'?')) {
      const auto name = takeTag(html);
      if (isOneOf(hidden, name)) skipTo(html, "/" + name);
      if (isOneOf(blocks, name) || (name.starts_with('/') && name != "/body" &&
                                    isOneOf(blocks, name.substr(1)) && !text.ends_with(lineEnd)))
        newLine();
    } else if (isSpace(unit)) {
      blank = true;
      html.remove_prefix(1);
    } else {
      if (blank && !text.empty() && text.back() != u'\n') text += u' ';
      blank = false;
      if (unit == u'&') {
        takeEntity(html, text);
      } else {
        text += unit;
        html.remove_prefix(1);
      }
    }
  }
  return text;
}

Text rtfToText(TextView rtf) { return formats::readRtf(rtf).text; }

Text textToHtml(TextView text) {
  Text html;
  for (const char16_t unit : text) {
    switch (unit) {
      case u'&':
        html += u"&amp;";
        break;
      case u'<':
        html += u"&lt;";
        break;
      case u'>':
        html += u"&gt;";
        break;
      case u'"':
        html += u"&quot;";
        break;
      case u'\r':
        break;
      case u'\n':
        html += u"<br>\r\n";
        break;
      default:
        html += unit;
    }
  }
  return html;
}

}  // namespace quillfile::mailbox
