#include "Measuring.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace ambertide {

using namespace std::chrono_literals;

void print(const char *what, double figure, double reach, const char *unit)
{
    std::printf("%-66s %9.2f  (reach %g) %s%s\n", what, figure, reach, unit, figure <= reach ? "" : "   MISSED");
    std::fflush(stdout);
}

double median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

double medianOf(int runs, const std::function<double()> &measure)
{
    std::vector<double> values;
    for (int run = 0; run < runs; ++run)
        values.push_back(measure());
    return median(values);
}

double millisecondsFor(const std::function<void()> &work)
{
    const auto start = Clock::now();
    work();
    return Milliseconds(Clock::now() - start).count();
}

void waitFor(const char *what, const std::function<bool()> &isDone)
{
    const auto deadline = Clock::now() + 20s;
    while (!isDone()) {
        QCoreApplication::processEvents();
        if (Clock::now() > deadline)
            throw std::runtime_error(what);
    }
}

} // namespace ambertide
