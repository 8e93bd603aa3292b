// Every icon is drawn, and in colours that fit the ground it lies on; so are boxes to tick.
#include "shell/forms/DarkMarks.h"
#include "shell/forms/Icons.h"
#include "support/TestMain.h"
#include "ui/Screenshot.h"

#include <QApplication>
#include <QCheckBox>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QRadioButton>
#include <QSet>
#include <QToolButton>

using namespace Qt::StringLiterals;
using namespace vt;

class TestIcons : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void all_areDrawnOnBothGrounds();
    void tint_followsThePalette();
    void marks_staySeenWhenSelected();
    void emptyBoxes_areSeenOnDarkGround();
};

namespace {

struct Shown
{
    QString name;
    QIcon icon;
};

QList<Shown> everyIcon()
{
    QList<Shown> all;
    for (const QString& name : {u"install"_s,
                                u"remove"_s,
                                u"import"_s,
                                u"all-addons"_s,
                                u"cabinet"_s,
                                u"history"_s,
                                u"aircraft"_s,
                                u"panels"_s,
                                u"sounds"_s,
                                u"scenery"_s,
                                u"traffic"_s,
                                u"start-flying"_s,
                                u"browse"_s,
                                u"customize"_s,
                                u"optimize"_s,
                                u"info"_s,
                                u"help"_s,
                                u"web"_s,
                                u"exit"_s})
        all.append({name, icons::command(name)});
    for (int i = 0; i <= static_cast<int>(icons::State::Cabinet); ++i)
        all.append({u"state "_s + QString::number(i), icons::state(static_cast<icons::State>(i))});
    for (int i = 0; i <= static_cast<int>(icons::Kind::Flight); ++i)
        all.append({u"kind "_s + QString::number(i), icons::kind(static_cast<icons::Kind>(i))});
    all.append({u"program"_s, icons::program()});
    return all;
}

int painted(const QIcon& icon, QIcon::Mode mode = QIcon::Normal)
{
    const QImage image = icon.pixmap(QSize(32, 32), mode).toImage();
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) > 128 ? 1 : 0;
    return count;
}

} // namespace

void TestIcons::all_areDrawnOnBothGrounds()
{
    QWidget sheet;
    sheet.setAutoFillBackground(true);
    auto* grid = new QGridLayout(&sheet);
    int at = 0;
    for (const Shown& shown : everyIcon()) {
        QVERIFY2(painted(shown.icon) > 15, qPrintable(shown.name));
        auto* button = new QToolButton;
        button->setIcon(shown.icon);
        button->setIconSize({32, 32});
        button->setText(shown.name);
        button->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
        button->setAutoRaise(true);
        grid->addWidget(button, at / 10, at % 10);
        ++at;
    }
    test::screenshot(sheet, u"icons"_s, {1100, 420});
}

void TestIcons::tint_followsThePalette()
{
    const QPalette before = QApplication::palette();
    const auto brightest = [] {
        const QImage image = icons::command(u"history"_s).pixmap(32, 32).toImage();
        int most = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (const QColor pixel = image.pixelColor(x, y); pixel.alpha() > 200)
                    most = qMax(most, pixel.lightness());
        return most;
    };
    QApplication::setPalette(test::lightPalette());
    QVERIFY(brightest() < 140);
    QApplication::setPalette(test::darkPalette());
    QVERIFY(brightest() > 180);
    QApplication::setPalette(before);
}

void TestIcons::marks_staySeenWhenSelected()
{
    for (const icons::State state : {icons::State::Problem, icons::State::Done}) {
        for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Disabled, QIcon::Selected}) {
            const QImage image = icons::state(state).pixmap(QSize(48, 48), mode).toImage();
            QSet<QRgb> colours;
            for (int x = 0; x < image.width(); ++x)
                if (const QRgb pixel = image.pixel(x, image.height() / 2); qAlpha(pixel) == 255)
                    colours.insert(pixel);
            QVERIFY2(colours.size() > 1, qPrintable(QString::number(int(mode))));
        }
    }
}

void TestIcons::emptyBoxes_areSeenOnDarkGround()
{
    DarkMarks::install();
    const QPalette before = QApplication::palette();
    QApplication::setPalette(test::darkPalette());
    QListWidget list;
    list.setFrameShape(QFrame::NoFrame);
    QListWidgetItem item(QString(), &list);
    item.setCheckState(Qt::Unchecked);
    QCheckBox box;
    QRadioButton circle;
    for (QWidget* widget : {static_cast<QWidget*>(&list),
                            static_cast<QWidget*>(&box),
                            static_cast<QWidget*>(&circle)}) {
        const QImage image = widget->grab(QRect(0, 0, 20, 20)).toImage();
        int light = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                light += image.pixelColor(x, y).lightness() > 0x60 ? 1 : 0;
        QVERIFY2(light > 20, widget->metaObject()->className());
    }
    QApplication::setPalette(before);
}

VT_TEST_CLASS(TestIcons)

#include "test_icons.moc"
