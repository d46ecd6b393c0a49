#include "manual/ManualPages.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>
#include <stdexcept>

#include "help/BuiltInHelp.h"
#include "texts/Language.h"

namespace manual {

using namespace Qt::Literals::StringLiterals;

namespace {

[[noreturn]] void Fail(const QString& file, const QString& cause) {
    throw std::runtime_error((file + u": "_s + cause).toStdString());
}

/// The words between <body> and </body>, with the pictures in the place of their marks.
QString BodyOf(const help::BuiltInHelp& help, const QString& page, const QString& folder) {
    static const QRegularExpression kPicture(u"<!-- picture: (\\S+) \\| (.+?) -->"_s);
    const QString html = QString::fromUtf8(help.Read(page).value_or(QByteArray()));
    const qsizetype begin = html.indexOf(u"<body>"_s);
    const qsizetype end = html.indexOf(u"</body>"_s);
    if (begin < 0 || end < begin) Fail(page, u"no page of the help"_s);
    QString body = html.mid(begin + 6, end - begin - 6);
    body.replace(
        kPicture,
        u"<p class=\"picture\"><img src=\"../pictures/\\1-%1.png\" alt=\"\\2\"/></p>"_s.arg(
            folder));
    return body;
}

}  // namespace

Manual ReadManual(quint32 lcid) {
    const texts::Language* language = texts::FindLanguage(lcid);
    if (language == nullptr) Fail(QString::number(lcid), u"no language of the interface"_s);
    const help::BuiltInHelp help(language->help);
    Manual manual{language->help, QString(language->name).remove(u'&'), lcid, help.Title(), {}, {}};
    for (const help::ContentsEntry& entry : help.Contents()) {
        manual.chapters += {entry.level, entry.title, entry.page.section(u'/', 1),
                            BodyOf(help, entry.page, manual.folder)};
    }
    for (help::IndexEntry entry : help.Index()) {
        entry.page = entry.page.section(u'/', 1);
        manual.index += entry;
    }
    return manual;
}

QByteArray ReadFile(const QString& path, const QString& pictures) {
    const QString kPictures = u"pictures/"_s;
    if (!path.startsWith(kPictures)) {
        const auto bytes = help::BuiltInHelp(u"en"_s).Read(path);
        if (!bytes) Fail(path, u"the help has no such file"_s);
        return *bytes;
    }
    QFile file(pictures + u'/' + path.mid(kPictures.size()));
    if (!file.open(QIODevice::ReadOnly)) Fail(file.fileName(), file.errorString());
    return file.readAll();
}

void WriteFile(const QString& path, const QByteArray& bytes) {
    const QString folder = QFileInfo(path).path();
    if (!QDir().mkpath(folder)) Fail(folder, u"the folder cannot be made"_s);
    QSaveFile file(path);
    // Without flush() the last bytes, which find no room, would be missing and nobody told.
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush() ||
        !file.commit()) {
        Fail(path, file.errorString());
    }
}

}  // namespace manual
