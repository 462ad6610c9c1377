#pragma once

#include <QAbstractSpinBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QValidator>

/// A spin box that keeps what was typed while it is no number of its range: hasAcceptableInput() is false then, and a
/// dialog is to refuse it. The toolkit's boxes pass over keys, take marks for separators of groups and put the last
/// value back, all of it without a word; an alarm limit of 2175 for "21,75" is no alarm.
template <typename SpinBox>
class NumberBox : public SpinBox
{
public:
    using SpinBox::SpinBox;

    void fixup(QString & /*text*/) const override {}

protected:
    // Enter, the loss of focus, hiding and showing would all put the last value in the place of the text.
    void keyPressEvent(QKeyEvent *event) override
    {
        const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        if (isEnter && !this->hasAcceptableInput())
            event->ignore();
        else
            SpinBox::keyPressEvent(event);
    }

    void focusOutEvent(QFocusEvent *event) override
    {
        if (this->hasAcceptableInput()) {
            SpinBox::focusOutEvent(event);
            return;
        }
        this->lineEdit()->event(event);
        this->update();
    }

    void hideEvent(QHideEvent *event) override
    {
        if (this->hasAcceptableInput())
            SpinBox::hideEvent(event);
    }

    void showEvent(QShowEvent *event) override
    {
        if (this->hasAcceptableInput())
            SpinBox::showEvent(event);
    }

    QAbstractSpinBox::StepEnabled stepEnabled() const override
    {
        return this->hasAcceptableInput() ? SpinBox::stepEnabled() : QAbstractSpinBox::StepNone;
    }

    static QValidator::State stateOf(bool isNumber)
    {
        return isNumber ? QValidator::Acceptable : QValidator::Intermediate;
    }
};
