#include "dialogs/ProjectMain.h"

#include "dialogs/ElidingDelegate.h"
#include "dialogs/TransientMessage.h"
#include "project/ProjectFile.h"
#include "project/ProjectLock.h"
#include "project/RecordingLock.h"
#include "project/RecordingName.h"
#include "ui_ProjectMain.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QStandardPaths>

namespace {

// The suffix counts.
constexpr int longestFileName = 20;

constexpr int longestFolderText = 70;

constexpr int mostProposals = 99;

const QString suffix = QStringLiteral("tpc");

QString rowText(const QString &name, const QString &path)
{
    const QFileInfo file(path);
    QString folder = file.path();
    if (folder.size() > longestFolderText)
        folder = folder.left(longestFolderText) + QStringLiteral("...");
    return name + QStringLiteral("\t[") + folder + QLatin1Char('/') + file.baseName() + QStringLiteral(".tpc]");
}

/// Where a new project at @p path will record.
QString newRecording(const QString &path)
{
    return ProjectFile(path).newDatabasePath(QFileInfo(path).baseName());
}

/// Why a project at @p path could not record, in words for the operator; empty when it could.
QString newRecordingProblem(const QString &path)
{
    const QString recording = newRecording(path);
    const QString name = QFileInfo(path).baseName();
    if (const QString problem = recordingNameProblem(name); !problem.isEmpty())
        return QStringLiteral("\"%1\" cannot be the name of a recording: it %2.\nPlease choose another name.")
            .arg(name, problem);
    const QString other = otherProjectWithRecording(recording, path);
    if (other.isEmpty())
        return {};
    return QStringLiteral("The project \"%1\" records into \"%2\" already.\nPlease choose another name.")
        .arg(other, QFileInfo(recording).fileName());
}

/// A path like @p path at which nothing is in a new project's way: the recording is named by what stands in front of
/// the first point.
QString proposedPath(const QString &path)
{
    const QFileInfo file(path);
    QString name = file.suffix() == suffix ? file.completeBaseName() : file.fileName();
    name.replace(QLatin1Char('.'), QLatin1Char('-')).replace(QLatin1Char('\\'), QLatin1Char('-'));
    for (int number = 1; number <= mostProposals; ++number) {
        const QString end = number == 1 ? QString() : QStringLiteral(" %1").arg(number);
        QString proposed = file.absolutePath() + QLatin1Char('/') +
                           name.left(longestFileName - int(suffix.size()) - 1 - int(end.size())) + end +
                           QLatin1Char('.') + suffix;
        if (!QFileInfo::exists(proposed) && !QFileInfo::exists(newRecording(proposed)) &&
            newRecordingProblem(proposed).isEmpty())
            return proposed;
    }
    return {};
}

} // namespace

ProjectMain::ProjectMain(const QStringList &recentList, const QHash<QString, QVariant> &recentProjects, QWidget *parent)
    : QWidget(parent), m_form(std::make_unique<Ui::ProjectMain>())
{
    m_form->setupUi(this);
    m_form->listWidget->setItemDelegate(new ElidingDelegate(m_form->listWidget));
    for (const QString &name : recentList)
        addRecentProject(name, recentProjects.value(name).toString());
    connect(m_form->btn_create, &QPushButton::clicked, this, &ProjectMain::slotCreateProject);
    connect(m_form->btn_open, &QPushButton::clicked, this, &ProjectMain::slotOpenProject);
    connect(m_form->listWidget, &QListWidget::itemActivated, this, &ProjectMain::slotRecentProject);
}

ProjectMain::~ProjectMain() = default;

void ProjectMain::takeFocus()
{
    if (m_paths.isEmpty())
        m_form->btn_create->setFocus();
    else
        m_form->listWidget->setFocus();
}

void ProjectMain::addRecentProject(const QString &name, const QString &path)
{
    auto *item = new QListWidgetItem(rowText(name, path), m_form->listWidget);
    item->setToolTip(path);
    m_paths.insert(item, path);
}

