#include "hosts/mailbox/mime/header.h"

#include <algorithm>

#include "hosts/mailbox/mime/encoded_word.h"

namespace quillfile::mime {
namespace {

constexpr std::string_view blanks = " \t\r\n";

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

// The line at the front of `block`, its line end included.
std::string_view firstLine(std::string_view block) {
  const auto end = block.find('\n');
  return block.substr(0, end == block.npos ? end : end + 1);
}

bool continues(std::string_view line) { return !line.empty() && (line[0] == ' ' || line[0] == '\t'); }

}  // namespace

std::optional<Field> takeField(std::string_view& block) {
  while (!block.empty()) {
    auto line = firstLine(block);
    auto length = line.size();
    while (continues(block.substr(length))) length += firstLine(block.substr(length)).size();
    const auto whole = block.substr(0, length);
    block.remove_prefix(length);
    const auto colon = line.find(':');
    if (colon == line.npos || continues(line)) continue;
    const auto name = trimmed(line.substr(0, colon));
    auto value = whole.substr(colon + 1);
    while (!value.empty() && (value.back() == '\n' || value.back() == '\r')) value.remove_suffix(1);
    return Field{.name = name, .value = value, .whole = whole};
  }
  return std::nullopt;
}

std::optional<Field> Header::field(std::string_view name) const {
  auto rest = block_;
  while (const auto field = takeField(rest)) {
    if (equalWords(field->name, name)) return field;
  }
  return std::nullopt;
}

std::vector<Field> Header::fields(std::string_view name) const {
  std::vector<Field> found;
  auto rest = block_;
  while (const auto field = takeField(rest)) {
    if (equalWords(field->name, name)) found.push_back(*field);
  }
  return found;
}

std::string Header::value(std::string_view name) const {
  const auto found = field(name);
  return found ? unfolded(found->value) : std::string{};
}

Text Header::text(std::string_view name) const { return decodeWords(value(name)); }

bool equalWords(std::string_view a, std::string_view b) {
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return lower(x) == lower(y); });
}

std::string lowerCase(std::string_view ascii) {
  std::string result{ascii};
  std::transform(result.begin(), result.end(), result.begin(), lower);
  return result;
}

std::string_view trimmed(std::string_view bytes) {
  const auto begin = bytes.find_first_not_of(blanks);
  if (begin == bytes.npos) return {};
  return bytes.substr(begin, bytes.find_last_not_of(blanks) - begin + 1);
}

std::string unfolded(std::string_view value) {
  std::string result{trimmed(value)};
  std::erase_if(result, [](char c) { return c == '\r' || c == '\n'; });
  return result;
}

}  // namespace quillfile::mime
