// What program this is.
#pragma once

#include <QDialog>

namespace vt {

struct DisplayNames;

class frmAbout : public QDialog
{
    Q_OBJECT

public:
    frmAbout(const DisplayNames& names, const QString& version, QWidget* parent = nullptr);
};

} // namespace vt
