#include "hosts/windows/engine/services.h"

#include "hosts/windows/outlook/adapted.h"

namespace quillfile::windows {

namespace {

class ComLanguageStrings final : public Adapted<LanguageStrings> {
 public:
  using Adapted::Adapted;
  std::optional<Text> text(std::int32_t number) override {
    Text text = object().call(u"Text", number).text();
    if (text.empty()) return std::nullopt;
    return text;
  }
};

class ComModuleCollection final : public Adapted<ModuleCollection> {
 public:
  using Adapted::Adapted;
};

}  // namespace

const Object& ComServices::services() {
  if (!services_) services_ = Object::create(u"Corvane.EngineServices");
  return services_;
}

const Object& ComServices::utilities() {
  if (!utilities_) utilities_ = services().get(u"Utilities").object();
  return utilities_;
}

void ComServices::release() {
  utilities_ = {};
  services_ = {};
}

Text ComServices::settingsApplicationName() { return services().get(u"SettingsApplicationName").text(); }

Ref<ModuleCollection> ComServices::prepareModuleCollection(TextView module) {
  Ptr<IDispatch> collection;
  services().run(u"PrepareModuleCollection", Variant::reference(collection), module);
  return adapt<ComModuleCollection>(collection);
}

Text ComServices::specialFolderPath(std::int32_t code) {
  return services().call(u"SpecialFolderPath", code).text();
}
void ComServices::ensureFolder(TextView path) { services().run(u"EnsureFolder", path); }
Text ComServices::expandPath(TextView path) { return services().call(u"ExpandPath", path).text(); }

void ComServices::reportError(TextView message, std::int32_t level, TextView source) {
  services().run(u"ReportError", message, level, source);
}

Ref<LanguageStrings> ComServices::languageStrings() {
  return adapt<ComLanguageStrings>(services().get(u"LanguageStrings").object());
}

void ComServices::prepareForm(TextView form) { services().run(u"PrepareForm", form); }

std::int32_t ComServices::matchText(TextView text, TextView pattern) {
  return utilities().call(u"MatchText", text, pattern).number();
}

Text ComServices::cleanFileName(TextView text) { return utilities().call(u"CleanFileName", text).text(); }
bool ComServices::fileExists(TextView path) { return utilities().call(u"FileExists", path).boolean(); }
bool ComServices::createFolderPath(TextView path) {
  return utilities().call(u"CreateFolderPath", path).boolean();
}
void ComServices::deleteFile(TextView path) { utilities().run(u"DeleteFile", path); }
void ComServices::discardSavedFile(TextView path) { utilities().run(u"DiscardSavedFile", path); }
Text ComServices::bodyFormat(const Object& item) {
  return utilities().call(u"BodyFormat", item.ptr()).text();
}

bool ComLog::wanted() {
  if (lookup_ == Lookup::pending) {
    lookup_ = SUCCEEDED(CLSIDFromProgID(L"Corvane.EngineLog", &classId_)) ? Lookup::found : Lookup::missing;
  }
  return lookup_ == Lookup::found;
}

void ComLog::write(TextView module, TextView procedure, TextView message, std::int32_t number) {
  if (wanted()) Object::create(classId_).run(u"Write", module, procedure, message, number);
}

}  // namespace quillfile::windows
