#include "views/ChartView.h"

#include "chart/NoValue.h"
#include "chart/QChartViewer.h"
#include "chart/TrackCursor.h"
#include "chart/XYChart.h"
#include "device/ChannelUnit.h"
#include "device/ConfiguredDevice.h"
#include "device/DataInterval.h"
#include "dialogs/LinkKindView.h"
#include "dialogs/PlainToolTip.h"
#include "dialogs/SharpPixmap.h"
#include "ui_ChartView.h"
#include "views/WindowIcon.h"

namespace {

const QColor channel1Colour(0xff, 0x00, 0x00);
const QColor channel2Colour(0x00, 0xcc, 0x00);

void setPlainText(QLabel *label, const QString &text)
{
    label->setText(text);
    label->setToolTip(plainToolTip(text));
}

QString orElse(const QString &text, const QString &substitute)
{
    return text.isEmpty() ? substitute : text;
}

} // namespace

ChartView::ChartView(QWidget *parent) : QWidget(parent), m_form(std::make_unique<Ui::ChartView>())
{
    m_form->setupUi(this);
    ensureWindowIcon(this);
    const std::array<const char *, PictureCount> paths{
        ":/img/DeviceConnectedSymbol.png", ":/img/DeviceConnectingSymbol.png", ":/img/DeviceDisconnectedSymbol.png"};
    for (size_t i = 0; i < paths.size(); ++i)
        m_pictures[i] = sharpPixmap(QLatin1String(paths[i]));
    m_form->label_device_type->setPixmap(sharpPixmap(QStringLiteral(":/img/DeviceImg.png")));
    m_form->label_device_status->setPixmap(m_pictures[DisconnectedPicture]);

    assembleChannels();
    m_times.fill(chart::noValue);
    connectChannels();
    connect(m_form->btn_setting, &QAbstractButton::clicked, this, &ChartView::slotPopupSensingOption);
    connect(m_form->btn_network, &QAbstractButton::clicked, this, &ChartView::slotPopupNetwork);
    m_form->btn_network->hide();
    updateChart();
}

ChartView::~ChartView()
{
    for (Channel &channel : m_channels)
        channel.viewer->setChart(nullptr);
}

void ChartView::assembleChannels()
{
    Channel &first = m_channels[0];
    first.line = {QStringLiteral("CH1"), channel1Colour};
    first.valueFrame = m_form->frame_ch1_value;
    first.deviceLabel = m_form->label_ch1_device;
    first.nameLabel = m_form->label_ch1_desc;
    first.valueLabel = m_form->label_ch1_number;
    first.unitLabel = m_form->label_ch1_unit;
    first.chartLabel = m_form->label_ch1_chart;
    Channel &second = m_channels[1];
    second.line = {QStringLiteral("CH2"), channel2Colour};
    second.valueFrame = m_form->frame_ch2_value;
    second.deviceLabel = m_form->label_ch2_device;
    second.nameLabel = m_form->label_ch2_desc;
    second.valueLabel = m_form->label_ch2_number;
    second.unitLabel = m_form->label_ch2_unit;
    second.chartLabel = m_form->label_ch2_chart;
    for (Channel &channel : m_channels) {
        channel.values.fill(chart::noValue);
        channel.viewer = new QChartViewer(channel.chartLabel);
    }
}

void ChartView::connectChannels()
{
    connect(m_channels[0].viewer, &QChartViewer::viewPortChanged, this, &ChartView::drawChart);
    connect(m_channels[0].viewer, &QChartViewer::mouseMovePlotArea, this, &ChartView::onMouseMovePlotArea);
    connect(m_channels[0].chartLabel, &QChartViewerLabel::refreshChart, this, &ChartView::drawChart);
    connect(m_channels[1].viewer, &QChartViewer::viewPortChanged, this, &ChartView::drawChart2);
    connect(m_channels[1].viewer, &QChartViewer::mouseMovePlotArea, this, &ChartView::onMouseMovePlotArea2);
    connect(m_channels[1].chartLabel, &QChartViewerLabel::refreshChart, this, &ChartView::drawChart2);
}

void ChartView::setDevice(ConfiguredDevice *device)
{
    if (!device)
        return;
    // Values of the device shown before would pass for this one's.
    if (m_device != device)
        blankValues();
    m_device = device;
    applyConnectionState(device->isConnected());
    const std::array<QString, 2> texts{device->ch1Value(), device->ch2Value()};
    for (size_t i = 0; i < texts.size(); ++i) {
        if (texts[i].isEmpty())
            continue;
        m_channels[i].valueLabel->setText(texts[i]);
        m_channels[i].valueLabel->fitFont();
    }
    refreshHeader();
    device->history(m_times, m_channels[0].values, m_channels[1].values);
    m_intervals = device->historyIntervals();
    updateChart();
}

void ChartView::clear()
{
    m_times.fill(chart::noValue);
    for (Channel &channel : m_channels)
        channel.values.fill(chart::noValue);
    updateChart();

    applyConnectionState(false);
    m_form->label_device_type->clear();
    for (Channel &channel : m_channels) {
        setPlainText(channel.deviceLabel, {});
        setPlainText(channel.nameLabel, {});
    }
    m_form->btn_network->hide();
    m_device.clear();
}

