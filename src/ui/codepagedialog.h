#pragma once

#include "foreign/jetcodepage.h"

#include <QDialog>

class QButtonGroup;

namespace ui {

/// Shows the first rows of an old file in each code page that may be meant; the operator picks the one in
/// which they can be read. The page that fits best is picked to begin with.
class CodePageDialog final : public QDialog {
    Q_OBJECT

public:
    CodePageDialog(const QString &file, const foreign::CodePageDoubt &doubt, QWidget *parent);

    [[nodiscard]] int codePage() const;

private:
    void addSample(const foreign::CodePageSample &sample, const QString &remark);

    QButtonGroup *m_pages;
};

} // namespace ui
