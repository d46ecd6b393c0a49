#include "platform/Registry.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QSaveFile>

#include "platform/detail/RegFile.h"
#include "platform/Error.h"

namespace platform {
namespace {

using namespace Qt::Literals::StringLiterals;

Q_LOGGING_CATEGORY(registryLog, "korvala.registry")

constexpr QStringView kSoftware = u"SOFTWARE\\";
constexpr QStringView kSoftware32 = u"SOFTWARE\\WOW6432Node\\";

[[noreturn]] void Fail(const QString& file, const QString& action, int cause) {
    const int number = cause == EACCES || cause == EPERM     ? ErrorNumber::kPermissionDenied
                       : cause == EISDIR || cause == ENOTDIR ? ErrorNumber::kPathNotUsable
                                                             : ErrorNumber::kDeviceFault;
    throw Error(number, u"The registry file '%1' cannot be %2: %3."_s.arg(
                            file, action, QString::fromLocal8Bit(std::strerror(cause))));
}

/// What tells one state of a file from another. A file that was replaced has another number, one
/// that was written in place another time or size.
struct FileState {
    ino_t number = 0;
    off_t size = 0;
    timespec changed{};

    bool operator==(const FileState& other) const {
        return number == other.number && size == other.size &&
               changed.tv_sec == other.changed.tv_sec && changed.tv_nsec == other.changed.tv_nsec;
    }
};

/// nullopt when there is no such file.
std::optional<FileState> StateOf(const QString& file) {
    struct stat status {};
    if (file.isEmpty()) return std::nullopt;
    if (stat(QFile::encodeName(file).constData(), &status) != 0) {
        if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
        Fail(file, u"read"_s, errno);
    }
    if (!S_ISREG(status.st_mode)) Fail(file, u"read"_s, EISDIR);
    return FileState{status.st_ino, status.st_size, status.st_mtim};
}

std::optional<QString> AsText(const RegFile::Data* data) {
    if (data == nullptr) return std::nullopt;
    if (const auto* text = std::get_if<QString>(data)) return *text;
    if (const auto* number = std::get_if<std::uint32_t>(data)) return QString::number(*number);
    return std::nullopt;
}

std::optional<std::uint32_t> AsNumber(const RegFile::Data* data) {
    if (data == nullptr) return std::nullopt;
    if (const auto* number = std::get_if<std::uint32_t>(data)) return *number;
    if (const auto* text = std::get_if<QString>(data)) {
        bool ok = false;
        const uint number = text->trimmed().toUInt(&ok);
        if (ok) return number;
    }
    return std::nullopt;
}

}  // namespace

RegistryFiles RegistryFiles::FromEnvironment() {
    if (const QString named = qEnvironmentVariable("KV_REGISTRY"); !named.isEmpty()) {
        return {named, {}};
    }
    QString folder = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (folder.isEmpty()) folder = QDir::homePath() + u"/.config"_s;
    return {folder + u"/korvala/machine.reg"_s, u"/etc/korvala/machine.reg"_s};
}

struct Registry::Rep {
    std::optional<RegistryFiles> fixed;
    RegFile content;
    QString file;                    // that `content` was read from
    std::optional<FileState> state;  // of `file` then
    bool loaded = false;

    [[nodiscard]] RegistryFiles Files() const {
        return fixed ? *fixed : RegistryFiles::FromEnvironment();
    }
    void Load();
    [[nodiscard]] const RegFile::Data* Find(QStringView key, QStringView valueName);
    void Write(QStringView key, QStringView valueName, const RegFile::Data& data);
};

void Registry::Rep::Load() {
    const RegistryFiles files = Files();
    QString wanted = files.user;
    std::optional<FileState> now = StateOf(files.user);
    if (!now) {
        now = StateOf(files.system);
        if (now) wanted = files.system;
    }
    if (loaded && wanted == file && now == state) return;

    RegFile read;
    if (now) {
        QFile source(wanted);
        errno = 0;
        if (!source.open(QIODevice::ReadOnly)) Fail(wanted, u"read"_s, errno != 0 ? errno : EIO);
        const QByteArray bytes = source.readAll();
        if (source.error() != QFileDevice::NoError) Fail(wanted, u"read"_s, EIO);
        read = RegFile::Parse(bytes);
    }
    content = std::move(read);
    file = wanted;
    state = now;
    loaded = true;
    for (const RegFile::Problem& problem : content.Problems()) {
        qCWarning(registryLog).noquote() << u"%1:%2: not understood, passed over: %3"_s.arg(
            file, QString::number(problem.line), problem.text.left(200));
    }
}

const RegFile::Data* Registry::Rep::Find(QStringView key, QStringView valueName) {
    Load();
    const RegFile::Data* data = content.Find(key, valueName);
    if (data == nullptr && key.startsWith(kSoftware, Qt::CaseInsensitive)) {
        data =
            content.Find(kSoftware32.toString() + key.mid(kSoftware.size()).toString(), valueName);
    }
    return data;
}

void Registry::Rep::Write(QStringView key, QStringView valueName, const RegFile::Data& data) {
    Load();
    const QString target = Files().user;
    // A copy: what is remembered must not run ahead of the file when writing fails.
    RegFile changed = content;
    QString place = key.toString();
    if (content.Find(key, valueName) == nullptr && Find(key, valueName) != nullptr) {
        place = kSoftware32.toString() + key.mid(kSoftware.size()).toString();
    }
    changed.Set(place, valueName, data);

    const QString folder = QFileInfo(target).absolutePath();
    if (!QDir().mkpath(folder)) {
        throw Error(ErrorNumber::kPathNotUsable,
                    u"The folder '%1' of the registry file cannot be made."_s.arg(folder));
    }
    QSaveFile save(target);
    const QByteArray bytes = changed.Serialize();
    if (!save.open(QIODevice::WriteOnly) || save.write(bytes) != bytes.size() || !save.commit()) {
        throw Error(
            save.error() == QFileDevice::PermissionsError || save.error() == QFileDevice::OpenError
                ? ErrorNumber::kPermissionDenied
                : ErrorNumber::kDeviceFault,
            u"The registry file '%1' cannot be written: %2."_s.arg(target, save.errorString()));
    }
    content = std::move(changed);
    file = target;
    state = StateOf(target);
}

Registry::Registry() : rep_(std::make_unique<Rep>()) {}
Registry::Registry(RegistryFiles files) : Registry() {
    rep_->fixed = std::move(files);
}
Registry::~Registry() = default;

QString Registry::ReadString(QStringView key, QStringView valueName, const QString& fallback) {
    return AsText(rep_->Find(key, valueName)).value_or(fallback);
}

std::uint32_t Registry::ReadDword(QStringView key, QStringView valueName, std::uint32_t fallback) {
    return AsNumber(rep_->Find(key, valueName)).value_or(fallback);
}

void Registry::WriteString(QStringView key, QStringView valueName, const QString& value) {
    rep_->Write(key, valueName, value);
}

void Registry::WriteDword(QStringView key, QStringView valueName, std::uint32_t value) {
    rep_->Write(key, valueName, value);
}

QString Registry::FileInUse() const {
    const RegistryFiles files = rep_->Files();
    if (!QFileInfo::exists(files.user) && QFileInfo::exists(files.system)) return files.system;
    return files.user;
}

QStringList Registry::Problems() {
    rep_->Load();
    QStringList problems;
    for (const RegFile::Problem& problem : rep_->content.Problems()) {
        problems += u"%1:%2: %3"_s.arg(rep_->file, QString::number(problem.line), problem.text);
    }
    return problems;
}

}  // namespace platform
