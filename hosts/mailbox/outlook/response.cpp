#include "hosts/mailbox/outlook/response.h"

#include <algorithm>
#include <ctime>

#include "hosts/mailbox/mime/date.h"
#include "hosts/mailbox/mime/encode.h"
#include "hosts/mailbox/outlook/client.h"
#include "hosts/mailbox/outlook/draft_text.h"
#include "hosts/mailbox/outlook/item.h"
#include "hosts/mailbox/outlook/plain_text.h"
#include "hosts/mailbox/outlook/received_time.h"

namespace quillfile::mailbox {
namespace {

using mime::Address;
using Addresses = std::vector<Address>;

bool sameAddress(const Text& a, const Text& b) { return mime::equalWords(toUtf8(a), toUtf8(b)); }

bool has(const Addresses& list, const Address& wanted) {
  return std::any_of(list.begin(), list.end(),
                     [&](const Address& a) { return sameAddress(a.address, wanted.address); });
}

Addresses addressesOf(const mime::Header& header, std::string_view name) {
  Addresses all;
  for (const auto& field : header.fields(name))
    for (auto& address : mime::parseAddresses(mime::unfolded(field.value)))
      if (!address.address.empty()) all.push_back(std::move(address));
  return all;
}

struct Recipients {
  Addresses to, cc;
};

Recipients recipientsOf(const mime::Header& header, Response response, const Addresses& own) {
  Recipients result;
  if (response == Response::forward) return result;
  const auto add = [&](Addresses& list, const Addresses& more) {
    for (const auto& address : more)
      if (!has(own, address) && !has(result.to, address) && !has(result.cc, address)) list.push_back(address);
  };
  auto target = addressesOf(header, "Reply-To");
  if (target.empty()) target = addressesOf(header, "From");
  add(result.to, target);
  // The answer to one's own message goes to those it was sent to.
  if (result.to.empty() || response == Response::reply_all) add(result.to, addressesOf(header, "To"));
  if (response == Response::reply_all) add(result.cc, addressesOf(header, "Cc"));
  if (result.to.empty() && result.cc.empty()) result.to = target;
  return result;
}

Text subjectOf(const Text& subject, Response response) {
  const auto begins = [&](std::string_view word) {
    return mime::equalWords(toUtf8(left(subject, static_cast<Position>(word.size()))), word);
  };
  if (response == Response::forward) return begins("fw:") || begins("fwd:") ? subject : u"FW: " + subject;
  return begins("re:") ? subject : u"RE: " + subject;
}

// The header block over the quoted text, as rows of a name and a value.
std::vector<std::pair<Text, Text>> quotedHeader(const mime::Header& header) {
  std::vector<std::pair<Text, Text>> rows{{u"From", header.text("From")}};
  const auto date = mime::parseDate(header.value("Date"));
  rows.emplace_back(u"Sent", date ? fromUtf8(mailTime(*date)) : header.text("Date"));
  rows.emplace_back(u"To", header.text("To"));
  rows.emplace_back(u"Cc", header.text("Cc"));
  rows.emplace_back(u"Subject", header.text("Subject"));
  std::erase_if(rows, [](const auto& row) { return row.second.empty(); });
  return rows;
}

// What stands over the quoted text, which itself stands as it is, without marks in front of its lines: what
// the module looks for in it is found.
Text topOfText(const mime::Header& header) {
  Text top = u"\r\n\r\n-----Original Message-----\r\n";
  for (const auto& [name, value] : quotedHeader(header)) top += fill(u"{}: {}\r\n", name, value);
  return top += u"\r\n";
}

Text topOfPage(const mime::Header& header) {
  Text top = u"<div><br></div><hr><div>";
  for (const auto& [name, value] : quotedHeader(header))
    top += fill(u"<b>{}:</b> {}<br>", name, textToHtml(value));
  return top += u"</div><div><br></div>";
}

// The lines of a part's header that are about its content; they go with it wherever it goes.
std::string contentFields(mime::Header header) {
  std::string result;
  for (auto rest = header.block(); const auto field = mime::takeField(rest);)
    if (mime::lowerCase(field->name).starts_with("content-")) result += field->whole;
  return result;
}

// What a response carries on from its original.
struct Carried {
  std::vector<AddedAttachment> pictures;  // that the HTML body shows
  std::vector<AddedAttachment> others;
};

// Whether `page` shows the part with these header lines.
bool isShown(TextView page, const std::string& header) {
  const auto id = mime::Header{header}.value("Content-ID");
  return id.size() > 2 && find(page, u"cid:" + fromUtf8(id.substr(1, id.size() - 2))) > 0;
}

Carried carriedBy(MailboxItem& original, Response response, TextView page) {
  Carried carried;
  for (const auto& source : original.sources()) {
    AddedAttachment added{source, {}};
    const auto part = source->part();
    if (part) {
      auto fields = contentFields(original.message()->tree().header(*part));
      const bool untyped = !mime::Header{fields}.field("Content-Type");
      if (untyped) fields = "Content-Type: " + source->mediaType() + "\n" + fields;
      added.was = RemovedPart{.path = {}, .boundary = {}, .at = 0, .header = replacedLineEnds(fields)};
    }
    const bool shown = added.was && isShown(page, added.was->header);
    if (shown) {
      carried.pictures.push_back(std::move(added));
    } else if (response == Response::forward) {
      carried.others.push_back(std::move(added));
    }
  }
  return carried;
}

// What the original has lost and may get back.
struct Lost {
  std::vector<RemovedPart> parts;
  std::vector<bool> shown;  // by the page, each of them
};

Lost lostBy(MailboxItem& original, TextView page) {
  Lost lost{original.removedBefore(), {}};
  for (const auto& part : lost.parts) lost.shown.push_back(isShown(page, part.header));
  return lost;
}

// The attachments at their places in the draft, and behind them what is lost.
std::vector<AddedAttachment> placed(Carried carried, Lost& lost, const mime::PartTree& draft, bool inMixed) {
  const auto boundary = boundaryOf(draft, 0);
  const auto pictures = inMixed ? boundaryOf(draft, draft.children(0).front()) : boundary;
  std::uint32_t at = 1000;
  std::vector<AddedAttachment> all;
  for (auto& picture : carried.pictures) {
    picture.was->boundary = pictures;
    picture.was->at = at++;
    all.push_back(std::move(picture));
  }
  for (auto& other : carried.others) {
    if (other.was) {
      other.was->boundary = boundary;
      other.was->at = at++;
    }
    all.push_back(std::move(other));
  }
  for (std::size_t i = 0; i < lost.parts.size(); ++i) {
    auto& part = lost.parts[i];
    part.header = replacedLineEnds(contentFields(mime::Header{part.header}));
    part.boundary = lost.shown[i] ? pictures : boundary;
    part.at += at;
  }
  return all;
}

DraftHeader headerOf(MailboxItem& original, Response response, const ClientSetup& setup) {
  const auto header = original.message()->header();
  Addresses own;
  for (const auto& address : setup.ownAddresses) own.push_back({{}, address});
  for (auto& address : addressesOf(header, "Delivered-To")) own.push_back(std::move(address));
  auto [to, cc] = recipientsOf(header, response, own);
  DraftHeader draft;
  draft.to = std::move(to);
  draft.cc = std::move(cc);
  draft.subject = subjectOf(header.text("Subject"), response);
  draft.date = static_cast<std::int64_t>(std::time(nullptr));
  if (!own.empty()) draft.from = own.front();
  draft.inReplyTo = header.value("Message-ID");
  draft.references = header.value("References");
  if (draft.references.empty()) draft.references = header.value("In-Reply-To");
  return draft;
}

}  // namespace

// The bodies are written one by one, and each is let go when it is: they may be large.
std::shared_ptr<MailboxItem> makeResponse(MailboxItem& original, Response response, MailClient& client) {
  const auto header = original.message()->header();
  const Text format = original.bodyFormat();
  const bool isPage = format == u"HTML";
  const TextView page = isPage ? original.ownBody(BodyKind::html) : TextView{};
  auto carried = carriedBy(original, response, page);
  auto lost = response == Response::forward ? lostBy(original, page) : Lost{};
  const bool mixed = !carried.others.empty() || !lost.parts.empty();
  const bool related =
      !carried.pictures.empty() || std::find(lost.shown.begin(), lost.shown.end(), true) != lost.shown.end();

  auto draft = std::make_unique<const Scratch>([&](const Sink& sink) {
    DraftWriter writer{headerOf(original, response, client.setup()), sink};
    if (mixed) writer.open("mixed");
    if (related) writer.open("related");
    if (format != u"TEXT") writer.open("alternative");
    writer.body("text/plain", {topOfText(header), original.takeBody(BodyKind::plain)});
    if (isPage) {
      const auto start = static_cast<Position>(bodyStart(page));
      writer.next();
      writer.body("text/html", {left(page, start), topOfPage(header), from(page, start + 1)});
    }
    if (format == u"RTF") {
      writer.next();
      writer.body("text/rtf", {original.takeBody(BodyKind::rtf)});
    }
    writer.close();
  });
  if (isPage) original.takeBody(BodyKind::html);
  auto message = std::make_shared<const Message>(std::move(draft));
  auto added = placed(std::move(carried), lost, message->tree(), mixed);
  return std::make_shared<MailboxItem>(client.weak_from_this(), std::move(message), std::move(added),
                                       std::move(lost.parts));
}

}  // namespace quillfile::mailbox
