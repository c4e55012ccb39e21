// Every part of real and hard mail, decoded by us and by Python's email package.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "hosts/mailbox/mime/decode.h"
#include "hosts/mailbox/mime/edit.h"
#include "hosts/mailbox/mime/protection.h"
#include "hosts/mailbox/mime/scan.h"

using namespace quillfile;
using namespace quillfile::mime;
namespace fs = std::filesystem;

namespace {

// Where we read a message otherwise than Python does, and why.
constexpr const char* foldedBoundary =
    "a line end inside the boundary parameter is a fold here and a character there";
constexpr const char* encodedMessage =
    "an encoded embedded message is one part here, decoded; there its code is its text";
constexpr const char* cutOff =
    "the last line end of a message that is cut off is content here, and is not there";
constexpr const char* noParts = "a multipart that is closed and has no parts has no content here";
constexpr const char* lineEnd =
    "the line end before a boundary line belongs to it here, in a multipart without parts too";
const std::map<std::string, std::string> differences = {
    {"james-mime4j/mimetools-testmsgs/jt-0498.msg", cutOff},
    {"james-mime4j/mimetools-testmsgs/multi-2gifs-base64.msg", encodedMessage},
    {"james-mime4j/mimetools-testmsgs/multi-bad.msg", cutOff},
    {"james-mime4j/mimetools-testmsgs/multi-badnames.msg", foldedBoundary},
    {"james-mime4j/mimetools-testmsgs/multi-clen.msg", foldedBoundary},
    {"james-mime4j/mimetools-testmsgs/multi-digest.msg", foldedBoundary},
    {"james-mime4j/mimetools-testmsgs/multi-simple.msg", foldedBoundary},
    {"james-mime4j/mimetools-testmsgs/twopart.msg",
     "a blank behind the encoding's name does not matter here"},
    {"james-mime4j/testmsgs/bad-newlines-multiple-parts-base64.msg", encodedMessage},
    {"james-mime4j/testmsgs/base64encoded-rfc822message-nested.msg", encodedMessage},
    {"james-mime4j/testmsgs/base64encoded-rfc822message.msg", encodedMessage},
    {"james-mime4j/testmsgs/ending-boundaries.msg", noParts},
    {"james-mime4j/testmsgs/missing-inner-boundary.msg", lineEnd},
    {"james-mime4j/testmsgs/missing-inner-start-boundary.msg", noParts},
    {"james-mime4j/testmsgs/multipartemptypart.msg", "a part without a line is a part here"},
    {"james-mime4j/testmsgs/multipartnopart.msg", noParts},
    {"james-mime4j/testmsgs/obsolete.msg", "a field's name may have blanks before its colon here"},
    {"mimekit/messages/empty-multipart.txt", lineEnd},
};

fs::path corpus() {
  for (auto folder = fs::path{TEST_DATA}; folder.has_relative_path(); folder = folder.parent_path()) {
    if (fs::exists(folder / "shared" / "corpus")) return folder / "shared" / "corpus";
  }
  return {};
}

std::string contentOf(const fs::path& path) {
  std::ifstream file{path, std::ios::binary};
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return bytes.str();
}

std::uint32_t crc32(std::string_view bytes) {  // as zlib's
  std::uint32_t crc = 0xFFFFFFFF;
  for (const char c : bytes) {
    crc ^= static_cast<unsigned char>(c);
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320 : 0);
  }
  return ~crc;
}

// Such a message is never rewritten, so that it need not be read back as it was meant.
bool isDoubted(const PartTree& tree) {
  return !tree.doubt().empty() || std::any_of(tree.parts().begin(), tree.parts().end(),
                                              [](const Part& part) { return !part.doubt.empty(); });
}

using Leaves = std::vector<std::string>;

Leaves ours(const PartTree& tree) {
  Leaves lines;
  for (PartIndex part = 0; part < tree.size(); ++part) {
    if (tree[part].kind != PartKind::leaf) continue;
    const bool any = tree.type(part).type == "message";
    const auto bytes = decoded(tree[part].encoding, tree.body(part));
    lines.push_back(any ? "any" : std::to_string(bytes.size()) + " " + std::to_string(crc32(bytes)));
  }
  return lines;
}

std::map<std::string, Leaves> pythons() {
  const auto command = "python3 '" TEST_DATA "/mime/leaves.py' '" + corpus().string() + "'";
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe{popen(command.c_str(), "r"), pclose};
  std::map<std::string, Leaves> found;
  std::string file;
  char line[4096];
  while (pipe && fgets(line, sizeof line, pipe.get())) {
    std::string text{line};
    text.pop_back();
    if (text.starts_with("file ")) {
      file = text.substr(5);
      found[file];
    } else {
      found[file].push_back(text);
    }
  }
  return found;
}

}  // namespace

TEST(Corpus, IsDecodedAsPythonDoes) {
  if (corpus().empty()) GTEST_SKIP() << "no corpus beside the project";
  const auto expected = pythons();
  ASSERT_GT(expected.size(), 100u);
  std::size_t parts = 0;
  for (const auto& [file, leaves] : expected) {
    const auto message = contentOf(corpus() / file);
    const auto found = ours(scan(message));
    parts += leaves.size();
    if (differences.contains(file)) {
      EXPECT_NE(found, leaves) << file << " is listed as different and is not";
    } else {
      EXPECT_EQ(found, leaves) << file;
    }
  }
  RecordProperty("messages", static_cast<int>(expected.size()));
  RecordProperty("parts", static_cast<int>(parts));
}

TEST(Corpus, EveryPartCanBeCutOutAndEveryOtherByteStays) {
  if (corpus().empty()) GTEST_SKIP() << "no corpus beside the project";
  for (const auto& entry : fs::recursive_directory_iterator{corpus()}) {
    if (!entry.is_regular_file()) continue;
    const auto message = contentOf(entry.path());
    const auto tree = scan(message);
    protection(tree);
    for (PartIndex part = 0; part < tree.size(); ++part) {
      if (part > 0 && tree[tree[part].parent].kind == PartKind::message) continue;
      Edit edit{tree};
      edit.remove(part);
      const auto pieces = edit.pieces();
      std::string result;
      write(message, pieces, [&](std::string_view bytes) { result += bytes; });
      EXPECT_TRUE(check(message, pieces, edit.cuts(), result)) << entry.path() << " " << part;
      EXPECT_TRUE(isDoubted(tree) || edit.holds(scan(result))) << entry.path() << " " << part;
    }
  }
}
