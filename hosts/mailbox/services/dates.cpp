#include "hosts/mailbox/services/dates.h"

#include <langinfo.h>
#include <locale.h>

#include <array>
#include <memory>
#include <optional>
#include <utility>

#include "core/platform/failure.h"

namespace quillfile::mailbox {
namespace {

constexpr TextView isoDate = u"%Y-%m-%d";
constexpr TextView isoTime = u"%H:%M:%S";

struct LocaleEnd {
  void operator()(locale_t locale) const { freelocale(locale); }
};
using Locale = std::unique_ptr<std::remove_pointer_t<locale_t>, LocaleEnd>;

Text word(nl_item item, locale_t locale) { return fromUtf8(nl_langinfo_l(item, locale)); }

std::vector<Text> twelve(nl_item first, locale_t locale) {
  std::vector<Text> names;
  names.reserve(12);
  for (nl_item i = 0; i < 12; ++i) names.push_back(word(first + i, locale));
  return names;
}

// strftime's composed letters written out, eras and other digits (%E, %O) left, a two-digit year made whole,
// and what says no more of the time (weekdays, zones) left out.
Text plainPattern(TextView pattern) {
  static constexpr std::array<std::pair<char16_t, TextView>, 7> composed = {{{u'D', u"%m/%d/%Y"},
                                                                             {u'F', u"%Y-%m-%d"},
                                                                             {u'T', u"%H:%M:%S"},
                                                                             {u'R', u"%H:%M"},
                                                                             {u'r', u"%I:%M:%S %p"},
                                                                             {u'y', u"%Y"},
                                                                             {u'h', u"%b"}}};
  Text plain;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] != u'%' || i + 1 == pattern.size()) {
      plain += pattern[i];
      continue;
    }
    ++i;
    while (i + 1 < pattern.size() && TextView(u"EO-_^0").find(pattern[i]) != TextView::npos) ++i;
    const char16_t letter = pattern[i];
    bool done = false;
    for (const auto& [from, to] : composed) {
      if (from == letter) plain += to, done = true;
    }
    if (!done && TextView(u"mdeYBbHIMSpkl").find(letter) != TextView::npos) plain.append({u'%', letter});
  }
  return plain;
}

std::int32_t twelveHour(std::int32_t hour) { return hour % 12 == 0 ? 12 : hour % 12; }

// Reads a text by a pattern, from its front.
class Reader {
 public:
  Reader(TextView text, const DateWords& words) : text_(text), words_(words) {}

  bool read(TextView pattern) {
    for (std::size_t i = 0; i < pattern.size(); ++i) {
      const bool field = pattern[i] == u'%' && i + 1 < pattern.size();
      if (field ? !readField(pattern[++i]) : !readLiteral(pattern[i])) return false;
    }
    return true;
  }
  bool done() const { return text_.empty(); }

  std::optional<LocalTime> time() const {
    LocalTime time = time_;
    if (half_ != Half::none && (time.hour < 1 || time.hour > 12)) return std::nullopt;
    if (half_ != Half::none) time.hour = time.hour % 12 + (half_ == Half::afternoon ? 12 : 0);
    static constexpr std::array<std::int32_t, 12> days = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (time.month < 1 || time.month > 12 || time.year < 1) return std::nullopt;
    const bool leap = (time.year % 4 == 0 && time.year % 100 != 0) || time.year % 400 == 0;
    const auto last = days[static_cast<std::size_t>(time.month - 1)] + (time.month == 2 && leap ? 1 : 0);
    const bool valid =
        time.day >= 1 && time.day <= last && time.hour <= 23 && time.minute <= 59 && time.second <= 59;
    return valid ? std::optional(time) : std::nullopt;
  }

 private:
  enum class Half { none, morning, afternoon };

  bool readLiteral(char16_t unit) {
    if (text_.empty() || text_.front() != unit) return false;
    text_.remove_prefix(1);
    return true;
  }

  bool readNumber(std::int32_t& value, std::size_t most) {
    while (most == 2 && !text_.empty() && text_.front() == u' ') text_.remove_prefix(1);
    std::size_t digits = 0;
    value = 0;
    while (digits < most && digits < text_.size() && text_[digits] >= u'0' && text_[digits] <= u'9') {
      value = value * 10 + (text_[digits++] - u'0');
    }
    text_.remove_prefix(digits);
    return digits > 0;
  }

  // The longest of the words that the text begins with; its index, or none.
  std::optional<std::size_t> readWord(const std::vector<Text>& words) {
    std::optional<std::size_t> best;
    for (std::size_t i = 0; i < words.size(); ++i) {
      if (!words[i].empty() && startsWith(text_, words[i]) &&
          (!best || words[i].size() > words[*best].size()))
        best = i;
    }
    if (best) text_.remove_prefix(words[*best].size());
    return best;
  }

  bool readMonth(const std::vector<Text>& names) {
    const auto index = readWord(names);
    if (index) time_.month = static_cast<std::int32_t>(*index) + 1;
    return index.has_value();
  }

