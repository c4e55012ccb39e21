#include "hosts/mailbox/formats/cfb/compound_writer.h"

#include <algorithm>
#include <bit>

#include "hosts/mailbox/formats/cfb/compound_layout.h"
#include "hosts/mailbox/formats/failures.h"
#include "hosts/mailbox/formats/little_endian.h"

namespace quillfile::formats {

using namespace cfb;

namespace {

constexpr std::uint64_t kSector = 512;
constexpr std::uint64_t kNumbers = kSector / 4;  // sector numbers in a sector

std::uint64_t pieces(std::uint64_t bytes, std::uint64_t unit) { return (bytes + unit - 1) / unit; }

// Writes tables of sector numbers and fills up their last sector.
class NumberTable {
 public:
  explicit NumberTable(const ByteSink& sink) : sink_(sink) {}
  void add(std::uint64_t value) {
    put32(row_, value);
    ++count_;
    if (row_.size() == kSector) flush();
  }
  // `length` sectors from `first` on, each followed by the next.
  void addChain(std::uint64_t first, std::uint64_t length) {
    for (std::uint64_t i = 1; i <= length; ++i) add(i == length ? kEndOfChain : first + i);
  }
  void addRun(std::uint64_t value, std::uint64_t length) {
    for (std::uint64_t i = 0; i < length; ++i) add(value);
  }
  void fill() {
    while (!row_.empty()) add(kFree);
  }
  std::uint64_t count() const { return count_; }

