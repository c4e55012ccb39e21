#include "hosts/mailbox/services/programs.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "hosts/mailbox/services/failure.h"

namespace quillfile::mailbox {
namespace {

// Splits one command line; each member function takes one kind of piece off its front.
class Splitter {
 public:
  Splitter(std::string_view line, std::string_view path) : line_(line), path_(path) {}

  std::vector<std::string> run() {
    while (!line_.empty()) take();
    if (quote_ != 0)
      throw failure("Could not start the program: a quote in its command line is never closed");
    endWord();
    return std::move(words_);
  }

 private:
  void take() {
    if (quote_ != 0 && !path_.empty() && line_.starts_with(path_)) return add(path_);
    const char c = line_.front();
    if (quote_ == 0 && (c == ' ' || c == '\t' || c == '\n')) {
      line_.remove_prefix(1);
      return endWord();
    }
    if (c == quote_ || (quote_ == 0 && (c == '"' || c == '\''))) {
      quote_ = quote_ == 0 ? c : '\0';
      inWord_ = true;
      return line_.remove_prefix(1);
    }
    const bool escape = c == '\\' && quote_ != '\'' && line_.size() > 1;
    if (escape && (quote_ == 0 || line_[1] == '"' || line_[1] == '\\')) line_.remove_prefix(1);
    add(line_.substr(0, 1));
  }

  void add(std::string_view piece) {
    word_ += piece;
    inWord_ = true;
    line_.remove_prefix(piece.size());
  }

  void endWord() {
    if (inWord_) words_.push_back(std::move(word_));
    word_.clear();
    inWord_ = false;
  }

  std::string_view line_;
  std::string_view path_;
  std::vector<std::string> words_;
  std::string word_;
  bool inWord_ = false;
  char quote_ = 0;
};

// The program is another process's child by the time start() returns, so that nobody has to wait for it: a
// child of this process starts it and ends at once. A failure to start it comes back through a pipe that is
// closed on exec.
int startDetached(const std::vector<std::string>& words) {
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) return errno;
  const pid_t child = ::fork();
  if (child == 0) {
    const pid_t grandchild = ::fork();
    if (grandchild > 0) ::_exit(0);
    int error = grandchild < 0 ? errno : 0;
    if (grandchild == 0) {
      ::setsid();
      sigset_t none;
      ::sigemptyset(&none);
      ::sigprocmask(SIG_SETMASK, &none, nullptr);
      ::execvp(arguments[0], arguments.data());
      error = errno;
    }
    const ssize_t told = ::write(ends[1], &error, sizeof error);
    ::_exit(told == sizeof error ? 127 : 126);
  }
  int error = child < 0 ? errno : 0;
  ::close(ends[1]);
  if (child > 0) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (::read(ends[0], &error, sizeof error) < 0) error = errno;
  }
  ::close(ends[0]);
  return error;
}

}  // namespace

std::vector<std::string> commandWords(std::string_view commandLine, std::string_view path) {
  return Splitter{commandLine, path}.run();
}

void HostPrograms::start(TextView commandLine, TextView path) {
  if (beforeStart_) beforeStart_();
  const auto words = commandWords(toUtf8(commandLine), toUtf8(path));
  if (words.empty()) throw failure("Could not start the program: its command line is empty");
  for (const std::string& word : words)
    if (word.find('\0') != std::string::npos) throw fromErrno(EINVAL, "start", words[0]);
  if (const int error = startDetached(words); error != 0) throw fromErrno(error, "start", words[0]);
}

Text HostPrograms::machineName() {
  char name[256] = {};
  return ::gethostname(name, sizeof name - 1) == 0 ? fromUtf8(name) : Text{};
}

}  // namespace quillfile::mailbox
