#pragma once

#include <QtCore/QLocale>
#include <QtCore/QStringList>
#include <QtCore/QTranslator>

/// The words of the person's language, this program's and the toolkit's, for as long as the object lives. To
/// be made before the first window.
class Translation {
public:
    /// For a locale's languages; the "C" locale is English, whatever else is asked for beside it.
    explicit Translation(const QLocale& zLocale);

    /// For the first of these languages ("de", "fr-CA" …) that the program speaks. The texts themselves are
    /// English, so that English and none of them both leave them as they are.
    explicit Translation(const QStringList& zLanguages);

private:
    bool Load(const QLocale& zLanguage);

    QTranslator mOwn;
    QTranslator mToolkit;
};
