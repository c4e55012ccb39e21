// The tree of a store on disk: where its folders are, in either layout, and how they are called.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "hosts/mailbox/store/mail_store.h"

namespace quillfile::mailbox {

struct FoundFolder {
  std::string directory;
  std::string path;  // shown; unique within the store
};

struct StoreTree {
  StoreLayout layout = StoreLayout::maildir_plus_plus;
  std::vector<FoundFolder> folders;
};

// Looks below `directory`, in no particular order. A directory with cur/ and new/ is a folder. Symbolic links
// to directories are followed, circles are not. Throws Failure when `directory` cannot be read.
StoreTree findFolders(const std::string& directory);

// Where a new folder of that shown path belongs.
std::string directoryFor(const std::string& store, StoreLayout layout, std::string_view path);

// A path on disk as text that can be shown: each component as shownName() says.
std::string shownPath(std::string_view onDisk);

}  // namespace quillfile::mailbox
