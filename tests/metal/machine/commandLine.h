#pragma once

// The image's command line, which the loader hands over: the name of a case and its words.

#include "ntos/types.h"

// What the loader hands over. Only what is used here has a name.
struct tStartInfo {
  u32 magic;
  u8 unused[20];
  char* commandLine;
};
static_assert(offsetof(tStartInfo, commandLine) == 24);

constexpr u32 kStartInfoMagic = 0x336EC578;
constexpr int kWordsMost = 8;

// The words between blanks, each terminated. They stand in the loader's text, which is cut up.
struct tWords {
  explicit tWords(char* commandLine);

  int count = 0;
  char* words[kWordsMost] = {};
};

// A number in decimal, or in hexadecimal behind "0x".
u32 numberOf(char const* word);

// The bytes that hexadecimal digits, two for each, stand for, written over the word. Returns how
// many.
u32 bytesOf(char* word);
