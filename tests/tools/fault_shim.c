// A preload shim between a program and the system: it counts the calls that change something on disk, writes them
// down, and lets one of them fail, come up short or be the program's last.
//
//   SHIM_LOG=FILE    one line for each such call: number, phase, name, path, second path, flags, result
//   SHIM_AT=N        the call, from 1, that SHIM_FAULT happens to
//   SHIM_FAULT=WORD  kill (before it), torn (a write is done by half, then kill), eio, enospc (it fails and does
//                    nothing), short (a write is done by half and says so), flip (a write writes a wrong byte),
//                    squat (another program has just taken the name that a rename or a link gives)
//   SHIM_NAMELESS=no the file system has no files without a name (O_TMPFILE)
//
// A file without a name goes by what the kernel calls it, "FOLDER/#NUMBER (deleted)".
//
// It goes straight to the kernel, so that it works below a sanitizer too. Writes to anything but regular files do not count.
#define _GNU_SOURCE
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

static atomic_int counter;
static int log_file = -1;
static int fault_at = -1;
static const char *fault = "";
static int nameless = 1;

__attribute__((constructor)) static void start(void) {
  const char *path = getenv("SHIM_LOG"), *at = getenv("SHIM_AT"), *word = getenv("SHIM_FAULT");
  if (path != NULL) log_file = (int)syscall(SYS_openat, AT_FDCWD, path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  if (at != NULL) fault_at = atoi(at);
  if (word != NULL) fault = word;
  const char *may = getenv("SHIM_NAMELESS");
  nameless = may == NULL || strcmp(may, "no") != 0;
}

static void note(int number, const char *phase, const char *name, const char *one, const char *two, long flags, long result) {
  if (log_file < 0) return;
  char line[3 * PATH_MAX];
  const int size = snprintf(line, sizeof line, "%d\t%s\t%s\t%s\t%s\t%ld\t%ld\n", number, phase, name, one, two, flags, result);
  if (size > 0) syscall(SYS_write, log_file, line, (size_t)size);
}

static void path_of(int file, char *path) {
  char link[64];
  snprintf(link, sizeof link, "/proc/self/fd/%d", file);
  const long size = syscall(SYS_readlinkat, AT_FDCWD, link, path, PATH_MAX - 1);
  path[size > 0 ? size : 0] = 0;
}

static void full_path(int directory, const char *name, char *path) {
  char base[PATH_MAX] = "";
  if (name[0] != '/' && directory != AT_FDCWD) path_of(directory, base);
  const char *slash = base[0] != 0 ? "/" : "";
  snprintf(path, PATH_MAX, "%.2000s%s%.2000s", base, slash, name);
}

static int chosen(int number, const char *word) { return number == fault_at && strcmp(fault, word) == 0; }

// The error that this call is to fail with, or 0. Does not return when it is the program's last.
static int error_for(int number) {
  if (chosen(number, "kill")) {
    syscall(SYS_kill, syscall(SYS_getpid), SIGKILL);
    for (;;) pause();
  }
  if (chosen(number, "eio")) return EIO;
  return chosen(number, "enospc") ? ENOSPC : 0;
}

static long done(int number, const char *name, const char *one, const char *two, long flags, long result) {
  const int error = errno;
  note(number, "end", name, one, two, flags, result);
  errno = error;
  return result;
}

#define CALL(name, one, two, flags, ...)                            \
  do {                                                              \
    const int number = ++counter;                                   \
    const int error = error_for(number);                            \
    if (error != 0) {                                               \
      errno = error;                                                \
      return (int)done(number, name, one, two, flags, -1);          \
    }                                                               \
    return (int)done(number, name, one, two, flags, (__VA_ARGS__)); \
  } while (0)

static int is_regular(int file) {
  struct stat status;
  return syscall(SYS_fstat, file, &status) == 0 && S_ISREG(status.st_mode);
}

static int open_nameless(int directory, const char *name, int flags, int mode) {
  if (!nameless) return errno = EOPNOTSUPP, -1;
  char path[PATH_MAX];
  full_path(directory, name, path);
  const int number = ++counter;
  const int error = error_for(number);
  if (error != 0) return errno = error, (int)done(number, "open", path, "", flags, -1);
  const int file = (int)syscall(SYS_openat, directory, name, flags, mode);
  if (file >= 0) path_of(file, path);
  return (int)done(number, "open", path, "", flags, file);
}

static int open_call(int directory, const char *name, int flags, int mode) {
  if ((flags & __O_TMPFILE) == __O_TMPFILE) return open_nameless(directory, name, flags, mode);
  if ((flags & (O_CREAT | O_TRUNC)) == 0) return (int)syscall(SYS_openat, directory, name, flags, mode);
  char path[PATH_MAX];
  full_path(directory, name, path);
  CALL("open", path, "", flags, syscall(SYS_openat, directory, name, flags, mode));
}

#define MODE(flags)                                                         \
  int mode = 0;                                                             \
  if (((flags) & O_CREAT) != 0 || ((flags) & __O_TMPFILE) == __O_TMPFILE) { \
    va_list rest;                                                           \
    va_start(rest, flags);                                                  \
    mode = va_arg(rest, int);                                               \
    va_end(rest);                                                           \
  }
int open(const char *name, int flags, ...) {
  MODE(flags)
  return open_call(AT_FDCWD, name, flags, mode);
}
int open64(const char *name, int flags, ...) {
  MODE(flags)
  return open_call(AT_FDCWD, name, flags, mode);
}
int openat(int directory, const char *name, int flags, ...) {
  MODE(flags)
  return open_call(directory, name, flags, mode);
}
int openat64(int directory, const char *name, int flags, ...) {
  MODE(flags)
  return open_call(directory, name, flags, mode);
}

ssize_t write(int file, const void *bytes, size_t size) {
  if (file == log_file || !is_regular(file)) return syscall(SYS_write, file, bytes, size);
  char path[PATH_MAX];
  path_of(file, path);
  const int number = ++counter;
  const int error = error_for(number);
  if (error != 0) {
    errno = error;
    return done(number, "write", path, "", (long)size, -1);
  }
  if (size > 1 && (chosen(number, "short") || chosen(number, "torn"))) size /= 2;
  if (size > 0 && chosen(number, "flip")) {
    char *wrong = malloc(size);
    memcpy(wrong, bytes, size);
    wrong[size / 2] ^= 1;
    const long result = syscall(SYS_write, file, wrong, size);
    free(wrong);
    return done(number, "write", path, "", (long)size, result);
  }
  const long result = syscall(SYS_write, file, bytes, size);
  if (chosen(number, "torn")) syscall(SYS_kill, syscall(SYS_getpid), SIGKILL);
  return done(number, "write", path, "", (long)size, result);
}

// One piece of it at a time: whoever calls it goes on with the rest.
ssize_t writev(int file, const struct iovec *pieces, int count) {
  if (!is_regular(file)) return syscall(SYS_writev, file, pieces, count);
  for (int i = 0; i < count; ++i)
    if (pieces[i].iov_len > 0) return write(file, pieces[i].iov_base, pieces[i].iov_len);
  return 0;
}

static int flush(const char *name, int file, long call) {
  char path[PATH_MAX];
  path_of(file, path);
  note(counter + 1, "begin", name, path, "", 0, 0);
  CALL(name, path, "", 0, syscall(call, file));
}
int fsync(int file) { return flush("fsync", file, SYS_fsync); }
int fdatasync(int file) { return flush("fsync", file, SYS_fdatasync); }
int syncfs(int file) { return flush("syncfs", file, SYS_syncfs); }

static void squat(int to, const char *wanted) {
  if (!chosen(counter + 1, "squat")) return;
  const int squatter = (int)syscall(SYS_openat, to, wanted, O_WRONLY | O_CREAT | O_EXCL, 0600);
  if (squatter >= 0) syscall(SYS_write, squatter, "another's", 9), syscall(SYS_close, squatter);
}

static int rename_call(int from, const char *name, int to, const char *wanted, unsigned flags) {
  char one[PATH_MAX], two[PATH_MAX];
  full_path(from, name, one);
  full_path(to, wanted, two);
  squat(to, wanted);
  CALL("rename", one, two, (long)flags, syscall(SYS_renameat2, from, name, to, wanted, flags));
}
int rename(const char *name, const char *wanted) { return rename_call(AT_FDCWD, name, AT_FDCWD, wanted, 0); }
int renameat(int from, const char *name, int to, const char *wanted) { return rename_call(from, name, to, wanted, 0); }
int renameat2(int from, const char *name, int to, const char *wanted, unsigned flags) {
  return rename_call(from, name, to, wanted, flags);
}

int linkat(int from, const char *name, int to, const char *wanted, int flags) {
  char one[PATH_MAX], two[PATH_MAX];
  int file;
  if (sscanf(name, "/proc/self/fd/%d", &file) == 1)
    path_of(file, one);
  else
    full_path(from, name, one);
  full_path(to, wanted, two);
  squat(to, wanted);
  CALL("link", one, two, flags, syscall(SYS_linkat, from, name, to, wanted, flags));
}
int link(const char *name, const char *wanted) { return linkat(AT_FDCWD, name, AT_FDCWD, wanted, 0); }

int unlinkat(int directory, const char *name, int flags) {
  char path[PATH_MAX];
  full_path(directory, name, path);
  CALL("unlink", path, "", flags, syscall(SYS_unlinkat, directory, name, flags));
}
int unlink(const char *name) { return unlinkat(AT_FDCWD, name, 0); }
int rmdir(const char *name) { return unlinkat(AT_FDCWD, name, AT_REMOVEDIR); }
int remove(const char *name) {
  const int result = unlinkat(AT_FDCWD, name, 0);
  return result != 0 && errno == EISDIR ? rmdir(name) : result;
}

int mkdirat(int directory, const char *name, mode_t mode) {
  char path[PATH_MAX];
  full_path(directory, name, path);
  CALL("mkdir", path, "", mode, syscall(SYS_mkdirat, directory, name, mode));
}
int mkdir(const char *name, mode_t mode) { return mkdirat(AT_FDCWD, name, mode); }

int ftruncate(int file, off_t size) {
  char path[PATH_MAX];
  path_of(file, path);
  CALL("truncate", path, "", size, syscall(SYS_ftruncate, file, size));
}
int fchmod(int file, mode_t mode) {
  char path[PATH_MAX];
  path_of(file, path);
  CALL("chmod", path, "", mode, syscall(SYS_fchmod, file, mode));
}
int chmod(const char *name, mode_t mode) { CALL("chmod", name, "", mode, syscall(SYS_fchmodat, AT_FDCWD, name, mode)); }
int futimens(int file, const struct timespec times[2]) {
  char path[PATH_MAX];
  path_of(file, path);
  CALL("times", path, "", 0, syscall(SYS_utimensat, file, NULL, times, 0));
}
int utimensat(int directory, const char *name, const struct timespec times[2], int flags) {
  char path[PATH_MAX];
  full_path(directory, name, path);
  CALL("times", path, "", flags, syscall(SYS_utimensat, directory, name, times, flags));
}
