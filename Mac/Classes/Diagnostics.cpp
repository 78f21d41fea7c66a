#include "Diagnostics.h"

#include "CommonUtils.h"
#include "SndfileStream.h"
#include "WidgetText.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QLocale>
#include <QtCore/QSysInfo>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>

#include <string_view>

namespace {

void AddLine(std::string& zrText, const std::string& zLine) {
    zrText += zLine + '\n';
}

void AddFact(std::string& zrText, const std::string& zLabel, const QString& zValue) {
    const std::string value = OneLogLine(FromWidgetText(zValue));
    AddLine(zrText, zLabel + ": " + (value.empty() ? "unknown" : value));
}

void AddVersions(std::string& zrText) {
    AddFact(zrText, "Quillbox", QCoreApplication::applicationVersion());
    AddFact(zrText, "Qt", QString::fromLatin1(qVersion()));
    AddFact(zrText, "Sound library", QString::fromStdString(cSndfileStream::LibraryVersion()));
}

void AddSystem(std::string& zrText) {
    AddFact(zrText, "System", QSysInfo::prettyProductName());
    AddFact(zrText, "Kernel", QSysInfo::kernelType() + QLatin1Char(' ') + QSysInfo::kernelVersion());
    AddFact(zrText, "Processor", QSysInfo::currentCpuArchitecture());
}

void AddDesktop(std::string& zrText) {
    AddFact(zrText, "Desktop", qEnvironmentVariable("XDG_CURRENT_DESKTOP"));
    AddFact(zrText, "Session", qEnvironmentVariable("XDG_SESSION_TYPE"));
    AddFact(zrText, "Qt platform", QGuiApplication::platformName());
    AddFact(zrText, "Locale", QLocale::system().name());
    AddFact(zrText, "Languages", QLocale::system().uiLanguages().join(QStringLiteral(", ")));
    for (const QScreen* screen : QGuiApplication::screens()) {
        AddFact(zrText, "Screen",
                QStringLiteral("%1 x %2, scale %3")
                    .arg(screen->size().width())
                    .arg(screen->size().height())
                    .arg(screen->devicePixelRatio()));
    }
}

void AddLog(std::string& zrText, const std::vector<std::string>& zLines) {
    AddLine(zrText, "");
    AddLine(zrText, zLines.empty() ? "The log is empty." : "The last lines of the log:");
    for (const std::string& line : zLines) {
        AddLine(zrText, line);
    }
}

bool IsOfName(char zCharacter) {
    constexpr std::string_view kOfNames = "abcdefghijklmnopqrstuvwxyz"
                                          "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-";
    return kOfNames.find(zCharacter) != std::string_view::npos;
}

} // namespace

std::string WithoutHome(const std::string& zText, const std::string& zHome) {
    if (zHome.size() < 2) {
        return zText;
    }
    std::string text;
    std::size_t begin = 0;
    for (std::size_t found = 0; (found = zText.find(zHome, begin)) != std::string::npos;) {
        const std::size_t end = found + zHome.size();
        const bool isPartOfPath = found > 0 && IsOfName(zText[found - 1]);
        const bool isPartOfName = end < zText.size() && IsOfName(zText[end]);
        text.append(zText, begin, found - begin);
        text += isPartOfPath || isPartOfName ? zHome : "~";
        begin = end;
    }
    return text.append(zText, begin);
}

std::string DiagnosticsText(const std::vector<std::string>& zLogLines) {
    std::string text;
    AddVersions(text);
    AddSystem(text);
    AddDesktop(text);
    AddLog(text, zLogLines);
    // The same folder may have a name with links in it and one without.
    for (const QString& home : {QDir::homePath(), QDir::home().canonicalPath()}) {
        const std::string path = FromWidgetText(home);
        text = WithoutHome(text, OneLogLine(path, path.size()));
    }
    return text;
}
