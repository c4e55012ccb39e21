#include "hosts/mailbox/mime/name_doubt.h"

#include <algorithm>

#include "hosts/mailbox/mime/charset.h"
#include "hosts/mailbox/mime/content_type.h"
#include "hosts/mailbox/mime/encoded_word.h"

namespace quillfile::mime {
namespace {

constexpr Doubt unknownCharset = u"its name is in an unknown character set";

// The first piece of an extended value begins with charset'language' (RFC 2231 4).
bool isInUnknownCharset(const Parameter& parameter, std::string_view name) {
  const auto form = std::string_view{parameter.name}.substr(name.size());
  const std::string_view value = parameter.value;
  Doubt doubt;
  if (form == "*" || form == "*0*") {
    const auto end = std::count(value.begin(), value.end(), '\'') < 2 ? 0 : value.find('\'');
    fromCharset({}, value.substr(0, end), &doubt);
  } else {
    decodeWords(unfolded(value), &doubt);
  }
  return !doubt.empty();
}

bool doubts(const Parameters& parameters, std::string_view name) {
  return std::any_of(parameters.all().begin(), parameters.all().end(), [&](const Parameter& parameter) {
    return parameter.name.starts_with(name) && isInUnknownCharset(parameter, name);
  });
}

}  // namespace

Doubt nameDoubt(const Header& header) {
  const auto name = givenName(header);
  const auto inDisposition = disposition(header).parameters;
  const bool isFileName = inDisposition.text("filename").value_or(Text{}) == name;
  return (isFileName ? doubts(inDisposition, "filename") : doubts(contentType(header).parameters, "name"))
             ? unknownCharset
             : Doubt{};
}

}  // namespace quillfile::mime
