// Bytes a second of the parts that every attachment goes through: scan, base64, quoted-printable.
#include <benchmark/benchmark.h>

#include <string>

#include "hosts/mailbox/mime/decode.h"
#include "hosts/mailbox/mime/encode.h"
#include "hosts/mailbox/mime/scan.h"

using namespace quillfile::mime;

namespace {

std::string noise(std::size_t size) {
  std::string bytes(size, '\0');
  std::uint32_t state = 1;
  for (auto& byte : bytes) byte = static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
  return bytes;
}

// A letter's text: some bytes in a hundred are encoded.
std::string prose(std::size_t size) {
  std::string text;
  while (text.size() < size)
    text += "The quick brown fox -- na\xC3\xAFve as ever -- jumps over the lazy dog; 1 = 1.\n";
  return text;
}

std::string message(const std::string& encoded) {
  return "Subject: s\r\nContent-Type: multipart/mixed; "
         "boundary=\"=_b\"\r\n\r\n--=_b\r\n\r\nHello\r\n--=_b\r\n"
         "Content-Type: application/pdf\r\nContent-Transfer-Encoding: base64\r\n\r\n" +
         encoded + "\r\n--=_b--\r\n";
}

void count(benchmark::State& state, std::size_t bytes) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes));
}

void scanBase64(benchmark::State& state) {
  const auto bytes = message(toBase64(noise(static_cast<std::size_t>(state.range(0))), "\r\n"));
  for (auto _ : state) benchmark::DoNotOptimize(scan(bytes));
  count(state, bytes.size());
}
BENCHMARK(scanBase64)->Arg(20'000)->Arg(20'000'000);

void scanProse(benchmark::State& state) {
  const auto bytes = message(prose(20'000'000));
  for (auto _ : state) benchmark::DoNotOptimize(scan(bytes));
  count(state, bytes.size());
}
BENCHMARK(scanProse);

void decodeBy(benchmark::State& state, Encoding encoding, const std::string& encoded) {
  std::size_t size = 0;
  const Sink sink = [&](std::string_view chunk) { size += chunk.size(); };
  for (auto _ : state) benchmark::DoNotOptimize(decode(encoding, encoded, sink));
  count(state, encoded.size());
}

void base64(benchmark::State& state) {
  decodeBy(state, Encoding::base64, toBase64(noise(static_cast<std::size_t>(state.range(0))), "\r\n"));
}
BENCHMARK(base64)->Arg(20'000)->Arg(20'000'000);

void base64Plain(benchmark::State& state) {
  const auto encoded = toBase64(noise(20'000'000), "\r\n");
  for (auto _ : state) benchmark::DoNotOptimize(decodePlain(Encoding::base64, encoded));
  count(state, encoded.size());
}
BENCHMARK(base64Plain);

void quotedPrintable(benchmark::State& state) {
  decodeBy(state, Encoding::quoted_printable, toQuotedPrintable(prose(20'000'000), "\r\n"));
}
BENCHMARK(quotedPrintable);

void encodeBase64(benchmark::State& state) {
  const auto bytes = noise(20'000'000);
  for (auto _ : state) benchmark::DoNotOptimize(toBase64(bytes, "\r\n"));
  count(state, bytes.size());
}
BENCHMARK(encodeBase64);

}  // namespace
