#pragma once

#include <QLabel>

/// One line of plain text, cut short with an ellipsis where it does not fit; whoever sets a text that may be long puts
/// the whole into a tool tip. text() is always whole.
class ElidedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget *parent = nullptr);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};
