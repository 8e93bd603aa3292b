// Windows drive letters over host folders: a prefix's dosdevices links, more by option, Z: = "/"
// always. Lexical only: the case of components is Files' matter.
#pragma once

#include <QMap>
#include <QString>

namespace vt {

class DriveTable
{
public:
    DriveTable();

    /// \a hostFolder absolute; a later call for the same letter wins. Z: cannot be changed.
    void set(QChar letter, const QString& hostFolder);
    /// Host folder of a drive without trailing "/" ("" for the root itself), or a null text.
    [[nodiscard]] QString hostRoot(QChar letter) const;

    /// "C:\a\b" as a host path; null when the text has no known drive. No trailing "/".
    [[nodiscard]] QString toHost(QStringView windowsPath) const;
    /// An absolute host path as a Windows text through the drive whose folder is the longest that
    /// covers it (so Z: at the least). A trailing "/" becomes a trailing "\".
    [[nodiscard]] QString toWindows(const QString& hostPath) const;
    /// What a user typed: a Windows path is normalised, anything else is taken as a host path,
    /// relative ones from \a currentHostFolder.
    [[nodiscard]] QString fromUser(const QString& typed, const QString& currentHostFolder) const;

private:
    QMap<QChar, QString> m_roots;
};

} // namespace vt
