#include "hosts/mailbox/outlook/removed_part.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <set>

#include "hosts/mailbox/mime/decode.h"
#include "hosts/mailbox/mime/encode.h"

namespace quillfile::mailbox {
namespace {

constexpr std::size_t lineWidth = 72;

// "name=" and its value in base64, over as many lines as it needs.
void appendEncoded(std::string& field, std::string_view name, std::string_view value,
                   std::string_view lineEnd) {
  const auto encoded = mime::toBase64(value, "");
  std::string_view rest = encoded;
  field.append(";").append(lineEnd).append(" ").append(name).append("=");
  for (std::size_t room = lineWidth - name.size(); !rest.empty(); room = lineWidth) {
    field.append(rest.substr(0, room));
    rest.remove_prefix(std::min(room, rest.size()));
    if (!rest.empty()) field.append(lineEnd).append(" ");
  }
}

std::string withoutBlanks(std::string_view value) {
  std::string result;
  for (const char c : value)
    if (c != ' ' && c != '\t' && c != '\r' && c != '\n') result += c;
  return result;
}

std::optional<std::uint32_t> number(std::string_view digits) {
  std::uint32_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return error == std::errc{} && end == digits.data() + digits.size() ? std::optional{value} : std::nullopt;
}

std::optional<RemovedPart> read(std::string_view value) {
  const auto compact = withoutBlanks(value);
  RemovedPart part;
  bool placed = false;
  for (std::string_view rest = compact; !rest.empty();) {
    const auto end = std::min(rest.find(';'), rest.size());
    const auto item = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    const auto equals = item.find('=');
    if (equals == std::string_view::npos) return std::nullopt;
    const auto name = item.substr(0, equals);
    const auto text = item.substr(equals + 1);

    if (name == "at") {
      const auto place = number(text);
      if (!place) return std::nullopt;
      part.at = *place;
      placed = true;
    }
    std::string* const place = name == "path"     ? &part.path
                               : name == "header" ? &part.header
                               : name == "in"     ? &part.boundary
                                                  : nullptr;
    if (place != nullptr) {
      auto bytes = mime::decodePlain(mime::Encoding::base64, text);
      if (!bytes) return std::nullopt;
      *place = std::move(*bytes);
    }
  }
  return placed && !part.path.empty() ? std::optional{std::move(part)} : std::nullopt;
}

}  // namespace

std::string fieldOf(const RemovedPart& part, std::string_view lineEnd) {
  std::string field{removedPartField};
  field.append(": at=").append(std::to_string(part.at));
  appendEncoded(field, "in", part.boundary, lineEnd);
  appendEncoded(field, "path", part.path, lineEnd);
  appendEncoded(field, "header", part.header, lineEnd);
  return field.append(lineEnd);
}

std::vector<RemovedPart> removedParts(const mime::Header& header) {
  std::vector<RemovedPart> parts;
  for (const auto& field : header.fields(removedPartField))
    if (auto part = read(field.value)) parts.push_back(std::move(*part));
  return parts;
}

mime::PartIndex multipartOf(const mime::PartTree& tree, std::string_view boundary) {
  for (mime::PartIndex part = 0; part < tree.size(); ++part) {
    if (tree[part].kind != mime::PartKind::multipart) continue;
    if (boundary.empty() || boundaryOf(tree, part) == boundary) return part;
  }
  return mime::noPart;
}

std::string boundaryOf(const mime::PartTree& tree, mime::PartIndex multipart) {
  return tree.type(multipart).parameters.bytes("boundary").value_or("");
}

std::vector<std::uint32_t> oldPlaces(std::size_t children, std::string_view boundary,
                                     const std::vector<RemovedPart>& gone) {
  std::set<std::uint32_t> taken;
  for (const auto& part : gone)
    if (part.boundary == boundary) taken.insert(part.at);
  std::vector<std::uint32_t> places;
  for (std::uint32_t place = 0; places.size() < children; ++place)
    if (!taken.contains(place)) places.push_back(place);
  return places;
}

}  // namespace quillfile::mailbox
