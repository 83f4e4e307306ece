// The request server from start to stop, and the file of its socket.

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <thread>

#include "ntoshost/faults.h"
#include "requests/requestTest.h"

using vexkhost::startRequestServer;
using vexkhost::stopRequestServer;

namespace {

class ServerLife : public RequestTest {
 protected:
  void expectRefusedStart(char const* at, int error) {
    errno = 0;
    EXPECT_FALSE(startRequestServer(at));
    EXPECT_EQ(errno, error);
  }
};

// A user whom only this process has, and the folder in /tmp that anybody may have made.
class FolderByDefault : public ServerLife {
 protected:
  void SetUp() override {
    if (geteuid() != 0) GTEST_SKIP() << "only root can become another user";
    std::filesystem::remove_all(own);
  }
  ~FolderByDefault() override { std::filesystem::remove_all(own); }

  // 0 when the user's server starts, or why it does not.
  int startAsUser() const {
    return tChild([this] {
             unsetenv("XDG_RUNTIME_DIR");
             umask(0);
             if (setuid(user) != 0) return 200;
             if (!startRequestServer(nullptr)) return errno;
             stopRequestServer();
             return 0;
           })
        .await();
  }

  uid_t const user = 1'000'000 + static_cast<uid_t>(getpid());
  std::filesystem::path const own = "/tmp/oxdiag-" + std::to_string(user);
};

mode_t modeOf(std::string const& path) {
  struct stat found = {};
  stat(path.c_str(), &found);
  return found.st_mode;
}

// The stack of a thread that is not waited for stays among the pages of the program.
constexpr size_t kPagesOfAStack = 8192 * 1024 / 4096;

size_t countPages() {
  size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  return pages;
}

// Whether a thread of this program has every signal blocked that can be.
bool isAThreadWithoutSignals() {
  constexpr u64 kAll = 0xFFFFFFFE7FFBFEFF;  // but those that end or stop, and the system's own two
  for (auto const& thread : std::filesystem::directory_iterator("/proc/self/task")) {
    std::ifstream status(thread.path() / "status");
    std::string word;
    while (status >> word && word != "SigBlk:") {
    }
    if (status >> word && std::stoull(word, nullptr, 16) == kAll) return true;
  }
  return false;
}

// A server that dies without taking its socket away.
int leaveASocket(std::string const& path) {
  return tChild([&path] { return startRequestServer(path.c_str()) ? 0 : 1; }).await();
}

}  // namespace

TEST_F(ServerLife, ServesFromStartToStop) {
  EXPECT_FALSE(tConnection(path).isConnected());
  startServer();
  EXPECT_EQ(callOnce(), 0);
  stopRequestServer();
  EXPECT_FALSE(tConnection(path).isConnected());
  EXPECT_TRUE(folder.isEmpty());
}

TEST_F(ServerLife, AStartWithoutASocketOrAThreadLeavesNothing) {
  ntoshost::failNth(ntoshost::kFaultSocket, 1);
  expectRefusedStart(path.c_str(), EMFILE);
  EXPECT_TRUE(folder.isEmpty());
  ntoshost::failNth(ntoshost::kFaultThread, 1);
  expectRefusedStart(path.c_str(), EAGAIN);
  ntoshost::clearFaults();
  EXPECT_TRUE(folder.isEmpty());
  startServer();
  EXPECT_EQ(callOnce(), 0);
  stopRequestServer();
}

TEST_F(ServerLife, ACallerForWhomThereIsNoThreadIsRefusedAndTheNextIsServed) {
  startServer();
  ntoshost::failNth(ntoshost::kFaultThread, 1);
  EXPECT_NE(callOnce(), 0);
  ntoshost::clearFaults();
  EXPECT_EQ(ntoshost::faultsInjected(), 1u);
  EXPECT_EQ(callOnce(), 0);
  stopRequestServer();
}

