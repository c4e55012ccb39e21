// The command line, taken apart.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hosts/mailbox/engine/prompts.h"

namespace quillfile::app {

// What the exit status says.
enum ExitStatus { done = 0, not_all_done = 1, wrong_command_line = 2, unusable = 3 };

// The command line asks for something that is not there or makes no sense.
struct WrongCommandLine {
  std::string reason;  // one sentence, what to do included
};

struct Options {
  std::string mail;      // empty: the usual places
  std::string settings;  // empty: the usual place
  std::string trace;     // empty: none
  std::optional<mailbox::PresetAnswer> answer;
  bool json = false;
  bool quiet = false;

  std::string command;                 // "save", "settings set"
  std::string folder;                  // empty: the Inbox
  std::vector<std::string> arguments;  // items, folders, files; or a key and a value
  bool once = false;                   // watch
  int poll = 0;                        // watch: seconds between looks, 0 for none
  bool remove = false;                 // monitor
  bool open = false;                   // forward, reply, reply-all: from an item's own window
};

// Reads the command line. Prints help or version and gives none, with `status` to exit with, where that is
// all that was asked for, or where the command line is wrong.
std::optional<Options> parseOptions(int argc, char** argv, int& status);

}  // namespace quillfile::app
