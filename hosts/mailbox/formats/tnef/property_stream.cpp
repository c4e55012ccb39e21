#include "hosts/mailbox/formats/tnef/property_stream.h"

#include "hosts/mailbox/formats/failures.h"
#include "hosts/mailbox/formats/little_endian.h"

namespace quillfile::formats::tnef {

using mapi::Id;
using mapi::Type;

namespace {

// The bytes of a value of fixed length, as they are stored; 0: the length is given with the value.
std::size_t fixedLength(Type type) {
  switch (type) {
    case Type::int16:
    case Type::boolean:
    case Type::int32:
    case Type::float32:
    case Type::error:
      return 4;
    case Type::float64:
    case Type::currency:
    case Type::app_time:
    case Type::int64:
    case Type::time:
      return 8;
    case Type::guid:
      return 16;
    default:
      return 0;
  }
}

bool isVariable(Type type) {
  return type == Type::unicode || type == Type::string8 || type == Type::binary || type == Type::object;
}

void append(std::string& to, const mapi::Property& property) {
  put16(to, static_cast<std::uint16_t>(property.type));
  put16(to, static_cast<std::uint16_t>(property.id));
  if (const auto* number = std::get_if<std::int64_t>(&property.value)) {
    const auto bits = static_cast<std::uint64_t>(*number);
    if (fixedLength(property.type) == 8) {
      put64(to, bits);
    } else {
      put32(to, bits);
    }
    return;
  }
  std::string bytes;
  if (const auto* text = std::get_if<Text>(&property.value)) {
    bytes = utf16Bytes(*text) + std::string(2, '\0');
  } else {
    bytes = std::get<std::string>(property.value);
  }
  put32(to, 1);
  put32(to, bytes.size());
  to += bytes;
  to.append(padding(bytes.size()), '\0');
}

// Takes bytes off the front; fewer than asked for means that the stream is damaged.
class Cursor {
 public:
  explicit Cursor(std::string_view bytes) : left_(bytes) {}
  bool failed() const { return failed_; }
  std::string_view left() const { return left_; }

  std::string_view take(std::uint64_t length) {
    if (length > left_.size()) {
      failed_ = true;
      left_ = {};
      return {};
    }
    const std::string_view result = left_.substr(0, length);
    left_.remove_prefix(length);
    return result;
  }
  std::uint32_t number() { return get32(take(4), 0); }
  // A length, the bytes and their padding. The last padding of a stream may be missing.
  std::string_view counted() {
    const std::uint32_t length = number();
    const std::string_view result = take(length);
    take(std::min(padding(length), left_.size()));
    return result;
  }

 private:
  std::string_view left_;
  bool failed_ = false;
};

mapi::Value valueOf(Type type, std::string_view bytes) {
  switch (type) {
    case Type::int16:
      return std::int64_t{static_cast<std::int16_t>(get16(bytes, 0))};
    case Type::boolean:
      return std::int64_t{get16(bytes, 0) != 0};
    case Type::int32:
    case Type::error:
      return std::int64_t{static_cast<std::int32_t>(get32(bytes, 0))};
    case Type::int64:
    case Type::time:
      return static_cast<std::int64_t>(get64(bytes, 0));
    case Type::unicode:
      return utf16Text(bytes);
    default:
      return std::string(bytes);
  }
}

// A property above 0x8000 has a set, and a number or a name in it. Nothing here asks for one: it is passed
// over.
void skipName(Cursor& cursor) {
  cursor.take(16);
  if (cursor.number() == 0) {
    cursor.take(4);
  } else {
    cursor.counted();
  }
}

bool readProperty(Cursor& cursor, mapi::Properties& to, TextRoom& room, const DataHandler& data) {
  const std::uint32_t tag = cursor.number();
  const auto number = static_cast<std::uint16_t>(tag >> 16), kind = static_cast<std::uint16_t>(tag & 0xFFFF);
  const auto type = static_cast<Type>(kind & ~mapi::kMultiple);
  if (number >= 0x8000) skipName(cursor);
  const bool multiple = (kind & mapi::kMultiple) != 0;
  const std::size_t fixed = fixedLength(type);
  if (fixed == 0 && !isVariable(type)) return false;
  const std::uint32_t count = multiple || fixed == 0 ? cursor.number() : 1;
  for (std::uint32_t i = 0; i < count && !cursor.failed(); ++i) {
    const std::string_view value = fixed > 0 ? cursor.take(fixed) : cursor.counted();
    if (i > 0 || multiple || cursor.failed() || !mapi::isKnown(number)) continue;
    const auto id = static_cast<Id>(number);
    if (id == Id::attach_data) {
      if (data) data(type, value);
    } else if (type != Type::object && !to.has(id)) {
      if (!room.take(value.size())) return false;
      to.add(id, type, valueOf(type, value));
    }
  }
  return !cursor.failed();
}

}  // namespace

std::string propertyBytes(const mapi::Properties& properties, std::size_t more) {
  std::string result;
  put32(result, properties.all().size() + more);
  for (const mapi::Property& property : properties.all()) append(result, property);
  return result;
}

std::string objectHeader(Id id, std::uint64_t length) {
  if (length > 0xFFFFFFFF) throw failures::tooLarge();
  std::string result;
  put16(result, static_cast<std::uint16_t>(Type::object));
  put16(result, static_cast<std::uint16_t>(id));
  put32(result, 1);
  put32(result, length);
  return result;
}

bool readProperties(std::string_view& bytes, mapi::Properties& to, TextRoom& room, const DataHandler& data) {
  Cursor cursor(bytes);
  bool whole = true;
  for (std::uint32_t left = cursor.number(); left > 0 && whole; --left)
    whole = readProperty(cursor, to, room, data);
  bytes = cursor.left();
  return whole && !cursor.failed();
}

bool readRows(std::string_view bytes, TextRoom& room,
              const std::function<void(const mapi::Properties&)>& row) {
  if (bytes.size() < 4) return false;
  std::uint32_t count = get32(bytes, 0);
  bytes.remove_prefix(4);
  for (; count > 0; --count) {
    mapi::Properties properties;
    if (bytes.empty() || !readProperties(bytes, properties, room)) return false;
    row(properties);
  }
  return true;
}

}  // namespace quillfile::formats::tnef
