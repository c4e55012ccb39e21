#include "hosts/mailbox/engine/trace_file.h"

#include <fcntl.h>

#include <cerrno>
#include <chrono>
#include <ctime>

#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {
namespace {

// Local time to the millisecond, as ISO 8601 writes it.
std::string now() {
  const auto time = std::chrono::system_clock::now();
  const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
  const auto sinceEpoch =
      std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
  std::tm local{};
  localtime_r(&seconds, &local);
  char text[40];
  const auto length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &local);
  std::snprintf(text + length, sizeof text - length, ".%03d", static_cast<int>(sinceEpoch % 1000));
  return text;
}

}  // namespace

std::string onOneLine(TextView text) {
  std::string line;
  for (const char unit : toUtf8(text)) {
    switch (unit) {
      case '\r':
        line += "\\r";
        break;
      case '\n':
        line += "\\n";
        break;
      case '\t':
        line += "\\t";
        break;
      default:
        line += unit;
    }
  }
  return line;
}

TraceFile::TraceFile(const std::string& path) {
  if (path.empty()) return;
  if (path == "-") {
    file_ = stderr;
    return;
  }
  const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY, 0600);
  if (descriptor < 0) throw fromErrno(errno, "open the trace file", path);
  file_ = fdopen(descriptor, "a");
}

TraceFile::~TraceFile() {
  if (file_ && file_ != stderr) std::fclose(file_);
}

void TraceFile::writeLine(const std::string& line) {
  std::fwrite(line.data(), 1, line.size(), file_);
  std::fflush(file_);  // what happened last before a crash is what a reader looks for
}

void TraceFile::write(TextView module, TextView procedure, TextView message, std::int32_t) {
  if (!file_) return;
  writeLine(now() + '\t' + onOneLine(module) + '\t' + onOneLine(procedure) + '\t' + onOneLine(message) +
            '\n');
}

void TraceFile::writeError(std::int32_t level, TextView source, TextView message) {
  if (!file_) return;
  writeLine(now() + "\tERROR " + std::to_string(level) + '\t' + onOneLine(source) + '\t' +
            onOneLine(message) + '\n');
}

}  // namespace quillfile::mailbox
