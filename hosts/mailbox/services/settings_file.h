// SettingsFile: the port SettingsStore over an INI file that people and other programs edit too. Sections and
// keys compare ignoring ASCII case, as the registry does. Unknown keys, comments and order survive a write;
// writes are atomic and exclude each other; a reader sees a change at once and pays one stat when there is
// none.
#pragma once

#include <cstdint>
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
  // The file need not be there: it and its folder are made at the first write.
  explicit SettingsFile(std::string path);

  // Throws Failure when the file cannot be read, is larger than 1 MB or holds a line that is none of the
  // above (the sentence names the line), whichever key is asked for.
  std::optional<Text> read(TextView application, TextView section, TextView key) override;
  // Throws Failure; the file is then as it was.
  void write(TextView application, TextView section, TextView key, TextView value) override;
  // Takes the key out; nothing happens when it is absent. Throws Failure.
  void erase(TextView section, TextView key);

  const std::string& path() const { return path_; }

 private:
  struct Stamp {  // what a changed file does not share with its earlier self
    std::uint64_t device = 0, inode = 0;
    std::int64_t size = -1, modified = 0, changed = 0;
    bool operator==(const Stamp&) const = default;
  };
  struct HashText {
    using is_transparent = void;
    std::size_t operator()(TextView text) const { return std::hash<TextView>{}(text); }
  };

  Stamp stampNow() const;
  void load();
  void change(TextView section, TextView key, const std::optional<Text>& value);

  std::string path_;
  Stamp stamp_;
  bool settled_ =
      false;  // false while the file is so young that a second change could leave its stamp the same
  std::unordered_map<Text, Text, HashText, std::equal_to<>>
      values_;   // by section, a line feed, key, in lower case
  Text wanted_;  // the key being looked up; kept for its memory
};

}  // namespace quillfile::mailbox
