// ComWorld: the world of the core's own tests behind real automation objects: Outlook, the engine and the
// mail-helper library. The module in it is created by ProgID from the registered library, and uses the real
// registry, disk and desktop. What the engine and the client are asked goes into the world's one transcript.
#pragma once

#include "quillfile_api.h"
#include "tests/windows/fakes/class_objects.h"
#include "tests/windows/fakes/com_outlook.h"

namespace quillfile::windows {

class ComWorld {
 public:
  // The fakes must outlive this.
  explicit ComWorld(FakePlatform& fakes, bool withMailHelper = true);
  ~ComWorld();

  CallCounter calls;
  FakePlatform& fakes;
  ComOutlook outlook{fakes, calls};
  Fake host;  // what CEStartup is given
  int logsMade = 0;

  // The settings of the module, in the registry.
  void set(TextView key, TextView value);
  std::optional<Text> setting(TextView key) const;

  Ptr<::IModuleAPI> module;  // early-bound
  void create();
  static Text libraryFolder();  // where the registered library lies, once the module has been created
  // Each throws Failure where the call fails.
  LONG start();
  LONG openExplorer();
  LONG stop();
  LONG button();
  LONG itemAdded(const Ref<Item>& item, DefaultFolder folder);
  LONG openInspector(const Ref<Item>& item);

 private:
  void makeHost();
  Fake makeServices();
  Fake makeUtilities();
  Fake makeLog();
  Fake makeSafeItem();
  Fake makeMapiUtilities();

  ClassObjects classes_;
};

}  // namespace quillfile::windows
