#pragma once

#include <QLabel>

/// A label whose font follows its size, so that its one line of plain text fills it less a margin.
/// A font that has grown must not keep the window from shrinking again: the label asks for no room of its own.
class ResizeLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ResizeLabel(QWidget *parent = nullptr);

    /// Scales the present font by what is left of, or missing to, the label's size; also done on every resize.
    /// An empty text leaves the font alone.
    void fitFont();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    ResizeLabel(const QSize &margins, QWidget *parent);

    void resizeEvent(QResizeEvent *event) override;

private:
    const QSize m_margins;
};

/// The same without margins, for the unit under a value.
class ResizeLabelUnit : public ResizeLabel
{
    Q_OBJECT

public:
    explicit ResizeLabelUnit(QWidget *parent = nullptr);
};
