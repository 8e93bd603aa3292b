// Runs the real vantrelctl in a small world of its own: home, program folder and simulator below a
// temporary folder, no terminal, none of the user's own environment.
#pragma once

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace vt::test {

struct Ran
{
    int status = -1;
    QByteArray out;
    QByteArray err;

    [[nodiscard]] QJsonObject object() const { return QJsonDocument::fromJson(out).object(); }
};

struct CliFixture
{
    CliFixture()
    {
        environment.insert(QStringLiteral("HOME"), dir.path());
        environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
        environment.insert(QStringLiteral("PATH"), QStringLiteral("/usr/bin:/bin"));
        environment.insert(QStringLiteral("VANTREL_HOME"), dir.filePath(QStringLiteral("home")));
    }

    void start(QProcess& process, const QStringList& arguments) const
    {
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(dir.path());
        process.start(QStringLiteral(VT_BIN "/vantrelctl"), arguments);
        QVERIFY(process.waitForStarted());
    }

    [[nodiscard]] Ran run(const QStringList& arguments) const
    {
        QProcess process;
        start(process, arguments);
        process.closeWriteChannel();
        if (!process.waitForFinished(20'000)) {
            process.kill();
            process.waitForFinished();
            return {};
        }
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
                process.readAllStandardOutput(),
                process.readAllStandardError()};
    }

    void write(const QString& path, const QByteArray& bytes = "x") const
    {
        const QString host = dir.filePath(path);
        QDir().mkpath(QFileInfo(host).path());
        QFile file(host);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    [[nodiscard]] QByteArray read(const QString& path) const
    {
        QFile file(dir.filePath(path));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    [[nodiscard]] bool exists(const QString& path) const
    {
        return QFile::exists(dir.filePath(path));
    }

    /// What a valid simulator needs at the least, at "sim".
    void makeSimulator() const
    {
        write(QStringLiteral("sim/fsx.exe"));
        QDir(dir.path()).mkpath(QStringLiteral("sim/ShadersHLSL"));
        QDir(dir.path()).mkpath(QStringLiteral("sim/Missions"));
    }

    /// The folder as a Windows text, through drive Z:.
    [[nodiscard]] QString windows(const QString& path) const
    {
        return QStringLiteral("Z:") + dir.filePath(path).replace(u'/', u'\\');
    }

    QTemporaryDir dir;
    QProcessEnvironment environment;
};

} // namespace vt::test
