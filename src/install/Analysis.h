// One run of the analysis over a listed add-on: recognises what its folders are and gives every
// file the place where a pilot would have put it. Works top down over the folders; a folder that is
// recognised is claimed with everything below, what nobody claims is placed by file type.
#pragma once

#include "install/AircraftFacts.h"
#include "install/CAddonInstallationDetails.h"
#include "install/FolderNames.h"
#include "install/SourceTree.h"

#include <QHash>
#include <QSet>
#include <QString>

#include <optional>
#include <vector>

namespace vt {

struct CAddonInstallationDetails::Analysis
{
    /// What a claimed folder is; decides which documents stay in it.
    enum class Kind : quint8
    {
        Free,
        Skip, ///< left-overs of other systems
        Aircraft,
        Panel,
        Sound,
        Texture,
        Scenery,
        SceneryTexture,
        Effects,
        EffectsTexture,
        Gauges,
        GaugeFolder,
        Mission,
        SimFolder,
    };

    struct Claim
    {
        Kind kind = Kind::Free;
        MappedGroup family = MappedGroup::None;
        int group = -1;
        QString target;
        QString area; ///< of a free folder with loose scenery: the area's folder
        int areaGroup = -1;
        bool container = false; ///< a repaint's own folder: its aircraft.cfg is read, not installed
    };

    /// Textures (and what else comes with them) for an aircraft that is not known yet.
    struct Repaint
    {
        int folder = 0;
        std::vector<int> parts; ///< texture*, model*, panel*, sound* folders
        bool loose = false;     ///< the textures lie in the folder itself
        QString givenAircraft;  ///< the aircraft folder that the source's tree names; or empty
        AircraftFacts facts;
        qint32 factsItem = 0;
        int group = -1;
    };

    /// A panel or a sound without an aircraft around it.
    struct LonePart
    {
        int folder = 0;
        MappedGroup family = MappedGroup::Panel;
        int group = -1;
    };

    explicit Analysis(CAddonInstallationDetails& owner);
    void run();

    // Reading and recognising.
    void readConfigurations();
    void walk(int folder);
    bool takeAnchor(int folder);
    [[nodiscard]] bool isAircraft(int folder) const;
    [[nodiscard]] bool isMission(int folder) const;
    [[nodiscard]] bool hasBriefing(int folder) const;
    [[nodiscard]] bool startsItsOwn(int folder) const;
    [[nodiscard]] bool hasStrongAnchorChild(int folder) const;
    [[nodiscard]] bool simulatorHas(const QString& relativeFolder) const;
    [[nodiscard]] QString niceName(int folder) const;

    // Claiming.
    void claimOne(int folder, Kind kind, const QString& target, MappedGroup family, int group);
    void claimTree(int folder, Kind kind, const QString& target, MappedGroup family, int group);
    int newGroup(MappedGroup family, const QString& name, int folder, const QString& target);
    int looseGroup(MappedGroup family);

    void claimSimObjects(int folder);
    void claimTypeFolder(int folder, const QString& target);
    void claimContainer(int folder, const QString& target);
    void claimAircraft(int folder, const QString& target);
    [[nodiscard]] QString aircraftTarget(int folder) const;
    [[nodiscard]] const AircraftFacts* factsOf(int folder) const;
    void claimMission(int folder, const QString& target);
    [[nodiscard]] QString missionTarget(int folder) const;
    void claimMissionsFolder(int folder);
    void claimGauges(int folder);
    bool claimGaugeFolder(int folder);
    void claimPart(int folder, MappedGroup family);

    void claimSceneryAt(int folder);
    bool claimSceneryBranch(int child);
    void claimAddonScenery(int folder);
    [[nodiscard]] QString areaTarget(int folder);
    int areaGroup(int folder, const QString& target);

    bool claimRepaintAt(int folder);
    void addRepaint(Repaint repaint);
    void addLooseTextures();
    void findSections(Repaint& repaint) const;
    [[nodiscard]] bool sectionsIn(int folder, Repaint& repaint) const;
    [[nodiscard]] QString installedWithFlightModel(const Repaint& repaint) const;
    void resolveRepaints();
    void resolveRepaint(Repaint& repaint);
    void placeParts(Repaint& repaint, const QString& aircraft);
    /// Whether the aircraft's own configuration uses a texture folder of this suffix already.
    [[nodiscard]] bool aircraftNames(const InstallationGroup& repaint, const QString& suffix) const;
    void makeVariants(Repaint& repaint, const QHash<int, QString>& suffixes);
    /// A folder below \a aircraft that nobody has yet; the taken one when it gets the same files.
    [[nodiscard]] QString
    freePartName(const QString& aircraft, const QString& wanted, int part, bool* same = nullptr);
    [[nodiscard]] bool holdSameFiles(int a, int b) const;
    [[nodiscard]] int aircraftGroupFor(const Repaint& repaint) const;
    void resolveLoneParts();

    // Placing.
    void placeAll();
    void AddonItem_InstallationFolder_DetermineFromZipFolderEntry(CAddon_Item& item,
                                                                  const Claim& claim,
                                                                  int folder);
    void placeFree(CAddon_Item& item, const Claim& claim, int folder);
    [[nodiscard]] bool staysIn(Kind kind, const CAddon_Item& item) const;
    void put(CAddon_Item& item, const QString& folder, MappedGroup family, int group);
    void putInStorage(CAddon_Item& item);
    void putInStorage(CAddon_Item& item, MappedGroup family);
    void leaveOut(CAddon_Item& item);
    [[nodiscard]] MappedGroup storedFamily(const CAddon_Item& item) const;
    [[nodiscard]] bool goesToAirportEditor(const CAddon_Item& item);
    [[nodiscard]] bool isLeftOver(const CAddon_Item& item) const;
    void nameStorageFolders();
    [[nodiscard]] QString relativePath(int folder, int top) const;
    void spellTargets();

    CAddonInstallationDetails& d;
    const GlobalRecord& global;
    const Files& files;
    CAddon_ItemGroup& addon;
    QHash<qint32, AircraftFacts> cfgFacts; ///< by item key
    std::optional<SourceTree> tree;
    std::vector<Claim> claims;
    std::vector<Repaint> repaints;
    std::vector<LonePart> loneParts;
    QSet<NoCase> areaNames;
    QHash<NoCase, int> partNames; ///< full target folder of an aircraft's part to its source folder
    QSet<qint32> openedArchives;  ///< items whose contents are items themselves
    std::vector<qint32> stored;   ///< positions of items for the add-on's storage
    int loose[mappedGroupCount];
    bool skipBrowserFiles = true;
    bool skipSceneryDat = true;
    std::optional<bool> airportEditor; ///< whether it takes airport files; found out when asked
};

} // namespace vt
