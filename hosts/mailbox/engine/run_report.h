// RunReport: what one command, or one handled item, did and did not do; what `--json` prints.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "hosts/mailbox/outlook/client.h"
#include "hosts/mailbox/services/batch.h"

namespace quillfile::mailbox {

struct SavedEntry {
  std::string item;      // the id of the item that it was saved from, as it was then
  std::string fileName;  // the attachment's
  std::string path;
  std::int64_t size = 0;  // bytes
};

struct ChangedEntry {
  std::string id, newId;  // newId is empty when the item went for good
};

struct DraftEntry {
  std::string id, path;  // of its file, empty when it is gone already
};

struct ErrorEntry {
  std::string source, message;
  std::int32_t level = 0;
};

class RunReport : public BatchReports, public ClientReports {
 public:
  // Told of each error as it is reported, and of each saved file once it is durable; each may be none.
  struct Listeners {
    std::function<void(const ErrorEntry&)> error;
    std::function<void(const SavedEntry&)> saved;
    std::function<void()> nextItem = {};  // the walk over the selection has come to the next one
  };
  explicit RunReport(Listeners listeners) : listeners_(std::move(listeners)) {}

  std::optional<std::string> message;  // the text of the last message box
  std::int32_t count = 0;              // the module's run counter
  std::deque<SavedEntry> saved;        // grows without being moved: a run over a whole store has many
  std::vector<ChangedEntry> items;     // rewritten or moved
  std::vector<DraftEntry> drafts;
  std::vector<std::string> deletedFiles;
  std::vector<ErrorEntry> errors;

  void error(TextView message, std::int32_t level, TextView source);
  bool nothingDone() const {
    return saved.empty() && items.empty() && drafts.empty() && deletedFiles.empty();
  }
  // Begins anew, for the next item of a watch.
  void clear();

  void onSaved(const SavedFile& file) override;
  void onSaveFailed(const SavedFile& file, const Text& reason) override;
  void onChanged(const ChangeReport& report) override;
  void onRemovalDeclined(MailboxItem& item, const Text& reason) override;
  void onDisplayed(MailboxItem& item) override;
  void onChangeFailed(MailboxItem& item, const Text& reason) override;
  void onNextItem() override;

 private:
  Listeners listeners_;
};

}  // namespace quillfile::mailbox
