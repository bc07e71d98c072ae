#pragma once

#include "foreign/jetfile.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace foreign {

/// How a code page is named to the operator: "Windows-1251", "DOS 866".
[[nodiscard]] QString codePageTitle(int codePage);

/// How well bytes read in a code page look like words: about 0.8 for Russian or Western text read rightly,
/// below 0.3 for a wrong page. Nothing where no text has a character beyond ASCII, or the page is unknown.
[[nodiscard]] std::optional<double> codePageFit(const QList<QByteArray> &texts, int codePage);

/// The first rows of a file as one code page shows them.
struct CodePageSample {
    int codePage = 0;
    QStringList rows; ///< the same rows in every sample; the texts of a row in one line
};

/// The code page that a file's header names may be wrong: the texts fit another one clearly better.
struct CodePageDoubt {
    int headerCodePage = 0;
    QList<CodePageSample> samples; ///< what fits best first; the header's page is among them
};

/// Reads texts of a Jet 3 file until it has enough of them. Nothing where the header's code page fits, also
/// for any Jet 4 file. Throws Error.
[[nodiscard]] std::optional<CodePageDoubt> doubtCodePage(const QString &path, JetOptions options);

} // namespace foreign
