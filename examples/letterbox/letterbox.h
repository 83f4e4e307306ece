#pragma once

// What a program sends to \\.\Letterbox. The box keeps letters and gives the oldest one out first.

// Input: a letter of 1 to LETTERBOX_MOST_BYTES bytes.
#define IOCTL_LETTERBOX_POST CTL_CODE(FILE_DEVICE_UNKNOWN, 0x900, METHOD_BUFFERED, FILE_ANY_ACCESS)

// Output: the oldest letter. STATUS_NO_MORE_ENTRIES when there is none, STATUS_BUFFER_TOO_SMALL
// when it does not fit; then it stays.
#define IOCTL_LETTERBOX_FETCH CTL_CODE(FILE_DEVICE_UNKNOWN, 0x901, METHOD_BUFFERED, FILE_ANY_ACCESS)

#define LETTERBOX_MOST_BYTES 256
#define LETTERBOX_MOST_LETTERS 16
