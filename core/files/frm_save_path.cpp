#include "core/files/frm_save_path.h"

#include "core/module/procedure.h"

namespace quillfile {
namespace {

constexpr TextView procedureName = u"SaveAs";
constexpr std::int32_t askBeforeOverwriting = 2;

}  // namespace

Text frmSavePath::SaveAs(TextView path) {
  return guarded(
      [&](Step&) {
        auto chosen = dialogs_.show(requestFor(path)).value_or(Text{});
        rememberFolder(chosen);
        return chosen;
      },
      [](const Failure&, const Step&) { return Text{}; });
}

SaveAsRequest frmSavePath::requestFor(TextView path) {
  SaveAsRequest request{.fileName = Text{path},
                        .initialFolder = {},
                        .defaultExtension = {},
                        .title = u"Quillfile",
                        .filter = u"All Files (*.*)|*.*",
                        .flags = askBeforeOverwriting};
  const Text lastFolder = settings_.text(u"SaveAsMRUPath");
  trace_(procedureName, u"Entering SaveAs with: {}", path);
  trace_(procedureName, u"MRU path: {}", lastFolder);
  const auto cut = findLast(path, paths_.separator);
  if (!lastFolder.empty() && cut > 0) {
    request.fileName = from(path, cut + 1);
    request.initialFolder = lastFolder;
  }
  if (const auto point = findLast(path, u"."); point > 0) {
    request.defaultExtension = from(path, point + 1);
    trace_(procedureName, u"File Extension: {}", request.defaultExtension);
  }
  return request;
}

void frmSavePath::rememberFolder(TextView chosen) {
  const auto cut = findLast(chosen, paths_.separator);
  if (cut == 0) return;
  const auto folder = left(chosen, cut);
  trace_(procedureName, u"Switching mru path to: {}", folder);
  settings_.write(u"SaveAsMRUPath", folder);
}

}  // namespace quillfile
