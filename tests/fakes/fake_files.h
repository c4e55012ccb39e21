// FakeFiles: a file system held in memory, behind the three ports that reach files. Names ignore the case of
// ASCII letters under Windows path rules. Error numbers are Windows' own (2 not found, 5 denied, 32 shared).
#pragma once

#include <map>
#include <set>
#include <string>

#include "core/platform/path_rules.h"
#include "core/platform/system.h"
#include "tests/fakes/recorder.h"

namespace quillfile {

struct FakeFile {
  std::string content;
  std::int32_t attributes = 32;  // the archive bit alone; bit 1: read-only, bit 2: hidden
  FileTimes::FileTime creation = 0, lastAccess = 0, lastWrite = 0;
  bool locked = false;  // another process holds it open, sharing it with nobody
};

class FakeFiles : public FileSystem, public LinkedFiles, public FileTimes {
 public:
  FakeFiles(Recorder& record, const PathRules& paths) : record_(record), paths_(paths) {}

  // For a test to arrange and to look. A file's folders are made with it.
  FakeFile& add(TextView path, std::string content = "content");
  FakeFile* find(TextView path);  // null when there is none
  void erase(TextView path);
  // Those below a folder, by their paths from there, as the rules compare them.
  std::map<Text, FakeFile> below(TextView folder) const;
  void addFolder(TextView path);
  void refuseFolder(TextView path) { refused_.insert(key(path)); }  // this folder cannot be created
  bool makeFolder(TextView path);                                   // with its parents
  void write(TextView path, const std::string& content);            // as a program would: throws Failure
  bool opensAsZero = false;  // openToChange() answers with a handle of 0, and access denied
  std::size_t openHandles() const { return open_.size(); }

  bool fileListed(TextView path) override;
  bool folderExists(TextView path) override;
  Text firstFreePath(TextView folder, TextView base, TextView extension) override;
  void deleteFile(TextView path) override;
  std::int32_t attributes(TextView path) override;
  void setAttributes(TextView path, std::int32_t attributes) override;

  bool exists(const Ref<SafeItem>& item, TextView path) override;

  std::optional<FileTime> systemTimeToFileTime(const SystemTime& time) override;
  std::optional<FileTime> localFileTimeToFileTime(
      FileTime local) override;  // local time is two hours ahead of UTC
  Handle openToChange(TextView path) override;
  Handle openAlone(TextView path) override;
  bool setTimes(Handle handle, FileTime creation, FileTime lastAccess, FileTime lastWrite) override;
  void close(Handle handle) override;
  std::int32_t lastError() override { return lastError_; }

 private:
  Text key(TextView path) const;  // what two spellings of one path have in common
  Text parent(TextView path) const;
  FakeFile& existing(TextView path);  // throws Failure
  Handle open(TextView call, TextView path, std::int32_t error);

  Recorder& record_;
  PathRules paths_;
  std::map<Text, FakeFile> files_;
  std::set<Text> folders_;
  std::set<Text> refused_;
  std::map<Handle, Text> open_;
  Handle nextHandle_ = 1;
  std::int32_t lastError_ = 0;
};

}  // namespace quillfile
