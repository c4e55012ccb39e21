#include "hosts/mailbox/engine/seen.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "hosts/mailbox/services/failure.h"
#include "hosts/mailbox/services/names.h"

namespace quillfile::mailbox {
namespace {

// The file is a log, a line for each of these:
//   f NUMBER PATH   a folder, and what stands for it below
//   + NUMBER HASH   a message of it is done with
//   t NUMBER HASH   work on a message begins
constexpr std::string_view header = "quillfile watch 1";

std::string hex(std::uint64_t value) {
  char text[20];
  std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(value));
  return text;
}

std::string line(char kind, std::size_t number, std::string_view rest) {
  return std::string{kind}.append(" ").append(std::to_string(number)).append(" ").append(rest);
}

bool insert(std::vector<std::uint64_t>& sorted, std::uint64_t value) {
  const auto at = std::lower_bound(sorted.begin(), sorted.end(), value);
  if (at != sorted.end() && *at == value) return false;
  sorted.insert(at, value);
  return true;
}

void sortOnce(std::vector<std::uint64_t>& values) {
  std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
}

Descriptor openFile(const std::string& path, int flags) {
  Descriptor file{::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | flags, 0600)};
  if (!file) throw fromErrno(errno, "open", path);
  return file;
}

void writeAll(int file, std::string_view text, const std::string& path) {
  while (!text.empty()) {
    const auto written = ::write(file, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) throw fromErrno(errno, "write", path);
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

}  // namespace

std::uint64_t seenHash(std::string_view unique) {
  std::uint64_t hash = 0xCBF29CE484222325;
  for (const char c : unique) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
  return hash;
}

std::string seenFile(const std::string& stateFolder, const std::string& store) {
  std::error_code error;
  const auto real = std::filesystem::canonical(store, error);
  return stateFolder + "/quillfile/watch-" + hex(seenHash(error ? store : real.string()));
}

Seen::Seen(const std::string& file) : file_(file) {
  const auto folder = std::filesystem::path(file).parent_path();
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  lock_ = openFile(file + ".lock", 0);
  if (::flock(lock_.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
    throw failure("Another watch is running over this mail store");
  read();
  rewrite();
}

void Seen::read() {
  std::ifstream in{file_, std::ios::binary};
  std::string text;
  if (!std::getline(in, text) || text != header) return;
  std::map<std::size_t, std::string> names;
  while (std::getline(in, text) && !in.eof()) apply(text, names);  // a line without its end is left out
  for (auto& [path, state] : folders_) sortOnce(state.seen);
}

void Seen::apply(std::string_view text, std::map<std::size_t, std::string>& names) {
  if (text.size() < 4 || text[1] != ' ') return;
  const char* const end = text.data() + text.size();
  std::size_t number = 0;
  const auto [after, bad] = std::from_chars(text.data() + 2, end, number);
  if (bad != std::errc{} || after == end || *after != ' ') return;
  const std::string_view rest = text.substr(static_cast<std::size_t>(after + 1 - text.data()));
  if (text[0] == 'f') {
    names[number] = rest;
    folders_[names[number]];
    return;
  }
  const auto name = names.find(number);
  std::uint64_t hash = 0;
  const auto parsed = std::from_chars(rest.data(), end, hash, 16);
  if (name == names.end() || rest.size() != 16 || parsed.ptr != end) return;
  FolderState& state = folders_[name->second];
  if (text[0] == 't') ++state.tries[hash];
  if (text[0] == '+') state.seen.push_back(hash), state.tries.erase(hash);
}

void Seen::learn(const std::string& folder) {
  if (knows(folder)) return;
  const std::size_t number = folders_.size();
  folders_[folder].number = number;
  append(line('f', number, folder));
}

bool Seen::contains(const std::string& folder, std::string_view unique) const {
  const auto found = folders_.find(folder);
  if (found == folders_.end()) return false;
  const auto& seen = found->second.seen;
  return std::binary_search(seen.begin(), seen.end(), seenHash(unique));
}

void Seen::add(const std::string& folder, std::string_view unique) {
  learn(folder);
  FolderState& state = folders_[folder];
  const auto hash = seenHash(unique);
  state.tries.erase(hash);
  if (insert(state.seen, hash)) append(line('+', state.number, hex(hash)));
}

void Seen::addAll(const std::string& folder, const std::vector<std::uint64_t>& hashes) {
  learn(folder);
  FolderState& state = folders_[folder];
  for (const auto hash : hashes) append(line('+', state.number, hex(hash)));
  state.seen.insert(state.seen.end(), hashes.begin(), hashes.end());
  sortOnce(state.seen);
}

int Seen::beginTry(const std::string& folder, std::string_view unique) {
  learn(folder);
  FolderState& state = folders_[folder];
  const auto hash = seenHash(unique);
  append(line('t', state.number, hex(hash)));
  writeOut();
  return ++state.tries[hash];
}

void Seen::keepOnly(const std::string& folder, const std::vector<std::uint64_t>& present) {
  const auto found = folders_.find(folder);
  if (found == folders_.end()) return;
  const auto gone = [&](std::uint64_t hash) {
    return !std::binary_search(present.begin(), present.end(), hash);
  };
  std::erase_if(found->second.seen, gone);
  std::erase_if(found->second.tries, [&](const auto& entry) { return gone(entry.first); });
  found->second.seen.shrink_to_fit();
}

void Seen::append(const std::string& text) {
  waiting_.append(text).append("\n");
  ++lines_;
}

void Seen::writeOut() {
  if (waiting_.empty()) return;
  writeAll(log_.get(), waiting_, file_);
  waiting_ = {};
  dirty_ = true;
}

std::size_t Seen::live() const {
  std::size_t count = folders_.size();
  for (const auto& [path, state] : folders_) count += state.seen.size() + state.tries.size();
  return count;
}

void Seen::flush() {
  if (lines_ > 2 * live() + 1000) return rewrite();
  writeOut();
  if (std::exchange(dirty_, false) && ::fdatasync(log_.get()) != 0) throw fromErrno(errno, "flush", file_);
}

// Writes the file anew, in one step.
void Seen::rewrite() {
  const std::string fresh = file_ + ".new";
  log_ = openFile(fresh, O_TRUNC | O_APPEND);
  waiting_ = std::string{header} + "\n";
  lines_ = 0;
  std::size_t number = 0;
  for (auto& [path, state] : folders_) {
    state.number = number++;
    append(line('f', state.number, path));
    for (const auto hash : state.seen) append(line('+', state.number, hex(hash)));
    for (const auto& [hash, tries] : state.tries)
      for (int i = 0; i < tries; ++i) append(line('t', state.number, hex(hash)));
  }
  writeOut();
  dirty_ = false;
  if (::fsync(log_.get()) != 0) throw fromErrno(errno, "flush", fresh);
  if (::rename(fresh.c_str(), file_.c_str()) != 0) throw fromErrno(errno, "put in place", file_);
  flushDirectory(std::filesystem::path(file_).parent_path().string());
}

}  // namespace quillfile::mailbox
