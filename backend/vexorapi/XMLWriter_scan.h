// The scanner that reads numbers out of character data.
#pragma once

#include "hxraid.h"

/// Reads the next decimal number at the cursor `*str` and moves the cursor behind it.
///
/// Everything but digits separates numbers, signs included. `DataWidth` is 8, 16, 32 or 64 bits;
/// a wider value is cut to its low bits, after a text that passes 32 bits (64 for width 64) has
/// been taken as all ones. Returns -1 when no number is left (the target is then unchanged), else
/// the number of characters passed, less one when the number ends the text. Any other width returns
/// -1.
int XMLWR_CharDataToDec(const char** str, void* tmp, int DataWidth);

/// XMLWR_CharDataToDec with width 32.
int XMLWR_CharDataToDec32(const char** str, HX_U32* tmp32);

/// XMLWR_CharDataToDec with width 64.
int XMLWR_CharDataToDec64(const char** str, HX_U64* tmp);
