#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <optional>
#include <vector>

namespace ambertide {

struct ReleaseNotes
{
    QString text;
    bool isPlainText = false; ///< otherwise it is HTML
};

/// One release in a feed, as the feed tells it: nothing here is checked or trusted yet.
struct AppcastItem
{
    QString version;        ///< the one that is compared
    QString displayVersion; ///< the one that people read; the same as `version` where the feed has none
    QString operatingSystem;

    QUrl releaseNotesLink;
    ReleaseNotes releaseNotes;

    QUrl packageLink;  ///< empty when there is nothing to download
    QString signature; ///< base64

    bool isCritical = false;
    QString criticalBelowVersion; ///< with isCritical: for running versions below this one; empty means for all
};

/// The feed that announces releases: RSS 2.0 with the elements of the appcast namespace. What would narrow a release
/// down to some people, such as channels and phases, is not read: a feed offers its releases to everybody.
struct Appcast
{
    static constexpr qsizetype mostBytes = qsizetype{1024} * 1024;

    std::vector<AppcastItem> items; ///< in the feed's order; items without a version are left out

    /// Nothing when the bytes are more than `mostBytes`, no UTF-8, no well-formed XML or no RSS, name a document type,
    /// or hold more tags or attributes than any feed needs; `problem` then says which, in one line. Any thread.
    static std::optional<Appcast> read(const QByteArray &bytes, QString &problem);
};

} // namespace ambertide
