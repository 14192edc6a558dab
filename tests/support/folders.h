// Where a test finds the files of the source tree and the programs built beside it. Not macros on
// the compiler's command line: those would give every folder that the tree is built in objects of
// its own.
#pragma once

extern const char kSourceFolder[];   ///< the root of the source tree
extern const char kProgramFolder[];  ///< the folder of the built programs
