// The sentences about fields that comments of generated sources have.
#pragma once

#include <string>
#include <string_view>

#include "describe.h"
#include "meanings.h"

/// The meaning, its unit and range, and where its codes are listed.
std::string InWords(const Meaning& meaning);

/// Whether RetVal of the function says why a call was refused: others answer with it.
bool HasStatus(const FunctionText& function);

/// Whether a child of a list's head is looked at in a command: the others only mean something in
/// its result.
bool IsAsked(const FunctionText& function, const Child& child);

/// The text in lines of at most `width` bytes, each behind `indent`; later lines are indented by
/// two more.
std::string Wrapped(std::string_view text, const std::string& indent, std::size_t width);
