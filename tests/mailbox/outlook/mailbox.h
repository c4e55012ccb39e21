// A mail store of its own for one test, and the client over it.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "core/platform/failure.h"
#include "hosts/mailbox/outlook/client.h"

namespace quillfile::mailbox {

class Told final : public ClientReports, public BatchReports {
 public:
  void onRemovalDeclined(MailboxItem&, const Text& reason) override { declined.push_back(toUtf8(reason)); }
  void onDisplayed(MailboxItem& item) override { displayed.push_back(toUtf8(item.entryId())); }
  void onChangeFailed(MailboxItem&, const Text& reason) override { failed.push_back(toUtf8(reason)); }
  void onSaved(const SavedFile& file) override { saved.push_back(file.path); }
  void onSaveFailed(const SavedFile&, const Text& reason) override { failed.push_back(toUtf8(reason)); }
  void onChanged(const ChangeReport& report) override {
    if (report.outcome == ChangeOutcome::changed) ++changes;
    if (!report.reason.empty()) failed.push_back(toUtf8(report.reason));
  }

  std::vector<std::string> declined, displayed, failed, saved;
  int changes = 0;
};

inline std::string contentOf(const std::filesystem::path& path) {
  std::ifstream file{path, std::ios::binary};
  return {std::istreambuf_iterator<char>{file}, {}};
}

class OutlookItems : public testing::Test {
 protected:
  OutlookItems() {
    std::string pattern = (std::filesystem::temp_directory_path() / "quillfile-outlook-XXXXXX").string();
    root = mkdtemp(pattern.data());
    store = MailStore::create((root / "mail").string());
    std::filesystem::create_directory(root / "saved");
    start();
  }
  ~OutlookItems() override {
    client.reset();
    batch.reset();
    std::filesystem::remove_all(root);
  }

  void start() {
    client.reset();
    batch = std::make_unique<Batch>(told);
    client = MailClient::create({.store = *store, .batch = *batch, .reports = told});
  }

  // Puts a message, given with LF line ends, into the Inbox.
  std::shared_ptr<MailboxItem> deliver(const std::string& message, const std::string& flags = "") {
    const auto inbox = store->need(FolderRole::inbox);
    const auto unique = inbox->create([&](const Sink& sink) { sink(message); }, flags);
    return client->item(inbox, unique);
  }

  // The event is over and on disk.
  void finish() {
    client->endOfEvent();
    batch->commit();
  }

  std::string bytesOf(const std::shared_ptr<MailboxItem>& item) {
    const auto location = item->folder()->find(item->unique());
    return location ? contentOf(item->folder()->filePath(*location)) : "(gone)";
  }

  // What the module does about one attachment: save, remove, write the note, save.
  Removal strip(const std::shared_ptr<MailboxItem>& item, std::int32_t index, bool atEnd = true) {
    const auto attachment = item->attachments()->item(index);
    const auto path = fromUtf8((root / "saved").string() + "/") +
                      (attachment->fileName().empty() ? attachment->displayName() : attachment->fileName());
    attachment->saveAsFile(path);
    const auto outcome = attachment->remove();
    if (outcome == Removal::removed) note(*item, u"file://" + path, atEnd);
    return outcome;
  }

  // The note of a link, as the module writes it.
  static void note(MailboxItem& item, const Text& link, bool atEnd) {
    if (item.bodyFormat() == u"HTML") {
      const auto html = item.body(BodyKind::html);
      const auto text = fill(u"<p>Attachment saved to <a href=\"{}\">{}</a></p>", link, link);
      const TextView tag = atEnd ? u"</body>" : u"<body>";
      auto at = html.find(tag);
      if (at == Text::npos) at = html.find(atEnd ? u"</Body>" : u"<Body>");
      Text changed = atEnd ? html + text : text + html;
      if (html.empty()) changed = fill(u"<Body>{}</Body>", text);
      if (at != Text::npos) {
        changed = html;
        changed.replace(at, tag.size(), atEnd ? text + u"</Body>" : u"<Body>" + text);
      }
      item.setBody(BodyKind::html, changed);
    } else if (item.bodyFormat() == u"RTF") {
      const auto rtf = item.body(BodyKind::rtf);
      item.setBody(BodyKind::rtf,
                   fill(u"{}\\par\r\nAttachment saved to <{}>\\par}", rtf.substr(0, rtf.rfind(u'}')), link));
    } else {
      const auto text = fill(u"Attachment saved to <{}>", link);
      const auto plain = item.body(BodyKind::plain);
      item.setBody(BodyKind::plain, atEnd ? plain + u"\r\n\r\n" + text : text + u"\r\n\r\n" + plain);
    }
    item.saveQuietly();
  }

  // `message` with the folder that this test saves into named "SAVED".
  std::string tidied(std::string message) const {
    const auto folder = (root / "saved").string();
    for (auto at = message.find(folder); at != std::string::npos; at = message.find(folder, at))
      message.replace(at, folder.size(), "SAVED");
    return message;
  }

  std::filesystem::path root;
  Told told;
  std::shared_ptr<MailStore> store;
  std::unique_ptr<Batch> batch;
  std::shared_ptr<MailClient> client;
};

}  // namespace quillfile::mailbox
