#include "hosts/mailbox/engine/terminal.h"

#include <signal.h>
#include <termios.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <iostream>

namespace quillfile::mailbox {
namespace {

// The terminal without line editing, for as long as one key is waited for. The interrupt key (Ctrl-C) is read
// like the others: as a signal it could end the program in the middle, with the terminal left as it is here.
class KeyMode {
 public:
  KeyMode() {
    if (tcgetattr(STDIN_FILENO, &before_) != 0) return;
    termios keys = before_;
    keys.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    keys.c_cc[VMIN] = 1;
    keys.c_cc[VTIME] = 0;
    keys.c_cc[VINTR] = _POSIX_VDISABLE;
    changed_ = tcsetattr(STDIN_FILENO, TCSANOW, &keys) == 0;
  }
  ~KeyMode() {
    if (changed_) tcsetattr(STDIN_FILENO, TCSANOW, &before_);
  }
  KeyMode(const KeyMode&) = delete;
  KeyMode& operator=(const KeyMode&) = delete;

  bool isInterrupt(char key) const {
    const cc_t wanted = before_.c_cc[VINTR];
    return changed_ && wanted != _POSIX_VDISABLE && static_cast<cc_t>(key) == wanted;
  }

 private:
  termios before_{};
  bool changed_ = false;
};

constexpr char interrupt = '\3';

// One of `keys`, or `interrupt`; none at the end of input.
std::optional<char> keyAmong(std::string_view keys) {
  const KeyMode mode;
  for (;;) {
    char key = 0;
    const ssize_t got = read(STDIN_FILENO, &key, 1);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return std::nullopt;
    if (mode.isInterrupt(key)) return interrupt;
    key = static_cast<char>(std::tolower(static_cast<unsigned char>(key)));
    if (keys.find(key) != std::string_view::npos) return key;
  }
}

}  // namespace

bool StandardTerminal::present() { return isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1; }

void StandardTerminal::show(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
  std::fflush(stderr);
}

std::optional<char> StandardTerminal::readKey(std::string_view keys) {
  const auto key = keyAmong(keys);
  if (!key) return std::nullopt;
  if (*key != interrupt) {
    show(std::string{*key, '\n'});
    return key;
  }
  show("\n");
  raise(SIGINT);  // ends the program, unless it wants to finish first
  return std::nullopt;
}

std::optional<std::string> StandardTerminal::readLine() {
  std::string line;
  if (!std::getline(std::cin, line)) return std::nullopt;
  return line;
}

}  // namespace quillfile::mailbox
