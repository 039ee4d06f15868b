// read-gamma-table: prints the white point (red green blue, of 65535) that every active display of $DISPLAY shows, a
// line each. A client of its own, for looking at what Ambertide has done.

#include "support/RandrClient.h"

#include <cstdio>
#include <cstdlib>

int main()
{
    const char *display = std::getenv("DISPLAY");
    ambertide::RandrClient client(display != nullptr ? display : "");
    for (const auto crtc : client.activeCrtcs()) {
        const auto [red, green, blue] = client.whitePoint(crtc);
        std::printf("%d %d %d\n", red, green, blue);
    }
}
