// Large variables on the way of every request, which their owners fill at once.
#pragma once

// Releases zero what nothing was stored in (-ftrivial-auto-var-init). For kilobytes on every
// request that would cost more than much of the request. The spelling that both compilers know.
#define VEXOR_UNINITIALIZED __attribute__((uninitialized))
