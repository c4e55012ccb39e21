// ScriptedTerminal: a terminal with somebody who types what the test says.
#pragma once

#include <string>
#include <vector>

#include "hosts/mailbox/engine/terminal.h"

namespace quillfile::mailbox {

class ScriptedTerminal : public Terminal {
 public:
  bool here = true;
  std::string keys;
  std::vector<std::string> lines;
  std::string shown;

  bool present() override { return here; }
  void show(std::string_view text) override { shown += text; }
  std::optional<char> readKey(std::string_view) override {
    if (keys.empty()) return std::nullopt;
    const char key = keys.front();
    keys.erase(0, 1);
    return key;
  }
  std::optional<std::string> readLine() override {
    if (lines.empty()) return std::nullopt;
    const std::string line = lines.front();
    lines.erase(lines.begin());
    return line;
  }
};

}  // namespace quillfile::mailbox
