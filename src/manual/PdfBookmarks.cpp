#include "manual/PdfBookmarks.h"

#include <QFile>
#include <QRegularExpression>
#include <stdexcept>

namespace manual {

using namespace Qt::Literals::StringLiterals;

namespace {

/// What an update of a file has to know of it.
struct Form {
    int catalog = 0;     // numbers of objects
    int pagesRoot = 0;   //
    int info = 0;        //
    int free = 0;        // the first number that none has
    qint64 table = 0;    // where the table of objects begins
    QList<int> pages{};  // in their order
};

QByteArray Found(const QByteArray& pdf, const char* pattern, qsizetype from) {
    // Numbers and names are ASCII; the rest is not looked at.
    const QRegularExpressionMatch match =
        QRegularExpression(QLatin1StringView(pattern)).match(QString::fromLatin1(pdf.mid(from)));
    return match.captured(1).toLatin1();
}

Form FormOf(const QByteArray& pdf) {
    const qsizetype trailer = pdf.lastIndexOf("trailer");
    const qsizetype catalog = pdf.indexOf("/Type /Catalog");
    const qsizetype pages = pdf.indexOf("/Type /Pages");
    if (trailer < 0 || catalog < 0 || pages < 0) throw std::runtime_error("no PDF of Qt's form");
    Form form;
    form.catalog = Found(pdf, "/Root (\\d+) 0 R", trailer).toInt();
    form.info = Found(pdf, "/Info (\\d+) 0 R", trailer).toInt();
    form.free = Found(pdf, "/Size (\\d+)", trailer).toInt();
    form.table = Found(pdf, "startxref\\s+(\\d+)", trailer).toLongLong();
    form.pagesRoot = Found(pdf.mid(catalog, 100), "/Pages (\\d+) 0 R", 0).toInt();
    const qsizetype kids = pdf.indexOf("[", pages);
    const QList<QByteArray> words =
        pdf.mid(kids + 1, pdf.indexOf("]", kids) - kids - 1).simplified().split(' ');
    for (qsizetype i = 0; i + 2 < words.size(); i += 3) form.pages += words[i].toInt();
    return form;
}

/// A text of a PDF in hexadecimal UTF-16.
QByteArray PdfText(const QString& text) {
    QByteArray hex = "<FEFF";
    for (const QChar c : text) {
        hex += QByteArray::number(c.unicode(), 16).rightJustified(4, '0').toUpper();
    }
    return hex + '>';
}

/// The neighbour of a bookmark on its level, going by `step`; -1 when there is none.
qsizetype Neighbour(const QList<Bookmark>& bookmarks, qsizetype at, int step) {
    const int level = bookmarks[at].level;
    for (qsizetype i = at + step; i >= 0 && i < bookmarks.size(); i += step) {
        if (bookmarks[i].level < level) break;
        if (bookmarks[i].level == level) return i;
    }
    return -1;
}

/// Objects, numbered from the first free one: the root of the bookmarks, then each of them.
class Outline {
public:
    Outline(const Form& form, const QList<Bookmark>& bookmarks)
        : form_(form), bookmarks_(bookmarks) {}

    [[nodiscard]] QByteArray Root() const {
        qsizetype last = bookmarks_.size() - 1;
        while (bookmarks_[last].level > 0) --last;
        return "<< /Type /Outlines" + Named("First", 0) + Named("Last", last) + " /Count " +
               QByteArray::number(bookmarks_.size()) + " >>";
    }

    [[nodiscard]] QByteArray Item(qsizetype at) const {
        const Bookmark& bookmark = bookmarks_[at];
        qsizetype parent = -1;
        for (qsizetype i = at; bookmark.level > 0 && parent < 0; --i) {
            if (bookmarks_[i].level == 0) parent = i;
        }
        QByteArray item = "<< /Title " + PdfText(bookmark.title) + Named("Parent", parent);
        for (const auto& [name, step] : {std::pair("Prev", -1), std::pair("Next", 1)}) {
            const qsizetype other = Neighbour(bookmarks_, at, step);
            if (other >= 0) item += Named(name, other);
        }
        qsizetype end = at + 1;
        while (end < bookmarks_.size() && bookmarks_[end].level > bookmark.level) ++end;
        if (end > at + 1) {
            item += Named("First", at + 1) + Named("Last", end - 1) + " /Count " +
                    QByteArray::number(end - at - 1);
        }
        return item + " /Dest [" + QByteArray::number(form_.pages.at(bookmark.page)) +
               " 0 R /XYZ null null null] >>";
    }

private:
    /// A reference to a bookmark; -1: to the root.
    [[nodiscard]] QByteArray Named(const char* name, qsizetype at) const {
        return QByteArray(" /") + name + ' ' + QByteArray::number(form_.free + 1 + at) + " 0 R";
    }

    const Form& form_;
    const QList<Bookmark>& bookmarks_;
};

}  // namespace

void AddBookmarks(const QString& file, const QList<Bookmark>& bookmarks) {
    QFile pdf(file);
    if (!pdf.open(QIODevice::ReadWrite)) {
        throw std::runtime_error((file + u": "_s + pdf.errorString()).toStdString());
    }
    const Form form = FormOf(pdf.readAll());
    if (bookmarks.isEmpty()) return;
    const Outline outline(form, bookmarks);
    const qint64 begin = pdf.size();
    QByteArray update = "\n";
    QByteArray table;
    const auto add = [&](int number, const QByteArray& object) {
        table += QByteArray::number(begin + update.size()).rightJustified(10, '0') + " 00000 n \n";
        update += QByteArray::number(number) + " 0 obj\n" + object + "\nendobj\n";
    };
    add(form.catalog, "<< /Type /Catalog /Pages " + QByteArray::number(form.pagesRoot) +
                          " 0 R /PageMode /UseOutlines /Outlines " + QByteArray::number(form.free) +
                          " 0 R >>");
    const qsizetype own = table.size();
    add(form.free, outline.Root());
    for (qsizetype i = 0; i < bookmarks.size(); ++i) {
        add(form.free + 1 + static_cast<int>(i), outline.Item(i));
    }
    const QByteArray count = QByteArray::number(bookmarks.size() + 1);
    const qint64 start = begin + update.size();
    update += "xref\n" + QByteArray::number(form.catalog) + " 1\n" + table.left(own) +
              QByteArray::number(form.free) + ' ' + count + '\n' + table.mid(own) +
              "trailer\n<< /Size " + QByteArray::number(form.free + 1 + bookmarks.size()) +
              " /Info " + QByteArray::number(form.info) + " 0 R /Root " +
              QByteArray::number(form.catalog) + " 0 R /Prev " + QByteArray::number(form.table) +
              " >>\nstartxref\n" + QByteArray::number(start) + "\n%%EOF\n";
    if (pdf.write(update) != update.size() || !pdf.flush()) {
        throw std::runtime_error((file + u": "_s + pdf.errorString()).toStdString());
    }
}

}  // namespace manual
