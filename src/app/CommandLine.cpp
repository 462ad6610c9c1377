#include "app/CommandLine.h"

#include <QDir>
#include <QSet>
#include <algorithm>

namespace {

const QString versionOption = QStringLiteral("version");
const QString helpOption = QStringLiteral("help");
const QString checkOption = QStringLiteral("check");
const QString journalOption = QStringLiteral("journal");
const QString jsonOption = QStringLiteral("json");
const QString verifyJournalOption = QStringLiteral("verify-journal");
const QString noAutoLoadOption = QStringLiteral("no-auto-load");

const QSet<QString> &toolkitOptions()
{
    static const QSet<QString> names{
        QStringLiteral("dialogs"),
        QStringLiteral("display"),
        QStringLiteral("dograb"),
        QStringLiteral("fontengine"),
        QStringLiteral("geometry"),
        QStringLiteral("icon"),
        QStringLiteral("nograb"),
        QStringLiteral("platform"),
        QStringLiteral("platformpluginpath"),
        QStringLiteral("platformtheme"),
        QStringLiteral("plugin"),
        QStringLiteral("qmljsdebugger"),
        QStringLiteral("qwindowicon"),
        QStringLiteral("qwindowgeometry"),
        QStringLiteral("qwindowtitle"),
        QStringLiteral("reverse"),
        QStringLiteral("session"),
        QStringLiteral("style"),
        QStringLiteral("stylesheet"),
        QStringLiteral("sync"),
        QStringLiteral("title"),
        QStringLiteral("widgetcount"),
    };
    return names;
}

} // namespace

CommandLine::CommandLine(const QStringList &arguments)
{
    // The toolkit's own arguments have one dash; read as a row of letters, some would ask for the help.
    m_parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    m_parser.setApplicationDescription(QStringLiteral("Shows, watches and records temperature and humidity loggers."));
    m_parser.addOption({{QStringLiteral("h"), helpOption}, QStringLiteral("Shows this text.")});
    m_parser.addOption({{QStringLiteral("v"), versionOption}, QStringLiteral("Shows the version.")});
    m_parser.addOption({noAutoLoadOption, QStringLiteral("Does not load the recent project, whatever the settings say: "
                                                         "the way out when it cannot be opened.")});
    m_parser.addOption(
        {checkOption,
         QStringLiteral("Looks through a recording (.dat), says whether it is whole and ends: 0 whole, 1 "
                        "damaged, 3 no recording."),
         QStringLiteral("file")});
    m_parser.addOption(
        {journalOption, QStringLiteral("Prints a journal of events (.events) and ends."), QStringLiteral("file")});
    m_parser.addOption({jsonOption, QStringLiteral("With --journal: one JSON object a line.")});
    m_parser.addOption({verifyJournalOption,
                        QStringLiteral("Checks the chain of a journal of events and ends: with 0 if it is whole, 1 if "
                                       "it is broken, 3 if the file cannot be read."),
                        QStringLiteral("file")});
    m_parser.addPositionalArgument(QStringLiteral("project"),
                                   QStringLiteral("Project file (.tpc) to open in place of the recent project."),
                                   QStringLiteral("[project]"));
    m_error = m_parser.parse(arguments) ? problem() : m_parser.errorText();
}

QString CommandLine::problem() const
{
    const QStringList files = m_parser.positionalArguments();
    const bool isAboutJournal = m_parser.isSet(journalOption) || m_parser.isSet(verifyJournalOption);
    if (m_parser.isSet(checkOption) && (fileToCheck().isEmpty() || !files.isEmpty() || isAboutJournal))
        return QStringLiteral("--check takes the name of one recording and nothing else.");
    if (m_parser.isSet(journalOption) && m_parser.isSet(verifyJournalOption))
        return QStringLiteral("A journal can be printed or checked, not both at once.");
    if (isAboutJournal && !files.isEmpty())
        return QStringLiteral("With a journal no project is opened.");
    if (m_parser.isSet(jsonOption) && !m_parser.isSet(journalOption))
        return QStringLiteral("Only a journal is printed as JSON: --journal is missing.");
    if (files.size() > 1)
        return QStringLiteral("Only one project can be opened, but %1 are named: %2")
            .arg(QString::number(files.size()), files.join(QStringLiteral(", ")));
    if (files.contains(QString()))
        return QStringLiteral("The name of the project file is empty.");
    return {};
}

bool CommandLine::asksForText() const
{
    return m_parser.isSet(versionOption) || m_parser.isSet(helpOption);
}

QString CommandLine::fileToCheck() const
{
    return m_parser.value(checkOption);
}

bool CommandLine::hasToolkitOptions() const
{
    const QStringList unknown = m_parser.unknownOptionNames();
    return std::any_of(unknown.cbegin(), unknown.cend(),
                       [](const QString &name) { return toolkitOptions().contains(name); });
}

void CommandLine::showText()
{
    if (m_parser.isSet(versionOption))
        m_parser.showVersion();
    m_parser.showHelp();
}

std::optional<JournalCommand> CommandLine::journalCommand() const
{
    if (m_parser.isSet(verifyJournalOption))
        return JournalCommand{JournalCommand::Verify, m_parser.value(verifyJournalOption)};
    if (m_parser.isSet(journalOption))
        return JournalCommand{m_parser.isSet(jsonOption) ? JournalCommand::PrintJson : JournalCommand::Print,
                              m_parser.value(journalOption)};
    return std::nullopt;
}

StartOptions CommandLine::startOptions() const
{
    StartOptions options;
    options.autoLoad = !m_parser.isSet(noAutoLoadOption);
    const QString file = m_parser.positionalArguments().value(0);
    if (!file.isEmpty())
        options.projectFile = QDir::cleanPath(QDir().absoluteFilePath(file));
    return options;
}
