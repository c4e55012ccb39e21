// BatchTest: a mail store with one message, a folder to save into, and what a batch reports.
#pragma once

#include <gtest/gtest.h>

#include "hosts/mailbox/services/batch.h"
#include "hosts/mailbox/store/mail_store.h"
#include "tests/mailbox/support/temporary_folder.h"

namespace quillfile::mailbox {

inline Content bytes(std::string text) {
  return [text](const Sink& sink) { sink(text); };
}

struct RecordedReports : BatchReports {
  void onSaved(const SavedFile& file) override { lines.push_back("saved " + name(file)); }
  void onSaveFailed(const SavedFile& file, const Text& reason) override {
    lines.push_back("not saved " + name(file) + ": " + toUtf8(reason));
  }
  void onChanged(const ChangeReport& report) override {
    constexpr const char* words[] = {"changed ", "untouched ", "vanished "};
    lines.push_back(words[static_cast<int>(report.outcome)] + report.unique);
    last = report;
  }
  static std::string name(const SavedFile& file) { return file.path.substr(file.path.rfind('/') + 1); }

  std::vector<std::string> lines;
  ChangeReport last;
};
using Lines = std::vector<std::string>;

class BatchTest : public testing::Test {
 protected:
  BatchTest() {
    makeMaildir(folder / "Mail");
    std::filesystem::create_directories(saved);
    deliver("100.a.host:2,FS", "with attachment");
    store = MailStore::open(folder / "Mail");
    inbox = store->folder("Inbox");
  }

  void deliver(const std::string& name, const std::string& text) {
    writeFile(folder / ("Mail/cur/" + name), text);
  }
  std::set<std::string> messages() const { return namesIn(folder / "Mail/cur"); }

  MessageChange rewriting(const std::shared_ptr<SavedFile>& file, const std::string& decoded) {
    return {.folder = inbox,
            .unique = "100.a.host",
            .source = inbox->open("100.a.host"),
            .content = bytes("without"),
            .check = {},
            .removed = {{file, bytes(decoded)}},
            .needs = {},
            .setFlags = {},
            .clearFlags = {},
            .moveTo = nullptr};
  }

  TemporaryFolder folder;
  std::string saved = folder / "Saved";
  std::shared_ptr<MailStore> store;
  std::shared_ptr<MailFolder> inbox;
  RecordedReports reports;
};

}  // namespace quillfile::mailbox
