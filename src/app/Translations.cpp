#include "app/Translations.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

#include <memory>

namespace ambertide {

namespace {

/// False if there is no translation for `language`, such as "de-AT", nor for the language without its country.
bool install(QApplication &application, const QString &product, const QString &language, const QString &folder)
{
    auto translator = std::make_unique<QTranslator>(&application);
    if (!translator->load(product + u'_' + QString(language).replace(u'-', u'_'), folder))
        return false;
    return QCoreApplication::installTranslator(translator.release());
}

} // namespace

void installTranslations(QApplication &application, const QStringList &languages)
{
    for (const auto &language : languages) {
        const QLocale locale(language);
        if (locale.language() == QLocale::English || language == QLatin1String("C"))
            return;
        if (!install(application, QStringLiteral("ambertide"), language, QStringLiteral(":/i18n")))
            continue;
        install(application, QStringLiteral("qtbase"), language, QLibraryInfo::path(QLibraryInfo::TranslationsPath));
        if (locale.textDirection() == Qt::RightToLeft)
            QApplication::setLayoutDirection(Qt::RightToLeft);
        return;
    }
}

} // namespace ambertide