TEST_F(ServerLife, CanBeginAnew) {
  for (int round = 0; round < 20; ++round) {
    startServer();
    EXPECT_EQ(callOnce(), 0);
    stopRequestServer();
  }
}

TEST_F(ServerLife, PlacesAreUsedAgainWithoutATrace) {
  startServer();
  EXPECT_EQ(callOnce(), 0);
  size_t const before = countPages();
  for (int call = 0; call < 100; ++call) EXPECT_EQ(callOnce(), 0);
  EXPECT_LT(countPages(), before + 70 * kPagesOfAStack);
}

TEST_F(ServerLife, TheDescriptorOfTheStandardInputServesToo) {
  startServer();
  int const kept = dup(0);
  ::close(0);
  EXPECT_EQ(callOnce(), 0);
  stopRequestServer();
  dup2(kept, 0);
  ::close(kept);
}

TEST_F(ServerLife, NoDescriptorIsLeftInThePlaceOfTheStandardInput) {
  int const kept = dup(0);
  ::close(0);
  EXPECT_TRUE(startRequestServer(path.c_str()));
  EXPECT_LT(fcntl(0, F_GETFD), 0);
  stopRequestServer();
  dup2(kept, 0);
  ::close(kept);
}

TEST_F(ServerLife, AStartTakesNoOtherFault) {
  ntoshost::failNth(ntoshost::kFaultAll & ~(ntoshost::kFaultSocket | ntoshost::kFaultThread), 1);
  EXPECT_TRUE(startRequestServer(path.c_str()));
  ntoshost::clearFaults();
  EXPECT_EQ(ntoshost::faultsInjected(), 0u);
}

// Whether the process has that folder open, and no program that it starts gets it.
bool hasOpen(pid_t process, std::filesystem::path const& wanted) {
  std::filesystem::path const all = "/proc/" + std::to_string(process);
  std::error_code ignored;
  for (auto const& entry : std::filesystem::directory_iterator(all / "fd", ignored)) {
    if (std::filesystem::read_symlink(entry, ignored) != wanted) continue;
    std::string word;
    std::ifstream info(all / "fdinfo" / entry.path().filename());
    while (info >> word && word != "flags:") {
    }
    info >> word;
    return (std::stoul(word, nullptr, 8) & O_CLOEXEC) != 0;
  }
  return false;
}