 private:
  void flush() {
    sink_(row_);
    row_.clear();
  }
  const ByteSink& sink_;
  std::string row_;
  std::uint64_t count_ = 0;
};

}  // namespace

CompoundWriter::CompoundWriter(const ClassId& rootClass) : rootClass_(rootClass) {
  entries_.push_back({.name = u"Root Entry", .kind = Kind::root});
}

std::uint32_t CompoundWriter::add(Storage parent, TextView name, Kind kind) {
  const auto index = static_cast<std::uint32_t>(entries_.size());
  entries_.push_back({.name = Text(name), .kind = kind});
  entries_[parent].children.push_back(index);
  return index;
}

CompoundWriter::Storage CompoundWriter::addStorage(Storage parent, TextView name) {
  return add(parent, name, Kind::storage);
}

void CompoundWriter::addStream(Storage parent, TextView name, std::uint64_t size, ByteSource data) {
  Entry& entry = entries_[add(parent, name, Kind::stream)];
  entry.size = size;
  entry.data = std::move(data);
}

void CompoundWriter::addStream(Storage parent, TextView name, std::string bytes) {
  const std::uint64_t size = bytes.size();
  addStream(parent, name, size, ownedSource(std::move(bytes)));
}

bool CompoundWriter::isSmall(const Entry& entry) const {
  return entry.kind == Kind::stream && entry.size < kCutOff;
}

// A storage's entries form a red-black tree. Halving a sorted list gives a tree whose levels are full but for
// the last: black everywhere, red on the last unfilled level (`full` is the number of full ones), is a valid
// colouring.
std::uint32_t CompoundWriter::linkTree(const std::vector<std::uint32_t>& sorted, std::size_t depth,
                                       std::size_t full) {
  struct Span {
    std::size_t first, last, depth;
    std::uint32_t* link;
  };
  std::uint32_t top = kNone;
  std::vector<Span> open = {{0, sorted.size(), depth, &top}};
  while (!open.empty()) {
    const Span span = open.back();
    open.pop_back();
    if (span.first == span.last) continue;
    const std::size_t middle = (span.first + span.last) / 2;
    *span.link = sorted[middle];
    Entry& entry = entries_[sorted[middle]];
    entry.red = span.depth >= full;
    open.push_back({span.first, middle, span.depth + 1, &entry.left});
    open.push_back({middle + 1, span.last, span.depth + 1, &entry.right});
  }
  return top;
}

CompoundWriter::Layout CompoundWriter::plan() {
  Layout at;
  for (Entry& entry : entries_) {
    if (isSmall(entry)) {
      entry.start = entry.size == 0 ? kEndOfChain : static_cast<std::uint32_t>(at.smallSectors);
      at.smallSectors += pieces(entry.size, kSmallSector);
    }
    auto sorted = entry.children;
    std::sort(sorted.begin(), sorted.end(),
              [&](auto one, auto two) { return nameBefore(entries_[one].name, entries_[two].name); });
    const auto full = static_cast<std::size_t>(std::bit_width(sorted.size() + 1)) - 1;
    entry.child = linkTree(sorted, 0, full);
  }
  at.directory = pieces(entries_.size() * kEntrySize, kSector);
  at.smallFat = pieces(at.smallSectors, kNumbers);
  at.smallData = pieces(at.smallSectors * kSmallSector, kSector);
  for (const Entry& entry : entries_) {
    if (entry.kind == Kind::stream && !isSmall(entry)) at.large += pieces(entry.size, kSector);
  }
  // The table of sectors lists its own sectors too.
  for (std::uint64_t before = kNone; before != at.total();) {
    before = at.total();
    if (before * kSector > kLargestFile) throw failures::tooLarge();
    at.fat = pieces(before, kNumbers);
    at.difat = at.fat > kHeaderDifat ? pieces(at.fat - kHeaderDifat, kNumbers - 1) : 0;
  }
  std::uint64_t next = at.total() - at.large;
  for (Entry& entry : entries_) {
    if (entry.kind != Kind::stream || isSmall(entry)) continue;
    entry.start = static_cast<std::uint32_t>(next);
    next += pieces(entry.size, kSector);
  }
  Entry& root = entries_[kRoot];
  root.size = at.smallSectors * kSmallSector;
  root.start =
      root.size == 0 ? kEndOfChain : static_cast<std::uint32_t>(at.total() - at.large - at.smallData);
  return at;
}

void CompoundWriter::write(const ByteSink& sink) {
  const Layout at = plan();
  BufferedSink buffer(sink);
  const ByteSink out = [&](std::string_view bytes) { buffer.write(bytes); };
  writeHeader(at, out);
  writeDifat(at, out);
  writeFat(at, out);
  writeDirectory(at, out);
  writeSmallFat(at, out);
  writeStreams(true, kSmallSector, out);
  const std::uint64_t gap = at.smallData * kSector - at.smallSectors * kSmallSector;
  out(std::string(gap, '\0'));
  writeStreams(false, kSector, out);
  buffer.flush();
}

void CompoundWriter::writeHeader(const Layout& at, const ByteSink& sink) const {
  std::string header(kSignature);
  header.append(16, '\0');
  put16(header, 0x3E);    // minor version
  put16(header, 3);       // version
  put16(header, 0xFFFE);  // low byte first
  put16(header, 9);       // sectors of 512 bytes
  put16(header, 6);       // small sectors of 64
  header.append(10, '\0');
  put32(header, at.fat);
  put32(header, at.difat + at.fat);  // where the directory begins
  put32(header, 0);
  put32(header, kCutOff);
  put32(header, at.smallFat == 0 ? kEndOfChain : at.difat + at.fat + at.directory);
  put32(header, at.smallFat);
  put32(header, at.difat == 0 ? kEndOfChain : 0);
  put32(header, at.difat);
  for (std::uint64_t i = 0; i < kHeaderDifat; ++i) put32(header, i < at.fat ? at.difat + i : kFree);
  sink(header);
}

void CompoundWriter::writeDifat(const Layout& at, const ByteSink& sink) const {
  NumberTable table(sink);
  std::uint64_t listed = kHeaderDifat;
  for (std::uint64_t sector = 0; sector < at.difat; ++sector) {
    for (std::uint64_t i = 0; i + 1 < kNumbers; ++i, ++listed) {
      table.add(listed < at.fat ? at.difat + listed : kFree);
    }
    table.add(sector + 1 == at.difat ? kEndOfChain : sector + 1);
  }
}

void CompoundWriter::writeFat(const Layout& at, const ByteSink& sink) const {
  NumberTable table(sink);
  table.addRun(kDifatSector, at.difat);
  table.addRun(kFatSector, at.fat);
  for (const std::uint64_t length : {at.directory, at.smallFat, at.smallData}) {
    table.addChain(table.count(), length);
  }
  for (const Entry& entry : entries_) {
    if (entry.kind == Kind::stream && !isSmall(entry)) {
      table.addChain(table.count(), pieces(entry.size, kSector));
    }
  }
  table.fill();
}

void CompoundWriter::writeDirectory(const Layout& at, const ByteSink& sink) const {
  for (const Entry& entry : entries_) {
    std::string row = utf16Bytes(entry.name);
    row.resize(64, '\0');
    put16(row, entry.name.size() * 2 + 2);
    put(row, static_cast<std::uint8_t>(entry.kind));
    put(row, static_cast<std::uint8_t>(entry.red ? 0 : 1));
    put32(row, entry.left);
    put32(row, entry.right);
    put32(row, entry.child);
    const bool root = entry.kind == Kind::root;
    for (const std::uint8_t byte : root ? rootClass_ : ClassId{}) put(row, byte);
    row.append(4 + 8 + 8, '\0');  // state and times: none, so that equal messages give equal files
    put32(row, entry.start);
    put64(row, entry.size);
    sink(row);
  }
  std::string unused(68, '\0');
  for (int link = 0; link < 3; ++link) put32(unused, kNone);
  unused.resize(kEntrySize, '\0');
  for (std::uint64_t i = entries_.size(); i < at.directory * kSector / kEntrySize; ++i) sink(unused);
}

void CompoundWriter::writeSmallFat(const Layout&, const ByteSink& sink) const {
  NumberTable table(sink);
  for (const Entry& entry : entries_) {
    if (isSmall(entry)) table.addChain(table.count(), pieces(entry.size, kSmallSector));
  }
  table.fill();
}

void CompoundWriter::writeStreams(bool small, std::uint64_t unit, const ByteSink& sink) const {
  const std::string zeros(unit, '\0');
  for (const Entry& entry : entries_) {
    if (entry.kind != Kind::stream || isSmall(entry) != small || entry.size == 0) continue;
    giveExactly(entry.data, entry.size, sink);
    sink(std::string_view(zeros).substr(0, pieces(entry.size, unit) * unit - entry.size));
  }
}

}  // namespace quillfile::formats
