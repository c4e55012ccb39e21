// Every message of ../shared/corpus, where it is there: saved from with removal and restored.
#include "tests/mailbox/outlook/module_links.h"

namespace quillfile::mailbox {
namespace {

struct Listed {
  Text name;
  std::int32_t type;
  std::string mediaType, bytes;
  bool operator==(const Listed&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Listed& listed) {
  return out << toUtf8(listed.name) << " (" << listed.type << ", " << listed.mediaType << ", "
             << listed.bytes.size() << " bytes)";
}

std::vector<Listed> listOf(MailboxItem& item) {
  std::vector<Listed> list;
  for (const auto& source : item.sources()) {
    Listed listed{source->fileName(), static_cast<std::int32_t>(source->type()), source->mediaType(), {}};
    source->content()([&](std::string_view bytes) { listed.bytes += bytes; });
    EXPECT_EQ(source->size(), static_cast<std::int64_t>(listed.bytes.size()));
    if (source->displayName() != u"Paperclip retained by Quillfile") list.push_back(std::move(listed));
  }
  return list;
}

std::vector<std::filesystem::path> corpus() {
  std::vector<std::filesystem::path> files;
  for (auto folder = std::filesystem::path{TEST_DATA}; folder != folder.parent_path();
       folder = folder.parent_path()) {
    if (!std::filesystem::is_directory(folder / "shared" / "corpus")) continue;
    for (const auto& entry : std::filesystem::recursive_directory_iterator{folder / "shared" / "corpus"})
      if (entry.is_regular_file() && entry.path().extension() != ".xml" &&
          entry.path().extension() != ".list")
        files.push_back(entry.path());
    break;
  }
  std::sort(files.begin(), files.end());
  return files;
}

struct Case {
  std::string name;
  std::string bytes;
  std::shared_ptr<MailboxItem> item;
  std::vector<Listed> before;
  Text plain, html;
  int removed = 0;
  std::size_t failures = 0;
};

class OutlookCorpus : public OutlookLinks {
 protected:
  void SetUp() override {
    const auto found = corpus();
    if (found.empty()) GTEST_SKIP() << "../shared/corpus is not there";
    std::ofstream{root / "Paperclip.ico"} << "icon";
    for (const auto& file : found) {
      Case one;
      one.name = file.filename().string();
      one.bytes = contentOf(file);
      one.item = deliver(one.bytes);
      cases.push_back(std::move(one));
    }
  }

  void finishEach(Case& one) {
    const auto failures = told.failed.size();
    client->endOfEvent();
    one.failures += told.failed.size() - failures;
  }

  // As the module does: the last attachment first, and a paperclip when none is left.
  void save(Case& one, bool atEnd) {
    auto& item = *one.item;
    one.before = listOf(item);
    one.plain = item.body(BodyKind::plain);
    one.html = item.body(BodyKind::html);
    for (auto i = item.attachments()->count(); i >= 1; --i) {
      const auto attachment = item.attachments()->item(i);
      const auto path =
          fromUtf8((root / "saved").string()) + fill(u"/{}-{}", ++saved, attachment->fileName());
      attachment->saveAsFile(path);
      if (attachment->remove() == Removal::declined) continue;
      note(item, u"file://" + path, atEnd);
      ++one.removed;
    }
    if (one.removed > 0 && item.attachments()->count() == 0) {
      item.attachments()->add({.source = fromUtf8((root / "Paperclip.ico").string()),
                               .type = {},
                               .position = {},
                               .displayName = u"Paperclip retained by Quillfile"});
      item.saveQuietly();
    }
  }

  std::vector<Case> cases;
  int saved = 0;
};

TEST_F(OutlookCorpus, EveryMessageComesBackAsItWas) {
  int stripped = 0, attachments = 0, identical = 0;
  for (auto& one : cases) {
    SCOPED_TRACE(one.name);
    save(one, stripped % 2 == 0);
    stripped += one.removed > 0;
    attachments += one.removed;
    finishEach(one);
  }
  batch->commit();
  for (auto& one : cases) {
    SCOPED_TRACE(one.name);
    if (one.removed == 0) {
      EXPECT_EQ(bytesOf(one.item), one.bytes);
      continue;
    }
    EXPECT_EQ(listOf(*one.item).size(), one.before.size() - static_cast<std::size_t>(one.removed));
    EXPECT_TRUE(restore(one.item));
    finishEach(one);
  }
  batch->commit();
  EXPECT_EQ(told.failed, std::vector<std::string>{});
  EXPECT_EQ(engine.errors, std::vector<std::string>{});
  for (auto& one : cases) {
    if (one.removed == 0) continue;
    SCOPED_TRACE(one.name);
    EXPECT_EQ(listOf(*one.item), one.before);
    EXPECT_EQ(replaceAll(one.item->body(BodyKind::html), u"Body>", u"body>"),
              replaceAll(one.html, u"Body>", u"body>"));
    EXPECT_EQ(one.item->body(BodyKind::plain), one.plain);
    identical += bytesOf(one.item) == one.bytes;
    client->endOfEvent();
  }
  std::cout << cases.size() << " messages, " << stripped << " of them lost " << attachments
            << " attachments and were restored, " << identical << " byte for byte\n";
}

}  // namespace
}  // namespace quillfile::mailbox
