#pragma once

// Tests of the demo as a user meets it: a program with arguments, output, a sentence on standard
// error when something is in the way, and an exit code.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

constexpr char kDemo[] = OXDIAG_BINARY_DIR "/examples/slotbus/slotbus_demo";
constexpr char kControl[] = OXDIAG_BINARY_DIR "/tools/oxdiagctl/oxdiagctl";
constexpr char kDefaultRack[] = OXDIAG_SOURCE_DIR "/examples/slotbus/rack.txt";
constexpr char kFaultyRack[] = OXDIAG_SOURCE_DIR "/examples/slotbus/faulty.txt";

// How long the demo takes to end: a second, and what a sanitized program on a loaded machine needs
// beyond it.
constexpr std::chrono::milliseconds kMostOfEnding{2500};

struct tRun {
  int exitCode = -1;
  std::string output;
  std::string errors;
};

// A folder of its own for each test, with everything in it removed at the end.
class tDemoTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = (std::filesystem::temp_directory_path() / "slotbus-XXXXXX").string();
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    folder = name;
  }
  void TearDown() override { std::filesystem::remove_all(folder); }

  // An absolute name stays what it is.
  std::string pathOf(std::string const& name) const { return (folder / name).string(); }

  std::string write(std::string const& name, std::string const& text) const {
    std::ofstream(pathOf(name), std::ios::binary) << text;
    return pathOf(name);
  }

  std::string readFile(std::string const& name) const {
    std::ifstream file(pathOf(name), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
  }

  // Runs the demo with these arguments, and its output in a file of that name.
  tRun run(std::vector<std::string> arguments, std::string const& output = "output") const {
    arguments.insert(arguments.begin(), kDemo);
    return runProgram(std::move(arguments), output);
  }

  // Runs arguments[0], found as a shell finds it.
  tRun runProgram(std::vector<std::string> arguments, std::string const& output = "output") const {
    pid_t const child = fork();
    if (child == 0) become(std::move(arguments), output);
    int state = 0;
    EXPECT_EQ(waitpid(child, &state, 0), child);
    tRun done;
    done.exitCode = WIFEXITED(state) ? WEXITSTATUS(state) : -1;
    done.output = readFile("output");
    done.errors = readFile("errors");
    return done;
  }

  // What a command of the shell shows at a terminal of its own.
  static std::string showAtTerminal(std::string const& command) {
    int terminal = -1;
    pid_t const child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
      execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
      _exit(127);
    }
    std::string shown;
    char piece[4096];
    for (ssize_t count; (count = read(terminal, piece, sizeof(piece))) > 0;) {
      shown.append(piece, static_cast<size_t>(count));
    }
    close(terminal);
    EXPECT_EQ(waitpid(child, nullptr, 0), child);
    return shown;
  }

 private:
  [[noreturn]] void become(std::vector<std::string> arguments, std::string const& output) const {
    redirect(output, STDOUT_FILENO);
    redirect("errors", STDERR_FILENO);
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    execvp(pointers[0], pointers.data());
    _exit(127);
  }

  void redirect(std::string const& name, int target) const {
    int const file = open(pathOf(name).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (file < 0 || dup2(file, target) < 0) _exit(126);
  }

  std::filesystem::path folder;
};

inline bool contains(std::string const& text, std::string const& wanted) {
  return text.find(wanted) != std::string::npos;
}

inline bool isOneSentence(std::string const& text) {
  return text.size() > 2 && text.find('\n') == text.size() - 1 && text[text.size() - 2] == '.';
}

inline size_t countLines(std::string const& text) {
  return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
}
