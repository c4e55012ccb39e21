#include "hosts/mailbox/outlook/media_type.h"

#include <string_view>

#include "hosts/mailbox/mime/header.h"

namespace quillfile::mailbox {
namespace {

struct Known {
  std::string_view extension, type;
};
// No text types: a text would have to say its charset, and its line ends would be anybody's to change.
constexpr Known known[] = {
    {"7z", "application/x-7z-compressed"},
    {"bmp", "image/bmp"},
    {"doc", "application/msword"},
    {"docx", "application/vnd.openxmlformats-officedocument.wordprocessingml.document"},
    {"flac", "audio/flac"},
    {"gif", "image/gif"},
    {"gz", "application/gzip"},
    {"ico", "image/vnd.microsoft.icon"},
    {"jpeg", "image/jpeg"},
    {"jpg", "image/jpeg"},
    {"json", "application/json"},
    {"mp3", "audio/mpeg"},
    {"mp4", "video/mp4"},
    {"odp", "application/vnd.oasis.opendocument.presentation"},
    {"ods", "application/vnd.oasis.opendocument.spreadsheet"},
    {"odt", "application/vnd.oasis.opendocument.text"},
    {"ogg", "audio/ogg"},
    {"pdf", "application/pdf"},
    {"png", "image/png"},
    {"ppt", "application/vnd.ms-powerpoint"},
    {"pptx", "application/vnd.openxmlformats-officedocument.presentationml.presentation"},
    {"rtf", "application/rtf"},
    {"svg", "image/svg+xml"},
    {"tar", "application/x-tar"},
    {"tif", "image/tiff"},
    {"tiff", "image/tiff"},
    {"wav", "audio/wav"},
    {"webm", "video/webm"},
    {"webp", "image/webp"},
    {"xls", "application/vnd.ms-excel"},
    {"xlsx", "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet"},
    {"xml", "application/xml"},
    {"zip", "application/zip"},
};

}  // namespace

std::string mediaTypeOf(TextView fileName) {
  const auto extension = mime::lowerCase(toUtf8(from(fileName, findLast(fileName, u".") + 1)));
  for (const auto& row : known)
    if (row.extension == extension) return std::string{row.type};
  return "application/octet-stream";
}

}  // namespace quillfile::mailbox
