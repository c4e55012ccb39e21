#include "apps/quillfile/output.h"

#include <wchar.h>

#include <algorithm>
#include <clocale>
#include <cstdio>

#include "hosts/mailbox/engine/printable.h"
#include "hosts/mailbox/engine/progress.h"

namespace quillfile::app {
namespace {

// The longest folder that all paths lie in, with its separator.
std::string commonFolder(const std::deque<mailbox::SavedEntry>& saved) {
  std::string common = saved.front().path;
  for (const auto& entry : saved) {
    const auto end = std::mismatch(common.begin(), common.end(), entry.path.begin(), entry.path.end()).first;
    common.erase(end, common.end());
  }
  return common.substr(0, common.rfind('/') + 1);
}

void printSaved(const mailbox::RunReport& report) {
  if (report.saved.empty()) return;
  std::int64_t bytes = 0;
  for (const auto& entry : report.saved) bytes += entry.size;
  std::printf("%s, %s, in %s\n", counted(report.saved.size(), "file", "files").c_str(),
              mailbox::sizeText(bytes).c_str(),
              mailbox::printable(fromUtf8(commonFolder(report.saved))).c_str());
}

}  // namespace

std::string counted(std::size_t count, const char* one, const char* many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

void printJson(const Json& document) {
  const std::string text = document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
  std::fwrite(text.data(), 1, text.size(), stdout);
}

std::size_t columnsOf(const std::string& utf8) {
  std::size_t columns = 0;
  const Text text = fromUtf8(utf8);
  for (std::size_t i = 0; i < text.size(); ++i) {
    wchar_t letter = static_cast<wchar_t>(text[i]);
    const bool pair = text[i] >= 0xD800 && text[i] <= 0xDBFF && i + 1 < text.size();
    if (pair)
      letter = static_cast<wchar_t>(0x10000 + ((text[i] - 0xD800) << 10) + (text[i + 1] - 0xDC00)), ++i;
    columns += static_cast<std::size_t>(std::max(0, wcwidth(letter)));
  }
  return columns;
}

void printTable(const std::vector<std::vector<std::string>>& rows, const std::vector<std::size_t>& right) {
  std::vector<std::size_t> widths;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], columnsOf(row[i]));
  }
  for (const auto& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      const std::string padding(widths[i] - columnsOf(row[i]), ' ');
      const bool isRight = std::find(right.begin(), right.end(), i) != right.end();
      line += isRight ? padding + row[i] : i + 1 < row.size() ? row[i] + padding : row[i];
      if (i + 1 < row.size()) line += "  ";
    }
    std::printf("%s\n", line.c_str());
  }
}

Json reportJson(const mailbox::RunReport& report) {
  Json saved = Json::array(), items = Json::array(), drafts = Json::array(), errors = Json::array();
  for (const auto& entry : report.saved) {
    saved.push_back(
        {{"item", entry.item}, {"file_name", entry.fileName}, {"path", entry.path}, {"size", entry.size}});
  }
  for (const auto& entry : report.items) items.push_back({{"id", entry.id}, {"new_id", entry.newId}});
  for (const auto& entry : report.drafts) drafts.push_back(entry.id);
  for (const auto& entry : report.errors) {
    errors.push_back({{"source", entry.source}, {"message", entry.message}, {"level", entry.level}});
  }
  return {{"message", report.message ? Json(*report.message) : Json(nullptr)},
          {"count", report.count},
          {"saved", saved},
          {"items", items},
          {"drafts", drafts},
          {"deleted_files", report.deletedFiles},
          {"errors", errors}};
}

int printReport(const Options& options, const mailbox::RunReport& report) {
  if (options.json) {
    printJson(reportJson(report));
  } else if (!options.quiet) {
    if (report.message) std::printf("%s\n", mailbox::printableLines(fromUtf8(*report.message)).c_str());
    printSaved(report);
    for (const auto& [id, path] : report.drafts)
      std::printf("Left in Drafts: %s (%s)\n", mailbox::printable(fromUtf8(id)).c_str(),
                  mailbox::printable(fromUtf8(path)).c_str());
    for (const auto& path : report.deletedFiles) {
      std::printf("Moved to the trash: %s\n", mailbox::printable(fromUtf8(path)).c_str());
    }
  }
  return report.errors.empty() ? done : not_all_done;
}

void printError(const mailbox::ErrorEntry& error) {
  std::fflush(stdout);  // so that both stand in the order in which they happened
  const Text sentence = replaceAll(fromUtf8(error.message), u"\r\n", u" ");  // some are two lines of a box
  std::fprintf(stderr, "quillfile: %s\n", mailbox::printable(sentence).c_str());
}

}  // namespace quillfile::app
