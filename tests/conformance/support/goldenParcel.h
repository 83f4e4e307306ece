#pragma once

// A parcel in a parcel, and the bytes of a stream that holds it.

#include "ntos/types.h"

class tParcel;

// Fills `parcel`, in which another one is packed; false when there is no memory for that.
bool fillGoldenParcel(tParcel& parcel);

constexpr u8 kGoldenParcel[] = {
    'Q',  'E',  'L',  'M',  1,    0,    0,    0,          // magic, version
    7,    0,    't',  'P',  'a',  'r',  'c',  'e',  'l',  // name of the class
    88,   0,    0,    0,                                  // length of the content
    0xE9,                                                 // character
    0xFE, 0xFF, 0xFF, 0xFF,                               // -2
    0xEF, 0xBE, 0xAD, 0xDE,                               // 0xDEADBEEF
    0xFC, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,       // -4
    0xEF, 0xCD, 0xAB, 0x89, 0x67, 0x45, 0x23, 0x01,       // 0x0123456789ABCDEF
    3,    0,    0,    0,    'r',  0,    'k',              // "r\0k"
    2,    0,    0,    0,    0xAC, 0x20, 0x3D, 0xD8,       // U+20AC and half a pair
    7,    0,    't',  'P',  'a',  'r',  'c',  'e',  'l',  // the packed one
    35,   0,    0,    0,                                  //
    'c',                                                  //
    0xFE, 0xFF, 0xFF, 0xFF,                               //
    3,    0,    0,    0,                                  //
    0xFC, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,       //
    5,    0,    0,    0,    0,    0,    0,    0,          //
    0,    0,    0,    0,                                  // ""
    0,    0,    0,    0,                                  // L""
    0,    0,                                              // no object
};
constexpr u32 kGoldenParcelSize = sizeof(kGoldenParcel);
