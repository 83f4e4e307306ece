#include "oxdiagreport/tChildProgram.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <sstream>

namespace {

bool isProgram(std::string const& file) {
  struct stat about = {};
  return stat(file.c_str(), &about) == 0 && S_ISREG(about.st_mode) &&
         access(file.c_str(), X_OK) == 0;
}

// The environment without what makes a symbolizer ask the network.
std::vector<char*> localEnvironment() {
  std::vector<char*> kept;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    if (std::strncmp(*variable, "DEBUGINFOD_", 11) != 0) kept.push_back(*variable);
  }
  kept.push_back(nullptr);
  return kept;
}

pid_t spawn(std::string const& file, std::vector<std::string> const& arguments, int channel) {
  std::vector<char*> words = {const_cast<char*>(file.c_str())};
  for (std::string const& argument : arguments)
    words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, channel, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, channel, STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t program = -1;
  int const result = posix_spawn(&program, file.c_str(), &actions, nullptr, words.data(),
                                 localEnvironment().data());
  posix_spawn_file_actions_destroy(&actions);
  return result == 0 ? program : -1;
}

}  // namespace

// An empty folder in PATH is the current one, as everywhere.
std::string tChildProgram::findOnPath(std::string const& name) {
  char const* const variable = std::getenv("PATH");
  std::istringstream path(variable != nullptr ? variable : "");
  for (std::string folder; std::getline(path, folder, ':');) {
    std::string file = (folder.empty() ? "." : folder) + "/" + name;
    if (isProgram(file)) return file;
  }
  return "";
}

// One socket carries both streams.
bool tChildProgram::start(std::string const& file, std::vector<std::string> const& arguments) {
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return false;
  questions = answers = ends[0];
  program = spawn(file, arguments, ends[1]);
  close(ends[1]);
  return isStarted();
}

void tChildProgram::stop() {
  if (questions != kNone) close(static_cast<int>(questions));
  if (isStarted()) {
    kill(static_cast<pid_t>(program), SIGKILL);
    waitpid(static_cast<pid_t>(program), nullptr, 0);
  }
  program = questions = answers = kNone;
}

bool tChildProgram::ask(std::string const& question) {
  for (size_t sent = 0; sent < question.size();) {
    ssize_t const count = send(static_cast<int>(questions), question.data() + sent,
                               question.size() - sent, MSG_NOSIGNAL);
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) sent += static_cast<size_t>(count);
  }
  return true;
}

bool tChildProgram::listen(std::string& answer) {
  pollfd waiting = {static_cast<int>(answers), POLLIN, 0};
  char buffer[4096];
  if (poll(&waiting, 1, kPatience) <= 0) return false;
  ssize_t const count = read(waiting.fd, buffer, sizeof(buffer));
  if (count <= 0) return false;
  answer.append(buffer, static_cast<size_t>(count));
  return true;
}
