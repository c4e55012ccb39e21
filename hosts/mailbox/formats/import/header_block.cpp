#include "hosts/mailbox/formats/import/header_block.h"

#include <array>

#include "hosts/mailbox/mime/header.h"
#include "hosts/mailbox/mime/header_value.h"

namespace quillfile::formats {
namespace {

// "Sun, 13 Sep 2020 12:26:40 +0000" (RFC 5322 3.3)
std::string dateField(Time time) {
  static constexpr std::string_view kDays = "SunMonTueWedThuFriSat",
                                    kMonths = "JanFebMarAprMayJunJulAugSepOctNovDec";
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(time - day);
  const auto two = [](auto number) {
    const auto value = static_cast<int>(number);
    return std::string{static_cast<char>('0' + value / 10), static_cast<char>('0' + value % 10)};
  };
  const auto word = [](std::string_view all, unsigned index) {
    return std::string(all.substr(index * 3, 3));
  };
  return word(kDays, std::chrono::weekday(day).c_encoding()) + ", " + two(static_cast<unsigned>(date.day())) +
         " " + word(kMonths, static_cast<unsigned>(date.month()) - 1) + " " +
         std::to_string(static_cast<int>(date.year())) + " " + two(clock.hours().count()) + ":" +
         two(clock.minutes().count()) + ":" + two(clock.seconds().count()) + " +0000";
}

std::string mailboxField(const Mailbox& mailbox, std::string_view lineEnd) {
  return mailbox == Mailbox{} ? "" : mime::encodedAddress({mailbox.name, mailbox.address}, lineEnd);
}

std::string mailboxList(const MessageContent& message, RecipientKind kind, std::string_view lineEnd) {
  std::string result;
  for (const Recipient& recipient : message.recipients) {
    const std::string one = recipient.kind == kind ? mailboxField(recipient.mailbox, lineEnd) : "";
    if (one.empty()) continue;
    if (!result.empty()) result += "," + std::string(lineEnd) + " ";
    result += one;
  }
  return result;
}

std::string importanceField(Importance importance) {
  return importance == Importance::high ? "high" : importance == Importance::low ? "low" : "";
}

// The fields of the message's own header that describe its body or the way it is encoded.
bool describesBody(std::string_view name) {
  const std::string lower = mime::lowerCase(name);
  return lower.starts_with("content-") || lower == "mime-version" || lower == "lines";
}

std::string withLineEnds(std::string_view field, std::string_view lineEnd) {
  std::string result;
  for (const char byte : field) {
    if (byte == '\r') continue;
    if (byte == '\n') {
      result += lineEnd;
    } else {
      result += byte;
    }
  }
  if (!result.ends_with(lineEnd)) result += lineEnd;
  return result;
}

}  // namespace

std::string plainField(std::string_view value) {
  std::string result;
  for (const char byte : value) {
    if (static_cast<unsigned char>(byte) >= 0x20 && byte != 0x7F) result += byte;
  }
  return result;
}

std::string headerBlock(const MessageContent& message, std::string_view lineEnd) {
  const std::string kept = toUtf8(message.transportHeaders);
  const mime::Header transport(kept);
  std::string result;
  std::string_view left = kept;
  while (const auto field = mime::takeField(left)) {
    if (!describesBody(field->name)) result += withLineEnds(field->whole, lineEnd);
  }
  const bool delegated = message.representing != Mailbox{};
  const auto date = message.sent ? message.sent : message.received;
  struct Made {
    std::string_view name;
    std::string value;
  };
  const std::array made = {
      Made{"From", mailboxField(delegated ? message.representing : message.sender, lineEnd)},
      Made{"Sender", delegated ? mailboxField(message.sender, lineEnd) : ""},
      Made{"To", mailboxList(message, RecipientKind::to, lineEnd)},
      Made{"Cc", mailboxList(message, RecipientKind::cc, lineEnd)},
      Made{"Bcc", mailboxList(message, RecipientKind::bcc, lineEnd)},
      Made{"Subject", mime::encodedText(message.subject, lineEnd)},
      Made{"Date", date ? dateField(*date) : ""},
      Made{"Message-ID", plainField(toUtf8(message.messageId))},
      Made{"In-Reply-To", plainField(toUtf8(message.inReplyTo))},
      Made{"References", plainField(toUtf8(message.references))},
      Made{"Importance", importanceField(message.importance)},
  };
  for (const Made& field : made) {
    if (field.value.empty() || transport.field(field.name)) continue;
    result += std::string(field.name) + ": " + field.value + std::string(lineEnd);
  }
  return result;
}

}  // namespace quillfile::formats
