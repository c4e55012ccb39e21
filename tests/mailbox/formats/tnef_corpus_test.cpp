// Real TNEF streams, each with the list of names that another reader found inside. Skipped where the corpus
// is not.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>

#include "hosts/mailbox/formats/tnef/tnef.h"
#include "tests/mailbox/formats/corpus.h"

namespace quillfile::formats {
namespace {

using Names = std::multiset<std::string>;

// The names of all attachments, those of messages in the message too, and of the bodies that there are.
void addNames(const MessageContent& message, Names& to) {
  for (const AttachmentContent& one : message.attachments) {
    to.insert(toUtf8(one.fileName));
    EXPECT_EQ(gathered(one.data).size(), one.size);
    if (one.message) addNames(*one.message, to);
  }
}

// Where we differ from the list, why, and what we give.
struct Difference {
  std::string why;
  Names ours;
};

const std::map<std::string, Difference> kDifferences = {
    {"christmas",
     {"the list has each of the two messages inside, and the body of each, as an untitled attachment; we "
      "give each "
      "message once, with its own picture in it",
      {"Untitled Attachment", "Untitled Attachment", "body.rtf", "kitten-playing-with-a-christmas-tree.jpg",
       "kitten-playing-with-a-christmas-tree.jpg"}}},
    {"long-filename", {"the list leaves out the one attachment", {"allproductsmar2000.dat", "body.rtf"}}},
    {"missing-filenames",
     {"the list leaves out the attachments",
      {"TechlibDEC99-JAN00.doc", "TechlibDEC99.doc", "TechlibNOV99.doc", "body.rtf", "generpts.src"}}},
    {"unicode-mapi-attr-name",
     {"the list leaves out the HTML body",
      {"body.html", "image001.png", "image002.png", "image003.png", "spaconsole2.cfg"}}},
    {"unicode-mapi-attr", {"the list leaves out the HTML body", {"body.html", "example.dat"}}},
    {"winmail",
     {"the list leaves out the rich-text body", {"Untitled Attachment", "Untitled Attachment", "body.rtf"}}},
};

Names listed(const std::filesystem::path& list) {
  std::ifstream file(list);
  Names result;
  for (std::string line; std::getline(file, line);) {
    if (!line.empty()) result.insert(line);
  }
  return result;
}

TEST(TnefCorpus, AgreesWithTheListsButWhereTheTableSaysWhy) {
  const std::filesystem::path folder = corpusFolder("mimekit/tnef");
  if (folder.empty()) GTEST_SKIP() << "the corpus is not here";
  std::size_t streams = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() != ".tnef") continue;
    const std::string name = entry.path().stem().string();
    SCOPED_TRACE(name);
    const std::string bytes = contentsOf(entry.path());
    const auto read = readTnef(bytes);
    ASSERT_TRUE(read.has_value());
    Names ours;
    addNames(read->content, ours);
    if (!read->content.html.bytes.empty()) ours.insert("body.html");
    if (!read->content.rtfBody.empty()) ours.insert("body.rtf");
    const Names list = listed(folder / (name + ".list"));
    const auto difference = kDifferences.find(name);
    const bool differs = difference != kDifferences.end();
    EXPECT_EQ(ours, differs ? difference->second.ours : list);
    EXPECT_EQ(differs, ours != list) << "the table is out of date";
    ++streams;
  }
  EXPECT_EQ(streams, 19u);
}

}  // namespace
}  // namespace quillfile::formats
