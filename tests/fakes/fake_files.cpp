#include "tests/fakes/fake_files.h"

#include <chrono>

namespace quillfile {
namespace {

constexpr std::int32_t readOnly = 1, hidden = 2;
constexpr std::int32_t notFound = 2, denied = 5, invalidHandle = 6, sharingViolation = 32,
                       invalidParameter = 87;
constexpr FileTimes::FileTime second = 10'000'000;

}  // namespace

Text FakeFiles::key(TextView path) const {
  if (!paths_.longPathPrefix.empty() && startsWith(path, paths_.longPathPrefix))
    path.remove_prefix(paths_.longPathPrefix.size());
  while (path.size() > 1 && endsWith(path, paths_.separator)) path.remove_suffix(1);
  Text result{path};
  if (paths_.drives)
    for (auto& unit : result)
      if (unit >= u'A' && unit <= u'Z') unit = static_cast<char16_t>(unit + (u'a' - u'A'));
  return result;
}

Text FakeFiles::parent(TextView path) const {
  const Text whole = key(path);
  const auto cut = findLast(whole, paths_.separator);
  return cut <= 1 ? Text{paths_.separator} : Text{left(whole, cut - 1)};
}

FakeFile& FakeFiles::add(TextView path, std::string content) {
  addFolder(parent(path));
  auto& file = files_[key(path)];
  file = {.content = std::move(content)};
  return file;
}

FakeFile* FakeFiles::find(TextView path) {
  const auto found = files_.find(key(path));
  return found == files_.end() ? nullptr : &found->second;
}

void FakeFiles::erase(TextView path) { files_.erase(key(path)); }

std::map<Text, FakeFile> FakeFiles::below(TextView folder) const {
  const Text beginning = key(folder) + Text{paths_.separator};
  std::map<Text, FakeFile> found;
  for (const auto& [path, file] : files_)
    if (startsWith(path, beginning)) found.emplace(path.substr(beginning.size()), file);
  return found;
}

void FakeFiles::addFolder(TextView path) {
  for (Text folder = key(path); folders_.insert(folder).second && folder != paths_.separator;)
    folder = parent(folder);
}

bool FakeFiles::makeFolder(TextView path) {
  for (Text folder = key(path); folder != paths_.separator && !folders_.contains(folder);
       folder = parent(folder))
    if (refused_.contains(folder)) return false;
  addFolder(path);
  return true;
}

void FakeFiles::write(TextView path, const std::string& content) {
  if (!folderExists(parent(path))) throw Failure{76, u"Path not found"};
  if (const auto* file = find(path); file && (file->attributes & readOnly))
    throw Failure{75, u"Path/File access error"};
  files_[key(path)] = {.content = content};
}

bool FakeFiles::fileListed(TextView path) {
  const auto* file = find(path);
  return file && !(file->attributes & hidden);
}

bool FakeFiles::folderExists(TextView path) {
  const Text folder = key(path);
  const bool root = folder == paths_.separator || (paths_.drives && folder.size() == 2 && folder[1] == u':');
  return root || folders_.contains(folder);
}

Text FakeFiles::firstFreePath(TextView folder, TextView base, TextView extension) {
  Text path = fill(u"{}{}{}", folder, base, extension);
  for (std::int32_t n = 1; fileListed(path); ++n) path = fill(u"{}{}-{}{}", folder, base, n, extension);
  return path;
}

FakeFile& FakeFiles::existing(TextView path) {
  auto* file = find(path);
  if (!file) throw Failure{53, u"File not found"};
  return *file;
}

void FakeFiles::deleteFile(TextView path) {
  record_.asked(u"FileSystem.deleteFile");
  if (existing(path).attributes & readOnly) throw Failure{70, u"Permission denied"};
  record_.did(fill(u"delete {}", path));
  erase(path);
}

std::int32_t FakeFiles::attributes(TextView path) {
  record_.asked(u"FileSystem.attributes");
  return existing(path).attributes;
}

void FakeFiles::setAttributes(TextView path, std::int32_t attributes) {
  record_.asked(u"FileSystem.setAttributes");
  existing(path).attributes = attributes;
  record_.did(fill(u"attributes of {} = {}", path, attributes));
}

bool FakeFiles::exists(const Ref<SafeItem>&, TextView path) { return fileListed(path); }

std::optional<FileTimes::FileTime> FakeFiles::systemTimeToFileTime(const SystemTime& time) {
  using namespace std::chrono;
  const year_month_day date{year{time[0]}, month{time[1]}, day{time[3]}};
  const bool fails = record_.refuses(u"FileTimes.systemTimeToFileTime") || !date.ok();
  if (fails) return lastError_ = invalidParameter, std::nullopt;
  const auto days = (sys_days{date} - sys_days{year{1601} / 1 / 1}).count();
  const auto seconds = ((days * 24LL + time[4]) * 60 + time[5]) * 60 + time[6];
  return static_cast<FileTime>(seconds) * second;
}

std::optional<FileTimes::FileTime> FakeFiles::localFileTimeToFileTime(FileTime local) {
  if (record_.refuses(u"FileTimes.localFileTimeToFileTime"))
    return lastError_ = invalidParameter, std::nullopt;
  return local - 2 * 3600 * second;
}

FileTimes::Handle FakeFiles::open(TextView call, TextView path, std::int32_t error) {
  if (record_.refuses(call)) error = denied;
  record_.did(error == 0 ? fill(u"{} {}", call, path) : fill(u"{} {}: error {}", call, path, error));
  if (error != 0) return lastError_ = error, invalid;
  open_[nextHandle_] = key(path);
  return nextHandle_++;
}

FileTimes::Handle FakeFiles::openToChange(TextView path) {
  if (opensAsZero) return lastError_ = denied, 0;
  const auto* file = find(path);
  return open(u"FileTimes.openToChange", path,
              !file                         ? notFound
              : file->attributes & readOnly ? denied
              : file->locked                ? sharingViolation
                                            : 0);
}

FileTimes::Handle FakeFiles::openAlone(TextView path) {
  const auto* file = find(path);
  return open(u"FileTimes.openAlone", path, !file ? notFound : file->locked ? sharingViolation : 0);
}

bool FakeFiles::setTimes(Handle handle, FileTime creation, FileTime lastAccess, FileTime lastWrite) {
  if (record_.refuses(u"FileTimes.setTimes")) return lastError_ = denied, false;
  const auto found = open_.find(handle);
  if (found == open_.end()) return lastError_ = invalidHandle, false;
  auto& file = files_[found->second];
  file.creation = creation, file.lastAccess = lastAccess, file.lastWrite = lastWrite;
  record_.did(fill(u"FileTimes.setTimes {} {} {}", creation, lastAccess, lastWrite));
  return true;
}

void FakeFiles::close(Handle handle) {
  open_.erase(handle);
  record_.did(u"FileTimes.close");
}

}  // namespace quillfile
