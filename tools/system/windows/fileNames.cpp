#include "system/fileNames.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cerrno>

#include "system/windows/wideText.h"

// Of the runtime, which documents it without a header: the words of the command line as UTF-16. The
// shell's own function for that would start all that has to do with windows.
extern "C" int __cdecl __wgetmainargs(int* count, wchar_t*** words, wchar_t*** environment,
                                      int expandsWildcards, int* newMode);

namespace {

bool isFolder(std::wstring const& name) {
  DWORD const attributes = GetFileAttributesW(name.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

}  // namespace

std::vector<std::string> commandWords(int, char**) {
  int count = 0;
  wchar_t** words = nullptr;
  wchar_t** environment = nullptr;
  int newMode = 0;
  __wgetmainargs(&count, &words, &environment, 0, &newMode);
  std::vector<std::string> utf8;
  for (int index = 1; index < count; ++index) utf8.push_back(utf8Of(words[index]));
  return utf8;
}

int openForReading(std::string const& name) {
  std::wstring const wide = wideOf(name);
  // The runtime would say of a folder that access is denied.
  if (isFolder(wide)) errno = EISDIR;
  return isFolder(wide) ? -1 : _wopen(wide.c_str(), _O_RDONLY | _O_BINARY | _O_NOINHERIT);
}

std::FILE* openForWriting(std::string const& name) {
  return _wfopen(wideOf(name).c_str(), L"wb");
}

bool lookAtFile(std::string const& name, struct stat& about) {
  struct _stat64 wide;
  if (_wstat64(wideOf(name).c_str(), &wide) != 0) return false;
  about = {};
  about.st_mode = wide.st_mode;
  about.st_size = static_cast<decltype(about.st_size)>(wide.st_size);
  return true;
}
