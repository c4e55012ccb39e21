#include "hosts/mailbox/engine/terminal.h"

#include <termios.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <iostream>

namespace quillfile::mailbox {
namespace {

// The terminal without line editing, for as long as one key is waited for.
class KeyMode {
 public:
  KeyMode() {
    if (tcgetattr(STDIN_FILENO, &before_) != 0) return;
    termios keys = before_;
    keys.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    keys.c_cc[VMIN] = 1;
    keys.c_cc[VTIME] = 0;
    changed_ = tcsetattr(STDIN_FILENO, TCSANOW, &keys) == 0;
  }
  ~KeyMode() {
    if (changed_) tcsetattr(STDIN_FILENO, TCSANOW, &before_);
  }
  KeyMode(const KeyMode&) = delete;
  KeyMode& operator=(const KeyMode&) = delete;

 private:
  termios before_{};
  bool changed_ = false;
};

}  // namespace

bool StandardTerminal::present() { return isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1; }

void StandardTerminal::show(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
  std::fflush(stderr);
}

std::optional<char> StandardTerminal::readKey(std::string_view keys) {
  const KeyMode mode;
  for (;;) {
    char key = 0;
    const ssize_t got = read(STDIN_FILENO, &key, 1);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return std::nullopt;
    key = static_cast<char>(std::tolower(static_cast<unsigned char>(key)));
    if (keys.find(key) == std::string_view::npos) continue;
    show(std::string{key, '\n'});
    return key;
  }
}

std::optional<std::string> StandardTerminal::readLine() {
  std::string line;
  if (!std::getline(std::cin, line)) return std::nullopt;
  return line;
}

}  // namespace quillfile::mailbox
