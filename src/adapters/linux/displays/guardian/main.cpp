#include "adapters/linux/displays/guardian/Guardian.h"

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string_view>

/// Standard input is the channel from the application. Arguments: the kind of display server, and where it is.
int main(int argc, char **argv)
{
    if (argc != 3 || std::string_view(argv[1]) != "randr" || chdir("/") != 0)
        return EXIT_FAILURE;
    // What a terminal or a session manager sends to the group is meant for the application; whoever sends it gets the
    // displays back by the application's end.
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_BLOCK, &all, nullptr);

    ambertide::RandrConnection server(argv[2]);
    if (server.state() != ambertide::RandrConnection::State::usable)
        return EXIT_FAILURE;
    ambertide::Guardian(server, STDIN_FILENO).run();
    return EXIT_SUCCESS;
}
