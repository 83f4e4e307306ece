#pragma once

// A file of saved statuses out of lines, in which lengths are right unless a line makes them wrong:
//
//     s            begins a stream
//     mCODE HEX    the front of a status, with minus that code and these bytes as its modules
//     dLINE TEXT   the fixed part of its detail: a description and high halves are to follow
//     oCLASS       begins an object of that class, by its letter from 'A' on, or of that name
//     .            ends the innermost object
//     n            no object
//     iNUMBER      4 bytes                 lNUMBER  8 bytes
//     tTEXT        a string                wTEXT    a wide string
//     bHEX         bytes, by their digits
//     xCOUNT HEX   the same bytes so many times
//     yPLACE BYTE  changes a byte, counted from the end
//     kCOUNT       takes so many bytes off the end
//
// An input that begins with the stream's own mark is the file itself.

#include <string>
#include <vector>

#include "support/tScript.h"

class tStreamScript {
 public:
  explicit tStreamScript(std::string const& input);

  std::string const& getBytes() const { return bytes; }

 private:
  void apply(tScript& script);
  void beginStream();
  void putFront(tScript& script);
  void putDetail(tScript& script);
  void beginObject(std::string const& name);
  void endObject();
  void putText(std::string const& text, bool isWide);
  void putRepeated(tScript& script);
  void change(tScript& script);

  template <class tNumber>
  void put(tNumber number) {
    bytes.append(reinterpret_cast<char const*>(&number), sizeof(number));
  }

  std::string bytes;
  std::vector<size_t> open;  // where the contents of the objects begin that have no end yet
};
