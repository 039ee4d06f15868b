#pragma once

#include "ports/ApplicationConnection.h"

#include <span>
#include <string>
#include <string_view>

namespace ambertide {

/// The command-line tool: reads the arguments and carries them out.
class AmbertideCLI
{
public:
    enum Status { success = 0, failure = 1, wrongUsage = 2 };
    struct Result
    {
        Status status = success;
        std::string output;
        std::string errors;
    };

    /// `application` must outlive the tool; it is not called for arguments that are refused.
    explicit AmbertideCLI(ApplicationConnection &application) : m_application(application) {}

    /// `arguments` are those after the program's name.
    Result run(std::span<const std::string_view> arguments);

private:
    Result setTemperature(std::string_view temperature);
    Result getTemperature();
    ApplicationConnection::Answer requestTemperature();

    ApplicationConnection &m_application;
};

} // namespace ambertide
