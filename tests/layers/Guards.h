// Rules about the source tree itself, as functions over texts, so that they can be tried on made-up
// files too. Each gives one line a fault ("src/x/y.cpp:12: why"); an empty list is good.
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

namespace vt::test {

/// Path relative to the project root ("src/a/b.cpp") to the file's text.
using SourceTexts = QMap<QString, QString>;

/// Files below \a folders of \a root whose names end in one of \a endings.
[[nodiscard]] SourceTexts
readSources(const QString& root, const QStringList& folders, const QStringList& endings);

/// Includes of src/ that go against the arrows between its folders, lack their folder, or stand in
/// a folder that the table does not know.
[[nodiscard]] QStringList wrongIncludes(const SourceTexts& sources);

/// .cpp files that no CMakeLists.txt (or .cmake file) of \a buildFiles lists.
[[nodiscard]] QStringList unlistedSources(const SourceTexts& sources,
                                          const SourceTexts& buildFiles);

/// Slots "x_data()" whose file has no slot "x()", and tests that skip themselves.
[[nodiscard]] QStringList deadTests(const SourceTexts& tests);

} // namespace vt::test
