#include "ui/Screenshot.h"

#include "shell/forms/DarkMarks.h"

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QPixmap>
#include <QTest>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace vt::test {

QPalette lightPalette()
{
    QPalette palette(QColor(0xef, 0xef, 0xef));
    palette.setColor(QPalette::Highlight, QColor(0x30, 0x8c, 0xc6));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::PlaceholderText, QColor(0, 0, 0, 128));
    palette.setColor(QPalette::Link, QColor(0x00, 0x57, 0xae));
    return palette;
}

QPalette darkPalette()
{
    QPalette palette(QColor(0x32, 0x32, 0x32));
    palette.setColor(QPalette::Base, QColor(0x24, 0x24, 0x24));
    palette.setColor(QPalette::AlternateBase, QColor(0x2b, 0x2b, 0x2b));
    palette.setColor(QPalette::ToolTipBase, QColor(0x3c, 0x3c, 0x3c));
    palette.setColor(QPalette::ToolTipText, QColor(0xe6, 0xe6, 0xe6));
    palette.setColor(QPalette::Highlight, QColor(0x2a, 0x70, 0xa8));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::PlaceholderText, QColor(0xff, 0xff, 0xff, 128));
    palette.setColor(QPalette::Link, QColor(0x6c, 0xb4, 0xf0));
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(role, QColor(0xe6, 0xe6, 0xe6));
        palette.setColor(QPalette::Disabled, role, QColor(0x80, 0x80, 0x80));
    }
    return palette;
}

QStringList screenshot(QWidget& window, const QString& name, QSize size)
{
    const int percent = qRound(window.devicePixelRatioF() * 100);
    const QDir folder(QStringLiteral(VT_SCREENSHOTS) +
                      (percent == 100 ? QString() : u'-' + QString::number(percent)));
    QDir().mkpath(folder.path());
    DarkMarks::install(); // as the program does
    const QPalette before = QApplication::palette();
    const QSize sizeBefore = window.size();
    if (!size.isEmpty())
        window.resize(size);
    QStringList files;
    for (const auto& [palette, look] :
         {std::pair{lightPalette(), u"light"_s}, std::pair{darkPalette(), u"dark"_s}}) {
        QApplication::setPalette(palette);
        QApplication::processEvents();
        const QString file = folder.filePath(name + u'-' + look + u".png"_s);
        constexpr int quick = 80; // little packing: the files are hardly larger
        if (!window.grab().save(file, "PNG", quick))
            QTest::qFail(qPrintable(u"cannot write "_s + file), __FILE__, __LINE__);
        files.append(file);
    }
    QApplication::setPalette(before);
    window.resize(sizeBefore);
    QApplication::processEvents();
    return files;
}

QSize sizeOf(const QString& file)
{
    return (QSizeF(QImage(file).size()) / qApp->devicePixelRatio()).toSize();
}

} // namespace vt::test
