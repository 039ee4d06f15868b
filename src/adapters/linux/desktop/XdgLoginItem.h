#pragma once

#include "ports/LoginItem.h"

#include <filesystem>

namespace ambertide {

class MainBundle;

/// The user's autostart entry, by the Desktop Application Autostart Specification:
/// $XDG_CONFIG_HOME/autostart/me.tovanu.Ambertide.desktop, ~/.config by default.
///
/// The file is replaced in one step: a session that starts at that moment reads the old entry or the new one. A
/// symbolic link in its place is replaced, never followed.
class XdgLoginItem final : public LoginItem
{
public:
    /// The argument with which the entry starts the application.
    static constexpr char startArgument[] = "--at-login";

    /// The bundle must outlive the item.
    explicit XdgLoginItem(const MainBundle &bundle);

    /// Adds the argument, which earlier versions left out, to an entry that starts this program and is switched on.
    void bringUpToDate();

    LoginItemStatus status() const override;
    std::optional<std::string> registerItem() override;
    std::optional<std::string> unregisterItem() override;

private:
    std::string program() const;

    const MainBundle &m_bundle;
};

} // namespace ambertide
