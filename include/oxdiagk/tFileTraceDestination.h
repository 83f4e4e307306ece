#pragma once

#include "oxdiagk/iTraceDestination.h"

namespace nOXDIAG100 {

// Trace text into a file on a local drive: "--destination file C:/rack.out overwrite".
//
// The file name is a drive letter, a colon, a slash or backslash, and the path on that drive, such
// as "C:/DebugTrace.out", which is the default. What follows the first separator goes to the kernel
// as it is; name folders with backslashes ("D:\logs\rack.out"), the only separator of the kernel's
// own drives. Bytes from 0x80 on stand for the characters 0xFF80 to 0xFFFF.
//
// Line feeds become CR LF, every other byte is written as it is, NUL included. Each put reaches the
// disk before it returns, in blocks of at most 513 bytes, always at the end of the file. Others may
// read and write the file meanwhile.
//
// Errors are not reported in the file. Text that a full disk does not take is lost, and so is the
// text of a put that the kernel could not finish: at APC_LEVEL and above, as within a fast mutex,
// and in a guarded region. countLostTexts counts both.
//
// Thread safety: any number of threads may put at once. Each block is written whole; blocks of
// different threads are written in any order. The other operations are called by one thread at a
// time, configure(), open() and close() while no thread is within put. Trace streams do so, however
// many use the file.
// IRQL: PASSIVE_LEVEL; put at any, where text can be read.
class OXDIAG_API tFileTraceDestination : public iTraceDestination {
 public:
  // The one instance that options name, created by the first call. Of threads that call first at
  // once, each creates one and all but one destroy theirs again; all get the same. Null when memory
  // is exhausted; the next call tries again. PASSIVE_LEVEL for the call that creates it, otherwise
  // any IRQL. It lives until the library is unloaded.
  static tFileTraceDestination* getInstance();

  // Closes and destroys that instance: for the tables of the module's entry, and nobody else.
  // Leaves it as it is while a thread is within its put, after a wait of ten seconds; the event log
  // says so.
  static void destroyInstance();

  // How many texts were lost, in whole or in part, by all objects of this class since the library
  // was loaded; what is put while no file is open is not among them. A program gets the number with
  // "oxdiagk/stateRequest.h". Any IRQL.
  static u64 countLostTexts();

  // Closed, with the default name and mode.
  tFileTraceDestination();

  // Leaves the trace streams that write here; closes the file, then its drive.
  ~tFileTraceDestination() override;

  tFileTraceDestination(tFileTraceDestination const&) = delete;
  tFileTraceDestination& operator=(tFileTraceDestination const&) = delete;

  // Writes `text` up to its terminator. A null text counts as an empty one.
  iTraceDestination& put(char const* text) override;

  // Writes exactly `length` bytes, or nothing while closed. A null text counts as an empty one,
  // whatever the length; an empty text still issues a write of no bytes.
  //
  // When the kernel says that the handle is not valid in this context, the file is closed, opened
  // by the same name to be appended to, and the block written once more. If it does not open, the
  // destination stays closed.
  iTraceDestination& put(char const* text, unsigned int length) override;

  // Takes the name and mode of the next open(): the words "overwrite" and "append", and any other
  // word as file name. Of several names or modes the last counts; without a mode the file is
  // appended to, without a name the name stays. A name is kept up to its first 256 bytes.
  void configure(int argc, char** const argv) override;

  // " --destination file " and the name of the last open(), as it is. The mode is left out on
  // purpose: what is restored from this text appends.
  char* inquire(char* buffer, unsigned int size, unsigned int* needed) override;

  // Opens or creates the file, emptied first in the mode "overwrite", unless someone else has it
  // open in a way that forbids that. A file that is open is closed first. Returns 1, or 0 when the
  // file cannot be opened; the name of the next open() is then the default.
  //
  // Names of 128 bytes and more are refused, as are those that do not begin with drive letter,
  // colon and one separator.
  u32 open() override;

  // Closes the file, then its drive. Does nothing when nothing is open.
  void close() override;

  // "File = " and the name of the next open(). Valid until the next call for this object.
  char const* getDescription() const override;

 private:
  static constexpr u32 kNameCapacity = 256;
  static constexpr u32 kDescriptionCapacity = 512;

  bool openActive(bool overwrites);
  void releaseHandles();
  bool writeBlock(char const* bytes, u32 length);

  void* directory = nullptr;
  void* file = nullptr;
  char activeName[kNameCapacity];   // of the last open(); terminated only when shorter
  char pendingName[kNameCapacity];  // of the next
  u32 activeOverwrites = 0;
  u32 pendingOverwrites = 0;
  mutable char description[kDescriptionCapacity] = {};
};

}  // namespace nOXDIAG100
