// Any bytes as a file of the program's own ADIF layout: lines cover it, each is read or not, and whatever the
// choice of the reader, what it takes keeps its widths.
#include "interchange/adifline.h"
#include "interchange/adifmapping.h"

#include <cstdlib>

namespace {

void check(bool holds)
{
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    const foreign::AdifText text =
        foreign::prepareAdif(QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    (void)interchange::isOwnLayout(text);
    interchange::ImportRow row;
    qint64 number = 0;
    for (interchange::AdifLines lines(text); lines.next();) {
        check(lines.number() == ++number);
        check(!lines.bytes().contains('\r') && !lines.bytes().contains('\n'));
        const auto read = interchange::readAdifLine(lines.text());
        const auto *contact = std::get_if<interchange::AdifLineContact>(&read);
        if (contact == nullptr)
            continue;
        check(contact->ccall.size() <= 14 && contact->rsts.size() <= 14 && contact->rstr.size() <= 14);
        check(contact->QTH.size() <= 15 && contact->NNAME.size() <= 15 && contact->ps1.size() <= 5);
        check(contact->ddate.size() <= 8);
        check(contact->ttime.size() <= 5);
        interchange::mapLine(*contact, row);
    }
    const auto source = foreign::openAdif(text);
    foreign::AdifRecord record;
    while (source->next(record)) {
        if (interchange::mapRecord(record, row) > interchange::Mapped::NoDate)
            continue;
        check(!row[interchange::kCall].isEmpty());
        check(QString::fromUtf8(row[interchange::kName]).size() <= 15);
        check(row[interchange::kDate].size() <= 10 && row[interchange::kTime].size() <= 5);
    }
    return 0;
}
