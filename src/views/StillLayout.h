#pragma once

#include <QVBoxLayout>

/// A column of labels that ask for no room of their own: once it holds still, a new text lays nothing out anew, neither
/// here nor in the layouts around it. It still follows the size of its widget.
class StillLayout : public QVBoxLayout
{
    Q_OBJECT

public:
    using QVBoxLayout::QVBoxLayout;

    void holdStill() { m_isStill = true; }
    void invalidate() override;

private:
    bool m_isStill = false;
};
