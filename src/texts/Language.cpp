#include "texts/Language.h"

#include <memory>
#include <optional>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QMetaEnum>
#include <QVariant>

#include "texts/MResourceTable.h"

// Outside of any namespace, as Qt wants it: a static library's resources are not found by
// themselves.
static void InitResources() {
    Q_INIT_RESOURCE(texts);
}

namespace texts {
namespace {

using namespace Qt::Literals::StringLiterals;

Q_LOGGING_CATEGORY(logTexts, "korvala.texts")

// Kept with the application: the host and each add-in have a copy of this library.
constexpr const char* kInterfaceLanguage = "korvalaInterfaceLanguage";

/// The keys of the files: a given number as it is, any other text by its name.
QHash<QString, int> MakeKeys() {
    constexpr qsizetype kPrefix = 5;  // of "kText"
    QHash<QString, int> keys;
    const QMetaObject& names = MResourceTable::staticMetaObject;
    for (int i = 0; i < names.enumeratorCount(); ++i) {
        const QMetaEnum list = names.enumerator(i);
        for (int entry = 0; entry < list.keyCount(); ++entry) {
            const int number = list.value(entry);
            QString key = QString::fromLatin1(list.key(entry));
            if (list.isScoped()) {
                key = QString::fromLatin1(list.name()) + u'.' + key;
            } else {
                key = number <= MResourceTable::kLastGivenNumber ? QString::number(number)
                                                                 : key.mid(kPrefix);
            }
            keys.insert(key, number);
        }
    }
    return keys;
}

const QHash<QString, int>& Keys() {
    static const QHash<QString, int> keys = MakeKeys();
    return keys;
}

/// Null when an escape is none.
std::optional<QString> Unescaped(QStringView text) {
    QString plain;
    plain.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != u'\\') {
            plain += text[i];
            continue;
        }
        constexpr QStringView kLetters = u"nts\\";
        constexpr QStringView kMeant = u"\n\t \\";
        const qsizetype meant = ++i < text.size() ? kLetters.indexOf(text[i]) : -1;
        if (meant < 0) return std::nullopt;
        plain += kMeant[meant];
    }
    return plain;
}

/// What a file says of its language itself; null for another key.
QString* Property(Language& language, QStringView key) {
    if (key == u"name") return &language.name;
    if (key == u"locale") return &language.locale;
    if (key == u"help") return &language.help;
    return nullptr;
}

/// What is wrong with the line; empty when nothing is.
QString ReadLine(QStringView line, const QHash<QString, int>& keys, Language& language) {
    const qsizetype sign = line.indexOf(u'=');
    if (sign < 0) return u"no key and text with = between"_s;
    const QString key = line.left(sign).trimmed().toString();
    const std::optional<QString> text = Unescaped(line.mid(sign + 1).trimmed());
    if (!text) return u"\\ stands only in \\n, \\t, \\s and \\\\"_s;
    if (key == u"language") {
        language.lcid = text->toUInt();
        return language.lcid == 0 ? u"no number of a language"_s : QString();
    }
    if (QString* property = Property(language, key)) {
        *property = *text;
        return {};
    }
    const auto found = keys.find(key);
    if (found == keys.end()) return u"no text is called %1"_s.arg(key);
    if (language.texts.contains(*found)) return u"%1 stands here a second time"_s.arg(key);
    language.texts.insert(*found, *text);
    return {};
}

/// The languages of the process; a pointer to one stays good.
class Known {
public:
    Known() {
        InitResources();
        for (const QString& name : {u":/texts/de.texts"_s, u":/texts/en.texts"_s}) Add(name);
        const QString folder = qEnvironmentVariable("KV_TEXTS");
        if (!folder.isEmpty()) AddFolder(folder);
    }

    [[nodiscard]] const std::vector<const Language*>& All() const noexcept { return all_; }
    [[nodiscard]] const Language* Find(platform::Lcid lcid) const {
        for (const Language* language : all_) {
            if (language->lcid == lcid) return language;
        }
        return nullptr;
    }
    void AddFolder(const QString& folder) {
        const QDir dir(folder);
        for (const QString& name : dir.entryList({u"*.texts"_s}, QDir::Files, QDir::Name)) {
            Add(dir.filePath(name));
        }
    }

private:
    void Add(const QString& path) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            qCWarning(logTexts, "%s: %s", qUtf8Printable(path), qUtf8Printable(file.errorString()));
            return;
        }
        QStringList problems;
        auto language =
            std::make_unique<Language>(ReadLanguage(QString::fromUtf8(file.readAll()), problems));
        for (const QString& problem : problems) {
            qCWarning(logTexts, "%s: %s", qUtf8Printable(path), qUtf8Printable(problem));
        }
        if (language->lcid == 0 || Find(language->lcid) != nullptr) return;
        if (const Language* english = Find(platform::kLcidEnglish)) {
            QHash<int, QString> texts = english->texts;
            texts.insert(language->texts);
            language->texts = std::move(texts);
            if (language->help.isEmpty()) language->help = english->help;
        }
        all_.push_back(language.get());
        owned_.push_back(std::move(language));
    }

    std::vector<std::unique_ptr<const Language>> owned_;
    std::vector<const Language*> all_;
};

Known& KnownLanguages() {
    static Known known;
    return known;
}

}  // namespace

Language ReadLanguage(const QString& content, QStringList& problems) {
    Language language;
    int number = 0;
    for (const QStringView line : QStringView(content).split(u'\n')) {
        ++number;
        const QStringView trimmed = line.trimmed();
        if (trimmed.isEmpty() || trimmed.startsWith(u'#')) continue;
        const QString problem = ReadLine(trimmed, Keys(), language);
        if (!problem.isEmpty()) problems += u"line %1: %2"_s.arg(number).arg(problem);
    }
    if (language.lcid == 0) problems += u"no line says which language it is"_s;
    return language;
}

int NumberOf(const QString& key) {
    return Keys().value(key);
}

const std::vector<const Language*>& Languages() {
    return KnownLanguages().All();
}

const Language* FindLanguage(platform::Lcid lcid) {
    return KnownLanguages().Find(lcid);
}

void AddLanguages(const QString& folder) {
    KnownLanguages().AddFolder(folder);
}

void SetInterfaceLanguage(platform::Lcid lcid) {
    if (qApp != nullptr && FindLanguage(lcid) != nullptr) {
        qApp->setProperty(kInterfaceLanguage, lcid);
    }
}

platform::Lcid InterfaceLanguage() {
    const QVariant set = qApp != nullptr ? qApp->property(kInterfaceLanguage) : QVariant();
    return set.isValid() ? set.toUInt() : platform::kLcidGerman;
}

QString InterfaceText(int number) {
    const Language* language = FindLanguage(InterfaceLanguage());
    if (language == nullptr) language = Languages().front();
    return language->texts.value(number);
}

}  // namespace texts
