#include "hosts/windows/services/disk_path.h"

namespace quillfile::windows {

namespace {

constexpr std::size_t classicLimit = 248;  // CreateDirectoryW's, the lowest: 260 less a short file name

bool beginsAtDrive(TextView path) { return path.size() >= 3 && path.substr(1, 2) == u":\\"; }
bool beginsAtShare(TextView path) {
  return path.size() > 2 && startsWith(path, u"\\\\") && path[2] != u'?' && path[2] != u'.' &&
         path[2] != u'\\';
}

}  // namespace

Text diskPath(TextView path) {
  if (path.size() < classicLimit) return Text{path};
  const Text straight = replaceAll(path, u"/", u"\\");  // the long form takes no other separator
  if (beginsAtDrive(straight)) return fill(u"\\\\?\\{}", straight);
  if (beginsAtShare(straight)) return fill(u"\\\\?\\UNC\\{}", from(straight, 3));
  return Text{path};
}

bool isPlainFullPath(TextView path) {
  return (beginsAtDrive(path) || beginsAtShare(path)) && path.find_first_of(u"*?<>|\"") == TextView::npos;
}

}  // namespace quillfile::windows
