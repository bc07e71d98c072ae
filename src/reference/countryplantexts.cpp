#include "reference/countryupdate.h"

namespace reference {

namespace {

QString placeText(const CountryRow &row)
{
    return row.shir + QStringLiteral(" / ") + row.dolg;
}

QString shown(const QString &text)
{
    return text.isEmpty() ? QStringLiteral("пусто") : text;
}

} // namespace

QString CountryChange::kindText() const
{
    switch (kind) {
    case CountryChangeKind::Add:
        return QStringLiteral("Новая");
    case CountryChangeKind::Change:
        return QStringLiteral("Изменена");
    case CountryChangeKind::Remove:
        break;
    }
    return QStringLiteral("Удаляется");
}

QString CountryChange::what() const
{
    if (kind == CountryChangeKind::Remove)
        return answer;
    if (kind == CountryChangeKind::Add)
        return QStringLiteral("%1, %2, CQ %3, ITU %4, %5")
            .arg(after.pref, after.kont, after.cq, after.iaru, placeText(after));
    QStringList parts;
    const auto compare = [&parts](const char16_t *name, const QString &old, const QString &now) {
        if (old != now)
            parts.append(QStringLiteral("%1 %2 → %3").arg(QString::fromUtf16(name), shown(old), shown(now)));
    };
    compare(u"префикс страны", before.pref, after.pref);
    compare(u"страна", before.strana, after.strana);
    compare(u"континент", before.kont, after.kont);
    compare(u"CQ", before.cq, after.cq);
    compare(u"ITU", before.iaru, after.iaru);
    compare(u"широта", before.shir, after.shir);
    compare(u"долгота", before.dolg, after.dolg);
    return parts.join(QStringLiteral("; "));
}

QString CountryPlan::summary() const
{
    QStringList lines;
    lines.append(QStringLiteral("В файле стран: %1, ключей: %2.").arg(fileCountries).arg(fileKeys));
    if (isEmpty())
        lines.append(QStringLiteral("Таблица стран уже соответствует файлу."));
    else
        lines.append(QStringLiteral("Новых строк: %1, изменённых: %2, удаляемых: %3.")
                         .arg(added)
                         .arg(changed)
                         .arg(removed));
    if (unanswered > 0)
        lines.append(QStringLiteral("Из удаляемых %1 не найдут в файле замены: такие позывные останутся без "
                                    "страны.")
                         .arg(unanswered));
    constexpr int kMuch = 20; // one row in so many
    if (removed > 0 && qint64{removed} * kMuch > qint64{same} + kept + own + changed + removed)
        lines.append(QStringLiteral("Внимание: удаляется много строк. Так бывает, когда в файле не все "
                                    "префиксы."));
    if (!newCountries.isEmpty())
        lines.append(QStringLiteral("Новые страны: ") + newCountries.join(QStringLiteral(", ")) +
                     QLatin1Char('.'));
    lines.append(
        QStringLiteral("Остаются как есть: совпадающих с файлом %1, прочих %2, внесённых оператором %3.")
            .arg(same)
            .arg(kept)
            .arg(own));
    if (leftOutCalls > 0)
        lines.append(
            QStringLiteral("Пропущено позывных, с которых могут начинаться другие: %1.").arg(leftOutCalls));
    if (!remarks.isEmpty())
        lines.append(QStringLiteral("Замечаний: %1.").arg(remarks.size()));
    return lines.join(QLatin1Char('\n'));
}

} // namespace reference
