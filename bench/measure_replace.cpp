// What find and replace over a project takes: reading it, searching it, asking what stands against
// a replacement in every place, each with the longest portion for which the window stands still.
//
//   measure_replace FILE

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "replace/Hits.h"

namespace {

template <typename Body>
double Milliseconds(Body body) {
    const auto begin = std::chrono::steady_clock::now();
    body();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin)
        .count();
}

/// Runs portions until there is none left.
template <typename Portion>
void Report(const char* what, Portion portion) {
    double longest = 0;
    const double all = Milliseconds([&] {
        for (bool more = true; more;) {
            longest = std::max(longest, Milliseconds([&] { more = portion(); }));
        }
    });
    std::printf("%-10s %8.1f ms, longest portion %.1f ms\n", what, all, longest);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    constexpr int kPortion = 12;  // milliseconds, as the window takes
    try {
        ado::Connection connection;
        connection.Open(std::string("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=") + argv[1]);
        replace::ProjectFields fields;
        Report("read", [&] {
            fields.Read(connection);
            return false;
        });
        replace::Hits hits(fields);
        for (const QString& text : {QStringLiteral("nothing there"), QStringLiteral("(\\d+)$")}) {
            hits.Search({.text = text, .isExpression = true}, replace::kAllKinds);
            Report("search", [&] { return hits.SearchOn(QDeadlineTimer(kPortion)); });
            hits.SetReplacement(QStringLiteral("x\\1"));
            Report("check", [&] { return hits.CheckOn(connection, QDeadlineTimer(kPortion)); });
            hits.SetReplacement(std::nullopt);
            std::printf("%zu of %zu fields\n", hits.Count(), fields.Fields().size());
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
