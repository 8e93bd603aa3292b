// The add-on list of 100,000 rows against QStandardItemModel, in turns in one process: filled,
// sorted by name, painted; and filtered at each letter that is typed, until it is painted.
// bench-addonlist prints one line of JSON, in milliseconds: both fillings, and the slowest letter
// of one round until the list is laid out anew, and until it is painted.
#include "shell/forms/ColumnView.h"
#include "ui/AddonTableModel.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QStandardItemModel>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr int rowCount = 100'000;

double elapsed(const QElapsedTimer& timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}

QList<vt::AddonListRow> madeUpRows()
{
    const QStringList words = u"Kestrel Heron Swift Harbour Mill Lake Island Repaint Panel Night "
                              u"Airport Classic Cargo Coast Valley Bridge"_s.split(u' ');
    QRandomGenerator random(11);
    const QDateTime start(QDate(2020, 1, 1), QTime(8, 0));
    QList<vt::AddonListRow> rows;
    rows.reserve(rowCount);
    for (int i = 0; i < rowCount; ++i) {
        const auto word = [&] { return words.at(random.bounded(int(words.size()))); };
        vt::AddonListRow row;
        row.addon.key = i + 1;
        row.addon.name = word() + u' ' + word() + u' ' + QString::number(random.bounded(10'000));
        row.addon.authors = word() + u" Works"_s;
        row.addon.sourceName = u"C:\\Downloads\\"_s + word() + QString::number(i) + u".zip"_s;
        row.addon.description = u"A "_s + word() + u" with "_s + word() + u" and "_s + word();
        row.addon.dateInstalled = start.addSecs(random.bounded(150'000'000));
        row.addon.categories = vt::Categories::fromInt(1 << random.bounded(13));
        row.addon.sourceSize = random.bounded(1'000'000'000);
        row.addon.rating = random.bounded(6);
        row.files = random.bounded(500);
        rows.append(row);
    }
    return rows;
}

/// Lays out and paints, at once.
void paint(QAbstractScrollArea& view)
{
    view.viewport()->repaint();
}

double fillOurs(const QList<vt::AddonListRow>& rows)
{
    vt::AddonTableModel model;
    vt::ColumnView view;
    view.resize(1280, 800);
    view.setModel(&model);
    view.show();
    QApplication::processEvents();
    QElapsedTimer timer;
    timer.start();
    model.setRows(rows);
    view.sortByColumn(int(vt::AddonColumn::AddonName), Qt::AscendingOrder);
    paint(view);
    return elapsed(timer);
}

using Texts = std::vector<std::vector<QString>>;

/// Made before anything is timed.
Texts textsOf(const QList<vt::AddonListRow>& rows)
{
    Texts texts(size_t(rows.size()));
    for (qsizetype row = 0; row < rows.size(); ++row)
        for (int column = 0; column < int(vt::AddonColumn::Count); ++column)
            texts[size_t(row)].push_back(
                rows.at(row).text(static_cast<vt::AddonColumn>(column), row));
    return texts;
}

double fillPeer(const Texts& texts)
{
    const int columns = int(vt::AddonColumn::Count);
    // Never deleted: that takes minutes once the items are sorted, and is not what is measured.
    auto& model = *new QStandardItemModel(0, columns);
    auto& view = *new QTreeView;
    view.resize(1280, 800);
    view.setUniformRowHeights(true);
    view.setRootIsDecorated(false);
    view.setModel(&model);
    view.show();
    QApplication::processEvents();
    QElapsedTimer timer;
    timer.start();
    model.setRowCount(int(texts.size()));
    for (int row = 0; row < int(texts.size()); ++row)
        for (int column = 0; column < columns; ++column)
            model.setItem(row, column, new QStandardItem(texts[size_t(row)][size_t(column)]));
    model.sort(int(vt::AddonColumn::AddonName));
    paint(view);
    return elapsed(timer);
}

/// The slowest of a round, each counted from the letter on.
struct Letter
{
    double laidOut = 0;
    double painted = 0;
};

Letter slowestLetter(const QList<vt::AddonListRow>& rows)
{
    vt::AddonTableModel model;
    vt::ColumnView view;
    view.resize(1280, 800);
    view.setModel(&model);
    view.show();
    QApplication::processEvents();
    model.setRows(rows);
    view.sortByColumn(int(vt::AddonColumn::AddonName), Qt::AscendingOrder);
    paint(view);
    Letter slowest;
    const QString typed = u"kestrel 12"_s;
    std::vector<QString> texts;
    for (qsizetype letters = 1; letters <= typed.size(); ++letters)
        texts.push_back(typed.first(letters));
    for (qsizetype letters = typed.size() - 1; letters >= 0; --letters)
        texts.push_back(typed.first(letters)); // and back again
    for (const QString& text : texts) {
        vt::ListFilter filter;
        filter.search = text;
        QElapsedTimer timer;
        timer.start();
        model.setFilter(filter);
        view.doItemsLayout();
        slowest.laidOut = std::max(slowest.laidOut, elapsed(timer));
        paint(view);
        slowest.painted = std::max(slowest.painted, elapsed(timer));
    }
    return slowest;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QList<vt::AddonListRow> rows = madeUpRows();
    const Texts texts = textsOf(rows);
    const double ours = fillOurs(rows);
    const Letter letter = slowestLetter(rows);
    const double peer = fillPeer(texts);
    std::printf("{\"ours\": %.2f, \"peer\": %.2f, \"letter\": %.2f, \"painted\": %.2f}\n",
                ours,
                peer,
                letter.laidOut,
                letter.painted);
    std::fflush(stdout);
    std::_Exit(0);
}
