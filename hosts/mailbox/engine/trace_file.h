// TraceFile: the engine's log on this host, one line of text for each trace line and each error report.
#pragma once

#include <cstdio>
#include <string>

#include "core/platform/engine.h"

namespace quillfile::mailbox {

class TraceFile : public EngineLog {
 public:
  // Appends to the file at `path`; "-" is standard error, an empty path nothing at all.
  // Throws Failure when the file cannot be opened.
  explicit TraceFile(const std::string& path);
  ~TraceFile() override;
  TraceFile(const TraceFile&) = delete;
  TraceFile& operator=(const TraceFile&) = delete;

  bool wanted() override { return file_ != nullptr; }
  // "time TAB module TAB procedure TAB message"
  void write(TextView module, TextView procedure, TextView message, std::int32_t number) override;
  // "time TAB ERROR level TAB source TAB message"
  void writeError(std::int32_t level, TextView source, TextView message);

 private:
  void writeLine(const std::string& line);

  std::FILE* file_ = nullptr;
};

// `text` in UTF-8 with carriage return, line feed and tab written as \r, \n and \t, so that it stays one
// line.
std::string onOneLine(TextView text);

}  // namespace quillfile::mailbox
