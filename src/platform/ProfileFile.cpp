#include "platform/ProfileFile.h"

#include <algorithm>
#include <QFile>
#include <QFileInfo>

#include "paths/NativePath.h"
#include "platform/detail/ProfileText.h"
#include "platform/detail/WholeFile.h"
#include "platform/Error.h"

namespace platform {
namespace {

using namespace Qt::Literals::StringLiterals;

constexpr qint64 kHeadSize = 512;  // bytes

bool IsUsableName(const QString& name, QStringView forbidden, QStringView forbiddenInFront) {
    return !name.isEmpty() && name == name.trimmed() && !forbiddenInFront.contains(name.front()) &&
           std::none_of(name.begin(), name.end(), [&](QChar c) {
               return c == u'\n' || c == u'\r' || c == QChar(0) || forbidden.contains(c);
           });
}

void RequireUsable(bool usable, const QString& name) {
    if (usable) return;
    throw Error(ErrorNumber::kInvalidArgument,
                u"The name '%1' cannot stand in a profile file."_s.arg(name));
}

/// A project database, whose name is at hand where its options are asked for. It may be far too
/// large to be read for nothing, and must never be taken for text and written.
bool IsBinary(const QString& file) {
    QFile source(file);
    if (!QFileInfo(file).isFile() || !source.open(QIODevice::ReadOnly)) return false;
    const QByteArray head = source.read(kHeadSize);
    const bool utf16 = head.startsWith("\xFF\xFE") || head.startsWith("\xFE\xFF");
    return !utf16 && head.contains('\0');
}

}  // namespace

struct ProfileFile::Rep {
    QString path;
    ProfileText text;
    bool binary = false;
    bool loaded = false;

    [[nodiscard]] QString NativePath() const {
        return QString::fromStdString(paths::ToNative(path.toStdString()));
    }
    void Load(const QString& file) {
        binary = IsBinary(file);
        text = ProfileText();
        if (!binary) text = ProfileText::Parse(WholeFile::Read(file).value_or(QByteArray()));
        loaded = true;
    }
};

ProfileFile::ProfileFile(const QString& path) : rep_(std::make_unique<Rep>()) {
    rep_->path = path;
}
ProfileFile::~ProfileFile() = default;

bool ProfileFile::IsKey(const QString& key) {
    return IsUsableName(key, u"=", u";[");
}

QString ProfileFile::Read(QStringView section, QStringView key, const QString& fallback) {
    if (!rep_->loaded) rep_->Load(rep_->NativePath());
    return rep_->text.Find(section, key).value_or(fallback);
}

void ProfileFile::Write(const QString& section, const QString& key, const QString& text) {
    Write(section, QList<ProfileEntry>{{key, text}});
}

void ProfileFile::Write(const QString& section, const QList<ProfileEntry>& entries) {
    RequireUsable(IsUsableName(section, u"]", {}), section);
    for (const ProfileEntry& entry : entries) {
        RequireUsable(IsKey(entry.key), entry.key);
    }
    const QString file = rep_->NativePath();
    const WholeFile::Lock lock(file);
    rep_->Load(file);
    if (rep_->binary) {
        throw Error(ErrorNumber::kInvalidArgument,
                    u"The file '%1' cannot be written: it is not a text file."_s.arg(file));
    }
    // What is remembered must not run ahead of the file when writing fails.
    rep_->loaded = false;
    if (rep_->text.Set(section, entries)) WholeFile::Replace(file, rep_->text.Serialize());
    rep_->loaded = true;
}

}  // namespace platform
