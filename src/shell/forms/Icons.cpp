#include "shell/forms/Icons.h"

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <array>

using namespace Qt::StringLiterals;

/// Outside of any namespace, as the macro wants it.
static void loadIconResource()
{
    Q_INIT_RESOURCE(icons);
}

namespace vt::icons {

namespace {

// The two tones as they stand in the drawings, and the mark that is left open in a filled one.
constexpr QByteArrayView inkInFile = "#3a3a3a";
constexpr QByteArrayView accentInFile = "#2f78c4";
constexpr QByteArrayView markInFile = "#ffffff";

enum class Meaning
{
    Plain,
    Good,
    Caution,
    Bad,
};

QColor colourOf(Meaning meaning)
{
    const bool dark = QGuiApplication::palette().color(QPalette::Base).lightness() < 128;
    switch (meaning) {
    case Meaning::Plain:
        return dark ? QColor(0x6c, 0xb4, 0xf0) : QColor(0x1f, 0x6a, 0xb8);
    case Meaning::Good:
        return dark ? QColor(0x5c, 0xc0, 0x7a) : QColor(0x1d, 0x7d, 0x3f);
    case Meaning::Caution:
        return dark ? QColor(0xe8, 0xb0, 0x4a) : QColor(0xa8, 0x62, 0x00);
    case Meaning::Bad:
        break;
    }
    return dark ? QColor(0xf2, 0x7d, 0x72) : QColor(0xc0, 0x2b, 0x1d);
}

QByteArray drawing(const QString& name)
{
    loadIconResource();
    QFile file(u":/vantrel/icons/"_s + name + u".svg"_s);
    const bool opened = file.open(QIODevice::ReadOnly);
    Q_ASSERT_X(opened, "icons", qPrintable(name));
    return opened ? file.readAll() : QByteArray();
}

/// Draws the SVG anew for each size, mode and palette; what was drawn is cached.
class TintedIcon final : public QIconEngine
{
public:
    TintedIcon(QString name, Meaning meaning) : m_name(std::move(name)), m_meaning(meaning) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        const qreal ratio = painter->device() ? painter->device()->devicePixelRatio() : 1.0;
        painter->drawPixmap(rect, scaledPixmap(rect.size() * ratio, mode, state, ratio));
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return scaledPixmap(size, mode, state, 1.0);
    }

    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State, qreal scale) override
    {
        QColor ink = inkOf(mode);
        QColor accent = mode == QIcon::Normal || mode == QIcon::Active ? colourOf(m_meaning) : ink;
        const QColor mark = QGuiApplication::palette().color(
            mode == QIcon::Selected ? QPalette::Highlight : QPalette::Base);
        const QString key = u"vantrel-icon "_s + m_name + u' ' + ink.name(QColor::HexArgb) +
                            accent.name() + mark.name() + u' ' + QString::number(size.width()) +
                            u'x' + QString::number(size.height()) + u' ' + QString::number(scale);
        QPixmap drawn;
        if (QPixmapCache::find(key, &drawn))
            return drawn;
        drawn = draw(size, ink, accent, mark);
        drawn.setDevicePixelRatio(scale);
        QPixmapCache::insert(key, drawn);
        return drawn;
    }

    [[nodiscard]] QIconEngine* clone() const override { return new TintedIcon(*this); }

    [[nodiscard]] QString key() const override { return u"vantrel"_s; }

    QString iconName() override { return m_name; }

private:
    static QColor inkOf(QIcon::Mode mode)
    {
        const QPalette palette = QGuiApplication::palette();
        if (mode == QIcon::Disabled)
            return palette.color(QPalette::Disabled, QPalette::WindowText);
        return palette.color(mode == QIcon::Selected ? QPalette::HighlightedText
                                                     : QPalette::WindowText);
    }

    [[nodiscard]] QPixmap
    draw(const QSize& size, const QColor& ink, const QColor& accent, const QColor& mark) const
    {
        QByteArray svg = drawing(m_name);
        svg.replace(markInFile, mark.name().toLatin1());
        svg.replace(inkInFile, ink.name().toLatin1());
        svg.replace(accentInFile, accent.name().toLatin1());
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QSvgRenderer renderer(svg);
        QPainter painter(&pixmap);
        const int side = qMin(size.width(), size.height());
        renderer.render(
            &painter,
            QRectF((size.width() - side) / 2.0, (size.height() - side) / 2.0, side, side));
        return pixmap;
    }

    QString m_name;
    Meaning m_meaning;
};

QIcon tinted(const QString& name, Meaning meaning = Meaning::Plain)
{
    return QIcon(new TintedIcon(name, meaning));
}

struct StateRow
{
    State state;
    const char16_t* file;
    Meaning meaning;
};

constexpr std::array<StateRow, 16> states = {{
    {State::Done, u"state-done", Meaning::Good},
    {State::Here, u"state-here", Meaning::Plain},
    {State::Attention, u"state-attention", Meaning::Caution},
    {State::Nothing, u"state-nothing", Meaning::Plain},
    {State::New, u"state-new", Meaning::Good},
    {State::Replaces, u"state-replaces", Meaning::Caution},
    {State::Same, u"state-same", Meaning::Plain},
    {State::Skipped, u"state-skipped", Meaning::Plain},
    {State::Problem, u"state-problem", Meaning::Bad},
    {State::Whole, u"state-whole", Meaning::Good},
    {State::Changed, u"state-changed", Meaning::Caution},
    {State::Missing, u"state-missing", Meaning::Bad},
    {State::TrashCan, u"state-trash-can", Meaning::Bad},
    {State::Own, u"vantrel", Meaning::Plain},
    {State::Simulator, u"state-simulator", Meaning::Plain},
    {State::Cabinet, u"cabinet", Meaning::Plain},
}};
static_assert(states.size() == static_cast<size_t>(State::Cabinet) + 1);

constexpr std::array<const char16_t*, 13> kinds = {u"kind-folder",
                                                   u"kind-file",
                                                   u"kind-archive",
                                                   u"kind-configuration",
                                                   u"kind-document",
                                                   u"kind-picture",
                                                   u"kind-sound",
                                                   u"kind-model",
                                                   u"kind-gauge",
                                                   u"kind-program",
                                                   u"kind-scenery",
                                                   u"kind-movie",
                                                   u"kind-flight"};
static_assert(kinds.size() == static_cast<size_t>(Kind::Flight) + 1);

} // namespace

QIcon command(const QString& name)
{
    return tinted(name);
}

QIcon state(State state)
{
    const StateRow& row = states[static_cast<size_t>(state)];
    return tinted(QString::fromUtf16(row.file), row.meaning);
}

QIcon kind(Kind kind)
{
    return tinted(QString::fromUtf16(kinds[static_cast<size_t>(kind)]));
}

QIcon program()
{
    return tinted(u"vantrel"_s); // holds neither of the two tones
}

QColor stateColour(State state)
{
    return colourOf(states[static_cast<size_t>(state)].meaning);
}

} // namespace vt::icons
