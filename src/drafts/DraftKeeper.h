#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <QByteArray>
#include <QObject>
#include <QString>
#include <QTimer>

#include "drafts/Draft.h"

class QLockFile;

namespace drafts {

/// Keeps what is being edited in one project, one edit at a time. The file is written when what has
/// been typed is another than the last time, at most every two seconds, readable by its owner
/// alone, and is there only while something is being edited: an edit that ends sooner leaves no
/// trace on the disk. Several programs may edit the same project, each with a file of its own; one
/// whose program is no more is abandoned. For the thread of the user interface.
class DraftKeeper final : public QObject {
    Q_OBJECT
public:
    /// What the user has changed; empty while there is nothing to lose.
    using Typed = std::function<QList<Field>()>;

    /// `folder` is made when it is needed; `project` names the project's file, in any form that is
    /// always the same.
    DraftKeeper(QString folder, const QString& project, QObject* parent = nullptr);
    /// What has been watched is forgotten.
    ~DraftKeeper() override;

    /// Whether there is a draft of the project, abandoned or not: a look that costs next to
    /// nothing.
    [[nodiscard]] static bool HasFiles(const QString& folder, const QString& project);

    /// Of what is edited next.
    void SetPlace(const Place& place) { place_ = place; }
    /// Asks `typed` now and then until Forget; what was watched before is no more.
    void Watch(Typed typed);
    /// The edit has ended, well or not.
    void Forget();

    /// What another program, or this one, has left when it ended in the middle of an edit; the next
    /// of several. It stays on the disk until Forget, or until Watch has written its own.
    [[nodiscard]] std::optional<Draft> TakeAbandoned();

    /// Hands what has been abandoned on to the dialog in which the user goes on with it.
    void SetResumed(QList<Field> fields) { resumed_ = std::move(fields); }
    [[nodiscard]] QList<Field> TakeResumed() { return std::exchange(resumed_, {}); }

signals:
    /// The file cannot be written; told once for an edit.
    void Failed(const QString& cause);

private:
    void Write();
    [[nodiscard]] bool TakeFile();
    [[nodiscard]] bool Lock(const QString& file);
    void Release();
    void Fail(const QString& cause);

    QString folder_;
    QString stem_;  // of the project's drafts, in the folder
    Place place_;
    Typed typed_;
    QList<Field> resumed_;
    QTimer timer_;
    std::unique_ptr<QLockFile> lock_;
    QString file_;  // that is locked; empty: none
    QByteArray written_;
    bool failed_ = false;
};

}  // namespace drafts
