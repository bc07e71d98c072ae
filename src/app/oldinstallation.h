#pragma once

#include "foreign/jetcodepage.h"
#include "foreign/jetfile.h"
#include "store/conversion.h"
#include "store/library.h"
#include "ui/messages.h"
#include "ui/progress.h"

#include <QHash>
#include <QStringList>

namespace app {

/// The old databases of a program folder become databases of this program: one question, one progress, one
/// summary for all of them.
class OldInstallation {
public:
    OldInstallation(ui::Messages &messages, ui::Progress &progress, foreign::JetOptions reader = {});

    /// Clears what a conversion that was cut off has left, looks for old files, asks, converts and tells. A
    /// folder without old files brings no message. To be called before the files are opened. Gives the files
    /// that stay as they are although the operator wanted them converted; he has been told why.
    QStringList convert(store::Library &databases);
    /// Old files that convert() has found and left alone: the operator did not want them converted, or the
    /// folder cannot be written to.
    [[nodiscard]] const QList<store::OldFile> &left() const noexcept { return m_left; }

private:
    struct Outcome;
    [[nodiscard]] bool ask(const QList<store::OldFile> &files);
    void run(const QList<store::OldFile> &files, Outcome &outcome);
    void convertOne(const store::OldFile &file, const store::ConversionProgress &progress, Outcome &outcome);
    [[nodiscard]] int chooseCodePage(const QString &path, const foreign::CodePageDoubt &doubt);
    void tell(const Outcome &outcome);

    ui::Messages &m_messages;
    ui::Progress &m_progress;
    foreign::JetOptions m_reader;
    QList<store::OldFile> m_left;
    QHash<QString, int> m_codePages; ///< answers by what was doubted: the same doubt is asked about once
};

} // namespace app
