#include "dialogs/MessageDialog.h"

#include "dialogs/SharpPixmap.h"
#include "ui_MessageDialog.h"

MessageDialog::MessageDialog(const QString &title, const QString &text, QWidget *parent)
    : QDialog(parent), m_ui(std::make_unique<Ui::MessageDialog>())
{
    m_ui->setupUi(this);
    m_ui->label_top->setPixmap(sharpPixmap(QStringLiteral(":/img/SorvantoLogoLite.png")));
    m_ui->groupBox_message->setTitle(title);
    m_ui->textBrowser->setText(text);
    m_ui->pushButton_close->setFocus();
    connect(m_ui->pushButton_close, &QPushButton::clicked, this, &QWidget::close);
    // Not at once: the window may be inside its own close event.
    connect(this, &QDialog::finished, this, &MessageDialog::releaseWindow, Qt::QueuedConnection);
}

MessageDialog::~MessageDialog() = default;

void MessageDialog::releaseWindow()
{
    if (!isVisible())
        destroy();
}
