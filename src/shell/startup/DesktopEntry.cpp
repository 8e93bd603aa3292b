#include "shell/startup/DesktopEntry.h"

#include "platform/Gate.h"
#include "platform/WinPath.h"
#include "shell/Settings.h"
#include "shell/startup/Preparation.h"

using namespace Qt::StringLiterals;

namespace vt::desktopentry {

namespace {

/// An argument of "Exec", quoted; then escaped once more as every text of such a file.
QString quoted(const QString& argument)
{
    QString out;
    for (const QChar c : argument) {
        if (c == u'"' || c == u'`' || c == u'$' || c == u'\\')
            out += u'\\';
        out += c;
        if (c == u'%')
            out += u'%';
    }
    return u'"' + out.replace(u'\\', u"\\\\"_s) + u'"';
}

Result bring(Context& context, const QString& file, const QByteArray& content, bool& changed)
{
    constexpr qint64 limit = 1024 * 1024;
    Services& services = context.services;
    const ResultOf<QByteArray> present = services.files.read(file, limit);
    if (present && *present == content)
        return Result::success();
    changed = true;
    if (Result made = services.actions.makeFolder(winpath::parent(file)); !made)
        return made;
    return services.actions.replace(file, content);
}

Result takeBack(Context& context, const QString& file, bool& changed)
{
    Services& services = context.services;
    if (!services.files.isFile(file))
        return Result::success();
    changed = true;
    return services.actions.remove(file);
}

} // namespace

QByteArray entry(const GlobalRecord& global, const QString& executable)
{
    const QString text = u"[Desktop Entry]\nType=Application\nName="_s + explorerVerb(global) +
                         u"\nComment=Installs an add-on from an archive\nExec="_s +
                         quoted(executable) +
                         u" -file %f\nIcon=vantrel\nTerminal=false\nNoDisplay=true\n"_s +
                         u"StartupWMClass=vantrel\n"_s +
                         u"MimeType=application/zip;application/x-zip-compressed;"_s +
                         u"application/vnd.rar;application/x-rar;application/x-rar-compressed;\n"_s;
    return text.toUtf8();
}

ResultOf<bool> apply(Context& context, const Surroundings& surroundings)
{
    Services& services = context.services;
    const QString data =
        winpath::asFolder(services.files.drives().toWindows(surroundings.dataHome));
    services.gate.setRoot(RootId::Chosen, data);
    const QString file = data + u"applications\\vantrel-install.desktop"_s;
    const QString icon = data + u"icons\\hicolor\\scalable\\apps\\vantrel.svg"_s;
    bool changed = false;
    Result done = Result::success();
    if (context.settings.flag(SettingKey::WindowsExplorerContextMenuOn)) {
        done = bring(context, icon, surroundings.icon, changed);
        if (done)
            done = bring(context, file, entry(context.global, surroundings.executable), changed);
    } else {
        done = takeBack(context, file, changed);
        if (done)
            done = takeBack(context, icon, changed);
    }
    if (!done)
        return done;
    return changed;
}

} // namespace vt::desktopentry
