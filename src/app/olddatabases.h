#pragma once

#include "interchange/ui/services.h"
#include "store/conversion.h"

namespace app {

/// Old databases that the operator chooses outside the program folder, for instance a log to be merged.
class OldDatabases final : public interchange::OldDatabases {
public:
    OldDatabases(ui::Messages &messages, ui::Progress &progress, foreign::JetOptions reader = {});

    [[nodiscard]] bool convertTo(const QString &oldFile, const QString &newFile) override;
    [[nodiscard]] bool convertInPlace(const QString &oldFile) override;

private:
    using Convert = std::function<std::optional<store::Conversion>(const store::ConversionOptions &,
                                                                   const store::ConversionProgress &)>;
    [[nodiscard]] bool run(const Convert &convert);

    ui::Messages &m_messages;
    ui::Progress &m_progress;
    foreign::JetOptions m_reader;
};

} // namespace app
