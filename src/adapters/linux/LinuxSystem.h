#pragma once

#include "ports/SystemPorts.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>

namespace ambertide {

class AppViewModel;

/// A Linux desktop: builds everything that answers the application's ports, and offers the application to other
/// programs. Main thread.
class LinuxSystem
{
public:
    /// What other programs may ask of the application. Called on the main thread.
    struct Requests
    {
        AppViewModel &model;
        std::function<void()> activate;
        std::map<std::string, std::function<void()>> actions; ///< by the names that launchers know
    };

    /// The file that this process runs. To be called at the start, since an update may replace the file later.
    static std::filesystem::path runningProgram();

    /// Connects to the displays, then starts the toolkit, then the rest. `program` lies in the bundle's program folder;
    /// the others are the arguments of main() and must outlive this.
    LinuxSystem(const std::filesystem::path &program, int &argc, char **argv);
    ~LinuxSystem();
    LinuxSystem(const LinuxSystem &) = delete;
    LinuxSystem &operator=(const LinuxSystem &) = delete;

    SystemPorts ports();

    /// Offers the application on the session bus, as docs/dbus-api.md describes. The model must outlive that.
    void serve(Requests requests);
    void stopServing();

    /// See BackendDisplayServices::end(). Any thread.
    void endDisplays(std::chrono::milliseconds limit);

    /// See ThreadTaskExecutor. This is about the executor of everything but the installer.
    bool waitUntilIdle(std::chrono::milliseconds limit);

private:
    struct Adapters;
    struct Services;

    std::unique_ptr<Adapters> m_adapters;
    std::unique_ptr<Services> m_services;
};

} // namespace ambertide
