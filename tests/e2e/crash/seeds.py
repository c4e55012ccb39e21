"""Faults seeded into a copy of the code: each must be caught, or the harness is none."""
import json
import shlex
import subprocess
from dataclasses import dataclass
from pathlib import Path


@dataclass
class Seed:
    name: str
    file: str
    changes: list  # (text that is there once, text in its place)


SERVICES = "hosts/mailbox/services/"
SEEDS = [
    Seed("a missing file flush", SERVICES + "batch.cpp", [
        ("if (file->state == SavedFile::State::waiting) flush.add(file->file.get());", ";"),
        ("if (const int error = flush.error(file->file.get()); error != 0)", "if (const int error = 0; error != 0)"),
    ]),
    Seed("a missing directory flush", SERVICES + "batch.cpp", [
        ("if (file->state == SavedFile::State::committed) flush.add(file->folder->descriptor());", ";"),
        ("parents != 0 ? parents : flush.error(file->folder->descriptor())", "parents"),
    ]),
    Seed("unlink before link", SERVICES + "batch_change.cpp", [
        ("    old_ = *old;\n", "    old_ = *old;\n    ::unlink(change_.folder->filePath(old_).c_str());\n"),
    ]),
    Seed("no read-back", SERVICES + "batch_change.cpp", [
        ("same = holds(*attachment.file, attachment.decoded);", "same = true;"),
    ]),
    Seed("an ignored short write", SERVICES + "file_content.cpp", [
        ("bytes.remove_prefix(static_cast<std::size_t>(count));", "bytes = {};"),
    ]),
    Seed("a link that replaces", SERVICES + "names.cpp", [
        ("to.directory, to.name.c_str(), AT_SYMLINK_FOLLOW) == 0 ? 0 : errno;",
         "to.directory, \".x\", AT_SYMLINK_FOLLOW) == 0 && "
         "::renameat(to.directory, \".x\", to.directory, to.name.c_str()) == 0 ? 0 : errno;"),
    ]),
]
NAMED_SEEDS = [  # where no file is without a name
    Seed("a replacing rename", SERVICES + "names.cpp", [
        ("to.name.c_str(), RENAME_NOREPLACE) == 0", "to.name.c_str(), 0) == 0"),
    ]),
]
DRAFT_SEEDS = [
    Seed("a draft that is not flushed", "hosts/mailbox/store/mail_folder.cpp", [
        ("if (::fsync(file.get()) != 0)", "if (false)"),
    ]),
    Seed("a draft that is not read back", "hosts/mailbox/store/mail_folder.cpp", [
        ("if (!holdsContent(file.get(), content, temporary))", "if (false)"),
    ]),
]


def build(seed: Seed, source: Path, build_folder: Path, folder: Path) -> Path:
    """The program with the seed in it: one file is compiled anew and linked before the libraries."""
    original = source / seed.file
    text = original.read_text()
    for there, instead in seed.changes:
        if text.count(there) != 1:
            raise SystemExit(f"the seed '{seed.name}' no longer fits {seed.file}: {there!r}")
        text = text.replace(there, instead)
    copy = folder / original.name
    copy.write_text(text)
    entry = next(e for e in json.loads((build_folder / "compile_commands.json").read_text())
                 if Path(e["directory"], e["file"]).resolve() == original.resolve())
    command = shlex.split(entry["command"])
    command[command.index("-o") + 1] = str(folder / "seed.o")
    command[command.index("-c") + 1] = str(copy)
    command = [word for word in command if "ccache" not in word] + [f"-I{source}", "-w", "-O0"]
    subprocess.run(command, cwd=entry["directory"], check=True)
    main = sorted((build_folder / "apps/quillfile/CMakeFiles/quillfile.dir").rglob("*.o"))
    libraries = [build_folder / "hosts/mailbox/libquillfile_mailbox.a", build_folder / "libquillfile_core.a"]
    sanitize = [word for word in command if word.startswith("-fsanitize")]
    program = folder / "quillfile-seeded"
    subprocess.run([command[0], *sanitize, "-o", str(program), *map(str, main), str(folder / "seed.o"),
                    *map(str, libraries), *link_options(build_folder)], check=True)
    return program


def link_options(build_folder: Path) -> list[str]:
    """What the real program is linked with besides our own libraries."""
    ninja = (build_folder / "build.ninja").read_text()
    block = ninja[ninja.index("build apps/quillfile/quillfile:"):]
    line = next((l for l in block.splitlines()[:40] if l.strip().startswith("LINK_LIBRARIES =")), "")
    return [word for word in line.partition("=")[2].split() if "libquillfile" not in word]
