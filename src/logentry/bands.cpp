#include "logentry/bands.h"

#include <Qt>

namespace logentry {

namespace {

constexpr int kResetByClick = 10;

} // namespace

QString bandText(int index)
{
    return QString::fromUtf16(base::bandPlan()[static_cast<std::size_t>(index)].label);
}

QString bandCaption(int index)
{
    return index == kBandCount - 1 ? QStringLiteral("1,2") : bandText(index);
}

QString BandSelector::label() const
{
    return m_band + QStringLiteral(" MHz");
}

void BandSelector::click(int index)
{
    for (std::size_t i = 0; i < kResetByClick; ++i)
        m_marked[i] = false;
    m_band = bandText(index);
    m_index = index;
    m_marked.at(static_cast<std::size_t>(index)) = true;
}

void BandSelector::keyReleased(int key)
{
    const bool down = key == Qt::Key_Left || key == Qt::Key_Up;
    const bool up = key == Qt::Key_Right || key == Qt::Key_Down;
    if ((down && m_index >= 1) || (up && m_index < kBandCount - 1)) {
        m_marked.at(static_cast<std::size_t>(m_index)) = false;
        m_index += down ? -1 : 1;
    }
    m_marked.at(static_cast<std::size_t>(m_index)) = true;
    const QString caption = bandCaption(m_index);
    m_band = caption == QLatin1String("1,2") ? QStringLiteral("1200") : caption;
}

} // namespace logentry
