#pragma once

#include "dialogs/MessageDialog.h"

#include <QGroupBox>
#include <QStringList>
#include <QTextBrowser>

/// A part of a form by its object name; there must be one.
template <typename Widget>
Widget &part(const QWidget *window, const char *name)
{
    auto *widget = window->findChild<Widget *>(QLatin1String(name));
    if (!widget)
        qFatal("no %s", name);
    return *widget;
}

/// The messages that a window has shown so far, oldest first, as "ERROR: text".
inline QStringList messagesOf(const QWidget *window)
{
    QStringList texts;
    const auto messages = window->findChildren<MessageDialog *>();
    for (const MessageDialog *message : messages)
        texts << part<QGroupBox>(message, "groupBox_message").title() + QStringLiteral(": ") +
                     part<QTextBrowser>(message, "textBrowser").toPlainText();
    return texts;
}
