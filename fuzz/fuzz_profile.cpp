// The bytes of a profile file: what is read stays the same after a key has been written, and
// everything else stays as it is, byte for byte.
#include <cstdlib>
#include <QString>

#include "platform/detail/ProfileText.h"
#include "settings/InitValue.h"

using namespace Qt::Literals::StringLiterals;
using platform::ProfileText;

namespace {

const QString kSection = u"FKVARCHIVDBSERVER"_s;
const QString kKey = u"Me.Font.Name"_s;

void Require(bool holds) {
    if (!holds) std::abort();
}

}  // namespace

// The fuzzer's own name for its entry point.
// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    ProfileText text = ProfileText::Parse(bytes);
    Require(text.Serialize() == bytes);

    const std::optional<QString> other = text.Find(kSection, u"Me.Width");
    const std::optional<QString> present = text.Find(kSection, kKey);
    const InitValue value = InitValue::Parse(present.value_or(QString()));
    Require(InitValue::Parse(value.Format()).Format() == value.Format());

    const QString written = present.value_or(u"Arial"_s) + u" '"_s;
    Require(text.Set(kSection, {{kKey, written}}));
    ProfileText again = ProfileText::Parse(text.Serialize());
    Require(again.Find(kSection, u"Me.Width") == other);
    // A NUL cannot stand in a value, and becomes a blank.
    const std::optional<QString> read = again.Find(kSection, kKey);
    Require(read && read->size() == written.size());
    Require(written.contains(QChar(0)) || written.contains(u'\r') || *read == written);
    Require(!again.Set(kSection, {{kKey, written}}));
    return 0;
}
