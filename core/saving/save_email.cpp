// SaveEmail: the item itself as a file, in up to two formats.
#include <array>

#include "core/saving/naming.h"
#include "core/saving/quillfile_routines.h"

namespace quillfile {
namespace {

struct EmailFormat {
  TextView extension;
  SaveAsType type;
};

// By the number that the settings hold; any other number writes no file.
constexpr std::array<EmailFormat, 5> emailFormats{{
    {u".msg", SaveAsType::message},
    {u".html", SaveAsType::html},
    {u".txt", SaveAsType::text},
    {u".eml", SaveAsType::rfc822},
    {u".tnef", SaveAsType::tnef},
}};

const EmailFormat* emailFormat(std::int32_t number) {
  const auto index = static_cast<std::size_t>(number);
  return number >= 0 && index < emailFormats.size() ? &emailFormats.at(index) : nullptr;
}

}  // namespace

bool QuillfileRoutines::SaveEmail(const Ref<Item>& item, bool skipCriteria, TextView savePath) {
  const auto body = [&](Step& at) -> bool {
    at(1);
    if (!skipCriteria) {
      auto filters = readSaveFilters(ports_.settings, ports_.letters);
      if (!CheckSave(item, savePath, filters, {}, true)) return false;
    }
    at(2);
    const auto safe = ports_.mailHelper.wrap(item);
    at(3);
    if (const auto* format = emailFormat(ports_.settings.number(u"SaveEmailsAs1"))) {
      const auto path = emailPath(item, format->extension, savePath);
      ports_.trace(u"SaveEmail", u"Saving to {}", path);
      safe->saveAs(path, format->type);
      if (ports_.settings.flag(u"ExecuteWanted")) ExecuteProgramOnEmail(path);
    }
    at(4);
    if (const auto* format = emailFormat(ports_.settings.number(u"SaveEmailsAs2"))) {
      const auto path = emailPath(item, format->extension, savePath);
      ports_.trace(u"SaveEmail", u"Saving 2nd to {}", path);
      safe->saveAs(path, format->type);
    }
    at(5);
    return true;
  };
  return procedure(ports_.services, {.name = u".SaveEmail", .wording = wording::atLine}, body);
}

// A numbered path where names are made by themselves, else the subject's own, which replaces what was there.
Text QuillfileRoutines::emailPath(const Ref<Item>& item, TextView extension, TextView savePath) {
  if (ports_.settings.flag(u"AutomaticRename"))
    if (auto path = RenameIt(item, extension, savePath); !path.empty()) return path;
  auto path = StripInvalidCharacters(ports_.paths, savePath, u"-");
  ports_.utilities.createFolderPath(path);
  if (!endsWith(path, ports_.paths.separator)) path.append(ports_.paths.separator);
  return path.append(ports_.utilities.cleanFileName(item->subject())).append(extension);
}

}  // namespace quillfile
