#pragma once

#include "ports/RunningApplications.h"

#include <string>

namespace ambertide {

/// Finds the copies that the test names, and records which were activated.
class FakeRunningApplications final : public RunningApplications
{
public:
    static constexpr std::int64_t ownProcess = 100;

    std::vector<RunningApplication> applications = {{ownProcess}};
    std::vector<std::string> askedIdentifiers;
    std::vector<std::int64_t> activatedProcesses;

    std::vector<RunningApplication> withIdentifier(std::string_view bundleIdentifier) override
    {
        askedIdentifiers.emplace_back(bundleIdentifier);
        return applications;
    }
    void activate(const RunningApplication &application) override
    {
        activatedProcesses.push_back(application.processIdentifier);
    }
    std::int64_t currentProcessIdentifier() const override { return ownProcess; }
};

} // namespace ambertide
