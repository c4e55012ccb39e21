// The engine's global objects, by their ProgIDs: "Corvane.EngineServices" with its utilities and language
// strings, and "Corvane.EngineLog".
#pragma once

#include "core/platform/engine.h"
#include "hosts/windows/com/object.h"

namespace quillfile::windows {

class ComServices final : public EngineServices, public EngineUtilities {
 public:
  Text settingsApplicationName() override;
  Ref<ModuleCollection> prepareModuleCollection(TextView module) override;
  Text specialFolderPath(std::int32_t code) override;
  void ensureFolder(TextView path) override;
  Text expandPath(TextView path) override;
  void reportError(TextView message, std::int32_t level, TextView source) override;
  Ref<LanguageStrings> languageStrings() override;
  void prepareForm(TextView form) override;

  std::int32_t matchText(TextView text, TextView pattern) override;
  Text cleanFileName(TextView text) override;
  bool fileExists(TextView path) override;
  bool createFolderPath(TextView path) override;
  void deleteFile(TextView path) override;
  void discardSavedFile(TextView path) override;

  Text bodyFormat(const Object& item);  // "HTML", "RTF" or "TEXT"

  // Lets go of the engine's objects; the next call asks for them again.
  void release();

 private:
  const Object& services();  // created on first use
  const Object& utilities();

  Object services_;
  Object utilities_;
};

// A fresh "Corvane.EngineLog" for each line. Where the engine has none, lines go nowhere.
class ComLog final : public EngineLog {
 public:
  bool wanted() override;
  void write(TextView module, TextView procedure, TextView message, std::int32_t number) override;

 private:
  enum class Lookup { pending, found, missing };
  Lookup lookup_ = Lookup::pending;
  CLSID classId_{};
};

}  // namespace quillfile::windows
