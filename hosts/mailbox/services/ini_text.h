// The text of an INI file, line by line: reading its values, and changing one while everything else stays as
// it is.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillfile::mailbox {

// All views and texts are UTF-8. Sections and keys compare ignoring ASCII case.
//   ; a comment, or #
//   [Quillfile]
//   SavePath = /home/u/Documents/Saved Attachments/
//   Quoted = "\x20 \"two\" words \n"
class IniText {
 public:
  struct Value {
    std::string section, key, value;
  };

  explicit IniText(std::string_view bytes);

  // Every value, in the file's order; of a key that stands twice in a section the last counts. Throws
  // Failure, whose sentence names `path` and the line, at a line that is no section, no value, no comment and
  // not empty.
  std::vector<Value> values(std::string_view path) const;
  // Sets the key, in its place or at the end of its section; without a value, takes it out.
  void set(std::string_view section, std::string_view key, const std::optional<std::string>& value);
  std::string bytes() const;

 private:
  std::vector<std::string> lines_;  // without their line feeds; a carriage return at an end stays
};

bool sameIgnoringCase(std::string_view a, std::string_view b);

}  // namespace quillfile::mailbox
