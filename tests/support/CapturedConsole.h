#pragma once

#include "base/Console.h"

#include <string>
#include <vector>

namespace ambertide {

/// Keeps what is printed while it lives.
class CapturedConsole
{
public:
    std::vector<std::string> lines;

    CapturedConsole()
    {
        console::redirect([this](std::string_view line) { lines.emplace_back(line); });
    }
    ~CapturedConsole() { console::redirect({}); }
};

} // namespace ambertide
