#include "hosts/mailbox/mime/protection.h"

#include <algorithm>

#include "hosts/mailbox/mime/decode.h"

namespace quillfile::mime {
namespace {

struct ProtectedType {
  std::string_view type;
  Protection protection;
};
constexpr ProtectedType types[] = {
    {"multipart/signed", Protection::is_signed},
    {"multipart/encrypted", Protection::encrypted},
    {"application/pkcs7-mime", Protection::encrypted},
    {"application/x-pkcs7-mime", Protection::encrypted},
    {"application/pkcs7-signature", Protection::is_signed},
    {"application/x-pkcs7-signature", Protection::is_signed},
    {"application/pgp-encrypted", Protection::encrypted},
    {"application/pgp-signature", Protection::is_signed},
    {"application/pgp", Protection::encrypted},
};

struct Armour {
  std::string_view line;
  Protection protection;
};
constexpr Armour armours[] = {
    {"-----BEGIN PGP SIGNED MESSAGE-----", Protection::is_signed},
    {"-----BEGIN PGP MESSAGE-----", Protection::encrypted},
};

// What a pkcs7-mime part says of itself when it is no encryption (RFC 8551 3.2.2).
constexpr std::string_view signedKinds[] = {"signed-data", "signed-receipt", "certs-only"};

Protection ofType(const ContentType& type) {
  const auto kind = lowerCase(type.parameters.bytes("smime-type").value_or(""));
  for (const auto& known : types) {
    if (!type.is(known.type)) continue;
    const bool isSigned =
        std::find(std::begin(signedKinds), std::end(signedKinds), kind) != std::end(signedKinds);
    return isSigned ? Protection::is_signed : known.protection;
  }
  return Protection::none;
}

// Gateways that do not know the types leave the name as the only mark (RFC 8551 3.9).
Protection ofName(const ContentType& type, const Header& header) {
  if (!type.is("application/octet-stream")) return Protection::none;
  const auto name = lowerCase(toUtf8(givenName(header)));
  return name.ends_with(".p7m")   ? Protection::encrypted
         : name.ends_with(".p7s") ? Protection::is_signed
                                  : Protection::none;
}

Protection ofText(const PartTree& tree, PartIndex part) {
  constexpr std::size_t looked = std::size_t{64} << 10;
  const auto text = decoded(tree[part].encoding, tree.body(part).substr(0, looked));
  for (const auto& armour : armours) {
    const auto at = text.find(armour.line);
    if (at != text.npos) return armour.protection;
  }
  return Protection::none;
}

}  // namespace

Protection protection(const PartTree& tree) {
  auto found = Protection::none;
  for (PartIndex part = 0; part < tree.size() && found == Protection::none; ++part) {
    const auto type = tree.type(part);
    found = ofType(type);
    if (found == Protection::none) found = ofName(type, tree.header(part));
    const bool isText = type.type == "text" && tree[part].kind == PartKind::leaf;
    if (found == Protection::none && isText) found = ofText(tree, part);
  }
  return found;
}

}  // namespace quillfile::mime
