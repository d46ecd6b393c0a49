#pragma once

#include <QString>
#include <variant>

namespace studio {

class StudioRegistry;
class StudioTexts;

/// A project that can be opened.
struct ProjectLocation {
    QString forAddIns;        // as the add-ins get it: a name, or a full path with backslashes
    QString nativePath;       // the project file
    QString remembered;       // for the list of recent projects: a name, or the native path
    QString shown;            // the project's name without folder and extension
    bool isReadOnly = false;  // by the rights to file and folder, its version, or its damage
};

/// Finds out what `project` is - a project file or the name of a registered project - and whether
/// its file is there, can be read and looks like a project database. Otherwise the result is a
/// message for the user. An interrupted change of the file is taken back, nothing else is changed.
[[nodiscard]] std::variant<ProjectLocation, QString> Locate(const QString& project,
                                                            StudioRegistry& registry,
                                                            const StudioTexts& texts);

/// The same project, named so that a program in another working folder finds it.
[[nodiscard]] QString Absolute(const QString& project);

/// True when the file of a recent project is there at present.
[[nodiscard]] bool IsThere(const QString& project, StudioRegistry& registry);

}  // namespace studio
