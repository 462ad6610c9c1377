#include "chart/QChartViewerLabel.h"

void QChartViewerLabel::resizeEvent(QResizeEvent *event)
{
    QLabel::resizeEvent(event);
    emit refreshChart();
}
