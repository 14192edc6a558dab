// The C library's allocations, for a program that is linked with --wrap for each of them and
// defines
// __wrap_malloc() and the others.
#pragma once

#include <cstdarg>
#include <cstddef>

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void __real_free(void* block);
int __real_vasprintf(char** text, const char* format, std::va_list args);
int __real___vasprintf_chk(char** text, int flag, const char* format, std::va_list args);
}
