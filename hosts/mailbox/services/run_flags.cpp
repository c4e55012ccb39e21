#include "hosts/mailbox/services/run_flags.h"

#include <algorithm>

namespace quillfile::mailbox {
namespace {

struct Flag {
  TextView key;
  TextView off;  // what an absent key means
};
constexpr Flag flags[] = {{u"ButtonClicked", u"0"}, {u"CVTemporarilyDisabled", u"False"}};

const Flag* flagNamed(TextView key) {
  const auto* const found =
      std::find_if(std::begin(flags), std::end(flags), [&](const Flag& flag) { return flag.key == key; });
  return found == std::end(flags) ? nullptr : found;
}

}  // namespace

std::optional<Text> RunFlags::read(TextView application, TextView section, TextView key) {
  if (const auto held = held_.find(key); held != held_.end()) return held->second.value;
  return file_.read(application, section, key);
}

void RunFlags::write(TextView application, TextView section, TextView key, TextView value) {
  if (flagNamed(key) == nullptr) return file_.write(application, section, key, value);
  held_.insert_or_assign(
      Text{key}, Held{.application = Text{application}, .section = Text{section}, .value = Text{value}});
}

void RunFlags::settle() {
  for (const auto& [key, held] : std::exchange(held_, {})) {
    const auto stands = file_.read(held.application, held.section, key);
    if (stands.value_or(Text{flagNamed(key)->off}) != held.value)
      file_.write(held.application, held.section, key, held.value);
  }
}

}  // namespace quillfile::mailbox
