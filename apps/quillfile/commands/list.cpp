#include "apps/quillfile/commands.h"
#include "apps/quillfile/item_output.h"
#include "apps/quillfile/run.h"
#include "core/platform/failure.h"
#include "hosts/mailbox/engine/printable.h"

namespace quillfile::app {
namespace {

std::vector<std::string> row(mailbox::MailboxItem& item, std::size_t number) {
  const Text received = item.receivedWithOffset();
  return {std::to_string(number),
          item.unRead() ? "*" : "",
          toUtf8(replaceAll(left(received, 16), u"T", u" ")),
          mailbox::printable(cutLeft(item.sender().name, 24)),
          attachmentsText(item),
          mailbox::printable(item.subject())};
}

}  // namespace

int runList(const Options& options) {
  const auto session = openSession(options);
  const auto folder = chosenFolder(*session, options);
  Json document = Json::array();
  std::vector<std::vector<std::string>> rows = {{"#", "", "RECEIVED", "FROM", "ATTACHMENTS", "SUBJECT"}};
  int status = done;
  std::size_t number = 0;
  for (auto& item : session->itemsOf(folder)) {
    ++number;
    try {
      if (options.json) {
        document.push_back(itemJson(*item, number));
      } else {
        rows.push_back(row(*item, number));
      }
    } catch (const Failure& failure) {
      printError({.source = "", .message = toUtf8(failure.description), .level = 0});
      status = not_all_done;
    }
    item.reset();  // a long list never holds more than one open message
  }
  if (options.json) {
    printJson(document);
  } else if (rows.size() > 1) {
    printTable(rows, {0});
  } else if (!options.quiet) {
    std::printf("%s is empty.\n", mailbox::printable(fromUtf8(folder->path())).c_str());
  }
  return status;
}

}  // namespace quillfile::app
