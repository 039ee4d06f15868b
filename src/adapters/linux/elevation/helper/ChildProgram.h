#pragma once

#include <string>
#include <vector>

namespace ambertide {

struct ProgramResult
{
    int status = -1;    ///< exit status; -1 when the program did not start or was ended by a signal
    std::string output; ///< what it wrote to either output, the beginning of it
};

/// Runs a program to its end. The first word is its absolute path. It gets an environment of its own, nothing on
/// standard input, and no other open file.
ProgramResult runProgram(const std::vector<std::string> &command);

} // namespace ambertide
