#include "hosts/mailbox/store/listing.h"

#include <dirent.h>
#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <memory>

#include "hosts/mailbox/services/failure.h"
#include "hosts/mailbox/store/maildir_name.h"

namespace quillfile::mailbox {
namespace {

struct CloseDirectory {
  void operator()(DIR* directory) const { ::closedir(directory); }
};

}  // namespace

// cur/ is read after new/: a message that moves meanwhile is seen at least once.
Listing Listing::read(const std::string& folder) {
  Listing listing;
  listing.readDirectory(folder + "/new", true);
  listing.readDirectory(folder + "/cur", false);
  listing.sort();
  return listing;
}

void Listing::readDirectory(const std::string& path, bool isNew) {
  const std::unique_ptr<DIR, CloseDirectory> directory{::opendir(path.c_str())};
  if (!directory) {
    if (errno == ENOENT) return;  // some programs make new/ when mail first arrives
    throw fromErrno(errno, "read the mail folder", path);
  }
  for (errno = 0; const dirent* entry = ::readdir(directory.get()); errno = 0) {
    const std::string_view name = entry->d_name;
    const bool file = entry->d_type == DT_REG || entry->d_type == DT_UNKNOWN || entry->d_type == DT_LNK;
    if (name.front() == '.' || !file) continue;
    slots_.push_back(
        {static_cast<std::uint32_t>(names_.size()), static_cast<std::uint16_t>(name.size()), isNew});
    names_ += name;
  }
  if (errno != 0) throw fromErrno(errno, "read the mail folder", path);
}

namespace {

struct Order {
  std::int64_t time;
  std::string_view unique;
  bool operator<(const Order& other) const {
    return time != other.time ? time < other.time : unique < other.unique;
  }
};

Order orderOf(std::string_view unique) { return {deliveryTime(unique), unique}; }

}  // namespace

void Listing::sort() {
  const auto order = [this](const Slot& slot) { return orderOf(parseMaildirName(nameOf(slot)).unique); };
  // Of a message seen in both, the one in cur/ (read last) counts.
  std::stable_sort(slots_.begin(), slots_.end(), [&](const Slot& a, const Slot& b) {
    const Order left = order(a), right = order(b);
    return left < right || (!(right < left) && a.isNew < b.isNew);
  });
  const auto same = [&](const Slot& a, const Slot& b) { return order(a).unique == order(b).unique; };
  slots_.erase(std::unique(slots_.begin(), slots_.end(), same), slots_.end());
  slots_.shrink_to_fit();
  names_.shrink_to_fit();
}

Entry Listing::operator[](std::size_t index) const {
  const std::string_view name = nameOf(slots_[index]);
  const MaildirName parsed = parseMaildirName(name);
  return {.fileName = name, .unique = parsed.unique, .flags = parsed.flags, .isNew = slots_[index].isNew};
}

std::optional<Entry> Listing::find(std::string_view unique) const {
  const Order wanted = orderOf(unique);
  const auto found =
      std::lower_bound(slots_.begin(), slots_.end(), wanted, [this](const Slot& slot, const Order& sought) {
        return orderOf(parseMaildirName(nameOf(slot)).unique) < sought;
      });
  if (found == slots_.end()) return std::nullopt;
  const Entry entry = (*this)[static_cast<std::size_t>(found - slots_.begin())];
  return entry.unique == unique ? std::optional{entry} : std::nullopt;
}

std::size_t Listing::unread() const {
  std::size_t count = 0;
  for (std::size_t i = 0; i < size(); ++i) count += (*this)[i].unread() ? 1 : 0;
  return count;
}

}  // namespace quillfile::mailbox
