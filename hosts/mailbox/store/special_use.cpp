#include "hosts/mailbox/store/special_use.h"

#include <algorithm>
#include <array>

namespace quillfile::mailbox {
namespace {

struct Names {
  FolderRole role;
  std::array<std::string_view, 8> names;  // the one to make first, then by preference
};

constexpr Names table[] = {
    {FolderRole::sent,
     {"Sent", "Sent Items", "Sent Mail", "Sent Messages", "Sent-Mail", "SentMail", "Outgoing"}},
    {FolderRole::drafts, {"Drafts", "Draft", "Draft Messages"}},
    {FolderRole::deleted, {"Trash", "Deleted Items", "Deleted Messages", "Deleted", "Bin", "Wastebasket"}},
    {FolderRole::outbox, {"Outbox", "Unsent Messages", "Queue"}},
};

bool sameName(std::string_view a, std::string_view b) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [&](char x, char y) { return lower(x) == lower(y); });
}

// Without the one leading component that only groups folders.
std::string_view topLevel(std::string_view path) {
  const auto slash = path.find('/');
  if (slash == std::string_view::npos) return path;
  const std::string_view root = path.substr(0, slash);
  const bool groups = sameName(root, "INBOX") || (root.starts_with('[') && root.ends_with(']'));
  return groups ? path.substr(slash + 1) : path;
}

}  // namespace

int namesRole(std::string_view path, FolderRole role) {
  const std::string_view name = topLevel(path);
  for (const Names& entry : table) {
    if (entry.role != role) continue;
    for (std::size_t i = 0; i < entry.names.size(); ++i) {
      if (entry.names[i].empty() || !sameName(entry.names[i], name)) continue;
      const int preference = static_cast<int>(entry.names.size() - i) * 2;
      return preference + (name.size() == path.size() ? 1 : 0);
    }
  }
  return 0;
}

std::string_view commonName(FolderRole role) {
  for (const Names& entry : table)
    if (entry.role == role) return entry.names[0];
  return "Inbox";
}

}  // namespace quillfile::mailbox
