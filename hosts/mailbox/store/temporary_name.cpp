#include "hosts/mailbox/store/temporary_name.h"

#include <charconv>
#include <cstdio>

namespace quillfile::mailbox {
namespace {

constexpr std::string_view prefix = "quillfile,";

}  // namespace

// FNV-1a, 64 bits.
Replaced replacedMessage(std::string_view unique, std::uint64_t inode) {
  std::uint64_t hash = 0xCBF29CE484222325;
  for (const char c : unique) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
  return {.nameHash = hash, .inode = inode};
}

std::string temporaryMessageName(std::string_view unique, const std::optional<Replaced>& replaced) {
  std::string name = std::string{prefix}.append(unique);
  if (!replaced) return name;
  char text[48];
  std::snprintf(text, sizeof text, ",%016llx-%llx", static_cast<unsigned long long>(replaced->nameHash),
                static_cast<unsigned long long>(replaced->inode));
  return name + text;
}

std::optional<TemporaryMessage> parseTemporaryMessageName(std::string_view name) {
  if (!name.starts_with(prefix)) return std::nullopt;
  name.remove_prefix(prefix.size());
  const auto comma = name.find(',');
  TemporaryMessage message{.unique = std::string{name.substr(0, comma)}, .replaced = {}};
  if (comma == std::string_view::npos) return message;
  Replaced replaced;
  const char* const end = name.data() + name.size();
  const auto hash = std::from_chars(name.data() + comma + 1, end, replaced.nameHash, 16);
  if (hash.ec != std::errc{} || hash.ptr == end || *hash.ptr != '-') return std::nullopt;
  const auto inode = std::from_chars(hash.ptr + 1, end, replaced.inode, 16);
  if (inode.ec != std::errc{} || inode.ptr != end) return std::nullopt;
  message.replaced = replaced;
  return message;
}

}  // namespace quillfile::mailbox
