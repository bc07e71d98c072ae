// Any bytes as an ADIF file: reading ends, no record comes twice, and every view stays within the file.
#include "foreign/adifreader.h"

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
    const auto source = foreign::openAdif(text);
    foreign::AdifRecord record;
    qint64 records = 0;
    qint64 line = 0;
    while (source->next(record)) {
        ++records;
        check(records <= text.bytes.size());
        check(record.line >= line && record.line >= 1);
        line = record.line;
        check(source->position() <= source->size());
        check(record.fault != foreign::AdifFault::None || !record.fields.empty());
        qsizetype total = 0;
        for (const foreign::AdifField &field : record.fields) {
            check(!field.name.isEmpty());
            total += field.name.size() + field.value.size();
            (void)foreign::decode(field.value, record.coding);
        }
        check(total <= record.raw.size());
        (void)record.text("NAME");
    }
    check(!source->next(record));
    return 0;
}
