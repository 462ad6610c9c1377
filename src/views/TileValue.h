#pragma once

#include "views/ResizeLabel.h"

/// The value on a tile. It paints what its parent's style sheet shows behind it as well: with a new value nothing else
/// needs painting.
class TileValue : public ResizeLabel
{
    Q_OBJECT

public:
    explicit TileValue(QWidget *parent = nullptr);

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void paintParent(QPainter &painter) const;
};
