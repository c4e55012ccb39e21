#include <algorithm>
#include <array>

#include "apps/quillfile/commands.h"
#include "apps/quillfile/output.h"
#include "apps/quillfile/run.h"
#include "core/platform/failure.h"
#include "hosts/mailbox/engine/printable.h"
#include "hosts/mailbox/formats/import/mbox.h"
#include "hosts/mailbox/formats/import/rfc5322.h"
#include "hosts/mailbox/formats/msg/message_file.h"
#include "hosts/mailbox/formats/tnef/tnef.h"
#include "hosts/mailbox/services/failure.h"
#include "hosts/mailbox/store/message_file.h"

namespace quillfile::app {
namespace {

// What an import did, for the report.
struct Imported {
  Json items = Json::array();  // {"file", "id"}
  std::vector<mailbox::ErrorEntry> problems;
};

// Puts messages from one file into a folder.
class Import {
 public:
  Import(const mailbox::MailFolder& folder, std::string file, Imported& imported)
      : folder_(folder), file_(std::move(file)), imported_(imported) {}

  void run() {
    source_ = mailbox::MessageFile::open(file_);
    if (!source_) throw mailbox::failure(file_ + " is not there");
    const std::string_view bytes = source_->bytes();
    const formats::Forget forget = [this](std::string_view range) { source_->forget(range); };
    if (takeDocument(formats::readMessageFile(bytes, forget)) ||
        takeDocument(formats::readTnef(bytes, forget)))
      return;
    if (formats::isMbox(bytes)) {
      for (const auto& message : formats::splitMbox(bytes, forget)) {
        add([&](const formats::ByteSink& sink) { formats::writeMboxMessage(message, sink, forget); });
      }
    } else if (looksLikeMessage(bytes)) {
      add(formats::viewSource(bytes, forget));
    } else {
      throw mailbox::failure(
          file_ + " is no message that can be imported: an .eml, .msg, .tnef or mbox file is wanted");
    }
  }

 private:
  bool takeDocument(const std::optional<formats::ReadMessage>& message) {
    if (!message) return false;
    const std::string flags =
        std::string(message->content.draft ? "D" : "") + (message->content.unread ? "" : "S");
    add([&](const formats::ByteSink& sink) { formats::writeRfc5322(message->content, sink); }, flags);
    for (const Text& loss : formats::leftBehind(*message)) {
      imported_.problems.push_back(
          {.source = "Quillfile.Import", .message = file_ + ": " + toUtf8(loss), .level = 0});
    }
    return true;
  }

  void add(const mailbox::Content& content, const std::string& flags = "S") {
    const auto whole = [&](const mailbox::Sink& sink) {
      content(sink);
      if (!source_->isAsOpened())
        throw mailbox::failure(file_ + " was changed by another program while it was being read");
    };
    const std::string unique = folder_.create(whole, flags);
    imported_.items.push_back({{"file", file_}, {"id", folder_.itemId(unique)}});
  }

  // A header field at the front: a name of printable characters and a colon.
  static bool looksLikeMessage(std::string_view bytes) {
    const auto colon = bytes.substr(0, 1000).find(':');
    return colon != std::string_view::npos && colon > 0 &&
           std::all_of(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(colon),
                       [](char c) { return c > ' ' && c < 0x7F; });
  }

  const mailbox::MailFolder& folder_;
  std::string file_;
  std::shared_ptr<mailbox::MessageFile> source_;
  Imported& imported_;
};

}  // namespace

int runImport(const Options& options) {
  const auto session = openSessionToChange(options);
  const auto folder = options.folder.empty() ? session->store().need(mailbox::FolderRole::inbox)
                                             : session->store().createFolder(options.folder);
  Imported imported;
  for (const auto& file : options.arguments) {
    try {
      Import{*folder, file, imported}.run();
    } catch (const Failure& failure) {
      imported.problems.push_back(
          {.source = "Quillfile.Import", .message = toUtf8(failure.description), .level = 0});
    }
  }
  for (const auto& problem : imported.problems) printError(problem);
  if (options.json) {
    Json errors = Json::array();
    for (const auto& problem : imported.problems) {
      errors.push_back({{"source", problem.source}, {"message", problem.message}, {"level", problem.level}});
    }
    printJson({{"count", imported.items.size()}, {"items", imported.items}, {"errors", errors}});
  } else if (!options.quiet) {
    std::printf("%zu imported into %s\n", imported.items.size(),
                mailbox::printable(fromUtf8(folder->path())).c_str());
  }
  return imported.problems.empty() ? done : not_all_done;
}

}  // namespace quillfile::app
