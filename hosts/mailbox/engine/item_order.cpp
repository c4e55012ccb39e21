#include "hosts/mailbox/engine/item_order.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <numeric>

#include "hosts/mailbox/mime/date.h"
#include "hosts/mailbox/mime/header.h"
#include "hosts/mailbox/services/descriptor.h"

namespace quillfile::mailbox {
namespace {

constexpr std::size_t headerStart = 8 << 10;  // most headers fit
constexpr std::size_t headerMost = 2 << 20;   // the longest header that is looked through for a date

bool isComplete(std::string_view header) {
  return header.find("\n\n") != std::string_view::npos || header.find("\n\r\n") != std::string_view::npos;
}

// The message's time; 0 when it cannot be read, so that it comes first and its trouble is reported when it is
// opened.
std::int64_t receivedAt(int folder, const std::string& name, std::string& buffer) {
  const Descriptor file{openat(folder, name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)};
  struct stat status {};
  if (!file || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return 0;
  std::size_t have = 0;
  for (std::size_t wanted = headerStart; wanted <= headerMost; wanted *= 4) {
    if (buffer.size() < wanted) buffer.resize(wanted);
    const ssize_t got = pread(file.get(), buffer.data() + have, wanted - have, static_cast<off_t>(have));
    if (got > 0) have += static_cast<std::size_t>(got);
    if (got <= 0 || have < wanted || isComplete({buffer.data(), have})) break;
  }
  const std::string_view start{buffer.data(), have};
  const std::size_t end = std::min(start.find("\n\n"), start.find("\n\r\n"));
  return receivedSeconds(start.substr(0, end == std::string_view::npos ? end : end + 1), status.st_mtime);
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
  const Listing listing =
      folder.list();  // by delivery time and name already: a stable sort keeps that for equals
  const std::array<Descriptor, 2> folders = {
      Descriptor{open((folder.directory() + "/cur").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)},
      Descriptor{open((folder.directory() + "/new").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)}};
  std::vector<std::int64_t> times(listing.size());
  std::string buffer;
  for (std::size_t i = 0; i < listing.size(); ++i) {
    const Entry entry = listing[i];
    times[i] = receivedAt(folders[entry.isNew ? 1 : 0].get(), std::string(entry.fileName), buffer);
  }
  std::vector<std::uint32_t> order(listing.size());
  std::iota(order.begin(), order.end(), 0u);
  std::stable_sort(order.begin(), order.end(), [&](auto a, auto b) { return times[a] < times[b]; });
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
