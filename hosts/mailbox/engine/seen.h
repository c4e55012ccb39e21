// Seen: what a watch remembers across its restarts: which messages of which folders it need not look at
// again, and which one it was busy with when it ended. One file for each store; a message is 8 bytes here and
// one line there.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/mailbox/services/descriptor.h"

namespace quillfile::mailbox {

// A message's unique name as it is remembered: FNV-1a, 64 bits.
std::uint64_t seenHash(std::string_view unique);

// The file for a store: "watch-HASH" of the store's real path in `stateFolder`/quillfile.
std::string seenFile(const std::string& stateFolder, const std::string& store);

class Seen {
 public:
  // Reads `file`, making it and its folder when they are not there, and keeps every other watch off it until
  // this one goes. What a power cut has left half-written is left out. Throws Failure when it cannot be used
  // or another watch has it.
  explicit Seen(const std::string& file);
  Seen(const Seen&) = delete;
  Seen& operator=(const Seen&) = delete;

  // False until the folder was first looked at: what is in it then counts as seen.
  bool knows(const std::string& folder) const { return folders_.contains(folder); }
  void learn(const std::string& folder);

  bool contains(const std::string& folder, std::string_view unique) const;
  // The message is done with, however it went.
  void add(const std::string& folder, std::string_view unique);
  void addAll(const std::string& folder, const std::vector<std::uint64_t>& hashes);
  // Work on the message begins; the next watch knows of it, however this one ends, but for a power cut. How
  // often it has begun since add(), this time included.
  int beginTry(const std::string& folder, std::string_view unique);

  // Forgets the messages of the folder that are not among `present` (hashes in ascending order).
  void keepOnly(const std::string& folder, const std::vector<std::uint64_t>& present);

  // What was added survives a power cut from here on. Cheap when there is nothing new.
  void flush();

 private:
  struct FolderState {
    std::size_t number = 0;           // stands for the folder's path in the file
    std::vector<std::uint64_t> seen;  // ascending
    std::map<std::uint64_t, int> tries;
  };
  void read();
  void apply(std::string_view line, std::map<std::size_t, std::string>& names);
  void append(const std::string& line);
  void writeOut();
  void rewrite();
  std::size_t live() const;

  std::string file_;
  Descriptor lock_, log_;
  std::map<std::string, FolderState> folders_;
  std::string waiting_;    // lines not written yet
  std::size_t lines_ = 0;  // in the file
  bool dirty_ = false;     // written and not flushed
};

}  // namespace quillfile::mailbox
