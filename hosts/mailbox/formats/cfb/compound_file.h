// CompoundFile: reads a compound file ([MS-CFB] versions 3 and 4) that lies in memory, a mapped file usually.
// It trusts nothing in it: chains that loop, numbers that point outside and trees that bite their tail end in
// something missing, never in a crash, an endless loop or much memory.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/text/text.h"
#include "hosts/mailbox/formats/bytes.h"

namespace quillfile::formats {

class CompoundFile {
 public:
  using Index = std::uint32_t;
  static constexpr Index kRoot = 0;

  struct Entry {
    Text name;
    bool storage = false;
    std::uint64_t size = 0;  // of a stream
    std::vector<Index> children = {};
    std::uint32_t start = 0;
  };

  // Nothing when the bytes are no compound file. The bytes must outlive the object. Of long
  // streams `forget` is told what was given.
  static std::optional<CompoundFile> open(std::string_view bytes, Forget forget = {});

  const Entry& entry(Index index) const { return entries_[index]; }
  // The entry of that name in a storage, ignoring the case of letters.
  std::optional<Index> find(Index storage, TextView name) const;
  // Gives a stream's bytes to the sink, in order. False when the file is damaged: what could be read was
  // given.
  bool read(Index stream, const ByteSink& sink) const;

 private:
  struct RawEntry;
  CompoundFile(std::string_view bytes, Forget forget) : bytes_(bytes), forget_(std::move(forget)) {}
  bool readTables();
  void readDirectory(std::uint32_t firstSector);
  void collectChildren(const std::vector<RawEntry>& raw);
  std::vector<Index> childrenOf(const std::vector<RawEntry>& raw, Index storage,
                                std::vector<bool>& seen) const;
  std::string_view sector(std::uint32_t number) const;
  std::uint32_t next(std::uint32_t number) const;  // kEndOfChain outside the tables
  std::uint32_t nextSmall(std::uint32_t number) const;
  std::string_view smallSector(std::uint32_t number) const;
  std::vector<std::uint32_t> chain(std::uint32_t first) const;

  std::string_view bytes_;
  Forget forget_;
  std::uint64_t sectorSize_ = 512;
  std::uint64_t sectorCount_ = 0;
  bool largeSizes_ = false;               // version 4: sizes of 64 bits
  std::vector<std::uint32_t> fat_;        // the sectors that hold the table of sectors
  std::vector<std::uint32_t> smallFat_;   // ... of small sectors
  std::vector<std::uint32_t> smallData_;  // the sectors that hold the small ones
  std::vector<Entry> entries_;
};

}  // namespace quillfile::formats
