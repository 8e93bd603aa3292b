#include "install/forms/frmAircraft_Variant_Add.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Of the lines, in average characters.
constexpr int fieldWidth = 48;

} // namespace

frmAircraft_Variant_Add::frmAircraft_Variant_Add(
    const QString& aircraft,
    const QList<VariantDetails>& variants,
    std::function<Result(const QList<VariantDetails>&, qsizetype*)> check,
    QWidget* parent)
    : QDialog(parent), m_variants(variants), m_check(std::move(check))
{
    setObjectName(u"frmAircraft_Variant_Add"_s);
    setWindowTitle(u"Aircraft Variant Details"_s);
    auto* column = new QVBoxLayout(this);
    column->addWidget(fields(aircraft));
    m_problem = new QLabel(this);
    m_problem->setObjectName(u"lblProblem"_s);
    m_problem->setWordWrap(true);
    m_problem->setMinimumHeight(fontMetrics().lineSpacing() * 2); // so that nothing jumps
    m_problem->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    column->addWidget(m_problem);
    column->addStretch();
    m_buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &frmAircraft_Variant_Add::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    column->addWidget(m_buttons);
    showVariant(0);
    m_title->setFocus();
}

QWidget* frmAircraft_Variant_Add::fields(const QString& aircraft)
{
    auto* fields = new QWidget(this);
    auto* form = new QFormLayout(fields);
    form->setContentsMargins({});
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    auto* name = new QLabel(aircraft, fields);
    name->setTextFormat(Qt::PlainText);
    name->setTextInteractionFlags(Qt::TextSelectableByMouse);
    form->addRow(u"Aircraft:"_s, name);
    m_choice = new QComboBox(fields);
    m_choice->setObjectName(u"cboVariant"_s);
    for (const VariantDetails& variant : std::as_const(m_variants))
        m_choice->addItem(variant.title);
    if (m_variants.size() > 1)
        form->addRow(u"&New variant:"_s, m_choice);
    else
        m_choice->hide();
    m_title = new QLineEdit(fields);
    m_title->setObjectName(u"txtTitle"_s);
    m_title->setMinimumWidth(fontMetrics().averageCharWidth() * fieldWidth);
    form->addRow(u"&Title:"_s, m_title);
    m_variation = new QLineEdit(fields);
    m_variation->setObjectName(u"txtVariation"_s);
    form->addRow(u"&Variation name:"_s, m_variation);
    m_texture = new QLabel(fields);
    m_texture->setTextFormat(Qt::PlainText);
    form->addRow(u"Texture suffix:"_s, m_texture);
    m_section = new QLabel(fields);
    m_section->setTextFormat(Qt::PlainText);
    form->addRow(u"Section:"_s, m_section);
    connect(m_choice, &QComboBox::currentIndexChanged, this, [this](int index) {
        takeFields();
        showVariant(index);
    });
    for (QLineEdit* line : {m_title, m_variation}) {
        connect(line, &QLineEdit::textEdited, this, [this] {
            takeFields();
            (void)checkNames();
        });
    }
    return fields;
}

void frmAircraft_Variant_Add::showVariant(int index)
{
    if (index < 0 || index >= m_variants.size())
        return;
    m_shown = index;
    const VariantDetails& variant = m_variants.at(index);
    m_title->setText(variant.title);
    m_variation->setText(variant.variation);
    m_texture->setText(variant.texture.isEmpty() ? u"(the aircraft's own textures)"_s
                                                 : variant.texture);
    m_section->setText(variant.sourceSection.isEmpty()
                           ? u"a copy of the aircraft's own section"_s
                           : u"["_s + variant.sourceSection + u"] of the addon"_s);
    (void)checkNames();
}

void frmAircraft_Variant_Add::takeFields()
{
    if (m_shown < 0)
        return;
    VariantDetails& variant = m_variants[m_shown];
    variant.title = m_title->text().trimmed();
    variant.variation = m_variation->text().trimmed();
    m_choice->setItemText(m_shown, variant.title);
}

bool frmAircraft_Variant_Add::checkNames()
{
    qsizetype problem = 0;
    const Result checked = m_check(m_variants, &problem);
    if (!checked && problem != m_shown)
        m_problem->setText(u"'"_s + m_variants.at(problem).title + u"': "_s + checked.text);
    else
        m_problem->setText(checked.text);
    return checked.ok;
}

void frmAircraft_Variant_Add::accept()
{
    takeFields();
    qsizetype problem = 0;
    if (!m_check(m_variants, &problem)) {
        m_choice->setCurrentIndex(int(problem));
        (void)checkNames();
        m_title->setFocus();
        m_title->selectAll();
        return;
    }
    QDialog::accept();
}

} // namespace vt
