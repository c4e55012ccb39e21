#include "hosts/mailbox/outlook/received_time.h"

#include <cstdio>
#include <ctime>

#include <algorithm>
#include <array>

#include "hosts/mailbox/mime/date.h"

namespace quillfile::mailbox {
namespace {

std::tm brokenDown(std::int64_t seconds) {
  // What LocalTime can say: the years 1601 to 9999, a day less at either end for the time zones.
  const auto time = static_cast<std::time_t>(std::clamp<std::int64_t>(seconds, -11644387200, 253402128000));
  std::tm parts{};
  localtime_r(&time, &parts);
  return parts;
}

std::string formatted(const char* pattern, const std::tm& parts, bool colonInZone) {
  std::array<char, 64> buffer{};
  const long offset = parts.tm_gmtoff / 60;
  const auto length = std::strftime(buffer.data(), buffer.size(), pattern, &parts);
  std::array<char, 16> zone{};
  std::snprintf(zone.data(), zone.size(), colonInZone ? "%c%02ld:%02ld" : "%c%02ld%02ld",
                offset < 0 ? '-' : '+', std::abs(offset) / 60, std::abs(offset) % 60);
  return std::string(buffer.data(), length) + zone.data();
}

}  // namespace

std::optional<std::int64_t> knownReceivedSeconds(const Message& message) {
  const auto header = message.header();
  if (const auto field = header.field("Received"))
    if (const auto seconds = mime::parseReceivedDate(mime::unfolded(field->value))) return *seconds;
  if (const auto seconds = mime::parseDate(header.value("Date"))) return *seconds;
  if (const auto& file = message.file()) return file->modified() / 1'000'000'000;
  return std::nullopt;
}

std::int64_t receivedSeconds(const Message& message) {
  const auto known = knownReceivedSeconds(message);
  return known ? *known : static_cast<std::int64_t>(std::time(nullptr));
}

LocalTime localTime(std::int64_t seconds) {
  const auto parts = brokenDown(seconds);
  return {.year = parts.tm_year + 1900,
          .month = parts.tm_mon + 1,
          .day = parts.tm_mday,
          .hour = parts.tm_hour,
          .minute = parts.tm_min,
          .second = std::min(parts.tm_sec, 59)};
}

Text isoTime(std::int64_t seconds) {
  return fromUtf8(formatted("%Y-%m-%dT%H:%M:%S", brokenDown(seconds), true));
}

std::string mailTime(std::int64_t seconds) {
  constexpr std::array days{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  constexpr std::array months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                              "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const auto parts = brokenDown(seconds);
  std::array<char, 64> date{};  // not strftime: these names do not follow the locale
  std::snprintf(date.data(), date.size(), "%s, %02d %s %d ", days[static_cast<std::size_t>(parts.tm_wday)],
                parts.tm_mday, months[static_cast<std::size_t>(parts.tm_mon)], parts.tm_year + 1900);
  return date.data() + formatted("%H:%M:%S ", parts, false);
}

}  // namespace quillfile::mailbox