void ProjectMain::slotCreateProject()
{
    askForNewFile({});
}

void ProjectMain::slotOpenProject()
{
    QFileDialog *dialog = makeFileDialog(QStringLiteral("Open Project"));
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &QFileDialog::fileSelected, this, &ProjectMain::openProject);
    dialog->open();
}

void ProjectMain::slotRecentProject(QListWidgetItem *item)
{
    emit projectLoaded(m_paths.value(item).toString());
}

QFileDialog *ProjectMain::makeFileDialog(const QString &caption)
{
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    auto *dialog = new QFileDialog(this, caption, documents, QStringLiteral("*.") + suffix);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    return dialog;
}

void ProjectMain::askForNewFile(const QString &proposed)
{
    QFileDialog *dialog = makeFileDialog(QStringLiteral("Create Project"));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(suffix);
    // Not every platform's dialog completes the name before it asks, so the question is ours.
    dialog->setOption(QFileDialog::DontConfirmOverwrite);
    if (!proposed.isEmpty())
        dialog->selectFile(proposed);
    connect(dialog, &QFileDialog::fileSelected, this, &ProjectMain::createProject);
    dialog->open();
}

void ProjectMain::createProject(const QString &chosen)
{
    const bool isComplete = !QFileInfo(chosen).suffix().isEmpty();
    const QString path = isComplete ? chosen : chosen + QLatin1Char('.') + suffix;
    if (!isNameShortEnough(path))
        return;
    const QString problem = newRecordingProblem(path);
    if (!problem.isEmpty()) {
        askForNewFile(proposedPath(path));
        showError(problem);
    } else if (QFileInfo(path).isFile()) {
        askForReplacement(path);
    } else {
        writeEmptyProject(path, Existing::Keep);
    }
}

void ProjectMain::askForReplacement(const QString &path)
{
    auto *box = new QMessageBox(
        QMessageBox::Warning, QStringLiteral("Create Project"),
        QStringLiteral("%1 already exists.\nDo you want to replace it?").arg(QDir::toNativeSeparators(path)),
        QMessageBox::Yes | QMessageBox::No, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    box->setDefaultButton(QMessageBox::No);
    connect(box, &QDialog::finished, this, [this, path](int answer) {
        if (answer == QMessageBox::Yes)
            writeEmptyProject(path, Existing::Replace);
        else
            askForNewFile(path);
    });
    box->open();
}

void ProjectMain::writeEmptyProject(const QString &path, Existing existing)
{
    {
        // Nobody may open it before it is empty, or record into what will be its recording.
        ProjectLock project(path);
        RecordingLock recording(newRecording(path));
        if (!isFree(project) || !isFree(recording))
            return;
        QFile file(path);
        const bool mayReplace = existing == Existing::Replace;
        if (!file.open(mayReplace ? QIODevice::WriteOnly : QIODevice::WriteOnly | QIODevice::NewOnly)) {
            // Another program may have made it since it was looked for.
            if (!mayReplace && (file.exists() || QFileInfo(path).isSymLink()))
                askForReplacement(path);
            else
                showError(QStringLiteral("Unable to open the project file."));
            return;
        }
    }
    emit projectCreated(path);
}

void ProjectMain::openProject(const QString &path)
{
    if (!isNameShortEnough(path))
        return;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        showError(QStringLiteral("Unable to open the project file."));
        return;
    }
    file.close();
    emit projectLoaded(path);
}

template <typename Lock>
bool ProjectMain::isFree(Lock &lock)
{
    if (lock.acquire())
        return true;
    showError(lock.refusal());
    return false;
}

bool ProjectMain::isNameShortEnough(const QString &path)
{
    const QString name = QFileInfo(path).fileName();
    if (name.size() <= longestFileName)
        return true;
    showError(QLatin1Char('"') + name + QStringLiteral("\" is too long.\nPlease retry.\nMax Length is 20 charactors."));
    return false;
}

void ProjectMain::showError(const QString &text)
{
    showTransientMessage(QStringLiteral("ERROR"), text, this);
}