  bool readField(char16_t letter) {
    switch (letter) {
      case u'Y':
        return readNumber(time_.year, 4);
      case u'm':
        return readNumber(time_.month, 2);
      case u'd':
      case u'e':
        return readNumber(time_.day, 2);
      case u'B':
        return readMonth(words_.months);
      case u'b':
        return readMonth(words_.shortMonths);
      case u'H':
      case u'k':
      case u'I':
      case u'l':
        return readNumber(time_.hour, 2);
      case u'M':
        return readNumber(time_.minute, 2);
      case u'S':
        return readNumber(time_.second, 2);
      case u'p': {
        const auto half = readWord({words_.am, words_.pm});
        if (half) half_ = *half == 1 ? Half::afternoon : Half::morning;
        return half.has_value();
      }
      default:
        return false;
    }
  }

  TextView text_;
  const DateWords& words_;
  LocalTime time_;
  Half half_ = Half::none;
};

}  // namespace

DateWords DateWords::usEnglish() {
  return {.date = u"%m/%d/%Y",
          .time = u"%I:%M:%S %p",
          .months = {u"January", u"February", u"March", u"April", u"May", u"June", u"July", u"August",
                     u"September", u"October", u"November", u"December"},
          .shortMonths = {u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun", u"Jul", u"Aug", u"Sep", u"Oct",
                          u"Nov", u"Dec"},
          .am = u"AM",
          .pm = u"PM",
          .padded = false};
}

DateWords DateWords::of(const std::string& name) {
  const Locale locale{newlocale(LC_TIME_MASK | LC_CTYPE_MASK, name.c_str(), nullptr)};
  if (!locale) return usEnglish();
  DateWords words{.date = plainPattern(word(D_FMT, locale.get())),
                  .time = plainPattern(word(T_FMT, locale.get())),
                  .months = twelve(MON_1, locale.get()),
                  .shortMonths = twelve(ABMON_1, locale.get()),
                  .am = word(AM_STR, locale.get()),
                  .pm = word(PM_STR, locale.get())};
  // The C locale writes a year of two digits; the general date of the United States has neither that nor
  // zeros.
  DateWords us = usEnglish();
  const bool american = words.date == us.date && words.months == us.months;
  if (american) return us;
  if (words.am.empty() || words.pm.empty())
    words.time = replaceAll(replaceAll(words.time, u"%I", u"%H"), u"%p", u"");
  return words;
}

LocaleDates::LocaleDates(DateWords words) : words_(std::move(words)) {}

Text LocaleDates::format(TextView pattern, const LocalTime& time) const {
  Text text;
  const auto add = [&](std::int32_t number, bool padded) {
    if (padded && number < 10) text += u'0';
    text += decimal(number);
  };
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] != u'%' || i + 1 == pattern.size()) {
      text += pattern[i];
      continue;
    }
    const auto month = static_cast<std::size_t>(time.month - 1);
    switch (pattern[++i]) {
      case u'Y':
        add(time.year, false);
        break;
      case u'm':
        add(time.month, words_.padded);
        break;
      case u'd':
        add(time.day, words_.padded);
        break;
      case u'e':
        add(time.day, false);
        break;
      case u'B':
        text += words_.months.at(month);
        break;
      case u'b':
        text += words_.shortMonths.at(month);
        break;
      case u'H':
        add(time.hour, words_.padded);
        break;
      case u'k':
        add(time.hour, false);
        break;
      case u'I':
        add(twelveHour(time.hour), words_.padded);
        break;
      case u'l':
        add(twelveHour(time.hour), false);
        break;
      case u'M':
        add(time.minute, true);
        break;
      case u'S':
        add(time.second, true);
        break;
      case u'p':
        text += time.hour < 12 ? words_.am : words_.pm;
        break;
      default:
        break;
    }
  }
  return Text{trim(text)};
}

Text LocaleDates::general(const LocalTime& time) {
  const bool midnight = time.hour == 0 && time.minute == 0 && time.second == 0;
  const auto written = [&](TextView date, TextView clock) {
    const Text day = format(date, time);
    return midnight ? day : fill(u"{} {}", day, format(clock, time));
  };
  Text text = written(words_.date, words_.time);
  try {
    if (parse(text) == time) return text;
  } catch (const Failure&) {
  }
  return written(isoDate, isoTime);
}

LocalTime LocaleDates::parse(TextView text) {
  const std::array<std::pair<TextView, TextView>, 2> patterns = {
      {{words_.date, words_.time}, {isoDate, isoTime}}};
  for (const auto& [date, clock] : patterns) {
    for (const Text& pattern : {fill(u"{} {}", trim(date), trim(clock)), Text{trim(date)}}) {
      Reader reader{trim(text), words_};
      if (!reader.read(pattern) || !reader.done()) continue;
      if (const auto time = reader.time()) return *time;
    }
  }
  throw Failure::typeMismatch();
}

}  // namespace quillfile::mailbox
