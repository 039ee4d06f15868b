#include "adapters/linux/displays/randr/Calibrations.h"
#include "adapters/linux/displays/randr/TintClaim.h"

#include <cstdlib>

using namespace ambertide;
using namespace std::chrono_literals;

/// What the guardian of an X server's displays becomes once it has given them the identity: gives each its calibration,
/// where colord has one. Argument: the name of the X server.
int main(int argc, char **argv)
{
    if (argc != 2)
        return EXIT_FAILURE;
    RandrConnection server(argv[1]);
    if (server.state() != RandrConnection::State::usable)
        return EXIT_FAILURE;
    std::vector<std::string> outputs;
    for (const auto &crtc : server.crtcs()) {
        if (!crtc.output.empty())
            outputs.push_back(crtc.output);
    }
    Calibrations calibrations;
    if (!calibrations.read(outputs, SdBusDeadline::clock::now() + 1s))
        return EXIT_SUCCESS;
    const auto selection = TintClaim::selectionAtom(server.xcb());
    // Nobody can claim and tint between the look and the writes.
    xcb_grab_server(server.xcb());
    if (TintClaim::newest(server.xcb(), selection) == XCB_NONE)
        server.restoreEverywhere(calibrations.curves());
    xcb_ungrab_server(server.xcb());
    return server.synchronise() ? EXIT_SUCCESS : EXIT_FAILURE;
}
