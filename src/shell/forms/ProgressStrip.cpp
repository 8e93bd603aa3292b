#include "shell/forms/ProgressStrip.h"

#include "platform/Text.h"
#include "shell/forms/ElidedLabel.h"
#include "shell/forms/QtStatus.h"

#include <QGridLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// The bar's own steps: bytes do not fit its range.
constexpr int barSteps = 1000;

} // namespace

ProgressStrip::ProgressStrip(StatusSink& status, QWidget* parent)
    : QWidget(parent), m_status(dynamic_cast<QtStatus*>(&status))
{
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins({});
    m_text = new ElidedLabel;
    m_text->setObjectName(u"lblCurrentFile"_s);
    m_amount = new QLabel;
    m_amount->setObjectName(u"lblAmount"_s);
    m_bar = new QProgressBar;
    m_bar->setRange(0, barSteps);
    m_bar->setAccessibleName(u"Progress"_s);
    grid->addWidget(m_text, 0, 0);
    grid->addWidget(m_amount, 0, 1);
    auto* cancel = new QPushButton(u"Stop"_s);
    cancel->setObjectName(u"cancelWork"_s); // the main window lets it through during work
    cancel->setToolTip(u"Click here to cancel."_s);
    grid->addWidget(m_bar, 1, 0, 1, 2);
    grid->addWidget(cancel, 0, 2, 2, 1);
    grid->setColumnStretch(0, 1);
    hide();
    if (!m_status)
        return;
    connect(
        m_status, &QtStatus::panelChanged, this, [this](const QString& panel, const QString& text) {
            if (panel == u"Primary")
                m_text->setText(text);
        });
    connect(cancel, &QPushButton::clicked, m_status, &QtStatus::requestCancel);
    connect(m_status, &QtStatus::progressChanged, this, &ProgressStrip::showProgress);
    connect(m_status, &QtStatus::idle, this, &QWidget::hide);
}

void ProgressStrip::showProgress(qint64 done, qint64 total)
{
    m_bar->setMaximum(total > 0 ? barSteps : 0); // 0: the bar of who knows not how long
    m_bar->setValue(total > 0 ? int(double(done) / double(total) * barSteps) : 0);
    QString amount = total > 0 ? sizeText(done) + u" of "_s + sizeText(total) : QString();
    if (const QString left = m_status->timeLeft(); !left.isEmpty())
        amount += u", "_s + left;
    m_amount->setText(amount);
    show();
}

} // namespace vt
