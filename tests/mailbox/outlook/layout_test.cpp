// What a mail reader shows of a message: its bodies and its attachments.
#include <gtest/gtest.h>

#include "hosts/mailbox/mime/scan.h"
#include "hosts/mailbox/outlook/message.h"

namespace quillfile::mailbox {
namespace {

const std::string page = "Content-Type: text/html\n\n<p>page</p>\n";
const std::string text = "Content-Type: text/plain\n\ntext\n";
const std::string picture = "Content-Type: image/png\nContent-ID: <picture>\n\nxyz\n";
const std::string alternative =
    "Content-Type: multipart/alternative; boundary=a\n\n--a\n" + text + "--a\n" + page + "--a--\n";
const std::string soap = "Content-Type: application/xop+xml\nContent-ID: <soap>\n\n<x/>\n";

std::string related(const std::string& parameters, const std::vector<std::string>& parts) {
  std::string message = "Content-Type: multipart/related; boundary=b" + parameters + "\n\n";
  for (const auto& part : parts) message += "--b\n" + part;
  return message + "--b--\n";
}

// "page", "text" and "page+text", as a reader shows them.
std::string shown(const std::string& message) {
  const auto tree = mime::scan(message);
  const auto layout = layoutOf(tree);
  std::string result;
  for (const auto part : {layout.html, layout.plain})
    if (part != mime::noPart) result += (result.empty() ? "" : "+") + tree.type(part).subtype;
  for (const auto part : layout.attachments)
    result += ", " + tree.type(part).type + "/" + tree.type(part).subtype;
  return result;
}

TEST(LayoutOfRelatedParts, TheRootIsTheFirstPart) {
  EXPECT_EQ(shown(related("", {page, picture})), "html, image/png");
  EXPECT_EQ(shown(related("; type=\"text/html\"", {page, picture})), "html, image/png");
  EXPECT_EQ(shown(related("; type=\"multipart/alternative\"", {alternative, picture})),
            "html+plain, image/png");
  // Common, and wrong about the type.
  EXPECT_EQ(shown(related("; type=\"text/html\"", {alternative, picture})), "html+plain, image/png");
  EXPECT_EQ(shown(related("", {text, picture})), "plain, image/png");
}

TEST(LayoutOfRelatedParts, OrThePartThatStartNames) {
  const auto named = "Content-Type: text/html\nContent-ID: <root>\n\n<p>page</p>\n";
  EXPECT_EQ(shown(related("; start=\"<root>\"", {picture, named})), "html, image/png");
  EXPECT_EQ(shown(related("; start=\"<root>\"", {text, named})), "html");
  EXPECT_EQ(shown(related("; start=\"<nobody>\"", {page, picture})), "html, image/png");
}

TEST(LayoutOfRelatedParts, APictureInFrontOfThePageIsNotTheRoot) {
  EXPECT_EQ(shown(related("; type=\"text/html\"", {picture, page})), "html, image/png");
  EXPECT_EQ(shown(related("", {picture, page})), "html, image/png");
  EXPECT_EQ(shown(related("", {picture, picture, alternative})), "html+plain, image/png, image/png");
  EXPECT_EQ(shown(related("; start=\"<picture>\"", {picture, page})), "html, image/png");
}

TEST(LayoutOfRelatedParts, ARootThatIsWhatItSaysStaysTheRoot) {
  EXPECT_EQ(shown(related("; type=\"application/xop+xml\"", {soap, page})), ", application/xop+xml");
  EXPECT_EQ(shown(related("; type=\"application/xop+xml\"; start=\"<soap>\"", {page, soap})),
            ", application/xop+xml");
  EXPECT_EQ(shown(related("", {picture, text})), ", image/png");
}

TEST(LayoutOfAMessage, PartsNestedTooDeepToBeOpenedAreAnAttachmentTogether) {
  std::string message;
  for (int i = 0; i < 1000; ++i) {
    const auto boundary = "b" + std::to_string(i);
    message += "Content-Type: multipart/mixed; boundary=" + boundary + "\n\n--" + boundary + "\n";
  }
  message += "Content-Disposition: attachment; filename=deep.txt\n\ndeep\n";
  const auto tree = mime::scan(message);
  const auto attachments = layoutOf(tree).attachments;
  ASSERT_EQ(attachments.size(), 1u);
  EXPECT_NE(tree.body(attachments.front()).find("deep.txt"), std::string_view::npos);
  EXPECT_FALSE(tree.doubt().empty());  // so it is saved, and stays
}

TEST(LayoutOfAMessage, AFileWithABrokenMediaTypeIsAnAttachment) {
  EXPECT_EQ(shown("Content-Type: application-x-gzip; name=\"document.xml.gz\"\n\nblah\n"), ", text/plain");
  EXPECT_EQ(shown("Content-Type: x; y\nContent-Disposition: attachment; filename=a\n\nblah\n"),
            ", text/plain");
  EXPECT_EQ(shown("Content-Type: text; charset=iso-8859-1\n\nblah\n"), "plain");
  EXPECT_EQ(shown("Content-Type: application-x-gzip\n\nblah\n"), "plain");
}

}  // namespace
}  // namespace quillfile::mailbox
