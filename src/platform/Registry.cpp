#include "platform/Registry.h"

#include <optional>
#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>

#include "platform/detail/RegFile.h"
#include "platform/detail/WholeFile.h"
#include "platform/Error.h"

namespace platform {
namespace {

using namespace Qt::Literals::StringLiterals;

Q_LOGGING_CATEGORY(registryLog, "korvala.registry")

constexpr QStringView kSoftware = u"SOFTWARE\\";
constexpr QStringView kSoftware32 = u"SOFTWARE\\WOW6432Node\\";

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
    QString file;                           // that `content` was read from
    std::optional<WholeFile::State> state;  // of `file` then
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
    std::optional<WholeFile::State> now = WholeFile::StateOf(files.user);
    if (!now) {
        now = WholeFile::StateOf(files.system);
        if (now) wanted = files.system;
    }
    if (loaded && wanted == file && now == state) return;

    RegFile read;
    if (now) read = RegFile::Parse(WholeFile::Read(wanted).value_or(QByteArray()));
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
    const QString target = Files().user;
    const QString folder = QFileInfo(target).absolutePath();
    if (!QDir().mkpath(folder)) {
        throw Error(ErrorNumber::kPathNotUsable,
                    u"The folder '%1' of the registry file cannot be made."_s.arg(folder),
                    {reasons::Cause::PathUnusable, folder.toStdString()});
    }
    const WholeFile::Lock lock(target);
    loaded = false;  // another program may have been faster than the clock of the file system
    Load();
    // A copy: what is remembered must not run ahead of the file when writing fails.
    RegFile changed = content;
    QString place = key.toString();
    if (content.Find(key, valueName) == nullptr && Find(key, valueName) != nullptr) {
        place = kSoftware32.toString() + key.mid(kSoftware.size()).toString();
    }
    changed.Set(place, valueName, data);
    WholeFile::Replace(target, changed.Serialize());
    content = std::move(changed);
    file = target;
    state = WholeFile::StateOf(target);
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

QStringList Registry::Problems() {
    rep_->Load();
    QStringList problems;
    for (const RegFile::Problem& problem : rep_->content.Problems()) {
        problems += u"%1:%2: %3"_s.arg(rep_->file, QString::number(problem.line), problem.text);
    }
    return problems;
}

}  // namespace platform
