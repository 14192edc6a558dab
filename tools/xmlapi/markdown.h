// The reference for those who write front ends.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "chapter.h"
#include "describe.h"
#include "meanings.h"

/// The whole of docs/xml-api.md.
std::string Markdown(const std::vector<Chapter>& chapters);

/// What a child holds, in words.
std::string KindOf(const Child& child);

/// The heading of a table of codes on that page.
std::string_view TitleOf(Codes codes);