void ChartView::refreshHeader()
{
    if (!m_device)
        return;
    const QString name = orElse(m_device->deviceName(), m_device->address());
    const LinkKindView &kind = linkKindView(m_device->interfaceKind());
    setPlainText(m_form->label_device, name);
    setPlainText(m_form->label_serialnumber, kind.keyCaption + m_device->serialNumber());
    m_form->label_device_type->setPixmap(sharpPixmap(kind.picture));
    for (Channel &channel : m_channels)
        setPlainText(channel.deviceLabel, name);
    setPlainText(m_channels[0].nameLabel, orElse(m_device->ch1Name(), m_channels[0].line.name));
    setPlainText(m_channels[1].nameLabel, orElse(m_device->ch2Name(), m_channels[1].line.name));
    m_channels[0].unitText = unitText(channelUnitFromCode(m_device->ch1Unit()), m_device->ch1CustomUnit());
    m_channels[1].unitText = unitText(channelUnitFromCode(m_device->ch2Unit()), m_device->ch2CustomUnit());
    refreshValue(m_channels[0], m_device->alarmOnChannel1());
    refreshValue(m_channels[1], m_device->alarmOnChannel2());
    if (kind.makeAddressDialog)
        m_form->btn_network->show();
}

void ChartView::setConnected(const QString &serialNumber)
{
    if (isOwn(serialNumber))
        applyConnectionState(true);
}

void ChartView::setDisconnected(const QString &serialNumber)
{
    if (isOwn(serialNumber))
        applyConnectionState(false);
}

void ChartView::updateData(const History &times, const History &channel1, const History &channel2, const QString &text1,
                           const QString &text2)
{
    if (!m_device)
        return;
    m_times = times;
    m_intervals = m_device->historyIntervals();
    m_channels[0].values = channel1;
    m_channels[1].values = channel2;
    updateChart();
    showValue(m_channels[0], text1);
    decideBackground(m_channels[0], m_device->alarmOnChannel1() ? StateBackground::Alarm : StateBackground::Normal);
    showValue(m_channels[1], text2);
    decideBackground(m_channels[1], m_device->alarmOnChannel2() ? StateBackground::Alarm : StateBackground::Normal);
}

void ChartView::drawChart()
{
    draw(m_channels[0]);
}

void ChartView::drawChart2()
{
    draw(m_channels[1]);
}

void ChartView::updateChart()
{
    for (Channel &channel : m_channels)
        channel.viewer->updateViewPort(true, true);
}

void ChartView::onMouseMovePlotArea(QMouseEvent *)
{
    moveCursor(m_channels[0]);
}

void ChartView::onMouseMovePlotArea2(QMouseEvent *)
{
    moveCursor(m_channels[1]);
}

void ChartView::slotPopupSensingOption()
{
    emit popupSensingOption();
}

void ChartView::slotPopupNetwork()
{
    emit popupNetworkSetting();
}

void ChartView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    updateChart();
}

bool ChartView::isOwn(const QString &serialNumber) const
{
    return m_device && m_device->serialNumber() == serialNumber;
}

void ChartView::applyConnectionState(bool connected)
{
    m_form->label_device_status->setPixmap(m_pictures[connected ? ConnectingPicture : DisconnectedPicture]);
    for (Channel &channel : m_channels)
        decideBackground(channel, connected ? StateBackground::Normal : StateBackground::NoData);
    if (!connected)
        blankValues();
}

void ChartView::blankValues()
{
    for (Channel &channel : m_channels) {
        channel.valueLabel->clear();
        channel.unitLabel->clear();
    }
}

void ChartView::showValue(Channel &channel, const QString &text)
{
    const bool newLength = text.size() != channel.valueLabel->text().size();
    channel.valueLabel->setText(text);
    if (newLength)
        channel.valueLabel->fitFont();
    showUnit(channel);
}

/// Empty labels do not follow the view's size: a unit that appears has that to make up for.
void ChartView::showUnit(Channel &channel)
{
    if (channel.unitLabel->text() == channel.unitText)
        return;
    channel.unitLabel->setText(channel.unitText);
    channel.unitLabel->fitFont();
}

void ChartView::refreshValue(Channel &channel, bool alarm)
{
    if (channel.valueLabel->text().isEmpty()) {
        channel.unitLabel->clear();
        decideBackground(channel, StateBackground::NoData);
        return;
    }
    channel.unitLabel->setText(channel.unitText);
    channel.unitLabel->fitFont();
    decideBackground(channel, alarm ? StateBackground::Alarm : StateBackground::Normal);
}

/// A reading of an alarming channel says "connected" first and "alarm" right after: only the last word counts.
void ChartView::decideBackground(Channel &channel, StateBackground background)
{
    if (channel.background == background)
        return;
    channel.background = background;
    if (m_backgroundsPending)
        return;
    m_backgroundsPending = true;
    QMetaObject::invokeMethod(this, &ChartView::applyBackgrounds, Qt::QueuedConnection);
}

void ChartView::applyBackgrounds()
{
    m_backgroundsPending = false;
    for (Channel &channel : m_channels)
        showBackground(channel.valueFrame, channel.background);
}

void ChartView::draw(Channel &channel)
{
    auto picture =
        channelChart(channel.chartLabel->size(), m_times, m_intervals, channel.values, channel.line, dataIntervalMs);
    const bool tracked = channel.viewer->isMouseOnPlotArea();
    chart::drawTrackCursor(*picture, tracked ? channel.viewer->plotAreaMouseX() : picture->plotArea().right(),
                           channelSpanText(dataIntervalMs));
    // The viewer has the new chart before the old one goes.
    channel.viewer->setChart(picture.get());
    channel.picture = std::move(picture);
}

void ChartView::moveCursor(Channel &channel)
{
    chart::drawTrackCursor(*channel.picture, channel.viewer->plotAreaMouseX(), channelSpanText(dataIntervalMs));
    channel.viewer->updateDisplay();
}
