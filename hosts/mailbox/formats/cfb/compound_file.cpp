#include "hosts/mailbox/formats/cfb/compound_file.h"

#include <algorithm>

#include "hosts/mailbox/formats/cfb/compound_layout.h"
#include "hosts/mailbox/formats/little_endian.h"
#include "hosts/mailbox/mime/range.h"

namespace quillfile::formats {

using namespace cfb;

namespace {
constexpr std::uint8_t kStorageKind = 1, kStreamKind = 2, kRootKind = 5;

// Sectors that lie one behind the other; gives them back together.
class Run {
 public:
  explicit Run(const Forget& forget) : forget_(forget) {}
  ~Run() { end(); }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;

  void add(std::string_view sector) {
    if (run_.data() + run_.size() != sector.data() || run_.size() >= mime::behindStep) end();
    run_ = run_.empty() ? sector : std::string_view(run_.data(), run_.size() + sector.size());
  }

 private:
  void end() {
    if (forget_ && !run_.empty()) forget_(run_);
    run_ = {};
  }
  const Forget& forget_;
  std::string_view run_;
};
}  // namespace

struct CompoundFile::RawEntry {
  std::uint8_t kind = 0;
  std::uint32_t left = kFree, right = kFree, child = kFree;
};

std::optional<CompoundFile> CompoundFile::open(std::string_view bytes, Forget forget) {
  if (bytes.substr(0, kSignature.size()) != kSignature || bytes.size() < kHeaderSize) return std::nullopt;
  CompoundFile file(bytes, std::move(forget));
  if (!file.readTables()) return std::nullopt;
  return file;
}

bool CompoundFile::readTables() {
  const std::uint16_t version = get16(bytes_, 26), shift = get16(bytes_, 30);
  if ((version != 3 || shift != 9) && (version != 4 || shift != 12)) return false;
  largeSizes_ = version == 4;
  sectorSize_ = std::uint64_t{1} << shift;
  sectorCount_ = bytes_.size() / sectorSize_;  // the header takes one; the last may be cut short
  const auto list = [&](std::uint32_t number) {
    if (number < sectorCount_ && fat_.size() < sectorCount_) fat_.push_back(number);
  };
  for (std::size_t i = 0; i < kHeaderDifat; ++i) list(get32(bytes_, 76 + 4 * i));
  std::uint32_t difat = get32(bytes_, 68);
  for (std::uint64_t visited = 0; difat < sectorCount_ && visited < sectorCount_; ++visited) {
    const std::string_view table = sector(difat);
    for (std::size_t i = 0; i + 4 < sectorSize_; i += 4) {
      if (i + 4 <= table.size()) list(get32(table, i));
    }
    difat = table.size() == sectorSize_ ? get32(table, sectorSize_ - 4) : kEndOfChain;
  }
  smallFat_ = chain(get32(bytes_, 60));
  readDirectory(get32(bytes_, 48));
  if (entries_.empty()) return false;
  smallData_ = chain(entries_[kRoot].start);
  return true;
}

void CompoundFile::readDirectory(std::uint32_t firstSector) {
  std::vector<RawEntry> raw;
  for (const std::uint32_t number : chain(firstSector)) {
    const std::string_view rows = sector(number);
    for (std::size_t at = 0; at + kEntrySize <= rows.size(); at += kEntrySize) {
      const std::string_view row = rows.substr(at, kEntrySize);
      const std::size_t nameBytes = std::clamp<std::size_t>(get16(row, 64), 2, 64) - 2;
      const auto kind = static_cast<std::uint8_t>(row[66]);
      raw.push_back({kind, get32(row, 68), get32(row, 72), get32(row, 76)});
      const std::uint64_t size = largeSizes_ ? get64(row, 120) : get32(row, 120);
      entries_.push_back({.name = utf16Text(row.substr(0, nameBytes)),
                          .storage = kind == kStorageKind || kind == kRootKind,
                          .size = kind == kStreamKind ? size : 0,
                          .start = get32(row, 116)});
    }
  }
  if (!raw.empty() && raw[kRoot].kind != kRootKind) entries_.clear();
  if (!entries_.empty()) collectChildren(raw);
}

// An entry belongs to one storage: the first that claims it. So no entry is met twice, whatever the links
// say.
void CompoundFile::collectChildren(const std::vector<RawEntry>& raw) {
  std::vector<bool> seen(raw.size(), false);
  seen[kRoot] = true;
  std::vector<Index> open = {kRoot};
  while (!open.empty()) {
    const Index storage = open.back();
    open.pop_back();
    entries_[storage].children = childrenOf(raw, storage, seen);
    for (const Index child : entries_[storage].children) {
      if (entries_[child].storage) open.push_back(child);
    }
  }
}

std::vector<CompoundFile::Index> CompoundFile::childrenOf(const std::vector<RawEntry>& raw, Index storage,
                                                          std::vector<bool>& seen) const {
  std::vector<Index> found, open = {raw[storage].child};
  while (!open.empty()) {
    const Index index = open.back();
    open.pop_back();
    if (index >= raw.size() || seen[index]) continue;
    seen[index] = true;
    if (raw[index].kind == kStorageKind || raw[index].kind == kStreamKind) found.push_back(index);
    open.push_back(raw[index].right);
    open.push_back(raw[index].left);
  }
  const auto before = [&](Index one, Index two) {
    return nameBefore(entries_[one].name, entries_[two].name);
  };
  std::stable_sort(found.begin(), found.end(), before);
  return found;
}

std::optional<CompoundFile::Index> CompoundFile::find(Index storage, TextView name) const {
  const auto& children = entries_[storage].children;
  const auto found = std::lower_bound(children.begin(), children.end(), name, [&](Index one, TextView two) {
    return nameBefore(entries_[one].name, two);
  });
  if (found == children.end() || nameBefore(name, entries_[*found].name)) return std::nullopt;
  return *found;
}

std::string_view CompoundFile::sector(std::uint32_t number) const {
  const std::uint64_t offset = (std::uint64_t{number} + 1) * sectorSize_;
  return offset < bytes_.size() ? bytes_.substr(offset, sectorSize_) : std::string_view{};
}

std::uint32_t CompoundFile::next(std::uint32_t number) const {
  const std::uint64_t numbers = sectorSize_ / 4, table = number / numbers;
  if (table >= fat_.size()) return kEndOfChain;
  const std::string_view row = sector(fat_[table]);
  const std::size_t at = number % numbers * 4;
  return at + 4 <= row.size() ? get32(row, at) : kEndOfChain;
}

std::uint32_t CompoundFile::nextSmall(std::uint32_t number) const {
  const std::uint64_t numbers = sectorSize_ / 4, table = number / numbers;
  if (table >= smallFat_.size()) return kEndOfChain;
  const std::string_view row = sector(smallFat_[table]);
  const std::size_t at = number % numbers * 4;
  return at + 4 <= row.size() ? get32(row, at) : kEndOfChain;
}

std::string_view CompoundFile::smallSector(std::uint32_t number) const {
  const std::uint64_t offset = std::uint64_t{number} * kSmallSector, index = offset / sectorSize_;
  if (index >= smallData_.size()) return {};
  const std::string_view holder = sector(smallData_[index]);
  const std::size_t at = offset % sectorSize_;
  return at < holder.size() ? holder.substr(at, kSmallSector) : std::string_view{};
}

// A chain cannot be longer than the file has sectors; one that is longer loops and is cut there.
std::vector<std::uint32_t> CompoundFile::chain(std::uint32_t first) const {
  std::vector<std::uint32_t> result;
  for (std::uint32_t at = first; at < sectorCount_ && result.size() < sectorCount_; at = next(at)) {
    result.push_back(at);
  }
  return result;
}

// A stream's size ends its chain, so a loop ends too: no stream is longer than the file, or it is not read at
// all.
bool CompoundFile::read(Index stream, const ByteSink& sink) const {
  const Entry& from = entries_[stream];
  if (from.storage || from.size > bytes_.size()) return false;
  const bool small = from.size < kCutOff;
  std::uint64_t left = from.size;
  Run run(forget_);
  for (std::uint32_t at = from.start; left > 0; at = small ? nextSmall(at) : next(at)) {
    const std::string_view piece = (small ? smallSector(at) : sector(at)).substr(0, left);
    if (piece.empty()) return false;
    sink(piece);
    if (!small) run.add(piece);
    left -= piece.size();
    if (left > 0 && piece.size() < (small ? kSmallSector : sectorSize_)) return false;
  }
  return true;
}

}  // namespace quillfile::formats
