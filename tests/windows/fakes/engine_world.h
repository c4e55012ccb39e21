// EngineWorld: the engine, the mail-helper library and Outlook as real automation objects, and the module as
// they see it: created by ProgID from the registered library.
#pragma once

#include "quillfile_api.h"
#include "tests/windows/fakes/class_objects.h"
#include "tests/windows/fakes/outlook_world.h"

namespace quillfile::windows {

class EngineWorld {
 public:
  explicit EngineWorld(bool withMailHelper = true);
  ~EngineWorld();

  Recorder recorder;
  OutlookWorld outlook{recorder};
  Fake host;  // what CEStartup is given

  // What the module told the engine, in order.
  std::vector<Text> trace;   // "procedure: message"
  std::vector<Text> errors;  // "level source: message"
  std::vector<Text> asked;   // "AddButton Quillfile" and the like
  int logsMade = 0;

  Text documents;              // the folder that the special folder path names, with "\" at its end
  Text folderPath = u"Inbox";  // what the engine says of any folder

  void set(TextView key, TextView value);  // a setting of the module's
  Text setting(TextView key);              // empty where there is none

  // The module, early-bound.
  Ptr<::IModuleAPI> module;
  void create();
  LONG start();
  LONG openExplorer();
  LONG stop();

 private:
  void makeHost();
  Fake makeServices();
  Fake makeUtilities();
  Fake makeLog();
  Fake makeSafeItem();
  Fake makeMapiUtilities();

  ClassObjects classes_;
};

inline constexpr TextView applicationName = u"QuillfileWineTests";

}  // namespace quillfile::windows
