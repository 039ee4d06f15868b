// A copy of the application that has only displays, those of the session. It shows each level of blue that it reads,
// and at 1 gives them back; then it writes the level. Argument: the folder with the application's own programs.

#include "adapters/linux/displays/SessionDisplayServices.h"
#include "support/Tint.h"

#include <iostream>

int main(int, char **argv)
{
    const auto services = ambertide::makeSessionDisplayServices(argv[1]);
    services->restoreSystemColours(); // and it has connected
    for (float level = 0; std::cin >> level; std::cout << level << std::endl) {
        if (level < 1)
            setTint(*services, level);
        else
            services->restoreSystemColours();
    }
}
