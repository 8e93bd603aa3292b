// What is known of the selected add-on: picture, description, files with their state, scenery
// areas, aircraft variations. Of several: how much they are together. Shows, and changes nothing.
#pragma once

#include "session/Session.h"
#include "ui/AddonFilesModel.h"
#include "ui/AddonTableModel.h"

#include <QWidget>

class QLabel;
class QPlainTextEdit;
class QPushButton;
class QStandardItemModel;
class QTabWidget;

namespace vt {

class ColumnView;

class AddonDetailsPane : public QWidget
{
    Q_OBJECT

public:
    /// \a session must outlive this.
    explicit AddonDetailsPane(Session& session, QWidget* parent = nullptr);

    void showNothing();
    void showAddon(const AddonListRow& row);
    void showTotals(const AddonTotals& totals);

Q_SIGNALS:
    void editWanted();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* buildFiles();
    QWidget* buildPlain(QStandardItemModel*& model, const QStringList& titles, const QString& name);
    void showPicture(qint64 masterKey);
    void scalePicture();
    void showFacts(const AddonListRow& row);
    void showVariations();
    void showHead(const QString& name, const QString& facts, const QString& description);

    Session& m_session;
    QLabel* m_picture = nullptr;
    QLabel* m_name = nullptr;
    QLabel* m_summary = nullptr;
    QPlainTextEdit* m_description = nullptr;
    QPushButton* m_edit = nullptr;
    QTabWidget* m_tabs = nullptr;
    AddonFilesModel m_files;
    ColumnView* m_filesView = nullptr;
    QStandardItemModel* m_areas = nullptr;
    QStandardItemModel* m_variations = nullptr;
    QPixmap m_wholePicture;
    std::shared_ptr<AddonFacts> m_facts; ///< of the add-on that is shown; null without one
    bool m_variationsShown = false;
};

} // namespace vt
