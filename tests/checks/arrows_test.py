"""The arrows that never run between the rooms, and what the core may include."""
import os
import pathlib
import re
import sys

ROOT = pathlib.Path(os.environ["SOURCE_DIR"])
INCLUDE = re.compile(r'^\s*#\s*include\s+([<"])([^>"]+)[>"]', re.M)
STANDARD = set("""
algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes climits
clocale cmath compare complex concepts condition_variable coroutine csetjmp csignal cstdarg cstddef cstdint cstdio
cstdlib cstring ctime cuchar cwchar cwctype deque exception execution filesystem forward_list fstream functional future
initializer_list iomanip ios iosfwd iostream istream iterator latch limits list locale map memory memory_resource mutex
new numbers numeric optional ostream queue random ranges ratio regex scoped_allocator semaphore set shared_mutex
source_location span sstream stack stdexcept stop_token streambuf string string_view syncstream system_error thread
tuple type_traits typeindex typeinfo unordered_map unordered_set utility valarray variant vector version
""".split())

# (files under, never include from, why)
FORBIDDEN = [
    ("core", "hosts/", "the core knows no host"),
    ("hosts/mailbox", "hosts/windows/", "the hosts know nothing of each other"),
    ("hosts/windows", "hosts/mailbox/", "the hosts know nothing of each other"),
    ("hosts/mailbox/mime", "hosts/mailbox/store/", "bytes know nothing of folders"),
    ("core", "apps/", "nothing includes a program"),
    ("hosts", "apps/", "nothing includes a program"),
]


def sources(folder):
    base = ROOT / folder
    return sorted(p for p in base.rglob("*") if p.suffix in {".h", ".cpp", ".idl", ".rc"}) if base.is_dir() else []


def problems():
    for folder, target, why in FORBIDDEN:
        for path in sources(folder):
            for _, name in INCLUDE.findall(path.read_text()):
                if name.startswith(target):
                    yield f"{path.relative_to(ROOT)} includes {name}: {why}"
    for path in sources("core"):
        text = path.read_text()
        for kind, name in INCLUDE.findall(text):
            if kind == "<" and name not in STANDARD:
                yield f"{path.relative_to(ROOT)} includes <{name}>: the core depends on the standard library alone"
            if kind == '"' and not name.startswith("core/"):
                yield f"{path.relative_to(ROOT)} includes \"{name}\": write its path from the root"
    for folder in ("core", "hosts/mailbox", "apps"):
        for path in sources(folder):
            if re.search(r"\b_WIN32\b|<windows\.h>", path.read_text()):
                yield f"{path.relative_to(ROOT)}: _WIN32 and <windows.h> stay under hosts/windows"


def check_of_the_check():
    """A check that cannot fail is none: each pattern must recognise what it is for."""
    assert INCLUDE.findall('#include <zlib.h>\n# include "core/text/text.h"') == [("<", "zlib.h"), ('"', "core/text/text.h")]
    assert "zlib.h" not in STANDARD and len(sources("core")) > 10


if __name__ == "__main__":
    check_of_the_check()
    found = list(problems())
    print("\n".join(found) or f"{len(sources('core'))} core sources keep to their room")
    sys.exit(1 if found else 0)
