#pragma once

namespace ambertide {

class LoginItem;

/// Starts the application at login, by registering the application itself with the system. Main thread.
class LaunchHelper
{
public:
    /// Names of a separate agent that would start the application. Neither is used: it registers itself.
    static constexpr const char *launchAgentIdentifier = "me.tovanu.Ambertide";
    static constexpr const char *launchAgentFileName = "me.tovanu.Ambertide.plist";

    /// The port must outlive the helper.
    explicit LaunchHelper(LoginItem &loginItem);

    /// Makes the shared instance, once, before anything asks for it. It is never released.
    static void makeShared(LoginItem &loginItem);
    static LaunchHelper &shared();

    /// Also false for an item that the system cannot start or that was switched off elsewhere.
    bool isLaunchAtLoginEnabled() const;

    /// Switching on always renews the registration. A failure is printed and changes nothing else.
    void setLaunchAtLogin(bool enabled);

private:
    LoginItem &m_loginItem;
};

} // namespace ambertide
