#include "hosts/mailbox/mime/date.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <string>
#include <vector>

#include "hosts/mailbox/mime/header.h"

namespace quillfile::mime {
namespace {

constexpr std::string_view months[] = {"jan", "feb", "mar", "apr", "may", "jun",
                                       "jul", "aug", "sep", "oct", "nov", "dec"};

struct Zone {
  std::string_view name;
  int hours;
};
constexpr Zone zones[] = {{"edt", -4}, {"est", -5}, {"cdt", -5}, {"cst", -6},
                          {"mdt", -6}, {"mst", -7}, {"pdt", -7}, {"pst", -8}};

// Comments become blanks; they nest.
std::string withoutComments(std::string_view value) {
  std::string result;
  int depth = 0;
  for (std::size_t i = 0; i < value.size(); ++i) {
    const char c = value[i];
    if (c == '(') ++depth;
    if (depth == 0) result += c;
    if (c == '\\' && depth > 0) ++i;
    if (c == ')' && depth > 0 && --depth == 0) result += ' ';
  }
  return result;
}

std::vector<std::string> words(std::string_view value) {
  constexpr std::string_view dividers = " \t\r\n,";
  std::vector<std::string> found;
  for (auto begin = value.find_first_not_of(dividers); begin != value.npos;
       begin = value.find_first_not_of(dividers, begin)) {
    const auto end = std::min(value.find_first_of(dividers, begin), value.size());
    found.push_back(lowerCase(value.substr(begin, end - begin)));
    begin = end;
  }
  return found;
}

std::optional<int> number(std::string_view digits) {
  int value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  const bool whole = error == std::errc{} && end == digits.data() + digits.size();
  return whole && value >= 0 ? std::optional{value} : std::nullopt;
}

// What a date is made of, gathered word by word: the words say themselves what they are.
struct Gathered {
  std::optional<int> day, month, year, hour, minute, second, zoneMinutes;

  void add(std::string_view word) {
    const bool isSigned = word.starts_with('+') || word.starts_with('-');
    if (isSigned) return addOffset(word);
    if (word.find(':') != word.npos) return addTime(word);
    if (const auto dash = word.find('-'); dash != word.npos) {  // 21-Nov-97
      add(word.substr(0, dash));
      return add(word.substr(dash + 1));
    }
    if (const auto value = number(word)) return addNumber(*value, word.size());
    addName(word);
  }

  std::optional<std::int64_t> seconds() const {
    if (!day || !month || !year || !hour || !minute) return std::nullopt;
    const std::chrono::year_month_day date{std::chrono::year{*year},
                                           std::chrono::month{static_cast<unsigned>(*month)},
                                           std::chrono::day{static_cast<unsigned>(*day)}};
    const int inMinute = second.value_or(0);
    if (!date.ok() || *year < 1601 || *year > 9999 || *hour > 23 || *minute > 59 || inMinute > 60)
      return std::nullopt;
    const std::int64_t days = std::chrono::sys_days{date}.time_since_epoch().count();
    return days * 86400 + *hour * 3600 + *minute * 60 + std::min(inMinute, 59) - zoneMinutes.value_or(0) * 60;
  }

 private:
  void addOffset(std::string_view word) {
    const auto value = number(word.substr(1));
    if (!hour || !value || word.size() != 5) return;
    const int minutes = *value / 100 * 60 + *value % 100;
    zoneMinutes = word[0] == '-' ? -minutes : minutes;
  }

  void addTime(std::string_view word) {
    if (hour) return;
    const auto first = word.find(':');
    const auto next = word.find(':', first + 1);
    hour = number(word.substr(0, first));
    minute = number(word.substr(first + 1, next == word.npos ? next : next - first - 1));
    if (next != word.npos) second = number(word.substr(next + 1)).value_or(99);
  }

  void addNumber(int value, std::size_t digits) {
    if (!day && digits <= 2) {
      day = value;
    } else if (!year) {  // RFC 5322 4.3
      year = digits == 2 ? value + (value < 50 ? 2000 : 1900) : digits == 3 ? value + 1900 : value;
    }
  }

  void addName(std::string_view word) {
    const auto* name = std::find(std::begin(months), std::end(months), word.substr(0, 3));
    if (!month && name != std::end(months)) {
      month = static_cast<int>(name - std::begin(months)) + 1;
      return;
    }
    for (const auto& zone : zones) {
      if (hour && !zoneMinutes && zone.name == word) zoneMinutes = zone.hours * 60;
    }
  }
};

}  // namespace

std::optional<std::int64_t> parseDate(std::string_view value) {
  constexpr std::size_t longest = 1'000;  // far more than any date with its comments
  Gathered gathered;
  for (const auto& word : words(withoutComments(value.substr(0, longest)))) gathered.add(word);
  return gathered.seconds();
}

std::optional<std::int64_t> parseReceivedDate(std::string_view value) {
  const auto bare = withoutComments(value);
  const auto semicolon = bare.rfind(';');
  if (semicolon == bare.npos) return std::nullopt;
  return parseDate(std::string_view{bare}.substr(semicolon + 1));
}

}  // namespace quillfile::mime
