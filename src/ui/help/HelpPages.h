#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <string_view>

class QObject;

namespace mirovane {

/// The manual's page on a thing of the windows, by the object name of the thing or of what it is part of;
/// the first page when none is about it. "live-stat.html".
QString helpPageOf(const QObject* thing);

/// The same for a command of the main window.
QString helpPageOfCommand(std::string_view command);

/// Every page that one of the two may name.
QStringList helpPages();

/// Where a page is among these folders; nothing when none has it.
std::optional<QString> findManualPage(const QString& page, const QStringList& folders);

/// Where the manual is looked for: installed, then in the tree of a program that was not installed.
QStringList manualFolders();

} // namespace mirovane
