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

/// One release in a feed, as the feed describes it: nothing here is checked or trusted yet.
struct AppcastItem
{
    QString version;        ///< the one that is compared
    QString displayVersion; ///< the one shown to the user; the same as `version` where the feed has none
    QString operatingSystem;

    QUrl releaseNotesLink;
    ReleaseNotes releaseNotes;

    QUrl packageLink;  ///< empty when there is nothing to download
    QString signature; ///< base64

    bool isCritical = false;
    QString criticalBelowVersion; ///< with isCritical: for running versions below this one; empty means for all
};

/// The feed that announces releases: RSS 2.0 with the elements of the appcast namespace. Elements that would restrict a
/// release to some users, such as channels and phased rollouts, are ignored: a feed offers its releases to everybody.
struct Appcast
{
    static constexpr qsizetype mostBytes = qsizetype{1024} * 1024;

    std::vector<AppcastItem> items; ///< in the feed's order; items without a version are left out

    /// Nothing when the bytes are more than `mostBytes`, are not UTF-8, well-formed XML and RSS, declare a document
    /// type, or hold more tags or attributes than any feed needs; `problem` then says which, in one line. Any thread.
    static std::optional<Appcast> read(const QByteArray &bytes, QString &problem);
};

} // namespace ambertide
