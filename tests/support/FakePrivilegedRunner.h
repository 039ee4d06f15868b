#pragma once

#include "platform/PrivilegedRunner.h"

#include <string>
#include <vector>

namespace ambertide {

/// Runs nothing: notes each command and answers with `result`.
class FakePrivilegedRunner final : public PrivilegedRunner
{
public:
    PrivilegedResult run(const std::string &command) override
    {
        commands.push_back(command);
        if (isCancelled)
            return {PrivilegedResult::Status::Failed, "cancelled"};
        return result;
    }
    void cancel() override { isCancelled = true; }

    PrivilegedResult result;
    std::vector<std::string> commands;
    bool isCancelled = false;
};

} // namespace ambertide
