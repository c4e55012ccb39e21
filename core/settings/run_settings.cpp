#include "core/settings/run_settings.h"

#include "core/module/procedure.h"

namespace quillfile {

RunSettings ReadRunSettings(const Settings& settings) {
  RunSettings run;
  const auto flag = [&](bool& field, FlagKey key) { ignoringErrors([&] { field = settings.flag(key); }); };
  const auto number = [&](auto& field, NumberKey key) {
    ignoringErrors(
        [&] { field = static_cast<std::remove_reference_t<decltype(field)>>(settings.number(key)); });
  };
  number(run.automaticMode, u"AutomaticMode");
  flag(run.sendDeleteAttachments, u"SendDeleteAttachments");
  flag(run.sendRemoveAttachments, u"SendRemoveAttachments");
  flag(run.errorPrompt, u"ErrorPrompt");
  flag(run.saveAllAttachments, u"SaveAllAttachments");
  flag(run.addURL, u"AddURL");
  flag(run.removeAttachment, u"RemoveAttachment");
  number(run.readWrite, u"ReadWrite");
  ignoringErrors([&] { run.savePath = settings.expandedSavePath(); });
  flag(run.imitateOutlookFolders, u"ImitateOutlookFolders");
  number(run.postProcess, u"PostProcess");
  flag(run.automaticRename, u"AutomaticRename");
  return run;
}

}  // namespace quillfile
