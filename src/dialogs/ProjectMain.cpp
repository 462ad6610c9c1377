#include "dialogs/ProjectMain.h"

#include "dialogs/ElidingDelegate.h"
#include "dialogs/PlainToolTip.h"
#include "dialogs/TransientMessage.h"
#include "project/ProjectLock.h"
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

const QString suffix = QStringLiteral("tpc");

QString rowText(const QString &name, const QString &path)
{
    const QFileInfo file(path);
    QString folder = file.path();
    if (folder.size() > longestFolderText)
        folder = folder.left(longestFolderText) + QStringLiteral("...");
    return name + QStringLiteral("\t[") + folder + QLatin1Char('/') + file.baseName() + QStringLiteral(".tpc]");
}

} // namespace

ProjectMain::ProjectMain(const QStringList &recentList, const QHash<QString, QVariant> &recentProjects, QWidget *parent)
    : QWidget(parent), m_form(std::make_unique<Ui::ProjectMain>())
{
    m_form->setupUi(this);
    m_form->listWidget->setItemDelegate(new ElidingDelegate(m_form->listWidget));
    for (const QString &name : recentList)
        addRecentProject(name, recentProjects.value(name).toString());
    if (recentList.isEmpty())
        setFocusProxy(m_form->btn_create);
    else
        setFocusProxy(m_form->listWidget);
    connect(m_form->btn_create, &QPushButton::clicked, this, &ProjectMain::slotCreateProject);
    connect(m_form->btn_open, &QPushButton::clicked, this, &ProjectMain::slotOpenProject);
    connect(m_form->listWidget, &QListWidget::itemActivated, this, &ProjectMain::slotRecentProject);
}

ProjectMain::~ProjectMain() = default;

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
    if (QFileInfo(path).isFile())
        askForReplacement(path);
    else
        writeEmptyProject(path);
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
            writeEmptyProject(path);
        else
            askForNewFile(path);
    });
    box->open();
}

void ProjectMain::writeEmptyProject(const QString &path)
{
    if (!isFree(path))
        return;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        showError(QStringLiteral("Unable to open the project file."));
        return;
    }
    file.close();
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

bool ProjectMain::isFree(const QString &path)
{
    ProjectLock lock(path);
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
    // A message guesses markup just as a tool tip does.
    showTransientMessage(QStringLiteral("ERROR"), plainToolTip(text), this);
}
