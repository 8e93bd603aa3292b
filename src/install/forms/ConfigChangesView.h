// Configuration files that an operation edits, each with the lines that it gains and loses.
#pragma once

#include "simconfig/engine/LineArray.h"

#include <QList>
#include <QWidget>

class QListWidget;
class QPlainTextEdit;

namespace vt {

class ConfigChangesView : public QWidget
{
    Q_OBJECT

public:
    explicit ConfigChangesView(QWidget* parent = nullptr);

    void setChanges(const QList<ConfigChange>& changes);

protected:
    void changeEvent(QEvent* event) override;

private:
    void showChange(int row);

    QList<ConfigChange> m_changes;
    QListWidget* m_files = nullptr;
    QPlainTextEdit* m_lines = nullptr;
};

} // namespace vt
