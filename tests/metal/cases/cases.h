#pragma once

// The cases, by the names that the command line of the image has for them. What a case must show
// stands with the runner's table, in metalCases.py, because most of it is seen from outside: in the
// emulator's log of the UART's registers, which the marks cut into sections, and in the bytes that
// left the port.
//
// A case gets the words behind its name. Texts are given as hexadecimal digits.

// The words choose the rate; section 1 is the choice, 2 open, 3 close, 4 the destructor.
void rate(int argc, char** argv);

// Chooses by setDivisor instead, and opens.
void divisor(int argc, char** argv);

// Opens, then chooses (1), closes (2) and opens again (3).
void reopen(int argc, char** argv);

// DIVISOR CONTROL: setupSerialPort while closed (1) and while open (2).
void setup(int argc, char** argv);

// TEXT: put with a length (1) on an open destination.
void put(int argc, char** argv);

// TEXT: put of a terminated text (1).
void putText(int argc, char** argv);

// Every byte there is, in one put (1).
void putEveryByte(int argc, char** argv);

// Before open (1) and after close (2) there is nothing to write to.
void closed(int argc, char** argv);

// The one instance: opens and puts "x" (1).
void instance(int argc, char** argv);

// Opens and puts until the memory would be gone if anything of it were lost.
void manyTimes(int argc, char** argv);

// CONTROL: puts "x" (1) in loopback with the modem lines that CONTROL makes, then reads back what
// the loop brought (2).
void lines(int argc, char** argv);

// Puts "x" (1) and reports how long that took: `nanoseconds` by the time base, `ticks` by the
// interval timer, which is sure up to 54 ms.
void limit(int argc, char** argv);

// TEXT: the same with a terminated text.
void limitOfText(int argc, char** argv);

// CONTROL LATER MICROSECONDS: as lines with CONTROL, but an interrupt sets LATER after so long.
void linesChange(int argc, char** argv);

// TEXT: puts it (1), then waits until the last bit has left the transmitter.
void putAll(int argc, char** argv);

struct tCase {
  char const* name;
  void (*run)(int argc, char** argv);
};

constexpr tCase kCases[] = {
    {"rate", &rate},
    {"divisor", &divisor},
    {"reopen", &reopen},
    {"setup", &setup},
    {"put", &put},
    {"putText", &putText},
    {"putEveryByte", &putEveryByte},
    {"closed", &closed},
    {"instance", &instance},
    {"manyTimes", &manyTimes},
    {"lines", &lines},
    {"limit", &limit},
    {"limitOfText", &limitOfText},
    {"linesChange", &linesChange},
    {"putAll", &putAll},
};
