#include "ui/AccessKeys.h"

#include "shell/forms/ControlMenu.h"

#include <QAbstractButton>
#include <QKeySequence>
#include <QLabel>
#include <QMap>
#include <QTabBar>

using namespace Qt::StringLiterals;

namespace vt::test {

namespace {

QStringList captionsOf(const QWidget& part)
{
    if (const auto* button = qobject_cast<const QAbstractButton*>(&part))
        return {button->text()};
    if (const auto* label = qobject_cast<const QLabel*>(&part); label && label->buddy())
        return {label->text()};
    QStringList captions;
    if (const auto* tabs = qobject_cast<const QTabBar*>(&part))
        for (int i = 0; i < tabs->count(); ++i)
            captions += tabs->tabText(i);
    return captions;
}

} // namespace

QStringList accessKeyClashes(const QWidget& window)
{
    QMap<QString, QStringList> wanted;
    const auto want = [&wanted](const QString& caption) {
        if (const QKeySequence keys = QKeySequence::mnemonic(caption); !keys.isEmpty())
            wanted[keys.toString()] += caption;
    };
    for (const MenuRow& row : menuRows())
        if (!*row.parent)
            want(QString::fromUtf16(row.caption));
    for (const QWidget* part : window.findChildren<QWidget*>())
        if (part->isVisible())
            for (const QString& caption : captionsOf(*part))
                want(caption);
    QStringList clashes;
    for (const QStringList& captions : std::as_const(wanted))
        if (captions.size() > 1)
            clashes += captions.join(u" / "_s);
    return clashes;
}

} // namespace vt::test
