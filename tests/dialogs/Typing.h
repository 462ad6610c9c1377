#pragma once

#include <QClipboard>
#include <QGuiApplication>
#include <QLocale>
#include <QTest>
#include <QWidget>

// Filling in fields as people do it, under the locales they do it in.

/// Key by key, in the place of what the field holds.
inline void type(QWidget *field, const QString &text)
{
    field->setFocus();
    QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(field, Qt::Key_Delete);
    for (const QChar character : text) {
        for (const auto action : {QTest::Press, QTest::Release})
            QTest::sendKeyEvent(action, field, Qt::Key(character.toUpper().unicode()), QString(character), {});
    }
}

inline void paste(QWidget *field, const QString &text)
{
    QGuiApplication::clipboard()->setText(text);
    field->setFocus();
    QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(field, Qt::Key_V, Qt::ControlModifier);
}

inline void enter(QWidget *field, const QString &text, bool pasted)
{
    if (pasted)
        paste(field, text);
    else
        type(field, text);
}

inline void addLocales()
{
    QTest::addColumn<QLocale>("locale");
    QTest::newRow("C") << QLocale::c();
    QTest::newRow("German") << QLocale(QLocale::German, QLocale::Germany);
    QTest::newRow("French") << QLocale(QLocale::French, QLocale::France);
    QTest::newRow("English") << QLocale(QLocale::English, QLocale::UnitedStates);
}
