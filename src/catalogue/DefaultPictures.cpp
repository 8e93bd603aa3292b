#include "catalogue/DefaultPictures.h"

#include "addondb/Pictures.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "simconfig/CSceneryCfgMgr.h"
#include "simconfig/ConfigFacts.h"
#include "simconfig/StockContent.h"

#include <functional>

using namespace Qt::StringLiterals;

namespace vt::defaultpictures {

namespace {

constexpr qint64 pictureLimit = 64LL * 1024 * 1024;

/// Something of the simulator's own that shows a picture.
struct Item
{
    std::optional<ItemTable> table; ///< none: scenery
    QString path;                   ///< configuration file, or the folder of scenery
    QString section;
    std::function<QString()> picture; ///< full path of the file to make one of, or empty
};

class Work
{
public:
    Work(Context& context, Connection& database, const Catalogue& catalogue)
        : m_context(context), m_database(database), m_catalogue(catalogue)
    {}

    [[nodiscard]] QList<Item> panels() const;
    [[nodiscard]] QList<Item> aircraft() const;
    [[nodiscard]] QList<Item> scenery(QStringList& problems) const;

    void assign(const Item& item, Outcome& outcome);
    void clear(const Item& item, Outcome& outcome);
    /// Says \a text, and how far it is; until the user stops it.
    void each(const QList<Item>& items,
              const QString& text,
              void (Work::*step)(const Item&, Outcome&),
              Outcome& outcome);

private:
    [[nodiscard]] bool isOwn(ConfigIndex config) const
    {
        return stockcontent::isOriginal(&m_database, m_context.global, m_catalogue.file(config));
    }

    [[nodiscard]] QString thumbnail(const Item& item) const
    {
        return item.table ? pictures::itemThumbnail(m_context.global, item.path, item.section)
                          : pictures::sceneryThumbnail(m_context.global, item.path);
    }

    [[nodiscard]] QString texturePicture(quint32 variation) const;
    [[nodiscard]] QString panelPicture(ConfigIndex panel) const;
    [[nodiscard]] QString folderPicture(const QString& folder) const;

