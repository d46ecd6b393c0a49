#include <cstdio>
#include <QDir>
#include <QGuiApplication>
#include <QStringList>
#include <stdexcept>

#include "manual/HtmlManual.h"
#include "manual/PdfManual.h"
#include "texts/Language.h"

/// kv_make_manual PICTURES TARGET: writes the manual in every language that has pages, as HTML
/// below TARGET/html and as TARGET/manual-LANGUAGE.pdf, with the pictures of windows from PICTURES.
int main(int argc, char** argv) {
    using namespace Qt::Literals::StringLiterals;
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() != 3) {
        std::fprintf(stderr, "usage: kv_make_manual PICTURES TARGET\n");
        return 2;
    }
    const QString& pictures = arguments[1];
    const QString& target = arguments[2];
    try {
        QList<manual::Manual> manuals;
        for (const quint32 lcid : {platform::kLcidGerman, platform::kLcidEnglish}) {
            manuals += manual::ReadManual(lcid);
        }
        manual::WriteHtml(manuals, pictures, target + u"/html"_s);
        for (const manual::Manual& each : manuals) {
            manual::WritePdf(each, pictures, target + u"/manual-"_s + each.folder + u".pdf"_s);
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "kv_make_manual: %s\n", error.what());
        return 1;
    }
    return 0;
}
