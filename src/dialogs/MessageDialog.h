#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class MessageDialog;
}

/// Tells the operator something: a title word and a text. Mostly shown by showTransientMessage().
class MessageDialog : public QDialog
{
    Q_OBJECT

public:
    /// The text may be rich text; showTransientMessage() takes care of names and replies that come from outside.
    MessageDialog(const QString &title, const QString &text, QWidget *parent);
    ~MessageDialog() override;

private:
    /// A closed message may stay with a long-lived parent: it gives its window back, the greater part of its memory.
    void releaseWindow();

    std::unique_ptr<Ui::MessageDialog> m_ui;
};
