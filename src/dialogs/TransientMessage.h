#pragma once

class MessageDialog;
class QString;
class QWidget;

/// How long a message stays unless it is closed earlier.
constexpr int transientMessageMs = 5000;

/// Shows a message that closes by itself, without blocking the caller. Its text may hold names, paths and replies from
/// outside: it is shown letter by letter, whatever looks like markup in it. The dialog belongs to the parent and lives
/// as long as it, closed or not.
MessageDialog *showTransientMessage(const QString &title, const QString &text, QWidget *parent);
