#pragma once

#include <functional>
#include <QString>

class QWidget;

namespace platform {

/// The help file of a program and the way its topics are shown. For the user-interface thread.
class HelpFile {
public:
    /// Shows one topic; false when the file cannot be shown.
    using Viewer = std::function<bool(const QString& path, int topic, QWidget* owner)>;

    HelpFile();

    /// `path` may be a path with backslashes; it is turned into a native one when it is opened.
    void SetPath(const QString& path) { path_ = path; }
    [[nodiscard]] const QString& Path() const noexcept { return path_; }

    /// Without one, the file is handed to the desktop's program for it, which opens its first
    /// page whatever the topic.
    void SetViewer(Viewer viewer);

    /// Shows the topic with the context number `topic`. False when that is not possible; telling
    /// the user is the caller's business.
    [[nodiscard]] bool ShowTopic(int topic, QWidget* owner) const;

private:
    QString path_;
    Viewer viewer_;
};

}  // namespace platform
