#include "host/requests/tRequestSocket.h"

#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "ntoshost/faults.h"

namespace {

constexpr mode_t kOwnerOnly = 0600;
constexpr mode_t kFolderOfOwner = 0700;
constexpr int kWaiting = 64;  // connections that wait to be accepted

bool fail(int error) {
  errno = error;
  return false;
}

void closeKeepingError(int& descriptor) {
  int const error = errno;
  if (descriptor >= 0) close(descriptor);
  descriptor = -1;
  errno = error;
}

int makeSocket(int flags) {
  if (ntoshost::injectFault(ntoshost::kFaultSocket)) {
    errno = EMFILE;
    return -1;
  }
  return socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | flags, 0);
}

sockaddr_un addressOf(char const* path) {
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  static_assert(sizeof(address.sun_path) == vexkhost::kRequestPathSize);
  memcpy(address.sun_path, path, strlen(path));
  return address;
}

// The folder that a path is in, locked while an object of this class lives: of several servers that
// start at once, each sees what the one before has made.
class tLockedFolder {
 public:
  explicit tLockedFolder(char const* path) {
    char folder[vexkhost::kRequestPathSize] = ".";
    if (char const* const slash = strrchr(path, '/')) {
      size_t const length = slash == path ? 1 : static_cast<size_t>(slash - path);
      memcpy(folder, path, length);
    }
    descriptor = open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0 && flock(descriptor, LOCK_EX) != 0) closeKeepingError(descriptor);
  }
  ~tLockedFolder() { closeKeepingError(descriptor); }
  tLockedFolder(tLockedFolder const&) = delete;
  tLockedFolder& operator=(tLockedFolder const&) = delete;

  bool isLocked() const { return descriptor >= 0; }

 private:
  int descriptor;
};

}  // namespace

bool tRequestSocket::open(char const* wantedPath) {
  if (!choosePath(wantedPath)) return false;
  tLockedFolder const folder(path);
  if (!folder.isLocked()) return false;
  if (listenAtPath()) return true;
  closeKeepingError(descriptor);
  return false;
}

bool tRequestSocket::choosePath(char const* wantedPath) {
  if (wantedPath == nullptr) {
    return vexkhost::getRequestSocketPath(path) ? makeFolder() : fail(ENAMETOOLONG);
  }
  size_t const length = strlen(wantedPath);
  if (length == 0 || length >= sizeof(path)) return fail(ENAMETOOLONG);
  memcpy(path, wantedPath, length + 1);
  return true;
}

// In /tmp anybody can make a folder of any name, and be asked for it.
bool tRequestSocket::makeFolder() const {
  char folder[sizeof(path)];
  memcpy(folder, path, sizeof(path));
  *strrchr(folder, '/') = '\0';
  if (mkdir(folder, kFolderOfOwner) != 0 && errno != EEXIST) return false;
  struct stat found;
  if (lstat(folder, &found) != 0) return false;
  return found.st_uid == geteuid() && S_ISDIR(found.st_mode) ? true : fail(EPERM);
}

bool tRequestSocket::listenAtPath() {
  descriptor = makeSocket(0);
  if (descriptor < 0 || fchmod(descriptor, kOwnerOnly) != 0) return false;
  if (!bindToPath()) {
    if (errno != EADDRINUSE || !isStale()) return fail(errno);
    if (unlink(path) != 0 || !bindToPath()) return false;
  }
  if (listen(descriptor, kWaiting) == 0 && rememberFile()) return true;
  int const error = errno;
  unlink(path);
  return fail(error);
}

// The file gets the mode that the socket was given before.
bool tRequestSocket::bindToPath() {
  sockaddr_un const address = addressOf(path);
  return bind(descriptor, reinterpret_cast<sockaddr const*>(&address), sizeof(address)) == 0;
}

bool tRequestSocket::rememberFile() {
  struct stat made;
  if (lstat(path, &made) != 0) return false;
  device = made.st_dev;
  file = made.st_ino;
  return true;
}

// Whether a socket is there that nobody listens at.
bool tRequestSocket::isStale() const {
  struct stat found;
  if (lstat(path, &found) != 0 || !S_ISSOCK(found.st_mode)) return fail(EADDRINUSE);
  int probe = makeSocket(SOCK_NONBLOCK);
  sockaddr_un const address = addressOf(path);
  bool const isRefused =
      probe >= 0 &&
      connect(probe, reinterpret_cast<sockaddr const*>(&address), sizeof(address)) != 0 &&
      errno == ECONNREFUSED;
  closeKeepingError(probe);
  return isRefused ? true : fail(EADDRINUSE);
}

void tRequestSocket::close() {
  tLockedFolder const folder(path);
  struct stat found;
  bool const isOurs = lstat(path, &found) == 0 && found.st_dev == device && found.st_ino == file;
  if (isOurs) unlink(path);
  closeKeepingError(descriptor);
}

int tRequestSocket::accept() const {
  return accept4(descriptor, nullptr, nullptr, SOCK_CLOEXEC);
}

void tRequestSocket::wake() const {
  shutdown(descriptor, SHUT_RDWR);
}
