#include "hosts/mailbox/engine/prompts.h"

#include <array>
#include <filesystem>
#include <utility>

#include "hosts/mailbox/engine/known_folders.h"
#include "hosts/mailbox/engine/printable.h"

namespace quillfile::mailbox {
namespace {

constexpr std::array<std::pair<std::string_view, PresetAnswer>, 5> answerWords = {{
    {"yes", PresetAnswer::yes},
    {"yes-to-all", PresetAnswer::yes_to_all},
    {"no", PresetAnswer::no},
    {"no-to-all", PresetAnswer::no_to_all},
    {"cancel", PresetAnswer::cancel},
}};

// The four answers of the delete prompt: the key, the preset, and the number that the form answers with.
struct DeleteAnswer {
  char key;
  PresetAnswer preset;
  std::int32_t response;
};
constexpr std::array<DeleteAnswer, 4> deleteAnswers = {{
    {'n', PresetAnswer::no, 1},
    {'o', PresetAnswer::no_to_all, 2},
    {'y', PresetAnswer::yes, 3},
    {'a', PresetAnswer::yes_to_all, 4},
}};

bool isYes(PresetAnswer answer) { return answer == PresetAnswer::yes || answer == PresetAnswer::yes_to_all; }

// The first of "name-1.ext", "name-2.ext" … that is free.
std::string numbered(const std::string& path, const IsTaken& isTaken) {
  const std::filesystem::path whole = path;
  for (int number = 1;; ++number) {
    const std::string name =
        whole.stem().string() + "-" + std::to_string(number) + whole.extension().string();
    std::string tried = (whole.parent_path() / name).string();
    if (!isTaken(tried)) return tried;
  }
}

// As Save-As forms do: a name that is typed without a point gets the extension.
std::string withExtension(const std::string& path, const std::string& extension) {
  const std::string name = path.substr(path.rfind('/') + 1);
  const bool hasOne = name.empty() || name.find('.') != std::string::npos;
  // What follows a point in a folder's name is no extension.
  return hasOne || extension.empty() || extension.find('/') != std::string::npos ? path
                                                                                 : path + "." + extension;
}

}  // namespace

std::optional<PresetAnswer> presetAnswer(std::string_view word) {
  for (const auto& [name, answer] : answerWords) {
    if (name == word) return answer;
  }
  return std::nullopt;
}

Answer Prompts::ask(TextView question) {
  if (preset_)
    return isYes(*preset_) ? Answer::yes : *preset_ == PresetAnswer::cancel ? Answer::cancel : Answer::no;
  if (!terminal_.present()) return Answer::no;
  terminal_.show(printableLines(question) + "\n[y]es  [n]o  [c]ancel: ");
  switch (terminal_.readKey("ync").value_or('c')) {
    case 'y':
      return Answer::yes;
    case 'n':
      return Answer::no;
    default:
      return Answer::cancel;
  }
}

std::int32_t Prompts::show(const DeletePrompt& prompt) {
  constexpr std::int32_t careful = 1;
  if (preset_) {
    for (const auto& answer : deleteAnswers) {
      if (answer.preset == *preset_) return answer.response;
    }
    return careful;
  }
  if (!terminal_.present()) return careful;
  terminal_.show(printableLines(prompt.message) + "\n[y]es  yes to [a]ll  [n]o  n[o] to all: ");
  const auto key = terminal_.readKey("yano");
  for (const auto& answer : deleteAnswers) {
    if (answer.key == key) return answer.response;
  }
  return 0;
}

std::optional<Text> Prompts::show(const SaveAsRequest& request) {
  std::string proposed = toUtf8(request.fileName);
  if (!request.initialFolder.empty())
    proposed = (std::filesystem::path(toUtf8(request.initialFolder)) / proposed).string();
  if (preset_ || !terminal_.present()) {
    if (!preset_ || !isYes(*preset_)) return std::nullopt;
    return fromUtf8(isTaken_(proposed) ? numbered(proposed, isTaken_) : proposed);
  }
  return askForPath(proposed, toUtf8(request.defaultExtension));
}

std::optional<Text> Prompts::askForPath(const std::string& proposed, const std::string& extension) {
  for (;;) {
    terminal_.show("Save as (return: " + printable(fromUtf8(proposed)) + "; - : cancel): ");
    const auto line = terminal_.readLine();
    if (!line || *line == "-") return std::nullopt;
    // A bare name stays in the proposed folder, as in any Save-As form.
    const bool bare = line->find('/') == std::string::npos && !line->starts_with('~');
    const auto folder = std::filesystem::path(proposed).parent_path();
    const std::string typed = bare ? (folder / *line).string() : expandPath(*line);
    const std::string path = line->empty() ? proposed : withExtension(typed, extension);
    if (!isTaken_(path)) return fromUtf8(path);
    terminal_.show(printable(fromUtf8(path)) + " already exists. Replace it? [y]es  [n]o: ");
    if (terminal_.readKey("yn") == 'y') return fromUtf8(path);
  }
}

}  // namespace quillfile::mailbox
