#pragma once

#include <QStringList>

class QApplication;

namespace ambertide {

/// Translates the windows into the first of `languages`, most wanted first and named as in QLocale::uiLanguages(), that
/// there is a translation for, along with Qt's own texts where the system has these. English ends the search: it is
/// what the source is written in. To be called once, before the first window is made: windows do not translate
/// themselves anew.
void installTranslations(QApplication &application, const QStringList &languages);

} // namespace ambertide
