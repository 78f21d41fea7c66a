#include "Translation.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLibraryInfo>

Translation::Translation(const QLocale& zLocale)
    : Translation(zLocale.language() == QLocale::C ? QStringList() : zLocale.uiLanguages()) {}

Translation::Translation(const QStringList& zLanguages) {
    for (const QString& name : zLanguages) {
        const QLocale language(name);
        if (language.language() == QLocale::English || Load(language)) {
            return;
        }
    }
}

/// The toolkit's words come along with ours only, lest one window speaks two languages.
bool Translation::Load(const QLocale& zLanguage) {
    const QString separator(QLatin1Char('_'));
    if (!mOwn.load(zLanguage, QStringLiteral("quillbox"), separator, QStringLiteral(":/i18n"))) {
        return false;
    }
    QCoreApplication::installTranslator(&mOwn);
    const QString folder = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
    if (mToolkit.load(zLanguage, QStringLiteral("qtbase"), separator, folder)) {
        QCoreApplication::installTranslator(&mToolkit);
    }
    return true;
}
