// CompoundWriter: writes a compound file ([MS-CFB] version 3), storages and streams in one file, as a .msg is
// one. Every stream's size is known before the first byte is written, so the file goes out front to back in
// one pass: the sink need not seek, nothing but the directory is kept in memory, and equal input gives an
// equal file.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "core/text/text.h"
#include "hosts/mailbox/formats/bytes.h"

namespace quillfile::formats {

class CompoundWriter {
 public:
  using Storage = std::size_t;
  using ClassId = std::array<std::uint8_t, 16>;
  static constexpr Storage kRoot = 0;

  explicit CompoundWriter(const ClassId& rootClass);

  // Names are at most 31 characters, and no two in a storage are the same but for letter case.
  Storage addStorage(Storage parent, TextView name);
  void addStream(Storage parent, TextView name, std::uint64_t size, ByteSource data);
  void addStream(Storage parent, TextView name, std::string bytes);

  // Throws Failure when the file would pass 2 GB or a source does not keep to its size.
  void write(const ByteSink& sink);

 private:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;
  enum class Kind : std::uint8_t { storage = 1, stream = 2, root = 5 };

  struct Entry {
    Text name;
    Kind kind = Kind::storage;
    std::uint64_t size = 0;
    ByteSource data = {};
    std::vector<std::uint32_t> children = {};
    std::uint32_t start = 0;  // first sector, or first small sector
    std::uint32_t left = kNone, right = kNone, child = kNone;
    bool red = false;
  };

  // Where everything lies, in sectors of 512 bytes.
  struct Layout {
    std::uint64_t difat = 0, fat = 0, directory = 0, smallFat = 0, smallData = 0, large = 0;
    std::uint64_t smallSectors = 0;  // of 64 bytes
    std::uint64_t total() const { return difat + fat + directory + smallFat + smallData + large; }
  };

  std::uint32_t add(Storage parent, TextView name, Kind kind);
  bool isSmall(const Entry& entry) const;
  std::uint32_t linkTree(const std::vector<std::uint32_t>& sorted, std::size_t depth, std::size_t full);
  Layout plan();
  void writeHeader(const Layout& at, const ByteSink& sink) const;
  void writeDifat(const Layout& at, const ByteSink& sink) const;
  void writeFat(const Layout& at, const ByteSink& sink) const;
  void writeDirectory(const Layout& at, const ByteSink& sink) const;
  void writeSmallFat(const Layout& at, const ByteSink& sink) const;
  void writeStreams(bool small, std::uint64_t unit, const ByteSink& sink) const;

  ClassId rootClass_;
  std::vector<Entry> entries_;
};

}  // namespace quillfile::formats
