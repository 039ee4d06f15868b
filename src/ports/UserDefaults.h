#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace ambertide {

/// Port: the per-user store of settings. Safe from any thread.
///
/// A read sees this process's own writes at once and another program's as soon as they are on disk. A write that cannot
/// reach the disk is kept, reported once and tried again.
class UserDefaults
{
public:
    virtual ~UserDefaults() = default;

    virtual bool hasObject(std::string_view key) = 0;
    /// 0 when absent or not a number.
    virtual double doubleValue(std::string_view key) = 0;
    /// False when absent or not a bool.
    virtual bool boolValue(std::string_view key) = 0;
    /// The raw bytes; nothing when absent.
    virtual std::optional<std::string> data(std::string_view key) = 0;

    virtual void setDouble(std::string_view key, double value) = 0;
    virtual void setInteger(std::string_view key, long long value) = 0;
    virtual void setBool(std::string_view key, bool value) = 0;
    virtual void setData(std::string_view key, std::string_view bytes) = 0;

    /// Has pending changes written now. Returns when that has been tried or `limit` has passed, whatever else the store
    /// is doing at the time.
    virtual void flush(std::chrono::milliseconds limit) = 0;

    /// The file that changes should go to, if they cannot be saved in it at present; else nothing.
    virtual std::optional<std::string> unusableFile() { return std::nullopt; }
};

} // namespace ambertide
