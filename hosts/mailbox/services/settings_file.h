// SettingsFile: the port SettingsStore over an INI file that people and other programs edit too. Sections and
// keys compare ignoring ASCII case, as the registry does. Unknown keys, comments and order survive a write;
// writes are atomic and exclude each other. A reader looks at the file (one stat when nothing has changed) at
// most once in each tick of the system's coarse clock, 1 to 10 ms: its own writes it sees at once, another
// program's within a tick, and with lookAgain() at once too.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "core/platform/settings_store.h"

namespace quillfile::mailbox {

// The application is "Corvane" throughout and not part of the file: the section decides.
//   ; a comment
//   [Quillfile]
//   SavePath=/home/u/Documents/Saved Attachments/
// A value stands as it is after "=", to the end of the line, blanks at its ends dropped. One that has blanks
// at an end, control characters or quotes around it stands in double quotes with \\, \", \n, \r, \t, \xHH
// inside.
class SettingsFile : public SettingsStore {
 public:
  // A reading that stays the same for as long as one look at the file is to do.
  using Ticks = std::function<std::int64_t()>;

  // The file need not be there: it and its folder are made at the first write. `ticks` by default is
  // CLOCK_MONOTONIC_COARSE, which costs no call of the kernel.
  explicit SettingsFile(std::string path, Ticks ticks = {});

  // Throws Failure when the file cannot be read, is larger than 1 MB or holds a line that is none of the
  // above (the sentence names the line), whichever key is asked for.
  std::optional<Text> read(TextView application, TextView section, TextView key) override;
  // Throws Failure; the file is then as it was.
  void write(TextView application, TextView section, TextView key, TextView value) override;
  // Takes the key out; nothing happens when it is absent. Throws Failure.
  void erase(TextView section, TextView key);

  // The next reading looks at the file, whenever the last one did: for whoever has been told of a change.
  void lookAgain() { looked_.reset(); }

  const std::string& path() const { return path_; }

 private:
  struct Stamp {  // what a changed file does not share with its earlier self
    std::uint64_t device = 0, inode = 0;
    std::int64_t size = -1, modified = 0, changed = 0;
    bool operator==(const Stamp&) const = default;
  };
  struct Name {  // of a setting, in letters of either case
    TextView section, key;
  };
  struct HashName {
    std::size_t operator()(const Name& name) const;
  };
  struct SameName {
    bool operator()(const Name& a, const Name& b) const;
  };

  struct Setting {
    Text section, key, value;
  };

  Stamp stampNow() const;
  void load();
  void readValues(const Stamp& stamp);
  void change(TextView section, TextView key, const std::optional<Text>& value);

  std::string path_;
  Ticks ticks_;
  std::optional<std::int64_t> looked_;  // the tick of the last look at the file
  Stamp stamp_;
  bool settled_ =
      false;  // false while the file is so young that a second change could leave its stamp the same
  std::deque<Setting> settings_;  // as they stand in the file
  std::unordered_map<Name, const Text*, HashName, SameName>
      values_;  // into settings_; of equal ones the last
};

}  // namespace quillfile::mailbox
