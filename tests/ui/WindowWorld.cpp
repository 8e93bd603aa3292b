#include "ui/WindowWorld.h"

#include "demo/SampleAddons.h"
#include "install/CAddonInstaller.h"

using namespace Qt::StringLiterals;

namespace vt::test {

namespace {

void must(const Result& result)
{
    if (!result)
        qFatal("%s", qPrintable(result.text));
}

QString keyTexts(const QList<qint64>& keys)
{
    QString texts;
    for (const qint64 key : keys)
        texts += u' ' + QString::number(key);
    return texts;
}

} // namespace

void RecordingFrame::command(const QString& controlName)
{
    calls.append(u"command "_s + controlName);
    if (controlName == "mnuCloseAll"_L1)
        toolsOpen = 0;
}

void RecordingFrame::installAddon(const QString& source, const InstallationRest& rest)
{
    calls.append(u"installAddon "_s + source +
                 (rest.masterKey == 0 ? QString()
                                      : u" rest of "_s + QString::number(rest.masterKey) + u' ' +
                                            rest.files.join(u", "_s)));
}

void RecordingFrame::removeAddons(const QList<qint64>& masterKeys)
{
    calls.append(u"removeAddons"_s + keyTexts(masterKeys));
}

void RecordingFrame::workWithAddons(const QList<qint64>& masterKeys)
{
    calls.append(u"workWithAddons"_s + keyTexts(masterKeys));
}

void RecordingFrame::showResults(const QString& caption,
                                 const Results& shown,
                                 const AfterResults& afterwards)
{
    calls.append(u"showResults "_s + caption);
    results = shown;
    after = afterwards;
}

void RecordingFrame::startFlying(const QString& file, bool afterChange)
{
    calls.append(u"startFlying "_s + file + (afterChange ? u" after change"_s : QString()));
}

void RecordingFrame::recordsChanged()
{
    calls.append(u"recordsChanged"_s);
}

void RecordingFrame::showHelp(const QString& topic)
{
    calls.append(u"showHelp "_s + topic);
}

void RecordingFrame::beginWork()
{
    ++working;
    ++everBegun;
}

void RecordingFrame::endWork()
{
    --working;
}

WindowWorld::WindowWorld()
{
    const ResultOf<DemoSimulator> written = writeDemoSimulator(host(u"prefix"_s));
    must(written.error());
    demo = *written;
    restart();
}

WindowWorld::~WindowWorld()
{
    if (session)
        session->close();
}

void WindowWorld::restart()
{
    if (session)
        session->close();
    session.reset();
    SessionOptions options;
    options.home = host(u"home"_s);
    options.prefix = host(u"prefix"_s);
    session = std::make_unique<Session>(std::move(options), prompts, status);
    must(session->prepare());
    must(session->needSimulator());
    must(session->needWriting());
}

QString WindowWorld::windows(const QString& relative) const
{
    return session->userPath(host(relative));
}

QString WindowWorld::sample(const QString& name) const
{
    const QString file = name + u".zip"_s;
    writeHostFile(host(file), sampleAddon(name).archive());
    session->services().files.newOperation();
    return windows(file);
}

qint64 WindowWorld::install(const QString& sampleName, const InstallOptions& options)
{
    CAddonInstallationDetails details(context());
    must(details.prepare(sample(sampleName), options));
    CAddonInstaller installer(context(), database(), details);
    if (!installer.Install_Begin())
        must(installer.failure());
    return installer.masterKey();
}

} // namespace vt::test
