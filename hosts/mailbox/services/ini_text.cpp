#include "hosts/mailbox/services/ini_text.h"

#include <algorithm>
#include <charconv>

#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {
namespace {

constexpr std::string_view blanks = " \t\r";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::string_view trimmed(std::string_view text) {
  const auto begin = text.find_first_not_of(blanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

enum class Kind { empty, section, value, wrong };
struct Line {
  Kind kind;
  std::string_view name;   // of the section, or the key
  std::string_view value;  // as it stands
};

Line parse(std::string_view line) {
  if (line.starts_with(byteOrderMark)) line.remove_prefix(byteOrderMark.size());
  const std::string_view text = trimmed(line);
  if (text.empty() || text[0] == ';' || text[0] == '#') return {Kind::empty, {}, {}};
  if (text[0] == '[')
    return text.back() == ']' ? Line{Kind::section, trimmed(text.substr(1, text.size() - 2)), {}}
                              : Line{Kind::wrong, {}, {}};
  const auto equals = text.find('=');
  if (equals == std::string_view::npos || trimmed(text.substr(0, equals)).empty())
    return {Kind::wrong, {}, {}};
  return {Kind::value, trimmed(text.substr(0, equals)), trimmed(text.substr(equals + 1))};
}

struct Escape {
  char letter;
  char meaning;
};
constexpr Escape escapes[] = {{'\\', '\\'}, {'"', '"'}, {'n', '\n'}, {'r', '\r'}, {'t', '\t'}};

bool isQuoted(std::string_view value) {
  return value.size() >= 2 && value.front() == '"' && value.back() == '"';
}

// The value that stands in quotes; none when an escape in it is none.
std::optional<std::string> unquoted(std::string_view text) {
  std::string value;
  for (std::size_t i = 1; i + 1 < text.size(); ++i) {
    if (text[i] != '\\') {
      value += text[i];
      continue;
    }
    const std::string_view rest = text.substr(i + 1, text.size() - i - 2);
    unsigned byte = 0;
    if (rest.size() >= 3 && rest[0] == 'x' &&
        std::from_chars(rest.data() + 1, rest.data() + 3, byte, 16).ptr == rest.data() + 3) {
      value += static_cast<char>(byte);
      i += 3;
      continue;
    }
    const auto known = std::find_if(std::begin(escapes), std::end(escapes),
                                    [&](const Escape& e) { return !rest.empty() && e.letter == rest[0]; });
    if (known == std::end(escapes)) return std::nullopt;
    value += known->meaning;
    ++i;
  }
  return value;
}

bool needsQuotes(std::string_view value) {
  const auto control = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
  return trimmed(value) != value || isQuoted(value) || std::any_of(value.begin(), value.end(), control);
}

std::string quoted(std::string_view value) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string text = "\"";
  for (const char c : value) {
    const auto known =
        std::find_if(std::begin(escapes), std::end(escapes), [&](const Escape& e) { return e.meaning == c; });
    const auto byte = static_cast<unsigned char>(c);
    if (known != std::end(escapes)) {
      text += {'\\', known->letter};
    } else if (byte < 0x20 || byte == 0x7F) {
      text += {'\\', 'x', digits[byte >> 4], digits[byte & 15]};
    } else {
      text += c;
    }
  }
  return text += '"';
}

}  // namespace

bool sameIgnoringCase(std::string_view a, std::string_view b) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [&](char x, char y) { return lower(x) == lower(y); });
}

IniText::IniText(std::string_view bytes) {
  for (std::size_t begin = 0; begin < bytes.size();) {
    const auto end = std::min(bytes.find('\n', begin), bytes.size());
    lines_.emplace_back(bytes.substr(begin, end - begin));
    begin = end + 1;
  }
}

std::vector<IniText::Value> IniText::values(std::string_view path) const {
  std::vector<Value> values;
  std::string section;
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    const Line line = parse(lines_[i]);
    const auto value = line.kind != Kind::value ? std::optional<std::string>{}
                       : isQuoted(line.value)   ? unquoted(line.value)
                                                : std::string{line.value};
    const bool wrong = line.kind == Kind::wrong || (line.kind == Kind::value && !value);
    if (wrong || lines_[i].find('\0') != std::string::npos)
      throw failure("Line " + std::to_string(i + 1) + " of the settings file " + std::string{path} +
                    " is no section, no setting and no comment");
    if (line.kind == Kind::section) section = line.name;
    if (line.kind == Kind::value) values.push_back({section, std::string{line.name}, *value});
  }
  return values;
}

void IniText::set(std::string_view section, std::string_view key, const std::optional<std::string>& value) {
  const std::string line =
      value ? std::string{key} + "=" + (needsQuotes(*value) ? quoted(*value) : *value) : "";
  bool within = section.empty(), seen = within, done = !value;
  std::size_t end = 0;  // after the section's last line that says something
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    const Line parsed = parse(lines_[i]);
    if (parsed.kind == Kind::section) within = sameIgnoringCase(parsed.name, section);
    if (!within) continue;
    seen = true;
    if (parsed.kind != Kind::empty) end = i + 1;
    if (parsed.kind != Kind::value || !sameIgnoringCase(parsed.name, key)) continue;
    if (done) {  // taken out, or standing a second time
      lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(i));
      end = i--;
      continue;
    }
    lines_[i] = line + (lines_[i].ends_with('\r') ? "\r" : "");
    done = true;
  }
  if (done) return;
  if (!seen) {
    if (!lines_.empty()) lines_.emplace_back();
    lines_.push_back("[" + std::string{section} + "]");
    end = lines_.size();
  }
  lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(end), line);
}

std::string IniText::bytes() const {
  std::string bytes;
  for (const std::string& line : lines_) bytes.append(line) += '\n';
  return bytes;
}

}  // namespace quillfile::mailbox
