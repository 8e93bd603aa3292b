// archive list, test, extract, add, delete: archives by themselves, inner ones included. Nothing
// here touches the simulator or the database.
#include "archive/CZIP.h"
#include "cli/Command.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/Context.h"
#include "shell/Settings.h"

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

void prepare(CZIP& zip, World& world, const Arguments& arguments)
{
    zip.sZIPFile = world.userPath(arguments.one(u"FILE"_s));
    zip.boolImbeddedZIPs_Process = true;
    zip.varStatusBar = &world.services().status;
    zip.CProgressBarEx = &world.services().status;
}

/// The end of all but list.
int tell(World& world, const CZIP& zip)
{
    const QJsonObject done{{u"ok"_s, zip.result().ok}, {u"text"_s, zip.resultText()}};
    if (!zip.result().ok)
        return world.fail(zip.result(), done);
    world.json(done);
    world.say(zip.resultText());
    return Done;
}

QStringView kindText(EntryKind kind)
{
    switch (kind) {
    case EntryKind::File:
        return u"file";
    case EntryKind::Folder:
        return u"folder";
    case EntryKind::Link:
        return u"link";
    case EntryKind::Device:
        break;
    }
    return u"device";
}

void writeAttributes(JsonStream& out, const CZIPFileItem& item)
{
    out.beginArray(u"attributes");
    if (item.boolAttribute_Archive)
        out.value(QStringView(u"Archive"));
    if (item.boolAttribute_Directory)
        out.value(QStringView(u"Directory"));
    if (item.boolAttribute_Hidden)
        out.value(QStringView(u"Hidden"));
    if (item.boolAttribute_ReadOnly)
        out.value(QStringView(u"ReadOnly"));
    if (item.boolAttribute_System)
        out.value(QStringView(u"System"));
    if (item.boolAttribute_VolumeLabel)
        out.value(QStringView(u"VolumeLabel"));
    out.endArray();
}

void writeEntry(JsonStream& out, const CZIPFileItem& item)
{
    out.beginObject();
    out.field(u"key", item.lngKey);
    out.field(u"path", item.sPath);
    out.field(u"name", item.sFilename);
    out.field(u"size", item.lngSize_Uncompressed);
    out.field(u"packed", item.lngSize_Compressed);
    out.field(u"ratio", item.intRatio);
    out.field(u"date", item.dteDate.toString(Qt::ISODate));
    out.field(u"time", item.dteTime.toString(Qt::ISODate));
    out.field(u"stored", item.boolMethodStore);
    out.field(u"encrypted", item.boolEncrypted);
    out.field(u"kind", kindText(item.kind));
    writeAttributes(out, item);
    out.endObject();
}

void writeArchive(JsonStream& out, const CZIPFile& file)
{
    out.beginObject();
    out.field(u"archive", file.fullName());
    out.field(u"parent", file.sFolder_Parent + file.sFilename_Parent);
    out.field(u"bytes", file.bytes);
    out.field(u"totalSize", file.lngTotal_SizeUncompressed);
    out.field(u"totalPacked", file.lngTotal_SizeCompressed);
    out.beginArray(u"entries");
    for (const CZIPFileItem& item : file.varZIPItems)
        writeEntry(out, item);
    out.endArray();
    out.endObject();
}

void sayArchive(World& world, const CZIPFile& file)
{
    world.say(file.fullName());
    for (const CZIPFileItem& item : file.varZIPItems) {
        const QString size = QString::number(item.lngSize_Uncompressed).rightJustified(12);
        const QString ratio = (QString::number(item.intRatio) + u'%').rightJustified(5);
        const QString stamp = item.dteDate.isValid() ? item.dteDate.toString(Qt::ISODate) + u' ' +
                                                           item.dteTime.toString(Qt::ISODate)
                                                     : QString(19, u' ');
        const QString remark = item.boolEncrypted               ? u"  (encrypted)"_s
                               : item.kind == EntryKind::Link   ? u"  (link)"_s
                               : item.kind == EntryKind::Device ? u"  (no file)"_s
                               : item.kind == EntryKind::Folder ? u"\\"_s
                                                                : QString();
        world.say(size + ratio + u"  "_s + stamp + u"  "_s + item.fullName() + remark);
    }
    world.say(QString::number(file.lngTotal_SizeUncompressed).rightJustified(12) + u"  "_s +
              countText(file.lngTotal_Items, u"entry"_s, u"entries"_s));
}

