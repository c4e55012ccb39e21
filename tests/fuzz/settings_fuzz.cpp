// A settings file of any bytes, and a key that is written into it. The file is refused as a whole, or the key
// then has the value, every other value and every other line is what it was, and the key can be taken out
// again.
#include <algorithm>
#include <cstdint>
#include <string>

#include "core/platform/failure.h"
#include "core/text/text.h"
#include "hosts/mailbox/services/ini_text.h"
#include "tests/fuzz/require.h"

using namespace quillfile;
using namespace quillfile::mailbox;

namespace {

struct Key {
  std::string_view section, name;
  bool operator==(const IniText::Value& value) const {
    return sameIgnoringCase(value.section, section) && sameIgnoringCase(value.key, name);
  }
};

constexpr Key keys[] = {
    {"Quillfile", "SavePath"}, {"Quillfile", "a"}, {"Corvane", "Temporarily Disabled"}, {"", "SavePath"}};

using Values = std::vector<IniText::Value>;

// Section, key and value of all but one key, in the file's order.
std::string others(const Values& values, const Key& key) {
  std::string result;
  for (const auto& one : values)
    if (!(key == one)) result += one.section + "\n" + one.key + "\n" + one.value + "\n";
  return result;
}

const std::string* last(const Values& values, const Key& key) {
  const auto found =
      std::find_if(values.rbegin(), values.rend(), [&](const auto& one) { return key == one; });
  return found == values.rend() ? nullptr : &found->value;
}

std::vector<std::string> linesOf(const std::string& bytes) {
  std::vector<std::string> lines;
  for (std::size_t begin = 0; begin < bytes.size();) {
    const auto end = bytes.find('\n', begin);
    lines.push_back(bytes.substr(begin, end - begin));
    begin = end == std::string::npos ? bytes.size() : end + 1;
  }
  return lines;
}

// Every line of `before` that is not the key's is in `after`, in the same order.
void requireLinesKept(const std::string& before, const std::string& after, const Key& key) {
  const auto kept = linesOf(after);
  auto at = kept.begin();
  for (const auto& line : linesOf(before)) {
    const auto name = line.find_first_not_of(" \t\r\xEF\xBB\xBF");
    if (name != std::string::npos && sameIgnoringCase(line.substr(name, key.name.size()), key.name)) continue;
    at = std::find(at, kept.end(), line);
    require(at != kept.end());
    ++at;
  }
}

}  // namespace

// The first byte chooses the key; the value follows, ended by a zero; the rest is the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const Key& key = keys[data[0] & 3];
  const std::string_view input{reinterpret_cast<const char*>(data) + 1, size - 1};
  const auto end = std::min(input.find('\0'), input.size());
  const std::string file{input.substr(std::min(end + 1, input.size()))};
  std::string value = toUtf8(fromUtf8(input.substr(0, end)));
  if (data[0] & 4) value += std::string("\0\x7F", 2);

  IniText ini{file};
  Values before;
  try {
    before = ini.values("settings.ini");
  } catch (const Failure& failure) {
    require(failure.description.find(u"Line ") == 0);
    return 0;
  }
  ini.set(key.section, key.name, value);
  const std::string written = ini.bytes();
  const Values after = IniText{written}.values("settings.ini");
  require(last(after, key) != nullptr && *last(after, key) == value);
  require(others(after, key) == others(before, key));
  requireLinesKept(file, written, key);

  IniText again{written};
  again.set(key.section, key.name, value);
  require(again.bytes() == written);
  again.set(key.section, key.name, std::nullopt);
  const Values without = IniText{again.bytes()}.values("settings.ini");
  require(last(without, key) == nullptr && others(without, key) == others(before, key));
  requireLinesKept(file, again.bytes(), key);
  return 0;
}
