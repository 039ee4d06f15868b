// Tints the displays of the X server that its first argument names, as told on standard input, and ends as told there.
// It answers each command that it outlives with a line.
#include "platform/linux/RandrDisplayServices.h"

#include <cstdlib>
#include <iostream>
#include <string>

int main(int, char **argv)
{
    ambertide::RandrDisplayServices services(argv[1], AMBERTIDE_BUNDLE "/Contents/MacOS/AmbertideGuardian");
    std::string command;
    while (std::getline(std::cin, command)) {
        if (command.starts_with("tint")) {
            ambertide::GammaTables tables{};
            tables.blue.fill(command == "tint" ? 0.5F : 0.25F);
            services.setTransferTables(services.activeDisplays(), tables);
        } else if (command == "restore")
            services.restoreSystemColours();
        else if (command == "return")
            return EXIT_SUCCESS;
        else if (command == "exit")
            std::exit(EXIT_SUCCESS);
        else if (command == "_Exit")
            std::_Exit(EXIT_SUCCESS);
        else if (command == "abort")
            std::abort();
        std::cout << command << std::endl;
    }
    return EXIT_SUCCESS;
}
