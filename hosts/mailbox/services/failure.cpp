#include "hosts/mailbox/services/failure.h"

#include <cerrno>
#include <cstring>
#include <string>

namespace quillfile::mailbox {
namespace {

struct Reason {
  int error;
  std::string_view words;
};

// What people are told; any other error has the system's own words.
constexpr Reason reasons[] = {
    {ENOENT, "it is not there"},
    {EACCES, "permission is denied"},
    {EPERM, "that is not permitted"},
    {EEXIST, "the name is taken"},
    {ENOTDIR, "a part of the path is no folder"},
    {EISDIR, "it is a folder"},
    {ELOOP, "it is a symbolic link, or the path runs in a circle"},
    {ENOSPC, "the disk is full"},
    {EDQUOT, "the disk quota is used up"},
    {EFBIG, "the file would be too large"},
    {EROFS, "the disk is read-only"},
    {EIO, "the disk reports an error"},
    {ENAMETOOLONG, "the name is too long"},
    {EMFILE, "too many files are open"},
    {ENFILE, "too many files are open on this machine"},
    {ENOMEM, "there is not enough memory"},
};

std::string words(int error) {
  for (const Reason& reason : reasons)
    if (reason.error == error) return std::string{reason.words};
  return std::strerror(error);
}

}  // namespace

Failure fromErrno(int error, std::string_view what, std::string_view path) {
  std::string sentence = "Could not ";
  sentence.append(what).append(" ").append(path).append(": ").append(words(error));
  return {error, fromUtf8(sentence)};
}

Failure failure(std::string_view sentence) { return {0, fromUtf8(sentence)}; }

}  // namespace quillfile::mailbox