TEST_F(ServerLife, AStartWaitsForTheOneInItsFolder) {
  std::filesystem::path const place = std::filesystem::path(path).parent_path();
  int const locked = ::open(place.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ASSERT_EQ(flock(locked, LOCK_EX), 0);
  tSignal const isStarted;
  tChild other([&] {
    ::close(locked);
    bool const isGood = startRequestServer(path.c_str()) && isStarted.give();
    stopRequestServer();
    return isGood ? 0 : 1;
  });
  while (!hasOpen(other.pid, place)) ASSERT_FALSE(std::filesystem::exists(path));
  for (int look = 0; look < 100; ++look) {
    std::this_thread::yield();
    ASSERT_FALSE(std::filesystem::exists(path));
  }
  ::close(locked);
  EXPECT_TRUE(isStarted.await());
  EXPECT_EQ(other.await(), 0);
}

TEST_F(ServerLife, APathInTheRootIsOneLikeOthers) {
  if (geteuid() != 0) GTEST_SKIP() << "only root has another root";
  EXPECT_EQ(tChild([this] {
              if (chroot(folder.pathOf("").c_str()) != 0) return 200;
              if (!startRequestServer("/socket")) return errno;
              stopRequestServer();
              return 0;
            }).await(),
            0);
}

TEST_F(ServerLife, SignalsOfTheProgramAreNotForItsThreads) {
  static volatile sig_atomic_t handled;
  struct sigaction former;
  struct sigaction counting = {};
  counting.sa_handler = [](int) { handled = handled + 1; };
  sigaction(SIGUSR1, &counting, &former);
  startServer();
  EXPECT_EQ(callOnce(), 0);
  EXPECT_TRUE(isAThreadWithoutSignals());
  sigset_t mask;
  pthread_sigmask(SIG_SETMASK, nullptr, &mask);
  EXPECT_EQ(sigismember(&mask, SIGUSR1), 0);
  sigemptyset(&mask);
  sigaddset(&mask, SIGUSR1);
  pthread_sigmask(SIG_BLOCK, &mask, nullptr);
  kill(getpid(), SIGUSR1);
  EXPECT_EQ(callOnce(), 0);
  EXPECT_EQ(handled, 0);
  pthread_sigmask(SIG_UNBLOCK, &mask, nullptr);
  EXPECT_EQ(handled, 1);
  sigaction(SIGUSR1, &former, nullptr);
}

TEST_F(ServerLife, AStopWithoutStartDoesNothing) {
  stopRequestServer();
  startServer();
  stopRequestServer();
  stopRequestServer();
}

TEST_F(ServerLife, TheSocketIsTheOwnersAlone) {
  startServer();
  EXPECT_EQ(modeOf(path), mode_t{S_IFSOCK | 0600});
}

TEST_F(ServerLife, ASecondStartIsRefused) {
  startServer();
  expectRefusedStart(path.c_str(), EALREADY);
  EXPECT_EQ(callOnce(), 0);
}

TEST_F(ServerLife, ASocketThatSomebodyListensAtIsLeftAlone) {
  int started[2];
  int finish[2];
  ASSERT_EQ(pipe(started) + pipe(finish), 0);
  tChild other([&] {
    bool const isGood = startRequestServer(path.c_str()) && write(started[1], "s", 1) == 1;
    char byte;
    close(finish[1]);
    bool const isEnd = read(finish[0], &byte, 1) == 0;
    stopRequestServer();
    return isGood && isEnd ? 0 : 1;
  });
  char byte;
  EXPECT_EQ(read(started[0], &byte, 1), 1);
  expectRefusedStart(path.c_str(), EADDRINUSE);
  EXPECT_EQ(callOnce(), 0);
  for (int end : {finish[0], finish[1], started[0], started[1]}) close(end);
  EXPECT_EQ(other.await(), 0);
}

TEST_F(ServerLife, ASocketThatADeadServerLeftIsReplaced) {
  ASSERT_EQ(leaveASocket(path), 0);
  EXPECT_FALSE(folder.isEmpty());
  startServer();
  EXPECT_EQ(callOnce(), 0);
}

TEST_F(ServerLife, WhatIsNoSocketIsLeftAlone) {
  std::ofstream(path) << "precious";
  expectRefusedStart(path.c_str(), EADDRINUSE);
  EXPECT_EQ(std::filesystem::file_size(path), 8u);
  std::filesystem::remove(path);
}

TEST_F(ServerLife, ALinkToASocketIsLeftAlone) {
  std::string const left = folder.pathOf("left");
  ASSERT_EQ(leaveASocket(left), 0);
  std::filesystem::create_symlink(left, path);
  expectRefusedStart(path.c_str(), EADDRINUSE);
  EXPECT_TRUE(std::filesystem::is_symlink(path));
  EXPECT_TRUE(std::filesystem::is_socket(left));
  std::filesystem::remove(path);
  std::filesystem::remove(left);
}

TEST_F(ServerLife, TheStopTakesOnlyItsOwnSocketAway) {
  startServer();
  std::filesystem::remove(path);
  std::ofstream(path) << "precious";
  stopRequestServer();
  EXPECT_TRUE(std::filesystem::exists(path));
  std::filesystem::remove(path);
}

TEST_F(ServerLife, PathsThatAreTooShortOrTooLongAreRefused) {
  expectRefusedStart("", ENAMETOOLONG);
  std::string const longest = path + std::string(vexkhost::kRequestPathSize - 1 - path.size(), 'x');
  expectRefusedStart((longest + "x").c_str(), ENAMETOOLONG);
  EXPECT_TRUE(startRequestServer(longest.c_str()));
}

TEST_F(ServerLife, APipeIsNoFolder) {
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  expectRefusedStart((path + "/socket").c_str(), ENOTDIR);
  std::filesystem::remove(path);
}

TEST_F(ServerLife, AFolderThatIsMissingIsTold) {
  expectRefusedStart(folder.pathOf("missing/socket").c_str(), ENOENT);
}

TEST_F(ServerLife, ByDefaultItIsInTheUsersRuntimeFolder) {
  setenv("XDG_RUNTIME_DIR", folder.pathOf("").c_str(), 1);
  EXPECT_TRUE(startRequestServer(nullptr));
  EXPECT_TRUE(tConnection(folder.pathOf("oxdiag.socket")).isConnected());
  unsetenv("XDG_RUNTIME_DIR");
}

TEST_F(ServerLife, WithoutThatItIsInAFolderOfTheUsersOwn) {
  char found[vexkhost::kRequestPathSize];
  std::string const wanted = "/tmp/oxdiag-" + std::to_string(geteuid()) + "/oxdiag.socket";
  for (char const* runtimeFolder : {"", "relative"}) {
    setenv("XDG_RUNTIME_DIR", runtimeFolder, 1);
    EXPECT_TRUE(vexkhost::getRequestSocketPath(found));
    EXPECT_EQ(found, wanted);
  }
  unsetenv("XDG_RUNTIME_DIR");
  EXPECT_TRUE(vexkhost::getRequestSocketPath(found));
  EXPECT_EQ(found, wanted);
}

TEST_F(FolderByDefault, ThatCannotBeMadeIsTold) {
  EXPECT_EQ(tChild([this] {
              setenv("XDG_RUNTIME_DIR", folder.pathOf("none").c_str(), 1);
              if (setuid(user) != 0) return 200;
              return startRequestServer(nullptr) ? 0 : errno;
            }).await(),
            EACCES);
}

// A user's server at a path of somebody else's.
class ForeignPath : public FolderByDefault {
 protected:
  int startAtPath() const {
    return tChild([this] {
             if (setuid(user) != 0) return 200;
             if (!startRequestServer(path.c_str())) return errno;
             stopRequestServer();
             return 0;
           })
        .await();
  }

  void allow(std::string const& place, unsigned mode) const {
    std::filesystem::permissions(place, std::filesystem::perms{mode});
  }
};

TEST_F(ForeignPath, InAFolderThatIsNotTheUsersIsRefused) {
  EXPECT_EQ(startAtPath(), EACCES);
}

TEST_F(ForeignPath, InAFolderThatTheUserMayNotLockIsRefused) {
  allow(folder.pathOf(""), 0733);
  EXPECT_EQ(startAtPath(), EACCES);
  allow(folder.pathOf(""), 0755);
}

TEST_F(ForeignPath, OfADeadServerStaysWhenItCannotBeTakenAway) {
  ASSERT_EQ(leaveASocket(path), 0);
  allow(path, 0666);
  EXPECT_EQ(startAtPath(), EACCES);
  EXPECT_TRUE(std::filesystem::is_socket(path));
  std::filesystem::remove(path);
}

TEST_F(ForeignPath, ThatTheUserMayNotAskIsLeftAlone) {
  ASSERT_EQ(leaveASocket(path), 0);
  allow(folder.pathOf(""), 0777);
  EXPECT_EQ(startAtPath(), EADDRINUSE);
  EXPECT_TRUE(std::filesystem::is_socket(path));
  std::filesystem::remove(path);
}

TEST_F(FolderByDefault, IsMadeForItsUserAlone) {
  EXPECT_EQ(startAsUser(), 0);
  EXPECT_EQ(modeOf(own.string()), mode_t{S_IFDIR | 0700});
  EXPECT_TRUE(std::filesystem::is_empty(own));
  EXPECT_EQ(startAsUser(), 0);
}

TEST_F(FolderByDefault, OfAStrangerIsNotUsed) {
  std::filesystem::create_directory(own);
  std::filesystem::permissions(own, std::filesystem::perms{0777});
  EXPECT_EQ(startAsUser(), EPERM);
  EXPECT_TRUE(std::filesystem::is_empty(own));
}

TEST_F(FolderByDefault, IsNoLinkToAnotherOne) {
  std::filesystem::path const other = folder.pathOf("other");
  std::filesystem::create_directory(other);
  ASSERT_EQ(chown(other.c_str(), user, user), 0);
  std::filesystem::create_directory_symlink(other, own);
  ASSERT_EQ(lchown(own.c_str(), user, user), 0);
  EXPECT_EQ(startAsUser(), EPERM);
  EXPECT_TRUE(std::filesystem::is_empty(other));
  std::filesystem::remove(other);
}

TEST_F(ServerLife, ARuntimeFolderWithALongNameIsRefused) {
  setenv("XDG_RUNTIME_DIR", ("/" + std::string(200, 'x')).c_str(), 1);
  expectRefusedStart(nullptr, ENAMETOOLONG);
  unsetenv("XDG_RUNTIME_DIR");
}

TEST_F(ServerLife, TheLongestPathFillsItsPlace) {
  char found[vexkhost::kRequestPathSize];
  std::string longest(vexkhost::kRequestPathSize - 1 - std::strlen("/oxdiag.socket"), 'x');
  longest[0] = '/';
  setenv("XDG_RUNTIME_DIR", longest.c_str(), 1);
  EXPECT_TRUE(vexkhost::getRequestSocketPath(found));
  EXPECT_EQ(found, longest + "/oxdiag.socket");
  setenv("XDG_RUNTIME_DIR", (longest + "x").c_str(), 1);
  EXPECT_FALSE(vexkhost::getRequestSocketPath(found));
  unsetenv("XDG_RUNTIME_DIR");
}

TEST_F(ServerLife, StartsAndStopsOfManyThreadsLeaveNothing) {
  auto const startAndStop = [this] {
    for (int round = 0; round < 50; ++round) {
      startRequestServer(path.c_str());
      stopRequestServer();
    }
  };
  size_t const before = countPages();
  std::thread first(startAndStop);
  std::thread second(startAndStop);
  first.join();
  second.join();
  EXPECT_LT(countPages(), before + 35 * kPagesOfAStack);  // of at least 50 starts
}

// Of many processes that want the same path at once one gets it, and it is reached there.
TEST_F(ServerLife, OneOfManyGetsThePath) {
  ASSERT_EQ(leaveASocket(path), 0);
  int started[2];
  int finish[2];
  ASSERT_EQ(pipe(started) + pipe(finish), 0);
  auto const compete = [&] {
    close(finish[1]);
    char const result = startRequestServer(path.c_str()) ? 's' : errno == EADDRINUSE ? 'r' : '?';
    bool isSaid = write(started[1], &result, 1) == 1;
    char byte;
    isSaid = isSaid && read(finish[0], &byte, 1) == 0;
    stopRequestServer();
    return isSaid ? 0 : 1;
  };
  {
    tChild const children[] = {tChild(compete), tChild(compete), tChild(compete), tChild(compete)};
    std::string results(std::size(children), ' ');
    for (char& result : results) EXPECT_EQ(read(started[0], &result, 1), 1);
    EXPECT_EQ(std::count(results.begin(), results.end(), 's'), 1) << results;
    EXPECT_EQ(std::count(results.begin(), results.end(), 'r'), 3) << results;
    EXPECT_EQ(callOnce(), 0);
    close(finish[1]);
  }
  for (int end : {finish[0], started[0], started[1]}) close(end);
}
