#include "hosts/mailbox/store/store_tree.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <set>
#include <utility>

#include "hosts/mailbox/services/failure.h"
#include "hosts/mailbox/store/folder_name.h"

namespace quillfile::mailbox {
namespace {

constexpr int deepest = 32;  // levels of nested folders

struct CloseDirectory {
  void operator()(DIR* directory) const { ::closedir(directory); }
};

std::string joined(const std::string& path, const std::string& name) {
  std::string whole = path;
  return whole.append("/").append(name);
}

bool isDirectory(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool isMaildir(const std::string& path) { return isDirectory(path + "/cur") && isDirectory(path + "/new"); }

std::vector<std::string> subdirectories(const std::string& path, bool mustBeReadable) {
  const std::unique_ptr<DIR, CloseDirectory> directory{::opendir(path.c_str())};
  if (!directory) {
    if (mustBeReadable) throw fromErrno(errno, "open the mail store", path);
    return {};
  }
  std::vector<std::string> names;
  while (const dirent* entry = ::readdir(directory.get())) {
    const std::string name = entry->d_name;
    const bool own = name == "." || name == ".." || name == "cur" || name == "new" || name == "tmp";
    const bool possible = entry->d_type == DT_DIR || entry->d_type == DT_LNK || entry->d_type == DT_UNKNOWN;
    if (!own && possible && isDirectory(joined(path, name))) names.push_back(name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

// "Projects.2026" -> "Projects/2026"; every component shown.
std::string dottedPath(std::string_view name) {
  std::string path;
  for (std::size_t begin = 0; begin <= name.size();) {
    const auto end = std::min(name.find('.', begin), name.size());
    if (begin > 0) path += '/';
    path += shownName(name.substr(begin, end - begin));
    begin = end + 1;
  }
  return path;
}

class Search {
 public:
  explicit Search(std::string root) : root_(std::move(root)) {}

  StoreTree run() {
    const bool rootIsFolder = isMaildir(root_);
    if (rootIsFolder) add(root_, "Inbox");
    bool dotted = false;
    for (const std::string& name : subdirectories(root_, true)) {
      const std::string directory = root_ + "/" + name;
      if (name.front() == '.' && rootIsFolder) {
        if (name.size() < 2 || !isMaildir(directory)) continue;
        add(directory, dottedPath(name.substr(1)));
        dotted = true;
      } else {
        descend(directory, shownComponent(name), 1);
      }
    }
    const bool nested = !rootIsFolder || (!dotted && tree_.folders.size() > 1);
    tree_.layout = nested ? StoreLayout::nested : StoreLayout::maildir_plus_plus;
    return std::move(tree_);
  }

 private:
  // Some sync programs write a folder's children with a point before their names.
  static std::string shownComponent(std::string_view name) {
    return shownName(name.size() > 1 && name.front() == '.' ? name.substr(1) : name);
  }

  void descend(const std::string& directory, const std::string& path, int depth) {
    struct stat status {};
    if (depth > deepest || ::stat(directory.c_str(), &status) != 0) return;
    if (!seen_.insert({status.st_dev, status.st_ino}).second) return;
    if (isMaildir(directory)) add(directory, inboxOr(path));
    for (const std::string& name : subdirectories(directory, false))
      descend(joined(directory, name), joined(path, shownComponent(name)), depth + 1);
  }

  static std::string inboxOr(const std::string& path) {
    return path == "INBOX" || path == "inbox" ? "Inbox" : path;
  }

  // Two names that look the same when shown are told apart by a number.
  void add(const std::string& directory, std::string path) {
    const std::string base = path;
    for (int n = 2; !paths_.insert(path).second; ++n) path = base + " (" + std::to_string(n) + ")";
    tree_.folders.push_back({directory, path});
  }

  std::string root_;
  StoreTree tree_;
  std::set<std::string> paths_;
  std::set<std::pair<dev_t, ino_t>> seen_;
};

}  // namespace

StoreTree findFolders(const std::string& directory) { return Search{directory}.run(); }

std::string directoryFor(const std::string& store, StoreLayout layout, std::string_view path) {
  if (path == "Inbox") return layout == StoreLayout::nested ? store + "/INBOX" : store;
  std::string directory = store + "/";
  for (std::size_t begin = 0; begin <= path.size();) {
    const auto end = std::min(path.find('/', begin), path.size());
    if (layout == StoreLayout::maildir_plus_plus) {
      directory += '.';
    } else if (begin > 0) {
      directory += '/';
    }
    directory += encodedName(path.substr(begin, end - begin));
    begin = end + 1;
  }
  return directory;
}

std::string shownPath(std::string_view onDisk) {
  std::string path;
  for (std::size_t begin = 0; begin <= onDisk.size();) {
    const auto end = std::min(onDisk.find('/', begin), onDisk.size());
    if (begin > 0) path += '/';
    path += shownName(onDisk.substr(begin, end - begin));
    begin = end + 1;
  }
  return path;
}

}  // namespace quillfile::mailbox
