#include "oxdiagctl/windows/tDeviceChannel.h"

#include <windows.h>

#include "oxdiagctl/tFailure.h"
#include "vexkwindows/requestDevice.h"

namespace {

// The path by default has no other characters than these.
std::string narrow(wchar_t const* text) {
  std::string narrowText;
  while (*text != L'\0') narrowText += static_cast<char>(*text++);
  return narrowText;
}

// Who listens at the default place is known, and how it is started.
std::string adviceFor(std::string const& path) {
  if (path != narrow(kRequestDevicePath)) return {};
  return "; as an administrator, start the driver with 'sc start oxdiagcontrol'";
}

}  // namespace

// The runtime would replace words with a * in them by the names of files.
extern "C" int _dowildcard;
int _dowildcard = 0;

char const* const kPlaceHelp = "The device of the kernel modules; by default\n\\\\.\\oxdiag";

std::unique_ptr<iRequestChannel> openRequestChannel(std::optional<std::string> const& place) {
  return std::make_unique<tDeviceChannel>(place ? *place : narrow(kRequestDevicePath));
}

tDeviceChannel::tDeviceChannel(std::string devicePath)
    : path(std::move(devicePath)),
      device(CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE,
                         FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr)) {
  if (device == INVALID_HANDLE_VALUE) fail(GetLastError());
}

tDeviceChannel::~tDeviceChannel() {
  CloseHandle(device);
}

bool tDeviceChannel::deliver(std::string_view dispatcher, void const* request) {
  tRequestInput input = {};
  tRequestOutput output = {};
  DWORD moved = 0;
  input.request = reinterpret_cast<u64>(request);
  input.nameLength = static_cast<u32>(dispatcher.size());
  dispatcher.copy(input.name, sizeof(input.name));
  BOOL const isDone = DeviceIoControl(device, kRequestDeliver, &input, sizeof(input), &output,
                                      sizeof(output), &moved, nullptr);
  if (isDone == 0) fail(GetLastError());
  if (moved != sizeof(output)) fail(ERROR_INVALID_FUNCTION);
  return output.status >= 0;
}

void tDeviceChannel::fail(unsigned long error) const {
  switch (error) {
    case ERROR_ACCESS_DENIED:
      throw tFailure{kExitDenied,
                     "access to " + path + " is denied; administrators only, run it as one"};
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_BAD_PATHNAME:
    case ERROR_INVALID_NAME:
      throw tFailure{kExitNobody, "nobody listens at " + path + adviceFor(path)};
    case ERROR_INVALID_FUNCTION:
    case ERROR_BAD_LENGTH:
    case ERROR_NOT_SUPPORTED:
      throw tFailure{kExitNotTaken, "at " + path + ", something else listens"};
    default:
      throw tFailure{kExitNobody, "at " + path + ": error " + std::to_string(error)};
  }
}
