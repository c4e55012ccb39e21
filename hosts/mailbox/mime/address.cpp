#include "hosts/mailbox/mime/address.h"

#include "hosts/mailbox/mime/charset.h"
#include "hosts/mailbox/mime/encoded_word.h"
#include "hosts/mailbox/mime/header.h"

namespace quillfile::mime {
namespace {

class AddressReader {
 public:
  AddressReader(std::string_view value, std::size_t limit) : value_{value}, limit_{limit} {}

  std::vector<Address> read() {
    while (at_ < value_.size() && found_.size() < limit_) {
      const char c = value_[at_++];
      switch (c) {
        case '"':
          readQuoted();
          break;
        case '(':
          readComment();
          break;
        case '<':
          readBrackets();
          break;
        case ':':  // the name of a group ends here
          phrase_.clear();
          written_.clear();
          break;
        case ',':
        case ';':
          finish();
          break;
        default:
          phrase_ += c;
          written_ += c;
      }
    }
    if (found_.size() < limit_) finish();
    return std::move(found_);
  }

 private:
  void readQuoted() {
    const auto begin = at_ - 1;
    for (; at_ < value_.size() && value_[at_] != '"'; ++at_) {
      if (value_[at_] == '\\' && at_ + 1 < value_.size()) ++at_;
      phrase_ += value_[at_];
    }
    at_ = std::min(at_ + 1, value_.size());
    written_ += value_.substr(begin, at_ - begin);
  }

  void readComment() {
    std::string text;
    for (int depth = 1; at_ < value_.size(); ++at_) {
      if (value_[at_] == '\\' && at_ + 1 < value_.size()) {
        text += value_[++at_];
        continue;
      }
      if (value_[at_] == '(') ++depth;
      if (value_[at_] == ')' && --depth == 0) break;
      text += value_[at_];
    }
    at_ = std::min(at_ + 1, value_.size());
    if (comment_.empty()) comment_ = text;
  }

  // The address between angle brackets, without an obsolete route (@one,@two:local@domain).
  void readBrackets() {
    bool quoted = false;
    std::string inside;
    for (; at_ < value_.size() && (quoted || value_[at_] != '>'); ++at_) {
      if (value_[at_] == '"') quoted = !quoted;
      if (quoted || (value_[at_] != ' ' && value_[at_] != '\t')) inside += value_[at_];
    }
    at_ = std::min(at_ + 1, value_.size());
    if (inside.starts_with('@')) inside.erase(0, inside.find(':') + 1);
    bracketed_ = true;
    address_ = inside;
  }

  void finish() {
    const auto name = decodeWords(trimmed(phrase_));
    const auto comment = decodeWords(trimmed(comment_));
    const auto written = trimmed(written_);
    const bool isAddress = written.find('@') != written.npos || written.find_first_of(" \t") == written.npos;
    if (bracketed_) {
      found_.push_back({.name = name.empty() ? comment : name, .address = guess(address_)});
    } else if (!written.empty() && isAddress) {
      found_.push_back({.name = comment, .address = guess(written)});
    } else if (!written.empty()) {
      found_.push_back({.name = name, .address = {}});
    }
    phrase_.clear();
    written_.clear();
    comment_.clear();
    address_.clear();
    bracketed_ = false;
  }

  std::string_view value_;
  std::size_t limit_;
  std::size_t at_ = 0;
  std::vector<Address> found_;
  // of the mailbox that is being read
  std::string phrase_;   // with quotes undone
  std::string written_;  // as it stands
  std::string comment_;
  std::string address_;
  bool bracketed_ = false;
};

}  // namespace

std::vector<Address> parseAddresses(std::string_view value, std::size_t limit) {
  return AddressReader{value, limit}.read();
}

}  // namespace quillfile::mime
