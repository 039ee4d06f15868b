#pragma once

#include <QStringList>

class QApplication;

namespace ambertide {

/// Translates the windows into the first of `languages` that there is a translation for, along with Qt's own texts
/// where the system has these. `languages` are in order of preference and named as in QLocale::uiLanguages(). English
/// ends the search, since the source is written in it. To be called once, before the first window is created: windows
/// do not translate themselves again.
void installTranslations(QApplication &application, const QStringList &languages);

} // namespace ambertide
