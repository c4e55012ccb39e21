// Listing: the messages of one folder as one reading of new/ and cur/ found them. Small: a few bytes for each
// message besides its name, so that 200,000 fit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillfile::mailbox {

// One message. The views live as long as the listing.
struct Entry {
  std::string_view fileName;  // within new/ or cur/
  std::string_view unique;    // identifies the message while it is in its folder, whatever its flags
  std::string_view flags;     // empty in new/
  bool isNew = false;         // in new/: no reader has seen it

  bool unread() const { return isNew || flags.find('S') == std::string_view::npos; }
};

class Listing {
 public:
  // Reads `folder`/new and `folder`/cur. A name seen twice, moved while being read, is kept once. Throws
  // Failure.
  static Listing read(const std::string& folder);

  // Oldest first: by the delivery time in the unique name, then by the name itself.
  std::size_t size() const { return slots_.size(); }
  Entry operator[](std::size_t index) const;  // from 0
  std::optional<Entry> find(std::string_view unique) const;
  std::size_t unread() const;

 private:
  struct Slot {
    std::uint32_t offset;
    std::uint16_t length;
    bool isNew;
  };
  void readDirectory(const std::string& path, bool isNew);
  void sort();
  std::string_view nameOf(const Slot& slot) const { return {names_.data() + slot.offset, slot.length}; }

  std::string names_;
  std::vector<Slot> slots_;
};

}  // namespace quillfile::mailbox
