#include "hosts/mailbox/formats/msg/storage_copy.h"

#include <limits>

#include "hosts/mailbox/formats/cfb/compound_writer.h"

namespace quillfile::formats::msg {

using Index = CompoundFile::Index;

// No entry belongs to two storages, so these walks meet each entry once.
std::uint64_t sizeOfStreams(const CompoundFile& file, Index storage) {
  std::uint64_t total = 0;
  std::vector<Index> open = {storage};
  while (!open.empty()) {
    const CompoundFile::Entry& entry = file.entry(open.back());
    open.pop_back();
    open.insert(open.end(), entry.children.begin(), entry.children.end());
    const std::uint64_t room = std::numeric_limits<std::uint64_t>::max() - total;
    total += std::min(entry.size, room);
  }
  return total;
}

void copyStorage(const CompoundFile& file, Index storage, const ByteSink& sink) {
  CompoundWriter copy({});
  std::vector<std::pair<Index, CompoundWriter::Storage>> open = {{storage, CompoundWriter::kRoot}};
  while (!open.empty()) {
    const auto [from, to] = open.back();
    open.pop_back();
    for (const Index child : file.entry(from).children) {
      const CompoundFile::Entry& entry = file.entry(child);
      if (entry.storage) {
        open.push_back({child, copy.addStorage(to, entry.name)});
        continue;
      }
      copy.addStream(to, entry.name, entry.size, [&file, child, size = entry.size](const ByteSink& out) {
        std::uint64_t given = 0;
        file.read(child, [&](std::string_view bytes) {
          given += bytes.size();
          out(bytes);
        });
        out(std::string(size - given, '\0'));
      });
    }
  }
  copy.write(sink);
}

}  // namespace quillfile::formats::msg
