// How long a message takes as a file, against copying its bytes; and small messages, a thousand at a time.
// Memory: run one of them alone and look at the process's largest resident size.
#include <benchmark/benchmark.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <memory>

#include "hosts/mailbox/formats/msg/message_file.h"
#include "hosts/mailbox/formats/tnef/tnef.h"
#include "hosts/mailbox/mime/decode.h"
#include "hosts/mailbox/mime/encode.h"

namespace {

using namespace quillfile;
using namespace quillfile::formats;

constexpr std::size_t kLarge = 25'000'000;  // bytes of the message: its attachment, encoded

// A file with the encoded attachment, mapped: what a message in a store is.
class Original {
 public:
  Original() {
    std::string raw(kLarge / 4 * 3, '\0');
    std::uint32_t number = 1;
    for (char& byte : raw) byte = static_cast<char>((number = number * 1664525 + 1013904223) >> 24);
    const std::string encoded = mime::toBase64(raw, "\n");
    write(file_, encoded.data(), encoded.size());
    size_ = encoded.size();
    mapped_ = mmap(nullptr, size_, PROT_READ, MAP_PRIVATE, file_, 0);
  }
  int descriptor() const { return file_; }
  std::string_view bytes() const { return {static_cast<const char*>(mapped_), size_}; }

 private:
  int file_ = fileno(std::tmpfile());
  std::size_t size_ = 0;
  void* mapped_ = nullptr;
};

const Original& original() {
  static const Original one;
  return one;
}

struct File {
  explicit File(bool durable) : stream(std::fopen("formats_bench.tmp", "wb")), flush(durable) {
    std::setvbuf(stream, nullptr, _IONBF, 0);
  }
  ~File() {
    if (flush) fdatasync(fileno(stream));
    std::fclose(stream);
    std::remove("formats_bench.tmp");
  }
  void write(std::string_view bytes) { std::fwrite(bytes.data(), 1, bytes.size(), stream); }
  std::FILE* stream;
  bool flush;
};

MessageContent message(std::uint64_t size, ByteSource data) {
  MessageContent result{
      .subject = u"A message", .sender = {u"Ada", u"ada@example.org"}, .textBody = u"See the file."};
  result.recipients = {{RecipientKind::to, {u"Bob", u"bob@example.org"}}};
  result.attachments = {{.fileName = u"file.bin", .size = size, .data = std::move(data)}};
  return result;
}

MessageContent largeMessage() {
  const std::string_view encoded = original().bytes();
  return message(kLarge / 4 * 3,
                 [encoded](const ByteSink& sink) { mime::decode(mime::Encoding::base64, encoded, sink); });
}

void copyLarge(benchmark::State& state) {
  std::string piece(128 * 1024, '\0');
  const int from = original().descriptor();
  for (auto _ : state) {
    File file(state.range(0) != 0);
    off_t at = 0;
    for (ssize_t got; (got = pread(from, piece.data(), piece.size(), at)) > 0; at += got) {
      file.write(std::string_view(piece).substr(0, static_cast<std::size_t>(got)));
    }
  }
}
BENCHMARK(copyLarge)->Unit(benchmark::kMillisecond)->ArgName("flushed")->Arg(0)->Arg(1);

template <auto write>
void writeLarge(benchmark::State& state) {
  const MessageContent large = largeMessage();
  for (auto _ : state) {
    File file(state.range(0) != 0);
    write(large, [&](std::string_view bytes) { file.write(bytes); });
  }
}
BENCHMARK(writeLarge<writeMessageFile>)
    ->Unit(benchmark::kMillisecond)
    ->Name("messageFileLarge")
    ->ArgName("flushed")
    ->Arg(0)
    ->Arg(1);
BENCHMARK(writeLarge<writeTnef>)
    ->Unit(benchmark::kMillisecond)
    ->Name("tnefLarge")
    ->ArgName("flushed")
    ->Arg(0)
    ->Arg(1);

template <auto write>
void writeSmall(benchmark::State& state) {
  const MessageContent one = message(10'000, ownedSource(std::string(10'000, 'x')));
  for (auto _ : state) {
    for (int i = 0; i < 1000; ++i) {
      File file(false);
      write(one, [&](std::string_view bytes) { file.write(bytes); });
    }
  }
}
BENCHMARK(writeSmall<writeMessageFile>)->Unit(benchmark::kMillisecond)->Name("messageFile1000Small");
BENCHMARK(writeSmall<writeTnef>)->Unit(benchmark::kMillisecond)->Name("tnef1000Small");

}  // namespace
