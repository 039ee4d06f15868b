#pragma once

namespace ambertide::bus_names {

/// The name that the one running copy owns on the session bus, and the object it exports there.
inline constexpr char application[] = "me.tovanu.Ambertide";
inline constexpr char applicationPath[] = "/me/tovanu/Ambertide";

inline constexpr char notificationInterface[] = "me.tovanu.Ambertide.DistributedNotificationCenter";
inline constexpr char postedMember[] = "Posted";

/// The programming interface of the application, at the same path.
inline constexpr char temperatureInterface[] = "me.tovanu.Ambertide1";

/// The objects at which KRunner and GNOME Shell search.
inline constexpr char runnerPath[] = "/runner";
inline constexpr char searchProviderPath[] = "/me/tovanu/Ambertide/SearchProvider";

/// Desktop Entry Specification, "D-Bus Activation".
inline constexpr char applicationInterface[] = "org.freedesktop.Application";
/// Keys in that interface's platform data: Wayland's activation token, and its predecessor on X11.
inline constexpr char activationTokenKey[] = "activation-token";
inline constexpr char startupIdentifierKey[] = "desktop-startup-id";

} // namespace ambertide::bus_names
