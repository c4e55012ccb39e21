// CheckForLink from link to link, without anything being cut: a body of 10,000 adjacent notes, and one of 50
// million units with ten notes at its end.
#include <benchmark/benchmark.h>

#include "core/links/quillfile_extended.h"
#include "hosts/mailbox/services/letters.h"
#include "tests/fakes/fake_platform.h"

namespace {

using namespace quillfile;

constexpr TextView formats[] = {u"TEXT", u"RTF", u"HTML"};

Text note(TextView format, std::int64_t number) {
  const Text link = fill(u"file:///home/u/saved/file {}.pdf", number);
  if (format == u"HTML") return fill(u"<p>Attachment saved to <a href=\"{}\">{}</a></p>", link, link);
  if (format == u"RTF") return fill(u"\\par\r\nAttachment saved to <{}>\\par", link);
  return fill(u"\r\n\r\nAttachment saved to <{}>", link);
}

// `filler` units of prose, then the notes.
Text body(TextView format, std::size_t filler, std::int64_t notes) {
  constexpr TextView line = u"All work and no play makes this a dull body of mail, line after line.\r\n";
  Text text;
  while (text.size() < filler) text += line;
  for (std::int64_t i = 0; i < notes; ++i) text += note(format, i);
  return text;
}

void walk(benchmark::State& state, std::size_t filler, std::int64_t notes) {
  const auto format = formats[state.range(0)];
  FakePlatform world{PathRules::posix()};
  world.log.isWanted = false;
  mailbox::UnicodeLetters letters;
  QuillfileExtended links{{world.services, world.log, letters, world.files, world.paths}};
  const auto text = body(format, filler, notes);
  for (auto _ : state) {
    Text path;
    std::int64_t found = 0;
    for (Position at = 1; links.CheckForLink(text, at, format, path, true);) ++found;
    if (found != notes) state.SkipWithError("not every note was found");
  }
  state.SetLabel(toUtf8(format));
  state.SetItemsProcessed(state.iterations() * notes);
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size() * sizeof(char16_t)));
}

void adjacentNotes(benchmark::State& state) { walk(state, 0, state.range(1)); }
BENCHMARK(adjacentNotes)->ArgsProduct({{0, 1, 2}, {2'500, 5'000, 10'000}})->Unit(benchmark::kMillisecond);

void largeBody(benchmark::State& state) { walk(state, static_cast<std::size_t>(state.range(1)), 10); }
BENCHMARK(largeBody)
    ->ArgsProduct({{0, 1, 2}, {12'500'000, 25'000'000, 50'000'000}})
    ->Unit(benchmark::kMillisecond);

}  // namespace
