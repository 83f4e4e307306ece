#pragma once

// Option texts that are configured with: every option there is, and the same without those that
// measure or switch.

constexpr char kSettings[] =
    "--off --on --compname on --compver off --linenumber on --filename on --filepath off "
    "--threadid off --timestamp off --timedelta off --verbosity off --indent on --truncation on "
    "--mutex off --prefixwidth 50 --filter verbosity>=100";
constexpr int kSettingCount = 16;

constexpr char kEveryOption[] =
    "--off --on --compname on --compver off --linenumber on --filename on --filepath off "
    "--threadid off --timestamp off --timedelta off --verbosity off --indent on --truncation on "
    "--mutex off --prefixwidth 50 --filter verbosity>=100 --destination vex --calibrate "
    "--mutex-kernel-token 5:0";
