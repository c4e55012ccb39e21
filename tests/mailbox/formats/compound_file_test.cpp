// Compound files that bite their own tail, and storages with many names.
#include "hosts/mailbox/formats/cfb/compound_file.h"

#include <gtest/gtest.h>

#include "core/platform/failure.h"
#include "hosts/mailbox/formats/cfb/compound_writer.h"
#include "hosts/mailbox/formats/little_endian.h"

namespace quillfile::formats {
namespace {

std::string fileOf(CompoundWriter& writer) {
  return gathered([&](const ByteSink& sink) { writer.write(sink); });
}

std::string sample() {
  CompoundWriter writer({});
  writer.addStream(CompoundWriter::kRoot, u"large", std::string(5000, 'l'));
  writer.addStream(CompoundWriter::kRoot, u"small", std::string(200, 's'));
  return fileOf(writer);
}

// The table of sectors is the first sector of these files, behind the header.
void chainTo(std::string& file, std::uint32_t sector, std::uint32_t next) {
  std::string number;
  put32(number, next);
  file.replace(512 + 4 * sector, 4, number);
}

std::uint64_t readable(const CompoundFile& file, TextView name) {
  std::uint64_t count = 0;
  const auto stream = file.find(CompoundFile::kRoot, name);
  if (stream) file.read(*stream, [&](std::string_view bytes) { count += bytes.size(); });
  return count;
}

TEST(CompoundFile, FindsEachOfManyNamesWhateverTheLetterCase) {
  CompoundWriter writer({});
  for (int i = 0; i < 3000; ++i)
    writer.addStream(CompoundWriter::kRoot, u"Stream" + decimal(i), toUtf8(decimal(i)));
  const std::string bytes = fileOf(writer);
  const auto file = CompoundFile::open(bytes);
  ASSERT_TRUE(file);
  EXPECT_EQ(file->entry(CompoundFile::kRoot).children.size(), 3000u);
  for (int i = 0; i < 3000; ++i) {
    const auto stream = file->find(CompoundFile::kRoot, u"sTREAM" + decimal(i));
    ASSERT_TRUE(stream) << i;
    EXPECT_EQ(gathered([&](const ByteSink& sink) { file->read(*stream, sink); }), std::to_string(i));
  }
  EXPECT_FALSE(file->find(CompoundFile::kRoot, u"Stream3000"));
}

// The table of sectors is longer than the header can list: more than 109 sectors of 128 numbers each.
TEST(CompoundFile, ReadsAFileWhoseTableIsListedOutsideTheHeader) {
  const std::string contents(9'000'000, 'x');
  CompoundWriter writer({});
  writer.addStream(CompoundWriter::kRoot, u"huge", contents.size(), viewSource(contents));
  const std::string bytes = fileOf(writer);
  const auto file = CompoundFile::open(bytes);
  ASSERT_TRUE(file);
  EXPECT_EQ(
      gathered([&](const ByteSink& sink) { file->read(*file->find(CompoundFile::kRoot, u"huge"), sink); }),
      contents);
}

TEST(CompoundFile, RefusesToWriteMoreThanTwoGigabytes) {
  CompoundWriter writer({});
  writer.addStream(CompoundWriter::kRoot, u"too much", std::uint64_t{1} << 31, {});
  EXPECT_THROW(fileOf(writer), Failure);
}

TEST(CompoundFile, EndsWhereEverySectorLeadsToItself) {
  std::string bytes = sample();
  for (std::uint32_t sector = 0; sector < 128; ++sector) chainTo(bytes, sector, sector);
  const auto file = CompoundFile::open(bytes);
  ASSERT_TRUE(file);
  EXPECT_EQ(readable(*file, u"large"), 5000u);
}

TEST(CompoundFile, StopsWhereAChainLeadsOutOfTheFile) {
  std::string bytes = sample();
  for (std::uint32_t sector = 0; sector < 128; ++sector) chainTo(bytes, sector, 0x00FFFFFF);
  const auto file = CompoundFile::open(bytes);
  ASSERT_TRUE(file);
  EXPECT_EQ(readable(*file, u"large"), 512u);
}

TEST(CompoundFile, ReadsNoStreamThatClaimsMoreThanTheFileHas) {
  std::string bytes = sample(), claimed, large;
  put32(large, 5000);
  put32(claimed, 0x7FFFFFF0);
  bytes.replace(bytes.find(large, 1024), 4, claimed);
  const auto file = CompoundFile::open(bytes);
  ASSERT_TRUE(file);
  EXPECT_EQ(readable(*file, u"large"), 0u);
}

// Every link of the directory leads to the entry that it starts from, or to the root.
TEST(CompoundFile, MeetsNoEntryTwiceWhateverTheDirectorySays) {
  for (const std::uint32_t target : {0u, 1u, 2u}) {
    std::string bytes = sample();
    for (std::size_t entry = 0; entry < 3; ++entry) {
      for (std::size_t link = 0; link < 3; ++link) {
        std::string number;
        put32(number, target);
        bytes.replace(1024 + 128 * entry + 68 + 4 * link, 4, number);
      }
    }
    const auto file = CompoundFile::open(bytes);
    ASSERT_TRUE(file);
    EXPECT_EQ(file->entry(CompoundFile::kRoot).children.size(), target == 0 ? 0u : 1u);
  }
}

}  // namespace
}  // namespace quillfile::formats
