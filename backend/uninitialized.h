// For large local variables in the path of every request, which are filled at once.
#pragma once

// Release builds zero uninitialised variables (-ftrivial-auto-var-init). For kilobytes in every
// request that would cost a large part of the request. Both compilers know this spelling.
#define VEXOR_UNINITIALIZED __attribute__((uninitialized))
