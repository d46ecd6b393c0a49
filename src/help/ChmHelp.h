#pragma once

#include <functional>
#include <memory>
#include <QHash>
#include <QObject>
#include <QTimer>

#include "help/IHelpSource.h"

class QSocketNotifier;

namespace help {

/// A compiled help file (.chm) that has been read into memory.
class ChmHelp final : public IHelpSource {
public:
    using Files = QHash<QString, QByteArray>;  // by their paths in small letters

    /// `files` as ChmReader delivers them. `name` stands in for a missing title.
    ChmHelp(Files files, const QString& name);

    [[nodiscard]] QString Title() const override { return title_; }
    [[nodiscard]] QString HomePage() const override { return homePage_; }
    [[nodiscard]] QString TopicPage(int topic) const override;
    [[nodiscard]] QList<ContentsEntry> Contents() const override { return contents_; }
    [[nodiscard]] QStringList Pages() const override;
    [[nodiscard]] QList<IndexEntry> Index() const override { return {}; }
    [[nodiscard]] std::optional<QByteArray> Read(const QString& path) const override;
    [[nodiscard]] bool IsBuiltIn() const override { return false; }

private:
    Files files_;
    QHash<quint32, QString> topics_;
    QList<ContentsEntry> contents_;
    QString title_;
    QString homePage_;
};

/// Reads a compiled help file in the background.
///
/// The library that unpacks such files is old and trusts them. It therefore runs in a child
/// process of this program that has limits on time and memory and whose only way out is a pipe;
/// when a file makes it crash or hang, the file cannot be read, and that is all. What comes out of
/// the pipe is limited and checked as well. Being destroyed ends the child.
class ChmReader final : public QObject {
    Q_OBJECT
public:
    /// Gets null when the file cannot be read. Called once, from the event loop.
    using Finished = std::function<void(std::unique_ptr<ChmHelp>)>;

    /// `path` is native.
    ChmReader(const QString& path, Finished finished, QObject* parent = nullptr);
    ~ChmReader() override;

private:
    void Receive();
    [[nodiscard]] bool Unpack();
    void End(bool readable);

    QString name_;
    Finished finished_;
    QSocketNotifier* notifier_ = nullptr;
    QTimer deadline_;
    int pipe_ = -1;
    qint64 child_ = -1;
    QByteArray received_;
    qsizetype unpacked_ = 0;  // bytes of received_
    qint64 total_ = 0;
    ChmHelp::Files files_;
};

}  // namespace help
