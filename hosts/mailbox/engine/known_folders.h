// Where this system's users keep things: the XDG base directories and user directories.
#pragma once

#include <string>

namespace quillfile::mailbox {

// Each without a separator at its end: what the environment's variable says where that is an absolute path,
// else the usual place below the home folder.
std::string homeFolder();
std::string configFolder();     // $XDG_CONFIG_HOME, ~/.config
std::string stateFolder();      // $XDG_STATE_HOME, ~/.local/state
std::string dataFolder();       // $XDG_DATA_HOME, ~/.local/share
std::string documentsFolder();  // $XDG_DOCUMENTS_DIR, or as user-dirs.dirs says, else ~/Documents

// `path` with a leading "~" and each "$NAME" or "${NAME}" that the environment knows replaced, made absolute.
// An empty path is the current folder, with the separator at its end.
std::string expandPath(const std::string& path);

}  // namespace quillfile::mailbox
