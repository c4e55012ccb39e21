#include "hosts/mailbox/mime/content_type.h"

#include <algorithm>

#include "hosts/mailbox/mime/charset.h"
#include "hosts/mailbox/mime/clean_name.h"
#include "hosts/mailbox/mime/decoding.h"
#include "hosts/mailbox/mime/encoded_word.h"

namespace quillfile::mime {
namespace {

constexpr std::size_t mostParameters = 1'000;

// Reads a structured value from the left: words, quoted strings, comments (RFC 5322 3.2).
class Reader {
 public:
  explicit Reader(std::string_view bytes) : rest_{bytes} {}

  bool done() const { return rest_.empty(); }
  bool take(char wanted) {
    skipBlanks();
    if (rest_.empty() || rest_[0] != wanted) return false;
    rest_.remove_prefix(1);
    return true;
  }
  // What stands up to one of `stops`, comments left out and blanks at the ends too.
  std::string_view word(std::string_view stops) {
    skipBlanks();
    const auto length = std::min(rest_.find_first_of(stops), rest_.size());
    const auto found = trimmed(rest_.substr(0, length));
    rest_.remove_prefix(length);
    return found;
  }
  // A value without quotes. What stands in brackets is a comment at its end, but a part of a name like
  // a(1).pdf.
  std::string bare() {
    skipBlanks();
    const auto whole = trimmed(rest_.substr(0, rest_.find(';')));
    const auto behind = rest_.substr(std::min(rest_.find(';'), rest_.size()));
    const auto value = word(";(");
    skipBlanks();
    if (rest_.empty() || rest_[0] == ';') return std::string{value};
    rest_ = behind;
    return std::string{whole};
  }
  std::string quoted() {
    std::string text;
    for (bool escaped = false; !rest_.empty();) {
      const char c = rest_[0];
      rest_.remove_prefix(1);
      if (!escaped && c == '"') break;
      escaped = !escaped && c == '\\';
      if (!escaped) text += c;
    }
    return text;
  }

 private:
  void skipBlanks() {
    for (int depth = 0; !rest_.empty(); rest_.remove_prefix(1)) {
      const char c = rest_[0];
      if (c == '(') {
        ++depth;
      } else if (c == ')' && depth > 0) {
        --depth;
      } else if (c == '\\' && depth > 0 && rest_.size() > 1) {
        rest_.remove_prefix(1);
      } else if (depth == 0 && c != ' ' && c != '\t' && c != '\r' && c != '\n') {
        return;
      }
    }
  }

  std::string_view rest_;
};

std::string percentDecoded(std::string_view value) {
  std::string bytes;
  for (std::size_t i = 0; i < value.size(); ++i) {
    const bool coded =
        value[i] == '%' && i + 2 < value.size() && hexValue(value[i + 1]) >= 0 && hexValue(value[i + 2]) >= 0;
    bytes += coded ? static_cast<char>(hexValue(value[i + 1]) << 4 | hexValue(value[i + 2])) : value[i];
    if (coded) i += 2;
  }
  return bytes;
}

// charset'language'value, where the first two may be missing (RFC 2231 4).
struct Extended {
  std::string charset;
  std::string value;
};

Extended splitExtended(std::string_view value) {
  const auto first = value.find('\'');
  const auto second = first == value.npos ? first : value.find('\'', first + 1);
  if (second == value.npos) return {{}, std::string{value}};
  return {std::string{value.substr(0, first)}, std::string{value.substr(second + 1)}};
}

Parameters parametersOf(std::string_view value) {
  const auto list = value.find(';');
  return list == value.npos ? Parameters{} : Parameters{value.substr(list)};
}

}  // namespace

Parameters::Parameters(std::string_view list) {
  Reader reader{list};
  while (!reader.done() && all_.size() < mostParameters) {
    reader.word(";");
    if (!reader.take(';')) continue;
    const auto name = lowerCase(trimmed(reader.word("=;(")));
    if (!reader.take('=')) continue;
    auto value = reader.take('"') ? reader.quoted() : reader.bare();
    if (!name.empty()) all_.push_back({name, std::move(value)});
  }
}

std::optional<std::string> Parameters::bytes(std::string_view name) const {
  const auto found = std::find_if(all_.begin(), all_.end(), [&](const auto& p) { return p.name == name; });
  if (found == all_.end()) return std::nullopt;
  return found->value;
}

std::optional<Text> Parameters::text(std::string_view name) const {
  if (auto found = extended(name)) return found;
  const auto plain = bytes(name);
  if (!plain) return std::nullopt;
  return decodeWords(unfolded(*plain));
}

// name*=… and name*0=…, name*1*=…: the pieces in the order of their numbers; those with a star at the end are
// percent-coded, and the first one names the charset.
std::optional<Text> Parameters::extended(std::string_view name) const {
  const std::string start = std::string{name} + "*";
  std::string charset;
  std::string whole;
  bool coded = false;
  if (const auto single = bytes(start)) {
    const auto parts = splitExtended(*single);
    return fromCharset(percentDecoded(parts.value), parts.charset);
  }
  std::size_t number = 0;
  for (;; ++number) {
    const auto key = start + std::to_string(number);
    const auto codedPiece = bytes(key + "*");
    const auto piece = codedPiece ? codedPiece : bytes(key);
    if (!piece) break;
    if (number == 0 && codedPiece) {
      const auto parts = splitExtended(*piece);
      charset = parts.charset;
      whole += percentDecoded(parts.value);
    } else {
      whole += codedPiece ? percentDecoded(*piece) : *piece;
    }
    coded = coded || codedPiece;
  }
  if (number == 0) return std::nullopt;
  return coded ? fromCharset(whole, charset) : decodeWords(unfolded(whole));
}

bool ContentType::is(std::string_view pattern) const {
  const auto slash = pattern.find('/');
  const auto wantedSubtype = pattern.substr(slash + 1);
  return type == pattern.substr(0, slash) && (wantedSubtype == "*" || subtype == wantedSubtype);
}

std::optional<ContentType> parseContentType(std::string_view value) {
  Reader reader{value};
  ContentType result;
  result.type = lowerCase(reader.word("/;("));
  if (!reader.take('/')) return std::nullopt;
  result.subtype = lowerCase(reader.word(";("));
  if (result.type.empty() || result.subtype.empty()) return std::nullopt;
  result.parameters = parametersOf(value);
  return result;
}

ContentType contentType(const Header& header) {
  const auto value = header.value("Content-Type");
  if (auto type = parseContentType(value)) return *type;
  ContentType unknown;
  unknown.parameters = parametersOf(value);
  return unknown;
}

Disposition disposition(const Header& header) {
  const auto value = header.value("Content-Disposition");
  Reader reader{value};
  const auto word = lowerCase(reader.word(";("));
  return {word, parametersOf(value)};
}

Text givenName(const Header& header) {
  auto fileName = disposition(header).parameters.text("filename").value_or(Text{});
  if (!cleanName(fileName).empty()) return fileName;
  auto name = contentType(header).parameters.text("name").value_or(Text{});
  return name.empty() ? fileName : name;
}

}  // namespace quillfile::mime
