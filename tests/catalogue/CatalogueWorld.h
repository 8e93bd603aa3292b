// A simulator's folder of a few files, and catalogues over it.
#pragma once

#include "catalogue/Catalogue.h"
#include "engine/ConfigDisk.h"

#include <memory>

namespace vt::test {

struct CatalogueWorld : ConfigDisk
{
    CatalogueWorld()
    {
        global.setProgramFolder(QStringLiteral("C:\\Vantrel\\"));
        global.setSimulatorFolder(QStringLiteral("C:\\FSX\\"));
    }

    /// Below SimObjects/Airplanes.
    void airplane(const QString& relative, const QByteArray& bytes)
    {
        write(QStringLiteral("FSX/SimObjects/Airplanes/") + relative, bytes);
    }

    /// As a process that starts now sees it.
    [[nodiscard]] std::unique_ptr<Catalogue> opened()
    {
        auto catalogue = std::make_unique<Catalogue>(global);
        catalogue->open(services);
        return catalogue;
    }

    /// Without what was saved.
    [[nodiscard]] std::unique_ptr<Catalogue> fresh()
    {
        auto catalogue = std::make_unique<Catalogue>(global);
        catalogue->refresh(files, ansi);
        return catalogue;
    }

    /// Everything that a catalogue says, a line each.
    [[nodiscard]] static QStringList said(const Catalogue& catalogue)
    {
        QStringList lines;
        for (quint32 number = 0; number < catalogue.variationCount(); ++number) {
            const CatalogueVariation one = catalogue.variation(number);
            lines.push_back(catalogue.file(one.config) + QStringLiteral(" [") +
                            one.section.toString() + QStringLiteral("] ") + one.title.toString() +
                            u'|' + one.panel.toString() + u'|' + one.sound.toString() + u'|' +
                            QString::number(one.addonKey));
        }
        for (ConfigIndex config = 0; config < catalogue.configCount(); ++config) {
            if (catalogue.kind(config) == Catalogue::Kind::Watched)
                continue;
            QString line = catalogue.file(config) + QStringLiteral(" alias ") +
                           catalogue.alias(config).toString();
            for (const Catalogue::Named& named : catalogue.named(config))
                line += u' ' + QString::number(int(named.kind)) + u':' + named.name;
            lines.push_back(line);
        }
        for (const CatalogueProblem& problem : catalogue.problems())
            lines.push_back(problem.text);
        return lines;
    }

    GlobalRecord global;
};

inline QByteArray variationText(int number, const QByteArray& title, const QByteArray& more = {})
{
    return "[fltsim." + QByteArray::number(number) + "]\r\ntitle=" + title + "\r\nsim=plane\r\n" +
           more + "\r\n";
}

} // namespace vt::test
