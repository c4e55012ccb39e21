#include "core/commands/option_lines.h"

namespace quillfile {
namespace {

Text printed(bool on) { return on ? u"-1" : u"0"; }
template <class Number>
Text printed(Number number) {
  return decimal(static_cast<std::int32_t>(number));
}

struct OptionLine {
  TextView text;
  Text (*value)(const RunSettings&, TextView savePath);
};

template <auto field>
Text valueOf(const RunSettings& run, TextView) {
  return printed(run.*field);
}

constexpr OptionLine optionLines[] = {
    {u"Save All Attachments: {}", valueOf<&RunSettings::saveAllAttachments>},
    {u"Post Pocessing (read, unread, delete): {}", valueOf<&RunSettings::postProcess>},  // sic
    {u"Remove Attachment After Processing: {}", valueOf<&RunSettings::removeAttachment>},
    {u"Mimic Outlook Folders: {}", valueOf<&RunSettings::imitateOutlookFolders>},
    {u"Error Prompt: {}", valueOf<&RunSettings::errorPrompt>},
    {u"Add URL: {}", valueOf<&RunSettings::addURL>},
    {u"Root Save Path: {}", [](const RunSettings&, TextView savePath) { return Text{savePath}; }},
    {u"Read write change (none, ro, rw): {}", valueOf<&RunSettings::readWrite>},
    {u"Automatic Rename: {}", valueOf<&RunSettings::automaticRename>},
    {u"Send Remove Attachments: {}", valueOf<&RunSettings::sendRemoveAttachments>},
    {u"Send Delete Attachments: {}", valueOf<&RunSettings::sendDeleteAttachments>},
};

}  // namespace

void traceOptions(const Trace& trace, TextView procedureName, const RunSettings& run, TextView savePath) {
  for (const auto& line : optionLines)
    trace(procedureName, line.text, [&] { return line.value(run, savePath); });
}

}  // namespace quillfile