    Context& m_context;
    Connection& m_database;
    const Catalogue& m_catalogue;
};

/// Whether a file in a folder is the picture of what lies there.
bool showsFolder(QStringView name)
{
    for (const QStringView stem : {u"thumbnail.", u"preview.", u"picture."})
        for (const QStringView form : {u"jpg", u"png", u"bmp"})
            if (equalNoCase(name, stem.toString() + form.toString()))
                return true;
    return false;
}

QString Work::folderPicture(const QString& folder) const
{
    for (const FileInfo& file : m_context.services.files.list(folder))
        if (!file.folder && showsFolder(file.name))
            return folder + file.name;
    return {};
}

/// An aircraft without a texture of its own shows the common one.
QString Work::texturePicture(quint32 variation) const
{
    const CatalogueVariation one = m_catalogue.variation(variation);
    const QString folder = m_catalogue.folder(one.config);
    if (!one.texture.isEmpty())
        if (QString own = folderPicture(folder + u"texture."_s + one.texture.toString() + u'\\');
            !own.isEmpty())
            return own;
    return folderPicture(folder + u"texture\\"_s);
}

/// The panel's first bitmap that is there, else the picture of an aircraft that has this panel.
QString Work::panelPicture(ConfigIndex panel) const
{
    const QString folder = winpath::parent(m_catalogue.file(panel));
    for (const Catalogue::Named& named : m_catalogue.named(panel)) {
        const QString file = folder + configfacts::bitmapOf(named.name);
        if (named.kind == catalogue::RefKind::Bitmap && m_context.services.files.isFile(file))
            return file;
    }
    for (const quint32 user : m_catalogue.usersOf(panel))
        if (QString shown = texturePicture(user); !shown.isEmpty())
            return shown;
    return {};
}

QList<Item> Work::panels() const
{
    QList<Item> items;
    for (const ConfigIndex panel : m_catalogue.configs(Catalogue::Kind::Panel))
        if (m_catalogue.alias(panel).isEmpty() && isOwn(panel))
            items.append({ItemTable::Panel, m_catalogue.file(panel), {}, [this, panel] {
                              return panelPicture(panel);
                          }});
    return items;
}

QList<Item> Work::aircraft() const
{
    QList<Item> items;
    for (quint32 i = 0; i < m_catalogue.variationCount(); ++i) {
        const CatalogueVariation one = m_catalogue.variation(i);
        if (one.addonKey == 0 && isOwn(one.config))
            items.append({ItemTable::Aircraft,
                          m_catalogue.file(one.config),
                          one.section.toString(),
                          [this, i] { return texturePicture(i); }});
    }
    return items;
}

QList<Item> Work::scenery(QStringList& problems) const
{
    const GlobalRecord& global = m_context.global;
    CSceneryCfgMgr library(
        ConfigAccess(m_context.services), global.sceneryCfgFile, global.simulatorFolder);
    if (const Result loaded = library.SceneryCfg_Load(); !loaded) {
        problems.append(loaded.text);
        return {};
    }
    QList<Item> items;
    for (const CSceneryCfgItem& area : library.areas()) {
        if (area.sLocal.isEmpty())
            continue;
        const QString folder = winpath::asFolder(
            winpath::isAbsolute(area.sLocal) ? area.sLocal
                                             : winpath::join(global.simulatorFolder, area.sLocal));
        if (stockcontent::isStockScenery(global, folder))
            items.append({{}, folder, {}, [this, folder] { return folderPicture(folder); }});
    }
    return items;
}

void Work::assign(const Item& item, Outcome& outcome)
{
    const Files& files = m_context.services.files;
    if (files.isFile(thumbnail(item))) {
        ++outcome.kept;
        return;
    }
    const QString file = item.picture();
    if (file.isEmpty()) {
        ++outcome.without;
        return;
    }
    const auto store = [&]() -> Result {
        const ResultOf<QByteArray> picture = files.read(file, pictureLimit);
        if (!picture)
            return picture.error();
        using pictures::Chosen;
        return item.table ? pictures::storeItemThumbnail(m_context,
                                                         m_database,
                                                         *item.table,
                                                         item.path,
                                                         item.section,
                                                         *picture,
                                                         file,
                                                         Chosen::ByDefault)
                          : pictures::storeSceneryThumbnail(
                                m_context, item.path, *picture, file, Chosen::ByDefault);
    };
    if (const Result stored = store(); stored)
        ++outcome.changed;
    else
        outcome.problems.append(stored.text);
}

void Work::clear(const Item& item, Outcome& outcome)
{
    const QString path = thumbnail(item);
    const Files& files = m_context.services.files;
    if (path.isEmpty() || !files.isFile(path))
        return;
    const ResultOf<QByteArray> jpeg = files.read(path, pictureLimit);
    if (jpeg && !pictures::isDefault(*jpeg)) {
        ++outcome.kept;
        return;
    }
    const Result cleared = jpeg ? pictures::clearThumbnail(m_context, path) : jpeg.error();
    if (cleared)
        ++outcome.changed;
    else
        outcome.problems.append(cleared.text);
}

void Work::each(const QList<Item>& items,
                const QString& text,
                void (Work::*step)(const Item&, Outcome&),
                Outcome& outcome)
{
    StatusSink& status = m_context.services.status;
    if (outcome.stopped)
        return;
    status.text(u"Primary"_s, text);
    for (qsizetype i = 0; i < items.size(); ++i) {
        status.progress(i, items.size());
        if (status.cancelled()) {
            outcome.stopped = true;
            return;
        }
        (this->*step)(items[i], outcome);
    }
    status.progress(items.size(), items.size());
}

} // namespace

QString Outcome::assignedText() const
{
    QString text =
        countText(changed, u"default picture was"_s, u"default pictures were"_s) + u" assigned"_s;
    if (kept > 0)
        text += u"; "_s + countText(kept, u"picture was"_s, u"pictures were"_s) +
                u" there before and stayed"_s;
    if (without > 0)
        text += u"; for "_s + countText(without, u"item"_s, u"items"_s) +
                u" the simulator has no picture"_s;
    return text + u'.';
}

QString Outcome::clearedText() const
{
    QString text =
        countText(changed, u"default picture was"_s, u"default pictures were"_s) + u" cleared"_s;
    if (kept > 0)
        text += u"; "_s + countText(kept, u"picture"_s, u"pictures"_s) +
                u" of your own choice stayed"_s;
    return text + u'.';
}

Prompt confirmReload(const DisplayNames& names)
{
    return yesNo(
        names.productTitle,
        u"This action will assign default pictures to the "_s + u"aircraft, panels and scenery"_s +
            u" that shipped with "_s + names.simLong +
            u". Pictures already assigned to them will not be changed. Pictures assigned to third-party addons will not be affected."_s +
            u"\nAre you sure you want to reload default addon pictures?"_s,
        Button::No);
}

Outcome assign(Context& context, Connection& database, const Catalogue& catalogue)
{
    Work work(context, database, catalogue);
    Outcome outcome;
    work.each(work.panels(), u"Assigning default pictures to panels..."_s, &Work::assign, outcome);
    work.each(
        work.aircraft(), u"Assigning default pictures to aircraft..."_s, &Work::assign, outcome);
    work.each(work.scenery(outcome.problems),
              u"Assigning default pictures to scenery..."_s,
              &Work::assign,
              outcome);
    return outcome;
}

Outcome clear(Context& context, Connection& database, const Catalogue& catalogue)
{
    Work work(context, database, catalogue);
    Outcome outcome;
    const QList<Item> all = work.panels() + work.aircraft() + work.scenery(outcome.problems);
    work.each(all, u"Clearing default pictures..."_s, &Work::clear, outcome);
    return outcome;
}

} // namespace vt::defaultpictures
