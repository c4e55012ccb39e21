#include "hosts/mailbox/engine/item_order.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <compare>
#include <numeric>
#include <optional>

#include "hosts/mailbox/mime/date.h"
#include "hosts/mailbox/mime/header.h"
#include "hosts/mailbox/services/beside.h"
#include "hosts/mailbox/services/descriptor.h"

namespace quillfile::mailbox {
namespace {

constexpr std::size_t headerStart = 4 << 10;  // many headers fit; one page, which costs least
constexpr std::size_t worthTwoThreads = 256;  // messages; each thread reads one half of them
constexpr std::size_t headerMost = 2 << 20;   // the longest header that is looked through for a date

// The fields at the front of `bytes`, with the line end of the last; none when the empty line behind them is
// not there.
std::optional<std::string_view> fieldsOf(std::string_view bytes) {
  for (auto at = bytes.find('\n'); at != bytes.npos; at = bytes.find('\n', at + 1)) {
    const auto next = bytes.substr(at + 1, 2);
    if (next.starts_with('\n') || next == "\r\n") return bytes.substr(0, at + 1);
  }
  return std::nullopt;
}

// What a message is ordered by. All of it stays what it is when the message is rewritten.
struct Place {
  std::int64_t received = 0;   // 0 when it cannot be read: it comes first, and is reported when it is opened
  std::int64_t modified = 0;   // nanoseconds
  std::uint64_t likeness = 0;  // of its header, where the other two are another's too
  // NOLINTNEXTLINE(modernize-use-nullptr): clang-tidy 14 misreads this line
  auto operator<=>(const Place&) const = default;
};

// The header, read into `buffer` for the while; `status` of its file. None when it cannot be read.
std::optional<std::string_view> headerOf(int folder, const std::string& name, std::string& buffer,
                                         struct stat& status) {
  const Descriptor file{openat(folder, name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)};
  if (!file || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  std::size_t have = 0;
  std::optional<std::string_view> fields;
  for (std::size_t wanted = headerStart; wanted <= headerMost; wanted *= 8) {
    if (buffer.size() < wanted) buffer.resize(wanted);
    const ssize_t got = pread(file.get(), buffer.data() + have, wanted - have, static_cast<off_t>(have));
    if (got > 0) have += static_cast<std::size_t>(got);
    fields = fieldsOf({buffer.data(), have});
    if (got <= 0 || have < wanted || fields) break;
  }
  return fields.value_or(std::string_view{buffer.data(), have});
}

Place placeOf(int folder, const std::string& name, std::string& buffer) {
  struct stat status {};
  const auto header = headerOf(folder, name, buffer, status);
  if (!header) return {};
  return {.received = receivedSeconds(*header, status.st_mtime),
          .modified = std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec};
}

// FNV-1a, 64 bits, of the fields that a rewrite leaves alone.
std::uint64_t likenessOf(int folder, const std::string& name, std::string& buffer) {
  struct stat status {};
  auto lines = headerOf(folder, name, buffer, status).value_or(std::string_view{});
  std::uint64_t hash = 0xCBF29CE484222325;
  while (const auto field = mime::takeField(lines)) {
    const auto word = mime::lowerCase(field->name);
    if (word.starts_with("content-") || word == "mime-version" || word.starts_with("x-quillfile-")) continue;
    for (const char c : field->whole) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
  }
  return hash;
}

}  // namespace

std::int64_t receivedSeconds(std::string_view header, std::int64_t otherwise) {
  const mime::Header fields{header};
  if (const auto received = fields.field("Received")) {
    if (const auto time = mime::parseReceivedDate(mime::unfolded(received->value))) return *time;
  }
  return mime::parseDate(fields.value("Date")).value_or(otherwise);
}

std::vector<std::string> itemsInOrder(const MailFolder& folder) {
  const Listing listing = folder.list();  // in the order of names: a stable sort keeps that for equals
  const std::array<Descriptor, 2> folders = {
      Descriptor{open((folder.directory() + "/cur").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)},
      Descriptor{open((folder.directory() + "/new").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)}};
  std::vector<Place> places(listing.size());
  const auto read = [&](std::size_t index, auto what, std::string& buffer) {
    const Entry entry = listing[index];
    return what(folders[entry.isNew ? 1 : 0].get(), std::string{entry.fileName}, buffer);
  };
  const auto readRange = [&](std::size_t begin, std::size_t end) {
    std::string buffer;
    for (std::size_t i = begin; i < end; ++i) places[i] = read(i, placeOf, buffer);
  };
  const std::size_t half = listing.size() < worthTwoThreads ? 0 : listing.size() / 2;
  auto front = beside(half > 0, [&] { readRange(0, half); });
  readRange(half, listing.size());
  front.get();
  std::vector<std::uint32_t> order(listing.size());
  std::iota(order.begin(), order.end(), 0u);
  const auto before = [&](auto a, auto b) { return places[a] < places[b]; };
  std::stable_sort(order.begin(), order.end(), before);
  std::string buffer;
  for (auto at = order.begin(); at != order.end();) {
    const auto end = std::find_if(at, order.end(), [&](auto other) { return before(*at, other); });
    if (end - at > 1) {
      for (auto equal = at; equal != end; ++equal) places[*equal].likeness = read(*equal, likenessOf, buffer);
      std::stable_sort(at, end, before);
    }
    at = end;
  }
  std::vector<std::string> names;
  names.reserve(order.size());
  for (const auto index : order) names.emplace_back(listing[index].unique);
  return names;
}

std::vector<std::size_t> numbersIn(std::string_view range, std::size_t count) {
  std::size_t first = 0, last = 0;
  const char* const end = range.data() + range.size();
  auto [rest, problem] = std::from_chars(range.data(), end, first);
  if (problem != std::errc{}) return {};
  last = first;
  if (rest != end && *rest == '-') {
    const auto second = std::from_chars(rest + 1, end, last);
    rest = second.ptr;
    if (second.ec != std::errc{}) return {};
  }
  if (rest != end || first < 1 || first > last || last > count) return {};
  std::vector<std::size_t> numbers(last - first + 1);
  std::iota(numbers.begin(), numbers.end(), first);
  return numbers;
}

}  // namespace quillfile::mailbox
