#pragma once

#include <QLabel>

/// The room that a chart viewer stands in, and that its chart is made for. The viewer is as large as its chart, this
/// label as large as its layout says: neither pushes the other.
class QChartViewerLabel : public QLabel
{
    Q_OBJECT

public:
    using QLabel::QLabel;

signals:
    /// After every resize.
    void refreshChart();

protected:
    void resizeEvent(QResizeEvent *event) override;
};
