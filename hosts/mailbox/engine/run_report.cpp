#include "hosts/mailbox/engine/run_report.h"

namespace quillfile::mailbox {
namespace {

constexpr TextView hostSource = u"Quillfile.Mailbox";

}  // namespace

void RunReport::error(TextView text, std::int32_t level, TextView source) {
  errors.push_back({.source = toUtf8(source), .message = toUtf8(text), .level = level});
  if (listeners_.error) listeners_.error(errors.back());
}

void RunReport::clear() {
  message.reset();
  count = 0;
  saved.clear(), items.clear(), drafts.clear(), deletedFiles.clear(), errors.clear();
}

void RunReport::onSaved(const SavedFile& file) {
  saved.push_back({.item = file.item, .fileName = file.attachment, .path = file.path, .size = file.size});
  if (listeners_.saved) listeners_.saved(saved.back());
}

void RunReport::onSaveFailed(const SavedFile& file, const Text& reason) {
  error(fill(u"{} was not saved: {}", fromUtf8(file.path), reason), 0, hostSource);
}

void RunReport::onChanged(const ChangeReport& report) {
  const std::string id = report.folder->itemId(report.unique);
  if (report.outcome == ChangeOutcome::untouched) {
    error(fill(u"The message {} was left as it was: {}", fromUtf8(id), report.reason), 0, hostSource);
    return;
  }
  if (report.outcome == ChangeOutcome::vanished) return;  // its user deleted it, and it stays deleted
  const std::string newId = report.newFolder ? report.newFolder->itemId(report.newUnique) : "";
  if (newId != id) items.push_back({.id = id, .newId = newId});
}

void RunReport::onRemovalDeclined(MailboxItem& item, const Text& reason) {
  error(fill(u"Attachments were saved but not removed from \"{}\": {}", item.subject(), reason), 0,
        hostSource);
}

void RunReport::onDisplayed(MailboxItem& item) {
  const auto location = item.folder() ? item.folder()->find(item.unique()) : std::nullopt;
  drafts.push_back(
      {.id = toUtf8(item.entryId()), .path = location ? item.folder()->filePath(*location) : ""});
}

void RunReport::onNextItem() {
  if (listeners_.nextItem) listeners_.nextItem();
}

void RunReport::onChangeFailed(MailboxItem& item, const Text& reason) {
  const std::string id = toUtf8(item.entryId());
  error(fill(u"The message {} was left as it was: {}", fromUtf8(id), reason), 0, hostSource);
}

}  // namespace quillfile::mailbox
