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
        return result;
    }
    void cancel() override { result = {PrivilegedResult::Status::Failed, "taken back"}; }

    PrivilegedResult result;
    std::vector<std::string> commands;
};

} // namespace ambertide
