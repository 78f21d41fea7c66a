#include "Options.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCryptographicHash>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QSysInfo>

#include <array>

namespace {

/// The texts of one option as the command line knows it; without a value's name it is a switch.
struct OptionText {
    const char* name;
    const char* meaning;
    const char* value;
    const char* standard;
};

constexpr std::array kOptions{
    OptionText{"root", "The folder to serve (required).", "DIR", ""},
    OptionText{"port", "TCP port to listen on; 0 lets the system choose one.", "PORT", "10240"},
    OptionText{"address", "Address to listen on.", "ADDRESS", "127.0.0.1"},
    OptionText{"name", "The device's name.", "NAME", "quillbox-device"},
    OptionText{"rights", "c: create, d: delete, r: read-only; - in the place of a letter for none.", "RIGHTS",
               "cd-"},
    OptionText{"protocol-version", "The protocol version to report.", "VERSION", "1.10"},
    OptionText{"announce", "Let programs on the network find the device, by multicast every 4 seconds.", "",
               ""},
    OptionText{"announce-to", "Let programs on this host find the device: an IPv4 address or a name.", "HOST",
               ""},
};

void AddOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription("Serves a folder to clients of the device file-server protocol.");
    // The parser's own help option would bring a second one, for options that this program has not.
    parser.addOption(QCommandLineOption(QStringList{"h", "help"}, "Displays help on commandline options."));
    for (const OptionText& option : kOptions) {
        parser.addOption(QCommandLineOption(option.name, option.meaning, option.value, option.standard));
    }
}

/// What every value has to look like, and what to say when it does not.
struct Check {
    const char* option;
    const char* pattern;
    const char* complaint;
};

constexpr std::array kChecks{
    Check{"root", ".", "--root is required"},
    Check{"port", "^[0-9]{1,5}$", "--port takes a number from 0 to 65535"},
    Check{"name", "^[^\"<>]+$", "--name must not be empty or contain a double quote, < or >"},
    Check{"rights", "^[c-][d-][r-]$", "--rights takes three characters: c or -, d or -, r or -"},
    Check{"protocol-version", "^[0-9]{1,4}(\\.[0-9]{1,4})?$",
          "--protocol-version takes a number such as 1.10"},
    Check{"announce-to", "^[^:\\s]*$", "--announce-to takes an IPv4 address or the name of a host"},
};

/// In an announcement these would be read as the end of the name, or passed over before it.
constexpr Check kAnnouncedName{
    "name", R"(^[^:;\p{Cc}\p{Z}][^:;\p{Cc}\p{Zl}\p{Zp}]*$)",
    "--name must not contain : or ; or a control character, nor begin with a space, when it is announced"};

bool Holds(const QCommandLineParser& parser, const Check& check) {
    const QRegularExpression shape(check.pattern, QRegularExpression::DotMatchesEverythingOption);
    return shape.match(parser.value(check.option)).hasMatch();
}

bool IsAnnouncing(const QCommandLineParser& parser) {
    return parser.isSet("announce") || !parser.value("announce-to").isEmpty();
}

/// What is wrong with the command line; "" when it is in order.
QString Complaint(const QCommandLineParser& parser) {
    if (!parser.positionalArguments().isEmpty()) {
        return "Unexpected argument: " + parser.positionalArguments().constFirst();
    }
    for (const Check& check : kChecks) {
        if (!Holds(parser, check)) {
            return check.complaint;
        }
    }
    if (IsAnnouncing(parser) && !Holds(parser, kAnnouncedName)) {
        return kAnnouncedName.complaint;
    }
    if (parser.value("port").toUInt() > 65535) {
        return "--port takes a number from 0 to 65535";
    }
    if (QHostAddress(parser.value("address")).isNull()) {
        return "--address takes an IP address of this machine";
    }
    if (!QFileInfo(parser.value("root")).isDir()) {
        return "--root is no folder: " + parser.value("root");
    }
    return "";
}

/// The same for the same folder on the same machine, and telling nothing about either.
std::string MakeId(const QString& root) {
    const QString where = QSysInfo::machineHostName() + '\n' + QFileInfo(root).canonicalFilePath();
    return QCryptographicHash::hash(where.toUtf8(), QCryptographicHash::Sha256)
        .toHex()
        .left(16)
        .toStdString();
}

} // namespace

Options ReadOptions(const QStringList& arguments) {
    QCommandLineParser parser;
    AddOptions(parser);
    Options options;
    const bool understood = parser.parse(arguments);
    if (understood && parser.isSet("help")) {
        options.helpWanted = true;
        options.message = parser.helpText().toStdString();
        return options;
    }
    options.message = (understood ? Complaint(parser) : parser.errorText()).toStdString();
    options.root = parser.value("root");
    options.address = QHostAddress(parser.value("address"));
    options.port = static_cast<quint16>(parser.value("port").toUInt());
    options.identity = {parser.value("name").toStdString(), MakeId(options.root),
                        parser.value("protocol-version").toStdString(), parser.value("rights").toStdString()};
    options.announcements.toGroup = parser.isSet("announce");
    options.announcements.host = parser.value("announce-to");
    return options;
}
