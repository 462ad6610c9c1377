#pragma once

#include <QHash>
#include <QStringList>
#include <QVariant>
#include <QWidget>
#include <memory>

class QFileDialog;
class QListWidgetItem;

namespace Ui {
class ProjectMain;
}

/// The start screen: creates a project file, or chooses an existing or a recent one. It never looks into a project.
class ProjectMain : public QWidget
{
    Q_OBJECT

public:
    /// @p recentList names the recent projects in display order, @p recentProjects holds the path of each.
    ProjectMain(const QStringList &recentList, const QHash<QString, QVariant> &recentProjects,
                QWidget *parent = nullptr);
    ~ProjectMain() override;

    /// Puts the keyboard on the latest project, or where there is none on the button that creates one.
    void takeFocus();

signals:
    /// A new, empty project file exists at @p path.
    void projectCreated(const QString &path);
    /// An existing project was chosen; a recent one may be gone by now.
    void projectLoaded(const QString &path);

public slots:
    void slotCreateProject();
    void slotOpenProject();
    void slotRecentProject(QListWidgetItem *item);

private:
    enum class Existing { Keep, Replace };

    void addRecentProject(const QString &name, const QString &path);
    QFileDialog *makeFileDialog(const QString &caption);
    /// @p proposed is preselected; none when empty.
    void askForNewFile(const QString &proposed);
    void createProject(const QString &chosen);
    void askForReplacement(const QString &path);
    void writeEmptyProject(const QString &path, Existing existing);
    void openProject(const QString &path);
    /// Takes a lock; tells the operator who has it when that fails.
    template <typename Lock>
    bool isFree(Lock &lock);
    /// Tells the operator when it is not.
    bool isNameShortEnough(const QString &path);
    void showError(const QString &text);

    std::unique_ptr<Ui::ProjectMain> m_form;
    QHash<QListWidgetItem *, QVariant> m_paths;
};
