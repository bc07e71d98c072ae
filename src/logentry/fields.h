#pragma once

#include "geo/position.h"

#include <QString>

namespace logentry {

/// What the entry part of the main window shows, as texts under the names of its controls, and which of its
/// panels are shown. The view copies its fields in before a rule runs and out afterwards.
struct EntryFields {
    QString txtcall;
    QString txtcontr; ///< country
    QString txtqth;
    QString txtname;
    QString txtqslvia;
    QString txtrstr; ///< received report
    QString txtrsts; ///< sent report
    QString txtdate;
    QString txttime;
    QString txtQSO;   ///< stations of the country in the log
    QString TXTQSL;   ///< stations of the country that sent a card
    QString TXTF11;   ///< keyer's station field
    QString txtNcall; ///< own callsign
    geo::PositionFields position;

    bool townPanelShown = false; ///< FrGorod: towns and names
    bool townHintShown = false;  ///< lblqth
    bool nameHintShown = false;  ///< lblname
    bool callbookShown = false;  ///< frmbuk
};

/// What the window keeps besides its fields.
struct EntryState {
    QString defaultReport = QStringLiteral("59");
    QString ownCallKey;
    QString principalPrefix; ///< of the country found last
    QString regionKey;       ///< of the Russian callsign of four characters or more typed last
    QString band = QStringLiteral("14");
    QString mode = QStringLiteral("SSB"); ///< caption of CMBMOD
    bool enterRecords = false;            ///< entry key mode 1: Enter records a contact; otherwise F4
    bool automaticTime = true;
    bool utc = true;
    bool listShown = false;
    bool parallelLog = false;
    bool keyerShown = false; ///< FRCW
};

} // namespace logentry
