#include "oxdiagreport/tChildProgram.h"

#include <windows.h>

#include "system/windows/wideText.h"

namespace {

constexpr DWORD kMillisecondsBetweenLooks = 1;

HANDLE handleOf(std::intptr_t number) {
  return reinterpret_cast<HANDLE>(number);
}

std::intptr_t numberOf(HANDLE handle) {
  return reinterpret_cast<std::intptr_t>(handle);
}

// The two ends of a stream, of which the one behind is the program's.
struct tStream {
  bool open(bool isToProgram) {
    SECURITY_ATTRIBUTES inherited = {sizeof(inherited), nullptr, TRUE};
    HANDLE reader = nullptr;
    HANDLE writer = nullptr;
    if (!CreatePipe(&reader, &writer, &inherited, 0)) return false;
    ours = isToProgram ? writer : reader;
    its = isToProgram ? reader : writer;
    return SetHandleInformation(ours, HANDLE_FLAG_INHERIT, 0) != 0;
  }

  HANDLE ours = INVALID_HANDLE_VALUE;
  HANDLE its = INVALID_HANDLE_VALUE;
};

std::intptr_t spawn(std::string const& file, std::vector<std::string> const& arguments,
                    HANDLE input, HANDLE output) {
  std::wstring command = L"\"" + wideOf(file) + L"\"";
  for (std::string const& argument : arguments) command += L" " + wideOf(argument);
  STARTUPINFOW start = {};
  start.cb = sizeof(start);
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = input;
  start.hStdOutput = output;
  PROCESS_INFORMATION started = {};
  // Nothing is asked of the network.
  SetEnvironmentVariableW(L"DEBUGINFOD_URLS", nullptr);
  if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr,
                      nullptr, &start, &started)) {
    return -1;
  }
  CloseHandle(started.hThread);
  return numberOf(started.hProcess);
}

std::wstring environmentVariable(wchar_t const* name) {
  std::wstring value(GetEnvironmentVariableW(name, nullptr, 0), L'\0');
  DWORD const length =
      GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size()));
  value.resize(length < value.size() ? length : 0);
  return value;
}

void closeIfOpen(HANDLE handle) {
  if (handle != INVALID_HANDLE_VALUE) CloseHandle(handle);
}

}  // namespace

// Without a path of ours the system would look into the current folder too, which may hold what
// came from strangers, such as the file of statuses.
std::string tChildProgram::findOnPath(std::string const& name) {
  std::wstring const path = environmentVariable(L"PATH");
  wchar_t found[MAX_PATH];
  if (path.empty()) return "";
  DWORD const length =
      SearchPathW(path.c_str(), wideOf(name).c_str(), L".exe", MAX_PATH, found, nullptr);
  return length != 0 && length < MAX_PATH ? utf8Of(found) : "";
}

bool tChildProgram::start(std::string const& file, std::vector<std::string> const& arguments) {
  tStream asked;
  tStream answered;
  bool const isOpen = asked.open(true) && answered.open(false);
  questions = numberOf(asked.ours);
  answers = numberOf(answered.ours);
  if (isOpen) program = spawn(file, arguments, asked.its, answered.its);
  closeIfOpen(asked.its);
  closeIfOpen(answered.its);
  return isStarted();
}

void tChildProgram::stop() {
  closeIfOpen(handleOf(questions));
  closeIfOpen(handleOf(answers));
  if (isStarted()) {
    TerminateProcess(handleOf(program), 1);
    CloseHandle(handleOf(program));
  }
  program = questions = answers = kNone;
}

bool tChildProgram::ask(std::string const& question) {
  DWORD sent = 0;
  return WriteFile(handleOf(questions), question.data(), static_cast<DWORD>(question.size()), &sent,
                   nullptr) != 0 &&
         sent == question.size();
}

// A pipe has no wait with an end to it, so this looks again and again.
bool tChildProgram::listen(std::string& answer) {
  DWORD there = 0;
  for (int waited = 0; there == 0; ++waited) {
    bool const isOpen = PeekNamedPipe(handleOf(answers), nullptr, 0, nullptr, &there, nullptr) != 0;
    if (!isOpen || waited == kPatience) return false;
    if (there == 0) Sleep(kMillisecondsBetweenLooks);
  }
  char buffer[4096];
  DWORD count = 0;
  if (!ReadFile(handleOf(answers), buffer, sizeof(buffer), &count, nullptr)) return false;
  answer.append(buffer, count);
  return count != 0;
}
