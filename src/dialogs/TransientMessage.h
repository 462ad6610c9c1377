#pragma once

class MessageDialog;
class QString;
class QWidget;

/// How long a message stays unless it is closed earlier.
constexpr int transientMessageMs = 5000;

/// Shows a message letter by letter, without blocking the caller; it closes by itself. The dialog belongs to the parent
/// and lives as long as it, closed or not.
MessageDialog *showTransientMessage(const QString &title, const QString &text, QWidget *parent);
