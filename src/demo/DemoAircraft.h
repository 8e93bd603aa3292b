// The files of a made-up aircraft: configuration, model, panel, sound and textures that refer to
// each other without a gap. The demonstration simulator and the sample add-ons both use it.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace vt {

/// One file to be written: \a path uses "/" (or whatever a sample wants to show), no leading one.
/// A path that ends in "/" is a folder.
struct DemoFile
{
    QString path;
    QByteArray bytes;
};

using DemoFiles = QList<DemoFile>;

struct DemoVariation
{
    QString title;
    QString variation;
    QString texture; ///< folder suffix, empty for the plain "texture" folder
    QString panel = {};
    QString sound = {};
};

struct DemoAircraft
{
    QString folder; ///< where it stands, "SimObjects/Airplanes/Kestrel_K2" or "."
    QString base;   ///< name of flight model, model and pictures, "kestrel_k2"
    QString manufacturer;
    QString type;
    QString role;
    QString gauges; ///< collection in Gauges\ that the panel draws from; empty for a panel alias
    QStringList gaugeNames;
    QString alias;   ///< aircraft whose panel and sound are used, empty when it has its own
    QString effects; ///< beginning of the effects' names, "fx_kestrel"
    QList<DemoVariation> variations;
    bool bareLf = false; ///< configuration files with bare LF ends
    QString author = QStringLiteral("Vantrel Demonstration");
};

/// Everything below the aircraft's folder.
[[nodiscard]] DemoFiles aircraftFiles(const DemoAircraft& aircraft);

/// One "[fltsim.N]" block as text with "\n" ends; \a number as it stands after the point.
[[nodiscard]] QString aircraftSection(const DemoAircraft& aircraft,
                                      const DemoVariation& variation,
                                      const QString& number);

/// Effects "<prefix>_light.fx" and "<prefix>_smoke.fx" below "Effects/" and their textures.
[[nodiscard]] DemoFiles effectFiles(const QString& prefix);

} // namespace vt
