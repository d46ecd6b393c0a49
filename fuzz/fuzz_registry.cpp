// The bytes of a registry export: a value that is written is read back, and all others stay.
#include <cstdlib>
#include <QString>

#include "platform/detail/RegFile.h"

using namespace Qt::Literals::StringLiterals;
using platform::RegFile;

namespace {

const QString kKey = u"SOFTWARE\\Brantor GmbH\\Korvala\\4.0"_s;

void Require(bool holds) {
    if (!holds) std::abort();
}

QString TextOf(const RegFile& file, QStringView key, QStringView name) {
    const RegFile::Data* data = file.Find(key, name);
    if (data == nullptr) return u"(none)"_s;
    if (const auto* text = std::get_if<QString>(data)) return *text;
    if (const auto* number = std::get_if<std::uint32_t>(data)) return QString::number(*number);
    return u"(other)"_s;
}

}  // namespace

// The fuzzer's own name for its entry point.
// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    RegFile file = RegFile::Parse(bytes);
    Require(bytes.isEmpty() || file.Serialize() == bytes);

    const QString other = TextOf(file, kKey, u"Common");
    const QString problems = QString::number(file.Problems().size());
    const QString text = TextOf(file, kKey, u"") + u"\\\" ü"_s;
    file.Set(kKey, u"LCID", std::uint32_t{1033});
    file.Set(kKey, u"", text);
    for (const RegFile& state : {file, RegFile::Parse(file.Serialize())}) {
        Require(TextOf(state, kKey, u"LCID") == u"1033");
        Require(TextOf(state, kKey, u"") == text);
        Require(TextOf(state, kKey, u"Common") == other);
    }
    return 0;
}
