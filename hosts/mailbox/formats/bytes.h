// Bytes on their way: a sink takes them in order, a source gives all of them to a sink. A source can be asked
// more than once and gives the same bytes each time. What a source refers to must outlive it. (The same types
// as mime::Sink and mime::Content, so that either's can be handed to the other.)
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace quillfile::formats {

// Takes the next bytes, valid during the call only, or throws what its owner throws (a full disk, say).
using ByteSink = std::function<void(std::string_view)>;
using ByteSource = std::function<void(const ByteSink&)>;

// Told which bytes will not be looked at again soon: the owner of a mapping may drop their pages. An empty
// function is not called.
using Forget = std::function<void(std::string_view)>;

// The source of bytes that somebody else keeps, and of bytes that it keeps itself.
ByteSource viewSource(std::string_view bytes, const Forget& forget = {});
inline ByteSource ownedSource(std::string bytes) {
  return [kept = std::move(bytes)](const ByteSink& sink) { sink(kept); };
}

// Every byte of a source, in memory.
std::string gathered(const ByteSource& source);

// The bytes of a source whose size was promised; throws Failure when it gives more or fewer. An empty source
// gives none.
void giveExactly(const ByteSource& source, std::uint64_t promised, const ByteSink& sink);

// Gathers small pieces into writes of 64 KB. `flush` must be the last call.
class BufferedSink {
 public:
  explicit BufferedSink(const ByteSink& next) : next_(next) {}
  void write(std::string_view bytes);
  void flush();

 private:
  const ByteSink& next_;
  std::string pending_;
};

}  // namespace quillfile::formats