int listArchive(World& world, const Arguments& arguments)
{
    CZIP zip(world.services());
    prepare(zip, world, arguments);
    if (!zip.GetItems())
        return world.fail(zip.result());
    if (world.options().json) {
        JsonStream& out = world.out();
        out.beginArray();
        for (const CZIPFile& file : zip.colZIPContents)
            writeArchive(out, file);
        out.endArray();
        return Done;
    }
    const bool summary = arguments.has(u"--summary"_s);
    for (const CZIPFile& file : zip.colZIPContents) {
        if (!summary)
            sayArchive(world, file);
    }
    for (const QString& line : summary ? zip.ZIP_Summary() : QStringList())
        world.say(line);
    for (const QString& remark : zip.remarks())
        world.say(remark);
    return Done;
}

int testArchive(World& world, const Arguments& arguments)
{
    CZIP zip(world.services());
    prepare(zip, world, arguments);
    zip.boolPasswords_Ask = true;
    (void)zip.Test();
    return tell(world, zip);
}

int extractArchive(World& world, const Arguments& arguments)
{
    CZIP zip(world.services());
    prepare(zip, world, arguments);
    zip.sExtract_Folder = world.userRoot(arguments.value(u"--to"_s, u"."_s));
    zip.varItemsToExtract = arguments.all(u"ENTRY"_s);
    zip.boolExtract_All = zip.varItemsToExtract.isEmpty();
    zip.boolExtract_ConfirmOverwrite = true;
    zip.boolPasswords_Ask = true;
    (void)zip.Extract();
    return tell(world, zip);
}

/// For what changes the archive; its folder may be written to from here on.
Result prepareChange(CZIP& zip, World& world, const Arguments& arguments)
{
    prepare(zip, world, arguments);
    zip.boolImbeddedZIPs_Process = false;
    (void)world.userRoot(winpath::parent(zip.sZIPFile));
    return world.needLock();
}

int addToArchive(World& world, const Arguments& arguments)
{
    CZIP zip(world.services());
    if (const Result alone = prepareChange(zip, world, arguments); !alone)
        return world.fail(alone, {{u"ok"_s, false}});
    for (const QString& path : arguments.all(u"PATH"_s))
        zip.varItemsToExtract += world.userPath(path);
    zip.boolAdd_Create = arguments.has(u"--create"_s);
    zip.sAdd_Folder = arguments.value(u"--into"_s);
    zip.typeCompressionLevel = world.context().settings.number(SettingKey::ZipCompressionLevel);
    (void)zip.Add();
    return tell(world, zip);
}

int deleteFromArchive(World& world, const Arguments& arguments)
{
    CZIP zip(world.services());
    if (const Result alone = prepareChange(zip, world, arguments); !alone)
        return world.fail(alone, {{u"ok"_s, false}});
    zip.varItemsToExtract = arguments.all(u"ENTRY"_s);
    zip.boolDelete_AllConfirmed = arguments.has(u"--all"_s);
    (void)zip.Delete();
    return tell(world, zip);
}

} // namespace

std::vector<Command> archiveCommands()
{
    const Positional file{"FILE", "the archive"};
    return {
        {"archive list",
         "entries of an archive and of the archives inside it",
         {file},
         {{"--summary", nullptr, "numbers of the archives instead of their entries"}},
         listArchive},
        {"archive test", "reads every entry and compares the check sums", {file}, {}, testArchive},
        {"archive extract",
         "extracts an archive, or some of its entries",
         {file,
          {"ENTRY",
           "name, folder or pattern with * and ?; inside an inner archive \"inner.zip\\name\"",
           false,
           true}},
         {{"--to", "DIR", "folder to extract to; the current one when not given"}},
         extractArchive},
        {"archive add",
         "adds files, and folders with what they hold, to a ZIP archive",
         {file, {"PATH", "file or folder", true, true}},
         {{"--create", nullptr, "make the archive when it does not exist"},
          {"--into", "FOLDER", "folder inside the archive"}},
         addToArchive},
        {"archive delete",
         "deletes entries from a ZIP archive",
         {file, {"ENTRY", "name, folder or pattern with * and ?", true, true}},
         {{"--all", nullptr, "a pattern may mean every entry"}},
         deleteFromArchive},
    };
}

} // namespace vt::cli
