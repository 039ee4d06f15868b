#pragma once

#include <chrono>
#include <functional>
#include <vector>

namespace ambertide {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

/// Prints one line: the figure, and the most that it should be.
void print(const char *what, double figure, double reach, const char *unit);

double median(std::vector<double> values);
double medianOf(int runs, const std::function<double()> &measure);
double millisecondsFor(const std::function<void()> &work);

/// Asks without a pause until it is done, handling Qt's events meanwhile. Throws after 20 s.
void waitFor(const char *what, const std::function<bool()> &isDone);

} // namespace ambertide
