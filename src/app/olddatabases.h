#pragma once

#include "interchange/ui/services.h"

namespace app {

class OldDatabases final : public interchange::OldDatabases {
public:
    [[nodiscard]] bool convertTo(const QString &oldFile, const QString &newFile) override;
    [[nodiscard]] bool convertInPlace(const QString &oldFile) override;
};

} // namespace app
